#include "ais/qais.h"

#include "ais/keptrecords.h"
#include "ais/qaisalarm.h"
#include "ais/timeofday.h"

namespace {

constexpr int tickMsecs = 1000;
constexpr int silenceSeconds = 300;     // of a target or of the own position, until it goes
constexpr int holdSourceSeconds = 10;   // of the position's source, until another may take over
constexpr double tenth = 10.0;          // speed, course and draught come in tenths
constexpr double partsOfMinute = 10000; // longitude and latitude come in these

enum MessageType : quint8 {
    PositionReport = 1,
    PositionReportAssigned = 2,
    PositionReportInterrogated = 3,
    VoyageData = 5
};

// Reads as QTime::addSecs() counts. Deliberate: that wraps at midnight, so what was refreshed in
// the last seconds of the day counts as over at once.
bool isOver(const QTime &since, int seconds, const QTime &now)
{
    return since.addSecs(seconds) <= now;
}

void readText(QBitStream &bits, int length, QString &text)
{
    constexpr int longestText = 20;
    constexpr int charactersPerRead = 5;
    constexpr int bitsPerCharacter = 6;
    constexpr quint32 characterMask = 0x3f;
    constexpr quint32 firstPlain = 32; // below are the codes from '@' on
    constexpr quint32 firstLetter = 64;

    QChar characters[longestText];
    int used = 0; // up to the last that isn't padding
    for (int i = 0; i < length; i += charactersPerRead) {
        const int now = qMin(charactersPerRead, length - i);
        const quint32 read = bits.readBits(now * bitsPerCharacter);
        for (int k = 0; k < now; ++k) {
            const quint32 value = read >> (now - 1 - k) * bitsPerCharacter & characterMask;
            const quint32 code = value < firstPlain ? value + firstLetter : value;
            characters[i + k] = QChar(ushort(code));
            // An at sign within the text does not end it.
            if (code != '@' && code != ' ')
                used = i + k + 1;
        }
    }
    text.setUnicode(characters, used);
}

// The fields of a position report in the order in which they come, each with its width.
void readPositionReport(QBitStream &bits, QAisTarget &target)
{
    target.m_navStatus = quint8(bits.readBits(4));
    target.m_rateOfTurn = qint8(bits.readBits(8));
    target.m_speed = bits.readBits(10) / tenth;
    target.m_accuracy = quint8(bits.readBits(1));
    // Deliberate: neither is sign-extended. West and south come out as positions that aren't valid.
    target.m_position.m_lon = bits.readBits(28) / partsOfMinute;
    target.m_position.m_lat = bits.readBits(27) / partsOfMinute;
    target.m_course = bits.readBits(12) / tenth;
    target.m_heading = qint32(bits.readBits(9));
}

// The fields of static and voyage data, likewise.
void readVoyageData(QBitStream &bits, QAisTarget &target)
{
    target.m_aisVersion = quint8(bits.readBits(2));
    target.m_imo = bits.readBits(30);
    readText(bits, 7, target.m_callSign);
    readText(bits, 20, target.m_shipName);
    target.m_shipType = quint8(bits.readBits(8));
    target.m_toBow = bits.readBits(9);
    target.m_toStern = bits.readBits(9);
    target.m_toPort = bits.readBits(6);
    target.m_toStarboard = bits.readBits(6);
    target.m_fixType = quint8(bits.readBits(4));
    target.m_etaMonth = quint8(bits.readBits(4));
    target.m_etaDay = quint8(bits.readBits(5));
    target.m_etaHour = quint8(bits.readBits(5));
    target.m_etaMinute = quint8(bits.readBits(6));
    target.m_draught = float(bits.readBits(8) / tenth);
    readText(bits, 20, target.m_destination);
    target.m_dte = quint8(bits.readBits(1));
}

} // namespace

QAis::QAis(QObject *parent) : QObject(parent)
{
    connect(&m_timer, &QTimer::timeout, this, &QAis::expire);
    m_timer.start(tickMsecs);
}

void QAis::setPortNumber(uint port)
{
    m_port = port;
}

QAisTarget *QAis::targetAt(int index) const
{
    return m_targets.value(index);
}

QAisAlarm *QAis::alarmAt(int index) const
{
    return m_alarms.value(index);
}

QAisAlarm *QAis::findAlarm(quint8 id) const
{
    for (QAisAlarm *alarm : m_alarms) {
        if (alarm->m_id == id)
            return alarm;
    }
    return nullptr;
}

double QAis::maxRange() const
{
    double greatest = -1.0;
    if (!m_hasOwnPosition)
        return greatest;
    for (const QAisTarget *target : m_targets) {
        // A range that is not a number fails the comparison.
        if (target->m_rangeValid && target->m_range > greatest)
            greatest = target->m_range;
    }
    return greatest;
}

bool QAis::decodeMessage(int kind, uint total, uint fragment, uint sequence, int fillBits,
                         const char *payload)
{
    if (fragment == 1) {
        m_bitStream.setPayload(payload, fillBits);
    } else {
        const bool isNext =
            sequence == m_fragmentSequence && fragment == m_fragmentNumber + 1 && fragment <= total;
        if (!isNext)
            return false;
        m_bitStream.appendPayload(payload, fillBits);
    }
    m_fragmentNumber = fragment;
    m_fragmentTotal = total;
    m_fragmentSequence = sequence;
    if (fragment != total)
        return false;
    decode(kind);
    return true;
}

