#include "worldmodel.h"

#include <algorithm>
#include <cmath>

using namespace tk7sim;

namespace {

constexpr int second = 1000; // milliseconds
constexpr int day = 86400 * second;
constexpr int silence = 300 * second;
constexpr int sourceHold = 10 * second;
constexpr int routerSource = 100;

// Of times of the day, as a clock without a date counts.
bool isOver(int since, int span, int now)
{
    return (since + span) % day <= now;
}

// Longitude and latitude as numbers without a sign of so many bits: what lies in the west or in the
// south is far beyond the globe.
double minutes(qint32 value, int bits)
{
    const auto raw = static_cast<quint32>(value) & ((1U << bits) - 1);
    return raw / 10000.0;
}

double longitudeOf(const AisPositionReport &report)
{
    constexpr int bits = 28;
    return minutes(report.longitude, bits);
}

double latitudeOf(const AisPositionReport &report)
{
    constexpr int bits = 27;
    return minutes(report.latitude, bits);
}

// By the haversine, which is another way to the same great circle.
double milesBetween(double latitudeA, double longitudeA, double latitudeB, double longitudeB)
{
    const long double minute = std::acos(-1.0L) / 180 / 60;
    const long double north = (static_cast<long double>(latitudeB) - latitudeA) * minute;
    const long double east = (static_cast<long double>(longitudeB) - longitudeA) * minute;
    const long double a = std::sin(north / 2) * std::sin(north / 2)
        + std::cos(latitudeA * minute) * std::cos(latitudeB * minute) * std::sin(east / 2)
            * std::sin(east / 2);
    return static_cast<double>(2 * std::asin(std::sqrt(a)) / minute);
}

QString fixed(double value, int decimals)
{
    return QString::asprintf("%.*f", decimals, value);
}

QString decimal(qint64 value)
{
    return QString::asprintf("%lld", static_cast<long long>(value));
}

QString miles(double range)
{
    return QString::asprintf("%04.1f", range);
}

QString statusText(int status)
{
    switch (status) {
    case 0:
        return QStringLiteral("Under way using engine");
    case 1:
        return QStringLiteral("At anchor");
    case 2:
        return QStringLiteral("Not under command");
    case 3:
        return QStringLiteral("Restricted manoeuvrability");
    case 4:
        return QStringLiteral("Constrained by her draught");
    case 5:
        return QStringLiteral("Moored");
    case 6:
        return QStringLiteral("Aground");
    case 7:
        return QStringLiteral("Engaged in Fishing");
    case 8:
        return QStringLiteral("Under way sailing");
    default:
        return QStringLiteral("N/A");
    }
}

QString fixTypeText(int type)
{
    const QStringList texts = QStringLiteral("N/A,GPS,GLONASS,GPS/GLONASS,Loran-C,Chayka,"
                                             "Integrated Navigation System,Surveyed,Galileo")
                                  .split(QLatin1Char(','));
    return type < texts.size() ? texts.at(type) : texts.at(0);
}

QString shipTypeText(int type)
{
    static const QMap<int, QString> single = {
        {30, QStringLiteral("Fishing")},
        {31, QStringLiteral("Towing")},
        {32, QStringLiteral("Towing: length exceeds 200m or breadth exceeds 25m")},
        {33, QStringLiteral("Dredging or underwater ops")},
        {34, QStringLiteral("Diving ops")},
        {35, QStringLiteral("Military ops")},
        {36, QStringLiteral("Sailing")},
        {37, QStringLiteral("Pleasure Craft")},
        {50, QStringLiteral("Pilot boat")},
        {51, QStringLiteral("Search and rescue vessel")},
        {52, QStringLiteral("Tug")},
        {53, QStringLiteral("Port tenders")},
        {54, QStringLiteral("Vessel with anti pollution facilities or equipment")},
        {55, QStringLiteral("Law enforcement vessel")},
        {56, QStringLiteral("spare - for assignments to local vessels")},
        {57, QStringLiteral("spare - for assignments to local vessels")},
        {58, QStringLiteral("Medical transport")},
    };
    static const QMap<int, QString> classes = {{6, QStringLiteral("Passenger ship ")},
                                               {7, QStringLiteral("Cargo ship ")},
                                               {8, QStringLiteral("Tanker ")}};
    static const QMap<int, QString> categories = {
        {1, QStringLiteral("(category A)")},
        {2, QStringLiteral("(category B)")},
        {3, QStringLiteral("(category C)")},
        {4, QStringLiteral("(category D)")},
        {5, QStringLiteral("(Not under command)")},
        {6, QStringLiteral("(Restricted by her ability to manoeuvre)")},
        {7, QStringLiteral("(Constrained by her draught)")},
    };
    if (single.contains(type)) {
        return single.value(type);
    }
    if (!classes.contains(type / 10)) {
        return QStringLiteral("N/A");
    }
    return classes.value(type / 10) + categories.value(type % 10);
}

// Degrees, minutes and thousandths, cut; all of whole numbers.
QString coordinate(quint32 raw, int degreeDigits)
{
    constexpr quint32 perMinute = 10000;
    constexpr quint32 perThousandth = 10;
    return QString::asprintf("%0*u.%02u.%03u", degreeDigits, raw / perMinute / 60,
                             raw / perMinute % 60, raw % perMinute / perThousandth);
}

QString positionText(const AisPositionReport &report)
{
    constexpr double nowhere = 91 * 60;
    constexpr quint32 longitudeMask = (1U << 28) - 1;
    constexpr quint32 latitudeMask = (1U << 27) - 1;
    if (latitudeOf(report) >= nowhere) {
        return QStringLiteral("N/A");
    }
    return QStringLiteral("N  ")
        + coordinate(static_cast<quint32>(report.latitude) & latitudeMask, 2) + QStringLiteral(" E")
        + coordinate(static_cast<quint32>(report.longitude) & longitudeMask, 3);
}

QString rateOfTurnText(int raw)
{
    return raw == -128 ? QString() : fixed(raw / 4.733, 2);
}

QString etaText(const AisVoyageData &voyage)
{
    if (voyage.day == 0 || voyage.month == 0 || voyage.hour == 24 || voyage.minute == 60) {
        return QStringLiteral("N/A");
    }
    return QString::asprintf("%02d.%02d %02d:%02d UTC", voyage.day, voyage.month, voyage.hour,
                             voyage.minute);
}

QString inTenths(int raw, int unknown)
{
    return raw == unknown ? QStringLiteral("N/A") : fixed(raw / 10.0, 1);
}

QStringList dynamicTexts(const std::optional<AisPositionReport> &report)
{
    if (!report) {
        return {QString(), QString(), QString(), QString(), QString(), QString(), QString()};
    }
    return {report->isAccurate ? QStringLiteral("<10m") : QStringLiteral(">10\u043c"),
            positionText(*report),
            inTenths(report->speed, 1023),
            inTenths(report->course, 3600),
            report->heading < 360 ? decimal(report->heading) : QStringLiteral("N/A"),
            rateOfTurnText(report->rateOfTurn),
            statusText(report->navStatus)};
}

QString draughtText(int tenths)
{
    return QString::asprintf("%g", static_cast<double>(static_cast<float>(tenths / 10.0)));
}

QString enabledText(bool isEnabled)
{
    return isEnabled ? QStringLiteral("on") : QStringLiteral("off");
}

QStringList emptyWindow()
{
    QStringList window;
    for (int row = 0; row < WorldModel::infoRows; ++row) {
        window.append(QString());
    }
    return window;
}

} // namespace

