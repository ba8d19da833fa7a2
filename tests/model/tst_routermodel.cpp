#include "model/routermodel.h"

#include "randommodel.h"

#include <QtTest>

#include <functional>

namespace {

constexpr quint32 Seed = 20240607;
constexpr quint32 RandomModels = 50;

ChannelRecord &channelOf(RouterModel &model, int port, int channel)
{
    return model.output_ports[std::size_t(port)].channels[std::size_t(channel)];
}

} // namespace

using Change = std::function<void(RouterModel &)>;
Q_DECLARE_METATYPE(Change)

class TestRouterModel : public QObject
{
    Q_OBJECT

private slots:
    void defaults();
    void defaultSentenceNames_data();
    void defaultSentenceNames();
    void limits();

    void speeds_data();
    void speeds();
    void portKinds_data();
    void portKinds();

    void rule_data();
    void rule();
    void ruleLeavesOtherFieldsAlone();
    void refusedRule_data();
    void refusedRule();
    void ruleTouchesItsChannelOnly();

    void filterMask();
    void hdr_data();
    void hdr();
    void refusedChannel_data();
    void refusedChannel();

    void filterString_data();
    void filterString();
    void freedSlotStaysInTheChannelsMasks();
    void refusedFilterString_data();
    void refusedFilterString();

    void portSpeed_data();
    void portSpeed();
    void refusedPortSpeed_data();
    void refusedPortSpeed();

    void portName_data();
    void portName();
    void refusedPortName_data();
    void refusedPortName();

    void rulesByteOf_data();
    void rulesByteOf();
    void flagsByteOf_data();
    void flagsByteOf();
    void packedChannelsComeBack();

    void emptyChannel_data();
    void emptyChannel();
    void clearedChannelKeepsItsInputs();

    void comparison_data();
    void comparison();
};

void TestRouterModel::defaults()
{
    const RouterModel model;
    QCOMPARE(model.output_ports.size(), std::size_t(12));
    QCOMPARE(model.input_ports.size(), std::size_t(12));
    for (const OutputPortRecord &port : model.output_ports) {
        QCOMPARE(port.speed, 4800U);
        QCOMPARE(port.output_name, QString());
        QCOMPARE(port.channels.size(), std::size_t(12));
        for (const ChannelRecord &channel : port.channels) {
            QCOMPARE(int(channel.main_input), 15);
            QCOMPARE(int(channel.reserve_input), 15);
            QCOMPARE(channel.filter_enabled, false);
            QCOMPARE(channel.filter_mask, 0U);
            QCOMPARE(int(channel.filter_type), 0);
            QCOMPARE(channel.crs_enabled, false);
            QCOMPARE(channel.hdr_enabled, false);
            QCOMPARE(channel.hdr, QString());
            QCOMPARE(int(channel.smart_function), 0);
        }
    }
    for (const InputPortRecord &port : model.input_ports)
        QCOMPARE(port.input_name, QString());
    QCOMPARE(model.filter_list_mask, 0x00000fffU);
}

void TestRouterModel::defaultSentenceNames_data()
{
    QTest::addColumn<int>("slot");
    QTest::addColumn<QString>("name");

    const QStringList names{"RMC", "GGA", "GLL", "ZDA", "VTG", "HDT",
                            "HDM", "HDG", "TTM", "VDO", "VDM", "DBT"};
    for (int slot = 0; slot < 32; ++slot) {
        const QString name = names.value(slot);
        const QString place =
            QStringLiteral("slot %1 %2").arg(slot).arg(name.isEmpty() ? "is free" : name);
        QTest::newRow(qPrintable(place)) << slot << name;
    }
}

void TestRouterModel::defaultSentenceNames()
{
    QFETCH(int, slot);
    QTEST(RouterModel().filter_list.at(std::size_t(slot)), "name");
}

void TestRouterModel::limits()
{
    QCOMPARE(int(NO_PORT), 15);
    QCOMPARE(FilterSlotCount, 32);
    QCOMPARE(PortNameLength, 8);
    QCOMPARE(HeaderLength, 2);
    QCOMPARE(SentenceNameLength, 3);
}

