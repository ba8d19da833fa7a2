#include "simulator/line/sentence.h"
#include "simulator/router/faults.h"
#include "simulator/router/faultset.h"
#include "simulator/router/routersimulator.h"

#include "terminalclient.h"

#include <QSet>
#include <QSignalSpy>
#include <QtTest>

using namespace tk7sim;

/*! Every fault, as the tool meets it. */
class TestSimFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void tableIsComplete();
    void namesLeadBack();
    void valuesAreCut();

    void silent();
    void silentInTheMidst();
    void busy();
    void busyAfter_data();
    void busyAfter();
    void busyAfterSetWhileConnected();
    void busyAfterTheToolHasLeft();
    void silentAfter();
    void silentAfterLetsTheAnswerOut();
    void silentAfterSetWhileConnected();
    void noSecondAnswer();
    void wrongChecksums();
    void wrongChecksumsInTraffic();
    void noise();
    void noiseRepeats();
    void saveError();
    void locked();
    void slow();
    void slowKeepsTheOrder();
    void unplugged();
    void unpluggedIsUsedUp();
    void replug();
    void inputSilent();
    void inputSilentHandsOver();
    void inputErrors();
    void inputDamage();
    void clearedFaultsAreGone();

private:
    void query();
    void connectTool();
    bool isSilent();

    std::unique_ptr<RouterSimulator> m_router;
    std::unique_ptr<TerminalClient> m_tool;
};

namespace {

constexpr int timeout = 10000;
constexpr double almost = 0.9e6; // microseconds in a second, but for the coarseness of timers
const QByteArray answer = withChecksum("$VRCNU,0");

} // namespace

void TestSimFaults::init()
{
    m_router = std::make_unique<RouterSimulator>();
    m_tool = std::make_unique<TerminalClient>();
    QVERIFY2(m_router->open(), qPrintable(m_router->errorString()));
    QVERIFY(m_tool->open(m_router->deviceName()));
}

void TestSimFaults::cleanup()
{
    m_tool.reset();
    m_router.reset();
}

// Asks at the router's present speed, and waits until the question has been heard.
void TestSimFaults::query()
{
    QSignalSpy heard(m_router.get(), &RouterSimulator::lineReceived);
    QVERIFY(m_tool->setSpeed(m_router->speed()));
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE(heard.count(), 1);
}

// Asks, and tells whether the question stays without an answer.
bool TestSimFaults::isSilent()
{
    QSignalSpy sent(m_router.get(), &RouterSimulator::lineSent);
    query();
    return sent.isEmpty();
}

void TestSimFaults::connectTool()
{
    m_tool->clear();
    query();
    QTRY_COMPARE_WITH_TIMEOUT(m_router->speed(), RouterSimulator::fastSpeed, timeout);
    query();
    QTRY_VERIFY_WITH_TIMEOUT(m_router->isConnected(), timeout);
    QTRY_COMPARE_WITH_TIMEOUT(m_tool->lines().size(), 2, timeout);
    m_tool->clear();
}

void TestSimFaults::tableIsComplete()
{
    const auto &table = faultTable();
    QCOMPARE(table.size(), int(Fault::FwErrorAt) + 1);
    QSet<QByteArray> names;
    for (int i = 0; i < table.size(); ++i) {
        const FaultInfo &info = table.at(i);
        QCOMPARE(int(info.fault), i);
        QVERIFY(QByteArray(info.text).size() > 10);
        QVERIFY(info.defaultValue >= 0 && info.defaultValue <= info.maximum);
        QCOMPARE(info.valueName != nullptr, info.maximum > 0);
        names.insert(info.name);
    }
    QCOMPARE(names.size(), table.size());
}

void TestSimFaults::namesLeadBack()
{
    for (const FaultInfo &info : faultTable()) {
        QVERIFY(faultFromName(faultName(info.fault)) == info.fault);
    }
    QVERIFY(!faultFromName(QStringLiteral("none such")).has_value());
    QVERIFY(!faultFromName(QString()).has_value());
}

void TestSimFaults::valuesAreCut()
{
    FaultSet faults;
    QVERIFY(!faults.has(Fault::Noise));
    QCOMPARE(faults.value(Fault::Noise), 0.0);
    faults.set(Fault::Noise, 1e9);
    QCOMPARE(faults.value(Fault::Noise), 100.0);
    faults.set(Fault::Noise, -1);
    QVERIFY(faults.has(Fault::Noise));
    QCOMPARE(faults.value(Fault::Noise), 0.0);
}

