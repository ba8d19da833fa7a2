#include "link/nmeaserialport.h"
#include "mainwindow/connectprogress.h"
#include "mainwindow/mainwindow.h"
#include "mainwindow/statuswidget.h"
#include "model/commands.h"
#include "service/enterpassworddlg.h"
#include "service/waitsavedlg.h"
#include "ui_mainwindow.h"

#include <QListWidget>
#include <QTimer>

namespace {

constexpr quint8 nothingUnderView = 255;

} // namespace

void MainWindow::slotConnectPort()
{
    if (connected) {
        askDisconnect();
        return;
    }
    if (link) // in its search, or under the box that tells its end
        return;
    link = new NmeaSerialPort;
    disable(ui->pushButton_connect);
    wireLink();
    progress_dialog = new ConnectProgress(this);
    progress_dialog->show();
    connect(link, &NmeaSerialPort::signalVRConnectionProgress, this, &MainWindow::slotProgress);
    link->openPort(ui->comboBox_connect_port->currentText());
}

void MainWindow::wireLink()
{
    using Link = NmeaSerialPort;
    connect(link, &Link::signalErrorOpenPort, this, &MainWindow::slotErrorOpenPort);
    connect(link, &Link::signalVRTimeOutConnect, this, &MainWindow::slotTimeOutConnectPort);
    connect(link, &Link::signalVRBusy, this, &MainWindow::slotConnectBusy);
    connect(link, &Link::signalVRConnect, this, &MainWindow::slotConnectEstablish);
    connect(link, &Link::signalVRNewRule, this, &MainWindow::slotVRNewRule);
    connect(link, &Link::signalVRNewFilterMask, this, &MainWindow::slotVRNewFilterMask);
    connect(link, &Link::signalVRNewHdr, this, &MainWindow::slotVRNewHdr);
    connect(link, &Link::signalVRNewFilterStr, this, &MainWindow::slotVRNewFilterStr);
    connect(link, &Link::signalVRNewPortName, this, &MainWindow::slotVRNewPortName);
    connect(link, &Link::signalVRNewPortSpeed, this, &MainWindow::slotVRNewPortSpeed);
    connect(link, &Link::signalVRUpdateVRData, this, &MainWindow::slotVRUpdateVRData);
    connect(link, &Link::signalVRPortView, this, &MainWindow::slotVRPortView);
    connect(link, &Link::signalVRSaveEepromOk, this, &MainWindow::slotVRSaveToEepromOk);
    connect(link, &Link::signalVRSaveEepromError, this, &MainWindow::slotVRSaveToEepromError);
    connect(link, &Link::signalNMEA_receive, this, &MainWindow::slotNMEAReceive);
    connect(link, &Link::signalVRSendDisconnect, this, &MainWindow::slotVRSendDisconnect);
    connect(link, &Link::signalVRVersion, this, &MainWindow::slotVRVersion);
    connect(link, &Link::signalVRErrorsCode, this, &MainWindow::slotVRErrorsCode);
    connect(link, &Link::signalVRMode, this, &MainWindow::slotVRMode);
    connect(link, &Link::signalVRLockStatus, this, &MainWindow::slotVRLockStatus);
    connect(link, &Link::signalCommandCRSError, this, &MainWindow::slotCRSError);
    connect(link, &Link::signalVRUsedFlashBank, this, &MainWindow::slotUsedFlashBank);

    string_timer->start();
    lock_enabled = false;
    lock_level = 0;
    status_widget->setLockLabel(false, false);
}

void MainWindow::slotProgress(int progress)
{
    if (progress_dialog)
        progress_dialog->showProgress(progress);
}

void MainWindow::closeProgressDialog()
{
    if (link)
        disconnect(link, &NmeaSerialPort::signalVRConnectionProgress, this,
                   &MainWindow::slotProgress);
    if (!progress_dialog)
        return;
    progress_dialog->finish();
    progress_dialog->deleteLater();
    progress_dialog = nullptr;
}

