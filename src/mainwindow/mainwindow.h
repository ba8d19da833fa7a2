#pragma once

#include "model/routermodel.h"
#include "model/routerversion.h"

#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QStringList>

#include <array>
#include <memory>

QT_BEGIN_NAMESPACE
class QCheckBox;
class QFile;
class QFrame;
class QLabel;
class QLineEdit;
class QProgressDialog;
class QPushButton;
class QScrollArea;
class QTimer;
QT_END_NAMESPACE

class aistestdlg;
class ConnectProgress;
class DragFrame;
class EnterPasswordDlg;
class FilterDlg;
class NmeaSerialPort;
class QMComboBox;
class QMLineEdit;
class QMPushButton;
class servicedlg;
class statusWidget;
class WaitSaveDlg;
enum class FirmwarePacket;

namespace Ui {
class MainWindow;
}

/*!
 * The tool's window and its centre: owns the model, the link while there is one, and the matrix in
 * which the user changes the router's rules.
 *
 * A change by the user updates the model and the row, and goes to the router at once while
 * connected; otherwise it waits for the next upload. The model outlives connections.
 */
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    const RouterModel &routerModel() const { return model; }
    bool isConnected() const { return connected; }

    /*! The link of the connection in hand, or null. It may end in any run of the event loop. */
    NmeaSerialPort *currentLink() const { return link; }

signals:
    void exitWaitSaveDlg();

