#pragma once

#include "simulator/instruments/inputtraffic.h"
#include "simulator/router/routerconfig.h"

#include <QDateTime>
#include <QVector>

namespace tk7sim {

/*!
 * The NMEA traffic on the router's ports: what comes to the inputs, and what the channels make of
 * it. Times and spans are those of InputTraffic.
 */
class TrafficGenerator
{
public:
    //! \a start is the time of day at time 0, as the sentences tell it.
    explicit TrafficGenerator(const QDateTime &start) : m_inputs(start) { }

    InputTraffic &inputs() { return m_inputs; }
    void setRate(double rate) { m_inputs.setRate(rate); }
    double rate() const { return m_inputs.rate(); }
    void setConditions(const InputConditions &conditions) { m_inputs.setConditions(conditions); }
    const InputConditions &conditions() const { return m_inputs.conditions(); }

    //! What comes to \a inputPort, in the order of time.
    QVector<TrafficLine> inputTraffic(int inputPort, qint64 from, qint64 to)
    {
        return m_inputs.lines(inputPort, from, to);
    }
    //! The input that \a channel listens to at \a time: its main input, or its reserve while the
    //! main input is missing; noPort if it has neither.
    int activeInput(const Channel &channel, qint64 time) const;
    //! What \a channel of \a config lets through to its output port.
    QVector<TrafficLine> channelTraffic(const Channel &channel, const RouterConfig &config,
                                        qint64 from, qint64 to);
    //! What all channels of \a outputPort let through, in the order of time.
    QVector<TrafficLine> outputTraffic(int outputPort, const RouterConfig &config, qint64 from,
                                       qint64 to);
    //! What is heard at the place that \a viewCode names, in the order of time.
    QVector<TrafficLine> viewTraffic(int viewCode, const RouterConfig &config, qint64 from,
                                     qint64 to);

private:
    QVector<TrafficLine> receivedBy(const Channel &channel, qint64 from, qint64 to);

    InputTraffic m_inputs;
};

} // namespace tk7sim
