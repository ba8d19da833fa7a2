#include "simulator/line/sentence.h"
#include "simulator/router/portstatistics.h"
#include "simulator/router/routercore.h"
#include "simulator/router/routersimulator.h"

#include "terminalclient.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace tk7sim;

/*! What lies behind the service dialog, sentence by sentence. */
class TestSimService : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void chipIdIsTold();
    void chipIdReadsAsText();

    void statistics_data();
    void statistics();
    void statisticsOfNoPort_data();
    void statisticsOfNoPort();
    void statisticsAreCleared();
    void statisticsWithoutASource();
    void wrongChecksumsOfTheToolCount();

    void aisTest_data();
    void aisTest();
    void aisTestEndsWithTheConnection();

    void mode_data();
    void mode();

    void dialog_data();
    void dialog();
    void serviceNeedsAConnection_data();
    void serviceNeedsAConnection();
    void endOfConnectionLocks();
    void restartLocks();
    void downloadTellsTheLock();
    void lockedFaultRefusesAll();
    void passwordIsKeptInTheFile();
    void passwordKeepsTheSavedRules();
    void savedRulesKeepThePassword();
    void failingFileRefusesAPassword_data();
    void failingFileRefusesAPassword();
    void brokenFileHasNoLock();
    void lockChangesAreSignalled();

    void overTheLine();
    void countersGrowOverTheLine();

private:
    void connectTool();
    void hear(const QByteArray &line) { m_core->hear(line); }
    QByteArrayList answers(const QByteArray &line);

    FaultSet m_faults;
    RouterClock m_clock;
    std::unique_ptr<TrafficGenerator> m_traffic;
    std::unique_ptr<PortStatistics> m_statistics;
    std::unique_ptr<RouterCore> m_core;
    QByteArrayList m_said; // bodies
};

namespace {

const QByteArray own = "Owner1";

// A sentence that carries fields has its checksum.
QByteArray lineOf(const QByteArray &body)
{
    return body.contains(',') && !body.startsWith("$VRATM") ? withChecksum(body) : body + "\r\n";
}

} // namespace

void TestSimService::init()
{
    m_faults.clear();
    m_said.clear();
    m_core = std::make_unique<RouterCore>(&m_faults);
    m_traffic = std::make_unique<TrafficGenerator>(m_clock.start());
    m_statistics = std::make_unique<PortStatistics>(&m_clock, m_core->working(), m_traffic.get());
    m_core->setStatistics(m_statistics.get());
    m_core->setSaveDuration(0);
    connect(m_core.get(), &RouterCore::answered, this, [this](const Answer &answer) {
        m_said.append(answer.body);
        if (answer.thenSpeed != 0) {
            m_core->moveTo(answer.thenSpeed);
        }
    });
    connectTool();
}

void TestSimService::cleanup()
{
    m_core.reset();
    m_statistics.reset();
}

void TestSimService::connectTool()
{
    hear("$VRCNT\r\n");
    hear("$VRCNT\r\n");
    QVERIFY(m_core->isConnected());
    m_said.clear();
}

QByteArrayList TestSimService::answers(const QByteArray &line)
{
    m_said.clear();
    hear(line);
    return m_said;
}

void TestSimService::chipIdIsTold()
{
    m_core->status().chipId = QByteArray::fromHex("000102030405060708090A0B0C0DFEFF");
    QCOMPARE(answers("$VRSER\r\n"), QByteArrayList{"$VRSER,000102030405060708090A0B0C0DFEFF"});
}

// Words of four bytes, the last first, each read from its highest byte.
void TestSimService::chipIdReadsAsText()
{
    const QByteArray answer = answers("$VRSER\r\n").constFirst();
    const QByteArray bytes = QByteArray::fromHex(answer.mid(7));
    QCOMPARE(bytes.size(), 16);
    QByteArray text;
    for (int i = int(bytes.size() - 1); i >= 0; --i) {
        text += bytes.at(i);
        text += i % 4 == 0 ? " " : "";
    }
    QCOMPARE(text, QByteArray("TK-7  SIM UNIT 0001 "));
}

