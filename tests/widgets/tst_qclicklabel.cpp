#include "widgets/qclicklabel.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

class TestQClickLabel : public QObject
{
    Q_OBJECT

private slots:
    void press_data();
    void press();
    void othersAreNoClick_data();
    void othersAreNoClick();
};

void TestQClickLabel::press_data()
{
    QTest::addColumn<int>("button");

    QTest::newRow("left") << int(Qt::LeftButton);
    QTest::newRow("right") << int(Qt::RightButton);
    QTest::newRow("middle") << int(Qt::MiddleButton);
}

void TestQClickLabel::press()
{
    QFETCH(int, button);
    QClickLabel label(QStringLiteral("LOCK"));
    QSignalSpy clicked(&label, &QClickLabel::clicked);
    QTest::mousePress(&label, Qt::MouseButton(button));
    QCOMPARE(clicked.count(), 1);
    QTest::mouseRelease(&label, Qt::MouseButton(button));
    QCOMPARE(clicked.count(), 1);
    QTest::mouseClick(&label, Qt::MouseButton(button));
    QCOMPARE(clicked.count(), 2);
}

void TestQClickLabel::othersAreNoClick_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("release") << int(QEvent::MouseButtonRelease) << true;
    QTest::newRow("move") << int(QEvent::MouseMove) << true;
    QTest::newRow("press of a disabled label") << int(QEvent::MouseButtonPress) << false;
}

void TestQClickLabel::othersAreNoClick()
{
    QFETCH(int, type);
    QFETCH(bool, enabled);
    QClickLabel label;
    label.setEnabled(enabled);
    QSignalSpy clicked(&label, &QClickLabel::clicked);
    const QPoint place(2, 2);
    QMouseEvent event(QEvent::Type(type), place, label.mapToGlobal(place), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&label, &event);
    QCOMPARE(clicked.count(), 0);
}

QTEST_MAIN(TestQClickLabel)
#include "tst_qclicklabel.moc"
