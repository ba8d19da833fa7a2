#include "simulator/line/linespeed.h"
#include "simulator/line/portlink.h"
#include "simulator/line/pseudoterminal.h"

#include "idleloop.h"
#include "terminalclient.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

using namespace tk7sim;

class TestSimTerminal : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void isRaw();
    void tellsSpeed_data();
    void tellsSpeed();
    void unknownSpeedIsNone();
    void noticesComingAndGoing();
    void keepsNothingForNobody();
    void nextUserFindsNothingUnread();
    void readsWhatAVisitorLeft();
    void lastWordsHaveTheirSpeed_data();
    void lastWordsHaveTheirSpeed();
    void speedStaysForProgramsThatSetNone();
    void fullBufferTakesNoMore();
    void doesNotSpin_data();
    void doesNotSpin();
    void reportsALockedTerminal();
    void closesInsideASlot();

    void publishes();
    void replacesAStaleLink();
    void removesOnlyItsOwnLink();
    void tightensTheFolder();
    void refusesToPublish_data();
    void refusesToPublish();
    void removesLinkAtTheEnd();

private:
    QString linkFile(const QString &name) const;

    std::unique_ptr<QTemporaryDir> m_runtime;
    QByteArray m_oldRuntime;
};

namespace {

constexpr mode_t permissionBits = 0777;

} // namespace

void TestSimTerminal::init()
{
    m_oldRuntime = qgetenv("XDG_RUNTIME_DIR");
    m_runtime = std::make_unique<QTemporaryDir>();
    QVERIFY(m_runtime->isValid());
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime->path()));
}

void TestSimTerminal::cleanup()
{
    qputenv("XDG_RUNTIME_DIR", m_oldRuntime);
    qunsetenv("TMPDIR");
}

QString TestSimTerminal::linkFile(const QString &name) const
{
    return m_runtime->path() + QStringLiteral("/tk7-ports/") + name;
}

// Nothing is echoed, and no byte is held back or changed.
void TestSimTerminal::isRaw()
{
    PseudoTerminal terminal;
    QVERIFY2(terminal.open(), qPrintable(terminal.errorString()));
    QByteArray heard;
    connect(&terminal, &PseudoTerminal::bytesReceived, this,
            [&](const QByteArray &bytes) { heard += bytes; });
    TerminalClient client;
    QVERIFY(client.open(terminal.deviceName()));
    QTRY_VERIFY(terminal.isAttached());

    QByteArray all;
    for (int i = 0; i < 256; ++i) {
        all.append(static_cast<char>(i));
    }
    QCOMPARE(terminal.write(all), all.size());
    QTRY_COMPARE(client.received(), all);
    QVERIFY(client.write(all));
    QTRY_COMPARE(heard, all);
    QCOMPARE(client.received(), all);
}

void TestSimTerminal::tellsSpeed_data()
{
    QTest::addColumn<int>("baud");
    for (const int baud : lineSpeeds) {
        QTest::addRow("%d", baud) << baud;
    }
}

void TestSimTerminal::tellsSpeed()
{
    QFETCH(int, baud);
    PseudoTerminal terminal;
    QVERIFY(terminal.open());
    QSignalSpy heard(&terminal, &PseudoTerminal::bytesReceived);
    TerminalClient client;
    QVERIFY(client.open(terminal.deviceName()));
    QVERIFY(client.setSpeed(baud));
    QCOMPARE(terminal.lineSpeed(), baud);
    QVERIFY(client.write("x"));
    QTRY_COMPARE(heard.count(), 1);
    QCOMPARE(heard.at(0).at(1).toInt(), baud);
}

void TestSimTerminal::unknownSpeedIsNone()
{
    PseudoTerminal terminal;
    QCOMPARE(terminal.lineSpeed(), 0);
    QVERIFY(terminal.open());
    TerminalClient client;
    QVERIFY(client.open(terminal.deviceName()));
    termios settings{};
    QCOMPARE(::tcgetattr(client.descriptor(), &settings), 0);
    QCOMPARE(::cfsetspeed(&settings, B300), 0);
    QCOMPARE(::tcsetattr(client.descriptor(), TCSANOW, &settings), 0);
    QCOMPARE(terminal.lineSpeed(), 0);
}

