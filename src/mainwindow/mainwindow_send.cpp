#include "mainwindow/mainwindow.h"
#include "model/commands.h"
#include "model/sentencebuilders.h"
#include "service/waitsavedlg.h"

void MainWindow::SendAllToRouter()
{
    if (!connected)
        return;
    const QStringList sentences = uploadSentences(model);
    for (const QString &sentence : sentences)
        send(sentence);
}

void MainWindow::sendRule()
{
    send(MakeRuleSentence(model, current_output_port, false));
}

void MainWindow::slotSaveToEeprom()
{
    if (!connected)
        return;
    if (lock_enabled && lock_level == 0) {
        showMessage(tr("Save Rules"),
                    tr("Router TK-7 is LOCKED.\r\nSaving Rules is not posible until you unlock the "
                       "router."),
                    QMessageBox::Critical);
        return;
    }
    const auto answer =
        showMessage(tr("Save Rules"), tr("Are you sure you want save rules in Router?"),
                    QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel);
    // Who presses the button by other means than the mouse could press it while one save goes on.
    if (answer != QMessageBox::Ok || !connected || wait_save_dialog)
        return;
    SendAllToRouter();
    send(Commands::SaveToEeprom);
    wait_save_dialog = new WaitSaveDlg(this);
    wait_save_dialog->setModal(true);
    wait_save_dialog->show();
}

void MainWindow::slotVRSaveToEepromOk()
{
    showSaveResult(tr("Saving rules in the Router is completed"), QMessageBox::Information);
}

void MainWindow::slotVRSaveToEepromError()
{
    showSaveResult(tr("Error saving rules in the Router"), QMessageBox::Critical);
}

// Also when no save was waited for: the router has the last word.
void MainWindow::showSaveResult(const QString &text, QMessageBox::Icon icon)
{
    closeWaitSaveDialog();
    showMessage(tr("TK-7 Router"), text, icon);
}
