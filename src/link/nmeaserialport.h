#pragma once

#include "link/answerwait.h"
#include "link/lineassembler.h"
#include "link/sentenceparser.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

QT_BEGIN_NAMESPACE
class QSerialPort;
QT_END_NAMESPACE

/*!
 * The tool's only access to the router: one serial line, 8 data bits, no parity, one stop bit, no
 * flow control.
 *
 * openPort() searches for the router: it asks with "$VRCNT" at 4800, 9600, 19200, 38400, 57600,
 * 115200 and 2400 baud for 500 ms each, moves to 115200 baud after a first answer, and is connected
 * after an answer at that speed. From then on the link is watched: 2 s without a "$VR" sentence
 * queue "$VRCNC", 2 s more close the link. Neither search nor watch judges before it has read what
 * lies in the port: a stall of the computer is no silence of the router.
 *
 * Outbound sentences wait in one queue without a bound; one line leaves it every 25 ms, whatever
 * its length and the speed of the line. Inbound bytes are cut into lines of at most 95 bytes; "$VR"
 * lines are parsed and raised as typed signals, all others go to signalNMEA_receive.
 *
 * An object serves one connection and has no parent. A slot may open a modal box, close the port or
 * schedule the object with deleteLater from inside any of the signals.
 */
class NmeaSerialPort : public QObject
{
    Q_OBJECT

public:
    NmeaSerialPort();
    ~NmeaSerialPort() override;

    /*!
     * Opens the port listed as \a name, or the device of that path, at 4800 baud and starts the
     * search. A port that can't be opened raises signalVRConnectionProgress(100) and
     * signalErrorOpenPort before this returns.
     */
    void openPort(const QString &name);

    /*! Stops all timers and closes the port. Raises no signal; safe at any time. */
    void closePort();

    /*!
     * Queues \a sentence, a complete line with its CR LF. Returns false, and drops it, when the
     * port isn't open.
     */
    bool sendSentence(const QString &sentence);

    /*!
     * Writes what is still queued, at the queue's pace, and returns when it has left the computer:
     * closing the port would drop it.
     */
    void finishSending();

    /*! Stops watching the link until the next open or handshake: the router is about to restart. */
    void suspendConfirm();

    /*! Names of the serial ports of this machine, unsorted. Needs no open port. */
    static QStringList scanPorts();

    /*!
     * Takes \a size bytes as if they had come from the port: cuts them into lines and dispatches
     * each. May be entered again from a slot that runs an event loop; the lines keep their order.
     */
    void receiveBytes(const char *data, int size);

public slots:
    void slot_ReadyRead();
    void slot_send_timer();
    void slot_connect_timer();
    void slot_confirm_timer();
    /*! Parses \a str, a whole "$VR" line from its '$' to its LF, and raises its signal. */
    void slot_VRNMEA(QString str);

signals:
    void signalErrorOpenPort();
    void signalErrorWritePort();
    void signalVRNMEA_receive(QString);
    void signalNMEA_receive(QString);
    void signalVRConnect(quint8 port);
    void signalVRTimeOutConnect();
    void signalVRBusy();
    void signalVRTimeOutConfirm();
    void signalVRNewRule(quint8 port, int channel, quint8 rules, quint8 flags);
    void signalVRNewFilterMask(quint8 port, int channel, quint32 filter_mask);
    void signalVRNewHdr(quint8 port, int channel, QString hdr);
    void signalVRNewFilterStr(quint8 index, QString flt);
    void signalVRNewPortSpeed(quint8 port, quint32 spd);
    void signalVRUpdateVRData();
    void signalVRConnectionProgress(int progress);
    void signalVRCloseProgress();
    void signalVRPortView(quint8 port);
    void signalVRNewPortName(bool b_type, quint8 port, QString port_name);
    void signalVRSaveEepromOk();
    void signalVRSaveEepromError();
    void signalVRSendDisconnect();
    void signalVRVersion(quint32 msb, quint32 lsb);
    void signalVRErrorsCode(quint32 vr_error_code, quint32 vr_error_fault);
    void signalVRMode(QString mode);
    void signalVRFwPacket(quint32 number);
    void signalVRReadyFirmwareUpdate();
    void signalVRFwError(quint32 code);
    void signalVRFwOk();
    void signalVRStatusErrors(quint32 port, quint32 s_print, quint32 s_crs, quint32 s_broken,
                              quint32 s_size, quint32 s_full);
    /*! \a serial_rec belongs to this object and holds 16 bytes until the next "$VRSER". */
    void signalVRSerial(QByteArray *serial_rec);
    void signalVRSetPasswordAnswer(bool);
    void signalVRLockStatus(bool, quint8);
    void signalVRSendPassword(QString password);
    void signalCommandCRSError();
    void signalVRUsedFlashBank(quint32 uflash);
    void signalVRAISMessage(QString message);
    void signalVRAISPosition(QString message);

private:
    bool isPortOpen() const;
    void releaseLostPort();
    void flushPort();

    bool hasHeardMeanwhile(const AnswerWait &wait);
    void readOnInEventLoop();
    void handleLines();
    void handleLine(const QByteArray &bytes);

    void handleConnectAnswer(const QString &str);
    void feedWatch(const QString &str);

    QString portName;
    QList<QString> sendQueue;
    QSerialPort *serial = nullptr;
    bool awaitingConfirm = false;
    bool confirmSuspended = false;
    bool connected = false;
    qint32 scanStep = 0;
    bool leftLastSpeed = false; //!< the router has answered at the last speed of the search
    LinkTimer sendTimer;
    AnswerWait searchWait;
    AnswerWait watchWait;
    LineAssembler lines;
    bool readsOn = false; //!< an event is under way that goes on with them
    SentenceParser parser;
};
