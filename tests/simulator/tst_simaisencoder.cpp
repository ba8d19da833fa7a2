#include "simulator/instruments/aisencoder.h"
#include "simulator/instruments/otherstations.h"

#include "aisbits.h"

#include <QtTest>

Q_DECLARE_METATYPE(tk7sim::AisPositionReport)
Q_DECLARE_METATYPE(tk7sim::AisVoyageData)
Q_DECLARE_METATYPE(tk7sim::OtherMessage)

using namespace tk7sim;

/*!
 * The bits of AIS messages, against messages from the air and against the places that the fields
 * have in ITU-R M.1371.
 */
class TestSimAisEncoder : public QObject
{
    Q_OBJECT

private slots:
    void armour();
    void alphabet();
    void texts_data();
    void texts();
    void fillBits_data();
    void fillBits();
    void positionsFromTheAir_data();
    void positionsFromTheAir();
    void voyageDataFromTheAir();
    void positionFields_data();
    void positionFields();
    void nothingKnown();
    void voyageFields_data();
    void voyageFields();
    void nothingKnownOfTheVoyage();
    void bodies_data();
    void bodies();
    void longTextsAreCut();
    void otherMessages_data();
    void otherMessages();
    void everyOtherMessageIsSent();

private:
    static AisBits bitsOf(const AisEncoder &message) { return AisBits(message.payload()); }
};

namespace {

// Up to the communication state, which tells of the radio slots and not of the ship.
constexpr int positionBits = 149;

} // namespace

void TestSimAisEncoder::armour()
{
    const QByteArray characters =
        "0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVW`abcdefghijklmnopqrstuvw";
    QCOMPARE(characters.size(), 64);
    AisEncoder message;
    for (int value = 0; value < 64; ++value) {
        message.put(value, 6);
    }
    QCOMPARE(message.payload(), characters);
    QCOMPARE(message.bitCount(), 384);
}

void TestSimAisEncoder::alphabet()
{
    const QByteArray characters =
        "@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_ !\"#$%&'()*+,-./0123456789:;<=>?";
    AisEncoder texts;
    texts.putText(characters, 64);
    AisEncoder values;
    for (int value = 0; value < 64; ++value) {
        values.put(value, 6);
    }
    QCOMPARE(texts.payload(), values.payload());
}

void TestSimAisEncoder::texts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("stands");
    QTest::newRow("filled up by at signs") << QByteArray("AB") << 5 << QByteArray("AB@@@");
    QTest::newRow("fits") << QByteArray("ABCDE") << 5 << QByteArray("ABCDE");
    QTest::newRow("cut") << QByteArray("ABCDEF") << 5 << QByteArray("ABCDE");
    QTest::newRow("none") << QByteArray() << 3 << QByteArray("@@@");
}

void TestSimAisEncoder::texts()
{
    QFETCH(QByteArray, text);
    QFETCH(int, length);
    QFETCH(QByteArray, stands);
    AisEncoder message;
    message.putText(text, length);
    QCOMPARE(bitsOf(message).text(0, length), stands);
}

void TestSimAisEncoder::fillBits_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("fill");
    QTest::addColumn<int>("characters");
    QTest::newRow("none") << 0 << 0 << 0;
    QTest::newRow("a bit") << 1 << 5 << 1;
    QTest::newRow("a character") << 6 << 0 << 1;
    QTest::newRow("position report") << 168 << 0 << 28;
    QTest::newRow("aid to navigation") << 272 << 4 << 46;
    QTest::newRow("voyage data") << 424 << 2 << 71;
}

void TestSimAisEncoder::fillBits()
{
    QFETCH(int, bits);
    QFETCH(int, fill);
    QFETCH(int, characters);
    AisEncoder message;
    for (int i = 0; i < bits; ++i) {
        message.put(1, 1);
    }
    QCOMPARE(message.fillBits(), fill);
    QCOMPARE(message.payload().size(), characters);
}

void TestSimAisEncoder::positionsFromTheAir_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<AisPositionReport>("report");
    const auto make = [](quint32 mmsi, int status, int turn, int speed, bool accurate,
                         qint32 longitude, qint32 latitude, int course, int heading, int second) {
        return AisPositionReport{1,         mmsi,     status, turn,    speed, accurate,
                                 longitude, latitude, course, heading, second};
    };
    QTest::newRow("moored, in the west")
        << QByteArray("177KQJ5000G?tO`K>RA1wUbN0TKH")
        << make(477553000, 5, 0, 0, false, -73407500, 28549700, 510, 181, 15);
    QTest::newRow("turning to port")
        << QByteArray("15RTgt0PAso;90TKcjM8h6g208CQ")
        << make(371798000, 0, -127, 123, true, -74037230, 29028980, 2240, 215, 33);
}

