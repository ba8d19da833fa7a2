#include "platform/screen.h"

#include <QtTest>

/*! The resolution in a program without a screen. tst_uiscale has those with one. */
class tst_Screen : public QObject
{
    Q_OBJECT

private slots:
    void noScreen() { QCOMPARE(platform::logicalDotsPerInch(), 96.0); }
};

QTEST_GUILESS_MAIN(tst_Screen)
#include "tst_screen.moc"
