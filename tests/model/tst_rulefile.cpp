#include "rulefilebytes.h"

#include "failingdevice.h"
#include "model/sentencebuilders.h"
#include "randommodel.h"
#include "richmodel.h"

#include <QtTest>

#include <functional>

// Rule files against golden files that a script makes from the format alone, and against what the
// format says of each field. In the files used here every offset is worked out beside the code.
// What is left of a damaged file is tst_rulefile_damaged.

using namespace RuleFileBytes;
using Setup = std::function<void(RouterModel &)>;
Q_DECLARE_METATYPE(Setup)
Q_DECLARE_METATYPE(ChannelRecord)

namespace {

constexpr quint32 RoundTrips = 1000;
const char *const SeedVariable = "TK7_TEST_SEED";

} // namespace

class TestRuleFile : public QObject
{
    Q_OBJECT

private slots:
    void golden_data();
    void golden();
    void roundTrip();
    void layout_data();
    void layout();

    void fileFlags_data();
    void fileFlags();
    void allFlagsAreRead();
    void headers_data();
    void headers();
    void foreignInputs_data();
    void foreignInputs();
    void foreignInputsOnTheWire();
    void speeds_data();
    void speeds();
    void speedsGoToTheSetter();
    void names_data();
    void names();
    void sentenceNames_data();
    void sentenceNames();
    void freeSlotsKeepTheirNames();
    void magic_data();
    void magic();
    void moreBytesAreNotRead();
    void workFromWhereTheDeviceStands();

    void refusedModels_data();
    void refusedModels();
    void latin1Names();
    void fullDevice_data();
    void fullDevice();
};

void TestRuleFile::golden_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<Setup>("setup");

    QTest::newRow("a router that nobody has set up")
        << QByteArray("rules-default.vrr") << Setup([](RouterModel &) {});
    QTest::newRow("every field in use")
        << QByteArray("rules-rich.vrr") << Setup([](RouterModel &model) { model = richModel(); });
}

void TestRuleFile::golden()
{
    QFETCH(QByteArray, file);
    QFETCH(Setup, setup);
    RouterModel model;
    setup(model);
    const QByteArray expected = dataFile(file);
    QCOMPARE(written(model).toHex(' '), expected.toHex(' '));

    RouterModel loaded;
    QVERIFY(readInto(loaded, expected));
    QVERIFY(loaded == asLoaded(model));
}

// TK7_TEST_SEED repeats a run.
void TestRuleFile::roundTrip()
{
    const quint32 first = qEnvironmentVariableIsSet(SeedVariable)
        ? quint32(qEnvironmentVariableIntValue(SeedVariable))
        : QRandomGenerator::global()->generate() / 2;
    qInfo("seeds from %u", first);
    for (quint32 seed = first; seed < first + RoundTrips; ++seed) {
        RouterModel model = randomModel(seed);
        QRandomGenerator random(seed);
        for (OutputPortRecord &port : model.output_ports) {
            for (QChar &letter : port.output_name)
                letter = QLatin1Char(char(random.bounded(' ', 0x7f)));
        }
        RouterModel loaded = randomModel(~seed);
        loaded.filter_list.fill(QString());
        const QByteArray bytes = written(model);
        QVERIFY2(readInto(loaded, bytes), qPrintable(QStringLiteral("seed %1").arg(seed)));
        QVERIFY2(loaded == model, qPrintable(QStringLiteral("seed %1").arg(seed)));
        QCOMPARE(written(loaded), bytes);
    }
}

