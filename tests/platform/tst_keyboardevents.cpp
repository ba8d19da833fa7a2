#include "platform/keyboard.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QTest>
#include <QWindow>

/*! The left Control key where only the windows' own key events tell of it. */
class tst_keyboardevents : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void keys_data();
    void keys();
    void focusLost();
    void focusGoesToAnotherWindow();
    void otherEventsPass();

private:
    void press(quint32 key, QEvent::Type type = QEvent::KeyPress);

    QWindow m_window;
    QWindow m_other;
};

namespace {

// What the desktop calls the keys.
constexpr quint32 leftControl = 0xffe3;
constexpr quint32 rightControl = 0xffe4;
constexpr quint32 leftShift = 0xffe1;
constexpr quint32 letterA = 0x61;

struct Stroke
{
    quint32 key;
    QEvent::Type type;
};

Stroke down(quint32 key)
{
    return {key, QEvent::KeyPress};
}

Stroke up(quint32 key)
{
    return {key, QEvent::KeyRelease};
}

void activate(QWindow &window)
{
    window.show();
    window.requestActivate();
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

} // namespace

using Strokes = QList<Stroke>;
Q_DECLARE_METATYPE(Strokes)

void tst_keyboardevents::initTestCase()
{
    QVERIFY(QGuiApplication::platformName() != QStringLiteral("xcb"));
    activate(m_window);
    press(leftControl);
    QVERIFY(!platform::isLeftControlDown()); // nobody follows it yet
    platform::followLeftControl();
    platform::followLeftControl();
    QVERIFY(!platform::isLeftControlDown());
}

void tst_keyboardevents::init()
{
    m_other.hide();
    activate(m_window);
    press(leftControl, QEvent::KeyRelease);
}

// Both Control keys are Qt::Key_Control.
void tst_keyboardevents::press(quint32 key, QEvent::Type type)
{
    const int code = key == letterA ? Qt::Key_A
        : key == leftShift          ? Qt::Key_Shift
                                    : Qt::Key_Control;
    QKeyEvent event(type, code, Qt::NoModifier, 0, key, 0);
    QCoreApplication::sendEvent(&m_window, &event);
}

void tst_keyboardevents::keys_data()
{
    QTest::addColumn<Strokes>("strokes");
    QTest::addColumn<bool>("isDown");

    QTest::newRow("none") << Strokes() << false;
    QTest::newRow("left") << Strokes({down(leftControl)}) << true;
    QTest::newRow("left, released") << Strokes({down(leftControl), up(leftControl)}) << false;
    QTest::newRow("left, again") << Strokes({down(leftControl), up(leftControl), down(leftControl)})
                                 << true;
    QTest::newRow("left, repeated") << Strokes({down(leftControl), down(leftControl)}) << true;
    QTest::newRow("right") << Strokes({down(rightControl)}) << false;
    QTest::newRow("right released under left")
        << Strokes({down(rightControl), down(leftControl), up(rightControl)}) << true;
    QTest::newRow("left released over right")
        << Strokes({down(leftControl), down(rightControl), up(leftControl)}) << false;
    QTest::newRow("Shift") << Strokes({down(leftShift)}) << false;
    QTest::newRow("left and a letter")
        << Strokes({down(leftControl), down(letterA), up(letterA)}) << true;
    QTest::newRow("a Control key of no side") << Strokes({down(0)}) << false;
}

void tst_keyboardevents::keys()
{
    QFETCH(Strokes, strokes);
    QFETCH(bool, isDown);
    QVERIFY(!platform::isLeftControlDown());
    for (const Stroke &stroke : qAsConst(strokes))
        press(stroke.key, stroke.type);
    QCOMPARE(platform::isLeftControlDown(), isDown);
}

// The release goes to whoever has the focus then.
void tst_keyboardevents::focusLost()
{
    press(leftControl);
    QVERIFY(platform::isLeftControlDown());
    emit qGuiApp->focusWindowChanged(nullptr);
    QVERIFY(!platform::isLeftControlDown());
}

void tst_keyboardevents::focusGoesToAnotherWindow()
{
    press(leftControl);
    activate(m_other);
    QVERIFY(!platform::isLeftControlDown());
    // Pressed again it counts again, in whichever window.
    press(leftControl);
    QVERIFY(platform::isLeftControlDown());
}

void tst_keyboardevents::otherEventsPass()
{
    class Listener : public QObject
    {
    public:
        int keys = 0;
        bool event(QEvent *event) override
        {
            keys += event->type() == QEvent::KeyPress;
            return QObject::event(event);
        }
    } listener;
    for (const quint32 key : {leftControl, letterA}) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, 0, key, 0);
        QCoreApplication::sendEvent(&listener, &event);
    }
    QCOMPARE(listener.keys, 2);
}

QTEST_MAIN(tst_keyboardevents)
#include "tst_keyboardevents.moc"
