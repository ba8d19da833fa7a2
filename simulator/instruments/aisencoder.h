#pragma once

#include "simulator/instruments/aismessages.h"

#include <QByteArray>
#include <QList>

namespace tk7sim {

/*! Packs the fields of an AIS message into six-bit characters. */
class AisEncoder
{
public:
    //! Appends the low \a width bits of \a value, highest bit first.
    void put(qint64 value, int width);
    //! Appends \a text as six-bit characters, filled up or cut to \a length.
    void putText(const QByteArray &text, int length);

    int bitCount() const { return static_cast<int>(m_bits.size()); }
    //! The bits that complete the last character.
    int fillBits() const;
    QByteArray payload() const;

private:
    QByteArray m_bits; // a byte a bit
};

AisEncoder encoded(const AisPositionReport &report);
AisEncoder encoded(const AisVoyageData &data);

/*!
 * The bodies of the sentences that carry \a message, as many as it needs: \a head ("!AIVDM"), the
 * number of sentences, the number of each, \a sequence if there are several, the radio channel,
 * payload, fill bits.
 */
QList<QByteArray> aisBodies(const QByteArray &head, int sequence, const QByteArray &channel,
                            const AisEncoder &message);

} // namespace tk7sim
