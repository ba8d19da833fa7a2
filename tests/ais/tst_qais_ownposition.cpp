#include "ais/qais.h"
#include "aisjournal.h"
#include "fakeclock.h"
#include "payloadbuilder.h"

#include <QtTest>

#include <cmath>

namespace {

constexpr uint port = 5;
constexpr uint otherPort = 3;
constexpr uint router = QAis::RouterSource;
constexpr quint32 mmsi = 240827000;

/*! A port that knows one target, 60 nautical miles north of 0, 0. */
class Rig
{
public:
    explicit Rig(const QTime &start = QTime(12, 0)) : clock(start), journal(ais)
    {
        ais.setPortNumber(port);
        takeReport();
        journal.take();
    }

    void takeReport(quint32 latitude = 600000, quint32 number = mmsi)
    {
        PositionReport report;
        report.mmsi = number;
        report.latitude = latitude;
        report.longitude = 0;
        ais.decodeMessage(QAis::TargetMessage, 1, 1, 0, 0, report.payload().constData());
    }

    void offer(uint source, double latitude)
    {
        QGpsKrd position;
        position.m_lat = latitude;
        ais.setOwnPosition(source, &position);
    }

    const QAisTarget &target() const { return *ais.findTarget(mmsi); }

    /*! The latitude of the held position, as the target's range betrays it. */
    double heldLatitude() const { return 60.0 - target().m_range; }

    FakeClock clock;
    QAis ais;
    AisJournal journal;
};

bool isNear(double value, double expected)
{
    return std::fabs(value - expected) < 1e-6;
}

} // namespace

class tst_QAis_OwnPosition : public QObject
{
    Q_OBJECT

private slots:
    void source_data();
    void source();
    void takenSourceIsHeld();
    void heldSourceStaysWhileItSpeaks();
    void droppedPositionStillComputesRanges();
    void positionIsCopied();
    void rangeNeedsOwnPosition();
    void rangeNeedsValidTarget();
    void rangeFollowsReports();
    void rangeEqualsGreatCircle();
    void maxRange();
    void oddityMaxRangePassesOverNoNumber();
    void expiry_data();
    void expiry();
    void lostPositionKeepsRangesUntilTheNextReport();
    void positionIsLostBeforeTargetsGo();
    void afterLossAnySourceIsTaken();
};

void tst_QAis_OwnPosition::source_data()
{
    QTest::addColumn<uint>("held");
    QTest::addColumn<uint>("offered");
    QTest::addColumn<QTime>("start");
    QTest::addColumn<int>("msecs");
    QTest::addColumn<bool>("taken");
    const QTime noon(12, 0);
    QTest::newRow("port 3 while the router's is 9 s old")
        << router << otherPort << noon << 9000 << false;
    QTest::newRow("port 3 a moment before 10 s") << router << otherPort << noon << 9999 << false;
    QTest::newRow("port 3 at 10 s") << router << otherPort << noon << 10000 << true;
    QTest::newRow("the own port at once") << router << port << noon << 0 << true;
    QTest::newRow("the same source at once") << router << router << noon << 0 << true;
    QTest::newRow("the router while port 3 is held")
        << otherPort << router << noon << 9999 << false;
    QTest::newRow("the router 10 s after port 3") << otherPort << router << noon << 10000 << true;
    QTest::newRow("another port while the own is held")
        << port << otherPort << noon << 9999 << false;
    QTest::newRow("another port 10 s after the own") << port << otherPort << noon << 10000 << true;
    QTest::newRow("oddity: taken at once in the last 10 s of the day")
        << router << otherPort << QTime(23, 59, 50) << 1 << true;
    QTest::newRow("oddity: held over midnight nearly for a day")
        << router << otherPort << QTime(23, 59, 49) << 60000 << false;
}

void tst_QAis_OwnPosition::source()
{
    QFETCH(uint, held);
    QFETCH(uint, offered);
    QFETCH(QTime, start);
    QFETCH(int, msecs);
    QFETCH(bool, taken);
    Rig rig(start);
    rig.offer(held, 10.0);
    QVERIFY(isNear(rig.heldLatitude(), 10.0));
    rig.clock.advanceMsecs(msecs);
    rig.offer(offered, 20.0);
    QVERIFY(isNear(rig.heldLatitude(), taken ? 20.0 : 10.0));
}