// Each field against the file of a router that nobody has set up.
void TestRuleFile::layout_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QByteArray>("bytes");

    const auto row = [](const char *name, int offset, const QByteArray &bytes, const Setup &setup) {
        QTest::newRow(name) << setup << offset << bytes;
    };
    row("main_input", channelOffset(0, 0) + 1, "\x03",
        [](RouterModel &m) { channelOf(m, 0, 0).main_input = 3; });
    row("reserve_input", channelOffset(0, 0) + 2, "\x0b",
        [](RouterModel &m) { channelOf(m, 0, 0).reserve_input = 11; });
    row("filter_mask, lowest byte first", channelOffset(0, 0) + 3, "\x44\x33\x22\x91",
        [](RouterModel &m) { channelOf(m, 0, 0).filter_mask = 0x91223344; });
    row("hdr and its flag", channelOffset(0, 0), QByteArray("\x04\x0f\x0f\0\0\0\0GP", 9),
        [](RouterModel &m) {
            channelOf(m, 0, 0).hdr_enabled = true;
            channelOf(m, 0, 0).hdr = "GP";
        });
    row("main_input of the last channel", channelOffset(0, 11) + 1, QByteArray(1, '\0'),
        [](RouterModel &m) { channelOf(m, 0, 11).main_input = 0; });
    row("main_input of the last port", channelOffset(11, 11) + 1, "\x09",
        [](RouterModel &m) { channelOf(m, 11, 11).main_input = 9; });
    row("speed", portOffset(7) + SpeedOffset, QByteArray("\x00\x96\x00\x00", 4),
        [](RouterModel &m) { m.output_ports[7].speed = 38400; });
    row("a speed of three bytes", portOffset(11) + SpeedOffset, QByteArray("\x00\xc2\x01\x00", 4),
        [](RouterModel &m) { m.output_ports[11].speed = 115200; });
    row("a name of an output port, and its 0", portOffset(11) + NameOffset,
        QByteArray("VDR\0\xff\x0f\0\0RMC", 11),
        [](RouterModel &m) { m.output_ports[11].output_name = "VDR"; });
    row("filter_list_mask, and the names of its slots alone", MaskOffset,
        QByteArray("\x01\x00\x00\x80RMCMWV\0", 11), [](RouterModel &m) {
            m.filter_list_mask = 0x80000001;
            m.filter_list[31] = "MWV";
        });
    row("a name of an input port, and its 0", InputNamesOffset + 11, QByteArray("gPs #/19\0", 9),
        [](RouterModel &m) { m.input_ports[11].input_name = "gPs #/19"; });
}

void TestRuleFile::layout()
{
    QFETCH(Setup, setup);
    QFETCH(int, offset);
    QFETCH(QByteArray, bytes);
    RouterModel model;
    const QByteArray before = written(model);
    setup(model);
    const QByteArray after = written(model);
    QCOMPARE(after.left(offset), before.left(offset));
    QCOMPARE(after.mid(offset, bytes.size()).toHex(' '), bytes.toHex(' '));

    RouterModel loaded;
    QVERIFY(readInto(loaded, after));
    QVERIFY(loaded == model);
}

// The order of the bits is the file's own: on the wire the same options stand in another.
void TestRuleFile::fileFlags_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<int>("flags");
    QTest::addColumn<int>("wireFlags");

    const auto row = [](const char *name, int flags, int wireFlags,
                        void (*change)(ChannelRecord &)) {
        const Setup setup = [change](RouterModel &model) { change(channelOf(model, 0, 0)); };
        QTest::newRow(name) << setup << flags << wireFlags;
    };
    row("no option", 0x00, 0x00, [](ChannelRecord &) {});
    row("bit 0 filter", 0x01, 0x02, [](ChannelRecord &c) { c.filter_enabled = true; });
    row("bit 1 black list", 0x02, 0x04, [](ChannelRecord &c) { c.filter_type = BlackList; });
    row("bit 2 header override", 0x04, 0x08, [](ChannelRecord &c) {
        c.hdr_enabled = true;
        c.hdr = "GP";
    });
    row("bit 3 checksum check", 0x08, 0x01, [](ChannelRecord &c) { c.crs_enabled = true; });
    row("smart function 1", 0x10, 0x10, [](ChannelRecord &c) { c.smart_function = 1; });
    row("smart function 7", 0x70, 0x70, [](ChannelRecord &c) { c.smart_function = 7; });
    row("all", 0x5f, 0x5f, [](ChannelRecord &c) {
        c.filter_enabled = true;
        c.filter_type = BlackList;
        c.hdr_enabled = true;
        c.hdr = "GP";
        c.crs_enabled = true;
        c.smart_function = 5;
    });
}

