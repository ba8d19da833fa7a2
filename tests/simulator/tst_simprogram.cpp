#include "simulator/line/sentence.h"
#include "simulator/router/faults.h"

#include "terminalclient.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

using namespace tk7sim;

/*! The program, started as a user or a script starts it. */
class TestSimProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void printsItsNames();
    void namesItself();
    void removesItsLink_data();
    void removesItsLink();
    void needsNoRuntimeFolder();
    void wrongUse_data();
    void wrongUse();
    void explainsItself();
    void listsFaults();
    void isDocumented();
    void optionsReachTheRouter();
    void faultsReachTheRouter();
    void handoverReachesTheRouter();
    void aisOptionsReachTheRouter();
    void aisReplayIsRefused();
    void keepsItsEeprom();
    void reportsABrokenEeprom();
    void verbosePrintsSentences();
    void verboseHidesPasswords();
    void firmwareIsAnnounced();
    void quietPrintsOnlyNames();
    void pullsAndPutsBackTheCable();

private:
    void start(const QStringList &arguments);
    void stop();
    QString value(const QString &key);
    void connectTool(int baud = 4800);
    QString runtimeFile(const QString &name) const;

    std::unique_ptr<QTemporaryDir> m_runtime;
    std::unique_ptr<QProcess> m_program;
    std::unique_ptr<TerminalClient> m_tool;
    QByteArray m_output;
    QByteArray m_complaints;
};

namespace {

constexpr int timeout = 10000;
constexpr const char *allOptions[] = {"--name",        "--speed",   "--port",      "--firmware",
                                      "--mode",        "--bank",    "--eeprom",    "--rate",
                                      "--silence",     "--fault",   "--seed",      "--keep-speed",
                                      "--list-faults", "--quiet",   "--verbose",   "--help",
                                      "--handover",    "--vessels", "--ais-replay"};

} // namespace

void TestSimProgram::init()
{
    m_runtime = std::make_unique<QTemporaryDir>();
    QVERIFY(m_runtime->isValid());
    m_program = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime->path());
    m_program->setProcessEnvironment(environment);
    m_output.clear();
    m_complaints.clear();
    connect(m_program.get(), &QProcess::readyReadStandardOutput, this,
            [this] { m_output += m_program->readAllStandardOutput(); });
    connect(m_program.get(), &QProcess::readyReadStandardError, this,
            [this] { m_complaints += m_program->readAllStandardError(); });
    m_tool = std::make_unique<TerminalClient>();
}

void TestSimProgram::cleanup()
{
    m_tool.reset();
    if (m_program->state() != QProcess::NotRunning) {
        m_program->kill();
        m_program->waitForFinished();
    }
    m_program.reset();
}

void TestSimProgram::start(const QStringList &arguments)
{
    m_output.clear();
    m_program->start(QStringLiteral(TK7_ROUTER_SIM), arguments);
    QVERIFY(m_program->waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(
        m_output.contains("\nspeed: ") || m_program->state() == QProcess::NotRunning, timeout);
}

void TestSimProgram::stop()
{
    m_program->terminate();
    QTRY_COMPARE_WITH_TIMEOUT(m_program->state(), QProcess::NotRunning, timeout);
    QCOMPARE(m_program->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_program->exitCode(), 0);
}

// The last value that the program has printed for the key.
QString TestSimProgram::value(const QString &key)
{
    QString result;
    const auto lines = m_output.split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(QByteArray(key.toLatin1() + ": "))) {
            result = QString::fromLocal8Bit(line.mid(key.size() + 2));
        }
    }
    return result;
}

void TestSimProgram::connectTool(int baud)
{
    QVERIFY(m_tool->open(value(QStringLiteral("device"))));
    for (const int speed : {baud, 115200}) {
        m_tool->clear();
        QVERIFY(m_tool->setSpeed(speed));
        QVERIFY(m_tool->write("$VRCNT\r\n"));
        QTRY_COMPARE_WITH_TIMEOUT(m_tool->lines().size(), 1, timeout);
    }
}

QString TestSimProgram::runtimeFile(const QString &name) const
{
    return m_runtime->filePath(name);
}

