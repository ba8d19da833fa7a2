#pragma once

#include "simulator/configcodec.h"
#include "simulator/eepromfile.h"
#include "simulator/faultset.h"
#include "simulator/routerconfig.h"
#include "simulator/sentence.h"

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QTimer>

namespace tk7sim {

/*! What the router reports of itself. */
struct RouterStatus
{
    int versionMajor = 3;
    int versionMinor = 5;
    QByteArray mode = "NORMAL";
    quint16 errorCode = 0;
    quint8 errorFault = 0;
    int flashBank = 0;
    bool lockEnabled = false;
    int lockLevel = 0;   //!< 0 locked, 1 to 5 open
    int controlPort = 0; //!< the port to which the tool is wired
};

/*! A sentence on its way to the tool. */
struct Answer
{
    QByteArray body; //!< from '$' on, without checksum and line end
    SentenceForm form = SentenceForm::Checked;
    bool isBulk = false; //!< part of the configuration, not an answer of its own
    int thenSpeed = 0;   //!< the speed to which the router moves behind it; 0: none
};

/*! What a router has refused or not understood. */
struct RouterComplaints
{
    quint64 checksumErrors = 0;
    quint64 refusedSentences = 0;
    quint64 unknownSentences = 0;
};

/*!
 * The router's mind: takes lines, changes its configuration, answers. It knows no terminal; whoever
 * owns it carries the bytes and tells it when the line has moved to another speed.
 */
class RouterCore : public QObject
{
    Q_OBJECT

public:
    static constexpr int fastSpeed = 115200;

    //! \a faults is read at every step, and outlives the router.
    explicit RouterCore(const FaultSet *faults, QObject *parent = nullptr);

    //! Acts on \a line, from '$' to LF.
    void hear(const QByteArray &line);
    //! An answer with a speed behind it has left, and the line now has the speed \a baud.
    void moveTo(int baud);
    //! The tool has gone: what isn't saved is dropped, the monitor stops, the speed goes back.
    void endConnection();
    //! Power off and on: a write in progress is lost, too.
    void restart();

    int speed() const { return m_speed; }
    int startSpeed() const { return m_startSpeed; }
    void setStartSpeed(int baud);
    bool returnsToStartSpeed() const { return m_returnsToStartSpeed; }
    void setReturnsToStartSpeed(bool on) { m_returnsToStartSpeed = on; }
    bool isConnected() const { return m_connected; }
    int handshakes() const { return m_handshakes; }
    int silenceLimit() const { return m_silenceTimer.interval(); }
    void setSilenceLimit(int milliseconds);
    void setSaveDuration(int milliseconds) { m_saveTimer.setInterval(milliseconds); }

    const RouterConfig &working() const { return m_working; }
    void setWorking(const RouterConfig &config) { m_working = config; }
    const RouterConfig &eeprom() const { return m_eeprom; }
    void setEeprom(const RouterConfig &config) { m_eeprom = config; }
    bool setEepromFile(const EepromFile &file);
    QString eepromError() const { return m_eepromFile.errorString(); }
    int view() const { return m_view; }
    RouterStatus &status() { return m_status; }
    const RouterComplaints &complaints() const { return m_complaints; }
    void resetComplaints() { m_complaints = {}; }

signals:
    void answered(const tk7sim::Answer &answer);
    //! The connection has ended: what still waits to be sent has nobody to go to.
    void ended();
    void connectedChanged(bool connected);
    void viewChanged(int viewCode);
    void speedChanged(int baud);
    void configurationChanged();
    void saved(bool ok);
    void message(const QString &text);

private:
    using HandlerFunction = void (RouterCore::*)(const Sentence &sentence);
    struct Handler
    {
        const char *code;
        SentenceForm form;
        HandlerFunction function;
    };
    static const Handler handlers[];

    void handleQuery(const Sentence &sentence);
    void handleWatch(const Sentence &sentence);
    void handleDisconnect(const Sentence &sentence);
    void handleDownload(const Sentence &sentence);
    void handleVersion(const Sentence &sentence);
    void handleConfig(const Sentence &sentence);
    void handleBatchEnd(const Sentence &sentence);
    void handleSave(const Sentence &sentence);
    void handleView(const Sentence &sentence);

    void dispatch(const Sentence &sentence);
    void slotSaveDone();
    void finishSave();
    void setSpeed(int baud);
    void setConnected(bool connected);
    void setView(int viewCode);
    bool isLocked() const;
    void say(const QByteArray &body, SentenceForm form = SentenceForm::Checked);
    void sayBulk(const QByteArray &body, SentenceForm form = SentenceForm::Checked);
    QByteArray viewBody() const;
    QByteArray errorBody() const;
    QByteArray lockBody() const;

    const FaultSet *m_faults;
    int m_startSpeed;
    int m_speed;
    bool m_returnsToStartSpeed = true;
    bool m_connected = false;
    bool m_isAnswering = false; // the answer that makes a connection is on its way
    int m_handshakes = 0;
    RouterConfig m_working = RouterConfig::factory();
    RouterConfig m_eeprom = m_working;
    RouterConfig m_saving;                  // what a save in progress writes
    QMap<QByteArray, ConfigChange> m_batch; // by place
    EepromFile m_eepromFile;
    int m_view = viewNothing;
    RouterStatus m_status;
    RouterComplaints m_complaints;
    QTimer m_silenceTimer;
    QTimer m_saveTimer;
};

} // namespace tk7sim
