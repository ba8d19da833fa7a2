#include "ais/qgpskrd.h"

#include <QByteArrayList>
#include <QFile>
#include <QtTest>

#include <cmath>
#include <initializer_list>
#include <limits>

namespace {

QGpsKrd &at(QGpsKrd &position, double latitude, double longitude)
{
    position.m_lat = latitude;
    position.m_lon = longitude;
    return position;
}

bool isNear(double value, double expected, double tolerance)
{
    return std::fabs(value - expected) <= tolerance;
}

/*! A test row for each line of a reference file, whose first line names its \a columns. */
void addReferenceRows(const char *name, std::initializer_list<const char *> columns)
{
    QFile file(QStringLiteral(TK7_TEST_DATA "/%1").arg(name));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    QByteArrayList names;
    for (const char *column : columns) {
        QTest::addColumn<double>(column);
        names.append(column);
    }
    QCOMPARE(file.readLine().trimmed(), names.join(','));
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        QTestData &row = QTest::newRow(line.constData());
        for (const QByteArray &value : line.split(','))
            row << value.toDouble();
    }
}

QGpsKrd::Parts parts(int latDegrees, int latMinutes, int latThousandths, char latHemisphere,
                     int lonDegrees, int lonMinutes, int lonThousandths, char lonHemisphere)
{
    return {{latDegrees, latMinutes, latThousandths, latHemisphere},
            {lonDegrees, lonMinutes, lonThousandths, lonHemisphere}};
}

} // namespace

Q_DECLARE_METATYPE(QGpsKrd::Parts)
Q_DECLARE_METATYPE(QGpsKrd::Combination)

class tst_QGpsKrd : public QObject
{
    Q_OBJECT

private slots:
    void startsAtZero();
    void validity_data();
    void validity();
    void parse_data();
    void parse();
    void failedParseChangesNothing_data();
    void failedParseChangesNothing();
    void text_data();
    void text();
    void setFromParts_data();
    void setFromParts();
    void partsComeBack();
    void rounding_data();
    void rounding();
    void simpleOperations();
    void difference();
    void combination_data();
    void combination();
    void packed_data();
    void packed();
    void packedOutOfRange();
    void greatCircle_data();
    void greatCircle();
    void greatCircleIsTheSameBothWays();
    void oddityArcCosineIsNotLimited();
    void rhumbLine_data();
    void rhumbLine();
    void rhumbLineEdge_data();
    void rhumbLineEdge();
    void rhumbLineToTheSamePlace();
    void deadReckoning_data();
    void deadReckoning();
    void hugeCoordinatesAreHarmless();
};

void tst_QGpsKrd::startsAtZero()
{
    const QGpsKrd position;
    QCOMPARE(position.m_lat, 0.0);
    QCOMPARE(position.m_lon, 0.0);
    QVERIFY(position.isValid());
}

void tst_QGpsKrd::validity_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<bool>("valid");
    QTest::newRow("north pole, 180 degrees east") << 5400.0 << 10800.0 << true;
    QTest::newRow("south pole, 180 degrees west") << -5400.0 << -10800.0 << true;
    QTest::newRow("beyond the north pole") << 5400.0001 << 0.0 << false;
    QTest::newRow("beyond the south pole") << -5400.0001 << 0.0 << false;
    QTest::newRow("beyond 180 degrees east") << 0.0 << 10800.0001 << false;
    QTest::newRow("beyond 180 degrees west") << 0.0 << -10800.0001 << false;
    QTest::newRow("the largest unsigned latitude") << 13421.7727 << 0.0 << false;
}

void tst_QGpsKrd::validity()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QGpsKrd position;
    QTEST(at(position, latitude, longitude).isValid(), "valid");
}

