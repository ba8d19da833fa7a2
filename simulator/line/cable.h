#pragma once

#include "simulator/line/portlink.h"
#include "simulator/line/pseudoterminal.h"

#include <QByteArray>
#include <QObject>
#include <QString>

namespace tk7sim {

/*!
 * The cable to the tool: a terminal, published under a name if it was given one, which can be
 * pulled out and put back.
 */
class Cable : public QObject
{
    Q_OBJECT

public:
    explicit Cable(QObject *parent = nullptr);

    //! Puts the cable in; false, and errorString(), if the system has no terminal to give.
    bool open();
    //! Takes it away without a word; plug() does nothing until open() is called.
    void close();
    bool isOpen() const { return m_isOpen; }
    QString errorString() const { return m_error; }

    //! The name for open() and plug(); empty: none.
    void setName(const QString &name) { m_name = name; }
    const PortLink &link() const { return m_link; }
    QString deviceName() const { return m_terminal.deviceName(); }

    bool plug();
    void unplug();
    bool isPlugged() const { return m_terminal.isOpen(); }

    int lineSpeed() const { return m_terminal.lineSpeed(); }
    //! The number of bytes that somebody took.
    int write(const QByteArray &bytes) { return m_terminal.write(bytes); }

signals:
    void bytesReceived(const QByteArray &bytes, int lineSpeed);
    void pluggedChanged(bool plugged);
    //! Something that the user of the program should read.
    void message(const QString &text);

private:
    void replaceTerminal();

    PseudoTerminal m_terminal;
    PortLink m_link;
    QString m_name;
    QString m_error;
    bool m_isOpen = false;
};

} // namespace tk7sim
