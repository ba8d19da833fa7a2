#pragma once

#include "ais/timeofday.h"

#include <QTime>

/*! A clock of the test's own, for as long as it lives. It moves when it is told to. */
class FakeClock
{
public:
    explicit FakeClock(const QTime &start = QTime(12, 0)) : m_now(start)
    {
        TimeOfDay::setSource([this] { return m_now; });
    }

    ~FakeClock() { TimeOfDay::setSource({}); }

    Q_DISABLE_COPY(FakeClock)

    QTime now() const { return m_now; }
    void set(const QTime &time) { m_now = time; }
    void advance(int seconds) { m_now = m_now.addSecs(seconds); }
    void advanceMsecs(int msecs) { m_now = m_now.addMSecs(msecs); }

private:
    QTime m_now;
};
