#include "simulator/router/firmwareupdate.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr int beforeFirstPacket = 0; // the place of the request among the packets

QByteArray numbered(const char *head, int number)
{
    return head + QByteArray::number(number);
}

} // namespace

FirmwareUpdate::FirmwareUpdate(const FaultSet *faults, QObject *parent)
    : QObject(parent), m_faults(faults), m_flashTimer(this), m_wordTimer(this)
{
    m_flashTimer.setInterval(defaultFlashDuration);
    connect(&m_flashTimer, &QTimer::timeout, this, &FirmwareUpdate::slotFlashDone);
    connect(&m_wordTimer, &QTimer::timeout, this, &FirmwareUpdate::slotWordDue);
    for (QTimer *timer : {&m_flashTimer, &m_wordTimer}) {
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
    }
}

void FirmwareUpdate::start()
{
    forgetPlans();
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
    startFlash(State::Preparing);
}

void FirmwareUpdate::startFlash(State state)
{
    m_state = state;
    if (m_flashTimer.interval() > 0) {
        m_flashTimer.start();
    } else {
        slotFlashDone();
    }
}

void FirmwareUpdate::slotFlashDone()
{
    if (m_state == State::Preparing) {
        sayReady();
    } else if (m_state == State::Checking) {
        sayChecked();
    }
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
    startFlash(State::Checking);
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
    forgetPlans();
    m_state = State::Idle;
}

// What was put off in one update isn't done in the next.
void FirmwareUpdate::forgetPlans()
{
    m_flashTimer.stop();
    m_wordTimer.stop();
    m_words.clear();
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
    const auto late = static_cast<int>(m_faults->value(Fault::FwLate));
    if (late == 0 && m_words.isEmpty()) {
        emit said(body, form);
        return;
    }
    m_words.enqueue({body, form, QDeadlineTimer(late, Qt::PreciseTimer)});
    if (!m_wordTimer.isActive()) {
        m_wordTimer.start(late);
    }
}

void FirmwareUpdate::slotWordDue()
{
    while (!m_words.isEmpty() && m_words.constFirst().due.hasExpired()) {
        const Word word = m_words.dequeue();
        emit said(word.body, word.form);
    }
    if (!m_words.isEmpty()) {
        m_wordTimer.start(
            static_cast<int>(std::max<qint64>(m_words.constFirst().due.remainingTime(), 1)));
    }
}

bool FirmwareUpdate::isFaultAt(Fault fault, int packet) const
{
    return m_faults->has(fault) && static_cast<int>(m_faults->value(fault)) == packet;
}

} // namespace tk7sim
