#include "linkrig.h"
#include "support/checkedline.h"

#include <QDeadlineTimer>
#include <QtTest>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

/*!
 * The search for the router. The cases take seconds each, so all of them run side by side on a
 * pseudo-terminal each, once, before the first test looks at its own.
 */
class tst_NmeaSerialPortScan : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void notOpened_data();
    void notOpened();
    void openedTwice();

    void journal_data();
    void journal();
    void timing_data();
    void timing();
    void noSpeedTakesLonger();

    void nothingAfterTheEnd_data();
    void nothingAfterTheEnd();
    void noConfirmQueryInTheSearch();
    void busyAnswer_data();
    void busyAnswer();
    void stepDiscardsWhatWasNotRead();
    void firstAnswerDiscardsNothing();
    void answeredInTheBoxOfAStep();
    void reopened();
    void closedAtAnyTime();

private:
    LinkRig &run(const QString &name) { return *m_runs.at(name); }
    enum AfterConnecting { SendAndClose, StayConnected };
    LinkRig &start(const char *name, LinkRig::Router router, AfterConnecting after = SendAndClose);

    std::map<QString, std::unique_ptr<LinkRig>> m_runs;
};

namespace {

constexpr int searchTime = 3500;
constexpr int scanTick = 500;
// How much later than due a timer may come on a busy machine, and how much earlier a rounded one.
constexpr int late = 900;
constexpr int early = 60;

constexpr int allSpeeds[] = {4800, 9600, 19200, 38400, 57600, 115200, 2400};
constexpr int allProgress[] = {15, 30, 45, 60, 75, 90};

QString query(int speed)
{
    return QStringLiteral("-> $VRCNT @%1").arg(speed);
}

QString progress(int value)
{
    return QStringLiteral("VRConnectionProgress(%1)").arg(value);
}

const QString timedOut = QStringLiteral("VRTimeOutConnect()");
const QString sumError = QStringLiteral("CommandCRSError()");

// The search up to the query at `lastSpeed`; behind each query stands `afterQuery`, if any.
QStringList searchUpTo(int lastSpeed, const QString &afterQuery = QString())
{
    QStringList all;
    for (int i = 0; i < 7; ++i) {
        if (i > 0)
            all += progress(allProgress[i - 1]);
        all += query(allSpeeds[i]);
        if (!afterQuery.isEmpty())
            all += afterQuery;
        if (allSpeeds[i] == lastSpeed)
            break;
    }
    return all;
}

QStringList timeOutEnd()
{
    return {progress(100), timedOut};
}

QStringList connected(int port)
{
    return {progress(100), QStringLiteral("VRConnect(%1)").arg(port)};
}

// What a run does with its connection.
const QString firstSentence = QStringLiteral("-> $VRRLD @115200");

QStringList connectedEnd(int port)
{
    return connected(port) + QStringList{firstSentence};
}

// After a first answer at 115200 that led to nothing.
QStringList lastStepAndEnd()
{
    return QStringList{progress(90), query(2400)} + timeOutEnd();
}

// Says `first` to a query at `speed` and `second` at 115200 from then on.
LinkRig::Router answers(int speed, const QByteArray &first, const QByteArray &second)
{
    return [speed, first, second, moved = false](const QByteArray &line, int lineSpeed) mutable {
        if (line != "$VRCNT\r\n" || lineSpeed != (moved ? 115200 : speed))
            return QByteArray();
        QByteArray reply = moved ? second : first;
        moved = true;
        return reply;
    };
}

LinkRig::Router alwaysSays(const QByteArray &reply)
{
    return [reply](const QByteArray &, int) { return reply; };
}

} // namespace

