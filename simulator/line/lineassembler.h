#pragma once

#include <QByteArray>
#include <QList>

namespace tk7sim {

/*!
 * Cuts the bytes from the tool into lines, from a '$' to an LF.
 *
 * What stands before a '$' is dropped, a '$' starts a line anew, and a line that grows too long is
 * dropped up to the next '$'.
 */
class LineAssembler
{
public:
    static constexpr int maxLength = 120; //!< bytes of a line, its LF included

    //! The lines that \a bytes complete, each with its '$' and its LF.
    QList<QByteArray> take(const QByteArray &bytes);
    //! Drops a line in progress.
    void clear() { m_line.clear(); }

private:
    QByteArray m_line;
};

} // namespace tk7sim