QStringList WorldModel::infoTexts(const Target &target)
{
    const auto &voyage = target.voyage;
    const QStringList dynamic = dynamicTexts(target.position);
    QStringList texts = {decimal(target.mmsi)};
    if (voyage) {
        texts << decimal(voyage->imo) << QString::fromLatin1(voyage->callSign)
              << QString::fromLatin1(voyage->name) << fixTypeText(voyage->fixType);
    } else {
        texts << QString() << QString() << QString() << QString();
    }
    texts << dynamic;
    if (voyage) {
        texts << shipTypeText(voyage->shipType) << decimal(voyage->toBow + voyage->toStern)
              << decimal(voyage->toPort + voyage->toStarboard) << draughtText(voyage->draught)
              << QString::fromLatin1(voyage->destination) << etaText(*voyage);
    } else {
        texts << QString() << QString() << QString() << QString() << QString() << QString();
    }
    return texts;
}

QString WorldModel::rangeText(const Target &target)
{
    return target.hasRange ? miles(target.range) : QString();
}

QStringList WorldModel::alarmTexts(const AisAlarmState &alarm)
{
    return {decimal(alarm.id & 0xff),
            QString::asprintf("%02d:%02d:%02d", alarm.hour, alarm.minute, alarm.second),
            alarm.isActive ? QStringLiteral("exceeded") : QStringLiteral("not exceeded"),
            alarm.isAcknowledged ? QStringLiteral("yes") : QStringLiteral("no"),
            QString::fromLatin1(alarm.text + '*')};
}

