#pragma once

#include "simulator/router/routersimulator.h"

#include <QByteArray>
#include <QList>
#include <QObject>

/*!
 * What the router gives the tool's monitor to show: the sentences of the port under view, in their
 * order, and the beginning of the tool's own line where it turned to another port.
 */
class Traffic : public QObject
{
    Q_OBJECT

public:
    explicit Traffic(tk7sim::RouterSimulator *router);

    //! The lines since the last restart().
    const QList<QByteArray> &lines() const { return m_lines; }
    void restart() { m_lines.clear(); }

    //! The talker and the name of the sentence \a line, with the character before them: "$GPRMC".
    static QByteArray headOf(const QByteArray &line);
    //! True if \a line ends with the checksum of what stands before it.
    static bool hasRightChecksum(const QByteArray &line);

private:
    void slotLineSent(const QByteArray &line);

    QList<QByteArray> m_lines;
};
