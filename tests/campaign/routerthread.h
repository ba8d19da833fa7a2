#pragma once

#include "routerhost.h"

#include <QThread>

#include <functional>

/*!
 * A thread with its own event loop for the router, so that what the router does takes no time of
 * the tool's event loop.
 */
class RouterThread
{
public:
    /*! Starts the router and publishes it as \a portName. */
    RouterThread(quint32 seed, const QString &portName);
    ~RouterThread();

    /*! Runs \a use in the router's thread and waits for its end. */
    void run(const std::function<void(RouterHost &)> &use);
    RouterState state();
    /*! False, with the reason in errorString(), if the system gave no pseudo-terminal. */
    bool isOpen() const { return m_error.isEmpty(); }
    QString errorString() const { return m_error; }

private:
    Q_DISABLE_COPY(RouterThread)

    QThread m_thread;
    RouterHost *m_host = nullptr; // made and deleted in its thread
    QObject m_door;               // lives in the thread, for calls that need no router
    QString m_error;
};