void TestRouterModel::speeds_data()
{
    QTest::addColumn<quint32>("speed");
    QTest::addColumn<int>("index");

    QTest::newRow("2400 is the first") << 2400U << 0;
    QTest::newRow("4800") << 4800U << 1;
    QTest::newRow("9600") << 9600U << 2;
    QTest::newRow("19200") << 19200U << 3;
    QTest::newRow("38400") << 38400U << 4;
    QTest::newRow("57600") << 57600U << 5;
    QTest::newRow("115200 is the last") << 115200U << 6;
    QTest::newRow("1200 is none") << 1200U << -1;
    QTest::newRow("0 is none") << 0U << -1;
    QTest::newRow("4801 is none") << 4801U << -1;
    QTest::newRow("230400 is none") << 230400U << -1;
}

void TestRouterModel::speeds()
{
    QFETCH(quint32, speed);
    QFETCH(int, index);
    QCOMPARE(portSpeedIndex(speed), index);
    if (index >= 0)
        QCOMPARE(portSpeeds().at(std::size_t(index)), speed);
}

void TestRouterModel::portKinds_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<bool>("inputIsRs422");
    QTest::addColumn<bool>("outputIsRs422");

    QTest::newRow("first port") << 0 << true << true;
    QTest::newRow("last RS-422 output") << 7 << true << true;
    QTest::newRow("first RS-232 output") << 8 << true << false;
    QTest::newRow("last RS-422 input") << 9 << true << false;
    QTest::newRow("first RS-232 input") << 10 << false << false;
    QTest::newRow("last port") << 11 << false << false;
}

void TestRouterModel::portKinds()
{
    QFETCH(int, port);
    QTEST(inputPortKind(port) == PortKind::Rs422, "inputIsRs422");
    QTEST(outputPortKind(port) == PortKind::Rs422, "outputIsRs422");
}

void TestRouterModel::rule_data()
{
    QTest::addColumn<int>("rules");
    QTest::addColumn<int>("flags");
    QTest::addColumn<int>("main");
    QTest::addColumn<int>("reserve");
    QTest::addColumn<QString>("options"); // c, f, b, h for what is set, then the smart function

    QTest::newRow("0xFF is an empty channel") << 0xff << 0x00 << 15 << 15 << "0";
    QTest::newRow("0xF3 is Main 3 without a Reserve") << 0xf3 << 0x00 << 3 << 15 << "0";
    QTest::newRow("0x5F is Reserve 5 without a Main") << 0x5f << 0x00 << 15 << 5 << "0";
    QTest::newRow("0xB0 is Main 0 and Reserve 11") << 0xb0 << 0x00 << 0 << 11 << "0";
    for (const int noSuchPort : {12, 13, 14}) {
        QTest::addRow("Main %d is kept, though no router has it", noSuchPort)
            << (0x10 | noSuchPort) << 0x00 << noSuchPort << 1 << "0";
        QTest::addRow("Reserve %d is kept, though no router has it", noSuchPort)
            << (noSuchPort << 4 | 0x01) << 0x00 << 1 << noSuchPort << "0";
    }
    QTest::newRow("options beside two ports that no router has")
        << 0xce << 0x13 << 14 << 12 << "cf1";
    QTest::newRow("flag bit 0 is the checksum check") << 0xf0 << 0x01 << 0 << 15 << "c0";
    QTest::newRow("flag bit 1 is the filter") << 0xf0 << 0x02 << 0 << 15 << "f0";
    QTest::newRow("flag bit 2 is the black list") << 0xf0 << 0x04 << 0 << 15 << "b0";
    QTest::newRow("flag bit 3 is the header override") << 0xf0 << 0x08 << 0 << 15 << "h0";
    QTest::newRow("flag bits 4 to 6 are the smart function") << 0xf0 << 0x50 << 0 << 15 << "5";
    QTest::newRow("smart function 7 is stored") << 0xf0 << 0x70 << 0 << 15 << "7";
    QTest::newRow("flag bit 7 sets nothing") << 0xf0 << 0x80 << 0 << 15 << "0";
    QTest::newRow("all flags") << 0xf0 << 0xff << 0 << 15 << "cfbh7";
    QTest::newRow("an empty channel keeps the options it came with")
        << 0xff << 0x1a << 15 << 15 << "fh1";
}

