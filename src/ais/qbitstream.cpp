#include "ais/qbitstream.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr int bitsPerCharacter = 6;
// So many characters together with the bits of a byte begun before still fit in one store.
constexpr int charactersPerStore = 8;
constexpr int storedBits = 64;

constexpr quint8 sixBits(quint8 code)
{
    constexpr quint8 firstCode = 48;
    constexpr quint8 gapOfCodes = 8;
    // Deliberate: with this threshold the codes 88 and 96 both stand for 40.
    constexpr quint8 threshold = 41;
    const quint8 value = quint8(code - firstCode);
    return quint8((value < threshold ? value : quint8(value - gapOfCodes)) & 0x3f);
}

constexpr std::array<quint8, 256> makeArmour()
{
    std::array<quint8, 256> values{};
    for (size_t code = 0; code < values.size(); ++code)
        values[code] = sixBits(quint8(code));
    return values;
}

constexpr std::array<quint8, 256> armour = makeArmour();

// Writes the six bits of each of the characters from the bit \a from on, and 0 behind them.
void storeCharacters(quint8 *bits, int from, const char *characters, int count)
{
    quint8 *out = bits + from / 8;
    const int begun = from % 8;
    quint64 pending = begun ? quint64(*out >> (8 - begun)) : 0;
    while (count > 0) {
        const int now = qMin(count, charactersPerStore);
        for (int i = 0; i < now; ++i)
            pending = pending << bitsPerCharacter | armour[quint8(characters[i])];
        qToBigEndian(pending << (storedBits - begun - now * bitsPerCharacter), out);
        // Only a last, smaller piece can end within another bit of a byte.
        pending &= (1U << begun) - 1;
        out += charactersPerStore * bitsPerCharacter / 8;
        characters += now;
        count -= now;
    }
}

} // namespace

QBitStream::QBitStream(QObject *parent) : QObject(parent) { }

bool QBitStream::setPayload(const char *payload, int fillBits)
{
    m_position = 0;
    resize(0);
    return appendPayload(payload, fillBits);
}

bool QBitStream::appendPayload(const char *payload, int fillBits)
{
    const size_t length = std::strlen(payload);
    if (length == 0)
        return true;
    const int from = m_size;
    const qint64 whole = from + qint64(length) * bitsPerCharacter;
    resize(whole);
    const int room = qMax(0, MaxBits - from) / bitsPerCharacter;
    storeCharacters(m_bits.data(), qMin(from, MaxBits), payload,
                    int(qMin<size_t>(length, size_t(room))));
    if (fillBits != 0)
        resize(whole - fillBits);
    return true;
}

void QBitStream::resize(qint64 size)
{
    const int keptBefore = qMin(m_size, MaxBits);
    m_size = int(qBound(qint64(0), size, qint64(std::numeric_limits<int>::max())));
    const int kept = qMin(m_size, MaxBits);
    if (kept >= keptBefore) {
        const size_t needed = size_t(bytesFor(kept)) + Padding;
        if (m_bits.size() < needed)
            m_bits.resize(needed, 0);
        return;
    }
    std::fill(m_bits.begin() + bytesFor(kept), m_bits.begin() + bytesFor(keptBefore), quint8(0));
    if (kept % 8 != 0)
        m_bits[size_t(kept / 8)] &= quint8(0xff << (8 - kept % 8));
}