void TestRuleFile::fileFlags()
{
    QFETCH(Setup, setup);
    RouterModel model;
    setup(model);
    QTEST(int(quint8(written(model).at(channelOffset(0, 0)))), "flags");
    QTEST(int(flagsByte(channelOf(model, 0, 0))), "wireFlags");
}

void TestRuleFile::allFlagsAreRead()
{
    const QByteArray file = written(RouterModel());
    for (int flags = 0; flags < 256; ++flags) {
        RouterModel model;
        QVERIFY(readInto(model, replaced(file, channelOffset(4, 7), QByteArray(1, char(flags)))));
        ChannelRecord expected;
        expected.filter_enabled = flags & 1;
        expected.filter_type = flags & 2 ? 1 : 0;
        expected.crs_enabled = flags & 8;
        expected.smart_function = quint8(flags / 16 % 8);
        QVERIFY2(channelOf(model, 4, 7) == expected, qPrintable(QString::number(flags)));
    }
}

void TestRuleFile::headers_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("hdr");

    QTest::newRow("bit 2 and two letters") << 4 << QByteArray("GP") << true << "GP";
    QTest::newRow("bit 2 with two blanks gives no header") << 4 << QByteArray("  ") << false << "";
    QTest::newRow("bit 2 clear with two letters gives a header")
        << 0 << QByteArray("GP") << true << "GP";
    QTest::newRow("bit 2 clear with two blanks") << 0 << QByteArray("  ") << false << "";
    QTest::newRow("one blank, in front") << 4 << QByteArray(" P") << false << "";
    QTest::newRow("one blank, behind") << 4 << QByteArray("G ") << false << "";
    QTest::newRow("each byte is a character of Latin-1")
        << 4 << QByteArray("\xc3\xa9") << true << QString::fromLatin1("\xc3\xa9");
    QTest::newRow("two zeros are no blanks")
        << 0 << QByteArray(2, '\0') << true << QString(2, QChar(u'\0'));
}

void TestRuleFile::headers()
{
    QFETCH(int, flags);
    QFETCH(QByteArray, bytes);
    QByteArray file = written(RouterModel());
    file[channelOffset(2, 3)] = char(flags);
    RouterModel model;
    channelOf(model, 2, 3).hdr = "XX";
    QVERIFY(readInto(model, replaced(file, channelOffset(2, 3) + 7, bytes)));
    QTEST(channelOf(model, 2, 3).hdr_enabled, "enabled");
    QTEST(channelOf(model, 2, 3).hdr, "hdr");
    QCOMPARE(brokenInvariant(model, true), QByteArray());
}

void TestRuleFile::foreignInputs_data()
{
    QTest::addColumn<int>("main");
    QTest::addColumn<int>("reserve");

    for (const int number : {12, 13, 14, 16, 200, 255}) {
        QTest::addRow("%d as Main", number) << number << 15;
        QTest::addRow("%d as Reserve", number) << 15 << number;
        QTest::addRow("%d as both", number) << number << number;
        QTest::addRow("%d as Main, 3 as Reserve", number) << number << 3;
    }
}

void TestRuleFile::foreignInputs()
{
    QFETCH(int, main);
    QFETCH(int, reserve);
    const char inputs[] = {char(main), char(reserve)};
    const QByteArray file =
        replaced(written(RouterModel()), channelOffset(6, 1) + 1, QByteArray(inputs, 2));
    RouterModel model;
    QVERIFY(readInto(model, file));
    QTEST(int(channelOf(model, 6, 1).main_input), "main");
    QTEST(int(channelOf(model, 6, 1).reserve_input), "reserve");
    QCOMPARE(isEmpty(channelOf(model, 6, 1)), reserve != 3);
    QCOMPARE(brokenInvariant(model, true), QByteArray());
    QCOMPARE(written(model).toHex(' '), file.toHex(' '));
}

