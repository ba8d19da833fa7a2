#include "aisdialogs/aistestdlg.h"
#include "link/nmeaserialport.h"
#include "mainwindow/mainwindow.h"
#include "mainwindow/statuswidget.h"
#include "model/commands.h"
#include "model/servicesentences.h"
#include "platform/keyboard.h"
#include "service/enterpassworddlg.h"
#include "service/servicedlg.h"

// The dialogs here run event loops, in which the link can end and take them along. Their senders
// don't ask whether the connection stands: the link drops what it can't send.

// Without the key the click does nothing, and deliberately without a word.
void MainWindow::slotServiceClicked()
{
    if (!platform::isLeftControlDown() || !connected || service_dialog)
        return;
    if (!version_known) {
        showMessage(tr("Service"), tr("Unknown Router firmware version."), QMessageBox::Warning);
        return;
    }
    if (!supports(routerVersion(), RouterFunction::Service)) {
        showMessage(tr("Service"),
                    tr("Service functions support Router firmware version 3.0 or higher."),
                    QMessageBox::Warning);
        return;
    }
    if (!link)
        return;
    service_dialog = new servicedlg(this);
    service_dialog->setFirmwareBuffer(&firmware_buffer);
    service_dialog->setVersion(fw_msb, fw_lsb);
    service_dialog->setLockStatus(lock_enabled, lock_level, true);
    wireServiceDialog();
    queueSentence(Commands::ChipIdentifier);
    service_dialog->slotUpdateTimer();

    const int result = service_dialog->exec();
    closeServiceDialog();
    if (result == servicedlg::AisTestResult)
        runAisTest();
}

RouterVersion MainWindow::routerVersion() const
{
    return {version_known, fw_msb, fw_lsb};
}

void MainWindow::wireServiceDialog()
{
    using Link = NmeaSerialPort;
    servicedlg *dialog = service_dialog;
    connect(dialog, &servicedlg::startFirmwareUpdate, this, &MainWindow::slotStartFirmwareUpdate);
    connect(dialog, &servicedlg::signalRequestStatusErrors, this,
            &MainWindow::slotRequestStatusErrors);
    connect(dialog, &servicedlg::signalClearStatusErrors, this, &MainWindow::slotClearStatusErrors);
    connect(link, &Link::signalVRStatusErrors, dialog, &servicedlg::slotStatusErrors);
    connect(link, &Link::signalVRSerial, dialog, &servicedlg::slotVRSerial);
    connect(dialog, &servicedlg::signalSendLockPassword, this, &MainWindow::slotSendLockPassword);
    connect(dialog, &servicedlg::signalSendUnlockPassword, this,
            &MainWindow::slotSendUnlockPassword);
    // Queued: their boxes come when the sentence has been dealt with, and not in its midst.
    connect(link, &Link::signalVRSetPasswordAnswer, dialog, &servicedlg::slotVRSetPasswordAnswer,
            Qt::QueuedConnection);
    connect(dialog, &servicedlg::signalSendRemovePassword, this,
            &MainWindow::slotSendRemovePassword);
    connect(dialog, &servicedlg::signalSendViewPassword, this, &MainWindow::slotVRViewPassword);
    connect(link, &Link::signalVRSendPassword, dialog, &servicedlg::slotVRLookPassword,
            Qt::QueuedConnection);
    connect(dialog, &servicedlg::signalSendMode, this, &MainWindow::slotSendMode);
}

void MainWindow::closeServiceDialog()
{
    if (!service_dialog)
        return;
    disconnect(service_dialog, nullptr, this, nullptr);
    if (link)
        disconnect(link, nullptr, service_dialog, nullptr);
    delete service_dialog;
}

void MainWindow::runAisTest()
{
    queueSentence(Commands::AisTestOn);
    if (!ais_test_dialog)
        ais_test_dialog = new aistestdlg(this);
    if (link) {
        connect(link, &NmeaSerialPort::signalVRAISMessage, ais_test_dialog,
                &aistestdlg::slotAISMessage);
        connect(link, &NmeaSerialPort::signalVRAISPosition, ais_test_dialog,
                &aistestdlg::slotAISPosition);
    }
    ais_test_dialog->exec();
    // The end of the link takes the dialog along, and there is nobody then to be told.
    if (!ais_test_dialog)
        return;
    disconnectAisTestDialog();
    queueSentence(Commands::AisTestOff);
    delete ais_test_dialog;
}

void MainWindow::disconnectAisTestDialog()
{
    if (link)
        disconnect(link, nullptr, ais_test_dialog, nullptr);
}

void MainWindow::closeAisTestDialog()
{
    if (!ais_test_dialog)
        return;
    disconnectAisTestDialog();
    ais_test_dialog->close();
    delete ais_test_dialog;
}

void MainWindow::queueSentence(const QString &sentence)
{
    if (link)
        link->sendSentence(sentence);
}

void MainWindow::slotRequestStatusErrors(uint port)
{
    if (connected)
        queueSentence(MakeStatusSentence(port));
}

void MainWindow::slotClearStatusErrors()
{
    queueSentence(Commands::ClearStatistics);
}

void MainWindow::slotSendMode(QString mode)
{
    queueSentence(MakeModeSentence(mode));
}

// Lock

void MainWindow::slotSendLockPassword(QString password)
{
    queueSentence(MakeSetPasswordSentence(password));
}

void MainWindow::slotSendUnlockPassword(QString password)
{
    queueSentence(MakeUnlockSentence(password));
}

void MainWindow::slotSendRemovePassword()
{
    queueSentence(Commands::RemovePassword);
}

void MainWindow::slotVRViewPassword()
{
    queueSentence(Commands::ViewPassword);
}

void MainWindow::slotVRLockStatus(bool password, quint8 level)
{
    const bool wasEnabled = lock_enabled;
    const quint8 oldLevel = lock_level;
    lock_enabled = password;
    status_widget->setLockLabel(lock_enabled, level == 0);
    lock_level = level;
    if (service_dialog) {
        service_dialog->setLockStatus(password, level, false);
        return;
    }
    // A refused password shows in no other way: locked, and locked again.
    if (wasEnabled && lock_enabled && oldLevel == 0 && level == 0)
        showMessage(tr("Unlock TK-7"), tr("Wrong Unlock Password"), QMessageBox::Warning);
}

void MainWindow::slotLockClicked()
{
    if (!connected || !lock_enabled)
        return;
    if (lock_level != 0) {
        queueSentence(Commands::Lock);
        return;
    }
    const QPointer<EnterPasswordDlg> dialog = new EnterPasswordDlg(this);
    password_dialog = dialog;
    const bool isAccepted = dialog->exec() == QDialog::Accepted && dialog;
    const QString password = isAccepted ? dialog->password() : QString();
    delete dialog;
    if (isAccepted)
        slotSendUnlockPassword(password);
}
