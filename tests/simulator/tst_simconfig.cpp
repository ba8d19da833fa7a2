#include "simulator/line/linespeed.h"
#include "simulator/line/sentence.h"
#include "simulator/router/configcodec.h"
#include "simulator/router/routerconfig.h"

#include <QSet>
#include <QtTest>

using namespace tk7sim;

Q_DECLARE_METATYPE(tk7sim::Channel)
Q_DECLARE_METATYPE(tk7sim::RouterConfig)

namespace {

constexpr int maxLineLength = 95; // bytes that the tool takes as a line

std::optional<ConfigChange> parse(const QByteArray &body)
{
    return parseConfigSentence(*parseSentence(withChecksum(body)));
}

QByteArray words(const QByteArray &first)
{
    return first + QByteArray("FF00").repeated(channelCount - 1);
}

// A configuration in which every field of every channel differs from its neighbours'.
RouterConfig colourful()
{
    RouterConfig config;
    for (int i = 0; i < portCount * channelCount; ++i) {
        Channel &channel = config.outputs[static_cast<size_t>(i / channelCount)]
                               .channels[static_cast<size_t>(i % channelCount)];
        channel.mainInput = static_cast<quint8>(i % portCount);
        channel.reserveInput = static_cast<quint8>(i % 7 == 0 ? noPort : (i * 5) % portCount);
        channel.filterEnabled = i % 2 == 0;
        channel.filterMask = 2654435761U * static_cast<quint32>(i + 1);
        channel.filterType = i % 3 == 0 ? FilterType::Black : FilterType::White;
        channel.crsEnabled = i % 5 == 0;
        channel.hdrEnabled = i % 4 == 0;
        channel.hdr =
            QByteArray(channel.hdrEnabled ? headerLength : 0, static_cast<char>('A' + i % 26));
        channel.smart = static_cast<quint8>(i % 8);
    }
    for (size_t port = 0; port < portCount; ++port) {
        config.speeds[port] = static_cast<quint32>(lineSpeeds[port % lineSpeeds.size()]);
        config.inputNames[port] = "In " + QByteArray::number(static_cast<int>(port));
        config.outputNames[port] = QByteArray(static_cast<int>(port) % (maxNameLength + 1), 'o');
    }
    for (size_t slot = 0; slot < filterSlotCount; ++slot) {
        const auto letter = static_cast<char>('A' + slot % 26);
        config.filterList[slot] = QByteArray(slot % 6 == 5 ? 0 : formatterLength, letter);
    }
    return config;
}

} // namespace

class TestSimConfig : public QObject
{
    Q_OBJECT

private slots:
    void packsBytes_data();
    void packsBytes();
    void unpacksBytes();
    void reservedFlagIsIgnored();
    void maskFollowsList();
    void viewCodes_data();
    void viewCodes();

    void factoryIsBelievable();
    void factoryUsesEveryOption();

    void writesBodies_data();
    void writesBodies();
    void downloadIsComplete();
    void downloadFitsLines();

    void accepts_data();
    void accepts();
    void batchIsMarked();
    void placesTellChangesApart();
    void refuses_data();
    void refuses();
    void otherCodesAreNone();
};

void TestSimConfig::packsBytes_data()
{
    QTest::addColumn<Channel>("channel");
    QTest::addColumn<int>("rules");
    QTest::addColumn<int>("flags");
    const auto row = [](const char *name, int rules, int flags, auto change) {
        Channel channel;
        change(&channel);
        QTest::newRow(name) << channel << rules << flags;
    };
    row("empty", 0xFF, 0, [](Channel *) {});
    row("main", 0xF3, 0, [](Channel *c) { c->mainInput = 3; });
    row("reserve", 0x5F, 0, [](Channel *c) { c->reserveInput = 5; });
    row("check", 0xFF, 1, [](Channel *c) { c->crsEnabled = true; });
    row("filter", 0xFF, 2, [](Channel *c) { c->filterEnabled = true; });
    row("black list", 0xFF, 4, [](Channel *c) { c->filterType = FilterType::Black; });
    row("header", 0xFF, 8, [](Channel *c) { c->hdrEnabled = true; });
    row("smart 1", 0xFF, 0x10, [](Channel *c) { c->smart = 1; });
    row("smart 7", 0xFF, 0x70, [](Channel *c) { c->smart = 7; });
    row("all", 0xB0, 0x5F,
        [](Channel *c) { *c = {0, 11, true, 0, FilterType::Black, true, true, "", 5}; });
}

