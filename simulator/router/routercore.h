#pragma once

#include "simulator/line/sentence.h"
#include "simulator/router/configcodec.h"
#include "simulator/router/eepromfile.h"
#include "simulator/router/faultset.h"
#include "simulator/router/firmwareupdate.h"
#include "simulator/router/lockstore.h"
#include "simulator/router/routerconfig.h"
#include "simulator/router/routerstatus.h"

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QTimer>

namespace tk7sim {

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

class PortStatistics;

/*!
 * The router's mind: takes lines, changes its configuration, answers. It knows no terminal; whoever
 * owns it carries the bytes and tells it when the line has moved to another speed.
 */
class RouterCore : public QObject
{
    Q_OBJECT

public:
    static constexpr int fastSpeed = 115200;
    static constexpr int chipIdLength = 16;            //!< bytes
    static constexpr int maxModeLength = 8;            //!< characters that a tool may set
    static constexpr int defaultRebootDuration = 3000; //!< milliseconds

    //! \a faults is read at every step, and outlives the router.
    explicit RouterCore(const FaultSet *faults, QObject *parent = nullptr);

    //! Acts on \a line, from '$' to LF.
    void hear(const QByteArray &line);
    //! An answer with a speed behind it has left, and the line now has the speed \a baud.
    void moveTo(int baud);
    //! The tool has gone: what isn't saved is dropped, the monitor stops, the speed goes back.
    void endConnection();
    //! Another program takes the router over: the tool is told, and its connection ends behind
    //! that. Whoever asks from then on is told the same.
    void giveAway();
    //! The other program has left.
    void takeBack() { m_isGivenAway = false; }
    //! Power off and on: a write in progress is lost, too.
    void restart();
    //! True while the router starts with a new firmware; it is told nothing then.
    bool isRebooting() const { return m_rebootTimer.isActive(); }
    void setRebootDuration(int milliseconds) { m_rebootTimer.setInterval(milliseconds); }

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
    LockStore &lock() { return m_lock; }
    bool isAisTestOn() const { return m_isAisTestOn; }
    FirmwareUpdate &firmware() { return m_firmware; }
    //! Where the counters of the ports come from; it outlives the router. Without it they are 0.
    void setStatistics(PortStatistics *statistics) { m_statistics = statistics; }
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
    //! The lock or its level may have changed by what the tool sent.
    void lockChanged();
    void modeChanged(const QByteArray &text);
    void aisTestChanged(bool on);
    //! The router starts with a new firmware; rebooted() tells when it is there again.
    void rebooting();
    void rebooted();
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
    void handleChipId(const Sentence &sentence);
    void handleStatistics(const Sentence &sentence);
    void handleClearStatistics(const Sentence &sentence);
    void handleAisTest(const Sentence &sentence);
    void handleMode(const Sentence &sentence);
    void handleSetPassword(const Sentence &sentence);
    void handleUnlock(const Sentence &sentence);
    void handleRemovePassword(const Sentence &sentence);
    void handleViewPassword(const Sentence &sentence);
    void handleLock(const Sentence &sentence);
    void handleFirmwareStart(const Sentence &sentence);
    void handleFirmwarePacket(const Sentence &sentence);
    void handleFirmwareEnd(const Sentence &sentence);
    void handleFirmwareUse(const Sentence &sentence);

    void dispatch(const Sentence &sentence);
    void hearSpoilt(const Sentence &sentence);
    void refuse() { ++m_complaints.refusedSentences; }
    void slotSaveDone();
    void finishSave();
    bool store(const RouterConfig &config, const QByteArray &password);
    void slotRebootDone();
    void setAisTest(bool on);
    void sayLock();
    void setSpeed(int baud);
    void setConnected(bool connected);
    void setView(int viewCode);
    bool isLocked() const;
    bool allows(int level) const;
    void say(const QByteArray &body, SentenceForm form = SentenceForm::Checked);
    void sayBulk(const QByteArray &body, SentenceForm form = SentenceForm::Checked);
    QByteArray viewBody() const;
    QByteArray lockBody() const;

    const FaultSet *m_faults;
    int m_startSpeed;
    int m_speed;
    bool m_returnsToStartSpeed = true;
    bool m_connected = false;
    bool m_isAnswering = false; // the answer that makes a connection is on its way
    bool m_isGivenAway = false; // to another program
    int m_handshakes = 0;
    RouterConfig m_working = RouterConfig::factory();
    RouterConfig m_eeprom = m_working;
    RouterConfig m_saving;                  // what a save in progress writes
    QMap<QByteArray, ConfigChange> m_batch; // by place
    EepromFile m_eepromFile;
    int m_view = viewNothing;
    RouterStatus m_status;
    LockStore m_lock;
    FirmwareUpdate m_firmware;
    PortStatistics *m_statistics = nullptr;
    bool m_isAisTestOn = false;
    RouterComplaints m_complaints;
    QTimer m_silenceTimer;
    QTimer m_saveTimer;
    QTimer m_rebootTimer;
};

} // namespace tk7sim
