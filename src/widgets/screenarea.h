#pragma once

#include <QMargins>
#include <QRect>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

/*!
 * Where windows may lie. The sizes of the design hold on a screen that has room for them. On a
 * smaller one a window is first moved, so that its frame lies in the available area, and then cut.
 */

/*!
 * \a place, the inner rectangle of a window, moved and cut so that the window with its \a frame
 * lies in \a area. A window that is cut in height leaves ten pixels free.
 */
QRect fittedTo(const QRect &area, const QRect &place, const QMargins &frame);

/*! The available area of the screen that \a window is on, or would open on. */
QRect availableArea(const QWidget *window);

/*! What the system draws round \a window; above a window that was never shown a title bar. */
QMargins frameOf(const QWidget *window);

/*! fittedTo() the screen of \a window. */
QRect fittedToScreen(const QWidget *window, const QRect &place);

/*! Lets \a area stand for that of every screen: for tests. The null rectangle ends it. */
void pretendAvailableArea(const QRect &area);
