#include "simulator/instruments/neighbours.h"

#include <cmath>

namespace tk7sim {

namespace {

constexpr double positionUnits = 600000.0; // 1/10000 of a minute of arc, a degree
constexpr double tenths = 10.0;
constexpr int fullCircle = 3600; // 1/10 degree
constexpr int gpsFix = 1;

} // namespace

const AisVessel &ownVessel()
{
    static const AisVessel vessel = {211890150,  9274290, "DFTR",   "TIDEWELL",
                                     "CUXHAVEN", 70,      ownCourse};
    return vessel;
}

const std::array<AisVessel, 8> &neighbours()
{
    static const std::array<AisVessel, 8> all = {{
        {211378120,
         9301407,
         "DGKL2",
         "NORDERNEY TRADER",
         "HAMBURG",
         70,
         {54.18, 7.55, 8.0, 14.2, 40}},
        {244660921, 9188233, "PHQR", "WADDENZEE", "ROTTERDAM", 80, {54.22, 7.30, 6.5, -11.5, 160}},
        {219018271, 9410765, "OWJT2", "SKAGEN STAR", "ESBJERG", 60, {54.30, 7.42, 10.0, 18.3, 250}},
        {257045680, 8714322, "LAFN7", "HAVBRIS", "BERGEN", 70, {54.10, 7.38, 3.5, -9.4, 20}},
        {211214670, 0, "DJWM", "SEEADLER", "HELGOLAND", 37, {54.19, 7.46, 1.2, 5.1, 310}},
        {232004931, 9550371, "MBQX5", "HUMBER DAWN", "IMMINGHAM", 79, {54.26, 7.20, 7.2, 13.0, 90}},
        {211523440, 0, "DKFE", "BUESUM 4", "FISHING GROUNDS", 30, {54.14, 7.52, 2.0, -3.2, 200}},
        {276813000, 9222351, "ESHK", "SAAREMAA", "TALLINN", 70, {54.33, 7.60, 9.0, 12.1, 350}},
    }};
    return all;
}

AisPositionReport positionReportOf(const AisVessel &vessel, double seconds, int utcSecond)
{
    const Fix fix = vessel.course.at(seconds);
    AisPositionReport report;
    report.mmsi = vessel.mmsi;
    report.rateOfTurn = 0;
    report.speed = static_cast<int>(std::lround(std::fabs(vessel.course.knots) * tenths));
    report.isAccurate = true;
    report.longitude = static_cast<qint32>(std::lround(fix.longitude * positionUnits));
    report.latitude = static_cast<qint32>(std::lround(fix.latitude * positionUnits));
    report.course = static_cast<int>(std::lround(fix.course * tenths)) % fullCircle;
    report.heading = static_cast<int>(fix.course);
    report.second = utcSecond;
    return report;
}

AisVoyageData voyageDataOf(const AisVessel &vessel)
{
    AisVoyageData data;
    data.mmsi = vessel.mmsi;
    data.imo = vessel.imo;
    data.callSign = vessel.callSign;
    data.name = vessel.name;
    data.shipType = vessel.shipType;
    data.toBow = 90;
    data.toStern = 30;
    data.toPort = 10;
    data.toStarboard = 9;
    data.fixType = gpsFix;
    data.draught = 62;
    data.destination = vessel.destination;
    return data;
}

} // namespace tk7sim