void TestSimConfig::packsBytes()
{
    QFETCH(Channel, channel);
    QFETCH(int, rules);
    QFETCH(int, flags);
    QCOMPARE(int(channel.rulesByte()), rules);
    QCOMPARE(int(channel.flagsByte()), flags);
}

void TestSimConfig::unpacksBytes()
{
    for (int flags = 0; flags < 128; ++flags) {
        Channel channel;
        channel.setBytes(0xA4, static_cast<quint8>(flags));
        QCOMPARE(int(channel.mainInput), 4);
        QCOMPARE(int(channel.reserveInput), 10);
        QCOMPARE(channel.crsEnabled, (flags & 1) != 0);
        QCOMPARE(channel.filterEnabled, (flags & 2) != 0);
        QCOMPARE(channel.filterType == FilterType::Black, (flags & 4) != 0);
        QCOMPARE(channel.hdrEnabled, (flags & 8) != 0);
        QCOMPARE(int(channel.smart), flags / 16);
        QCOMPARE(int(channel.flagsByte()), flags);
    }
}

void TestSimConfig::reservedFlagIsIgnored()
{
    Channel channel;
    channel.setBytes(0xFF, 0x80);
    QCOMPARE(channel, Channel());
}

void TestSimConfig::maskFollowsList()
{
    RouterConfig config;
    QCOMPARE(config.filterListMask(), 0U);
    config.filterList[0] = "RMC";
    config.filterList[31] = "MTW";
    QCOMPARE(config.filterListMask(), 0x80000001U);
}

void TestSimConfig::viewCodes_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("ok");
    QTest::newRow("nothing") << 255 << true;
    QTest::newRow("input 0") << 240 << true;
    QTest::newRow("input 11") << 251 << true;
    QTest::newRow("input 12") << 252 << false;
    QTest::newRow("output 0") << 15 << true;
    QTest::newRow("output 11") << 191 << true;
    QTest::newRow("output 12") << 207 << false;
    QTest::newRow("output 0, channel 0") << 0 << true;
    QTest::newRow("output 11, channel 11") << 187 << true;
    QTest::newRow("output 0, channel 12") << 12 << false;
    QTest::newRow("output 14, channel 3") << 227 << false;
    QTest::newRow("above a byte") << 256 << false;
    QTest::newRow("negative") << -1 << false;
}

void TestSimConfig::viewCodes()
{
    QFETCH(int, code);
    QFETCH(bool, ok);
    QCOMPARE(isViewCode(code), ok);
}

void TestSimConfig::factoryIsBelievable()
{
    const RouterConfig config = RouterConfig::factory();
    const QByteArrayList inputs(config.inputNames.cbegin(), config.inputNames.cend());
    for (const char *name : {"GPS 1", "GYRO", "AIS", "DEPTH", "RADAR X"}) {
        QVERIFY2(inputs.contains(name), name);
    }
    for (size_t port = 0; port < portCount; ++port) {
        QVERIFY(config.inputNames[port].size() <= maxNameLength);
        QVERIFY(config.outputNames[port].size() <= maxNameLength);
        QVERIFY(isLineSpeed(static_cast<int>(config.speeds[port])));
        const auto &channels = config.outputs[port].channels;
        QVERIFY(std::any_of(channels.begin(), channels.end(),
                            [](const Channel &c) { return c.mainInput != noPort; }));
        for (const Channel &channel : channels) {
            QVERIFY(isPort(channel.mainInput) || channel.mainInput == noPort);
            QVERIFY(isPort(channel.reserveInput) || channel.reserveInput == noPort);
            QCOMPARE(channel.hdr.size(), channel.hdrEnabled ? headerLength : 0);
            QCOMPARE(channel.filterMask & ~config.filterListMask(), 0U);
            QCOMPARE(channel.filterEnabled, channel.filterMask != 0);
            QVERIFY(channel.smart <= 5);
        }
    }
}

