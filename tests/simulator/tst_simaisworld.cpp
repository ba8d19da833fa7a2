#include "aisreports.h"

#include <QHash>
#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace aisreports;

/*! The pace of the AIS world: what repeats, what a rate and a full line make of it. */
class TestSimAisWorld : public QObject
{
    Q_OBJECT

private slots:
    void repeats();
    void seedsDiffer();
    void namesComeSoon();
    void reportIntervals();
    void rateCounts_data();
    void rateCounts();
    void rateChangesAtAnyTime();
    void ownShipKeepsItsPaceOnAFullLine();
    void fullLineIsFair();
    void longGapIsNotMadeUpFor();
    void timeNeverGoesBack();
    void portsOfNoRouter();
    void worldWithoutStations();
};

void TestSimAisWorld::repeats()
{
    AisWorld a(settingsOf());
    AisWorld b(settingsOf());
    const auto once = reportsOf(&a, 0, 10 * minute);
    const auto again = reportsOf(&b, 0, 10 * minute);
    QCOMPARE(once.size(), again.size());
    for (int i = 0; i < once.size(); ++i) {
        QCOMPARE(once.at(i).time, again.at(i).time);
        QCOMPARE(once.at(i).bodies, again.at(i).bodies);
    }
}

void TestSimAisWorld::seedsDiffer()
{
    AisWorld a(settingsOf(40, 1, 1));
    AisWorld b(settingsOf(40, 1, 2));
    reportsOf(&a, 0, minute);
    reportsOf(&b, 0, minute);
    int onlyInFirst = 0;
    const auto stations = a.truth(3).stations.keys();
    for (const quint32 mmsi : stations) {
        onlyInFirst += b.truth(3).stations.contains(mmsi) ? 0 : 1;
    }
    QVERIFY(onlyInFirst > 5);
}

void TestSimAisWorld::namesComeSoon()
{
    AisWorld world(settingsOf());
    reportsOf(&world, 0, 45 * second);
    for (const int port : world.ports()) {
        const auto stations = world.truth(port).stations;
        const auto named = std::count_if(stations.cbegin(), stations.cend(),
                                         [](const AisStationTruth &s) { return s.voyage; });
        QVERIFY(named * 10 >= qint64(stations.size()) * 8);
    }
}

void TestSimAisWorld::reportIntervals()
{
    AisWorld world(settingsOf());
    QHash<QPair<int, quint32>, qint64> last;
    QHash<int, QVector<qint64>> gaps; // by the usual interval, seconds
    const auto reports = reportsOf(&world, 0, 20 * minute, 100);
    for (const AisReport &report : reports) {
        if (report.kind != AisReportKind::Position || !hasPosition(report.position)) {
            continue;
        }
        const QPair<int, quint32> key(report.port, report.position.mmsi);
        const bool isAtRest = report.position.navStatus == 1 || report.position.navStatus == 5;
        const int speed = report.position.speed;
        const int usual = isAtRest ? 180 : speed > 235 ? 2 : speed > 145 && speed < 225 ? 6 : 10;
        if (last.contains(key) && (speed < 135 || speed > 145) && (speed < 225 || speed > 235)) {
            gaps[usual].append(report.time - last.value(key));
        }
        last.insert(key, report.time);
    }
    for (const int usual : {2, 6, 10, 180}) {
        QVector<qint64> &of = gaps[usual];
        QVERIFY2(of.size() > 5, qPrintable(QString::number(usual)));
        std::sort(of.begin(), of.end());
        const auto middle = static_cast<double>(of.at(of.size() / 2));
        QVERIFY(std::fabs(middle / 1000 - usual) < usual * 0.15);
        QVERIFY(of.constFirst() >= qint64(usual) * 850);
    }
}

void TestSimAisWorld::rateCounts_data()
{
    QTest::addColumn<double>("rate");
    QTest::newRow("none") << 0.0;
    QTest::newRow("half") << 0.5;
    QTest::newRow("ten times") << 10.0;
    QTest::newRow("most") << 1000.0;
}

void TestSimAisWorld::rateCounts()
{
    QFETCH(double, rate);
    const auto count = [](double times, bool ofVessels) {
        AisWorld world(settingsOf(20, times));
        const auto reports = reportsOf(&world, 0, minute, 50);
        return std::count_if(reports.cbegin(), reports.cend(), [=](const AisReport &report) {
            return ofVessels == (isOfVessel(report) || report.kind == AisReportKind::Other);
        });
    };
    const auto usual = static_cast<double>(count(1, true));
    const auto now = static_cast<double>(count(rate, true));
    // The first reports come within the same share of the time.
    QVERIFY2(std::fabs(now - usual * rate) <= usual * rate * 0.5 + 5,
             qPrintable(QStringLiteral("%1 and %2").arg(usual).arg(now)));
    QVERIFY(std::abs(count(rate, false) - count(1, false)) <= 1);
}