void TestRouterModel::rule()
{
    QFETCH(int, rules);
    QFETCH(int, flags);
    RouterModel model;
    QVERIFY(model.setRule(7, 4, quint8(rules), quint8(flags)));

    const ChannelRecord &channel = channelOf(model, 7, 4);
    QTEST(int(channel.main_input), "main");
    QTEST(int(channel.reserve_input), "reserve");
    QString options;
    options += channel.crs_enabled ? "c" : "";
    options += channel.filter_enabled ? "f" : "";
    options += channel.filter_type == 1 ? "b" : "";
    options += channel.hdr_enabled ? "h" : "";
    options += QString::number(channel.smart_function);
    QTEST(options, "options");

    // A second rule takes back what the first one set.
    QVERIFY(model.setRule(7, 4, 0xff, 0));
    QVERIFY(model == RouterModel());
}

void TestRouterModel::ruleLeavesOtherFieldsAlone()
{
    RouterModel model;
    QVERIFY(model.setFilterMask(2, 3, 0x80000001));
    QVERIFY(model.setHdr(2, 3, "GP"));
    QVERIFY(model.setRule(2, 3, 0xf1, 0));
    QCOMPARE(channelOf(model, 2, 3).filter_mask, 0x80000001U);
    QCOMPARE(channelOf(model, 2, 3).hdr, QString("GP"));
}

void TestRouterModel::refusedRule_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("channel");
    QTest::addColumn<int>("rules");

    QTest::newRow("port 12") << 12 << 0 << 0x01;
    QTest::newRow("port 99") << 99 << 0 << 0x01;
    QTest::newRow("port 255") << 255 << 0 << 0x01;
    QTest::newRow("channel 12") << 0 << 12 << 0x01;
    QTest::newRow("channel 255") << 0 << 255 << 0x01;
    QTest::newRow("channel -1") << 0 << -1 << 0x01;
    QTest::newRow("channel far below") << 0 << std::numeric_limits<int>::min() << 0x01;
    QTest::newRow("channel far above") << 0 << std::numeric_limits<int>::max() << 0x01;
}

void TestRouterModel::refusedRule()
{
    QFETCH(int, port);
    QFETCH(int, channel);
    QFETCH(int, rules);
    const RouterModel before = randomModel(Seed);
    RouterModel model = before;
    QVERIFY(!model.setRule(quint8(port), channel, quint8(rules), 0x7f));
    QVERIFY(model == before);
}

void TestRouterModel::ruleTouchesItsChannelOnly()
{
    RouterModel model;
    for (int port = 0; port < 12; ++port) {
        for (int channel = 0; channel < 12; ++channel)
            QVERIFY(model.setRule(quint8(port), channel, quint8(port << 4 | channel), 0));
    }
    for (int port = 0; port < 12; ++port) {
        for (int channel = 0; channel < 12; ++channel) {
            QCOMPARE(int(channelOf(model, port, channel).reserve_input), port);
            QCOMPARE(int(channelOf(model, port, channel).main_input), channel);
        }
    }
}

void TestRouterModel::filterMask()
{
    RouterModel model;
    RouterModel expected;
    channelOf(expected, 11, 11).filter_mask = 0xffffffff;
    QVERIFY(model.setFilterMask(11, 11, 0xffffffff));
    QVERIFY(model == expected);
    QVERIFY(model.setFilterMask(11, 11, 0));
    QVERIFY(model == RouterModel());
}

void TestRouterModel::hdr_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("hdr");

    QTest::newRow("header while the override is on") << true << "GP";
    QTest::newRow("header while the override is off") << false << "II";
    QTest::newRow("empty header while the override is on") << true << "";
    QTest::newRow("empty header while the override is off") << false << "";
}

void TestRouterModel::hdr()
{
    QFETCH(bool, enabled);
    QFETCH(QString, hdr);
    RouterModel model;
    channelOf(model, 0, 11).hdr_enabled = enabled;
    channelOf(model, 0, 11).hdr = "XX";
    RouterModel expected = model;
    channelOf(expected, 0, 11).hdr = hdr;

    QVERIFY(model.setHdr(0, 11, hdr));
    QVERIFY(model == expected);
}

void TestRouterModel::refusedChannel_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("channel");

    QTest::newRow("port 12") << 12 << 0;
    QTest::newRow("port 99") << 99 << 11;
    QTest::newRow("port 255") << 255 << 0;
    QTest::newRow("channel 12") << 11 << 12;
    QTest::newRow("channel 260, first 255 and the last of six") << 0 << 260;
    QTest::newRow("channel -1") << 0 << -1;
}