void TestSimTerminal::noticesComingAndGoing()
{
    PseudoTerminal terminal;
    QVERIFY(terminal.open());
    QSignalSpy changed(&terminal, &PseudoTerminal::attachedChanged);
    TerminalClient client;
    for (int i = 0; i < 3; ++i) {
        QVERIFY(!terminal.isAttached());
        QVERIFY(client.open(terminal.deviceName()));
        QTRY_VERIFY(terminal.isAttached());
        client.close();
        QTRY_VERIFY(!terminal.isAttached());
    }
    QCOMPARE(changed.count(), 6);
}

void TestSimTerminal::keepsNothingForNobody()
{
    PseudoTerminal terminal;
    QVERIFY(terminal.open());
    QCOMPARE(terminal.write("old"), 0);
    TerminalClient client;
    QVERIFY(client.open(terminal.deviceName()));
    QTRY_VERIFY(terminal.isAttached());
    QCOMPARE(terminal.write("new"), 3);
    QTRY_COMPARE(client.received(), QByteArray("new"));
}

void TestSimTerminal::nextUserFindsNothingUnread()
{
    PseudoTerminal terminal;
    QVERIFY(terminal.open());
    TerminalClient first;
    QVERIFY(first.open(terminal.deviceName(), TerminalClient::ReadMode::Ignore));
    QTRY_VERIFY(terminal.isAttached());
    QCOMPARE(terminal.write("old"), 3);
    first.close();
    QTRY_VERIFY(!terminal.isAttached());

    TerminalClient second;
    QVERIFY(second.open(terminal.deviceName()));
    QTRY_VERIFY(terminal.isAttached());
    QCOMPARE(terminal.write("new"), 3);
    QTRY_COMPARE(second.received(), QByteArray("new"));
}

// Somebody opens, writes and closes before the terminal has looked once.
void TestSimTerminal::readsWhatAVisitorLeft()
{
    PseudoTerminal terminal;
    QVERIFY(terminal.open());
    QSignalSpy heard(&terminal, &PseudoTerminal::bytesReceived);
    TerminalClient client;
    QVERIFY(client.open(terminal.deviceName()));
    QVERIFY(client.setSpeed(9600));
    QVERIFY(client.write("hello"));
    client.close();
    QTRY_COMPARE(heard.count(), 1);
    QCOMPARE(heard.at(0).at(0).toByteArray(), QByteArray("hello"));
    QCOMPARE(heard.at(0).at(1).toInt(), 9600);
    QVERIFY(!terminal.isAttached());
}

// A port that is closed gets its old settings back, on a busy machine long before its last bytes
// are read, and long before it is closed.
void TestSimTerminal::lastWordsHaveTheirSpeed_data()
{
    QTest::addColumn<int>("formerSpeed");
    QTest::addColumn<bool>("isOpenStill");
    QTest::addColumn<bool>("isSpokenTo");
    QTest::newRow("closed") << 0 << false << false;
    QTest::newRow("open still") << 0 << true << false;
    QTest::newRow("spoken to, closed") << 0 << false << true;
    QTest::newRow("spoken to, open still") << 0 << true << true;
    QTest::newRow("former program was killed") << 9600 << true << true;
}

void TestSimTerminal::lastWordsHaveTheirSpeed()
{
    QFETCH(int, formerSpeed);
    QFETCH(bool, isOpenStill);
    QFETCH(bool, isSpokenTo);
    PseudoTerminal terminal;
    QVERIFY(terminal.open());
    QSignalSpy heard(&terminal, &PseudoTerminal::bytesReceived);
    TerminalClient client;
    if (formerSpeed != 0) {
        QVERIFY(client.open(terminal.deviceName()));
        QVERIFY(client.setSpeed(formerSpeed));
        QTRY_VERIFY(terminal.isAttached());
        client.close();
        QTRY_VERIFY(!terminal.isAttached());
    }
    QVERIFY(client.open(terminal.deviceName()));
    QVERIFY(client.setSpeed(115200));
    QVERIFY(client.write("first"));
    QTRY_COMPARE(heard.count(), 1);
    QVERIFY(client.write("last"));
    QVERIFY(client.restoreSettings());
    const int port = ::dup(client.descriptor());
    client.close();
    if (!isOpenStill) {
        ::close(port);
    }
    if (isSpokenTo) {
        terminal.write("traffic");
    }
    QTRY_COMPARE(heard.count(), 2);
    QCOMPARE(heard.at(1).at(0).toByteArray(), QByteArray("last"));
    QCOMPARE(heard.at(1).at(1).toInt(), 115200);
    if (isOpenStill) {
        ::close(port);
    }
}

