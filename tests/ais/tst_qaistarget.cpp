#include "ais/qaistarget.h"

#include <QFile>
#include <QMap>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

constexpr int allBytes = 256;

using Text = QString (QAisTarget::*)() const;

struct NamedText
{
    const char *name;
    Text text;
};

const NamedText dynamicTexts[] = {
    {"status", &QAisTarget::statusText},
    {"accuracy", &QAisTarget::accuracyText},
    {"rate of turn", &QAisTarget::rateOfTurnText},
    {"position", &QAisTarget::positionText},
    {"speed", &QAisTarget::speedText},
    {"course", &QAisTarget::courseText},
    {"heading", &QAisTarget::headingText},
};

const NamedText staticTexts[] = {
    {"IMO number", &QAisTarget::imoText},          {"name", &QAisTarget::nameText},
    {"call sign", &QAisTarget::callSignText},      {"ship type", &QAisTarget::shipTypeText},
    {"fix type", &QAisTarget::fixTypeText},        {"length", &QAisTarget::lengthText},
    {"breadth", &QAisTarget::breadthText},         {"draught", &QAisTarget::draughtText},
    {"destination", &QAisTarget::destinationText}, {"ETA", &QAisTarget::etaText},
};

std::unique_ptr<QAisTarget> filledTarget()
{
    auto target = std::make_unique<QAisTarget>();
    target->m_mmsi = 240827000;
    target->m_rateOfTurn = 5;
    target->m_imo = 9383663;
    target->m_callSign = "9HMQ9";
    target->m_shipName = "RUTH THERESA";
    target->m_shipType = 80;
    target->m_toBow = 78;
    target->m_toStern = 23;
    target->m_toPort = 1;
    target->m_toStarboard = 17;
    target->m_etaDay = 30;
    target->m_etaMonth = 12;
    target->m_etaHour = 16;
    target->m_etaMinute = 30;
    target->m_destination = "BOSTON,USA";
    return target;
}

std::unique_ptr<QAisTarget> dynamicTarget()
{
    auto target = filledTarget();
    target->m_dynamicValid = true;
    return target;
}

std::unique_ptr<QAisTarget> staticTarget()
{
    auto target = filledTarget();
    target->m_staticValid = true;
    return target;
}

} // namespace

Q_DECLARE_METATYPE(Text)

class tst_QAisTarget : public QObject
{
    Q_OBJECT

private slots:
    void startValues();
    void emptyUntilHeard_data();
    void emptyUntilHeard();
    void navStatus_data();
    void navStatus();
    void accuracy_data();
    void accuracy();
    void oddityAccuracyLetters();
    void rateOfTurn_data();
    void rateOfTurn();
    void oddityRateOfTurnIsLinear();
    void position_data();
    void position();
    void speed_data();
    void speed();
    void course_data();
    void course();
    void heading_data();
    void heading();
    void plainStaticTexts();
    void fixType_data();
    void fixType();
    void shipType_data();
    void shipType();
    void draught_data();
    void draught();
    void eta_data();
    void eta();
};

void tst_QAisTarget::startValues()
{
    const QAisTarget target;
    QVERIFY(!target.m_dynamicValid);
    QVERIFY(!target.m_staticValid);
    QVERIFY(!target.m_rangeValid);
    QVERIFY(target.m_lastUpdate.isNull());
    QCOMPARE(target.m_mmsi, 0U);
    QCOMPARE(target.m_position.m_lat, 0.0);
    QCOMPARE(target.m_position.m_lon, 0.0);
    QCOMPARE(target.m_range, 0.0);
    QVERIFY(target.m_callSign.isNull());
    QVERIFY(target.m_shipName.isNull());
    QVERIFY(target.m_destination.isNull());
}

void tst_QAisTarget::emptyUntilHeard_data()
{
    QTest::addColumn<Text>("text");
    QTest::addColumn<bool>("isDynamic");
    for (const NamedText &row : dynamicTexts)
        QTest::addRow("%s, of a target known by its type 5", row.name) << row.text << true;
    for (const NamedText &row : staticTexts)
        QTest::addRow("%s, of a target known by its reports", row.name) << row.text << false;
}

