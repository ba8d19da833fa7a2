#include "simulator/instruments/aisworld.h"
#include "simulator/line/sentence.h"

#include "aisbits.h"

#include <QHash>
#include <QSet>
#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace tk7sim;

/*! The vessels of an AIS test and what they report, against their own sentences. */
class TestSimAisWorld : public QObject
{
    Q_OBJECT

private slots:
    void ports_data();
    void ports();
    void repeats();
    void seedsDiffer();
    void sentencesSayTheTruth();
    void sentencesAreWellFormed();
    void messagesBelongTogether();
    void truthIsTheLastReport();
    void typesAreMixed();
    void vesselsSailTheirCourses();
    void vesselsStayInTheirWater();
    void vesselsFallSilent();
    void fleetIsBelievable_data();
    void fleetIsBelievable();
    void fleetHasFlaws();
    void namesComeSoon();
    void reportIntervals();
    void ownShipReports();
    void ownShipLosesItsPosition();
    void routerPositions();
    void alarmsComeAndGo();
    void rateCounts_data();
    void rateCounts();
    void ownShipKeepsItsPaceOnAFullLine();
    void fullLineIsFair();
    void longGapIsNotMadeUpFor();
    void timeNeverGoesBack();
    void portsOfNoRouter();
    void worldWithoutStations();
    void numberOfVessels_data();
    void numberOfVessels();
    void silencePattern_data();
    void silencePattern();

private:
    static QVector<AisReport> reportsOf(AisWorld *world, qint64 from, qint64 to,
                                        qint64 step = 1000);
};

namespace {

constexpr qint64 second = 1000;
constexpr qint64 minute = 60 * second;
constexpr qint64 hour = 60 * minute;
const QDateTime start(QDate(2026, 6, 30), QTime(23, 40), Qt::UTC);

AisWorldSettings settingsOf(int vessels = AisWorldSettings::defaultVessels, double rate = 1,
                            quint32 seed = 1)
{
    AisWorldSettings settings;
    settings.vessels = vessels;
    settings.rate = rate;
    settings.seed = seed;
    settings.start = start;
    return settings;
}

QByteArrayList fieldsOf(const QByteArray &body)
{
    return body.split(',');
}

QByteArray payloadOf(const AisReport &report)
{
    QByteArray payload;
    for (const QByteArray &body : report.bodies) {
        payload += fieldsOf(body).at(5);
    }
    return payload;
}

QByteArray withoutPadding(QByteArray text)
{
    while (text.endsWith('@')) {
        text.chop(1);
    }
    return text;
}

bool isOfVessel(const AisReport &report)
{
    return report.kind == AisReportKind::Position || report.kind == AisReportKind::Voyage;
}

quint32 mmsiOf(const AisReport &report)
{
    return report.kind == AisReportKind::Position ? report.position.mmsi : report.voyage.mmsi;
}

bool hasPosition(const AisPositionReport &report)
{
    return report.latitude != AisPositionReport::noLatitude;
}

Fix fixOf(const AisPositionReport &report)
{
    return {report.latitude / 600000.0, report.longitude / 600000.0, report.course / 10.0};
}

} // namespace

QVector<AisReport> TestSimAisWorld::reportsOf(AisWorld *world, qint64 from, qint64 to, qint64 step)
{
    QVector<AisReport> reports;
    for (qint64 now = from; now <= to; now += step) {
        while (const auto report = world->take(now)) {
            reports.append(*report);
        }
    }
    return reports;
}

void TestSimAisWorld::ports_data()
{
    QTest::addColumn<int>("vessels");
    QTest::addColumn<QVector<int>>("ports");
    const QVector<int> few = {3, 8, 11};
    const QVector<int> all = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    QTest::newRow("usual number") << 40 << few;
    QTest::newRow("fewer than many") << 99 << few;
    QTest::newRow("many") << 100 << all;
    QTest::newRow("thousands") << 3000 << all;
}

void TestSimAisWorld::ports()
{
    QFETCH(int, vessels);
    QFETCH(QVector<int>, ports);
    AisWorld world(settingsOf(vessels));
    QCOMPARE(world.ports(), ports);
    reportsOf(&world, 0, minute);
    int shared = 0;
    QSet<quint32> heard;
    for (int port = 0; port < AisWorld::portCount; ++port) {
        const auto stations = world.truth(port).stations.keys();
        QCOMPARE(stations.isEmpty(), !ports.contains(port));
        for (const quint32 mmsi : stations) {
            shared += heard.contains(mmsi) ? 1 : 0;
            heard.insert(mmsi);
        }
    }
    QVERIFY(heard.size() > vessels * 9 / 10);
    QVERIFY(shared >= vessels / 6);
}

