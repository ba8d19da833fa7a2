#include "ais/qais.h"
#include "aisjournal.h"
#include "fakeclock.h"
#include "payloadbuilder.h"

#include <QtTest>

#include <limits>

namespace {

constexpr uint port = 3;
constexpr quint32 mmsi = 240827000;
constexpr quint32 noMmsi = 999999999;

/*! A decoder of port 3, and what it raises. */
class Decoder
{
public:
    Decoder() : journal(ais) { ais.setPortNumber(port); }

    bool take(const QByteArray &payload, int fillBits = 0, int kind = QAis::TargetMessage)
    {
        return ais.decodeMessage(kind, 1, 1, 0, fillBits, payload.constData());
    }

    bool takeOwn(const QByteArray &payload, int fillBits = 0)
    {
        return take(payload, fillBits, QAis::OwnMessage);
    }

    bool isUntouched()
    {
        return ais.targetCount() == 0 && ais.messageCount() == 0 && ais.ownMessageCount() == 0
            && ais.ownTarget()->m_mmsi == 0 && journal.take().isEmpty();
    }

    QAis ais;
    AisJournal journal;
};

/*! One call of decodeMessage(). */
struct Fragment
{
    uint total;
    uint number;
    uint sequence;
    int part; //!< which part of the message; 0 is its start
    bool whole;
};

constexpr int partSize = 24; // a message of type 5 has three parts

QByteArray partOfVoyage(int part)
{
    return VoyageData().payload().mid(part * partSize, part == 2 ? -1 : partSize);
}

} // namespace

Q_DECLARE_METATYPE(QVector<Fragment>)

class tst_QAis : public QObject
{
    Q_OBJECT

private slots:
    void start();
    void fragments_data();
    void fragments();
    void kindOfTheLastFragmentCounts();
    void fragmentBehindAWholeMessageReadsOn();
    void endlessMessage();
    void otherTypesLeaveNoTrace_data();
    void otherTypesLeaveNoTrace();
    void positionReportTypes_data();
    void positionReportTypes();
    void positionReportFields_data();
    void positionReportFields();
    void oddityPositionIsNotSignExtended_data();
    void oddityPositionIsNotSignExtended();
    void voyageFields_data();
    void voyageFields();
    void texts_data();
    void texts();
    void targetsInOrderOfFirstHearing();
    void newAndKnownTargets();
    void targetBornOfVoyageData();
    void staticAndDynamicDataJoin();
    void ownReport();
    void ownReportPosition_data();
    void ownReportPosition();
    void ownVoyageData();
    void ownShipHasNoRange();
    void shortMessages_data();
    void shortMessages();
    void anyFillBits_data();
    void anyFillBits();
};

void tst_QAis::start()
{
    QAis ais;
    QCOMPARE(ais.portNumber(), 0U);
    QCOMPARE(ais.targetCount(), 0);
    QCOMPARE(ais.alarmCount(), 0);
    QCOMPARE(ais.messageCount(), 0U);
    QCOMPARE(ais.ownMessageCount(), 0U);
    QCOMPARE(ais.maxRange(), -1.0);
    QVERIFY(!ais.hasOwnPosition());
    QVERIFY(!ais.targetAt(0));
    QVERIFY(!ais.targetAt(-1));
    QVERIFY(!ais.alarmAt(0));
    QVERIFY(!ais.findTarget(0));
    QVERIFY(ais.ownTarget());
    ais.setPortNumber(11);
    QCOMPARE(ais.portNumber(), 11U);
    // Seven signals and not a slot, as far as the meta-object knows.
    const QMetaObject *meta = ais.metaObject();
    QStringList names;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        QCOMPARE(meta->method(i).methodType(), QMetaMethod::Signal);
        names.append(QString::fromLatin1(meta->method(i).methodSignature()));
    }
    QCOMPARE(names,
             (QStringList{"signalAddTarget(uint,uint)", "signalDeleteTarget(uint,uint)",
                          "signalUpdateTarget(uint,uint)", "signalUpdateOwnTarget(uint)",
                          "signalNewOwnPosition(uint,QGpsKrd*)", "signalLostPosition(uint)",
                          "signalUpdateAlarm(uint,uchar)"}));
}

