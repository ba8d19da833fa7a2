#pragma once

#include <QElapsedTimer>
#include <QtGlobal>

#include <memory>

QT_BEGIN_NAMESPACE
class QTimer;
QT_END_NAMESPACE

/*! Stops a timer and deletes it later: it may be in the midst of its tick. */
struct TimerRelease
{
    void operator()(QTimer *timer) const;
};
using LinkTimer = std::unique_ptr<QTimer, TimerRelease>;

/*! A precise timer without a parent that ticks each \a interval ms, once it is started. */
LinkTimer makeLinkTimer(int interval);

/*!
 * The time that the router has for an answer: a timer that ticks at the end of each wait and so
 * begins the next.
 *
 * A tick that returns from an event loop, or from reading what has come, compares the number with
 * that from before: it is another one if the wait has been begun anew or ended meanwhile.
 */
class AnswerWait
{
public:
    /*! One wait is \a interval ms. */
    explicit AnswerWait(int interval) : m_interval(interval) { }

    /*! Makes the timer and returns it, to be connected. It isn't started yet. */
    QTimer *open();

    /*! Ends the wait and releases the timer. */
    void close();

    /*! Begins the wait anew, if the timer is there; changes the number in any case. */
    void start();

    /*! Ends the wait; the timer stays. */
    void stop();

    /*!
     * To be called at each tick of the queue. If the one before is more than half a wait ago, the
     * computer stood still and nobody was asked: the router gets its whole time once more.
     */
    void noteQueueTick();

    quint32 number() const { return m_number; }

private:
    int m_interval;
    LinkTimer m_timer;
    QElapsedTimer m_sinceQueueTick; //!< or since the beginning of the wait, if that is later
    quint32 m_number = 0;
};
