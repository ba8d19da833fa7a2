#include "simulator/router/portstatistics.h"

#include "simulator/line/linespeed.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr int lineEnd = 2; // CR LF
constexpr double millisecondsPerSecond = 1000.0;

void count(LineFlaw flaw, PortCounters *counters)
{
    switch (flaw) {
    case LineFlaw::None:
        return;
    case LineFlaw::WrongChecksum:
        ++counters->crs;
        return;
    case LineFlaw::Unprintable:
        ++counters->print;
        return;
    case LineFlaw::Broken:
        ++counters->broken;
        return;
    case LineFlaw::Oversize:
        ++counters->size;
        return;
    }
}

} // namespace

PortStatistics::PortStatistics(const RouterClock *clock, const RouterConfig &config,
                               TrafficGenerator *traffic)
    : m_clock(clock), m_traffic(traffic), m_config(config)
{
}

void PortStatistics::setConfig(const RouterConfig &config)
{
    settle();
    m_config = config;
}

PortCounters PortStatistics::at(int port)
{
    settle();
    return m_ports[static_cast<size_t>(port)].counters;
}

void PortStatistics::set(int port, const PortCounters &counters)
{
    settle();
    m_ports[static_cast<size_t>(port)].counters = counters;
}

void PortStatistics::countChecksumError(int port)
{
    ++m_ports[static_cast<size_t>(port)].counters.crs;
}

void PortStatistics::clear()
{
    settle();
    for (Port &port : m_ports) {
        port.counters = {};
    }
}

void PortStatistics::settle()
{
    const qint64 now = m_clock->now();
    const qint64 from = std::max(m_countedUpTo, now - longestGap);
    if (from == now) {
        return;
    }
    m_countedUpTo = now;
    for (int port = 0; port < portCount; ++port) {
        countInput(port, from, now);
        countOutput(port, from, now);
    }
}

void PortStatistics::countInput(int port, qint64 from, qint64 to)
{
    const InputConditions &conditions = m_traffic->conditions();
    if (conditions.wrongChecksums <= 0 && conditions.damage <= 0) {
        return; // nothing to count
    }
    const auto lines = m_traffic->inputTraffic(port, from, to);
    for (const TrafficLine &line : lines) {
        count(line.flaw, &m_ports[static_cast<size_t>(port)].counters);
    }
}

// What its channels let through waits in the output's buffer, which empties at the speed of the
// output.
void PortStatistics::countOutput(int port, qint64 from, qint64 to)
{
    const auto index = static_cast<size_t>(port);
    Port &output = m_ports[index];
    const double bytesPerMillisecond =
        m_config.speeds[index] / (bitsPerByte * millisecondsPerSecond);
    const auto lines = m_traffic->outputTraffic(port, m_config, from, to);
    for (const TrafficLine &line : lines) {
        const double sent = static_cast<double>(line.time - output.filledAt) * bytesPerMillisecond;
        output.waiting = std::max(output.waiting - sent, 0.0);
        output.filledAt = line.time;
        const int size = int(line.text.size() + lineEnd);
        if (output.waiting + size > outputBuffer) {
            ++output.counters.txFull;
        } else {
            output.waiting += size;
        }
    }
}

} // namespace tk7sim