void tst_QAisTarget::emptyUntilHeard()
{
    QFETCH(Text, text);
    QFETCH(bool, isDynamic);
    const auto target = filledTarget();
    (isDynamic ? target->m_staticValid : target->m_dynamicValid) = true;
    QCOMPARE((*target.*text)(), QString());
    (isDynamic ? target->m_dynamicValid : target->m_staticValid) = true;
    QVERIFY(!(*target.*text)().isEmpty());
}

void tst_QAisTarget::navStatus_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    const char *const texts[] = {"Under way using engine",
                                 "At anchor",
                                 "Not under command",
                                 "Restricted manoeuvrability",
                                 "Constrained by her draught",
                                 "Moored",
                                 "Aground",
                                 "Engaged in Fishing",
                                 "Under way sailing",
                                 "N/A",
                                 "N/A",
                                 "N/A",
                                 "N/A",
                                 "N/A",
                                 "N/A",
                                 "N/A"};
    for (int value = 0; value < allBytes; ++value)
        QTest::addRow("%d", value) << value << (value < 16 ? texts[value] : "N/A");
}

void tst_QAisTarget::navStatus()
{
    QFETCH(int, value);
    const auto target = dynamicTarget();
    target->m_navStatus = quint8(value);
    QTEST(target->statusText(), "text");
}

void tst_QAisTarget::accuracy_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("high") << 1 << "<10m";
    QTest::newRow("low") << 0 << QStringLiteral(">10\u043c");
    QTest::newRow("any other") << 2 << QStringLiteral(">10\u043c");
}

void tst_QAisTarget::accuracy()
{
    QFETCH(int, value);
    const auto target = dynamicTarget();
    target->m_accuracy = quint8(value);
    QTEST(target->accuracyText(), "text");
}

void tst_QAisTarget::oddityAccuracyLetters()
{
    const auto target = dynamicTarget();
    target->m_accuracy = 1;
    QCOMPARE(target->accuracyText().back().unicode(), ushort('m'));
    target->m_accuracy = 0;
    QCOMPARE(target->accuracyText().back().unicode(), ushort(0x043c)); // the Cyrillic letter
}

void tst_QAisTarget::rateOfTurn_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QFile file(TK7_TEST_DATA "/rateofturn.csv");
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    file.readLine();
    while (!file.atEnd()) {
        const QList<QByteArray> row = file.readLine().trimmed().split(',');
        QTest::newRow(row.at(0).constData()) << row.at(0).toInt() << QString::fromLatin1(row.at(1));
    }
    QTest::newRow("raw 128 is -128") << 128 << "";
    QTest::newRow("raw 129 is -127") << 129 << "-26.83";
    QTest::newRow("raw 127") << 127 << "26.83";
}

void tst_QAisTarget::rateOfTurn()
{
    QFETCH(int, value);
    const auto target = dynamicTarget();
    target->m_rateOfTurn = qint8(value);
    QTEST(target->rateOfTurnText(), "text");
}

void tst_QAisTarget::oddityRateOfTurnIsLinear()
{
    const auto target = dynamicTarget();
    target->m_rateOfTurn = 50;
    const double once = target->rateOfTurnText().toDouble();
    target->m_rateOfTurn = 100;
    QVERIFY(qAbs(target->rateOfTurnText().toDouble() - 2 * once) < 0.02);
}

void tst_QAisTarget::position_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QString>("text");
    QTest::newRow("north east") << 3345.123 << 2256.123 << "N  55.45.123 E037.36.123";
    QTest::newRow("south west") << -3345.123 << -2256.123 << "S  55.45.123 W037.36.123";
    QTest::newRow("0, 0") << 0.0 << 0.0 << "N  00.00.000 E000.00.000";
    QTest::newRow("the pole") << 5400.0 << 0.0 << "N  90.00.000 E000.00.000";
    QTest::newRow("just below 91 degrees") << 5459.9999 << 0.0 << "N  90.59.999 E000.00.000";
    QTest::newRow("91 degrees, not available") << 5460.0 << 0.0 << "N/A";
    QTest::newRow("-91 degrees") << -5460.0 << 0.0 << "N/A";
    QTest::newRow("a southern latitude as it arrives") << 13000.0 << 0.0 << "N/A";
    QTest::newRow("longitude 181 degrees is not looked at")
        << 3345.123 << 10860.0 << "N  55.45.123 E181.00.000";
    QTest::newRow("a western longitude as it arrives")
        << 3345.123 << 26843.5455 << "N  55.45.123 E447.23.545";
}

