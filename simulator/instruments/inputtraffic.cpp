#include "simulator/instruments/inputtraffic.h"

#include "simulator/instruments/nmeaequipment.h"
#include "simulator/line/sentence.h"

#include <algorithm>
#include <cmath>

namespace tk7sim {

namespace {

constexpr double millisecondsPerSecond = 1000.0;
constexpr double mostBytes = 14400; // a second, of one instrument
constexpr int lineEnd = 2;          // CR LF
constexpr double all = 100.0;       // per cent
constexpr char controlCharacter = '\x15';
constexpr int oversizeLength = 100; // a sentence may have 82 characters
constexpr quint64 nextSentence = 1ULL << 48U;
constexpr quint64 reports = 255; // the sentences of an AIS station, of which there are no kinds

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

quint64 firstNumber(int port)
{
    return static_cast<quint64>(port) << 56U;
}

// Bytes a second that the instrument at \a port usually says.
double usualBytes(int port)
{
    const Moment moment{QDateTime::fromMSecsSinceEpoch(0, Qt::UTC), 0, 0};
    double bytes = 0;
    for (const ScheduledSentence &sentence : equipmentAt(port)) {
        for (const QByteArray &body : sentence.build(moment)) {
            bytes += double(withChecksum(body).size()) * millisecondsPerSecond / sentence.period;
        }
    }
    return bytes;
}

// The greatest rate for the instrument at \a port.
double mostRate(int port)
{
    static const std::array<double, portCount> rates = [] {
        std::array<double, portCount> most{};
        for (int i = 0; i < portCount; ++i) {
            most[static_cast<size_t>(i)] = mostBytes / std::max(usualBytes(i), 1.0);
        }
        return most;
    }();
    return rates[static_cast<size_t>(port)];
}

} // namespace

InputTraffic::InputTraffic(const QDateTime &start) : m_start(start.toUTC()), m_stations(start) { }

void InputTraffic::setRate(double rate)
{
    m_rate = rate;
    m_stations.setRate(rate);
    forgetSpans();
}

void InputTraffic::setConditions(const InputConditions &conditions)
{
    m_conditions = conditions;
    forgetSpans();
}

void InputTraffic::setVessels(int count)
{
    m_stations.setVessels(count);
    forgetSpans();
}

void InputTraffic::setAisSeed(quint32 seed)
{
    m_stations.setSeed(seed);
    forgetSpans();
}

void InputTraffic::setAisPorts(const std::optional<QVector<int>> &ports)
{
    m_stations.setPorts(ports);
    forgetSpans();
}

void InputTraffic::addReplay(const AisReplay &replay)
{
    m_stations.addReplay(replay);
    m_stations.setRate(m_rate);
    forgetSpans();
}

void InputTraffic::forgetSpans()
{
    m_last.fill({});
}

bool InputTraffic::isWired(int port) const
{
    return !equipmentAt(port).isEmpty() || m_stations.isStation(port);
}

QVector<TrafficLine> InputTraffic::lines(int port, qint64 from, qint64 to)
{
    if (m_rate <= 0 || !isPort(port)) {
        return {};
    }
    Span &last = m_last[static_cast<size_t>(port)];
    if (last.from != from || last.to != to) {
        last = {from, to, make(port, from, to)};
    }
    return last.lines;
}

QVector<AisStations::Said> InputTraffic::ownPositions(qint64 from, qint64 to)
{
    return m_stations.ownPositions(from, to);
}

QVector<TrafficLine> InputTraffic::make(int port, qint64 from, qint64 to)
{
    QVector<TrafficLine> lines;
    makeSentences(port, from, to, &lines);
    makeReports(port, from, to, &lines);
    const InputSilence silence = m_conditions.silences[static_cast<size_t>(port)];
    const auto isLost = [&](const TrafficLine &line) { return silence.covers(line.time); };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isLost), lines.end());
    sortByTime(&lines);
    return lines;
}

void InputTraffic::makeSentences(int port, qint64 from, qint64 to,
                                 QVector<TrafficLine> *lines) const
{
    const double rate = std::min(m_rate, mostRate(port));
    quint64 source = firstNumber(port);
    for (const ScheduledSentence &sentence : equipmentAt(port)) {
        source += nextSentence;
        // The instruments keep their order and their gaps at any rate.
        const auto countUpTo = [&](qint64 time) {
            const double passed = static_cast<double>(time) * rate - sentence.phase;
            return std::max<qint64>(static_cast<qint64>(std::floor(passed / sentence.period)) + 1,
                                    0);
        };
        const qint64 end = countUpTo(to);
        for (qint64 count = countUpTo(from); count < end; ++count) {
            const auto scheduled = static_cast<double>(sentence.phase + count * sentence.period);
            const auto time = static_cast<qint64>(std::floor(scheduled / rate));
            const Moment moment{m_start.addMSecs(time),
                                static_cast<double>(time) / millisecondsPerSecond, count};
            auto number = source + static_cast<quint64>(count) * 2;
            for (const QByteArray &body : sentence.build(moment)) {
                lines->append(arrive(time, body, number++));
            }
        }
    }
}

void InputTraffic::makeReports(int port, qint64 from, qint64 to, QVector<TrafficLine> *lines)
{
    const quint64 source = firstNumber(port) + reports * nextSentence;
    for (const AisStations::Said &said : m_stations.said(port, from, to)) {
        TrafficLine line = arrive(said.time, said.body, source + said.number);
        line.report = said.report;
        line.part = said.part;
        lines->append(line);
    }
}

// A line that is damaged can't be hit a second time.
TrafficLine InputTraffic::arrive(qint64 time, const QByteArray &body, quint64 number) const
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

} // namespace tk7sim
