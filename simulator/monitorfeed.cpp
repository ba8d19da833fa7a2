#include "simulator/monitorfeed.h"

#include <algorithm>

namespace tk7sim {

MonitorFeed::MonitorFeed(const RouterConfig *config, QObject *parent)
    : QObject(parent), m_config(config), m_generator(QDateTime::currentDateTimeUtc()), m_timer(this)
{
    m_clock.start();
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &MonitorFeed::slotTick);
}

void MonitorFeed::setView(int viewCode)
{
    m_view = viewCode;
    startOrStop();
}

void MonitorFeed::setRate(double rate)
{
    m_generator.setRate(rate);
    startOrStop();
}

void MonitorFeed::startOrStop()
{
    m_shownUpTo = elapsed();
    if (m_view == viewNothing || m_generator.rate() <= 0) {
        m_timer.stop();
    } else if (!m_timer.isActive()) {
        m_timer.start();
    }
}

void MonitorFeed::slotTick()
{
    const qint64 now = elapsed();
    const qint64 from = std::max(m_shownUpTo, now - longestGap);
    m_shownUpTo = now;
    const auto lines = m_generator.viewTraffic(m_view, *m_config, from, now);
    for (const TrafficLine &line : lines) {
        emit lineDue(line.text + "\r\n");
    }
}

} // namespace tk7sim
