#include "platform/serialports.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <QStandardPaths>

#include <utility>

#include <poll.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace platform {

namespace {

std::function<QStringList()> &systemPortSource()
{
    static std::function<QStringList()> function;
    return function;
}

QStringList systemPortNames()
{
    if (systemPortSource())
        return systemPortSource()();
    QStringList names;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : ports)
        names += port.portName();
    return names;
}

bool isOwnLink(const QString &path)
{
    struct stat info = {};
    return lstat(QFile::encodeName(path).constData(), &info) == 0 && S_ISLNK(info.st_mode)
        && info.st_uid == getuid();
}

// Empty unless `link` is this user's and leads to a pseudo-terminal.
QString pseudoTerminalBehind(const QString &link)
{
    static const QString pseudoTerminalFolder = QStringLiteral("/dev/pts/");
    static const QString multiplexer = QStringLiteral("/dev/pts/ptmx"); // makes them, is none
    if (!isOwnLink(link))
        return QString();
    QString device = QFileInfo(link).canonicalFilePath();
    if (!device.startsWith(pseudoTerminalFolder) || device == multiplexer)
        return QString();
    struct stat info = {};
    if (stat(QFile::encodeName(device).constData(), &info) != 0 || !S_ISCHR(info.st_mode))
        return QString();
    return device;
}

} // namespace

QString publishedPortsFolder()
{
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return runtime.isEmpty() ? QString() : runtime + QStringLiteral("/tk7-ports");
}

QStringList serialPortNames()
{
    QStringList names = systemPortNames();
    const QString folderPath = publishedPortsFolder();
    if (folderPath.isEmpty()) // QDir would take the current folder
        return names;
    const QDir folder(folderPath);
    // QDir::System: a link whose pseudo-terminal has gone is listed too, and sorted out below.
    const QStringList links = folder.entryList(QDir::Files | QDir::System, QDir::Name);
    for (const QString &link : links) {
        if (!pseudoTerminalBehind(folder.filePath(link)).isEmpty())
            names += link;
    }
    return names;
}

void setSystemPortSource(std::function<QStringList()> source)
{
    systemPortSource() = std::move(source);
}

QString serialPortDevice(const QString &name)
{
    if (name.isEmpty() || name.contains(QLatin1Char('/')))
        return name;
    const QString folderPath = publishedPortsFolder();
    if (folderPath.isEmpty())
        return name;
    const QString device = pseudoTerminalBehind(QDir(folderPath).filePath(name));
    return device.isEmpty() ? name : device;
}

bool hasHungUp(const QSerialPort &port)
{
    pollfd state = {};
    state.fd = port.handle();
    return ::poll(&state, 1, 0) > 0 && (state.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

void drain(QSerialPort &port)
{
    tcdrain(port.handle());
}

} // namespace platform
