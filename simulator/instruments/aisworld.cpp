#include "simulator/instruments/aisworld.h"

#include "simulator/instruments/aisencoder.h"
#include "simulator/instruments/neighbours.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace tk7sim {

namespace {

constexpr double positionUnits = 600000.0; // 1/10000 of a minute of arc, a degree
constexpr qint32 unitsPerMinute = 10000;
constexpr qint32 minutesPerDegree = 60;
constexpr double tenths = 10.0;
constexpr double millisecondsPerSecond = 1000.0;
constexpr int fullCircle = 3600; // 1/10 degree
constexpr qint64 second = 1000;  // milliseconds

constexpr int atAnchor = 1;
constexpr int moored = 5;

// What a class A station keeps to.
constexpr qint64 atRestInterval = 180 * second;
constexpr qint64 voyageInterval = 360 * second;
struct SpeedInterval
{
    double above; // knots
    qint64 interval;
};
constexpr SpeedInterval speedIntervals[] = {{23, 2 * second}, {14, 6 * second}, {0, 10 * second}};

// Nobody shall wait six minutes for the names.
constexpr int firstPositionWithin = 10000; // milliseconds
constexpr int firstVoyageWithin = 40000;

constexpr qint64 ownInterval = 2 * second;
constexpr qint64 secondOwnInterval = 10 * second; // of the second transponder
constexpr qint64 ownVoyageInterval = 60 * second;
constexpr qint64 routerInterval = second;
constexpr qint64 alarmInterval = second; // of a look, not of a sentence
constexpr qint64 alarmRepeat = 30 * second;
constexpr int transponders = 2;

// The satellites are out of reach for all receivers of the own ship.
constexpr SilencePattern outage = {1200 * second, 420 * second, 3600 * second};
// The router's receiver loses them alone.
constexpr SilencePattern routerPause = {100 * second, 15 * second, 240 * second};
// The first transponder starts anew.
constexpr SilencePattern transponderPause = {610 * second, 30 * second, 900 * second};

constexpr AlarmCycle alarmCycles[] = {
    {0, 2, "AIS: Antenna VSWR exceeds limit", 20 * second, 120 * second, 900 * second, 45 * second},
    {1, 32, "AIS: Heading lost/invalid", 35 * second, 60 * second, 420 * second, 90 * second},
    {1, 8, "AIS: MKD connection lost", 60 * second, 200 * second, 1500 * second, 30 * second},
    {0, 26, "AIS: no sensor position in use", outage.first, outage.length, outage.period,
     60 * second},
    {1, 26, "AIS: no sensor position in use", outage.first + 5 * second, outage.length,
     outage.period, 25 * second},
};

constexpr int boatsPerVessels = 5; // so many vessels for a boat of class B
constexpr int sequenceCount = 10;

qint32 units(double degrees)
{
    return static_cast<qint32>(std::lround(degrees * positionUnits));
}

// Degrees and minutes as one number, with the letter of the hemisphere.
QByteArray arc(qint32 value, int degreeDigits, char positive, char negative)
{
    constexpr int minuteDigits = 2;
    constexpr int decimals = 4;
    const qint32 magnitude = std::abs(value);
    const auto padded = [](qint32 number, int width) {
        return QByteArray::number(number).rightJustified(width, '0');
    };
    return padded(magnitude / unitsPerMinute / minutesPerDegree, degreeDigits)
        + padded(magnitude / unitsPerMinute % minutesPerDegree, minuteDigits) + '.'
        + padded(magnitude % unitsPerMinute, decimals) + ',' + (value < 0 ? negative : positive);
}

int rawTurn(double degreesAMinute)
{
    constexpr double scale = 4.733;
    constexpr long most = 126;
    const long magnitude =
        std::min(std::lround(scale * std::sqrt(std::fabs(degreesAMinute))), most);
    return static_cast<int>(degreesAMinute < 0 ? -magnitude : magnitude);
}

bool isAtRest(const FleetVessel &vessel)
{
    return vessel.navStatus == atAnchor || vessel.navStatus == moored;
}

double knotsOf(const FleetVessel &vessel)
{
    return vessel.circle ? std::fabs(vessel.circle->knots) : vessel.motion.knots();
}

AisWorldSettings completed(AisWorldSettings settings)
{
    settings.vessels = qBound(0, settings.vessels, AisWorldSettings::maxVessels);
    settings.rate = std::max(settings.rate, 0.0);
    settings.start = settings.start.toUTC();
    return settings;
}

// Each once, and no port that the router hasn't got.
QVector<int> portsOf(const QVector<int> &asked)
{
    QVector<int> ports;
    for (const int port : asked) {
        if (port >= 0 && port < portCount && !ports.contains(port)) {
            ports.append(port);
        }
    }
    return ports;
}

} // namespace

