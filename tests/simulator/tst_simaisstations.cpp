#include "simulator/instruments/aisencoder.h"
#include "simulator/instruments/neighbours.h"
#include "simulator/router/trafficgenerator.h"

#include "aisbits.h"

#include <QSet>
#include <QtTest>

#include <cmath>

using namespace tk7sim;

namespace {

const QDateTime start(QDate(2024, 2, 29), QTime(23, 59, 50), Qt::UTC);
constexpr qint64 minute = 60000;

QByteArrayList fields(const QByteArray &line)
{
    return line.left(line.indexOf('*')).split(',');
}

} // namespace

/*! What the AIS stations bring to their inputs, bit by bit, and when. */
class TestSimAisStations : public QObject
{
    Q_OBJECT

private slots:
    void aisPositionReports();
    void aisVoyageDataFitsTogether();
    void aisLayout();
    void stationsSayNoMoreThanALineCarries();
    void stationsSayTheSameInAnySpans();
    void stationsWaitForAListener();
    void stationsAreSilentWithoutARate();
};

void TestSimAisStations::aisPositionReports()
{
    QSet<quint32> ships;
    for (const TrafficLine &line : TrafficGenerator(start).inputTraffic(3, 0, minute)) {
        const auto f = fields(line.text);
        const AisBits bits(f.at(5));
        if (f.at(1) != "1" || bits.number(0, 6) != 1) {
            continue;
        }
        QCOMPARE(bits.size(), 168);
        QCOMPARE(f.at(6), QByteArray("0"));
        ships.insert(bits.number(8, 30));
        QVERIFY(std::fabs(bits.number(61, 28) / 600000.0 - 7.4) < 1);
        QVERIFY(std::fabs(bits.number(89, 27) / 600000.0 - 54.35) < 0.7);
        QVERIFY(bits.number(116, 12) < 3600);
        QVERIFY(bits.number(128, 9) < 360 || bits.number(128, 9) == 511);
        QVERIFY(bits.number(137, 6) < 60);
    }
    QVERIFY(ships.size() >= 8);
}

void TestSimAisStations::aisVoyageDataFitsTogether()
{
    QHash<QByteArray, QByteArray> firstParts;
    QSet<QByteArray> names;
    for (const TrafficLine &line : TrafficGenerator(start).inputTraffic(3, 0, minute)) {
        const auto f = fields(line.text);
        if (f.at(1) != "2") {
            continue;
        }
        if (f.at(2) == "1") {
            firstParts.insert(f.at(3) + f.at(4), f.at(5));
            continue;
        }
        const AisBits bits(firstParts.take(f.at(3) + f.at(4)) + f.at(5));
        QCOMPARE(bits.size() - f.at(6).toInt(), 424);
        QCOMPARE(bits.number(0, 6), 5U);
        names.insert(bits.text(112, 20));
    }
    QVERIFY(names.contains("NORDERNEY TRADER@@@@"));
    QVERIFY(names.size() >= 8);
}

// Bit by bit, on a vessel that turns on the spot.
void TestSimAisStations::aisLayout()
{
    const AisVessel vessel{
        123456789, 9876543, "ABC12", "SHIP 1", "HOME", 70, {10.5, -20.25, 1e-9, 3.0, 0}};
    const QByteArray body =
        aisBodies("!AIVDM", 0, "B", encoded(positionReportOf(vessel, 0, 42))).constFirst();
    QVERIFY(body.startsWith("!AIVDM,1,1,,B,"));
    const AisBits report(body.split(',').at(5));
    QCOMPARE(report.number(8, 30), 123456789U);
    QCOMPARE(report.number(50, 10), 30U);
    QCOMPARE(report.number(61, 28), (1U << 28) - 12150000U); // west is negative
    QCOMPARE(report.number(89, 27), 6300000U);
    QCOMPARE(report.number(116, 12), 900U);
    QCOMPARE(report.number(128, 9), 90U);
    QCOMPARE(report.number(137, 6), 42U);

    const auto parts = aisBodies("!AIVDM", 3, "A", encoded(voyageDataOf(vessel)));
    QVERIFY(parts.at(0).startsWith("!AIVDM,2,1,3,A,"));
    QVERIFY(parts.at(1).startsWith("!AIVDM,2,2,3,A,"));
    QVERIFY(parts.at(0).endsWith(",0"));
    QVERIFY(parts.at(1).endsWith(",2"));
    const AisBits voyage(parts.at(0).split(',').at(5) + parts.at(1).split(',').at(5));
    QCOMPARE(voyage.number(8, 30), 123456789U);
    QCOMPARE(voyage.number(40, 30), 9876543U);
    QCOMPARE(voyage.text(70, 7), QByteArray("ABC12@@"));
    QCOMPARE(voyage.text(112, 20), QByteArray("SHIP 1@@@@@@@@@@@@@@"));
    QCOMPARE(voyage.number(232, 8), 70U);
    QCOMPARE(voyage.text(302, 20), QByteArray("HOME@@@@@@@@@@@@@@@@"));
}