void TestSimFaults::silent()
{
    m_router->setFault(Fault::Silent);
    QSignalSpy sent(m_router.get(), &RouterSimulator::lineSent);
    query();
    m_router->sendLine("anything");
    QCOMPARE(sent.count(), 0);
    QCOMPARE(m_router->speed(), m_router->startSpeed());
    QCOMPARE(m_router->transcript().size(), 1);

    m_router->clearFault(Fault::Silent);
    connectTool();
}

// What was on its way is lost as well.
void TestSimFaults::silentInTheMidst()
{
    connectTool();
    QVERIFY(m_tool->write("$VRRLD\r\n"));
    QTRY_VERIFY(m_tool->received().size() > 100);
    m_router->setFault(Fault::Silent);
    QSignalSpy heard(m_router.get(), &RouterSimulator::lineReceived);
    QVERIFY(m_tool->write(withChecksum("$VRSPD,0,9600")));
    QTRY_COMPARE(heard.count(), 1);
    QVERIFY(m_router->working() == RouterConfig::factory());
    QVERIFY(!m_tool->received().contains("$VRWBL"));
}

void TestSimFaults::busy()
{
    m_router->setFault(Fault::Busy);
    query();
    QTRY_COMPARE(m_tool->received(), QByteArray("$VRCNB\r\n"));
    QCOMPARE(m_router->speed(), m_router->startSpeed());
    QVERIFY(!m_router->isConnected());
}

void TestSimFaults::busyAfter_data()
{
    QTest::addColumn<bool>("returns");
    QTest::newRow("back to the start speed") << true;
    QTest::newRow("stays at 115200 baud") << false;
}

