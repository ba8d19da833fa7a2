#include "conversations.h"
#include "dialogmap.h"
#include "limits.h"
#include "simulator/line/sentence.h"
#include "stepfailure.h"
#include "story.h"
#include "tour.h"
#include "wait.h"

#include <QFile>
#include <QObject>

using namespace tk7sim;

// The service: counters, lock, mode, firmware.

namespace {

const QString serviceTitle = QStringLiteral("TK-7 Service");
const QString newPasswordTitle = QStringLiteral("Lock Password");
const QString passwordSetTitle = QStringLiteral("Set lock password");
const QString passwordTitle = QStringLiteral("TK-7 Unlock");
const QString unlockTitle = QStringLiteral("Unlock TK-7");
const QString deleteTitle = QStringLiteral("Delete password");
const QString deletedTitle = QStringLiteral("Delete lock password");
const QString modeTitle = QStringLiteral("Router Mode");
const QString fileTitle = QStringLiteral("Select firmware file");
const QString loadTitle = QStringLiteral("Load Firmware");
const QString updatedTitle = QStringLiteral("Firmware update");

constexpr QColor lockedColor(229, 22, 28);
constexpr QColor openColor(66, 133, 244);

constexpr int spoiltShare = 30; // % of the sentences at the inputs

const QByteArray password = QByteArrayLiteral("Harbour7");
const QByteArray wrongPassword = QByteArrayLiteral("Harbour8");
const QByteArray servicePassword = QByteArrayLiteral("simlevel4"); // of this simulator
constexpr int ownerLevel = 2;
constexpr int serviceLevel = 4;

const QByteArray newMode = QByteArrayLiteral("TRAWL");

const QByteArray newVersion = QByteArrayLiteral("4.1");
constexpr int firmwareSize = 6000; // bytes, which take some seconds
constexpr int packetSize = 32;
constexpr int packetCount = (firmwareSize + packetSize - 1) / packetSize;
constexpr int rebootDuration = 1500; // ms

// A firmware file: what makes it one, its version, no mode, and bytes of all values.
QByteArray firmwareFile()
{
    constexpr int versionOffset = 14;
    QByteArray file = QByteArrayLiteral("fwVR48");
    file.resize(firmwareSize);
    constexpr int step = 37;
    for (int i = 6; i < file.size(); ++i)
        file[i] = char(i * step);
    const char versionAndMode[] = {4, 1, 0, 0};
    file.replace(versionOffset, sizeof versionAndMode,
                 QByteArray(versionAndMode, sizeof versionAndMode));
    return file;
}

} // namespace

// The tool asks for the key when it has the click, which may be after the hand has let go.
void Tour::openService()
{
    m_tool.desktop().holdKey("Control_L");
    m_tool.click(m_tool.map().logo());
    m_service = m_tool.awaitWindow(serviceTitle, Limit::box);
    m_tool.desktop().releaseKey("Control_L");
    m_listener.expect({"$VRSER\r\n"}, Limit::hear);
}

void Tour::closeService()
{
    m_tool.click(m_service, DialogMap::Service::exit);
    m_tool.awaitGone(m_service);
    m_tool.restMouse();
}

// What the router answers when it is asked for the counters of all ports the next time.
QByteArray Tour::awaitCounters()
{
    QByteArray answers;
    int next = 0;
    QObject context;
    QObject::connect(&m_router, &RouterSimulator::lineSent, &context, [&](const QByteArray &line) {
        if (next == portCount
            || !line.startsWith(QByteArray("$VRSTA," + QByteArray::number(next) + ',')))
            return;
        answers += line;
        ++next;
    });
    await([&] { return next == portCount; }, Limit::poll,
          QStringLiteral("the tool has asked for the counters of %1 ports").arg(next));
    return answers;
}

QImage Tour::counterTable() const
{
    return m_tool.look(m_service, DialogMap::Service::table);
}

// Without the key, and with the right one, the logo does nothing: a dialog would take the next
// click, which the router hears of and of nothing before it.
QString Tour::watchCounters()
{
    m_router.setFault(Fault::InputErrors, spoiltShare);
    m_router.setFault(Fault::InputDamage, spoiltShare);
    m_tool.click(m_tool.map().logo());
    m_tool.desktop().holdKey("Control_R");
    m_tool.click(m_tool.map().logo());
    m_tool.desktop().releaseKey("Control_R");
    select(Story::chosenOutput);
    openService();

    const QByteArray first = awaitCounters();
    const QImage before = awaitStill([this] { return counterTable(); });
    require(awaitCounters() != first, QStringLiteral("the router's counters stand still"));
    await([&] { return counterTable() != before; }, Limit::paint,
          QStringLiteral("the table stands still"));
    return QStringLiteral("the table fills, and shows the counters grow");
}