public slots:
    // Connection
    void slotRescanPorts();
    void slotConnectPort();
    void slotProgress(int progress);
    void slotConnectEstablish(quint8 port);
    void slotErrorOpenPort();
    void slotTimeOutConnectPort();
    void slotConnectBusy();

    // What the router sends
    void slotVRNewRule(quint8 port, int channel, quint8 rules, quint8 flags);
    void slotVRNewFilterMask(quint8 port, int channel, uint filter_mask);
    void slotVRNewHdr(quint8 port, int channel, QString hdr);
    void slotVRNewFilterStr(quint8 index, QString flt);
    void slotVRNewPortSpeed(quint8 port, uint spd);
    void slotVRNewPortName(bool b_type, quint8 port, QString port_name);
    void slotVRUpdateVRData();
    void slotVRVersion(uint msb, uint lsb);
    void slotVRMode(QString mode);
    void slotVRErrorsCode(uint vr_error_code, uint vr_error_fault);
    void slotUsedFlashBank(uint uFlash);
    void slotVRLockStatus(bool password, quint8 level);
    void slotVRSendDisconnect();

    // Saving in the router
    void slotSaveToEeprom();
    void slotVRSaveToEepromOk();
    void slotVRSaveToEepromError();

    // Service
    void slotServiceClicked();
    void slotRequestStatusErrors(uint port);
    void slotClearStatusErrors();
    void slotSendLockPassword(QString password);
    void slotSendUnlockPassword(QString password);
    void slotSendRemovePassword();
    void slotVRViewPassword();
    void slotSendMode(QString mode);
    void slotLockClicked();

    // Firmware
    void slotStartFirmwareUpdate();
    void slotCancelFirmwareUpdate();
    void slotReadyFirmwareUpdate();
    void slotFirmwareError(uint code);
    void slotFirmwareOk();
    void slotFirmwarePacket(uint packet_number);
    void slotFirmwareTimeout();

    // Rule files
    void slotSaveToFile();
    void slotLoadFromFile();

    // Matrix
    void slotPressEvent(DragFrame *dframe);
    void slotReleaseEvent(DragFrame *dframe);
    void slotEnterEvent(DragFrame *dframe);
    void slotDropEvent(DragFrame *dframe);
    void slotOutputPortButttonClicked();
    void slotChannelButtonClicked();
    void slotCrsCheckChanged(bool state);
    void slotReturnInputPorts();
    void SetSmartButtonColor(quint8 channel, bool b_enable);

    // Channel editors
    void slotFilterSetClicked();
    void slotRequestFilterList(uint mask);
    void slotFilterCheckChanged(bool state);
    void slotHdrCheckChanged(bool state);
    void slotHdrSetClicked();
    void slotSmartClicked();

    // Names and speeds
    void slotPortSpeedChanged(QString str);
    void slotInputPortEditName(DragFrame *dframe);
    void slotOutputPortButtonRightClicked();
    void slotEditPortNameOk();
    void slotEditOutputPortNameOk();
    void slotEditPortNameFinish();

    // Monitor and status panel
    void slotVRPortView(quint8 port);
    void slotNMEAReceive(QString str);
    void slotStringTimer();
    void slotPlayNMEA();
    void slotCRSError();
    void slotButSmallStatus();
    void slotButBigStatus();
    void slotButViewSpeed();

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static constexpr int topBarHeight = 47; //!< design pixels that a low window keeps
    static constexpr int stripHeight = 30;  //!< design pixels of the folded panel

    /*! The widgets of one input channel of the selected output port. */
    struct ChannelRow
    {
        QPushButton *view = nullptr;
        QCheckBox *filter = nullptr;
        QPushButton *filter_set = nullptr;
        QCheckBox *crs = nullptr;
        QPushButton *smart = nullptr;
        QCheckBox *hdr = nullptr;
        QLineEdit *hdr_text = nullptr;
        QPushButton *hdr_set = nullptr;
    };

    /*! The widgets of one output port. */
    struct OutputRow
    {
        QFrame *frame = nullptr;
        QMPushButton *button = nullptr;
        QMComboBox *speed = nullptr;
    };

    /*! The widgets of one input port. */
    struct InputRow
    {
        QLabel *placeholder_label = nullptr;
        QLabel *speed_label = nullptr;
        QLabel *port_label = nullptr; //!< made when first placed
        quint8 label_place = 0;       //!< code of the frame that holds port_label
    };

    /*! A scroll area and its geometry in a window of full height. */
    struct Column
    {
        QScrollArea *area = nullptr;
        QRect design;
    };

    /*! The widths that the speed view changes. */
    struct SpeedViewWidths
    {
        int window = 0;
        int area = 0;
        int contents = 0;
        int heading = 0;
        int top_frame = 0;
    };

    // Construction
    void findRows();
    void fillSpeeds();
    void connectWidgets();
    void makeMatrix();
    DragFrame *makeDragFrame(QWidget *parent, QPoint position);
    void setTexts();
    void setAccessibleNames();
    void nameSwitches();
    void applyScale();
    void rememberGeometry();
    void makeScrollable();
    void placeOnScreen();
    bool isNarrow() const;
    void keepChannelsInSight();
    void setAreaBottoms();

    // Connection
    void wireLink();
    void resetConnectionView();
    void closeProgressDialog();
    void closeWaitSaveDialog();
    void enableConnect();
    void releaseLink();
    void leaveConnection();
    void askDisconnect();
    void send(const QString &sentence);
    void disable(QWidget *widget);

    // Saving in the router
    void SendAllToRouter();
    void showSaveResult(const QString &text, QMessageBox::Icon icon);
    QMessageBox::StandardButton showMessage(const QString &title, const QString &text,
                                            QMessageBox::Icon icon,
                                            QMessageBox::StandardButtons buttons = QMessageBox::Ok);

    // Service
    RouterVersion routerVersion() const;
    void showFirmwareMode();
    void wireServiceDialog();
    void closeServiceDialog();
    void runAisTest();
    void disconnectAisTestDialog();
    void closeAisTestDialog();
    /*! Queues \a sentence also while the connection is coming up or going down. */
    void queueSentence(const QString &sentence);

    // Firmware
    void makeFirmwareProgress();
    void wireFirmwareUpdate();
    FirmwarePacket sendFirmwarePacket();
    void showFirmwareProgress();
    static QString firmwareErrorText(qint64 code);
    void endFirmwareUpdate(const QString &text);

    // Rule files
    void showSaveFileError(QFile &file, const QString &fileName);
    void showLoadFileError(QFile &file, const QString &fileName);

    // Matrix
    void letGoOfMouse();
    quint8 FrameCode(const DragFrame *frame) const;
    ChannelRecord &channelRecord(int channel);
    void sendRule();
    void UpdateChannelRow(quint8 channel);
    void updateAllChannelRows();
    void refreshMatrix();
    void RefreshInputLabels();
    void SetOutputPortColor(quint8 port, bool selected);
    void SetViewColors(quint8 code);
    void PlacePortLabel(quint8 port, quint8 code);
    void SetPortLabelText(QLabel *label, quint8 port, const QString &name);
    bool takeDraggedPort(quint8 source, quint8 &port);
    bool isPortShown(quint8 port) const;

    // Channel editors
    /*! By output port: whether its first and its second six channels have got another filter. */
    using FilterHalves = std::array<std::array<bool, 2>, OutputPortCount>;

    void clearStaleFilterBits(FilterHalves &changed);
    void sendFilterList();
    void sendFilters(const FilterHalves &changed);
    bool editHeader(int channel);
    void sendHeaders();
    bool editSmartFunction(int channel);
    bool allowsSmartAis() const;

    // Names and speeds
    QString OutputPortButtonText(quint8 port) const;
    void UpdateOutputPortButtons();
    void showOutputPortText(quint8 port);
    QMLineEdit *openNameEditor(QWidget *place, void (MainWindow::*accept)());

    // Monitor and status panel
    void setPlay(bool play);
    void AddMonitorLine(const QString &line);
    void UpdateCrsErrorsLabel();
    void fixPanelHeight(int height);
    void setViewWidths(const SpeedViewWidths &widths, int delta);

    /*! Index of the row whose \a widget is \a object, or -1. */
    template <typename Row, typename Widget>
    static int rowOf(const std::array<Row, 12> &rows, Widget *Row::*widget, const QObject *object)
    {
        for (size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].*widget == object)
                return int(i);
        }
        return -1;
    }

    RouterModel model;
    quint8 current_output_port = 0;
    quint8 view_code = 255;
    quint8 edit_port = NO_PORT;
    QPointer<QMLineEdit> name_editor;    //!< while a name is being edited
    QPointer<QWidget> focus_before_name; //!< what had the focus before that

    NmeaSerialPort *link = nullptr;             //!< of the connection in hand; ends by deleteLater
    ConnectProgress *progress_dialog = nullptr; //!< during the handshake only
    WaitSaveDlg *wait_save_dialog = nullptr;    //!< while the router saves its rules
    QPointer<QMessageBox>
        message_box; //!< the open box; one that comes while it is open is its child

    QPointer<FilterDlg> filter_dialog;          //!< while the filter editor is open
    QPointer<servicedlg> service_dialog;        //!< while it is open
    QPointer<aistestdlg> ais_test_dialog;       //!< while the AIS test runs
    QPointer<EnterPasswordDlg> password_dialog; //!< the window's own, while it is open

    QByteArray firmware_buffer;                   //!< the whole file, while an update may need it
    QTimer *firmware_timer = nullptr;             //!< watches an update
    QProgressDialog *firmware_progress = nullptr; //!< while an update is under way
    quint32 firmware_packet = 0;                  //!< the packet last sent; 0 before the first

    bool connected = false;
    bool version_known = false;
    quint32 fw_msb = 0;
    quint32 fw_lsb = 0;
    bool mode_known = false;
    QString mode_text;
    bool errors_known = false;
    quint32 error_code = 0;
    quint32 error_fault = 0;
    bool lock_enabled = false;
    quint8 lock_level = 0;
    qint32 crs_errors = 0;

    bool play_enabled = true;
    QStringList pending_lines;
    QTimer *string_timer = nullptr;
    bool speed_visible = false;

    std::unique_ptr<Ui::MainWindow> ui;
    statusWidget *status_widget = nullptr;
    std::array<ChannelRow, ChannelCount> channel_rows;
    std::array<OutputRow, OutputPortCount> output_rows;
    std::array<InputRow, InputPortCount> input_rows;
    std::array<DragFrame *, ChannelCount> main_frames = {};
    std::array<DragFrame *, ChannelCount> reserve_frames = {};
    std::array<DragFrame *, InputPortCount> input_frames = {};
    DragFrame *pressed_frame = nullptr;
    QColor unselected_color;

    QSize big_size;                       //!< of the window with the panel unfolded
    QSize small_size;                     //!< and folded
    QSize panel_size;                     //!< of the panel as measured at start
    QSize remembered_panel_size;          //!< of the panel when it was folded
    QScrollArea *contents_area = nullptr; //!< of the window, all but the panel
    std::array<Column, 3> columns;
    SpeedViewWidths narrow_widths;
};
