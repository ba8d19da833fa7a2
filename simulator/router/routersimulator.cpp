#include "simulator/router/routersimulator.h"

#include "simulator/line/lineassembler.h"
#include "simulator/line/linenoise.h"
#include "simulator/line/linepacer.h"
#include "simulator/line/linespeed.h"
#include "simulator/line/portlink.h"
#include "simulator/line/pseudoterminal.h"
#include "simulator/router/aisfeed.h"
#include "simulator/router/faultset.h"
#include "simulator/router/monitorfeed.h"
#include "simulator/router/portstatistics.h"
#include "simulator/router/routerclock.h"
#include "simulator/router/routercore.h"

#include <QTimer>

#include <algorithm>
#include <chrono>

namespace tk7sim {

namespace {

constexpr double millisecondsPerSecond = 1000.0;
constexpr int settleInterval = 60000; // milliseconds, within what the statistics look back
constexpr int bulkShare = 10;         // of a slow router's delay: the gap within its configuration
constexpr int trafficBacklog = 512;   // bytes of traffic that may stand before an answer

void remember(QList<ReceivedLine> *list, const QByteArray &line, int lineSpeed)
{
    if (list->size() >= RouterSimulator::maxTranscript) {
        list->removeFirst();
    }
    list->append({line, RouterSimulator::now(), lineSpeed});
}

} // namespace

class RouterSimulator::Private
{
public:
    explicit Private(RouterSimulator *simulator);

    void hear(const QByteArray &bytes, int lineSpeed);
    void hearLine(const QByteArray &line, int lineSpeed);
    void answer(const Answer &answer);
    void send(const QByteArray &line, bool isBulk = false, int thenSpeed = 0);
    void pumpTraffic();
    QByteArray nextTrafficLine();
    void sendTraffic(const QByteArray &line);
    void applyConditions();
    void carry(const QByteArray &bytes);
    void replaceTerminal();
    bool plugIn();
    void pullOut();
    void startFaultTimers();
    void startFaultTimer(Fault fault, QTimer *timer);
    void fallSilent();
    bool isDead() const { return silenced || core.isRebooting() || faults.has(Fault::Silent); }

