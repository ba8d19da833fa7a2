#include "mainwindow/mainwindow.h"

#include "link/nmeaserialport.h"
#include "mainwindow/matrixstyle.h"
#include "mainwindow/statuswidget.h"
#include "platform/keyboard.h"
#include "service/waitsavedlg.h"
#include "ui_mainwindow.h"
#include "widgets/dragframe.h"
#include "widgets/pngicon.h"
#include "widgets/qclicklabel.h"
#include "widgets/qmcombobox.h"
#include "widgets/qmpushbutton.h"

#include <QHash>
#include <QTimer>

#include <type_traits>

namespace {

constexpr int designWidth = 853;
constexpr int designHeight = 627;
constexpr int defaultSpeedIndex = 1;
constexpr int portFontSize = 8;
constexpr int firmwareLimit = 6000;  // ms without any progress that end a firmware update
constexpr int monitorInterval = 200; // ms; the screen follows the line five times a second at most

const QString titleStart = QStringLiteral("Brelland Sea Works - TK-7 v");
const QString applicationVersion = QStringLiteral("4.0");

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent), firmware_timer(new QTimer(this)), string_timer(new QTimer(this)),
      ui(std::make_unique<Ui::MainWindow>()), status_widget(new statusWidget)
{
    platform::followLeftControl();
    string_timer->setInterval(monitorInterval);
    firmware_timer->setInterval(firmwareLimit);
    firmware_timer->setTimerType(Qt::PreciseTimer);

    ui->setupUi(this);
    makeScrollable();
    resize(designWidth, designHeight);
    activateWindow();

    findRows();
    fillSpeeds();
    connectWidgets();
    // The other header fields take what the router sends without a mask.
    channel_rows[0].hdr_text->setInputMask(QStringLiteral(">AA"));

    slotRescanPorts();
    connect(ui->pushButton_rescan_ports, &QPushButton::clicked, this, &MainWindow::slotRescanPorts);
    connect(ui->pushButton_connect, &QPushButton::clicked, this, &MainWindow::slotConnectPort);
    connect(ui->pushButton_SaveEEPROM, &QPushButton::clicked, this, &MainWindow::slotSaveToEeprom);

    makeMatrix();
    ui->statusBar->addWidget(status_widget, 0);

    applyScale();
    UpdateCrsErrorsLabel();
    setTexts();
    setAccessibleNames();
}

MainWindow::~MainWindow()
{
    hide(); // an open name editor loses the focus and tells so: that must find a whole window
    if (link) {
        link->closePort();
        delete link;
    }
    delete status_widget;
    for (InputRow &row : input_rows) {
        delete row.port_label;
        delete row.placeholder_label;
        delete row.speed_label;
    }
}

void MainWindow::findRows()
{
    // One walk through the tree for all of them.
    QHash<QString, QWidget *> widgets;
    const auto all = findChildren<QWidget *>();
    for (QWidget *widget : all)
        widgets.insert(widget->objectName(), widget);
    const auto find = [&widgets](auto *&widget, const char *pattern, int number) {
        using Widget = std::remove_reference_t<decltype(widget)>;
        widget = qobject_cast<Widget>(widgets.value(QString::fromLatin1(pattern).arg(number)));
    };
    for (int i = 0; i < ChannelCount; ++i) {
        ChannelRow &row = channel_rows[size_t(i)];
        find(row.view, "pushButton_channel_%1", i);
        find(row.filter, "checkBox_channel_%1_filter", i);
        find(row.filter_set, "pushButton_channel_%1_filter_set", i);
        find(row.crs, "checkBox_channel_%1_crs", i);
        find(row.smart, "pushButton_channel_%1_smart", i);
        find(row.hdr, "checkBox_channel_%1_hdr", i);
        find(row.hdr_text, "lineEdit_channel_%1_hdr", i);
        find(row.hdr_set, "pushButton_channel_%1_hdr_set", i);
    }
    for (int i = 0; i < OutputPortCount; ++i) {
        OutputRow &row = output_rows[size_t(i)];
        find(row.frame, "frame_output_ports_%1", i);
        find(row.button, "pushButton_output_port_%1", i);
        find(row.speed, "comboBox_output_port_%1", i);
    }
}

void MainWindow::fillSpeeds()
{
    QStringList speeds;
    for (quint32 speed : portSpeeds())
        speeds += QString::number(speed);
    for (const OutputRow &row : output_rows) {
        row.speed->addItems(speeds);
        row.speed->setCurrentIndex(defaultSpeedIndex);
        row.speed->installEventFilter(this);
        QFont font = row.button->font();
        font.setPointSize(portFontSize);
        row.button->setFont(font);
    }
    UpdateOutputPortButtons();
}

