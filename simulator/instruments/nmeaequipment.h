#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QVector>

namespace tk7sim {

/*! The moment for which an instrument makes a sentence. */
struct Moment
{
    QDateTime utc;
    double seconds; //!< since the start of the simulation
    qint64 count;   //!< how often the instrument has made this sentence before
};

/*! A sentence that an instrument makes over and over. */
struct ScheduledSentence
{
    int period; //!< milliseconds from one to the next
    int phase;  //!< milliseconds from the start to the first
    //! The bodies, from '$' or '!' on, without checksum: one, or the parts of a long message.
    QList<QByteArray> (*build)(const Moment &moment);
};

/*!
 * What the instrument wired to input port \a port makes; empty where nothing is wired, or only an
 * AIS station.
 */
const QVector<ScheduledSentence> &equipmentAt(int port);

} // namespace tk7sim
