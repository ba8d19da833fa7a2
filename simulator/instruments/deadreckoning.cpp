#include "simulator/instruments/deadreckoning.h"

#include <algorithm>
#include <cmath>

namespace tk7sim {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double halfCircle = 180.0;
constexpr double minutesPerDegree = 60.0; // and nautical miles a degree of latitude
constexpr double secondsPerHour = 3600.0;
constexpr double secondsPerMinute = 60.0;

double radians(double degrees)
{
    return degrees * pi / halfCircle;
}

double eastward(const Fix &a, const Fix &b)
{
    return (b.longitude - a.longitude) * std::cos(radians((a.latitude + b.latitude) / 2));
}

} // namespace

DeadReckoning::DeadReckoning(const Fix &fix, double knots, double turnRate)
    : m_fix(fix), m_knots(knots), m_turnRate(turnRate), m_goal(fix.course)
{
}

void DeadReckoning::steer(double course)
{
    m_goal = normalized(course);
}

double DeadReckoning::toTurn() const
{
    return normalized(m_goal - m_fix.course + halfCircle) - halfCircle;
}

double DeadReckoning::rateOfTurn() const
{
    const double rest = toTurn();
    return rest == 0 ? 0 : std::copysign(m_turnRate, rest);
}

void DeadReckoning::advance(double seconds)
{
    const double rest = toTurn();
    if (rest != 0 && m_turnRate > 0) {
        const double turning = std::min(seconds, std::fabs(rest) / m_turnRate * secondsPerMinute);
        const double turned = std::copysign(m_turnRate * turning / secondsPerMinute, rest);
        const bool isDone = turning < seconds;
        sail(turning, m_fix.course + turned / 2);
        m_fix.course = isDone ? m_goal : normalized(m_fix.course + turned);
        seconds -= turning;
    }
    sail(seconds, m_fix.course);
}

// By mid-latitude, which is exact enough for the minutes between two reports.
void DeadReckoning::sail(double seconds, double course)
{
    const double miles = m_knots * seconds / secondsPerHour;
    const double north = miles * std::cos(radians(course)) / minutesPerDegree;
    const double east = miles * std::sin(radians(course)) / minutesPerDegree;
    m_fix.longitude += east / std::cos(radians(m_fix.latitude + north / 2));
    m_fix.latitude += north;
}

double milesBetween(const Fix &a, const Fix &b)
{
    return std::hypot(b.latitude - a.latitude, eastward(a, b)) * minutesPerDegree;
}

double courseTo(const Fix &a, const Fix &b)
{
    return normalized(std::atan2(eastward(a, b), b.latitude - a.latitude) * halfCircle / pi);
}

} // namespace tk7sim