LinkRig &tst_NmeaSerialPortScan::start(const char *name, LinkRig::Router router,
                                       AfterConnecting after)
{
    auto owned = std::make_unique<LinkRig>(std::move(router));
    LinkRig *rig = owned.get();
    m_runs.emplace(QLatin1String(name), std::move(owned));
    if (after == SendAndClose) {
        connect(rig->link(), &NmeaSerialPort::signalVRConnect, rig,
                [rig] { rig->link()->sendSentence("$VRRLD\r\n"); });
        connect(&rig->pty(), &PtyPair::lineReceived, rig, [rig](const QByteArray &line) {
            if (line == "$VRRLD\r\n")
                rig->link()->closePort();
        });
    }
    rig->open();
    return *rig;
}

void tst_NmeaSerialPortScan::initTestCase()
{
    const QByteArray good = checkedLine("$VRCNU,3");
    start("silent", nullptr);
    for (const int speed : allSpeeds)
        start(QByteArray::number(speed).constData(), LinkRig::routerAt(speed));
    start("absurd port first", answers(9600, checkedLine("$VRCNU,99"), good));
    start("text first", answers(9600, checkedLine("$VRCNU,what"), good));
    start("no second answer", answers(4800, good, QByteArray()));
    start("port 12 at 115200", answers(4800, good, checkedLine("$VRCNU,12")));
    start("port 255 at 115200", answers(4800, good, checkedLine("$VRCNU,255")));
    start("port 256 at 115200", answers(4800, good, checkedLine("$VRCNU,256")));
    start("port 4294967295 at 115200", answers(4800, good, checkedLine("$VRCNU,4294967295")));
    start("port 4294967296 at 115200", answers(4800, good, checkedLine("$VRCNU,4294967296")));
    start("negative port at 115200", answers(4800, good, checkedLine("$VRCNU,-1")));
    start("empty port at 115200", answers(4800, good, checkedLine("$VRCNU,")));
    start("text port at 115200", answers(4800, good, checkedLine("$VRCNU,abc")));
    start("port 11 at 115200", answers(4800, good, checkedLine("$VRCNU,11")));
    start("only at 2400",
          [good](const QByteArray &, int speed) { return speed == 2400 ? good : QByteArray(); });
    start("at 2400, absurd port at 115200", [good](const QByteArray &, int speed) {
        if (speed == 2400)
            return good;
        return speed == 115200 ? checkedLine("$VRCNU,12") : QByteArray();
    });
    start("first at 9600, then at 2400", [good](const QByteArray &, int speed) {
        return speed == 9600 || speed == 2400 ? good : QByteArray();
    });
    LinkRig &slow = start("late at 2400", nullptr);
    slow.setRouter([&slow, good](const QByteArray &, int speed) {
        if (speed == 2400)
            slow.after(scanTick - 60, [&slow, good] { slow.pty().write(good); });
        return QByteArray();
    });
    int asked = 0;
    start("at 2400 and then everywhere", [good, asked](const QByteArray &, int speed) mutable {
        return speed == 2400 || (speed == 115200 && ++asked == 3) ? good : QByteArray();
    });
    start("wrong checksum", alwaysSays(wronglyCheckedLine("$VRCNU,3")));
    start("no checksum", alwaysSays("$VRCNU,3\r\n"));
    start("bare answer", alwaysSays("$VRCNU\r\n"));
    start("other sentences", alwaysSays(checkedLine("$VRVER,3.4") + "$GPGLL,1,N\r\n"));
    start("one sentence, then silence", [isFirst = true](const QByteArray &, int) mutable {
        return std::exchange(isFirst, false) ? checkedLine("$VRVER,3.4") : QByteArray();
    });
    start("wrong, then right", answers(4800, wronglyCheckedLine("$VRCNU,3"), good));

    LinkRig &rig = start("late answer in the connection", LinkRig::routerAt(4800), StayConnected);
    connect(rig.link(), &NmeaSerialPort::signalVRConnect, &rig,
            [&rig] { rig.after(200, [&rig] { rig.pty().write(checkedLine("$VRCNU,3")); }); });

    const auto allEnded = [this] {
        return std::all_of(m_runs.begin(), m_runs.end(), [](const auto &entry) {
            const LinkJournal &journal = entry.second->journal();
            return journal.contains(timedOut) || journal.contains(firstSentence);
        });
    };
    QTRY_VERIFY_WITH_TIMEOUT(allEnded(), 3 * searchTime);
}

