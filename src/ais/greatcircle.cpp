#include "ais/greatcircle.h"

#include "ais/qgpskrd.h"

#include <cmath>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double minutesPerDegree = 60.0;

double toRadians(double minutes)
{
    return minutes / minutesPerDegree * pi / 180.0;
}

} // namespace

GreatCircle::GreatCircle(const QGpsKrd &from)
    : m_lon(from.m_lon), m_sinLat(std::sin(toRadians(from.m_lat))),
      m_cosLat(std::cos(toRadians(from.m_lat)))
{
}

double GreatCircle::distanceTo(const QGpsKrd &to) const
{
    const double latitude = toRadians(to.m_lat);
    // Not folded: the cosine is the same on both ways round.
    const double longitudes = toRadians(to.m_lon - m_lon);
    const double cosine =
        m_sinLat * std::sin(latitude) + m_cosLat * std::cos(latitude) * std::cos(longitudes);
    // Deliberate: the cosine is not limited to 1.0; where rounding takes it, there is no number.
    return std::acos(cosine) * 180.0 / pi * minutesPerDegree;
}
