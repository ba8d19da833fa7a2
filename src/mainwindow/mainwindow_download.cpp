#include "link/nmeaserialport.h"
#include "mainwindow/mainwindow.h"
#include "model/commands.h"
#include "ui_mainwindow.h"
#include "widgets/uiscale.h"

void MainWindow::slotVRUpdateVRData()
{
    refreshMatrix();
    if (!version_known)
        queueSentence(Commands::Version);
    showMessage(tr("TK-7 Router"), tr("NMEA Router TK-7 connected\n   Download rules complete"),
                QMessageBox::Information);
}

void MainWindow::slotVRVersion(uint msb, uint lsb)
{
    fw_msb = msb;
    fw_lsb = lsb;
    version_known = true;
    if (connected)
        ui->label_firmware_version->setText(tr("fw: v.%1.%2").arg(fw_msb).arg(fw_lsb));
}

void MainWindow::slotVRMode(QString mode)
{
    mode_known = true;
    mode_text = mode;
    showFirmwareMode();
}

// Modes are mostly shorter than the eight characters that they may have, and so is the label.
void MainWindow::showFirmwareMode()
{
    QLabel *label = ui->label_firmware_mode;
    label->setFont(QFont());
    label->setText(tr("mode: %1").arg(mode_text));
    fitText(label);
}

void MainWindow::slotVRErrorsCode(uint vr_error_code, uint vr_error_fault)
{
    constexpr int codeDigits = 4;
    errors_known = true;
    error_code = vr_error_code;
    error_fault = vr_error_fault;
    ui->label_vr48_errors->setText(tr("s:%1").arg(error_code, codeDigits, 16, QLatin1Char('0')));
}

void MainWindow::slotUsedFlashBank(uint uFlash)
{
    if (uFlash == 0)
        ui->label_vr48_flash_page->setText(QStringLiteral("<"));
    else if (uFlash == 1)
        ui->label_vr48_flash_page->setText(QStringLiteral(">"));
}

void MainWindow::askDisconnect()
{
    const auto answer = showMessage(
        tr("TK-7 Router"),
        tr("Are you sure want disconnected from the TK-7 Router? If you will disconnect, router "
           "load all rules from the internal memory."),
        QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel);
    if (answer == QMessageBox::Ok)
        send(Commands::Disconnect);
}

void MainWindow::slotVRSendDisconnect()
{
    closeWaitSaveDialog();
    resetConnectionView();
    leaveConnection();
    crs_errors = 0;
    UpdateCrsErrorsLabel();
}