void tst_QAis::fragments_data()
{
    QTest::addColumn<QVector<Fragment>>("calls");
    QTest::addColumn<bool>("decoded");
    using Calls = QVector<Fragment>;
    const auto row = [](const char *name, const Calls &calls, bool decoded) {
        QTest::newRow(name) << calls << decoded;
    };
    row("three in order", {{3, 1, 5, 0, false}, {3, 2, 5, 1, false}, {3, 3, 5, 2, true}}, true);
    row("the last is missing", {{3, 1, 5, 0, false}, {3, 2, 5, 1, false}}, false);
    row("the first is missing", {{3, 2, 5, 1, false}, {3, 3, 5, 2, false}}, false);
    row("the second is missing", {{3, 1, 5, 0, false}, {3, 3, 5, 2, false}}, false);
    row("another sequence number is turned away, the right one still completes",
        {{3, 1, 5, 0, false}, {3, 2, 5, 1, false}, {3, 3, 6, 2, false}, {3, 3, 5, 2, true}}, true);
    row("a repeated second is ignored",
        {{3, 1, 5, 0, false}, {3, 2, 5, 1, false}, {3, 2, 5, 1, false}, {3, 3, 5, 2, true}}, true);
    row("a repeated first starts anew",
        {{3, 1, 5, 0, false}, {3, 1, 5, 0, false}, {3, 2, 5, 1, false}, {3, 3, 5, 2, true}}, true);
    row("a first replaces an unfinished message",
        {{3, 1, 4, 1, false},
         {3, 2, 4, 1, false},
         {3, 1, 5, 0, false},
         {3, 2, 5, 1, false},
         {3, 3, 5, 2, true}},
        true);
    row("after another first the rest of the old message is turned away",
        {{3, 1, 4, 0, false}, {3, 1, 5, 0, false}, {3, 2, 4, 1, false}, {3, 3, 4, 2, false}},
        false);
    row("a number above the total is turned away",
        {{3, 1, 5, 0, false}, {1, 2, 5, 2, false}, {3, 2, 5, 1, false}, {3, 3, 5, 2, true}}, true);
    row("the total of the last fragment decides",
        {{9, 1, 5, 0, false}, {4, 2, 5, 1, false}, {3, 3, 5, 2, true}}, true);
    row("number 0 is turned away", {{0, 0, 0, 0, false}}, false);
    row("number 0 is turned away behind a first too", {{1, 0, 0, 0, false}}, false);
    row("number 1 of 0 is not whole", {{0, 1, 0, 0, false}}, false);
    row("largest numbers",
        {{std::numeric_limits<uint>::max(), 1, 5, 0, false},
         {std::numeric_limits<uint>::max(), std::numeric_limits<uint>::max(), 5, 1, false}},
        false);
}

void tst_QAis::fragments()
{
    QFETCH(QVector<Fragment>, calls);
    QFETCH(bool, decoded);
    Decoder decoder;
    for (const Fragment &call : calls) {
        const int fillBits = call.part == 2 ? VoyageData::FillBits : 0;
        QCOMPARE(decoder.ais.decodeMessage(QAis::TargetMessage, call.total, call.number,
                                           call.sequence, fillBits,
                                           partOfVoyage(call.part).constData()),
                 call.whole);
    }
    if (!decoded) {
        QVERIFY(decoder.isUntouched());
        return;
    }
    QCOMPARE(decoder.ais.messageCount(), 1U);
    const QAisTarget *target = decoder.ais.targetAt(0);
    QVERIFY(target);
    QCOMPARE(target->m_mmsi, VoyageData().mmsi);
    QCOMPARE(target->m_shipName, QString("RUTH THERESA"));
    QCOMPARE(target->m_destination, QString("BOSTON,USA"));
}

void tst_QAis::kindOfTheLastFragmentCounts()
{
    const QByteArray first = VoyageData().payload().left(partSize);
    const QByteArray second = VoyageData().payload().mid(partSize);
    Decoder decoder;
    decoder.ais.decodeMessage(QAis::TargetMessage, 2, 1, 5, 0, first.constData());
    QVERIFY(decoder.ais.decodeMessage(QAis::OwnMessage, 2, 2, 5, 2, second.constData()));
    QCOMPARE(decoder.ais.messageCount(), 0U);
    QCOMPARE(decoder.ais.ownMessageCount(), 1U);
    decoder.ais.decodeMessage(QAis::OwnMessage, 2, 1, 5, 0, first.constData());
    QVERIFY(decoder.ais.decodeMessage(QAis::TargetMessage, 2, 2, 5, 2, second.constData()));
    QCOMPARE(decoder.ais.messageCount(), 1U);
    QCOMPARE(decoder.ais.ownMessageCount(), 1U);
}