void TestSimService::statistics_data()
{
    QTest::addColumn<int>("port");
    for (int port = 0; port < portCount; ++port) {
        QTest::addRow("port %d", port) << port;
    }
}

void TestSimService::statistics()
{
    QFETCH(int, port);
    m_statistics->set(port, {1, 22, 333, 4444, 4294967295U});
    const QByteArray number = QByteArray::number(port);
    QCOMPARE(answers(withChecksum("$VRSTA," + number)),
             QByteArrayList{"$VRSTA," + number + ",1,22,333,4444,4294967295"});
    const QByteArray other = QByteArray::number((port + 1) % portCount);
    QCOMPARE(answers(withChecksum("$VRSTA," + other)),
             QByteArrayList{"$VRSTA," + other + ",0,0,0,0,0"});
}

void TestSimService::statisticsOfNoPort_data()
{
    QTest::addColumn<QByteArray>("fields");
    for (const char *fields : {"12", "255", "-1", "", "x", "1,2", "0x1"}) {
        QTest::newRow(fields) << QByteArray(fields);
    }
}

void TestSimService::statisticsOfNoPort()
{
    QFETCH(QByteArray, fields);
    QCOMPARE(answers(withChecksum("$VRSTA," + fields)), QByteArrayList());
    QCOMPARE(m_core->complaints().refusedSentences, 1U);
}

void TestSimService::statisticsAreCleared()
{
    for (int port = 0; port < portCount; ++port) {
        m_statistics->set(port, {1, 2, 3, 4, 5});
    }
    QCOMPARE(answers("$VRSTC\r\n"), QByteArrayList());
    for (int port = 0; port < portCount; ++port) {
        QVERIFY(m_statistics->at(port) == PortCounters());
    }
}

void TestSimService::statisticsWithoutASource()
{
    m_core->setStatistics(nullptr);
    QCOMPARE(answers(withChecksum("$VRSTA,3")), QByteArrayList{"$VRSTA,3,0,0,0,0,0"});
    QCOMPARE(answers("$VRSTC\r\n"), QByteArrayList());
    hear(withWrongChecksum("$VRSTA,3"));
    QCOMPARE(m_core->complaints().checksumErrors, 1U);
}

void TestSimService::wrongChecksumsOfTheToolCount()
{
    m_core->status().controlPort = 7;
    hear(withWrongChecksum("$VRSPD,0,9600"));
    hear(withWrongChecksum("$VRSTA,3"));
    QCOMPARE(answers(withChecksum("$VRSTA,7")), QByteArrayList{"$VRSTA,7,0,2,0,0,0"});
}

void TestSimService::aisTest_data()
{
    QTest::addColumn<bool>("before");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("after");
    QTest::newRow("on") << false << QByteArray("$VRATM,ON\r\n") << true;
    QTest::newRow("on again") << true << QByteArray("$VRATM,ON\r\n") << true;
    QTest::newRow("off") << true << QByteArray("$VRATM,OFF\r\n") << false;
    QTest::newRow("off again") << false << QByteArray("$VRATM,OFF\r\n") << false;
    QTest::newRow("neither") << true << QByteArray("$VRATM,MAYBE\r\n") << true;
    QTest::newRow("small letters") << false << QByteArray("$VRATM,on\r\n") << false;
    QTest::newRow("bare") << false << QByteArray("$VRATM\r\n") << false;
    QTest::newRow("two fields") << false << QByteArray("$VRATM,ON,\r\n") << false;
}

void TestSimService::aisTest()
{
    QFETCH(bool, before);
    QFETCH(QByteArray, line);
    QFETCH(bool, after);
    if (before) {
        hear("$VRATM,ON\r\n");
    }
    QCOMPARE(m_core->isAisTestOn(), before);
    QSignalSpy changed(m_core.get(), &RouterCore::aisTestChanged);
    QCOMPARE(answers(line), QByteArrayList());
    QCOMPARE(m_core->isAisTestOn(), after);
    QCOMPARE(changed.count(), before == after ? 0 : 1);
}

