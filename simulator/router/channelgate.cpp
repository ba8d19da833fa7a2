#include "simulator/router/channelgate.h"

#include "simulator/line/sentence.h"

namespace tk7sim {

namespace {

constexpr int addressStart = 1; // behind '$' or '!'
constexpr int formatterStart = addressStart + headerLength;
constexpr int addressEnd = formatterStart + formatterLength;
constexpr int checksumTail = 3; // '*' and two digits

bool hasTalker(const QByteArray &line)
{
    if (line.size() < addressEnd || (!line.startsWith('$') && !line.startsWith('!'))
        || line.at(addressStart) == 'P') {
        return false;
    }
    const bool endsThere =
        line.size() == addressEnd || line.at(addressEnd) == ',' || line.at(addressEnd) == '*';
    const QByteArray address = line.mid(addressStart, addressEnd - addressStart);
    return endsThere && !address.contains(',') && !address.contains('*');
}

std::optional<quint32> statedChecksum(const QByteArray &line)
{
    const int star = int(line.indexOf('*'));
    return star >= 0 && star == line.size() - checksumTail ? parseHex(line.mid(star + 1), 2)
                                                           : std::nullopt;
}

bool isChecksumWrong(const QByteArray &line)
{
    return line.contains('*') && statedChecksum(line) != checksumOf(line);
}

bool isListed(const QByteArray &line, quint32 mask, const FormatterList &formatters)
{
    if (!hasTalker(line)) {
        return false;
    }
    const QByteArray formatter = line.mid(formatterStart, formatterLength);
    for (size_t slot = 0; slot < formatters.size(); ++slot) {
        if ((mask >> slot & 1U) != 0 && formatters[slot] == formatter) {
            return true;
        }
    }
    return false;
}

// The checksum is changed by what the talker changes in it: a right one stays right, and a wrong
// one isn't made to look right.
QByteArray withTalker(const QByteArray &line, const QByteArray &talker)
{
    QByteArray result = line;
    quint32 change = 0;
    for (int i = 0; i < headerLength; ++i) {
        change ^= static_cast<quint8>(line.at(addressStart + i) ^ talker.at(i));
        result[addressStart + i] = talker.at(i);
    }
    const auto stated = statedChecksum(line);
    if (stated) {
        result.replace(result.size() - 2, 2, hex(*stated ^ change, 2));
    }
    return result;
}

} // namespace

std::optional<QByteArray> passChannel(const QByteArray &line, const Channel &channel,
                                      const FormatterList &formatters)
{
    if (channel.crsEnabled && isChecksumWrong(line)) {
        return std::nullopt;
    }
    if (channel.filterEnabled) {
        const bool isWhite = channel.filterType == FilterType::White;
        if (isListed(line, channel.filterMask, formatters) != isWhite) {
            return std::nullopt;
        }
    }
    const bool isReplaced =
        channel.hdrEnabled && channel.hdr.size() == headerLength && hasTalker(line);
    return isReplaced ? withTalker(line, channel.hdr) : line;
}

} // namespace tk7sim