// By its numbers alone, a fragment may follow a message that is whole. It is appended all the same,
// and reading goes on where it ended.
void tst_QAis::fragmentBehindAWholeMessageReadsOn()
{
    constexpr quint32 second = 123456789;
    constexpr int lowBits = 7; // of the MMSI, which the border cuts
    PayloadBuilder first;
    first.put(1, 6).put(0, 2).put(mmsi, 30).put(0, 4 + 8 + 10 + 1 + 28).put(0, 27 + 12 + 9);
    first.put(3, 6).put(0, 2).put(second >> lowBits, 30 - lowBits);
    QCOMPARE(first.fillBits(), 0);
    PayloadBuilder rest;
    rest.put(second, lowBits).put(0, 4 + 8).put(113, 10).put(0, 1 + 28 + 27 + 12).put(332, 9);

    Decoder decoder;
    decoder.take(first.payload());
    QCOMPARE(decoder.journal.take(), QStringList{"add 3 240827000"});
    QVERIFY(decoder.ais.decodeMessage(QAis::TargetMessage, 2, 2, 0, rest.fillBits(),
                                      rest.payload().constData()));
    QCOMPARE(decoder.journal.take(), QStringList{"add 3 123456789"});
    QCOMPARE(decoder.ais.findTarget(second)->m_speed, 11.3);
    QCOMPARE(decoder.ais.findTarget(second)->m_heading, 332);
}

void tst_QAis::endlessMessage()
{
    constexpr uint fragmentsSent = 40000; // five times what is kept of a message
    const QByteArray payload(partSize, 'w');
    Decoder decoder;
    PositionReport report;
    const QByteArray first = report.payload();
    decoder.ais.decodeMessage(QAis::TargetMessage, fragmentsSent, 1, 5, 0, first.constData());
    for (uint number = 2; number < fragmentsSent; ++number)
        QVERIFY(!decoder.ais.decodeMessage(QAis::TargetMessage, fragmentsSent, number, 5, 0,
                                           payload.constData()));
    QVERIFY(
        decoder.ais.decodeMessage(QAis::TargetMessage, fragmentsSent, fragmentsSent, 5, 0, "w"));
    // What is decoded stands at the start, so all of it is there.
    QCOMPARE(decoder.ais.targetAt(0)->m_mmsi, report.mmsi);
    QCOMPARE(decoder.ais.targetAt(0)->m_heading, int(report.heading));
}

void tst_QAis::otherTypesLeaveNoTrace_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<int>("kind");
    for (quint32 type = 0; type < 64; ++type) {
        if (type == 1 || type == 2 || type == 3 || type == 5)
            continue;
        QTest::addRow("type %u", type) << type << int(QAis::TargetMessage);
        QTest::addRow("type %u, own", type) << type << int(QAis::OwnMessage);
    }
}

void tst_QAis::otherTypesLeaveNoTrace()
{
    QFETCH(quint32, type);
    QFETCH(int, kind);
    PositionReport report;
    report.type = type;
    Decoder decoder;
    QVERIFY(decoder.take(report.payload(), 0, kind));
    QVERIFY(decoder.isUntouched());
    QVERIFY(decoder.take(report.payload() + report.payload() + report.payload(), 0, kind));
    QVERIFY(decoder.isUntouched());
}

void tst_QAis::positionReportTypes_data()
{
    QTest::addColumn<quint32>("type");
    QTest::newRow("1") << 1U;
    QTest::newRow("2") << 2U;
    QTest::newRow("3") << 3U;
}

void tst_QAis::positionReportTypes()
{
    QFETCH(quint32, type);
    PositionReport report;
    report.type = type;
    report.repeat = 3;
    Decoder decoder;
    QVERIFY(decoder.take(report.payload()));
    QCOMPARE(decoder.ais.messageCount(), 1U);
    const QAisTarget *target = decoder.ais.findTarget(mmsi);
    QVERIFY(target);
    QVERIFY(target->m_dynamicValid);
    QVERIFY(!target->m_staticValid);
}

