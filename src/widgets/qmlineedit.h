#pragma once

#include <QLineEdit>

/*!
 * The editor that lies over a port while the user names it.
 *
 * It grabs the mouse, so that a click anywhere ends the edit. Return raises returnPressed and then
 * editingFinished; Escape and a click outside raise editingFinished alone. Takes blank to 'Z' and
 * 'a' to 'z', without the four characters that would break a sentence: '!', '$', '*' and ','.
 */
class QMLineEdit : public QLineEdit
{
    Q_OBJECT

public:
    /*! Grabs the mouse. The parent is set later. */
    QMLineEdit();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    void dropForbidden(const QString &edited);
};
