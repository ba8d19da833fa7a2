#pragma once

#include "simulator/router/portcounters.h"
#include "simulator/router/routerclock.h"
#include "simulator/router/routerconfig.h"
#include "simulator/router/trafficgenerator.h"

#include <array>

namespace tk7sim {

/*!
 * Counts what goes wrong at the ports.
 *
 * It counts when it is asked, everything since it was asked last, or since longestGap before; of AIS
 * stations that somebody else listens to what they remember.
 */
class PortStatistics
{
public:
    static constexpr qint64 longestGap = 120000; //!< milliseconds
    static constexpr int outputBuffer = 1024;    //!< bytes that may wait for an output's line

    //! \a clock and \a traffic outlive the statistics. Whoever changes the traffic calls settle()
    //! before.
    PortStatistics(const RouterClock *clock, const RouterConfig &config, TrafficGenerator *traffic);

    //! From now on the traffic goes these ways.
    void setConfig(const RouterConfig &config);

    //! The counters of \a port, 0 to 11.
    PortCounters at(int port);
    void set(int port, const PortCounters &counters);
    //! A sentence with a wrong checksum has come from the tool to \a port.
    void countChecksumError(int port);
    void clear();
    //! Brings all counters up to date.
    void settle();

private:
    struct Port
    {
        PortCounters counters;
        double waiting = 0; // bytes in the output's buffer, when it was filled last
        qint64 filledAt = 0;
    };

    void countInput(int port, qint64 from, qint64 to);
    void countOutput(int port, qint64 from, qint64 to);

    const RouterClock *m_clock;
    TrafficGenerator *m_traffic;
    RouterConfig m_config;
    std::array<Port, portCount> m_ports;
    qint64 m_countedUpTo = 0;
};

} // namespace tk7sim
