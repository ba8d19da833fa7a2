#include "simulator/line/cable.h"

namespace tk7sim {

Cable::Cable(QObject *parent) : QObject(parent), m_terminal(this)
{
    connect(&m_terminal, &PseudoTerminal::bytesReceived, this, &Cable::bytesReceived);
    connect(&m_terminal, &PseudoTerminal::lockedOut, this, &Cable::replaceTerminal);
}

bool Cable::open()
{
    m_isOpen = true;
    m_isOpen = plug();
    return m_isOpen;
}

void Cable::close()
{
    m_isOpen = false;
    m_link.remove();
    m_terminal.close();
}

bool Cable::plug()
{
    if (!m_isOpen || isPlugged()) {
        return isPlugged();
    }
    if (!m_terminal.open()) {
        m_error = m_terminal.errorString();
        emit message(m_error);
        return false;
    }
    m_error.clear();
    if (!m_name.isEmpty() && !m_link.publish(m_name, m_terminal.deviceName())) {
        emit message(m_link.errorString());
    }
    emit pluggedChanged(true);
    return true;
}

void Cable::unplug()
{
    if (!isPlugged()) {
        return;
    }
    m_link.remove();
    m_terminal.close();
    emit pluggedChanged(false);
}

void Cable::replaceTerminal()
{
    unplug();
    plug();
}

} // namespace tk7sim