void TestSimAisEncoder::positionsFromTheAir()
{
    QFETCH(QByteArray, payload);
    QFETCH(AisPositionReport, report);
    const AisEncoder message = encoded(report);
    QCOMPARE(message.bitCount(), 168);
    QCOMPARE(bitsOf(message).first(positionBits), AisBits(payload).first(positionBits));
}

// This station fills its texts up by blanks.
void TestSimAisEncoder::voyageDataFromTheAir()
{
    AisVoyageData data;
    data.mmsi = 351759000;
    data.imo = 9134270;
    data.callSign = "3FOF8  ";
    data.name = "EVER DIADEM         ";
    data.shipType = 70;
    data.toBow = 225;
    data.toStern = 70;
    data.toPort = 1;
    data.toStarboard = 31;
    data.fixType = 1;
    data.month = 5;
    data.day = 15;
    data.hour = 14;
    data.minute = 0;
    data.draught = 122;
    data.destination = "NEW YORK            ";
    QCOMPARE(encoded(data).payload(),
             QByteArray("55?MbV02;H;s<HtKR20EHE:0@T4@Dn2222222216L961O5Gf0NSQEp6ClRp8"
                        "88888888880"));
}

void TestSimAisEncoder::positionFields_data()
{
    QTest::addColumn<AisPositionReport>("report");
    QTest::addColumn<int>("at");
    QTest::addColumn<int>("width");
    QTest::addColumn<qint64>("value");
    const auto row = [](const char *name, int at, int width, qint64 value, const auto &set) {
        AisPositionReport report;
        set(&report);
        QTest::newRow(name) << report << at << width << value;
    };
    using Report = AisPositionReport;
    row("type", 0, 6, 3, [](Report *r) { r->type = 3; });
    row("MMSI", 8, 30, 0x3fffffff, [](Report *r) { r->mmsi = 0x3fffffff; });
    row("navigation status", 38, 4, 15, [](Report *r) { r->navStatus = 15; });
    row("turning to starboard", 42, 8, 127, [](Report *r) { r->rateOfTurn = 127; });
    row("turning to port", 42, 8, 0x81, [](Report *r) { r->rateOfTurn = -127; });
    row("speed", 50, 10, 1022, [](Report *r) { r->speed = 1022; });
    row("accurate", 60, 1, 1, [](Report *r) { r->isAccurate = true; });
    row("east", 61, 28, 108000000, [](Report *r) { r->longitude = 108000000; });
    row("west", 61, 28, (1 << 28) - 1, [](Report *r) { r->longitude = -1; });
    row("north", 89, 27, 54000000, [](Report *r) { r->latitude = 54000000; });
    row("south", 89, 27, (1 << 27) - 54000000, [](Report *r) { r->latitude = -54000000; });
    row("course", 116, 12, 3599, [](Report *r) { r->course = 3599; });
    row("heading", 128, 9, 359, [](Report *r) { r->heading = 359; });
    row("second", 137, 6, 59, [](Report *r) { r->second = 59; });
}

void TestSimAisEncoder::positionFields()
{
    QFETCH(AisPositionReport, report);
    QFETCH(int, at);
    QFETCH(int, width);
    QFETCH(qint64, value);
    const AisBits bits = bitsOf(encoded(report));
    QCOMPARE(static_cast<qint64>(bits.number(at, width)), value);
    // All others stand as in a report of which nothing is known.
    const AisBits untouched = bitsOf(encoded(AisPositionReport()));
    for (int bit = 0; bit < bits.size(); ++bit) {
        if (bit < at || bit >= at + width) {
            QCOMPARE(bits.number(bit, 1), untouched.number(bit, 1));
        }
    }
}

void TestSimAisEncoder::nothingKnown()
{
    const AisBits bits = bitsOf(encoded(AisPositionReport()));
    QCOMPARE(bits.number(0, 6), 1U);
    QCOMPARE(bits.signedNumber(42, 8), -128);
    QCOMPARE(bits.number(50, 10), 1023U);
    QCOMPARE(bits.signedNumber(61, 28), 181 * 600000);
    QCOMPARE(bits.signedNumber(89, 27), 91 * 600000);
    QCOMPARE(bits.number(116, 12), 3600U);
    QCOMPARE(bits.number(128, 9), 511U);
    QCOMPARE(bits.number(137, 6), 60U);
    QCOMPARE(bits.number(143, 25), 0U);
}

