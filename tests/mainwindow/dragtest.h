#pragma once

#include <QApplication>
#include <QDrag>
#include <QObject>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <QWindow>

/*!
 * A test that drags with the mouse of the platform, from the press to the drop.
 *
 * Unlike the offscreen platform the minimal one plays a drag, with the events of its own mouse.
 */
class DragTest : public QObject
{
public:
    static void initMain()
    {
        qputenv("QT_QPA_PLATFORM", "minimal");
        qputenv("QT_FONT_DPI", "96");
    }

protected:
    struct Outcome
    {
        bool started = false;
        bool accepted = false; // on entering the target
    };

    static QPoint middle(const QWidget *widget)
    {
        return widget->mapTo(widget->window(), widget->rect().center());
    }

    /*! Begins a drag of what lies at \a from; runs \a during in it, which must end it. */
    template <typename During> static void beginDrag(QWidget *window, QPoint from, During during)
    {
        QWindow *screen = window->windowHandle();
        QTest::mousePress(screen, Qt::LeftButton, Qt::NoModifier, from);
        QTimer::singleShot(0, window, during);
        // The drag, if there is one, begins and ends within this move.
        QTest::mouseMove(screen, from + QPoint(QApplication::startDragDistance() + 1, 0));
    }

    /*! Drags what lies at one place of the window to another, or with Escape to nowhere. */
    static Outcome drag(QWidget *window, QPoint from, QPoint to, bool escape = false)
    {
        Outcome outcome;
        QWindow *screen = window->windowHandle();
        beginDrag(window, from, [&] {
            const auto *begun = window->findChild<QDrag *>();
            outcome.started = begun != nullptr;
            if (!begun)
                return;
            QTest::mouseMove(screen, to);
            outcome.accepted = begun->target() != nullptr;
            if (escape)
                QTest::keyClick(screen, Qt::Key_Escape);
            QTest::mouseRelease(screen, Qt::LeftButton, Qt::NoModifier, to);
        });
        QCoreApplication::processEvents();
        if (!outcome.started)
            QTest::mouseRelease(screen, Qt::LeftButton, Qt::NoModifier, from);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return outcome;
    }

    static Outcome drag(QWidget *from, QWidget *to)
    {
        return drag(from->window(), middle(from), middle(to));
    }
};
