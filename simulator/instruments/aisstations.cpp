#include "simulator/instruments/aisstations.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr int ownReceiver = portCount; // its place in the logs
constexpr int tail = 5;                // '*', two digits, CR LF
constexpr double millisecondsPerSecond = 1000.0;

} // namespace

void AisStations::setVessels(int count)
{
    m_settings.vessels = count;
    beginAnew();
}

void AisStations::setSeed(quint32 seed)
{
    m_settings.seed = seed;
    beginAnew();
}

void AisStations::setPorts(const std::optional<QVector<int>> &ports)
{
    m_settings.ports = ports;
    beginAnew();
}

void AisStations::addReplay(const AisReplay &replay)
{
    const auto isSamePort = [&](const AisReplay &other) { return other.port() == replay.port(); };
    m_replays.erase(std::remove_if(m_replays.begin(), m_replays.end(), isSamePort),
                    m_replays.end());
    m_replays.append(replay);
    beginAnew();
}

void AisStations::setRate(double rate)
{
    m_settings.rate = rate;
    if (m_world) {
        m_world->setRate(rate);
    }
    for (AisReplay &replay : m_replays) {
        replay.setRate(rate);
    }
}

bool AisStations::isStation(int port) const
{
    const auto isAt = [port](const AisReplay &replay) { return replay.port() == port; };
    return worldPorts().contains(port) || std::any_of(m_replays.cbegin(), m_replays.cend(), isAt);
}

QVector<int> AisStations::worldPorts() const
{
    QVector<int> ports =
        m_settings.ports.value_or(AisWorldSettings::usualPorts(m_settings.vessels));
    for (const AisReplay &replay : m_replays) {
        ports.removeAll(replay.port());
    }
    return ports;
}

void AisStations::beginAnew()
{
    m_world.reset();
    for (Log &log : m_logs) {
        log.clear();
    }
}

QVector<AisStations::Said> AisStations::said(int port, qint64 from, qint64 to)
{
    if (!isPort(port)) {
        return {};
    }
    advance(from, to);
    return within(m_logs[static_cast<size_t>(port)], from, to);
}

QVector<AisStations::Said> AisStations::ownPositions(qint64 from, qint64 to)
{
    advance(from, to);
    return within(m_logs[ownReceiver], from, to);
}

QVector<AisStations::Said> AisStations::within(const Log &log, qint64 from, qint64 to)
{
    const auto isBefore = [](qint64 time, const Said &said) { return time < said.time; };
    const auto begin = std::upper_bound(log.cbegin(), log.cend(), from, isBefore);
    const auto end = std::upper_bound(begin, log.cend(), to, isBefore);
    QVector<Said> found;
    std::copy(begin, end, std::back_inserter(found));
    return found;
}

// In steps of their own, so that the same is said however the time is cut into spans.
void AisStations::advance(qint64 from, qint64 to)
{
    if (m_now + step > to) {
        return;
    }
    forget(m_now - memory);
    m_now = std::max(m_now, from / step * step);
    while (m_now + step <= to) {
        m_now += step;
        if (m_settings.rate > 0) {
            hear(m_now);
        }
    }
}

void AisStations::begin(qint64 now)
{
    AisWorldSettings settings = m_settings;
    settings.start = m_start.addMSecs(now);
    settings.shipSeconds = static_cast<double>(now) / millisecondsPerSecond;
    settings.ports = worldPorts();
    m_world = std::make_unique<AisWorld>(settings);
    m_worldStart = now;
    for (AisReplay &replay : m_replays) {
        replay.start(now);
    }
}

void AisStations::hear(qint64 now)
{
    constexpr qint64 share = mostBytes * step / 1000;
    if (!m_world) {
        begin(now - step);
    }
    m_budget = std::min(m_budget + share, share);
    while (m_budget > 0) {
        const auto report = m_world->take(now - m_worldStart);
        if (!report) {
            break;
        }
        remember(*report, now);
    }
    for (AisReplay &replay : m_replays) {
        while (const auto body = replay.take(now)) {
            append(replay.port(), now, *body, nullptr, 0);
        }
    }
}

void AisStations::remember(const AisReport &report, qint64 now)
{
    const auto shared = std::make_shared<const AisReport>(report);
    const int log = report.kind == AisReportKind::RouterPosition ? ownReceiver : report.port;
    for (int part = 0; part < report.bodies.size(); ++part) {
        m_budget -= report.bodies.at(part).size() + tail;
        append(log, now, report.bodies.at(part), shared, part);
    }
}

void AisStations::append(int port, qint64 now, const QByteArray &body,
                         const std::shared_ptr<const AisReport> &report, int part)
{
    const auto place = static_cast<size_t>(port);
    m_logs[place].push_back({now, m_numbers[place]++, body, report, part});
}

void AisStations::forget(qint64 before)
{
    for (Log &log : m_logs) {
        while (!log.empty() && log.front().time <= before) {
            log.pop_front();
        }
    }
}

} // namespace tk7sim
