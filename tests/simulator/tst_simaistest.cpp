#include "simulator/line/sentence.h"
#include "simulator/router/aiscopy.h"
#include "simulator/router/routersimulator.h"

#include "terminalclient.h"

#include <QElapsedTimer>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

using namespace tk7sim;

/*! The AIS test over the line: when there is traffic, what it is, and what goes beside it. */
class TestSimAisTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void nothingWithoutATest();
    void beginsAndEnds();
    void endsWithTheConnection_data();
    void endsWithTheConnection();
    void truthWasHeard();
    void everyTestBeginsAnew();
    void onAgainChangesNothing();
    void vesselsAndPorts();
    void fullLineKeepsItsSpeed();
    void fullLineAnswersAtOnce();
    void monitorAndTestShareTheLine();
    void silentRouterReportsNothing();
    void wrongChecksums();
    void replays();
    void replaysInThePlaceOfTheWorld();
    void replaceAReplay();
    void refusesAReplay_data();
    void refusesAReplay();
    void updateGoesFirst();

private:
    void connectTool();
    QByteArrayList aisLines() const;
    int count(const QByteArray &head) const;
    QString file(const QByteArray &contents);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<RouterSimulator> m_router;
    std::unique_ptr<TerminalClient> m_tool;
};

namespace {

constexpr int timeout = 20000;

QByteArray sentence(const QByteArray &body)
{
    return withChecksum(body).trimmed();
}

} // namespace

void TestSimAisTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_router = std::make_unique<RouterSimulator>();
    m_router->setStartSpeed(RouterSimulator::fastSpeed);
    m_router->setTrafficRate(20);
    QVERIFY(m_router->open());
    m_tool = std::make_unique<TerminalClient>();
}

void TestSimAisTest::cleanup()
{
    m_tool.reset();
    m_router.reset();
}

void TestSimAisTest::connectTool()
{
    QVERIFY(m_tool->open(m_router->deviceName()));
    QVERIFY(m_tool->setSpeed(RouterSimulator::fastSpeed));
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE_WITH_TIMEOUT(m_tool->received(), withChecksum("$VRCNU,0"), timeout);
    m_tool->clear();
}

// Whole lines with a right checksum.
QByteArrayList TestSimAisTest::aisLines() const
{
    QByteArrayList result;
    const auto lines = m_tool->lines();
    for (const QByteArray &line : lines) {
        const QByteArray body = line.left(line.indexOf('*'));
        if (line.startsWith("$VRAI") && line == withChecksum(body)) {
            result.append(body);
        }
    }
    return result;
}

int TestSimAisTest::count(const QByteArray &head) const
{
    const auto lines = aisLines();
    return static_cast<int>(std::count_if(lines.cbegin(), lines.cend(),
                                          [&](const QByteArray &l) { return l.startsWith(head); }));
}

QString TestSimAisTest::file(const QByteArray &contents)
{
    QFile file(m_folder->filePath(QStringLiteral("lines")));
    file.open(QIODevice::WriteOnly);
    file.write(contents);
    return file.fileName();
}