void TestSimProgram::printsItsNames()
{
    start({});
    const QString link = runtimeFile(QStringLiteral("tk7-ports/tk7-sim"));
    const QString device = QFile::symLinkTarget(link);
    QVERIFY(!device.isEmpty());
    QCOMPARE(
        QString::fromLocal8Bit(m_output),
        QStringLiteral("port: tk7-sim\nlink: %1\ndevice: %2\nspeed: 4800\n").arg(link, device));
}

void TestSimProgram::namesItself()
{
    start({QStringLiteral("--name"), QStringLiteral("bridge"), QStringLiteral("--speed"),
           QStringLiteral("57600")});
    QCOMPARE(value(QStringLiteral("port")), QStringLiteral("bridge"));
    QCOMPARE(value(QStringLiteral("speed")), QStringLiteral("57600"));
    QVERIFY(QFileInfo(runtimeFile(QStringLiteral("tk7-ports/bridge"))).isSymLink());
}

void TestSimProgram::removesItsLink_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("termination") << SIGTERM;
    QTest::newRow("hang-up") << SIGHUP;
}

void TestSimProgram::removesItsLink()
{
    QFETCH(int, signal);
    start({});
    const QFileInfo link(runtimeFile(QStringLiteral("tk7-ports/tk7-sim")));
    QVERIFY(link.isSymLink());
    QCOMPARE(::kill(static_cast<pid_t>(m_program->processId()), signal), 0);
    QTRY_COMPARE_WITH_TIMEOUT(m_program->state(), QProcess::NotRunning, timeout);
    QCOMPARE(m_program->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_program->exitCode(), 0);
    QVERIFY(!QFileInfo(link.filePath()).isSymLink());
}

void TestSimProgram::needsNoRuntimeFolder()
{
    QFile obstacle(runtimeFile(QStringLiteral("tk7-ports")));
    QVERIFY(obstacle.open(QIODevice::WriteOnly));
    start({});
    QVERIFY(value(QStringLiteral("port")).startsWith(QLatin1Char('/')));
    QCOMPARE(value(QStringLiteral("port")), value(QStringLiteral("device")));
    QCOMPARE(value(QStringLiteral("link")), QString());
    QTRY_VERIFY(m_complaints.contains("not a folder"));
    connectTool();
}

void TestSimProgram::wrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const QString &arguments, const char *text) {
        QTest::newRow(qPrintable(arguments))
            << arguments.split(QLatin1Char(' ')) << QByteArray(text);
    };
    row(QStringLiteral("--nonsense"), "nonsense");
    row(QStringLiteral("file"), "unexpected argument: file");
    row(QStringLiteral("--speed 1200"), "no such speed: 1200");
    row(QStringLiteral("--speed fast"), "no such speed: fast");
    row(QStringLiteral("--name a/b"), "a/b");
    row(QStringLiteral("--port 12"), "--port takes a number from 0 to 11");
    row(QStringLiteral("--port x"), "--port takes a number from 0 to 11");
    row(QStringLiteral("--rate -1"), "--rate takes a number from 0 to 1000");
    row(QStringLiteral("--rate 1001"), "--rate takes a number from 0 to 1000");
    row(QStringLiteral("--vessels -1"), "--vessels takes a number from 0 to 20000");
    row(QStringLiteral("--vessels 20001"), "--vessels takes a number from 0 to 20000");
    row(QStringLiteral("--ais-replay file"), "--ais-replay file");
    row(QStringLiteral("--ais-replay 12:file"), "--ais-replay 12:file");
    row(QStringLiteral("--ais-replay x:file"), "--ais-replay x:file");
    row(QStringLiteral("--ais-replay 3:"), "--ais-replay 3:");
    row(QStringLiteral("--reboot x"), "--reboot takes a number from 0 to 3600");
    row(QStringLiteral("--fault fw-silent-at=1.5"), "a wrong value");
    row(QStringLiteral("--fault fw-refuse=1"), "a wrong value");
    row(QStringLiteral("--handover 3601"), "--handover takes a number from 0 to 3600");
    row(QStringLiteral("--firmware 3"), "not a firmware version: 3");
    row(QStringLiteral("--firmware 3.x"), "not a firmware version: 3.x");
    row(QStringLiteral("--firmware 3.256"), "not a firmware version: 3.256");
    row(QStringLiteral("--mode A*B"), "letters and digits");
    row(QStringLiteral("--fault gremlins"), "no such fault: gremlins");
    row(QStringLiteral("--fault silent=3"), "a wrong value");
    row(QStringLiteral("--fault slow=x"), "a wrong value");
    row(QStringLiteral("--fault noise=101"), "a wrong value");
    row(QStringLiteral("--fault input-silent=12"), "a wrong value");
    row(QStringLiteral("--fault input-silent=1.5"), "a wrong value");
}