void TestSimAisWorld::repeats()
{
    AisWorld a(settingsOf());
    AisWorld b(settingsOf());
    const auto once = reportsOf(&a, 0, 10 * minute);
    const auto again = reportsOf(&b, 0, 10 * minute);
    QCOMPARE(once.size(), again.size());
    for (int i = 0; i < once.size(); ++i) {
        QCOMPARE(once.at(i).time, again.at(i).time);
        QCOMPARE(once.at(i).bodies, again.at(i).bodies);
    }
}

void TestSimAisWorld::seedsDiffer()
{
    AisWorld a(settingsOf(40, 1, 1));
    AisWorld b(settingsOf(40, 1, 2));
    reportsOf(&a, 0, minute);
    reportsOf(&b, 0, minute);
    int onlyInFirst = 0;
    const auto stations = a.truth(3).stations.keys();
    for (const quint32 mmsi : stations) {
        onlyInFirst += b.truth(3).stations.contains(mmsi) ? 0 : 1;
    }
    QVERIFY(onlyInFirst > 5);
}

// What is read from the bits is what the report says beside them.
void TestSimAisWorld::sentencesSayTheTruth()
{
    AisWorld world(settingsOf());
    int positions = 0;
    int voyages = 0;
    const auto reports = reportsOf(&world, 0, hour);
    for (const AisReport &report : reports) {
        const bool isPosition =
            report.kind == AisReportKind::Position || report.kind == AisReportKind::OwnPosition;
        const bool isVoyage =
            report.kind == AisReportKind::Voyage || report.kind == AisReportKind::OwnVoyage;
        if (isPosition) {
            const AisPositionReport &said = report.position;
            const AisBits bits(payloadOf(report));
            QCOMPARE(bits.size(), 168);
            QCOMPARE(bits.number(0, 6), static_cast<quint32>(said.type));
            QCOMPARE(bits.number(8, 30), said.mmsi);
            QCOMPARE(bits.number(38, 4), static_cast<quint32>(said.navStatus));
            QCOMPARE(bits.signedNumber(42, 8), said.rateOfTurn);
            QCOMPARE(bits.number(50, 10), static_cast<quint32>(said.speed));
            QCOMPARE(bits.number(60, 1) == 1, said.isAccurate);
            QCOMPARE(bits.signedNumber(61, 28), said.longitude);
            QCOMPARE(bits.signedNumber(89, 27), said.latitude);
            QCOMPARE(bits.number(116, 12), static_cast<quint32>(said.course));
            QCOMPARE(bits.number(128, 9), static_cast<quint32>(said.heading));
            QCOMPARE(bits.number(137, 6), static_cast<quint32>(said.second));
            ++positions;
        } else if (isVoyage) {
            const AisVoyageData &said = report.voyage;
            const AisBits bits(payloadOf(report));
            QCOMPARE(bits.size(), 426);
            QCOMPARE(bits.number(0, 6), 5U);
            QCOMPARE(bits.number(8, 30), said.mmsi);
            QCOMPARE(bits.number(40, 30), said.imo);
            QCOMPARE(withoutPadding(bits.text(70, 7)), said.callSign);
            QCOMPARE(withoutPadding(bits.text(112, 20)), said.name);
            QCOMPARE(bits.number(232, 8), static_cast<quint32>(said.shipType));
            QCOMPARE(bits.number(240, 9), static_cast<quint32>(said.toBow));
            QCOMPARE(bits.number(249, 9), static_cast<quint32>(said.toStern));
            QCOMPARE(bits.number(258, 6), static_cast<quint32>(said.toPort));
            QCOMPARE(bits.number(264, 6), static_cast<quint32>(said.toStarboard));
            QCOMPARE(bits.number(270, 4), static_cast<quint32>(said.fixType));
            QCOMPARE(bits.number(274, 4), static_cast<quint32>(said.month));
            QCOMPARE(bits.number(278, 5), static_cast<quint32>(said.day));
            QCOMPARE(bits.number(283, 5), static_cast<quint32>(said.hour));
            QCOMPARE(bits.number(288, 6), static_cast<quint32>(said.minute));
            QCOMPARE(bits.number(294, 8), static_cast<quint32>(said.draught));
            QCOMPARE(withoutPadding(bits.text(302, 20)), said.destination);
            ++voyages;
        }
    }
    QVERIFY(positions > 10000);
    QVERIFY(voyages > 400);
}