void TestSimConfig::factoryUsesEveryOption()
{
    const RouterConfig config = RouterConfig::factory();
    QSet<quint32> speeds(config.speeds.begin(), config.speeds.end());
    QVERIFY(speeds.contains(4800) && speeds.contains(9600) && speeds.contains(38400));
    QSet<int> smarts;
    QSet<QByteArray> options;
    for (const Output &output : config.outputs) {
        for (const Channel &channel : output.channels) {
            smarts.insert(channel.smart);
            options.insert(channel.reserveInput != noPort ? "reserve" : "");
            options.insert(
                channel.filterEnabled && channel.filterType == FilterType::White ? "white" : "");
            options.insert(
                channel.filterEnabled && channel.filterType == FilterType::Black ? "black" : "");
            options.insert(channel.hdrEnabled ? "header" : "");
            options.insert(channel.crsEnabled ? "check" : "");
        }
    }
    QCOMPARE(smarts, QSet<int>({0, 1, 2, 3, 4, 5}));
    QCOMPARE(options, QSet<QByteArray>({"", "reserve", "white", "black", "header", "check"}));
}

void TestSimConfig::writesBodies_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("speed") << QByteArray("$VRSPD,2,38400");
    QTest::newRow("rule") << "$VRRUL,5,W," + words("F306");
    QTest::newRow("rule of an empty port") << "$VRRUL,4,W," + words("FF00");
    QTest::newRow("masks 0 to 5") << "$VRFLT,5,W,0,0000000C" + QByteArray("00000000").repeated(4)
            + "80000001";
    QTest::newRow("masks 6 to 11")
        << "$VRFLT,5,W,6," + QByteArray("00000000").repeated(5) + "FFFFFFFF";
    QTest::newRow("headers") << QByteArray("$VRHDC,5,W,GP,,,,,,,,,,,HE");
    QTest::newRow("no headers") << "$VRHDC,0,W" + QByteArray(channelCount, ',');
    QTest::newRow("list") << QByteArray("$VRFLS,24,RMC,,,,,,,VDM");
    QTest::newRow("empty list") << QByteArray("$VRFLS,0,,,,,,,,");
    QTest::newRow("output names") << QByteArray("$VRPNM,O,0,,,,,,Radar 1");
    QTest::newRow("input names") << QByteArray("$VRPNM,I,6,Gps,,,,,");
}

void TestSimConfig::writesBodies()
{
    QFETCH(QByteArray, body);
    RouterConfig config;
    config.speeds[2] = 38400;
    auto &channels = config.outputs[5].channels;
    channels[0].mainInput = 3;
    channels[0].filterEnabled = true;
    channels[0].filterType = FilterType::Black;
    channels[0].filterMask = 0xC;
    channels[5].filterMask = 0x80000001;
    channels[11].filterMask = 0xFFFFFFFF;
    channels[0].hdr = "GP";
    channels[11].hdr = "HE";
    config.filterList[24] = "RMC";
    config.filterList[31] = "VDM";
    config.outputNames[5] = "Radar 1";
    config.inputNames[6] = "Gps";
    QCOMPARE(configBodies(config).count(body), 1);
}

void TestSimConfig::downloadIsComplete()
{
    const RouterConfig original = colourful();
    RouterConfig copy;
    QVERIFY(copy != original);
    const auto bodies = configBodies(original);
    QCOMPARE(bodies.size(), 12 + 12 * 4 + 4 + 4);
    for (const QByteArray &body : bodies) {
        const auto change = parse(body);
        QVERIFY2(change.has_value(), body.constData());
        QVERIFY(!change->batch);
        change->apply(copy);
    }
    QVERIFY(copy == original);
}

void TestSimConfig::downloadFitsLines()
{
    const auto bodies = configBodies(colourful());
    for (const QByteArray &body : bodies) {
        QVERIFY2(withChecksum(body).size() <= maxLineLength, body.constData());
    }
}

