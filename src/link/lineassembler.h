#pragma once

#include <QByteArray>

/*!
 * Cuts a stream of bytes into lines. A line begins with '$' or '!', which throws away what came
 * before, and ends with LF; one of more than MaxLineBytes and what stands between lines are
 * dropped.
 *
 * What has been added and not cut yet is kept here, and so is the place in it: whoever deals with a
 * line may add bytes and take lines himself, and the order stays that of the bytes.
 */
class LineAssembler
{
public:
    static constexpr int MaxLineBytes = 95; //!< its LF included

    LineAssembler();

    /*! Puts a copy of \a size bytes behind those that are there. */
    void add(const char *data, int size);

    /*! Whether the end of a line is among the bytes that haven't been cut yet. */
    bool hasLineEnd() const { return m_bytes.indexOf('\n', m_next) >= 0; }

    /*! Cuts as far as the end of the next line and puts it, with its LF, into \a line. */
    bool takeLine(QByteArray &line);

    /*! Forgets the line that has begun, but not the bytes that haven't been cut yet. */
    void dropLine() { m_lineSize = 0; }

private:
    QByteArray m_bytes;
    int m_next = 0; //!< the first of m_bytes that hasn't been cut yet
    char m_line[MaxLineBytes] = {};
    int m_lineSize = 0;
};
