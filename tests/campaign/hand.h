#pragma once

#include <QEvent>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QWidget>

#include <functional>

QT_BEGIN_NAMESPACE
class QWindow;
QT_END_NAMESPACE

/*!
 * The user's hand at mouse and keyboard.
 *
 * What it does enters the program where the window system's events enter it, so that grabs, popups
 * and modal dialogs have their say. Nothing happens in the calls themselves: the event loop, of
 * whatever dialog, delivers one event after the other.
 */
class Hand : public QObject
{
    Q_OBJECT

public:
    explicit Hand(QObject *parent = nullptr) : QObject(parent) { }

    /*! A click in the middle of \a widget, or on the mark of a box to be checked. */
    void click(QWidget *widget, Qt::MouseButton button = Qt::LeftButton);
    /*! A click at \a place of \a widget. */
    void click(QWidget *widget, QPoint place, Qt::MouseButton button = Qt::LeftButton);

    /*! Two clicks in quick succession. */
    void doubleClick(QWidget *widget, QPoint place);

    /*! Takes what lies in the middle of \a widget and lifts it. */
    void lift(QWidget *widget);
    /*! Carries what was lifted over the middle of \a widget, of the same window. */
    void carry(QWidget *widget);
    /*! Lets go in the middle of \a widget, of the same window. */
    void letGo(QWidget *widget);

    /*! A key for the widget in focus. */
    void strike(int key, const QString &text = QString());
    void type(const QString &text);
    /*! Selects what stands in the field in focus, so that typing replaces it. */
    void selectAll();

private:
    /*! Milliseconds of the mouse's own clock, so that two clicks are no double click. */
    static constexpr int clickPause = 1000;

    void mouse(QEvent::Type type, QWidget *widget, QPoint place, Qt::MouseButton button,
               int pause = clickPause);
    void key(int key, Qt::KeyboardModifiers modifiers, const QString &text);
    void later(const std::function<void()> &act);
    static QWindow *keyWindow();

    Qt::MouseButtons m_pressed;
    int m_time = 0;
};
