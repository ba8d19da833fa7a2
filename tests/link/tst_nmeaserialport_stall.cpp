#include "linkrig.h"
#include "support/checkedline.h"

#include <QEventLoop>
#include <QTimer>
#include <QtTest>

/*!
 * The computer stands still for a while, as it does for a virus scanner or a window that is
 * dragged: the event loop gets no turn, and then all timers come before what the router has said
 * meanwhile.
 */
class tst_NmeaSerialPortStall : public QObject
{
    Q_OBJECT

private slots:
    void answerInTheSearch_data();
    void answerInTheSearch();
    void queryThatHadNoTime();
    void answerInTheConnection();
    void confirmThatHadNoTime();
    void silenceIsStillSilence();

    void searchReadsFirst_data();
    void searchReadsFirst();
    void watchReadsFirst_data();
    void watchReadsFirst();
    void floodEndsTheReading();
    void boxInTheSearch();
    void busyInTheTick();
    void deletedInTheTick();
};

namespace {

constexpr int scanTick = 500;
constexpr int watchTick = 2000;
const QString connectedText = QStringLiteral("VRConnect(3)");
const QString timedOut = QStringLiteral("VRTimeOutConnect()");
const QString firstStep = QStringLiteral("VRConnectionProgress(15)");
const QByteArray answer = checkedLine("$VRCNU,3");
const QByteArray signOfLife = checkedLine("$VRERR,0000,00");

// The subject of this test: the thread is held, and its event loop with it.
void standStill(int ms)
{
    QElapsedTimer clock;
    clock.start();
    while (!clock.hasExpired(ms)) { }
}

// The bytes lie in the port, and no event loop has read them.
void putIntoPort(LinkRig &rig, const QByteArray &bytes)
{
    const int before = rig.pty().unread();
    QVERIFY(rig.pty().write(bytes));
    const QDeadlineTimer limit(2000);
    while (rig.pty().unread() < before + bytes.size() && !limit.hasExpired()) { }
    QCOMPARE(rig.pty().unread(), before + bytes.size());
}

} // namespace

void tst_NmeaSerialPortStall::answerInTheSearch_data()
{
    QTest::addColumn<int>("stall");
    QTest::newRow("0.2 s, over the tick") << 200;
    QTest::newRow("0.6 s") << 600;
    QTest::newRow("2 s") << 2000;
}

// The router answers the first query, and the computer stands still until the tick is due.
void tst_NmeaSerialPortStall::answerInTheSearch()
{
    QFETCH(int, stall);
    LinkRig rig;
    rig.setRouter([&, ownSpeed = 4800](const QByteArray &line, int speed) mutable {
        if (line != "$VRCNT\r\n" || speed != ownSpeed)
            return QByteArray();
        if (ownSpeed == 115200)
            return answer;
        ownSpeed = 115200;
        rig.after(stall < scanTick ? scanTick - stall : 0, [&rig, stall] {
            putIntoPort(rig, answer);
            standStill(stall);
        });
        return QByteArray();
    });
    QVERIFY(rig.openAndConnect());
    QVERIFY2(!rig.journal().contains(firstStep), qPrintable(rig.journal().texts().join(' ')));
}

// The computer stands still before the query is out: the speed gets its time behind that.
void tst_NmeaSerialPortStall::queryThatHadNoTime()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QSignalSpy connectedSpy(rig.link(), &NmeaSerialPort::signalVRConnect);
    rig.open();
    standStill(scanTick + 100);
    QVERIFY(connectedSpy.wait());
    QVERIFY2(!rig.journal().contains(firstStep), qPrintable(rig.journal().texts().join(' ')));
}

// The router answers the query of the watch, and the computer stands still until the end is due.
void tst_NmeaSerialPortStall::answerInTheConnection()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    bool hasStood = false;
    rig.setRouter([&](const QByteArray &line, int) {
        if (line != "$VRCNC\r\n" || hasStood)
            return QByteArray();
        hasStood = true;
        putIntoPort(rig, signOfLife);
        standStill(watchTick + 300);
        return QByteArray();
    });
    QSignalSpy heard(rig.link(), &NmeaSerialPort::signalVRErrorsCode);
    QVERIFY(heard.wait(2 * watchTick + 1000));
    QVERIFY(hasStood);
    QVERIFY(!rig.journal().contains(timedOut));
    QVERIFY(rig.link()->sendSentence("$VRRLD\r\n"));
}

// The query of the watch hasn't left when the computer stands still.
void tst_NmeaSerialPortStall::confirmThatHadNoTime()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    rig.setRouter([](const QByteArray &line, int) {
        return line == "$VRCNC\r\n" ? signOfLife : QByteArray();
    });
    QSignalSpy heard(rig.link(), &NmeaSerialPort::signalVRErrorsCode);
    rig.link()->slot_confirm_timer();
    standStill(watchTick + 300);
    QVERIFY(heard.wait());
    QVERIFY(!rig.journal().contains(timedOut));
}

// A stall puts the end off, and not more than that.
void tst_NmeaSerialPortStall::silenceIsStillSilence()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    QSignalSpy end(rig.link(), &NmeaSerialPort::signalVRTimeOutConnect);
    standStill(watchTick - 500);
    const qint64 stood = rig.journal().elapsed();
    QVERIFY(end.wait(3 * watchTick));
    const qint64 took = rig.journal().timeOf(timedOut) - stood;
    QVERIFY2(took >= 2 * watchTick - 100 && took < 2 * watchTick + 900,
             qPrintable(QString::number(took)));
}

