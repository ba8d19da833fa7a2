#include "simulator/line/sentence.h"
#include "simulator/router/routercore.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace tk7sim;

/*! The router without a line: what it says is collected, and a new speed is reached at once. */
class TestSimRouterCore : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void answersAtAnySpeedAndMoves();
    void connectsOnlyAtFastSpeed();
    void knowsOnlyTheQueryBefore_data();
    void knowsOnlyTheQueryBefore();
    void answersAgainWhenAsked();
    void controlPortIsTold();

    void singleChangeIsImmediate();
    void batchWaitsForItsEnd();
    void batchKeepsTheLastOfAPlace();
    void singleChangeWithinABatch();
    void unfinishedBatchIsForgotten();
    void listNamesAndSpeedsAreImmediate();
    void wrongChecksumChangesNothing();
    void refusedSentenceChangesNothing();
    void unknownSentenceChangesNothing_data();
    void unknownSentenceChangesNothing();

    void downloadEndsWithItsMark();
    void statusIsReported();
    void watchIsAnsweredWithTheErrorReport();

    void viewIsEchoed_data();
    void viewIsEchoed();
    void viewOutOfRangeIsIgnored_data();
    void viewOutOfRangeIsIgnored();

    void savesToEeprom();
    void savesWhatWasThereWhenAsked();
    void secondSaveAtATimeIsIgnored();
    void lockedRouterRefusesToSave_data();
    void lockedRouterRefusesToSave();
    void saveToAFile();
    void failingFileIsASaveError();
    void brokenFileGivesFactorySetUp();

    void disconnectDropsChanges();
    void disconnectFinishesASave();
    void silenceEndsAConnection();
    void silenceAfterHalfAHandshake();
    void silenceCanBeAllowed();
    void everyLineBreaksTheSilence();
    void fastSpeedCanBeKept();
    void restartLosesASave();

private:
    void connectTool();
    void hear(const QByteArray &line) { m_core->hear(line); }
    void hearChecked(const QByteArray &body) { m_core->hear(withChecksum(body)); }
    void hearRule(char mode, int port, const QByteArray &firstWord);

    FaultSet m_faults;
    std::unique_ptr<RouterCore> m_core;
    QByteArrayList m_said; // bodies
};

void TestSimRouterCore::init()
{
    m_faults.clear();
    m_said.clear();
    m_core = std::make_unique<RouterCore>(&m_faults);
    m_core->setSaveDuration(0);
    connect(m_core.get(), &RouterCore::answered, this, [this](const Answer &answer) {
        m_said.append(answer.body);
        if (answer.thenSpeed != 0) {
            m_core->moveTo(answer.thenSpeed);
        }
    });
}

void TestSimRouterCore::cleanup()
{
    m_core.reset();
}

void TestSimRouterCore::connectTool()
{
    hear("$VRCNT\r\n");
    hear("$VRCNT\r\n");
    QVERIFY(m_core->isConnected());
    m_said.clear();
}

void TestSimRouterCore::hearRule(char mode, int port, const QByteArray &firstWord)
{
    hearChecked("$VRRUL," + QByteArray::number(port) + ',' + mode + ',' + firstWord
                + QByteArray("FF00").repeated(channelCount - 1));
}

void TestSimRouterCore::answersAtAnySpeedAndMoves()
{
    m_core->setStartSpeed(19200);
    QSignalSpy speeds(m_core.get(), &RouterCore::speedChanged);
    hear("$VRCNT\r\n");
    QCOMPARE(m_said, QByteArrayList{"$VRCNU,0"});
    QCOMPARE(m_core->speed(), 115200);
    QCOMPARE(speeds.count(), 1);
    QVERIFY(!m_core->isConnected());
}

void TestSimRouterCore::connectsOnlyAtFastSpeed()
{
    QSignalSpy changed(m_core.get(), &RouterCore::connectedChanged);
    hear("$VRCNT\r\n");
    QCOMPARE(m_core->handshakes(), 0);
    hear("$VRCNT\r\n");
    QCOMPARE(m_core->handshakes(), 1);
    QCOMPARE(changed.count(), 1);
    QVERIFY(m_core->isConnected());

    m_core->endConnection();
    m_core->setStartSpeed(115200);
    hear("$VRCNT\r\n");
    QVERIFY(m_core->isConnected());
}

void TestSimRouterCore::knowsOnlyTheQueryBefore_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const QByteArray &line :
         QByteArrayList{"$VRRLD\r\n", "$VRVER\r\n", "$VRCNC\r\n", "$VRSVR\r\n", "$VRDCN\r\n",
                        "$VRVVW,240\r\n", withChecksum("$VRSPD,0,9600")}) {
        QTest::newRow(line.trimmed().constData()) << line;
    }
}