// All rows but the age, which has a clock of its own.
void WorldModel::fill(QStringList *window, const Target &target)
{
    if (target.mmsi == 0) {
        return;
    }
    const QStringList texts = infoTexts(target);
    std::copy(texts.cbegin(), texts.cend(), window->begin());
}

WorldModel::Target &WorldModel::findOrAdd(Port &port, uint mmsi, bool *isNew)
{
    for (const TargetPointer &target : qAsConst(port.targets)) {
        if (target->mmsi == mmsi) {
            *isNew = false;
            return *target;
        }
    }
    *isNew = true;
    port.targets.append(std::make_shared<Target>());
    port.targets.last()->mmsi = mmsi;
    ++m_events.born;
    return *port.targets.last();
}

void WorldModel::hear(const AisReport &report, int now)
{
    switch (report.kind) {
    case AisReportKind::Other:
        return;
    case AisReportKind::RouterPosition:
        return offerPosition(routerSource, report.router.latitude / 10000.0,
                             report.router.longitude / 10000.0, now);
    case AisReportKind::Alarm:
        return hearAlarm(report);
    case AisReportKind::OwnPosition:
    case AisReportKind::OwnVoyage:
        return hearOwn(report, now);
    case AisReportKind::Position:
    case AisReportKind::Voyage:
        break;
    }
    const bool isVoyage = report.kind == AisReportKind::Voyage;
    const uint mmsi = isVoyage ? report.voyage.mmsi : report.position.mmsi;
    Port &port = m_ports[static_cast<size_t>(report.port)];
    bool isNew = false;
    Target &target = findOrAdd(port, mmsi, &isNew);
    target.heardAt = now;
    ++port.messages;
    if (isVoyage) {
        target.voyage = report.voyage;
    } else {
        target.position = report.position;
        measure(port, target);
    }
    if (isNew) {
        m_events.returned += m_everDied.contains({report.port, mmsi}) ? 1 : 0;
        added(report.port, target);
    }
    if (!isNew || isVoyage) {
        updated(report.port, target);
    }
}

void WorldModel::hearOwn(const AisReport &report, int now)
{
    Target &own = *m_ports[static_cast<size_t>(report.port)].own;
    own.heardAt = now;
    if (report.kind == AisReportKind::OwnVoyage) {
        own.mmsi = report.voyage.mmsi;
        own.voyage = report.voyage;
        return ownUpdated(report.port);
    }
    own.mmsi = report.position.mmsi;
    own.position = report.position;
    ownUpdated(report.port);
    const double latitude = latitudeOf(report.position);
    const double longitude = longitudeOf(report.position);
    if (latitude < 5400 && longitude < 10800) {
        offerPosition(report.port, latitude, longitude, now);
    }
}

void WorldModel::hearAlarm(const AisReport &report)
{
    Port &port = m_ports[static_cast<size_t>(report.port)];
    const int id = report.alarm.id & 0xff;
    if (port.alarms.contains(id) && port.alarms.value(id) == report.alarm) {
        return;
    }
    ++m_events.changedAlarms;
    port.alarms.insert(id, report.alarm);
    requireRow(report.port);
    port.isAlarmEnabled = true;
    if (port.isAlarmListOpen) {
        port.alarmList.insert(id, alarmTexts(report.alarm));
    }
}

