#include "service/servicedlg.h"

#include "model/firmwareimage.h"
#include "service/enterpassworddlg.h"
#include "service/modedlg.h"
#include "service/passworddlg.h"
#include "ui_servicedlg.h"
#include "widgets/uiscale.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QTimer>

#include <algorithm>

// Every box and every dialog here runs an event loop, in which the end of the link deletes this
// object. What goes on behind one of them looks first whether it still exists.

namespace {

constexpr int pollInterval = 2000; // ms
constexpr uint lastPort = 11;

constexpr int serialSize = 16;
constexpr int serialGroup = 4;

// What the levels of the lock allow.
constexpr quint8 ownerLevel = 2;   // changing and deleting the password
constexpr quint8 serviceLevel = 4; // changing the mode
constexpr quint8 highestLevel = 5; // seeing the password

} // namespace

servicedlg::servicedlg(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::servicedlg>()), message_box(this),
      update_timer(new QTimer(this))
{
    ui->setupUi(this);
    ui->label_ChipID->setTextFormat(Qt::PlainText); // the characters can be any
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    update_timer->setTimerType(Qt::PreciseTimer);
    fillTable();
    connectWidgets();
    applyScale();
}

servicedlg::~servicedlg()
{
    if (file_dialog)
        file_dialog->reject();
    // The innermost first: a box of a dialog goes with its dialog.
    delete password_dialog;
    delete mode_dialog;
    delete enter_password_dialog;
}

void servicedlg::fillTable()
{
    QTableWidget *table = ui->tableWidget;
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            auto *item = new QTableWidgetItem;
            item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            table->setItem(row, column, item);
        }
    }
}

void servicedlg::connectWidgets()
{
    const auto press = [this](QPushButton *button, void (servicedlg::*slot)()) {
        connect(button, &QPushButton::clicked, this, slot);
    };
    press(ui->pushButton_Clear, &servicedlg::slotButClear);
    press(ui->pushButton_AisTest, &servicedlg::slotAisTest);
    press(ui->pushButton_Fw_Update, &servicedlg::slotButFwUpdate);
    press(ui->pushButton_Lock, &servicedlg::slotLockRouter);
    press(ui->pushButton_Change_Password, &servicedlg::slotChangePassword);
    press(ui->pushButton_View_Password, &servicedlg::slotViewPassword);
    press(ui->pushButton_Change_Mode, &servicedlg::slotModeClicked);
    press(ui->pushButton_Exit, &servicedlg::slotButExitClicked);
    press(ui->pushButton_ChipID, &servicedlg::slotUpdateSerialView);
    connect(update_timer, &QTimer::timeout, this, &servicedlg::slotUpdateTimer);
}

void servicedlg::applyScale()
{
    const double factor = ui_scale();
    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    scaleChildren<QPushButton>(this, float(factor));
    // Of all frames these two: the headers of the table are frames, too, and the table places them.
    scaleWidget(ui->tableWidget, float(factor));
    scaleWidget(ui->label_ChipID, float(factor));
}

void servicedlg::setFirmwareBuffer(QByteArray *buffer)
{
    firmware_buffer = buffer;
}

void servicedlg::setVersion(quint32 major, quint32 minor)
{
    version = {true, major, minor};
    // Firmware 3.0 and no other; an older one has no service at all.
    if (!supports(version, RouterFunction::Service)
        || supports(version, RouterFunction::Statistics))
        return;
    for (QWidget *widget :
         std::initializer_list<QWidget *>{ui->pushButton_Clear, ui->label_ChipID, ui->tableWidget,
                                          ui->pushButton_ChipID, ui->pushButton_Lock}) {
        widget->setEnabled(false);
    }
}

// Statistics

void servicedlg::slotUpdateTimer()
{
    emit signalRequestStatusErrors(0);
    update_timer->start(pollInterval);
}

// One poll is a chain: each answer asks for the next port. A lost answer ends it until the timer
// begins again.
void servicedlg::slotStatusErrors(uint port, uint s_print, uint s_crs, uint s_broken, uint s_size,
                                  uint s_full)
{
    if (port > lastPort)
        return;
    int column = 0;
    for (const uint value : {s_print, s_crs, s_broken, s_size, s_full})
        showCounter(int(port), column++, value);
    if (port < lastPort)
        emit signalRequestStatusErrors(int(port) + 1);
}

// A large counter gets a smaller font, as its column can't become wider. What is still too large is
// elided, and its tool tip is whole.
void servicedlg::showCounter(int row, int column, uint value)
{
    constexpr int margins = 8;
    constexpr qreal smallestFont = 7.5;
    constexpr qreal step = 0.25;
    const QTableWidget *table = ui->tableWidget;
    QTableWidgetItem *item = table->item(row, column);
    item->setText(QString::number(value));
    QFont font = table->font();
    const auto isTooWide = [&] {
        const int width = QFontMetrics(font, table).size(0, item->text()).width();
        return width + margins > table->columnWidth(column);
    };
    while (isTooWide() && font.pointSizeF() > smallestFont)
        font.setPointSizeF(font.pointSizeF() - step);
    item->setFont(font);
    item->setToolTip(isTooWide() ? item->text() : QString());
}

