#include "simulator/router/monitorfeed.h"

#include <algorithm>

namespace tk7sim {

namespace {

// Of the time to make up for, made into lines at once. At a high rate a short step is enough to
// fill the line.
constexpr qint64 step = 5; // milliseconds

} // namespace

MonitorFeed::MonitorFeed(const RouterClock *clock, const RouterConfig *config,
                         TrafficGenerator *traffic, QObject *parent)
    : QObject(parent), m_clock(clock), m_config(config), m_traffic(traffic), m_timer(this)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &MonitorFeed::slotTick);
}

void MonitorFeed::setView(int viewCode)
{
    m_view = viewCode;
    restart();
}

QByteArray MonitorFeed::takeLine()
{
    QByteArray line = m_waiting.dequeue();
    m_waitingBytes -= int(line.size());
    return line;
}

void MonitorFeed::clear()
{
    m_waiting.clear();
    m_waitingBytes = 0;
}

void MonitorFeed::restart()
{
    clear();
    m_shownUpTo = m_clock->now();
    if (m_view == viewNothing || m_traffic->rate() <= 0) {
        m_timer.stop();
    } else if (!m_timer.isActive()) {
        m_timer.start();
    }
}

void MonitorFeed::slotTick()
{
    const qint64 now = m_clock->now();
    qint64 from = std::max(m_shownUpTo, now - longestGap);
    m_shownUpTo = now;
    while (from < now && m_waitingBytes < maxWaiting) {
        const qint64 to = std::min(from + step, now);
        collect(from, to);
        from = to;
    }
    if (hasLine()) {
        emit linesWaiting();
    }
}

void MonitorFeed::collect(qint64 from, qint64 to)
{
    const auto lines = m_traffic->viewTraffic(m_view, *m_config, from, to);
    for (const TrafficLine &line : lines) {
        const QByteArray text = line.flaw == LineFlaw::Broken ? line.text : line.text + "\r\n";
        if (m_waitingBytes + text.size() > maxWaiting) {
            return;
        }
        m_waiting.enqueue(text);
        m_waitingBytes += int(text.size());
    }
}

} // namespace tk7sim
