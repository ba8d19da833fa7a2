#pragma once

#include <QBitArray>
#include <QString>

/*!
 * The plain way to read an AIS payload, for comparison: a bit is stored for each bit of the payload
 * and fetched for each bit of a field.
 */
class BitByBitReader
{
public:
    void setPayload(const char *payload, int fillBits);
    quint32 readBits(int width);
    /*! Reads \a length characters and cuts their padding. */
    QString readText(int length);

private:
    QBitArray m_bits;
    int m_position = 0;
};
