#include "aistalk.h"

#include "support/checkedline.h"

namespace {

QString sentence(const QByteArray &body)
{
    return QString::fromLatin1(checkedLine(body));
}

QString message(const char *head, uint port, const QByteArray &payload, int fillBits)
{
    return sentence(head + QByteArray(",1,1,,") + QByteArray::number(port, 16).toUpper() + ','
                    + payload + ',' + QByteArray::number(fillBits));
}

} // namespace

PositionReport AisTalk::northOf(quint32 mmsi, double minutes)
{
    constexpr double partsOfMinute = 10000.0;
    PositionReport report;
    report.mmsi = mmsi;
    report.longitude = 0;
    report.latitude = quint32(qRound64(minutes * partsOfMinute));
    return report;
}

VoyageData AisTalk::named(quint32 mmsi, const QByteArray &name)
{
    VoyageData data;
    data.mmsi = mmsi;
    data.name = name;
    return data;
}

QString AisTalk::heard(uint port, const PositionReport &report)
{
    return message("$VRAIM", port, report.payload(), 0);
}

QString AisTalk::heard(uint port, const VoyageData &data)
{
    return message("$VRAIM", port, data.payload(), VoyageData::FillBits);
}

QString AisTalk::own(uint port, const PositionReport &report)
{
    return message("$VRAIO", port, report.payload(), 0);
}

QString AisTalk::own(uint port, const VoyageData &data)
{
    return message("$VRAIO", port, data.payload(), VoyageData::FillBits);
}

QString AisTalk::position(double minutes)
{
    constexpr int minutesPerDegree = 60;
    const int degrees = int(minutes) / minutesPerDegree;
    const QString latitude =
        QStringLiteral("%1%2")
            .arg(degrees, 2, 10, QLatin1Char('0'))
            .arg(minutes - degrees * minutesPerDegree, 6, 'f', 3, QLatin1Char('0'));
    return sentence("$VRAIP," + latitude.toLatin1() + ",N,00000.000,E");
}

QString AisTalk::alarm(uint port, uint id, char condition, char acknowledged,
                       const QByteArray &text, const QByteArray &time)
{
    return sentence("$VRAIA," + QByteArray::number(port, 16).toUpper() + ',' + time + ','
                    + QByteArray::number(id) + ',' + condition + ',' + acknowledged + ',' + text);
}