void tst_NmeaSerialPortScan::notOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no such device") << "/dev/no-such-device";
    QTest::newRow("no such name") << "no-such-port";
    QTest::newRow("a folder") << "/tmp";
    QTest::newRow("not a terminal") << "/dev/null";
    QTest::newRow("empty name") << "";
}

void tst_NmeaSerialPortScan::notOpened()
{
    QFETCH(QString, name);
    NmeaSerialPort link;
    const LinkJournal journal(&link);
    link.openPort(name);
    const QStringList refused{progress(100), "ErrorOpenPort()"};
    QCOMPARE(journal.texts(), refused);
    QVERIFY(!link.sendSentence("$VRRLD\r\n"));

    // The timers are not running: no step of the search follows.
    QSignalSpy steps(&link, &NmeaSerialPort::signalVRConnectionProgress);
    QVERIFY(!steps.wait(scanTick + 200));
    link.closePort();
    link.closePort();
    QCOMPARE(journal.texts(), refused);
}

void tst_NmeaSerialPortScan::openedTwice()
{
    LinkRig owner;
    owner.open();
    LinkJournal &journal = owner.journal();
    QCOMPARE(journal.texts(), QStringList());

    NmeaSerialPort second;
    const LinkJournal secondJournal(&second);
    second.openPort(owner.pty().slavePath());
    QCOMPARE(secondJournal.texts(), (QStringList{progress(100), "ErrorOpenPort()"}));
    second.closePort();
    QTRY_COMPARE(owner.sentLines(), QStringList{query(4800)});
}

void tst_NmeaSerialPortScan::journal_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QStringList &expected) {
        QTest::newRow(name) << name << expected;
    };
    row("silent", searchUpTo(2400) + timeOutEnd());
    for (const int speed : {4800, 9600, 19200, 38400, 57600, 2400}) {
        row(QByteArray::number(speed).constData(),
            searchUpTo(speed) + QStringList{query(115200)} + connectedEnd(3));
    }
    row("115200", searchUpTo(115200) + connectedEnd(3));
    row("absurd port first", searchUpTo(9600) + QStringList{query(115200)} + connectedEnd(3));
    row("text first", searchUpTo(9600) + QStringList{query(115200)} + connectedEnd(3));
    const QStringList moved = searchUpTo(4800) + QStringList{query(115200)};
    row("no second answer", moved + lastStepAndEnd());
    row("port 12 at 115200", moved + lastStepAndEnd());
    row("port 255 at 115200", moved + lastStepAndEnd());
    row("port 256 at 115200", moved + lastStepAndEnd());
    row("port 4294967295 at 115200", moved + lastStepAndEnd());
    row("port 4294967296 at 115200", moved + connectedEnd(0));
    row("negative port at 115200", moved + connectedEnd(0));
    row("empty port at 115200", moved + connectedEnd(0));
    row("text port at 115200", moved + connectedEnd(0));
    row("port 11 at 115200", moved + connectedEnd(11));
    // The line comes to 2400 twice, and is asked there twice.
    const QStringList last{progress(90), query(2400)};
    const QStringList twice = searchUpTo(2400) + QStringList{query(115200)} + last + timeOutEnd();
    row("only at 2400", twice);
    row("late at 2400", twice);
    // 115200 is asked in its turn, and once behind an answer.
    row("at 2400, absurd port at 115200", twice);
    row("first at 9600, then at 2400",
        searchUpTo(9600) + QStringList{query(115200)} + last + QStringList{query(115200)} + last
            + timeOutEnd());
    row("at 2400 and then everywhere", twice);
    row("wrong checksum", searchUpTo(2400, sumError) + timeOutEnd());
    row("no checksum", searchUpTo(2400, sumError) + timeOutEnd());
    row("bare answer", searchUpTo(2400) + timeOutEnd());
    row("wrong, then right",
        QStringList{query(4800), sumError} + searchUpTo(115200).mid(1) + connectedEnd(3));
    QStringList oneSentence = searchUpTo(2400);
    oneSentence.insert(1, "VRVersion(3, 4)");
    row("one sentence, then silence", oneSentence + timeOutEnd());
    row("late answer in the connection", moved + connected(3) + lastStepAndEnd());
    QStringList others = searchUpTo(2400, "VRVersion(3, 4)|NMEA_receive(\"$GPGLL,1,N\\r\\n\")");
    row("other sentences", others.join('|').split('|') + timeOutEnd());
}

