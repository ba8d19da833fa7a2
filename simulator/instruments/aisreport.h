#pragma once

#include "simulator/instruments/aismessages.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QMetaType>

#include <optional>

namespace tk7sim {

/*! What a report says. */
enum class AisReportKind {
    Position,       //!< position report of a vessel
    Voyage,         //!< its static and voyage data, in two sentences
    OwnPosition,    //!< position report of the own ship
    OwnVoyage,      //!< its static and voyage data
    RouterPosition, //!< of the router's own receiver; belongs to no port
    Alarm,          //!< of the AIS station on the port
    Other           //!< a message of a type that an AIS test doesn't look at
};

/*! One report. Only the field that #kind names is filled. */
struct AisReport
{
    AisReportKind kind = AisReportKind::Other;
    int port = -1;   //!< input port, 0 to 11; -1 for RouterPosition
    qint64 time = 0; //!< milliseconds since the start of the world
    AisPositionReport position;
    AisVoyageData voyage;
    AisAlarmState alarm;
    AisRouterPosition router;
    //! The sentences as the station says them, without checksum and line end. They belong together:
    //! nothing else of the same port may come between them. Of RouterPosition: latitude, 'N' or
    //! 'S', longitude, 'E' or 'W', with commas between them.
    QList<QByteArray> bodies;
};

/*! What one station has last said. */
struct AisStationTruth
{
    std::optional<AisPositionReport> position;
    std::optional<AisVoyageData> voyage;
    qint64 positionTime = 0; //!< milliseconds since the start of the world
    qint64 voyageTime = 0;
};

/*! What an input port has heard since the start of the world, whatever its age. */
struct AisPortTruth
{
    QMap<quint32, AisStationTruth> stations; //!< by MMSI; types 1, 2, 3 and 5 only
    AisStationTruth ownShip;
    QMap<int, AisAlarmState> alarms; //!< by id
    quint32 messages = 0;            //!< Position and Voyage
    quint32 ownMessages = 0;         //!< OwnPosition and OwnVoyage
};

} // namespace tk7sim

Q_DECLARE_METATYPE(tk7sim::AisReport)