void TestSimAisWorld::sentencesAreWellFormed()
{
    AisWorld world(settingsOf());
    const QRegularExpression message(
        QStringLiteral("^\\$VRAI[MO],1,1,,[0-9A-B],[0-W`-w]+,[0-5]$|"
                       "^\\$VRAI[MO],2,[12],[0-9],[0-9A-B],[0-W`-w]+,[0-5]$"));
    const QRegularExpression alarm(
        QStringLiteral("^\\$VRAIA,[0-9A-B],\\d{6}\\.00,\\d{3},[AV],[AV],AIS: [ -)+-~]+$"));
    const QRegularExpression position(
        QStringLiteral("^\\$VRAIP,\\d{4}\\.\\d{4},[NS],\\d{5}\\.\\d{4},[EW]$"));
    const auto reports = reportsOf(&world, 0, hour);
    for (const AisReport &report : reports) {
        for (const QByteArray &body : report.bodies) {
            const QString text = QString::fromLatin1(body);
            const QRegularExpression &form = report.kind == AisReportKind::Alarm ? alarm
                : report.kind == AisReportKind::RouterPosition                   ? position
                                                                                 : message;
            QVERIFY2(form.match(text).hasMatch(), body.constData());
            QVERIFY(withChecksum(body).size() <= 82);
            if (report.kind == AisReportKind::RouterPosition) {
                continue;
            }
            const int portField = report.kind == AisReportKind::Alarm ? 1 : 4;
            QCOMPARE(fieldsOf(body).at(portField).toInt(nullptr, 16), report.port);
        }
    }
}

// The parts of a message share a number, which the next long message of the port doesn't have.
void TestSimAisWorld::messagesBelongTogether()
{
    AisWorld world(settingsOf());
    QHash<int, int> lastNumber;
    int longMessages = 0;
    const auto reports = reportsOf(&world, 0, hour);
    for (const AisReport &report : reports) {
        if (report.bodies.size() == 1) {
            continue;
        }
        QCOMPARE(report.bodies.size(), 2);
        const auto begin = fieldsOf(report.bodies.at(0));
        const auto end = fieldsOf(report.bodies.at(1));
        QCOMPARE(begin.at(2), QByteArray("1"));
        QCOMPARE(end.at(2), QByteArray("2"));
        QCOMPARE(begin.at(3), end.at(3));
        QCOMPARE(begin.at(4), end.at(4));
        const int number = begin.at(3).toInt();
        QCOMPARE(number, (lastNumber.value(report.port, -1) + 1) % 10);
        lastNumber[report.port] = number;
        ++longMessages;
    }
    QVERIFY(longMessages > 400);
}

void TestSimAisWorld::truthIsTheLastReport()
{
    AisWorld world(settingsOf());
    QHash<QPair<int, quint32>, AisReport> positions;
    QHash<QPair<int, quint32>, AisReport> voyages;
    QHash<int, quint32> messages;
    QHash<int, quint32> ownMessages;
    const auto reports = reportsOf(&world, 0, 30 * minute);
    for (const AisReport &report : reports) {
        if (report.kind == AisReportKind::Position) {
            positions.insert({report.port, report.position.mmsi}, report);
        } else if (report.kind == AisReportKind::Voyage) {
            voyages.insert({report.port, report.voyage.mmsi}, report);
        }
        messages[report.port] += isOfVessel(report) ? 1 : 0;
        const bool isOwn =
            report.kind == AisReportKind::OwnPosition || report.kind == AisReportKind::OwnVoyage;
        ownMessages[report.port] += isOwn ? 1 : 0;
    }
    QCOMPARE(world.reports(), static_cast<quint64>(reports.size()));
    int stations = 0;
    for (const int port : world.ports()) {
        const AisPortTruth &truth = world.truth(port);
        QCOMPARE(truth.messages, messages.value(port));
        QCOMPARE(truth.ownMessages, ownMessages.value(port));
        for (auto it = truth.stations.cbegin(); it != truth.stations.cend(); ++it) {
            QCOMPARE(it->position.has_value(), positions.contains({port, it.key()}));
            QCOMPARE(it->voyage.has_value(), voyages.contains({port, it.key()}));
            const AisReport position = positions.value({port, it.key()});
            QCOMPARE(it->position->latitude, position.position.latitude);
            QCOMPARE(it->position->longitude, position.position.longitude);
            QCOMPARE(it->positionTime, position.time);
            if (it->voyage) {
                const AisReport voyage = voyages.value({port, it.key()});
                QCOMPARE(it->voyage->destination, voyage.voyage.destination);
                QCOMPARE(it->voyageTime, voyage.time);
            }
            ++stations;
        }
    }
    QVERIFY(stations > 45);
}