QVector<int> AisWorldSettings::usualPorts(int vessels)
{
    if (vessels < manyVessels) {
        return {3, 8, 11};
    }
    QVector<int> all(AisWorld::portCount);
    std::iota(all.begin(), all.end(), 0);
    return all;
}

AisWorld::AisWorld(const AisWorldSettings &settings)
    : m_settings(completed(settings)),
      m_ports(portsOf(settings.ports.value_or(AisWorldSettings::usualPorts(m_settings.vessels)))),
      m_random(m_settings.seed)
{
    const int stations = int(m_ports.size());
    if (stations > 0) {
        m_vessels =
            makeFleet(m_settings.vessels, stations, m_settings.seed, m_settings.start.date());
        m_others =
            makeOtherStations(m_settings.vessels / boatsPerVessels, stations, m_settings.seed);
    }
    std::copy_if(std::begin(alarmCycles), std::end(alarmCycles), std::back_inserter(m_alarms),
                 [stations](const AlarmCycle &cycle) { return cycle.station < stations; });
    scheduleVessels();
    scheduleOwnShip();
}

void AisWorld::scheduleVessels()
{
    for (int i = 0; i < m_vessels.size(); ++i) {
        schedule(Activity::VesselPosition, i, random(firstPositionWithin));
        if (m_vessels.at(i).flaw != TransponderFlaw::NoVoyageData) {
            schedule(Activity::VesselVoyage, i, random(firstVoyageWithin));
        }
    }
    for (int i = 0; i < m_others.size(); ++i) {
        schedule(Activity::OtherStation, i, random(m_others.at(i).period));
    }
}

void AisWorld::scheduleOwnShip()
{
    const int stations = std::min<int>(transponders, int(m_ports.size()));
    for (int station = 0; station < stations; ++station) {
        schedule(Activity::OwnPosition, station, (station + 1) * second / 2);
        schedule(Activity::OwnVoyage, station, (station + 4) * second);
    }
    schedule(Activity::RouterPosition, 0, second);
    for (int i = 0; i < m_alarms.size(); ++i) {
        schedule(Activity::Alarm, i, second);
    }
}

AisWorld::Schedule &AisWorld::scheduleOf(Activity activity)
{
    return activity < Activity::OwnPosition ? m_schedule : m_ownSchedule;
}

void AisWorld::schedule(Activity activity, int index, qint64 due)
{
    scheduleOf(activity).push({due, m_scheduled++, activity, index});
}

std::optional<AisReport> AisWorld::take(qint64 now)
{
    const auto passed = qBound<qint64>(0, now - m_now, longestGap);
    m_ownDueUpTo += passed;
    m_dueUpTo += static_cast<double>(passed) * m_settings.rate;
    m_now = std::max(m_now, now);
    while (m_waiting.isEmpty()) {
        const auto event = nextEvent();
        if (!event) {
            return std::nullopt;
        }
        perform(*event, m_now);
        // From when it was due and not from now: so each keeps its share of a slow line.
        schedule(event->activity, event->index, event->due + intervalOf(*event));
    }
    AisReport report = m_waiting.dequeue();
    report.time = m_now;
    m_truth.record(report);
    return report;
}

