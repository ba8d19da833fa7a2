#include "link/nmeaserialport.h"
#include "model/firmwareimage.h"
#include "model/servicesentences.h"
#include "support/checkedline.h"

#include <QBuffer>
#include <QByteArray>
#include <QObject>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>

/*!
 * A firmware file may hold anything, and end before its time. Whatever has been read is described
 * and cut into packets, which must give it back byte by byte; a router acknowledges each of them,
 * and once with the bytes of the file itself. The first byte of the input is by how much the file
 * is shorter than it says.
 */

namespace {

using FirmwareImage::ReadResult;

constexpr qint64 largestFile = 1000000;
constexpr quint32 packetBytes = 32;
constexpr int wholePercentage = 100;

void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "Broken: %s\n", what);
    std::abort();
}

// Says that it is larger than it is; the greatest difference stands for a file that is too large.
class ShortFile : public QBuffer
{
public:
    ShortFile(QByteArray *content, quint8 missing) : QBuffer(content), m_missing(missing)
    {
        open(QIODevice::ReadOnly);
    }

    qint64 size() const override
    {
        const bool isTooLarge = m_missing == std::numeric_limits<quint8>::max();
        return isTooLarge ? largestFile + 1 : QBuffer::size() + m_missing;
    }

private:
    quint8 m_missing;
};

ReadResult expectedResult(const QByteArray &content, quint8 missing)
{
    if (missing == std::numeric_limits<quint8>::max())
        return ReadResult::TooBig;
    if (missing != 0)
        return ReadResult::ReadError;
    return content.startsWith("fwVR48") ? ReadResult::Ok : ReadResult::NotFirmware;
}

void checkPacket(const QByteArray &image, quint32 number, const QString &sentence)
{
    const QByteArray head = "$VRFWP," + QByteArray::number(number) + ',';
    const QByteArray data = image.mid(int((number - 1) * packetBytes), int(packetBytes));
    const QByteArray expected = checkedLine(head + data.toHex().toUpper());
    require(sentence.toLatin1() == expected, "a packet is 32 bytes of the image in hexadecimal");
}

quint32 checkPackets(const QByteArray &image)
{
    QString sentence;
    quint32 number = 1;
    int progress = 0;
    while (MakeFirmwarePacket(image, number, sentence) == FirmwarePacket::Made) {
        checkPacket(image, number, sentence);
        const int now = firmwareProgress(number, int(image.size()));
        require(now >= progress, "an update only ever goes on");
        // Only a last packet that isn't full goes beyond the end.
        const bool isFull = qint64(number) * packetBytes <= image.size();
        require(now <= wholePercentage || !isFull, "an update ends at its end");
        progress = now;
        ++number;
    }
    const quint32 count = number - 1;
    require(count == (quint32(image.size()) + packetBytes - 1) / packetBytes,
            "the packets end with the image");
    return count;
}

void checkNumbersBeyond(const QByteArray &image, quint32 count)
{
    const FirmwarePacket refusal =
        image.isEmpty() ? FirmwarePacket::NoImage : FirmwarePacket::PastEnd;
    for (const quint32 number : {0U, count + 1, std::numeric_limits<quint32>::max()}) {
        QString sentence("untouched");
        require(MakeFirmwarePacket(image, number, sentence) == refusal, "no packet beyond the end");
        require(sentence == QLatin1String("untouched"), "a refused packet leaves no sentence");
    }
}

void receive(NmeaSerialPort &link, const QByteArray &line)
{
    link.receiveBytes(line.constData(), int(line.size()));
}

void checkAnswers(const QByteArray &content, quint32 count)
{
    NmeaSerialPort link;
    QObject::connect(&link, &NmeaSerialPort::signalVRNMEA_receive, &link,
                     &NmeaSerialPort::slot_VRNMEA);
    quint32 heard = 0;
    QObject::connect(&link, &NmeaSerialPort::signalVRFwPacket, &link,
                     [&](quint32 number) { heard = number; });
    for (quint32 number = 1; number <= count; ++number) {
        receive(link, checkedLine("$VRFWP," + QByteArray::number(number)));
        require(heard == number, "an acknowledgement brings its number");
    }
    for (const char *head : {"$VRFWP,", "$VRFWE,", "$VRFWO", "$VRFWR"}) {
        receive(link, checkedLine(head + content));
        receive(link, head + content + "\r\n");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const quint8 missing = data[0];
    // A copy of its own, so that a read past its end is a fault.
    QByteArray content(reinterpret_cast<const char *>(data + 1), int(size - 1));
    ShortFile file(&content, missing);
    QByteArray image;
    const ReadResult result = FirmwareImage::read(file, image);
    require(result == expectedResult(content, missing),
            "a file is taken, or refused for its fault");
    require(result != ReadResult::Ok || image == content, "all of a file is read");
    require(FirmwareImage::describe(content).size() >= 3, "every image has a version");

    const quint32 count = checkPackets(content);
    checkNumbersBeyond(content, count);
    checkAnswers(content, count);
    return 0;
}