void TestSimRouterCore::knowsOnlyTheQueryBefore()
{
    QFETCH(QByteArray, line);
    const RouterConfig before = m_core->working();
    hear(line);
    hear("$VRCNT\r\n");
    m_said.clear();
    hear(line);
    QCOMPARE(m_said, QByteArrayList());
    QCOMPARE(m_core->complaints().unknownSentences, 2U);
    QVERIFY(m_core->working() == before);
    QCOMPARE(m_core->view(), viewNothing);
}

void TestSimRouterCore::answersAgainWhenAsked()
{
    connectTool();
    hear("$VRCNT\r\n");
    QCOMPARE(m_said, QByteArrayList{"$VRCNU,0"});
    QCOMPARE(m_core->handshakes(), 2);
    QVERIFY(m_core->isConnected());
}

void TestSimRouterCore::controlPortIsTold()
{
    m_core->status().controlPort = 11;
    hear("$VRCNT\r\n");
    QCOMPARE(m_said, QByteArrayList{"$VRCNU,11"});
}

void TestSimRouterCore::singleChangeIsImmediate()
{
    connectTool();
    QSignalSpy changed(m_core.get(), &RouterCore::configurationChanged);
    hearRule('W', 5, "F301");
    const Channel &channel = m_core->working().outputs[5].channels[0];
    QCOMPARE(int(channel.mainInput), 3);
    QVERIFY(channel.crsEnabled);
    QCOMPARE(changed.count(), 1);
    QVERIFY(m_core->eeprom() != m_core->working());
}

void TestSimRouterCore::batchWaitsForItsEnd()
{
    connectTool();
    const RouterConfig before = m_core->working();
    QSignalSpy changed(m_core.get(), &RouterCore::configurationChanged);
    hearRule('B', 5, "F301");
    hearChecked("$VRFLT,5,B,0," + QByteArray("0000000F").repeated(6));
    hearChecked("$VRFLT,5,B,6," + QByteArray("000000F0").repeated(6));
    hearChecked("$VRHDC,5,B," + QByteArray("AB").append(11, ','));
    QVERIFY(m_core->working() == before);
    QCOMPARE(changed.count(), 0);

    hear("$VRWBL\r\n");
    const auto &channels = m_core->working().outputs[5].channels;
    QCOMPARE(int(channels[0].mainInput), 3);
    QCOMPARE(channels[0].hdr, QByteArray("AB"));
    QCOMPARE(channels[5].filterMask, 0x0FU);
    QCOMPARE(channels[6].filterMask, 0xF0U);
    QCOMPARE(changed.count(), 1);

    hear("$VRWBL\r\n");
    QCOMPARE(changed.count(), 1);
    QCOMPARE(m_said, QByteArrayList());
}

void TestSimRouterCore::batchKeepsTheLastOfAPlace()
{
    connectTool();
    hearRule('B', 5, "F300");
    hearRule('B', 5, "F400");
    hearRule('B', 6, "F500");
    hear("$VRWBL\r\n");
    QCOMPARE(int(m_core->working().outputs[5].channels[0].mainInput), 4);
    QCOMPARE(int(m_core->working().outputs[6].channels[0].mainInput), 5);
}

void TestSimRouterCore::singleChangeWithinABatch()
{
    connectTool();
    hearRule('B', 5, "F300");
    hearRule('W', 6, "F400");
    QCOMPARE(int(m_core->working().outputs[6].channels[0].mainInput), 4);
    hear("$VRWBL\r\n");
    QCOMPARE(int(m_core->working().outputs[5].channels[0].mainInput), 3);
    QCOMPARE(int(m_core->working().outputs[6].channels[0].mainInput), 4);
}

void TestSimRouterCore::unfinishedBatchIsForgotten()
{
    connectTool();
    hearRule('B', 5, "F300");
    hear("$VRDCN\r\n");
    connectTool();
    hear("$VRWBL\r\n");
    QVERIFY(m_core->working() == m_core->eeprom());
}

void TestSimRouterCore::listNamesAndSpeedsAreImmediate()
{
    connectTool();
    hearChecked("$VRFLS,24,ABC,,,,,,,");
    hearChecked("$VRPNM,O,6,One,,,,,");
    hearChecked("$VRPNM,I,0,Two,,,,,");
    hearChecked("$VRSPD,11,57600");
    QCOMPARE(m_core->working().filterList[24], QByteArray("ABC"));
    QCOMPARE(m_core->working().filterList[25], QByteArray());
    QCOMPARE(m_core->working().outputNames[6], QByteArray("One"));
    QCOMPARE(m_core->working().inputNames[0], QByteArray("Two"));
    QCOMPARE(m_core->working().speeds[11], 57600U);
}

