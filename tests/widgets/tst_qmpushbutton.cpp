#include "widgets/qmpushbutton.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

#include <memory>

class TestQMPushButton : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void press_data();
    void press();
    void rightMouseComesBeforeTheBase();
    void clicks_data();
    void clicks();
    void disabledButtonIsSilent();

private:
    void pressWith(Qt::MouseButton button, Qt::MouseButtons held);

    std::unique_ptr<QMPushButton> m_button;
};

void TestQMPushButton::init()
{
    m_button = std::make_unique<QMPushButton>();
    m_button->resize(93, 25);
    m_button->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_button.get()));
}

void TestQMPushButton::pressWith(Qt::MouseButton button, Qt::MouseButtons held)
{
    const QPoint place(10, 10);
    QMouseEvent event(QEvent::MouseButtonPress, place, m_button->mapToGlobal(place), button, held,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(m_button.get(), &event);
}

void TestQMPushButton::press_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("held");
    QTest::addColumn<int>("rightMouse");
    QTest::addColumn<bool>("down");

    const int left = Qt::LeftButton;
    const int right = Qt::RightButton;
    const int middle = Qt::MiddleButton;
    QTest::newRow("left") << left << left << 0 << true;
    QTest::newRow("right") << right << right << 1 << false;
    QTest::newRow("middle") << middle << middle << 0 << false;
    QTest::newRow("left while the right is held") << left << (left | right) << 1 << true;
    QTest::newRow("right while the left is held") << right << (left | right) << 1 << false;
    QTest::newRow("middle while the right is held") << middle << (middle | right) << 1 << false;
}

void TestQMPushButton::press()
{
    QFETCH(int, button);
    QFETCH(int, held);
    QSignalSpy rightMouse(m_button.get(), &QMPushButton::signalPushRightMouse);
    pressWith(Qt::MouseButton(button), Qt::MouseButtons(held));
    QTEST(int(rightMouse.count()), "rightMouse");
    QTEST(m_button->isDown(), "down");
}

void TestQMPushButton::rightMouseComesBeforeTheBase()
{
    QStringList order;
    connect(m_button.get(), &QMPushButton::signalPushRightMouse, this,
            [&] { order += QStringLiteral("right mouse"); });
    connect(m_button.get(), &QPushButton::pressed, this, [&] { order += QStringLiteral("press"); });
    pressWith(Qt::LeftButton, Qt::LeftButton | Qt::RightButton);
    QCOMPARE(order, QStringList({"right mouse", "press"}));
}

void TestQMPushButton::clicks_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("clicked");
    QTest::addColumn<int>("rightMouse");

    QTest::newRow("left") << int(Qt::LeftButton) << 1 << 0;
    QTest::newRow("right") << int(Qt::RightButton) << 0 << 1;
}

void TestQMPushButton::clicks()
{
    QFETCH(int, button);
    QSignalSpy clicked(m_button.get(), &QPushButton::clicked);
    QSignalSpy rightMouse(m_button.get(), &QMPushButton::signalPushRightMouse);
    QTest::mouseClick(m_button.get(), Qt::MouseButton(button));
    QTEST(int(clicked.count()), "clicked");
    QTEST(int(rightMouse.count()), "rightMouse");
}

void TestQMPushButton::disabledButtonIsSilent()
{
    m_button->setEnabled(false);
    QSignalSpy rightMouse(m_button.get(), &QMPushButton::signalPushRightMouse);
    pressWith(Qt::RightButton, Qt::RightButton);
    QCOMPARE(rightMouse.count(), 0);
}

QTEST_MAIN(TestQMPushButton)
#include "tst_qmpushbutton.moc"
