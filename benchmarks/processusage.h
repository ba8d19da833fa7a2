#pragma once

#include <QtGlobal>

/*! What a process has used, as the system counts it from outside. */
struct ProcessUsage
{
    double processorSeconds = 0;  //!< in user and in kernel mode, of all its threads; to 10 ms
    double residentMegabytes = 0; //!< of memory, now

    /*! Of the process \a pid; zeros if there is none. */
    static ProcessUsage of(qint64 pid);
};
