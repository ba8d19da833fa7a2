#pragma once

#include <QDateTime>
#include <QElapsedTimer>

namespace tk7sim {

/*! The time in which the simulated ship lives: milliseconds since the router was switched on. */
class RouterClock
{
public:
    RouterClock() : m_start(QDateTime::currentDateTimeUtc()) { m_clock.start(); }

    //! The time of day at time 0.
    QDateTime start() const { return m_start; }
    qint64 now() const { return (m_clock.isValid() ? m_clock.elapsed() : 0) + m_skipped; }
    //! From now on no time passes but by skip().
    void hold()
    {
        m_skipped = now();
        m_clock.invalidate();
    }
    //! Lets \a milliseconds pass at once.
    void skip(qint64 milliseconds) { m_skipped += milliseconds; }

private:
    QDateTime m_start;
    QElapsedTimer m_clock;
    qint64 m_skipped = 0;
};

} // namespace tk7sim