void TestSimAisTest::nothingWithoutATest()
{
    m_router->setTrafficRate(100);
    connectTool();
    QSignalSpy reported(m_router.get(), &RouterSimulator::aisReported);
    QVERIFY(m_tool->write("$VRVVW,240\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().size() > 20000, timeout);
    QVERIFY(!m_tool->received().contains("$VRAI"));
    QVERIFY(reported.isEmpty());
    QCOMPARE(m_router->aisTruth().reports(), 0U);
}

void TestSimAisTest::beginsAndEnds()
{
    m_router->setTrafficRate(50);
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIM") > 100 && count("$VRAIO") > 1 && count("$VRAIP") > 1,
                             timeout);
    QCOMPARE(aisLines().size(), m_tool->received().count('\n'));
    QVERIFY(m_tool->write("$VRATM,OFF\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(!m_router->isAisTestOn(), timeout);
    const quint64 reports = m_router->aisTruth().reports();
    // What was on its way goes out; behind it there is only the answer.
    QVERIFY(m_tool->write("$VRVER\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith(withChecksum("$VRVER,3.5")), timeout);
    m_tool->clear();
    QVERIFY(m_tool->write("$VRVER\r\n"));
    QTRY_COMPARE_WITH_TIMEOUT(m_tool->received(), withChecksum("$VRVER,3.5"), timeout);
    QCOMPARE(m_router->aisTruth().reports(), reports);
}

void TestSimAisTest::endsWithTheConnection_data()
{
    QTest::addColumn<QByteArray>("last");
    QTest::newRow("disconnect") << QByteArray("$VRDCN\r\n");
    QTest::newRow("silence") << QByteArray();
}

void TestSimAisTest::endsWithTheConnection()
{
    QFETCH(QByteArray, last);
    m_router->setTrafficRate(50);
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIM") > 10, timeout);
    if (last.isEmpty()) {
        m_router->setSilenceLimit(50);
    } else {
        QVERIFY(m_tool->write(last));
    }
    QTRY_VERIFY_WITH_TIMEOUT(!m_router->isConnected(), timeout);
    const quint64 reports = m_router->aisTruth().reports();
    QVERIFY(!m_router->isAisTestOn());
    m_router->setSilenceLimit(0);
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().endsWith(withChecksum("$VRCNU,0")), timeout);
    QCOMPARE(m_router->aisTruth().reports(), reports);
}

// What the router has reported is what comes over the line, in its order.
void TestSimAisTest::truthWasHeard()
{
    m_router->setTrafficRate(30);
    QByteArrayList told;
    connect(m_router.get(), &RouterSimulator::aisReported, this,
            [&](const AisReport &report) { told += wrapReport(report); });
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(told.size() > 300, timeout);
    QVERIFY(m_tool->write("$VRATM,OFF\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(!m_router->isAisTestOn(), timeout);
    // Of the last message only the first part may have come.
    QTRY_VERIFY_WITH_TIMEOUT(aisLines().size() >= told.size(), timeout);
    QCOMPARE(aisLines().mid(0, told.size()), told);
    QVERIFY(aisLines().size() <= told.size() + 1);
    const AisPortTruth &truth = m_router->aisTruth().port(3);
    QVERIFY(truth.stations.size() > 10);
    QVERIFY(truth.ownShip.position);
}

void TestSimAisTest::everyTestBeginsAnew()
{
    connectTool();
    for (int i = 0; i < 2; ++i) {
        QVERIFY(m_tool->write("$VRATM,ON\r\n"));
        QTRY_VERIFY_WITH_TIMEOUT(m_router->isAisTestOn(), timeout);
        QVERIFY(m_router->aisTruth().reports() < 100);
        QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIM") > 10, timeout);
        QVERIFY(m_tool->write("$VRATM,OFF\r\n"));
        QTRY_VERIFY_WITH_TIMEOUT(!m_router->isAisTestOn(), timeout);
        m_tool->clear();
    }
}

void TestSimAisTest::onAgainChangesNothing()
{
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIM") > 10, timeout);
    const quint64 reports = m_router->aisTruth().reports();
    QVERIFY(reports > 0);
    QVERIFY(m_tool->write("$VRATM,ON\r\n$VRVER\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().contains("$VRVER"), timeout);
    QVERIFY(m_router->aisTruth().reports() >= reports);
}

void TestSimAisTest::vesselsAndPorts()
{
    m_router->setAisVessels(20);
    m_router->setAisPorts({1, 10});
    m_router->setTrafficRate(20);
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIM") > 200, timeout);
    QSet<QByteArray> ports;
    const auto lines = aisLines();
    for (const QByteArray &line : lines) {
        if (line.startsWith("$VRAIM")) {
            ports.insert(line.split(',').at(4));
        }
    }
    QCOMPARE(ports, QSet<QByteArray>({"1", "A"}));
    QSet<quint32> vessels;
    for (const int port : {1, 10}) {
        const auto keys = m_router->aisTruth().port(port).stations.keys();
        for (const quint32 mmsi : keys) {
            vessels.insert(mmsi);
        }
    }
    QCOMPARE(vessels.size(), 20);
}

void TestSimAisTest::fullLineKeepsItsSpeed()
{
    constexpr qint64 bytesPerSecond = 11520;
    constexpr qint64 burst = 4096; // what a late program makes up for, and what the system holds
    m_router->setAisVessels(3000);
    m_router->setTrafficRate(1000);
    connectTool();
    QElapsedTimer clock;
    clock.start();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().size() > 30000, timeout);
    const qint64 most = clock.elapsed() * bytesPerSecond / 1000 + burst;
    QVERIFY(m_tool->received().size() <= most);
    QCOMPARE(m_router->counters().lostBytes, 0U);
    QCOMPARE(aisLines().size(), m_tool->received().count('\n'));
    QVERIFY(m_router->aisTruth().port(0).stations.size() > 5);
}

// An answer waits behind half a kilobyte of traffic at most, which is a twentieth of a second.
void TestSimAisTest::fullLineAnswersAtOnce()
{
    m_router->setAisVessels(1000);
    m_router->setTrafficRate(1000);
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIM") > 100, timeout);
    for (int i = 0; i < 5; ++i) {
        m_tool->clear();
        QVERIFY(m_tool->write("$VRCNC\r\n"));
        QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().contains("$VRERR"), timeout);
        const qint64 before = m_tool->received().indexOf("$VRERR");
        QVERIFY2(before < 4096, qPrintable(QString::number(before)));
    }
    QVERIFY(m_router->isConnected());
}

void TestSimAisTest::monitorAndTestShareTheLine()
{
    m_router->setAisVessels(1000);
    m_router->setTrafficRate(1000);
    connectTool();
    QVERIFY(m_tool->write("$VRVVW,240\r\n$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().size() > 30000, timeout);
    const int ais = count("$VRAI");
    const int monitor = int(m_tool->received().count("$GP"));
    QVERIFY(ais > 50);
    QVERIFY(monitor > 50);
    QVERIFY(ais < monitor * 3);
    QVERIFY(monitor < ais * 3);
}

void TestSimAisTest::silentRouterReportsNothing()
{
    m_router->setTrafficRate(50);
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIM") > 10, timeout);
    m_router->setFault(Fault::Silent);
    QSignalSpy reported(m_router.get(), &RouterSimulator::aisReported);
    QVERIFY(m_tool->write("$VRVER\r\n"));
    QVERIFY(!reported.wait(300));
    m_router->clearFault(Fault::Silent);
    QTRY_VERIFY_WITH_TIMEOUT(reported.count() > 10, timeout);
}

void TestSimAisTest::wrongChecksums()
{
    m_router->setTrafficRate(50);
    connectTool();
    m_router->setFault(Fault::WrongChecksums);
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_tool->received().count("$VRAIM") > 20, timeout);
    QCOMPARE(aisLines().size(), 0);
}

void TestSimAisTest::replays()
{
    const QByteArrayList bodies = {"$VRAIM,1,1,,7,177KQJ5000G?tO`K>RA1wUbN0TKH,0",
                                   "$VRAIO,1,1,,7,15MgK45P3@G?fl0E`JbR0OwT0@MS,0",
                                   "$VRAIA,7,120534.00,026,A,V,AIS: no sensor position in use"};
    const QString path =
        file(sentence("!AIVDM,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0") + "\r\n"
             + sentence("!AIVDO,1,1,,,15MgK45P3@G?fl0E`JbR0OwT0@MS,0") + '\n'
             + "!AIVDM,1,1,,B,torn\n" + QByteArray(5000, '\xff') + '\n'
             + sentence("$AIALR,120534.00,026,A,V,AIS: no sensor position in use"));
    QSignalSpy messages(m_router.get(), &RouterSimulator::message);
    QVERIFY2(m_router->setAisReplay(7, path), qPrintable(m_router->errorString()));
    QCOMPARE(messages.count(), 1);
    QVERIFY(messages.at(0).at(0).toString().endsWith(QStringLiteral(": 2")));
    m_router->setTrafficRate(5);
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    const auto replayed = [&] {
        QByteArrayList result;
        const auto lines = aisLines();
        for (const QByteArray &line : lines) {
            if (bodies.contains(line)) {
                result.append(line);
            }
        }
        return result;
    };
    QTRY_VERIFY_WITH_TIMEOUT(replayed().size() >= 7, timeout);
    // The station speaks from the connection on; the test hears it from when it is switched on.
    const int first = int(bodies.indexOf(replayed().constFirst()));
    const QByteArrayList cycle = bodies.mid(first) + bodies.mid(0, first);
    QCOMPARE(replayed().mid(0, 7), cycle + cycle + cycle.mid(0, 1));
    QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIP") > 0, timeout);
    QVERIFY(!m_tool->received().contains('\xff'));
}

void TestSimAisTest::replaysInThePlaceOfTheWorld()
{
    const QString path = file(sentence("!AIVDM,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0"));
    QVERIFY(m_router->setAisReplay(3, path));
    m_router->setTrafficRate(20);
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIM") > 100, timeout);
    QVERIFY(m_router->aisTruth().port(3).stations.isEmpty());
    QVERIFY(!m_router->aisTruth().port(8).stations.isEmpty());
    const auto lines = aisLines();
    int replayed = 0;
    for (const QByteArray &line : lines) {
        const auto fields = line.split(',');
        if (line.startsWith("$VRAIM") && fields.at(4) == "3") {
            QCOMPARE(fields.at(5), QByteArray("177KQJ5000G?tO`K>RA1wUbN0TKH"));
            ++replayed;
        }
    }
    QVERIFY(replayed > 0);
}

void TestSimAisTest::replaceAReplay()
{
    QVERIFY(m_router->setAisReplay(5, file(sentence("!AIVDM,1,1,,B,0,0"))));
    QVERIFY(m_router->setAisReplay(5, file(sentence("!AIVDM,1,1,,B,1,0"))));
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIM,1,1,,5,1,0") > 2, timeout);
    QCOMPARE(count("$VRAIM,1,1,,5,0,0"), 0);
}

void TestSimAisTest::refusesAReplay_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QString>("reason");
    const QByteArray good = sentence("!AIVDM,1,1,,B,0,0");
    QTest::newRow("port 12") << 12 << good << QStringLiteral("no input port: 12");
    QTest::newRow("port -1") << -1 << good << QStringLiteral("no input port: -1");
    QTest::newRow("nothing of use")
        << 3 << QByteArray("hello\n") << QStringLiteral("no AIS sentence");
}

void TestSimAisTest::refusesAReplay()
{
    QFETCH(int, port);
    QFETCH(QByteArray, contents);
    QFETCH(QString, reason);
    QVERIFY(!m_router->setAisReplay(port, file(contents)));
    QVERIFY2(m_router->errorString().contains(reason), qPrintable(m_router->errorString()));
}

void TestSimAisTest::updateGoesFirst()
{
    m_router->setTrafficRate(100);
    connectTool();
    QVERIFY(m_tool->write("$VRATM,ON\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(count("$VRAIM") > 10, timeout);
    QVERIFY(m_tool->write("$VRFWS\r\n"));
    QTRY_VERIFY_WITH_TIMEOUT(m_router->isUpdating(), timeout);
    QSignalSpy reported(m_router.get(), &RouterSimulator::aisReported);
    QVERIFY(!reported.wait(300));
}

QTEST_GUILESS_MAIN(TestSimAisTest)
#include "tst_simaistest.moc"