void TestSimService::aisTestEndsWithTheConnection()
{
    hear("$VRATM,ON\r\n");
    QSignalSpy changed(m_core.get(), &RouterCore::aisTestChanged);
    hear("$VRDCN\r\n");
    QVERIFY(!m_core->isAisTestOn());
    QCOMPARE(changed.count(), 1);
}

void TestSimService::mode_data()
{
    QTest::addColumn<int>("level"); // -1: no lock
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("ok");
    for (int level = -1; level <= LockStore::maxLevel; ++level) {
        QTest::addRow("level %d", level) << level << QByteArray("NIGHT") << (level >= 4);
    }
    QTest::newRow("eight characters") << 4 << QByteArray("abcdEF12") << true;
    QTest::newRow("nine characters") << 4 << QByteArray("abcdEF123") << false;
    QTest::newRow("none") << 4 << QByteArray() << false;
    QTest::newRow("a hyphen") << 5 << QByteArray("A-B") << false;
    QTest::newRow("a comma") << 5 << QByteArray("A,B") << false;
}

void TestSimService::mode()
{
    QFETCH(int, level);
    QFETCH(QByteArray, text);
    QFETCH(bool, ok);
    m_core->lock().set(level >= 0, qMax(level, 0), own);
    QSignalSpy changed(m_core.get(), &RouterCore::modeChanged);
    const QByteArrayList report{"$VRMOD," + text};
    QCOMPARE(answers(withChecksum("$VRMOD," + text)), ok ? report : QByteArrayList());
    QCOMPARE(m_core->status().mode, ok ? text : QByteArray("NORMAL"));
    QCOMPARE(changed.count(), ok ? 1 : 0);
    QCOMPARE(m_core->complaints().refusedSentences, ok ? 0U : 1U);
    m_core->restart();
    QCOMPARE(m_core->status().mode, ok ? text : QByteArray("NORMAL"));
}

void TestSimService::dialog_data()
{
    QTest::addColumn<QByteArrayList>("said");
    QTest::addColumn<QByteArrayList>("answers");
    const auto row = [](const char *name, const QByteArrayList &said,
                        const QByteArrayList &answers) { QTest::newRow(name) << said << answers; };
    const QByteArray set = "$VRPWS," + own;
    row("first password", {set}, {"$VRPWS,OK", "$VRLCK,1,2"});
    row("bad first password", {"$VRPWS,a-b"}, {"$VRPWS,ERROR"});
    row("empty first password", {"$VRPWS,"}, {"$VRPWS,ERROR"});
    row("password with a comma", {"$VRPWS,a,b"}, {"$VRPWS,ERROR"});
    row("password of the service", {"$VRPWS,simlevel4"}, {"$VRPWS,ERROR"});
    row("unlock without a lock", {"$VRPWU," + own}, {"$VRLCK,0,0"});
    row("lock without a lock", {"$VRLGO"}, {});
    row("delete without a lock", {"$VRPWD"}, {});
    row("view without a lock", {"$VRPWV"}, {});
    const QByteArrayList locked = {"$VRPWS,OK", "$VRLCK,1,2", "$VRLCK,1,0"};
    row("lock", {set, "$VRLGO"}, locked);
    row("lock twice", {set, "$VRLGO", "$VRLGO"}, locked);
    row("right", {set, "$VRLGO", "$VRPWU," + own}, locked + QByteArrayList{"$VRLCK,1,2"});
    row("wrong", {set, "$VRLGO", "$VRPWU,owner1"}, locked + QByteArrayList{"$VRLCK,1,0"});
    row("wrong, then right", {set, "$VRLGO", "$VRPWU,x", "$VRPWU," + own},
        locked + QByteArrayList{"$VRLCK,1,0", "$VRLCK,1,2"});
    row("level 1", {set, "$VRLGO", "$VRPWU,simlevel1"}, locked + QByteArrayList{"$VRLCK,1,1"});
    row("level 3", {set, "$VRLGO", "$VRPWU,simlevel3"}, locked + QByteArrayList{"$VRLCK,1,3"});
    row("level 4", {set, "$VRLGO", "$VRPWU,simlevel4"}, locked + QByteArrayList{"$VRLCK,1,4"});
    row("level 5", {set, "$VRLGO", "$VRPWU,simlevel5"}, locked + QByteArrayList{"$VRLCK,1,5"});
    row("new password while locked", {set, "$VRLGO", "$VRPWS,New1"},
        locked + QByteArrayList{"$VRPWS,ERROR"});
    row("delete while locked", {set, "$VRLGO", "$VRPWD"}, locked);
    row("new password at level 2", {set, "$VRPWS,New1", "$VRLGO", "$VRPWU," + own, "$VRPWU,New1"},
        {"$VRPWS,OK", "$VRLCK,1,2", "$VRPWS,OK", "$VRLCK,1,2", "$VRLCK,1,0", "$VRLCK,1,0",
         "$VRLCK,1,2"});
    row("delete", {set, "$VRPWD"}, {"$VRPWS,OK", "$VRLCK,1,2", "$VRLCK,0,0"});
    row("delete and set anew", {set, "$VRPWD", "$VRPWS,New1"},
        {"$VRPWS,OK", "$VRLCK,1,2", "$VRLCK,0,0", "$VRPWS,OK", "$VRLCK,1,2"});
    row("view at level 2", {set, "$VRPWV"}, {"$VRPWS,OK", "$VRLCK,1,2"});
    row("view at level 4", {set, "$VRPWU,simlevel4", "$VRPWV"},
        {"$VRPWS,OK", "$VRLCK,1,2", "$VRLCK,1,4"});
    row("view at level 5", {set, "$VRPWU,simlevel5", "$VRPWV"},
        {"$VRPWS,OK", "$VRLCK,1,2", "$VRLCK,1,5", "$VRPWV," + own});
    row("new password at level 5", {set, "$VRPWU,simlevel5", "$VRPWS,New1", "$VRPWV"},
        {"$VRPWS,OK", "$VRLCK,1,2", "$VRLCK,1,5", "$VRPWS,OK", "$VRLCK,1,5", "$VRPWV,New1"});
}