void WorldModel::requireRow(int number)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    if (port.hasRow) {
        return;
    }
    port.hasRow = true;
    port.targetsCell = decimal(port.targets.size());
    m_rows.append(number);
}

void WorldModel::added(int number, const Target &target)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    requireRow(number);
    port.isListEnabled = true;
    port.targetsCell = decimal(port.targets.size());
    updateMaxRange(number);
    if (port.isListOpen) {
        const QString name = target.voyage ? QString::fromLatin1(target.voyage->name) : QString();
        port.list.insert(target.mmsi, {name, rangeText(target)});
    }
}

void WorldModel::updated(int number, const Target &target)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    if (!port.isListOpen) {
        return;
    }
    if (port.shown.get() == &target) {
        fill(&port.info, target);
    }
    ListRow &row = port.list[target.mmsi];
    if (target.voyage) {
        row.name = QString::fromLatin1(target.voyage->name);
    }
    row.range = rangeText(target);
    m_events.staleRanges += !port.hasPosition && target.hasRange ? 1 : 0;
    updateMaxRange(number);
}

void WorldModel::ownUpdated(int number)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    requireRow(number);
    port.isOwnEnabled = true;
    if (port.isOwnInfoOpen) {
        fill(&port.ownInfo, *port.own);
    }
}

void WorldModel::measure(const Port &port, Target &target) const
{
    target.hasRange = false;
    if (!port.hasPosition || !target.position) {
        return;
    }
    const double latitude = latitudeOf(*target.position);
    const double longitude = longitudeOf(*target.position);
    if (latitude > 5400 || longitude > 10800) {
        return;
    }
    target.hasRange = true;
    target.range = milesBetween(port.latitude, port.longitude, latitude, longitude);
}

void WorldModel::offerPosition(int source, double latitude, double longitude, int now)
{
    for (int number = 0; number < portCount; ++number) {
        Port &port = m_ports[static_cast<size_t>(number)];
        const bool isTaken = source == number || !port.hasPosition || source == port.positionSource
            || isOver(port.positionAt, sourceHold, now);
        if (isTaken) {
            m_events.sourceChanges += port.hasPosition && port.positionSource != source ? 1 : 0;
            port.hasPosition = true;
            port.positionSource = source;
            port.positionAt = now;
            port.latitude = latitude;
            port.longitude = longitude;
        }
        for (const TargetPointer &target : qAsConst(port.targets)) {
            measure(port, *target);
            if (port.isListOpen) {
                port.list[target->mmsi].range = rangeText(*target);
            }
        }
    }
}

void WorldModel::updateMaxRange(int number)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    if (!port.hasRow) {
        return;
    }
    double most = -1;
    for (const TargetPointer &target : qAsConst(port.targets)) {
        if (port.hasPosition && target->hasRange && target->range > most) {
            most = target->range;
        }
    }
    port.rangeCell = most >= 0 ? miles(most) : QString();
    if (most > port.bestRange) {
        port.bestRange = most;
        port.bestRangeCell = port.rangeCell;
    }
}

void WorldModel::tick(int now)
{
    for (int number = 0; number < portCount; ++number) {
        expire(number, now);
    }
    for (Port &port : m_ports) {
        if (port.hasRow) {
            port.messagesCell = decimal(port.messages);
        }
        if (port.shown) {
            showAge(&port.info, *port.shown, now);
        }
        if (port.isOwnInfoOpen) {
            showAge(&port.ownInfo, *port.own, now);
        }
    }
}

void WorldModel::expire(int number, int now)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    if (port.hasPosition && isOver(port.positionAt, silence, now)) {
        ++m_events.lostPositions;
        port.hasPosition = false;
        if (port.isListOpen) {
            for (ListRow &row : port.list) {
                row.range.clear();
            }
            updateMaxRange(number);
        }
    }
    for (int i = int(port.targets.size() - 1); i >= 0; --i) {
        const TargetPointer target = port.targets.at(i);
        if (isOver(target->heardAt, silence, now)) {
            died(number, *target);
            port.targets.removeAt(i);
        }
    }
}

