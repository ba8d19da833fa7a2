#include "xdesktop.h"

#include "stepfailure.h"

#include <cstring>

// Xlib comes last: it defines words such as None and Bool.
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xfixes.h>
#include <X11/Xatom.h>
#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

constexpr double millimetresPerInch = 25.4;
constexpr double designResolution = 96;
constexpr long maxPropertyLength = 1024; // of 32 bits

// A window that was listed may be gone when it is asked for its properties.
int ignoreError(Display *, XErrorEvent *)
{
    return 0;
}

struct XFreeLater
{
    void operator()(void *data) const { XFree(data); }
};

struct DestroyImage
{
    void operator()(XImage *image) const { XDestroyImage(image); }
};

} // namespace

class XDesktop::Private
{
public:
    Private() : display(XOpenDisplay(nullptr))
    {
        require(display != nullptr, QStringLiteral("there is no display"));
        XSetErrorHandler(ignoreError);
        int event = 0;
        int error = 0;
        int major = 0;
        int minor = 0;
        require(XTestQueryExtension(display, &event, &error, &major, &minor),
                QStringLiteral("the display has no XTest"));
        root = DefaultRootWindow(display);
        // On a busy machine a key may be let go of late, and a hand would have typed it once.
        XAutoRepeatOff(display);
    }

    ~Private()
    {
        XAutoRepeatOn(display);
        XCloseDisplay(display);
    }

    Private(const Private &) = delete;
    Private &operator=(const Private &) = delete;

    Atom atom(const char *name) const { return XInternAtom(display, name, False); }

    QByteArray property(::Window window, const char *name, Atom type) const
    {
        Atom actualType = None;
        int format = 0;
        unsigned long count = 0;
        unsigned long left = 0;
        unsigned char *data = nullptr;
        const int result =
            XGetWindowProperty(display, window, atom(name), 0, maxPropertyLength, False, type,
                               &actualType, &format, &count, &left, &data);
        const std::unique_ptr<unsigned char, XFreeLater> owner(data);
        if (result != Success || actualType != type || count == 0)
            return QByteArray();
        // Xlib hands out properties of 32 bits as longs.
        const auto unit = format == 32 ? sizeof(long) : static_cast<size_t>(format) / 8;
        return QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(count * unit));
    }

    unsigned long numberProperty(::Window window, const char *name, Atom type) const
    {
        const QByteArray bytes = property(window, name, type);
        unsigned long number = 0;
        if (static_cast<size_t>(bytes.size()) >= sizeof number)
            std::memcpy(&number, bytes.constData(), sizeof number);
        return number;
    }

    QVector<::Window> children(::Window window) const
    {
        ::Window itsRoot = 0;
        ::Window parent = 0;
        ::Window *list = nullptr;
        unsigned int count = 0;
        if (!XQueryTree(display, window, &itsRoot, &parent, &list, &count))
            return {};
        const std::unique_ptr<::Window, XFreeLater> owner(list);
        QVector<::Window> all;
        for (unsigned int i = 0; i < count; ++i)
            all += list[i];
        return all;
    }

    // The visible window of the process within `window`, which may be the manager's frame round it.
    ::Window find(::Window window, unsigned long pid) const
    {
        XWindowAttributes attributes;
        if (!XGetWindowAttributes(display, window, &attributes)
            || attributes.map_state != IsViewable || attributes.c_class != InputOutput) {
            return 0;
        }
        if (numberProperty(window, "_NET_WM_PID", XA_CARDINAL) == pid)
            return window;
        const QVector<::Window> inner = children(window);
        for (const ::Window child : inner) {
            if (const ::Window found = find(child, pid))
                return found;
        }
        return 0;
    }

    QRect place(::Window window) const
    {
        XWindowAttributes attributes;
        ::Window child = 0;
        int x = 0;
        int y = 0;
        if (!XGetWindowAttributes(display, window, &attributes)
            || !XTranslateCoordinates(display, window, root, 0, 0, &x, &y, &child)) {
            return QRect();
        }
        return QRect(x, y, attributes.width, attributes.height);
    }

    KeyCode keyCode(KeySym symbol) const
    {
        const KeyCode code = XKeysymToKeycode(display, symbol);
        require(code != 0, QStringLiteral("the keyboard has no key for the symbol %1").arg(symbol));
        return code;
    }

    KeyCode keyCode(const char *name) const { return keyCode(XStringToKeysym(name)); }

    void key(KeyCode code, bool down)
    {
        XTestFakeKeyEvent(display, code, down ? True : False, CurrentTime);
    }

    void strike(KeyCode code, KeyCode modifier)
    {
        if (modifier != 0)
            key(modifier, true);
        key(code, true);
        key(code, false);
        if (modifier != 0)
            key(modifier, false);
        XSync(display, False);
    }

    Display *display;
    ::Window root = 0;
};

XDesktop::XDesktop() : d(std::make_unique<Private>()) { }

XDesktop::~XDesktop() = default;