void TestSimAisWorld::typesAreMixed()
{
    AisWorld world(settingsOf());
    QHash<quint32, int> types;
    const auto reports = reportsOf(&world, 0, 10 * minute);
    for (const AisReport &report : reports) {
        if (report.kind != AisReportKind::Alarm && report.kind != AisReportKind::RouterPosition) {
            ++types[AisBits(payloadOf(report)).number(0, 6)];
        }
    }
    for (const quint32 type : {1U, 2U, 3U, 4U, 5U, 9U, 18U, 21U, 24U}) {
        QVERIFY2(types.value(type) > 0, qPrintable(QString::number(type)));
    }
    QCOMPARE(types.size(), 9);
    QVERIFY(types.value(1) > types.value(2) + types.value(3));
}

// From one report to the next a vessel makes the way that its speed tells.
void TestSimAisWorld::vesselsSailTheirCourses()
{
    AisWorld world(settingsOf());
    QHash<quint32, AisReport> last;
    int steps = 0;
    const auto reports = reportsOf(&world, 0, hour);
    for (const AisReport &report : reports) {
        if (report.kind != AisReportKind::Position || !hasPosition(report.position)) {
            continue;
        }
        const quint32 mmsi = report.position.mmsi;
        const bool isKnown = last.contains(mmsi);
        const AisReport before = last.value(mmsi);
        last.insert(mmsi, report);
        const qint64 passed = report.time - before.time;
        if (!isKnown || passed == 0 || passed > minute) {
            continue;
        }
        const double miles = report.position.speed / 10.0 * static_cast<double>(passed) / hour;
        const double made = milesBetween(fixOf(before.position), fixOf(report.position));
        QVERIFY2(std::fabs(made - miles) < 0.004 + miles * 0.05,
                 qPrintable(QStringLiteral("%1: %2, not %3").arg(mmsi).arg(made).arg(miles)));
        ++steps;
    }
    QVERIFY(steps > 8000);
}

void TestSimAisWorld::vesselsStayInTheirWater()
{
    AisWorld world(settingsOf());
    reportsOf(&world, 0, 8 * hour);
    int near = 0;
    for (const int port : world.ports()) {
        const auto stations = world.truth(port).stations;
        for (const AisStationTruth &station : stations) {
            if (!hasPosition(*station.position) || station.position->longitude < 0) {
                continue;
            }
            const double distance = milesBetween(fixOf(*station.position), fleetMiddle);
            near += distance < fleetRadius + 8 ? 1 : 0;
        }
    }
    QVERIFY(near > 40);
}

void TestSimAisWorld::vesselsFallSilent()
{
    constexpr qint64 tooLong = 300 * second;
    constexpr qint64 shortSilence = 120 * second;
    AisWorld world(settingsOf());
    QHash<quint32, qint64> last;
    QSet<quint32> returned;
    QSet<quint32> silentForAWhile;
    const auto reports = reportsOf(&world, 0, hour);
    for (const AisReport &report : reports) {
        if (!isOfVessel(report)) {
            continue;
        }
        const quint32 mmsi = mmsiOf(report);
        const qint64 gap = report.time - last.value(mmsi, report.time);
        if (gap >= tooLong) {
            returned.insert(mmsi);
        } else if (gap > shortSilence) {
            silentForAWhile.insert(mmsi);
        }
        last.insert(mmsi, report.time);
    }
    QVERIFY(!returned.isEmpty());
    QVERIFY(!silentForAWhile.isEmpty());
    const int gone = static_cast<int>(
        std::count_if(last.cbegin(), last.cend(), [](qint64 time) { return time < hour / 4; }));
    QVERIFY(gone >= 1);
    QVERIFY(gone < 5);
}

void TestSimAisWorld::fleetIsBelievable_data()
{
    QTest::addColumn<int>("vessels");
    QTest::newRow("some dozens") << 40;
    QTest::newRow("a thousand") << 1000;
    QTest::newRow("most") << AisWorldSettings::maxVessels;
}

