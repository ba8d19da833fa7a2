#pragma once

#include <QByteArray>
#include <QVector>

/*! Takes the bits of an AIS payload apart again. */
class AisBits
{
public:
    explicit AisBits(const QByteArray &payload)
    {
        for (const char c : payload) {
            const int value = c < 'X' ? c - '0' : c - '0' - 8;
            for (int bit = 5; bit >= 0; --bit) {
                m_bits.append((value >> bit) & 1);
            }
        }
    }

    int size() const { return int(m_bits.size()); }
    QVector<int> first(int count) const { return m_bits.mid(0, count); }

    //! The \a width bits, 32 at most, from bit \a at on.
    quint32 number(int at, int width) const
    {
        quint32 value = 0;
        for (int i = at; i < at + width; ++i) {
            value = value * 2 + static_cast<quint32>(m_bits.at(i));
        }
        return value;
    }

    //! The same as a two's complement.
    qint64 signedNumber(int at, int width) const
    {
        const qint64 value = number(at, width);
        return m_bits.at(at) == 0 ? value : value - (qint64(1) << width);
    }

    QByteArray text(int at, int length) const
    {
        QByteArray result;
        for (int i = 0; i < length; ++i) {
            const auto value = static_cast<char>(number(at + i * 6, 6));
            result.append(value < 32 ? static_cast<char>(value + 64) : value);
        }
        return result;
    }

private:
    QVector<int> m_bits;
};