void TestSimService::dialog()
{
    QFETCH(QByteArrayList, said);
    QFETCH(QByteArrayList, answers);
    for (const QByteArray &body : qAsConst(said)) {
        hear(lineOf(body));
    }
    QCOMPARE(m_said, answers);
    QCOMPARE(m_core->complaints().unknownSentences, 0U);
}

void TestSimService::serviceNeedsAConnection_data()
{
    QTest::addColumn<QByteArray>("body");
    for (const char *body : {"$VRSER", "$VRSTA,0", "$VRSTC", "$VRATM,ON", "$VRMOD,NIGHT",
                             "$VRPWS,Owner1", "$VRPWU,Owner1", "$VRPWD", "$VRPWV", "$VRLGO",
                             "$VRFWS", "$VRFWP,1,00", "$VRFWF", "$VRFWW"}) {
        QTest::newRow(body) << QByteArray(body);
    }
}

void TestSimService::serviceNeedsAConnection()
{
    QFETCH(QByteArray, body);
    m_core->endConnection();
    m_statistics->set(0, {1, 1, 1, 1, 1});
    QCOMPARE(answers(lineOf(body)), QByteArrayList());
    QCOMPARE(m_core->complaints().unknownSentences, 1U);
    QVERIFY(!m_core->lock().isEnabled());
    QVERIFY(!m_core->isAisTestOn());
    QVERIFY(!m_core->firmware().isActive());
    QCOMPARE(m_statistics->at(0).crs, 1U);
}

void TestSimService::endOfConnectionLocks()
{
    hear(lineOf("$VRPWS," + own));
    QCOMPARE(m_core->lock().level(), 2);
    hear("$VRDCN\r\n");
    QVERIFY(m_core->lock().isLocked());
    QCOMPARE(m_core->lock().password(), own);
}

void TestSimService::restartLocks()
{
    hear(lineOf("$VRPWS," + own));
    m_core->restart();
    QVERIFY(m_core->lock().isLocked());
}

void TestSimService::downloadTellsTheLock()
{
    QVERIFY(answers("$VRRLD\r\n").contains("$VRLCK,0,0"));
    hear(lineOf("$VRPWS," + own));
    QVERIFY(answers("$VRRLD\r\n").contains("$VRLCK,1,2"));
    hear("$VRLGO\r\n");
    QVERIFY(answers("$VRRLD\r\n").contains("$VRLCK,1,0"));
}

