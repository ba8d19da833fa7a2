#pragma once

#include <QProcess>

/*!
 * Ends \a process, which ends by itself when its standard input does; kills it if it hasn't done so
 * within \a milliseconds. Does nothing if it doesn't run.
 */
inline void endProcess(QProcess &process, int milliseconds)
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.closeWriteChannel();
    if (!process.waitForFinished(milliseconds))
        process.kill();
    process.waitForFinished(milliseconds);
}