QRect XDesktop::screen() const
{
    const int number = DefaultScreen(d->display);
    return QRect(0, 0, DisplayWidth(d->display, number), DisplayHeight(d->display, number));
}

double XDesktop::scale() const
{
    const int number = DefaultScreen(d->display);
    const double inches = DisplayWidthMM(d->display, number) / millimetresPerInch;
    return DisplayWidth(d->display, number) / inches / designResolution;
}

bool XDesktop::hasWindowManager() const
{
    return d->numberProperty(d->root, "_NET_SUPPORTING_WM_CHECK", XA_WINDOW) != 0;
}

QVector<XDesktop::Window> XDesktop::windowsOf(qint64 pid) const
{
    QVector<Window> windows;
    const QVector<::Window> frames = d->children(d->root);
    for (const ::Window frame : frames) {
        const ::Window found = d->find(frame, static_cast<unsigned long>(pid));
        if (found == 0)
            continue;
        Window window;
        window.id = static_cast<quint32>(found);
        window.title =
            QString::fromUtf8(d->property(found, "_NET_WM_NAME", d->atom("UTF8_STRING")));
        window.place = d->place(found);
        window.frame = d->place(frame);
        window.isPopup = found == frame;
        if (!window.place.isEmpty())
            windows += window;
    }
    return windows;
}

quint32 XDesktop::focusWindow() const
{
    ::Window focus = 0;
    int revert = 0;
    XGetInputFocus(d->display, &focus, &revert);
    return focus == PointerRoot ? 0 : static_cast<quint32>(focus);
}

QImage XDesktop::picture(const QRect &place) const
{
    const QRect seen = place & screen();
    if (seen.isEmpty())
        return QImage();
    const std::unique_ptr<XImage, DestroyImage> image(
        XGetImage(d->display, d->root, seen.x(), seen.y(), static_cast<unsigned>(seen.width()),
                  static_cast<unsigned>(seen.height()), AllPlanes, ZPixmap));
    constexpr int bitsPerPixel = 32;
    require(image && image->bits_per_pixel == bitsPerPixel,
            QStringLiteral("the display gives no picture of 32 bits a pixel"));
    return QImage(reinterpret_cast<const uchar *>(image->data), image->width, image->height,
                  image->bytes_per_line, QImage::Format_RGB32)
        .copy();
}

QPoint XDesktop::pointer() const
{
    ::Window itsRoot = 0;
    ::Window child = 0;
    int x = 0;
    int y = 0;
    int innerX = 0;
    int innerY = 0;
    unsigned int mask = 0;
    XQueryPointer(d->display, d->root, &itsRoot, &child, &x, &y, &innerX, &innerY, &mask);
    return QPoint(x, y);
}

XDesktop::Pointer XDesktop::pointerPicture() const
{
    const std::unique_ptr<XFixesCursorImage, XFreeLater> cursor(XFixesGetCursorImage(d->display));
    require(cursor != nullptr, QStringLiteral("the display doesn't show its pointer"));
    Pointer pointer;
    pointer.hotSpot = QPoint(cursor->xhot, cursor->yhot);
    pointer.picture =
        QImage(cursor->width, cursor->height, QImage::Format_ARGB32_Premultiplied);
    // Xlib hands out pixels of 32 bits as longs.
    const unsigned long *next = cursor->pixels;
    for (int y = 0; y < cursor->height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(pointer.picture.scanLine(y));
        for (int x = 0; x < cursor->width; ++x)
            line[x] = static_cast<QRgb>(*next++);
    }
    return pointer;
}

void XDesktop::moveTo(QPoint point)
{
    XTestFakeMotionEvent(d->display, DefaultScreen(d->display), point.x(), point.y(), CurrentTime);
    XSync(d->display, False);
}

void XDesktop::press(Button button)
{
    XTestFakeButtonEvent(d->display, button, True, CurrentTime);
    XSync(d->display, False);
}

void XDesktop::release(Button button)
{
    XTestFakeButtonEvent(d->display, button, False, CurrentTime);
    XSync(d->display, False);
}

void XDesktop::strike(const char *name, const char *modifier)
{
    d->strike(d->keyCode(name), modifier ? d->keyCode(modifier) : KeyCode(0));
}

void XDesktop::holdKey(const char *name)
{
    d->key(d->keyCode(name), true);
    XSync(d->display, False);
}

void XDesktop::releaseKey(const char *name)
{
    d->key(d->keyCode(name), false);
    XSync(d->display, False);
}

void XDesktop::type(const QString &text)
{
    constexpr int plainLevel = 0;
    for (const QChar character : text) {
        const KeySym symbol = character.unicode(); // the same numbers in Latin-1
        const KeyCode code = d->keyCode(symbol);
        const bool isPlain = XkbKeycodeToKeysym(d->display, code, 0, plainLevel) == symbol;
        d->strike(code, isPlain ? KeyCode(0) : d->keyCode("Shift_L"));
    }
}