void TestSimProgram::wrongUse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, text);
    m_program->start(QStringLiteral(TK7_ROUTER_SIM), arguments);
    QVERIFY(m_program->waitForFinished(timeout));
    QCOMPARE(m_program->exitCode(), 1);
    QVERIFY2(m_complaints.contains(text), m_complaints.constData());
    QVERIFY(m_complaints.startsWith("tk7-router-sim: "));
    QCOMPARE(m_output, QByteArray());
}

void TestSimProgram::explainsItself()
{
    m_program->start(QStringLiteral(TK7_ROUTER_SIM), {QStringLiteral("--help")});
    QVERIFY(m_program->waitForFinished(timeout));
    QCOMPARE(m_program->exitCode(), 0);
    for (const char *option : allOptions) {
        QVERIFY2(m_output.contains(option), option);
    }
}

void TestSimProgram::listsFaults()
{
    m_program->start(QStringLiteral(TK7_ROUTER_SIM), {QStringLiteral("--list-faults")});
    QVERIFY(m_program->waitForFinished(timeout));
    QCOMPARE(m_program->exitCode(), 0);
    for (const FaultInfo &info : faultTable()) {
        QVERIFY(m_output.contains(QByteArray(QByteArray("  ") + info.name)));
        QVERIFY(m_output.contains(info.text));
    }
}

void TestSimProgram::isDocumented()
{
    QFile file(QStringLiteral(TK7_SIMULATOR_DOC));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    for (const char *option : allOptions) {
        QVERIFY2(text.contains(option), option);
    }
    for (const FaultInfo &info : faultTable()) {
        QVERIFY2(text.contains(QByteArray(QByteArray("| `") + info.name)), info.name);
    }
}

