#include "aisreports.h"

#include <QHash>
#include <QSet>
#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace aisreports;

/*! The vessels around the ship: who they are, and how they sail. */
class TestSimAisFleet : public QObject
{
    Q_OBJECT

private slots:
    void vesselsSailTheirCourses();
    void vesselsStayInTheirWater();
    void vesselsFallSilent();
    void fleetIsBelievable_data();
    void fleetIsBelievable();
    void fleetHasFlaws();
    void numberOfVessels_data();
    void numberOfVessels();
    void silencePattern_data();
    void silencePattern();
};

// From one report to the next a vessel makes the way that its speed tells.
void TestSimAisFleet::vesselsSailTheirCourses()
{
    AisWorld world(settingsOf());
    QHash<quint32, AisReport> last;
    int steps = 0;
    const auto reports = reportsOf(&world, 0, hour);
    for (const AisReport &report : reports) {
        if (report.kind != AisReportKind::Position || !hasPosition(report.position)) {
            continue;
        }
        const quint32 mmsi = report.position.mmsi;
        const bool isKnown = last.contains(mmsi);
        const AisReport before = last.value(mmsi);
        last.insert(mmsi, report);
        const qint64 passed = report.time - before.time;
        if (!isKnown || passed == 0 || passed > minute) {
            continue;
        }
        const double miles = report.position.speed / 10.0 * static_cast<double>(passed) / hour;
        const double made = milesBetween(fixOf(before.position), fixOf(report.position));
        QVERIFY2(std::fabs(made - miles) < 0.004 + miles * 0.05,
                 qPrintable(QStringLiteral("%1: %2, not %3").arg(mmsi).arg(made).arg(miles)));
        ++steps;
    }
    QVERIFY(steps > 8000);
}

void TestSimAisFleet::vesselsStayInTheirWater()
{
    AisWorld world(settingsOf());
    reportsOf(&world, 0, 8 * hour);
    int near = 0;
    for (const int port : world.ports()) {
        const auto stations = world.truth(port).stations;
        for (const AisStationTruth &station : stations) {
            if (!hasPosition(*station.position) || station.position->longitude < 0) {
                continue;
            }
            const double distance = milesBetween(fixOf(*station.position), fleetMiddle);
            near += distance < fleetRadius + 8 ? 1 : 0;
        }
    }
    QVERIFY(near > 40);
}

void TestSimAisFleet::vesselsFallSilent()
{
    constexpr qint64 tooLong = 300 * second;
    constexpr qint64 shortSilence = 120 * second;
    AisWorld world(settingsOf());
    QHash<quint32, qint64> last;
    QSet<quint32> returned;
    QSet<quint32> silentForAWhile;
    const auto reports = reportsOf(&world, 0, hour);
    for (const AisReport &report : reports) {
        if (!isOfVessel(report)) {
            continue;
        }
        const quint32 mmsi = mmsiOf(report);
        const qint64 gap = report.time - last.value(mmsi, report.time);
        if (gap >= tooLong) {
            returned.insert(mmsi);
        } else if (gap > shortSilence) {
            silentForAWhile.insert(mmsi);
        }
        last.insert(mmsi, report.time);
    }
    QVERIFY(!returned.isEmpty());
    QVERIFY(!silentForAWhile.isEmpty());
    const int gone = static_cast<int>(
        std::count_if(last.cbegin(), last.cend(), [](qint64 time) { return time < hour / 4; }));
    QVERIFY(gone >= 1);
    QVERIFY(gone < 5);
}

void TestSimAisFleet::fleetIsBelievable_data()
{
    QTest::addColumn<int>("vessels");
    QTest::newRow("some dozens") << 40;
    QTest::newRow("a thousand") << 1000;
    QTest::newRow("most") << AisWorldSettings::maxVessels;
}