void TestSimAisEncoder::voyageFields_data()
{
    QTest::addColumn<AisVoyageData>("data");
    QTest::addColumn<int>("at");
    QTest::addColumn<int>("width");
    QTest::addColumn<quint32>("value");
    const auto row = [](const char *name, int at, int width, quint32 value, const auto &set) {
        AisVoyageData data;
        set(&data);
        QTest::newRow(name) << data << at << width << value;
    };
    using Data = AisVoyageData;
    constexpr quint32 letterZ = 26;
    row("MMSI", 8, 30, 987654321, [](Data *d) { d->mmsi = 987654321; });
    row("IMO number", 40, 30, 9999999, [](Data *d) { d->imo = 9999999; });
    row("first of the call sign", 70, 6, letterZ, [](Data *d) { d->callSign = "Z"; });
    row("last of the call sign", 106, 6, letterZ, [](Data *d) { d->callSign = "@@@@@@Z"; });
    row("first of the name", 112, 6, letterZ, [](Data *d) { d->name = "Z"; });
    row("last of the name", 226, 6, letterZ, [](Data *d) { d->name = QByteArray(19, '@') + 'Z'; });
    row("ship type", 232, 8, 255, [](Data *d) { d->shipType = 255; });
    row("to the bow", 240, 9, 511, [](Data *d) { d->toBow = 511; });
    row("to the stern", 249, 9, 511, [](Data *d) { d->toStern = 511; });
    row("to port", 258, 6, 63, [](Data *d) { d->toPort = 63; });
    row("to starboard", 264, 6, 63, [](Data *d) { d->toStarboard = 63; });
    row("position fixing device", 270, 4, 15, [](Data *d) { d->fixType = 15; });
    row("month", 274, 4, 12, [](Data *d) { d->month = 12; });
    row("day", 278, 5, 31, [](Data *d) { d->day = 31; });
    row("hour", 283, 5, 23, [](Data *d) { d->hour = 23; });
    row("minute", 288, 6, 59, [](Data *d) { d->minute = 59; });
    row("draught", 294, 8, 255, [](Data *d) { d->draught = 255; });
    row("first of the destination", 302, 6, letterZ, [](Data *d) { d->destination = "Z"; });
    row("last of the destination", 416, 6, letterZ,
        [](Data *d) { d->destination = QByteArray(19, '@') + 'Z'; });
}

void TestSimAisEncoder::voyageFields()
{
    QFETCH(AisVoyageData, data);
    QFETCH(int, at);
    QFETCH(int, width);
    QFETCH(quint32, value);
    const AisBits bits = bitsOf(encoded(data));
    QCOMPARE(bits.number(at, width), value);
    const AisBits untouched = bitsOf(encoded(AisVoyageData()));
    for (int bit = 0; bit < bits.size(); ++bit) {
        if (bit < at || bit >= at + width) {
            QCOMPARE(bits.number(bit, 1), untouched.number(bit, 1));
        }
    }
}

void TestSimAisEncoder::nothingKnownOfTheVoyage()
{
    const AisEncoder message = encoded(AisVoyageData());
    QCOMPARE(message.bitCount(), 424);
    const AisBits bits = bitsOf(message);
    QCOMPARE(bits.number(0, 6), 5U);
    QCOMPARE(bits.text(70, 7), QByteArray(7, '@'));
    QCOMPARE(bits.number(274, 4), 0U);
    QCOMPARE(bits.number(278, 5), 0U);
    QCOMPARE(bits.number(283, 5), 24U);
    QCOMPARE(bits.number(288, 6), 60U);
}

void TestSimAisEncoder::bodies_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<QByteArrayList>("bodies");
    QTest::newRow("one") << 168 << QByteArrayList{"$VRAIM,1,1,,B," + QByteArray(28, '0') + ",0"};
    QTest::newRow("one with fill bits")
        << 160 << QByteArrayList{"$VRAIM,1,1,,B," + QByteArray(27, '0') + ",2"};
    QTest::newRow("just one") << 354
                              << QByteArrayList{"$VRAIM,1,1,,B," + QByteArray(59, '0') + ",0"};
    QTest::newRow("two") << 424
                         << QByteArrayList{"$VRAIM,2,1,7,B," + QByteArray(59, '0') + ",0",
                                           "$VRAIM,2,2,7,B," + QByteArray(12, '0') + ",2"};
    QTest::newRow("three") << 709
                           << QByteArrayList{"$VRAIM,3,1,7,B," + QByteArray(59, '0') + ",0",
                                             "$VRAIM,3,2,7,B," + QByteArray(59, '0') + ",0",
                                             "$VRAIM,3,3,7,B,0,5"};
}