void tst_QAisTarget::position()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    const auto target = dynamicTarget();
    target->m_position.m_lat = latitude;
    target->m_position.m_lon = longitude;
    QTEST(target->positionText(), "text");
}

void tst_QAisTarget::speed_data()
{
    QTest::addColumn<int>("raw");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << "0.0";
    QTest::newRow("1") << 1 << "0.1";
    QTest::newRow("113") << 113 << "11.3";
    QTest::newRow("1022") << 1022 << "102.2";
    QTest::newRow("1023, not available") << 1023 << "N/A";
}

void tst_QAisTarget::speed()
{
    QFETCH(int, raw);
    const auto target = dynamicTarget();
    target->m_speed = raw / 10.0;
    QTEST(target->speedText(), "text");
}

void tst_QAisTarget::course_data()
{
    QTest::addColumn<int>("raw");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << "0.0";
    QTest::newRow("5") << 5 << "0.5";
    QTest::newRow("3599") << 3599 << "359.9";
    QTest::newRow("3600, not available") << 3600 << "N/A";
    QTest::newRow("3601, never sent, reads as it is") << 3601 << "360.1";
    QTest::newRow("4095, the largest") << 4095 << "409.5";
}

void tst_QAisTarget::course()
{
    QFETCH(int, raw);
    const auto target = dynamicTarget();
    target->m_course = raw / 10.0;
    QTEST(target->courseText(), "text");
}

void tst_QAisTarget::heading_data()
{
    QTest::addColumn<int>("raw");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << "0";
    QTest::newRow("7") << 7 << "7";
    QTest::newRow("359") << 359 << "359";
    QTest::newRow("360") << 360 << "N/A";
    QTest::newRow("511, not available") << 511 << "N/A";
}

void tst_QAisTarget::heading()
{
    QFETCH(int, raw);
    const auto target = dynamicTarget();
    target->m_heading = raw;
    QTEST(target->headingText(), "text");
}

void tst_QAisTarget::plainStaticTexts()
{
    const auto target = staticTarget();
    QCOMPARE(target->imoText(), QString("9383663"));
    QCOMPARE(target->nameText(), QString("RUTH THERESA"));
    QCOMPARE(target->callSignText(), QString("9HMQ9"));
    QCOMPARE(target->lengthText(), QString("101"));
    QCOMPARE(target->breadthText(), QString("18"));
    QCOMPARE(target->destinationText(), QString("BOSTON,USA"));
    target->m_imo = 0;
    target->m_toBow = target->m_toStern = 511;
    target->m_toPort = target->m_toStarboard = 0;
    QCOMPARE(target->imoText(), QString("0"));
    QCOMPARE(target->lengthText(), QString("1022"));
    QCOMPARE(target->breadthText(), QString("0"));
}

void tst_QAisTarget::fixType_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    const char *const texts[] = {"N/A",
                                 "GPS",
                                 "GLONASS",
                                 "GPS/GLONASS",
                                 "Loran-C",
                                 "Chayka",
                                 "Integrated Navigation System",
                                 "Surveyed",
                                 "Galileo"};
    for (int value = 0; value < allBytes; ++value)
        QTest::addRow("%d", value) << value << (value < 9 ? texts[value] : "N/A");
}

void tst_QAisTarget::fixType()
{
    QFETCH(int, value);
    const auto target = staticTarget();
    target->m_fixType = quint8(value);
    QTEST(target->fixTypeText(), "text");
}

void tst_QAisTarget::shipType_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    const QMap<int, const char *> texts{
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
        {60, "Passenger ship "},
        {61, "Passenger ship (category A)"},
        {62, "Passenger ship (category B)"},
        {63, "Passenger ship (category C)"},
        {64, "Passenger ship (category D)"},
        {65, "Passenger ship (Not under command)"},
        {66, "Passenger ship (Restricted by her ability to manoeuvre)"},
        {67, "Passenger ship (Constrained by her draught)"},
        {68, "Passenger ship "},
        {69, "Passenger ship "},
        {70, "Cargo ship "},
        {71, "Cargo ship (category A)"},
        {72, "Cargo ship (category B)"},
        {73, "Cargo ship (category C)"},
        {74, "Cargo ship (category D)"},
        {75, "Cargo ship (Not under command)"},
        {76, "Cargo ship (Restricted by her ability to manoeuvre)"},
        {77, "Cargo ship (Constrained by her draught)"},
        {78, "Cargo ship "},
        {79, "Cargo ship "},
        {80, "Tanker "},
        {81, "Tanker (category A)"},
        {82, "Tanker (category B)"},
        {83, "Tanker (category C)"},
        {84, "Tanker (category D)"},
        {85, "Tanker (Not under command)"},
        {86, "Tanker (Restricted by her ability to manoeuvre)"},
        {87, "Tanker (Constrained by her draught)"},
        {88, "Tanker "},
        {89, "Tanker "},
    };
    for (int value = 0; value < allBytes; ++value)
        QTest::addRow("%d", value) << value << texts.value(value, "N/A");
}

