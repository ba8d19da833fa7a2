#include "support/boxanswer.h"

#include <QAbstractButton>
#include <QApplication>

namespace {

constexpr int lookInterval = 5; // ms

QString describe(const QString &title, const QString &text, QMessageBox::Icon icon,
                 QMessageBox::StandardButtons buttons)
{
    return QStringLiteral("\"%1\": \"%2\", icon %3, buttons %4")
        .arg(title, text)
        .arg(int(icon))
        .arg(int(buttons), 0, 16);
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
    for (int i = m_answered; i < m_expected.size(); ++i) {
        const Box &box = m_expected.at(i);
        lines += QStringLiteral("missing: ") + describe(box.title, box.text, box.icon, box.buttons);
    }
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
    const QString found =
        describe(box->windowTitle(), box->text(), box->icon(), box->standardButtons());
    if (m_answered == m_expected.size()) {
        m_problems += QStringLiteral("unexpected: ") + found;
        box->reject();
        return;
    }
    const Box &expected = m_expected.at(m_answered);
    const QString wanted = describe(expected.title, expected.text, expected.icon, expected.buttons);
    if (found != wanted) {
        m_problems += QStringLiteral("wanted: ") + wanted + QStringLiteral("\n   got: ") + found;
        box->reject();
        return;
    }
    ++m_answered;
    if (expected.click == QMessageBox::NoButton) {
        m_leftOpen = box;
        // Not from here: the timer must go on, for the boxes that come meanwhile.
        if (expected.whileOpen)
            QTimer::singleShot(0, box, [box, use = expected.whileOpen] { use(*box); });
        return;
    }
    box->button(expected.click)->click();
}
