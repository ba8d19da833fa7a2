#include "simulator/instruments/aistruth.h"

namespace tk7sim {

void AisTruth::record(const AisReport &report)
{
    ++m_reports;
    if (report.kind == AisReportKind::RouterPosition) {
        m_routerPosition = report.router;
        return;
    }
    AisPortTruth &port = m_ports[static_cast<size_t>(report.port)];
    const auto setPosition = [&](AisStationTruth *station) {
        station->position = report.position;
        station->positionTime = report.time;
    };
    const auto setVoyage = [&](AisStationTruth *station) {
        station->voyage = report.voyage;
        station->voyageTime = report.time;
    };
    switch (report.kind) {
    case AisReportKind::Position:
        ++port.messages;
        return setPosition(&port.stations[report.position.mmsi]);
    case AisReportKind::Voyage:
        ++port.messages;
        return setVoyage(&port.stations[report.voyage.mmsi]);
    case AisReportKind::OwnPosition:
        ++port.ownMessages;
        return setPosition(&port.ownShip);
    case AisReportKind::OwnVoyage:
        ++port.ownMessages;
        return setVoyage(&port.ownShip);
    case AisReportKind::Alarm:
        port.alarms.insert(report.alarm.id, report.alarm);
        return;
    case AisReportKind::RouterPosition:
    case AisReportKind::Other:
        return;
    }
}

} // namespace tk7sim
