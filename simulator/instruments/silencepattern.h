#pragma once

#include <QtGlobal>

namespace tk7sim {

/*! When something is silent, or lost, or over, in milliseconds since the start of the world. */
struct SilencePattern
{
    qint64 first = 0;  //!< begin of the first silence
    qint64 length = 0; //!< 0: never silent
    qint64 period = 0; //!< from one silence to the next; 0: the first has no end

    constexpr bool covers(qint64 time) const
    {
        if (length == 0 || time < first) {
            return false;
        }
        return period == 0 || (time - first) % period < length;
    }
};

} // namespace tk7sim
