#include "timerdriver.h"

#include <QCoreApplication>
#include <QTimerEvent>

#include <algorithm>

namespace {

constexpr int second = 1000; // ms

} // namespace

TimerDriver::TimerDriver()
{
    QCoreApplication::instance()->installEventFilter(this);
}

int TimerDriver::count() const
{
    return int(std::count_if(m_timers.cbegin(), m_timers.cend(),
                             [](const QPointer<QTimer> &timer) { return bool(timer); }));
}

void TimerDriver::tick()
{
    m_isTicking = true;
    const auto timers = m_timers;
    for (const QPointer<QTimer> &timer : timers) {
        if (!timer || !timer->isActive())
            continue;
        QTimerEvent event(timer->timerId());
        QCoreApplication::sendEvent(timer, &event);
    }
    m_isTicking = false;
}

bool TimerDriver::eventFilter(QObject *watched, QEvent *event)
{
    auto *timer = event->type() == QEvent::Timer ? qobject_cast<QTimer *>(watched) : nullptr;
    if (!timer || timer->interval() != second || timer->isSingleShot() || m_isTicking)
        return false;
    if (!m_timers.contains(timer))
        m_timers.append(timer);
    return true;
}
