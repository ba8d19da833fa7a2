#include "ais/keptrecords.h"
#include "ais/qais.h"
#include "aisjournal.h"
#include "fakeclock.h"
#include "payloadbuilder.h"

#include <QPointer>
#include <QtTest>

namespace {

constexpr quint32 mmsi = 240827000;

void takeReport(QAis &ais, quint32 number = mmsi)
{
    PositionReport report;
    report.mmsi = number;
    ais.decodeMessage(QAis::TargetMessage, 1, 1, 0, 0, report.payload().constData());
}

/*! Keeps the intervals of the timers that fire. */
class TimerWatch : public QObject
{
public:
    TimerWatch() { QCoreApplication::instance()->installEventFilter(this); }

    QSet<int> intervals;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (const auto *timer = qobject_cast<QTimer *>(watched);
            timer && event->type() == QEvent::Timer)
            intervals += timer->interval();
        return false;
    }
};

void takeVoyageData(QAis &ais, quint32 number = mmsi)
{
    VoyageData data;
    data.mmsi = number;
    ais.decodeMessage(QAis::TargetMessage, 1, 1, 0, VoyageData::FillBits,
                      data.payload().constData());
}

} // namespace

class tst_QAis_Ageing : public QObject
{
    Q_OBJECT

private slots:
    void expiry_data();
    void expiry();
    void anyMessageIsASignOfLife();
    void severalInOneTick();
    void targetIsStillListedInTheSignal();
    void othersStayFindable();
    void returningTargetIsAnotherRecord();
    void recordOutlivesListAndPort();
    void ownShipAndAlarmsStay();
    void countersStay();
    void timerTicks();
};

void tst_QAis_Ageing::expiry_data()
{
    QTest::addColumn<QTime>("heard");
    QTest::addColumn<QTime>("now");
    QTest::addColumn<bool>("expired");
    QTest::newRow("at once") << QTime(12, 0) << QTime(12, 0) << false;
    QTest::newRow("a moment before 300 s") << QTime(12, 0) << QTime(12, 4, 59, 999) << false;
    QTest::newRow("300 s") << QTime(12, 0) << QTime(12, 5) << true;
    QTest::newRow("hours later") << QTime(12, 0) << QTime(18, 0) << true;
    QTest::newRow("the last moment that doesn't wrap")
        << QTime(23, 54, 59, 999) << QTime(23, 55, 1) << false;
    QTest::newRow("oddity: heard 300 s before midnight, gone at once")
        << QTime(23, 55) << QTime(23, 55, 0, 1) << true;
    QTest::newRow("oddity: heard a second before midnight, gone at once")
        << QTime(23, 59, 59) << QTime(23, 59, 59, 500) << true;
    QTest::newRow("oddity: heard before midnight, still there just after it")
        << QTime(23, 59, 59) << QTime(0, 0, 1) << false;
    QTest::newRow("oddity: heard long before midnight, not missed after it")
        << QTime(23, 54) << QTime(0, 1) << false;
}

void tst_QAis_Ageing::expiry()
{
    QFETCH(QTime, heard);
    QFETCH(QTime, now);
    QFETCH(bool, expired);
    FakeClock clock(heard);
    QAis ais;
    ais.setPortNumber(3);
    AisJournal journal(ais);
    takeReport(ais);
    journal.take();
    clock.set(now);
    ais.expire();
    QCOMPARE(ais.targetCount(), expired ? 0 : 1);
    QCOMPARE(ais.findTarget(mmsi) == nullptr, expired);
    QCOMPARE(journal.take(), expired ? QStringList{"delete 3 240827000"} : QStringList{});
    ais.expire();
    QCOMPARE(journal.take(), QStringList());
}

void tst_QAis_Ageing::anyMessageIsASignOfLife()
{
    FakeClock clock;
    QAis ais;
    takeReport(ais);
    for (int i = 0; i < 5; ++i) {
        clock.advance(299);
        takeVoyageData(ais);
        ais.expire();
        QCOMPARE(ais.targetCount(), 1);
    }
    clock.advance(299);
    takeReport(ais);
    ais.expire();
    QCOMPARE(ais.targetCount(), 1);
    clock.advance(300);
    ais.expire();
    QCOMPARE(ais.targetCount(), 0);
}

void tst_QAis_Ageing::severalInOneTick()
{
    FakeClock clock;
    QAis ais;
    AisJournal journal(ais);
    for (const quint32 number : {10U, 20U, 30U, 40U})
        takeReport(ais, number);
    clock.advance(200);
    takeReport(ais, 20);
    journal.take();
    clock.advance(100);
    ais.expire();
    // The one of the highest index first.
    QCOMPARE(journal.take(), (QStringList{"delete 0 40", "delete 0 30", "delete 0 10"}));
    QCOMPARE(ais.targetCount(), 1);
    QCOMPARE(ais.targetAt(0)->m_mmsi, 20U);
}