// The vessels stay the same, and what a full line has held up is not made up for.
void TestSimAisWorld::rateChangesAtAnyTime()
{
    AisWorld world(settingsOf());
    const auto countOf = [&world](qint64 from, qint64 to) {
        const auto reports = reportsOf(&world, from, to, 50);
        return std::count_if(reports.cbegin(), reports.cend(), isOfVessel);
    };
    const auto usual = countOf(minute, 2 * minute);
    const auto vessels = world.truth(8).stations.keys();
    world.setRate(5);
    const auto quick = countOf(2 * minute + 50, 3 * minute);
    QVERIFY2(quick > 4 * usual && quick < 6 * usual, qPrintable(QString::number(quick)));
    world.setRate(0);
    QCOMPARE(countOf(3 * minute + 50, 4 * minute), 0);

    world.setRate(1000);
    for (qint64 now = 4 * minute; now < 5 * minute; now += 50) {
        world.take(now);
    }
    world.setRate(1);
    const auto again = countOf(5 * minute, 6 * minute);
    QVERIFY2(again > usual / 2 && again < 2 * usual, qPrintable(QString::number(again)));
    for (const quint32 mmsi : vessels) {
        QVERIFY(world.truth(8).stations.contains(mmsi));
    }
}

void TestSimAisWorld::ownShipKeepsItsPaceOnAFullLine()
{
    AisWorld world(settingsOf(3000));
    constexpr int reportsPerSecond = 150;
    QVector<qint64> times;
    for (qint64 now = 0; now < minute; now += second) {
        for (int i = 0; i < reportsPerSecond; ++i) {
            const auto report = world.take(now);
            if (report && report->kind == AisReportKind::OwnPosition && report->port == 0) {
                times.append(now);
            }
        }
    }
    QCOMPARE(times.size(), 30);
}

// Of a line that is too slow each vessel gets as much as another one of its kind.
void TestSimAisWorld::fullLineIsFair()
{
    AisWorld world(settingsOf(300, 1000));
    constexpr int reportsPerSecond = 150;
    QHash<quint32, int> counts;
    for (qint64 now = second; now < 10 * minute; now += second) {
        for (int i = 0; i < reportsPerSecond; ++i) {
            const auto report = world.take(now);
            QVERIFY(report);
            const bool counts10s = report->kind == AisReportKind::Position
                && hasPosition(report->position) && report->position.navStatus == 0
                && report->position.speed > 20 && report->position.speed < 130;
            counts[report->position.mmsi] += counts10s ? 1 : 0;
        }
    }
    counts.remove(0);
    QVector<int> sorted = counts.values().toVector();
    sorted.erase(std::remove(sorted.begin(), sorted.end(), 0), sorted.end());
    std::sort(sorted.begin(), sorted.end());
    QVERIFY(sorted.size() > 50);
    // Some are heard at two ports, some are silent for a while.
    const int middle = sorted.at(sorted.size() / 2);
    QVERIFY(middle > 20);
    QVERIFY(sorted.at(sorted.size() / 6) * 5 >= middle * 4);
    QVERIFY(sorted.constLast() * 4 <= middle * 10);
}

void TestSimAisWorld::longGapIsNotMadeUpFor()
{
    AisWorld world(settingsOf());
    const int usual = int(reportsOf(&world, 0, 10 * minute).size() / 600);
    const int behindTheGap = int(reportsOf(&world, 2 * hour, 2 * hour).size());
    QVERIFY(behindTheGap < 8 * usual);
    QVERIFY(behindTheGap > 0);
    // Where they are by then is where they say to be.
    const auto next = reportsOf(&world, 2 * hour + second, 2 * hour + 30 * second);
    QVERIFY(std::any_of(next.cbegin(), next.cend(), [](const AisReport &report) {
        return report.kind == AisReportKind::Position;
    }));
}

void TestSimAisWorld::timeNeverGoesBack()
{
    AisWorld world(settingsOf());
    reportsOf(&world, 0, minute);
    const quint64 reports = world.reports();
    QVERIFY(!world.take(0));
    QVERIFY(!world.take(-hour));
    QCOMPARE(world.reports(), reports);
    const auto next = reportsOf(&world, minute + second, minute + 10 * second);
    QVERIFY(!next.isEmpty());
    for (const AisReport &report : next) {
        QVERIFY(report.time > minute);
    }
}

void TestSimAisWorld::portsOfNoRouter()
{
    AisWorldSettings settings = settingsOf();
    settings.ports = QVector<int>{-1, 5, 12, 5, 0, 1000};
    AisWorld world(settings);
    QCOMPARE(world.ports(), QVector<int>({5, 0}));
    reportsOf(&world, 0, minute);
    QVERIFY(!world.truth(5).stations.isEmpty());
    QVERIFY(!world.truth(0).stations.isEmpty());
}

void TestSimAisWorld::worldWithoutStations()
{
    AisWorldSettings settings = settingsOf();
    settings.ports = QVector<int>();
    AisWorld world(settings);
    const auto reports = reportsOf(&world, 0, minute);
    QVERIFY(!reports.isEmpty());
    for (const AisReport &report : reports) {
        QCOMPARE(report.kind, AisReportKind::RouterPosition);
        QCOMPARE(report.port, -1);
    }
}

QTEST_GUILESS_MAIN(TestSimAisWorld)
#include "tst_simaisworld.moc"
