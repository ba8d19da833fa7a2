#include "simulator/trafficgenerator.h"

#include "simulator/nmeaequipment.h"
#include "simulator/sentence.h"

#include <algorithm>
#include <cmath>

namespace tk7sim {

namespace {

constexpr int nibble = 4; // bits
constexpr int nibbleMask = 15;
constexpr double millisecondsPerSecond = 1000.0;
constexpr int lineEnd = 2; // CR LF

void sortByTime(QVector<TrafficLine> *lines)
{
    std::stable_sort(lines->begin(), lines->end(),
                     [](const TrafficLine &a, const TrafficLine &b) { return a.time < b.time; });
}

} // namespace

TrafficGenerator::TrafficGenerator(const QDateTime &start) : m_start(start.toUTC()) { }

QVector<TrafficLine> TrafficGenerator::inputTraffic(int inputPort, qint64 from, qint64 to) const
{
    QVector<TrafficLine> lines;
    if (m_rate <= 0) {
        return lines;
    }
    for (const ScheduledSentence &sentence : equipmentAt(inputPort)) {
        // The instruments keep their order and their gaps at any rate.
        const auto countUpTo = [&](qint64 time) {
            const double passed = static_cast<double>(time) * m_rate - sentence.phase;
            return std::max<qint64>(static_cast<qint64>(std::floor(passed / sentence.period)) + 1,
                                    0);
        };
        const qint64 end = countUpTo(to);
        for (qint64 count = countUpTo(from); count < end; ++count) {
            const auto scheduled = static_cast<double>(sentence.phase + count * sentence.period);
            const auto time = static_cast<qint64>(std::floor(scheduled / m_rate));
            const Moment moment{m_start.addMSecs(time),
                                static_cast<double>(time) / millisecondsPerSecond, count};
            for (const QByteArray &body : sentence.build(moment)) {
                const QByteArray line = withChecksum(body);
                lines.append({time, line.left(line.size() - lineEnd)});
            }
        }
    }
    sortByTime(&lines);
    return lines;
}

// The main input never fails in the simulation, so the reserve only matters where there is no
// main input. Every sentence passes: filters, headers and checks act on what this function returns.
QVector<TrafficLine> TrafficGenerator::channelTraffic(const Channel &channel, qint64 from,
                                                      qint64 to) const
{
    const int input = channel.mainInput != noPort ? channel.mainInput : channel.reserveInput;
    return inputTraffic(input, from, to);
}

QVector<TrafficLine> TrafficGenerator::viewTraffic(int viewCode, const RouterConfig &config,
                                                   qint64 from, qint64 to) const
{
    const int high = viewCode >> nibble;
    const int low = viewCode & nibbleMask;
    if (!isViewCode(viewCode) || viewCode == viewNothing) {
        return {};
    }
    if (high == noPort) {
        return inputTraffic(low, from, to);
    }
    const auto &channels = config.outputs[static_cast<size_t>(high)].channels;
    if (low != noPort) {
        return channelTraffic(channels[static_cast<size_t>(low)], from, to);
    }
    QVector<TrafficLine> lines;
    for (const Channel &channel : channels) {
        lines += channelTraffic(channel, from, to);
    }
    sortByTime(&lines);
    return lines;
}

} // namespace tk7sim
