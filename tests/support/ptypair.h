#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QVector>

QT_BEGIN_NAMESPACE
class QSocketNotifier;
QT_END_NAMESPACE

/*!
 * A pseudo-terminal for tests: the test holds the master side, the code under test opens
 * slavePath() as its serial port.
 *
 * Both sides are raw and 8-bit clean. The slave side is kept open here as well, so the master never
 * reports a hang-up while nobody else has it open, and the settings of the last user stay readable.
 * Everything that the slave side writes is collected by the event loop of the thread that made the
 * object.
 */
class PtyPair : public QObject
{
    Q_OBJECT

public:
    struct Line
    {
        QByteArray text; //!< with its line end
        qint64 micros;   //!< arrival, in microseconds since the pair was made
        int speed;       //!< baud rate of the slave side when the line was read
    };

    explicit PtyPair(QObject *parent = nullptr);
    ~PtyPair() override;

    /*! False when the system gave no pseudo-terminal, and after hangUp(). */
    bool isValid() const { return m_master >= 0; }

    QString slavePath() const { return m_slavePath; }

    /*! Lines that the slave side has written so far, cut behind each LF. */
    const QVector<Line> &lines() const { return m_lines; }

    /*! All bytes that the slave side has written so far. */
    QByteArray received() const { return m_received; }

    /*!
     * Writes \a bytes to the slave side. Returns false when the terminal doesn't take all of them:
     * its buffer holds about 4000 bytes, and only the slave side's reader empties it.
     */
    bool write(const QByteArray &bytes);

    /*! The baud rate that the slave side has set, as a number; 0 when it is none of the usual. */
    int speed() const;

    /*! Bytes written here that the slave side could read now and hasn't. */
    int unread() const;

    /*! Microseconds since the pair was made. */
    qint64 micros() const { return m_clock.nsecsElapsed() / 1000; }

    /*! Pulls the cable: closes the master, and with it the device that the slave side has open. */
    void hangUp();

signals:
    void lineReceived(const QByteArray &line, int speed);

private:
    void readMaster();
    void collect(const QByteArray &bytes);

    int m_master = -1;
    int m_slave = -1;
    QString m_slavePath;
    QSocketNotifier *m_notifier = nullptr;
    QElapsedTimer m_clock;
    QVector<Line> m_lines;
    QByteArray m_received;
    QByteArray m_partial;
};