void tst_QGpsKrd::parse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::newRow("north east") << "5545.123,N,13736.456,E" << 3345.123 << 8256.456;
    QTest::newRow("south") << "5545.123,S,13736.456,E" << -3345.123 << 8256.456;
    QTest::newRow("west") << "5545.123,N,13736.456,W" << 3345.123 << -8256.456;
    QTest::newRow("the bounds") << "9000.000,S,18000.000,W" << -5400.0 << -10800.0;
    QTest::newRow("0, 0") << "0000.000,N,00000.000,E" << 0.0 << 0.0;
    QTest::newRow("no decimals behind the point") << "5545.,N,13736.,E" << 3345.0 << 8256.0;
    QTest::newRow("many decimals")
        << "5545.1234567,N,13736.4567891,E" << 3345.1234567 << 8256.4567891;
    QTest::newRow("minutes of 60 and more are taken")
        << "5599.999,N,13799.999,E" << 3399.999 << 8319.999;
    QTest::newRow("90 degrees and 30 minutes") << "9030.000,N,00000.000,E" << 5430.0 << 0.0;
    QTest::newRow("text behind the last hemisphere")
        << "5545.123,N,13736.456,E,123519,A" << 3345.123 << 8256.456;
    QTest::newRow("any separator behind the first hemisphere")
        << "5545.123,N;13736.456,E" << 3345.123 << 8256.456;
    QTest::newRow("degrees have no lower bound") << "-545.123,N,00000.000,E" << -254.877 << 0.0;
}

void tst_QGpsKrd::parse()
{
    QFETCH(QString, text);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QGpsKrd position;
    QVERIFY(position.parseFields(text));
    QVERIFY(isNear(position.m_lat, latitude, 1e-9));
    QVERIFY(isNear(position.m_lon, longitude, 1e-9));
}

void tst_QGpsKrd::failedParseChangesNothing_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("no text") << "";
    QTest::newRow("latitude point at index 3") << "555.123,N,13736.456,E";
    QTest::newRow("latitude point at index 5") << "05545.123,N,13736.456,E";
    QTest::newRow("no point at all") << "5545123,N,13736456,E";
    QTest::newRow("91 degrees") << "9100.000,N,13736.456,E";
    QTest::newRow("latitude degrees are no number") << "5x45.123,N,13736.456,E";
    QTest::newRow("latitude minutes are no number") << "55x5.123,N,13736.456,E";
    QTest::newRow("a second point in the minutes") << "5545.1.3,N,13736.456,E";
    QTest::newRow("no comma") << "5545.123";
    QTest::newRow("nothing behind the comma") << "5545.123,";
    QTest::newRow("comma before the minutes") << "5,45.123,N,13736.456,E";
    QTest::newRow("comma within the minutes") << "555,.123,N,13736.456,E";
    QTest::newRow("comma at the very start") << ",545.123,N,13736.456,E";
    QTest::newRow("another letter than N and S") << "5545.123,E,13736.456,E";
    QTest::newRow("hemisphere in lower case") << "5545.123,n,13736.456,E";
    QTest::newRow("no hemisphere") << "5545.123,,13736.456,E";
    QTest::newRow("no longitude") << "5545.123,N";
    QTest::newRow("empty longitude") << "5545.123,N,,E";
    QTest::newRow("longitude point at index 4") << "5545.123,N,1373.456,E";
    QTest::newRow("181 degrees") << "5545.123,N,18100.000,E";
    QTest::newRow("longitude degrees are no number") << "5545.123,N,1x736.456,E";
    QTest::newRow("longitude minutes are no number") << "5545.123,N,137x6.456,E";
    QTest::newRow("no comma behind the longitude") << "5545.123,N,13736.456";
    QTest::newRow("no hemisphere behind the longitude") << "5545.123,N,13736.456,";
    QTest::newRow("another letter than E and W") << "5545.123,N,13736.456,N";
    QTest::newRow("comma at the start of the longitude") << "5545.123,N,,3736.456,E";
}

void tst_QGpsKrd::failedParseChangesNothing()
{
    QFETCH(QString, text);
    QGpsKrd position;
    at(position, 12.5, -34.5);
    QVERIFY(!position.parseFields(text));
    QCOMPARE(position.m_lat, 12.5);
    QCOMPARE(position.m_lon, -34.5);
}

void tst_QGpsKrd::text_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QString>("latitudeText");
    QTest::addColumn<QString>("longitudeText");
    QTest::newRow("north east") << 3345.123 << 2256.123 << "N  55.45.123"
                                << "E037.36.123";
    QTest::newRow("south west") << -3345.123 << -2256.123 << "S  55.45.123"
                                << "W037.36.123";
    QTest::newRow("0, 0") << 0.0 << 0.0 << "N  00.00.000"
                          << "E000.00.000";
    QTest::newRow("small parts") << 61.001 << -61.001 << "N  01.01.001"
                                 << "W001.01.001";
    QTest::newRow("bounds") << -5400.0 << 10800.0 << "S  90.00.000"
                            << "E180.00.000";
    QTest::newRow("cut, not rounded") << 0.9994 << 0.9998 << "N  00.00.999"
                                      << "E000.00.999";
    QTest::newRow("a fraction so near 1 that it gives 1000")
        << 5.99999999 << 5.99999999 << "N  00.05.1000"
        << "E000.05.1000";
    QTest::newRow("less than a thousandth south") << -0.0004 << -0.0004 << "S  00.00.000"
                                                  << "W000.00.000";
}

