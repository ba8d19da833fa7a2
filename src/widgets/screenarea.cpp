#include "widgets/screenarea.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <QWindow>

namespace {

constexpr int freeHeight = 10; // pixels below a window that is as high as the screen lets it be

QRect pretendedArea;

// How far the stretch from first to last must go to lie between lowest and highest, where the first
// end counts more than the last.
int wayInto(int lowest, int highest, int first, int last)
{
    return qMax(lowest - first, qMin(0, highest - last));
}

} // namespace

QRect fittedTo(const QRect &area, const QRect &place, const QMargins &frame)
{
    QRect fitted = place;
    const int below = qMax(freeHeight, frame.bottom());
    fitted.setHeight(qMin(place.height(), area.height() - frame.top() - below));
    fitted.setWidth(qMin(place.width(), area.width()));

    // A window as wide as the screen has its contents on the screen, rather than a line beside
    // them.
    const int side = (area.width() - fitted.width()) / 2;
    const QRect whole = fitted.marginsAdded(
        {qMin(frame.left(), side), frame.top(), qMin(frame.right(), side), frame.bottom()});
    fitted.translate(wayInto(area.left(), area.right(), whole.left(), whole.right()),
                     wayInto(area.top(), area.bottom(), whole.top(), whole.bottom()));
    return fitted;
}

QRect availableArea(const QWidget *window)
{
    if (!pretendedArea.isNull())
        return pretendedArea;
    const QScreen *screen = window->screen();
    return screen ? screen->availableGeometry() : QRect(QPoint(), window->size());
}

QMargins frameOf(const QWidget *window)
{
    const QWindow *handle = window->windowHandle();
    const QMargins frame = handle ? handle->frameMargins() : QMargins();
    if (!frame.isNull())
        return frame;
    return {0, window->style()->pixelMetric(QStyle::PM_TitleBarHeight), 0, 0};
}

QRect fittedToScreen(const QWidget *window, const QRect &place)
{
    return fittedTo(availableArea(window), place, frameOf(window));
}

void pretendAvailableArea(const QRect &area)
{
    pretendedArea = area;
}
