#include "simulator/router/routerconfig.h"

#include <tuple>

namespace tk7sim {

namespace {

constexpr int nibble = 4; // bits
constexpr int nibbleMask = 15;
constexpr int smartShift = 4;
constexpr int smartMask = 7;
constexpr quint32 defaultSpeed = 4800;

enum FlagBit : quint8 { CrsBit = 1, FilterBit = 2, BlackListBit = 4, HdrBit = 8 };

enum Smart : quint8 { NoSmart, SmartGps, SmartHeading, SmartDepth, SmartArpa, SmartAis };

// The ports of the ship that the simulated router was set up for. A port number has one speed,
// which its input and its output share.
struct ShipPort
{
    quint32 speed;
    const char *input;
    const char *output;
};

constexpr std::array<ShipPort, portCount> shipPorts = {{{4800, "GPS 1", "A-PILOT"},
                                                        {4800, "GPS 2", "GYRO RPT"},
                                                        {38400, "GYRO", "RADAR X"},
                                                        {38400, "AIS", "ECDIS 1"},
                                                        {4800, "DEPTH", "BNWAS"},
                                                        {4800, "LOG", "AIS SENS"},
                                                        {4800, "WIND", "WIND RPT"},
                                                        {38400, "RADAR X", "ECDIS 2"},
                                                        {9600, "ECDIS", "VHF DSC"},
                                                        {4800, "FLUXGATE", "GMDSS"},
                                                        {4800, "WEATHER", "PC"},
                                                        {38400, "", "VDR"}}};

// Slot 6 and the slots between 16 and 24 are free: a list has holes when names were removed.
constexpr std::array<const char *, filterSlotCount> shipFilterList = {
    "RMC", "GGA", "GLL", "ZDA", "VTG", "HDT", "", "HDG", "TTM", "VDO", "VDM",
    "DBT", "DPT", "ROT", "MWV", "VBW", "",    "", "",    "",    "",    "",
    "",    "",    "ALR", "APB", "RSD", "",    "", "",    "",    "MTW"};

enum ListBit : quint32 {
    Rmc = 1U << 0,
    Gga = 1U << 1,
    Gll = 1U << 2,
    Zda = 1U << 3,
    Vtg = 1U << 4,
    Hdt = 1U << 5,
    Hdg = 1U << 7,
    Ttm = 1U << 8,
    Vdo = 1U << 9,
    Vdm = 1U << 10,
    Dbt = 1U << 11,
    Dpt = 1U << 12,
    Mwv = 1U << 14,
    Vbw = 1U << 15,
    Apb = 1U << 25,
    Rsd = 1U << 26
};

enum Input : quint8 {
    Gps1,
    Gps2,
    Gyro,
    Ais,
    Depth,
    SpeedLog,
    Wind,
    RadarX,
    Ecdis,
    Fluxgate,
    Weather,
    None = noPort
};

enum Filtering : quint8 { NoFilter, WhiteList, BlackList };

enum Checking : bool { Unchecked = false, Crs = true };

struct ShipRoute
{
    quint8 output;
    quint8 channel;
    quint8 mainInput;
    quint8 reserveInput;
    quint8 smart;
    Checking crs;
    Filtering filtering;
    quint32 filterMask;
    const char *header; // null: as the input sends it
};

constexpr ShipRoute shipRoutes[] = {
    // The autopilot: position, course to steer, heading.
    {0, 0, Gps1, Gps2, SmartGps, Crs, WhiteList, Rmc | Vtg | Gll, nullptr},
    {0, 1, Gyro, Fluxgate, SmartHeading, Crs, WhiteList, Hdt | Hdg, nullptr},
    {0, 2, Ecdis, None, NoSmart, Crs, WhiteList, Apb, nullptr},
    {0, 3, SpeedLog, None, NoSmart, Unchecked, NoFilter, 0, nullptr},
    // Repeaters of the gyro.
    {1, 0, Gyro, Fluxgate, SmartHeading, Crs, NoFilter, 0, "HE"},
    // The radar.
    {2, 0, Gyro, Fluxgate, SmartHeading, Crs, WhiteList, Hdt, nullptr},
    {2, 1, Gps1, Gps2, SmartGps, Crs, WhiteList, Rmc | Gga | Vtg, "GP"},
    {2, 2, Ais, None, SmartAis, Crs, BlackList, Vdo, nullptr},
    {2, 3, SpeedLog, None, NoSmart, Unchecked, WhiteList, Vbw, nullptr},
    // The first ECDIS takes everything, at a high speed.
    {3, 0, Gps1, Gps2, SmartGps, Crs, NoFilter, 0, nullptr},
    {3, 1, Gyro, Fluxgate, SmartHeading, Crs, NoFilter, 0, nullptr},
    {3, 2, Ais, None, SmartAis, Crs, NoFilter, 0, nullptr},
    {3, 3, Depth, None, SmartDepth, Crs, NoFilter, 0, "SD"},
    {3, 4, SpeedLog, None, NoSmart, Crs, NoFilter, 0, nullptr},
    {3, 5, Wind, Weather, NoSmart, Unchecked, NoFilter, 0, nullptr},
    {3, 6, RadarX, None, SmartArpa, Crs, BlackList, Rsd, nullptr},
    // The bridge watch alarm listens for the movements of the autopilot.
    {4, 0, Ecdis, None, NoSmart, Unchecked, WhiteList, Apb, nullptr},
    // The sensors that the AIS transponder reports.
    {5, 0, Gps1, Gps2, SmartGps, Crs, WhiteList, Rmc | Gga | Vtg | Zda, nullptr},
    {5, 1, Gyro, None, SmartHeading, Crs, NoFilter, 0, nullptr},
    // The display of the wind, fed by hand-me-downs if its sensor fails.
    {6, 0, Wind, Weather, NoSmart, Unchecked, WhiteList, Mwv, "WI"},
    // The second ECDIS has its own GPS.
    {7, 0, Gps2, Gps1, SmartGps, Crs, BlackList, Gll | Zda, nullptr},
    {7, 1, Gyro, Fluxgate, SmartHeading, Crs, NoFilter, 0, nullptr},
    {7, 2, Ais, None, SmartAis, Crs, WhiteList, Vdm | Vdo, nullptr},
    {7, 3, Depth, None, SmartDepth, Crs, WhiteList, Dbt | Dpt, nullptr},
    {7, 4, RadarX, None, SmartArpa, Crs, WhiteList, Ttm, nullptr},
    // Radio: position and time for a distress call.
    {8, 0, Gps1, Gps2, SmartGps, Crs, WhiteList, Rmc | Gga | Gll, "GP"},
    {9, 0, Gps2, Gps1, SmartGps, Crs, WhiteList, Rmc | Zda, "GP"},
    // The ship's computer in the office: weather in the last channel, as it was added late.
    {10, 0, Gps2, None, NoSmart, Unchecked, WhiteList, Rmc, nullptr},
    {10, 11, Weather, None, NoSmart, Unchecked, NoFilter, 0, nullptr},
    // The voyage data recorder records whatever is there.
    {11, 0, Gps1, Gps2, NoSmart, Unchecked, NoFilter, 0, nullptr},
    {11, 1, Gyro, None, NoSmart, Unchecked, NoFilter, 0, nullptr},
    {11, 2, Ais, None, NoSmart, Unchecked, NoFilter, 0, nullptr},
    {11, 3, Depth, None, NoSmart, Unchecked, NoFilter, 0, nullptr},
    {11, 4, SpeedLog, None, NoSmart, Unchecked, NoFilter, 0, nullptr},
    {11, 5, Wind, None, NoSmart, Unchecked, NoFilter, 0, nullptr},
    {11, 6, RadarX, None, NoSmart, Unchecked, NoFilter, 0, nullptr},
    {11, 7, Ecdis, None, NoSmart, Unchecked, NoFilter, 0, nullptr},
};

Channel channelOf(const ShipRoute &route)
{
    Channel channel;
    channel.mainInput = route.mainInput;
    channel.reserveInput = route.reserveInput;
    channel.filterEnabled = route.filtering != NoFilter;
    channel.filterType = route.filtering == BlackList ? FilterType::Black : FilterType::White;
    channel.filterMask = route.filterMask;
    channel.crsEnabled = route.crs;
    channel.hdrEnabled = route.header != nullptr;
    channel.hdr = QByteArray(route.header);
    channel.smart = route.smart;
    return channel;
}

} // namespace

bool Channel::operator==(const Channel &other) const
{
    const auto all = [](const Channel &c) {
        return std::tie(c.mainInput, c.reserveInput, c.filterEnabled, c.filterMask, c.filterType,
                        c.crsEnabled, c.hdrEnabled, c.hdr, c.smart);
    };
    return all(*this) == all(other);
}

quint8 Channel::rulesByte() const
{
    return static_cast<quint8>((reserveInput << nibble) | (mainInput & nibbleMask));
}

quint8 Channel::flagsByte() const
{
    const int options = (crsEnabled ? CrsBit : 0) | (filterEnabled ? FilterBit : 0)
        | (filterType == FilterType::Black ? BlackListBit : 0) | (hdrEnabled ? HdrBit : 0);
    return static_cast<quint8>(options | ((smart & smartMask) << smartShift));
}

void Channel::setBytes(quint8 rules, quint8 flags)
{
    mainInput = rules & nibbleMask;
    reserveInput = static_cast<quint8>(rules >> nibble);
    crsEnabled = (flags & CrsBit) != 0;
    filterEnabled = (flags & FilterBit) != 0;
    filterType = (flags & BlackListBit) != 0 ? FilterType::Black : FilterType::White;
    hdrEnabled = (flags & HdrBit) != 0;
    smart = static_cast<quint8>((flags >> smartShift) & smartMask);
}

RouterConfig::RouterConfig()
{
    speeds.fill(defaultSpeed);
}

RouterConfig RouterConfig::factory()
{
    RouterConfig config;
    for (size_t port = 0; port < shipPorts.size(); ++port) {
        config.speeds[port] = shipPorts[port].speed;
        config.inputNames[port] = shipPorts[port].input;
        config.outputNames[port] = shipPorts[port].output;
    }
    for (size_t slot = 0; slot < shipFilterList.size(); ++slot) {
        config.filterList[slot] = shipFilterList[slot];
    }
    for (const ShipRoute &route : shipRoutes) {
        Output &output = config.outputs[route.output];
        output.channels[route.channel] = channelOf(route);
    }
    return config;
}

quint32 RouterConfig::filterListMask() const
{
    quint32 mask = 0;
    for (size_t slot = 0; slot < filterList.size(); ++slot) {
        mask |= filterList[slot].isEmpty() ? 0U : 1U << slot;
    }
    return mask;
}

bool RouterConfig::operator==(const RouterConfig &other) const
{
    return outputs == other.outputs && speeds == other.speeds && inputNames == other.inputNames
        && outputNames == other.outputNames && filterList == other.filterList;
}

bool isViewCode(int code)
{
    if (code < 0 || code > viewNothing) {
        return false;
    }
    const auto isPortOrNone = [](int number) { return isPort(number) || number == noPort; };
    return isPortOrNone(code >> nibble) && isPortOrNone(code & nibbleMask);
}

} // namespace tk7sim
