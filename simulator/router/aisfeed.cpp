#include "simulator/router/aisfeed.h"

#include "simulator/line/sentence.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr double millisecondsPerSecond = 1000.0;

} // namespace

AisFeed::AisFeed(const RouterClock *clock, QObject *parent)
    : QObject(parent), m_clock(clock), m_timer(this)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &AisFeed::linesWaiting);
}

void AisFeed::addReplay(const AisReplay &replay)
{
    const auto isSamePort = [&](const AisReplay &other) { return other.port() == replay.port(); };
    m_replays.erase(std::remove_if(m_replays.begin(), m_replays.end(), isSamePort),
                    m_replays.end());
    m_replays.append(replay);
}

void AisFeed::start()
{
    m_startTime = m_clock->now();
    AisWorldSettings settings = m_settings;
    settings.start = m_clock->start().addMSecs(m_startTime);
    settings.shipSeconds = static_cast<double>(m_startTime) / millisecondsPerSecond;
    QVector<int> ports = settings.ports.value_or(AisWorldSettings::usualPorts(settings.vessels));
    for (const AisReplay &replay : qAsConst(m_replays)) {
        ports.removeAll(replay.port());
    }
    settings.ports = ports;
    m_world = std::make_unique<AisWorld>(settings);
    m_bodies.clear();
    m_turn = 0;
    for (AisReplay &replay : m_replays) {
        replay.setRate(m_settings.rate);
        replay.start(0);
    }
    m_timer.start();
}

void AisFeed::stop()
{
    m_timer.stop();
    m_bodies.clear();
}

QByteArray AisFeed::takeLine()
{
    if (!isOn()) {
        return QByteArray();
    }
    if (m_bodies.isEmpty()) {
        const qint64 now = m_clock->now() - m_startTime;
        // In turns, so that a full line has room for all.
        const int sources = m_replays.size() + 1;
        for (int tried = 0; tried < sources && m_bodies.isEmpty(); ++tried) {
            m_turn = (m_turn + 1) % sources;
            if (m_turn == 0) {
                takeReport(now);
            } else {
                takeReplayed(&m_replays[m_turn - 1], now);
            }
        }
    }
    return m_bodies.isEmpty() ? QByteArray() : withChecksum(m_bodies.dequeue());
}

void AisFeed::takeReport(qint64 now)
{
    const auto report = m_world->take(now);
    if (!report) {
        return;
    }
    m_bodies.append(report->bodies);
    emit reported(*report);
}

void AisFeed::takeReplayed(AisReplay *replay, qint64 now)
{
    if (m_settings.rate <= 0) {
        return;
    }
    const auto body = replay->take(now);
    if (body) {
        m_bodies.enqueue(*body);
    }
}

} // namespace tk7sim