void TestSimAisWorld::fleetIsBelievable()
{
    QFETCH(int, vessels);
    const auto fleet = makeFleet(vessels, 12, 3, start.date());
    QCOMPARE(fleet.size(), vessels);
    const QRegularExpression text(QStringLiteral("^[A-Z0-9][A-Z0-9 .-]*$"));
    QSet<quint32> mmsis;
    QSet<QByteArray> names;
    QSet<int> classes;
    for (const FleetVessel &vessel : fleet) {
        const AisVoyageData &voyage = vessel.voyage;
        mmsis.insert(voyage.mmsi);
        names.insert(voyage.name);
        classes.insert(voyage.shipType / 10);
        QVERIFY(voyage.mmsi / 1000000 >= 201);
        QVERIFY(voyage.mmsi / 1000000 <= 775);
        QVERIFY2(text.match(QString::fromLatin1(voyage.name)).hasMatch(), voyage.name.constData());
        QVERIFY(voyage.name.size() <= AisVoyageData::textLength);
        QVERIFY(text.match(QString::fromLatin1(voyage.callSign)).hasMatch());
        QVERIFY(voyage.callSign.size() <= AisVoyageData::callSignLength);
        QVERIFY(voyage.destination.size() <= AisVoyageData::textLength);
        QVERIFY(voyage.shipType <= 99);
        QVERIFY(voyage.toBow > 0 && voyage.toBow <= 511);
        QVERIFY(voyage.toStern >= 0 && voyage.toStern <= 511);
        QVERIFY(voyage.toPort >= 0 && voyage.toPort <= 63);
        QVERIFY(voyage.toStarboard >= 0 && voyage.toStarboard <= 63);
        QVERIFY(voyage.draught >= 0 && voyage.draught <= 255);
        QVERIFY(voyage.month == 0 || QDate::isValid(2026, voyage.month, voyage.day));
        QCOMPARE(voyage.month == 0, voyage.day == 0);
        QVERIFY(!vessel.stations.isEmpty());
        if (voyage.imo == 0 || vessel.circle) {
            continue;
        }
        const QByteArray imo = QByteArray::number(voyage.imo);
        QCOMPARE(imo.size(), 7);
        int sum = 0;
        for (int i = 0; i < 6; ++i) {
            sum += (imo.at(i) - '0') * (7 - i);
        }
        QCOMPARE(sum % 10, imo.at(6) - '0');
    }
    QCOMPARE(mmsis.size(), vessels);
    QCOMPARE(names.size(), vessels);
    QVERIFY(classes.size() >= 6);
}

void TestSimAisWorld::fleetHasFlaws()
{
    AisWorld world(settingsOf());
    reportsOf(&world, 0, 5 * minute);
    int withoutPosition = 0;
    int inTheWest = 0;
    int withoutName = 0;
    int farAway = 0;
    for (const int port : world.ports()) {
        const auto stations = world.truth(port).stations;
        for (const AisStationTruth &station : stations) {
            withoutName += station.voyage ? 0 : 1;
            withoutPosition += hasPosition(*station.position) ? 0 : 1;
            inTheWest += station.position->longitude < 0 ? 1 : 0;
            const double distance = milesBetween(fixOf(*station.position), fleetMiddle);
            farAway += distance > 100 && distance < 300 ? 1 : 0;
        }
    }
    QVERIFY(withoutPosition >= 1);
    QVERIFY(inTheWest >= 1);
    QVERIFY(withoutName >= 1);
    QVERIFY(farAway >= 1);
}

void TestSimAisWorld::namesComeSoon()
{
    AisWorld world(settingsOf());
    reportsOf(&world, 0, 45 * second);
    for (const int port : world.ports()) {
        const auto stations = world.truth(port).stations;
        const auto named = std::count_if(stations.cbegin(), stations.cend(),
                                         [](const AisStationTruth &s) { return s.voyage; });
        QVERIFY(named * 10 >= qint64(stations.size()) * 8);
    }
}

void TestSimAisWorld::reportIntervals()
{
    AisWorld world(settingsOf());
    QHash<QPair<int, quint32>, qint64> last;
    QHash<int, QVector<qint64>> gaps; // by the usual interval, seconds
    const auto reports = reportsOf(&world, 0, 20 * minute, 100);
    for (const AisReport &report : reports) {
        if (report.kind != AisReportKind::Position || !hasPosition(report.position)) {
            continue;
        }
        const QPair<int, quint32> key(report.port, report.position.mmsi);
        const bool isAtRest = report.position.navStatus == 1 || report.position.navStatus == 5;
        const int speed = report.position.speed;
        const int usual = isAtRest ? 180 : speed > 235 ? 2 : speed > 145 && speed < 225 ? 6 : 10;
        if (last.contains(key) && (speed < 135 || speed > 145) && (speed < 225 || speed > 235)) {
            gaps[usual].append(report.time - last.value(key));
        }
        last.insert(key, report.time);
    }
    for (const int usual : {2, 6, 10, 180}) {
        QVector<qint64> &of = gaps[usual];
        QVERIFY2(of.size() > 5, qPrintable(QString::number(usual)));
        std::sort(of.begin(), of.end());
        const auto middle = static_cast<double>(of.at(of.size() / 2));
        QVERIFY(std::fabs(middle / 1000 - usual) < usual * 0.15);
        QVERIFY(of.constFirst() >= qint64(usual) * 850);
    }
}

