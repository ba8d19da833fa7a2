#pragma once

#include "simulator/instruments/aisstations.h"
#include "simulator/instruments/inputconditions.h"
#include "simulator/instruments/trafficline.h"

#include <QDateTime>
#include <QVector>

#include <array>

namespace tk7sim {

/*!
 * Every sentence that comes to an input port: what the instruments there say, at their rate, and
 * what becomes of it on the way.
 *
 * Times are milliseconds since the start, and a span holds the lines behind its begin and up to its
 * end. However the time is cut into spans, the same lines come; what AIS stations have said can be
 * asked for within AisStations::memory.
 */
class InputTraffic
{
public:
    //! \a start is the time of day at time 0, as the sentences tell it.
    explicit InputTraffic(const QDateTime &start);

    //! Times the usual number of lines; 0: none. An instrument says no more than a quarter above
    //! what a line of 115200 baud carries.
    void setRate(double rate);
    double rate() const { return m_rate; }
    void setConditions(const InputConditions &conditions);
    const InputConditions &conditions() const { return m_conditions; }

    // The AIS stations. Each of these begins a new world.

    void setVessels(int count);
    void setAisSeed(quint32 seed);
    void setAisPorts(const std::optional<QVector<int>> &ports);
    void addReplay(const AisReplay &replay);
    const AisWorld *world() const { return m_stations.world(); }

    //! True if an instrument is wired to \a port.
    bool isWired(int port) const;
    //! What comes to \a port, in the order of time.
    QVector<TrafficLine> lines(int port, qint64 from, qint64 to);
    //! The positions of the router's own receiver.
    QVector<AisStations::Said> ownPositions(qint64 from, qint64 to);

private:
    struct Span
    {
        qint64 from = 0;
        qint64 to = 0;
        QVector<TrafficLine> lines;
    };

    QVector<TrafficLine> make(int port, qint64 from, qint64 to);
    void makeSentences(int port, qint64 from, qint64 to, QVector<TrafficLine> *lines) const;
    void makeReports(int port, qint64 from, qint64 to, QVector<TrafficLine> *lines);
    TrafficLine arrive(qint64 time, const QByteArray &body, quint64 number) const;
    void forgetSpans();

    QDateTime m_start;
    double m_rate = 1;
    InputConditions m_conditions;
    AisStations m_stations;
    std::array<Span, portCount> m_last; // several channels ask for the same
};

} // namespace tk7sim
