#include "ais/qgpskrd.h"

#include "ais/greatcircle.h"
#include "platform/qtversion.h"

#include <cmath>
#include <limits>

namespace {

constexpr double pi = 3.141592653589793;
constexpr double radiansPerDegree = 0.017453292519943295;
constexpr double minutesPerDegree = 60.0;
constexpr double fullCircle = 21600.0; // minutes of arc
constexpr double halfCircle = 10800.0;

constexpr double invalidLatitude = 5400.01;
constexpr quint8 packedNegative = 0x80;

// What a coordinate looks like in a sentence, and how far its parts may go.
struct CoordinateRules
{
    int degreeDigits;
    int maxDegrees;
    char positive;
    char negative;
};

constexpr CoordinateRules latitudeRules{2, 90, 'N', 'S'};
constexpr CoordinateRules longitudeRules{3, 180, 'E', 'W'};
constexpr int minuteDigits = 2;
constexpr int maxMinutes = 59;
constexpr int maxThousandths = 999;

// Cuts towards zero; a number that no int holds becomes the nearest that one does.
qint32 cut(double value)
{
    using Limits = std::numeric_limits<qint32>;
    if (std::isnan(value))
        return 0;
    return qint32(qBound(double(Limits::min()), value, double(Limits::max())));
}

QGpsKrd::Coordinate partsOf(double minutes, const CoordinateRules &rules)
{
    constexpr double thousand = 1000.0;
    // Lets 0.123 of a minute, which is a little less in binary, read as 123.
    constexpr double nudge = 0.0001;
    const double magnitude = std::fabs(minutes);
    const qint32 whole = cut(magnitude);
    QGpsKrd::Coordinate parts;
    parts.degrees = whole / 60;
    parts.minutes = whole % 60;
    parts.thousandths = cut((magnitude - std::floor(magnitude)) * thousand + nudge);
    parts.hemisphere = minutes < 0 ? rules.negative : rules.positive;
    return parts;
}

bool fits(const QGpsKrd::Coordinate &parts, const CoordinateRules &rules)
{
    return parts.degrees <= rules.maxDegrees && parts.minutes <= maxMinutes
        && parts.thousandths >= 0 && parts.thousandths <= maxThousandths
        && (parts.hemisphere == rules.positive || parts.hemisphere == rules.negative);
}

double minutesOf(const QGpsKrd::Coordinate &parts, const CoordinateRules &rules)
{
    const double minutes =
        parts.degrees * minutesPerDegree + parts.minutes + parts.thousandths * 0.001;
    return parts.hemisphere == rules.negative ? -minutes : minutes;
}

// Reads one coordinate and its hemisphere from the start of \a text; \a comma is the one between.
bool parseCoordinate(const platform::TextPart &text, const CoordinateRules &rules, double &minutes,
                     int &comma)
{
    if (text.indexOf(QLatin1Char('.')) != rules.degreeDigits + minuteDigits)
        return false;
    bool isNumber = false;
    const long degrees = text.left(rules.degreeDigits).toLong(&isNumber, 10);
    if (!isNumber || degrees > rules.maxDegrees)
        return false;
    comma = int(text.indexOf(QLatin1Char(',')));
    if (comma < rules.degreeDigits || comma + 1 >= text.size())
        return false;
    const double read =
        text.mid(rules.degreeDigits, comma - rules.degreeDigits).toDouble(&isNumber);
    if (!isNumber)
        return false;
    const double magnitude = double(degrees) * minutesPerDegree + read;
    const QChar hemisphere = text.at(comma + 1);
    const bool isNegative = hemisphere == QLatin1Char(rules.negative);
    minutes = isNegative ? -magnitude : magnitude;
    return isNegative || hemisphere == QLatin1Char(rules.positive);
}

QGpsKrd::Coordinate unpacked(const quint8 *bytes, const CoordinateRules &rules)
{
    QGpsKrd::Coordinate parts;
    parts.degrees = bytes[0];
    parts.minutes = bytes[1] & ~packedNegative;
    parts.thousandths = bytes[2];
    parts.hemisphere = bytes[1] & packedNegative ? rules.negative : rules.positive;
    return parts;
}

void pack(const QGpsKrd::Coordinate &parts, const CoordinateRules &rules, quint8 *bytes)
{
    const quint8 sign = parts.hemisphere == rules.negative ? packedNegative : quint8(0);
    bytes[0] = quint8(parts.degrees);
    bytes[1] = quint8(parts.minutes | sign);
    // Deliberate: of thousandths above 255 only the low byte has room.
    bytes[2] = quint8(parts.thousandths);
}

} // namespace

QGpsKrd::QGpsKrd(QObject *parent) : QObject(parent) { }

QGpsKrd::QGpsKrd(const QGpsKrd &a, const QGpsKrd &b, Combination combination)
    : m_lat(a.m_lat), m_lon(a.m_lon)
{
    switch (combination) {
    case Combination::Sum:
        *this += b;
        return;
    case Combination::Difference:
        m_lat = a.m_lat - b.m_lat;
        m_lon = a.m_lon - b.m_lon;
        // Deliberate: a difference above 10800 stays as it is.
        if (m_lon < -halfCircle)
            m_lon += fullCircle;
        return;
    case Combination::ShortestDifference:
        m_lat = a.m_lat - b.m_lat;
        m_lon = a.m_lon - b.m_lon;
        if (std::fabs(m_lon) <= halfCircle)
            return;
        if (b.m_lon < 0 && a.m_lon > 0) {
            m_lon = -(fullCircle - a.m_lon + b.m_lon);
        } else if (b.m_lon > 0 && a.m_lon < 0) {
            m_lon = fullCircle - b.m_lon + a.m_lon;
        }
        return;
    }
}

