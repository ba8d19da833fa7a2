#pragma once

#include "simulator/routerconfig.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QVector>

namespace tk7sim {

/*! A line on an input port, without its CR LF. */
struct TrafficLine
{
    qint64 time;     //!< milliseconds since the start of the simulation
    QByteArray text; //!< with its checksum
};

/*!
 * The NMEA traffic on the router's ports.
 *
 * A pure function of time: what was asked for before changes nothing. Times are milliseconds since
 * the start, and a span holds the lines behind its begin and up to its end.
 */
class TrafficGenerator
{
public:
    //! \a start is the time of day at time 0, as the sentences tell it.
    explicit TrafficGenerator(const QDateTime &start);

    //! Times the usual number of lines; 0: none.
    void setRate(double rate) { m_rate = rate; }
    double rate() const { return m_rate; }

    //! What the instrument on \a inputPort sends, in the order of time.
    QVector<TrafficLine> inputTraffic(int inputPort, qint64 from, qint64 to) const;
    //! What \a channel lets through to its output port.
    QVector<TrafficLine> channelTraffic(const Channel &channel, qint64 from, qint64 to) const;
    //! What is heard at the place that \a viewCode names, in the order of time.
    QVector<TrafficLine> viewTraffic(int viewCode, const RouterConfig &config, qint64 from,
                                     qint64 to) const;

private:
    QDateTime m_start;
    double m_rate = 1;
};

} // namespace tk7sim
