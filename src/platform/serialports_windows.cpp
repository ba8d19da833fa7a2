#include "platform/serialports.h"

#include <QSerialPort>
#include <QSerialPortInfo>

#include <utility>

#include <windows.h>

namespace platform {

namespace {

std::function<QStringList()> &systemPortSource()
{
    static std::function<QStringList()> function;
    return function;
}

} // namespace

QString publishedPortsFolder()
{
    return QString();
}

QStringList serialPortNames()
{
    if (systemPortSource())
        return systemPortSource()();
    static const QString deviceNameSpace = QStringLiteral("\\\\.\\");
    QStringList names;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : ports) {
        if (port.systemLocation().startsWith(deviceNameSpace))
            names += port.portName();
    }
    return names;
}

void setSystemPortSource(std::function<QStringList()> source)
{
    systemPortSource() = std::move(source);
}

QString serialPortDevice(const QString &name)
{
    return name;
}

bool hasHungUp(const QSerialPort &)
{
    return false;
}

void drain(QSerialPort &port)
{
    // FlushFileBuffers waits without end for a device that takes no bytes any more.
    constexpr int longestWait = 200; // ms
    if (port.bytesToWrite() == 0 || port.waitForBytesWritten(longestWait))
        FlushFileBuffers(port.handle());
}

} // namespace platform
