#include "widgets/plainbox.h"

QMessageBox::StandardButton showPlainBox(QWidget *parent, QMessageBox::Icon icon,
                                         const QString &title, const QString &text,
                                         QMessageBox::StandardButtons buttons)
{
    QMessageBox box(icon, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    return QMessageBox::StandardButton(box.exec());
}
