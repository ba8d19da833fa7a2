#include "link/nmeaserialport.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/*!
 * The link takes any bytes: they are cut into lines, dispatched, and every argument of every signal
 * is read by a receiver, which also checks what no input may break. The first byte of the input
 * chooses how the rest is cut into blocks.
 */

namespace {

volatile quint32 sink = 0;

void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "Broken: %s\n", what);
    std::abort();
}

void read(bool value)
{
    sink = sink + quint32(value);
}

void read(int value)
{
    sink = sink + quint32(value);
}

void read(quint8 value)
{
    sink = sink + value;
}

void read(quint32 value)
{
    sink = sink + value;
}

void read(const QString &text)
{
    constexpr int longestText = 95;
    require(text.size() <= longestText, "a text is no longer than its line");
    for (const QChar sign : text)
        sink = sink + sign.unicode();
}

void read(const QByteArray *block)
{
    constexpr int blockSize = 16;
    require(block->size() == blockSize, "the serial block has 16 bytes");
    for (const char byte : *block)
        sink = sink + quint8(byte);
}

template <typename... Args>
void readAll(NmeaSerialPort &link, void (NmeaSerialPort::*signal)(Args...))
{
    QObject::connect(&link, signal, &link, [](Args... args) {
        read(int(sizeof...(args)));
        (read(args), ...);
    });
}

void connectReceivers(NmeaSerialPort &link)
{
    using Link = NmeaSerialPort;
    QObject::connect(&link, &Link::signalVRNMEA_receive, &link, &Link::slot_VRNMEA);
    readAll(link, &Link::signalNMEA_receive);
    readAll(link, &Link::signalVRConnect);
    readAll(link, &Link::signalVRBusy);
    readAll(link, &Link::signalVRNewRule);
    readAll(link, &Link::signalVRNewFilterMask);
    readAll(link, &Link::signalVRNewHdr);
    readAll(link, &Link::signalVRNewFilterStr);
    readAll(link, &Link::signalVRNewPortSpeed);
    readAll(link, &Link::signalVRUpdateVRData);
    readAll(link, &Link::signalVRConnectionProgress);
    readAll(link, &Link::signalVRPortView);
    readAll(link, &Link::signalVRNewPortName);
    readAll(link, &Link::signalVRSaveEepromOk);
    readAll(link, &Link::signalVRSaveEepromError);
    readAll(link, &Link::signalVRVersion);
    readAll(link, &Link::signalVRErrorsCode);
    readAll(link, &Link::signalVRMode);
    readAll(link, &Link::signalVRFwPacket);
    readAll(link, &Link::signalVRReadyFirmwareUpdate);
    readAll(link, &Link::signalVRFwError);
    readAll(link, &Link::signalVRFwOk);
    readAll(link, &Link::signalVRStatusErrors);
    readAll(link, &Link::signalVRSerial);
    readAll(link, &Link::signalVRSetPasswordAnswer);
    readAll(link, &Link::signalVRLockStatus);
    readAll(link, &Link::signalVRSendPassword);
    readAll(link, &Link::signalCommandCRSError);
    readAll(link, &Link::signalVRUsedFlashBank);
    readAll(link, &Link::signalVRAISMessage);
    readAll(link, &Link::signalVRAISPosition);

    QObject::connect(&link, &Link::signalVRConnect, &link,
                     [](quint8 port) { require(port < 12, "a connection has a port of 12"); });
    QObject::connect(&link, &Link::signalVRLockStatus, &link,
                     [](bool, quint8 level) { require(level <= 5, "a lock level is at most 5"); });
    QObject::connect(&link, &Link::signalVRUsedFlashBank, &link,
                     [](quint32 bank) { require(bank <= 2, "a flash bank is at most 2"); });
    QObject::connect(&link, &Link::signalVRNewRule, &link, [](quint8, int channel) {
        require(channel >= 0 && channel < 12, "a rule has a channel of 12");
    });
    QObject::connect(&link, &Link::signalVRNewHdr, &link, [](quint8, int, const QString &header) {
        require(header.isEmpty() || header.size() == 2, "a header has two characters or none");
    });
    QObject::connect(&link, &Link::signalVRNewFilterStr, &link, [](quint8, const QString &name) {
        require(name.isEmpty() || name.size() == 3, "a formatter has three characters or none");
    });
    QObject::connect(&link, &Link::signalVRNewPortName, &link, [](bool, quint8 port) {
        require(port < 12, "a name is for one of 12 ports");
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    NmeaSerialPort link;
    connectReceivers(link);
    const size_t blockSize = size_t(data[0]) + 1;
    for (size_t from = 1; from < size; from += blockSize) {
        // A copy of its own, so that a read past the block is a fault.
        const size_t count = qMin(blockSize, size - from);
        const QByteArray block(reinterpret_cast<const char *>(data + from), int(count));
        link.receiveBytes(block.constData(), int(block.size()));
    }
    link.closePort();
    return 0;
}
