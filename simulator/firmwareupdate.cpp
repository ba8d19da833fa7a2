#include "simulator/firmwareupdate.h"

#include <QTimer>

namespace tk7sim {

namespace {

constexpr int beforeFirstPacket = 0; // the place of the request among the packets

QByteArray numbered(const char *head, int number)
{
    return head + QByteArray::number(number);
}

} // namespace

FirmwareUpdate::FirmwareUpdate(const FaultSet *faults, QObject *parent)
    : QObject(parent), m_faults(faults)
{
}

void FirmwareUpdate::start()
{
    ++m_attempt;
    m_image = FirmwareImage();
    m_state = State::Preparing;
    if (m_faults->has(Fault::FwRefuse)) {
        fail(static_cast<int>(FirmwareError::Refused));
        return;
    }
    if (isTroubledAt(beforeFirstPacket)) {
        return;
    }
    emit started();
    after(m_flashDuration, [this] { sayReady(); });
}

void FirmwareUpdate::sayReady()
{
    m_state = State::Receiving;
    sayLate("$VRFWR", SentenceForm::Bare);
    if (isFaultAt(Fault::FwEarly, m_image.nextPacket())) {
        sayLate(numbered("$VRFWP,", m_image.nextPacket()));
    }
}

void FirmwareUpdate::takePacket(const Sentence &sentence)
{
    if (!isActive()) {
        return; // left over from an update that has ended
    }
    if (m_state != State::Receiving) {
        fail(static_cast<int>(FirmwareError::Unprepared));
        return;
    }
    const int packet = m_image.nextPacket();
    const FirmwareError error = m_image.add(sentence.fields);
    if (error != FirmwareError::None) {
        fail(static_cast<int>(error));
        return;
    }
    if (!isTroubledAt(packet)) {
        acknowledge(packet);
    }
}

void FirmwareUpdate::takeSpoiltPacket()
{
    if (isActive()) {
        fail(static_cast<int>(FirmwareError::WrongChecksum));
    }
}

void FirmwareUpdate::acknowledge(int packet)
{
    const QByteArray body = numbered("$VRFWP,", packet);
    if (isFaultAt(Fault::FwWrongNumber, packet)) {
        sayLate(numbered("$VRFWP,", packet + 1));
    } else if (!isFaultAt(Fault::FwEarly, packet)) {
        sayLate(body);
    }
    if (isFaultAt(Fault::FwRepeat, packet)) {
        sayLate(body);
    }
    if (isFaultAt(Fault::FwEarly, packet + 1)) {
        sayLate(numbered("$VRFWP,", packet + 1));
    }
}

void FirmwareUpdate::finish()
{
    if (m_state != State::Receiving || isTroubledAt(m_image.nextPacket())) {
        return;
    }
    m_state = State::Checking;
    after(m_flashDuration, [this] { sayChecked(); });
}

void FirmwareUpdate::sayChecked()
{
    const bool isLastPlace = !m_faults->has(Fault::FwErrorAt);
    if (m_faults->has(Fault::FwError) && isLastPlace) {
        fail(static_cast<int>(m_faults->value(Fault::FwError)));
        return;
    }
    const FirmwareError error = m_image.check();
    if (error != FirmwareError::None) {
        fail(static_cast<int>(error));
        return;
    }
    m_state = State::Complete;
    m_whole = m_image;
    emit received();
    sayLate("$VRFWO", SentenceForm::Bare);
}

bool FirmwareUpdate::apply()
{
    if (m_state != State::Complete) {
        return false;
    }
    m_state = State::Idle;
    return true;
}

void FirmwareUpdate::abort()
{
    ++m_attempt;
    m_state = State::Idle;
}

void FirmwareUpdate::fail(int code)
{
    m_state = State::Idle;
    sayLate(numbered("$VRFWE,", code));
}

// A place is the number of a packet, that of the request before them, or that of the end behind
// them.
bool FirmwareUpdate::isTroubledAt(int place)
{
    if (isFaultAt(Fault::FwSilentAt, place)) {
        m_state = State::Idle;
        return true;
    }
    if (isFaultAt(Fault::FwErrorAt, place)) {
        const bool hasCode = m_faults->has(Fault::FwError);
        fail(static_cast<int>(hasCode ? m_faults->value(Fault::FwError)
                                      : faultInfo(Fault::FwError).defaultValue));
        return true;
    }
    return false;
}

void FirmwareUpdate::sayLate(const QByteArray &body, SentenceForm form)
{
    after(static_cast<int>(m_faults->value(Fault::FwLate)),
          [this, body, form] { emit said(body, form); });
}

bool FirmwareUpdate::isFaultAt(Fault fault, int packet) const
{
    return m_faults->has(fault) && static_cast<int>(m_faults->value(fault)) == packet;
}

template <typename Step> void FirmwareUpdate::after(int milliseconds, Step step)
{
    if (milliseconds <= 0) {
        step();
        return;
    }
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, this, [this, step, attempt = m_attempt] {
        if (attempt == m_attempt) {
            step();
        }
    });
}

} // namespace tk7sim