void tst_NmeaSerialPortScan::journal()
{
    QFETCH(QString, name);
    QFETCH(QStringList, expected);
    QCOMPARE(run(name).journal().texts(), expected);
}

void tst_NmeaSerialPortScan::timing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<int>("due");
    const auto row = [](const char *text, const QString &name, const QString &from,
                        const QString &to,
                        int due) { QTest::newRow(text) << name << from << to << due; };
    const QString connected3 = QStringLiteral("VRConnect(3)");
    row("silent router: given up after 3.5 s", "silent", QString(), timedOut, searchTime);
    row("each speed is tried for 500 ms: first", "silent", QString(), progress(15), scanTick);
    row("each speed is tried for 500 ms: second", "silent", progress(15), progress(30), scanTick);
    row("each speed is tried for 500 ms: last", "silent", progress(90), progress(100), scanTick);
    row("the query goes out at once", "silent", QString(), query(4800), 25);
    row("wrong checksums don't prolong the search", "wrong checksum", QString(), timedOut,
        searchTime);
    row("other sentences don't prolong the search", "other sentences", QString(), timedOut,
        searchTime);
    row("answers at 2400 only: given up behind its second turn", "only at 2400", QString(),
        timedOut, searchTime + scanTick);
    row("late answers at 2400: given up 4.5 s after the open", "late at 2400", QString(), timedOut,
        searchTime + 2 * scanTick - 60);
    row("500 ms for the second answer", "no second answer", query(4800), progress(90), scanTick);
    row("and 500 ms more to the end", "no second answer", query(2400), timedOut, scanTick);
    row("a port above 11 restarts the 500 ms", "port 12 at 115200", query(115200), progress(90),
        scanTick);
    row("found at once: connected at once", "4800", query(115200), connected3, 0);
    row("answer in the connection: search goes on 500 ms later", "late answer in the connection",
        connected3, progress(90), 200 + scanTick);
    row("answer in the connection: closed 500 ms after that", "late answer in the connection",
        progress(90), timedOut, scanTick);
}

void tst_NmeaSerialPortScan::timing()
{
    QFETCH(QString, name);
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(int, due);
    const LinkJournal &journal = run(name).journal();
    const qint64 start = from.isEmpty() ? 0 : journal.timeOf(from);
    const qint64 end = journal.timeOf(to);
    QVERIFY(start >= 0 && end >= 0);
    QVERIFY2(end - start >= due - early && end - start <= due + late,
             qPrintable(QString::number(end - start)));
}

// The shortest of many waits tells what was asked for: a busy machine only makes waits longer.
void tst_NmeaSerialPortScan::noSpeedTakesLonger()
{
    constexpr int slack = 60;
    const LinkJournal &journal = run("silent").journal();
    qint64 shortest = searchTime;
    for (size_t i = 1; i < sizeof allProgress / sizeof *allProgress; ++i) {
        const qint64 took =
            journal.timeOf(progress(allProgress[i])) - journal.timeOf(progress(allProgress[i - 1]));
        shortest = std::min(shortest, took);
    }
    QVERIFY2(qAbs(shortest - scanTick) < slack, qPrintable(QString::number(shortest)));
}

void tst_NmeaSerialPortScan::nothingAfterTheEnd_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("after a search in vain") << "silent";
    QTest::newRow("after the end of a connection") << "late answer in the connection";
}

