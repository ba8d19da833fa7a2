#include "simulator/router/firmwareimage.h"

#include "simulator/line/sentence.h"

namespace tk7sim {

namespace {

constexpr int versionOffset = 14; // two bytes
constexpr int modeOffset = 16;    // two characters
constexpr int modeLength = 2;
constexpr int digitsPerByte = 2;
constexpr int maxNumber = 999999999;

const char magic[] = "fwVR48";

std::optional<QByteArray> parseBytes(const QByteArray &digits)
{
    QByteArray bytes;
    for (int i = 0; i < digits.size(); i += digitsPerByte) {
        const auto byte = parseHex(digits.mid(i, digitsPerByte), digitsPerByte);
        if (!byte) {
            return std::nullopt;
        }
        bytes.append(static_cast<char>(*byte));
    }
    return bytes;
}

} // namespace

FirmwareError FirmwareImage::add(const QList<QByteArray> &fields)
{
    constexpr int fieldCount = 2;
    const auto number =
        fields.size() == fieldCount ? parseDecimal(fields.at(0), maxNumber) : std::nullopt;
    if (!number) {
        return FirmwareError::WrongData;
    }
    if (*number != m_nextPacket) {
        return FirmwareError::WrongNumber;
    }
    const bool isBehindShortOne = m_bytes.size() % packetSize != 0;
    if (isBehindShortOne || fields.at(1).isEmpty()
        || fields.at(1).size() > packetSize * digitsPerByte) {
        return FirmwareError::WrongSize;
    }
    const auto bytes = parseBytes(fields.at(1));
    if (!bytes) {
        return FirmwareError::WrongData;
    }
    if (m_bytes.size() + bytes->size() > maxSize) {
        return FirmwareError::TooBig;
    }
    m_bytes += *bytes;
    ++m_nextPacket;
    return FirmwareError::None;
}

FirmwareError FirmwareImage::check() const
{
    return m_bytes.size() >= headerSize && m_bytes.startsWith(magic) ? FirmwareError::None
                                                                     : FirmwareError::NoFirmware;
}

std::optional<FirmwareHeader> FirmwareImage::header() const
{
    if (check() != FirmwareError::None) {
        return std::nullopt;
    }
    const auto byte = [this](int offset) { return static_cast<quint8>(m_bytes.at(offset)); };
    QByteArray mode = m_bytes.mid(modeOffset, modeLength);
    mode.truncate(static_cast<int>(qstrnlen(mode.constData(), modeLength)));
    // A mode that can't stand in a sentence is none.
    return FirmwareHeader{byte(versionOffset), byte(versionOffset + 1),
                          isAlphanumeric(mode) ? mode : QByteArray()};
}

} // namespace tk7sim