void TestSimRouterCore::wrongChecksumChangesNothing()
{
    connectTool();
    const RouterConfig before = m_core->working();
    hear(withWrongChecksum("$VRSPD,11,57600"));
    QVERIFY(m_core->working() == before);
    QCOMPARE(m_core->complaints().checksumErrors, 1U);
    m_core->resetComplaints();
    QCOMPARE(m_core->complaints().checksumErrors, 0U);
}

void TestSimRouterCore::refusedSentenceChangesNothing()
{
    connectTool();
    const RouterConfig before = m_core->working();
    hearChecked("$VRSPD,12,57600");
    hearRule('W', 12, "F300");
    QVERIFY(m_core->working() == before);
    QCOMPARE(m_core->complaints().refusedSentences, 2U);
}

void TestSimRouterCore::unknownSentenceChangesNothing_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("unknown code") << QByteArray("$VRXYZ\r\n");
    QTest::newRow("no proprietary sentence") << QByteArray("$GPRMC,1,2,3\r\n");
    QTest::newRow("firmware request with a checksum") << withChecksum("$VRFWS,1");
    QTest::newRow("password without its checksum") << QByteArray("$VRPWU,secret\r\n");
    QTest::newRow("AIS test with a checksum") << withChecksum("$VRATM,ON");
    QTest::newRow("answer of a router") << withChecksum("$VRCNU,0");
    QTest::newRow("bare form missing its LF") << QByteArray("$VRRLD\r");
    QTest::newRow("bare sentence with a field") << QByteArray("$VRRLD,1\r\n");
    QTest::newRow("bare sentence with a checksum") << withChecksum("$VRRLD,");
    QTest::newRow("checked sentence without its checksum") << QByteArray("$VRSPD,0,9600\r\n");
    QTest::newRow("plain sentence with a checksum") << withChecksum("$VRVVW,240");
}

void TestSimRouterCore::unknownSentenceChangesNothing()
{
    QFETCH(QByteArray, line);
    connectTool();
    const RouterConfig before = m_core->working();
    hear(line);
    QVERIFY(m_core->working() == before);
    QCOMPARE(m_core->view(), viewNothing);
    QCOMPARE(m_said, QByteArrayList());
    QCOMPARE(m_core->complaints().unknownSentences, 1U);
}

void TestSimRouterCore::downloadEndsWithItsMark()
{
    connectTool();
    hear("$VRRLD\r\n");
    QCOMPARE(m_said.size(), 74);
    QCOMPARE(m_said.count("$VRWBL"), 1);
    QCOMPARE(m_said.constLast(), QByteArray("$VRWBL"));
    const auto bodies = configBodies(m_core->working());
    for (int i = 0; i < bodies.size(); ++i) {
        QCOMPARE(m_said.at(i), bodies.at(i));
    }
}

void TestSimRouterCore::statusIsReported()
{
    m_core->status() = {4, 12, "SERVICE2", 0x0A0B, 0xF, 1, 0, RouterStatus::defaultChipId()};
    m_core->lock().set(true, 3, QByteArray());
    connectTool();
    hear("$VRVVW,191\r\n");
    hear("$VRRLD\r\n");
    hear("$VRVER\r\n");
    for (const char *body : {"$VRVVW,191", "$VRMOD,SERVICE2", "$VRERR,0A0B,0F", "$VRFBK,1",
                             "$VRLCK,1,3", "$VRVER,4.12"}) {
        QVERIFY2(m_said.contains(body), body);
    }
}

void TestSimRouterCore::watchIsAnsweredWithTheErrorReport()
{
    connectTool();
    hear("$VRCNC\r\n");
    QCOMPARE(m_said, QByteArrayList{"$VRERR,0000,00"});
}

void TestSimRouterCore::viewIsEchoed_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {0, 11, 15, 187, 191, 240, 251, 255}) {
        QTest::addRow("%d", code) << code;
    }
}

void TestSimRouterCore::viewIsEchoed()
{
    QFETCH(int, code);
    connectTool();
    hear("$VRVVW,240\r\n");
    m_said.clear();
    hear("$VRVVW," + QByteArray::number(code) + "\r\n");
    QCOMPARE(m_core->view(), code);
    QCOMPARE(m_said, QByteArrayList{"$VRVVW," + QByteArray::number(code)});
}

