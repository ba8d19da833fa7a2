#include "simulator/instruments/aisfleet.h"

#include "simulator/instruments/neighbours.h"

#include <QSet>

#include <array>
#include <cmath>
#include <random>

namespace tk7sim {

namespace {

constexpr qint64 second = 1000; // milliseconds
constexpr double halfCircle = 180.0;
constexpr double pi = 3.14159265358979323846;
constexpr double minutesPerDegree = 60.0;

constexpr int atAnchor = 1;
constexpr int restricted = 3;
constexpr int moored = 5;
constexpr int fishing = 7;
constexpr int sailing = 8;
constexpr int towingAstern = 11;
constexpr int notDefined = 15;

// A kind of vessel and the ranges of its measures.
struct VesselClass
{
    int firstType; // of the ship types
    int typeCount;
    int minLength; // metres
    int maxLength;
    int minKnots;
    int maxKnots;
    int navStatus;
    bool isShip; // has an IMO number, a gyro and a rate of turn sensor
    const char *names;
};

enum Kind {
    Cargo,
    Tanker,
    Ferry,
    Fisher,
    Tug,
    Tow,
    Dredger,
    Diver,
    Navy,
    Yacht,
    Launch,
    Fast,
    Pilot,
    Rescue,
    Tender,
    Cleaner,
    Police,
    Local,
    Hospital,
    Buoy,
    Unknown,
    Anchored,
    Moored,
    kindCount
};

constexpr const char *firstNames =
    "NORDIC BALTIC ELBE WESER FRISIAN HANSE AMBER SILVER NORTH GREEN CORAL POLAR ARCTIC ATLANTIC "
    "SAXON VIKING GOLDEN RHINE EMS BREEZE";
constexpr const char *smallNames =
    "MOEWE ALBATROS KORMORAN SEESTERN LUETTE WINDSBRAUT AUSTER NORDLICHT SEEIGEL STINT "
    "DORADE KRABBE LABSKAUS PASSAT ZUGVOGEL ROBBE";

constexpr std::array<VesselClass, kindCount> classes = {{
    {70, 10, 82, 366, 10, 21, 0, true, firstNames},
    {80, 10, 75, 333, 9, 15, 0, true, firstNames},
    {60, 10, 45, 225, 16, 22, 0, true, firstNames},
    {30, 1, 14, 42, 2, 5, fishing, false, smallNames},
    {52, 1, 22, 36, 7, 12, 0, true, firstNames},
    {31, 2, 24, 90, 4, 7, towingAstern, true, firstNames},
    {33, 1, 60, 158, 1, 3, restricted, true, firstNames},
    {34, 1, 25, 70, 0, 2, restricted, true, firstNames},
    {35, 1, 48, 143, 12, 24, 0, true, firstNames},
    {36, 1, 9, 24, 4, 7, sailing, false, smallNames},
    {37, 1, 8, 22, 6, 18, notDefined, false, smallNames},
    {40, 1, 28, 52, 26, 36, 0, true, firstNames},
    {50, 1, 25, 60, 2, 14, 0, true, firstNames},
    {51, 1, 10, 46, 8, 24, 0, false, smallNames},
    {53, 1, 15, 40, 5, 11, 0, false, smallNames},
    {54, 1, 30, 78, 6, 12, 0, true, firstNames},
    {55, 1, 20, 66, 8, 22, 0, true, firstNames},
    {56, 2, 12, 30, 5, 10, 0, false, smallNames},
    {58, 1, 18, 40, 9, 18, 0, false, smallNames},
    {90, 10, 40, 70, 5, 11, 0, true, firstNames},
    {0, 1, 12, 40, 5, 12, notDefined, false, smallNames},
    {70, 20, 90, 300, 0, 0, atAnchor, true, firstNames},
    {52, 6, 18, 50, 0, 0, moored, true, firstNames},
}};

constexpr const char *lastNames = "TRADER STAR EXPRESS PEARL CARRIER WIND SPIRIT PIONEER VOYAGER "
                                  "BRIDGE HARMONY HORIZON QUEEN FALCON WAVE DAWN TIDE ISLAND";
constexpr const char *destinations[] = {
    "HAMBURG",   "BREMERHAVEN",   "DE HAM",     "NL RTM",  "ANTWERPEN", "BRUNSBUETTEL",
    "GDANSK",    "GOTHENBURG",    "SE GOT",     "ESBJERG", "IMMINGHAM", "FELIXSTOWE",
    "EEMSHAVEN", "DE WVN",        "KLAIPEDA",   "AARHUS",  "HELGOLAND", "CUXHAVEN ROADS",
    "",          "ST.PETERSBURG", "FOR ORDERS", "DK CPH",  "BUESUM",    "AMSTERDAM VIA IJMUIDN",
};

// A country: its maritime identification digits and how its call signs begin.
struct Flag
{
    int mid;
    const char *callSign;
};
constexpr Flag flags[] = {
    {211, "DG"}, {218, "DJ"}, {219, "OX"}, {244, "PB"}, {245, "PD"}, {232, "MA"},
    {235, "2F"}, {257, "LA"}, {258, "LM"}, {265, "SB"}, {276, "ES"}, {275, "YL"},
    {277, "LY"}, {230, "OJ"}, {261, "SN"}, {249, "9H"}, {209, "5B"}, {636, "A8"},
    {373, "3E"}, {563, "9V"}, {477, "VR"}, {538, "V7"}, {304, "V2"}, {311, "C6"},
};

// Which kinds stand in the fleet, over and over.
constexpr Kind mix[] = {
    Cargo,  Tanker, Ferry,    Fisher, Cargo,   Yacht,  Pilot,    Cargo, Anchored, Fast,
    Tug,    Cargo,  Rescue,   Tanker, Dredger, Fisher, Launch,   Cargo, Navy,     Moored,
    Police, Cargo,  Tow,      Yacht,  Tender,  Ferry,  Buoy,     Cargo, Cleaner,  Fisher,
    Diver,  Local,  Hospital, Cargo,  Unknown, Tanker, Anchored, Cargo,
};

// Of every so many vessels the one at this place has the flaw.
struct FlawedPlace
{
    int place;
    int every;
    TransponderFlaw flaw;
};
constexpr FlawedPlace flawedPlaces[] = {
    {11, 40, TransponderFlaw::NoPosition},
    {17, 40, TransponderFlaw::WrongHemisphere},
    {3, 20, TransponderFlaw::NoVoyageData},
};
constexpr int distantPlace = 26; // of every forty: heard from far away, as the air sometimes allows
constexpr int distantEvery = 40;
const Fix distantSea = {57.9, 10.4, 0};
constexpr int silentPlace = 5; // of every eight: falls silent now and then
constexpr int silentEvery = 8;
constexpr int leavingPlace = 29; // of every forty: falls silent for ever
constexpr int leavingEvery = 40;
constexpr int sharedEvery = 5; // so many vessels, of which one is heard at two stations

class FleetBuilder
{
public:
    FleetBuilder(int stationCount, quint32 seed, const QDate &today)
        : m_stationCount(stationCount), m_today(today), m_random(seed)
    {
    }

