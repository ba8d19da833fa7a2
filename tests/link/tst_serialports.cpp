#include "link/nmeaserialport.h"
#include "platform/serialports.h"
#include "support/ptypair.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QSerialPortInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

class tst_SerialPorts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void systemPortsComeFirst();
    void noSystemPort();
    void twoPortsOfOneName();
    void folderLiesInRuntimeLocation();
    void linkToPseudoTerminal();
    void linkOfLink();
    void publishedNamesAreInOrder();
    void linkIsListedByTheLinkToo();
    void notListed_data();
    void notListed();
    void foreignOwner();
    void noFolder();
    void noRuntimeLocation();
    void otherNamesAsTheyAre_data();
    void otherNamesAsTheyAre();
    void publishedPortOpens();

private:
    QString path(const QString &name) const;
    QStringList published() const;

    QStringList m_systemPorts;
    std::unique_ptr<QTemporaryDir> m_runtime;
    std::unique_ptr<PtyPair> m_pty;
    QString m_oldFolder;
};

namespace {

const QByteArray runtimeVariable = QByteArrayLiteral("XDG_RUNTIME_DIR");

void symlinkTo(const QString &target, const QString &link)
{
    QVERIFY(::symlink(QFile::encodeName(target).constData(), QFile::encodeName(link).constData())
            == 0);
}

} // namespace

void tst_SerialPorts::initTestCase()
{
    for (const QSerialPortInfo &port : QSerialPortInfo::availablePorts())
        m_systemPorts += port.portName();
    m_oldFolder = QDir::currentPath();
}

