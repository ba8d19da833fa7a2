#pragma once

#include <QCoreApplication>
#include <QString>

/*!
 * The byte that names what the monitor shows, as $VRVVW carries it in both directions.
 *
 * | Byte       | Under view                  |
 * |------------|-----------------------------|
 * | 255        | nothing                     |
 * | 0xF0 + p   | input port p                |
 * | 16 o + 15  | output port o, all channels |
 * | 16 o + c   | channel c of output port o  |
 *
 * Ports and channels are 0 to 11. The byte can also name ports and channels that no router has, the
 * numbers 12 to 14; they are shown as they come. The makers take numbers from 0 to 11, of anything
 * else they keep the low four bits.
 */
class ViewCode
{
    Q_DECLARE_TR_FUNCTIONS(ViewCode)

public:
    /*! Any byte, as received. */
    constexpr explicit ViewCode(quint8 byte = NothingByte) : m_byte(byte) { }

    static constexpr ViewCode none() { return ViewCode(NothingByte); }
    static constexpr ViewCode input(int port) { return fromNibbles(WholePort, port); }
    static constexpr ViewCode output(int port) { return fromNibbles(port, WholePort); }
    static constexpr ViewCode channel(int port, int channel) { return fromNibbles(port, channel); }

    constexpr quint8 byte() const { return m_byte; }

    constexpr bool isNone() const { return m_byte == NothingByte; }
    constexpr bool isInput() const { return high() == WholePort && !isNone(); }
    constexpr bool isOutput() const { return low() == WholePort && !isNone(); }
    constexpr bool isChannel() const { return high() != WholePort && low() != WholePort; }

    /*! The input or output port that is named; of none() it is 15. */
    constexpr quint8 port() const { return isInput() ? low() : high(); }

    /*! The channel that is named, or 15 unless isChannel(). */
    constexpr quint8 channel() const { return isChannel() ? low() : WholePort; }

    /*! The heading of the monitor: "OUTPUT PORT 3 - CHANNEL 7" and the like, empty for none(). */
    QString text() const;

    friend constexpr bool operator==(ViewCode a, ViewCode b) { return a.m_byte == b.m_byte; }
    friend constexpr bool operator!=(ViewCode a, ViewCode b) { return a.m_byte != b.m_byte; }

private:
    static constexpr quint8 NothingByte = 0xff;
    static constexpr quint8 WholePort = 0x0f;

    static constexpr ViewCode fromNibbles(int high, int low)
    {
        return ViewCode(quint8((high & 0x0f) << 4 | (low & 0x0f)));
    }

    constexpr quint8 high() const { return quint8(m_byte >> 4); }
    constexpr quint8 low() const { return quint8(m_byte & 0x0f); }

    quint8 m_byte;
};
