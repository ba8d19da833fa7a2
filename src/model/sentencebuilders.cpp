#include "model/sentencebuilders.h"

#include "link/sentence.h"
#include "model/commands.h"
#include "model/routermodel.h"

namespace {

constexpr int HalfOfPorts = 6;      // what one $VRFLT or $VRPNM carries
constexpr int SlotsPerSentence = 8; // what one $VRFLS carries
constexpr int NibbleValues = 16;
constexpr int Hexadecimal = 16;
constexpr int ByteDigits = 2;
constexpr int MaskDigits = 8;

const QLatin1Char fieldSeparator(',');

bool isPort(int port)
{
    return port >= 0 && port < OutputPortCount;
}

bool startsHalf(int first)
{
    return first == 0 || first == HalfOfPorts;
}

QChar mode(bool batch)
{
    return QLatin1Char(batch ? 'B' : 'W');
}

QString hex(quint32 number, int digits)
{
    return QStringLiteral("%1").arg(number, digits, Hexadecimal, QLatin1Char('0'));
}

const ChannelRecord &channelOf(const RouterModel &model, int port, int channel)
{
    return model.output_ports[std::size_t(port)].channels[std::size_t(channel)];
}

} // namespace

QString MakeRuleSentence(const RouterModel &model, int port, bool batch)
{
    if (!isPort(port))
        return QString();
    QString body = QStringLiteral("$VRRUL,%1,%2,").arg(port).arg(mode(batch));
    for (const ChannelRecord &channel : model.output_ports[std::size_t(port)].channels)
        body += hex(rulesByte(channel), ByteDigits) + hex(flagsByte(channel), ByteDigits);
    return checkedSentence(body.toUpper());
}

QString MakeFilterSentence(const RouterModel &model, int port, int first, bool batch)
{
    if (!isPort(port) || !startsHalf(first))
        return QString();
    QString body = QStringLiteral("$VRFLT,%1,%2,%3,").arg(port).arg(mode(batch)).arg(first);
    for (int channel = first; channel < first + HalfOfPorts; ++channel)
        body += hex(channelOf(model, port, channel).filter_mask, MaskDigits);
    return checkedSentence(body.toUpper());
}

QString MakeHdrSentence(const RouterModel &model, int port, bool batch)
{
    if (!isPort(port))
        return QString();
    QStringList headers;
    for (const ChannelRecord &channel : model.output_ports[std::size_t(port)].channels)
        headers += channel.hdr_enabled ? channel.hdr : QString();
    const QString head = QStringLiteral("$VRHDC,%1,%2,").arg(port).arg(mode(batch));
    return checkedSentence(head + headers.join(fieldSeparator)).toUpper();
}

QString MakeFilterListSentence(const RouterModel &model, int first)
{
    const bool startsSentence = first % SlotsPerSentence == 0;
    if (first < 0 || first >= FilterSlotCount || !startsSentence)
        return QString();
    QStringList names;
    for (int slot = first; slot < first + SlotsPerSentence; ++slot) {
        const bool isTaken = model.filter_list_mask & (quint32(1) << slot);
        names += isTaken ? model.filter_list[std::size_t(slot)] : QString();
    }
    const QString head = QStringLiteral("$VRFLS,%1,").arg(first);
    return checkedSentence(head + names.join(fieldSeparator)).toUpper();
}

QString MakeNameSentence(const RouterModel &model, bool output, int first)
{
    if (!startsHalf(first))
        return QString();
    QStringList names;
    for (int port = first; port < first + HalfOfPorts; ++port) {
        names += output ? model.output_ports[std::size_t(port)].output_name
                        : model.input_ports[std::size_t(port)].input_name;
    }
    const QString head =
        QStringLiteral("$VRPNM,%1,%2,").arg(QLatin1Char(output ? 'O' : 'I')).arg(first);
    return checkedSentence(head + names.join(fieldSeparator));
}

QString MakeSpeedSentence(int port, quint32 speed)
{
    if (!isPort(port))
        return QString();
    return checkedSentence(QStringLiteral("$VRSPD,%1,%2").arg(port).arg(speed)).toUpper();
}

QString MakeViewSentence(int a, int b)
{
    if (a < 0 || a >= NibbleValues || b < 0 || b >= NibbleValues)
        return QString();
    return QStringLiteral("$VRVVW,%1\r\n").arg(a * NibbleValues + b);
}

QStringList uploadSentences(const RouterModel &model)
{
    QStringList sentences;
    for (int port = 0; port < OutputPortCount; ++port) {
        sentences << MakeRuleSentence(model, port, true);
        sentences << MakeFilterSentence(model, port, 0, true);
        sentences << MakeFilterSentence(model, port, HalfOfPorts, true);
        sentences << MakeHdrSentence(model, port, true);
        sentences << Commands::EndOfBatch;
        sentences << MakeSpeedSentence(port, model.output_ports[std::size_t(port)].speed);
    }
    for (int first = 0; first < FilterSlotCount; first += SlotsPerSentence)
        sentences << MakeFilterListSentence(model, first);
    for (const bool output : {true, false}) {
        sentences << MakeNameSentence(model, output, 0);
        sentences << MakeNameSentence(model, output, HalfOfPorts);
    }
    return sentences;
}
