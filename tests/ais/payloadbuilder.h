#pragma once

#include <QByteArray>

/*!
 * Armours AIS messages for the tests, bit by bit and by the public description of the armour, so
 * that no test leans on the reader that it tests.
 */
class PayloadBuilder
{
public:
    /*! Appends the low \a width bits of \a value, highest first; above 32 they are 0. */
    PayloadBuilder &put(quint32 value, int width);
    /*! Appends \a text, of '@' to '_' and ' ' to '?', cut or filled up with '@' to \a length. */
    PayloadBuilder &putText(const QByteArray &text, int length);

    int bitCount() const { return int(m_bits.size()); }
    /*! The bits that complete the last character. */
    int fillBits() const;
    QByteArray payload() const;

private:
    QByteArray m_bits; // a byte a bit
};

/*! A position report of raw numbers, as they stand in the message. */
struct PositionReport
{
    quint32 mmsi = 240827000;
    quint32 type = 1;
    quint32 repeat = 0;
    quint32 status = 0;
    quint32 turn = 0;
    quint32 speed = 113;
    quint32 accuracy = 1;
    quint32 longitude = 14465600;
    quint32 latitude = 22286000;
    quint32 course = 3304;
    quint32 heading = 332;

    /*! 168 bits, so without fill bits. */
    QByteArray payload() const;
};

/*! Static and voyage data of raw numbers. */
struct VoyageData
{
    quint32 mmsi = 249190000;
    quint32 repeat = 0;
    quint32 version = 0;
    quint32 imo = 9383663;
    QByteArray callSign = "9HMQ9";
    QByteArray name = "RUTH THERESA";
    quint32 shipType = 80;
    quint32 toBow = 78;
    quint32 toStern = 23;
    quint32 toPort = 1;
    quint32 toStarboard = 17;
    quint32 fixType = 1;
    quint32 month = 12;
    quint32 day = 30;
    quint32 hour = 16;
    quint32 minute = 30;
    quint32 draught = 78;
    QByteArray destination = "BOSTON,USA";
    quint32 dte = 0;

    static constexpr int FillBits = 2;
    /*! 424 bits, so with two fill bits. */
    QByteArray payload() const;
};