std::optional<AisWorld::Event> AisWorld::nextEvent()
{
    const auto takeFrom = [](Schedule *schedule, double dueUpTo) -> std::optional<Event> {
        if (schedule->empty() || static_cast<double>(schedule->top().due) > dueUpTo) {
            return std::nullopt;
        }
        const Event event = schedule->top();
        schedule->pop();
        return event;
    };
    if (const auto own = takeFrom(&m_ownSchedule, static_cast<double>(m_ownDueUpTo))) {
        return own;
    }
    return m_settings.rate > 0 ? takeFrom(&m_schedule, m_dueUpTo) : std::nullopt;
}

// What a line that was too full has held up is forgotten: it belongs to the old rate.
void AisWorld::setRate(double rate)
{
    m_settings.rate = std::max(rate, 0.0);
    if (!m_schedule.empty()) {
        m_dueUpTo = std::min(m_dueUpTo, static_cast<double>(m_schedule.top().due));
    }
}

// Not quite steady, as stations choose their slots.
qint64 AisWorld::intervalOf(const Event &event)
{
    constexpr int spread = 20; // per cent, half of it to each side
    constexpr double least = 90;
    constexpr double all = 100;
    const auto scaled = [this](qint64 usual) {
        return std::llround(static_cast<double>(usual) * (least + random(spread)) / all);
    };
    switch (event.activity) {
    case Activity::VesselPosition: {
        const FleetVessel &vessel = m_vessels.at(event.index);
        if (isAtRest(vessel)) {
            return scaled(atRestInterval);
        }
        const auto *row =
            std::find_if(std::begin(speedIntervals), std::end(speedIntervals) - 1,
                         [&](const SpeedInterval &speed) { return knotsOf(vessel) > speed.above; });
        return scaled(row->interval);
    }
    case Activity::VesselVoyage:
        return scaled(voyageInterval);
    case Activity::OtherStation:
        return scaled(m_others.at(event.index).period);
    case Activity::OwnPosition:
        return event.index == 0 ? ownInterval : secondOwnInterval;
    case Activity::OwnVoyage:
        return ownVoyageInterval;
    case Activity::RouterPosition:
        return routerInterval;
    case Activity::Alarm:
        return alarmInterval;
    }
    return second;
}

void AisWorld::perform(const Event &event, qint64 now)
{
    switch (event.activity) {
    case Activity::VesselPosition:
        return reportVessel(m_vessels[event.index], now);
    case Activity::VesselVoyage:
        return reportVoyage(m_vessels[event.index], now);
    case Activity::OtherStation:
        return reportOther(event.index, now);
    case Activity::OwnPosition:
        return reportOwnPosition(event.index, now);
    case Activity::OwnVoyage:
        return reportOwnVoyage(event.index, now);
    case Activity::RouterPosition:
        return reportRouterPosition(now);
    case Activity::Alarm:
        return reportAlarm(event.index, now);
    }
}

void AisWorld::reportVessel(FleetVessel &vessel, qint64 now)
{
    if (vessel.silence.covers(now)) {
        return;
    }
    AisReport report;
    report.kind = AisReportKind::Position;
    report.position = positionOf(vessel, now);
    for (const int station : qAsConst(vessel.stations)) {
        report.port = m_ports.at(station);
        enqueue(report, "!AIVDM", encoded(report.position));
    }
}

AisPositionReport AisWorld::positionOf(FleetVessel &vessel, qint64 now)
{
    constexpr int types[] = {1, 1, 1, 1, 1, 1, 1, 2, 3, 3};
    const int utcSecond = timeAt(now).time().second();
    AisPositionReport report;
    if (vessel.circle) {
        const AisVessel model{vessel.voyage.mmsi, 0, "", "", "", 0, *vessel.circle};
        const double passed = static_cast<double>(now) / millisecondsPerSecond;
        report = positionReportOf(model, m_settings.shipSeconds + passed, utcSecond);
    } else {
        move(vessel, now);
        report = sailedReport(vessel, utcSecond);
    }
    report.type = types[random(std::size(types))];
    report.navStatus = vessel.navStatus;
    report.isAccurate = vessel.isAccurate;
    if (vessel.flaw == TransponderFlaw::WrongHemisphere) {
        report.longitude = -report.longitude;
    }
    return report;
}

