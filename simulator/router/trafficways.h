#pragma once

#include "simulator/router/aiscopy.h"
#include "simulator/router/monitorfeed.h"
#include "simulator/router/portstatistics.h"
#include "simulator/router/routerclock.h"
#include "simulator/router/trafficgenerator.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>

namespace tk7sim {

/*!
 * The ways of the traffic through the router: from the instruments to its inputs, and from there by
 * the channels to the outputs, to the monitor, and, while an AIS test is on, to the tool.
 *
 * Whatever is set here is wrong at an input, or changes what comes to it, and so shows on all three
 * ways and in the counters.
 */
class TrafficWays : public QObject
{
    Q_OBJECT

public:
    //! \a config is read at every look, and outlives this.
    explicit TrafficWays(const RouterConfig *config, QObject *parent = nullptr);

    PortStatistics &statistics() { return m_statistics; }
    //! Brings the counters up to date from time to time.
    void setCounting(bool on);

    void setRate(double rate);
    //! Of what is random at the inputs, and of the vessels.
    void setSeed(quint32 seed);
    void setVessels(int count);
    void setAisPorts(const std::optional<QVector<int>> &ports);
    void addReplay(const AisReplay &replay);

    //! Per cent of the sentences of each input.
    void setErrors(double wrongChecksums, double damage);
    void setInputSilent(int port, bool silent);
    bool isInputSilent(int port) const;
    bool isAnyInputSilent() const;
    //! Milliseconds.
    void setHandover(int time);
    int handover() const { return m_conditions.handover; }
    int activeInput(const Channel &channel) const;

    void setView(int viewCode) { m_monitor.setView(viewCode); }
    void setAisTest(bool on);
    const AisTruth &aisTruth() const { return m_ais.truth(); }

    //! The next line for the tool, of the port under view and of an AIS test in turns; empty if
    //! there is none.
    QByteArray takeLine();
    //! Drops what waits.
    void clear();

signals:
    //! There are lines that weren't there before.
    void linesWaiting();
    void aisReported(const tk7sim::AisReport &report);

private:
    void applyConditions();

    RouterClock m_clock;
    TrafficGenerator m_traffic;
    InputConditions m_conditions;
    PortStatistics m_statistics;
    MonitorFeed m_monitor;
    AisCopy m_ais;
    bool m_isAisTurn = false;
    QTimer m_settleTimer;
};

} // namespace tk7sim
