#pragma once

#include "simulator/router/routersimulator.h"

#include <QByteArray>
#include <QList>

/*!
 * Checks what the router hears from the tool: every line, in its order, each once.
 *
 * The tool's questions for a sign of life come when it likes and are left out, and so are others
 * of that kind that it is told to ignore.
 */
class Listener
{
public:
    explicit Listener(const tk7sim::RouterSimulator &router) : m_router(router) { }

    //! Leaves out lines that begin with \a beginning, from now on.
    void ignore(const QByteArray &beginning) { m_ignored += beginning; }
    //! Skips what was heard until now.
    void forget() { m_checked = int(m_router.transcript().size()); }

    //! The lines heard since the last expectation was met.
    QList<tk7sim::ReceivedLine> heard() const;
    /*!
     * Waits until the lines heard since then are \a lines, no more and no fewer, and returns them
     * as they came. A line of \a lines without LF is the beginning of one.
     */
    QList<tk7sim::ReceivedLine> expect(const QList<QByteArray> &lines, int milliseconds);
    //! Ends the tour if anything at all was heard since then.
    void expectNothing() const;
    //! The last lines, checked, left out or not: one a line, with its time.
    QString last() const;

private:
    const tk7sim::RouterSimulator &m_router;
    QList<QByteArray> m_ignored{"$VRCNC\r\n"};
    int m_checked = 0; // entries of the transcript
};
