#include "simulator/line/sentence.h"
#include "simulator/router/aiscopy.h"

#include "aisbits.h"
#include "aisreports.h"

#include <QHash>
#include <QSet>
#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace aisreports;

/*! What vessels, own ship and alarms report, against their own sentences. */
class TestSimAisReports : public QObject
{
    Q_OBJECT

private slots:
    void ports_data();
    void ports();
    void sentencesSayTheTruth();
    void sentencesAreWellFormed();
    void messagesBelongTogether();
    void truthIsTheLastReport();
    void typesAreMixed();
    void ownShipReports();
    void ownShipLosesItsPosition();
    void routerPositions();
    void alarmsComeAndGo();
};

void TestSimAisReports::ports_data()
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

void TestSimAisReports::ports()
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

// What is read from the bits is what the report says beside them.
void TestSimAisReports::sentencesSayTheTruth()
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

void TestSimAisReports::sentencesAreWellFormed()
{
    AisWorld world(settingsOf());
    const QRegularExpression message(
        QStringLiteral("^!AIVD[MO],1,1,,[AB],[0-W`-w]+,[0-5]$|"
                       "^!AIVD[MO],2,[12],[0-9],[AB],[0-W`-w]+,[0-5]$"));
    const QRegularExpression alarm(
        QStringLiteral("^\\$AIALR,\\d{6}\\.00,\\d{3},[AV],[AV],AIS: [ -)+-~]+$"));
    const QRegularExpression position(
        QStringLiteral("^\\d{4}\\.\\d{4},[NS],\\d{5}\\.\\d{4},[EW]$"));
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
            const auto wrapped = wrapAisLine(withChecksum(body), report.port);
            QVERIFY(wrapped);
            const int portField = report.kind == AisReportKind::Alarm ? 1 : 4;
            QCOMPARE(fieldsOf(*wrapped).at(portField).toInt(nullptr, 16), report.port);
        }
    }
}

// The parts of a message share a number, which the next long message of the port doesn't have.
void TestSimAisReports::messagesBelongTogether()
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

void TestSimAisReports::truthIsTheLastReport()
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

void TestSimAisReports::typesAreMixed()
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

void TestSimAisReports::ownShipReports()
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

void TestSimAisReports::ownShipLosesItsPosition()
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

void TestSimAisReports::routerPositions()
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
        const auto fields = fieldsOf(wrapReport(report).constFirst());
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

void TestSimAisReports::alarmsComeAndGo()
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
        const auto fields = fieldsOf(wrapReport(report).constFirst());
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
            const QTime now = worldStart.addMSecs(report.time).time();
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

QTEST_GUILESS_MAIN(TestSimAisReports)
#include "tst_simaisreports.moc"
