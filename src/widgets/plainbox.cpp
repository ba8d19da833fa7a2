#include "widgets/plainbox.h"

#include <QPushButton>

QMessageBox::StandardButton showPlainBox(QWidget *parent, QMessageBox::Icon icon,
                                         const QString &title, const QString &text,
                                         QMessageBox::StandardButtons buttons)
{
    QMessageBox box(icon, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    const QList<QAbstractButton *> all = box.buttons();
    for (QAbstractButton *button : all) {
        if (box.buttonRole(button) == QMessageBox::AcceptRole)
            box.setDefaultButton(qobject_cast<QPushButton *>(button));
    }
    return QMessageBox::StandardButton(box.exec());
}
