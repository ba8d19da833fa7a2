#include "monitorcheck.h"

#include "traffic.h"

#include <algorithm>

namespace {

constexpr int inkLightness = 160; // what is darker belongs to a letter

bool hasInk(const QImage &image, int y)
{
    for (int x = 0; x < image.width(); ++x) {
        if (qGray(image.pixel(x, y)) < inkLightness)
            return true;
    }
    return false;
}

// The part of `column` within the list, whose ground is white left of the text.
QImage withoutSurroundings(const QImage &column)
{
    const auto isWhite = [&](int y) { return (column.pixel(0, y) & RGB_MASK) == RGB_MASK; };
    int top = column.height() / 2;
    int bottom = top;
    while (top > 0 && isWhite(top - 1))
        --top;
    while (bottom < column.height() && isWhite(bottom))
        ++bottom;
    return column.copy(0, top, column.width(), bottom - top);
}

// The lines of text in `column`, each cut out at the top and the bottom of its letters.
QVector<QImage> textLines(const QImage &column)
{
    QVector<QImage> lines;
    int top = -1;
    for (int y = 0; y <= column.height(); ++y) {
        const bool isInk = y < column.height() && hasInk(column, y);
        if (isInk && top < 0) {
            top = y;
        } else if (!isInk && top >= 0) {
            lines += column.copy(0, top, column.width(), y - top);
            top = -1;
        }
    }
    return lines;
}

} // namespace

QString MonitorCheck::problem(const QImage &column, const QList<QByteArray> &lines)
{
    const QVector<QImage> seen = textLines(withoutSurroundings(column));
    if (seen.isEmpty())
        return QStringLiteral("the monitor is empty");
    const int count = int(std::min(seen.size(), lines.size()));
    QVector<Sight> sights = m_known;
    for (int i = count; i > 0; --i)
        sights += {seen[seen.size() - i], Traffic::headOf(lines[lines.size() - i])};
    QString problem = likenessProblem("the monitor's heads", sights);
    if (!problem.isEmpty())
        return problem;
    for (const Sight &sight : qAsConst(sights)) {
        const auto isSame = [&](const Sight &other) { return other.meaning == sight.meaning; };
        if (std::none_of(m_known.cbegin(), m_known.cend(), isSame))
            m_known += sight;
    }
    return QString();
}
