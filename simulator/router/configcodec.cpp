#include "simulator/router/configcodec.h"

#include "simulator/line/linespeed.h"

#include <algorithm>
#include <utility>

namespace tk7sim {

namespace {

using OptionalChange = std::optional<ConfigChange>;

constexpr int half = 6; // channels in a mask sentence, ports in a name sentence
constexpr int slotsPerSentence = 8;
constexpr int wordDigits = 4;
constexpr int maskDigits = 8;
constexpr int maxBaud = 115200;
constexpr int byteBits = 8;
constexpr int byteMask = 255;

using Words = std::array<quint16, channelCount>;
using Masks = std::array<quint32, half>;
using Headers = std::array<QByteArray, channelCount>;
using Formatters = std::array<QByteArray, slotsPerSentence>;
using Names = std::array<QByteArray, half>;

// The number of the port, and whether the sentence belongs to a batch.
struct PortFields
{
    size_t port;
    bool batch;
};

std::optional<PortFields> parsePortFields(const Sentence &sentence, int fieldCount)
{
    if (sentence.fields.size() != fieldCount) {
        return std::nullopt;
    }
    const auto port = parseDecimal(sentence.fields.at(0), portCount - 1);
    const QByteArray &mode = sentence.fields.at(1);
    if (!port || (mode != "W" && mode != "B")) {
        return std::nullopt;
    }
    return PortFields{static_cast<size_t>(*port), mode == "B"};
}

// One of 0, step, 2 * step ... below end.
std::optional<size_t> parseFirst(const QByteArray &field, int step, int end)
{
    const auto first = parseDecimal(field, end - 1);
    return first && *first % step == 0 ? std::optional(static_cast<size_t>(*first)) : std::nullopt;
}

QByteArray place(const Sentence &sentence, size_t port, size_t first = 0)
{
    return sentence.code + ',' + QByteArray::number(static_cast<int>(port)) + ','
        + QByteArray::number(static_cast<int>(first));
}

bool isText(const QByteArray &field)
{
    constexpr char firstPrintable = ' ';
    constexpr char deleteChar = 127;
    return std::none_of(field.cbegin(), field.cend(), [](char c) {
        return (c >= 0 && c < firstPrintable) || c == deleteChar || c == '!' || c == '$';
    });
}

bool isEmptyOrText(const QByteArray &field, int length)
{
    return field.isEmpty() || (field.size() == length && isText(field));
}

OptionalChange parseRule(const Sentence &sentence)
{
    constexpr int fieldCount = 3;
    const auto head = parsePortFields(sentence, fieldCount);
    if (!head || sentence.fields.at(2).size() != channelCount * wordDigits) {
        return std::nullopt;
    }
    Words words{};
    for (size_t i = 0; i < words.size(); ++i) {
        const auto at = static_cast<int>(i) * wordDigits;
        const auto word = parseHex(sentence.fields.at(2).mid(at, wordDigits), wordDigits);
        if (!word) {
            return std::nullopt;
        }
        words[i] = static_cast<quint16>(*word);
    }
    const size_t port = head->port;
    return ConfigChange{head->batch, place(sentence, port), [=](RouterConfig &config) {
                            for (size_t i = 0; i < words.size(); ++i) {
                                config.outputs[port].channels[i].setBytes(
                                    static_cast<quint8>(words[i] >> byteBits),
                                    static_cast<quint8>(words[i] & byteMask));
                            }
                        }};
}

OptionalChange parseFilterMasks(const Sentence &sentence)
{
    constexpr int fieldCount = 4;
    const auto head = parsePortFields(sentence, fieldCount);
    const auto first =
        head ? parseFirst(sentence.fields.at(2), half, channelCount) : std::optional<size_t>();
    if (!first || sentence.fields.at(3).size() != half * maskDigits) {
        return std::nullopt;
    }
    Masks masks{};
    for (size_t i = 0; i < masks.size(); ++i) {
        const auto at = static_cast<int>(i) * maskDigits;
        const auto mask = parseHex(sentence.fields.at(3).mid(at, maskDigits), maskDigits);
        if (!mask) {
            return std::nullopt;
        }
        masks[i] = *mask;
    }
    const size_t port = head->port;
    const size_t begin = *first;
    return ConfigChange{head->batch, place(sentence, port, begin), [=](RouterConfig &config) {
                            for (size_t i = 0; i < masks.size(); ++i) {
                                config.outputs[port].channels[begin + i].filterMask = masks[i];
                            }
                        }};
}

OptionalChange parseHeaders(const Sentence &sentence)
{
    constexpr int fieldsBefore = 2;
    const auto head = parsePortFields(sentence, fieldsBefore + channelCount);
    if (!head) {
        return std::nullopt;
    }
    Headers headers;
    for (size_t i = 0; i < headers.size(); ++i) {
        const QByteArray &field = sentence.fields.at(fieldsBefore + static_cast<int>(i));
        if (!isEmptyOrText(field, headerLength)) {
            return std::nullopt;
        }
        headers[i] = field;
    }
    const size_t port = head->port;
    return ConfigChange{head->batch, place(sentence, port), [=](RouterConfig &config) {
                            for (size_t i = 0; i < headers.size(); ++i) {
                                config.outputs[port].channels[i].hdr = headers[i];
                            }
                        }};
}

OptionalChange parseFilterList(const Sentence &sentence)
{
    constexpr int fieldsBefore = 1;
    if (sentence.fields.size() != fieldsBefore + slotsPerSentence) {
        return std::nullopt;
    }
    const auto first = parseFirst(sentence.fields.at(0), slotsPerSentence, filterSlotCount);
    if (!first) {
        return std::nullopt;
    }
    Formatters formatters;
    for (size_t i = 0; i < formatters.size(); ++i) {
        const QByteArray &field = sentence.fields.at(fieldsBefore + static_cast<int>(i));
        if (!isEmptyOrText(field, formatterLength)) {
            return std::nullopt;
        }
        formatters[i] = field;
    }
    const size_t begin = *first;
    return ConfigChange{false, place(sentence, begin), [=](RouterConfig &config) {
                            std::copy(formatters.begin(), formatters.end(),
                                      config.filterList.begin() + static_cast<int>(begin));
                        }};
}

OptionalChange parseNames(const Sentence &sentence)
{
    constexpr int fieldsBefore = 2;
    if (sentence.fields.size() != fieldsBefore + half) {
        return std::nullopt;
    }
    const QByteArray &type = sentence.fields.at(0);
    const auto first = parseFirst(sentence.fields.at(1), half, portCount);
    if ((type != "O" && type != "I") || !first) {
        return std::nullopt;
    }
    Names names;
    for (size_t i = 0; i < names.size(); ++i) {
        const QByteArray &field = sentence.fields.at(fieldsBefore + static_cast<int>(i));
        if (field.size() > maxNameLength || !isText(field)) {
            return std::nullopt;
        }
        names[i] = field;
    }
    const bool isOutput = type == "O";
    const size_t begin = *first;
    return ConfigChange{false, type + place(sentence, begin), [=](RouterConfig &config) {
                            auto &all = isOutput ? config.outputNames : config.inputNames;
                            std::copy(names.begin(), names.end(),
                                      all.begin() + static_cast<int>(begin));
                        }};
}

OptionalChange parseSpeed(const Sentence &sentence)
{
    constexpr int fieldCount = 2;
    if (sentence.fields.size() != fieldCount) {
        return std::nullopt;
    }
    const auto port = parseDecimal(sentence.fields.at(0), portCount - 1);
    const auto speed = parseDecimal(sentence.fields.at(1), maxBaud);
    if (!port || !speed || !isLineSpeed(*speed)) {
        return std::nullopt;
    }
    const auto index = static_cast<size_t>(*port);
    const auto baud = static_cast<quint32>(*speed);
    return ConfigChange{false, place(sentence, index),
                        [=](RouterConfig &config) { config.speeds[index] = baud; }};
}

struct CodeParser
{
    const char *code;
    OptionalChange (*parse)(const Sentence &sentence);
};

constexpr CodeParser codeParsers[] = {
    {"RUL", parseRule},       {"FLT", parseFilterMasks}, {"HDC", parseHeaders},
    {"FLS", parseFilterList}, {"PNM", parseNames},       {"SPD", parseSpeed},
};

const CodeParser *findParser(const QByteArray &code)
{
    const auto *row = std::find_if(std::begin(codeParsers), std::end(codeParsers),
                                   [&](const CodeParser &p) { return code == p.code; });
    return row == std::end(codeParsers) ? nullptr : row;
}

// "$VRRUL,port,W,": the field behind the port has the same letter as in a sentence of the tool
// that takes effect at once.
QByteArray portHead(const char *code, size_t port)
{
    return QByteArray("$VR") + code + ',' + QByteArray::number(static_cast<int>(port)) + ",W,";
}

QByteArray ruleBody(const RouterConfig &config, size_t port)
{
    QByteArray body = portHead("RUL", port);
    for (const Channel &channel : config.outputs[port].channels) {
        body += hex(channel.rulesByte(), 2) + hex(channel.flagsByte(), 2);
    }
    return body;
}

QByteArray filterMaskBody(const RouterConfig &config, size_t port, size_t first)
{
    QByteArray body = portHead("FLT", port) + QByteArray::number(static_cast<int>(first)) + ',';
    for (size_t channel = first; channel < first + half; ++channel) {
        body += hex(config.outputs[port].channels[channel].filterMask, maskDigits);
    }
    return body;
}

QByteArray headerBody(const RouterConfig &config, size_t port)
{
    QList<QByteArray> fields;
    for (const Channel &channel : config.outputs[port].channels) {
        fields.append(channel.hdr);
    }
    return portHead("HDC", port) + fields.join(',');
}

QByteArray listBody(const QByteArray &head, const QByteArray *first, int count)
{
    QByteArray body = head;
    for (int i = 0; i < count; ++i) {
        body += ',' + first[i];
    }
    return body;
}

} // namespace

bool isConfigCode(const QByteArray &code)
{
    return findParser(code) != nullptr;
}

std::optional<ConfigChange> parseConfigSentence(const Sentence &sentence)
{
    const CodeParser *parser = findParser(sentence.code);
    return parser && sentence.form == SentenceForm::Checked ? parser->parse(sentence)
                                                            : std::nullopt;
}

QList<QByteArray> configBodies(const RouterConfig &config)
{
    QList<QByteArray> bodies;
    for (size_t port = 0; port < portCount; ++port) {
        bodies.append("$VRSPD," + QByteArray::number(static_cast<int>(port)) + ','
                      + QByteArray::number(config.speeds[port]));
    }
    for (size_t port = 0; port < portCount; ++port) {
        bodies.append(ruleBody(config, port));
        bodies.append(filterMaskBody(config, port, 0));
        bodies.append(filterMaskBody(config, port, half));
        bodies.append(headerBody(config, port));
    }
    for (int first = 0; first < filterSlotCount; first += slotsPerSentence) {
        bodies.append(listBody("$VRFLS," + QByteArray::number(first),
                               config.filterList.data() + first, slotsPerSentence));
    }
    for (const auto &[type, names] :
         {std::pair("O", &config.outputNames), std::pair("I", &config.inputNames)}) {
        for (int first = 0; first < portCount; first += half) {
            bodies.append(listBody(QByteArray("$VRPNM,") + type + ',' + QByteArray::number(first),
                                   names->data() + first, half));
        }
    }
    return bodies;
}

} // namespace tk7sim
