#include "linkrig.h"
#include "support/checkedline.h"

#include <QtTest>

#include <algorithm>
#include <map>
#include <memory>

/*!
 * The watch on a connection that stands: what counts as a sign of life, when the router is asked,
 * when the link is closed. All cases run side by side before the first test looks at its own; times
 * count from the end of the handshake.
 */
class tst_NmeaSerialPortWatch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void watch_data();
    void watch();
    void journal_data();
    void journal();
    void linkIsClosedAtTheEnd();

private:
    using Script = std::function<void(LinkRig &)>;
    void start(const char *name, const Script &script);
    LinkRig &run(const QString &name) { return *m_runs.at(name); }
    qint64 connectedAt(const QString &name);

    std::map<QString, std::unique_ptr<LinkRig>> m_runs;
};

namespace {

constexpr int runTime = 6000; // ms from the start of all; what is due later isn't waited for
constexpr int late = 900;
constexpr int early = 60;

const QString confirmQuery = QStringLiteral("-> $VRCNC @115200");
const QString timedOut = QStringLiteral("VRTimeOutConnect()");
const QString connectedText = QStringLiteral("VRConnect(3)");
const QString sumError = QStringLiteral("CommandCRSError()");

std::function<void(LinkRig &)> saysAt(const QVector<int> &times, const QByteArray &bytes)
{
    return [times, bytes](LinkRig &rig) {
        for (const int ms : times)
            rig.after(ms, [&rig, bytes] { rig.pty().write(bytes); });
    };
}

// Answers each confirm query with `reply`.
std::function<void(LinkRig &)> confirmsWith(const QByteArray &reply)
{
    return [reply](LinkRig &rig) {
        rig.setRouter([reply](const QByteArray &line, int) {
            return line == "$VRCNC\r\n" ? reply : QByteArray();
        });
    };
}

} // namespace

void tst_NmeaSerialPortWatch::start(const char *name, const Script &script)
{
    auto owned = std::make_unique<LinkRig>(LinkRig::routerAt(4800));
    LinkRig *rig = owned.get();
    m_runs.emplace(QLatin1String(name), std::move(owned));
    connect(rig->link(), &NmeaSerialPort::signalVRConnect, rig, [rig, script] {
        // Behind the slot, as the watch starts behind the signal.
        rig->after(0, [rig, script] { script(*rig); });
    });
    rig->open();
}

qint64 tst_NmeaSerialPortWatch::connectedAt(const QString &name)
{
    return run(name).journal().timeOf(connectedText);
}

void tst_NmeaSerialPortWatch::initTestCase()
{
    const QByteArray ais = checkedLine("$VRAIM,3,1,1,,A,13u?etPv2;0n:dDPwUM1U1Cb069D,0");
    start("silent", [](LinkRig &) {});
    start("known", saysAt({1500}, checkedLine("$VRVER,3.4")));
    start("unknown", saysAt({1500}, "$VRXYZ\r\n"));
    start("short", saysAt({1500}, "$VRAB\n"));
    start("wrong checksum", saysAt({1500}, wronglyCheckedLine("$VRVER,3.4")));
    start("busy with checksum", saysAt({1500}, checkedLine("$VRCNB")));
    start("while awaiting", saysAt({3000}, "$VRXYZ\r\n"));
    start("ais", saysAt({500, 1500, 2500, 3500}, ais));
    start("ais unknown", saysAt({1500, 3000}, "$VRAIX\r\n"));
    start("plain", saysAt({500, 1500, 2500, 3500}, "$GPGLL,1,N\r\n!AIVDM,1\r\n"));
    start("connect answer, wrong checksum", saysAt({1500, 3000}, wronglyCheckedLine("$VRCNU,3")));
    start("confirmed", confirmsWith("$VRXYZ\r\n"));
    start("confirmed by AIS only", confirmsWith(ais));
    start("suspended", [](LinkRig &rig) { rig.link()->suspendConfirm(); });
    start("suspended while awaiting",
          [](LinkRig &rig) { rig.after(2500, [&rig] { rig.link()->suspendConfirm(); }); });
    start("suspended in the search", [](LinkRig &) {});
    run("suspended in the search").link()->suspendConfirm();
    start("long queue, silent", [](LinkRig &rig) {
        for (int i = 0; i < 300; ++i)
            rig.link()->sendSentence(QStringLiteral("$VRQ%1\r\n").arg(i));
    });
    start("long queue, one answer", [](LinkRig &rig) {
        for (int i = 0; i < 100; ++i)
            rig.link()->sendSentence(QStringLiteral("$VRQ%1\r\n").arg(i));
        rig.after(3000, [&rig] { rig.pty().write("$VRXYZ\r\n"); });
    });

    const auto allConnected = [this] {
        return std::all_of(m_runs.begin(), m_runs.end(), [](const auto &entry) {
            return entry.second->journal().contains(connectedText);
        });
    };
    QTRY_VERIFY(allConnected());
    const LinkJournal &clock = run("silent").journal();
    const LinkJournal &last = run("known").journal();
    QTRY_VERIFY_WITH_TIMEOUT(clock.elapsed() >= runTime && last.contains(timedOut), 3 * runTime);
}

