#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace tk7sim {

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
    //! can be read, is longer than maxFileSize or holds no AIS sentence.
    static std::optional<AisReplay> load(int port, const QString &path, QString *error);

    int port() const { return m_port; }
    int lineCount() const { return int(m_bodies.size()); }
    //! Lines that were left out as they are no AIS sentences, without empty ones and comments
    //! ('#').
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
