#include "link/nmeaserialport.h"
#include "mainwindow/mainwindow.h"
#include "model/commands.h"
#include "model/servicesentences.h"

#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

// The update goes on by the router's answers alone: each packet waits for the number of the one
// before it, nothing is ever sent twice, and whatever goes wrong ends the update. The progress
// dialog is the sign that one is under way.

namespace {

constexpr int progressMaximum = 100;
constexpr int progressFontSize = 9;
constexpr QRgb progressColor = 0xffffc701;
constexpr QRgb progressButtonColor = 0xffd6d6d6;

// The tool's own codes, beside those that the router reports.
constexpr int wrongPacketNumber = -1;
constexpr int noImage = -2;

} // namespace

void MainWindow::slotStartFirmwareUpdate()
{
    if (!connected || firmware_buffer.isEmpty())
        return;
    queueSentence(Commands::FirmwareStart);
    firmware_timer->start();
    if (!firmware_progress)
        makeFirmwareProgress();
}

void MainWindow::makeFirmwareProgress()
{
    firmware_progress = new QProgressDialog(
        tr("Firmware update...     "), tr("Cancel"), 0, progressMaximum, this,
        Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::CustomizeWindowHint);
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(progressColor));
    palette.setColor(QPalette::Button, QColor(progressButtonColor));
    firmware_progress->setPalette(palette);
    firmware_progress->setAutoFillBackground(true);
    firmware_progress->setWindowModality(Qt::WindowModal);
    // It stays until the router has taken the whole image, which is after its last packet.
    firmware_progress->setAutoReset(false);
    firmware_progress->setValue(0);
    // Shown by its own timer, so that the service dialog is gone by then.
    firmware_progress->setMinimumDuration(0);
    QFont font = firmware_progress->font();
    font.setPointSize(progressFontSize);
    firmware_progress->setFont(font);
    // A Return from the question before, pressed once too often, cancels nothing.
    firmware_progress->findChild<QPushButton *>()->setAutoDefault(false);
    firmware_progress->setFocus();
    wireFirmwareUpdate();
}

void MainWindow::wireFirmwareUpdate()
{
    using Link = NmeaSerialPort;
    connect(firmware_progress, &QProgressDialog::canceled, this,
            &MainWindow::slotCancelFirmwareUpdate);
    connect(link, &Link::signalVRFwPacket, this, &MainWindow::slotFirmwarePacket);
    connect(link, &Link::signalVRFwError, this, &MainWindow::slotFirmwareError);
    connect(firmware_timer, &QTimer::timeout, this, &MainWindow::slotFirmwareTimeout);
    connect(link, &Link::signalVRReadyFirmwareUpdate, this, &MainWindow::slotReadyFirmwareUpdate);
    connect(link, &Link::signalVRFwOk, this, &MainWindow::slotFirmwareOk);
}

void MainWindow::slotCancelFirmwareUpdate()
{
    using Link = NmeaSerialPort;
    if (firmware_progress) {
        disconnect(firmware_progress, nullptr, this, nullptr);
        disconnect(firmware_timer, nullptr, this, nullptr);
        if (link) {
            disconnect(link, &Link::signalVRFwPacket, this, nullptr);
            disconnect(link, &Link::signalVRFwError, this, nullptr);
            disconnect(link, &Link::signalVRReadyFirmwareUpdate, this, nullptr);
            disconnect(link, &Link::signalVRFwOk, this, nullptr);
        }
        firmware_progress->close();
        // It may be its own button that has led here.
        firmware_progress->deleteLater();
        firmware_progress = nullptr;
    }
    firmware_buffer.clear();
    firmware_timer->stop();
    firmware_packet = 0;
}

void MainWindow::slotReadyFirmwareUpdate()
{
    firmware_packet = 1;
    sendFirmwarePacket();
}

void MainWindow::slotFirmwarePacket(uint packet_number)
{
    if (packet_number != firmware_packet) {
        endFirmwareUpdate(firmwareErrorText(wrongPacketNumber));
        return;
    }
    ++firmware_packet;
    switch (sendFirmwarePacket()) {
    case FirmwarePacket::Made:
        showFirmwareProgress();
        break;
    case FirmwarePacket::PastEnd:
        firmware_timer->start();
        queueSentence(Commands::FirmwareFinish);
        break;
    case FirmwarePacket::NoImage:
        endFirmwareUpdate(firmwareErrorText(noImage));
        break;
    }
}

FirmwarePacket MainWindow::sendFirmwarePacket()
{
    QString sentence;
    const FirmwarePacket result = MakeFirmwarePacket(firmware_buffer, firmware_packet, sentence);
    if (result == FirmwarePacket::Made) {
        firmware_timer->start();
        queueSentence(sentence);
    }
    return result;
}

// The bar itself: QProgressDialog::setValue() of a modal dialog runs the event loop, in which the
// update could end. It ignores what is beyond its end.
void MainWindow::showFirmwareProgress()
{
    firmware_progress->findChild<QProgressBar *>()->setValue(
        firmwareProgress(firmware_packet, int(firmware_buffer.size())));
}

// In any state: the router knows best when it has everything.
void MainWindow::slotFirmwareOk()
{
    queueSentence(Commands::FirmwareUse);
    link->suspendConfirm();
    slotCancelFirmwareUpdate();
    const QPointer<NmeaSerialPort> updated = link;
    showMessage(tr("Firmware update"),
                tr("The firmware has been successfully loaded, the router will reboot. Please "
                   "reconnect to the router."),
                QMessageBox::Information);
    // The box may have been closed quicker than the queue moves.
    if (updated)
        updated->finishSending();
    // The connection may have ended by itself while the box was open.
    if (updated && updated == link)
        slotVRSendDisconnect();
}

void MainWindow::slotFirmwareError(uint code)
{
    endFirmwareUpdate(firmwareErrorText(code));
}

void MainWindow::slotFirmwareTimeout()
{
    endFirmwareUpdate(tr("Error: Firmware update timeout"));
}

QString MainWindow::firmwareErrorText(qint64 code)
{
    return tr("Error firmware update. code: %1").arg(code);
}

void MainWindow::endFirmwareUpdate(const QString &text)
{
    slotCancelFirmwareUpdate();
    showMessage(tr("Firmware update"), text, QMessageBox::Critical);
}