void TestSimProgram::optionsReachTheRouter()
{
    start({QStringLiteral("--speed"), QStringLiteral("19200"), QStringLiteral("--port"),
           QStringLiteral("9"), QStringLiteral("--firmware"), QStringLiteral("4.1"),
           QStringLiteral("--mode"), QStringLiteral("TEST1"), QStringLiteral("--bank"),
           QStringLiteral("1")});
    connectTool(19200);
    QCOMPARE(m_tool->received(), withChecksum("$VRCNU,9"));
    QVERIFY(m_tool->write("$VRVER\r\n$VRRLD\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith("$VRWBL\r\n"), timeout);
    QVERIFY(m_tool->received().contains(withChecksum("$VRVER,4.1")));
    QVERIFY(m_tool->received().contains(withChecksum("$VRMOD,TEST1")));
    QVERIFY(m_tool->received().contains(withChecksum("$VRFBK,1")));
}

void TestSimProgram::faultsReachTheRouter()
{
    start({QStringLiteral("--fault"), QStringLiteral("busy"), QStringLiteral("--fault"),
           QStringLiteral("slow=100")});
    QVERIFY(m_tool->open(value(QStringLiteral("device"))));
    QVERIFY(m_tool->setSpeed(4800));
    QElapsedTimer clock;
    clock.start();
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE_WITH_TIMEOUT(m_tool->received(), QByteArray("$VRCNB\r\n"), timeout);
    QVERIFY(clock.elapsed() >= 100);
}

void TestSimProgram::handoverReachesTheRouter()
{
    start({QStringLiteral("--fault"), QStringLiteral("input-silent=0"), QStringLiteral("--fault"),
           QStringLiteral("input-silent=2"), QStringLiteral("--handover"), QStringLiteral("0"),
           QStringLiteral("--rate"), QStringLiteral("20")});
    connectTool();
    // The first two channels of the first output: both main inputs are silent.
    QVERIFY(m_tool->write("$VRVVW,0\r\n"));
    QTRY_VERIFY(m_tool->received().contains("$GNRMC"));
    QVERIFY(m_tool->write("$VRVVW,1\r\n"));
    QTRY_VERIFY(m_tool->received().contains("$HCHDG"));
    QVERIFY(!m_tool->received().contains("$GP"));
    QVERIFY(!m_tool->received().contains("$HEHDT"));
}

void TestSimProgram::aisOptionsReachTheRouter()
{
    const QString file = runtimeFile(QStringLiteral("ais:lines"));
    QFile lines(file);
    QVERIFY(lines.open(QIODevice::WriteOnly));
    QVERIFY(lines.write(withChecksum("!AIVDM,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0") + "torn\n")
            > 0);
    lines.close();
    start({QStringLiteral("--vessels"), QStringLiteral("500"), QStringLiteral("--rate"),
           QStringLiteral("10"), QStringLiteral("--ais-replay"), QStringLiteral("10:") + file});
    QTRY_VERIFY(m_complaints.contains("left out"));
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(
        m_tool->received().contains(withChecksum("$VRAIM,1,1,,A,177KQJ5000G?tO`K>RA1wUbN0TKH,0")),
        timeout);
    // So many vessels are heard at all ports.
    for (const char *port : {"0", "5", "B"}) {
        const QByteArray head = QByteArray("$VRAIM,1,1,,") + port + ',';
        QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().contains(head), timeout);
    }
    QTRY_VERIFY_WITH_TIMEOUT(m_output.endsWith("AIS test on\n"), timeout);
    QVERIFY(m_tool->write("$VRATM,OFF\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_output.endsWith("AIS test off\n"), timeout);
}

void TestSimProgram::aisReplayIsRefused()
{
    const QString file = runtimeFile(QStringLiteral("missing"));
    m_program->start(QStringLiteral(TK7_ROUTER_SIM),
                     {QStringLiteral("--ais-replay"), QStringLiteral("3:") + file});
    QVERIFY(m_program->waitForFinished(timeout));
    QCOMPARE(m_program->exitCode(), 1);
    QVERIFY2(m_complaints.contains(file.toLocal8Bit()), m_complaints.constData());
    QCOMPARE(m_output, QByteArray());
}

void TestSimProgram::keepsItsEeprom()
{
    const QString file = runtimeFile(QStringLiteral("eeprom.json"));
    const QStringList arguments{QStringLiteral("--eeprom"), file};
    start(arguments);
    connectTool();
    QVERIFY(m_tool->write(withChecksum("$VRPNM,I,6,Kept,,,,,") + "$VRSVR\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith("$VRSRO\r\n"), timeout);
    m_tool->close();
    stop();
    QVERIFY(QFile::exists(file));

    start(arguments);
    connectTool();
    QVERIFY(m_tool->write("$VRRLD\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith("$VRWBL\r\n"), timeout);
    QVERIFY(m_tool->received().contains("$VRPNM,I,6,Kept,,"));
}

void TestSimProgram::reportsABrokenEeprom()
{
    QFile file(runtimeFile(QStringLiteral("eeprom.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write("torn") > 0);
    file.close();
    start({QStringLiteral("--eeprom"), file.fileName()});
    QTRY_VERIFY(m_complaints.contains("factory set-up"));
    connectTool();
}

void TestSimProgram::verbosePrintsSentences()
{
    start({QStringLiteral("--verbose")});
    connectTool();
    QTRY_VERIFY(m_output.contains("connected\n"));
    QVERIFY(m_output.contains("<- $VRCNT\n"));
    QVERIFY(m_output.contains(QByteArray("-> " + withChecksum("$VRCNU,0").trimmed() + '\n')));
    QVERIFY(m_output.contains("speed: 115200\n"));
    QVERIFY(m_tool->write("$\x80\t\r\n"));
    QTRY_VERIFY(m_output.contains("<- $\\x80\\x09\n"));
}

// Whatever is done with a password, right or wrong, set, seen or saved.
void TestSimProgram::verboseHidesPasswords()
{
    const QString file = runtimeFile(QStringLiteral("eeprom.json"));
    start({QStringLiteral("--verbose"), QStringLiteral("--eeprom"), file});
    connectTool();
    m_tool->clear();
    const auto unlock = [](const char *password) {
        return withChecksum(QByteArray("$VRPWU,") + password);
    };
    QVERIFY(m_tool->write(
        withChecksum("$VRPWS,Sesame77") + "$VRLGO\r\n" + unlock("Wrong88") + unlock("Sesame77")
        + unlock("simlevel5") + "$VRPWV\r\n" + withChecksum("$VRPWS,Second99") + "$VRPWV\r\n"
        + "$VRPWU,Unchecked66\r\n" + withWrongChecksum("$VRPWU,Spoilt55") + "$VRSVR\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith("$VRSRO\r\n"), timeout);
    QVERIFY(m_tool->received().contains(withChecksum("$VRPWV,Sesame77")));
    QVERIFY(m_tool->received().contains(withChecksum("$VRPWV,Second99")));
    m_tool->close();
    stop();
    QCOMPARE(m_output.count("<- $VRPWS,***\n"), 2);
    QCOMPARE(m_output.count("<- $VRPWU,***\n"), 5);
    QCOMPARE(m_output.count("-> $VRPWV,***\n"), 2);
    QCOMPARE(m_output.count(QByteArray("-> " + withChecksum("$VRPWS,OK").trimmed() + '\n')), 2);
    for (const char *secret : {"Sesame", "Wrong88", "Second", "simlevel", "Unchecked", "Spoilt"}) {
        QVERIFY2(!m_output.contains(secret), secret);
        QVERIFY2(!m_complaints.contains(secret), secret);
    }
}

void TestSimProgram::firmwareIsAnnounced()
{
    start({QStringLiteral("--reboot"), QStringLiteral("0.1")});
    connectTool();
    m_tool->clear();
    const QByteArray image = QByteArray("fwVR48abcdefgh\4\2S1", 18);
    QVERIFY(m_tool->write("$VRFWS\r\n"));
    QTRY_VERIFY(m_tool->received().endsWith("$VRFWR\r\n"));
    QVERIFY(m_tool->write(withChecksum("$VRFWP,1," + image.toHex().toUpper()) + "$VRFWF\r\n"));
    QTRY_VERIFY(m_tool->received().endsWith("$VRFWO\r\n"));
    QTRY_VERIFY(m_output.contains("firmware: 18 bytes\n"));
    QVERIFY(m_tool->write("$VRFWW\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_output.endsWith("rebooting\ndisconnected\nversion: 4.2\n")
                                 || m_output.endsWith("disconnected\nrebooting\nversion: 4.2\n"),
                             timeout);
    connectTool();
    m_tool->clear();
    QVERIFY(m_tool->write("$VRVER\r\n"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRVER,4.2"));
}

void TestSimProgram::quietPrintsOnlyNames()
{
    start({QStringLiteral("--quiet")});
    const QByteArray names = m_output;
    connectTool();
    QVERIFY(m_tool->write("$VRSVR\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith("$VRSRO\r\n"), timeout);
    m_tool->close();
    stop();
    QCOMPARE(m_output, names);
}

void TestSimProgram::pullsAndPutsBackTheCable()
{
    start({QStringLiteral("--fault"), QStringLiteral("unplugged=1"), QStringLiteral("--fault"),
           QStringLiteral("replug=0.2")});
    connectTool();
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->isHungUp(), timeout);
    QTRY_COMPARE_WITH_TIMEOUT(m_output.count("port: tk7-sim\n"), 2, timeout);
    QVERIFY(m_output.contains("unplugged\n"));
    QTRY_VERIFY(m_output.endsWith("speed: 115200\n"));
    QVERIFY(m_tool->open(runtimeFile(QStringLiteral("tk7-ports/tk7-sim"))));
    m_tool->clear();
    QVERIFY(m_tool->setSpeed(115200));
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE_WITH_TIMEOUT(m_tool->received(), withChecksum("$VRCNU,0"), timeout);
}

QTEST_GUILESS_MAIN(TestSimProgram)
#include "tst_simprogram.moc"