void MainWindow::connectWidgets()
{
    for (const OutputRow &row : output_rows) {
        // As currentIndexChanged(QString), which Qt 6 doesn't have: the text of another index, not
        // another text of this one.
        connect(row.speed, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                [this, box = row.speed](int index) { slotPortSpeedChanged(box->itemText(index)); });
        connect(row.button, &QPushButton::clicked, this, &MainWindow::slotOutputPortButttonClicked);
        connect(row.button, &QMPushButton::signalPushRightMouse, this,
                &MainWindow::slotOutputPortButtonRightClicked);
    }
    for (const ChannelRow &row : channel_rows) {
        connect(row.view, &QPushButton::clicked, this, &MainWindow::slotChannelButtonClicked);
        connect(row.filter, &QCheckBox::clicked, this, &MainWindow::slotFilterCheckChanged);
        connect(row.crs, &QCheckBox::clicked, this, &MainWindow::slotCrsCheckChanged);
        connect(row.hdr, &QCheckBox::clicked, this, &MainWindow::slotHdrCheckChanged);
        connect(row.hdr_set, &QPushButton::clicked, this, &MainWindow::slotHdrSetClicked);
        connect(row.smart, &QPushButton::clicked, this, &MainWindow::slotSmartClicked);
        connect(row.filter_set, &QPushButton::clicked, this, &MainWindow::slotFilterSetClicked);
    }
    connect(ui->pushButton_Service, &QPushButton::clicked, this, &MainWindow::slotServiceClicked);
    connect(status_widget->pushButton_play, &QPushButton::clicked, this, &MainWindow::slotPlayNMEA);
    connect(status_widget->pushButton_view_small, &QPushButton::clicked, this,
            &MainWindow::slotButSmallStatus);
    connect(status_widget->pushButton_view_big, &QPushButton::clicked, this,
            &MainWindow::slotButBigStatus);
    connect(status_widget->pushButton_view_speed, &QPushButton::clicked, this,
            &MainWindow::slotButViewSpeed);
    connect(ui->pushButton_SaveFile, &QPushButton::clicked, this, &MainWindow::slotSaveToFile);
    connect(ui->pushButton_LoadFile, &QPushButton::clicked, this, &MainWindow::slotLoadFromFile);
    connect(ui->pushButton_return_input, &QPushButton::clicked, this,
            &MainWindow::slotReturnInputPorts);
    connect(string_timer, &QTimer::timeout, this, &MainWindow::slotStringTimer);
    connect(status_widget->label_lock, &QClickLabel::clicked, this, &MainWindow::slotLockClicked);
}

void MainWindow::setTexts()
{
    setWindowTitle(titleStart + applicationVersion);

    // Names and what the router says are no markup. The one link is.
    const auto labels = findChildren<QLabel *>();
    for (QLabel *label : labels) {
        if (!label->openExternalLinks())
            label->setTextFormat(Qt::PlainText);
    }

    ui->pushButton_Service->setText(QString());
    ui->pushButton_Service->setIcon(pngIcon(QStringLiteral(":/icons/logo-180x60-transparent.png")));
    ui->pushButton_Service->setIconSize(ui->pushButton_Service->minimumSize());

    for (QLabel *label :
         {ui->label_3, ui->label_vr48_status, ui->label_vr48_port, ui->label_firmware_version,
          ui->label_firmware_mode, ui->label_vr48_errors, ui->label_vr48_flash_page}) {
        label->setText(QString());
    }
    for (QLabel *label : {ui->label_input_ports, ui->label_input_channels, ui->label_vr48_status})
        label->setStyleSheet(MatrixStyle::orangeText);
    for (QLabel *label : {ui->label_cur_ch_out, ui->label_output_ports})
        label->setStyleSheet(MatrixStyle::blueText);
}

// For screen readers: what shows no text, or one that only the eye can tell whose it is. What is
// there once has its name in the form.
void MainWindow::setAccessibleNames()
{
    for (int i = 0; i < OutputPortCount; ++i) {
        // Some systems give a combo box its text for a name.
        const QString text = tr("Speed of output port %1").arg(i);
        output_rows[size_t(i)].speed->setAccessibleName(text);
        output_rows[size_t(i)].speed->setAccessibleDescription(text);
    }
    for (int i = 0; i < ChannelCount; ++i) {
        const ChannelRow &row = channel_rows[size_t(i)];
        row.view->setAccessibleName(tr("Channel %1").arg(i));
        row.filter->setAccessibleName(tr("Filter of channel %1").arg(i));
        row.filter_set->setAccessibleName(tr("Set filter of channel %1").arg(i));
        row.crs->setAccessibleName(tr("Checksum of channel %1").arg(i));
        row.smart->setAccessibleName(tr("Smart function of channel %1").arg(i));
        row.hdr->setAccessibleName(tr("Header of channel %1").arg(i));
        row.hdr_text->setAccessibleName(tr("Header text of channel %1").arg(i));
        row.hdr_set->setAccessibleName(tr("Set header of channel %1").arg(i));
        main_frames[size_t(i)]->setAccessibleName(tr("Main input of channel %1").arg(i));
        reserve_frames[size_t(i)]->setAccessibleName(tr("Reserve input of channel %1").arg(i));
    }
    for (int i = 0; i < InputPortCount; ++i) {
        input_frames[size_t(i)]->setAccessibleName(tr("Input port %1").arg(i));
        // Its name is the text, the speed itself.
        input_rows[size_t(i)].speed_label->setAccessibleDescription(
            tr("Speed of input port %1").arg(i));
    }
    nameSwitches();
}

void MainWindow::nameSwitches()
{
    status_widget->pushButton_play->setAccessibleName(play_enabled ? tr("Pause") : tr("Play"));
    status_widget->pushButton_view_speed->setAccessibleName(
        speed_visible ? tr("Hide the speeds of the input ports")
                      : tr("Show the speeds of the input ports"));
}

void MainWindow::send(const QString &sentence)
{
    if (connected && link)
        link->sendSentence(sentence);
}

// Without its focus: that would go on to the next widget, of which nobody knows what a key does
// there.
void MainWindow::disable(QWidget *widget)
{
    if (focusWidget() == widget)
        widget->clearFocus();
    widget->setEnabled(false);
}

QMessageBox::StandardButton MainWindow::showMessage(const QString &title, const QString &text,
                                                    QMessageBox::Icon icon,
                                                    QMessageBox::StandardButtons buttons)
{
    QWidget *owner = this;
    if (message_box)
        owner = message_box;
    // The end of the link may delete the box while it is open.
    const QPointer<QMessageBox> box = new QMessageBox(icon, title, text, buttons, owner);
    if (!message_box)
        message_box = box;
    box->setTextFormat(Qt::PlainText);
    const int answer = box->exec();
    delete box;
    return QMessageBox::StandardButton(answer);
}
