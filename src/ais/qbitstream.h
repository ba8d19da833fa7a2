#pragma once

#include <QObject>
#include <QtEndian>

#include <limits>
#include <vector>

/*!
 * Turns the armoured text of AIS payloads into one long row of bits and hands it out again as
 * unsigned fields, most significant bit first.
 *
 * A message is setPayload() for its first fragment and appendPayload() for each further one, whose
 * bits start directly behind the last real bit of the one before. The class knows nothing of the
 * layout of messages.
 *
 * The bits are packed eight to a byte in wire order, so that a field is one load and two shifts.
 * At most MaxBits are kept, whatever comes; reading behind the kept bits, as behind the end, gives
 * 0 bits.
 */
class QBitStream : public QObject
{
    Q_OBJECT

public:
    /*! Bits that are kept, 128 KiB of them: two thousand sentences, where a message has nine. */
    static constexpr int MaxBits = 1 << 20;

    explicit QBitStream(QObject *parent = nullptr);

    /*!
     * Replaces all bits by those of \a payload and restarts reading at bit 0. Arguments and result
     * are those of appendPayload().
     */
    bool setPayload(const char *payload, int fillBits);

    /*!
     * Appends six bits for each byte of \a payload, a NUL-terminated text, less \a fillBits at the
     * end. Bytes outside the armour alphabet go through the same arithmetic. More fill bits than
     * there are bits leave none; a negative number appends that many 0 bits. An empty payload does
     * nothing, whatever its fill bits. The place of reading stays. Returns true.
     */
    bool appendPayload(const char *payload, int fillBits);

    /*!
     * Reads the next \a width bits, 1 to 32, as an unsigned number and moves on behind them. Any
     * other width gives 0 and doesn't move.
     */
    quint32 readBits(int width);

    /*! Number of bits, also of those behind MaxBits. */
    int size() const { return m_size; }

    /*! Index of the next bit to read. */
    int position() const { return m_position; }

private:
    // Behind the last byte with a bit in it stand so many more, all 0: a load never ends outside.
    static constexpr int Padding = sizeof(quint64);

    static int bytesFor(int bits) { return (bits + 7) / 8; }
    void resize(qint64 size);

    int m_position = 0;
    std::vector<quint8> m_bits = std::vector<quint8>(Padding); // all bits behind m_size are 0
    int m_size = 0;
};

inline quint32 QBitStream::readBits(int width)
{
    constexpr int maxWidth = 32;
    constexpr int loadedBits = 64;
    if (width < 1 || width > maxWidth)
        return 0;
    const int from = m_position;
    m_position = from > std::numeric_limits<int>::max() - width ? from : from + width;
    const size_t byte = size_t(from) / 8;
    if (byte + Padding > m_bits.size())
        return 0;
    const quint64 loaded = qFromBigEndian<quint64>(m_bits.data() + byte);
    // There is no signed read: a field that is two's complement comes out as its raw number.
    return quint32(loaded << (from % 8) >> (loadedBits - width));
}
