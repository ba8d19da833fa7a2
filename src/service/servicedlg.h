#pragma once

#include "model/routerversion.h"
#include "service/keptbox.h"

#include <QByteArray>
#include <QDialog>
#include <QPointer>

#include <memory>

QT_BEGIN_NAMESPACE
class QFileDialog;
class QTimer;
QT_END_NAMESPACE

class EnterPasswordDlg;
class modeDlg;
class passwordDlg;

namespace Ui {
class servicedlg;
}

/*!
 * What a service engineer needs: the counters of the ports, the chip identifier, the lock, the
 * mode, the way to a firmware update and to the AIS test.
 *
 * Knows no link: what is to be sent leaves as a signal, what has come enters by a slot. It may be
 * deleted at any time, also while a box or a dialog that it has opened is still waiting.
 */
class servicedlg : public QDialog
{
    Q_OBJECT

public:
    /*! What exec() returns when the user has asked for the AIS test. */
    static constexpr int AisTestResult = 5;

    explicit servicedlg(QWidget *parent);
    ~servicedlg() override;

    /*! Where a firmware file is read into; \a buffer outlives the dialog. */
    void setFirmwareBuffer(QByteArray *buffer);

    /*! The router's firmware version. Until this is called it isn't known. */
    void setVersion(quint32 major, quint32 minor);

    /*!
     * The state of the router's lock: whether it has a \a password, and the \a level, 0 locked
     * to 5. \a init is for the state at the opening, which brings no box.
     */
    void setLockStatus(bool password, quint8 level, bool init);

signals:
    /*! The firmware buffer holds the image that the user wants. */
    void startFirmwareUpdate();
    void signalRequestStatusErrors(int port);
    void signalClearStatusErrors();
    void signalSendLockPassword(QString password);
    void signalSendUnlockPassword(QString password);
    void signalSendRemovePassword();
    void signalSendViewPassword();
    void signalSendMode(QString mode);

public slots:
    void slotButExitClicked();
    void slotButFwUpdate();
    void slotButClear();
    void slotUpdateTimer();
    void slotLockRouter();
    void slotChangePassword();
    void slotViewPassword();
    void slotAisTest();
    void slotModeClicked();
    void slotStatusErrors(uint port, uint s_print, uint s_crs, uint s_broken, uint s_size,
                          uint s_full);
    void slotVRSerial(QByteArray *serial_rec);
    void slotVRSetPasswordAnswer(bool result);
    void slotVRLookPassword(QString sPassword);
    void slotUpdateSerialView();

private:
    /*! What the user last asked of the lock. */
    enum class Pending { Nothing, FirstPassword, Unlock, RemovePassword, Change };

    void fillTable();
    void connectWidgets();
    void applyScale();

    void showCounter(int row, int column, uint value);

    bool askNewPassword(QString &password);
    bool askUnlockPassword(QString &password);
    bool askMode(QString &mode);
    void askRemovePassword();
    void showLockButtons(bool password, quint8 level);
    void showStatusBox(bool hadPassword, quint8 oldLevel, Pending asked);

    QString chooseFirmwareFile();
    bool loadFirmware(const QString &fileName);
    QString loadError(const QString &fileName);
    void showLoadBox(const QString &text);
    QString serialText() const;

    std::unique_ptr<Ui::servicedlg> ui;
    QByteArray *firmware_buffer = nullptr;
    Pending pending_action = Pending::Nothing;
    RouterVersion version;
    bool lock_enabled = false;
    quint8 lock_level = 0;
    KeptBox message_box;
    QPointer<passwordDlg> password_dialog;
    QPointer<modeDlg> mode_dialog;
    QPointer<EnterPasswordDlg> enter_password_dialog;
    QPointer<QFileDialog> file_dialog; //!< its slot deletes it
    QTimer *update_timer;
    QByteArray serial_record;
    bool chip_text_view = false;
};
