#include "simulator/aisencoder.h"

#include <cmath>

namespace tk7sim {

namespace {

constexpr int bitsPerCharacter = 6;
constexpr int characterMask = 63;
constexpr int gapStart = 40; // the characters from here on stand eight places further
constexpr int gap = 8;
constexpr int firstCharacter = 48;
constexpr int spaceCode = 32;
constexpr char fillCharacter = '@';
constexpr int payloadPerSentence = 59; // keeps a sentence below 82 characters

constexpr double positionUnits = 600000.0; // 1/10000 of a minute of arc, a degree
constexpr double tenths = 10.0;

} // namespace

void AisEncoder::put(qint64 value, int width)
{
    for (int bit = width - 1; bit >= 0; --bit) {
        m_bits.append(static_cast<char>((value >> bit) & 1));
    }
}

void AisEncoder::putText(const char *text, int length)
{
    const QByteArray padded = QByteArray(text).left(length).leftJustified(length, fillCharacter);
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
        value &= characterMask;
        result.append(static_cast<char>(firstCharacter + value + (value < gapStart ? 0 : gap)));
    }
    return result;
}

QByteArray aisPositionReport(const AisVessel &vessel, double seconds, int utcSecond, char channel)
{
    const Fix fix = vessel.course.at(seconds);
    AisEncoder message;
    message.put(1, 6); // type
    message.put(0, 2); // repeat indicator
    message.put(vessel.mmsi, 30);
    message.put(0, 4); // under way using engine
    message.put(0, 8); // not turning
    message.put(std::llround(std::fabs(vessel.course.knots) * tenths), 10);
    message.put(1, 1); // position accuracy better than 10 m
    message.put(std::llround(fix.longitude * positionUnits), 28);
    message.put(std::llround(fix.latitude * positionUnits), 27);
    message.put(std::llround(fix.course * tenths) % 3600, 12);
    message.put(static_cast<qint64>(fix.course), 9); // heading
    message.put(utcSecond, 6);
    message.put(0, 2);  // no special manoeuvre
    message.put(0, 3);  // spare
    message.put(0, 1);  // RAIM not in use
    message.put(0, 19); // communication state
    return QByteArray("!AIVDM,1,1,,") + channel + ',' + message.payload() + ','
        + QByteArray::number(message.fillBits());
}

QList<QByteArray> aisVoyageData(const AisVessel &vessel, int sequence, char channel)
{
    AisEncoder message;
    message.put(5, 6); // type
    message.put(0, 2); // repeat indicator
    message.put(vessel.mmsi, 30);
    message.put(0, 2); // AIS version
    message.put(vessel.imo, 30);
    message.putText(vessel.callSign, 7);
    message.putText(vessel.name, 20);
    message.put(vessel.shipType, 8);
    message.put(90, 9); // metres from the antenna to the bow
    message.put(30, 9); // to the stern
    message.put(10, 6); // to port
    message.put(9, 6);  // to starboard
    message.put(1, 4);  // positioned by GPS
    message.put(0, 4);  // month of arrival not known
    message.put(0, 5);  // day
    message.put(24, 5); // hour not known
    message.put(60, 6); // minute not known
    message.put(62, 8); // draught, 1/10 m
    message.putText(vessel.destination, 20);
    message.put(0, 1); // data terminal ready
    message.put(0, 1); // spare

    const QByteArray payload = message.payload();
    const QByteArray tail = ',' + QByteArray::number(sequence) + ',' + channel + ',';
    return {"!AIVDM,2,1" + tail + payload.left(payloadPerSentence) + ",0",
            "!AIVDM,2,2" + tail + payload.mid(payloadPerSentence) + ','
                + QByteArray::number(message.fillBits())};
}

} // namespace tk7sim
