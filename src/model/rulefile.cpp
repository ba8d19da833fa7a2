#include "model/rulefile.h"

#include "model/routermodel.h"

#include <QIODevice>
#include <QtEndian>

#include <array>

namespace {

constexpr std::array<char, 3> Magic = {'V', 'R', 'R'};

// The options of a channel stand in another order here than on the wire.
constexpr quint8 FilterFlag = 0x01;
constexpr quint8 BlackListFlag = 0x02;
constexpr quint8 HdrFlag = 0x04;
constexpr quint8 CrsFlag = 0x08;
constexpr int SmartFunctionShift = 4;

constexpr char Blank = ' ';
const QLatin1String NoHeader("  ");

constexpr quint32 slotBit(int slot)
{
    return quint32(1) << slot;
}

/*! Writes fields until one fails; from then on nothing more is written. */
class Writer
{
public:
    explicit Writer(QIODevice &device) : m_device(device) { }

    bool isOk() const { return m_ok; }

    void writeBytes(const char *bytes, qint64 count)
    {
        m_ok = m_ok && m_device.write(bytes, count) == count;
    }

    void writeByte(quint8 byte)
    {
        const char form = char(byte);
        writeBytes(&form, 1);
    }

    void writeNumber(quint32 number)
    {
        const quint32 form = qToLittleEndian(number);
        writeBytes(reinterpret_cast<const char *>(&form), sizeof form);
    }

    /*! Latin-1 text that must be \a length bytes long. */
    void writeText(const QString &text, int length)
    {
        const QByteArray form = text.toLatin1();
        m_ok = m_ok && form.size() == length;
        writeBytes(form.constData(), form.size());
    }

    void writeName(const QString &name)
    {
        writeText(name, int(name.size()));
        writeByte(0);
    }

private:
    QIODevice &m_device;
    bool m_ok = true;
};

quint8 fileFlags(const ChannelRecord &channel)
{
    int flags = channel.smart_function << SmartFunctionShift;
    if (channel.filter_enabled)
        flags |= FilterFlag;
    if (channel.filter_type != WhiteList)
        flags |= BlackListFlag;
    if (channel.hdr_enabled)
        flags |= HdrFlag;
    if (channel.crs_enabled)
        flags |= CrsFlag;
    return quint8(flags);
}

void writeChannel(Writer &writer, const ChannelRecord &channel)
{
    writer.writeByte(fileFlags(channel));
    writer.writeByte(channel.main_input);
    writer.writeByte(channel.reserve_input);
    writer.writeNumber(channel.filter_mask);
    writer.writeText(channel.hdr_enabled ? channel.hdr : QString(NoHeader), HeaderLength);
}

bool readBytes(QIODevice &device, char *bytes, qint64 count)
{
    return device.read(bytes, count) == count;
}

bool readByte(QIODevice &device, quint8 &byte)
{
    return readBytes(device, reinterpret_cast<char *>(&byte), 1);
}

// Of a number that is cut off, the bytes that are there stand.
bool readNumber(QIODevice &device, quint32 &number)
{
    quint32 form = qToLittleEndian(number);
    const bool isWhole = readBytes(device, reinterpret_cast<char *>(&form), sizeof form);
    number = qFromLittleEndian(form);
    return isWhole;
}

// The text of up to count bytes; a line feed ends it and belongs to it, a zero ends it and doesn't.
// Takes nothing from the device.
QString peekText(QIODevice &device, int count)
{
    QByteArray bytes = device.peek(count);
    const auto lineFeed = bytes.indexOf('\n');
    if (lineFeed >= 0)
        bytes.truncate(lineFeed + 1);
    const auto zero = bytes.indexOf('\0');
    if (zero >= 0)
        bytes.truncate(zero);
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

// The length in characters is also what is left behind in the device, with the zero. A name that is
// not plain ASCII, or has none, deliberately leads the next field astray.
QString readName(QIODevice &device)
{
    QString name = peekText(device, PortNameLength);
    device.skip(name.size() + 1);
    return name;
}

bool readMagic(QIODevice &device)
{
    std::array<char, Magic.size()> found = {};
    return readBytes(device, found.data(), qint64(found.size())) && found == Magic;
}

bool readChannel(QIODevice &device, ChannelRecord &channel)
{
    quint8 flags = 0;
    if (!readByte(device, flags))
        return false;
    channel.filter_enabled = flags & FilterFlag;
    channel.filter_type = flags & BlackListFlag ? BlackList : WhiteList;
    channel.hdr_enabled = flags & HdrFlag;
    channel.crs_enabled = flags & CrsFlag;
    channel.smart_function = (flags >> SmartFunctionShift) & MaxSmartFunction;

    std::array<char, HeaderLength> header = {};
    if (!readByte(device, channel.main_input) || !readByte(device, channel.reserve_input)
        || !readNumber(device, channel.filter_mask)
        || !readBytes(device, header.data(), HeaderLength))
        return false;

    // The header has the last word, whatever its flag said.
    channel.hdr_enabled = header[0] != Blank && header[1] != Blank;
    channel.hdr =
        channel.hdr_enabled ? QString::fromLatin1(header.data(), HeaderLength) : QString();
    return true;
}

bool readOutputPorts(QIODevice &device, RouterModel &model, const RuleFile::SpeedSetter &setSpeed)
{
    for (quint8 number = 0; number < OutputPortCount; ++number) {
        OutputPortRecord &port = model.output_ports[number];
        for (ChannelRecord &channel : port.channels) {
            if (!readChannel(device, channel))
                return false;
        }
        quint32 speed = 0;
        if (!readNumber(device, speed))
            return false;
        setSpeed(number, speed);
        port.output_name = readName(device);
    }
    return true;
}

bool readSentenceNames(QIODevice &device, RouterModel &model)
{
    if (!readNumber(device, model.filter_list_mask))
        return false;
    for (int slot = 0; slot < FilterSlotCount; ++slot) {
        if (!(model.filter_list_mask & slotBit(slot)))
            continue;
        const QString name = peekText(device, SentenceNameLength);
        if (name.size() != SentenceNameLength)
            return false;
        model.filter_list[std::size_t(slot)] = name;
        device.skip(SentenceNameLength);
    }
    return true;
}

} // namespace

bool RuleFile::write(QIODevice &device, const RouterModel &model)
{
    Writer writer(device);
    writer.writeBytes(Magic.data(), qint64(Magic.size()));
    for (const OutputPortRecord &port : model.output_ports) {
        for (const ChannelRecord &channel : port.channels)
            writeChannel(writer, channel);
        writer.writeNumber(port.speed);
        writer.writeName(port.output_name);
    }
    writer.writeNumber(model.filter_list_mask);
    for (int slot = 0; slot < FilterSlotCount; ++slot) {
        if (model.filter_list_mask & slotBit(slot))
            writer.writeText(model.filter_list[std::size_t(slot)], SentenceNameLength);
    }
    for (const InputPortRecord &port : model.input_ports)
        writer.writeName(port.input_name);
    return writer.isOk();
}

bool RuleFile::read(QIODevice &device, RouterModel &model, const SpeedSetter &setSpeed)
{
    if (!readMagic(device) || !readOutputPorts(device, model, setSpeed)
        || !readSentenceNames(device, model))
        return false;
    for (InputPortRecord &port : model.input_ports)
        port.input_name = readName(device);
    return true;
}

bool RuleFile::read(QIODevice &device, RouterModel &model)
{
    return read(device, model,
                [&model](quint8 port, quint32 speed) { model.setPortSpeed(port, speed); });
}
