#include "ais/timeofday.h"

#include <QDateTime>

#include <utility>

namespace {

constexpr qint64 msecsPerSecond = 1000;
constexpr int msecsPerDay = 86400000;

TimeOfDay::Source &source()
{
    static TimeOfDay::Source replaced;
    return replaced;
}

// Turning a time into local time costs more than decoding a message. The time zone is asked once
// for each second; the milliseconds come from the clock each time.
QTime systemTime()
{
    static qint64 knownSecond = -1;
    static int startOfSecond = 0;

    const qint64 msecs = QDateTime::currentMSecsSinceEpoch();
    const qint64 second = msecs / msecsPerSecond;
    if (second != knownSecond) {
        const QTime time = QDateTime::fromMSecsSinceEpoch(second * msecsPerSecond).time();
        startOfSecond = time.msecsSinceStartOfDay();
        knownSecond = second;
    }
    return QTime::fromMSecsSinceStartOfDay(startOfSecond + int(msecs % msecsPerSecond));
}

} // namespace

QTime TimeOfDay::now()
{
    return source() ? source()() : systemTime();
}

int TimeOfDay::msecsSince(const QTime &past)
{
    const int msecs = past.msecsTo(now());
    return msecs < 0 ? msecs + msecsPerDay : msecs;
}

void TimeOfDay::setSource(Source replacement)
{
    source() = std::move(replacement);
}
