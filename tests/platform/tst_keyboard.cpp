#include "platform/keyboard.h"

#include <QGuiApplication>
#include <QTest>

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <X11/Xlib.h>

/*! The left Control key, pressed on the keyboard of a virtual display. */
class tst_keyboard : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void keys_data();
    void keys();
    void releasedInAnotherWindow();
    void whateverHasTheFocus();
    void anotherSource();

private:
    void strike(KeySym key, bool down);
    void giveFocus(Window window);
    bool isViewable(Window window) const;

    Display *m_display = nullptr;
    QList<KeySym> m_held;
};

void tst_keyboard::initTestCase()
{
    QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
    m_display = XOpenDisplay(nullptr);
    QVERIFY(m_display);
}

void tst_keyboard::cleanup()
{
    const QList<KeySym> held = m_held;
    for (const KeySym key : held)
        strike(key, false);
    platform::setLeftControlSource({});
}

void tst_keyboard::cleanupTestCase()
{
    XCloseDisplay(m_display);
}

void tst_keyboard::strike(KeySym key, bool down)
{
    XTestFakeKeyEvent(m_display, XKeysymToKeycode(m_display, key), down, CurrentTime);
    XSync(m_display, 0);
    if (down)
        m_held += key;
    else
        m_held.removeOne(key);
}

void tst_keyboard::giveFocus(Window window)
{
    XSetInputFocus(m_display, window, RevertToPointerRoot, CurrentTime);
    XSync(m_display, 0);
}

bool tst_keyboard::isViewable(Window window) const
{
    XWindowAttributes attributes = {};
    return XGetWindowAttributes(m_display, window, &attributes) != 0
        && attributes.map_state == IsViewable;
}

void tst_keyboard::keys_data()
{
    QTest::addColumn<QList<int>>("held");
    QTest::addColumn<bool>("isLeftControl");

    QTest::newRow("none") << QList<int>() << false;
    QTest::newRow("left Control") << QList<int>({XK_Control_L}) << true;
    QTest::newRow("right Control") << QList<int>({XK_Control_R}) << false;
    QTest::newRow("both Controls") << QList<int>({XK_Control_R, XK_Control_L}) << true;
    QTest::newRow("left Shift") << QList<int>({XK_Shift_L}) << false;
    QTest::newRow("left Alt") << QList<int>({XK_Alt_L}) << false;
    QTest::newRow("a letter") << QList<int>({XK_a}) << false;
    QTest::newRow("left Control and others")
        << QList<int>({XK_a, XK_Shift_L, XK_Control_L}) << true;
}

void tst_keyboard::keys()
{
    QFETCH(QList<int>, held);
    QFETCH(bool, isLeftControl);
    QVERIFY(!platform::isLeftControlDown());
    for (const int key : qAsConst(held))
        strike(KeySym(key), true);
    QCOMPARE(platform::isLeftControlDown(), isLeftControl);
    for (const int key : qAsConst(held))
        strike(KeySym(key), false);
    QVERIFY(!platform::isLeftControlDown());
}

// Another program's window has the focus when the key goes up: this one gets no key event.
void tst_keyboard::releasedInAnotherWindow()
{
    strike(XK_Control_L, true);
    QVERIFY(platform::isLeftControlDown());

    const Window root = DefaultRootWindow(m_display);
    const Window other = XCreateSimpleWindow(m_display, root, 0, 0, 100, 100, 0, 0, 0);
    // Without the window manager, which is still starting.
    XSetWindowAttributes attributes = {};
    attributes.override_redirect = 1;
    XChangeWindowAttributes(m_display, other, CWOverrideRedirect, &attributes);
    XMapWindow(m_display, other);
    QTRY_VERIFY(isViewable(other));
    giveFocus(other);
    strike(XK_Control_L, false);
    QVERIFY(!platform::isLeftControlDown());
    XDestroyWindow(m_display, other);
    XSync(m_display, 0);
}

void tst_keyboard::whateverHasTheFocus()
{
    giveFocus(PointerRoot);
    strike(XK_Control_L, true);
    QVERIFY(platform::isLeftControlDown());
    strike(XK_Control_L, false);
    QVERIFY(!platform::isLeftControlDown());
}

void tst_keyboard::anotherSource()
{
    platform::setLeftControlSource([] { return true; });
    QVERIFY(platform::isLeftControlDown());
    strike(XK_Control_L, true);
    platform::setLeftControlSource([] { return false; });
    QVERIFY(!platform::isLeftControlDown());
    platform::setLeftControlSource({});
    QVERIFY(platform::isLeftControlDown());
}

QTEST_MAIN(tst_keyboard)
#include "tst_keyboard.moc"
