#include "model/routermodel.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace {

constexpr int Rs422InputPortCount = 10;
constexpr int Rs422OutputPortCount = 8;

constexpr quint8 CrsFlag = 0x01;
constexpr quint8 FilterFlag = 0x02;
constexpr quint8 BlackListFlag = 0x04;
constexpr quint8 HdrFlag = 0x08;

constexpr int SmartFunctionShift = 4;
constexpr int ReserveInputShift = 4;
constexpr quint8 InputMask = 0x0f; // also the greatest number that travels

constexpr const char *DefaultSentenceNames[] = {"RMC", "GGA", "GLL", "ZDA", "VTG", "HDT",
                                                "HDM", "HDG", "TTM", "VDO", "VDM", "DBT"};
constexpr quint32 DefaultListMask = 0x00000fff;

quint8 inputNibble(quint8 input)
{
    return input <= InputMask ? input : NO_PORT;
}

quint8 flagIf(bool set, quint8 flag)
{
    return set ? flag : quint8(0);
}

} // namespace

const std::array<quint32, PortSpeedCount> &portSpeeds()
{
    static constexpr std::array<quint32, PortSpeedCount> speeds = {2400,  4800,  9600,  19200,
                                                                   38400, 57600, 115200};
    return speeds;
}

int portSpeedIndex(quint32 speed)
{
    const auto &speeds = portSpeeds();
    const auto found = std::find(speeds.begin(), speeds.end(), speed);
    return found == speeds.end() ? -1 : int(std::distance(speeds.begin(), found));
}

PortKind inputPortKind(int port)
{
    return port < Rs422InputPortCount ? PortKind::Rs422 : PortKind::Rs232;
}

PortKind outputPortKind(int port)
{
    return port < Rs422OutputPortCount ? PortKind::Rs422 : PortKind::Rs232;
}

bool operator==(const ChannelRecord &a, const ChannelRecord &b)
{
    const auto fields = [](const ChannelRecord &c) {
        return std::tie(c.main_input, c.reserve_input, c.filter_enabled, c.filter_mask,
                        c.filter_type, c.crs_enabled, c.hdr_enabled, c.hdr, c.smart_function);
    };
    return fields(a) == fields(b);
}

bool isEmpty(const ChannelRecord &channel)
{
    return !isInputPort(channel.main_input) && !isInputPort(channel.reserve_input);
}

void clearChannelOptions(ChannelRecord &channel)
{
    ChannelRecord cleared;
    cleared.main_input = channel.main_input;
    cleared.reserve_input = channel.reserve_input;
    channel = cleared;
}

quint8 rulesByte(const ChannelRecord &channel)
{
    return quint8(inputNibble(channel.reserve_input) << ReserveInputShift
                  | inputNibble(channel.main_input));
}

quint8 flagsByte(const ChannelRecord &channel)
{
    return quint8(flagIf(channel.crs_enabled, CrsFlag) | flagIf(channel.filter_enabled, FilterFlag)
                  | flagIf(channel.filter_type != WhiteList, BlackListFlag)
                  | flagIf(channel.hdr_enabled, HdrFlag)
                  | (channel.smart_function & MaxSmartFunction) << SmartFunctionShift);
}

bool operator==(const OutputPortRecord &a, const OutputPortRecord &b)
{
    return a.channels == b.channels && a.speed == b.speed && a.output_name == b.output_name;
}

bool operator==(const InputPortRecord &a, const InputPortRecord &b)
{
    return a.input_name == b.input_name;
}

RouterModel::RouterModel() : filter_list_mask(DefaultListMask)
{
    std::transform(std::begin(DefaultSentenceNames), std::end(DefaultSentenceNames),
                   filter_list.begin(), [](const char *name) { return QLatin1String(name); });
}

bool RouterModel::setRule(quint8 port, int channel, quint8 rules, quint8 flags)
{
    ChannelRecord *record = channelAt(port, channel);
    if (!record)
        return false;
    record->main_input = rules & InputMask;
    record->reserve_input = rules >> ReserveInputShift;
    record->crs_enabled = flags & CrsFlag;
    record->filter_enabled = flags & FilterFlag;
    record->filter_type = flags & BlackListFlag ? BlackList : WhiteList;
    record->hdr_enabled = flags & HdrFlag;
    record->smart_function = (flags >> SmartFunctionShift) & MaxSmartFunction;
    return true;
}

bool RouterModel::setFilterMask(quint8 port, int channel, quint32 filter_mask)
{
    ChannelRecord *record = channelAt(port, channel);
    if (!record)
        return false;
    record->filter_mask = filter_mask;
    return true;
}

bool RouterModel::setHdr(quint8 port, int channel, const QString &hdr)
{
    ChannelRecord *record = channelAt(port, channel);
    if (!record)
        return false;
    record->hdr = hdr;
    return true;
}

bool RouterModel::setFilterString(quint8 index, const QString &flt)
{
    if (index >= FilterSlotCount)
        return false;
    filter_list[index] = flt;
    const quint32 bit = quint32(1) << index;
    if (flt.isEmpty())
        filter_list_mask &= ~bit;
    else
        filter_list_mask |= bit;
    return true;
}

bool RouterModel::setPortSpeed(quint8 port, quint32 speed)
{
    if (port >= OutputPortCount || portSpeedIndex(speed) < 0)
        return false;
    output_ports[port].speed = speed;
    return true;
}

bool RouterModel::setPortName(bool output, quint8 port, const QString &name)
{
    if (port >= (output ? OutputPortCount : InputPortCount))
        return false;
    if (output)
        output_ports[port].output_name = name;
    else
        input_ports[port].input_name = name;
    return true;
}

ChannelRecord *RouterModel::channelAt(quint8 port, int channel)
{
    if (port >= OutputPortCount || channel < 0 || channel >= ChannelCount)
        return nullptr;
    return &output_ports[port].channels[std::size_t(channel)];
}

bool operator==(const RouterModel &a, const RouterModel &b)
{
    return a.output_ports == b.output_ports && a.input_ports == b.input_ports
        && a.filter_list == b.filter_list && a.filter_list_mask == b.filter_list_mask;
}
