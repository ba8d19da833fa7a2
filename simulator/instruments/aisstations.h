#pragma once

#include "simulator/instruments/aisreplay.h"
#include "simulator/instruments/aisworld.h"
#include "simulator/instruments/ports.h"

#include <QByteArray>
#include <QDateTime>
#include <QVector>

#include <array>
#include <deque>
#include <memory>
#include <optional>

namespace tk7sim {

/*!
 * The AIS stations at the input ports: each hears its share of one world, or repeats a file.
 *
 * The world begins when somebody listens for the first time, and runs on from there; while nobody
 * listens it stands still, though its vessels sail on. Times are milliseconds since the start of
 * the simulation.
 */
class AisStations
{
public:
    static constexpr qint64 step = 5; //!< milliseconds from one moment of the world to the next
    //! Bytes a second that all vessels together say at most: a line of 115200 baud. Beyond that
    //! each keeps its share and says less.
    static constexpr qint64 mostBytes = 11520;
    //! Milliseconds for which a sentence can be asked for again, at least.
    static constexpr qint64 memory = 5000;

    //! What a station has said: a sentence, or a part of a longer one.
    struct Said
    {
        qint64 time;
        quint64 number;                          // of the sentences of its port
        QByteArray body;                         // without checksum
        std::shared_ptr<const AisReport> report; // null: repeated from a file
        int part;
    };

    //! \a start is the time of day at time 0.
    explicit AisStations(const QDateTime &start) : m_start(start.toUTC()) { }

    // Each of these but the rate begins a new world.

    void setVessels(int count);
    void setSeed(quint32 seed);
    //! Nothing: as many ports as the vessels need.
    void setPorts(const std::optional<QVector<int>> &ports);
    //! Repeats on its port, in the place of an earlier one there; that port hears nothing of the
    //! world.
    void addReplay(const AisReplay &replay);
    //! Times the usual number of sentences; 0: no station says anything.
    void setRate(double rate);

    bool isStation(int port) const;
    //! What the station at \a port, 0 to 11, has said behind \a from and up to \a to.
    QVector<Said> said(int port, qint64 from, qint64 to);
    //! The positions of the router's own receiver in the same span. It is no station and has no
    //! port.
    QVector<Said> ownPositions(qint64 from, qint64 to);
    //! Null before anybody has listened.
    const AisWorld *world() const { return m_world.get(); }

private:
    using Log = std::deque<Said>;

    QVector<int> worldPorts() const;
    void beginAnew();
    void advance(qint64 from, qint64 to);
    void begin(qint64 now);
    void hear(qint64 now);
    void remember(const AisReport &report, qint64 now);
    void append(int port, qint64 now, const QByteArray &body,
                const std::shared_ptr<const AisReport> &report, int part);
    void forget(qint64 before);
    static QVector<Said> within(const Log &log, qint64 from, qint64 to);

    QDateTime m_start;
    AisWorldSettings m_settings;
    QVector<AisReplay> m_replays;
    std::unique_ptr<AisWorld> m_world;
    qint64 m_worldStart = 0;
    qint64 m_now = 0;                      // up to which all has been said
    qint64 m_budget = 0;                   // bytes
    std::array<Log, portCount + 1> m_logs; // the last is the own receiver's
    std::array<quint64, portCount + 1> m_numbers{};
};

} // namespace tk7sim
