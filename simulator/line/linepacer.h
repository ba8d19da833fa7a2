#pragma once

#include <QByteArray>
#include <QObject>
#include <QQueue>
#include <QTimer>

namespace tk7sim {

/*!
 * Lets bytes out at the pace of a serial line: ten bits a byte.
 *
 * A precise timer runs while something waits, and never otherwise. A late timer makes up for the
 * delay, but for no more than catchUpLimit, so that a stalled program isn't followed by a burst
 * that no line could carry.
 */
class LinePacer : public QObject
{
    Q_OBJECT

public:
    static constexpr int maxQueued = 65536;            //!< bytes that may wait
    static constexpr qint64 catchUpLimit = 50'000'000; //!< nanoseconds

    explicit LinePacer(QObject *parent = nullptr);

    int speed() const { return m_speed; }
    //! The speed of the bytes that are still to go out.
    void setSpeed(int baud) { m_speed = baud; }

    /*!
     * Queues \a bytes. They begin to go out \a delay milliseconds from now at the earliest; with
     * \a thenSpeed other than 0 the line moves to that speed behind their last byte. False, and
     * nothing queued, if too much waits already.
     */
    bool enqueue(const QByteArray &bytes, int delay = 0, int thenSpeed = 0);
    int queuedBytes() const { return m_queuedBytes; }
    //! Drops what waits.
    void clear();

signals:
    //! \a bytes have just left.
    void bytesDue(const QByteArray &bytes);
    void speedReached(int baud);

private:
    struct Item
    {
        QByteArray bytes;
        qint64 notBefore; // nanoseconds of the steady clock
        int thenSpeed;
    };

    void slotTick();
    void sendDue(qint64 now);
    void scheduleNext(qint64 now);
    qint64 timeOf(qint64 byteCount) const;

    QQueue<Item> m_queue;
    int m_queuedBytes = 0;
    int m_speed;
    qint64 m_lineFree = 0; // when the last byte had left, nanoseconds
    QTimer m_timer;
};

} // namespace tk7sim