void TestRouterModel::refusedChannel()
{
    QFETCH(int, port);
    QFETCH(int, channel);
    const RouterModel before = randomModel(Seed);
    RouterModel model = before;
    QVERIFY(!model.setFilterMask(quint8(port), channel, 0x12345678));
    QVERIFY(!model.setHdr(quint8(port), channel, "??"));
    QVERIFY(model == before);
}

void TestRouterModel::filterString_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("flt");
    QTest::addColumn<quint32>("mask");

    QTest::newRow("a name over a name") << 0 << "MWV" << 0x00000fffU;
    QTest::newRow("a name in the first free slot") << 12 << "MWV" << 0x00001fffU;
    QTest::newRow("a name in the last slot") << 31 << "MWV" << 0x80000fffU;
    QTest::newRow("no name frees the first slot") << 0 << "" << 0x00000ffeU;
    QTest::newRow("no name frees the last default slot") << 11 << "" << 0x000007ffU;
    QTest::newRow("no name in a free slot") << 31 << "" << 0x00000fffU;
}

void TestRouterModel::filterString()
{
    QFETCH(int, index);
    QFETCH(QString, flt);
    RouterModel model;
    QVERIFY(model.setFilterString(quint8(index), flt));
    QTEST(model.filter_list_mask, "mask");

    RouterModel expected;
    expected.filter_list.at(std::size_t(index)) = flt;
    QVERIFY(model.filter_list == expected.filter_list);
    QVERIFY(model.output_ports == expected.output_ports);
}

void TestRouterModel::freedSlotStaysInTheChannelsMasks()
{
    RouterModel model;
    QVERIFY(model.setFilterMask(3, 5, 0x00000003));
    QVERIFY(model.setFilterString(1, QString()));
    QCOMPARE(model.filter_list_mask, 0x00000ffdU);
    QCOMPARE(channelOf(model, 3, 5).filter_mask, 0x00000003U);
}

void TestRouterModel::refusedFilterString_data()
{
    QTest::addColumn<int>("index");

    QTest::newRow("slot 32") << 32;
    QTest::newRow("slot 64") << 64;
    QTest::newRow("slot 255") << 255;
}

void TestRouterModel::refusedFilterString()
{
    QFETCH(int, index);
    const RouterModel before = randomModel(Seed);
    RouterModel model = before;
    QVERIFY(!model.setFilterString(quint8(index), "MWV"));
    QVERIFY(!model.setFilterString(quint8(index), QString()));
    QVERIFY(model == before);
}

void TestRouterModel::portSpeed_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<quint32>("speed");

    QTest::newRow("2400 at the first port") << 0 << 2400U;
    QTest::newRow("9600") << 1 << 9600U;
    QTest::newRow("19200") << 2 << 19200U;
    QTest::newRow("38400") << 3 << 38400U;
    QTest::newRow("57600") << 4 << 57600U;
    QTest::newRow("115200 at the last port") << 11 << 115200U;
}

void TestRouterModel::portSpeed()
{
    QFETCH(int, port);
    QFETCH(quint32, speed);
    RouterModel model;
    RouterModel expected;
    expected.output_ports.at(std::size_t(port)).speed = speed;
    QVERIFY(model.setPortSpeed(quint8(port), speed));
    QVERIFY(model == expected);
    QVERIFY(model.setPortSpeed(quint8(port), 4800));
    QVERIFY(model == RouterModel());
}

void TestRouterModel::refusedPortSpeed_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<quint32>("speed");

    QTest::newRow("1200 leaves the old speed") << 0 << 1200U;
    QTest::newRow("speed 0") << 0 << 0U;
    QTest::newRow("speed 4294967295") << 0 << 4294967295U;
    QTest::newRow("port 12") << 12 << 4800U;
    QTest::newRow("port 99") << 99 << 4800U;
    QTest::newRow("port 255") << 255 << 4800U;
}

void TestRouterModel::refusedPortSpeed()
{
    QFETCH(int, port);
    QFETCH(quint32, speed);
    const RouterModel before = randomModel(Seed);
    RouterModel model = before;
    QVERIFY(!model.setPortSpeed(quint8(port), speed));
    QVERIFY(model == before);
}

void TestRouterModel::portName_data()
{
    QTest::addColumn<bool>("output");
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("name");

    QTest::newRow("first output port") << true << 0 << "ECDIS 1";
    QTest::newRow("last output port") << true << 11 << "VDR";
    QTest::newRow("first input port") << false << 0 << "gps bow";
    QTest::newRow("last input port") << false << 11 << "Gyro";
    QTest::newRow("a name too long is stored as it comes") << false << 5 << "ninechars";
}