void TestSimAisWorld::ownShipReports()
{
    AisWorld world(settingsOf());
    QHash<int, int> positions;
    QHash<int, int> voyages;
    const auto reports = reportsOf(&world, 0, 10 * minute - second);
    for (const AisReport &report : reports) {
        positions[report.port] += report.kind == AisReportKind::OwnPosition ? 1 : 0;
        voyages[report.port] += report.kind == AisReportKind::OwnVoyage ? 1 : 0;
    }
    QCOMPARE(positions.value(3), 300);
    QCOMPARE(positions.value(8), 60);
    QCOMPARE(positions.value(11), 0);
    QCOMPARE(voyages.value(3), 10);
    QCOMPARE(voyages.value(8), 10);
    QCOMPARE(voyages.value(11), 0);
    const AisStationTruth &own = world.truth(3).ownShip;
    QCOMPARE(own.position->mmsi, 211890150U);
    QCOMPARE(own.voyage->name, QByteArray("TIDEWELL"));
    QVERIFY(milesBetween(fixOf(*own.position), shipAt(600).fix) < 0.05);
}

void TestSimAisWorld::ownShipLosesItsPosition()
{
    AisWorld world(settingsOf());
    bool isLost = false;
    qint64 lostSince = -1;
    qint64 lostUntil = -1;
    qint64 longestPause = 0;
    qint64 lastOfFirst = 0;
    const auto reports = reportsOf(&world, 0, hour);
    for (const AisReport &report : reports) {
        if (report.kind != AisReportKind::OwnPosition) {
            continue;
        }
        if (report.port == 3) {
            longestPause = std::max(longestPause, report.time - lastOfFirst);
            lastOfFirst = report.time;
        }
        if (!hasPosition(report.position)) {
            QCOMPARE(report.position.longitude, AisPositionReport::noLongitude);
            QCOMPARE(report.position.speed, AisPositionReport::noSpeed);
            QVERIFY(report.position.heading < 360);
            lostSince = isLost ? lostSince : report.time;
            isLost = true;
        } else if (isLost) {
            isLost = false;
            lostUntil = report.time;
        }
    }
    QCOMPARE(lostSince / minute, 20);
    QCOMPARE(lostUntil / minute, 27);
    QVERIFY(longestPause >= 30 * second);
    QVERIFY(longestPause < 35 * second);
}

void TestSimAisWorld::routerPositions()
{
    AisWorldSettings settings = settingsOf();
    settings.shipSeconds = 500;
    AisWorld world(settings);
    QVERIFY(!world.routerPosition());
    qint64 last = 0;
    QVector<qint64> gaps;
    const auto reports = reportsOf(&world, 0, hour);
    for (const AisReport &report : reports) {
        if (report.kind != AisReportKind::RouterPosition) {
            continue;
        }
        if (report.time - last > 2 * second) {
            gaps.append(report.time - last);
        }
        last = report.time;
        const auto fields = fieldsOf(report.bodies.constFirst());
        const double latitude = fields.at(1).left(2).toInt() * 60 + fields.at(1).mid(2).toDouble();
        const double longitude = fields.at(3).left(3).toInt() * 60 + fields.at(3).mid(3).toDouble();
        QCOMPARE(std::lround(latitude * 10000), long(report.router.latitude));
        QCOMPARE(std::lround(longitude * 10000), long(report.router.longitude));
        QCOMPARE(fields.at(2), QByteArray("N"));
        QCOMPARE(fields.at(4), QByteArray("E"));
        const Fix fix{report.router.latitude / 600000.0, report.router.longitude / 600000.0, 0};
        const double time = 500 + static_cast<double>(report.time) / second;
        QVERIFY(milesBetween(fix, shipAt(time).fix) < 0.001);
    }
    QVERIFY(world.routerPosition());
    // Several short pauses, and the outage.
    std::sort(gaps.begin(), gaps.end());
    QVERIFY(gaps.size() > 8);
    QVERIFY(gaps.constFirst() >= 15 * second);
    QVERIFY(gaps.at(gaps.size() - 2) < 20 * second);
    QVERIFY(gaps.constLast() >= 420 * second);
}

