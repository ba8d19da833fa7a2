#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

class QSocketNotifier;

namespace tk7sim {

/*!
 * The router's end of a pseudo-terminal.
 *
 * Only the master side is held open, so that it shows whether anybody has the other side. While
 * nobody has it, the notifier of the master would fire without end; it is off then, and a slow
 * timer looks for somebody. Nothing sent to nobody is kept.
 */
class PseudoTerminal : public QObject
{
    Q_OBJECT

public:
    static constexpr int attachPollInterval = 50; //!< milliseconds

    explicit PseudoTerminal(QObject *parent = nullptr);
    ~PseudoTerminal() override;

    //! Opens a new terminal in raw mode; false, and errorString(), if the system refuses.
    bool open();
    void close();
    bool isOpen() const { return m_master >= 0; }
    QString errorString() const { return m_error; }
    //! The path of the side that the tool opens; empty if closed.
    QString deviceName() const { return m_deviceName; }

    //! Somebody has the other side open.
    bool isAttached() const { return m_attached; }
    //! The speed that a program has set, also when it has gone; 0 if closed or none of the router's
    //! speeds.
    int lineSpeed() const;
    //! Writes what fits; the number of bytes taken, 0 while nobody is attached.
    int write(const QByteArray &bytes);

signals:
    /*!
     * \a bytes came while the terminal was set to \a lineSpeed. Closing a port puts old settings
     * back, which counts as no speed: last words are reported with the speed seen before that.
     */
    void bytesReceived(const QByteArray &bytes, int lineSpeed);
    void attachedChanged(bool attached);
    //! A program died and left the other side locked for everybody: this terminal is of no use any
    //! more, and a new one should take its place.
    void lockedOut();

private:
    enum class HangUp { No, Yes };

    HangUp readAvailable();
    void slotReadable();
    void slotLookForTool();
    void attach();
    void detach();
    bool resetOtherSide();
    bool isHungUp(bool *readable = nullptr) const;

    int m_master = -1;
    QString m_deviceName;
    QString m_error;
    bool m_attached = false;
    int m_lastSpeed = 0;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_attachTimer;
};

} // namespace tk7sim