// The tool is told at the speed of the connection, which ends with that; whoever asks hears the
// same.
void TestSimFaults::busyAfter()
{
    QFETCH(bool, returns);
    constexpr double seconds = 0.3;
    m_router->setReturnsToStartSpeed(returns);
    m_router->setFault(Fault::BusyAfter, seconds);
    qint64 connectedAt = 0;
    connect(m_router.get(), &RouterSimulator::connectedChanged, this, [&](bool connected) {
        connectedAt = connected ? RouterSimulator::now() : connectedAt;
    });
    connectTool();
    QVERIFY(m_tool->write("$VRVVW,240\r\n$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(!m_router->isConnected(), timeout);
    QVERIFY(static_cast<double>(RouterSimulator::now() - connectedAt) >= seconds * almost);
    QTRY_VERIFY(m_tool->received().endsWith("$VRCNB\r\n"));
    QCOMPARE(m_router->view(), 255);
    QVERIFY(!m_router->isAisTestOn());
    QCOMPARE(m_router->speed(), returns ? m_router->startSpeed() : RouterSimulator::fastSpeed);

    m_tool->clear();
    query();
    QTRY_COMPARE(m_tool->received(), QByteArray("$VRCNB\r\n"));
    QVERIFY(m_tool->write("$VRRLD\r\n$VRCNT\r\n"));
    QTRY_COMPARE(m_tool->received(), QByteArray("$VRCNB\r\n$VRCNB\r\n"));
    QVERIFY(!m_router->isConnected());

    m_router->clearFault(Fault::BusyAfter);
    m_tool->clear();
    connectTool();
    QVERIFY(m_tool->write("$VRVER\r\n"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRVER,3.5"));
}

void TestSimFaults::busyAfterSetWhileConnected()
{
    connectTool();
    m_router->setFault(Fault::BusyAfter, 0);
    QTRY_COMPARE(m_tool->received(), QByteArray("$VRCNB\r\n"));
    QTRY_VERIFY(!m_router->isConnected());
    QCOMPARE(m_router->speed(), m_router->startSpeed());
}

void TestSimFaults::busyAfterTheToolHasLeft()
{
    m_router->setFault(Fault::BusyAfter, 0.3);
    connectTool();
    QVERIFY(m_tool->write("$VRDCN\r\n"));
    QTRY_VERIFY(!m_router->isConnected());
    m_tool->clear();
    const auto isBusy = [this] {
        m_tool->clear();
        query();
        return QTest::qWaitFor([this] { return m_tool->received().endsWith("$VRCNB\r\n"); }, 100);
    };
    QTRY_VERIFY_WITH_TIMEOUT(isBusy(), timeout);
    QCOMPARE(m_router->speed(), m_router->startSpeed());
}

void TestSimFaults::silentAfter()
{
    constexpr double seconds = 0.3;
    m_router->setFault(Fault::SilentAfter, seconds);
    qint64 connectedAt = 0;
    connect(m_router.get(), &RouterSimulator::connectedChanged, this,
            [&] { connectedAt = RouterSimulator::now(); });
    connectTool();

    // From some moment on, and no earlier, nothing is answered any more.
    QTRY_VERIFY(isSilent());
    QVERIFY(static_cast<double>(RouterSimulator::now() - connectedAt) >= seconds * almost);

    m_router->clearFault(Fault::SilentAfter);
    m_tool->clear();
    QVERIFY(m_tool->write("$VRVER\r\n"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRVER,3.5"));
}

void TestSimFaults::silentAfterLetsTheAnswerOut()
{
    m_router->setFault(Fault::SilentAfter, 0);
    QVERIFY(m_router->setStartSpeed(115200));
    query();
    QTRY_COMPARE(m_tool->received(), answer);
    QTRY_VERIFY(isSilent());
}

void TestSimFaults::silentAfterSetWhileConnected()
{
    connectTool();
    m_router->setFault(Fault::SilentAfter, 0);
    QTRY_VERIFY(isSilent());
}

void TestSimFaults::noSecondAnswer()
{
    m_router->setFault(Fault::NoSecondAnswer);
    query();
    QTRY_COMPARE(m_tool->received(), answer);
    QCOMPARE(m_router->speed(), 115200);
    QSignalSpy sent(m_router.get(), &RouterSimulator::lineSent);
    query();
    QCOMPARE(sent.count(), 0);
    QVERIFY(!m_router->isConnected());
    // It gives up waiting, and can be found again.
    m_router->setSilenceLimit(50);
    QTRY_COMPARE(m_router->speed(), m_router->startSpeed());
}

void TestSimFaults::wrongChecksums()
{
    connectTool();
    m_router->setFault(Fault::WrongChecksums);
    QVERIFY(m_tool->write("$VRRLD\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith("$VRWBL\r\n"), timeout);
    m_router->sendChecked("$VRFBK,1");
    QTRY_VERIFY(m_tool->received().endsWith(withWrongChecksum("$VRFBK,1")));
    int wrong = 0;
    for (const QByteArray &line : m_tool->lines()) {
        const auto form = parseSentence(line)->form;
        QVERIFY2(form != SentenceForm::Checked, line.constData());
        wrong += form == SentenceForm::WrongChecksum ? 1 : 0;
    }
    QCOMPARE(wrong, 73);
}

void TestSimFaults::wrongChecksumsInTraffic()
{
    connectTool();
    m_router->setFault(Fault::WrongChecksums);
    QVERIFY(m_tool->write("$VRVVW,242\r\n"));
    QTRY_VERIFY(m_tool->lines().size() > 3);
    for (const QByteArray &line : m_tool->lines().mid(1)) {
        const int star = int(line.indexOf('*'));
        QVERIFY2(line.startsWith("$HE") && star > 0, line.constData());
        QVERIFY(line.mid(star + 1, 2).toInt(nullptr, 16) != checksumOf(line));
    }
}

void TestSimFaults::noise()
{
    connectTool();
    m_router->setFault(Fault::Noise, 20);
    QVERIFY(m_tool->write("$VRRLD\r\n"));
    const int clean = 3360;
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().size() > clean, timeout);
    int good = 0;
    int total = 0;
    for (const QByteArray &line : m_tool->lines()) {
        const int start = int(line.lastIndexOf('$'));
        const auto sentence = parseSentence(line.mid(qMax(start, 0)));
        good += sentence && sentence->form == SentenceForm::Checked ? 1 : 0;
        ++total;
    }
    // The seed is fixed: the same sentences are hit in every run.
    QVERIFY2(good > 40 && good < 73, qPrintable(QString::number(good)));
    QVERIFY(total > 60);
}

void TestSimFaults::noiseRepeats()
{
    QByteArrayList heard;
    for (const quint32 seed : {5U, 5U, 6U}) {
        cleanup();
        init();
        m_router->setSeed(seed);
        QVERIFY(m_router->setStartSpeed(115200));
        connectTool();
        QTRY_COMPARE(m_tool->received().size(), 0);
        m_router->setFault(Fault::Noise, 50);
        for (int i = 0; i < 20; ++i) {
            m_router->sendLine("$VRSRO\r\n");
        }
        m_router->clearFault(Fault::Noise);
        m_router->sendLine("end");
        QTRY_VERIFY(m_tool->received().endsWith("end"));
        heard.append(m_tool->received());
    }
    QCOMPARE(heard.at(0), heard.at(1));
    QVERIFY(heard.at(1) != heard.at(2));
}

void TestSimFaults::saveError()
{
    m_router->setFault(Fault::SaveError);
    m_router->setSaveDuration(0);
    connectTool();
    QSignalSpy saved(m_router.get(), &RouterSimulator::saved);
    QVERIFY(m_tool->write(withChecksum("$VRSPD,0,9600") + "$VRSVR\r\n"));
    QTRY_VERIFY(m_tool->received().endsWith("$VRSRE\r\n"));
    QCOMPARE(saved.count(), 1);
    QVERIFY(!saved.constFirst().constFirst().toBool());
    QCOMPARE(m_router->working().speeds[0], 9600U);
    QVERIFY(m_router->eeprom() == RouterConfig::factory());
}

void TestSimFaults::locked()
{
    m_router->setFault(Fault::Locked);
    m_router->setSaveDuration(0);
    connectTool();
    QVERIFY(m_tool->write("$VRRLD\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith("$VRWBL\r\n"), timeout);
    QVERIFY(m_tool->received().contains(withChecksum("$VRLCK,1,0")));
    QVERIFY(m_tool->write("$VRSVR\r\n"));
    QTRY_VERIFY(m_tool->received().endsWith("$VRSRE\r\n"));
}

void TestSimFaults::slow()
{
    connectTool();
    constexpr qint64 delay = 150;
    m_router->setFault(Fault::Slow, delay);
    const qint64 begin = RouterSimulator::now();
    QVERIFY(m_tool->write("$VRVER\r\n"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRVER,3.5"));
    QVERIFY(RouterSimulator::now() - begin >= delay * 1000);

    m_tool->clear();
    const qint64 asked = RouterSimulator::now();
    QVERIFY(m_tool->write("$VRRLD\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith("$VRWBL\r\n"), timeout);
    // 74 sentences, a tenth of the delay from each to the next.
    QVERIFY(RouterSimulator::now() - asked >= (delay + 73 * delay / 10) * 1000);
}

void TestSimFaults::slowKeepsTheOrder()
{
    connectTool();
    m_router->setFault(Fault::Slow, 30);
    QVERIFY(m_tool->write("$VRVER\r\n$VRCNC\r\n$VRVER\r\n"));
    QTRY_COMPARE(m_tool->received(),
                 withChecksum("$VRVER,3.5") + withChecksum("$VRERR,0000,00")
                     + withChecksum("$VRVER,3.5"));
}

void TestSimFaults::unplugged()
{
    constexpr double seconds = 0.2;
    m_router->setFault(Fault::Unplugged, seconds);
    qint64 connectedAt = 0;
    qint64 pulledAt = 0;
    connect(m_router.get(), &RouterSimulator::connectedChanged, this,
            [&] { connectedAt = RouterSimulator::now(); });
    connect(m_router.get(), &RouterSimulator::pluggedChanged, this,
            [&] { pulledAt = RouterSimulator::now(); });
    connectTool();
    QTRY_VERIFY(m_tool->isHungUp());
    QVERIFY(!m_router->isPlugged());
    QVERIFY(static_cast<double>(pulledAt - connectedAt) >= seconds * almost);
}

void TestSimFaults::unpluggedIsUsedUp()
{
    connectTool();
    m_router->setFault(Fault::Unplugged, 0);
    QTRY_VERIFY(!m_router->isPlugged());
    QVERIFY(!m_router->hasFault(Fault::Unplugged));
}

void TestSimFaults::replug()
{
    m_router->setFault(Fault::Replug, 0.1);
    const QSignalSpy plugged(m_router.get(), &RouterSimulator::pluggedChanged);
    m_router->unplug();
    QVERIFY(!m_router->isPlugged());
    QTRY_VERIFY(m_router->isPlugged());
    QCOMPARE(plugged.count(), 2);
    QVERIFY(m_tool->open(m_router->deviceName()));
    connectTool();
}

void TestSimFaults::inputSilent()
{
    m_router->setFault(Fault::InputSilent, 4);
    m_router->setFault(Fault::InputSilent, 11);
    QVERIFY(m_router->hasFault(Fault::InputSilent));
    for (int port = 0; port < portCount; ++port) {
        QCOMPARE(m_router->isInputSilent(port), port == 4 || port == 11);
    }
    m_router->setInputSilent(4, false);
    QVERIFY(m_router->hasFault(Fault::InputSilent));
    m_router->setInputSilent(11, false);
    QVERIFY(!m_router->hasFault(Fault::InputSilent));

    m_router->setInputSilent(7, true);
    QVERIFY(m_router->hasFault(Fault::InputSilent));
    m_router->clearFault(Fault::InputSilent);
    QVERIFY(!m_router->isInputSilent(7));
    for (const int port : {-1, 12, 15, 1000}) {
        m_router->setInputSilent(port, true);
        QVERIFY(!m_router->isInputSilent(port));
    }
    QVERIFY(!m_router->hasFault(Fault::InputSilent));
}

// The first channel of the first output takes the position of one receiver, or of the other.
void TestSimFaults::inputSilentHandsOver()
{
    m_router->setTrafficRate(50);
    m_router->setHandoverTime(0);
    QCOMPARE(m_router->handoverTime(), 0);
    connectTool();
    QVERIFY(m_tool->write("$VRVVW,0\r\n"));
    QTRY_VERIFY(m_tool->lines().size() > 10);
    QVERIFY(m_tool->received().contains("$GP"));
    QVERIFY(!m_tool->received().contains("$GN"));
    QCOMPARE(m_router->activeInput(0, 0), 0);

    m_router->setFault(Fault::InputSilent, 0);
    QCOMPARE(m_router->activeInput(0, 0), 1);
    QTRY_VERIFY(m_tool->received().contains("$GN"));
    m_tool->clear();
    QTRY_VERIFY(m_tool->lines().size() > 10);
    QVERIFY(!m_tool->received().contains("$GP"));

    m_router->clearFault(Fault::InputSilent);
    QCOMPARE(m_router->activeInput(0, 0), 0);
    QTRY_VERIFY(m_tool->received().contains("$GP"));

    m_router->setHandoverTime(1000000);
    m_router->setFault(Fault::InputSilent, 0);
    QCOMPARE(m_router->activeInput(0, 0), 0);
    QCOMPARE(m_router->activeInput(0, 11), 15);
    QCOMPARE(m_router->activeInput(12, 0), 15);
    QCOMPARE(m_router->activeInput(0, -1), 15);
}

void TestSimFaults::inputErrors()
{
    m_router->setTrafficRate(50);
    m_router->setFault(Fault::InputErrors, 50);
    connectTool();
    const auto wrong = [&] {
        const auto lines = m_tool->lines();
        return std::count_if(lines.cbegin(), lines.cend(), [](const QByteArray &line) {
            const bool isWhole = line.startsWith('$') || line.startsWith('!');
            return isWhole && line.contains('*')
                && parseHex(line.trimmed().right(2), 2) != checksumOf(line);
        });
    };
    QVERIFY(m_tool->write("$VRVVW,240\r\n"));
    QTRY_VERIFY(m_tool->lines().size() > 40);
    QVERIFY(wrong() > 5 && wrong() < m_tool->lines().size() - 5);

    // The autopilot's position is checked.
    QVERIFY(m_tool->write("$VRVVW,0\r\n"));
    QTRY_VERIFY(m_tool->received().contains("$VRVVW,0\r\n"));
    m_tool->clear();
    QTRY_VERIFY(m_tool->lines().size() > 40);
    QCOMPARE(wrong(), 0);
}

void TestSimFaults::inputDamage()
{
    m_router->setTrafficRate(50);
    m_router->setFault(Fault::InputDamage, 100);
    connectTool();
    QVERIFY(m_tool->write("$VRVVW,240\r\n"));
    QTRY_VERIFY(m_tool->received().contains('\x15'));
    QSignalSpy sent(m_router.get(), &RouterSimulator::lineSent);
    QVERIFY(m_tool->write("$VRVVW,0\r\n"));
    QTRY_COMPARE(m_router->view(), 0);
    sent.clear();
    QVERIFY(m_tool->write("$VRVER\r\n"));
    // Nothing passes.
    QTRY_VERIFY(m_tool->received().endsWith(withChecksum("$VRVER,3.5")));
    QCOMPARE(sent.count(), 1);
    m_router->clearFault(Fault::InputDamage);
    QTRY_VERIFY(sent.count() > 3);
}

void TestSimFaults::clearedFaultsAreGone()
{
    for (const FaultInfo &info : faultTable()) {
        m_router->setFault(info.fault);
        QVERIFY(m_router->hasFault(info.fault));
    }
    m_router->clearFaults();
    for (const FaultInfo &info : faultTable()) {
        QVERIFY(!m_router->hasFault(info.fault));
    }
    connectTool();
    QVERIFY(m_tool->write("$VRVER\r\n"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRVER,3.5"));
}

QTEST_GUILESS_MAIN(TestSimFaults)
#include "tst_simfaults.moc"
