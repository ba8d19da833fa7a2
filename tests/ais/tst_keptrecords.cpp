#include "ais/keptrecords.h"

#include <QObject>
#include <QPointer>
#include <QTest>

/*! Records that live until somebody who knows that nobody reads them releases them all. */
class tst_KeptRecords : public QObject
{
    Q_OBJECT

private slots:
    void keepsAndReleases();
};

void tst_KeptRecords::keepsAndReleases()
{
    const QPointer<QObject> first = new QObject;
    const QPointer<QObject> second = new QObject;
    KeptRecords::keep(first);
    KeptRecords::keep(second);
    QCOMPARE(KeptRecords::count(), 2);
    QVERIFY(first && second);

    KeptRecords::releaseAll();
    QCOMPARE(KeptRecords::count(), 0);
    QVERIFY(!first && !second);

    const QPointer<QObject> third = new QObject;
    KeptRecords::keep(third);
    QCOMPARE(KeptRecords::count(), 1);
    QVERIFY(third);
    KeptRecords::releaseAll();
}

QTEST_APPLESS_MAIN(tst_KeptRecords)
#include "tst_keptrecords.moc"
