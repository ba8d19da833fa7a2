#include "ais/aissentence.h"

#include "platform/qtversion.h"

using platform::TextPart;

namespace {

const QLatin1String targetHead("$VRAIM,");
const QLatin1String ownHead("$VRAIO,");
const QLatin1String alarmHead("$VRAIA,");
const QLatin1Char separator(',');
const QLatin1Char endMark('*');

constexpr uint maxHour = 23;
constexpr uint maxMinuteOrSecond = 59;

// Cuts one field after the other from the front of a text. A field that fails has no value, and
// neither has any other behind it.
class FieldCutter
{
public:
    explicit FieldCutter(const TextPart &text) : m_rest(text) { }

    bool failed() const { return m_failed; }

    TextPart upTo(QLatin1Char mark)
    {
        const auto end = m_rest.indexOf(mark);
        if (end < 0)
            m_failed = true;
        if (m_failed)
            return TextPart();
        TextPart field = m_rest.left(end);
        m_rest = m_rest.mid(end + 1);
        return field;
    }

    TextPart character()
    {
        TextPart field = upTo(separator);
        require(field.size() == 1);
        return field;
    }

    TextPart textWithEndMark()
    {
        const TextPart text = m_rest;
        return text.left(upTo(endMark).size() + 1);
    }

    uint numberOrZero()
    {
        const TextPart field = upTo(separator);
        return field.isEmpty() ? 0 : number(field, 10);
    }

    uint number(const TextPart &field, int base)
    {
        bool isNumber = false;
        const uint value = field.toUInt(&isNumber, base);
        require(isNumber);
        return value;
    }

    uint port(const TextPart &field)
    {
        const uint value = number(field, 16);
        require(value < AisPortCount);
        return value;
    }

    quint8 twoDigits(uint max)
    {
        const uint value = number(m_rest.left(2), 10);
        require(value <= max);
        m_rest = m_rest.mid(2);
        return quint8(value);
    }

    bool activeOrVoid()
    {
        const TextPart field = character();
        const bool active = field == QLatin1String("A");
        require(active || field == QLatin1String("V"));
        return active;
    }

    int fillBits()
    {
        const TextPart field = upTo(endMark);
        if (field.isEmpty())
            return 0;
        bool isNumber = false;
        const int value = field.toInt(&isNumber, 10);
        require(isNumber);
        return value;
    }

    void require(bool condition) { m_failed = m_failed || !condition; }

private:
    TextPart m_rest;
    bool m_failed = false;
};

} // namespace

std::optional<AisFragment> parseAisFragment(const QString &sentence)
{
    AisFragment result;
    const bool isOwn = sentence.startsWith(ownHead);
    if (!isOwn && !sentence.startsWith(targetHead))
        return std::nullopt;
    result.kind = isOwn ? QAis::OwnMessage : QAis::TargetMessage;

    FieldCutter cutter(platform::partFrom(sentence, targetHead.size()));
    result.total = cutter.numberOrZero();
    result.fragment = cutter.numberOrZero();
    result.sequence = cutter.numberOrZero();
    result.port = cutter.port(cutter.character());
    const TextPart payload = cutter.upTo(separator);
    cutter.require(!payload.isEmpty());
    result.fillBits = cutter.fillBits();
    if (cutter.failed())
        return std::nullopt;
    result.payload = payload.toLocal8Bit();
    return result;
}

std::optional<AisAlarmReport> parseAisAlarm(const QString &sentence)
{
    if (!sentence.startsWith(alarmHead))
        return std::nullopt;
    AisAlarmReport result;
    FieldCutter cutter(platform::partFrom(sentence, alarmHead.size()));
    result.port = cutter.port(cutter.upTo(separator));
    result.hour = cutter.twoDigits(maxHour);
    result.minute = cutter.twoDigits(maxMinuteOrSecond);
    result.second = cutter.twoDigits(maxMinuteOrSecond);
    cutter.upTo(separator); // parts of a second
    result.id = quint8(cutter.number(cutter.upTo(separator), 10));
    result.condition = cutter.activeOrVoid();
    result.acknowledged = cutter.activeOrVoid();
    // Deliberate: the star stays in the text and is shown.
    const TextPart text = cutter.textWithEndMark();
    if (cutter.failed())
        return std::nullopt;
    result.text = text.toString();
    return result;
}

bool parseAisPosition(const QString &sentence, QGpsKrd &position)
{
    const auto from = sentence.indexOf(separator) + 1;
    const auto end = sentence.indexOf(endMark);
    if (from == 0 || end < from)
        return false;
    return position.parseFields(sentence.mid(from, end - from));
}

void deliverAisSentence(const QString &sentence, AisPorts &ports)
{
    if (const std::optional<AisFragment> part = parseAisFragment(sentence)) {
        ports[part->port].decodeMessage(part->kind, part->total, part->fragment, part->sequence,
                                        part->fillBits, part->payload.constData());
    } else if (const std::optional<AisAlarmReport> alarm = parseAisAlarm(sentence)) {
        ports[alarm->port].updateAlarm(alarm->id, alarm->hour, alarm->minute, alarm->second,
                                       alarm->condition, alarm->acknowledged, alarm->text);
    }
}
