#include "support/filedialoganswer.h"

#include <QApplication>
#include <QLineEdit>
#include <QSettings>

namespace {

constexpr int lookInterval = 5; // ms

QString describe(const QString &caption, const QStringList &filters, QFileDialog::AcceptMode mode)
{
    return QStringLiteral("\"%1\", filters \"%2\", mode %3")
        .arg(caption, filters.join(QStringLiteral("\", \"")))
        .arg(int(mode));
}

} // namespace

FileDialogAnswer::FileDialogAnswer(QObject *parent) : QObject(parent)
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
    m_timer.setInterval(lookInterval);
    connect(&m_timer, &QTimer::timeout, this, &FileDialogAnswer::look);
    m_timer.start();
}

FileDialogAnswer::~FileDialogAnswer()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, false);
}

FileDialogAnswer &FileDialogAnswer::expect(const Dialog &dialog)
{
    m_expected += dialog;
    return *this;
}

QString FileDialogAnswer::report() const
{
    QStringList lines = m_problems;
    for (int i = m_answered; i < m_expected.size(); ++i) {
        const Dialog &dialog = m_expected.at(i);
        lines +=
            QStringLiteral("missing: ") + describe(dialog.caption, dialog.filters, dialog.mode);
    }
    return lines.join(QLatin1Char('\n'));
}

void FileDialogAnswer::look()
{
    auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
    if (!dialog || !dialog->isVisible() || dialog == m_seen)
        return;
    m_seen = dialog;
    answer(dialog);
}

void FileDialogAnswer::answer(QFileDialog *dialog)
{
    const QString found =
        describe(dialog->windowTitle(), dialog->nameFilters(), dialog->acceptMode());
    if (m_answered == m_expected.size()) {
        m_problems += QStringLiteral("unexpected: ") + found;
        dialog->reject();
        return;
    }
    const Dialog expected = m_expected.at(m_answered);
    const QString wanted = describe(expected.caption, expected.filters, expected.mode);
    if (found != wanted || dialog->parent()) {
        m_problems +=
            QStringLiteral("wanted: ") + wanted + QStringLiteral(", no parent\n   got: ") + found;
        dialog->reject();
        return;
    }
    ++m_answered;
    if (expected.whileOpen)
        expected.whileOpen();
    if (expected.onFinished)
        connect(dialog, &QDialog::finished, this, expected.onFinished);
    if (expected.fileName.isEmpty()) {
        dialog->reject();
        return;
    }
    dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(expected.fileName);
    static_cast<QDialog *>(dialog)->accept();
}
