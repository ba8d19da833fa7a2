#include "platform/keyboard.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QString>
#include <QWindow>

#include <X11/keysym.h>
#include <X11/XKBlib.h>
#include <X11/Xlib.h>

#include <climits>
#include <memory>

// Macros of X11 that hide Qt's names.
#undef KeyPress
#undef KeyRelease

namespace platform {

namespace {

constexpr int keymapBytes = 32;

std::function<bool()> &source()
{
    static std::function<bool()> function;
    return function;
}

struct CloseDisplay
{
    void operator()(Display *display) const { XCloseDisplay(display); }
};

// By the keys' meaning, here and below, so that a key that the user has made a left Control key
// counts as one.
bool isHeldDown(Display *display, KeySym wanted)
{
    char keys[keymapBytes] = {};
    XQueryKeymap(display, keys);
    for (unsigned code = 0; code < keymapBytes * CHAR_BIT; ++code) {
        const bool isDown = (unsigned(keys[code / CHAR_BIT]) >> (code % CHAR_BIT)) & 1;
        if (isDown && XkbKeycodeToKeysym(display, KeyCode(code), 0, 0) == wanted)
            return true;
    }
    return false;
}

bool hasServer()
{
    return QGuiApplication::platformName() == QLatin1String("xcb");
}

class KeyFollower : public QObject
{
public:
    explicit KeyFollower(QGuiApplication *application) : QObject(application)
    {
        application->installEventFilter(this);
        connect(application, &QGuiApplication::focusWindowChanged, this,
                [this] { m_isDown = false; });
    }

    bool isDown() const { return m_isDown; }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const bool isPress = event->type() == QEvent::KeyPress;
        if ((isPress || event->type() == QEvent::KeyRelease)
            && static_cast<QKeyEvent *>(event)->nativeVirtualKey() == XK_Control_L) {
            m_isDown = isPress;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    bool m_isDown = false;
};

QPointer<KeyFollower> &follower()
{
    static QPointer<KeyFollower> object; // the application owns it
    return object;
}

} // namespace

void followLeftControl()
{
    if (!hasServer() && !follower())
        follower() = new KeyFollower(qGuiApp);
}

bool isLeftControlDown()
{
    if (source())
        return source()();
    if (!hasServer())
        return follower() && follower()->isDown();
    // A connection of its own for the moment: Qt's speaks another protocol library.
    const std::unique_ptr<Display, CloseDisplay> display(XOpenDisplay(nullptr));
    return display && isHeldDown(display.get(), XK_Control_L);
}

void setLeftControlSource(std::function<bool()> function)
{
    source() = std::move(function);
}

} // namespace platform