void QAis::decode(int kind)
{
    const auto type = quint8(m_bitStream.readBits(6));
    m_bitStream.readBits(2); // repeat indicator
    const quint32 mmsi = m_bitStream.readBits(30);
    switch (type) {
    case PositionReport:
    case PositionReportAssigned:
    case PositionReportInterrogated:
        decodePositionReport(kind, mmsi);
        return;
    case VoyageData:
        decodeVoyageData(kind, mmsi);
        return;
    default:
        return;
    }
}

void QAis::decodePositionReport(int kind, quint32 mmsi)
{
    bool isNew = false;
    QAisTarget &target = kind == OwnMessage ? m_ownTarget : *findOrAddTarget(mmsi, isNew);
    target.m_mmsi = mmsi;
    readPositionReport(m_bitStream, target);
    target.m_dynamicValid = true;
    target.m_lastUpdate = TimeOfDay::now();

    if (kind == OwnMessage) {
        m_ownDynamicSeen = true;
        emit signalUpdateOwnTarget(m_port);
        QGpsKrd &position = target.m_position;
        if (position.m_lat > -QGpsKrd::MaxLatitude && position.m_lat < QGpsKrd::MaxLatitude
            && position.m_lon > -QGpsKrd::MaxLongitude && position.m_lon < QGpsKrd::MaxLongitude)
            emit signalNewOwnPosition(m_port, &position);
        ++m_ownMessageCount;
        return;
    }
    ++m_messageCount;
    updateRange(target);
    if (isNew) {
        emit signalAddTarget(m_port, mmsi);
    } else {
        emit signalUpdateTarget(m_port, mmsi);
    }
}

void QAis::decodeVoyageData(int kind, quint32 mmsi)
{
    bool isNew = false;
    QAisTarget &target = kind == OwnMessage ? m_ownTarget : *findOrAddTarget(mmsi, isNew);
    target.m_mmsi = mmsi;
    readVoyageData(m_bitStream, target);
    target.m_staticValid = true;
    target.m_lastUpdate = TimeOfDay::now();

    if (kind == OwnMessage) {
        m_ownStaticSeen = true;
        emit signalUpdateOwnTarget(m_port);
        ++m_ownMessageCount;
        return;
    }
    ++m_messageCount;
    if (isNew)
        emit signalAddTarget(m_port, mmsi);
    emit signalUpdateTarget(m_port, mmsi);
}

QAisTarget *QAis::findOrAddTarget(quint32 mmsi, bool &isNew)
{
    QAisTarget *target = findTarget(mmsi);
    isNew = !target;
    if (target)
        return target;
    // Deliberately never deleted: a window may go on reading it.
    target = new QAisTarget;
    KeptRecords::keep(target);
    m_targets.append(target);
    m_targetByMmsi.insert(mmsi, target);
    return target;
}

void QAis::updateAlarm(quint8 id, quint8 hour, quint8 minute, quint8 second, bool condition,
                       bool acknowledged, const QString &text)
{
    QAisAlarm *alarm = findAlarm(id);
    if (!alarm) {
        // Deliberately never deleted, as a target.
        alarm = new QAisAlarm;
        KeptRecords::keep(alarm);
        m_alarms.append(alarm);
    }
    // A new alarm always counts as changed.
    if (alarm->update(id, hour, minute, second, condition, acknowledged, text))
        emit signalUpdateAlarm(m_port, id);
}

bool QAis::setOwnPosition(uint source, const QGpsKrd *position)
{
    const bool isTaken = takesPosition(source);
    if (isTaken) {
        m_ownPosition.assign(*position);
        m_fromOwnPosition = GreatCircle(m_ownPosition);
        m_hasOwnPosition = true;
        m_positionSource = source;
        m_positionTime = TimeOfDay::now();
    }
    for (QAisTarget *target : qAsConst(m_targets))
        updateRange(*target);
    return isTaken;
}

bool QAis::takesPosition(uint source) const
{
    if (source == m_port || !m_hasOwnPosition || source == m_positionSource)
        return true;
    return isOver(m_positionTime, holdSourceSeconds, TimeOfDay::now());
}

void QAis::updateRange(QAisTarget &target) const
{
    target.m_rangeValid = m_hasOwnPosition && target.m_dynamicValid && target.m_position.isValid();
    if (target.m_rangeValid)
        target.m_range = m_fromOwnPosition.distanceTo(target.m_position);
}

void QAis::expire()
{
    const QTime now = TimeOfDay::now();
    expireOwnPosition(now);
    expireTargets(now);
}

void QAis::expireOwnPosition(const QTime &now)
{
    if (!m_hasOwnPosition || !isOver(m_positionTime, silenceSeconds, now))
        return;
    // The targets keep their ranges until their next report.
    m_hasOwnPosition = false;
    emit signalLostPosition(m_port);
}

void QAis::expireTargets(const QTime &now)
{
    for (int i = targetCount() - 1; i >= 0; --i) {
        const QAisTarget *target = m_targets.at(i);
        if (!isOver(target->m_lastUpdate, silenceSeconds, now))
            continue;
        const quint32 mmsi = target->m_mmsi;
        emit signalDeleteTarget(m_port, mmsi);
        m_targets.removeAt(i);
        m_targetByMmsi.remove(mmsi);
    }
}