void TestSimAisWorld::alarmsComeAndGo()
{
    AisWorld world(settingsOf());
    struct Course
    {
        AisAlarmState last;
        QByteArray states; // of each change: condition and acknowledgement
        qint64 lastTime = 0;
        int repeats = 0;
    };
    QMap<QPair<int, int>, Course> courses;
    const auto reports = reportsOf(&world, 0, hour);
    for (const AisReport &report : reports) {
        if (report.kind != AisReportKind::Alarm) {
            continue;
        }
        const auto fields = fieldsOf(report.bodies.constFirst());
        QCOMPARE(fields.at(3).toInt(), report.alarm.id);
        QCOMPARE(fields.at(4) == "A", report.alarm.isActive);
        QCOMPARE(fields.at(5) == "A", report.alarm.isAcknowledged);
        QCOMPARE(fields.at(6), report.alarm.text);
        const QTime stated = QTime(report.alarm.hour, report.alarm.minute, report.alarm.second);
        QCOMPARE(fields.at(2), stated.toString(QStringLiteral("hhmmss")).toLatin1() + ".00");

        Course &course = courses[{report.port, report.alarm.id}];
        if (course.lastTime != 0) {
            QVERIFY(report.time - course.lastTime <= 31 * second);
        }
        if (course.lastTime != 0 && course.last == report.alarm) {
            ++course.repeats;
        } else {
            const bool isOther =
                course.lastTime == 0 || course.last.isActive != report.alarm.isActive;
            const QTime now = start.addMSecs(report.time).time();
            // A change of the condition is told at once, and its time stays until the next.
            QCOMPARE(isOther, std::abs(stated.secsTo(now)) <= 1);
            course.states += report.alarm.isActive ? 'A' : 'V';
            course.states += report.alarm.isAcknowledged ? "A " : "V ";
        }
        course.last = report.alarm;
        course.lastTime = report.time;
    }
    QCOMPARE(courses.size(), 5);
    for (const Course &course : qAsConst(courses)) {
        QVERIFY(course.repeats > 10);
        QVERIFY2(course.states.startsWith("AV AA VA ") || course.states.startsWith("AV VV VA "),
                 course.states.constData());
    }
    QCOMPARE(world.truth(3).alarms.size(), 2);
    QCOMPARE(world.truth(8).alarms.size(), 3);
    QVERIFY(world.truth(3).alarms.contains(26));
    QVERIFY(world.truth(8).alarms.contains(26));
}

void TestSimAisWorld::rateCounts_data()
{
    QTest::addColumn<double>("rate");
    QTest::newRow("none") << 0.0;
    QTest::newRow("half") << 0.5;
    QTest::newRow("ten times") << 10.0;
    QTest::newRow("most") << 1000.0;
}

void TestSimAisWorld::rateCounts()
{
    QFETCH(double, rate);
    const auto count = [](double times, bool ofVessels) {
        AisWorld world(settingsOf(20, times));
        const auto reports = reportsOf(&world, 0, minute, 50);
        return std::count_if(reports.cbegin(), reports.cend(), [=](const AisReport &report) {
            return ofVessels == (isOfVessel(report) || report.kind == AisReportKind::Other);
        });
    };
    const auto usual = static_cast<double>(count(1, true));
    const auto now = static_cast<double>(count(rate, true));
    // The first reports come within the same share of the time.
    QVERIFY2(std::fabs(now - usual * rate) <= usual * rate * 0.5 + 5,
             qPrintable(QStringLiteral("%1 and %2").arg(usual).arg(now)));
    QVERIFY(std::abs(count(rate, false) - count(1, false)) <= 1);
}

void TestSimAisWorld::ownShipKeepsItsPaceOnAFullLine()
{
    AisWorld world(settingsOf(3000));
    constexpr int reportsPerSecond = 150;
    QVector<qint64> times;
    for (qint64 now = 0; now < minute; now += second) {
        for (int i = 0; i < reportsPerSecond; ++i) {
            const auto report = world.take(now);
            if (report && report->kind == AisReportKind::OwnPosition && report->port == 0) {
                times.append(now);
            }
        }
    }
    QCOMPARE(times.size(), 30);
}

// Of a line that is too slow each vessel gets as much as another one of its kind.
void TestSimAisWorld::fullLineIsFair()
{
    AisWorld world(settingsOf(300, 1000));
    constexpr int reportsPerSecond = 150;
    QHash<quint32, int> counts;
    for (qint64 now = second; now < 10 * minute; now += second) {
        for (int i = 0; i < reportsPerSecond; ++i) {
            const auto report = world.take(now);
            QVERIFY(report);
            const bool counts10s = report->kind == AisReportKind::Position
                && hasPosition(report->position) && report->position.navStatus == 0
                && report->position.speed > 20 && report->position.speed < 130;
            counts[report->position.mmsi] += counts10s ? 1 : 0;
        }
    }
    counts.remove(0);
    QVector<int> sorted = counts.values().toVector();
    sorted.erase(std::remove(sorted.begin(), sorted.end(), 0), sorted.end());
    std::sort(sorted.begin(), sorted.end());
    QVERIFY(sorted.size() > 50);
    // Some are heard at two ports, some are silent for a while.
    const int middle = sorted.at(sorted.size() / 2);
    QVERIFY(middle > 20);
    QVERIFY(sorted.at(sorted.size() / 6) * 5 >= middle * 4);
    QVERIFY(sorted.constLast() * 4 <= middle * 10);
}

