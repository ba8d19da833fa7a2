#pragma once

#include <QObject>
#include <QTimer>

#include <atomic>
#include <deque>
#include <limits>
#include <thread>

/*!
 * Measures how long the tool's event loop leaves its events unserved.
 *
 * A timer of the tool's thread beats every few milliseconds, in the event loops of dialogs as well.
 * The time between two beats is the tool's pause, less what isn't the tool's doing:
 *
 * - the time for which the thread stood ready and got no processor, as the system counts it;
 * - the delay, in the same span, of threads that only sleep and wake, one on each processor: what
 *   keeps those from their time is the machine;
 * - the time for which the campaign itself was at work in this thread, between beginWork() and
 *   endWork().
 *
 * A thread that computes gets no such rebate, nor one that waits for anything outside its event
 * loop.
 */
class Heartbeat : public QObject
{
    Q_OBJECT

public:
    explicit Heartbeat(QObject *parent = nullptr);
    ~Heartbeat() override;

    /*! Milliseconds of the longest pause since the last call. */
    double takeLongestPause();
    /*! Milliseconds of all stalls of the machine that were not counted as pauses. */
    double stalls() const { return m_stalls; }

    void beginWork();
    void endWork();

    /*! Ends the process behind \a onHang if the thread hasn't beaten for \a seconds. */
    void setHangLimit(int seconds, void (*onHang)());

private:
    /*! A thread that only sleeps and wakes on one processor. */
    struct Sleeper
    {
        std::atomic<double> late{0}; //!< seconds in all, until it woke last
        /*! When it is to wake, less that. */
        std::atomic<double> due{std::numeric_limits<double>::infinity()};
        double lateAtLast = 0; //!< when the tool's thread last beat
        std::thread thread;
    };

    /*! What the system tells of the tool's thread since its start, in seconds. */
    struct Account
    {
        double running = 0; //!< on a processor
        double waiting = 0; //!< ready, and without one
    };

    void beat();
    void restart();
    void sleepOn(int processor, Sleeper &sleeper);
    void checkHang();
    /*! Until now, also of one that hasn't woken yet. */
    static double delayOf(const Sleeper &sleeper);
    double longestDelay() const;
    Account readAccount() const;
    static double now();

    QTimer m_timer;
    double m_last = 0;    // seconds
    Account m_account;    // at the last beat
    double m_longest = 0; // milliseconds
    double m_stalls = 0;  // milliseconds
    int m_schedule = -1;  // where the system tells of this thread
    std::deque<Sleeper> m_sleepers;
    std::atomic<double> m_alive{0};
    std::atomic<bool> m_isOver{false};
    std::atomic<int> m_hangLimit{0};
    std::atomic<void (*)()> m_onHang{nullptr};
};
