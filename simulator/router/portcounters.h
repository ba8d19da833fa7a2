#pragma once

#include <QtGlobal>

namespace tk7sim {

/*! What has gone wrong at the input and the output of one number, as the router reports it. */
struct PortCounters
{
    quint32 print = 0;  //!< characters at the input that can't be printed
    quint32 crs = 0;    //!< sentences at the input with a wrong checksum
    quint32 broken = 0; //!< sentences at the input that broke off
    quint32 size = 0;   //!< sentences at the input that were too long
    quint32 txFull = 0; //!< sentences for which the output's buffer had no room

    bool operator==(const PortCounters &other) const
    {
        return print == other.print && crs == other.crs && broken == other.broken
            && size == other.size && txFull == other.txFull;
    }
    bool operator!=(const PortCounters &other) const { return !(*this == other); }
};

} // namespace tk7sim