void tst_QAis::positionReportFields_data()
{
    QTest::addColumn<quint32>("status");
    QTest::addColumn<quint32>("turn");
    QTest::addColumn<quint32>("speed");
    QTest::addColumn<quint32>("accuracy");
    QTest::addColumn<quint32>("longitude");
    QTest::addColumn<quint32>("latitude");
    QTest::addColumn<quint32>("course");
    QTest::addColumn<quint32>("heading");
    QTest::newRow("all zero") << 0U << 0U << 0U << 0U << 0U << 0U << 0U << 0U;
    QTest::newRow("all ones") << 15U << 255U << 1023U << 1U << 0xfffffffU << 0x7ffffffU << 4095U
                              << 511U;
    QTest::newRow("status alone") << 15U << 0U << 0U << 0U << 0U << 0U << 0U << 0U;
    QTest::newRow("turn alone") << 0U << 255U << 0U << 0U << 0U << 0U << 0U << 0U;
    QTest::newRow("turn -128") << 0U << 128U << 0U << 0U << 0U << 0U << 0U << 0U;
    QTest::newRow("speed alone") << 0U << 0U << 1023U << 0U << 0U << 0U << 0U << 0U;
    QTest::newRow("accuracy alone") << 0U << 0U << 0U << 1U << 0U << 0U << 0U << 0U;
    QTest::newRow("longitude alone") << 0U << 0U << 0U << 0U << 0xfffffffU << 0U << 0U << 0U;
    QTest::newRow("latitude alone") << 0U << 0U << 0U << 0U << 0U << 0x7ffffffU << 0U << 0U;
    QTest::newRow("course alone") << 0U << 0U << 0U << 0U << 0U << 0U << 4095U << 0U;
    QTest::newRow("heading alone") << 0U << 0U << 0U << 0U << 0U << 0U << 0U << 511U;
    QTest::newRow("a ship under way")
        << 0U << 247U << 113U << 1U << 14465600U << 22286000U << 3304U << 332U;
}

void tst_QAis::positionReportFields()
{
    QFETCH(quint32, status);
    QFETCH(quint32, turn);
    QFETCH(quint32, speed);
    QFETCH(quint32, accuracy);
    QFETCH(quint32, longitude);
    QFETCH(quint32, latitude);
    QFETCH(quint32, course);
    QFETCH(quint32, heading);
    PositionReport report;
    report.status = status;
    report.turn = turn;
    report.speed = speed;
    report.accuracy = accuracy;
    report.longitude = longitude;
    report.latitude = latitude;
    report.course = course;
    report.heading = heading;
    Decoder decoder;
    QVERIFY(decoder.take(report.payload()));
    const QAisTarget *target = decoder.ais.findTarget(mmsi);
    QVERIFY(target);
    QCOMPARE(quint32(target->m_navStatus), status);
    QCOMPARE(int(target->m_rateOfTurn), turn < 128 ? int(turn) : int(turn) - 256);
    QCOMPARE(target->m_speed, speed / 10.0);
    QCOMPARE(quint32(target->m_accuracy), accuracy);
    QCOMPARE(target->m_position.m_lon, longitude / 10000.0);
    QCOMPARE(target->m_position.m_lat, latitude / 10000.0);
    QCOMPARE(target->m_course, course / 10.0);
    QCOMPARE(target->m_heading, int(heading));
}

void tst_QAis::oddityPositionIsNotSignExtended_data()
{
    QTest::addColumn<int>("longitude");
    QTest::addColumn<int>("latitude");
    QTest::addColumn<double>("readLongitude");
    QTest::addColumn<double>("readLatitude");
    QTest::newRow("west") << -73704000 << 29208059 << 19473.1456 << 2920.8059;
    QTest::newRow("south") << 14465600 << -22286000 << 1446.56 << 11193.1728;
    QTest::newRow("a step west of 0") << -1 << 0 << 26843.5455 << 0.0;
    QTest::newRow("a step south of 0") << 0 << -1 << 0.0 << 13421.7727;
}

