#pragma once

#include <QString>
#include <QStringList>

#include <functional>

QT_BEGIN_NAMESPACE
class QSerialPort;
QT_END_NAMESPACE

/*! What the list of serial ports owes to the operating system. */
namespace platform {

/*!
 * The names of the serial ports that a router can be wired to, in the order of the system's own
 * enumeration. On Windows only ports in the device name space (system location "\\.\...") count.
 * Elsewhere the pseudo-terminals follow that this user's simulated routers have published.
 */
QStringList serialPortNames();

/*!
 * Answers for the system's own enumeration from now on, for tests; an empty function asks the
 * system again.
 */
void setSystemPortSource(std::function<QStringList()> source);

/*!
 * What QSerialPort opens for \a name: the device behind a published pseudo-terminal, any other
 * name as it is, so that an absolute path works too.
 */
QString serialPortDevice(const QString &name);

/*!
 * The folder in which simulated routers publish their pseudo-terminals: links named as the port is
 * to be listed, owned by this user. Empty where the system has no pseudo-terminals.
 */
QString publishedPortsFolder();

/*!
 * True when the device behind the open \a port has gone and \a port can't tell by itself: on Unix
 * a read at the end of such a device looks like any other read error. False where QSerialPort
 * reports that as a resource error.
 */
bool hasHungUp(const QSerialPort &port);

/*!
 * Waits until what was written to the open \a port has left the computer, a few milliseconds at
 * most for a sentence. Closing a port sets the speed back that it had before, also for bytes that
 * are still on their way.
 */
void drain(QSerialPort &port);

} // namespace platform
