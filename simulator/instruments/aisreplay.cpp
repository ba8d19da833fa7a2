#include "simulator/instruments/aisreplay.h"

#include "simulator/line/sentence.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace tk7sim {

namespace {

constexpr int maxLength = 82;
constexpr int talkerLength = 2;
constexpr int checksumTail = 3;  // '*' and two digits
constexpr int messageFields = 7; // of VDM and VDO: head, three numbers, channel, payload, fill bits
constexpr int channelField = 4;
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

std::optional<QByteArray> wrapAisLine(const QByteArray &line, int port)
{
    constexpr int nameStart = 1 + talkerLength;
    auto fields = fieldsOf(withoutTags(line.trimmed()));
    if (fields.isEmpty() || fields.constFirst().size() != nameStart + 3) {
        return std::nullopt;
    }
    const char mark = fields.constFirst().at(0);
    const QByteArray name = fields.constFirst().mid(nameStart);
    const QByteArray portDigit = QByteArray::number(port, 16).toUpper();
    const bool isMessage = mark == '!' && (name == "VDM" || name == "VDO");
    if (isMessage && fields.size() == messageFields && !fields.at(payloadField).isEmpty()) {
        fields[0] = name == "VDM" ? "$VRAIM" : "$VRAIO";
        fields[channelField] = portDigit;
        return fields.join(',');
    }
    if (mark == '$' && name == "ALR" && fields.size() == alarmFields) {
        fields[0] = "$VRAIA," + portDigit;
        return fields.join(',');
    }
    return std::nullopt;
}

AisReplay::AisReplay(int port, const QByteArray &contents) : m_port(port)
{
    const auto lines = contents.split('\n');
    for (const QByteArray &line : lines) {
        const QByteArray text = line.trimmed();
        if (text.isEmpty() || text.startsWith('#')) {
            continue;
        }
        const auto body = wrapAisLine(text, port);
        if (body) {
            m_bodies.append(*body);
        } else {
            ++m_leftOut;
        }
    }
}

std::optional<AisReplay> AisReplay::load(int port, const QString &path, QString *error)
{
    // A pipe or a device would keep the program waiting, or never end.
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) {
        *error = QStringLiteral("%1 is no file").arg(path);
        return std::nullopt;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    const QByteArray contents = file.read(maxFileSize + 1);
    if (contents.size() > maxFileSize) {
        *error = QStringLiteral("%1 is too long").arg(path);
        return std::nullopt;
    }
    AisReplay replay(port, contents);
    if (replay.lineCount() == 0) {
        *error = QStringLiteral("%1 holds no AIS sentence").arg(path);
        return std::nullopt;
    }
    return replay;
}

void AisReplay::start(qint64 now)
{
    m_now = now;
    m_owed = 1;
    m_next = 0;
}

std::optional<QByteArray> AisReplay::take(qint64 now)
{
    const qint64 passed = qBound<qint64>(0, now - m_now, longestGap);
    m_now = std::max(m_now, now);
    m_owed += static_cast<double>(passed) * m_rate / interval;
    // What a full line had no room for isn't made up for later.
    const double mostOwed = static_cast<double>(longestGap) * std::max(m_rate, 1.0) / interval;
    m_owed = std::min(m_owed, mostOwed);
    if (m_owed < 1 || m_bodies.isEmpty()) {
        return std::nullopt;
    }
    m_owed -= 1;
    const QByteArray body = m_bodies.at(m_next);
    m_next = (m_next + 1) % m_bodies.size();
    return body;
}

} // namespace tk7sim
