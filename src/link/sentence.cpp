#include "link/sentence.h"

#include "platform/qtversion.h"

namespace {

const QChar checksumMark = QLatin1Char('*');

// The byte behind the '$' is always summed first, so a star this early leaves nothing to sum.
constexpr int firstSummedIndex = 1;
constexpr int lastDegenerateMark = 2;

quint8 latin1At(const QString &text, int index)
{
    const ushort code = text.at(index).unicode();
    return code > 0xff ? quint8('?') : quint8(code);
}

} // namespace

bool calcChecksum(const QString &text, quint8 &checksum)
{
    const int mark = int(text.indexOf(checksumMark));
    const int end = mark < 0 ? int(text.size()) : mark;

    quint8 sum = 0;
    if (text.size() > firstSummedIndex)
        sum = latin1At(text, firstSummedIndex);
    for (int i = firstSummedIndex + 1; i < end; ++i)
        sum = quint8(sum ^ latin1At(text, i));

    checksum = sum;
    return mark >= 0;
}

bool testChecksum(const QString &line)
{
    quint8 computed = 0;
    if (!calcChecksum(line, computed))
        return false;
    const int mark = int(line.indexOf(checksumMark));
    if (mark <= lastDegenerateMark || mark >= line.size() - 2)
        return false;
    bool isNumber = false;
    const uint stated = platform::partFrom(line, mark + 1).toUInt(&isNumber, 16);
    return isNumber && stated == computed;
}

bool hasChecksum(const QString &line)
{
    return line.contains(checksumMark);
}

QString checksumTrailer(quint8 checksum)
{
    return QStringLiteral("*%1\r\n").arg(checksum, 2, 16, QLatin1Char('0')).toUpper();
}

QString checkedSentence(const QString &body)
{
    quint8 checksum = 0;
    calcChecksum(body, checksum);
    return body + checksumTrailer(checksum);
}
