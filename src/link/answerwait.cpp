#include "link/answerwait.h"

#include <QTimer>

void TimerRelease::operator()(QTimer *timer) const
{
    timer->stop();
    timer->disconnect();
    timer->deleteLater();
}

LinkTimer makeLinkTimer(int interval)
{
    LinkTimer timer(new QTimer);
    timer->setTimerType(Qt::PreciseTimer);
    timer->setInterval(interval);
    return timer;
}

QTimer *AnswerWait::open()
{
    m_timer = makeLinkTimer(m_interval);
    return m_timer.get();
}

void AnswerWait::close()
{
    ++m_number;
    m_timer.reset();
}

void AnswerWait::start()
{
    ++m_number;
    m_sinceQueueTick.start();
    if (m_timer)
        m_timer->start();
}

void AnswerWait::stop()
{
    ++m_number;
    if (m_timer)
        m_timer->stop();
}

void AnswerWait::noteQueueTick()
{
    if (!m_timer || !m_timer->isActive())
        return;
    if (m_sinceQueueTick.restart() > m_interval / 2)
        start();
}
