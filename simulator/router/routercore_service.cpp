#include "simulator/router/portstatistics.h"
#include "simulator/router/routercore.h"

// What the service asks of the router: counters, AIS test, mode, lock, firmware.

namespace tk7sim {

void RouterCore::handleChipId(const Sentence & /*sentence*/)
{
    say("$VRSER," + m_status.chipId.toHex().toUpper());
}

void RouterCore::handleStatistics(const Sentence &sentence)
{
    const auto port = sentence.fields.size() == 1
        ? parseDecimal(sentence.fields.constFirst(), portCount - 1)
        : std::nullopt;
    if (!port) {
        refuse();
        return;
    }
    const PortCounters c = m_statistics ? m_statistics->at(*port) : PortCounters();
    QByteArray body = "$VRSTA," + QByteArray::number(*port);
    for (const quint32 number : {c.print, c.crs, c.broken, c.size, c.txFull}) {
        body += ',' + QByteArray::number(number);
    }
    say(body);
}

void RouterCore::handleClearStatistics(const Sentence & /*sentence*/)
{
    if (m_statistics) {
        m_statistics->clear();
    }
}

void RouterCore::handleAisTest(const Sentence &sentence)
{
    const QByteArray field = sentence.fields.join(',');
    if (field != "ON" && field != "OFF") {
        refuse();
        return;
    }
    setAisTest(field == "ON");
}

void RouterCore::handleMode(const Sentence &sentence)
{
    const QByteArray text = sentence.fields.join(',');
    if (!allows(LockStore::modeLevel) || text.isEmpty() || text.size() > maxModeLength
        || !isAlphanumeric(text)) {
        refuse();
        return;
    }
    m_status.mode = text;
    say("$VRMOD," + text);
    emit modeChanged(text);
}

void RouterCore::handleSetPassword(const Sentence &sentence)
{
    LockStore next = m_lock;
    const bool ok = !m_faults->has(Fault::Locked) && next.setPassword(sentence.fields.join(','))
        && store(m_eeprom, next.password());
    say(ok ? "$VRPWS,OK" : "$VRPWS,ERROR");
    if (!ok) {
        return; // a lock status would speak of a wrong password
    }
    m_lock = next;
    sayLock();
}

void RouterCore::handleUnlock(const Sentence &sentence)
{
    if (!m_faults->has(Fault::Locked)) {
        m_lock.unlock(sentence.fields.join(','));
    }
    sayLock();
}

void RouterCore::handleRemovePassword(const Sentence & /*sentence*/)
{
    LockStore next = m_lock;
    if (m_faults->has(Fault::Locked) || !next.remove() || !store(m_eeprom, QByteArray())) {
        refuse();
        return;
    }
    m_lock = next;
    sayLock();
}

void RouterCore::handleViewPassword(const Sentence & /*sentence*/)
{
    if (!allows(LockStore::viewLevel)) {
        refuse();
        return;
    }
    say("$VRPWV," + m_lock.password());
}

void RouterCore::handleLock(const Sentence & /*sentence*/)
{
    if (m_faults->has(Fault::Locked) || !m_lock.lock()) {
        refuse();
        return;
    }
    sayLock();
}

void RouterCore::handleFirmwareStart(const Sentence & /*sentence*/)
{
    m_firmware.start();
}

void RouterCore::handleFirmwarePacket(const Sentence &sentence)
{
    m_firmware.takePacket(sentence);
}

void RouterCore::handleFirmwareEnd(const Sentence & /*sentence*/)
{
    m_firmware.finish();
}

// The flash memory has two banks, of which the firmware in use fills one; the new one went to the
// other.
void RouterCore::handleFirmwareUse(const Sentence & /*sentence*/)
{
    const auto header = m_firmware.wholeHeader();
    if (!m_firmware.apply() || !header) {
        refuse();
        return;
    }
    m_status.versionMajor = header->versionMajor;
    m_status.versionMinor = header->versionMinor;
    if (!header->mode.isEmpty()) {
        m_status.mode = header->mode;
    }
    m_status.flashBank = m_status.flashBank == 0 ? 1 : 0;
    restart();
    m_rebootTimer.start();
    emit rebooting();
}

void RouterCore::slotRebootDone()
{
    emit rebooted();
}

void RouterCore::setAisTest(bool on)
{
    if (on != m_isAisTestOn) {
        m_isAisTestOn = on;
        emit aisTestChanged(on);
    }
}

bool RouterCore::isLocked() const
{
    return m_faults->has(Fault::Locked) || m_lock.isLocked();
}

bool RouterCore::allows(int level) const
{
    return !m_faults->has(Fault::Locked) && m_lock.allows(level);
}

void RouterCore::sayLock()
{
    say(lockBody());
    emit lockChanged();
}

QByteArray RouterCore::lockBody() const
{
    if (m_faults->has(Fault::Locked)) {
        return "$VRLCK,1,0";
    }
    return QByteArray("$VRLCK,") + (m_lock.isEnabled() ? '1' : '0') + ','
        + QByteArray::number(m_lock.level());
}

} // namespace tk7sim