// What is a nibble goes as it is; a greater number, which only a file can hold, as no port.
void TestRuleFile::foreignInputsOnTheWire()
{
    RouterModel model;
    int channel = 0;
    for (const int number : {12, 13, 14, 16, 200, 255}) {
        channelOf(model, 0, channel).main_input = quint8(number);
        channelOf(model, 0, channel++).reserve_input = 7;
        channelOf(model, 0, channel++).reserve_input = quint8(number);
    }
    const QString sentence = MakeRuleSentence(model, 0, false);
    QVERIFY2(sentence.startsWith("$VRRUL,0,W,"
                                 "7C00CF007D00DF007E00EF007F00FF007F00FF007F00FF00*"),
             qPrintable(sentence));
}

void TestRuleFile::speeds_data()
{
    QTest::addColumn<quint32>("speed");
    QTest::addColumn<quint32>("loaded");

    for (const quint32 speed : portSpeeds())
        QTest::addRow("%u", speed) << speed << speed;
    for (const quint32 speed : {0U, 1200U, 4801U, 0x80000000U | 2400U, 0xffffffffU})
        QTest::addRow("%u is skipped", speed) << speed << 19200U;
}

void TestRuleFile::speeds()
{
    QFETCH(quint32, speed);
    QByteArray number;
    for (int shift = 0; shift < 32; shift += 8)
        number += char(speed >> shift & 0xff);
    RouterModel model;
    model.output_ports[5].speed = 19200;
    const int offset = portOffset(5) + SpeedOffset;
    QVERIFY(readInto(model, replaced(written(RouterModel()), offset, number)));
    QTEST(model.output_ports[5].speed, "loaded");
}

void TestRuleFile::speedsGoToTheSetter()
{
    const RouterModel rich = asLoaded(richModel());
    QByteArray file = written(rich);
    file[MagicSize + SpeedOffset] = '\x07'; // 2400 becomes 2311
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    RouterModel model;
    QVector<quint32> expected;
    QVector<quint32> got;
    for (const OutputPortRecord &port : rich.output_ports)
        expected += port.speed;
    expected[0] = 2311;
    QVERIFY(RuleFile::read(buffer, model, [&](quint8 port, quint32 speed) {
        QCOMPARE(int(port), got.size());
        // The channels of the port are there already, its name is not.
        QVERIFY(model.output_ports[port].channels == rich.output_ports[port].channels);
        QCOMPARE(model.output_ports[port].output_name, QString());
        got += speed;
    }));
    QCOMPARE(got, expected);
    for (const OutputPortRecord &port : model.output_ports)
        QCOMPARE(port.speed, DefaultPortSpeed); // to store it is the setter's
}

// What is left of the device behind a name must be read as it would be behind an empty one.
void TestRuleFile::names_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("taken");

    const auto row = [](const char *title, const QByteArray &bytes, const QString &name,
                        int taken) { QTest::newRow(title) << bytes << name << taken; };
    row("none", QByteArray("\0", 1), "", 1);
    row("one character", QByteArray("A\0", 2), "A", 2);
    row("eight characters are read whole, and the 0 behind them", QByteArray("ABCDEFGH\0", 9),
        "ABCDEFGH", 9);
    row("eight characters without a 0 take the byte behind them", "ABCDEFGHI", "ABCDEFGH", 9);
    row("blanks", QByteArray("  x \0", 5), "  x ", 5);
    row("a line feed ends it and belongs to it", QByteArray("AB\nCD\0", 6), "AB\n", 4);
    row("a line feed in front", QByteArray("\nCD\0", 4), "\n", 2);
    row("a line feed behind the 0 is not looked at", QByteArray("AB\0\n", 4), "AB", 3);
    row("a carriage return is a character", QByteArray("AB\r\0", 4), "AB\r", 4);
    row("two bytes of UTF-8 count as one", QByteArray("\xc3\xa9\0", 3), QString::fromLatin1("\xe9"),
        2);
    row("a byte that is no UTF-8 counts as one", QByteArray("A\xe9Z\0", 4),
        QStringLiteral("A\ufffdZ"), 4);
}

