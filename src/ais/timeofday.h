#pragma once

#include <QTime>

#include <functional>

/*!
 * The only place where the AIS engine learns what time of day it is.
 *
 * Everything that ages (targets, the own position) keeps a time of day and nothing of the date, so
 * all of it wraps at midnight. A test puts a clock of its own here. Main thread only.
 */
class TimeOfDay
{
public:
    using Source = std::function<QTime()>;

    /*! The local time of day, in milliseconds; what QTime::currentTime() gives, for less. */
    static QTime now();

    /*!
     * Milliseconds from \a past until now(), 0 to 86399999: a time later than now counts as
     * yesterday's. \a past must be valid.
     */
    static int msecsSince(const QTime &past);

    /*! Makes now() ask \a source; an empty one brings the computer's clock back. */
    static void setSource(Source source);
};
