#include "ais/keptrecords.h"
#include "ais/qais.h"
#include "ais/qaisalarm.h"
#include "aisjournal.h"

#include <QPointer>
#include <QtTest>

class tst_QAisAlarm : public QObject
{
    Q_OBJECT

private slots:
    void startsUnfilled();
    void firstUpdateAlwaysChanges();
    void change_data();
    void change();
    void listKeepsOrderOfFirstReport();
    void everyIdIsAnAlarmOfItsOwn();
    void sameReportTwiceIsOneSignal();
    void changedTimeIsAnotherSignal();
    void voidConditionKeepsTheAlarm();
    void sameIdOnTwoPorts();
    void unknownAlarm();
    void alarmOutlivesItsPort();
};

void tst_QAisAlarm::startsUnfilled()
{
    const QAisAlarm alarm;
    QCOMPARE(int(alarm.m_id), 0);
    QVERIFY(!alarm.m_valid);
    QVERIFY(!alarm.m_condition);
    QVERIFY(!alarm.m_acknowledged);
    QCOMPARE(int(alarm.m_hour), 0);
    QCOMPARE(int(alarm.m_minute), 0);
    QCOMPARE(int(alarm.m_second), 0);
    QVERIFY(alarm.m_text.isNull());
}

void tst_QAisAlarm::firstUpdateAlwaysChanges()
{
    QAisAlarm alarm;
    // Nothing differs from the values that a new alarm happens to have.
    QVERIFY(alarm.update(0, 0, 0, 0, false, false, QString()));
    QVERIFY(alarm.m_valid);
    QVERIFY(!alarm.update(0, 0, 0, 0, false, false, QString()));
}

void tst_QAisAlarm::change_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("hour");
    QTest::addColumn<int>("minute");
    QTest::addColumn<int>("second");
    QTest::addColumn<bool>("condition");
    QTest::addColumn<bool>("acknowledged");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("changed");
    QTest::newRow("nothing") << 5 << 12 << 34 << 56 << true << false << "Text*" << false;
    QTest::newRow("id") << 6 << 12 << 34 << 56 << true << false << "Text*" << true;
    QTest::newRow("hour") << 5 << 13 << 34 << 56 << true << false << "Text*" << true;
    QTest::newRow("minute") << 5 << 12 << 35 << 56 << true << false << "Text*" << true;
    QTest::newRow("second") << 5 << 12 << 34 << 57 << true << false << "Text*" << true;
    QTest::newRow("condition") << 5 << 12 << 34 << 56 << false << false << "Text*" << true;
    QTest::newRow("acknowledged") << 5 << 12 << 34 << 56 << true << true << "Text*" << true;
    QTest::newRow("text") << 5 << 12 << 34 << 56 << true << false << "text*" << true;
    QTest::newRow("all") << 0 << 0 << 0 << 0 << false << true << "" << true;
}

void tst_QAisAlarm::change()
{
    QFETCH(int, id);
    QFETCH(int, hour);
    QFETCH(int, minute);
    QFETCH(int, second);
    QFETCH(bool, condition);
    QFETCH(bool, acknowledged);
    QFETCH(QString, text);
    QAisAlarm alarm;
    alarm.update(5, 12, 34, 56, true, false, "Text*");
    QTEST(alarm.update(quint8(id), quint8(hour), quint8(minute), quint8(second), condition,
                       acknowledged, text),
          "changed");
    QCOMPARE(int(alarm.m_id), id);
    QCOMPARE(int(alarm.m_hour), hour);
    QCOMPARE(int(alarm.m_minute), minute);
    QCOMPARE(int(alarm.m_second), second);
    QCOMPARE(alarm.m_condition, condition);
    QCOMPARE(alarm.m_acknowledged, acknowledged);
    QCOMPARE(alarm.m_text, text);
    QVERIFY(alarm.m_valid);
}

