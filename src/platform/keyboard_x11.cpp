#include "platform/keyboard.h"

#include <QGuiApplication>
#include <QString>

#include <X11/keysym.h>
#include <X11/XKBlib.h>
#include <X11/Xlib.h>

#include <climits>
#include <memory>

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

// By the keys' meaning, so that a key that the user has made a left Control key counts as one.
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

} // namespace

bool isLeftControlDown()
{
    if (source())
        return source()();
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return false;
    // A connection of its own for the moment: Qt's speaks another protocol library.
    const std::unique_ptr<Display, CloseDisplay> display(XOpenDisplay(nullptr));
    return display && isHeldDown(display.get(), XK_Control_L);
}

void setLeftControlSource(std::function<bool()> function)
{
    source() = std::move(function);
}

} // namespace platform
