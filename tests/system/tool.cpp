#include "tool.h"

#include "stepfailure.h"
#include "wait.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPainter>
#include <QRegularExpression>

#include <algorithm>

#include <unistd.h>

namespace {

// Milliseconds.
constexpr int startLimit = 20000;
constexpr int windowLimit = 10000;
constexpr int killLimit = 5000;
constexpr int settleTime = 100; // a window stays where it is

// A hand's way from one place to another.
constexpr int glideSteps = 12;
constexpr int glidePace = 8;  // ms a step
constexpr int clickHold = 30; // ms from a press to its release

constexpr int smallestDragged = 60; // design pixels; an arrow has 32

} // namespace

Tool::Tool() : m_map(m_desktop.scale()) { }

Tool::~Tool()
{
    if (!isRunning())
        return;
    m_process.kill();
    m_process.waitForFinished(killLimit);
}

void Tool::start(const QString &program, const QString &wine, const QString &folder)
{
    m_isForWindows = !wine.isEmpty();
    m_process.setWorkingDirectory(folder);
    await([this] { return m_desktop.hasWindowManager(); }, startLimit,
          QStringLiteral("there is no window manager"));
    if (m_isForWindows)
        m_process.start(wine, {program});
    else
        m_process.start(program, QStringList());
    await([this] { return m_process.state() == QProcess::Running; }, startLimit,
          QStringLiteral("%1 doesn't start: %2").arg(program, m_process.errorString()));
}

bool Tool::isRunning() const
{
    return m_process.state() != QProcess::NotRunning;
}