// Back to the middle where the area ends, and another course now and then.
void AisWorld::move(FleetVessel &vessel, qint64 now)
{
    constexpr int newCourseEvery = 60;  // reports
    constexpr int newCourseWithin = 70; // degrees to each side
    constexpr int backWithin = 40;
    const auto off = [this](int degrees) { return random(2 * degrees + 1) - degrees; };

    vessel.motion.advance(static_cast<double>(now - vessel.movedTo) / millisecondsPerSecond);
    vessel.movedTo = now;
    if (isAtRest(vessel) || vessel.motion.rateOfTurn() != 0) {
        return;
    }
    const Fix &fix = vessel.motion.fix();
    const double distance = milesBetween(fix, fleetMiddle);
    const double inward = courseTo(fix, fleetMiddle);
    const bool isLeaving = std::fabs(normalized(fix.course - inward + 180) - 180) > 90;
    // Who is far away stays there.
    if (distance > fleetRadius && distance < 2 * fleetRadius && isLeaving) {
        vessel.motion.steer(inward + off(backWithin));
    } else if (distance < fleetRadius && random(newCourseEvery) == 0) {
        vessel.motion.steer(fix.course + off(newCourseWithin));
    }
}

AisPositionReport AisWorld::sailedReport(const FleetVessel &vessel, int utcSecond)
{
    constexpr int turningFast = 127; // more than 10 degrees a minute, no sensor
    constexpr int swing = 3;         // 1/10 knot, and degrees between course and heading
    const Fix &fix = vessel.motion.fix();
    const double turn = vessel.motion.rateOfTurn();

    AisPositionReport report;
    report.mmsi = vessel.voyage.mmsi;
    if (vessel.flaw == TransponderFlaw::NoPosition) {
        return report;
    }
    if (vessel.hasTurnSensor) {
        report.rateOfTurn = rawTurn(turn);
    } else if (turn != 0) {
        report.rateOfTurn = turn > 0 ? turningFast : -turningFast;
    }
    report.speed = std::max(
        static_cast<int>(std::lround(vessel.motion.knots() * tenths)) + random(swing) - 1, 0);
    report.longitude = units(fix.longitude);
    report.latitude = units(fix.latitude);
    report.course = isAtRest(vessel)
        ? random(fullCircle)
        : static_cast<int>(std::lround(fix.course * tenths)) % fullCircle;
    if (vessel.hasGyro) {
        report.heading =
            static_cast<int>(normalized(std::floor(fix.course) + random(2 * swing + 1) - swing));
    }
    report.second = utcSecond;
    return report;
}

void AisWorld::reportVoyage(FleetVessel &vessel, qint64 now)
{
    constexpr int newVoyageEvery = 6; // reports
    if (vessel.silence.covers(now)) {
        return;
    }
    if (!vessel.circle && random(newVoyageEvery) == 0) {
        changeVoyage(&vessel, static_cast<quint32>(m_random()), timeAt(now).date());
    }
    AisReport report;
    report.kind = AisReportKind::Voyage;
    report.voyage = vessel.voyage;
    for (const int station : qAsConst(vessel.stations)) {
        report.port = m_ports.at(station);
        enqueue(report, "!AIVDM", encoded(report.voyage));
    }
}

void AisWorld::reportOther(int index, qint64 now)
{
    OtherStation &station = m_others[index];
    station.motion.advance(static_cast<double>(now - station.movedTo) / millisecondsPerSecond);
    station.movedTo = now;
    if (station.motion.knots() > 0
        && milesBetween(station.motion.fix(), fleetMiddle) > fleetRadius) {
        station.motion.steer(courseTo(station.motion.fix(), fleetMiddle));
    }
    AisReport report;
    report.kind = AisReportKind::Other;
    report.port = m_ports.at(station.station);
    enqueue(report, "!AIVDM", messageOf(station, timeAt(now)));
}

