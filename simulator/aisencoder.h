#pragma once

#include "simulator/ship.h"

#include <QByteArray>
#include <QList>

namespace tk7sim {

/*! A ship with an AIS transponder. */
struct AisVessel
{
    quint32 mmsi;
    quint32 imo;
    const char *callSign;    //!< at most 7 characters
    const char *name;        //!< at most 20 characters
    const char *destination; //!< at most 20 characters
    int shipType;            //!< 0 to 99
    CircularCourse course;
};

/*! Packs the fields of an AIS message into six-bit characters. */
class AisEncoder
{
public:
    //! Appends the low \a width bits of \a value, highest bit first.
    void put(qint64 value, int width);
    //! Appends \a text as six-bit characters, filled up or cut to \a length.
    void putText(const char *text, int length);

    int bitCount() const { return static_cast<int>(m_bits.size()); }
    //! The bits that complete the last character.
    int fillBits() const;
    QByteArray payload() const;

private:
    QByteArray m_bits; // a byte a bit
};

/*! The body of a VDM sentence with the position report of \a vessel, type 1. */
QByteArray aisPositionReport(const AisVessel &vessel, double seconds, int utcSecond, char channel);
/*! The bodies of the two VDM sentences with the voyage data of \a vessel, type 5. */
QList<QByteArray> aisVoyageData(const AisVessel &vessel, int sequence, char channel);

} // namespace tk7sim