void servicedlg::slotButClear()
{
    emit signalClearStatusErrors();
    slotUpdateTimer();
}

// Chip identifier

void servicedlg::slotVRSerial(QByteArray *serial_rec)
{
    serial_record = *serial_rec;
    slotUpdateSerialView();
}

// The first record finds the view at "hexadecimal" and so shows characters.
void servicedlg::slotUpdateSerialView()
{
    chip_text_view = !chip_text_view;
    ui->label_ChipID->setText(serialText());
}

// The last group first, and in each group the last byte first.
QString servicedlg::serialText() const
{
    QString text;
    if (serial_record.size() < serialSize)
        return text;
    for (int group = serialSize - serialGroup; group >= 0; group -= serialGroup) {
        QByteArray bytes = serial_record.mid(group, serialGroup);
        std::reverse(bytes.begin(), bytes.end());
        if (!chip_text_view)
            bytes = bytes.toHex();
        text += QString::fromLatin1(bytes.constData(), bytes.size()); // zeros, too
        text += QLatin1Char(' ');
    }
    return text;
}

// Lock

void servicedlg::setLockStatus(bool password, quint8 level, bool init)
{
    const bool hadPassword = lock_enabled;
    const quint8 oldLevel = lock_level;
    const Pending asked = init ? Pending::Nothing : pending_action;
    lock_enabled = password;
    lock_level = level;
    pending_action = Pending::Nothing;
    showLockButtons(password, level);
    if (!init)
        showStatusBox(hadPassword, oldLevel, asked);
}

void servicedlg::showLockButtons(bool password, quint8 level)
{
    QPushButton *lock = ui->pushButton_Lock;
    if (!password) {
        lock->setText(tr("LOCK"));
    } else if (level == 0) {
        lock->setText(tr("UNLOCK"));
        lock->setVisible(true);
    } else {
        if (level >= ownerLevel)
            lock->setText(tr("Delete\nPassword"));
        lock->setVisible(level >= ownerLevel);
    }
    ui->pushButton_Change_Password->setVisible(password && level >= ownerLevel);
    ui->pushButton_Change_Mode->setVisible(password && level >= serviceLevel);
    ui->pushButton_View_Password->setVisible(password && level >= highestLevel);
}

void servicedlg::showStatusBox(bool hadPassword, quint8 oldLevel, Pending asked)
{
    if (!lock_enabled) {
        if (hadPassword)
            message_box.show(tr("Delete lock password"), tr("Lock password deleted successfully"),
                             QMessageBox::Warning);
        return;
    }
    if (oldLevel != 0)
        return;
    if (lock_level == 0) {
        message_box.show(tr("Unlock TK-7"), tr("Wrong Unlock Password"), QMessageBox::Warning);
        return;
    }
    if (asked == Pending::FirstPassword)
        return;
    QString text = tr("Router TK-7 unlocked successfully");
    if (lock_level == serviceLevel)
        text.prepend(tr("   Welcome TIDEWELL MAN !!!\r\n"));
    else if (lock_level == highestLevel)
        text.prepend(tr("    I salute you My CREATOR !!!\r\n"));
    message_box.show(tr("Unlock TK-7"), text, QMessageBox::Information);
}

void servicedlg::slotLockRouter()
{
    QString password;
    if (!lock_enabled) {
        if (!askNewPassword(password))
            return;
        pending_action = Pending::FirstPassword;
        emit signalSendLockPassword(password);
        return;
    }
    const QPointer<servicedlg> self(this);
    if (lock_level == 0 && askUnlockPassword(password)) {
        pending_action = Pending::Unlock;
        emit signalSendUnlockPassword(password);
    }
    // The level may have changed while the dialog was open.
    if (self && lock_level >= ownerLevel)
        askRemovePassword();
}

void servicedlg::askRemovePassword()
{
    const auto answer =
        message_box.show(tr("Delete password"), tr("Are you sure want to delete the password?"),
                         QMessageBox::Warning, QMessageBox::Ok | QMessageBox::Cancel);
    if (answer != QMessageBox::Ok)
        return;
    pending_action = Pending::RemovePassword;
    emit signalSendRemovePassword();
}

// Setting and changing a password are the same sentence.
void servicedlg::slotChangePassword()
{
    QString password;
    if (lock_level < ownerLevel || !askNewPassword(password))
        return;
    pending_action = Pending::Change;
    emit signalSendLockPassword(password);
}

bool servicedlg::askNewPassword(QString &password)
{
    const QPointer<passwordDlg> dialog = new passwordDlg(this);
    password_dialog = dialog;
    const bool isAccepted = dialog->exec() == QDialog::Accepted && dialog;
    if (isAccepted)
        password = dialog->password();
    delete dialog;
    return isAccepted;
}