void tst_NmeaSerialPortStall::searchReadsFirst_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isAnswered");
    QTest::newRow("answer") << answer << true;
    QTest::newRow("answer behind plain lines")
        << QByteArray("$PLAIN,1\r\n").repeated(300) + answer << true;
    QTest::newRow("wrong checksum") << wronglyCheckedLine("$VRCNU,3") << false;
    QTest::newRow("another sentence") << signOfLife << false;
    QTest::newRow("half an answer") << answer.left(6) << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void tst_NmeaSerialPortStall::searchReadsFirst()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isAnswered);
    LinkRig rig;
    rig.open();
    QTRY_COMPARE(rig.sentLines().size(), 1);
    putIntoPort(rig, bytes);
    rig.link()->slot_connect_timer();
    QCOMPARE(rig.journal().contains(firstStep), !isAnswered);
    QTRY_COMPARE(rig.sentLines().size(), 2);
    QCOMPARE(rig.sentLines().last(),
             isAnswered ? QStringLiteral("-> $VRCNT @115200") : QStringLiteral("-> $VRCNT @9600"));
}

void tst_NmeaSerialPortStall::watchReadsFirst_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isAlive");
    QTest::newRow("sign of life") << signOfLife << true;
    QTest::newRow("unknown sentence") << QByteArray("$VRXYZ\r\n") << true;
    QTest::newRow("behind plain lines")
        << QByteArray("$PLAIN,1\r\n").repeated(300) + signOfLife << true;
    QTest::newRow("plain line") << QByteArray("$PLAIN,1\r\n") << false;
    QTest::newRow("AIS sentence") << checkedLine("$VRAIP,1") << false;
    QTest::newRow("answer to a query of the search") << answer << false;
    QTest::newRow("half a sentence") << QByteArray("$VRXYZ") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void tst_NmeaSerialPortStall::watchReadsFirst()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isAlive);
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    rig.link()->slot_confirm_timer();
    putIntoPort(rig, bytes);
    rig.link()->slot_confirm_timer();
    QCOMPARE(rig.journal().contains(timedOut), !isAlive);
    QCOMPARE(rig.link()->sendSentence("$VRRLD\r\n"), isAlive);
}

// A line that never ends to speak doesn't hold the tick.
void tst_NmeaSerialPortStall::floodEndsTheReading()
{
    LinkRig rig;
    rig.open();
    QTRY_COMPARE(rig.sentLines().size(), 1);
    connect(rig.link(), &NmeaSerialPort::signalNMEA_receive, &rig,
            [&] { rig.pty().write("$PLAIN,1\r\n"); });
    putIntoPort(rig, "$PLAIN,1\r\n");
    rig.link()->slot_connect_timer();
    QVERIFY(rig.journal().contains(firstStep));
    QVERIFY2(rig.journal().texts().size() < 1000,
             qPrintable(QString::number(rig.journal().texts().size())));
}

// A box that opens while the tick reads holds up neither the search nor its end.
void tst_NmeaSerialPortStall::boxInTheSearch()
{
    LinkRig rig;
    QSignalSpy end(rig.link(), &NmeaSerialPort::signalVRTimeOutConnect);
    bool isEndedInTheBox = false;
    connect(rig.link(), &NmeaSerialPort::signalVRUpdateVRData, &rig,
            [&] { isEndedInTheBox = end.wait(5000); });
    rig.open();
    QTRY_COMPARE(rig.sentLines().size(), 1);
    rig.after(scanTick - 100, [&] {
        putIntoPort(rig, "$VRWBL\r\n");
        standStill(200);
    });
    QTRY_VERIFY_WITH_TIMEOUT(isEndedInTheBox, 6000);
    QStringList steps = rig.journal().texts().filter("Progress");
    QCOMPARE(steps,
             QStringList({firstStep, "VRConnectionProgress(30)", "VRConnectionProgress(45)",
                          "VRConnectionProgress(60)", "VRConnectionProgress(75)",
                          "VRConnectionProgress(90)", "VRConnectionProgress(100)"}));
    QCOMPARE(rig.journal().count(timedOut), 1);
}

void tst_NmeaSerialPortStall::busyInTheTick()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    rig.link()->slot_confirm_timer();
    putIntoPort(rig, "$VRCNB\r\n");
    rig.link()->slot_confirm_timer();
    QCOMPARE(rig.journal().count("VRBusy()"), 1);
    QVERIFY(!rig.journal().contains(timedOut));

    LinkRig searching;
    searching.open();
    putIntoPort(searching, "$VRCNB\r\n");
    searching.link()->slot_connect_timer();
    QCOMPARE(searching.journal().texts(), QStringList{"VRBusy()"});
}

void tst_NmeaSerialPortStall::deletedInTheTick()
{
    LinkRig rig;
    auto *doomed = new NmeaSerialPort;
    QSignalSpy gone(doomed, &QObject::destroyed);
    connect(doomed, &NmeaSerialPort::signalVRUpdateVRData, &rig, [doomed] {
        doomed->closePort();
        delete doomed;
    });
    doomed->openPort(rig.pty().slavePath());
    putIntoPort(rig, "$VRWBL\r\n$VRWBL\r\n");
    doomed->slot_connect_timer();
    QCOMPARE(gone.count(), 1);
}

QTEST_GUILESS_MAIN(tst_NmeaSerialPortStall)
#include "tst_nmeaserialport_stall.moc"
