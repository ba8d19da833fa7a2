#include "simulator/router/trafficgenerator.h"

#include "simulator/router/channelgate.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr int nibble = 4; // bits
constexpr int nibbleMask = 15;

void sortByTime(QVector<TrafficLine> *lines)
{
    std::stable_sort(lines->begin(), lines->end(),
                     [](const TrafficLine &a, const TrafficLine &b) { return a.time < b.time; });
}

} // namespace

int TrafficGenerator::activeInput(const Channel &channel, qint64 time) const
{
    if (!isPort(channel.mainInput)) {
        return channel.reserveInput;
    }
    if (!isPort(channel.reserveInput)) {
        return channel.mainInput;
    }
    if (!m_inputs.isWired(channel.mainInput)) {
        return channel.reserveInput;
    }
    const InputSilence &silence = conditions().silences[channel.mainInput];
    const bool isMissed = silence.covers(time) && time - silence.from >= conditions().handover;
    return isMissed ? channel.reserveInput : channel.mainInput;
}

QVector<TrafficLine> TrafficGenerator::receivedBy(const Channel &channel, qint64 from, qint64 to)
{
    const bool hasBoth = isPort(channel.mainInput) && isPort(channel.reserveInput)
        && channel.mainInput != channel.reserveInput;
    const InputSilence silence =
        isPort(channel.mainInput) ? conditions().silences[channel.mainInput] : InputSilence();
    if (!hasBoth || silence.from > to || silence.until <= from) {
        return m_inputs.lines(activeInput(channel, to), from, to);
    }
    QVector<TrafficLine> result;
    for (const int input : {channel.mainInput, channel.reserveInput}) {
        const auto heard = m_inputs.lines(input, from, to);
        std::copy_if(
            heard.cbegin(), heard.cend(), std::back_inserter(result),
            [&](const TrafficLine &line) { return activeInput(channel, line.time) == input; });
    }
    sortByTime(&result);
    return result;
}

QVector<TrafficLine> TrafficGenerator::channelTraffic(const Channel &channel,
                                                      const RouterConfig &config, qint64 from,
                                                      qint64 to)
{
    QVector<TrafficLine> passed;
    const auto lines = receivedBy(channel, from, to);
    for (const TrafficLine &line : lines) {
        if (line.flaw != LineFlaw::None && line.flaw != LineFlaw::WrongChecksum) {
            continue; // no sentence to the router
        }
        const auto text = passChannel(line.text, channel, config.filterList);
        if (text) {
            passed.append({line.time, *text, line.flaw, line.report, line.part});
        }
    }
    return passed;
}

QVector<TrafficLine> TrafficGenerator::outputTraffic(int outputPort, const RouterConfig &config,
                                                     qint64 from, qint64 to)
{
    QVector<TrafficLine> lines;
    for (const Channel &channel : config.outputs[static_cast<size_t>(outputPort)].channels) {
        lines += channelTraffic(channel, config, from, to);
    }
    sortByTime(&lines);
    return lines;
}

QVector<TrafficLine> TrafficGenerator::viewTraffic(int viewCode, const RouterConfig &config,
                                                   qint64 from, qint64 to)
{
    const int high = viewCode >> nibble;
    const int low = viewCode & nibbleMask;
    if (!isViewCode(viewCode) || viewCode == viewNothing) {
        return {};
    }
    if (high == noPort) {
        return m_inputs.lines(low, from, to);
    }
    if (low == noPort) {
        return outputTraffic(high, config, from, to);
    }
    const auto &channels = config.outputs[static_cast<size_t>(high)].channels;
    return channelTraffic(channels[static_cast<size_t>(low)], config, from, to);
}

} // namespace tk7sim
