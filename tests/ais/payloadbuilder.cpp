#include "payloadbuilder.h"

namespace {

constexpr int bitsPerCharacter = 6;

QByteArray whole(const PayloadBuilder &builder, int fillBits)
{
    Q_ASSERT(builder.fillBits() == fillBits);
    Q_UNUSED(fillBits)
    return builder.payload();
}

} // namespace

PayloadBuilder &PayloadBuilder::put(quint32 value, int width)
{
    constexpr int valueBits = 32;
    for (int bit = width - 1; bit >= 0; --bit)
        m_bits.append(char(bit < valueBits ? value >> bit & 1 : 0));
    return *this;
}

PayloadBuilder &PayloadBuilder::putText(const QByteArray &text, int length)
{
    for (int i = 0; i < length; ++i) {
        const char code = i < text.size() ? text.at(i) : '@';
        put(quint32(code) % 64, bitsPerCharacter);
    }
    return *this;
}

int PayloadBuilder::fillBits() const
{
    return int((bitsPerCharacter - m_bits.size() % bitsPerCharacter) % bitsPerCharacter);
}

QByteArray PayloadBuilder::payload() const
{
    static const char alphabet[] =
        "0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVW`abcdefghijklmnopqrstuvw";
    QByteArray padded = m_bits;
    padded.append(fillBits(), '\0');
    QByteArray text;
    for (int i = 0; i < padded.size(); i += bitsPerCharacter) {
        int value = 0;
        for (int bit = 0; bit < bitsPerCharacter; ++bit)
            value = value * 2 + padded.at(i + bit);
        text.append(alphabet[value]);
    }
    return text;
}

QByteArray PositionReport::payload() const
{
    PayloadBuilder builder;
    builder.put(type, 6).put(repeat, 2).put(mmsi, 30).put(status, 4).put(turn, 8).put(speed, 10);
    builder.put(accuracy, 1).put(longitude, 28).put(latitude, 27).put(course, 12).put(heading, 9);
    builder.put(0, 6 + 2 + 3 + 1 + 19); // second, manoeuvre, spare, RAIM, radio
    return whole(builder, 0);
}

QByteArray VoyageData::payload() const
{
    PayloadBuilder builder;
    builder.put(5, 6).put(repeat, 2).put(mmsi, 30).put(version, 2).put(imo, 30);
    builder.putText(callSign, 7).putText(name, 20).put(shipType, 8);
    builder.put(toBow, 9).put(toStern, 9).put(toPort, 6).put(toStarboard, 6).put(fixType, 4);
    builder.put(month, 4).put(day, 5).put(hour, 5).put(minute, 6).put(draught, 8);
    builder.putText(destination, 20).put(dte, 1).put(0, 1);
    return whole(builder, FillBits);
}
