#pragma once

#include <QString>

#include <array>

/*!
 * What the tool knows of the router: 12 output ports with 12 input channels each, 12 input ports
 * and one list of sentence names that all channels share.
 *
 * An output port takes its traffic through its channels. A channel names a Main and a Reserve input
 * port and carries its own options; the same input port may stand in any number of channels. Ports,
 * channels and list slots are numbered from 0 everywhere.
 */

constexpr int OutputPortCount = 12;
constexpr int InputPortCount = 12;
constexpr int ChannelCount = 12; //!< input channels of one output port

/*! No port, in the nibble of a Main or Reserve input. */
constexpr quint8 NO_PORT = 15;

/*! Whether \a input names an input port. A router or a file can also name one that doesn't exist.
 */
constexpr bool isInputPort(quint8 input)
{
    return input < InputPortCount;
}

constexpr int FilterSlotCount = 32;   //!< slots of the list of sentence names
constexpr int PortNameLength = 8;     //!< most characters of a port's name
constexpr int HeaderLength = 2;       //!< characters of a header override, a talker
constexpr int SentenceNameLength = 3; //!< characters of a sentence name, a formatter
constexpr int MaxSmartFunction = 7;   //!< the most that a smart function's three bits hold

/*! Values of ChannelRecord::filter_type. */
constexpr quint8 WhiteList = 0;
constexpr quint8 BlackList = 1;

constexpr int PortSpeedCount = 7;
constexpr quint32 DefaultPortSpeed = 4800;

/*! The baud rates that a port of the router can have, in the order in which they are offered. */
const std::array<quint32, PortSpeedCount> &portSpeeds();

/*! Index of \a speed in portSpeeds(), or -1 if no port can have it. */
int portSpeedIndex(quint32 speed);

/*! The electrical kind of a port. The hardware fixes it by the port's number. */
enum class PortKind { Rs422, Rs232 };

PortKind inputPortKind(int port);
PortKind outputPortKind(int port);

/*! One input channel of an output port. */
struct ChannelRecord
{
    quint8 main_input = NO_PORT;    //!< input port 0 to 11, or NO_PORT; see isInputPort()
    quint8 reserve_input = NO_PORT; //!< input port 0 to 11, or NO_PORT; see isInputPort()
    bool filter_enabled = false;
    quint32 filter_mask = 0; //!< bit i: slot i of RouterModel::filter_list is in the channel's list
    quint8 filter_type = WhiteList; //!< WhiteList or BlackList
    bool crs_enabled = false;       //!< the router checks the checksum of the channel's sentences
    bool hdr_enabled = false;       //!< the router replaces the talker by hdr
    QString hdr;                    //!< two characters, or empty
    quint8 smart_function = 0;      //!< 0 none, 1 to 5 a function; 6 and 7 can come from the router
};

bool operator==(const ChannelRecord &a, const ChannelRecord &b);
inline bool operator!=(const ChannelRecord &a, const ChannelRecord &b)
{
    return !(a == b);
}

/*! Whether the channel names no input port. Its options, if it has any, are not in force then. */
bool isEmpty(const ChannelRecord &channel);

/*! Sets all fields of \a channel but its two inputs back to their defaults. */
void clearChannelOptions(ChannelRecord &channel);

/*!
 * The channel's inputs as they travel: the reserve input in the high nibble, the main in the low. A
 * number that is no nibble, which only a file can bring, travels as NO_PORT.
 */
quint8 rulesByte(const ChannelRecord &channel);

/*!
 * The channel's options as they travel, from bit 0: checksum check, filter, black list, header
 * override; bits 4 to 6 the smart function; bit 7 is 0. A rule file keeps the same options in
 * another order.
 */
quint8 flagsByte(const ChannelRecord &channel);

/*! One output port. Its speed is that of the input port with the same number, too. */
struct OutputPortRecord
{
    std::array<ChannelRecord, ChannelCount> channels;
    quint32 speed = DefaultPortSpeed; //!< baud, one of portSpeeds()
    QString output_name;              //!< the user's name of the port, or empty
};

bool operator==(const OutputPortRecord &a, const OutputPortRecord &b);
inline bool operator!=(const OutputPortRecord &a, const OutputPortRecord &b)
{
    return !(a == b);
}

/*! One input port. */
struct InputPortRecord
{
    QString input_name; //!< the user's name of the port, or empty
};

bool operator==(const InputPortRecord &a, const InputPortRecord &b);
inline bool operator!=(const InputPortRecord &a, const InputPortRecord &b)
{
    return !(a == b);
}

/*!
 * The router's whole configuration. A new model holds the defaults of a router that nobody has set
 * up: empty channels, 4800 baud, no names and the twelve usual sentence names.
 *
 * The data members are open to whoever shows or edits them. The set functions are the road for
 * numbers that came over the line: they check every index, and return false, having changed
 * nothing, if one is out of range.
 */
class RouterModel
{
public:
    RouterModel();

    std::array<OutputPortRecord, OutputPortCount> output_ports;
    std::array<InputPortRecord, InputPortCount> input_ports;
    std::array<QString, FilterSlotCount> filter_list; //!< three letters, or empty: a free slot
    quint32 filter_list_mask;                         //!< bit i: slot i of filter_list holds a name

    /*!
     * Sets inputs and options of a channel from \a rules and \a flags, packed as by rulesByte() and
     * flagsByte(); bit 7 of \a flags is ignored. The channel's mask and header stay as they are.
     * The inputs are kept as they come, also the numbers 12 to 14; isInputPort() guards their use.
     */
    bool setRule(quint8 port, int channel, quint8 rules, quint8 flags);

    bool setFilterMask(quint8 port, int channel, quint32 filter_mask);

    /*! Stores \a hdr as it came. Whether the override is in force is for setRule() to say. */
    bool setHdr(quint8 port, int channel, const QString &hdr);

    /*!
     * Stores \a flt in slot \a index of the sentence names and brings the slot's bit of the list's
     * mask up to date. An empty \a flt frees the slot; the masks of the channels keep its bit.
     */
    bool setFilterString(quint8 index, const QString &flt);

    /*! Refuses a speed that is not one of portSpeeds(). */
    bool setPortSpeed(quint8 port, quint32 speed);

    /*! Names output port \a port if \a output is set, else input port \a port. Any text is taken.
     */
    bool setPortName(bool output, quint8 port, const QString &name);

private:
    ChannelRecord *channelAt(quint8 port, int channel);
};

bool operator==(const RouterModel &a, const RouterModel &b);
inline bool operator!=(const RouterModel &a, const RouterModel &b)
{
    return !(a == b);
}