void tst_QGpsKrd::text()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(QString, latitudeText);
    QFETCH(QString, longitudeText);
    QGpsKrd position;
    at(position, latitude, longitude);
    QCOMPARE(position.latitudeText(), latitudeText);
    QCOMPARE(position.longitudeText(), longitudeText);
    QCOMPARE(position.positionText(), QString(latitudeText + "  " + longitudeText));
}

void tst_QGpsKrd::setFromParts_data()
{
    QTest::addColumn<QGpsKrd::Parts>("given");
    QTest::addColumn<bool>("taken");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    const double unchanged = 7.0;
    const auto refused = [&](const char *name, const QGpsKrd::Parts &given) {
        QTest::newRow(name) << given << false << unchanged << unchanged;
    };
    QTest::newRow("north east") << parts(55, 45, 123, 'N', 37, 36, 456, 'E') << true << 3345.123
                                << 2256.456;
    QTest::newRow("south west") << parts(55, 45, 123, 'S', 37, 36, 456, 'W') << true << -3345.123
                                << -2256.456;
    QTest::newRow("all at their greatest")
        << parts(90, 59, 999, 'N', 180, 59, 999, 'E') << true << 5459.999 << 10859.999;
    QTest::newRow("degrees and minutes have no lower bound")
        << parts(-1, -1, 0, 'N', -1, -1, 0, 'E') << true << -61.0 << -61.0;
    refused("latitude of 91 degrees", parts(91, 0, 0, 'N', 0, 0, 0, 'E'));
    refused("latitude of 60 minutes", parts(0, 60, 0, 'N', 0, 0, 0, 'E'));
    refused("latitude of 1000 thousandths", parts(0, 0, 1000, 'N', 0, 0, 0, 'E'));
    refused("latitude of -1 thousandths", parts(0, 0, -1, 'N', 0, 0, 0, 'E'));
    refused("latitude east", parts(0, 0, 0, 'E', 0, 0, 0, 'E'));
    refused("latitude in lower case", parts(0, 0, 0, 'n', 0, 0, 0, 'E'));
    refused("longitude of 181 degrees", parts(0, 0, 0, 'N', 181, 0, 0, 'E'));
    refused("longitude of 60 minutes", parts(0, 0, 0, 'N', 0, 60, 0, 'E'));
    refused("longitude of 1000 thousandths", parts(0, 0, 0, 'N', 0, 0, 1000, 'E'));
    refused("longitude of -1 thousandths", parts(0, 0, 0, 'N', 0, 0, -1, 'E'));
    refused("longitude north", parts(0, 0, 0, 'N', 0, 0, 0, 'N'));
}

void tst_QGpsKrd::setFromParts()
{
    QFETCH(QGpsKrd::Parts, given);
    QFETCH(bool, taken);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QGpsKrd position;
    at(position, 7.0, 7.0);
    QCOMPARE(position.setFromParts(given), taken);
    QVERIFY(isNear(position.m_lat, latitude, 1e-9));
    QVERIFY(isNear(position.m_lon, longitude, 1e-9));
}

void tst_QGpsKrd::partsComeBack()
{
    QGpsKrd position;
    for (const char hemisphere : {'N', 'S'}) {
        for (int thousandths = 0; thousandths < 1000; ++thousandths) {
            const QGpsKrd::Coordinate latitude{89, 59, thousandths, hemisphere};
            QVERIFY(position.setFromParts({latitude, {179, 59, thousandths, 'W'}}));
            const QGpsKrd::Parts back = position.toParts();
            QCOMPARE(back.latitude.degrees, 89);
            QCOMPARE(back.latitude.minutes, 59);
            QCOMPARE(back.latitude.thousandths, thousandths);
            QCOMPARE(back.latitude.hemisphere, hemisphere);
            QCOMPARE(back.longitude.degrees, 179);
            QCOMPARE(back.longitude.minutes, 59);
            QCOMPARE(back.longitude.thousandths, thousandths);
            QCOMPARE(back.longitude.hemisphere, 'W');
        }
    }
}

