#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace tk7sim {

/*!
 * Wraps \a line, a VDM, VDO or ALR sentence of any talker as it came to input port \a port (0 to
 * 11), into the body of the router's own sentence. White space around it, and a tag block between
 * two backslashes before it, are ignored. Nothing for anything else: another sentence, a field too
 * many or missing, no right checksum, a character that isn't printable ASCII, more than 82
 * characters.
 */
std::optional<QByteArray> wrapAisLine(const QByteArray &line, int port);

/*! A file of AIS sentences that an input port hears, over and over. */
class AisReplay
{
public:
    static constexpr int interval = 100;           //!< milliseconds from one line to the next
    static constexpr qint64 longestGap = 1000;     //!< milliseconds between two calls that count
    static constexpr qint64 maxFileSize = 1 << 25; //!< bytes

    AisReplay() = default;
    AisReplay(int port, const QByteArray &contents);

    //! Reads the file \a path; nothing, and the reason in \a error, if it isn't a regular file that
    //! can be read, is longer than maxFileSize or holds nothing that can be wrapped.
    static std::optional<AisReplay> load(int port, const QString &path, QString *error);

    int port() const { return m_port; }
    int lineCount() const { return m_bodies.size(); }
    //! Lines that were left out as they can't be wrapped, without empty ones and comments ('#').
    int leftOut() const { return m_leftOut; }

    //! Times the usual pace, above 0.
    void setRate(double rate) { m_rate = rate; }
    //! Begins anew at \a now, in milliseconds.
    void start(qint64 now);
    //! The body of the next line that is due at \a now; nothing if none is.
    std::optional<QByteArray> take(qint64 now);

private:
    int m_port = 0;
    QVector<QByteArray> m_bodies;
    int m_leftOut = 0;
    double m_rate = 1;
    qint64 m_now = 0;
    double m_owed = 0; // lines
    int m_next = 0;
};

} // namespace tk7sim