// As on a serial port, whose settings outlast the programs.
void TestSimTerminal::speedStaysForProgramsThatSetNone()
{
    PseudoTerminal terminal;
    QVERIFY(terminal.open());
    QSignalSpy heard(&terminal, &PseudoTerminal::bytesReceived);
    TerminalClient client;
    QVERIFY(client.open(terminal.deviceName()));
    QCOMPARE(terminal.lineSpeed(), 0);
    QVERIFY(client.setSpeed(9600));
    QTRY_VERIFY(terminal.isAttached());
    client.close();
    QTRY_VERIFY(!terminal.isAttached());

    QVERIFY(client.open(terminal.deviceName()));
    QVERIFY(client.write("x"));
    QTRY_COMPARE(heard.count(), 1);
    QCOMPARE(heard.at(0).at(1).toInt(), 9600);
}

void TestSimTerminal::fullBufferTakesNoMore()
{
    PseudoTerminal terminal;
    QVERIFY(terminal.open());
    TerminalClient client;
    QVERIFY(client.open(terminal.deviceName(), TerminalClient::ReadMode::Ignore));
    QTRY_VERIFY(terminal.isAttached());
    const QByteArray block(1000, 'x');
    int blocks = 0;
    while (blocks < 10000 && terminal.write(block) == block.size()) {
        ++blocks;
    }
    QVERIFY(blocks < 10000);
}

void TestSimTerminal::doesNotSpin_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"never opened", "attached", "left", "closed"}) {
        QTest::newRow(state) << QString::fromLatin1(state);
    }
}

void TestSimTerminal::doesNotSpin()
{
    QFETCH(QString, state);
    PseudoTerminal terminal;
    QVERIFY(terminal.open());
    TerminalClient client;
    if (state != QLatin1String("never opened")) {
        QVERIFY(client.open(terminal.deviceName()));
        QTRY_VERIFY(terminal.isAttached());
    }
    if (state == QLatin1String("left")) {
        client.close();
        QTRY_VERIFY(!terminal.isAttached());
    }
    if (state == QLatin1String("closed")) {
        terminal.close();
        client.close();
    }
    const int turns = turnsOfIdleLoop();
    QVERIFY2(turns < fewTurns, qPrintable(QString::number(turns)));
}

// A program that was killed leaves its exclusive use behind, which binds everybody but root.
void TestSimTerminal::reportsALockedTerminal()
{
    constexpr uid_t nobody = 65534;
    const uid_t self = ::geteuid();
    if (self == 0) {
        QCOMPARE(::seteuid(nobody), 0);
    }
    {
        PseudoTerminal terminal;
        QVERIFY2(terminal.open(), qPrintable(terminal.errorString()));
        QSignalSpy locked(&terminal, &PseudoTerminal::lockedOut);
        TerminalClient client;
        QVERIFY(client.open(terminal.deviceName()));
        QTRY_VERIFY(terminal.isAttached());
        client.close();
        QTRY_VERIFY(!terminal.isAttached());
        QCOMPARE(locked.count(), 0);

        QVERIFY(client.open(terminal.deviceName()));
        QTRY_VERIFY(terminal.isAttached());
        QCOMPARE(::ioctl(client.descriptor(), TIOCEXCL), 0);
        client.close();
        QTRY_COMPARE(locked.count(), 1);
    }
    QCOMPARE(::seteuid(self), 0);
}

void TestSimTerminal::closesInsideASlot()
{
    PseudoTerminal terminal;
    QVERIFY(terminal.open());
    TerminalClient client;
    QVERIFY(client.open(terminal.deviceName()));
    QTRY_VERIFY(terminal.isAttached());
    connect(&terminal, &PseudoTerminal::bytesReceived, this, [&] { terminal.close(); });
    QVERIFY(client.write("x"));
    QTRY_VERIFY(!terminal.isOpen());
    QTRY_VERIFY(client.isHungUp());
    QVERIFY(terminal.deviceName().isEmpty());
}

void TestSimTerminal::publishes()
{
    PortLink link;
    QVERIFY2(link.publish(QStringLiteral("one"), QStringLiteral("/dev/pts/77")),
             qPrintable(link.errorString()));
    QCOMPARE(link.name(), QStringLiteral("one"));
    QCOMPARE(link.path(), linkFile(QStringLiteral("one")));
    QCOMPARE(QFile::symLinkTarget(link.path()), QStringLiteral("/dev/pts/77"));
    struct stat info
    {
    };
    QCOMPARE(::stat(QFile::encodeName(PortLink::folder()).constData(), &info), 0);
    QCOMPARE(int(info.st_mode & permissionBits), 0700);
    // Nothing is left beside the link.
    QCOMPARE(QDir(PortLink::folder())
                 .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList(QStringLiteral("one")));
}

