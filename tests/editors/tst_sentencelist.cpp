#include "editors/sentencelist.h"

#include <QTest>

/*! The working copy of the list of sentence names. */
class tst_sentencelist : public QObject
{
    Q_OBJECT

private slots:
    void freeSlot_data();
    void freeSlot();
    void findsOccupiedSlotsOnly();
    void findsExactlyAndTheLowest();
    void putAndClear();
};

void tst_sentencelist::freeSlot_data()
{
    QTest::addColumn<quint32>("mask");
    QTest::addColumn<int>("slot");

    QTest::newRow("an empty list") << 0U << 0;
    QTest::newRow("behind the twelve usual names") << 0x00000fffU << 12;
    QTest::newRow("the lowest of two gaps") << 0xffffefdfU << 5;
    QTest::newRow("the last slot") << 0x7fffffffU << 31;
    QTest::newRow("a full list") << 0xffffffffU << -1;
}

void tst_sentencelist::freeSlot()
{
    QFETCH(quint32, mask);
    SentenceList list;
    list.mask = mask;
    QTEST(list.freeSlot(), "slot");
}

void tst_sentencelist::findsOccupiedSlotsOnly()
{
    SentenceList list;
    list.names[3] = QStringLiteral("RMC"); // left over: its bit is clear
    QCOMPARE(list.slotOf(QStringLiteral("RMC")), -1);
    list.put(31, QStringLiteral("RMC"));
    QCOMPARE(list.slotOf(QStringLiteral("RMC")), 31);
    QCOMPARE(list.slotOf(QString()), -1);
}

void tst_sentencelist::findsExactlyAndTheLowest()
{
    SentenceList list;
    list.put(9, QStringLiteral("GGA"));
    list.put(4, QStringLiteral("GGA"));
    list.put(0, QStringLiteral("gga"));
    QCOMPARE(list.slotOf(QStringLiteral("GGA")), 4);
    QCOMPARE(list.slotOf(QStringLiteral("gga")), 0);
    QCOMPARE(list.slotOf(QStringLiteral("GG")), -1);
}

void tst_sentencelist::putAndClear()
{
    SentenceList list;
    list.put(31, QStringLiteral("VDM"));
    list.put(2, QStringLiteral("HDT"));
    QCOMPARE(list.mask, 0x80000004U);
    QVERIFY(list.isTaken(31) && list.isTaken(2) && !list.isTaken(3));
    list.clear(31);
    QCOMPARE(list.mask, 0x00000004U);
    QCOMPARE(list.names[31], QString());
    QCOMPARE(list.names[2], QStringLiteral("HDT"));
}

QTEST_APPLESS_MAIN(tst_sentencelist)
#include "tst_sentencelist.moc"
