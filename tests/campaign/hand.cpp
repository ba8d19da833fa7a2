#include "hand.h"

#include <QApplication>
#include <QCheckBox>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <QWindow>

void Hand::later(const std::function<void()> &act)
{
    QTimer::singleShot(0, this, act);
}

void Hand::mouse(QEvent::Type type, QWidget *widget, QPoint place, Qt::MouseButton button,
                 int pause)
{
    QWidget *top = widget->window();
    if (!widget->isVisible())
        return;
    const QPointer<QWindow> window = top->windowHandle();
    const QPoint local = widget->mapTo(top, place);
    if (type == QEvent::MouseButtonPress)
        m_time += pause;
    later([this, window, local, type, button, time = ++m_time] {
        if (!window)
            return;
        if (type != QEvent::MouseMove)
            m_pressed.setFlag(button, type == QEvent::MouseButtonPress);
        qt_handleMouseEvent(window, local, window->mapToGlobal(local), m_pressed,
                            type == QEvent::MouseMove ? Qt::NoButton : button, type, Qt::NoModifier,
                            time);
    });
}

void Hand::click(QWidget *widget, Qt::MouseButton button)
{
    // A box to be checked is sensitive only as far as its text reaches.
    constexpr int markPlace = 7;
    QPoint place = widget->rect().center();
    if (qobject_cast<QCheckBox *>(widget) || qobject_cast<QRadioButton *>(widget))
        place.setX(markPlace);
    click(widget, place, button);
}

void Hand::click(QWidget *widget, QPoint place, Qt::MouseButton button)
{
    mouse(QEvent::MouseMove, widget, place, Qt::NoButton);
    mouse(QEvent::MouseButtonPress, widget, place, button);
    mouse(QEvent::MouseButtonRelease, widget, place, button);
}

void Hand::doubleClick(QWidget *widget, QPoint place)
{
    click(widget, place);
    mouse(QEvent::MouseButtonPress, widget, place, Qt::LeftButton, 1);
    mouse(QEvent::MouseButtonRelease, widget, place, Qt::LeftButton);
}

void Hand::lift(QWidget *widget)
{
    const QPoint middle = widget->rect().center();
    const QPoint away(QApplication::startDragDistance() + 1, 0);
    mouse(QEvent::MouseMove, widget, middle, Qt::NoButton);
    mouse(QEvent::MouseButtonPress, widget, middle, Qt::LeftButton);
    mouse(QEvent::MouseMove, widget, middle + away, Qt::NoButton);
}

void Hand::carry(QWidget *widget)
{
    mouse(QEvent::MouseMove, widget, widget->rect().center(), Qt::NoButton);
}

void Hand::letGo(QWidget *widget)
{
    mouse(QEvent::MouseButtonRelease, widget, widget->rect().center(), Qt::LeftButton);
}

QWindow *Hand::keyWindow()
{
    for (QWidget *widget : {QApplication::activePopupWidget(), QApplication::activeModalWidget(),
                            QApplication::activeWindow()}) {
        if (widget)
            return widget->window()->windowHandle();
    }
    return QGuiApplication::focusWindow();
}

void Hand::key(int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        later([key, modifiers, text, type] {
            if (QWindow *window = keyWindow())
                qt_handleKeyEvent(window, type, key, modifiers, text);
        });
    }
}

void Hand::strike(int code, const QString &text)
{
    key(code, Qt::NoModifier, text);
}

void Hand::type(const QString &text)
{
    for (const QChar letter : text)
        key(letter.isLetterOrNumber() ? letter.toUpper().unicode() : 0, Qt::NoModifier, letter);
}

void Hand::selectAll()
{
    key(Qt::Key_A, Qt::ControlModifier, QString());
}