void TestSimTerminal::replacesAStaleLink()
{
    PortLink old;
    QVERIFY(old.publish(QStringLiteral("one"), QStringLiteral("/dev/pts/77")));
    PortLink link;
    QVERIFY(link.publish(QStringLiteral("one"), QStringLiteral("/dev/pts/78")));
    QCOMPARE(QFile::symLinkTarget(linkFile(QStringLiteral("one"))), QStringLiteral("/dev/pts/78"));
}

void TestSimTerminal::removesOnlyItsOwnLink()
{
    PortLink old;
    QVERIFY(old.publish(QStringLiteral("one"), QStringLiteral("/dev/pts/77")));
    PortLink link;
    QVERIFY(link.publish(QStringLiteral("one"), QStringLiteral("/dev/pts/78")));
    old.remove();
    QVERIFY(QFileInfo(linkFile(QStringLiteral("one"))).isSymLink());
    link.remove();
    QVERIFY(!QFileInfo(linkFile(QStringLiteral("one"))).isSymLink());
    QVERIFY(link.name().isEmpty());
    QVERIFY(link.path().isEmpty());
}

void TestSimTerminal::tightensTheFolder()
{
    const QByteArray folder = QFile::encodeName(m_runtime->path() + QStringLiteral("/tk7-ports"));
    QCOMPARE(::mkdir(folder.constData(), 0700), 0);
    QCOMPARE(::chmod(folder.constData(), 0755), 0);
    PortLink link;
    QVERIFY(link.publish(QStringLiteral("one"), QStringLiteral("/dev/pts/77")));
    struct stat info
    {
    };
    QCOMPARE(::stat(folder.constData(), &info), 0);
    QCOMPARE(int(info.st_mode & permissionBits), 0700);
}

void TestSimTerminal::refusesToPublish_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("empty name") << QString() << QString();
    QTest::newRow("path as name") << QStringLiteral("../one") << QString();
    QTest::newRow("hidden name") << QStringLiteral(".one") << QString();
    QTest::newRow("very long name") << QString(65, QLatin1Char('x')) << QString();
    QTest::newRow("a file of that name") << QStringLiteral("one") << QStringLiteral("file");
    QTest::newRow("the folder is a link") << QStringLiteral("one") << QStringLiteral("link");
    QTest::newRow("the folder is a file") << QStringLiteral("one") << QStringLiteral("no folder");
    QTest::newRow("no runtime folder") << QStringLiteral("one") << QStringLiteral("no runtime");
}

void TestSimTerminal::refusesToPublish()
{
    QFETCH(QString, name);
    QFETCH(QString, obstacle);
    const QString folder = m_runtime->path() + QStringLiteral("/tk7-ports");
    QTemporaryDir elsewhere;
    QFile file;
    if (obstacle == QLatin1String("file")) {
        QVERIFY(QDir().mkpath(folder));
        file.setFileName(linkFile(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    } else if (obstacle == QLatin1String("link")) {
        QVERIFY(QFile::link(elsewhere.path(), folder));
    } else if (obstacle == QLatin1String("no folder")) {
        file.setFileName(folder);
        QVERIFY(file.open(QIODevice::WriteOnly));
    } else if (obstacle == QLatin1String("no runtime")) {
        qputenv("XDG_RUNTIME_DIR", "");
        // Qt's second choice is a folder for temporary files.
        qputenv("TMPDIR", QFile::encodeName(m_runtime->path()));
        const QString user = QString::fromLocal8Bit(::getpwuid(::geteuid())->pw_name);
        file.setFileName(m_runtime->filePath(QStringLiteral("runtime-") + user));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(PortLink::folder().isEmpty());
    }
    PortLink link;
    QVERIFY(!link.publish(name, QStringLiteral("/dev/pts/77")));
    QVERIFY(!link.errorString().isEmpty());
    QVERIFY(link.name().isEmpty());
    QVERIFY(QDir(elsewhere.path()).isEmpty());
}

void TestSimTerminal::removesLinkAtTheEnd()
{
    {
        PortLink link;
        QVERIFY(link.publish(QStringLiteral("one"), QStringLiteral("/dev/pts/77")));
    }
    QVERIFY(!QFileInfo(linkFile(QStringLiteral("one"))).isSymLink());
}

QTEST_GUILESS_MAIN(TestSimTerminal)
#include "tst_simterminal.moc"