void tst_QGpsKrd::rounding_data()
{
    QTest::addColumn<double>("before");
    QTest::addColumn<double>("after");
    QTest::newRow("is cut") << 3345.12399 << 3345.123;
    QTest::newRow("is cut towards zero") << -3345.12399 << -3345.123;
    QTest::newRow("stays") << 3345.123 << 3345.123;
    QTest::newRow("a fraction that gives 1000 thousandths stays whole") << 5.99999999 << 5.99999999;
    QTest::newRow("beyond 91 degrees stays") << 5460.12399 << 5460.12399;
}

void tst_QGpsKrd::rounding()
{
    QFETCH(double, before);
    QFETCH(double, after);
    QGpsKrd position;
    at(position, before, 0.0).roundToThousandths();
    QVERIFY(isNear(position.m_lat, after, 1e-9));
}

void tst_QGpsKrd::simpleOperations()
{
    QGpsKrd position;
    position.setInvalid();
    QCOMPARE(position.m_lat, 5400.01);
    QCOMPARE(position.m_lon, 10800.0);
    QVERIFY(!position.isValid());
    QGpsKrd copy;
    copy.assign(position);
    QCOMPARE(copy.m_lat, 5400.01);
    QCOMPARE(copy.m_lon, 10800.0);
    position.clear();
    QCOMPARE(position.m_lat, 0.0);
    QCOMPARE(position.m_lon, 0.0);
}

void tst_QGpsKrd::difference()
{
    QGpsKrd a;
    QGpsKrd b;
    QVERIFY(!(a != b));
    at(b, 0.001, 0.0);
    QVERIFY(a != b);
    at(b, 0.0, 0.001);
    QVERIFY(a != b);
}

void tst_QGpsKrd::combination_data()
{
    QTest::addColumn<QGpsKrd::Combination>("combination");
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<double>("longitude");
    using Combination = QGpsKrd::Combination;
    const auto row = [](const char *name, Combination combination, double a, double b, double c) {
        QTest::newRow(name) << combination << a << b << c;
    };
    row("sum", Combination::Sum, 100, 50, 150);
    row("sum of 10800 stays", Combination::Sum, 10000, 800, 10800);
    row("sum above 10800 is folded", Combination::Sum, 10000, 801, -10799);
    row("sum of -10800 stays", Combination::Sum, -10000, -800, -10800);
    row("sum below -10800 is folded", Combination::Sum, -10000, -801, 10799);
    row("difference", Combination::Difference, 100, 50, 50);
    row("difference of -10800 stays", Combination::Difference, -10000, 800, -10800);
    row("difference below -10800 is folded", Combination::Difference, -10790, 10790, 20);
    row("oddity: difference above 10800 stays", Combination::Difference, 10790, -10790, 21580);
    row("shortest", Combination::ShortestDifference, 100, -50, 150);
    row("shortest, both west", Combination::ShortestDifference, -100, -50, -50);
    row("shortest, half round stays", Combination::ShortestDifference, 5400, -5400, 10800);
    row("shortest, eastern minus western", Combination::ShortestDifference, 10790, -10790, -20);
    row("shortest, western minus eastern", Combination::ShortestDifference, -10790, 10790, 20);
    row("shortest, from 0 is never folded", Combination::ShortestDifference, 0, -10801, 10801);
    row("shortest, to 0 is never folded", Combination::ShortestDifference, -10801, 0, -10801);
    row("shortest, both east is never folded", Combination::ShortestDifference, 1, 10900, -10899);
}

void tst_QGpsKrd::combination()
{
    QFETCH(QGpsKrd::Combination, combination);
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(double, longitude);
    QGpsKrd first;
    QGpsKrd second;
    // The latitude is never folded.
    at(first, 5000.0, a);
    at(second, combination == QGpsKrd::Combination::Sum ? 1000.0 : -1000.0, b);
    const QGpsKrd result(first, second, combination);
    QCOMPARE(result.m_lat, 6000.0);
    QCOMPARE(result.m_lon, longitude);
    if (combination != QGpsKrd::Combination::Sum)
        return;
    first += second;
    QCOMPARE(first.m_lat, 6000.0);
    QCOMPARE(first.m_lon, longitude);
}

