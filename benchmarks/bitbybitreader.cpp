#include "bitbybitreader.h"

#include <cstring>

void BitByBitReader::setPayload(const char *payload, int fillBits)
{
    const int length = int(std::strlen(payload));
    m_position = 0;
    m_bits.clear();
    m_bits.resize(length * 6);
    int index = 0;
    for (int i = 0; i < length; ++i) {
        int value = payload[i] - 48;
        if (value > 40)
            value -= 8;
        for (int mask = 32; mask > 0; mask /= 2)
            m_bits.setBit(index++, (value & mask) != 0);
    }
    m_bits.resize(length * 6 - fillBits);
}

quint32 BitByBitReader::readBits(int width)
{
    quint32 value = 0;
    for (int i = 0; i < width; ++i)
        value = value << 1 | quint32(m_bits.testBit(m_position++));
    return value;
}

QString BitByBitReader::readText(int length)
{
    QString text;
    for (int i = 0; i < length; ++i) {
        const quint32 value = readBits(6);
        text.append(QChar(ushort(value < 32 ? value + 64 : value)));
    }
    while (text.endsWith(QLatin1Char(' ')) || text.endsWith(QLatin1Char('@')))
        text.chop(1);
    return text;
}
