#include "likeness.h"

#include <algorithm>
#include <cstdlib>

bool lookAlike(const QImage &a, const QImage &b)
{
    constexpr int tolerance = 8; // of 255
    if (a.size() != b.size())
        return false;
    const auto isNear = [](QRgb p, QRgb q) {
        return std::abs(qRed(p) - qRed(q)) <= tolerance
            && std::abs(qGreen(p) - qGreen(q)) <= tolerance
            && std::abs(qBlue(p) - qBlue(q)) <= tolerance;
    };
    for (int y = 0; y < a.height(); ++y) {
        const auto *one = reinterpret_cast<const QRgb *>(a.constScanLine(y));
        const auto *other = reinterpret_cast<const QRgb *>(b.constScanLine(y));
        if (!std::equal(one, one + a.width(), other, isNear))
            return false;
    }
    return true;
}

QString likenessProblem(const char *kind, const QVector<Sight> &sights)
{
    for (int i = 0; i < sights.size(); ++i) {
        for (int j = 0; j < i; ++j) {
            const bool areAlike = lookAlike(sights[i].picture, sights[j].picture);
            if (areAlike == (sights[i].meaning == sights[j].meaning))
                continue;
            return QStringLiteral("%1 %2 (%3) and %4 (%5) look %6")
                .arg(QLatin1String(kind))
                .arg(j)
                .arg(QString::fromLatin1(sights[j].meaning))
                .arg(i)
                .arg(QString::fromLatin1(sights[i].meaning),
                     areAlike ? QStringLiteral("alike") : QStringLiteral("different"));
        }
    }
    return QString();
}

QImage inkOf(const QImage &cell)
{
    constexpr int white = 255;
    constexpr int stroke = 128; // what is darker lies well within a letter
    if (cell.isNull())
        return QImage();
    QImage ink = cell;
    QRect written;
    const int ground = std::max(qGray(cell.pixel(0, 0)), 1);
    for (int y = 0; y < ink.height(); ++y) {
        for (int x = 0; x < ink.width(); ++x) {
            const int gray = std::min(qGray(cell.pixel(x, y)) * white / ground, white);
            ink.setPixel(x, y, qRgb(gray, gray, gray));
            if (gray < stroke)
                written |= QRect(x, y, 1, 1);
        }
    }
    return written.isEmpty() ? QImage() : ink.copy(written);
}

bool lookAlike(const QVector<QImage> &a, const QVector<QImage> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const QImage &p, const QImage &q) { return lookAlike(p, q); });
}
