#pragma once

#include "simulator/instruments/aisfleet.h"
#include "simulator/instruments/aistruth.h"
#include "simulator/instruments/alarmcycle.h"
#include "simulator/instruments/otherstations.h"

#include <QDateTime>
#include <QQueue>
#include <QVector>

#include <array>
#include <functional>
#include <optional>
#include <queue>
#include <random>
#include <tuple>
#include <vector>

namespace tk7sim {

/*! What an AIS world is made of. */
struct AisWorldSettings
{
    static constexpr int defaultVessels = 40;
    static constexpr int maxVessels = 20000;

    int vessels = defaultVessels; //!< class A vessels beside the own ship, 0 to maxVessels
    double rate = 1;              //!< times the usual number of reports of all but the own ship
    quint32 seed = 1;
    QDateTime start;        //!< UTC at time 0
    double shipSeconds = 0; //!< the time in shipAt() at time 0
    //! Input ports with an AIS station, the first two with a transponder of the own ship. Nothing:
    //! the usualPorts().
    std::optional<QVector<int>> ports;

    static constexpr int manyVessels = 100;
    //! 3, 8 and 11, or all twelve from manyVessels on.
    static QVector<int> usualPorts(int vessels);
};

/*!
 * The vessels around the own ship and what the AIS stations on the router's input ports make of
 * them.
 *
 * Time is what take() is told, so that an hour can pass at once. For the same settings and the same
 * calls the same reports come out. Reports that fall due while nobody takes them wait; each vessel
 * keeps its share of a line that is too slow for all of them.
 */
class AisWorld
{
public:
    //! Milliseconds between two calls of take() that are made up for. What falls due in a longer
    //! gap beyond that comes later.
    static constexpr qint64 longestGap = 1000;
    static constexpr int portCount = tk7sim::portCount;

    explicit AisWorld(const AisWorldSettings &settings);

    /*!
     * The next report that is due at \a now, in milliseconds since the start of the world; nothing
     * if none is. It speaks of the moment \a now. \a now never goes back. Call it until nothing
     * comes, and then again in longestGap at the latest.
     */
    std::optional<AisReport> take(qint64 now);

    //! Times the usual number of reports from now on, of all but the own ship; 0: none.
    void setRate(double rate);

    const AisWorldSettings &settings() const { return m_settings; }
    //! The input ports with AIS traffic.
    const QVector<int> &ports() const { return m_ports; }

    // The truth: what the reports taken so far have said.

    //! What \a port, 0 to 11, has heard.
    const AisPortTruth &truth(int port) const { return m_truth.port(port); }
    //! What the router's own receiver has said last.
    const std::optional<AisRouterPosition> &routerPosition() const
    {
        return m_truth.routerPosition();
    }
    quint64 reports() const { return m_truth.reports(); }

private:
    enum class Activity {
        VesselPosition,
        VesselVoyage,
        OtherStation,
        OwnPosition,
        OwnVoyage,
        RouterPosition,
        Alarm
    };

    struct Event
    {
        qint64 due;
        quint64 order; // of two that are due at once the older goes first
        Activity activity;
        int index;

        bool operator>(const Event &other) const
        {
            return std::tie(due, order) > std::tie(other.due, other.order);
        }
    };
    struct Receiver
    {
        int sequence = 0; // of the messages in several sentences
        bool isOnChannelB = false;
    };
    using Schedule = std::priority_queue<Event, std::vector<Event>, std::greater<>>;

    void scheduleVessels();
    void scheduleOwnShip();
    void schedule(Activity activity, int index, qint64 due);
    Schedule &scheduleOf(Activity activity);
    std::optional<Event> nextEvent();
    void perform(const Event &event, qint64 now);
    qint64 intervalOf(const Event &event);

    void reportVessel(FleetVessel &vessel, qint64 now);
    AisPositionReport positionOf(FleetVessel &vessel, qint64 now);
    void move(FleetVessel &vessel, qint64 now);
    AisPositionReport sailedReport(const FleetVessel &vessel, int utcSecond);
    void reportVoyage(FleetVessel &vessel, qint64 now);
    void reportOther(int index, qint64 now);
    void reportOwnPosition(int station, qint64 now);
    void reportOwnVoyage(int station, qint64 now);
    void reportRouterPosition(qint64 now);
    void reportAlarm(int index, qint64 now);

    void enqueue(AisReport report, const QByteArray &head, const AisEncoder &message);
    QDateTime timeAt(qint64 now) const { return m_settings.start.addMSecs(now); }
    //! 0 to \a count less one.
    int random(int count) { return static_cast<int>(m_random() % static_cast<quint32>(count)); }

    AisWorldSettings m_settings;
    QVector<int> m_ports;
    std::mt19937 m_random;
    QVector<FleetVessel> m_vessels;
    QVector<OtherStation> m_others;
    QVector<AlarmCycle> m_alarms;
    Schedule m_ownSchedule; // goes first, so that a full line doesn't stop the own ship
    Schedule m_schedule;
    quint64 m_scheduled = 0;
    qint64 m_now = 0;
    qint64 m_ownDueUpTo = 0; // the time in which the own ship's schedule runs
    double m_dueUpTo = 0;    // the others' time, quicker or slower by the rate
    QQueue<AisReport> m_waiting;
    std::array<Receiver, portCount> m_receivers;
    AisTruth m_truth;
};

} // namespace tk7sim
