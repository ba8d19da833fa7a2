#include "ais/qaistarget.h"

#include <QLatin1String>

#include <cmath>
#include <cstddef>

namespace {

constexpr double latitudeNotAvailable = 5460.0; // minutes of arc, 91 degrees
constexpr double speedNotAvailable = 102.3;     // knots
constexpr double courseNotAvailable = 360.0;    // degrees
constexpr int headingNotAvailable = 360;        // degrees, and all above
constexpr int turnNotAvailable = -128;
constexpr int hourNotAvailable = 24;
constexpr int minuteNotAvailable = 60;
constexpr double turnScale = 4.733;

constexpr const char *notAvailable = "N/A";

constexpr const char *navStatuses[] = {
    "Under way using engine",     "At anchor", "Not under command", "Restricted manoeuvrability",
    "Constrained by her draught", "Moored",    "Aground",           "Engaged in Fishing",
    "Under way sailing",
};

constexpr const char *fixTypes[] = {
    notAvailable,
    "GPS",
    "GLONASS",
    "GPS/GLONASS",
    "Loran-C",
    "Chayka",
    "Integrated Navigation System",
    "Surveyed",
    "Galileo",
};

struct ShipType
{
    int value;
    const char *text;
};

constexpr ShipType shipTypes[] = {
    {30, "Fishing"},
    {31, "Towing"},
    {32, "Towing: length exceeds 200m or breadth exceeds 25m"},
    {33, "Dredging or underwater ops"},
    {34, "Diving ops"},
    {35, "Military ops"},
    {36, "Sailing"},
    {37, "Pleasure Craft"},
    {50, "Pilot boat"},
    {51, "Search and rescue vessel"},
    {52, "Tug"},
    {53, "Port tenders"},
    {54, "Vessel with anti pollution facilities or equipment"},
    {55, "Law enforcement vessel"},
    {56, "spare - for assignments to local vessels"},
    {57, "spare - for assignments to local vessels"},
    {58, "Medical transport"},
};

// Classes of ten ship types, whose last digit is a category. The blank at the end stays without
// one.
constexpr int firstClass = 6;
constexpr const char *shipClasses[] = {"Passenger ship ", "Cargo ship ", "Tanker "};
constexpr const char *categories[] = {
    "",
    "(category A)",
    "(category B)",
    "(category C)",
    "(category D)",
    "(Not under command)",
    "(Restricted by her ability to manoeuvre)",
    "(Constrained by her draught)",
    "",
    "",
};

template <size_t count> QString textOf(const char *const (&texts)[count], int value)
{
    const bool known = value >= 0 && value < int(count);
    return QLatin1String(known ? texts[value] : notAvailable);
}

} // namespace

QAisTarget::QAisTarget(QObject *parent) : QObject(parent) { }

QString QAisTarget::statusText() const
{
    return m_dynamicValid ? textOf(navStatuses, m_navStatus) : QString();
}

QString QAisTarget::accuracyText() const
{
    if (!m_dynamicValid)
        return QString();
    // Deliberate: the unit of the second text is the Cyrillic letter, that of the first the Latin.
    return m_accuracy == 1 ? QStringLiteral("<10m") : QStringLiteral(">10\u043c");
}

QString QAisTarget::rateOfTurnText() const
{
    // Deliberate: a rate that is not available reads as nothing, where other fields read "N/A".
    if (!m_dynamicValid || m_rateOfTurn == turnNotAvailable)
        return QString();
    // Deliberate: the raw value is divided and not squared, so the text is linear in it.
    return tr("%1").arg(m_rateOfTurn / turnScale, 0, 'f', 2, QLatin1Char(' '));
}

QString QAisTarget::positionText() const
{
    if (!m_dynamicValid)
        return QString();
    // Deliberate: the longitude is not looked at.
    if (std::fabs(m_position.m_lat) >= latitudeNotAvailable)
        return QLatin1String(notAvailable);
    return tr("%1 %2").arg(m_position.latitudeText(), m_position.longitudeText());
}

QString QAisTarget::speedText() const
{
    if (!m_dynamicValid)
        return QString();
    if (m_speed == speedNotAvailable)
        return QLatin1String(notAvailable);
    return tr("%1").arg(m_speed, 0, 'f', 1, QLatin1Char(' '));
}

QString QAisTarget::courseText() const
{
    if (!m_dynamicValid)
        return QString();
    if (m_course == courseNotAvailable)
        return QLatin1String(notAvailable);
    return tr("%1").arg(m_course, 0, 'f', 1, QLatin1Char(' '));
}

QString QAisTarget::headingText() const
{
    if (!m_dynamicValid)
        return QString();
    return m_heading < headingNotAvailable ? tr("%1").arg(m_heading) : QLatin1String(notAvailable);
}

QString QAisTarget::imoText() const
{
    return m_staticValid ? tr("%1").arg(m_imo) : QString();
}

QString QAisTarget::nameText() const
{
    return m_staticValid ? m_shipName : QString();
}

QString QAisTarget::callSignText() const
{
    return m_staticValid ? m_callSign : QString();
}

QString QAisTarget::shipTypeText() const
{
    if (!m_staticValid)
        return QString();
    for (const ShipType &type : shipTypes) {
        if (type.value == m_shipType)
            return QLatin1String(type.text);
    }
    const int shipClass = m_shipType / 10 - firstClass;
    if (shipClass < 0 || shipClass >= int(std::size(shipClasses)))
        return QLatin1String(notAvailable);
    return QLatin1String(shipClasses[shipClass]) + QLatin1String(categories[m_shipType % 10]);
}

QString QAisTarget::fixTypeText() const
{
    return m_staticValid ? textOf(fixTypes, m_fixType) : QString();
}

QString QAisTarget::lengthText() const
{
    return m_staticValid ? tr("%1").arg(m_toBow + m_toStern) : QString();
}

QString QAisTarget::breadthText() const
{
    return m_staticValid ? tr("%1").arg(m_toPort + m_toStarboard) : QString();
}

QString QAisTarget::draughtText() const
{
    return m_staticValid ? tr("%1").arg(double(m_draught), 0, 'g', -1, QLatin1Char(' '))
                         : QString();
}

QString QAisTarget::destinationText() const
{
    return m_staticValid ? m_destination : QString();
}

QString QAisTarget::etaText() const
{
    if (!m_staticValid)
        return QString();
    const bool known = m_etaDay != 0 && m_etaMonth != 0 && m_etaHour != hourNotAvailable
        && m_etaMinute != minuteNotAvailable;
    if (!known)
        return QLatin1String(notAvailable);
    QString text = tr("%1.%2 %3:%4 UTC");
    for (const quint8 part : {m_etaDay, m_etaMonth, m_etaHour, m_etaMinute})
        text = text.arg(uint(part), 2, 10, QLatin1Char('0'));
    return text;
}
