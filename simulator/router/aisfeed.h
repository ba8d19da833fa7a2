#pragma once

#include "simulator/instruments/aisreplay.h"
#include "simulator/instruments/aisworld.h"
#include "simulator/router/routerclock.h"

#include <QByteArray>
#include <QObject>
#include <QQueue>
#include <QTimer>
#include <QVector>

#include <memory>
#include <optional>

namespace tk7sim {

/*!
 * The traffic of an AIS test as it comes: the world's reports, and the files that are replayed. Its
 * timer runs only during a test. What nobody has room for waits with its vessel, not here.
 */
class AisFeed : public QObject
{
    Q_OBJECT

public:
    static constexpr int interval = 50; //!< milliseconds from one look to the next

    //! \a clock is read at every look, and outlives the feed.
    explicit AisFeed(const RouterClock *clock, QObject *parent = nullptr);

    // Of the next test

    void setVessels(int count) { m_settings.vessels = count; }
    void setRate(double rate) { m_settings.rate = rate; }
    void setSeed(quint32 seed) { m_settings.seed = seed; }
    void setPorts(const std::optional<QVector<int>> &ports) { m_settings.ports = ports; }
    //! Replays on its port from the next test on, in the place of an earlier one there; that port
    //! hears nothing of the world.
    void addReplay(const AisReplay &replay);

    //! A new world begins.
    void start();
    //! The world stands still, so that it can still be asked.
    void stop();
    bool isOn() const { return m_timer.isActive(); }
    //! The world of this test, or of the last one; null before the first.
    const AisWorld *world() const { return m_world.get(); }

    //! The next sentence with its checksum and CR LF; empty if none is due or no test is on.
    QByteArray takeLine();

signals:
    //! There may be something to take.
    void linesWaiting();
    //! \a report goes out: its first sentence is about to be taken.
    void reported(const tk7sim::AisReport &report);

private:
    void takeReport(qint64 now);
    void takeReplayed(AisReplay *replay, qint64 now);

    const RouterClock *m_clock;
    AisWorldSettings m_settings;
    QVector<AisReplay> m_replays;
    std::unique_ptr<AisWorld> m_world;
    qint64 m_startTime = 0;
    QQueue<QByteArray> m_bodies; // of the report that is going out
    int m_turn = 0; // whose line comes next: a replay's, or behind the last the world's
    QTimer m_timer;
};

} // namespace tk7sim