void TestSimRouterCore::viewOutOfRangeIsIgnored_data()
{
    QTest::addColumn<QByteArray>("field");
    for (const char *field : {"256", "12", "207", "252", "-1", "", "x", "F3", "4294967295", "1,2",
                              "00000000000000000000000240"}) {
        QTest::newRow(field) << QByteArray(field);
    }
}

void TestSimRouterCore::viewOutOfRangeIsIgnored()
{
    QFETCH(QByteArray, field);
    connectTool();
    hear("$VRVVW,240\r\n");
    m_said.clear();
    hear("$VRVVW," + field + "\r\n");
    QCOMPARE(m_core->view(), 240);
    QCOMPARE(m_said, QByteArrayList());
    QCOMPARE(m_core->complaints().refusedSentences, 1U);
}

void TestSimRouterCore::savesToEeprom()
{
    connectTool();
    hearChecked("$VRSPD,11,57600");
    QSignalSpy saved(m_core.get(), &RouterCore::saved);
    hear("$VRSVR\r\n");
    QVERIFY(m_core->eeprom() != m_core->working());
    QCOMPARE(m_said, QByteArrayList());
    QTRY_COMPARE(saved.count(), 1);
    QVERIFY(saved.constFirst().constFirst().toBool());
    QCOMPARE(m_said, QByteArrayList{"$VRSRO"});
    QVERIFY(m_core->eeprom() == m_core->working());
    QCOMPARE(m_core->eeprom().speeds[11], 57600U);
}

void TestSimRouterCore::savesWhatWasThereWhenAsked()
{
    connectTool();
    QSignalSpy saved(m_core.get(), &RouterCore::saved);
    hear("$VRSVR\r\n");
    hearChecked("$VRSPD,11,57600");
    QTRY_COMPARE(saved.count(), 1);
    QCOMPARE(m_core->eeprom().speeds[11], 38400U);
    QCOMPARE(m_core->working().speeds[11], 57600U);
}

void TestSimRouterCore::secondSaveAtATimeIsIgnored()
{
    connectTool();
    QSignalSpy saved(m_core.get(), &RouterCore::saved);
    hear("$VRSVR\r\n");
    hear("$VRSVR\r\n");
    QTRY_COMPARE(saved.count(), 1);
    hear("$VRSVR\r\n");
    QTRY_COMPARE(saved.count(), 2);
    QCOMPARE(m_said, QByteArrayList({"$VRSRO", "$VRSRO"}));
}

void TestSimRouterCore::lockedRouterRefusesToSave_data()
{
    QTest::addColumn<bool>("lockEnabled");
    QTest::addColumn<int>("lockLevel");
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("no password") << false << 0 << QByteArray("$VRSRO");
    QTest::newRow("locked") << true << 0 << QByteArray("$VRSRE");
    QTest::newRow("open") << true << 1 << QByteArray("$VRSRO");
}

void TestSimRouterCore::lockedRouterRefusesToSave()
{
    QFETCH(bool, lockEnabled);
    QFETCH(int, lockLevel);
    QFETCH(QByteArray, answer);
    m_core->lock().set(lockEnabled, lockLevel, QByteArray());
    connectTool();
    hearChecked("$VRSPD,11,57600");
    hear("$VRSVR\r\n");
    QTRY_COMPARE(m_said, QByteArrayList{answer});
    QCOMPARE(m_core->eeprom().speeds[11], answer == "$VRSRO" ? 57600U : 38400U);
}

void TestSimRouterCore::saveToAFile()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("eeprom"));
    QVERIFY(m_core->setEepromFile(EepromFile(path)));
    connectTool();
    hearChecked("$VRSPD,11,57600");
    hear("$VRSVR\r\n");
    QTRY_COMPARE(m_said, QByteArrayList{"$VRSRO"});

    RouterCore next(&m_faults);
    QVERIFY(next.setEepromFile(EepromFile(path)));
    QCOMPARE(next.eeprom().speeds[11], 57600U);
    QVERIFY(next.working() == next.eeprom());
}

void TestSimRouterCore::failingFileIsASaveError()
{
    QTemporaryDir folder;
    QVERIFY(m_core->setEepromFile(EepromFile(folder.filePath(QStringLiteral("missing/eeprom")))));
    QSignalSpy messages(m_core.get(), &RouterCore::message);
    connectTool();
    hearChecked("$VRSPD,11,57600");
    hear("$VRSVR\r\n");
    QTRY_COMPARE(m_said, QByteArrayList{"$VRSRE"});
    QCOMPARE(messages.count(), 1);
    QCOMPARE(m_core->eeprom().speeds[11], 38400U);
}