// Whatever it is told, it says that it is locked, and is as before when the fault is gone.
void TestSimService::lockedFaultRefusesAll()
{
    hear(lineOf("$VRPWS," + own));
    m_faults.set(Fault::Locked, 0);
    QCOMPARE(answers(lineOf("$VRPWU,simlevel5")), QByteArrayList{"$VRLCK,1,0"});
    QCOMPARE(answers(lineOf("$VRPWS,New1")), QByteArrayList{"$VRPWS,ERROR"});
    for (const char *body : {"$VRPWD", "$VRPWV", "$VRLGO", "$VRMOD,NIGHT"}) {
        QCOMPARE(answers(lineOf(body)), QByteArrayList());
    }
    QCOMPARE(m_core->lock().level(), 2);
    QCOMPARE(m_core->lock().password(), own);
    QCOMPARE(m_core->status().mode, QByteArray("NORMAL"));
}

void TestSimService::passwordIsKeptInTheFile()
{
    QTemporaryDir folder;
    const EepromFile file(folder.filePath(QStringLiteral("eeprom")));
    QVERIFY(m_core->setEepromFile(file));
    hear(lineOf("$VRPWS," + own));

    RouterCore next(&m_faults);
    QVERIFY(next.setEepromFile(file));
    QVERIFY(next.lock().isLocked());
    QCOMPARE(next.lock().password(), own);

    hear("$VRPWD\r\n");
    RouterCore last(&m_faults);
    QVERIFY(last.setEepromFile(file));
    QVERIFY(!last.lock().isEnabled());
}

// A password goes to the EEPROM at once; rules that weren't saved don't go with it.
void TestSimService::passwordKeepsTheSavedRules()
{
    QTemporaryDir folder;
    EepromFile file(folder.filePath(QStringLiteral("eeprom")));
    QVERIFY(m_core->setEepromFile(file));
    hear(withChecksum("$VRSPD,11,57600"));
    hear(lineOf("$VRPWS," + own));
    QCOMPARE(file.load()->config.speeds[11], 38400U);
    QCOMPARE(m_core->working().speeds[11], 57600U);
}

void TestSimService::savedRulesKeepThePassword()
{
    QTemporaryDir folder;
    EepromFile file(folder.filePath(QStringLiteral("eeprom")));
    QVERIFY(m_core->setEepromFile(file));
    hear(lineOf("$VRPWS," + own));
    hear(withChecksum("$VRSPD,11,57600"));
    hear("$VRSVR\r\n");
    QTRY_COMPARE(m_said.constLast(), QByteArray("$VRSRO"));
    QCOMPARE(file.load()->config.speeds[11], 57600U);
    QCOMPARE(file.load()->lockPassword, own);
}

void TestSimService::failingFileRefusesAPassword_data()
{
    QTest::addColumn<bool>("isFault");
    QTest::newRow("fault") << true;
    QTest::newRow("no such folder") << false;
}

void TestSimService::failingFileRefusesAPassword()
{
    QFETCH(bool, isFault);
    m_core->lock().set(true, 2, own);
    QTemporaryDir folder;
    if (isFault) {
        m_faults.set(Fault::SaveError, 0);
    } else {
        m_core->setEepromFile(EepromFile(folder.filePath(QStringLiteral("missing/eeprom"))));
        m_core->lock().set(true, 2, own);
    }
    QCOMPARE(answers(lineOf("$VRPWS,New1")), QByteArrayList{"$VRPWS,ERROR"});
    QCOMPARE(answers("$VRPWD\r\n"), QByteArrayList());
    QCOMPARE(m_core->lock().password(), own);
    QCOMPARE(m_core->lock().level(), 2);
}

void TestSimService::brokenFileHasNoLock()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("eeprom")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write("{") == 1);
    file.close();
    m_core->lock().set(true, 2, own);
    QVERIFY(!m_core->setEepromFile(EepromFile(file.fileName())));
    QVERIFY(!m_core->lock().isEnabled());
}