void tst_NmeaSerialPortWatch::watch_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("firstQuery"); // ms after the connection; -1: none
    QTest::addColumn<int>("end");        // ms after the connection; -1: still connected
    const auto row = [](const char *text, const char *name, int firstQuery, int end) {
        QTest::newRow(text) << name << firstQuery << end;
    };
    row("silent router: asked at 2 s, closed at 4 s", "silent", 2000, 4000);
    row("known sentence counts", "known", 3500, 5500);
    row("unknown sentence counts", "unknown", 3500, 5500);
    row("shortest sentence counts", "short", 3500, 5500);
    row("wrong checksum counts", "wrong checksum", 3500, 5500);
    row("busy text with a checksum is an unknown sentence and counts", "busy with checksum", 3500,
        5500);
    row("sentence while the answer is awaited starts anew", "while awaiting", 2000, 7000);
    row("AIS sentences don't count", "ais", 2000, 4000);
    row("unknown sentence of the AIS family doesn't count", "ais unknown", 2000, 4000);
    row("plain lines don't count", "plain", 2000, 4000);
    row("connect answer with a wrong checksum doesn't count", "connect answer, wrong checksum",
        2000, 4000);
    row("every query answered: still connected", "confirmed", 2000, -1);
    row("query answered by AIS sentences only", "confirmed by AIS only", 2000, 4000);
    row("suspended: never asked, never closed", "suspended", -1, -1);
    row("suspended while the answer is awaited: not closed", "suspended while awaiting", 2000, -1);
    row("suspended in the search: the handshake lifts it", "suspended in the search", 2000, 4000);
    row("long queue: closed before the query's turn", "long queue, silent", -1, 4000);
    row("long queue: the query has its turn behind the queue", "long queue, one answer", 2500,
        7000);
}

void tst_NmeaSerialPortWatch::watch()
{
    QFETCH(QString, name);
    QFETCH(int, firstQuery);
    QFETCH(int, end);
    const LinkJournal &journal = run(name).journal();
    const qint64 connected = connectedAt(name);
    QVERIFY(connected >= 0);
    const auto isNear = [connected](qint64 time, int due) {
        return time - connected >= due - early && time - connected <= due + late;
    };

    const qint64 asked = journal.timeOf(confirmQuery);
    if (firstQuery < 0)
        QCOMPARE(asked, qint64(-1));
    else
        QVERIFY2(isNear(asked, firstQuery), qPrintable(QString::number(asked - connected)));

    const qint64 closed = journal.timeOf(timedOut);
    const bool isOpen = closed < 0;
    if (end < 0)
        QVERIFY(isOpen);
    else if (end < runTime || !isOpen)
        QVERIFY2(isNear(closed, end), qPrintable(QString::number(closed - connected)));
}

void tst_NmeaSerialPortWatch::journal_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("expected"); // behind the connection
    const auto row = [](const char *name, const QStringList &expected) {
        QTest::newRow(name) << name << expected;
    };
    row("silent", {confirmQuery, timedOut});
    row("unknown", {confirmQuery, timedOut});
    row("wrong checksum", {sumError, confirmQuery, timedOut});
    row("connect answer, wrong checksum", {sumError, confirmQuery, sumError, timedOut});
    row("suspended", {});
    row("suspended while awaiting", {confirmQuery});
    row("suspended in the search", {confirmQuery, timedOut});
    QStringList queue;
    for (int i = 0; i < 100; ++i)
        queue += QStringLiteral("-> $VRQ%1 @115200").arg(i);
    row("long queue, one answer", queue + QStringList{confirmQuery, confirmQuery});
}

void tst_NmeaSerialPortWatch::journal()
{
    QFETCH(QString, name);
    QFETCH(QStringList, expected);
    const QStringList all = run(name).journal().texts();
    QCOMPARE(all.mid(all.indexOf(connectedText) + 1), expected);
}

void tst_NmeaSerialPortWatch::linkIsClosedAtTheEnd()
{
    QVERIFY(!run("silent").link()->sendSentence("$VRRLD\r\n"));
    QVERIFY(run("confirmed").link()->sendSentence("$VRRLD\r\n"));
    QVERIFY(run("confirmed").journal().count(confirmQuery) >= 2);

    // The rest of a long queue dies with the connection.
    const QStringList sent = run("long queue, silent").sentLines();
    QVERIFY2(sent.size() > 80 && sent.size() < 170, qPrintable(QString::number(sent.size())));
    // What is read behind the end is read at the speed that the line had before.
    const QString last = QStringLiteral("-> $VRQ%1 @").arg(sent.size() - 3);
    QVERIFY2(sent.last().startsWith(last), qPrintable(sent.last()));
}

QTEST_GUILESS_MAIN(tst_NmeaSerialPortWatch)
#include "tst_nmeaserialport_watch.moc"
