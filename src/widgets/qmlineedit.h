#pragma once

#include <QClipboard>
#include <QLineEdit>

/*!
 * The editor that lies over a port while the user names it.
 *
 * It grabs the mouse, so that a click anywhere ends the edit. Return raises returnPressed and then
 * editingFinished; Escape, Tab, a click outside, the wheel outside and a loss of the focus raise
 * editingFinished alone, and so does Return if the validator refuses the text. Takes blank to 'Z'
 * and 'a' to 'z', without the four characters that would break a sentence: '!', '$', '*' and ','.
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
    void mouseReleaseEvent(QMouseEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    bool pastesAllowed(QClipboard::Mode mode);
    void end();

    bool is_over = false; //!< editingFinished has been raised
};