void TestSimConfig::accepts_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<RouterConfig>("expected");
    const auto row = [](const char *name, const QByteArray &body, auto change) {
        RouterConfig config;
        change(&config);
        QTest::newRow(name) << body << config;
    };
    row("speed", "$VRSPD,11,115200", [](RouterConfig *c) { c->speeds[11] = 115200; });
    row("rule", "$VRRUL,7,W," + words("F306"), [](RouterConfig *c) {
        c->outputs[7].channels[0] = {3, noPort, true, 0, FilterType::Black, false, false, "", 0};
    });
    row("rule without a meaning for its smart function", "$VRRUL,7,W," + words("5170"),
        [](RouterConfig *c) {
            c->outputs[7].channels[0].mainInput = 1;
            c->outputs[7].channels[0].reserveInput = 5;
            c->outputs[7].channels[0].smart = 7;
        });
    row("rule of inputs that no router has", "$VRRUL,7,W," + words("DC00"), [](RouterConfig *c) {
        c->outputs[7].channels[0].mainInput = 12;
        c->outputs[7].channels[0].reserveInput = 13;
    });
    row("masks", "$VRFLT,0,W,6," + QByteArray("00000000").repeated(5) + "DEADBEEF",
        [](RouterConfig *c) { c->outputs[0].channels[11].filterMask = 0xDEADBEEF; });
    row("headers", "$VRHDC,1,W" + QByteArray(channelCount, ',') + "HE",
        [](RouterConfig *c) { c->outputs[1].channels[11].hdr = "HE"; });
    row("list", "$VRFLS,16,,,,,,,,ABC", [](RouterConfig *c) { c->filterList[23] = "ABC"; });
    row("output names keep their case", "$VRPNM,O,6,,,,,,Mixed Ca",
        [](RouterConfig *c) { c->outputNames[11] = "Mixed Ca"; });
    row("input names", "$VRPNM,I,0,a,,,,,", [](RouterConfig *c) { c->inputNames[0] = "a"; });
}

void TestSimConfig::accepts()
{
    QFETCH(QByteArray, body);
    QFETCH(RouterConfig, expected);
    const auto change = parse(body);
    QVERIFY(change.has_value());
    RouterConfig config;
    change->apply(config);
    QVERIFY(config == expected);
}

void TestSimConfig::batchIsMarked()
{
    QVERIFY(parse("$VRRUL,7,B," + words("F306"))->batch);
    QVERIFY(parse("$VRFLT,0,B,6," + QByteArray("00000000").repeated(6))->batch);
    QVERIFY(parse("$VRHDC,1,B" + QByteArray(channelCount, ',') + "HE")->batch);
    QVERIFY(!parse("$VRRUL,7,W," + words("F306"))->batch);
}

void TestSimConfig::placesTellChangesApart()
{
    const QByteArray masks = QByteArray("00000000").repeated(6);
    const QByteArrayList bodies = {"$VRRUL,0,B," + words("F306"),
                                   "$VRRUL,1,B," + words("F306"),
                                   "$VRFLT,0,B,0," + masks,
                                   "$VRFLT,0,B,6," + masks,
                                   "$VRFLT,1,B,0," + masks,
                                   "$VRHDC,0,B" + QByteArray(channelCount, ',') + "HE",
                                   "$VRHDC,1,B" + QByteArray(channelCount, ',') + "HE"};
    QSet<QByteArray> places;
    for (const QByteArray &body : bodies) {
        places.insert(parse(body)->place);
    }
    QCOMPARE(places.size(), bodies.size());
}

