#pragma once

#include "simulator/instruments/aismessages.h"
#include "simulator/instruments/deadreckoning.h"
#include "simulator/instruments/silencepattern.h"

#include <QDate>
#include <QVector>

namespace tk7sim {

/*! What is wrong with a vessel's transponder, as it is met at sea. */
enum class TransponderFlaw {
    None,
    NoPosition,      //!< its receiver is broken: nothing of its position report is known
    WrongHemisphere, //!< its position is reported as many degrees west as it is east
    NoVoyageData     //!< it never sends static and voyage data
};

/*! A class A vessel of the AIS world. */
struct FleetVessel
{
    AisVoyageData voyage;
    int navStatus = 0;
    bool hasGyro = true;       //!< knows its heading
    bool hasTurnSensor = true; //!< knows its rate of turn
    bool isAccurate = false;   //!< position better than 10 m
    TransponderFlaw flaw = TransponderFlaw::None;
    SilencePattern silence;
    DeadReckoning motion;
    //! Not null: sails this circle and not by #motion, seconds from the start of the ship's time.
    const CircularCourse *circle = nullptr;
    qint64 movedTo = 0;    //!< the time of #motion
    QVector<int> stations; //!< the places, in the list of ports, where it is heard
};

/*!
 * \a count vessels around the simulated ship; the neighbours() of its usual traffic are the first.
 * \a stationCount is the number of AIS stations that hear them, \a today the day that their times
 * of arrival follow. The same arguments give the same fleet.
 */
QVector<FleetVessel> makeFleet(int count, int stationCount, quint32 seed, const QDate &today);

/*! Sends \a vessel on another voyage, by the random number \a chance. */
void changeVoyage(FleetVessel *vessel, quint32 chance, const QDate &today);

/*! The water in which the fleet stays. */
extern const Fix fleetMiddle;
constexpr double fleetRadius = 30.0; //!< nautical miles

} // namespace tk7sim
