#pragma once

#include "simulator/instruments/aismessages.h"

#include <QDateTime>

#include <optional>

namespace tk7sim {

/*!
 * An alarm of an AIS station that comes and goes: raised, acknowledged after a while, and later
 * over.
 */
struct AlarmCycle
{
    int station; //!< the place, in the list of ports, of the station that reports it
    int id;
    const char *text;
    qint64 first;    //!< milliseconds from the start of the world until it is raised
    qint64 length;   //!< milliseconds for which it holds
    qint64 period;   //!< from one time to the next
    qint64 response; //!< from its begin until it is acknowledged

    //! What the station says at \a time of a world that began at \a start; nothing before the
    //! alarm was raised for the first time.
    std::optional<AisAlarmState> at(qint64 time, const QDateTime &start) const;
};

} // namespace tk7sim