void tst_QAis::oddityPositionIsNotSignExtended()
{
    QFETCH(int, longitude);
    QFETCH(int, latitude);
    PositionReport report;
    report.longitude = quint32(longitude);
    report.latitude = quint32(latitude);
    Decoder decoder;
    QGpsKrd own;
    decoder.ais.setOwnPosition(QAis::RouterSource, &own);
    decoder.take(report.payload());
    const QAisTarget *target = decoder.ais.findTarget(mmsi);
    QTEST(target->m_position.m_lon, "readLongitude");
    QTEST(target->m_position.m_lat, "readLatitude");
    QVERIFY(!target->m_position.isValid());
    QVERIFY(!target->m_rangeValid);
}

void tst_QAis::voyageFields_data()
{
    QTest::addColumn<QVector<quint32>>("numbers");
    const QVector<quint32> greatest{3,  0x3fffffff, 255, 511, 511, 63,  63,
                                    15, 15,         31,  31,  63,  255, 1};
    QTest::newRow("all zero") << QVector<quint32>(greatest.size(), 0);
    QTest::newRow("all ones") << greatest;
    const char *const names[] = {"version", "IMO number",   "ship type", "to bow",  "to stern",
                                 "to port", "to starboard", "fix type",  "month",   "day",
                                 "hour",    "minute",       "draught",   "DTE flag"};
    for (int i = 0; i < greatest.size(); ++i) {
        QVector<quint32> numbers(greatest.size(), 0);
        numbers[i] = greatest.at(i);
        QTest::addRow("%s alone", names[i]) << numbers;
    }
    QTest::newRow("a tanker") << QVector<quint32>{0, 9383663, 80, 78, 23, 1,  17,
                                                  1, 12,      30, 16, 30, 78, 0};
}

void tst_QAis::voyageFields()
{
    QFETCH(QVector<quint32>, numbers);
    VoyageData data;
    data.version = numbers.at(0);
    data.imo = numbers.at(1);
    data.shipType = numbers.at(2);
    data.toBow = numbers.at(3);
    data.toStern = numbers.at(4);
    data.toPort = numbers.at(5);
    data.toStarboard = numbers.at(6);
    data.fixType = numbers.at(7);
    data.month = numbers.at(8);
    data.day = numbers.at(9);
    data.hour = numbers.at(10);
    data.minute = numbers.at(11);
    data.draught = numbers.at(12);
    data.dte = numbers.at(13);
    Decoder decoder;
    QVERIFY(decoder.take(data.payload(), VoyageData::FillBits));
    const QAisTarget *target = decoder.ais.findTarget(data.mmsi);
    QVERIFY(target);
    QVERIFY(target->m_staticValid);
    QVERIFY(!target->m_dynamicValid);
    QCOMPARE(quint32(target->m_aisVersion), data.version);
    QCOMPARE(target->m_imo, data.imo);
    QCOMPARE(quint32(target->m_shipType), data.shipType);
    QCOMPARE(target->m_toBow, data.toBow);
    QCOMPARE(target->m_toStern, data.toStern);
    QCOMPARE(target->m_toPort, data.toPort);
    QCOMPARE(target->m_toStarboard, data.toStarboard);
    QCOMPARE(quint32(target->m_fixType), data.fixType);
    QCOMPARE(quint32(target->m_etaMonth), data.month);
    QCOMPARE(quint32(target->m_etaDay), data.day);
    QCOMPARE(quint32(target->m_etaHour), data.hour);
    QCOMPARE(quint32(target->m_etaMinute), data.minute);
    QCOMPARE(target->m_draught, float(data.draught / 10.0));
    QCOMPARE(quint32(target->m_dte), data.dte);
    QCOMPARE(target->m_callSign, QString("9HMQ9"));
    QCOMPARE(target->m_shipName, QString("RUTH THERESA"));
    QCOMPARE(target->m_destination, QString("BOSTON,USA"));
}

