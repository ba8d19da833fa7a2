#include "model/download.h"

namespace {

// Where the values of each kind begin.
constexpr int Rules = 0;
constexpr int Masks = Rules + OutputPortCount * ChannelCount;
constexpr int Headers = Masks + OutputPortCount * ChannelCount;
constexpr int Sentences = Headers + OutputPortCount * ChannelCount;
constexpr int Speeds = Sentences + FilterSlotCount;
constexpr int OutputNames = Speeds + OutputPortCount;
constexpr int InputNames = OutputNames + OutputPortCount;
static_assert(InputNames + InputPortCount == Download::Total);

constexpr int HalfOfPorts = 6;      // what one $VRFLT or $VRPNM carries
constexpr int SlotsPerSentence = 8; // what one $VRFLS carries

int channelPlace(int kind, quint8 port, int channel)
{
    return kind + port * ChannelCount + channel;
}

} // namespace

void Download::mark(int place)
{
    m_received.set(std::size_t(place));
}

void Download::setRule(quint8 port, int channel, quint8 rules, quint8 flags)
{
    if (m_model.setRule(port, channel, rules, flags))
        mark(channelPlace(Rules, port, channel));
}

void Download::setFilterMask(quint8 port, int channel, quint32 filter_mask)
{
    if (m_model.setFilterMask(port, channel, filter_mask))
        mark(channelPlace(Masks, port, channel));
}

void Download::setHdr(quint8 port, int channel, const QString &hdr)
{
    if (m_model.setHdr(port, channel, hdr))
        mark(channelPlace(Headers, port, channel));
}

void Download::setFilterString(quint8 index, const QString &flt)
{
    if (m_model.setFilterString(index, flt))
        mark(Sentences + index);
}

void Download::setPortSpeed(quint8 port, quint32 speed)
{
    if (m_model.setPortSpeed(port, speed))
        mark(Speeds + port);
}

void Download::setPortName(bool output, quint8 port, const QString &name)
{
    if (m_model.setPortName(output, port, name))
        mark((output ? OutputNames : InputNames) + port);
}

bool Download::isMissing(int first, int count) const
{
    for (int place = first; place < first + count; ++place) {
        if (!m_received.test(std::size_t(place)))
            return true;
    }
    return false;
}

QStringList Download::missing() const
{
    QStringList texts;
    const auto look = [&](int first, int count, const QString &text) {
        if (isMissing(first, count))
            texts += text;
    };
    for (int port = 0; port < OutputPortCount; ++port) {
        const int first = port * ChannelCount;
        look(Speeds + port, 1, QStringLiteral("the speed of port %1").arg(port));
        look(Rules + first, ChannelCount, QStringLiteral("the rules of output %1").arg(port));
        for (const int half : {0, HalfOfPorts}) {
            look(Masks + first + half, HalfOfPorts,
                 QStringLiteral("the filters of output %1, channels %2 to %3")
                     .arg(port)
                     .arg(half)
                     .arg(half + HalfOfPorts - 1));
        }
        look(Headers + first, ChannelCount, QStringLiteral("the headers of output %1").arg(port));
    }
    for (int slot = 0; slot < FilterSlotCount; slot += SlotsPerSentence) {
        look(Sentences + slot, SlotsPerSentence,
             QStringLiteral("the sentence names %1 to %2")
                 .arg(slot)
                 .arg(slot + SlotsPerSentence - 1));
    }
    for (const int half : {0, HalfOfPorts}) {
        const QString ports = QStringLiteral("%1 to %2").arg(half).arg(half + HalfOfPorts - 1);
        look(OutputNames + half, HalfOfPorts, QStringLiteral("the names of outputs %1").arg(ports));
        look(InputNames + half, HalfOfPorts, QStringLiteral("the names of inputs %1").arg(ports));
    }
    return texts;
}
