#include "simulator/router/trafficgenerator.h"

#include "simulator/instruments/nmeaequipment.h"
#include "simulator/line/sentence.h"
#include "simulator/router/channelgate.h"

#include <algorithm>
#include <cmath>

namespace tk7sim {

namespace {

constexpr int nibble = 4; // bits
constexpr int nibbleMask = 15;
constexpr double millisecondsPerSecond = 1000.0;
constexpr int lineEnd = 2;    // CR LF
constexpr double all = 100.0; // per cent
constexpr char controlCharacter = '\x15';
constexpr int oversizeLength = 100; // a sentence may have 82 characters

void sortByTime(QVector<TrafficLine> *lines)
{
    std::stable_sort(lines->begin(), lines->end(),
                     [](const TrafficLine &a, const TrafficLine &b) { return a.time < b.time; });
}

// The same number for the same input, and as good as random.
quint64 scatter(quint64 value)
{
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31U);
}

// True in \a percent of all cases.
bool isHit(quint64 chance, double percent)
{
    constexpr double bits53 = 9007199254740992.0;
    return static_cast<double>(chance >> 11U) / bits53 * all < percent;
}

QByteArray withoutLineEnd(const QByteArray &line)
{
    return line.left(line.size() - lineEnd);
}

QByteArray damaged(const QByteArray &body, LineFlaw flaw)
{
    QByteArray text = withoutLineEnd(withChecksum(body));
    if (flaw == LineFlaw::Unprintable) {
        text[text.size() / 2] = controlCharacter;
    } else if (flaw == LineFlaw::Broken) {
        text.truncate(text.size() / 2);
    } else if (flaw == LineFlaw::Oversize) {
        text = withoutLineEnd(withChecksum(body.leftJustified(oversizeLength, '0')));
    }
    return text;
}

} // namespace

TrafficGenerator::TrafficGenerator(const QDateTime &start) : m_start(start.toUTC()) { }

QVector<TrafficLine> TrafficGenerator::inputTraffic(int inputPort, qint64 from, qint64 to) const
{
    QVector<TrafficLine> lines;
    if (m_rate <= 0 || !isPort(inputPort)) {
        return lines;
    }
    const InputSilence silence = m_conditions.silences[static_cast<size_t>(inputPort)];
    auto source = static_cast<quint64>(inputPort) << 56U;
    for (const ScheduledSentence &sentence : equipmentAt(inputPort)) {
        constexpr quint64 nextSentence = 1ULL << 48U;
        source += nextSentence;
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
            if (silence.covers(time)) {
                continue;
            }
            const Moment moment{m_start.addMSecs(time),
                                static_cast<double>(time) / millisecondsPerSecond, count};
            auto number = source + static_cast<quint64>(count) * 2;
            for (const QByteArray &body : sentence.build(moment)) {
                lines.append(arrive(time, body, number++));
            }
        }
    }
    sortByTime(&lines);
    return lines;
}

// A line that is damaged can't be hit a second time.
TrafficLine TrafficGenerator::arrive(qint64 time, const QByteArray &body, quint64 number) const
{
    const quint64 chance = scatter(number ^ scatter(m_conditions.seed));
    if (isHit(chance, m_conditions.damage)) {
        constexpr LineFlaw kinds[] = {LineFlaw::Unprintable, LineFlaw::Broken, LineFlaw::Oversize};
        const LineFlaw flaw = kinds[scatter(chance) % std::size(kinds)];
        return {time, damaged(body, flaw), flaw};
    }
    if (isHit(scatter(~chance), m_conditions.wrongChecksums)) {
        return {time, withoutLineEnd(withWrongChecksum(body)), LineFlaw::WrongChecksum};
    }
    return {time, withoutLineEnd(withChecksum(body)), LineFlaw::None};
}

int TrafficGenerator::activeInput(const Channel &channel, qint64 time) const
{
    if (!isPort(channel.mainInput)) {
        return channel.reserveInput;
    }
    if (!isPort(channel.reserveInput)) {
        return channel.mainInput;
    }
    if (equipmentAt(channel.mainInput).isEmpty()) {
        return channel.reserveInput;
    }
    const InputSilence &silence = m_conditions.silences[channel.mainInput];
    const bool isMissed = silence.covers(time) && time - silence.from >= m_conditions.handover;
    return isMissed ? channel.reserveInput : channel.mainInput;
}

QVector<TrafficLine> TrafficGenerator::receivedBy(const Channel &channel, qint64 from,
                                                  qint64 to) const
{
    const bool hasBoth = isPort(channel.mainInput) && isPort(channel.reserveInput)
        && channel.mainInput != channel.reserveInput;
    const InputSilence silence =
        isPort(channel.mainInput) ? m_conditions.silences[channel.mainInput] : InputSilence();
    if (!hasBoth || silence.from > to || silence.until <= from) {
        return inputTraffic(activeInput(channel, to), from, to);
    }
    QVector<TrafficLine> result;
    for (const int input : {channel.mainInput, channel.reserveInput}) {
        const auto heard = inputTraffic(input, from, to);
        std::copy_if(
            heard.cbegin(), heard.cend(), std::back_inserter(result),
            [&](const TrafficLine &line) { return activeInput(channel, line.time) == input; });
    }
    sortByTime(&result);
    return result;
}

QVector<TrafficLine> TrafficGenerator::channelTraffic(const Channel &channel,
                                                      const RouterConfig &config, qint64 from,
                                                      qint64 to) const
{
    QVector<TrafficLine> passed;
    const auto lines = receivedBy(channel, from, to);
    for (const TrafficLine &line : lines) {
        if (line.flaw != LineFlaw::None && line.flaw != LineFlaw::WrongChecksum) {
            continue; // no sentence to the router
        }
        const auto text = passChannel(line.text, channel, config.filterList);
        if (text) {
            passed.append({line.time, *text, line.flaw});
        }
    }
    return passed;
}

QVector<TrafficLine> TrafficGenerator::outputTraffic(int outputPort, const RouterConfig &config,
                                                     qint64 from, qint64 to) const
{
    QVector<TrafficLine> lines;
    for (const Channel &channel : config.outputs[static_cast<size_t>(outputPort)].channels) {
        lines += channelTraffic(channel, config, from, to);
    }
    sortByTime(&lines);
    return lines;
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
    if (low == noPort) {
        return outputTraffic(high, config, from, to);
    }
    const auto &channels = config.outputs[static_cast<size_t>(high)].channels;
    return channelTraffic(channels[static_cast<size_t>(low)], config, from, to);
}

} // namespace tk7sim