void tst_NmeaSerialPortScan::nothingAfterTheEnd()
{
    QFETCH(QString, name);
    LinkRig &rig = run(name);
    const QStringList before = rig.journal().texts();
    QVERIFY(before.endsWith(timedOut));
    QVERIFY(!rig.link()->sendSentence("$VRRLD\r\n"));
    rig.pty().write(checkedLine("$VRCNU,3") + "$GPGLL,1,N\r\n$VRWBL\r\n");
    QSignalSpy heard(rig.link(), &NmeaSerialPort::signalVRConnectionProgress);
    QVERIFY(!heard.wait(scanTick + 200));
    QCOMPARE(rig.journal().texts(), before);
}

// A sentence feeds the watch of a connection only: 2 s of silence in the search ask nothing.
void tst_NmeaSerialPortScan::noConfirmQueryInTheSearch()
{
    for (const char *name : {"silent", "one sentence, then silence"}) {
        QVERIFY(run(name).journal().contains(timedOut));
        QCOMPARE(run(name).sentLines(), searchUpTo(2400).filter("-> "));
    }
    QVERIFY(run("one sentence, then silence").journal().contains("VRVersion(3, 4)"));
}

void tst_NmeaSerialPortScan::busyAnswer_data()
{
    QTest::addColumn<int>("queries"); // answered before the router says that it is busy
    QTest::newRow("at the first query") << 0;
    QTest::newRow("at the second query") << 1;
    QTest::newRow("in the connection") << 2;
}

void tst_NmeaSerialPortScan::busyAnswer()
{
    QFETCH(int, queries);
    int heard = 0;
    LinkRig rig([&](const QByteArray &, int) {
        return heard++ < queries ? checkedLine("$VRCNU,3") : QByteArray("$VRCNB\r\n$VRWBL\r\n");
    });
    QSignalSpy busy(rig.link(), &NmeaSerialPort::signalVRBusy);
    rig.open();
    if (queries == 2) {
        QTRY_VERIFY(rig.journal().contains("VRConnect(3)"));
        QVERIFY(rig.link()->sendSentence("$VRRLD\r\n"));
    }
    QVERIFY(busy.count() == 1 || busy.wait());
    const QStringList expected = rig.journal().texts();
    QCOMPARE(expected.last(), QStringLiteral("VRBusy()"));
    QVERIFY(!rig.link()->sendSentence("$VRRLD\r\n"));

    QSignalSpy steps(rig.link(), &NmeaSerialPort::signalVRConnectionProgress);
    QVERIFY(!steps.wait(scanTick + 200));
    QCOMPARE(rig.journal().texts(), expected);

    // Also where nothing is open any more.
    rig.link()->slot_VRNMEA("$VRCNB\r\n");
    QCOMPARE(busy.count(), 2);
}

// What has come at the old speed, and lies unread when the speed changes, is noise at the new one.
void tst_NmeaSerialPortScan::stepDiscardsWhatWasNotRead()
{
    const QByteArray stale = checkedLine("$VRVER,3.4");
    LinkRig rig;
    bool delivered = false;
    connect(rig.link(), &NmeaSerialPort::signalVRConnectionProgress, &rig, [&](int value) {
        if (value != 15)
            return;
        QVERIFY(rig.pty().write(stale));
        // The step goes on behind this slot, before the event loop could read anything.
        const QDeadlineTimer limit(2000);
        while (rig.pty().unread() < stale.size() && !limit.hasExpired()) { }
        delivered = rig.pty().unread() == stale.size();
    });
    rig.open();
    QTRY_VERIFY(rig.journal().contains(query(9600)));
    QVERIFY(delivered);
    QVERIFY(rig.pty().write(checkedLine("$VRVER,5.6")));
    QTRY_VERIFY(rig.journal().contains("VRVersion(5, 6)"));
    QVERIFY(!rig.journal().contains("VRVersion(3, 4)"));
}