void tst_QAis_Ageing::targetIsStillListedInTheSignal()
{
    FakeClock clock;
    QAis ais;
    AisJournal journal(ais);
    takeReport(ais);
    int countInSignal = 0;
    const QAisTarget *foundInSignal = nullptr;
    journal.onSignal = [&](const QString &) {
        countInSignal = ais.targetCount();
        foundInSignal = ais.findTarget(mmsi);
    };
    clock.advance(300);
    ais.expire();
    QCOMPARE(countInSignal, 1);
    QVERIFY(foundInSignal);
    QCOMPARE(foundInSignal->m_mmsi, mmsi);
}

void tst_QAis_Ageing::othersStayFindable()
{
    FakeClock clock;
    QAis ais;
    for (quint32 number = 1; number <= 1000; ++number)
        takeReport(ais, number);
    clock.advance(150);
    for (quint32 number = 2; number <= 1000; number += 2)
        takeReport(ais, number);
    clock.advance(150);
    ais.expire();
    QCOMPARE(ais.targetCount(), 500);
    for (quint32 number = 1; number <= 1000; ++number)
        QCOMPARE(ais.findTarget(number) != nullptr, number % 2 == 0);
    for (int i = 0; i < ais.targetCount(); ++i)
        QCOMPARE(ais.findTarget(ais.targetAt(i)->m_mmsi), ais.targetAt(i));
}

void tst_QAis_Ageing::returningTargetIsAnotherRecord()
{
    FakeClock clock;
    QAis ais;
    AisJournal journal(ais);
    takeVoyageData(ais);
    const QAisTarget *old = ais.findTarget(mmsi);
    clock.advance(300);
    ais.expire();
    journal.take();
    takeReport(ais);
    QCOMPARE(journal.take(), QStringList{"add 0 240827000"});
    const QAisTarget *returned = ais.findTarget(mmsi);
    QVERIFY(returned != old);
    QVERIFY(!returned->m_staticValid);
    QVERIFY(old->m_staticValid);
    QVERIFY(!old->m_dynamicValid);
}

void tst_QAis_Ageing::recordOutlivesListAndPort()
{
    const int keptBefore = KeptRecords::count();
    QPointer<QAisTarget> aged;
    QPointer<QAisTarget> listed;
    {
        FakeClock clock;
        QAis ais;
        takeReport(ais, 1);
        aged = ais.findTarget(1);
        clock.advance(300);
        ais.expire();
        QVERIFY(aged);
        takeReport(ais, 2);
        listed = ais.findTarget(2);
    }
    QVERIFY(aged);
    QVERIFY(listed);
    QCOMPARE(aged->m_mmsi, 1U);
    QCOMPARE(aged->speedText(), QString("11.3"));
    QCOMPARE(listed->m_mmsi, 2U);
    QCOMPARE(KeptRecords::count(), keptBefore + 2);
}

void tst_QAis_Ageing::ownShipAndAlarmsStay()
{
    FakeClock clock;
    QAis ais;
    ais.decodeMessage(QAis::OwnMessage, 1, 1, 0, 0, PositionReport().payload().constData());
    ais.updateAlarm(5, 1, 2, 3, true, false, "Text*");
    AisJournal journal(ais);
    clock.advance(3600);
    ais.expire();
    QCOMPARE(journal.take(), QStringList());
    QVERIFY(ais.ownTarget()->m_dynamicValid);
    QCOMPARE(ais.alarmCount(), 1);
}

void tst_QAis_Ageing::countersStay()
{
    FakeClock clock;
    QAis ais;
    takeReport(ais);
    clock.advance(300);
    ais.expire();
    QCOMPARE(ais.messageCount(), 1U);
}

void tst_QAis_Ageing::timerTicks()
{
    FakeClock clock;
    QAis ais;
    takeReport(ais);
    clock.advance(300);
    const TimerWatch watch;
    QSignalSpy gone(&ais, &QAis::signalDeleteTarget);
    QVERIFY(gone.wait(3000));
    QCOMPARE(watch.intervals, QSet<int>{1000});
    QCOMPARE(ais.targetCount(), 0);
    // And again.
    takeReport(ais);
    clock.advance(300);
    QVERIFY(gone.wait(3000));
    QCOMPARE(gone.count(), 2);
}

QTEST_GUILESS_MAIN(tst_QAis_Ageing)
#include "tst_qais_ageing.moc"