void TestRouterModel::portName()
{
    QFETCH(bool, output);
    QFETCH(int, port);
    QFETCH(QString, name);
    RouterModel model;
    RouterModel expected;
    if (output)
        expected.output_ports.at(std::size_t(port)).output_name = name;
    else
        expected.input_ports.at(std::size_t(port)).input_name = name;
    QVERIFY(model.setPortName(output, quint8(port), name));
    QVERIFY(model == expected);
    QVERIFY(model.setPortName(output, quint8(port), QString()));
    QVERIFY(model == RouterModel());
}

void TestRouterModel::refusedPortName_data()
{
    QTest::addColumn<bool>("output");
    QTest::addColumn<int>("port");

    QTest::newRow("output port 12") << true << 12;
    QTest::newRow("output port 255") << true << 255;
    QTest::newRow("input port 12") << false << 12;
    QTest::newRow("input port 255") << false << 255;
}

void TestRouterModel::refusedPortName()
{
    QFETCH(bool, output);
    QFETCH(int, port);
    const RouterModel before = randomModel(Seed);
    RouterModel model = before;
    QVERIFY(!model.setPortName(output, quint8(port), "GPS"));
    QVERIFY(model == before);
}

void TestRouterModel::rulesByteOf_data()
{
    QTest::addColumn<int>("main");
    QTest::addColumn<int>("reserve");
    QTest::addColumn<int>("rules");

    QTest::newRow("empty channel") << 15 << 15 << 0xff;
    QTest::newRow("Main 3 without a Reserve") << 3 << 15 << 0xf3;
    QTest::newRow("Reserve 5 without a Main") << 15 << 5 << 0x5f;
    QTest::newRow("both") << 10 << 2 << 0x2a;
    for (const int noSuchPort : {12, 13, 14}) {
        QTest::addRow("%d goes as it is as Main", noSuchPort)
            << noSuchPort << 2 << (0x20 | noSuchPort);
        QTest::addRow("%d goes as it is as Reserve", noSuchPort)
            << 2 << noSuchPort << (noSuchPort << 4 | 0x02);
    }
    for (const int noNibble : {16, 17, 28, 200, 255}) {
        QTest::addRow("%d is no nibble as Main", noNibble) << noNibble << 2 << 0x2f;
        QTest::addRow("%d is no nibble as Reserve", noNibble) << 2 << noNibble << 0xf2;
    }
}

void TestRouterModel::rulesByteOf()
{
    QFETCH(int, main);
    QFETCH(int, reserve);
    ChannelRecord channel;
    channel.main_input = quint8(main);
    channel.reserve_input = quint8(reserve);
    QTEST(int(rulesByte(channel)), "rules");
}

void TestRouterModel::flagsByteOf_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<int>("flags");

    const auto row = [](const char *name, int flags, void (*change)(ChannelRecord &)) {
        const Change onModel = [change](RouterModel &model) { change(channelOf(model, 0, 0)); };
        QTest::newRow(name) << onModel << flags;
    };
    row("no option", 0x00, [](ChannelRecord &) {});
    row("checksum check", 0x01, [](ChannelRecord &c) { c.crs_enabled = true; });
    row("filter", 0x02, [](ChannelRecord &c) { c.filter_enabled = true; });
    row("black list", 0x04, [](ChannelRecord &c) { c.filter_type = 1; });
    row("header override", 0x08, [](ChannelRecord &c) { c.hdr_enabled = true; });
    row("smart function 1", 0x10, [](ChannelRecord &c) { c.smart_function = 1; });
    row("smart function 7", 0x70, [](ChannelRecord &c) { c.smart_function = 7; });
    row("smart function 8 does not reach bit 7", 0x00,
        [](ChannelRecord &c) { c.smart_function = 8; });
    row("mask and header are no flags", 0x00, [](ChannelRecord &c) {
        c.filter_mask = 0xffffffff;
        c.hdr = "GP";
    });
}

void TestRouterModel::flagsByteOf()
{
    QFETCH(Change, change);
    RouterModel model;
    change(model);
    QTEST(int(flagsByte(channelOf(model, 0, 0))), "flags");
}

