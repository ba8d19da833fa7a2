#include "simulator/instruments/aisencoder.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr int bitsPerCharacter = 6;
constexpr int gapStart = 40; // the characters from here on stand eight places further
constexpr int gap = 8;
constexpr int firstCharacter = 48;
constexpr int spaceCode = 32;
constexpr char fillCharacter = '@';
constexpr int payloadPerSentence = 59; // keeps a sentence below 82 characters

constexpr int voyageDataType = 5;

} // namespace

void AisEncoder::put(qint64 value, int width)
{
    for (int bit = width - 1; bit >= 0; --bit) {
        m_bits.append(static_cast<char>((value >> bit) & 1));
    }
}

void AisEncoder::putText(const QByteArray &text, int length)
{
    const QByteArray padded = text.left(length).leftJustified(length, fillCharacter);
    for (const char c : padded) {
        // '@' to '_' are 0 to 31, blank to '?' are 32 to 63.
        put(c < fillCharacter ? c - ' ' + spaceCode : c - fillCharacter, bitsPerCharacter);
    }
}

int AisEncoder::fillBits() const
{
    return (bitsPerCharacter - bitCount() % bitsPerCharacter) % bitsPerCharacter;
}

QByteArray AisEncoder::payload() const
{
    const QByteArray bits = m_bits + QByteArray(fillBits(), '\0');
    QByteArray result;
    for (int i = 0; i < bits.size(); i += bitsPerCharacter) {
        int value = 0;
        for (int bit = 0; bit < bitsPerCharacter; ++bit) {
            value = (value << 1) | bits.at(i + bit);
        }
        result.append(static_cast<char>(firstCharacter + value + (value < gapStart ? 0 : gap)));
    }
    return result;
}

AisEncoder encoded(const AisPositionReport &report)
{
    AisEncoder message;
    message.put(report.type, 6);
    message.put(0, 2); // repeat indicator
    message.put(report.mmsi, 30);
    message.put(report.navStatus, 4);
    message.put(report.rateOfTurn, 8);
    message.put(report.speed, 10);
    message.put(report.isAccurate, 1);
    message.put(report.longitude, 28);
    message.put(report.latitude, 27);
    message.put(report.course, 12);
    message.put(report.heading, 9);
    message.put(report.second, 6);
    message.put(0, 2);  // no special manoeuvre
    message.put(0, 3);  // spare
    message.put(0, 1);  // RAIM not in use
    message.put(0, 19); // communication state
    return message;
}

AisEncoder encoded(const AisVoyageData &data)
{
    AisEncoder message;
    message.put(voyageDataType, 6);
    message.put(0, 2); // repeat indicator
    message.put(data.mmsi, 30);
    message.put(0, 2); // AIS version
    message.put(data.imo, 30);
    message.putText(data.callSign, AisVoyageData::callSignLength);
    message.putText(data.name, AisVoyageData::textLength);
    message.put(data.shipType, 8);
    message.put(data.toBow, 9);
    message.put(data.toStern, 9);
    message.put(data.toPort, 6);
    message.put(data.toStarboard, 6);
    message.put(data.fixType, 4);
    message.put(data.month, 4);
    message.put(data.day, 5);
    message.put(data.hour, 5);
    message.put(data.minute, 6);
    message.put(data.draught, 8);
    message.putText(data.destination, AisVoyageData::textLength);
    message.put(0, 1); // data terminal ready
    message.put(0, 1); // spare
    return message;
}

QList<QByteArray> aisBodies(const QByteArray &head, int sequence, const QByteArray &channel,
                            const AisEncoder &message)
{
    const QByteArray payload = message.payload();
    const int total =
        std::max((int(payload.size()) + payloadPerSentence - 1) / payloadPerSentence, 1);
    const QByteArray shared = total > 1 ? QByteArray::number(sequence) : QByteArray();
    QList<QByteArray> bodies;
    for (int i = 0; i < total; ++i) {
        const int fillBits = i == total - 1 ? message.fillBits() : 0;
        bodies.append(head + ',' + QByteArray::number(total) + ',' + QByteArray::number(i + 1) + ','
                      + shared + ',' + channel + ','
                      + payload.mid(i * payloadPerSentence, payloadPerSentence) + ','
                      + QByteArray::number(fillBits));
    }
    return bodies;
}

} // namespace tk7sim
