#include "simulator/line/linespeed.h"
#include "simulator/line/sentence.h"
#include "simulator/router/configcodec.h"
#include "simulator/router/routersimulator.h"

#include "idleloop.h"
#include "terminalclient.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <termios.h>

using namespace tk7sim;

/*! The whole simulator, from the far end of a real pseudo-terminal. */
class TestSimRouter : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void handshakeFromEverySpeed_data();
    void handshakeFromEverySpeed();
    void otherSpeedsAreGarbage_data();
    void otherSpeedsAreGarbage();
    void answerAtAnotherSpeedIsNoText();
    void answerLeavesAtTheOldSpeed();
    void startSpeedMustBeKnown();

    void downloadCarriesEverything();
    void downloadKeepsThePace();
    void changesArrive();
    void saveIsAnswered();
    void watchIsAnswered();
    void disconnectAndAgain();
    void lastWordBeforeClosingIsHeard();
    void restartForgets();
    void sendsByHand();

    void streamsPortUnderView();
    void viewStopsWithTheConnection();
    void busyMonitorLeavesRoomForAnswers();
    void monitorFillsTheLine_data();
    void monitorFillsTheLine();
    void changesShowInTheMonitor();

    void transcriptTellsWhenAndWhat();
    void transcriptIsBounded();

    void takesRandomBytes();
    void takesAbsurdSentences();
    void takesMoreThanItCanAnswer();
    void toleratesNoiseBetweenLines();

    void unplugsAndPlugs();
    void publishesAgainAfterPlugging();
    void unplugInTheMidstOfADownload();
    void unplugInsideASlot();
    void doesNotSpin_data();
    void doesNotSpin();

    void unpublishedByDefault();
    void unpublishableNameIsNoFailure();
    void worksInAnotherThread();

private:
    void connectTool();
    bool configurationIsIntact() const;

    std::unique_ptr<QTemporaryDir> m_runtime;
    std::unique_ptr<RouterSimulator> m_router;
    std::unique_ptr<TerminalClient> m_tool;
};

namespace {

constexpr int timeout = 10000;

} // namespace

void TestSimRouter::init()
{
    m_runtime = std::make_unique<QTemporaryDir>();
    QVERIFY(m_runtime->isValid());
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime->path()));
    m_router = std::make_unique<RouterSimulator>();
    m_tool = std::make_unique<TerminalClient>();
    QVERIFY2(m_router->open(), qPrintable(m_router->errorString()));
    QVERIFY(m_tool->open(m_router->deviceName()));
}

void TestSimRouter::cleanup()
{
    m_tool.reset();
    m_router.reset();
}

void TestSimRouter::connectTool()
{
    QVERIFY(m_tool->setSpeed(m_router->speed()));
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE_WITH_TIMEOUT(m_router->speed(), RouterSimulator::fastSpeed, timeout);
    QVERIFY(m_tool->setSpeed(RouterSimulator::fastSpeed));
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_router->isConnected(), timeout);
    QTRY_COMPARE_WITH_TIMEOUT(m_tool->lines().size(), 2, timeout);
    m_tool->clear();
}

bool TestSimRouter::configurationIsIntact() const
{
    return m_router->working() == RouterConfig::factory()
        && m_router->eeprom() == RouterConfig::factory();
}

void TestSimRouter::handshakeFromEverySpeed_data()
{
    QTest::addColumn<int>("baud");
    for (const int baud : lineSpeeds) {
        QTest::addRow("%d", baud) << baud;
    }
}

