#include "platform/serialports.h"

#include <QSerialPort>
#include <QSerialPortInfo>

#include <windows.h>

namespace platform {

QString publishedPortsFolder()
{
    return QString();
}

QStringList serialPortNames()
{
    static const QString deviceNameSpace = QStringLiteral("\\\\.\\");
    QStringList names;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : ports) {
        if (port.systemLocation().startsWith(deviceNameSpace))
            names += port.portName();
    }
    return names;
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
    FlushFileBuffers(port.handle());
}

} // namespace platform
