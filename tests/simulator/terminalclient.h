#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>

#include <memory>

#include <termios.h>

class QSocketNotifier;

/*! The tool's end of a terminal, by system calls alone. Collects what it hears. */
class TerminalClient : public QObject
{
    Q_OBJECT

public:
    enum class ReadMode {
        Collect, //!< reads in the event loop
        Ignore   //!< never reads
    };

    explicit TerminalClient(QObject *parent = nullptr);
    ~TerminalClient() override;

    bool open(const QString &device, ReadMode mode = ReadMode::Collect);
    void close();
    //! Sets both directions to \a baud, one of the seven speeds.
    bool setSpeed(int baud);
    //! Puts back what was set when the terminal was opened, as serial port libraries do at their
    //! end.
    bool restoreSettings();
    //! True if all of \a bytes were taken.
    bool write(const QByteArray &bytes);

    const QByteArray &received() const { return m_received; }
    //! What was received, cut behind its LFs.
    QList<QByteArray> lines() const;
    void clear() { m_received.clear(); }
    //! The other end has gone.
    bool isHungUp() const { return m_hungUp; }
    int descriptor() const { return m_fd; }

signals:
    void changed();

private:
    void slotReadable();

    int m_fd = -1;
    termios m_found{};
    bool m_hungUp = false;
    QByteArray m_received;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
