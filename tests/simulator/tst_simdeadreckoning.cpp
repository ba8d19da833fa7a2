#include "simulator/instruments/deadreckoning.h"

#include <QtTest>

#include <cmath>

using namespace tk7sim;

/*! Vessels that keep a course and turn to another one. */
class TestSimDeadReckoning : public QObject
{
    Q_OBJECT

private slots:
    void sails_data();
    void sails();
    void turns_data();
    void turns();
    void stepsDoNotMatter();
    void turnsAreNoCorners();
    void withoutARudder();
    void measures();
};

namespace {

constexpr double hour = 3600;

bool isNear(double a, double b, double tolerance)
{
    return std::fabs(a - b) <= tolerance;
}

} // namespace

void TestSimDeadReckoning::sails_data()
{
    QTest::addColumn<double>("course");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    // Twelve miles from 60 N, 10 E, where a mile is two minutes of longitude.
    QTest::newRow("north") << 0.0 << 60.2 << 10.0;
    QTest::newRow("east") << 90.0 << 60.0 << 10.4;
    QTest::newRow("south") << 180.0 << 59.8 << 10.0;
    QTest::newRow("west") << 270.0 << 60.0 << 9.6;
}

void TestSimDeadReckoning::sails()
{
    QFETCH(double, course);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    DeadReckoning vessel({60, 10, course}, 24, 30);
    vessel.advance(hour / 2);
    QVERIFY(isNear(vessel.fix().latitude, latitude, 1e-6));
    QVERIFY(isNear(vessel.fix().longitude, longitude, 1e-6));
    QCOMPARE(vessel.fix().course, course);
    QCOMPARE(vessel.rateOfTurn(), 0.0);
}

void TestSimDeadReckoning::turns_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addColumn<double>("rate"); // degrees a minute
    QTest::addColumn<double>("behindAMinute");
    QTest::newRow("starboard") << 10.0 << 100.0 << 30.0 << 40.0;
    QTest::newRow("port") << 100.0 << 10.0 << -30.0 << 70.0;
    QTest::newRow("starboard over north") << 350.0 << 80.0 << 30.0 << 20.0;
    QTest::newRow("port over north") << 10.0 << 280.0 << -30.0 << 340.0;
    QTest::newRow("done within the minute") << 10.0 << 25.0 << 30.0 << 25.0;
    QTest::newRow("a course beyond the circle") << 10.0 << 400.0 << 30.0 << 40.0;
    QTest::newRow("no turn") << 10.0 << 10.0 << 0.0 << 10.0;
}

void TestSimDeadReckoning::turns()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(double, rate);
    QFETCH(double, behindAMinute);
    DeadReckoning vessel({54, 7, from}, 10, 30);
    vessel.steer(to);
    QVERIFY(isNear(vessel.rateOfTurn(), rate, 1e-9));
    vessel.advance(60);
    QVERIFY(isNear(vessel.fix().course, behindAMinute, 1e-9));
    vessel.advance(hour);
    QVERIFY(isNear(vessel.fix().course, normalized(to), 1e-9));
    QCOMPARE(vessel.rateOfTurn(), 0.0);
}

void TestSimDeadReckoning::stepsDoNotMatter()
{
    DeadReckoning once({54, 7, 20}, 15, 30);
    DeadReckoning often = once;
    once.advance(hour);
    for (int i = 0; i < 3600; ++i) {
        often.advance(1);
    }
    QVERIFY(milesBetween(once.fix(), often.fix()) < 0.01);
}

void TestSimDeadReckoning::turnsAreNoCorners()
{
    DeadReckoning vessel({54, 7, 0}, 12, 30);
    vessel.steer(90);
    vessel.advance(180); // a quarter of a circle whose circumference is 12 minutes long: 2.4 miles
    const double radius = 2.4 / (2 * M_PI);
    DeadReckoning fine({54, 7, 0}, 12, 30);
    fine.steer(90);
    for (int i = 0; i < 1800; ++i) {
        fine.advance(0.1);
    }
    const Fix corner{54 + radius / 60, 7 + radius / 60 / std::cos(54 * M_PI / 180), 0};
    QVERIFY(milesBetween(fine.fix(), corner) < 0.002);
    QCOMPARE(vessel.fix().course, 90.0);
}

void TestSimDeadReckoning::withoutARudder()
{
    DeadReckoning vessel({54, 7, 30}, 10, 0);
    vessel.steer(90);
    vessel.advance(hour);
    QCOMPARE(vessel.fix().course, 30.0);
}

void TestSimDeadReckoning::measures()
{
    const Fix here{60, 10, 0};
    QVERIFY(isNear(milesBetween(here, {60.1, 10, 0}), 6, 1e-9));
    QVERIFY(isNear(milesBetween(here, {60, 10.2, 0}), 6, 1e-9));
    QVERIFY(isNear(courseTo(here, {60.1, 10, 0}), 0, 1e-9));
    QVERIFY(isNear(courseTo(here, {60, 10.2, 0}), 90, 1e-9));
    QVERIFY(isNear(courseTo(here, {59.9, 10, 0}), 180, 1e-9));
    QVERIFY(isNear(courseTo(here, {60, 9.8, 0}), 270, 1e-9));
}

QTEST_GUILESS_MAIN(TestSimDeadReckoning)
#include "tst_simdeadreckoning.moc"
