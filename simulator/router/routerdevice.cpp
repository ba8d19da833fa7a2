#include "simulator/router/routerdevice.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr double millisecondsPerSecond = 1000.0;
constexpr qint64 microsecondsPerMillisecond = 1000;
constexpr int bulkShare = 10;       // of a slow router's delay: the gap within its configuration
constexpr int trafficBacklog = 512; // bytes of traffic that may stand before an answer

} // namespace

RouterDevice::RouterDevice(QObject *parent)
    : QObject(parent), m_cable(this), m_pacer(this), m_core(&m_faults, this),
      m_ways(&m_core.working(), this), m_silentTimer(this), m_busyTimer(this), m_unplugTimer(this),
      m_replugTimer(this)
{
    m_pacer.setSpeed(m_core.speed());
    m_core.setStatistics(&m_ways.statistics());
    connectLine();
    connectCore();
    connectFaults();
}

void RouterDevice::connectLine()
{
    connect(&m_cable, &Cable::bytesReceived, this, &RouterDevice::hear);
    connect(&m_cable, &Cable::pluggedChanged, this, [this](bool plugged) {
        if (plugged) {
            m_replugTimer.stop();
        } else {
            m_assembler.clear();
        }
    });
    connect(&m_pacer, &LinePacer::bytesDue, this, &RouterDevice::carry);
    connect(&m_pacer, &LinePacer::speedReached, &m_core, &RouterCore::moveTo);
    connect(&m_ways, &TrafficWays::linesWaiting, this, &RouterDevice::pumpTraffic);
}

void RouterDevice::connectCore()
{
    connect(&m_core, &RouterCore::answered, this, &RouterDevice::answer);
    connect(&m_core, &RouterCore::ended, this, [this] {
        m_pacer.clear();
        m_lastDue = 0;
    });
    connect(&m_core, &RouterCore::speedChanged, this, [this](int baud) {
        m_pacer.setSpeed(baud);
        m_assembler.clear();
    });
    connect(&m_core, &RouterCore::viewChanged, &m_ways, &TrafficWays::setView);
    connect(&m_core, &RouterCore::aisTestChanged, &m_ways, &TrafficWays::setAisTest);
    connect(&m_core, &RouterCore::configurationChanged, this,
            [this] { m_ways.statistics().setConfig(m_core.working()); });
    connect(&m_core, &RouterCore::connectedChanged, this, [this](bool connected) {
        m_ways.setCounting(connected);
        for (const LateFault &late : lateFaults()) {
            if (connected && m_faults.has(late.fault)) {
                startTimer(late.fault, late.timer);
            }
        }
    });
}

void RouterDevice::connectFaults()
{
    for (QTimer *timer : {&m_silentTimer, &m_busyTimer, &m_unplugTimer, &m_replugTimer}) {
        timer->setSingleShot(true);
    }
    connect(&m_silentTimer, &QTimer::timeout, this, &RouterDevice::fallSilent);
    connect(&m_busyTimer, &QTimer::timeout, &m_core, &RouterCore::giveAway);
    connect(&m_unplugTimer, &QTimer::timeout, this, [this] {
        m_faults.clear(Fault::Unplugged);
        pullOut();
    });
    connect(&m_replugTimer, &QTimer::timeout, &m_cable, &Cable::plug);
}

void RouterDevice::close()
{
    for (QTimer *timer : {&m_silentTimer, &m_busyTimer, &m_unplugTimer, &m_replugTimer}) {
        timer->stop();
    }
    m_cable.close();
    m_assembler.clear();
}

void RouterDevice::pullOut()
{
    m_unplugTimer.stop();
    if (m_cable.isPlugged() && m_faults.has(Fault::Replug)) {
        startTimer(Fault::Replug, &m_replugTimer);
    }
    m_cable.unplug();
}

void RouterDevice::hear(const QByteArray &bytes, int lineSpeed)
{
    if (lineSpeed != m_core.speed()) {
        m_garbageBytes += static_cast<quint64>(bytes.size());
        m_assembler.clear();
        m_overheard.append(bytes, lineSpeed);
        return;
    }
    const auto lines = m_assembler.take(bytes);
    for (const QByteArray &line : lines) {
        hearLine(line, lineSpeed);
    }
}

void RouterDevice::hearLine(const QByteArray &line, int lineSpeed)
{
    m_transcript.append(line, lineSpeed);
    emit lineReceived(line);
    if (!isDead()) {
        m_core.hear(line);
    }
}

void RouterDevice::answer(const Answer &answer)
{
    const bool isChecked = answer.form == SentenceForm::Checked;
    QByteArray line = answer.body + "\r\n";
    if (isChecked) {
        line = m_faults.has(Fault::WrongChecksums) ? withWrongChecksum(answer.body)
                                                   : withChecksum(answer.body);
    }
    send(line, answer.isBulk, answer.thenSpeed);
}

