#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTimer>

#include <functional>

/*!
 * Calls \a open and runs \a use, a function of a Dialog &, in the event loop of the modal dialog
 * that this opens.
 *
 * Returns whether a Dialog came and was closed by the end of \a use. One that is still open then,
 * or another dialog, is rejected, so that a test never hangs in it.
 */
template <typename Dialog, typename Use> bool inDialog(const std::function<void()> &open, Use use)
{
    bool done = false;
    const auto run = [&done, &use] {
        const QPointer<QDialog> opened = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (auto *dialog = qobject_cast<Dialog *>(opened.data())) {
            use(*dialog);
            done = !dialog->isVisible();
        }
        if (opened && opened->isVisible())
            opened->reject();
    };
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, run);
    timer.start(0);
    open();
    return done;
}

/*! The same for the dialog that a press of \a button opens. */
template <typename Dialog, typename Use> bool inDialog(QAbstractButton *button, Use use)
{
    return inDialog<Dialog>([button] { button->click(); }, use);
}