void TestSimRouter::handshakeFromEverySpeed()
{
    QFETCH(int, baud);
    m_router->setControlPort(7);
    QVERIFY(m_router->setStartSpeed(baud));
    QSignalSpy connected(m_router.get(), &RouterSimulator::connectedChanged);
    const QByteArray answer = withChecksum("$VRCNU,7");

    QVERIFY(m_tool->setSpeed(baud));
    QCOMPARE(m_router->lineSpeed(), baud);
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE(m_tool->received(), answer);
    QCOMPARE(m_router->speed(), 115200);
    QCOMPARE(m_router->isConnected(), baud == 115200);

    m_tool->clear();
    QVERIFY(m_tool->setSpeed(115200));
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE(m_tool->received(), answer);
    QTRY_COMPARE(connected.count(), 1);
    QCOMPARE(m_router->lineSpeed(), 115200);
    QCOMPARE(m_router->handshakes(), baud == 115200 ? 2 : 1);
}

void TestSimRouter::otherSpeedsAreGarbage_data()
{
    handshakeFromEverySpeed_data();
}

void TestSimRouter::otherSpeedsAreGarbage()
{
    QFETCH(int, baud);
    const int other = baud == 4800 ? 9600 : 4800;
    QVERIFY(m_router->setStartSpeed(other));
    QVERIFY(m_tool->setSpeed(baud));
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE(m_router->counters().garbageBytes, 8U);
    QCOMPARE(m_router->transcript().size(), 0);
    QCOMPARE(m_router->overheard().size(), 1);
    QCOMPARE(m_router->overheard().constFirst().line, QByteArray("$VRCNT\r\n"));
    QCOMPARE(m_router->overheard().constFirst().lineSpeed, baud);
    QCOMPARE(m_router->speed(), other);
    m_router->resetCounters();
    QCOMPARE(m_router->counters().garbageBytes, 0U);
}

void TestSimRouter::answerAtAnotherSpeedIsNoText()
{
    QVERIFY(m_router->setStartSpeed(2400));
    QVERIFY(m_tool->setSpeed(2400));
    // The tool has lost its patience before the answer begins.
    connect(m_router.get(), &RouterSimulator::lineReceived, this,
            [this] { QVERIFY(m_tool->setSpeed(9600)); });
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE(m_tool->received().size(), withChecksum("$VRCNU,0").size());
    for (const char c : m_tool->received()) {
        QVERIFY(static_cast<quint8>(c) >= 0x80);
    }
}

// The second speed may not hold before the last byte of the answer has gone.
void TestSimRouter::answerLeavesAtTheOldSpeed()
{
    QVERIFY(m_router->setStartSpeed(2400));
    QVERIFY(m_tool->setSpeed(2400));
    QByteArray heardAtChange;
    connect(m_router.get(), &RouterSimulator::speedChanged, this, [&](int baud) {
        QCOMPARE(baud, 115200);
        QTRY_COMPARE(m_tool->received(), withChecksum("$VRCNU,0"));
        heardAtChange = m_tool->received();
    });
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_VERIFY(!heardAtChange.isEmpty());
}

void TestSimRouter::startSpeedMustBeKnown()
{
    QCOMPARE(m_router->startSpeed(), RouterSimulator::defaultStartSpeed);
    for (const int baud : {0, -1, 300, 1200, 4801, 230400}) {
        QVERIFY(!m_router->setStartSpeed(baud));
        QCOMPARE(m_router->startSpeed(), RouterSimulator::defaultStartSpeed);
    }
}