void AisWorld::reportOwnPosition(int station, qint64 now)
{
    if (station == 0 && transponderPause.covers(now)) {
        return;
    }
    const double shipTime =
        m_settings.shipSeconds + static_cast<double>(now) / millisecondsPerSecond;
    const int utcSecond = timeAt(now).time().second();
    AisReport report;
    report.kind = AisReportKind::OwnPosition;
    report.port = m_ports.at(station);
    report.position.mmsi = ownVessel().mmsi;
    const ShipState ship = shipAt(shipTime);
    if (!outage.covers(now)) {
        report.position = positionReportOf(ownVessel(), shipTime, utcSecond);
        report.position.speed = static_cast<int>(std::lround(ship.speed * tenths));
    }
    report.position.rateOfTurn = rawTurn(ship.rateOfTurn);
    report.position.heading = static_cast<int>(ship.heading);
    enqueue(report, "!AIVDO", encoded(report.position));
}

void AisWorld::reportOwnVoyage(int station, qint64 now)
{
    if (station == 0 && transponderPause.covers(now)) {
        return;
    }
    AisReport report;
    report.kind = AisReportKind::OwnVoyage;
    report.port = m_ports.at(station);
    report.voyage = voyageDataOf(ownVessel());
    enqueue(report, "!AIVDO", encoded(report.voyage));
}

void AisWorld::reportRouterPosition(qint64 now)
{
    constexpr int latitudeDigits = 2;
    constexpr int longitudeDigits = 3;
    if (outage.covers(now) || routerPause.covers(now)) {
        return;
    }
    const double passed = static_cast<double>(now) / millisecondsPerSecond;
    const Fix fix = shipAt(m_settings.shipSeconds + passed).fix;
    AisReport report;
    report.kind = AisReportKind::RouterPosition;
    report.router = {units(fix.latitude), units(fix.longitude)};
    report.bodies = {arc(report.router.latitude, latitudeDigits, 'N', 'S') + ','
                     + arc(report.router.longitude, longitudeDigits, 'E', 'W')};
    m_waiting.enqueue(report);
}

// On every change, and again in between.
void AisWorld::reportAlarm(int index, qint64 now)
{
    const AlarmCycle &cycle = m_alarms.at(index);
    const auto state = cycle.at(now, m_settings.start);
    if (!state) {
        return;
    }
    const int port = m_ports.at(cycle.station);
    const auto &known = m_truth.port(port).alarms;
    if (known.contains(state->id) && known.value(state->id) == *state
        && now % alarmRepeat >= alarmInterval) {
        return;
    }
    constexpr int idDigits = 3;
    const auto padded = [](int number, int width) {
        return QByteArray::number(number).rightJustified(width, '0');
    };
    const auto letter = [](bool on) { return on ? 'A' : 'V'; };
    AisReport report;
    report.kind = AisReportKind::Alarm;
    report.port = port;
    report.alarm = *state;
    report.bodies = {"$AIALR," + padded(state->hour, 2) + padded(state->minute, 2)
                     + padded(state->second, 2) + ".00," + padded(state->id, idDigits) + ','
                     + letter(state->isActive) + ',' + letter(state->isAcknowledged) + ','
                     + state->text};
    m_waiting.enqueue(report);
}

// The two radio channels in turns.
void AisWorld::enqueue(AisReport report, const QByteArray &head, const AisEncoder &message)
{
    Receiver &receiver = m_receivers[static_cast<size_t>(report.port)];
    report.bodies = aisBodies(head, receiver.sequence, receiver.isOnChannelB ? "B" : "A", message);
    receiver.isOnChannelB = !receiver.isOnChannelB;
    if (report.bodies.size() > 1) {
        receiver.sequence = (receiver.sequence + 1) % sequenceCount;
    }
    m_waiting.enqueue(report);
}

} // namespace tk7sim