void tst_QAis_OwnPosition::takenSourceIsHeld()
{
    Rig rig;
    rig.offer(router, 10.0);
    rig.offer(port, 20.0);
    // Now the own port is the source: the router's has to wait.
    rig.clock.advance(9);
    rig.offer(router, 30.0);
    QVERIFY(isNear(rig.heldLatitude(), 20.0));
    rig.clock.advance(1);
    rig.offer(router, 30.0);
    QVERIFY(isNear(rig.heldLatitude(), 30.0));
    rig.offer(otherPort, 40.0);
    QVERIFY(isNear(rig.heldLatitude(), 30.0));
}

void tst_QAis_OwnPosition::heldSourceStaysWhileItSpeaks()
{
    Rig rig;
    for (int i = 0; i < 10; ++i) {
        rig.offer(router, i);
        rig.clock.advance(9);
        rig.offer(otherPort, 50.0); // dropped, and doesn't count as the held one's
        QVERIFY(isNear(rig.heldLatitude(), i));
    }
    rig.clock.advance(1);
    rig.offer(otherPort, 50.0);
    QVERIFY(isNear(rig.heldLatitude(), 50.0));
}

void tst_QAis_OwnPosition::droppedPositionStillComputesRanges()
{
    Rig rig;
    rig.offer(router, 10.0);
    QAisTarget *target = rig.ais.findTarget(mmsi);
    target->m_range = 1234.0;
    target->m_rangeValid = false;
    rig.offer(otherPort, 20.0);
    QVERIFY(target->m_rangeValid);
    QVERIFY(isNear(target->m_range, 50.0));
}

void tst_QAis_OwnPosition::positionIsCopied()
{
    Rig rig;
    QGpsKrd position;
    rig.ais.setOwnPosition(router, &position);
    position.m_lat = 30.0;
    rig.takeReport();
    QVERIFY(isNear(rig.target().m_range, 60.0));
}

void tst_QAis_OwnPosition::rangeNeedsOwnPosition()
{
    Rig rig;
    QVERIFY(!rig.ais.hasOwnPosition());
    QVERIFY(!rig.target().m_rangeValid);
    rig.offer(router, 0.0);
    QVERIFY(rig.ais.hasOwnPosition());
    QVERIFY(rig.target().m_rangeValid);
    QVERIFY(isNear(rig.target().m_range, 60.0));
}

void tst_QAis_OwnPosition::rangeNeedsValidTarget()
{
    Rig rig;
    rig.offer(router, 0.0);
    rig.takeReport(54000001);
    QVERIFY(!rig.target().m_rangeValid);
    rig.takeReport(54000000);
    QVERIFY(rig.target().m_rangeValid);
    QVERIFY(isNear(rig.target().m_range, 5400.0));
}

void tst_QAis_OwnPosition::rangeFollowsReports()
{
    Rig rig;
    rig.offer(router, 0.0);
    rig.takeReport(1200000);
    QVERIFY(isNear(rig.target().m_range, 120.0));
    // A new target has its range when it is announced.
    bool hadRange = false;
    rig.journal.onSignal = [&](const QString &) { hadRange = rig.ais.findTarget(7)->m_rangeValid; };
    rig.takeReport(300000, 7);
    QVERIFY(hadRange);
}

void tst_QAis_OwnPosition::rangeEqualsGreatCircle()
{
    Rig rig;
    QGpsKrd own;
    own.m_lat = 3345.123;
    own.m_lon = 1656.456;
    rig.ais.setOwnPosition(router, &own);
    for (quint32 latitude = 0; latitude < 54000000; latitude += 1234567) {
        rig.takeReport(latitude);
        QCOMPARE(rig.target().m_range, own.distanceTo(rig.target().m_position));
    }
}

