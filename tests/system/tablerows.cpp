#include "tablerows.h"

#include <cstdlib>

namespace {

constexpr int gridGray = 199;
constexpr int grayTolerance = 2;
constexpr int lowestRow = 12; // pixels of one colour; the head has a gradient

bool isGridColor(QRgb pixel)
{
    return std::abs(qGray(pixel) - gridGray) <= grayTolerance;
}

bool isOneColor(const QImage &image, int y)
{
    for (int x = 1; x < image.width(); ++x) {
        if (image.pixel(x, y) != image.pixel(0, y))
            return false;
    }
    return true;
}

bool isGridLine(const QImage &image, int y)
{
    return y < image.height() && isOneColor(image, y) && isGridColor(image.pixel(0, y));
}

} // namespace

QVector<TableRow> tableRows(const QImage &strip)
{
    QVector<TableRow> rows;
    int top = 0;
    for (int y = 1; y <= strip.height(); ++y) {
        const bool goesOn =
            y < strip.height() && isOneColor(strip, y) && strip.pixel(0, y) == strip.pixel(0, top);
        if (goesOn)
            continue;
        if (y - top >= lowestRow && isGridLine(strip, y))
            rows += TableRow{top, y - top};
        top = y;
    }
    return rows;
}

QVector<int> columnLines(const QImage &line)
{
    QVector<int> lines;
    for (int x = 0; x < line.width(); ++x) {
        if (isGridColor(line.pixel(x, 0)))
            lines += x;
    }
    return lines;
}