// All together, so that their copies for an AIS test do.
void TestSimAisStations::stationsSayNoMoreThanALineCarries()
{
    constexpr double carried = 11520; // bytes a second
    TrafficGenerator generator(start);
    generator.inputs().setVessels(3000);
    generator.setRate(1000);
    double bytes = 0;
    for (int port = 0; port < portCount; ++port) {
        for (const TrafficLine &line : generator.inputTraffic(port, 0, 10000)) {
            bytes += line.report ? double(line.text.size()) + 2 : 0;
        }
    }
    QVERIFY2(bytes / 10 > 0.98 * carried && bytes / 10 < 1.02 * carried,
             qPrintable(QString::number(bytes / 10)));
}

void TestSimAisStations::stationsSayTheSameInAnySpans()
{
    TrafficGenerator whole(start);
    TrafficGenerator cut(start);
    for (const int port : {3, 8}) {
        const auto expected = whole.inputTraffic(port, 0, minute);
        QVector<TrafficLine> joined;
        // The second time round, within what is remembered.
        const qint64 begin = port == 3 ? 0 : minute - AisStations::memory;
        for (qint64 from = begin; from < minute;) {
            const qint64 to = qMin(from + 1 + (from * 7) % 130, minute);
            joined += cut.inputTraffic(port, from, to);
            from = to;
        }
        int first = 0;
        while (expected.at(first).time <= begin) {
            ++first;
        }
        QCOMPARE(joined.size(), expected.size() - first);
        QVERIFY(joined.size() > 10);
        for (int i = 0; i < joined.size(); ++i) {
            QCOMPARE(joined.at(i).text, expected.at(first + i).text);
            QCOMPARE(joined.at(i).time, expected.at(first + i).time);
        }
    }
}

// Nobody has to wait for the names: they come soon after the world begins, and that is when
// somebody listens for the first time.
void TestSimAisStations::stationsWaitForAListener()
{
    constexpr qint64 hour = 60 * minute;
    TrafficGenerator generator(start);
    QVERIFY(!generator.inputs().world());
    int names = 0;
    for (const TrafficLine &line : generator.inputTraffic(3, hour, hour + minute)) {
        names +=
            line.report && line.report->kind == AisReportKind::Voyage && line.part == 0 ? 1 : 0;
    }
    QVERIFY(names > 10);
    QVERIFY(generator.inputs().world());
    QCOMPARE(generator.inputs().world()->settings().start, start.addMSecs(hour));
}

void TestSimAisStations::stationsAreSilentWithoutARate()
{
    TrafficGenerator generator(start);
    generator.setRate(0);
    QVERIFY(generator.inputTraffic(3, 0, minute).isEmpty());
    QVERIFY(generator.inputs().ownPositions(0, minute).isEmpty());
    generator.setRate(1);
    QVERIFY(!generator.inputTraffic(3, minute, 2 * minute).isEmpty());
    QVERIFY(!generator.inputs().ownPositions(minute, 2 * minute).isEmpty());
}

QTEST_GUILESS_MAIN(TestSimAisStations)
#include "tst_simaisstations.moc"
