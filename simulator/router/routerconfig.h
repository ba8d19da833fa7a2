#pragma once

#include "simulator/instruments/ports.h"

#include <QByteArray>
#include <QVector>

#include <array>

namespace tk7sim {

constexpr int channelCount = 12;    //!< channels of an output port, numbered 0 to 11
constexpr int filterSlotCount = 32; //!< places in the list of sentence names
constexpr int noPort = 15;          //!< in a channel's inputs: no port
constexpr int maxNameLength = 8;    //!< bytes of a port's name
constexpr int headerLength = 2;     //!< bytes of a talker header
constexpr int formatterLength = 3;  //!< bytes of a sentence name
constexpr int viewNothing = 255;    //!< view code: the monitor is off

/*! The type of a channel's list of sentences. */
enum class FilterType : quint8 {
    White = 0, //!< only the listed sentences pass
    Black = 1  //!< all but the listed sentences pass
};

/*! One slot of an output port, through which it takes the traffic of an input port. */
struct Channel
{
    quint8 mainInput = noPort;    //!< 0 to 11, or noPort; 12 to 14 are kept and bring nothing
    quint8 reserveInput = noPort; //!< the same
    bool filterEnabled = false;
    quint32 filterMask = 0; //!< bit i: slot i of the sentence list belongs to this channel
    FilterType filterType = FilterType::White;
    bool crsEnabled = false; //!< sentences with a wrong checksum are held back
    bool hdrEnabled = false; //!< the talker is replaced by hdr
    QByteArray hdr;          //!< two characters, or empty
    quint8 smart = 0; //!< 0 none, 1 GPS, 2 heading, 3 depth, 4 ARPA, 5 AIS; 6 and 7 have no meaning

    bool operator==(const Channel &other) const;
    bool operator!=(const Channel &other) const { return !(*this == other); }

    //! The two inputs as one byte: the reserve input in the high nibble.
    quint8 rulesByte() const;
    //! The options as one byte: CRS, filter, black list, header, then three bits of smart.
    quint8 flagsByte() const;
    //! Takes over both bytes; bit 7 of \a flags is ignored.
    void setBytes(quint8 rules, quint8 flags);
};

/*! The channels of one output port. */
struct Output
{
    std::array<Channel, channelCount> channels;

    bool operator==(const Output &other) const { return channels == other.channels; }
    bool operator!=(const Output &other) const { return !(*this == other); }
};

/*!
 * The whole configuration of a router: a plain value, compared and copied as one.
 *
 * Indexes are port numbers (0 to 11) and list slots (0 to 31). Names are bytes as they came over
 * the line.
 */
struct RouterConfig
{
    std::array<Output, portCount> outputs;
    std::array<quint32, portCount> speeds;        //!< baud; input port p and output port p share it
    std::array<QByteArray, portCount> inputNames; //!< at most maxNameLength bytes, may be empty
    std::array<QByteArray, portCount> outputNames; //!< at most maxNameLength bytes, may be empty
    std::array<QByteArray, filterSlotCount> filterList; //!< three characters, or empty

    //! No routes, no names, an empty list, every port at 4800 baud.
    RouterConfig();
    //! The set-up of a ship as the simulated router leaves the yard.
    static RouterConfig factory();

    //! Bit i is set if slot i of the sentence list holds a name.
    quint32 filterListMask() const;

    bool operator==(const RouterConfig &other) const;
    bool operator!=(const RouterConfig &other) const { return !(*this == other); }
};

/*! True for a byte that names something to look at: nothing, a port, or a channel. */
bool isViewCode(int code);

} // namespace tk7sim