void TestSimRouterCore::brokenFileGivesFactorySetUp()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("eeprom"));
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write("{") == 1);
    }
    m_core->setWorking(RouterConfig());
    m_core->setEeprom(RouterConfig());
    QVERIFY(!m_core->setEepromFile(EepromFile(path)));
    QVERIFY(!m_core->eepromError().isEmpty());
    QVERIFY(m_core->eeprom() == RouterConfig::factory());
    QVERIFY(m_core->working() == RouterConfig::factory());

    connectTool();
    hear("$VRSVR\r\n");
    QTRY_COMPARE(m_said, QByteArrayList{"$VRSRO"});
    QVERIFY(EepromFile(path).load().has_value());
}

void TestSimRouterCore::disconnectDropsChanges()
{
    m_core->setStartSpeed(9600);
    connectTool();
    hearChecked("$VRSPD,11,57600");
    hear("$VRVVW,240\r\n");
    m_said.clear();
    QSignalSpy ended(m_core.get(), &RouterCore::ended);
    hear("$VRDCN\r\n");
    QVERIFY(!m_core->isConnected());
    QVERIFY(m_core->working() == m_core->eeprom());
    QCOMPARE(m_core->view(), viewNothing);
    QCOMPARE(m_core->speed(), 9600);
    QCOMPARE(ended.count(), 1);
    QCOMPARE(m_said, QByteArrayList());
}

void TestSimRouterCore::disconnectFinishesASave()
{
    connectTool();
    hearChecked("$VRSPD,11,57600");
    hear("$VRSVR\r\n");
    hear("$VRDCN\r\n");
    QCOMPARE(m_core->eeprom().speeds[11], 57600U);
    QCOMPARE(m_core->working().speeds[11], 57600U);
}

void TestSimRouterCore::silenceEndsAConnection()
{
    m_core->setSilenceLimit(60);
    QCOMPARE(m_core->silenceLimit(), 60);
    connectTool();
    hearChecked("$VRSPD,11,57600");
    QTRY_VERIFY(!m_core->isConnected());
    QCOMPARE(m_core->speed(), m_core->startSpeed());
    QVERIFY(m_core->working() == m_core->eeprom());
}

void TestSimRouterCore::silenceAfterHalfAHandshake()
{
    m_core->setSilenceLimit(60);
    hear("$VRCNT\r\n");
    QCOMPARE(m_core->speed(), 115200);
    QTRY_COMPARE(m_core->speed(), m_core->startSpeed());
}

void TestSimRouterCore::silenceCanBeAllowed()
{
    m_core->setSilenceLimit(60);
    connectTool();
    m_core->setSilenceLimit(0);
    for (const QTimer *timer : m_core->findChildren<QTimer *>()) {
        QVERIFY(!timer->isActive());
    }
    m_core->endConnection();
    connectTool();
    for (const QTimer *timer : m_core->findChildren<QTimer *>()) {
        QVERIFY(!timer->isActive());
    }
}

void TestSimRouterCore::everyLineBreaksTheSilence()
{
    constexpr int limit = 60000;
    m_core->setSilenceLimit(limit);
    connectTool();
    const QTimer *silence = nullptr;
    for (const QTimer *timer : m_core->findChildren<QTimer *>()) {
        silence = timer->interval() == limit ? timer : silence;
    }
    if (!silence)
        QFAIL("no timer has that limit");
    QVERIFY(silence->isActive());
    QTRY_VERIFY(silence->remainingTime() < limit - 100);
    const int before = silence->remainingTime();
    hear("$VRXYZ\r\n");
    QVERIFY(silence->remainingTime() > before);
}

void TestSimRouterCore::fastSpeedCanBeKept()
{
    m_core->setReturnsToStartSpeed(false);
    connectTool();
    hear("$VRDCN\r\n");
    QVERIFY(!m_core->isConnected());
    QCOMPARE(m_core->speed(), 115200);
    hear("$VRCNT\r\n");
    QVERIFY(m_core->isConnected());
    m_core->restart();
    QCOMPARE(m_core->speed(), m_core->startSpeed());
}

void TestSimRouterCore::restartLosesASave()
{
    connectTool();
    hearChecked("$VRSPD,11,57600");
    hear("$VRSVR\r\n");
    m_core->restart();
    QVERIFY(!m_core->isConnected());
    QCOMPARE(m_core->eeprom().speeds[11], 38400U);
    QCOMPARE(m_core->working().speeds[11], 38400U);
}

QTEST_GUILESS_MAIN(TestSimRouterCore)
#include "tst_simroutercore.moc"