void tst_QGpsKrd::packed_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<double>("latitudeBack");
    QTest::addColumn<double>("longitudeBack");
    QTest::newRow("north east") << 3345.123 << 2256.200 << QByteArray::fromHex("372d7b2524c8")
                                << 3345.123 << 2256.200;
    QTest::newRow("south") << -3345.123 << 2256.200 << QByteArray::fromHex("37ad7b2524c8")
                           << -3345.123 << 2256.200;
    QTest::newRow("west") << 3345.123 << -2256.200 << QByteArray::fromHex("372d7b25a4c8")
                          << 3345.123 << -2256.200;
    QTest::newRow("180 degrees") << -5400.0 << 10800.0 << QByteArray::fromHex("5a8000b40000")
                                 << -5400.0 << 10800.0;
    QTest::newRow("oddity: thousandths keep their low byte")
        << 0.999 << 0.256 << QByteArray::fromHex("0000e7000000") << 0.231 << 0.0;
}

void tst_QGpsKrd::packed()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(QByteArray, bytes);
    QFETCH(double, latitudeBack);
    QFETCH(double, longitudeBack);
    QGpsKrd position;
    const QGpsKrd::Packed packed = at(position, latitude, longitude).toPacked();
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(packed.data()), int(packed.size())), bytes);
    QVERIFY(position.fromPacked(packed));
    QVERIFY(isNear(position.m_lat, latitudeBack, 1e-9));
    QVERIFY(isNear(position.m_lon, longitudeBack, 1e-9));
}

void tst_QGpsKrd::packedOutOfRange()
{
    QGpsKrd position;
    at(position, 7.0, 8.0);
    QVERIFY(!position.fromPacked({91, 0, 0, 0, 0, 0}));
    QVERIFY(!position.fromPacked({0, 60, 0, 0, 0, 0}));
    QVERIFY(!position.fromPacked({0, 0, 0, 181, 0, 0}));
    QVERIFY(!position.fromPacked({0, 0, 0, 0, 0x80 | 60, 0}));
    QCOMPARE(position.m_lat, 7.0);
    QCOMPARE(position.m_lon, 8.0);
}

void tst_QGpsKrd::greatCircle_data()
{
    addReferenceRows("greatcircle.csv", {"lat1", "lon1", "lat2", "lon2", "distance"});
}

void tst_QGpsKrd::greatCircle()
{
    // Two millimetres; the arc cosine of a number near 1 or -1 can't do better.
    constexpr double tolerance = 1e-6;
    constexpr double toleranceAtAntipodes = 1e-3;
    QFETCH(double, lat1);
    QFETCH(double, lon1);
    QFETCH(double, lat2);
    QFETCH(double, lon2);
    QFETCH(double, distance);
    QGpsKrd from;
    QGpsKrd to;
    const double found = at(from, lat1, lon1).distanceTo(at(to, lat2, lon2));
    const bool antipodes = distance > QGpsKrd::MaxLongitude - 0.01;
    const double error = found - distance;
    QVERIFY2(isNear(found, distance, antipodes ? toleranceAtAntipodes : tolerance),
             qPrintable(QString::number(error)));
}

void tst_QGpsKrd::greatCircleIsTheSameBothWays()
{
    QGpsKrd a;
    QGpsKrd b;
    at(a, 3345.123, 10790.5);
    at(b, -1234.567, -10790.5);
    QVERIFY(isNear(a.distanceTo(b), b.distanceTo(a), 1e-9));
}

void tst_QGpsKrd::oddityArcCosineIsNotLimited()
{
    // Where rounding takes the cosine above 1.0, the distance to the same place is no number.
    int notANumber = 0;
    int zero = 0;
    QGpsKrd from;
    QGpsKrd to;
    for (int latitude = 0; latitude < 5400; ++latitude) {
        const double distance = at(from, latitude, 100.0).distanceTo(at(to, latitude, 100.0));
        notANumber += std::isnan(distance);
        zero += distance == 0.0;
    }
    QVERIFY(notANumber > 0);
    QVERIFY(zero > 0);
}

void tst_QGpsKrd::rhumbLine_data()
{
    addReferenceRows("rhumb.csv", {"lat1", "lon1", "lat2", "lon2", "distance", "course"});
}

void tst_QGpsKrd::rhumbLine()
{
    constexpr double tolerance = 1e-8;
    QFETCH(double, lat1);
    QFETCH(double, lon1);
    QFETCH(double, lat2);
    QFETCH(double, lon2);
    QFETCH(double, distance);
    QFETCH(double, course);
    QGpsKrd from;
    QGpsKrd to;
    double found = -1;
    const double foundCourse = at(from, lat1, lon1).courseAndDistanceTo(at(to, lat2, lon2), &found);
    QVERIFY(isNear(found, distance, tolerance));
    QVERIFY2(isNear(foundCourse, course, tolerance), qPrintable(QString::number(foundCourse)));
}