void tst_QAisAlarm::listKeepsOrderOfFirstReport()
{
    QAis ais;
    for (const int id : {7, 3, 255, 0, 3})
        ais.updateAlarm(quint8(id), 1, 2, 3, true, false, "Text*");
    QCOMPARE(ais.alarmCount(), 4);
    const int order[] = {7, 3, 255, 0};
    for (int i = 0; i < 4; ++i)
        QCOMPARE(int(ais.alarmAt(i)->m_id), order[i]);
}

void tst_QAisAlarm::everyIdIsAnAlarmOfItsOwn()
{
    constexpr int idCount = 256;
    QAis ais;
    for (int id = 0; id < idCount; ++id)
        ais.updateAlarm(quint8(id), 1, 2, 3, true, false, QString::number(id));
    QCOMPARE(ais.alarmCount(), idCount);
    for (int id = 0; id < idCount; ++id)
        QCOMPARE(ais.findAlarm(quint8(id))->m_text, QString::number(id));
}

void tst_QAisAlarm::sameReportTwiceIsOneSignal()
{
    QAis ais;
    ais.setPortNumber(3);
    AisJournal journal(ais);
    ais.updateAlarm(5, 12, 34, 56, true, false, "Text*");
    ais.updateAlarm(5, 12, 34, 56, true, false, "Text*");
    QCOMPARE(journal.take(), QStringList{"alarm 3 5"});
}

void tst_QAisAlarm::changedTimeIsAnotherSignal()
{
    QAis ais;
    AisJournal journal(ais);
    ais.updateAlarm(5, 12, 34, 56, true, false, "Text*");
    ais.updateAlarm(5, 12, 34, 57, true, false, "Text*");
    QCOMPARE(journal.take(), (QStringList{"alarm 0 5", "alarm 0 5"}));
    QCOMPARE(ais.alarmCount(), 1);
    QCOMPARE(int(ais.findAlarm(5)->m_second), 57);
}

void tst_QAisAlarm::voidConditionKeepsTheAlarm()
{
    QAis ais;
    ais.updateAlarm(5, 12, 34, 56, true, false, "Text*");
    ais.updateAlarm(5, 12, 34, 56, false, false, "Text*");
    QCOMPARE(ais.alarmCount(), 1);
    QVERIFY(!ais.findAlarm(5)->m_condition);
}

void tst_QAisAlarm::sameIdOnTwoPorts()
{
    QAis first;
    QAis second;
    second.setPortNumber(1);
    AisJournal journal(second);
    first.updateAlarm(5, 12, 34, 56, true, false, "Text*");
    QVERIFY(!second.findAlarm(5));
    second.updateAlarm(5, 12, 34, 56, false, false, "Text*");
    QCOMPARE(journal.take(), QStringList{"alarm 1 5"});
    QVERIFY(first.findAlarm(5) != second.findAlarm(5));
    QVERIFY(first.findAlarm(5)->m_condition);
}

void tst_QAisAlarm::unknownAlarm()
{
    QAis ais;
    ais.updateAlarm(5, 12, 34, 56, true, false, "Text*");
    QVERIFY(!ais.findAlarm(6));
    QCOMPARE(ais.alarmAt(0), ais.findAlarm(5));
    QVERIFY(!ais.alarmAt(1));
    QVERIFY(!ais.alarmAt(-1));
}

void tst_QAisAlarm::alarmOutlivesItsPort()
{
    const int keptBefore = KeptRecords::count();
    QPointer<QAisAlarm> alarm;
    {
        QAis ais;
        ais.updateAlarm(5, 12, 34, 56, true, false, "Text*");
        alarm = ais.findAlarm(5);
        QVERIFY(!alarm->parent());
    }
    QVERIFY(alarm);
    QCOMPARE(alarm->m_text, QString("Text*"));
    QCOMPARE(KeptRecords::count(), keptBefore + 1);
}

QTEST_GUILESS_MAIN(tst_QAisAlarm)
#include "tst_qaisalarm.moc"
