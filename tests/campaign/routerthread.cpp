#include "routerthread.h"

RouterThread::RouterThread(quint32 seed, const QString &portName)
{
    m_thread.start();
    m_door.moveToThread(&m_thread);
    const auto open = [this, seed, portName] {
        m_host = new RouterHost(seed);
        m_host->router.setPublishedName(portName);
        if (!m_host->router.open())
            m_error = m_host->router.errorString();
        else if (m_host->router.portName().isEmpty())
            m_error = m_host->router.publishError();
    };
    QMetaObject::invokeMethod(&m_door, open, Qt::BlockingQueuedConnection);
}

RouterThread::~RouterThread()
{
    const auto close = [this] {
        delete m_host;
        m_door.moveToThread(nullptr);
    };
    QMetaObject::invokeMethod(&m_door, close, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void RouterThread::run(const std::function<void(RouterHost &)> &use)
{
    QMetaObject::invokeMethod(
        &m_door, [this, &use] { use(*m_host); }, Qt::BlockingQueuedConnection);
}

RouterState RouterThread::state()
{
    RouterState state;
    run([&state](RouterHost &host) { state = host.state(); });
    return state;
}