void tst_SerialPorts::init()
{
    m_runtime = std::make_unique<QTemporaryDir>();
    QVERIFY(m_runtime->isValid());
    QVERIFY(QFile::setPermissions(m_runtime->path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(qputenv(runtimeVariable.constData(), QFile::encodeName(m_runtime->path())));
    QVERIFY(QDir(m_runtime->path()).mkdir("tk7-ports"));
    m_pty = std::make_unique<PtyPair>();
    QVERIFY(m_pty->isValid());
}

void tst_SerialPorts::cleanup()
{
    QDir::setCurrent(m_oldFolder);
    m_pty.reset();
    m_runtime.reset();
}

QString tst_SerialPorts::path(const QString &name) const
{
    return m_runtime->path() + "/tk7-ports/" + name;
}

QStringList tst_SerialPorts::published() const
{
    return platform::serialPortNames().mid(m_systemPorts.size());
}

void tst_SerialPorts::systemPortsComeFirst()
{
    symlinkTo(m_pty->slavePath(), path("A"));
    QCOMPARE(platform::serialPortNames(), m_systemPorts + QStringList{"A"});
}

void tst_SerialPorts::noSystemPort()
{
    platform::setSystemPortSource([] { return QStringList(); });
    QCOMPARE(NmeaSerialPort::scanPorts(), QStringList());
    platform::setSystemPortSource({});
    QCOMPARE(NmeaSerialPort::scanPorts(), m_systemPorts);
}

// Nobody can tell them apart: both are listed, as they come.
void tst_SerialPorts::twoPortsOfOneName()
{
    platform::setSystemPortSource([] { return QStringList{"ttyB", "ttyA", "ttyB"}; });
    const auto restore = qScopeGuard([] { platform::setSystemPortSource({}); });
    QCOMPARE(NmeaSerialPort::scanPorts(), (QStringList{"ttyB", "ttyA", "ttyB"}));
    symlinkTo(m_pty->slavePath(), path("ttyB"));
    QCOMPARE(NmeaSerialPort::scanPorts(), (QStringList{"ttyB", "ttyA", "ttyB", "ttyB"}));
}

void tst_SerialPorts::folderLiesInRuntimeLocation()
{
    QCOMPARE(platform::publishedPortsFolder(), QString(m_runtime->path() + "/tk7-ports"));
}

void tst_SerialPorts::linkToPseudoTerminal()
{
    symlinkTo(m_pty->slavePath(), path("TK7-SIM"));
    QCOMPARE(published(), QStringList{"TK7-SIM"});
    QCOMPARE(platform::serialPortDevice("TK7-SIM"), m_pty->slavePath());
}

void tst_SerialPorts::linkOfLink()
{
    const QString middle = m_runtime->path() + "/middle";
    symlinkTo(m_pty->slavePath(), middle);
    symlinkTo(middle, path("chained"));
    QCOMPARE(published(), QStringList{"chained"});
    QCOMPARE(platform::serialPortDevice("chained"), m_pty->slavePath());
}

void tst_SerialPorts::publishedNamesAreInOrder()
{
    const PtyPair second;
    symlinkTo(second.slavePath(), path("sim-b"));
    symlinkTo(m_pty->slavePath(), path("sim-c"));
    symlinkTo(m_pty->slavePath(), path("sim-a"));
    QCOMPARE(published(), (QStringList{"sim-a", "sim-b", "sim-c"}));
    QCOMPARE(platform::serialPortDevice("sim-b"), second.slavePath());
    QCOMPARE(platform::serialPortDevice("sim-a"), m_pty->slavePath());
}

void tst_SerialPorts::linkIsListedByTheLinkToo()
{
    symlinkTo(m_pty->slavePath(), path("TK7-SIM"));
    QCOMPARE(NmeaSerialPort::scanPorts(), platform::serialPortNames());
    QVERIFY(NmeaSerialPort::scanPorts().contains("TK7-SIM"));
}

void tst_SerialPorts::notListed_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("link whose target isn't there") << "dangling";
    QTest::newRow("link to a pseudo-terminal that has gone") << "gone";
    QTest::newRow("link to a regular file") << "link to file";
    QTest::newRow("link to a folder") << "link to folder";
    QTest::newRow("link to another character device") << "link to null";
    QTest::newRow("link to the maker of pseudo-terminals") << "link to ptmx";
    QTest::newRow("regular file") << "file";
    QTest::newRow("folder") << "folder";
    QTest::newRow("link to itself") << "loop";
}

void tst_SerialPorts::notListed()
{
    QFETCH(QString, kind);
    const QString name = QStringLiteral("entry");
    const QString file = m_runtime->path() + "/file";
    QFile regular(kind == "file" ? path(name) : file);
    QVERIFY(regular.open(QIODevice::WriteOnly));
    regular.close();
    QFile gone;
    if (kind == "dangling")
        symlinkTo(m_runtime->path() + "/nothing", path(name));
    if (kind == "gone") {
        symlinkTo(m_pty->slavePath(), path(name));
        QCOMPARE(published(), QStringList{name});
        // As long as its other side is open, no program beside this one gets its number.
        const int other = ::open(QFile::encodeName(m_pty->slavePath()).constData(),
                                 O_RDWR | O_NOCTTY | O_CLOEXEC);
        QVERIFY(gone.open(other, QIODevice::ReadWrite, QFileDevice::AutoCloseHandle));
        m_pty->hangUp();
        QVERIFY(!QFile::exists(m_pty->slavePath()));
    }
    if (kind == "link to file")
        symlinkTo(file, path(name));
    if (kind == "link to folder")
        symlinkTo(m_runtime->path(), path(name));
    if (kind == "link to null")
        symlinkTo("/dev/null", path(name));
    if (kind == "link to ptmx")
        symlinkTo("/dev/pts/ptmx", path(name));
    if (kind == "folder")
        QVERIFY(QDir(path(QString())).mkdir(name));
    if (kind == "loop")
        symlinkTo(path(name), path(name));

    QCOMPARE(platform::serialPortNames(), m_systemPorts);
    QCOMPARE(platform::serialPortDevice(name), name);
}

void tst_SerialPorts::foreignOwner()
{
    constexpr uid_t otherUser = 12345;
    symlinkTo(m_pty->slavePath(), path("theirs"));
    symlinkTo(m_pty->slavePath(), path("mine"));
    if (::lchown(QFile::encodeName(path("theirs")).constData(), otherUser, gid_t(-1)) != 0)
        QSKIP("Only root can give a link away");
    QCOMPARE(published(), QStringList{"mine"});
    QCOMPARE(platform::serialPortDevice("theirs"), QStringLiteral("theirs"));
}

void tst_SerialPorts::noFolder()
{
    QVERIFY(QDir(m_runtime->path()).rmdir("tk7-ports"));
    QCOMPARE(platform::serialPortNames(), m_systemPorts);
    QCOMPARE(platform::serialPortDevice("TK7-SIM"), QStringLiteral("TK7-SIM"));
}

// Without a place for published ports the links of the current folder must not be taken for them.
void tst_SerialPorts::noRuntimeLocation()
{
    QFile notAFolder(m_runtime->path() + "/file");
    QVERIFY(notAFolder.open(QIODevice::WriteOnly));
    qputenv(runtimeVariable.constData(), QFile::encodeName(notAFolder.fileName()));
    // Qt would fall back to a folder among the temporary files: a file takes that name too.
    const QByteArray oldTemporary = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(m_runtime->path()));
    const auto restore = qScopeGuard(
        [&] { oldTemporary.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", oldTemporary); });
    const passwd *user = ::getpwuid(::geteuid());
    QVERIFY(user);
    QFile fallback(m_runtime->path() + "/runtime-" + QFile::decodeName(user->pw_name));
    QVERIFY(fallback.open(QIODevice::WriteOnly));
    symlinkTo(m_pty->slavePath(), path("TK7-SIM"));
    QVERIFY(QDir::setCurrent(path(QString())));

    QCOMPARE(platform::publishedPortsFolder(), QString());
    QCOMPARE(platform::serialPortNames(), m_systemPorts);
    QCOMPARE(platform::serialPortDevice("TK7-SIM"), QStringLiteral("TK7-SIM"));
}

void tst_SerialPorts::otherNamesAsTheyAre_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("port of the system") << "ttyUSB0";
    QTest::newRow("absolute path") << "/dev/ttyUSB0";
    QTest::newRow("path of a pseudo-terminal") << "/dev/pts/0";
    QTest::newRow("name with a slash") << "usb/tty0";
    QTest::newRow("way out of the folder and back") << "../tk7-ports/TK7-SIM";
    QTest::newRow("the folder itself") << ".";
    QTest::newRow("the folder above") << "..";
    QTest::newRow("beginning of a published name") << "TK7";
    QTest::newRow("empty") << "";
}

void tst_SerialPorts::otherNamesAsTheyAre()
{
    QFETCH(QString, name);
    symlinkTo(m_pty->slavePath(), path("TK7-SIM"));
    QVERIFY(published().contains("TK7-SIM"));
    QCOMPARE(platform::serialPortDevice(name), name);
}

void tst_SerialPorts::publishedPortOpens()
{
    symlinkTo(m_pty->slavePath(), path("TK7-SIM"));
    NmeaSerialPort link;
    QSignalSpy refused(&link, &NmeaSerialPort::signalErrorOpenPort);
    link.openPort("TK7-SIM");
    QCOMPARE(refused.count(), 0);
    QTRY_COMPARE(m_pty->received(), QByteArray("$VRCNT\r\n"));
    link.closePort();
}

QTEST_GUILESS_MAIN(tst_SerialPorts)
#include "tst_serialports.moc"
