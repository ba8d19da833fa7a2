#pragma once

#include "simulator/instruments/aistruth.h"
#include "simulator/router/routerclock.h"
#include "simulator/router/trafficgenerator.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QQueue>
#include <QTimer>

#include <memory>
#include <optional>

namespace tk7sim {

/*!
 * The body of the router's own sentence for \a line, a VDM, VDO or ALR sentence as it came to input
 * port \a port (0 to 11); nothing for any other line, see aisFieldsOf().
 */
std::optional<QByteArray> wrapAisLine(const QByteArray &line, int port);
/*! The bodies of the router's own sentences for \a report, if it comes through unspoilt. */
QList<QByteArray> wrapReport(const AisReport &report);

/*!
 * Copies the AIS sentences that come to the inputs to the tool, for as long as an AIS test is on,
 * and tells the position of the router's own receiver.
 *
 * Its timer runs only during a test. What the line has no room for is left out, a report as a
 * whole.
 */
class AisCopy : public QObject
{
    Q_OBJECT

public:
    static constexpr int interval = 50;     //!< milliseconds from one look to the next
    static constexpr int longestGap = 1000; //!< milliseconds that a late look makes up for
    static constexpr int maxWaiting = 2304; //!< bytes, as in MonitorFeed

    //! Both are read at every look, and outlive the copy.
    AisCopy(const RouterClock *clock, TrafficGenerator *traffic, QObject *parent = nullptr);

    //! A test begins: nothing has been told.
    void start();
    void stop();
    bool isOn() const { return m_timer.isActive(); }
    //! What this test, or the last one, has told the tool.
    const AisTruth &truth() const { return m_truth; }

    bool hasLine() const { return !m_waiting.isEmpty(); }
    //! The oldest sentence that waits, with its checksum and CR LF.
    QByteArray takeLine();
    //! Drops what waits.
    void clear();

signals:
    //! There are lines that weren't there before.
    void linesWaiting();
    //! The last sentence of \a report was taken, and those before it too.
    void reported(const tk7sim::AisReport &report);

private:
    struct Waiting
    {
        QByteArray line;
        std::shared_ptr<const AisReport> report; // which is told with this line, its last; or null
    };
    using LineIterator = QVector<TrafficLine>::const_iterator;

    void slotTick();
    void copyInput(int port, qint64 from, qint64 to);
    void copyLines(int port, LineIterator begin, LineIterator end);
    void enqueue(const QList<QByteArray> &bodies, const std::shared_ptr<const AisReport> &report);

    const RouterClock *m_clock;
    TrafficGenerator *m_traffic;
    AisTruth m_truth;
    qint64 m_copiedUpTo = 0;
    int m_firstPort = 0; // whose turn it is to be copied first
    QQueue<Waiting> m_waiting;
    int m_waitingBytes = 0;
    QTimer m_timer;
};

} // namespace tk7sim
