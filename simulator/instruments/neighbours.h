#pragma once

#include "simulator/instruments/aismessages.h"
#include "simulator/instruments/ship.h"

#include <array>

namespace tk7sim {

/*! A ship with an AIS transponder that sails a circle. */
struct AisVessel
{
    quint32 mmsi;
    quint32 imo;
    const char *callSign;    //!< at most 7 characters
    const char *name;        //!< at most 20 characters
    const char *destination; //!< at most 20 characters
    int shipType;            //!< 0 to 99
    CircularCourse course;
};

/*! The simulated ship itself. */
const AisVessel &ownVessel();
/*! The ships near by, which the radar plots; the first of the fleet. */
const std::array<AisVessel, 8> &neighbours();

/*! What \a vessel reports \a seconds after the start, as type 1. */
AisPositionReport positionReportOf(const AisVessel &vessel, double seconds, int utcSecond);
AisVoyageData voyageDataOf(const AisVessel &vessel);

} // namespace tk7sim