void TestSimRouter::downloadCarriesEverything()
{
    RouterConfig config = RouterConfig::factory();
    config.outputs[11].channels[11] = {9,    10,   true, 0x80000001, FilterType::Black,
                                       true, true, "QZ", 6};
    m_router->setWorking(config);
    connectTool();
    QVERIFY(m_tool->write("$VRRLD\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith("$VRWBL\r\n"), timeout);

    RouterConfig copy;
    int changes = 0;
    for (const QByteArray &line : m_tool->lines()) {
        const auto sentence = parseSentence(line);
        QVERIFY2(sentence.has_value(), line.constData());
        QVERIFY(sentence->form != SentenceForm::WrongChecksum);
        const auto change = parseConfigSentence(*sentence);
        if (change) {
            change->apply(copy);
            ++changes;
        }
    }
    QCOMPARE(changes, 68);
    QVERIFY(copy == config);
}

void TestSimRouter::downloadKeepsThePace()
{
    connectTool();
    const qint64 begin = RouterSimulator::now();
    QVERIFY(m_tool->write("$VRRLD\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith("$VRWBL\r\n"), timeout);
    const qint64 passed = RouterSimulator::now() - begin;
    const qint64 onTheLine = m_tool->received().size() * 10LL * 1000000 / 115200;
    QVERIFY2(passed >= onTheLine, qPrintable(QString::number(passed)));
}

void TestSimRouter::changesArrive()
{
    connectTool();
    QSignalSpy changed(m_router.get(), &RouterSimulator::configurationChanged);
    QVERIFY(m_tool->write(withChecksum("$VRSPD,3,57600") + withChecksum("$VRPNM,O,0,Name,,,,,")));
    QTRY_COMPARE(changed.count(), 2);
    QCOMPARE(m_router->working().speeds[3], 57600U);
    QCOMPARE(m_router->working().outputNames[0], QByteArray("Name"));
    QCOMPARE(m_router->working().outputNames[6], QByteArray("WIND RPT"));
}

void TestSimRouter::saveIsAnswered()
{
    m_router->setSaveDuration(20);
    connectTool();
    QSignalSpy saved(m_router.get(), &RouterSimulator::saved);
    QVERIFY(m_tool->write(withChecksum("$VRSPD,3,57600") + "$VRSVR\r\n"));
    QTRY_COMPARE(m_tool->received(), QByteArray("$VRSRO\r\n"));
    QCOMPARE(saved.count(), 1);
    QCOMPARE(m_router->eeprom().speeds[3], 57600U);
}

void TestSimRouter::watchIsAnswered()
{
    m_router->setError(0x12AB, 0x0C);
    connectTool();
    QVERIFY(m_tool->write("$VRCNC\r\n"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRERR,12AB,0C"));
}

void TestSimRouter::disconnectAndAgain()
{
    for (int i = 0; i < 3; ++i) {
        connectTool();
        QVERIFY(m_tool->write(withChecksum("$VRSPD,3,57600")));
        QVERIFY(m_tool->write("$VRDCN\r\n"));
        QTRY_VERIFY(!m_router->isConnected());
        QCOMPARE(m_router->speed(), m_router->startSpeed());
        QVERIFY(configurationIsIntact());
    }
    QCOMPARE(m_router->handshakes(), 3);
}

// A port that is closed at once puts its old settings back; the line had carried the word before.
void TestSimRouter::lastWordBeforeClosingIsHeard()
{
    connectTool();
    QVERIFY(m_tool->write("$VRDCN\r\n"));
    QVERIFY(m_tool->restoreSettings());
    m_tool->close();
    QTRY_VERIFY(!m_router->isConnected());
    QCOMPARE(m_router->counters().garbageBytes, 0U);
}

void TestSimRouter::restartForgets()
{
    connectTool();
    QVERIFY(m_tool->write(withChecksum("$VRSPD,3,57600")));
    QTRY_COMPARE(m_router->working().speeds[3], 57600U);
    m_router->restart();
    QVERIFY(!m_router->isConnected());
    QVERIFY(configurationIsIntact());
    QCOMPARE(m_router->speed(), m_router->startSpeed());
}

void TestSimRouter::sendsByHand()
{
    connectTool();
    QSignalSpy sent(m_router.get(), &RouterSimulator::lineSent);
    m_router->sendLine("raw\n");
    m_router->sendChecked("$VRFBK,2");
    QTRY_COMPARE(m_tool->received(), QByteArray("raw\n") + withChecksum("$VRFBK,2"));
    QCOMPARE(sent.count(), 2);
}

void TestSimRouter::streamsPortUnderView()
{
    m_router->setTrafficRate(10);
    connectTool();
    QSignalSpy viewed(m_router.get(), &RouterSimulator::viewChanged);
    QVERIFY(m_tool->write("$VRVVW,242\r\n"));
    QTRY_VERIFY(m_tool->lines().size() > 10);
    QCOMPARE(m_tool->lines().constFirst(), QByteArray("$VRVVW,242\r\n"));
    for (const QByteArray &line : m_tool->lines().mid(1)) {
        QVERIFY2(line.startsWith("$HE"), line.constData());
    }
    QVERIFY(m_tool->write("$VRVVW,255\r\n"));
    QTRY_COMPARE(m_router->view(), 255);
    QCOMPARE(viewed.count(), 2);
    QTRY_VERIFY(m_tool->received().endsWith("$VRVVW,255\r\n"));
    const int heard = int(m_tool->received().size());
    turnsOfIdleLoop();
    QCOMPARE(m_tool->received().size(), heard);
}

void TestSimRouter::viewStopsWithTheConnection()
{
    connectTool();
    QVERIFY(m_tool->write("$VRVVW,240\r\n"));
    QTRY_COMPARE(m_router->view(), 240);
    QVERIFY(m_tool->write("$VRDCN\r\n"));
    QTRY_COMPARE(m_router->view(), 255);
}

void TestSimRouter::busyMonitorLeavesRoomForAnswers()
{
    m_router->setTrafficRate(100);
    connectTool();
    QVERIFY(m_tool->write("$VRVVW,63\r\n"));
    QTRY_VERIFY(m_tool->lines().size() > 100);
    m_tool->clear();
    QVERIFY(m_tool->write("$VRVER\r\n"));
    QTRY_VERIFY(m_tool->received().contains(withChecksum("$VRVER,3.5")));
    // No more stood before it in the queue than the line carries in a fraction of a second.
    QVERIFY(m_tool->received().indexOf("$VRVER") < 4000);
}

void TestSimRouter::monitorFillsTheLine_data()
{
    QTest::addColumn<int>("view");
    QTest::newRow("an input of few words") << 0xF6;
    QTest::newRow("the most talkative input") << 0xF2;
    QTest::newRow("a channel without a filter") << 0x10;
    QTest::newRow("an output with all its channels") << 0xBF;
}

// Some second among the first few is full to the brim; none is ever fuller.
void TestSimRouter::monitorFillsTheLine()
{
    QFETCH(int, view);
    constexpr int bytesPerSecond = 11520;
    constexpr int catchUp = bytesPerSecond / 20; // a late turn makes up for 50 ms
    constexpr qint64 window = 1000000;
    m_router->setTrafficRate(RouterSimulator::maxTrafficRate);
    connectTool();
    qint64 begin = 0;
    int heard = 0;
    double fullest = 0; // bytes a second
    bool isTooFull = false;
    connect(m_tool.get(), &TerminalClient::changed, this, [&] {
        const qint64 passed = RouterSimulator::now() - begin;
        if (passed < window) {
            return;
        }
        const double seconds = static_cast<double>(passed) / window;
        const int bytes = int(m_tool->received().size() - heard);
        if (begin != 0) {
            fullest = qMax(fullest, bytes / seconds);
            isTooFull = isTooFull || bytes > bytesPerSecond * seconds + catchUp;
        }
        begin = RouterSimulator::now();
        heard = int(m_tool->received().size());
    });
    QVERIFY(m_tool->write("$VRVVW," + QByteArray::number(view) + "\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(fullest > 0.98 * bytesPerSecond, timeout);
    QVERIFY(!isTooFull);
}

void TestSimRouter::changesShowInTheMonitor()
{
    m_router->setTrafficRate(50);
    connectTool();
    QVERIFY(m_tool->write("$VRVVW,63\r\n"));
    QTRY_VERIFY(m_tool->received().contains("$WIMWV"));
    QTRY_VERIFY(m_tool->received().contains("!AIVDM"));
    // The second ECDIS' filters and a header, for the first.
    Output output = m_router->working().outputs[3];
    output.channels[5] = Channel();
    output.channels[2].hdrEnabled = true;
    output.channels[2].hdr = "AB";
    RouterConfig config = m_router->working();
    config.outputs[3] = output;
    for (const QByteArray &body : configBodies(config)) {
        if (body.startsWith("$VRRUL,3,") || body.startsWith("$VRHDC,3,")) {
            QVERIFY(m_tool->write(withChecksum(body)));
        }
    }
    QTRY_VERIFY(m_tool->received().contains("!ABVDM"));
    m_tool->clear();
    QTRY_VERIFY(m_tool->lines().size() > 200);
    QVERIFY(!m_tool->received().contains("$WIMWV"));
    QVERIFY(!m_tool->received().contains("!AIVDM"));
    QVERIFY(m_tool->received().contains("!ABVDM"));
    for (const QByteArray &line : m_tool->lines().mid(1)) {
        QCOMPARE(parseHex(line.trimmed().right(2), 2).value(), quint32(checksumOf(line)));
    }
}

void TestSimRouter::transcriptTellsWhenAndWhat()
{
    const qint64 begin = RouterSimulator::now();
    connectTool();
    QSignalSpy heard(m_router.get(), &RouterSimulator::lineReceived);
    QVERIFY(m_tool->write("$VRXYZ\r\n$VRVER\r\n"));
    QTRY_COMPARE(heard.count(), 2);
    QCOMPARE(heard.at(0).at(0).toByteArray(), QByteArray("$VRXYZ\r\n"));
    const auto &lines = m_router->transcript();
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.at(0).line, QByteArray("$VRCNT\r\n"));
    QCOMPARE(lines.at(0).lineSpeed, 4800);
    QCOMPARE(lines.at(1).lineSpeed, 115200);
    QCOMPARE(lines.at(3).line, QByteArray("$VRVER\r\n"));
    qint64 last = begin;
    for (const ReceivedLine &line : lines) {
        QVERIFY(line.microseconds >= last);
        last = line.microseconds;
    }
    QVERIFY(last <= RouterSimulator::now());
    m_router->clearTranscript();
    QCOMPARE(m_router->transcript().size(), 0);
    QCOMPARE(m_router->overheard().size(), 0);
}

void TestSimRouter::transcriptIsBounded()
{
    connectTool();
    QSignalSpy heard(m_router.get(), &RouterSimulator::lineReceived);
    const QByteArray block = QByteArray("$X\n").repeated(500);
    const int blocks = RouterSimulator::maxTranscript / 500 + 2;
    for (int i = 0; i < blocks; ++i) {
        const int before = int(heard.count());
        QVERIFY(m_tool->write(block));
        QTRY_COMPARE_WITH_TIMEOUT(heard.count(), before + 500, timeout);
    }
    QCOMPARE(m_router->transcript().size(), RouterSimulator::maxTranscript);
}

void TestSimRouter::takesRandomBytes()
{
    connectTool();
    QRandomGenerator random(4711);
    constexpr int blocks = 250;
    constexpr int blockSize = 1000;
    static const QByteArray bait = "$VR,*\r\nRULFLTHDCSPDPNMFLSVVWWBL0123456789ABCDEFWB";
    for (int i = 0; i < blocks; ++i) {
        QByteArray block;
        for (int j = 0; j < blockSize; ++j) {
            const bool isNoise = random.bounded(2) == 0;
            block.append(isNoise ? static_cast<char>(random.bounded(256))
                                 : bait.at(random.bounded(bait.size())));
        }
        QTRY_VERIFY_WITH_TIMEOUT(m_tool->write(block), timeout);
        QCoreApplication::processEvents();
    }
    QVERIFY(m_tool->write("\r\n$VRVER\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().contains(withChecksum("$VRVER,3.5")), timeout);
    QVERIFY(configurationIsIntact());
}

void TestSimRouter::takesAbsurdSentences()
{
    connectTool();
    const QByteArray wordList = QByteArray("F306").repeated(12);
    const QByteArray maskList = QByteArray("FFFFFFFF").repeated(6);
    int sent = 0;
    for (const char *number :
         {"12", "99", "255", "256", "65536", "4294967295", "4294967296", "-1", "", " 3", "0x3"}) {
        const QByteArray n(number);
        const QByteArrayList bodies = {"$VRRUL," + n + ",W," + wordList,
                                       "$VRRUL," + n + ",B," + wordList,
                                       "$VRFLT," + n + ",W,0," + maskList,
                                       "$VRFLT,0,W," + n + ',' + maskList,
                                       "$VRHDC," + n + ",W,AA,BB,CC,DD,EE,FF,GG,HH,II,JJ,KK,LL",
                                       "$VRFLS," + n + ",AAA,BBB,CCC,DDD,EEE,FFF,GGG,HHH",
                                       "$VRPNM,O," + n + ",a,b,c,d,e,f",
                                       "$VRSPD," + n + ",9600",
                                       "$VRSPD,0," + n};
        for (const QByteArray &body : bodies) {
            QVERIFY(m_tool->write(withChecksum(body)));
            ++sent;
        }
        QTRY_COMPARE(m_router->counters().refusedSentences, static_cast<quint64>(sent));
    }
    QVERIFY(m_tool->write("$VRWBL\r\n$VRVER\r\n"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRVER,3.5"));
    QVERIFY(configurationIsIntact());
}

// A flood of questions fills the queue; what doesn't fit is counted, and the router goes on.
void TestSimRouter::takesMoreThanItCanAnswer()
{
    connectTool();
    for (int i = 0; i < 40; ++i) {
        QVERIFY(m_tool->write("$VRRLD\r\n"));
    }
    QTRY_VERIFY_WITH_TIMEOUT(m_router->counters().lostBytes > 0, timeout);
    QVERIFY(m_tool->write("$VRDCN\r\n"));
    QTRY_VERIFY(!m_router->isConnected());
    m_tool->clear();
    connectTool();
}

void TestSimRouter::toleratesNoiseBetweenLines()
{
    connectTool();
    QVERIFY(m_tool->write("\xff\xfe\r\n*0A$VR$VRVER\r\n\x80\x80"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRVER,3.5"));
}

void TestSimRouter::unplugsAndPlugs()
{
    connectTool();
    QSignalSpy plugged(m_router.get(), &RouterSimulator::pluggedChanged);
    m_router->unplug();
    QVERIFY(!m_router->isPlugged());
    QVERIFY(m_router->isOpen());
    QVERIFY(m_router->deviceName().isEmpty());
    QCOMPARE(m_router->lineSpeed(), 0);
    QTRY_VERIFY(m_tool->isHungUp());
    m_router->unplug();
    QCOMPARE(plugged.count(), 1);

    QVERIFY(m_router->plug());
    QVERIFY(m_router->plug());
    QCOMPARE(plugged.count(), 2);
    // Nobody told the router of the cable: it is still where it was.
    QVERIFY(m_router->isConnected());
    QVERIFY(m_tool->open(m_router->deviceName()));
    QVERIFY(m_tool->setSpeed(115200));
    m_tool->clear();
    QVERIFY(m_tool->write("$VRVER\r\n"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRVER,3.5"));
}

void TestSimRouter::publishesAgainAfterPlugging()
{
    m_tool->close();
    m_router->setPublishedName(QStringLiteral("sim-test"));
    QVERIFY(m_router->open());
    QCOMPARE(m_router->portName(), QStringLiteral("sim-test"));
    const QString link = m_router->linkPath();
    QCOMPARE(link, m_runtime->path() + QStringLiteral("/tk7-ports/sim-test"));
    QCOMPARE(QFile::symLinkTarget(link), m_router->deviceName());
    QVERIFY(m_tool->open(link));
    connectTool();

    m_router->unplug();
    QVERIFY(!QFileInfo(link).isSymLink());
    QVERIFY(m_router->portName().isEmpty());
    QVERIFY(m_router->plug());
    QCOMPARE(QFile::symLinkTarget(link), m_router->deviceName());
    QCOMPARE(m_router->portName(), QStringLiteral("sim-test"));

    m_router.reset();
    QVERIFY(!QFileInfo(link).isSymLink());
}

void TestSimRouter::unplugInTheMidstOfADownload()
{
    connectTool();
    QVERIFY(m_tool->write("$VRRLD\r\n"));
    QTRY_VERIFY(m_tool->received().size() > 100);
    m_router->unplug();
    QTRY_VERIFY(m_tool->isHungUp());
    QVERIFY(!m_tool->received().contains("$VRWBL"));
    // The rest goes out to nobody.
    QTRY_VERIFY_WITH_TIMEOUT(m_router->counters().lostBytes > 1000, timeout);
}

void TestSimRouter::unplugInsideASlot()
{
    connectTool();
    connect(m_router.get(), &RouterSimulator::lineReceived, this, [this] { m_router->unplug(); });
    QVERIFY(m_tool->write("$VRVER\r\n$VRVER\r\n"));
    QTRY_VERIFY(m_tool->isHungUp());
    QVERIFY(!m_router->isPlugged());
}

void TestSimRouter::doesNotSpin_data()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"idle", "connected", "tool gone", "unplugged", "plugged again"}) {
        QTest::newRow(state) << QString::fromLatin1(state);
    }
}

void TestSimRouter::doesNotSpin()
{
    QFETCH(QString, state);
    if (state != QLatin1String("idle")) {
        connectTool();
    }
    if (state == QLatin1String("tool gone")) {
        m_tool->close();
    } else if (state == QLatin1String("unplugged")) {
        m_router->unplug();
        QTRY_VERIFY(m_tool->isHungUp());
    } else if (state == QLatin1String("plugged again")) {
        m_router->unplug();
        QTRY_VERIFY(m_tool->isHungUp());
        QVERIFY(m_router->plug());
    }
    const int turns = turnsOfIdleLoop();
    QVERIFY2(turns < fewTurns, qPrintable(QString::number(turns)));
}

void TestSimRouter::unpublishedByDefault()
{
    QVERIFY(m_router->portName().isEmpty());
    QVERIFY(m_router->linkPath().isEmpty());
    QVERIFY(!QFileInfo::exists(m_runtime->path() + QStringLiteral("/tk7-ports")));
}

void TestSimRouter::unpublishableNameIsNoFailure()
{
    QSignalSpy messages(m_router.get(), &RouterSimulator::message);
    m_router->setPublishedName(QStringLiteral("a/b"));
    QVERIFY(m_router->open());
    QVERIFY(m_router->portName().isEmpty());
    QVERIFY(!m_router->publishError().isEmpty());
    QCOMPARE(messages.count(), 1);
    QVERIFY(m_tool->open(m_router->deviceName()));
    connectTool();
}

void TestSimRouter::worksInAnotherThread()
{
    class RouterThread : public QThread
    {
    public:
        QString device; // written before opened() is true
        std::atomic_bool opened{false};

    protected:
        void run() override
        {
            RouterSimulator router;
            router.open();
            device = router.deviceName();
            opened = true;
            exec();
        }
    };
    RouterThread thread;
    thread.start();
    QTRY_VERIFY(thread.opened);
    QVERIFY(m_tool->open(thread.device));
    QVERIFY(m_tool->setSpeed(4800));
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRCNU,0"));
    thread.quit();
    QVERIFY(thread.wait());
    QTRY_VERIFY(m_tool->isHungUp());
}

QTEST_GUILESS_MAIN(TestSimRouter)
#include "tst_simrouter.moc"
