#include "simulator/instruments/otherstations.h"

#include "simulator/instruments/aisfleet.h"

#include <cmath>
#include <random>

namespace tk7sim {

namespace {

constexpr int callSignLength = AisVoyageData::callSignLength;
constexpr int textLength = AisVoyageData::textLength;
constexpr double positionUnits = 600000.0; // 1/10000 of a minute of arc, a degree
constexpr double tenths = 10.0;
constexpr int gps = 1;
constexpr int surveyed = 7;

void putHead(AisEncoder *message, int type, const OtherStation &station)
{
    message->put(type, 6);
    message->put(0, 2); // repeat indicator
    message->put(station.mmsi, 30);
}

void putPlace(AisEncoder *message, const Fix &fix)
{
    message->put(std::lround(fix.longitude * positionUnits), 28);
    message->put(std::lround(fix.latitude * positionUnits), 27);
}

AisEncoder baseStation(const OtherStation &station, const QDateTime &utc)
{
    AisEncoder message;
    putHead(&message, 4, station);
    message.put(utc.date().year(), 14);
    message.put(utc.date().month(), 4);
    message.put(utc.date().day(), 5);
    message.put(utc.time().hour(), 5);
    message.put(utc.time().minute(), 6);
    message.put(utc.time().second(), 6);
    message.put(1, 1); // position better than 10 m
    putPlace(&message, station.motion.fix());
    message.put(surveyed, 4);
    message.put(0, 10); // transmission control, spare
    message.put(0, 1);  // RAIM not in use
    message.put(0, 19); // communication state
    return message;
}

AisEncoder searchAircraft(const OtherStation &station, const QDateTime &utc)
{
    constexpr int altitude = 300; // metres
    AisEncoder message;
    putHead(&message, 9, station);
    message.put(altitude, 12);
    message.put(std::lround(station.motion.knots()), 10);
    message.put(0, 1); // position no better than 10 m
    putPlace(&message, station.motion.fix());
    message.put(static_cast<int>(station.motion.fix().course * tenths), 12);
    message.put(utc.time().second(), 6);
    message.put(0, 1);  // altitude by GNSS
    message.put(0, 7);  // spare
    message.put(0, 1);  // data terminal ready
    message.put(0, 3);  // spare
    message.put(0, 1);  // autonomous mode
    message.put(0, 1);  // RAIM not in use
    message.put(0, 20); // communication state
    return message;
}

AisEncoder classBPosition(const OtherStation &station, const QDateTime &utc)
{
    AisEncoder message;
    putHead(&message, 18, station);
    message.put(0, 8); // spare
    message.put(std::lround(station.motion.knots() * tenths), 10);
    message.put(0, 1); // position no better than 10 m
    putPlace(&message, station.motion.fix());
    message.put(static_cast<int>(station.motion.fix().course * tenths), 12);
    message.put(AisPositionReport::noHeading, 9);
    message.put(utc.time().second(), 6);
    message.put(0, 2);       // spare
    message.put(1, 1);       // carrier sense unit
    message.put(0, 1);       // no display
    message.put(0, 1);       // no digital selective calling
    message.put(1, 1);       // whole band
    message.put(0, 1);       // no message 22
    message.put(0, 1);       // autonomous mode
    message.put(0, 1);       // RAIM not in use
    message.put(1, 1);       // communication state of a carrier sense unit
    message.put(393222, 19); // its fixed value
    return message;
}

AisEncoder aidToNavigation(const OtherStation &station, const QDateTime &utc)
{
    constexpr int lightVessel = 31;
    AisEncoder message;
    putHead(&message, 21, station);
    message.put(lightVessel, 5);
    message.putText(station.name, textLength);
    message.put(1, 1); // position better than 10 m
    putPlace(&message, station.motion.fix());
    message.put(0, 30); // dimensions
    message.put(gps, 4);
    message.put(utc.time().second(), 6);
    message.put(0, 1); // on position
    message.put(0, 8); // status
    message.put(0, 1); // RAIM not in use
    message.put(0, 1); // real, not virtual
    message.put(0, 1); // autonomous mode
    message.put(0, 1); // spare
    return message;
}

AisEncoder classBName(const OtherStation &station, const QDateTime & /*utc*/)
{
    AisEncoder message;
    putHead(&message, 24, station);
    message.put(0, 2); // part A
    message.putText(station.name, textLength);
    return message;
}

AisEncoder classBData(const OtherStation &station, const QDateTime & /*utc*/)
{
    constexpr int sailingBoat = 36;
    AisEncoder message;
    putHead(&message, 24, station);
    message.put(1, 2); // part B
    message.put(sailingBoat, 8);
    message.putText("SIM", 7); // the maker, three letters, and its numbers
    message.putText(station.callSign, callSignLength);
    message.put(4, 9); // metres from the antenna to the bow
    message.put(7, 9); // to the stern
    message.put(2, 6); // to port
    message.put(1, 6); // to starboard
    message.put(0, 6); // spare
    return message;
}

struct FixedStation
{
    OtherMessage message;
    int period;
    quint32 mmsi;
    const char *name;
    Fix fix;
    double knots;
};
const FixedStation fixedStations[] = {
    {OtherMessage::BaseStation, 10000, 2111901, "", {54.18, 7.89, 0}, 0},
    {OtherMessage::BaseStation, 10000, 2111902, "", {53.87, 8.71, 0}, 0},
    {OtherMessage::AidToNavigation, 180000, 992111901, "GB LIGHT VESSEL", {54.17, 7.46, 0}, 0},
    {OtherMessage::AidToNavigation, 180000, 992111902, "ELBE APPROACH", {54.0, 8.11, 0}, 0},
    {OtherMessage::SearchAircraft, 10000, 111211901, "", {54.4, 7.2, 75}, 95},
};

} // namespace

QVector<OtherStation> makeOtherStations(int boats, int stationCount, quint32 seed)
{
    constexpr quint32 firstBoat = 211990000;
    constexpr int positionPeriod = 30000;
    constexpr int dataPeriod = 360000;
    constexpr double boatKnots = 5.4;
    constexpr double boatTurn = 60;
    QVector<OtherStation> all;
    for (const FixedStation &fixed : fixedStations) {
        OtherStation station;
        station.message = fixed.message;
        station.period = fixed.period;
        station.mmsi = fixed.mmsi;
        station.name = fixed.name;
        station.motion = DeadReckoning(fixed.fix, fixed.knots, 0);
        station.station = int(all.size() % stationCount);
        all.append(station);
    }
    std::mt19937 random(seed);
    for (int i = 0; i < boats; ++i) {
        constexpr quint32 places = 1000;
        constexpr double degreesWide = 0.8;
        OtherStation boat;
        boat.mmsi = firstBoat + static_cast<quint32>(i);
        boat.name = "JOLLE " + QByteArray::number(i + 1);
        boat.callSign = "DA" + QByteArray::number(i + 1);
        Fix fix = fleetMiddle;
        fix.latitude += (static_cast<double>(random() % places) / places - 0.5) * degreesWide;
        fix.longitude += (static_cast<double>(random() % places) / places - 0.5) * degreesWide;
        fix.course = static_cast<double>(random() % 360);
        boat.motion = DeadReckoning(fix, boatKnots, boatTurn);
        boat.station = i % stationCount;
        for (const OtherMessage message :
             {OtherMessage::ClassBPosition, OtherMessage::ClassBName, OtherMessage::ClassBData}) {
            boat.message = message;
            boat.period = message == OtherMessage::ClassBPosition ? positionPeriod : dataPeriod;
            all.append(boat);
        }
    }
    return all;
}

AisEncoder messageOf(const OtherStation &station, const QDateTime &utc)
{
    using Build = AisEncoder (*)(const OtherStation &, const QDateTime &);
    // In the order of the enumeration.
    constexpr Build builders[] = {baseStation,     searchAircraft, classBPosition,
                                  aidToNavigation, classBName,     classBData};
    return builders[static_cast<size_t>(station.message)](station, utc);
}

} // namespace tk7sim
