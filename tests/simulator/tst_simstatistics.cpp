#include "simulator/router/portstatistics.h"

#include <QtTest>

using namespace tk7sim;

/*! The counters, with time that passes when it is told to. */
class TestSimStatistics : public QObject
{
    Q_OBJECT

private slots:
    void nothingWrongCountsNothing();
    void everyKindHasItsCounter();
    void countersGrowWithTraffic();
    void countersFollowTheRate();
    void countersBelongToTheirPort();
    void clearing();
    void silentInputCountsNothing();
    void clearedFaultCountsNoMore();
    void setByHand();
    void checksumErrorsOfTheTool();
    void fullOutput_data();
    void fullOutput();
    void newRulesCountFromNow();
    void looksBackSoFar();
};

namespace {

constexpr qint64 minute = 60000;

InputConditions conditionsOf(double wrongChecksums, double damage)
{
    InputConditions conditions;
    conditions.wrongChecksums = wrongChecksums;
    conditions.damage = damage;
    return conditions;
}

quint32 sum(const PortCounters &c)
{
    return c.print + c.crs + c.broken + c.size + c.txFull;
}

} // namespace

void TestSimStatistics::nothingWrongCountsNothing()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig::factory(), &traffic);
    clock.skip(minute);
    for (int port = 0; port < portCount; ++port) {
        QVERIFY(statistics.at(port) == PortCounters());
    }
}

void TestSimStatistics::everyKindHasItsCounter()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig(), &traffic);
    traffic.setConditions(conditionsOf(40, 40));
    clock.skip(minute);
    // The same lines, counted by what they look like.
    TrafficGenerator generator(clock.start());
    generator.setConditions(conditionsOf(40, 40));
    PortCounters expected;
    for (const TrafficLine &line : generator.inputTraffic(0, 0, minute)) {
        expected.print += line.text.contains('\x15') ? 1 : 0;
        expected.broken += line.text.contains('*') ? 0 : 1;
        expected.size += line.text.size() > 82 ? 1 : 0;
        expected.crs += line.flaw == LineFlaw::WrongChecksum ? 1 : 0;
    }
    const PortCounters counted = statistics.at(0);
    QCOMPARE(counted.print, expected.print);
    QVERIFY(expected.print > 10);
    QCOMPARE(counted.broken, expected.broken);
    QVERIFY(expected.broken > 10);
    QCOMPARE(counted.size, expected.size);
    QVERIFY(expected.size > 10);
    QCOMPARE(counted.crs, expected.crs);
    QVERIFY(expected.crs > 40);
    QCOMPARE(counted.txFull, 0U);
}

void TestSimStatistics::countersGrowWithTraffic()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig(), &traffic);
    traffic.setConditions(conditionsOf(10, 0));
    quint32 last = 0;
    for (int i = 0; i < 5; ++i) {
        clock.skip(minute);
        const quint32 now = statistics.at(2).crs;
        QVERIFY(now > last);
        last = now;
    }
}

void TestSimStatistics::countersFollowTheRate()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig(), &traffic);
    traffic.setConditions(conditionsOf(100, 0));
    clock.skip(minute);
    QCOMPARE(statistics.at(5).crs, 120U);
    statistics.clear();
    traffic.setRate(10);
    clock.skip(minute);
    QCOMPARE(statistics.at(5).crs, 1200U);
    statistics.clear();
    traffic.setRate(0);
    clock.skip(minute);
    QCOMPARE(statistics.at(5).crs, 0U);
}

void TestSimStatistics::countersBelongToTheirPort()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig(), &traffic);
    traffic.setConditions(conditionsOf(100, 0));
    clock.skip(minute);
    TrafficGenerator generator(clock.start());
    for (int port = 0; port < portCount; ++port) {
        const auto lines = static_cast<quint32>(generator.inputTraffic(port, 0, minute).size());
        const quint32 counted = statistics.at(port).crs;
        QCOMPARE(counted, lines);
        QCOMPARE(sum(statistics.at(port)), statistics.at(port).crs);
    }
}

void TestSimStatistics::clearing()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig(), &traffic);
    traffic.setConditions(conditionsOf(100, 0));
    clock.skip(minute);
    QVERIFY(statistics.at(5).crs > 100);
    clock.skip(minute); // not looked at before it is cleared
    statistics.clear();
    QVERIFY(statistics.at(5).crs < 10);
    clock.skip(minute);
    QVERIFY(statistics.at(5).crs > 100 && statistics.at(5).crs < 140);
}