bool servicedlg::askUnlockPassword(QString &password)
{
    const QPointer<EnterPasswordDlg> dialog = new EnterPasswordDlg(this);
    enter_password_dialog = dialog;
    const bool isAccepted = dialog->exec() == QDialog::Accepted && dialog;
    if (isAccepted)
        password = dialog->password();
    delete dialog;
    return isAccepted;
}

void servicedlg::slotViewPassword()
{
    emit signalSendViewPassword();
}

void servicedlg::slotVRLookPassword(QString sPassword)
{
    message_box.show(tr("Lock password"), tr("Current Lock Password: ") + sPassword,
                     QMessageBox::Information);
}

void servicedlg::slotVRSetPasswordAnswer(bool result)
{
    if (result)
        message_box.show(tr("Set lock password"), tr("Lock password set successfully"),
                         QMessageBox::Information);
    else
        message_box.show(tr("Set lock password"), tr("Password setting error"),
                         QMessageBox::Warning);
}

// Mode

void servicedlg::slotModeClicked()
{
    if (lock_level < serviceLevel)
        return;
    if (!version.is_known) {
        message_box.show(
            tr("Mode error"),
            tr("The router has an unknown firmware version\r\nChange mode not possible"),
            QMessageBox::Warning);
        return;
    }
    if (!supports(version, RouterFunction::ModeChange)) {
        message_box.show(tr("Mode error"),
                         tr("Firmware version below 4.0 does not support change mode"),
                         QMessageBox::Warning);
        return;
    }
    QString mode;
    if (!askMode(mode))
        return;
    pending_action = Pending::Change;
    emit signalSendMode(mode);
}

bool servicedlg::askMode(QString &mode)
{
    const QPointer<modeDlg> dialog = new modeDlg(this);
    mode_dialog = dialog;
    const bool isAccepted = dialog->exec() == QDialog::Accepted && dialog;
    if (isAccepted)
        mode = dialog->mode();
    delete dialog;
    return isAccepted;
}

// AIS test

void servicedlg::slotAisTest()
{
    if (!version.is_known) {
        message_box.show(tr("AIS Test"),
                         tr("The router has an unknown firmware version\r\nAIS Test not possible"),
                         QMessageBox::Warning);
        return;
    }
    if (supports(version, RouterFunction::AisTest)) {
        done(AisTestResult);
        return;
    }
    // The text names 3.5 although 3.4 has the test: deliberately so.
    message_box.show(tr("Ais Test"), tr("Firmware version below 3.5 does not support AIS Test"),
                     QMessageBox::Warning);
}

// Firmware

void servicedlg::slotButFwUpdate()
{
    if (!version.is_known) {
        showLoadBox(tr("The router has an unknown firmware version\r\nUpdate not possible"));
        return;
    }
    if (!supports(version, RouterFunction::FirmwareUpdate)) {
        showLoadBox(tr("Firmware version below 3.0 does not support firmware upgrade"));
        return;
    }
    const QPointer<servicedlg> self(this);
    const QString fileName = chooseFirmwareFile();
    if (!self || fileName.isEmpty() || !loadFirmware(fileName))
        return;
    const QString question = tr("Are you sure want to install the firmware version %1")
                                 .arg(FirmwareImage::describe(*firmware_buffer))
        + tr(" ?");
    const auto answer = message_box.show(tr("Load Firmware"), question, QMessageBox::Question,
                                         QMessageBox::Yes | QMessageBox::No);
    if (answer != QMessageBox::Yes)
        return;
    emit startFirmwareUpdate();
    if (self)
        close();
}

// Not QFileDialog::getOpenFileName, which nobody could close when the link ends.
QString servicedlg::chooseFirmwareFile()
{
    QFileDialog dialog(nullptr, tr("Select firmware file"), QString(), QStringLiteral("*.efw"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    file_dialog = &dialog;
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

bool servicedlg::loadFirmware(const QString &fileName)
{
    const QString error = loadError(fileName);
    if (!error.isEmpty())
        showLoadBox(error);
    return error.isEmpty();
}

QString servicedlg::loadError(const QString &fileName)
{
    using FirmwareImage::ReadResult;
    // A pipe or a terminal would keep the tool waiting.
    QFile file(fileName);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return tr("Error open file %1").arg(fileName);
    switch (FirmwareImage::read(file, *firmware_buffer)) {
    case ReadResult::TooBig:
        return tr("File %1 is very big").arg(fileName);
    case ReadResult::ReadError:
        return tr("Error read file %1").arg(fileName);
    case ReadResult::NotFirmware:
        return tr("File %1 in not TK-7 firmware").arg(fileName);
    case ReadResult::Ok:
        break;
    }
    return QString();
}

void servicedlg::showLoadBox(const QString &text)
{
    message_box.show(tr("Load Firmware"), text, QMessageBox::Warning);
}

void servicedlg::slotButExitClicked()
{
    close();
}
