#include "model/routermodel.h"
#include "model/rulefile.h"
#include "model/sentencebuilders.h"

#include <QBuffer>
#include <QByteArray>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/*!
 * The reader of rule files takes any bytes. Whatever they leave in the model can be uploaded; what
 * a whole file leaves can be written again, and comes back the same.
 */

namespace {

constexpr int UploadSize = 80;

void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "Broken: %s\n", what);
    std::abort();
}

bool isAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

bool isTaken(const RouterModel &model, std::size_t slot)
{
    return model.filter_list_mask >> slot & 1;
}

void checkFields(const RouterModel &model)
{
    for (const OutputPortRecord &port : model.output_ports) {
        require(portSpeedIndex(port.speed) >= 0, "a speed is one of seven");
        require(port.output_name.size() <= PortNameLength, "a name has eight characters at most");
        for (const ChannelRecord &channel : port.channels) {
            require(channel.filter_type <= BlackList, "a list is white or black");
            require(channel.smart_function <= MaxSmartFunction, "smart functions end at 7");
            require(channel.hdr.isEmpty() || channel.hdr.size() == HeaderLength,
                    "a header has two characters or none");
        }
    }
    for (const InputPortRecord &port : model.input_ports)
        require(port.input_name.size() <= PortNameLength, "a name has eight characters at most");
    for (const QString &name : model.filter_list) {
        require(name.isEmpty() || name.size() == SentenceNameLength,
                "a sentence name has three characters or none");
    }
}

void checkInput(quint8 input, int sent)
{
    require(sent == (input < 16 ? input : NO_PORT), "an input goes as it is, or as no port");
}

void checkUpload(const RouterModel &model)
{
    const QStringList sentences = uploadSentences(model);
    require(sentences.size() == UploadSize, "an upload has 80 sentences");
    for (const QString &sentence : sentences)
        require(sentence.startsWith(QLatin1String("$VR")), "a sentence is one of the router's");
    for (const OutputPortRecord &port : model.output_ports) {
        for (const ChannelRecord &channel : port.channels) {
            checkInput(channel.main_input, rulesByte(channel) & 0x0f);
            checkInput(channel.reserve_input, rulesByte(channel) >> 4);
        }
    }
}

bool hasAsciiNames(const RouterModel &model)
{
    bool isPlain = true;
    for (const OutputPortRecord &port : model.output_ports)
        isPlain = isPlain && isAscii(port.output_name);
    for (const InputPortRecord &port : model.input_ports)
        isPlain = isPlain && isAscii(port.input_name);
    for (std::size_t slot = 0; slot < FilterSlotCount; ++slot)
        isPlain = isPlain && (!isTaken(model, slot) || isAscii(model.filter_list[slot]));
    return isPlain;
}

void checkWholeFile(const RouterModel &model)
{
    for (const OutputPortRecord &port : model.output_ports) {
        for (const ChannelRecord &channel : port.channels) {
            require(channel.hdr_enabled == !channel.hdr.isEmpty(),
                    "a header override goes with its header");
        }
    }
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    require(RuleFile::write(buffer, model), "what was read can be written");
    if (!hasAsciiNames(model))
        return;
    buffer.seek(0);
    RouterModel again;
    require(RuleFile::read(buffer, again), "what was written can be read");
    require(again == model, "what was written comes back");
    require(buffer.atEnd(), "all that was written is read");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // A copy of its own, so that a read past its end is a fault.
    QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    RouterModel model;
    const bool isWhole = RuleFile::read(buffer, model);
    checkFields(model);
    checkUpload(model);
    if (isWhole)
        checkWholeFile(model);
    return 0;
}
