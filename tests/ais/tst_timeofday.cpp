#include "ais/timeofday.h"
#include "fakeclock.h"

#include <QtTest>

class tst_TimeOfDay : public QObject
{
    Q_OBJECT

private slots:
    void followsTheComputersClock();
    void asksItsSource();
    void sinceCountsOverMidnight_data();
    void sinceCountsOverMidnight();
};

void tst_TimeOfDay::followsTheComputersClock()
{
    constexpr int msecsPerDay = 86400000;
    constexpr int seconds = 2;
    const auto sinceStart = [](const QTime &start, const QTime &time) {
        return (start.msecsTo(time) + msecsPerDay) % msecsPerDay;
    };
    const QTime start = QTime::currentTime();
    int before = 0;
    bool inSecondHalf = false;
    // Each answer lies between two of the system's, over more than one change of the second.
    for (int now = 0; now < seconds * 1000;) {
        const QTime asked = TimeOfDay::now();
        QVERIFY(asked.isValid());
        const int read = sinceStart(start, asked);
        now = sinceStart(start, QTime::currentTime());
        QVERIFY2(read >= before && read <= now, qPrintable(asked.toString("HH:mm:ss.zzz")));
        before = now;
        inSecondHalf = inSecondHalf || asked.msec() >= 500;
    }
    QVERIFY(inSecondHalf);
}

void tst_TimeOfDay::asksItsSource()
{
    {
        FakeClock clock(QTime(3, 4, 5, 6));
        QCOMPARE(TimeOfDay::now(), QTime(3, 4, 5, 6));
        clock.advance(10);
        QCOMPARE(TimeOfDay::now(), QTime(3, 4, 15, 6));
        clock.set(QTime(23, 59, 59, 999));
        QCOMPARE(TimeOfDay::now(), QTime(23, 59, 59, 999));
        // A clock that stands still shows that the answer is the source's.
        QCOMPARE(TimeOfDay::now(), clock.now());
    }
    QTRY_VERIFY(TimeOfDay::now() != QTime(23, 59, 59, 999));
}

void tst_TimeOfDay::sinceCountsOverMidnight_data()
{
    QTest::addColumn<QTime>("past");
    QTest::addColumn<QTime>("now");
    QTest::addColumn<int>("msecs");
    QTest::newRow("now") << QTime(12, 0) << QTime(12, 0) << 0;
    QTest::newRow("75 s ago") << QTime(12, 0) << QTime(12, 1, 15) << 75000;
    QTest::newRow("over midnight") << QTime(23, 59, 58) << QTime(0, 0, 1) << 3000;
    QTest::newRow("a moment ahead is nearly a day ago")
        << QTime(12, 0, 0, 1) << QTime(12, 0) << 86399999;
}

void tst_TimeOfDay::sinceCountsOverMidnight()
{
    QFETCH(QTime, past);
    QFETCH(QTime, now);
    QFETCH(int, msecs);
    const FakeClock clock(now);
    QCOMPARE(TimeOfDay::msecsSince(past), msecs);
}

QTEST_GUILESS_MAIN(tst_TimeOfDay)
#include "tst_timeofday.moc"
