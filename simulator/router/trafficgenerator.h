#pragma once

#include "simulator/router/inputconditions.h"
#include "simulator/router/routerconfig.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QVector>

namespace tk7sim {

/*! What has become of a line on its way to an input port. */
enum class LineFlaw {
    None,
    WrongChecksum, //!< the text is whole, its checksum doesn't match
    Unprintable,   //!< a control character stands in it
    Broken,        //!< it breaks off, without a line end
    Oversize       //!< it is longer than a sentence may be
};

/*! A line on an input port, without its CR LF. */
struct TrafficLine
{
    qint64 time;     //!< milliseconds since the start of the simulation
    QByteArray text; //!< with its checksum
    LineFlaw flaw = LineFlaw::None;
};

/*!
 * The NMEA traffic on the router's ports.
 *
 * A function of time and of the conditions: what was asked for before changes nothing. Times are
 * milliseconds since the start, and a span holds the lines behind its begin and up to its end.
 */
class TrafficGenerator
{
public:
    //! \a start is the time of day at time 0, as the sentences tell it.
    explicit TrafficGenerator(const QDateTime &start);

    //! Times the usual number of lines; 0: none.
    void setRate(double rate) { m_rate = rate; }
    double rate() const { return m_rate; }
    void setConditions(const InputConditions &conditions) { m_conditions = conditions; }
    const InputConditions &conditions() const { return m_conditions; }

    //! What the instrument on \a inputPort sends, as it arrives, in the order of time.
    QVector<TrafficLine> inputTraffic(int inputPort, qint64 from, qint64 to) const;
    //! The input that \a channel listens to at \a time: its main input, or its reserve while the
    //! main input is missing; noPort if it has neither.
    int activeInput(const Channel &channel, qint64 time) const;
    //! What \a channel of \a config lets through to its output port.
    QVector<TrafficLine> channelTraffic(const Channel &channel, const RouterConfig &config,
                                        qint64 from, qint64 to) const;
    //! What all channels of \a outputPort let through, in the order of time.
    QVector<TrafficLine> outputTraffic(int outputPort, const RouterConfig &config, qint64 from,
                                       qint64 to) const;
    //! What is heard at the place that \a viewCode names, in the order of time.
    QVector<TrafficLine> viewTraffic(int viewCode, const RouterConfig &config, qint64 from,
                                     qint64 to) const;

private:
    QVector<TrafficLine> receivedBy(const Channel &channel, qint64 from, qint64 to) const;
    TrafficLine arrive(qint64 time, const QByteArray &body, quint64 number) const;

    QDateTime m_start;
    double m_rate = 1;
    InputConditions m_conditions;
};

} // namespace tk7sim