void TestSimConfig::refuses_data()
{
    QTest::addColumn<QByteArray>("body");
    const QByteArray masks = QByteArray("00000000").repeated(6);
    const QByteArrayList badPorts = {"12", "99", "255", "256", "4294967295", "4294967296",
                                     "-1", "",   "x",   "1.5", " 1"};
    for (const QByteArray &port : badPorts) {
        const auto row = [&](const char *code, const QByteArray &rest) {
            QTest::addRow("%s for port \"%s\"", code, port.constData())
                << QByteArray("$VR" + QByteArray(code) + ',' + port + rest);
        };
        row("RUL", ",W," + words("F306"));
        row("FLT", ",W,0," + masks);
        row("HDC", ",W" + QByteArray(channelCount, ',') + "HE");
        row("SPD", ",4800");
        QTest::addRow("FLS from slot \"%s\"", port.constData())
            << QByteArray("$VRFLS," + port + ",,,,,,,,ABC");
        QTest::addRow("PNM from port \"%s\"", port.constData())
            << QByteArray("$VRPNM,I," + port + ",a,,,,,");
        QTest::addRow("FLT from channel \"%s\"", port.constData())
            << QByteArray("$VRFLT,0,W," + port + ',' + masks);
    }
    const auto row = [](const char *name, const QByteArray &body) { QTest::newRow(name) << body; };
    row("rule: no letter", "$VRRUL,0,," + words("F306"));
    row("rule: another letter", "$VRRUL,0,w," + words("F306"));
    row("rule: eleven words", "$VRRUL,0,W," + QByteArray("F306").repeated(11));
    row("rule: thirteen words", "$VRRUL,0,W," + QByteArray("F306").repeated(13));
    row("rule: no digit", "$VRRUL,0,W," + words("F3G6"));
    row("rule: field too many", "$VRRUL,0,W," + words("F306") + ",");
    row("rule: fields missing", "$VRRUL,0");
    row("masks: first 3", "$VRFLT,0,W,3," + masks);
    row("masks: first 12", "$VRFLT,0,W,12," + masks);
    row("masks: digit missing", "$VRFLT,0,W,0," + masks.left(47));
    row("masks: no digit", "$VRFLT,0,W,0," + masks.left(47) + "Z");
    row("headers: three characters", "$VRHDC,0,W,ABC" + QByteArray(channelCount - 1, ','));
    row("headers: one character", "$VRHDC,0,W,A" + QByteArray(channelCount - 1, ','));
    row("headers: eleven", "$VRHDC,0,W" + QByteArray(channelCount - 1, ','));
    row("headers: thirteen", "$VRHDC,0,W" + QByteArray(channelCount + 1, ','));
    row("headers: control character", "$VRHDC,0,W,A\x01" + QByteArray(channelCount - 1, ','));
    row("list: first 4", "$VRFLS,4,,,,,,,,ABC");
    row("list: first 32", "$VRFLS,32,,,,,,,,ABC");
    row("list: four characters", "$VRFLS,0,ABCD,,,,,,,");
    row("list: seven fields", "$VRFLS,0,ABC,,,,,,");
    row("names: neither input nor output", "$VRPNM,X,0,a,,,,,");
    row("names: first 3", "$VRPNM,I,3,a,,,,,");
    row("names: nine characters", "$VRPNM,I,0,123456789,,,,,");
    row("names: five", "$VRPNM,I,0,a,,,,");
    row("names: seven", "$VRPNM,I,0,a,,,,,,");
    row("names: control character", QByteArray("$VRPNM,I,0,a\tb,,,,,"));
    row("speed: none of the seven", "$VRSPD,0,1200");
    row("speed: zero", "$VRSPD,0,0");
    row("speed: 2^32 + 4800", "$VRSPD,0,4294972096");
    row("speed: empty", "$VRSPD,0,");
    row("speed: field too many", "$VRSPD,0,4800,");
}

void TestSimConfig::refuses()
{
    QFETCH(QByteArray, body);
    const auto sentence = parseSentence(withChecksum(body));
    QVERIFY(sentence.has_value());
    QCOMPARE(sentence->form, SentenceForm::Checked);
    QVERIFY(!parseConfigSentence(*sentence).has_value());
}

void TestSimConfig::otherCodesAreNone()
{
    QVERIFY(isConfigCode("RUL"));
    QVERIFY(!isConfigCode("VER"));
    QVERIFY(!parseConfigSentence(*parseSentence("$VRSPD,3,4800\r\n")).has_value());
    QVERIFY(!parseConfigSentence(*parseSentence("$VRRUL\r\n")).has_value());
}

QTEST_APPLESS_MAIN(TestSimConfig)
#include "tst_simconfig.moc"
