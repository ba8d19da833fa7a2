#include "mainwindow/mainwindow.h"
#include "model/rulefile.h"
#include "widgets/plainbox.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>

#include <filesystem>

namespace {

const QString ruleFileSuffix = QStringLiteral("vrr");

bool isPipe(const QString &fileName)
{
    std::error_code ignored;
    return std::filesystem::is_fifo(QFile::encodeName(fileName).constData(), ignored);
}

} // namespace

// The boxes here are not message_box: a file that went wrong is news with or without the link, so
// its end leaves them open.

void MainWindow::slotSaveToFile()
{
    const QString fileName =
        QFileDialog::getSaveFileName(nullptr, tr("Save rules"), QString(), tr("TK-7 data (*.vrr)"));
    if (fileName.isEmpty())
        return;
    // A pipe would keep the tool waiting for its reader.
    QFile file(fileName);
    if (isPipe(fileName) || !file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        showPlainBox(this, QMessageBox::Warning, tr("Save Rules"),
                     tr("Error open file %1").arg(fileName));
        return;
    }
    // Deliberately without a word, and the file stays, empty.
    if (QFileInfo(fileName).suffix() != ruleFileSuffix)
        return;

    const bool isWritten = RuleFile::write(file, model);
    // The file's buffer takes it all: a full disk shows no sooner than here.
    file.close();
    if (!isWritten || file.error() != QFileDevice::NoError)
        showSaveFileError(file, fileName);
}

void MainWindow::showSaveFileError(QFile &file, const QString &fileName)
{
    file.close();
    file.remove();
    showPlainBox(this, QMessageBox::Warning, tr("Save Rules"),
                 tr("Error save rules to %1").arg(fileName));
}

void MainWindow::slotLoadFromFile()
{
    const QString fileName = QFileDialog::getOpenFileName(nullptr, tr("Load rules"), QString(),
                                                          tr("TK-7 data (*.vrr) ;; *.*"));
    if (fileName.isEmpty())
        return;
    // A pipe or a terminal would keep the tool waiting.
    QFile file(fileName);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        showPlainBox(this, QMessageBox::Warning, tr("Load Rules"),
                     tr("Error open file %1").arg(fileName));
        return;
    }
    const auto setSpeed = [this](quint8 port, quint32 speed) { slotVRNewPortSpeed(port, speed); };
    if (!RuleFile::read(file, model, setSpeed)) {
        showLoadFileError(file, fileName);
        return;
    }
    file.close();

    SendAllToRouter();
    refreshMatrix();
    showPlainBox(this, QMessageBox::Information, tr("TK-7 Router"), tr("Load rules complete"));
}

// What was read until the error stands in the model; deliberately, only the speeds show it.
void MainWindow::showLoadFileError(QFile &file, const QString &fileName)
{
    file.close();
    showPlainBox(this, QMessageBox::Warning, tr("Load Rules"),
                 tr("Error load rules from %1").arg(fileName));
}
