#pragma once

#include "model/routermodel.h"
#include "model/rulefile.h"
#include "model/sentencebuilders.h"

#include <QBuffer>
#include <QFile>

/*!
 * Rule files as bytes. The offsets stand here beside the program's own, because they say where a
 * field has to be, and not where the program happens to put it.
 */
namespace RuleFileBytes {

// A file of a router without names.
constexpr int MagicSize = 3;
constexpr int ChannelSize = 9;
constexpr int SpeedOffset = ChannelCount * ChannelSize; // in a port
constexpr int NameOffset = SpeedOffset + 4;
constexpr int PortSize = NameOffset + 1;
constexpr int MaskOffset = MagicSize + OutputPortCount * PortSize;
constexpr int SlotsOffset = MaskOffset + 4;
constexpr int InputNamesOffset = SlotsOffset + 12 * SentenceNameLength; // with the usual twelve

constexpr int portOffset(int port)
{
    return MagicSize + port * PortSize;
}

constexpr int channelOffset(int port, int channel)
{
    return portOffset(port) + channel * ChannelSize;
}

inline ChannelRecord &channelOf(RouterModel &model, int port, int channel)
{
    return model.output_ports[std::size_t(port)].channels[std::size_t(channel)];
}

inline QByteArray written(const RouterModel &model)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return RuleFile::write(buffer, model) ? buffer.data() : QByteArray();
}

inline bool readInto(RouterModel &model, const QByteArray &bytes)
{
    // A copy without a byte to spare, so that a read past its end is a fault.
    QByteArray exact(bytes.constData(), bytes.size());
    QBuffer buffer(&exact);
    buffer.open(QIODevice::ReadOnly);
    return RuleFile::read(buffer, model);
}

/*! The file \a name of the folder that CMake names. */
inline QByteArray dataFile(const QByteArray &name)
{
    QFile file(QStringLiteral(TK7_TEST_DATA "/") + QString::fromLatin1(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s: %s", name.constData(), qPrintable(file.errorString()));
    return file.readAll();
}

inline QByteArray replaced(QByteArray bytes, int offset, const QByteArray &piece)
{
    return bytes.replace(offset, piece.size(), piece);
}

/*! What of \a model comes back from a file: headers in force only, and slots in use only. */
inline RouterModel asLoaded(RouterModel model, const RouterModel &before = RouterModel())
{
    for (OutputPortRecord &port : model.output_ports) {
        for (ChannelRecord &channel : port.channels) {
            if (!channel.hdr_enabled)
                channel.hdr.clear();
        }
    }
    for (std::size_t slot = 0; slot < FilterSlotCount; ++slot) {
        if (!(model.filter_list_mask & (quint32(1) << slot)))
            model.filter_list[slot] = before.filter_list[slot];
    }
    return model;
}

/*! What no file may break; of headers and sentence names, what a whole file may not. */
inline QByteArray brokenInvariant(const RouterModel &model, bool isWhole)
{
    for (const OutputPortRecord &port : model.output_ports) {
        if (portSpeedIndex(port.speed) < 0)
            return "a speed that no port has";
        if (port.output_name.size() > PortNameLength)
            return "a long output name";
        for (const ChannelRecord &channel : port.channels) {
            if (channel.filter_type > BlackList || channel.smart_function > MaxSmartFunction)
                return "an option out of range";
            if (!channel.hdr.isEmpty() && channel.hdr.size() != HeaderLength)
                return "a header of another length";
            if (isWhole && channel.hdr_enabled != !channel.hdr.isEmpty())
                return "a header without its flag or a flag without its header";
        }
    }
    for (const InputPortRecord &port : model.input_ports) {
        if (port.input_name.size() > PortNameLength)
            return "a long input name";
    }
    for (std::size_t slot = 0; slot < FilterSlotCount; ++slot) {
        const bool isTaken = model.filter_list_mask & (quint32(1) << slot);
        if (isWhole && isTaken && model.filter_list[slot].size() != SentenceNameLength)
            return "a taken slot without a name";
    }
    const QStringList sentences = uploadSentences(model);
    if (sentences.size() != 80 || sentences.contains(QString()))
        return "an upload of other than 80 sentences";
    if (isWhole && written(model).isEmpty())
        return "a model that can't be written";
    return QByteArray();
}

} // namespace RuleFileBytes