void TestSimAisWorld::longGapIsNotMadeUpFor()
{
    AisWorld world(settingsOf());
    const int usual = reportsOf(&world, 0, 10 * minute).size() / 600;
    const int behindTheGap = reportsOf(&world, 2 * hour, 2 * hour).size();
    QVERIFY(behindTheGap < 8 * usual);
    QVERIFY(behindTheGap > 0);
    // Where they are by then is where they say to be.
    const auto next = reportsOf(&world, 2 * hour + second, 2 * hour + 30 * second);
    QVERIFY(std::any_of(next.cbegin(), next.cend(), [](const AisReport &report) {
        return report.kind == AisReportKind::Position;
    }));
}

void TestSimAisWorld::timeNeverGoesBack()
{
    AisWorld world(settingsOf());
    reportsOf(&world, 0, minute);
    const quint64 reports = world.reports();
    QVERIFY(!world.take(0));
    QVERIFY(!world.take(-hour));
    QCOMPARE(world.reports(), reports);
    const auto next = reportsOf(&world, minute + second, minute + 10 * second);
    QVERIFY(!next.isEmpty());
    for (const AisReport &report : next) {
        QVERIFY(report.time > minute);
    }
}

void TestSimAisWorld::portsOfNoRouter()
{
    AisWorldSettings settings = settingsOf();
    settings.ports = QVector<int>{-1, 5, 12, 5, 0, 1000};
    AisWorld world(settings);
    QCOMPARE(world.ports(), QVector<int>({5, 0}));
    reportsOf(&world, 0, minute);
    QVERIFY(!world.truth(5).stations.isEmpty());
    QVERIFY(!world.truth(0).stations.isEmpty());
}

void TestSimAisWorld::worldWithoutStations()
{
    AisWorldSettings settings = settingsOf();
    settings.ports = QVector<int>();
    AisWorld world(settings);
    const auto reports = reportsOf(&world, 0, minute);
    QVERIFY(!reports.isEmpty());
    for (const AisReport &report : reports) {
        QCOMPARE(report.kind, AisReportKind::RouterPosition);
        QCOMPARE(report.port, -1);
    }
}

void TestSimAisWorld::numberOfVessels_data()
{
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("there");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("negative") << -5 << 0;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("only neighbours") << 8 << 8;
    QTest::newRow("one more") << 9 << 9;
    QTest::newRow("most") << 20000 << 20000;
    QTest::newRow("too many") << 1000000 << 20000;
}

void TestSimAisWorld::numberOfVessels()
{
    QFETCH(int, asked);
    QFETCH(int, there);
    AisWorld world(settingsOf(asked));
    QCOMPARE(world.settings().vessels, there);
    QSet<quint32> heard;
    const auto reports = reportsOf(&world, 0, 11 * second);
    for (const AisReport &report : reports) {
        if (report.kind == AisReportKind::Position) {
            heard.insert(report.position.mmsi);
        }
    }
    QCOMPARE(heard.size(), there);
}

void TestSimAisWorld::silencePattern_data()
{
    QTest::addColumn<qint64>("length");
    QTest::addColumn<qint64>("period");
    QTest::addColumn<qint64>("time");
    QTest::addColumn<bool>("silent");
    QTest::newRow("never") << qint64(0) << qint64(100) << qint64(50) << false;
    QTest::newRow("before") << qint64(20) << qint64(100) << qint64(49) << false;
    QTest::newRow("begin") << qint64(20) << qint64(100) << qint64(50) << true;
    QTest::newRow("last moment") << qint64(20) << qint64(100) << qint64(69) << true;
    QTest::newRow("end") << qint64(20) << qint64(100) << qint64(70) << false;
    QTest::newRow("again") << qint64(20) << qint64(100) << qint64(150) << true;
    QTest::newRow("for ever") << qint64(20) << qint64(0) << qint64(100000) << true;
}

void TestSimAisWorld::silencePattern()
{
    QFETCH(qint64, length);
    QFETCH(qint64, period);
    QFETCH(qint64, time);
    QFETCH(bool, silent);
    QCOMPARE((SilencePattern{50, length, period}).covers(time), silent);
}

QTEST_GUILESS_MAIN(TestSimAisWorld)
#include "tst_simaisworld.moc"