void TestRouterModel::packedChannelsComeBack()
{
    for (quint32 seed = Seed; seed < Seed + RandomModels; ++seed) {
        RouterModel original = randomModel(seed);
        RouterModel copy = original;
        for (int port = 0; port < OutputPortCount; ++port) {
            for (int channel = 0; channel < ChannelCount; ++channel) {
                const ChannelRecord &record = channelOf(original, port, channel);
                QVERIFY(copy.setRule(quint8(port), channel, 0xff, 0));
                QVERIFY(copy.setRule(quint8(port), channel, rulesByte(record), flagsByte(record)));
            }
        }
        QVERIFY2(copy == original, qPrintable(QStringLiteral("seed %1").arg(seed)));
    }
}

void TestRouterModel::emptyChannel_data()
{
    QTest::addColumn<int>("main");
    QTest::addColumn<int>("reserve");
    QTest::addColumn<bool>("empty");

    QTest::newRow("neither input") << 15 << 15 << true;
    QTest::newRow("Main alone") << 0 << 15 << false;
    QTest::newRow("Reserve alone") << 15 << 0 << false;
    QTest::newRow("both inputs") << 11 << 11 << false;
    for (const int noSuchPort : {12, 13, 14, 16, 200, 255}) {
        QTest::addRow("%d is no input", noSuchPort) << noSuchPort << noSuchPort << true;
        QTest::addRow("Main %d beside a Reserve", noSuchPort) << noSuchPort << 4 << false;
        QTest::addRow("Reserve %d beside a Main", noSuchPort) << 4 << noSuchPort << false;
    }
}

void TestRouterModel::emptyChannel()
{
    QFETCH(int, main);
    QFETCH(int, reserve);
    ChannelRecord channel;
    channel.main_input = quint8(main);
    channel.reserve_input = quint8(reserve);
    channel.filter_enabled = true; // options make no channel
    QTEST(isEmpty(channel), "empty");
}

void TestRouterModel::clearedChannelKeepsItsInputs()
{
    ChannelRecord channel;
    channel.main_input = 4;
    channel.reserve_input = 9;
    ChannelRecord expected = channel;
    channel.filter_enabled = true;
    channel.filter_mask = 0xf;
    channel.filter_type = BlackList;
    channel.crs_enabled = true;
    channel.hdr_enabled = true;
    channel.hdr = "GP";
    channel.smart_function = 5;

    clearChannelOptions(channel);
    QVERIFY(channel == expected);
}

void TestRouterModel::comparison_data()
{
    QTest::addColumn<Change>("change");

    const auto row = [](const char *name, const Change &change) { QTest::newRow(name) << change; };
    row("main_input", [](RouterModel &m) { channelOf(m, 11, 11).main_input = 0; });
    row("reserve_input", [](RouterModel &m) { channelOf(m, 11, 11).reserve_input = 0; });
    row("filter_enabled", [](RouterModel &m) { channelOf(m, 11, 11).filter_enabled = true; });
    row("filter_mask", [](RouterModel &m) { channelOf(m, 11, 11).filter_mask = 1; });
    row("filter_type", [](RouterModel &m) { channelOf(m, 11, 11).filter_type = 1; });
    row("crs_enabled", [](RouterModel &m) { channelOf(m, 11, 11).crs_enabled = true; });
    row("hdr_enabled", [](RouterModel &m) { channelOf(m, 11, 11).hdr_enabled = true; });
    row("hdr", [](RouterModel &m) { channelOf(m, 11, 11).hdr = "GP"; });
    row("smart_function", [](RouterModel &m) { channelOf(m, 11, 11).smart_function = 1; });
    row("speed", [](RouterModel &m) { m.output_ports[11].speed = 2400; });
    row("output_name", [](RouterModel &m) { m.output_ports[11].output_name = "VDR"; });
    row("input_name", [](RouterModel &m) { m.input_ports[11].input_name = "GPS"; });
    row("filter_list", [](RouterModel &m) { m.filter_list[31] = "MWV"; });
    row("filter_list_mask", [](RouterModel &m) { m.filter_list_mask = 0; });
}

void TestRouterModel::comparison()
{
    QFETCH(Change, change);
    RouterModel changed;
    QVERIFY(changed == RouterModel());
    QVERIFY(!(changed != RouterModel()));
    change(changed);
    QVERIFY(!(changed == RouterModel()));
    QVERIFY(changed != RouterModel());
}

QTEST_APPLESS_MAIN(TestRouterModel)
#include "tst_routermodel.moc"
