#include "link/answerwait.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>
#include <QtTest>

class tst_AnswerWait : public QObject
{
    Q_OBJECT

private slots:
    void everyBeginningAndEndHasANumber();
    void ticksLeaveTheNumber();
    void withoutItsTimer();
    void stall_data();
    void stall();
    void closedInItsTick();
};

namespace {

constexpr int longWait = 3600000; // no computer stands still for so long
constexpr int shortWait = 10;

// The subject: the thread is held, and its event loop with it.
void standStill(int ms)
{
    QElapsedTimer clock;
    clock.start();
    while (!clock.hasExpired(ms)) { }
}

} // namespace

void tst_AnswerWait::everyBeginningAndEndHasANumber()
{
    AnswerWait wait(longWait);
    const QPointer<QTimer> timer = wait.open();
    QCOMPARE(timer->interval(), longWait);
    QCOMPARE(timer->timerType(), Qt::PreciseTimer);
    QVERIFY(!timer->isActive());

    QVector<quint32> numbers{wait.number()};
    const auto isNew = [&] {
        numbers += wait.number();
        return numbers.count(wait.number()) == 1;
    };
    wait.start();
    QVERIFY(isNew());
    QVERIFY(timer->isActive());
    wait.start();
    QVERIFY(isNew());
    wait.stop();
    QVERIFY(isNew());
    QVERIFY(!timer->isActive());
    wait.start();
    QVERIFY(isNew());
    wait.close();
    QVERIFY(isNew());
    QVERIFY(timer && !timer->isActive());
    QCoreApplication::sendPostedEvents(timer, QEvent::DeferredDelete);
    QVERIFY(!timer);
}

void tst_AnswerWait::ticksLeaveTheNumber()
{
    AnswerWait wait(shortWait);
    QSignalSpy ticks(wait.open(), &QTimer::timeout);
    wait.start();
    const quint32 number = wait.number();
    QTRY_VERIFY(ticks.count() >= 3);
    QCOMPARE(wait.number(), number);
}

// As in an object that has never opened its port.
void tst_AnswerWait::withoutItsTimer()
{
    AnswerWait wait(shortWait);
    const quint32 number = wait.number();
    wait.start();
    QVERIFY(wait.number() != number);
    standStill(shortWait);
    const quint32 begun = wait.number();
    wait.noteQueueTick();
    QCOMPARE(wait.number(), begun);
    wait.stop();
    wait.close();
}

void tst_AnswerWait::stall_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("isRunning");
    QTest::addColumn<bool>("isBegunAnew");
    QTest::newRow("more than half of the wait") << shortWait << true << true;
    QTest::newRow("less") << longWait << true << false;
    QTest::newRow("there is no wait") << shortWait << false << false;
}

void tst_AnswerWait::stall()
{
    QFETCH(int, interval);
    QFETCH(bool, isRunning);
    QFETCH(bool, isBegunAnew);
    AnswerWait wait(interval);
    wait.open();
    wait.start();
    if (!isRunning)
        wait.stop();
    for (int i = 0; i < 2; ++i) {
        const quint32 number = wait.number();
        standStill(shortWait / 2 + 1);
        wait.noteQueueTick();
        QCOMPARE(wait.number() != number, isBegunAnew);
    }
}

void tst_AnswerWait::closedInItsTick()
{
    AnswerWait wait(shortWait);
    const QPointer<QTimer> timer = wait.open();
    int ticks = 0;
    connect(timer, &QTimer::timeout, this, [&] {
        ++ticks;
        wait.close();
        QVERIFY(timer);
    });
    wait.start();
    QTRY_VERIFY(!timer);
    QCOMPARE(ticks, 1);
}

QTEST_GUILESS_MAIN(tst_AnswerWait)
#include "tst_answerwait.moc"
