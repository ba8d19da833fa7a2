#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace tk7sim {

/*! Why a router ends a firmware update, with the number by which it says so. */
enum class FirmwareError {
    None = 0,
    Refused = 1,       //!< it takes no firmware
    Unprepared = 2,    //!< a packet came before it was ready
    WrongNumber = 3,   //!< a packet came out of turn
    WrongSize = 4,     //!< a packet is empty or too long, or comes behind a short one
    WrongData = 5,     //!< a packet isn't made of a number and hexadecimal digits
    WrongChecksum = 6, //!< a packet's checksum doesn't match
    TooBig = 7,        //!< the image is longer than a firmware can be
    NoFirmware = 8     //!< the image is too short for a firmware, or doesn't begin as one
};

/*! What a firmware says of itself. */
struct FirmwareHeader
{
    int versionMajor; //!< 0 to 255
    int versionMinor; //!< 0 to 255
    QByteArray mode;  //!< one or two letters or digits; empty: the router keeps its mode
};

/*! A firmware on its way into the router, packet by packet. */
class FirmwareImage
{
public:
    static constexpr int packetSize = 32;   //!< bytes of every packet but the last
    static constexpr int maxSize = 1000000; //!< bytes
    static constexpr int headerSize = 18;   //!< bytes that every firmware has

    //! The number of the packet that is due, from 1 on.
    int nextPacket() const { return m_nextPacket; }
    //! Takes the packet in \a fields: its number in decimal, its bytes as hexadecimal digits.
    FirmwareError add(const QList<QByteArray> &fields);
    //! Whether what has come is a firmware as a whole.
    FirmwareError check() const;
    QByteArray bytes() const { return m_bytes; }
    //! What the image says of itself; nothing if it isn't a firmware.
    std::optional<FirmwareHeader> header() const;

private:
    QByteArray m_bytes;
    int m_nextPacket = 1;
};

} // namespace tk7sim