void TestSimAisEncoder::bodies()
{
    QFETCH(int, bits);
    QFETCH(QByteArrayList, bodies);
    AisEncoder message;
    for (int i = 0; i < bits; ++i) {
        message.put(0, 1);
    }
    QCOMPARE(QByteArrayList(aisBodies("$VRAIM", 7, "B", message)), bodies);
}

void TestSimAisEncoder::longTextsAreCut()
{
    AisVoyageData data;
    data.callSign = QByteArray(30, 'C');
    data.name = QByteArray(30, 'N');
    data.destination = QByteArray(30, 'D');
    const AisEncoder message = encoded(data);
    QCOMPARE(message.bitCount(), 424);
    const AisBits bits = bitsOf(message);
    QCOMPARE(bits.text(70, 7), QByteArray(7, 'C'));
    QCOMPARE(bits.text(112, 20), QByteArray(20, 'N'));
    QCOMPARE(bits.text(302, 20), QByteArray(20, 'D'));
    QCOMPARE(bits.number(232, 8), 0U);
}

void TestSimAisEncoder::otherMessages_data()
{
    QTest::addColumn<OtherMessage>("message");
    QTest::addColumn<quint32>("type");
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("longitudeAt"); // the latitude follows; -1: none
    QTest::addColumn<int>("nameAt");      // -1: none
    QTest::addColumn<int>("callSignAt");
    QTest::newRow("base station") << OtherMessage::BaseStation << 4U << 168 << 79 << -1 << -1;
    QTest::newRow("aircraft") << OtherMessage::SearchAircraft << 9U << 168 << 61 << -1 << -1;
    QTest::newRow("class B") << OtherMessage::ClassBPosition << 18U << 168 << 57 << -1 << -1;
    QTest::newRow("aid to navigation")
        << OtherMessage::AidToNavigation << 21U << 272 << 164 << 43 << -1;
    QTest::newRow("class B, name") << OtherMessage::ClassBName << 24U << 160 << -1 << 40 << -1;
    QTest::newRow("class B, data") << OtherMessage::ClassBData << 24U << 168 << -1 << -1 << 90;
}

void TestSimAisEncoder::otherMessages()
{
    QFETCH(OtherMessage, message);
    QFETCH(quint32, type);
    QFETCH(int, bits);
    QFETCH(int, longitudeAt);
    QFETCH(int, nameAt);
    QFETCH(int, callSignAt);
    OtherStation station;
    station.message = message;
    station.mmsi = 992111901;
    station.name = "ELBE APPROACH";
    station.callSign = "DA1234";
    station.motion = DeadReckoning({-54.5, 7.25, 90}, 5, 0);
    const AisEncoder made =
        messageOf(station, QDateTime(QDate(2026, 11, 21), QTime(14, 7, 42), Qt::UTC));
    QCOMPARE(made.bitCount(), bits);
    const AisBits read = bitsOf(made);
    QCOMPARE(read.number(0, 6), type);
    QCOMPARE(read.number(8, 30), 992111901U);
    if (longitudeAt >= 0) {
        QCOMPARE(read.signedNumber(longitudeAt, 28), 4350000);
        QCOMPARE(read.signedNumber(longitudeAt + 28, 27), -32700000);
    }
    if (nameAt >= 0) {
        QCOMPARE(read.text(nameAt, 20), QByteArray("ELBE APPROACH@@@@@@@"));
    }
    if (callSignAt >= 0) {
        QCOMPARE(read.text(callSignAt, 7), QByteArray("DA1234@"));
        QCOMPARE(read.number(38, 2), 1U);
    }
    if (message == OtherMessage::BaseStation) {
        QCOMPARE(read.number(38, 14), 2026U);
        QCOMPARE(read.number(52, 4), 11U);
        QCOMPARE(read.number(56, 5), 21U);
        QCOMPARE(read.number(61, 5), 14U);
        QCOMPARE(read.number(66, 6), 7U);
        QCOMPARE(read.number(72, 6), 42U);
    }
}

void TestSimAisEncoder::everyOtherMessageIsSent()
{
    QSet<int> kinds;
    const auto stations = makeOtherStations(3, 2, 1);
    for (const OtherStation &station : stations) {
        kinds.insert(static_cast<int>(station.message));
        QVERIFY(station.period > 0);
        QVERIFY(station.station < 2);
    }
    QCOMPARE(kinds.size(), 6);
}

QTEST_GUILESS_MAIN(TestSimAisEncoder)
#include "tst_simaisencoder.moc"