void TestRuleFile::names()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, taken);
    const QByteArray rest = written(richModel()).mid(MagicSize + PortSize); // port 0 has no name
    const QByteArray start = written(richModel()).left(MagicSize + NameOffset);
    RouterModel model;
    RouterModel expected;
    const bool isRead = readInto(model, start + bytes + rest);
    QTEST(model.output_ports[0].output_name, "name");
    model.output_ports[0].output_name.clear();
    const QByteArray left = QByteArray(bytes + rest).mid(taken);
    QCOMPARE(isRead, readInto(expected, start + '\0' + left));
    QVERIFY(model == expected);
}

void TestRuleFile::sentenceNames_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("name");

    const auto row = [](const char *title, const QByteArray &bytes, bool ok, const QString &name) {
        QTest::newRow(title) << bytes << ok << name;
    };
    row("three letters", "MWV", true, "MWV");
    row("three of any ASCII", " a,", true, " a,");
    row("a line feed as the last", "MW\n", true, "MW\n");
    row("a line feed before the last", "M\nV", false, "GLL");
    row("a 0 as the last", QByteArray("MW\0", 3), false, "GLL");
    row("a 0 as the first", QByteArray("\0MW", 3), false, "GLL");
    row("three bytes of UTF-8 are one character", "\xe2\x82\xac", false, "GLL");
    row("three bytes that are no UTF-8", "\xff\xff\xff", true, QString(3, QChar(0xfffd)));
}

void TestRuleFile::sentenceNames()
{
    constexpr int slot = 2;
    QFETCH(QByteArray, bytes);
    const QByteArray file =
        replaced(written(RouterModel()), SlotsOffset + slot * SentenceNameLength, bytes);
    RouterModel model;
    model.filter_list[slot + 1] = "old";
    QTEST(readInto(model, file), "ok");
    QTEST(model.filter_list[slot], "name");
    QFETCH(bool, ok);
    QCOMPARE(model.filter_list[slot + 1], ok ? QStringLiteral("ZDA") : QStringLiteral("old"));
}

void TestRuleFile::freeSlotsKeepTheirNames()
{
    RouterModel model;
    model.filter_list_mask = 1 << 3;
    const QByteArray file = written(model);
    RouterModel loaded;
    loaded.filter_list[0] = "AAA";
    loaded.filter_list[31] = "CCC";
    loaded.filter_list_mask = 0x80000001;
    QVERIFY(readInto(loaded, file));
    QCOMPARE(loaded.filter_list_mask, quint32(1 << 3));
    QCOMPARE(loaded.filter_list[0], QStringLiteral("AAA"));
    QCOMPARE(loaded.filter_list[3], QStringLiteral("ZDA"));
    QCOMPARE(loaded.filter_list[31], QStringLiteral("CCC"));
}

void TestRuleFile::magic_data()
{
    QTest::addColumn<QByteArray>("bytes");

    for (const char *magic : {"vrr", "VRS", "XRR", "VXR", "RRV", "   "})
        QTest::newRow(magic) << QByteArray(magic);
}

void TestRuleFile::magic()
{
    QFETCH(QByteArray, bytes);
    const QByteArray good = written(richModel());
    RouterModel model;
    QVERIFY(!readInto(model, replaced(good, 0, bytes)));
    QVERIFY(model == RouterModel());
    QVERIFY(readInto(model, good));
}

void TestRuleFile::moreBytesAreNotRead()
{
    const QByteArray good = written(richModel());
    QByteArray longer = good + "more";
    QBuffer buffer(&longer);
    buffer.open(QIODevice::ReadOnly);
    RouterModel model;
    QVERIFY(RuleFile::read(buffer, model));
    QVERIFY(model == asLoaded(richModel()));
    QCOMPARE(buffer.pos(), qint64(good.size()));
}