QGpsKrd::QGpsKrd(const QGpsKrd &start, double distance, double course)
    : m_lat(start.m_lat), m_lon(start.m_lon)
{
    const double heading = course / 180.0 * pi;
    QGpsKrd offset;
    offset.m_lat = distance * std::cos(heading);
    offset.m_lon =
        distance * std::sin(heading) / std::cos(start.m_lat / minutesPerDegree * radiansPerDegree);
    *this += offset;
}

void QGpsKrd::assign(const QGpsKrd &other)
{
    m_lat = other.m_lat;
    m_lon = other.m_lon;
}

bool QGpsKrd::isValid() const
{
    return !(std::fabs(m_lat) > MaxLatitude || std::fabs(m_lon) > MaxLongitude);
}

bool QGpsKrd::parseFields(const QString &text)
{
    // From the comma behind a coordinate: itself, the hemisphere, and a separator not looked at.
    constexpr int behindHemisphere = 3;
    double latitude = 0;
    double longitude = 0;
    int comma = 0;
    if (!parseCoordinate(platform::partFrom(text, 0), latitudeRules, latitude, comma))
        return false;
    const platform::TextPart rest = platform::partFrom(text, comma + behindHemisphere);
    if (!parseCoordinate(rest, longitudeRules, longitude, comma))
        return false;
    m_lat = latitude;
    m_lon = longitude;
    return true;
}

double QGpsKrd::distanceTo(const QGpsKrd &other) const
{
    return GreatCircle(*this).distanceTo(other);
}

QGpsKrd::Parts QGpsKrd::toParts() const
{
    return {partsOf(m_lat, latitudeRules), partsOf(m_lon, longitudeRules)};
}

QString QGpsKrd::latitudeText() const
{
    const Coordinate parts = partsOf(m_lat, latitudeRules);
    return QString::asprintf("%c  %.2d.%.2d.%.3d", parts.hemisphere, parts.degrees, parts.minutes,
                             parts.thousandths);
}

QString QGpsKrd::longitudeText() const
{
    const Coordinate parts = partsOf(m_lon, longitudeRules);
    return QString::asprintf("%c%.3d.%.2d.%.3d", parts.hemisphere, parts.degrees, parts.minutes,
                             parts.thousandths);
}

QString QGpsKrd::positionText() const
{
    return latitudeText() + QLatin1String("  ") + longitudeText();
}

bool QGpsKrd::setFromParts(const Parts &parts)
{
    if (!fits(parts.latitude, latitudeRules) || !fits(parts.longitude, longitudeRules))
        return false;
    m_lat = minutesOf(parts.latitude, latitudeRules);
    m_lon = minutesOf(parts.longitude, longitudeRules);
    return true;
}

void QGpsKrd::setInvalid()
{
    m_lat = invalidLatitude;
    m_lon = MaxLongitude;
}

void QGpsKrd::clear()
{
    m_lat = 0.0;
    m_lon = 0.0;
}

void QGpsKrd::roundToThousandths()
{
    setFromParts(toParts());
}

QGpsKrd &QGpsKrd::operator+=(const QGpsKrd &other)
{
    m_lat += other.m_lat;
    m_lon += other.m_lon;
    if (m_lon > halfCircle) {
        m_lon -= fullCircle;
    } else if (m_lon < -halfCircle) {
        m_lon += fullCircle;
    }
    return *this;
}

bool QGpsKrd::operator!=(const QGpsKrd &other) const
{
    return m_lat != other.m_lat || m_lon != other.m_lon;
}

double QGpsKrd::courseAndDistanceTo(const QGpsKrd &other, double *distance) const
{
    double longitudes = other.m_lon - m_lon;
    if (m_lon < 0 && other.m_lon > 0 && longitudes > halfCircle) {
        longitudes -= fullCircle;
    } else if (m_lon > 0 && other.m_lon < 0 && -longitudes > halfCircle) {
        longitudes += fullCircle;
    }

    const double latitudes = other.m_lat - m_lat;
    const double meanLatitude = (m_lat + other.m_lat) * 0.5 / 180.0 * pi / minutesPerDegree;
    const double departure = longitudes * std::cos(meanLatitude);
    *distance = std::sqrt(departure * departure + latitudes * latitudes);

    // Due east and due west come out of the infinite quotient.
    const double angle = std::atan(departure / latitudes) / pi * 180.0;
    if (other.m_lat < m_lat)
        return angle + 180.0;
    return angle < 0 ? angle + 360.0 : angle;
}

bool QGpsKrd::fromPacked(const Packed &bytes)
{
    return setFromParts(
        {unpacked(bytes.data(), latitudeRules), unpacked(bytes.data() + 3, longitudeRules)});
}

QGpsKrd::Packed QGpsKrd::toPacked() const
{
    const Parts parts = toParts();
    Packed bytes{};
    pack(parts.latitude, latitudeRules, bytes.data());
    pack(parts.longitude, longitudeRules, bytes.data() + 3);
    return bytes;
}