void TestSimAisFleet::fleetIsBelievable()
{
    QFETCH(int, vessels);
    const auto fleet = makeFleet(vessels, 12, 3, worldStart.date());
    QCOMPARE(fleet.size(), vessels);
    const QRegularExpression text(QStringLiteral("^[A-Z0-9][A-Z0-9 .-]*$"));
    QSet<quint32> mmsis;
    QSet<QByteArray> names;
    QSet<int> classes;
    for (const FleetVessel &vessel : fleet) {
        const AisVoyageData &voyage = vessel.voyage;
        mmsis.insert(voyage.mmsi);
        names.insert(voyage.name);
        classes.insert(voyage.shipType / 10);
        QVERIFY(voyage.mmsi / 1000000 >= 201);
        QVERIFY(voyage.mmsi / 1000000 <= 775);
        QVERIFY2(text.match(QString::fromLatin1(voyage.name)).hasMatch(), voyage.name.constData());
        QVERIFY(voyage.name.size() <= AisVoyageData::textLength);
        QVERIFY(text.match(QString::fromLatin1(voyage.callSign)).hasMatch());
        QVERIFY(voyage.callSign.size() <= AisVoyageData::callSignLength);
        QVERIFY(voyage.destination.size() <= AisVoyageData::textLength);
        QVERIFY(voyage.shipType <= 99);
        QVERIFY(voyage.toBow > 0 && voyage.toBow <= 511);
        QVERIFY(voyage.toStern >= 0 && voyage.toStern <= 511);
        QVERIFY(voyage.toPort >= 0 && voyage.toPort <= 63);
        QVERIFY(voyage.toStarboard >= 0 && voyage.toStarboard <= 63);
        QVERIFY(voyage.draught >= 0 && voyage.draught <= 255);
        QVERIFY(voyage.month == 0 || QDate::isValid(2026, voyage.month, voyage.day));
        QCOMPARE(voyage.month == 0, voyage.day == 0);
        QVERIFY(!vessel.stations.isEmpty());
        if (voyage.imo == 0 || vessel.circle) {
            continue;
        }
        const QByteArray imo = QByteArray::number(voyage.imo);
        QCOMPARE(imo.size(), 7);
        int sum = 0;
        for (int i = 0; i < 6; ++i) {
            sum += (imo.at(i) - '0') * (7 - i);
        }
        QCOMPARE(sum % 10, imo.at(6) - '0');
    }
    QCOMPARE(mmsis.size(), vessels);
    QCOMPARE(names.size(), vessels);
    QVERIFY(classes.size() >= 6);
}

void TestSimAisFleet::fleetHasFlaws()
{
    AisWorld world(settingsOf());
    reportsOf(&world, 0, 5 * minute);
    int withoutPosition = 0;
    int inTheWest = 0;
    int withoutName = 0;
    int farAway = 0;
    for (const int port : world.ports()) {
        const auto stations = world.truth(port).stations;
        for (const AisStationTruth &station : stations) {
            withoutName += station.voyage ? 0 : 1;
            withoutPosition += hasPosition(*station.position) ? 0 : 1;
            inTheWest += station.position->longitude < 0 ? 1 : 0;
            const double distance = milesBetween(fixOf(*station.position), fleetMiddle);
            farAway += distance > 100 && distance < 300 ? 1 : 0;
        }
    }
    QVERIFY(withoutPosition >= 1);
    QVERIFY(inTheWest >= 1);
    QVERIFY(withoutName >= 1);
    QVERIFY(farAway >= 1);
}

void TestSimAisFleet::numberOfVessels_data()
{
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("there");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("negative") << -5 << 0;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("only neighbours") << 8 << 8;
    QTest::newRow("one more") << 9 << 9;
    QTest::newRow("most") << 20000 << 20000;
    QTest::newRow("too many") << 1000000 << 20000;
}

void TestSimAisFleet::numberOfVessels()
{
    QFETCH(int, asked);
    QFETCH(int, there);
    AisWorld world(settingsOf(asked));
    QCOMPARE(world.settings().vessels, there);
    QSet<quint32> heard;
    const auto reports = reportsOf(&world, 0, 11 * second);
    for (const AisReport &report : reports) {
        if (report.kind == AisReportKind::Position) {
            heard.insert(report.position.mmsi);
        }
    }
    QCOMPARE(heard.size(), there);
}

void TestSimAisFleet::silencePattern_data()
{
    QTest::addColumn<qint64>("length");
    QTest::addColumn<qint64>("period");
    QTest::addColumn<qint64>("time");
    QTest::addColumn<bool>("silent");
    QTest::newRow("never") << qint64(0) << qint64(100) << qint64(50) << false;
    QTest::newRow("before") << qint64(20) << qint64(100) << qint64(49) << false;
    QTest::newRow("begin") << qint64(20) << qint64(100) << qint64(50) << true;
    QTest::newRow("last moment") << qint64(20) << qint64(100) << qint64(69) << true;
    QTest::newRow("end") << qint64(20) << qint64(100) << qint64(70) << false;
    QTest::newRow("again") << qint64(20) << qint64(100) << qint64(150) << true;
    QTest::newRow("for ever") << qint64(20) << qint64(0) << qint64(100000) << true;
}

void TestSimAisFleet::silencePattern()
{
    QFETCH(qint64, length);
    QFETCH(qint64, period);
    QFETCH(qint64, time);
    QFETCH(bool, silent);
    QCOMPARE((SilencePattern{50, length, period}).covers(time), silent);
}

QTEST_GUILESS_MAIN(TestSimAisFleet)
#include "tst_simaisfleet.moc"
