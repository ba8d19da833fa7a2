#include "simulator/instruments/aissentence.h"

#include "simulator/line/sentence.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr int maxLength = 82;
constexpr int talkerLength = 2;
constexpr int checksumTail = 3;  // '*' and two digits
constexpr int messageFields = 7; // of VDM and VDO: head, three numbers, channel, payload, fill bits
constexpr int payloadField = 5;
constexpr int alarmFields = 6; // of ALR: head, time, id, condition, acknowledgement, text

bool isPrintable(const QByteArray &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](char c) { return c >= ' ' && c <= '~'; });
}

// Tags of a recorder: "\s:station,c:1700000000*0E\!AIVDM..."
QByteArray withoutTags(const QByteArray &line)
{
    if (!line.startsWith('\\')) {
        return line;
    }
    const auto end = line.indexOf('\\', 1);
    return end < 0 ? QByteArray() : line.mid(end + 1);
}

// The fields of a sentence with a right checksum, its head among them; nothing of any other.
QList<QByteArray> fieldsOf(const QByteArray &line)
{
    const auto star = line.indexOf('*');
    const bool isSentence = line.size() <= maxLength && isPrintable(line) && star > 0
        && star == line.size() - checksumTail;
    if (!isSentence) {
        return {};
    }
    const auto stated = parseHex(line.mid(star + 1), 2);
    if (!stated || *stated != checksumOf(line)) {
        return {};
    }
    return line.left(star).split(',');
}

} // namespace

QList<QByteArray> aisFieldsOf(const QByteArray &line)
{
    constexpr int nameStart = 1 + talkerLength;
    const auto fields = fieldsOf(withoutTags(line.trimmed()));
    if (fields.isEmpty() || fields.constFirst().size() != nameStart + 3) {
        return {};
    }
    const char mark = fields.constFirst().at(0);
    const QByteArray name = fields.constFirst().mid(nameStart);
    const bool isMessage = mark == '!' && (name == "VDM" || name == "VDO")
        && fields.size() == messageFields && !fields.at(payloadField).isEmpty();
    const bool isAlarm = mark == '$' && name == "ALR" && fields.size() == alarmFields;
    return isMessage || isAlarm ? fields : QList<QByteArray>();
}

} // namespace tk7sim
