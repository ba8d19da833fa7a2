#pragma once

#include "simulator/instruments/aisencoder.h"
#include "simulator/instruments/deadreckoning.h"

#include <QByteArray>
#include <QDateTime>
#include <QVector>

namespace tk7sim {

/*! A station that isn't a class A vessel, and what it sends. */
enum class OtherMessage {
    BaseStation,     //!< type 4
    SearchAircraft,  //!< type 9
    ClassBPosition,  //!< type 18
    AidToNavigation, //!< type 21
    ClassBName,      //!< type 24, part A
    ClassBData       //!< type 24, part B
};

struct OtherStation
{
    OtherMessage message = OtherMessage::BaseStation;
    int period = 0; //!< milliseconds from one message to the next
    quint32 mmsi = 0;
    QByteArray name;
    QByteArray callSign;
    DeadReckoning motion;
    qint64 movedTo = 0; //!< the time of #motion, milliseconds
    int station = 0;    //!< the place, in the list of ports, where it is heard
};

/*! Base stations, buoys, an aircraft, and \a boats boats of class B. */
QVector<OtherStation> makeOtherStations(int boats, int stationCount, quint32 seed);

/*! What \a station says at \a utc. */
AisEncoder messageOf(const OtherStation &station, const QDateTime &utc);

} // namespace tk7sim