void tst_QAisTarget::shipType()
{
    QFETCH(int, value);
    const auto target = staticTarget();
    target->m_shipType = quint8(value);
    QTEST(target->shipTypeText(), "text");
}

void tst_QAisTarget::draught_data()
{
    QTest::addColumn<int>("raw");
    QTest::addColumn<QString>("text");
    for (int raw = 0; raw < allBytes; ++raw) {
        const int tenths = raw % 10;
        const QString metres = QString::number(raw / 10);
        const QString text =
            tenths ? QString(metres + QLatin1Char('.') + QString::number(tenths)) : metres;
        QTest::addRow("%d tenths", raw) << raw << text;
    }
}

void tst_QAisTarget::draught()
{
    QFETCH(int, raw);
    const auto target = staticTarget();
    target->m_draught = float(raw / 10.0);
    QTEST(target->draughtText(), "text");
}

void tst_QAisTarget::eta_data()
{
    QTest::addColumn<int>("month");
    QTest::addColumn<int>("day");
    QTest::addColumn<int>("hour");
    QTest::addColumn<int>("minute");
    QTest::addColumn<QString>("text");
    QTest::newRow("5 March 14:07") << 3 << 5 << 14 << 7 << "05.03 14:07 UTC";
    QTest::newRow("first of all") << 1 << 1 << 0 << 0 << "01.01 00:00 UTC";
    QTest::newRow("last of all") << 12 << 31 << 23 << 59 << "31.12 23:59 UTC";
    QTest::newRow("month 0, the others real") << 0 << 5 << 14 << 7 << "N/A";
    QTest::newRow("day 0, the others real") << 3 << 0 << 14 << 7 << "N/A";
    QTest::newRow("hour 24, the others real") << 3 << 5 << 24 << 7 << "N/A";
    QTest::newRow("minute 60, the others real") << 3 << 5 << 14 << 60 << "N/A";
    QTest::newRow("nothing available") << 0 << 0 << 24 << 60 << "N/A";
    QTest::newRow("hour 23") << 3 << 5 << 23 << 7 << "05.03 23:07 UTC";
    QTest::newRow("hour 25, never sent, reads as it is") << 3 << 5 << 25 << 7 << "05.03 25:07 UTC";
    QTest::newRow("hour 31, the largest") << 3 << 5 << 31 << 7 << "05.03 31:07 UTC";
    QTest::newRow("minute 59") << 3 << 5 << 14 << 59 << "05.03 14:59 UTC";
    QTest::newRow("minute 61, never sent, reads as it is")
        << 3 << 5 << 14 << 61 << "05.03 14:61 UTC";
    QTest::newRow("minute 63, the largest") << 3 << 5 << 14 << 63 << "05.03 14:63 UTC";
    QTest::newRow("month 13, never sent, reads as it is")
        << 13 << 5 << 14 << 7 << "05.13 14:07 UTC";
    QTest::newRow("month 15, the largest") << 15 << 5 << 14 << 7 << "05.15 14:07 UTC";
}

void tst_QAisTarget::eta()
{
    QFETCH(int, month);
    QFETCH(int, day);
    QFETCH(int, hour);
    QFETCH(int, minute);
    const auto target = staticTarget();
    target->m_etaMonth = quint8(month);
    target->m_etaDay = quint8(day);
    target->m_etaHour = quint8(hour);
    target->m_etaMinute = quint8(minute);
    QTEST(target->etaText(), "text");
}

QTEST_APPLESS_MAIN(tst_QAisTarget)
#include "tst_qaistarget.moc"
