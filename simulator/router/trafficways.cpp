#include "simulator/router/trafficways.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr int settleInterval = 1000; // milliseconds, within what the AIS stations remember

} // namespace

TrafficWays::TrafficWays(const RouterConfig *config, QObject *parent)
    : QObject(parent), m_traffic(m_clock.start()), m_statistics(&m_clock, *config, &m_traffic),
      m_monitor(&m_clock, config, &m_traffic, this), m_ais(&m_clock, &m_traffic, this),
      m_settleTimer(this)
{
    m_settleTimer.setInterval(settleInterval);
    connect(&m_settleTimer, &QTimer::timeout, this, [this] { m_statistics.settle(); });
    connect(&m_monitor, &MonitorFeed::linesWaiting, this, &TrafficWays::linesWaiting);
    connect(&m_ais, &AisCopy::linesWaiting, this, &TrafficWays::linesWaiting);
    connect(&m_ais, &AisCopy::reported, this, &TrafficWays::aisReported);
}

void TrafficWays::setCounting(bool on)
{
    if (on) {
        m_settleTimer.start();
    } else {
        m_settleTimer.stop();
    }
}

void TrafficWays::setRate(double rate)
{
    m_statistics.settle();
    m_traffic.setRate(rate);
    m_monitor.restart();
}

void TrafficWays::setSeed(quint32 seed)
{
    m_conditions.seed = seed;
    applyConditions();
    m_traffic.inputs().setAisSeed(seed);
}

void TrafficWays::setVessels(int count)
{
    m_statistics.settle();
    m_traffic.inputs().setVessels(count);
}

void TrafficWays::setAisPorts(const std::optional<QVector<int>> &ports)
{
    m_statistics.settle();
    m_traffic.inputs().setAisPorts(ports);
}

void TrafficWays::addReplay(const AisReplay &replay)
{
    m_statistics.settle();
    m_traffic.inputs().addReplay(replay);
}

void TrafficWays::setErrors(double wrongChecksums, double damage)
{
    m_conditions.wrongChecksums = wrongChecksums;
    m_conditions.damage = damage;
    applyConditions();
}

void TrafficWays::setInputSilent(int port, bool silent)
{
    InputSilence &silence = m_conditions.silences[static_cast<size_t>(port)];
    if (silent) {
        silence = {m_clock.now(), InputSilence::never};
    } else {
        silence.until = m_clock.now();
    }
    applyConditions();
}

bool TrafficWays::isInputSilent(int port) const
{
    return m_conditions.silences[static_cast<size_t>(port)].covers(m_clock.now());
}

bool TrafficWays::isAnyInputSilent() const
{
    const qint64 now = m_clock.now();
    return std::any_of(m_conditions.silences.cbegin(), m_conditions.silences.cend(),
                       [now](const InputSilence &silence) { return silence.covers(now); });
}

void TrafficWays::setHandover(int time)
{
    m_conditions.handover = time;
    applyConditions();
}

void TrafficWays::applyConditions()
{
    m_statistics.settle();
    m_traffic.setConditions(m_conditions);
}

int TrafficWays::activeInput(const Channel &channel) const
{
    return m_traffic.activeInput(channel, m_clock.now());
}

void TrafficWays::setAisTest(bool on)
{
    if (on) {
        m_ais.start();
    } else {
        m_ais.stop();
    }
}

QByteArray TrafficWays::takeLine()
{
    m_isAisTurn = !m_isAisTurn;
    if (m_ais.hasLine() && (m_isAisTurn || !m_monitor.hasLine())) {
        return m_ais.takeLine();
    }
    return m_monitor.hasLine() ? m_monitor.takeLine() : QByteArray();
}

void TrafficWays::clear()
{
    m_monitor.clear();
    m_ais.clear();
}

} // namespace tk7sim