    FleetVessel neighbour(int index);
    FleetVessel vessel(int index);
    quint32 chance() { return static_cast<quint32>(m_random()); }

private:
    int between(int least, int most)
    {
        return least + static_cast<int>(m_random() % static_cast<quint32>(most - least + 1));
    }
    bool isOneOf(int count) { return between(1, count) == 1; }
    template <typename Array> const auto &oneOf(const Array &array)
    {
        return array[m_random() % std::size(array)];
    }
    QByteArray word(const char *words);
    quint32 newMmsi(int mid);
    quint32 newImo();
    QByteArray newName(const VesselClass &vesselClass);
    QByteArray callSign(const Flag &flag);
    void measure(AisVoyageData *voyage, const VesselClass &vesselClass);
    Fix place(int index);
    void settle(FleetVessel *vessel, int index);
    SilencePattern silence(int index);

    int m_stationCount;
    QDate m_today;
    std::mt19937 m_random;
    QSet<quint32> m_mmsis = {ownVessel().mmsi};
    QSet<QByteArray> m_names;
};

QByteArray FleetBuilder::word(const char *words)
{
    const auto all = QByteArray(words).split(' ');
    return all.at(between(0, int(all.size() - 1)));
}

quint32 FleetBuilder::newMmsi(int mid)
{
    constexpr quint32 perMid = 1000000;
    for (;;) {
        const quint32 mmsi = static_cast<quint32>(mid) * perMid + chance() % perMid;
        if (!m_mmsis.contains(mmsi)) {
            m_mmsis.insert(mmsi);
            return mmsi;
        }
    }
}

// Six digits and a check digit: the sum of them, seven times the first to twice the last.
quint32 FleetBuilder::newImo()
{
    constexpr int digits = 6;
    constexpr int base = 10;
    const int number = between(870000, 985999);
    int sum = 0;
    int rest = number;
    for (int weight = 2; weight < digits + 2; ++weight) {
        sum += rest % base * weight;
        rest /= base;
    }
    return static_cast<quint32>(number * base + sum % base);
}

QByteArray FleetBuilder::newName(const VesselClass &vesselClass)
{
    QByteArray name = word(vesselClass.names);
    if (vesselClass.isShip) {
        name += ' ' + word(lastNames);
    }
    QByteArray tried = name;
    for (int number = 2; m_names.contains(tried); ++number) {
        tried = name + ' ' + QByteArray::number(number);
    }
    m_names.insert(tried);
    return tried.left(AisVoyageData::textLength);
}

QByteArray FleetBuilder::callSign(const Flag &flag)
{
    QByteArray text = flag.callSign;
    for (int i = 0; i < 2; ++i) {
        text += static_cast<char>(between('A', 'Z'));
    }
    for (int digits = between(0, 3); digits > 0; --digits) {
        text += static_cast<char>(between('2', '9'));
    }
    return text;
}

void FleetBuilder::measure(AisVoyageData *voyage, const VesselClass &vesselClass)
{
    constexpr int shortest = 5; // times the breadth
    constexpr int longest = 7;
    constexpr int maxBreadth = 60;
    const int length = between(vesselClass.minLength, vesselClass.maxLength);
    const int breadth = qBound(2, length / between(shortest, longest), maxBreadth);
    // The antenna stands well aft, and a little off the middle.
    voyage->toStern = length / between(4, 9);
    voyage->toBow = length - voyage->toStern;
    voyage->toPort = breadth / 2 + between(-1, 1);
    voyage->toStarboard = breadth - voyage->toPort;
    voyage->draught = length * between(3, 5) / 10;
}

Fix FleetBuilder::place(int index)
{
    if (index % distantEvery == distantPlace) {
        Fix fix = distantSea;
        fix.course = between(0, 359);
        return fix;
    }
    // As many vessels in the outer half of the area as in the inner one.
    constexpr double parts = 1000;
    const double radius = fleetRadius * std::sqrt(between(0, 950) / parts);
    const double bearing = between(0, 359) * pi / halfCircle;
    Fix fix = fleetMiddle;
    fix.latitude += radius * std::cos(bearing) / minutesPerDegree;
    fix.longitude += radius * std::sin(bearing) / minutesPerDegree
        / std::cos(fleetMiddle.latitude * pi / halfCircle);
    fix.course = between(0, 359);
    return fix;
}

SilencePattern FleetBuilder::silence(int index)
{
    if (index % leavingEvery == leavingPlace) {
        return {between(150, 300) * second, second, 0};
    }
    if (index % silentEvery != silentPlace) {
        return {};
    }
    // Some shorter than what a receiver waits for, some longer.
    const qint64 length = between(150, 900) * second;
    return {between(60, 900) * second, length, length + between(300, 900) * second};
}

void FleetBuilder::settle(FleetVessel *vessel, int index)
{
    vessel->stations = {index % m_stationCount};
    if (index % sharedEvery == 0 && m_stationCount > 1) {
        vessel->stations.append((index + 1) % m_stationCount);
    }
}

FleetVessel FleetBuilder::neighbour(int index)
{
    const AisVessel &model = neighbours()[static_cast<size_t>(index)];
    m_mmsis.insert(model.mmsi);
    m_names.insert(model.name);
    FleetVessel vessel;
    vessel.voyage = voyageDataOf(model);
    vessel.isAccurate = true;
    vessel.circle = &model.course;
    settle(&vessel, index);
    return vessel;
}

FleetVessel FleetBuilder::vessel(int index)
{
    constexpr int gyroOfSmall = 3; // so many small vessels, of which one has a gyro
    constexpr int fixTypes[] = {1, 1, 1, 1, 3, 3, 2, 8, 6, 15, 0, 4, 5, 7};
    constexpr double bigShip = 120; // metres
    constexpr double slowTurn = 15; // degrees a minute
    constexpr double quickTurn = 40;
    const auto flawOf = [index] {
        for (const FlawedPlace &place : flawedPlaces) {
            if (index % place.every == place.place) {
                return place.flaw;
            }
        }
        return TransponderFlaw::None;
    };

    const VesselClass &vesselClass = classes[mix[static_cast<size_t>(index) % std::size(mix)]];
    const Flag &flag = oneOf(flags);
    FleetVessel vessel;
    AisVoyageData &voyage = vessel.voyage;
    voyage.mmsi = newMmsi(flag.mid);
    voyage.imo = vesselClass.isShip ? newImo() : 0;
    voyage.name = newName(vesselClass);
    voyage.callSign = callSign(flag);
    voyage.shipType = vesselClass.firstType + between(0, vesselClass.typeCount - 1);
    voyage.fixType = oneOf(fixTypes);
    measure(&voyage, vesselClass);
    vessel.navStatus = vesselClass.navStatus;
    vessel.hasGyro = vesselClass.isShip || isOneOf(gyroOfSmall);
    vessel.hasTurnSensor = vesselClass.isShip;
    vessel.isAccurate = isOneOf(2);
    vessel.flaw = flawOf();
    vessel.silence = silence(index);
    constexpr double tenths = 10;
    const double knots = between(vesselClass.minKnots * 10, vesselClass.maxKnots * 10) / tenths;
    const double turnRate = voyage.toBow > bigShip ? slowTurn : quickTurn;
    vessel.motion = DeadReckoning(place(index), knots, turnRate);
    settle(&vessel, index);
    changeVoyage(&vessel, chance(), m_today);
    return vessel;
}

} // namespace

const Fix fleetMiddle = {54.35, 7.5, 0};

void changeVoyage(FleetVessel *vessel, quint32 chance, const QDate &today)
{
    constexpr quint32 voyages = 12; // days, and steps of five minutes, come from the same number
    constexpr int hours = 24;
    constexpr int steps = 12;
    constexpr int minutesPerStep = 5;
    AisVoyageData &voyage = vessel->voyage;
    voyage.destination =
        QByteArray(destinations[chance % std::size(destinations)]).left(AisVoyageData::textLength);
    chance /= static_cast<quint32>(std::size(destinations));
    const auto days = static_cast<int>(chance % voyages);
    chance /= voyages;
    if (days == 0) {
        voyage.month = 0;
        voyage.day = 0;
        voyage.hour = AisVoyageData::noHour;
        voyage.minute = AisVoyageData::noMinute;
        return;
    }
    const QDate arrival = today.addDays(days);
    voyage.month = arrival.month();
    voyage.day = arrival.day();
    voyage.hour = static_cast<int>(chance % hours);
    voyage.minute = static_cast<int>(chance / hours % steps) * minutesPerStep;
}

QVector<FleetVessel> makeFleet(int count, int stationCount, quint32 seed, const QDate &today)
{
    FleetBuilder builder(stationCount, seed, today);
    const int neighbourCount = qMin(count, static_cast<int>(neighbours().size()));
    QVector<FleetVessel> fleet;
    fleet.reserve(count);
    for (int i = 0; i < neighbourCount; ++i) {
        fleet.append(builder.neighbour(i));
    }
    for (int i = neighbourCount; i < count; ++i) {
        fleet.append(builder.vessel(i));
    }
    return fleet;
}

} // namespace tk7sim