double Tool::processorTime() const
{
    // The numbers of ticks in user and in kernel mode, counted from the field behind the name.
    constexpr int userField = 11;
    constexpr int kernelField = 12;
    QFile file(QStringLiteral("/proc/%1/stat").arg(processId()));
    require(file.open(QIODevice::ReadOnly), QStringLiteral("the tool's process has gone"));
    const QByteArray line = file.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    require(fields.size() > kernelField, QStringLiteral("the system doesn't tell of the process"));
    const double ticks = fields[userField].toDouble() + fields[kernelField].toDouble();
    return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

// The window manager may have taken the frame of a window away when Qt asks where it is; Qt says
// so. And behind some icons of Wine it finds no picture.
QString Tool::output()
{
    static const QRegularExpression frameHasGone(
        QStringLiteral(
            R"(^qt\.qpa\.xcb: QXcbConnection: XCB error: 3 \(BadWindow\).*\(TranslateCoords\).*\n?)"),
        QRegularExpression::MultilineOption);
    static const QRegularExpression noPicture(QStringLiteral(R"(^QPixmap::fromWinHICON\(\).*\n?)"),
                                              QRegularExpression::MultilineOption);
    return QString::fromLocal8Bit(m_process.readAllStandardError()
                                  + m_process.readAllStandardOutput())
        .remove(frameHasGone)
        .remove(noPicture);
}

QVector<XDesktop::Window> Tool::windows() const
{
    require(isRunning(), QStringLiteral("the tool has ended"));
    return m_desktop.windowsOf(processId());
}

XDesktop::Window Tool::awaitWindow(const QString &title, int milliseconds)
{
    XDesktop::Window found;
    QElapsedTimer sinceMoved; // the window manager may still be placing it
    QStringList seen;
    const auto isThere = [&] {
        seen.clear();
        const QVector<XDesktop::Window> all = windows();
        for (const XDesktop::Window &window : all) {
            seen += QLatin1Char('"') + window.title + QLatin1Char('"');
            const bool isSought = !window.isPopup && window.id != m_mainWindow
                && window.title == title && m_desktop.focusWindow() == window.id;
            if (!isSought)
                continue;
            if (found.id != window.id || found.place != window.place)
                sinceMoved.start();
            found = window;
        }
        return found.id != 0 && sinceMoved.hasExpired(settleTime);
    };
    const bool hasCome = waitUntil(isThere, milliseconds);
    require(hasCome,
            QStringLiteral("no window \"%1\" has the keys after %2 ms; there are: %3")
                .arg(title, QString::number(milliseconds), seen.join(QStringLiteral(", "))));
    return found;
}

XDesktop::Window Tool::awaitPopup(int milliseconds)
{
    XDesktop::Window found;
    const auto isThere = [&] {
        const QVector<XDesktop::Window> all = windows();
        for (const XDesktop::Window &window : all) {
            if (window.isPopup)
                found = window;
        }
        return found.id != 0;
    };
    await(isThere, milliseconds, QStringLiteral("nothing popped up"));
    return found;
}

void Tool::awaitNoPopup()
{
    const auto isGone = [this] {
        const QVector<XDesktop::Window> all = windows();
        return std::none_of(all.begin(), all.end(), [](const auto &w) { return w.isPopup; });
    };
    await(isGone, windowLimit, QStringLiteral("what popped up stays"));
}

void Tool::awaitKeys(const XDesktop::Window &window)
{
    await([&] { return m_desktop.focusWindow() == window.id; }, windowLimit,
          QStringLiteral("the window \"%1\" doesn't have the keys").arg(window.title));
}

void Tool::awaitGone(const XDesktop::Window &window)
{
    const auto isGone = [&] {
        const QVector<XDesktop::Window> all = windows();
        return std::none_of(all.begin(), all.end(),
                            [&](const auto &w) { return w.id == window.id; })
            && m_desktop.focusWindow() != window.id;
    };
    await(isGone, windowLimit, QStringLiteral("the window \"%1\" stays").arg(window.title));
}

void Tool::closeByKey(const XDesktop::Window &window, const char *key)
{
    awaitKeys(window);
    m_desktop.strike(key);
    awaitGone(window);
}

void Tool::acceptBox(const XDesktop::Window &box)
{
    closeByKey(box, "Return");
}

void Tool::leaveBox(const XDesktop::Window &box)
{
    closeByKey(box, "Escape");
}

void Tool::adoptMainWindow(const QString &title)
{
    m_mainWindow = awaitWindow(title, startLimit).id;
}

XDesktop::Window Tool::mainWindow() const
{
    const QVector<XDesktop::Window> all = windows();
    for (const XDesktop::Window &window : all) {
        if (window.id == m_mainWindow)
            return window;
    }
    throw StepFailure{QStringLiteral("the main window has gone")};
}

// A check looks at a hundred places, which takes a second on a busy machine: the router, which
// lives in this process, must not fall silent meanwhile.
QImage Tool::look(const QRect &place) const
{
    QCoreApplication::processEvents();
    return m_desktop.picture(place.translated(mainWindow().place.topLeft()));
}

QRect Tool::onScreen(const XDesktop::Window &window, const QRect &place) const
{
    return QRect(m_map.scaled(place.x()), m_map.scaled(place.y()), m_map.scaled(place.width()),
                 m_map.scaled(place.height()))
        .translated(window.place.topLeft());
}

QImage Tool::look(const XDesktop::Window &window, const QRect &place) const
{
    return m_desktop.picture(onScreen(window, place));
}

// On X11 a window of its own, on Windows the pointer, which otherwise is a small one.
QImage Tool::draggedPicture(QPoint *place) const
{
    if (!m_isForWindows) {
        const QVector<XDesktop::Window> all = windows();
        for (const XDesktop::Window &window : all) {
            if (!window.isPopup)
                continue;
            *place = window.place.topLeft();
            return m_desktop.picture(window.place);
        }
        return QImage();
    }
    const XDesktop::Pointer pointer = m_desktop.pointerPicture();
    if (pointer.picture.width() < m_map.scaled(smallestDragged))
        return QImage();
    *place = m_desktop.pointer() - pointer.hotSpot;
    return pointer.picture;
}

QImage Tool::picture() const
{
    QRect all;
    const QVector<XDesktop::Window> each = windows();
    for (const XDesktop::Window &window : each)
        all |= window.frame;
    QImage picture = m_desktop.picture(all);
    if (m_isForWindows) {
        QPoint place;
        const QImage dragged = draggedPicture(&place);
        QPainter(&picture).drawImage(place - (all & m_desktop.screen()).topLeft(), dragged);
    }
    return picture;
}

QImage Tool::dialogPicture() const
{
    const QVector<XDesktop::Window> all = windows();
    for (const XDesktop::Window &window : all) {
        if (window.id == m_desktop.focusWindow() && window.id != m_mainWindow)
            return m_desktop.picture(window.frame);
    }
    return QImage();
}

QPoint Tool::middleOf(const QRect &place) const
{
    return mainWindow().place.topLeft() + place.center();
}

void Tool::clickAt(QPoint point, XDesktop::Button button)
{
    glideTo(point);
    m_desktop.press(button);
    runFor(clickHold);
    m_desktop.release(button);
}

void Tool::click(const QRect &place, XDesktop::Button button)
{
    clickAt(middleOf(place), button);
}

void Tool::click(const XDesktop::Window &window, const QRect &place)
{
    clickAt(onScreen(window, place).center(), XDesktop::LeftButton);
}

void Tool::clickAt(const XDesktop::Window &window, QPoint point)
{
    clickAt(window.place.topLeft() + point, XDesktop::LeftButton);
}

void Tool::doubleClickAt(const XDesktop::Window &window, QPoint point)
{
    clickAt(window, point);
    m_desktop.press(XDesktop::LeftButton);
    m_desktop.release(XDesktop::LeftButton);
}

void Tool::glideTo(QPoint target)
{
    const QPoint start = m_desktop.pointer();
    for (int i = 1; i <= glideSteps; ++i) {
        m_desktop.moveTo(start + (target - start) * i / glideSteps);
        runFor(glidePace);
    }
}

void Tool::restMouse()
{
    m_desktop.moveTo(m_desktop.screen().bottomRight());
}

double shareOf(const QImage &image, const QColor &color)
{
    if (image.isNull())
        return 0;
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        count += static_cast<int>(std::count_if(line, line + image.width(), [&](QRgb pixel) {
            return (pixel & RGB_MASK) == (color.rgb() & RGB_MASK);
        }));
    }
    return static_cast<double>(count) / (image.width() * image.height());
}
