#include "service/keptbox.h"

namespace {

QMessageBox::StandardButton run(QMessageBox *box, const QString &title, const QString &text,
                                QMessageBox::Icon icon, QMessageBox::StandardButtons buttons)
{
    // File names and what the router says are no markup.
    box->setTextFormat(Qt::PlainText);
    box->setWindowTitle(title);
    box->setText(text);
    box->setIcon(icon);
    if (buttons != QMessageBox::NoButton)
        box->setStandardButtons(buttons);
    const QPointer<QMessageBox> guard(box);
    const int answer = box->exec();
    return guard ? QMessageBox::StandardButton(answer) : QMessageBox::NoButton;
}

} // namespace

KeptBox::KeptBox(QWidget *parent) : m_parent(parent) { }

KeptBox::~KeptBox()
{
    delete m_box;
}

QMessageBox::StandardButton KeptBox::show(const QString &title, const QString &text,
                                          QMessageBox::Icon icon,
                                          QMessageBox::StandardButtons buttons)
{
    if (!m_box)
        m_box = new QMessageBox(m_parent);
    if (!m_box->isVisible())
        return run(m_box, title, text, icon, buttons);

    const QPointer<QMessageBox> second = new QMessageBox(m_box);
    const auto answer = run(second, title, text, icon, buttons);
    delete second;
    return answer;
}
