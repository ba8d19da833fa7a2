#include "support/boxanswer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPushButton>

namespace {

constexpr int lookInterval = 5; // ms

QString describe(const BoxAnswer::Box &box)
{
    QString text = QStringLiteral("\"%1\": \"%2\", icon %3, buttons %4")
                       .arg(box.title, box.text)
                       .arg(int(box.icon))
                       .arg(int(box.buttons), 0, 16);
    if (box.defaultButton != QMessageBox::NoButton)
        text += QStringLiteral(", default %1").arg(int(box.defaultButton), 0, 16);
    if (box.parent)
        text += QStringLiteral(", parent %1").arg(quintptr(*box.parent), 0, 16);
    return text;
}

// What is to be seen of a box, as far as it is looked at in the expected one.
BoxAnswer::Box seen(const QMessageBox &box, const BoxAnswer::Box &expected)
{
    BoxAnswer::Box found;
    found.title = box.windowTitle();
    found.text = box.text();
    found.icon = box.icon();
    found.buttons = box.standardButtons();
    if (expected.defaultButton != QMessageBox::NoButton)
        found.defaultButton = box.standardButton(box.defaultButton());
    if (expected.parent)
        found.parent = box.parentWidget();
    return found;
}

} // namespace

BoxAnswer::BoxAnswer(QObject *parent) : QObject(parent)
{
    m_timer.setInterval(lookInterval);
    connect(&m_timer, &QTimer::timeout, this, &BoxAnswer::look);
    m_timer.start();
}

BoxAnswer &BoxAnswer::expect(const Box &box)
{
    m_expected += box;
    return *this;
}

QString BoxAnswer::report() const
{
    QStringList lines = m_problems;
    for (int i = m_answered; i < m_expected.size(); ++i)
        lines += QStringLiteral("missing: ") + describe(m_expected.at(i));
    return lines.join(QLatin1Char('\n'));
}

void BoxAnswer::look()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (box && box->isVisible() && box != m_leftOpen)
        answer(box);
}

void BoxAnswer::answer(QMessageBox *box)
{
    if (m_answered == m_expected.size()) {
        m_problems += QStringLiteral("unexpected: ") + describe(seen(*box, Box()));
        box->reject();
        return;
    }
    const Box &expected = m_expected.at(m_answered);
    const QString found = describe(seen(*box, expected));
    const QString wanted = describe(expected);
    if (found != wanted) {
        m_problems += QStringLiteral("wanted: ") + wanted + QStringLiteral("\n   got: ") + found;
        box->reject();
        return;
    }
    ++m_answered;
    if (expected.click == QMessageBox::NoButton) {
        m_leftOpen = box;
        // A box that is kept may come again, with another message.
        connect(box, &QDialog::finished, this, [this] { m_leftOpen.clear(); });
        // Not from here: the timer must go on, for the boxes that come meanwhile.
        if (expected.whileOpen)
            QTimer::singleShot(0, box, [box, use = expected.whileOpen] { use(*box); });
        return;
    }
    box->button(expected.click)->click();
}
