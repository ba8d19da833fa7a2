#pragma once

#include <QMessageBox>

/*!
 * Shows a modal message box as the static functions of QMessageBox do, with Ok for a Return, and
 * returns the button.
 *
 * Its text is a text, whatever is in it: a file's name or what the router says is no markup.
 */
QMessageBox::StandardButton showPlainBox(QWidget *parent, QMessageBox::Icon icon,
                                         const QString &title, const QString &text,
                                         QMessageBox::StandardButtons buttons = QMessageBox::Ok);
