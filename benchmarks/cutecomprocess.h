#pragma once

#include "simulator/line/linepacer.h"
#include "support/ptypair.h"

#include <QProcess>
#include <QTemporaryDir>

/*!
 * The serial terminal program cutecom in a process of its own, listening at 115200 baud to a
 * pseudo-terminal. Its settings are in a folder of their own.
 */
class CutecomProcess
{
public:
    CutecomProcess();
    ~CutecomProcess();

    static bool isInstalled();

    /*! Starts it on \a platform and waits until it has opened the terminal. */
    bool start(const QString &platform);

    void sendLine(const QByteArray &line) { m_pacer.enqueue(line); }
    qint64 pid() const { return m_process.processId(); }

    /*! Bytes that it has taken off the line so far. */
    qint64 bytesRead() const { return m_written - m_pty.unread(); }

    /*! Bytes that it came too late for. */
    qint64 bytesLost() const { return m_lost; }

private:
    bool writeSettings() const;

    QTemporaryDir m_home;
    PtyPair m_pty;
    tk7sim::LinePacer m_pacer;
    qint64 m_written = 0;
    qint64 m_lost = 0;
    QProcess m_process;
};
