#pragma once

#include "simulator/routerconfig.h"
#include "simulator/trafficgenerator.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace tk7sim {

/*! Sends the traffic of the port under view as it comes. Its timer runs only while there is one. */
class MonitorFeed : public QObject
{
    Q_OBJECT

public:
    static constexpr int interval = 50;     //!< milliseconds from one look to the next
    static constexpr int longestGap = 1000; //!< milliseconds that a late look makes up for

    //! \a config is read at every look, and outlives the feed.
    explicit MonitorFeed(const RouterConfig *config, QObject *parent = nullptr);

    int view() const { return m_view; }
    //! Shows \a viewCode from now on; viewNothing stops.
    void setView(int viewCode);
    void setRate(double rate);

signals:
    //! A line with its CR LF.
    void lineDue(const QByteArray &line);

private:
    explicit MonitorFeed(const RouterConfig *config, const QDateTime &now, QObject *parent);

    void slotTick();
    void startOrStop();
    qint64 elapsed() const { return m_clock.elapsed() + m_offset; }

    const RouterConfig *m_config;
    TrafficGenerator m_generator;
    QElapsedTimer m_clock;
    qint64 m_offset; // milliseconds of the second in which the clock was started
    qint64 m_shownUpTo = 0;
    int m_view = viewNothing;
    QTimer m_timer;
};

} // namespace tk7sim
