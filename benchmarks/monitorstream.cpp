#include "monitorstream.h"

#include "support/checkedline.h"

#include <QTime>

namespace {

constexpr int secondsPerDay = 24 * 60 * 60;
constexpr int decisecondsPerMinute = 600;

struct Moment
{
    QByteArray time;     // of day
    QByteArray minutes;  // of the position, seven decimals
    QByteArray course;   // one decimal
    QByteArray speed;    // knots, one decimal
    QByteArray aisTurns; // six characters of a payload
};

QByteArray aisCharacters(qint64 number)
{
    constexpr int length = 6;
    constexpr int bits = 6;
    constexpr int firstCharacter = '0';
    constexpr int lastOfFirstRange = 40; // the alphabet leaves out eight characters behind it
    constexpr int leftOut = 8;
    QByteArray characters;
    for (int i = 0; i < length; ++i) {
        const int value = int(number >> (bits * i)) & ((1 << bits) - 1);
        characters += char(firstCharacter + value + (value >= lastOfFirstRange ? leftOut : 0));
    }
    return characters;
}

Moment momentOf(qint64 count)
{
    const QTime time = QTime(0, 0).addSecs(int(count % secondsPerDay));
    const double minutes = double(count % decisecondsPerMinute) / 10.0 + double(count % 97) / 1e5;
    return {time.toString(QStringLiteral("HHmmss.zzz")).toLatin1(),
            QByteArray::number(minutes, 'f', 7).rightJustified(10, '0'),
            QByteArray::number(double(count % 3600) / 10.0, 'f', 1),
            QByteArray::number(double(count % 250) / 10.0, 'f', 1), aisCharacters(count * 7919)};
}

QByteArray position(const Moment &now)
{
    return checkedLine("$GNGGA," + now.time + ",47" + now.minutes + ",N,008" + now.minutes
                       + ",E,1,12,0.91,499.6,M,48.0,M,,");
}

QByteArray aisReport(const Moment &now)
{
    return checkedLine("!AIVDM,1,1,,A,13u?etPv2;0n:" + now.aisTurns + "M1U1Cb069D,0");
}

QByteArray minimum(const Moment &now)
{
    return checkedLine("$GNRMC," + now.time + ",A,47" + now.minutes + ",N,008" + now.minutes + ",E,"
                       + now.speed + ',' + now.course + ",091220,1.9,W,A");
}

QByteArray courseOverGround(const Moment &now)
{
    return checkedLine("$GNVTG," + now.course + ",T," + now.course + ",M," + now.speed + ",N,"
                       + now.speed + ",K,A");
}

constexpr QByteArray (*sentences[])(const Moment &) = {position, aisReport, minimum,
                                                       courseOverGround};
constexpr qint64 sentenceCount = sizeof sentences / sizeof *sentences;

} // namespace

QByteArray MonitorStream::nextLine()
{
    QByteArray line = sentences[m_count % sentenceCount](momentOf(m_count));
    ++m_count;
    return line;
}