void TestSimService::lockChangesAreSignalled()
{
    QSignalSpy changed(m_core.get(), &RouterCore::lockChanged);
    hear(lineOf("$VRPWS," + own));
    QCOMPARE(changed.count(), 1);
    hear("$VRLGO\r\n");
    QCOMPARE(changed.count(), 2);
    hear("$VRDCN\r\n"); // was locked already
    QCOMPARE(changed.count(), 2);
}

void TestSimService::overTheLine()
{
    RouterSimulator router;
    router.setStartSpeed(RouterSimulator::fastSpeed);
    router.setPortCounters(3, {5, 4, 3, 2, 1});
    router.setChipId(QByteArray(16, '\xAB'));
    router.setChipId("too short");
    QCOMPARE(router.chipId(), QByteArray(16, '\xAB'));
    QVERIFY(router.open());
    TerminalClient tool;
    QVERIFY(tool.open(router.deviceName()));
    QVERIFY(tool.setSpeed(RouterSimulator::fastSpeed));
    QSignalSpy locks(&router, &RouterSimulator::lockChanged);
    QSignalSpy modes(&router, &RouterSimulator::modeChanged);
    QSignalSpy tests(&router, &RouterSimulator::aisTestChanged);
    QVERIFY(tool.write("$VRCNT\r\n"));
    QTRY_VERIFY(router.isConnected());
    QTRY_COMPARE(tool.lines().size(), 1);
    tool.clear();
    QByteArray said;
    for (const char *body :
         {"$VRSER", "$VRSTA,3", "$VRPWS,Owner1", "$VRPWU,simlevel4", "$VRMOD,NIGHT", "$VRATM,ON"}) {
        said += lineOf(body);
    }
    QVERIFY(tool.write(said));
    QTRY_VERIFY(router.isAisTestOn());
    QByteArray expected;
    const QByteArrayList bodies = {"$VRSER," + QByteArray("AB").repeated(16),
                                   "$VRSTA,3,5,4,3,2,1",
                                   "$VRPWS,OK",
                                   "$VRLCK,1,2",
                                   "$VRLCK,1,4",
                                   "$VRMOD,NIGHT"};
    for (const QByteArray &body : bodies) {
        expected += withChecksum(body);
    }
    QTRY_COMPARE(tool.received(), expected);
    QCOMPARE(router.mode(), QByteArray("NIGHT"));
    QVERIFY(router.isLockEnabled());
    QCOMPARE(router.lockLevel(), 4);
    QCOMPARE(router.lockPassword(), QByteArray("Owner1"));
    QCOMPARE(locks.count(), 2);
    QCOMPARE(locks.constLast().at(1).toInt(), 4);
    QCOMPARE(modes.count(), 1);
    QCOMPARE(tests.count(), 1);
    router.setLockPassword("Other2");
    QCOMPARE(router.lockLevel(), 0);
    router.setLock(false, 0);
    QVERIFY(!router.isLockEnabled());
    QVERIFY(router.lockPassword().isEmpty());
}

void TestSimService::countersGrowOverTheLine()
{
    RouterSimulator router;
    QVERIFY(router.portCounters(2) == PortCounters());
    QVERIFY(router.portCounters(12) == PortCounters());
    router.setPortCounters(-1, {1, 1, 1, 1, 1}); // no such port
    router.setFault(Fault::InputDamage, 50);
    router.setFault(Fault::InputErrors, 50);
    QTRY_VERIFY(router.portCounters(2).crs > 0);
    QTRY_VERIFY(router.portCounters(2).print > 0);
    QTRY_VERIFY(router.portCounters(2).broken > 0);
    QTRY_VERIFY(router.portCounters(2).size > 0);
    QCOMPARE(router.portCounters(2).txFull, 0U);

    RouterConfig config = RouterConfig::factory();
    config.speeds[11] = 2400;
    router.clearFaults();
    const PortCounters before = router.portCounters(2);
    router.setWorking(config);
    QTRY_VERIFY(router.portCounters(11).txFull > 0);
    QVERIFY(router.portCounters(2) == before);
}

QTEST_GUILESS_MAIN(TestSimService)
#include "tst_simservice.moc"
