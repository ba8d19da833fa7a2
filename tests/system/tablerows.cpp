#include "tablerows.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace {

constexpr int gridGrays[] = {199, 216}; // of the style on X11, and of that of Windows
constexpr int grayTolerance = 2;
constexpr int lowestRow = 12; // pixels of one colour; the head has a gradient

bool isGridColor(QRgb pixel)
{
    return std::any_of(std::begin(gridGrays), std::end(gridGrays), [&](int gray) {
        return std::abs(qGray(pixel) - gray) <= grayTolerance;
    });
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
    // The head of a table on Windows is as white as the first row, and runs into it.
    if (rows.size() > 1 && rows[0].height > rows[1].height) {
        rows[0].top += rows[0].height - rows[1].height;
        rows[0].height = rows[1].height;
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
