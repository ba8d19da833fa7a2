#pragma once

#include "simulator/router/routerclock.h"
#include "simulator/router/routerconfig.h"
#include "simulator/router/trafficgenerator.h"

#include <QByteArray>
#include <QObject>
#include <QQueue>
#include <QTimer>

namespace tk7sim {

/*!
 * Collects the traffic of the port under view as it comes, until somebody has room for it. Its
 * timer runs only while there is such a port.
 */
class MonitorFeed : public QObject
{
    Q_OBJECT

public:
    static constexpr int interval = 50;     //!< milliseconds from one look to the next
    static constexpr int longestGap = 1000; //!< milliseconds that a late look makes up for
    //! Bytes that may wait: what a line at 115200 baud carries in 200 ms. What comes beyond is
    //! left out.
    static constexpr int maxWaiting = 2304;

    //! All three are read at every look, and outlive the feed.
    MonitorFeed(const RouterClock *clock, const RouterConfig *config, TrafficGenerator *traffic,
                QObject *parent = nullptr);

    int view() const { return m_view; }
    //! Shows \a viewCode from now on, and forgets what waits; viewNothing stops.
    void setView(int viewCode);
    //! Forgets what waits, and looks anew whether there is anything to show: the rate of the
    //! traffic has changed.
    void restart();

    bool hasLine() const { return !m_waiting.isEmpty(); }
    //! The oldest line that waits, with its CR LF unless it has lost it on the way to the router.
    QByteArray takeLine();
    //! Drops what waits.
    void clear();

signals:
    //! There are lines that weren't there before.
    void linesWaiting();

private:
    void slotTick();
    void collect(qint64 from, qint64 to);

    const RouterClock *m_clock;
    const RouterConfig *m_config;
    TrafficGenerator *m_traffic;
    qint64 m_shownUpTo = 0;
    int m_view = viewNothing;
    QQueue<QByteArray> m_waiting;
    int m_waitingBytes = 0;
    QTimer m_timer;
};

} // namespace tk7sim
