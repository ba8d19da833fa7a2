#pragma once

#include <QString>
#include <QStringView>

class QMimeData;

/*! What Qt 5 and Qt 6 call by different names; nothing else in the tool asks for the version. Events are
 *  template arguments, so that rooms without a window need no more than Qt Core. */
namespace platform {

/*! A part of a string that must outlive it, to be cut further and read as a number in any base. The
 *  view of Qt 5 can't do the latter. */
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
using TextPart = QStringRef;
#else
using TextPart = QStringView;
#endif

/*! The part of \a text from \a start, at least 0, on; empty behind its end. */
inline TextPart partFrom(const QString &text, qsizetype start)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return text.midRef(int(start));
#else
    return TextPart(text).mid(start);
#endif
}

/*! Where the mouse is in the widget that hears \a event, a QMouseEvent. */
template <class MouseEvent> auto positionOf(const MouseEvent *event)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return event->localPos().toPoint();
#else
    return event->position().toPoint();
#endif
}

/*! The same drop as \a event, a QDropEvent, of other \a data, which must outlive it. */
template <class DropEvent> DropEvent dropOf(const QMimeData *data, const DropEvent *event)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return DropEvent(event->posF(), event->possibleActions(), data, event->mouseButtons(),
                     event->keyboardModifiers());
#else
    return DropEvent(event->position(), event->possibleActions(), data, event->buttons(),
                     event->modifiers());
#endif
}

} // namespace platform