void tst_QAis::texts_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<QString>("read");
    QTest::newRow("padded with at signs") << QByteArray("ABC@@@@@@@@@@@@@@@@@") << "ABC";
    QTest::newRow("padded with spaces") << QByteArray("ABC                 ") << "ABC";
    QTest::newRow("padded with both") << QByteArray("ABC @ @@ @ @@@@@@@ @") << "ABC";
    QTest::newRow("full") << QByteArray("ABCDEFGHIJKLMNOPQRST") << "ABCDEFGHIJKLMNOPQRST";
    QTest::newRow("all at signs") << QByteArray(20, '@') << "";
    QTest::newRow("all spaces") << QByteArray(20, ' ') << "";
    QTest::newRow("an at sign within does not end it")
        << QByteArray("AB@CD@@@@@@@@@@@@@@@") << "AB@CD";
    QTest::newRow("leading padding stays") << QByteArray("@ AB@@@@@@@@@@@@@@@@") << "@ AB";
    QTest::newRow("the last character alone")
        << QByteArray("@@@@@@@@@@@@@@@@@@@X") << "@@@@@@@@@@@@@@@@@@@X";
    QTest::newRow("codes 64 to 83") << QByteArray("@ABCDEFGHIJKLMNOPQRS") << "@ABCDEFGHIJKLMNOPQRS";
    QTest::newRow("codes 84 to 95") << QByteArray("TUVWXYZ[\\]^_@@@@@@@@") << "TUVWXYZ[\\]^_";
    QTest::newRow("codes 32 to 51")
        << QByteArray(" !\"#$%&'()*+,-./0123") << " !\"#$%&'()*+,-./0123";
    QTest::newRow("codes 52 to 63") << QByteArray("456789:;<=>?@@@@@@@@") << "456789:;<=>?";
}

void tst_QAis::texts()
{
    QFETCH(QByteArray, sent);
    QFETCH(QString, read);
    VoyageData data;
    data.name = sent;
    data.destination = sent;
    data.callSign = sent.left(7);
    QString callSign = QString::fromLatin1(data.callSign);
    while (callSign.endsWith(' ') || callSign.endsWith('@'))
        callSign.chop(1);
    Decoder decoder;
    // The texts of an earlier message don't shine through.
    decoder.take(VoyageData().payload(), VoyageData::FillBits);
    decoder.take(data.payload(), VoyageData::FillBits);
    const QAisTarget *target = decoder.ais.findTarget(data.mmsi);
    QCOMPARE(target->m_shipName, read);
    QCOMPARE(target->m_destination, read);
    QCOMPARE(target->m_callSign, callSign);
    QVERIFY(!target->m_shipName.isNull());
}

void tst_QAis::targetsInOrderOfFirstHearing()
{
    Decoder decoder;
    PositionReport report;
    for (const quint32 number : {500U, 100U, 300U, 100U, 500U, 0U}) {
        report.mmsi = number;
        decoder.take(report.payload());
    }
    QCOMPARE(decoder.ais.targetCount(), 4);
    const quint32 order[] = {500, 100, 300, 0};
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(decoder.ais.targetAt(i)->m_mmsi, order[i]);
        QCOMPARE(decoder.ais.findTarget(order[i]), decoder.ais.targetAt(i));
        QVERIFY(!decoder.ais.targetAt(i)->parent());
    }
    QVERIFY(!decoder.ais.targetAt(4));
    QVERIFY(!decoder.ais.targetAt(-1));
    QVERIFY(!decoder.ais.findTarget(noMmsi));
    QCOMPARE(decoder.ais.messageCount(), 6U);
}

void tst_QAis::newAndKnownTargets()
{
    FakeClock clock;
    Decoder decoder;
    PositionReport report;
    // The message counts, and the range is known, before anybody hears of it.
    QGpsKrd own;
    decoder.ais.setOwnPosition(QAis::RouterSource, &own);
    QList<uint> counts;
    decoder.journal.onSignal = [&](const QString &) {
        counts += decoder.ais.messageCount();
        QVERIFY(decoder.ais.findTarget(mmsi)->m_rangeValid);
    };
    decoder.take(report.payload());
    QCOMPARE(decoder.journal.take(), QStringList{"add 3 240827000"});
    QCOMPARE(decoder.ais.findTarget(mmsi)->m_lastUpdate, QTime(12, 0));
    clock.advance(42);
    report.type = 3;
    decoder.take(report.payload());
    QCOMPARE(decoder.journal.take(), QStringList{"update 3 240827000"});
    QCOMPARE(decoder.ais.findTarget(mmsi)->m_lastUpdate, QTime(12, 0, 42));
    QCOMPARE(decoder.ais.targetCount(), 1);
    QCOMPARE(counts, QList<uint>({1, 2}));
}