QString Tour::switchChipId()
{
    const QImage before = m_tool.look(m_service, DialogMap::Service::chipText);
    m_tool.click(m_service, DialogMap::Service::chipId);
    await([&] { return m_tool.look(m_service, DialogMap::Service::chipText) != before; },
          Limit::paint, QStringLiteral("the identifier is as it was"));
    return QStringLiteral("the identifier in hexadecimal digits");
}

QString Tour::clearCounters()
{
    m_router.clearFaults();
    const QImage before = counterTable();
    m_tool.click(m_service, DialogMap::Service::clear);
    m_listener.expect({"$VRSTC\r\n"}, Limit::hear);
    const QByteArray cleared = awaitCounters();
    for (int port = 0; port < portCount; ++port) {
        require(cleared.contains(QByteArray("$VRSTA," + QByteArray::number(port) + ",0,0,0,0,")),
                QStringLiteral("the counters of port %1 aren't cleared").arg(port));
    }
    await([&] { return counterTable() != before; }, Limit::paint,
          QStringLiteral("the table is as it was"));
    const auto table = [this] { return counterTable(); };
    const QImage after = awaitStill(table);
    require(awaitCounters() != cleared || awaitStill(table) == after,
            QStringLiteral("the table shows other numbers for the same counters"));
    return QStringLiteral("the router counts from 0 again, and the table shows it");
}

QString Tour::typePassword()
{
    m_tool.click(m_service, DialogMap::Service::lock);
    m_box = m_tool.awaitWindow(newPasswordTitle, Limit::box);
    for (const QRect &field : {DialogMap::Password::first, DialogMap::Password::second}) {
        m_tool.click(m_box, field);
        m_tool.desktop().type(QString::fromLatin1(password));
    }
    m_listener.expectNothing();
    return QStringLiteral("a box for a password, typed twice");
}

QString Tour::setPassword()
{
    m_tool.acceptBox(m_box);
    m_listener.expect({withChecksum("$VRPWS," + password)}, Limit::hear);
    m_box = m_tool.awaitWindow(passwordSetTitle, Limit::box);
    require(m_router.lockPassword() == password && m_router.lockLevel() == ownerLevel,
            QStringLiteral("the router hasn't taken the password"));
    return QStringLiteral("the router has it and is open to its owner");
}

void Tour::awaitLock(const QColor &color)
{
    m_tool.restMouse();
    await([&] { return shareOf(m_tool.look(m_tool.map().lockLabel()), color) > Story::mostly; },
          Limit::paint, QStringLiteral("the field of the lock isn't %1").arg(color.name()));
}

QString Tour::leaveService()
{
    m_tool.acceptBox(m_box);
    closeService();
    awaitLock(openColor);
    return QStringLiteral("the field at the bottom is blue");
}

QString Tour::lockRouter()
{
    m_tool.click(m_tool.map().lockLabel());
    m_listener.expect({"$VRLGO\r\n"}, Limit::hear);
    awaitLock(lockedColor);
    require(m_router.lockLevel() == 0, QStringLiteral("the router isn't locked"));
    return QStringLiteral("the field is red, the router is locked");
}

void Tour::askUnlock(const QByteArray &text)
{
    m_box = m_tool.awaitWindow(passwordTitle, Limit::box);
    m_tool.desktop().type(QString::fromLatin1(text));
}

QString Tour::typeWrongPassword()
{
    m_tool.click(m_tool.map().lockLabel());
    askUnlock(wrongPassword);
    m_listener.expectNothing();
    return QStringLiteral("a box for the password");
}

QString Tour::failToUnlock()
{
    m_tool.acceptBox(m_box);
    m_listener.expect({withChecksum("$VRPWU," + wrongPassword)}, Limit::hear);
    m_box = m_tool.awaitWindow(unlockTitle, Limit::box);
    require(m_router.lockLevel() == 0, QStringLiteral("the router isn't locked any more"));
    awaitLock(lockedColor);
    return QStringLiteral("the box \"%1\"; the router stays locked").arg(m_box.title);
}

QString Tour::unlock()
{
    m_tool.acceptBox(m_box);
    m_tool.click(m_tool.map().lockLabel());
    askUnlock(servicePassword);
    m_tool.acceptBox(m_box);
    m_listener.expect({withChecksum("$VRPWU," + servicePassword)}, Limit::hear);
    awaitLock(openColor);
    require(m_router.lockLevel() == serviceLevel, QStringLiteral("the router isn't open"));
    return QStringLiteral("the field is blue, the router is open to the service");
}

QString Tour::typeMode()
{
    openService();
    m_tool.click(m_service, DialogMap::Service::changeMode);
    m_box = m_tool.awaitWindow(modeTitle, Limit::box);
    m_tool.desktop().type(QString::fromLatin1(newMode));
    m_listener.expectNothing();
    return QStringLiteral("the service dialog has a button for the mode now, and a box for it");
}

