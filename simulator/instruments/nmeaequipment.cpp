#include "simulator/instruments/nmeaequipment.h"

#include "simulator/instruments/neighbours.h"
#include "simulator/instruments/ship.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tk7sim {

namespace {

using Bodies = QList<QByteArray>;

constexpr double minutesPerDegree = 60.0;
constexpr double metresPerMile = 1852.0;
constexpr double feetPerMetre = 3.28084;
constexpr double fathomsPerMetre = 0.546807;
constexpr double kilometresPerMile = 1.852;
constexpr double secondGpsOffset = 0.00002; // degrees between the two antennas

QByteArray number(double value, int decimals)
{
    return QByteArray::number(value, 'f', decimals);
}

QByteArray angle(double degrees)
{
    constexpr int width = 5;
    return number(degrees, 1).rightJustified(width, '0');
}

QByteArray time(const Moment &m)
{
    return m.utc.toString(QStringLiteral("hhmmss.zzz")).left(9).toLatin1();
}

// Degrees and minutes as one number, with the letter of the hemisphere.
QByteArray arc(double degrees, int degreeDigits, char positive, char negative)
{
    constexpr int minuteDecimals = 4;
    constexpr int minuteWidth = 7;
    const double magnitude = std::fabs(degrees);
    const double whole = std::floor(magnitude);
    return QByteArray::number(static_cast<int>(whole)).rightJustified(degreeDigits, '0')
        + number((magnitude - whole) * minutesPerDegree, minuteDecimals)
              .rightJustified(minuteWidth, '0')
        + ',' + (degrees < 0 ? negative : positive);
}

QByteArray position(const Fix &fix)
{
    constexpr int latitudeDigits = 2;
    constexpr int longitudeDigits = 3;
    return arc(fix.latitude, latitudeDigits, 'N', 'S') + ','
        + arc(fix.longitude, longitudeDigits, 'E', 'W');
}

enum Antenna { First, Second };

template <Antenna A> QByteArray gpsHead()
{
    return A == First ? "$GP" : "$GN";
}

template <Antenna A> QByteArray gpsPosition(const Moment &m)
{
    Fix fix = shipAt(m.seconds).fix;
    fix.latitude += A == First ? 0 : secondGpsOffset;
    return position(fix);
}

template <Antenna A> Bodies rmc(const Moment &m)
{
    const ShipState ship = shipAt(m.seconds);
    return {gpsHead<A>() + "RMC," + time(m) + ",A," + gpsPosition<A>(m) + ','
            + number(ship.speed, 1) + ',' + angle(ship.fix.course) + ','
            + m.utc.toString(QStringLiteral("ddMMyy")).toLatin1() + ','
            + number(magneticVariation, 1) + ",E,A"};
}

template <Antenna A> Bodies gga(const Moment &m)
{
    return {gpsHead<A>() + "GGA," + time(m) + ',' + gpsPosition<A>(m)
            + ",1,09,0.9,18.2,M,41.5,M,,"};
}

template <Antenna A> Bodies gll(const Moment &m)
{
    return {gpsHead<A>() + "GLL," + gpsPosition<A>(m) + ',' + time(m) + ",A,A"};
}

template <Antenna A> Bodies vtg(const Moment &m)
{
    const ShipState ship = shipAt(m.seconds);
    return {gpsHead<A>() + "VTG," + angle(ship.fix.course) + ",T,"
            + angle(normalized(ship.fix.course - magneticVariation)) + ",M," + number(ship.speed, 1)
            + ",N," + number(ship.speed * kilometresPerMile, 1) + ",K,A"};
}

template <Antenna A> Bodies zda(const Moment &m)
{
    return {gpsHead<A>() + "ZDA," + time(m) + ','
            + m.utc.toString(QStringLiteral("dd,MM,yyyy")).toLatin1() + ",00,00"};
}

Bodies hdt(const Moment &m)
{
    return {"$HEHDT," + angle(shipAt(m.seconds).heading) + ",T"};
}

Bodies rot(const Moment &m)
{
    return {"$HEROT," + number(shipAt(m.seconds).rateOfTurn, 1) + ",A"};
}

Bodies hdg(const Moment &m)
{
    return {"$HCHDG," + angle(shipAt(m.seconds).magneticHeading) + ",,,"
            + number(magneticVariation, 1) + ",E"};
}

Bodies hdm(const Moment &m)
{
    return {"$HCHDM," + angle(shipAt(m.seconds).magneticHeading) + ",M"};
}

Bodies dbt(const Moment &m)
{
    const double depth = shipAt(m.seconds).depth;
    return {"$SDDBT," + number(depth * feetPerMetre, 1) + ",f," + number(depth, 1) + ",M,"
            + number(depth * fathomsPerMetre, 1) + ",F"};
}

Bodies dpt(const Moment &m)
{
    return {"$SDDPT," + number(shipAt(m.seconds).depth, 1) + ",4.5,100.0"};
}

Bodies vbw(const Moment &m)
{
    const ShipState ship = shipAt(m.seconds);
    return {"$VDVBW," + number(ship.speed - 0.3, 1) + ",0.1,A," + number(ship.speed, 1)
            + ",0.2,A,,V,,V"};
}

Bodies vhw(const Moment &m)
{
    const ShipState ship = shipAt(m.seconds);
    return {"$VDVHW," + angle(ship.heading) + ",T," + angle(ship.magneticHeading) + ",M,"
            + number(ship.speed, 1) + ",N," + number(ship.speed * kilometresPerMile, 1) + ",K"};
}

Bodies mwv(const Moment &m)
{
    const ShipState ship = shipAt(m.seconds);
    return {"$WIMWV," + angle(ship.windAngle) + ",R," + number(ship.windSpeed, 1) + ",N,A"};
}

Bodies mtw(const Moment &m)
{
    return {"$WIMTW," + number(shipAt(m.seconds).waterTemperature, 1) + ",C"};
}

Bodies xdr(const Moment &m)
{
    constexpr int pressureDecimals = 4;
    const ShipState ship = shipAt(m.seconds);
    return {"$WIXDR,C," + number(ship.airTemperature, 1) + ",C,AIR,P,"
            + number(ship.pressure, pressureDecimals) + ",B,BARO"};
}

// The radar plots the nearest of the ships that the AIS reports.
Bodies ttm(const Moment &m)
{
    constexpr int plotted = 5;
    constexpr double quarter = 90.0;
    constexpr double pi = 3.14159265358979323846;
    const auto index = static_cast<size_t>(m.count % plotted);
    const CircularCourse &course = neighbours()[index].course;
    const ShipState own = shipAt(m.seconds);
    const Fix target = course.at(m.seconds);
    const double north = (target.latitude - own.fix.latitude) * minutesPerDegree;
    const double east = (target.longitude - own.fix.longitude) * minutesPerDegree
        * std::cos(own.fix.latitude * pi / (2 * quarter));
    const double range = std::hypot(north, east);
    return {"$RATTM," + number(static_cast<double>(index) + 1, 0).rightJustified(2, '0') + ','
            + number(range, 2) + ',' + angle(normalized(std::atan2(east, north) * 2 * quarter / pi))
            + ",T," + number(std::fabs(course.knots), 1) + ',' + angle(target.course) + ",T,"
            + number(range / 2, 2) + ",12.5,N,,T,," + time(m) + ",A"};
}

Bodies rsd(const Moment & /*m*/)
{
    return {"$RARSD,,,,,,,,,2.35,118.0,6.0,N,H"};
}

Bodies apb(const Moment &m)
{
    const QByteArray course = angle(shipAt(m.seconds).fix.course);
    return {"$EIAPB,A,A,0.02,R,N,V,V," + course + ",T,WP07," + course + ",T," + course + ",T"};
}

Bodies xte(const Moment &m)
{
    constexpr double wave = 19.0;
    const double offTrack = std::sin(m.seconds / wave) * 50 / metresPerMile;
    return {QByteArray("$EIXTE,A,A,") + number(std::fabs(offTrack), 3) + ','
            + (offTrack < 0 ? 'L' : 'R') + ",N,A"};
}

using Equipment = QVector<ScheduledSentence>;

template <Antenna A> Equipment gps()
{
    return {{1000, 0, rmc<A>},
            {1000, 150, gga<A>},
            {1000, 300, vtg<A>},
            {1000, 450, gll<A>},
            {1000, 600, zda<A>}};
}

} // namespace

const QVector<ScheduledSentence> &equipmentAt(int port)
{
    // In the order of the input ports; behind the last nothing is wired.
    static const std::array<Equipment, 11> wired = {
        gps<First>(),
        gps<Second>(),
        Equipment{{200, 0, hdt}, {400, 100, rot}},                     // gyro
        Equipment{},                                                   // AIS: see AisStations
        Equipment{{1000, 0, dbt}, {1000, 500, dpt}},                   // echo sounder
        Equipment{{1000, 0, vbw}, {1000, 500, vhw}},                   // speed log
        Equipment{{500, 0, mwv}},                                      // wind sensor
        Equipment{{400, 0, ttm}, {2000, 200, rsd}},                    // radar
        Equipment{{1000, 0, apb}, {1000, 500, xte}},                   // ECDIS
        Equipment{{500, 0, hdg}, {1000, 250, hdm}},                    // fluxgate compass
        Equipment{{2000, 0, mtw}, {2000, 700, xdr}, {1000, 300, mwv}}, // weather station
    };
    static const Equipment nothing;
    const auto index = static_cast<size_t>(port);
    return port >= 0 && index < wired.size() ? wired[index] : nothing;
}

} // namespace tk7sim