void tst_QGpsKrd::rhumbLineEdge_data()
{
    QTest::addColumn<double>("lat1");
    QTest::addColumn<double>("lon1");
    QTest::addColumn<double>("lat2");
    QTest::addColumn<double>("lon2");
    QTest::addColumn<double>("distance");
    QTest::addColumn<double>("course");
    QTest::newRow("east across the 180th meridian")
        << 0.0 << 10790.0 << 0.0 << -10790.0 << 20.0 << 90.0;
    QTest::newRow("west across the 180th meridian")
        << 0.0 << -10790.0 << 0.0 << 10790.0 << 20.0 << 270.0;
    QTest::newRow("due south") << 60.0 << 0.0 << 0.0 << 0.0 << 60.0 << 180.0;
    QTest::newRow("due north") << 0.0 << 0.0 << 60.0 << 0.0 << 60.0 << 0.0;
    QTest::newRow("due east") << 0.0 << 0.0 << 0.0 << 60.0 << 60.0 << 90.0;
    QTest::newRow("due west") << 0.0 << 0.0 << 0.0 << -60.0 << 60.0 << 270.0;
    QTest::newRow("due east in 60 degrees north")
        << 3600.0 << 0.0 << 3600.0 << 60.0 << 30.0 << 90.0;
    QTest::newRow("east across the 180th meridian, from just east of 0")
        << 0.0 << 0.5 << 0.0 << -10799.75 << 10799.75 << 90.0;
    QTest::newRow("west across the 180th meridian, from just west of 0")
        << 0.0 << -0.5 << 0.0 << 10799.75 << 10799.75 << 270.0;
    QTest::newRow("east across the 180th meridian, to just west of 0")
        << 0.0 << 10799.75 << 0.0 << -0.5 << 10799.75 << 90.0;
    QTest::newRow("west across the 180th meridian, to just east of 0")
        << 0.0 << -10799.75 << 0.0 << 0.5 << 10799.75 << 270.0;
    QTest::newRow("half round is not turned") << 0.0 << -5400.0 << 0.0 << 5400.0 << 10800.0 << 90.0;
}

void tst_QGpsKrd::rhumbLineEdge()
{
    rhumbLine();
}

void tst_QGpsKrd::rhumbLineToTheSamePlace()
{
    QGpsKrd from;
    QGpsKrd to;
    double distance = -1;
    const double course =
        at(from, 3345.0, 100.0).courseAndDistanceTo(at(to, 3345.0, 100.0), &distance);
    QCOMPARE(distance, 0.0);
    QVERIFY(std::isnan(course));
}

void tst_QGpsKrd::deadReckoning_data()
{
    addReferenceRows("deadreckoning.csv", {"lat", "lon", "distance", "course", "endlat", "endlon"});
}

void tst_QGpsKrd::deadReckoning()
{
    constexpr double tolerance = 1e-8;
    QFETCH(double, lat);
    QFETCH(double, lon);
    QFETCH(double, distance);
    QFETCH(double, course);
    QFETCH(double, endlat);
    QFETCH(double, endlon);
    QGpsKrd start;
    const QGpsKrd end(at(start, lat, lon), distance, course);
    QVERIFY2(isNear(end.m_lat, endlat, tolerance), qPrintable(QString::number(end.m_lat)));
    QVERIFY2(isNear(end.m_lon, endlon, tolerance), qPrintable(QString::number(end.m_lon)));
}

void tst_QGpsKrd::hugeCoordinatesAreHarmless()
{
    QGpsKrd position;
    QVERIFY(position.parseFields("5511.0e300,N,13711.0e300,W"));
    QVERIFY(!position.isValid());
    QCOMPARE(position.toParts().latitude.thousandths, 0);
    QCOMPARE(position.toParts().longitude.hemisphere, 'W');
    QCOMPARE(position.toParts().latitude.degrees, std::numeric_limits<qint32>::max() / 60);
    position.toPacked();
    QVERIFY(!position.latitudeText().isEmpty());
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QCOMPARE(at(position, nan, nan).toParts().latitude.degrees, 0);
    QGpsKrd other;
    QVERIFY(std::isnan(position.distanceTo(other)));
}

QTEST_APPLESS_MAIN(tst_QGpsKrd)
#include "tst_qgpskrd.moc"