void tst_QAis::targetBornOfVoyageData()
{
    FakeClock clock;
    Decoder decoder;
    QGpsKrd own;
    decoder.ais.setOwnPosition(QAis::RouterSource, &own);
    QList<uint> counts;
    decoder.journal.onSignal = [&](const QString &) { counts += decoder.ais.messageCount(); };
    VoyageData data;
    data.mmsi = mmsi;
    decoder.take(data.payload(), VoyageData::FillBits);
    QCOMPARE(decoder.journal.take(), (QStringList{"add 3 240827000", "update 3 240827000"}));
    const QAisTarget *target = decoder.ais.findTarget(mmsi);
    QVERIFY(!target->m_rangeValid);
    decoder.ais.setOwnPosition(QAis::RouterSource, &own);
    QVERIFY(!target->m_rangeValid);
    QCOMPARE(target->m_lastUpdate, QTime(12, 0));
    clock.advance(5);
    decoder.take(data.payload(), VoyageData::FillBits);
    QCOMPARE(decoder.journal.take(), QStringList{"update 3 240827000"});
    QCOMPARE(target->m_lastUpdate, QTime(12, 0, 5));
    QCOMPARE(counts, QList<uint>({1, 1, 2}));
    // Its first report brings the range.
    decoder.take(PositionReport().payload());
    QVERIFY(target->m_rangeValid);
}

void tst_QAis::staticAndDynamicDataJoin()
{
    Decoder decoder;
    VoyageData data;
    data.mmsi = mmsi;
    decoder.take(PositionReport().payload());
    decoder.take(data.payload(), VoyageData::FillBits);
    QCOMPARE(decoder.ais.targetCount(), 1);
    const QAisTarget *target = decoder.ais.targetAt(0);
    QVERIFY(target->m_dynamicValid);
    QVERIFY(target->m_staticValid);
    QCOMPARE(target->m_heading, 332);
    QCOMPARE(target->m_shipName, QString("RUTH THERESA"));
}

void tst_QAis::ownReport()
{
    FakeClock clock;
    Decoder decoder;
    quint32 countInSignal = 99;
    decoder.journal.onSignal = [&](const QString &) {
        countInSignal = decoder.ais.ownMessageCount();
    };
    QVERIFY(decoder.takeOwn(PositionReport().payload()));
    QCOMPARE(decoder.journal.take(), (QStringList{"own 3", "position 3 2228.6000 1446.5600"}));
    // The message is counted behind its signals.
    QCOMPARE(countInSignal, 0U);
    QCOMPARE(decoder.ais.ownMessageCount(), 1U);
    QCOMPARE(decoder.ais.messageCount(), 0U);
    QCOMPARE(decoder.ais.targetCount(), 0);
    QVERIFY(!decoder.ais.findTarget(mmsi));
    const QAisTarget *own = decoder.ais.ownTarget();
    QCOMPARE(own->m_mmsi, mmsi);
    QVERIFY(own->m_dynamicValid);
    QCOMPARE(own->m_heading, 332);
    QCOMPARE(own->m_lastUpdate, QTime(12, 0));
    // It is for the receiver of the signal to hand the position to the ports.
    QVERIFY(!decoder.ais.hasOwnPosition());
}

void tst_QAis::ownReportPosition_data()
{
    QTest::addColumn<quint32>("longitude");
    QTest::addColumn<quint32>("latitude");
    QTest::addColumn<bool>("usable");
    QTest::newRow("0, 0") << 0U << 0U << true;
    QTest::newRow("just below the pole") << 0U << 53999999U << true;
    QTest::newRow("latitude exactly 5400.0") << 0U << 54000000U << false;
    QTest::newRow("latitude 91 degrees, not available") << 0U << 54600000U << false;
    QTest::newRow("just below 180 degrees") << 107999999U << 0U << true;
    QTest::newRow("longitude exactly 10800.0") << 108000000U << 0U << false;
    QTest::newRow("longitude 181 degrees, not available") << 108600000U << 0U << false;
    QTest::newRow("west") << 0xfffffffU << 0U << false;
    QTest::newRow("south") << 0U << 0x7ffffffU << false;
}

