#pragma once

#include <QByteArray>
#include <QString>

QT_BEGIN_NAMESPACE
class QIODevice;
QT_END_NAMESPACE

/*!
 * A firmware file, ".efw": six characters of magic, eight bytes that only the router knows, two
 * bytes of version, two characters of mode, and the image proper. The router gets all of it, byte
 * by byte as it stands.
 */
namespace FirmwareImage {

enum class ReadResult {
    Ok,
    TooBig,     //!< more than 1000000 bytes; the buffer is as it was
    ReadError,  //!< fewer bytes came than the device had promised
    NotFirmware //!< doesn't begin with the magic
};

/*!
 * Reads all of \a device, open and at its beginning, into \a buffer. After an error the buffer
 * holds what has come so far.
 */
ReadResult read(QIODevice &device, QByteArray &buffer);

/*!
 * The version of \a image, such as "3.5", with " mode AB" behind it if the image has a mode. Of an
 * image that ends early, what is missing counts as 0.
 */
QString describe(const QByteArray &image);

} // namespace FirmwareImage
