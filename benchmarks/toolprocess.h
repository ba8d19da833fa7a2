#pragma once

#include "simulator/router/routersimulator.h"

#include <QProcess>

/*! The tool in a process of its own, and the router to which it is wired. */
class ToolProcess
{
public:
    /*! What MonitoredTool tells. */
    struct Count
    {
        qint64 bytes = 0;
        qint64 paints = 0;
        int rows = -1; //!< -1: no answer
    };

    ~ToolProcess();

    /*! Starts the tool on \a platform and waits until it shows the traffic of a port. */
    bool start(const QString &platform);

    void sendLine(const QByteArray &line) { m_router.sendLine(line); }
    qint64 pid() const { return m_process.processId(); }

    Count count();

    void order(const QByteArray &text);
    Count awaitCount(int milliseconds);

private:
    tk7sim::RouterSimulator m_router;
    QProcess m_process;
};
