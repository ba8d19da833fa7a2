#pragma once

#include "simulator/instruments/ports.h"

#include <QtGlobal>

#include <array>
#include <limits>

namespace tk7sim {

/*! A span in which nothing comes from an instrument: from its begin on, and up to its end. */
struct InputSilence
{
    static constexpr qint64 never = std::numeric_limits<qint64>::max();

    qint64 from = never; //!< milliseconds since the start
    qint64 until = never;

    bool covers(qint64 time) const { return time >= from && time < until; }
};

/*! What is wrong between the instruments and the router. A plain value. */
struct InputConditions
{
    static constexpr int defaultHandover = 3000;

    double wrongChecksums = 0; //!< per cent of the sentences of each input
    double damage = 0;         //!< per cent of the sentences of each input
    quint32 seed = 1;          //!< of the choice which sentences are hit
    //! Milliseconds of silence of a main input after which the reserve takes over.
    int handover = defaultHandover;
    //! The present silence of each input port, or the last one.
    std::array<InputSilence, portCount> silences;
};

} // namespace tk7sim
