#pragma once

#include "simulator/instruments/aistruth.h"
#include "simulator/router/faults.h"
#include "simulator/router/linerecord.h"
#include "simulator/router/portcounters.h"
#include "simulator/router/routerconfig.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QVector>

#include <memory>

namespace tk7sim {

class RouterDevice;

/*!
 * A TK-7 router behind a pseudo-terminal.
 *
 * It plays the router's side of the line: finds its speed with the tool, sends its configuration,
 * takes changes, saves them, shows the traffic of a port. Nothing blocks; everything happens in the
 * event loop of the thread in which open() is called, and all functions are called there.
 *
 * Nothing is published by default, so that tests can run side by side; a port is opened by its
 * deviceName() then.
 */
class RouterSimulator : public QObject
{
    Q_OBJECT

public:
    static constexpr int fastSpeed = 115200; //!< where every handshake ends
    static constexpr int defaultStartSpeed = 4800;
    static constexpr int maxTranscript = LineRecord::maxEntries; //!< older entries are dropped
    static constexpr double maxTrafficRate = 1000;

    explicit RouterSimulator(QObject *parent = nullptr);
    ~RouterSimulator() override;

    // The terminal

    /*!
     * Opens a pseudo-terminal and publishes it if a name was set. False, and errorString(), if the
     * system has no pseudo-terminal to give. A name that can't be published is no failure:
     * portName() is empty then and publishError() says why.
     */
    bool open();
    //! Closes the terminal and takes the published name away; the router lives on, as after
    //! unplug(). The destructor does so too.
    void close();
    bool isOpen() const;
    QString errorString() const;

    //! The name under which open() and plug() publish the terminal; empty: not at all.
    void setPublishedName(const QString &name);
    QString publishError() const;
    //! The published name, as in a list of ports; empty if the terminal isn't published.
    QString portName() const;
    //! The published link with its path; empty if the terminal isn't published.
    QString linkPath() const;
    //! The terminal that the tool opens, such as /dev/pts/3; empty if closed or unplugged.
    QString deviceName() const;

    //! Pulls the cable out: the terminal vanishes. The router lives on.
    void unplug();
    //! Puts the cable back: a new terminal, published under the same name.
    bool plug();
    bool isPlugged() const;

    // The line

    //! The router's speed before a handshake: 2400, 4800, 9600, 19200, 38400, 57600 or 115200.
    int startSpeed() const;
    //! Sets the start speed, at once if no tool is connected; false if it isn't one of the seven.
    bool setStartSpeed(int baud);
    //! The router's present speed.
    int speed() const;
    //! The speed to which the terminal is set at present; 0 if closed or not one of the seven.
    int lineSpeed() const;
    //! True if the router goes back to its start speed when a connection ends (the default).
    bool returnsToStartSpeed() const;
    void setReturnsToStartSpeed(bool on);

    //! A handshake has ended at 115200 baud, and the tool has neither left nor been silent since.
    bool isConnected() const;
    //! How often a query has been answered at 115200 baud.
    int handshakes() const;
    //! Milliseconds without a line from the tool that end a connection; 0: never. Default 10000.
    int silenceLimit() const;
    void setSilenceLimit(int milliseconds);
    //! Power off and on: what isn't in the EEPROM is lost.
    void restart();

    // What the router knows

    const RouterConfig &working() const;
    void setWorking(const RouterConfig &config);
    const RouterConfig &eeprom() const;
    void setEeprom(const RouterConfig &config);
    /*!
     * Keeps the EEPROM in the file \a path: loads it, into the working configuration too, or, where
     * it doesn't exist yet, goes on with the present EEPROM. False if the file can't be used, with
     * the reason in errorString(); the factory set-up stands then, and the next save writes the
     * file anew.
     */
    bool setEepromFile(const QString &path);

    //! The port under view: 255 none, 240 + p input p, 16 o + 15 output o, 16 o + c its channel c.
    int view() const;
    //! The port field of the router's answer to a query, 0 to 11.
    void setControlPort(int port);
    void setVersion(int major, int minor);
    //! The reported version as "3.5".
    QByteArray version() const;
    void setMode(const QByteArray &text);
    QByteArray mode() const;
    void setError(quint16 code, quint8 fault);
    void setFlashBank(int bank);
    int flashBank() const;
    //! The 16 bytes of the chip's identification; anything else is ignored.
    void setChipId(const QByteArray &bytes);
    QByteArray chipId() const;
    //! What is reported of the lock; \a level is 0 (locked) to 5. A locked router refuses a save.
    //! The password stays, or is forgotten where there is no lock.
    void setLock(bool enabled, int level);
    //! Locks the router by \a password, 1 to 20 letters and digits; takes the lock away if it is
    //! empty. It gets into the EEPROM file with the next save.
    void setLockPassword(const QByteArray &password);
    QByteArray lockPassword() const;
    bool isLockEnabled() const;
    //! 0 locked, 1 to 5 open.
    int lockLevel() const;
    //! The tool has begun an AIS test and not ended it.
    bool isAisTestOn() const;
    //! How long writing the EEPROM takes, in milliseconds. Default 300.
    void setSaveDuration(int milliseconds);
    //! Times the usual number of lines of every instrument, 0 (none) to maxTrafficRate, at which
    //! each fills a line of 115200 baud. Default 1.
    void setTrafficRate(double rate);
    //! Seed of everything random, so that a run can be repeated.
    void setSeed(quint32 seed);