void tst_QAis::ownReportPosition()
{
    QFETCH(quint32, longitude);
    QFETCH(quint32, latitude);
    QFETCH(bool, usable);
    PositionReport report;
    report.longitude = longitude;
    report.latitude = latitude;
    Decoder decoder;
    decoder.takeOwn(report.payload());
    const QStringList heard = decoder.journal.take();
    QCOMPARE(heard.size(), usable ? 2 : 1);
    QCOMPARE(heard.first(), QString("own 3"));
    QCOMPARE(heard.last().startsWith("position 3 "), usable);
    QCOMPARE(decoder.ais.ownMessageCount(), 1U);
}

void tst_QAis::ownVoyageData()
{
    Decoder decoder;
    quint32 countInSignal = 99;
    decoder.journal.onSignal = [&](const QString &) {
        countInSignal = decoder.ais.ownMessageCount();
    };
    QVERIFY(decoder.takeOwn(VoyageData().payload(), VoyageData::FillBits));
    QCOMPARE(decoder.journal.take(), QStringList{"own 3"});
    QCOMPARE(countInSignal, 0U);
    QCOMPARE(decoder.ais.ownMessageCount(), 1U);
    QCOMPARE(decoder.ais.messageCount(), 0U);
    QCOMPARE(decoder.ais.targetCount(), 0);
    QVERIFY(decoder.ais.ownTarget()->m_staticValid);
    QCOMPARE(decoder.ais.ownTarget()->m_shipName, QString("RUTH THERESA"));
}

void tst_QAis::ownShipHasNoRange()
{
    Decoder decoder;
    QGpsKrd own;
    decoder.ais.setOwnPosition(QAis::RouterSource, &own);
    decoder.takeOwn(PositionReport().payload());
    QVERIFY(!decoder.ais.ownTarget()->m_rangeValid);
    QCOMPARE(decoder.ais.maxRange(), -1.0);
}

void tst_QAis::shortMessages_data()
{
    QTest::addColumn<QByteArray>("payload");
    const QByteArray report = PositionReport().payload();
    const QByteArray voyage = VoyageData().payload();
    for (int length = 1; length < report.size(); ++length)
        QTest::addRow("type 1 of %d characters", length) << report.left(length);
    for (int length = 1; length < voyage.size(); ++length)
        QTest::addRow("type 5 of %d characters", length) << voyage.left(length);
}

// The bits that are missing read as 0.
void tst_QAis::shortMessages()
{
    QFETCH(QByteArray, payload);
    constexpr int longest = 71;
    Decoder torn;
    Decoder filled;
    QVERIFY(torn.take(payload));
    QVERIFY(filled.take(payload.leftJustified(longest, '0')));
    QCOMPARE(torn.ais.messageCount(), 1U);
    const QAisTarget *a = torn.ais.targetAt(0);
    const QAisTarget *b = filled.ais.targetAt(0);
    QCOMPARE(a->m_mmsi, b->m_mmsi);
    QCOMPARE(a->m_position.m_lat, b->m_position.m_lat);
    QCOMPARE(a->m_heading, b->m_heading);
    QCOMPARE(a->m_shipName, b->m_shipName);
    QCOMPARE(a->m_draught, b->m_draught);
    QCOMPARE(a->m_destination, b->m_destination);
}

void tst_QAis::anyFillBits_data()
{
    QTest::addColumn<int>("fillBits");
    QTest::addColumn<bool>("counts");
    constexpr int max = std::numeric_limits<int>::max();
    constexpr int min = std::numeric_limits<int>::min();
    QTest::newRow("none") << 0 << true;
    QTest::newRow("negative") << -7 << true;
    QTest::newRow("-2^31") << min << true;
    QTest::newRow("down to the type") << 162 << true;
    QTest::newRow("down into the type") << 168 - 5 << false;
    QTest::newRow("all bits") << 168 << false;
    QTest::newRow("more than all") << 169 << false;
    QTest::newRow("2^31 - 1") << max << false;
}

void tst_QAis::anyFillBits()
{
    QFETCH(int, fillBits);
    QFETCH(bool, counts);
    Decoder decoder;
    QVERIFY(decoder.take(PositionReport().payload(), fillBits));
    QCOMPARE(decoder.ais.messageCount(), counts ? 1U : 0U);
}

QTEST_GUILESS_MAIN(tst_QAis)
#include "tst_qais.moc"