void tst_QAis_OwnPosition::maxRange()
{
    Rig rig;
    QCOMPARE(rig.ais.maxRange(), -1.0);
    rig.offer(router, 0.0);
    QVERIFY(isNear(rig.ais.maxRange(), 60.0));
    rig.takeReport(3000000, 7);
    rig.takeReport(1000000, 8);
    QVERIFY(isNear(rig.ais.maxRange(), 300.0));
    // One that has lost its range does not count.
    rig.takeReport(54000001, 7);
    QVERIFY(isNear(rig.ais.maxRange(), 100.0));
    rig.takeReport(54000001, 8);
    rig.takeReport(54000001);
    QCOMPARE(rig.ais.maxRange(), -1.0);
    rig.takeReport(0);
    QCOMPARE(rig.ais.maxRange(), 0.0);
}

void tst_QAis_OwnPosition::oddityMaxRangePassesOverNoNumber()
{
    QGpsKrd own;
    const auto isNoNumber = [&own](int latitude) {
        own.m_lat = latitude;
        return std::isnan(own.distanceTo(own));
    };
    int latitude = 0;
    while (latitude < 5400 && !isNoNumber(latitude))
        ++latitude;
    QVERIFY(latitude < 5400);
    Rig rig;
    rig.ais.setOwnPosition(router, &own);
    rig.takeReport(quint32(latitude) * 10000);
    QVERIFY(rig.target().m_rangeValid);
    QVERIFY(std::isnan(rig.target().m_range));
    QCOMPARE(rig.ais.maxRange(), -1.0);
    rig.takeReport(quint32(latitude) * 10000 + 600000, 7);
    QVERIFY(isNear(rig.ais.maxRange(), 60.0));
}

void tst_QAis_OwnPosition::expiry_data()
{
    QTest::addColumn<QTime>("start");
    QTest::addColumn<int>("msecs");
    QTest::addColumn<bool>("lost");
    QTest::newRow("at once") << QTime(12, 0) << 0 << false;
    QTest::newRow("a moment before 300 s") << QTime(12, 0) << 299999 << false;
    QTest::newRow("300 s") << QTime(12, 0) << 300000 << true;
    QTest::newRow("oddity: lost at once in the last 300 s of the day")
        << QTime(23, 55) << 1 << true;
    QTest::newRow("oddity: held over midnight") << QTime(23, 54, 59) << 302000 << false;
}

void tst_QAis_OwnPosition::expiry()
{
    QFETCH(QTime, start);
    QFETCH(int, msecs);
    QFETCH(bool, lost);
    FakeClock clock(start);
    QAis ais;
    ais.setPortNumber(port);
    AisJournal journal(ais);
    QGpsKrd own;
    ais.setOwnPosition(router, &own);
    clock.advanceMsecs(msecs);
    ais.expire();
    QCOMPARE(ais.hasOwnPosition(), !lost);
    QCOMPARE(journal.take(), lost ? QStringList{"lost 5"} : QStringList{});
    ais.expire();
    QCOMPARE(journal.take(), QStringList());
}

void tst_QAis_OwnPosition::lostPositionKeepsRangesUntilTheNextReport()
{
    Rig rig;
    rig.offer(router, 0.0);
    rig.clock.advance(200);
    rig.takeReport();
    rig.journal.take();
    rig.clock.advance(100);
    rig.ais.expire();
    QCOMPARE(rig.journal.take(), QStringList{"lost 5"});
    QCOMPARE(rig.ais.maxRange(), -1.0);
    QVERIFY(rig.target().m_rangeValid);
    rig.takeReport();
    QVERIFY(!rig.target().m_rangeValid);
}

void tst_QAis_OwnPosition::positionIsLostBeforeTargetsGo()
{
    Rig rig;
    rig.offer(router, 0.0);
    rig.clock.advance(300);
    rig.ais.expire();
    QCOMPARE(rig.journal.take(), (QStringList{"lost 5", "delete 5 240827000"}));
}

void tst_QAis_OwnPosition::afterLossAnySourceIsTaken()
{
    Rig rig(QTime(23, 55));
    rig.offer(router, 10.0);
    rig.takeReport();
    rig.ais.expire(); // the wrap at midnight takes both
    rig.clock.advance(1);
    rig.takeReport();
    rig.offer(otherPort, 20.0);
    QVERIFY(isNear(rig.heldLatitude(), 20.0));
}

QTEST_GUILESS_MAIN(tst_QAis_OwnPosition)
#include "tst_qais_ownposition.moc"