void TestSimStatistics::silentInputCountsNothing()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig(), &traffic);
    InputConditions conditions = conditionsOf(100, 0);
    conditions.silences[5] = {0, InputSilence::never};
    traffic.setConditions(conditions);
    clock.skip(minute);
    QCOMPARE(statistics.at(5).crs, 0U);
    QVERIFY(statistics.at(4).crs > 0);
}

void TestSimStatistics::clearedFaultCountsNoMore()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig(), &traffic);
    traffic.setConditions(conditionsOf(100, 0));
    clock.skip(minute);
    statistics.settle(); // what came before counts still
    traffic.setConditions(InputConditions());
    const quint32 counted = statistics.at(5).crs;
    QVERIFY(counted > 100);
    clock.skip(minute);
    QCOMPARE(statistics.at(5).crs, counted);
}

void TestSimStatistics::setByHand()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig(), &traffic);
    const PortCounters counters{1, 2, 3, 4, 4294967295U};
    statistics.set(11, counters);
    QVERIFY(statistics.at(11) == counters);
    QVERIFY(statistics.at(10) == PortCounters());
    statistics.clear();
    QVERIFY(statistics.at(11) == PortCounters());
}

void TestSimStatistics::checksumErrorsOfTheTool()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig(), &traffic);
    statistics.countChecksumError(3);
    statistics.countChecksumError(3);
    QCOMPARE(statistics.at(3).crs, 2U);
    QCOMPARE(sum(statistics.at(3)), 2U);
}

void TestSimStatistics::fullOutput_data()
{
    QTest::addColumn<quint32>("baud");
    QTest::addColumn<bool>("isTooSlow");
    QTest::newRow("fast enough") << 38400U << false;
    QTest::newRow("just fast enough") << 19200U << false;
    QTest::newRow("too slow") << 9600U << true;
    QTest::newRow("much too slow") << 2400U << true;
}

// The voyage data recorder takes everything from all inputs.
void TestSimStatistics::fullOutput()
{
    QFETCH(quint32, baud);
    QFETCH(bool, isTooSlow);
    RouterClock clock;
    clock.hold();
    RouterConfig config = RouterConfig::factory();
    config.speeds[11] = baud;
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, config, &traffic);
    clock.skip(minute);
    const auto lines = TrafficGenerator(clock.start()).outputTraffic(11, config, 0, minute);
    int bytes = 0;
    for (const TrafficLine &line : lines) {
        bytes += int(line.text.size()) + 2;
    }
    const int carried = static_cast<int>(baud) / 10 * 60;
    QCOMPARE(bytes > carried, isTooSlow);
    // What isn't carried, in sentences of the usual length; the short ones fit more often.
    const double missing = qMax(0.0, double(bytes - carried) * double(lines.size()) / bytes);
    const quint32 counted = statistics.at(11).txFull;
    QVERIFY2(counted <= missing + 1 && counted >= 0.7 * missing,
             qPrintable(QStringLiteral("%1 of %2").arg(counted).arg(missing)));
    QCOMPARE(sum(statistics.at(11)), counted);
    QCOMPARE(statistics.at(0).txFull, 0U);
}

void TestSimStatistics::newRulesCountFromNow()
{
    RouterClock clock;
    clock.hold();
    RouterConfig config = RouterConfig::factory();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, config, &traffic);
    clock.skip(minute);
    config.speeds[11] = 2400;
    statistics.setConfig(config);
    QCOMPARE(statistics.at(11).txFull, 0U);
    clock.skip(minute);
    QVERIFY(statistics.at(11).txFull > 500);
}

void TestSimStatistics::looksBackSoFar()
{
    RouterClock clock;
    clock.hold();
    TrafficGenerator traffic(clock.start());
    PortStatistics statistics(&clock, RouterConfig(), &traffic);
    traffic.setConditions(conditionsOf(100, 0));
    clock.skip(1000 * minute);
    const quint32 counted = statistics.at(5).crs; // two sentences a second
    QVERIFY2(counted >= 2 * PortStatistics::longestGap / 1000 - 4
                 && counted <= 2 * PortStatistics::longestGap / 1000 + 4,
             qPrintable(QString::number(counted)));
}

QTEST_APPLESS_MAIN(TestSimStatistics)
#include "tst_simstatistics.moc"
