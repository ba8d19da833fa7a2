#pragma once

#include <QByteArray>
#include <QList>

namespace tk7sim {

/*! Bytes that came from the tool, and when. */
struct ReceivedLine
{
    QByteArray line;     //!< from its '$' to its LF, both included
    qint64 microseconds; //!< of the steady clock, see RouterSimulator::now()
    int lineSpeed;       //!< baud to which the terminal was set
};

/*! What went wrong on the line, counted since the start or the last resetCounters(). */
struct Counters
{
    quint64 garbageBytes = 0;     //!< heard at another speed than the router's
    quint64 checksumErrors = 0;   //!< checked sentences with a wrong checksum, ignored
    quint64 refusedSentences = 0; //!< understood, but with a number or a text out of range, ignored
    quint64 unknownSentences = 0; //!< not in the router's table, or before a connection, ignored
    quint64 lostBytes = 0;        //!< sent while nobody read
};

/*! The steady clock of a LineRecord, in microseconds. */
qint64 steadyMicroseconds();

/*! What came over the line, and when. */
class LineRecord
{
public:
    static constexpr int maxEntries = 10000; //!< older ones are dropped

    void append(const QByteArray &line, int lineSpeed);
    void clear() { m_lines.clear(); }
    const QList<ReceivedLine> &lines() const { return m_lines; }

private:
    QList<ReceivedLine> m_lines;
};

} // namespace tk7sim