void MainWindow::slotConnectEstablish(quint8 port)
{
    closeProgressDialog();
    ui->pushButton_connect->setText(tr("Disconnect"));
    ui->pushButton_connect->setEnabled(true);
    view_code = nothingUnderView;
    connected = true;
    disable(ui->comboBox_connect_port);
    disable(ui->pushButton_rescan_ports);
    if (!focusWidget())
        ui->pushButton_connect->setFocus(Qt::OtherFocusReason);
    ui->pushButton_SaveEEPROM->setEnabled(true);

    ui->label_3->setText(tr("TK-7 Router:"));
    ui->label_vr48_status->setText(tr("Connected"));
    ui->label_vr48_port->setText(tr("Port:%1").arg(port));
    if (version_known)
        ui->label_firmware_version->setText(tr("fw: v.%1.%2").arg(fw_msb).arg(fw_lsb));
    if (mode_known)
        showFirmwareMode();

    send(Commands::Download);
    crs_errors = 0;
    UpdateCrsErrorsLabel();
}

void MainWindow::resetConnectionView()
{
    slotCancelFirmwareUpdate();
    if (link)
        disconnect(link, nullptr, this, nullptr);
    ui->pushButton_connect->setText(tr("Connect"));

    string_timer->stop();
    pending_lines.clear();
    status_widget->listWidget->clear();
    view_code = nothingUnderView;
    SetViewColors(view_code);

    status_widget->label_receive_port->setText(QString());
    for (QLabel *label :
         {ui->label_3, ui->label_vr48_status, ui->label_vr48_port, ui->label_firmware_mode,
          ui->label_vr48_flash_page, ui->label_vr48_errors, ui->label_firmware_version}) {
        label->setText(QString());
    }
    version_known = false;
    lock_enabled = false;
    lock_level = 0;
    status_widget->setLockLabel(false, false);
}

// What every end of a connection has in common, once its box has been read.
void MainWindow::leaveConnection()
{
    connected = false;
    errors_known = false;
    mode_known = false;
    releaseLink();
    ui->comboBox_connect_port->setEnabled(true);
    ui->pushButton_rescan_ports->setEnabled(true);
    disable(ui->pushButton_SaveEEPROM);
    if (!focusWidget())
        ui->pushButton_connect->setFocus(Qt::OtherFocusReason);
}

void MainWindow::enableConnect()
{
    ui->pushButton_connect->setEnabled(ui->comboBox_connect_port->count() != 0);
}

void MainWindow::releaseLink()
{
    if (!link)
        return;
    link->closePort();
    // It may be in the midst of raising the signal that led here.
    link->deleteLater();
    link = nullptr;
}

void MainWindow::closeWaitSaveDialog()
{
    if (!wait_save_dialog)
        return;
    delete wait_save_dialog; // it doesn't close for anybody else
    wait_save_dialog = nullptr;
}

void MainWindow::slotErrorOpenPort()
{
    link->closePort();
    disconnect(link, &NmeaSerialPort::signalVRConnectionProgress, this, &MainWindow::slotProgress);
    showMessage(tr("COM Port"), tr("Error open COM port"), QMessageBox::Warning);
    closeProgressDialog();
    resetConnectionView();
    enableConnect();
    leaveConnection();
}

void MainWindow::slotConnectBusy()
{
    closeProgressDialog();
    // A router can also be taken over in the midst of a save.
    closeWaitSaveDialog();
    resetConnectionView();
    showMessage(tr("COM Port"), tr("TK-7 Router Busy another Control programm"),
                QMessageBox::Warning);
    enableConnect();
    leaveConnection();
    crs_errors = 0;
    UpdateCrsErrorsLabel();
}

void MainWindow::slotTimeOutConnectPort()
{
    closeProgressDialog();
    closeWaitSaveDialog();
    closeServiceDialog();
    closeAisTestDialog();
    resetConnectionView();
    enableConnect();
    delete message_box;
    delete password_dialog;
    showMessage(tr("COM Port"), tr("Connection timeout"), QMessageBox::Warning);
    leaveConnection();
    crs_errors = 0;
    UpdateCrsErrorsLabel();
}
