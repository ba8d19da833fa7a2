#pragma once

#include "simulator/instruments/aisworld.h"

#include <QByteArray>
#include <QVector>

/*! An AIS world to look at, and what its reports say. */
namespace aisreports {

using namespace tk7sim;

constexpr qint64 second = 1000;
constexpr qint64 minute = 60 * second;
constexpr qint64 hour = 60 * minute;
const QDateTime worldStart(QDate(2026, 6, 30), QTime(23, 40), Qt::UTC);

inline AisWorldSettings settingsOf(int vessels = AisWorldSettings::defaultVessels, double rate = 1,
                                   quint32 seed = 1)
{
    AisWorldSettings settings;
    settings.vessels = vessels;
    settings.rate = rate;
    settings.seed = seed;
    settings.start = worldStart;
    return settings;
}

inline QByteArrayList fieldsOf(const QByteArray &body)
{
    return body.split(',');
}

inline QByteArray payloadOf(const AisReport &report)
{
    QByteArray payload;
    for (const QByteArray &body : report.bodies) {
        payload += fieldsOf(body).at(5);
    }
    return payload;
}

inline QByteArray withoutPadding(QByteArray text)
{
    while (text.endsWith('@')) {
        text.chop(1);
    }
    return text;
}

inline bool isOfVessel(const AisReport &report)
{
    return report.kind == AisReportKind::Position || report.kind == AisReportKind::Voyage;
}

inline quint32 mmsiOf(const AisReport &report)
{
    return report.kind == AisReportKind::Position ? report.position.mmsi : report.voyage.mmsi;
}

inline bool hasPosition(const AisPositionReport &report)
{
    return report.latitude != AisPositionReport::noLatitude;
}

inline Fix fixOf(const AisPositionReport &report)
{
    return {report.latitude / 600000.0, report.longitude / 600000.0, report.course / 10.0};
}

inline QVector<AisReport> reportsOf(AisWorld *world, qint64 from, qint64 to, qint64 step = 1000)
{
    QVector<AisReport> reports;
    for (qint64 now = from; now <= to; now += step) {
        while (const auto report = world->take(now)) {
            reports.append(*report);
        }
    }
    return reports;
}

} // namespace aisreports
