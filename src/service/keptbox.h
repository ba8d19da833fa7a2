#pragma once

#include <QMessageBox>
#include <QPointer>

/*!
 * One message box for all the messages of a dialog: made when first needed, and kept. It keeps its
 * buttons, too, until others are asked for: a message behind a question has the question's.
 *
 * The box, and this object with its dialog, may be deleted while a message is open; show() then
 * returns NoButton, and its caller must look whether it still exists before it goes on.
 */
class KeptBox
{
public:
    /*! \a parent, if any, owns the box as well. */
    explicit KeptBox(QWidget *parent = nullptr);
    ~KeptBox();

    /*!
     * Shows a message and waits for the button. A message that comes while another is open gets a
     * box of its own, so that the answer to a question is the answer to that question.
     */
    QMessageBox::StandardButton show(const QString &title, const QString &text,
                                     QMessageBox::Icon icon,
                                     QMessageBox::StandardButtons buttons = QMessageBox::NoButton);

private:
    Q_DISABLE_COPY(KeptBox)

    QWidget *m_parent;
    QPointer<QMessageBox> m_box;
};