// Behind the answer that moves the line to 115200 nothing is dropped, be it more than one read.
void tst_NmeaSerialPortScan::firstAnswerDiscardsNothing()
{
    const QByteArray behind = QByteArray("$GPGLL,1,N\r\n").repeated(20) + checkedLine("$VRVER,3.4");
    LinkRig rig(answers(4800, checkedLine("$VRCNU,3") + behind, QByteArray()));
    rig.open();
    QTRY_VERIFY(rig.journal().contains(query(115200)));
    QVERIFY(rig.journal().contains("VRVersion(3, 4)"));
    QCOMPARE(rig.journal().count("NMEA_receive(\"$GPGLL,1,N\\r\\n\")"), 20);
}

// A progress box runs the event loop when it is told a step: an answer that comes in there has
// moved the search on, and the step must not take the speed back.
void tst_NmeaSerialPortScan::answeredInTheBoxOfAStep()
{
    LinkRig rig;
    connect(rig.link(), &NmeaSerialPort::signalVRConnectionProgress, &rig, [&](int value) {
        if (value != 15)
            return;
        rig.setRouter(LinkRig::routerAt(115200));
        QVERIFY(rig.pty().write(checkedLine("$VRCNU,3")));
        QSignalSpy inTheBox(rig.link(), &NmeaSerialPort::signalVRConnect);
        QVERIFY(inTheBox.wait());
    });
    rig.open();
    QTRY_VERIFY(rig.journal().contains("VRConnect(3)"));
    QVERIFY(rig.link()->sendSentence("$VRRLD\r\n"));
    QTRY_VERIFY(rig.journal().contains(firstSentence));
    QCOMPARE(rig.journal().texts(),
             (QStringList{query(4800), progress(15), query(115200)} + connectedEnd(3)));
    QCOMPARE(rig.pty().speed(), 115200);
}

void tst_NmeaSerialPortScan::reopened()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    rig.journal().clear();
    PtyPair other;
    QSignalSpy connectedSpy(rig.link(), &NmeaSerialPort::signalVRConnect);
    connect(&other, &PtyPair::lineReceived, &other,
            [&](const QByteArray &, int) { other.write(checkedLine("$VRCNU,4")); });
    rig.link()->openPort(other.slavePath());
    QVERIFY(connectedSpy.wait());
    QCOMPARE(other.lines().size(), 2);
    QCOMPARE(other.lines().at(0).speed, 4800);
    QCOMPARE(other.lines().at(1).speed, 115200);
    QCOMPARE(rig.journal().texts(), connected(4));
    rig.link()->closePort();
}

void tst_NmeaSerialPortScan::closedAtAnyTime()
{
    NmeaSerialPort unopened;
    unopened.closePort();
    QVERIFY(!unopened.sendSentence("$VRRLD\r\n"));

    LinkRig rig;
    rig.open();
    rig.link()->closePort();
    rig.link()->closePort();
    QVERIFY(!rig.link()->sendSentence("$VRRLD\r\n"));
    QCOMPARE(rig.journal().texts(), QStringList());

    LinkRig inside;
    connect(inside.link(), &NmeaSerialPort::signalVRConnectionProgress, inside.link(),
            [&] { inside.link()->closePort(); });
    QSignalSpy steps(inside.link(), &NmeaSerialPort::signalVRConnectionProgress);
    inside.open();
    QVERIFY(steps.wait());
    QVERIFY(!steps.wait(scanTick + 200));
    QCOMPARE(inside.journal().texts(), (QStringList{query(4800), progress(15)}));

    LinkRig deletedInside;
    auto *doomed = new NmeaSerialPort;
    QSignalSpy gone(doomed, &QObject::destroyed);
    connect(doomed, &NmeaSerialPort::signalVRConnectionProgress, &deletedInside, [doomed] {
        doomed->closePort();
        delete doomed;
    });
    doomed->openPort(deletedInside.pty().slavePath());
    QVERIFY(gone.wait());
}

QTEST_GUILESS_MAIN(tst_NmeaSerialPortScan)
#include "tst_nmeaserialport_scan.moc"