void TestRuleFile::workFromWhereTheDeviceStands()
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    buffer.write("before");
    QVERIFY(RuleFile::write(buffer, richModel()));
    QVERIFY(buffer.isOpen());
    QCOMPARE(buffer.data(), "before" + written(richModel()));
    buffer.seek(6);
    RouterModel model;
    QVERIFY(RuleFile::read(buffer, model));
    QVERIFY(buffer.isOpen());
    QVERIFY(model == asLoaded(richModel()));
}

void TestRuleFile::refusedModels_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<int>("size"); // of what is written, -1 for all

    const auto header = [](const char *title, bool enabled, const QString &hdr, int size) {
        const Setup setup = [=](RouterModel &model) {
            channelOf(model, 3, 4).hdr_enabled = enabled;
            channelOf(model, 3, 4).hdr = hdr;
        };
        QTest::newRow(title) << setup << size;
    };
    const int beforeHeader = channelOffset(3, 4) + 7;
    header("a header in force that is empty", true, QString(), beforeHeader);
    header("a header in force of one character", true, "G", beforeHeader);
    header("a header in force of three characters", true, "GPS", beforeHeader);
    header("a header in force of two blanks", true, "  ", -1);
    header("a header of one character that is not in force", false, "G", -1);

    const auto slot = [](const char *title, bool taken, const QString &name, int size) {
        const Setup setup = [=](RouterModel &model) {
            model.filter_list[4] = name;
            model.filter_list_mask &= taken ? 0xffffffff : ~quint32(1 << 4);
        };
        QTest::newRow(title) << setup << size;
    };
    const int beforeSlot = SlotsOffset + 4 * SentenceNameLength;
    slot("a taken slot without a name", true, QString(), beforeSlot);
    slot("a taken slot with two characters", true, "VT", beforeSlot);
    slot("a taken slot with four characters", true, "VTGX", beforeSlot);
    slot("a free slot with two characters", false, "VT", -1);
}

void TestRuleFile::refusedModels()
{
    QFETCH(Setup, setup);
    QFETCH(int, size);
    RouterModel model;
    setup(model);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QCOMPARE(RuleFile::write(buffer, model), size < 0);
    if (size < 0)
        return;
    QByteArray expected = written(RouterModel()).left(size);
    if (channelOf(model, 3, 4).hdr_enabled)
        expected[channelOffset(3, 4)] = 0x04;
    QCOMPARE(buffer.data().toHex(' '), expected.toHex(' '));
}

void TestRuleFile::latin1Names()
{
    RouterModel model;
    model.output_ports[11].output_name = QString::fromLatin1("R\xe9gate");
    QCOMPARE(written(model).mid(portOffset(11) + NameOffset, 7), QByteArray("R\xe9gate\0", 7));
}

void TestRuleFile::fullDevice_data()
{
    QTest::addColumn<int>("failure");

    QTest::newRow("writes in part") << int(FailingDevice::ShortCount);
    QTest::newRow("reports an error") << int(FailingDevice::Error);
}

void TestRuleFile::fullDevice()
{
    QFETCH(int, failure);
    const RouterModel model = richModel();
    const QByteArray whole = written(model);
    for (int size = 0; size <= whole.size(); ++size) {
        FailingDevice device(size, FailingDevice::Failure(failure));
        const bool isWritten = RuleFile::write(device, model);
        const QByteArray at = "room for " + QByteArray::number(size);
        QVERIFY2(isWritten == (size == whole.size()), at.constData());
        QVERIFY2(device.written() == whole.left(size), at.constData());
        QVERIFY2(device.writesAfterFailure() == 0, at.constData());
    }
}

QTEST_APPLESS_MAIN(TestRuleFile)
#include "tst_rulefile.moc"
