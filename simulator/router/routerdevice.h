#pragma once

#include "simulator/line/cable.h"
#include "simulator/line/lineassembler.h"
#include "simulator/line/linenoise.h"
#include "simulator/line/linepacer.h"
#include "simulator/router/faultset.h"
#include "simulator/router/linerecord.h"
#include "simulator/router/routercore.h"
#include "simulator/router/trafficways.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>

#include <array>

namespace tk7sim {

/*!
 * The router's mind, its traffic and its line to the tool, put together, with all that can be wrong
 * with them. RouterSimulator is the way to use it.
 */
class RouterDevice : public QObject
{
    Q_OBJECT

public:
    explicit RouterDevice(QObject *parent = nullptr);

    Cable &cable() { return m_cable; }
    RouterCore &core() { return m_core; }
    TrafficWays &ways() { return m_ways; }
    LineRecord &transcript() { return m_transcript; }
    LineRecord &overheard() { return m_overheard; }

    //! Stops what waits for the cable, and takes it away.
    void close();
    //! Pulls the cable out; the fault Replug puts it back.
    void pullOut();

    void setSeed(quint32 seed);

    void setFault(Fault fault, double value);
    void clearFault(Fault fault);
    bool hasFault(Fault fault) const { return m_faults.has(fault); }
    void setInputSilent(int port, bool silent);

    Counters counters() const;
    void resetCounters();

    //! Queues \a answer, as the router's faults make it.
    void answer(const Answer &answer);
    //! Queues \a line as it is; with \a thenSpeed other than 0 the line moves to that speed behind
    //! it.
    void send(const QByteArray &line, bool isBulk = false, int thenSpeed = 0);

signals:
    //! A line from the tool, before the router acts on it.
    void lineReceived(const QByteArray &line);
    //! A line from the router, when it enters the queue.
    void lineSent(const QByteArray &line);

private:
    // A fault that comes some time after a connection.
    struct LateFault
    {
        Fault fault;
        QTimer *timer;
    };

    void connectLine();
    void connectCore();
    void connectFaults();
    void hear(const QByteArray &bytes, int lineSpeed);
    void hearLine(const QByteArray &line, int lineSpeed);
    int delayOf(bool isBulk);
    void pumpTraffic();
    void sendTraffic(const QByteArray &line);
    void carry(const QByteArray &bytes);
    std::array<LateFault, 3> lateFaults();
    void startTimer(Fault fault, QTimer *timer);
    void fallSilent();
    bool isDead() const;

    FaultSet m_faults;
    Cable m_cable;
    LinePacer m_pacer;
    LineAssembler m_assembler;
    LineNoise m_noise;
    RouterCore m_core;
    TrafficWays m_ways;
    bool m_isSilenced = false;
    qint64 m_lastDue = 0; // microseconds: when the youngest answer of a slow router may go out
    QTimer m_silentTimer;
    QTimer m_busyTimer;
    QTimer m_unplugTimer;
    QTimer m_replugTimer;
    LineRecord m_transcript;
    LineRecord m_overheard;
    quint64 m_garbageBytes = 0;
    quint64 m_lostBytes = 0;
};

} // namespace tk7sim
