#include "model/firmwareimage.h"

#include <QCoreApplication>
#include <QIODevice>

namespace FirmwareImage {

namespace {

constexpr qint64 maxSize = 1000000;
const QByteArray magic = QByteArrayLiteral("fwVR48");

enum Offset { MajorOffset = 14, MinorOffset = 15, ModeOffset = 16, SecondModeOffset = 17 };

uchar byteAt(const QByteArray &image, int offset)
{
    return offset < image.size() ? uchar(image.at(offset)) : uchar(0);
}

// Only 0 to 9 give a digit; other numbers give the character that follows so far behind the '0'.
QChar digit(const QByteArray &image, int offset)
{
    return QChar(ushort(ushort('0') + byteAt(image, offset)));
}

QChar character(const QByteArray &image, int offset)
{
    return QLatin1Char(char(byteAt(image, offset)));
}

} // namespace

ReadResult read(QIODevice &device, QByteArray &buffer)
{
    const qint64 size = device.size();
    if (size > maxSize)
        return ReadResult::TooBig;
    buffer.resize(int(size));
    if (device.read(buffer.data(), size) < size)
        return ReadResult::ReadError;
    return buffer.startsWith(magic) ? ReadResult::Ok : ReadResult::NotFirmware;
}

QString describe(const QByteArray &image)
{
    QString text = digit(image, MajorOffset);
    text += QLatin1Char('.');
    text += digit(image, MinorOffset);
    if (byteAt(image, ModeOffset) == 0)
        return text;
    text +=
        QCoreApplication::translate("FirmwareImage", " mode %1").arg(character(image, ModeOffset));
    if (byteAt(image, SecondModeOffset) != 0)
        text += character(image, SecondModeOffset);
    return text;
}

} // namespace FirmwareImage