    // The AIS stations at the inputs; each of these begins a new world

    //! Class A vessels around the ship, 0 to AisWorldSettings::maxVessels. Default 40.
    void setAisVessels(int count);
    //! Input ports with an AIS station; empty: as many as the vessels need.
    void setAisPorts(const QVector<int> &ports);
    /*!
     * Lets input \a port, 0 to 11, hear the VDM, VDO and ALR sentences of the file \a path, over
     * and over. False, and errorString(), if the port is none or the file can't be used.
     */
    bool setAisReplay(int port, const QString &path);
    //! What the AIS test, from $VRATM with ON until OFF or the end of the connection, has told the
    //! tool; of the last one, if none is on.
    const AisTruth &aisTruth() const;

    // The counters of the ports

    //! What the router reports of \a port, 0 to 11.
    PortCounters portCounters(int port) const;
    //! Sets them; they grow on from there.
    void setPortCounters(int port, const PortCounters &counters);

    // Firmware

    //! The last firmware that arrived whole, byte by byte, whether it was used or not.
    QByteArray firmwareImage() const;
    //! Packets of the update in progress, or of the last one, that have been taken.
    int firmwarePackets() const;
    //! From the tool's request until the firmware has arrived or the router has ended the update.
    bool isUpdating() const;
    //! Milliseconds until the router is ready for the first packet, and for its check of the whole.
    //! Default 200.
    void setFlashDuration(int milliseconds);
    //! Milliseconds of silence before a new firmware runs. Default 3000.
    void setRebootDuration(int milliseconds);
    bool isRebooting() const;

    // The instruments

    //! Lets the instrument at input \a port (0 to 11) fall silent, or speak again. Any number of
    //! them can be silent. The same as the fault InputSilent.
    void setInputSilent(int port, bool silent);
    bool isInputSilent(int port) const;
    //! Milliseconds of silence of a main input after which a channel takes its reserve input.
    //! Default 3000. It goes back as soon as the main input returns.
    int handoverTime() const;
    void setHandoverTime(int milliseconds);
    //! The input that \a channel of \a outputPort (each 0 to 11) listens to at present; 15: none.
    int activeInput(int outputPort, int channel) const;

    // Faults

    //! Sets \a fault with the default value of its row in faultTable().
    void setFault(Fault fault);
    //! Sets \a fault with \a value, cut to its range. A time after a connection runs from now on if
    //! the tool is connected.
    void setFault(Fault fault, double value);
    void clearFault(Fault fault);
    void clearFaults();
    bool hasFault(Fault fault) const;

    // The other side, as it was heard

    //! The steady clock of all times here, in microseconds.
    static qint64 now();
    //! The lines heard at the router's own speed, whatever became of them.
    const QList<ReceivedLine> &transcript() const;
    //! The bytes that came at other speeds, as they were read; what a scan has tried.
    const QList<ReceivedLine> &overheard() const;
    //! Forgets both lists.
    void clearTranscript();
    Counters counters() const;
    void resetCounters();

    // Sending by hand

    //! Queues \a bytes as they are.
    void sendLine(const QByteArray &bytes);
    //! Queues \a body ("$VRVER,3.5") with its checksum and CR LF.
    void sendChecked(const QByteArray &body);

signals:
    //! A line from the tool, before the router acts on it.
    void lineReceived(const QByteArray &line);
    //! A line from the router, when it enters the queue.
    void lineSent(const QByteArray &line);
    void connectedChanged(bool connected);
    //! The end of a save; \a ok is what the tool is told.
    void saved(bool ok);
    void viewChanged(int viewCode);
    //! The lock or its level may have changed by what the tool sent, or by the end of a connection.
    void lockChanged(bool enabled, int level);
    //! The mode was set by the tool.
    void modeChanged(const QByteArray &text);
    void aisTestChanged(bool on);
    //! A report of an AIS station enters the queue whole. Replayed lines are none.
    void aisReported(const tk7sim::AisReport &report);
    //! A firmware update has begun.
    void updateStarted();
    //! A firmware has arrived whole; it is used when the tool says so.
    void firmwareReceived(const QByteArray &image);
    //! The router falls silent, and is there again with its new firmware.
    void rebooting();
    void rebooted();
    void speedChanged(int baud);
    //! The working configuration has changed by what the tool sent.
    void configurationChanged();
    //! The cable was put in or pulled out.
    void pluggedChanged(bool plugged);
    //! Something that the user of the program should read.
    void message(const QString &text);

private:
    std::unique_ptr<RouterDevice> d;
    QString m_error;
};

} // namespace tk7sim