// The dying target is still counted in the range, and no longer in the number.
void WorldModel::died(int number, const Target &target)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    ++m_events.died;
    m_everDied.append({number, target.mmsi});
    const int left = int(port.targets.size() - 1);
    port.targetsCell = decimal(left);
    updateMaxRange(number);
    if (left == 0) {
        port.isListEnabled = false;
    }
    port.list.remove(target.mmsi);
    if (port.shown.get() == &target) {
        m_events.hiddenInfos += port.isInfoVisible ? 1 : 0;
        port.isInfoVisible = false;
    }
}

void WorldModel::showAge(QStringList *window, const Target &target, int now) const
{
    const int age = (now - target.heardAt + day) % day / second;
    (*window)[infoRows - 1] = QString::asprintf("%02d:%02d", age / 60 % 60, age % 60);
}

void WorldModel::openList(int number)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    if (port.isListOpen) {
        return;
    }
    port.isListOpen = true;
    for (const TargetPointer &target : qAsConst(port.targets)) {
        const QString name = target->voyage ? QString::fromLatin1(target->voyage->name) : QString();
        port.list.insert(target->mmsi, {name, rangeText(*target)});
    }
}

void WorldModel::openInfo(int number, uint mmsi)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    if (!port.shown) {
        port.info = emptyWindow();
    }
    for (const TargetPointer &target : qAsConst(port.targets)) {
        if (target->mmsi == mmsi) {
            port.shown = target;
            port.isInfoVisible = true;
            fill(&port.info, *target);
        }
    }
}

void WorldModel::openOwnInfo(int number)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    if (!port.isOwnInfoOpen) {
        port.ownInfo = emptyWindow();
    }
    port.isOwnInfoOpen = true;
    fill(&port.ownInfo, *port.own);
}

void WorldModel::openAlarms(int number)
{
    Port &port = m_ports[static_cast<size_t>(number)];
    port.isAlarmListOpen = true;
    port.alarmList.clear();
    for (auto it = port.alarms.cbegin(); it != port.alarms.cend(); ++it) {
        port.alarmList.insert(it.key(), alarmTexts(*it));
    }
}

uint WorldModel::longestSilent(int number, int now) const
{
    const auto &targets = m_ports[static_cast<size_t>(number)].targets;
    const auto found = std::max_element(
        targets.cbegin(), targets.cend(), [now](const TargetPointer &a, const TargetPointer &b) {
            return (now - a->heardAt + day) % day < (now - b->heardAt + day) % day;
        });
    return found == targets.cend() ? 0 : (*found)->mmsi;
}

QStringList WorldModel::describe() const
{
    const QChar bar = QLatin1Char('|');
    QStringList lines;
    for (const int number : m_rows) {
        const Port &port = m_ports[static_cast<size_t>(number)];
        lines << QStringList{decimal(number),    enabledText(port.isOwnEnabled),  port.messagesCell,
                             port.targetsCell,   enabledText(port.isListEnabled), port.rangeCell,
                             port.bestRangeCell, enabledText(port.isAlarmEnabled)}
                     .join(bar);
    }
    for (int number = 0; number < portCount; ++number) {
        const Port &port = m_ports[static_cast<size_t>(number)];
        const QString head = QStringLiteral("port %1 ").arg(number);
        for (auto it = port.list.cbegin(); it != port.list.cend(); ++it) {
            lines << head + QStringLiteral("list ")
                    + QStringList{decimal(it.key()), it->name, it->range}.join(bar);
        }
        if (port.shown) {
            lines << head + QStringLiteral("info ") + enabledText(port.isInfoVisible) + bar
                    + port.info.join(bar);
        }
        if (port.isOwnInfoOpen) {
            lines << head + QStringLiteral("own ") + port.ownInfo.join(bar);
        }
        for (const QStringList &alarm : port.alarmList) {
            lines << head + QStringLiteral("alarm ") + alarm.join(bar);
        }
    }
    return lines;
}
