#include "simulator/router/routersimulator.h"

#include "simulator/line/linespeed.h"
#include "simulator/router/routerdevice.h"

#include <algorithm>

namespace tk7sim {

RouterSimulator::RouterSimulator(QObject *parent)
    : QObject(parent), d(std::make_unique<RouterDevice>())
{
    connect(d.get(), &RouterDevice::lineReceived, this, &RouterSimulator::lineReceived);
    connect(d.get(), &RouterDevice::lineSent, this, &RouterSimulator::lineSent);
    connect(&d->cable(), &Cable::pluggedChanged, this, &RouterSimulator::pluggedChanged);
    connect(&d->cable(), &Cable::message, this, &RouterSimulator::message);
    connect(&d->ways(), &TrafficWays::aisReported, this, &RouterSimulator::aisReported);
    RouterCore &core = d->core();
    connect(&core, &RouterCore::speedChanged, this, &RouterSimulator::speedChanged);
    connect(&core, &RouterCore::viewChanged, this, &RouterSimulator::viewChanged);
    connect(&core, &RouterCore::connectedChanged, this, &RouterSimulator::connectedChanged);
    connect(&core, &RouterCore::configurationChanged, this, &RouterSimulator::configurationChanged);
    connect(&core, &RouterCore::lockChanged, this,
            [this] { emit lockChanged(isLockEnabled(), lockLevel()); });
    connect(&core, &RouterCore::modeChanged, this, &RouterSimulator::modeChanged);
    connect(&core, &RouterCore::aisTestChanged, this, &RouterSimulator::aisTestChanged);
    connect(&core, &RouterCore::rebooting, this, &RouterSimulator::rebooting);
    connect(&core, &RouterCore::rebooted, this, &RouterSimulator::rebooted);
    connect(&core.firmware(), &FirmwareUpdate::started, this, &RouterSimulator::updateStarted);
    connect(&core.firmware(), &FirmwareUpdate::received, this,
            [this] { emit firmwareReceived(firmwareImage()); });
    connect(&core, &RouterCore::saved, this, &RouterSimulator::saved);
    connect(&core, &RouterCore::message, this, &RouterSimulator::message);
}

RouterSimulator::~RouterSimulator()
{
    // Nobody is told of the end: a receiver would find a simulator that is half gone.
    blockSignals(true);
    close();
}

bool RouterSimulator::open()
{
    if (isOpen()) {
        close();
    }
    const bool ok = d->cable().open();
    m_error = d->cable().errorString();
    return ok;
}

void RouterSimulator::close()
{
    d->close();
}

bool RouterSimulator::isOpen() const
{
    return d->cable().isOpen();
}

QString RouterSimulator::errorString() const
{
    return m_error;
}

void RouterSimulator::setPublishedName(const QString &name)
{
    d->cable().setName(name);
}

QString RouterSimulator::publishError() const
{
    return d->cable().link().errorString();
}

QString RouterSimulator::portName() const
{
    return d->cable().link().name();
}

QString RouterSimulator::linkPath() const
{
    return d->cable().link().path();
}

QString RouterSimulator::deviceName() const
{
    return d->cable().deviceName();
}

void RouterSimulator::unplug()
{
    d->pullOut();
}

bool RouterSimulator::plug()
{
    const bool ok = d->cable().plug();
    m_error = d->cable().errorString();
    return ok;
}

bool RouterSimulator::isPlugged() const
{
    return d->cable().isPlugged();
}

int RouterSimulator::startSpeed() const
{
    return d->core().startSpeed();
}

bool RouterSimulator::setStartSpeed(int baud)
{
    if (!isLineSpeed(baud)) {
        return false;
    }
    d->core().setStartSpeed(baud);
    return true;
}

int RouterSimulator::speed() const
{
    return d->core().speed();
}

int RouterSimulator::lineSpeed() const
{
    return d->cable().lineSpeed();
}

bool RouterSimulator::returnsToStartSpeed() const
{
    return d->core().returnsToStartSpeed();
}

void RouterSimulator::setReturnsToStartSpeed(bool on)
{
    d->core().setReturnsToStartSpeed(on);
}

bool RouterSimulator::isConnected() const
{
    return d->core().isConnected();
}

int RouterSimulator::handshakes() const
{
    return d->core().handshakes();
}

int RouterSimulator::silenceLimit() const
{
    return d->core().silenceLimit();
}

void RouterSimulator::setSilenceLimit(int milliseconds)
{
    d->core().setSilenceLimit(std::max(milliseconds, 0));
}

void RouterSimulator::restart()
{
    d->core().restart();
}

const RouterConfig &RouterSimulator::working() const
{
    return d->core().working();
}

void RouterSimulator::setWorking(const RouterConfig &config)
{
    d->core().setWorking(config);
    d->ways().statistics().setConfig(config);
}

const RouterConfig &RouterSimulator::eeprom() const
{
    return d->core().eeprom();
}

void RouterSimulator::setEeprom(const RouterConfig &config)
{
    d->core().setEeprom(config);
}

bool RouterSimulator::setEepromFile(const QString &path)
{
    const bool ok = d->core().setEepromFile(EepromFile(path));
    d->ways().statistics().setConfig(d->core().working());
    m_error = d->core().eepromError();
    return ok;
}

int RouterSimulator::view() const
{
    return d->core().view();
}

void RouterSimulator::setControlPort(int port)
{
    d->core().status().controlPort = port;
}

void RouterSimulator::setVersion(int major, int minor)
{
    d->core().status().versionMajor = major;
    d->core().status().versionMinor = minor;
}

QByteArray RouterSimulator::version() const
{
    return d->core().status().version();
}

void RouterSimulator::setMode(const QByteArray &text)
{
    d->core().status().mode = text;
}

QByteArray RouterSimulator::mode() const
{
    return d->core().status().mode;
}

void RouterSimulator::setError(quint16 code, quint8 fault)
{
    d->core().status().errorCode = code;
    d->core().status().errorFault = fault;
}

void RouterSimulator::setFlashBank(int bank)
{
    d->core().status().flashBank = bank;
}

int RouterSimulator::flashBank() const
{
    return d->core().status().flashBank;
}

void RouterSimulator::setChipId(const QByteArray &bytes)
{
    if (bytes.size() == RouterCore::chipIdLength) {
        d->core().status().chipId = bytes;
    }
}

QByteArray RouterSimulator::chipId() const
{
    return d->core().status().chipId;
}

void RouterSimulator::setLock(bool enabled, int level)
{
    LockStore &lock = d->core().lock();
    lock.set(enabled, level, enabled ? lock.password() : QByteArray());
}

void RouterSimulator::setLockPassword(const QByteArray &password)
{
    d->core().lock().set(!password.isEmpty(), 0, password);
}

QByteArray RouterSimulator::lockPassword() const
{
    return d->core().lock().password();
}

bool RouterSimulator::isLockEnabled() const
{
    return d->core().lock().isEnabled();
}

int RouterSimulator::lockLevel() const
{
    return d->core().lock().level();
}

bool RouterSimulator::isAisTestOn() const
{
    return d->core().isAisTestOn();
}

PortCounters RouterSimulator::portCounters(int port) const
{
    return isPort(port) ? d->ways().statistics().at(port) : PortCounters();
}

void RouterSimulator::setPortCounters(int port, const PortCounters &counters)
{
    if (isPort(port)) {
        d->ways().statistics().set(port, counters);
    }
}

QByteArray RouterSimulator::firmwareImage() const
{
    return d->core().firmware().wholeImage();
}

int RouterSimulator::firmwarePackets() const
{
    return d->core().firmware().packets();
}

bool RouterSimulator::isUpdating() const
{
    return d->core().firmware().isActive();
}

void RouterSimulator::setFlashDuration(int milliseconds)
{
    d->core().firmware().setFlashDuration(std::max(milliseconds, 0));
}

void RouterSimulator::setRebootDuration(int milliseconds)
{
    d->core().setRebootDuration(std::max(milliseconds, 0));
}

bool RouterSimulator::isRebooting() const
{
    return d->core().isRebooting();
}

void RouterSimulator::setSaveDuration(int milliseconds)
{
    d->core().setSaveDuration(std::max(milliseconds, 0));
}

void RouterSimulator::setTrafficRate(double rate)
{
    d->ways().setRate(qBound(0.0, rate, maxTrafficRate));
}

void RouterSimulator::setAisVessels(int count)
{
    d->ways().setVessels(count);
}

void RouterSimulator::setAisPorts(const QVector<int> &ports)
{
    d->ways().setAisPorts(ports.isEmpty() ? std::nullopt : std::optional(ports));
}

bool RouterSimulator::setAisReplay(int port, const QString &path)
{
    if (!isPort(port)) {
        m_error = QStringLiteral("no input port: %1").arg(port);
        return false;
    }
    const auto replay = AisReplay::load(port, path, &m_error);
    if (!replay) {
        return false;
    }
    d->ways().addReplay(*replay);
    if (replay->leftOut() > 0) {
        emit message(QStringLiteral("%1: lines left out that are no AIS sentences: %2")
                         .arg(path)
                         .arg(replay->leftOut()));
    }
    return true;
}

const AisTruth &RouterSimulator::aisTruth() const
{
    return d->ways().aisTruth();
}

void RouterSimulator::setInputSilent(int port, bool silent)
{
    if (isPort(port)) {
        d->setInputSilent(port, silent);
    }
}

bool RouterSimulator::isInputSilent(int port) const
{
    return isPort(port) && d->ways().isInputSilent(port);
}

int RouterSimulator::handoverTime() const
{
    return d->ways().handover();
}

void RouterSimulator::setHandoverTime(int milliseconds)
{
    d->ways().setHandover(std::max(milliseconds, 0));
}

int RouterSimulator::activeInput(int outputPort, int channel) const
{
    if (!isPort(outputPort) || !isPort(channel)) {
        return noPort;
    }
    const Output &output = d->core().working().outputs[static_cast<size_t>(outputPort)];
    return d->ways().activeInput(output.channels[static_cast<size_t>(channel)]);
}

void RouterSimulator::setSeed(quint32 seed)
{
    d->setSeed(seed);
}

void RouterSimulator::setFault(Fault fault)
{
    setFault(fault, faultInfo(fault).defaultValue);
}

void RouterSimulator::setFault(Fault fault, double value)
{
    d->setFault(fault, value);
}

void RouterSimulator::clearFault(Fault fault)
{
    d->clearFault(fault);
}

void RouterSimulator::clearFaults()
{
    for (const FaultInfo &info : faultTable()) {
        clearFault(info.fault);
    }
}

bool RouterSimulator::hasFault(Fault fault) const
{
    return d->hasFault(fault);
}

qint64 RouterSimulator::now()
{
    return steadyMicroseconds();
}

const QList<ReceivedLine> &RouterSimulator::transcript() const
{
    return d->transcript().lines();
}

const QList<ReceivedLine> &RouterSimulator::overheard() const
{
    return d->overheard().lines();
}

void RouterSimulator::clearTranscript()
{
    d->transcript().clear();
    d->overheard().clear();
}

Counters RouterSimulator::counters() const
{
    return d->counters();
}

void RouterSimulator::resetCounters()
{
    d->resetCounters();
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