QString Tour::setMode()
{
    const QImage before = m_tool.look(m_tool.map().connectionLabels());
    m_tool.acceptBox(m_box);
    m_listener.expect({withChecksum("$VRMOD," + newMode)}, Limit::hear);
    require(m_router.mode() == newMode, QStringLiteral("the router has another mode"));
    closeService();
    await([&] { return m_tool.look(m_tool.map().connectionLabels()) != before; }, Limit::paint,
          QStringLiteral("the window doesn't tell the new mode"));
    return QStringLiteral("the router has it, and the window shows it");
}

QString Tour::chooseFirmware()
{
    const QString name = filesFolder() + QStringLiteral("/firmware-4.1.efw");
    QFile file(name);
    require(file.open(QIODevice::WriteOnly) && file.write(firmwareFile()) == firmwareSize,
            QStringLiteral("%1 can't be written").arg(name));
    file.close();
    openService();
    m_tool.click(m_service, DialogMap::Service::firmware);
    enterFileName(fileTitle, name);
    m_box = m_tool.awaitWindow(loadTitle, Limit::box);
    m_listener.expectNothing();
    return QStringLiteral("the question whether to install it");
}

QString Tour::startUpdate()
{
    m_tool.acceptBox(m_box);
    await([this] { return m_router.firmwarePackets() > packetCount / 2; }, Limit::firmware,
          QStringLiteral("the firmware doesn't arrive"));
    require(m_router.isUpdating(), QStringLiteral("there was no time to see the update"));
    return QStringLiteral("the progress dialog, after %1 packets of %2")
        .arg(m_router.firmwarePackets())
        .arg(packetCount);
}

QString Tour::awaitUpdated()
{
    m_router.setRebootDuration(rebootDuration);
    m_box = m_tool.awaitWindow(updatedTitle, Limit::firmware);
    QList<QByteArray> lines{"$VRFWS\r\n"};
    for (int i = 1; i <= packetCount; ++i)
        lines += "$VRFWP," + QByteArray::number(i) + ',';
    m_listener.expect(lines << "$VRFWF\r\n"
                            << "$VRFWW\r\n",
                      Limit::hear);
    require(m_router.firmwareImage() == firmwareFile(),
            QStringLiteral("what has arrived isn't the file"));
    return QStringLiteral("%1 packets have arrived, byte by byte the file; the router starts anew")
        .arg(packetCount);
}

QString Tour::connectToNewVersion()
{
    const QImage before = m_tool.look(m_tool.map().connectionLabels());
    m_tool.acceptBox(m_box);
    awaitIdle();
    await([this] { return !m_router.isRebooting(); }, Limit::reboot,
          QStringLiteral("the router doesn't come back"));
    m_listener.forget(); // how far the farewell got to a router that has gone
    connectAndDownload();
    require(m_router.version() == newVersion, QStringLiteral("the router has another version"));
    require(m_tool.look(m_tool.map().connectionLabels()) != before,
            QStringLiteral("the window doesn't tell the new version"));
    awaitLock(lockedColor);
    return QStringLiteral("the configuration comes down from version %1, which is locked")
        .arg(QString::fromLatin1(newVersion));
}

QString Tour::unlockInService()
{
    openService();
    m_tool.click(m_service, DialogMap::Service::lock);
    askUnlock(password);
    m_tool.acceptBox(m_box);
    m_listener.expect({withChecksum("$VRPWU," + password)}, Limit::hear);
    m_box = m_tool.awaitWindow(unlockTitle, Limit::box);
    require(m_router.lockLevel() == ownerLevel,
            QStringLiteral("the router isn't open to its owner"));
    return QStringLiteral("the box \"%1\"").arg(m_box.title);
}

QString Tour::readOwnerButtons()
{
    m_tool.acceptBox(m_box);
    awaitCounters();
    m_listener.expectNothing();
    return QStringLiteral("buttons to delete and to change the password");
}

QString Tour::askDeletePassword()
{
    m_tool.click(m_service, DialogMap::Service::lock);
    m_box = m_tool.awaitWindow(deleteTitle, Limit::box);
    m_listener.expectNothing();
    return QStringLiteral("the question \"%1\"").arg(m_box.title);
}

QString Tour::deletePassword()
{
    m_tool.acceptBox(m_box);
    m_listener.expect({"$VRPWD\r\n"}, Limit::hear);
    m_box = m_tool.awaitWindow(deletedTitle, Limit::box);
    require(!m_router.isLockEnabled(), QStringLiteral("the router still has a lock"));
    m_tool.acceptBox(m_box);
    closeService();
    const auto isGone = [this] {
        const QImage field = m_tool.look(m_tool.map().lockLabel());
        return shareOf(field, openColor) + shareOf(field, lockedColor) == 0;
    };
    await(isGone, Limit::paint, QStringLiteral("the field of the lock stays"));
    return QStringLiteral("the router has no lock any more, and the window no field for it");
}