void RouterDevice::send(const QByteArray &line, bool isBulk, int thenSpeed)
{
    if (isDead()) {
        return;
    }
    const QByteArray bytes =
        m_faults.has(Fault::Noise) ? m_noise.spoil(line, m_faults.value(Fault::Noise)) : line;
    if (!m_pacer.enqueue(bytes, delayOf(isBulk), thenSpeed)) {
        m_lostBytes += static_cast<quint64>(bytes.size());
        return;
    }
    emit lineSent(line);
}

// Milliseconds by which a slow router says something later.
int RouterDevice::delayOf(bool isBulk)
{
    if (!m_faults.has(Fault::Slow)) {
        return 0;
    }
    const auto wait = static_cast<qint64>(m_faults.value(Fault::Slow));
    const qint64 gap = isBulk ? wait / bulkShare : 0;
    const qint64 current = steadyMicroseconds();
    m_lastDue = std::max(current + wait * microsecondsPerMillisecond,
                         m_lastDue + gap * microsecondsPerMillisecond);
    return static_cast<int>((m_lastDue - current) / microsecondsPerMillisecond);
}

// The queue never runs dry while there is more traffic, and an answer never waits behind all of it.
// While a firmware comes in the router shows none.
void RouterDevice::pumpTraffic()
{
    if (isDead() || m_core.firmware().isActive()) {
        m_ways.clear();
        return;
    }
    while (m_pacer.queuedBytes() < trafficBacklog) {
        const QByteArray line = m_ways.takeLine();
        if (line.isEmpty()) {
            return;
        }
        sendTraffic(line);
    }
}

void RouterDevice::sendTraffic(const QByteArray &line)
{
    const bool isSpoilt = m_faults.has(Fault::WrongChecksums) && line.contains('*');
    send(isSpoilt ? withWrongChecksum(line.left(line.indexOf('*'))) : line);
}

// A receiver at another speed than the sender hears as many bytes, but not these.
void RouterDevice::carry(const QByteArray &bytes)
{
    const bool isClean = m_cable.lineSpeed() == m_core.speed();
    const int written = m_cable.write(isClean ? bytes : m_noise.garble(bytes));
    m_lostBytes += static_cast<quint64>(bytes.size() - written);
    pumpTraffic();
}

void RouterDevice::setSeed(quint32 seed)
{
    m_noise = LineNoise(seed);
    m_ways.setSeed(seed);
}

std::array<RouterDevice::LateFault, 3> RouterDevice::lateFaults()
{
    return {{{Fault::SilentAfter, &m_silentTimer},
             {Fault::BusyAfter, &m_busyTimer},
             {Fault::Unplugged, &m_unplugTimer}}};
}

void RouterDevice::startTimer(Fault fault, QTimer *timer)
{
    timer->start(static_cast<int>(m_faults.value(fault) * millisecondsPerSecond));
}

void RouterDevice::fallSilent()
{
    m_isSilenced = true;
    m_pacer.clear();
}

bool RouterDevice::isDead() const
{
    return m_isSilenced || m_core.isRebooting() || m_faults.has(Fault::Silent);
}

void RouterDevice::setFault(Fault fault, double value)
{
    if (fault == Fault::InputSilent) {
        setInputSilent(static_cast<int>(qBound(0.0, value, faultInfo(fault).maximum)), true);
        return;
    }
    m_faults.set(fault, value);
    if (fault == Fault::Silent) {
        m_pacer.clear();
    }
    m_ways.setErrors(m_faults.value(Fault::InputErrors), m_faults.value(Fault::InputDamage));
    for (const LateFault &late : lateFaults()) {
        if (late.fault == fault && m_core.isConnected()) {
            startTimer(fault, late.timer);
        }
    }
}

void RouterDevice::clearFault(Fault fault)
{
    m_faults.clear(fault);
    for (const LateFault &late : lateFaults()) {
        if (late.fault == fault) {
            late.timer->stop();
        }
    }
    if (fault == Fault::SilentAfter) {
        m_isSilenced = false;
    } else if (fault == Fault::BusyAfter) {
        m_core.takeBack();
    } else if (fault == Fault::Replug) {
        m_replugTimer.stop();
    } else if (fault == Fault::Slow) {
        m_lastDue = 0;
    } else if (fault == Fault::InputSilent) {
        for (int port = 0; port < portCount; ++port) {
            setInputSilent(port, false);
        }
    }
    m_ways.setErrors(m_faults.value(Fault::InputErrors), m_faults.value(Fault::InputDamage));
}

void RouterDevice::setInputSilent(int port, bool silent)
{
    if (m_ways.isInputSilent(port) == silent) {
        return;
    }
    m_ways.setInputSilent(port, silent);
    if (silent) {
        m_faults.set(Fault::InputSilent, port);
    } else if (!m_ways.isAnyInputSilent()) {
        m_faults.clear(Fault::InputSilent);
    }
}

Counters RouterDevice::counters() const
{
    const RouterComplaints &complaints = m_core.complaints();
    return {m_garbageBytes, complaints.checksumErrors, complaints.refusedSentences,
            complaints.unknownSentences, m_lostBytes};
}

void RouterDevice::resetCounters()
{
    m_garbageBytes = 0;
    m_lostBytes = 0;
    m_core.resetComplaints();
}

} // namespace tk7sim
