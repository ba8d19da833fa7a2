#include "simulator/instruments/ship.h"

#include <cmath>

namespace tk7sim {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double fullCircle = 360.0;
constexpr double quarter = 90.0;
constexpr double minutesPerDegree = 60.0; // and nautical miles a degree of latitude
constexpr double secondsPerHour = 3600.0;
constexpr double secondsPerMinute = 60.0;

double radians(double degrees)
{
    return degrees * pi / (fullCircle / 2);
}

// A value that swings around a middle.
struct Swing
{
    double middle;
    double width;
    double period; // seconds

    double at(double seconds) const { return middle + width * std::sin(2 * pi * seconds / period); }
    double slopeAt(double seconds) const
    {
        return width * 2 * pi / period * std::cos(2 * pi * seconds / period);
    }
};

constexpr Swing speedSwing = {12.4, 0.3, 97};
constexpr Swing yaw = {0, 1.6, 41};
constexpr Swing depthSwing = {32.5, 6.2, 180};
constexpr Swing waterSwing = {11.8, 0.3, 900};
constexpr Swing airSwing = {14.1, 0.8, 1200};
constexpr Swing pressureSwing = {1.0132, 0.0009, 3600};
constexpr Swing gusts = {14.0, 3.0, 23};
constexpr double windDirection = 240.0; // true, where it comes from

} // namespace

const CircularCourse ownCourse = {54.2, 7.4, 5.0, 12.4, 300.0};

double normalized(double degrees)
{
    const double rest = std::fmod(degrees, fullCircle);
    return rest < 0 ? rest + fullCircle : rest;
}

double CircularCourse::turnRate() const
{
    return knots / secondsPerHour / radius * (fullCircle / 2) / pi;
}

Fix CircularCourse::at(double seconds) const
{
    const double bearing = startBearing + turnRate() * seconds;
    const double north = radius * std::cos(radians(bearing)) / minutesPerDegree;
    const double east = radius * std::sin(radians(bearing)) / minutesPerDegree;
    return {latitude + north, longitude + east / std::cos(radians(latitude)),
            normalized(bearing + (knots < 0 ? -quarter : quarter))};
}

ShipState shipAt(double seconds)
{
    ShipState state{};
    state.fix = ownCourse.at(seconds);
    state.speed = speedSwing.at(seconds);
    state.heading = normalized(state.fix.course + yaw.at(seconds));
    state.magneticHeading = normalized(state.heading - magneticVariation);
    state.rateOfTurn = (ownCourse.turnRate() + yaw.slopeAt(seconds)) * secondsPerMinute;
    state.depth = depthSwing.at(seconds);
    state.waterTemperature = waterSwing.at(seconds);
    state.airTemperature = airSwing.at(seconds);
    state.pressure = pressureSwing.at(seconds);

    // The wind over the ground and the wind of the ship's own way, seen from the bow.
    const double relative = radians(windDirection - state.heading);
    const double ahead = gusts.at(seconds) * std::cos(relative) + state.speed;
    const double abeam = gusts.at(seconds) * std::sin(relative);
    state.windAngle = normalized(std::atan2(abeam, ahead) * (fullCircle / 2) / pi);
    state.windSpeed = std::hypot(ahead, abeam);
    return state;
}

} // namespace tk7sim