    RouterSimulator *q;
    FaultSet faults;
    PseudoTerminal terminal;
    LinePacer pacer;
    LineAssembler assembler;
    LineNoise noise;
    RouterCore core;
    RouterClock clock;
    InputConditions conditions;
    PortStatistics statistics;
    MonitorFeed monitor;
    AisFeed ais;
    PortLink link;
    QString publishedName;
    QString error;
    bool isOpen = false;
    bool silenced = false;
    bool isAisTurn = false; // of the two kinds of traffic
    qint64 lastDue = 0;     // microseconds: when the youngest answer of a slow router may go out
    QTimer silentTimer;
    QTimer unplugTimer;
    QTimer replugTimer;
    QTimer settleTimer;
    QList<ReceivedLine> transcript;
    QList<ReceivedLine> overheard;
    Counters counters;
};

RouterSimulator::Private::Private(RouterSimulator *simulator)
    : q(simulator), terminal(simulator), pacer(simulator), core(&faults, simulator),
      statistics(&clock, core.working()), monitor(&clock, &core.working(), simulator),
      ais(&clock, simulator), silentTimer(simulator), unplugTimer(simulator),
      replugTimer(simulator), settleTimer(simulator)
{
    // These objects end with this one, before their parent looks for children.
    pacer.setSpeed(core.speed());
    connect(&terminal, &PseudoTerminal::bytesReceived, q,
            [this](const QByteArray &bytes, int lineSpeed) { hear(bytes, lineSpeed); });
    connect(&terminal, &PseudoTerminal::lockedOut, q, [this] { replaceTerminal(); });
    connect(&pacer, &LinePacer::bytesDue, q, [this](const QByteArray &bytes) { carry(bytes); });
    connect(&pacer, &LinePacer::speedReached, q, [this](int baud) { core.moveTo(baud); });
    connect(&monitor, &MonitorFeed::linesWaiting, q, [this] { pumpTraffic(); });
    connect(&ais, &AisFeed::linesWaiting, q, [this] { pumpTraffic(); });
    connect(&ais, &AisFeed::reported, q, &RouterSimulator::aisReported);
    connect(&core, &RouterCore::answered, q, [this](const Answer &a) { answer(a); });
    connect(&core, &RouterCore::ended, q, [this] {
        pacer.clear();
        lastDue = 0;
    });
    connect(&core, &RouterCore::speedChanged, q, [this](int baud) {
        pacer.setSpeed(baud);
        assembler.clear();
        emit q->speedChanged(baud);
    });
    connect(&core, &RouterCore::viewChanged, q, [this](int code) {
        monitor.setView(code);
        emit q->viewChanged(code);
    });
    connect(&core, &RouterCore::connectedChanged, q, [this](bool connected) {
        if (connected) {
            startFaultTimers();
            settleTimer.start(settleInterval);
        } else {
            settleTimer.stop();
        }
        emit q->connectedChanged(connected);
    });
    core.setStatistics(&statistics);
    connect(&core, &RouterCore::configurationChanged, q, [this] {
        statistics.setConfig(core.working());
        emit q->configurationChanged();
    });
    connect(&core, &RouterCore::lockChanged, q,
            [this] { emit q->lockChanged(core.lock().isEnabled(), core.lock().level()); });
    connect(&core, &RouterCore::modeChanged, q, &RouterSimulator::modeChanged);
    connect(&core, &RouterCore::aisTestChanged, q, [this](bool on) {
        if (on) {
            ais.start();
        } else {
            ais.stop();
        }
        emit q->aisTestChanged(on);
    });
    connect(&core, &RouterCore::rebooting, q, &RouterSimulator::rebooting);
    connect(&core, &RouterCore::rebooted, q, &RouterSimulator::rebooted);
    connect(&core.firmware(), &FirmwareUpdate::started, q, &RouterSimulator::updateStarted);
    connect(&core.firmware(), &FirmwareUpdate::received, q,
            [this] { emit q->firmwareReceived(core.firmware().wholeImage()); });
    connect(&core, &RouterCore::saved, q, &RouterSimulator::saved);
    connect(&core, &RouterCore::message, q, &RouterSimulator::message);

    for (QTimer *timer : {&silentTimer, &unplugTimer, &replugTimer}) {
        timer->setSingleShot(true);
    }
    connect(&settleTimer, &QTimer::timeout, q, [this] { statistics.settle(); });
    connect(&silentTimer, &QTimer::timeout, q, [this] { fallSilent(); });
    connect(&unplugTimer, &QTimer::timeout, q, [this] {
        faults.clear(Fault::Unplugged);
        pullOut();
    });
    connect(&replugTimer, &QTimer::timeout, q, [this] { plugIn(); });
}

void RouterSimulator::Private::hear(const QByteArray &bytes, int lineSpeed)
{
    if (lineSpeed != core.speed()) {
        counters.garbageBytes += static_cast<quint64>(bytes.size());
        assembler.clear();
        remember(&overheard, bytes, lineSpeed);
        return;
    }
    const auto lines = assembler.take(bytes);
    for (const QByteArray &line : lines) {
        hearLine(line, lineSpeed);
    }
}

void RouterSimulator::Private::hearLine(const QByteArray &line, int lineSpeed)
{
    remember(&transcript, line, lineSpeed);
    emit q->lineReceived(line);
    if (!isDead()) {
        core.hear(line);
    }
}

void RouterSimulator::Private::answer(const Answer &answer)
{
    const bool isChecked = answer.form == SentenceForm::Checked;
    QByteArray line = answer.body + "\r\n";
    if (isChecked) {
        line = faults.has(Fault::WrongChecksums) ? withWrongChecksum(answer.body)
                                                 : withChecksum(answer.body);
    }
    send(line, answer.isBulk, answer.thenSpeed);
}

void RouterSimulator::Private::send(const QByteArray &line, bool isBulk, int thenSpeed)
{
    if (isDead()) {
        return;
    }
    int delay = 0;
    if (faults.has(Fault::Slow)) {
        constexpr qint64 microsecondsPerMillisecond = 1000;
        const auto wait = static_cast<qint64>(faults.value(Fault::Slow));
        const qint64 gap = isBulk ? wait / bulkShare : 0;
        const qint64 current = now();
        lastDue = std::max(current + wait * microsecondsPerMillisecond,
                           lastDue + gap * microsecondsPerMillisecond);
        delay = static_cast<int>((lastDue - current) / microsecondsPerMillisecond);
    }
    const QByteArray bytes =
        faults.has(Fault::Noise) ? noise.spoil(line, faults.value(Fault::Noise)) : line;
    if (!pacer.enqueue(bytes, delay, thenSpeed)) {
        counters.lostBytes += static_cast<quint64>(bytes.size());
        return;
    }
    emit q->lineSent(line);
}

// The queue never runs dry while there is more traffic, and an answer never waits behind all of it.
// While a firmware comes in the router shows none.
void RouterSimulator::Private::pumpTraffic()
{
    if (isDead() || core.firmware().isActive()) {
        monitor.clear();
        return;
    }
    while (pacer.queuedBytes() < trafficBacklog) {
        const QByteArray line = nextTrafficLine();
        if (line.isEmpty()) {
            return;
        }
        sendTraffic(line);
    }
}

// The port under view and the AIS test in turns; empty if neither has a line.
QByteArray RouterSimulator::Private::nextTrafficLine()
{
    isAisTurn = !isAisTurn;
    QByteArray line = isAisTurn ? ais.takeLine() : QByteArray();
    if (!line.isEmpty()) {
        return line;
    }
    return monitor.hasLine() ? monitor.takeLine() : ais.takeLine();
}

void RouterSimulator::Private::sendTraffic(const QByteArray &line)
{
    const bool isSpoilt = faults.has(Fault::WrongChecksums) && line.contains('*');
    send(isSpoilt ? withWrongChecksum(line.left(line.indexOf('*'))) : line);
}

void RouterSimulator::Private::applyConditions()
{
    conditions.wrongChecksums = faults.value(Fault::InputErrors);
    conditions.damage = faults.value(Fault::InputDamage);
    monitor.setConditions(conditions);
    statistics.setConditions(conditions);
}

// A receiver at another speed than the sender hears as many bytes, but not these.
void RouterSimulator::Private::carry(const QByteArray &bytes)
{
    const bool isClean = terminal.lineSpeed() == core.speed();
    const int written = terminal.write(isClean ? bytes : noise.garble(bytes));
    counters.lostBytes += static_cast<quint64>(bytes.size() - written);
    pumpTraffic();
}

void RouterSimulator::Private::replaceTerminal()
{
    terminal.close();
    link.remove();
    emit q->pluggedChanged(false);
    plugIn();
}

bool RouterSimulator::Private::plugIn()
{
    replugTimer.stop();
    if (!isOpen || terminal.isOpen()) {
        return terminal.isOpen();
    }
    if (!terminal.open()) {
        error = terminal.errorString();
        emit q->message(error);
        return false;
    }
    error.clear();
    if (!publishedName.isEmpty() && !link.publish(publishedName, terminal.deviceName())) {
        emit q->message(link.errorString());
    }
    emit q->pluggedChanged(true);
    return true;
}

void RouterSimulator::Private::pullOut()
{
    unplugTimer.stop();
    if (!terminal.isOpen()) {
        return;
    }
    link.remove();
    terminal.close();
    assembler.clear();
    if (faults.has(Fault::Replug)) {
        startFaultTimer(Fault::Replug, &replugTimer);
    }
    emit q->pluggedChanged(false);
}

void RouterSimulator::Private::startFaultTimers()
{
    if (faults.has(Fault::SilentAfter)) {
        startFaultTimer(Fault::SilentAfter, &silentTimer);
    }
    if (faults.has(Fault::Unplugged)) {
        startFaultTimer(Fault::Unplugged, &unplugTimer);
    }
}

void RouterSimulator::Private::startFaultTimer(Fault fault, QTimer *timer)
{
    timer->start(static_cast<int>(faults.value(fault) * millisecondsPerSecond));
}

void RouterSimulator::Private::fallSilent()
{
    silenced = true;
    pacer.clear();
}

RouterSimulator::RouterSimulator(QObject *parent)
    : QObject(parent), d(std::make_unique<Private>(this))
{
}

RouterSimulator::~RouterSimulator()
{
    // Nobody is told of the end: a receiver would find a simulator that is half gone.
    blockSignals(true);
    close();
}

bool RouterSimulator::open()
{
    if (d->isOpen) {
        close();
    }
    d->isOpen = true;
    d->isOpen = d->plugIn();
    return d->isOpen;
}

void RouterSimulator::close()
{
    d->isOpen = false;
    for (QTimer *timer : {&d->silentTimer, &d->unplugTimer, &d->replugTimer}) {
        timer->stop();
    }
    d->link.remove();
    d->terminal.close();
    d->assembler.clear();
}

bool RouterSimulator::isOpen() const
{
    return d->isOpen;
}

QString RouterSimulator::errorString() const
{
    return d->error;
}

void RouterSimulator::setPublishedName(const QString &name)
{
    d->publishedName = name;
}

QString RouterSimulator::publishError() const
{
    return d->link.errorString();
}

QString RouterSimulator::portName() const
{
    return d->link.name();
}

QString RouterSimulator::linkPath() const
{
    return d->link.path();
}

QString RouterSimulator::deviceName() const
{
    return d->terminal.deviceName();
}

void RouterSimulator::unplug()
{
    d->pullOut();
}

bool RouterSimulator::plug()
{
    return d->plugIn();
}

bool RouterSimulator::isPlugged() const
{
    return d->terminal.isOpen();
}

int RouterSimulator::startSpeed() const
{
    return d->core.startSpeed();
}

bool RouterSimulator::setStartSpeed(int baud)
{
    if (!isLineSpeed(baud)) {
        return false;
    }
    d->core.setStartSpeed(baud);
    return true;
}

int RouterSimulator::speed() const
{
    return d->core.speed();
}

int RouterSimulator::lineSpeed() const
{
    return d->terminal.lineSpeed();
}

bool RouterSimulator::returnsToStartSpeed() const
{
    return d->core.returnsToStartSpeed();
}

void RouterSimulator::setReturnsToStartSpeed(bool on)
{
    d->core.setReturnsToStartSpeed(on);
}

bool RouterSimulator::isConnected() const
{
    return d->core.isConnected();
}

int RouterSimulator::handshakes() const
{
    return d->core.handshakes();
}

int RouterSimulator::silenceLimit() const
{
    return d->core.silenceLimit();
}

void RouterSimulator::setSilenceLimit(int milliseconds)
{
    d->core.setSilenceLimit(std::max(milliseconds, 0));
}

void RouterSimulator::restart()
{
    d->core.restart();
}

const RouterConfig &RouterSimulator::working() const
{
    return d->core.working();
}

void RouterSimulator::setWorking(const RouterConfig &config)
{
    d->core.setWorking(config);
    d->statistics.setConfig(config);
}

const RouterConfig &RouterSimulator::eeprom() const
{
    return d->core.eeprom();
}

void RouterSimulator::setEeprom(const RouterConfig &config)
{
    d->core.setEeprom(config);
}

bool RouterSimulator::setEepromFile(const QString &path)
{
    const bool ok = d->core.setEepromFile(EepromFile(path));
    d->statistics.setConfig(d->core.working());
    d->error = d->core.eepromError();
    return ok;
}

int RouterSimulator::view() const
{
    return d->core.view();
}

void RouterSimulator::setControlPort(int port)
{
    d->core.status().controlPort = port;
}

void RouterSimulator::setVersion(int major, int minor)
{
    d->core.status().versionMajor = major;
    d->core.status().versionMinor = minor;
}

QByteArray RouterSimulator::version() const
{
    const RouterStatus &status = d->core.status();
    return QByteArray::number(status.versionMajor) + '.' + QByteArray::number(status.versionMinor);
}

void RouterSimulator::setMode(const QByteArray &text)
{
    d->core.status().mode = text;
}

QByteArray RouterSimulator::mode() const
{
    return d->core.status().mode;
}

void RouterSimulator::setError(quint16 code, quint8 fault)
{
    d->core.status().errorCode = code;
    d->core.status().errorFault = fault;
}

void RouterSimulator::setFlashBank(int bank)
{
    d->core.status().flashBank = bank;
}

int RouterSimulator::flashBank() const
{
    return d->core.status().flashBank;
}

void RouterSimulator::setChipId(const QByteArray &bytes)
{
    if (bytes.size() == RouterCore::chipIdLength) {
        d->core.status().chipId = bytes;
    }
}

QByteArray RouterSimulator::chipId() const
{
    return d->core.status().chipId;
}

void RouterSimulator::setLock(bool enabled, int level)
{
    LockStore &lock = d->core.lock();
    lock.set(enabled, level, enabled ? lock.password() : QByteArray());
}

void RouterSimulator::setLockPassword(const QByteArray &password)
{
    d->core.lock().set(!password.isEmpty(), 0, password);
}

QByteArray RouterSimulator::lockPassword() const
{
    return d->core.lock().password();
}

bool RouterSimulator::isLockEnabled() const
{
    return d->core.lock().isEnabled();
}

int RouterSimulator::lockLevel() const
{
    return d->core.lock().level();
}

bool RouterSimulator::isAisTestOn() const
{
    return d->core.isAisTestOn();
}

PortCounters RouterSimulator::portCounters(int port) const
{
    return isPort(port) ? d->statistics.at(port) : PortCounters();
}

void RouterSimulator::setPortCounters(int port, const PortCounters &counters)
{
    if (isPort(port)) {
        d->statistics.set(port, counters);
    }
}

QByteArray RouterSimulator::firmwareImage() const
{
    return d->core.firmware().wholeImage();
}

int RouterSimulator::firmwarePackets() const
{
    return d->core.firmware().packets();
}

bool RouterSimulator::isUpdating() const
{
    return d->core.firmware().isActive();
}

void RouterSimulator::setFlashDuration(int milliseconds)
{
    d->core.firmware().setFlashDuration(std::max(milliseconds, 0));
}

void RouterSimulator::setRebootDuration(int milliseconds)
{
    d->core.setRebootDuration(std::max(milliseconds, 0));
}

bool RouterSimulator::isRebooting() const
{
    return d->core.isRebooting();
}

void RouterSimulator::setSaveDuration(int milliseconds)
{
    d->core.setSaveDuration(std::max(milliseconds, 0));
}

void RouterSimulator::setTrafficRate(double rate)
{
    const double bounded = qBound(0.0, rate, maxTrafficRate);
    d->monitor.setRate(bounded);
    d->ais.setRate(bounded);
}

void RouterSimulator::setAisVessels(int count)
{
    d->ais.setVessels(count);
}

void RouterSimulator::setAisPorts(const QVector<int> &ports)
{
    d->ais.setPorts(ports.isEmpty() ? std::nullopt : std::optional(ports));
}

bool RouterSimulator::setAisReplay(int port, const QString &path)
{
    if (!isPort(port)) {
        d->error = QStringLiteral("no input port: %1").arg(port);
        return false;
    }
    const auto replay = AisReplay::load(port, path, &d->error);
    if (!replay) {
        return false;
    }
    d->ais.addReplay(*replay);
    if (replay->leftOut() > 0) {
        emit message(QStringLiteral("%1: lines left out that are no AIS sentences: %2")
                         .arg(path)
                         .arg(replay->leftOut()));
    }
    return true;
}

const AisWorld *RouterSimulator::aisWorld() const
{
    return d->ais.world();
}

void RouterSimulator::setInputSilent(int port, bool silent)
{
    if (!isPort(port) || isInputSilent(port) == silent) {
        return;
    }
    InputSilence &silence = d->conditions.silences[static_cast<size_t>(port)];
    if (silent) {
        silence = {d->clock.now(), InputSilence::never};
        d->faults.set(Fault::InputSilent, port);
    } else {
        silence.until = d->clock.now();
    }
    d->applyConditions();
    bool isAnySilent = false;
    for (int p = 0; p < portCount; ++p) {
        isAnySilent = isAnySilent || isInputSilent(p);
    }
    if (!isAnySilent) {
        d->faults.clear(Fault::InputSilent);
    }
}

bool RouterSimulator::isInputSilent(int port) const
{
    return isPort(port) && d->conditions.silences[static_cast<size_t>(port)].covers(d->clock.now());
}

int RouterSimulator::handoverTime() const
{
    return d->conditions.handover;
}

void RouterSimulator::setHandoverTime(int milliseconds)
{
    d->conditions.handover = std::max(milliseconds, 0);
    d->applyConditions();
}

int RouterSimulator::activeInput(int outputPort, int channel) const
{
    if (!isPort(outputPort) || !isPort(channel)) {
        return noPort;
    }
    const Output &output = d->core.working().outputs[static_cast<size_t>(outputPort)];
    return d->monitor.generator().activeInput(output.channels[static_cast<size_t>(channel)],
                                              d->clock.now());
}

void RouterSimulator::setSeed(quint32 seed)
{
    d->noise = LineNoise(seed);
    d->ais.setSeed(seed);
    d->conditions.seed = seed;
    d->applyConditions();
}

void RouterSimulator::setFault(Fault fault)
{
    setFault(fault, faultInfo(fault).defaultValue);
}

void RouterSimulator::setFault(Fault fault, double value)
{
    if (fault == Fault::InputSilent) {
        setInputSilent(static_cast<int>(qBound(0.0, value, faultInfo(fault).maximum)), true);
        return;
    }
    d->faults.set(fault, value);
    if (fault == Fault::Silent) {
        d->pacer.clear();
    }
    d->applyConditions();
    if (isConnected() && fault == Fault::SilentAfter) {
        d->startFaultTimer(fault, &d->silentTimer);
    }
    if (isConnected() && fault == Fault::Unplugged) {
        d->startFaultTimer(fault, &d->unplugTimer);
    }
}

void RouterSimulator::clearFault(Fault fault)
{
    d->faults.clear(fault);
    if (fault == Fault::SilentAfter) {
        d->silenced = false;
        d->silentTimer.stop();
    } else if (fault == Fault::Unplugged) {
        d->unplugTimer.stop();
    } else if (fault == Fault::Replug) {
        d->replugTimer.stop();
    } else if (fault == Fault::Slow) {
        d->lastDue = 0;
    } else if (fault == Fault::InputSilent) {
        for (int port = 0; port < portCount; ++port) {
            setInputSilent(port, false);
        }
    }
    d->applyConditions();
}

void RouterSimulator::clearFaults()
{
    for (const FaultInfo &info : faultTable()) {
        clearFault(info.fault);
    }
}

bool RouterSimulator::hasFault(Fault fault) const
{
    return d->faults.has(fault);
}

qint64 RouterSimulator::now()
{
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

const QList<ReceivedLine> &RouterSimulator::transcript() const
{
    return d->transcript;
}

const QList<ReceivedLine> &RouterSimulator::overheard() const
{
    return d->overheard;
}

void RouterSimulator::clearTranscript()
{
    d->transcript.clear();
    d->overheard.clear();
}

Counters RouterSimulator::counters() const
{
    Counters all = d->counters;
    all.checksumErrors = d->core.complaints().checksumErrors;
    all.refusedSentences = d->core.complaints().refusedSentences;
    all.unknownSentences = d->core.complaints().unknownSentences;
    return all;
}

void RouterSimulator::resetCounters()
{
    d->counters = {};
    d->core.resetComplaints();
}

void RouterSimulator::sendLine(const QByteArray &bytes)
{
    d->send(bytes);
}

void RouterSimulator::sendChecked(const QByteArray &body)
{
    d->answer({body, SentenceForm::Checked, false, 0});
}

} // namespace tk7sim
