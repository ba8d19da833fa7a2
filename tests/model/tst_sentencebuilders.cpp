#include "model/sentencebuilders.h"

#include "model/commands.h"
#include "randommodel.h"
#include "richmodel.h"

#include <QFile>
#include <QtTest>

#include <functional>

// In the expectations every checksum is literal text that was worked out beside this code.

using Setup = std::function<void(RouterModel &)>;
Q_DECLARE_METATYPE(Setup)

namespace {

constexpr quint32 Seed = 20240608;
constexpr quint32 RandomModels = 50;

const Setup asMade = [](RouterModel &) {};

ChannelRecord &channelOf(RouterModel &model, int port, int channel)
{
    return model.output_ports[std::size_t(port)].channels[std::size_t(channel)];
}

RouterModel modelOf(const Setup &setup)
{
    RouterModel model;
    setup(model);
    return model;
}

} // namespace

class TestSentenceBuilders : public QObject
{
    Q_OBJECT

private slots:
    void rule_data();
    void rule();
    void filter_data();
    void filter();
    void hdr_data();
    void hdr();
    void filterList_data();
    void filterList();
    void name_data();
    void name();
    void speed_data();
    void speed();
    void view_data();
    void view();
    void commands_data();
    void commands();

    void goldenUpload_data();
    void goldenUpload();
    void uploadOrder();
    void buildersLeaveTheModelAlone();
    void ruleSentencesComeBack();
};

void TestSentenceBuilders::rule_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<int>("port");
    QTest::addColumn<bool>("batch");
    QTest::addColumn<QString>("sentence");

    QTest::newRow("an empty channel without flags is FF00")
        << asMade << 0 << true
        << "$VRRUL,0,B,FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00*11\r\n";
    QTest::newRow("alone it has W in the place of B")
        << asMade << 0 << false
        << "$VRRUL,0,W,FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00*04\r\n";
    QTest::newRow("Main 3, no Reserve, filter on, black list is F306")
        << Setup([](RouterModel &model) {
               channelOf(model, 5, 1).main_input = 3;
               channelOf(model, 5, 1).filter_enabled = true;
               channelOf(model, 5, 1).filter_type = BlackList;
           })
        << 5 << false << "$VRRUL,5,W,FF00F306FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00*72\r\n";
    QTest::newRow("first and last channel of the last port, all options, upper case")
        << Setup([](RouterModel &model) {
               ChannelRecord &first = channelOf(model, 11, 0);
               first.main_input = 0;
               first.reserve_input = 11;
               first.crs_enabled = true;
               first.filter_enabled = true;
               first.filter_type = BlackList;
               first.hdr_enabled = true;
               first.hdr = "GP";
               first.smart_function = 7;
               channelOf(model, 11, 11).reserve_input = 5;
               channelOf(model, 11, 11).smart_function = 6;
           })
        << 11 << false << "$VRRUL,11,W,B07FFF00FF00FF00FF00FF00FF00FF00FF00FF00FF005F60*42\r\n";
    QTest::newRow("an empty channel keeps its flags, and a checksum of 0 has two digits")
        << Setup([](RouterModel &model) {
               channelOf(model, 0, 0).main_input = 0;
               channelOf(model, 0, 0).crs_enabled = true;
               channelOf(model, 0, 1).reserve_input = 5;
           })
        << 0 << false << "$VRRUL,0,W,F0015F00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00*00\r\n";
    QTest::newRow("options without an input are sent")
        << Setup([](RouterModel &model) { channelOf(model, 0, 0).smart_function = 7; }) << 0
        << false << "$VRRUL,0,W,FF70FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00*03\r\n";
    QTest::newRow("port 12 gives nothing") << asMade << 12 << false << "";
    QTest::newRow("port -1 gives nothing") << asMade << -1 << false << "";
}

void TestSentenceBuilders::rule()
{
    QFETCH(Setup, setup);
    QFETCH(int, port);
    QFETCH(bool, batch);
    QTEST(MakeRuleSentence(modelOf(setup), port, batch), "sentence");
}

void TestSentenceBuilders::filter_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("first");
    QTest::addColumn<bool>("batch");
    QTest::addColumn<QString>("sentence");

    QTest::newRow("masks are padded with zeros")
        << Setup([](RouterModel &model) { channelOf(model, 0, 0).filter_mask = 1; }) << 0 << 0
        << true << "$VRFLT,0,B,0,000000010000000000000000000000000000000000000000*19\r\n";
    QTest::newRow("masks are upper case, the last channel stands last")
        << Setup([](RouterModel &model) { channelOf(model, 4, 11).filter_mask = 0xdeadbeef; }) << 4
        << 6 << false << "$VRFLT,4,W,6,0000000000000000000000000000000000000000DEADBEEF*0F\r\n";
    QTest::newRow("the first half does not show channel 6")
        << Setup([](RouterModel &model) { channelOf(model, 4, 6).filter_mask = 0xdeadbeef; }) << 4
        << 0 << false << "$VRFLT,4,W,0,000000000000000000000000000000000000000000000000*09\r\n";
    QTest::newRow("all bits of the last port's second half")
        << Setup([](RouterModel &model) {
               for (ChannelRecord &channel : model.output_ports[11].channels)
                   channel.filter_mask = 0xffffffff;
           })
        << 11 << 6 << true
        << "$VRFLT,11,B,6,FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF*2E\r\n";
    QTest::newRow("a first channel other than 0 and 6 gives nothing")
        << asMade << 0 << 3 << false << "";
    QTest::newRow("first channel 12 gives nothing") << asMade << 0 << 12 << false << "";
    QTest::newRow("first channel -6 gives nothing") << asMade << 0 << -6 << false << "";
    QTest::newRow("port 12 gives nothing") << asMade << 12 << 0 << false << "";
    QTest::newRow("port -1 gives nothing") << asMade << -1 << 0 << false << "";
}

void TestSentenceBuilders::filter()
{
    QFETCH(Setup, setup);
    QFETCH(int, port);
    QFETCH(int, first);
    QFETCH(bool, batch);
    QTEST(MakeFilterSentence(modelOf(setup), port, first, batch), "sentence");
}

void TestSentenceBuilders::hdr_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<bool>("batch");
    QTest::addColumn<QString>("sentence");

    const auto header = [](int channel, bool enabled, const char *hdr) {
        return Setup([=](RouterModel &model) {
            channelOf(model, 3, channel).hdr_enabled = enabled;
            channelOf(model, 3, channel).hdr = QLatin1String(hdr);
        });
    };
    const auto both = [](const Setup &one, const Setup &other) {
        return Setup([=](RouterModel &model) {
            one(model);
            other(model);
        });
    };

    QTest::newRow("no header: eleven commas behind the mode's")
        << asMade << false << "$VRHDC,3,W,,,,,,,,,,,,*2F\r\n";
    QTest::newRow("headers of channels 0 and 2")
        << both(header(0, true, "GP"), header(2, true, "II")) << false
        << "$VRHDC,3,W,GP,,II,,,,,,,,,*38\r\n";
    QTest::newRow("no comma behind the last header")
        << header(11, true, "HE") << true << "$VRHDC,3,B,,,,,,,,,,,,HE*37\r\n";
    QTest::newRow("an override that is off has an empty field, even if it holds text")
        << header(0, false, "GP") << false << "$VRHDC,3,W,,,,,,,,,,,,*2F\r\n";
    QTest::newRow("an override that is on and holds no text has an empty field")
        << header(0, true, "") << false << "$VRHDC,3,W,,,,,,,,,,,,*2F\r\n";
    QTest::newRow("a lower-case letter is raised, the checksum is still the letter's")
        << header(0, true, "gP") << false << "$VRHDC,3,W,GP,,,,,,,,,,,*18\r\n";
}

void TestSentenceBuilders::hdr()
{
    QFETCH(Setup, setup);
    QFETCH(bool, batch);
    QTEST(MakeHdrSentence(modelOf(setup), 3, batch), "sentence");
    QCOMPARE(MakeHdrSentence(modelOf(setup), 12, batch), QString());
    QCOMPARE(MakeHdrSentence(modelOf(setup), -1, batch), QString());
}

void TestSentenceBuilders::filterList_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<int>("first");
    QTest::addColumn<QString>("sentence");

    const auto slot = [](int index, const char *name, bool taken) {
        return Setup([=](RouterModel &model) {
            const quint32 bit = 1U << index;
            model.filter_list[std::size_t(index)] = QLatin1String(name);
            model.filter_list_mask &= ~bit;
            model.filter_list_mask |= taken ? bit : 0U;
        });
    };

    QTest::newRow("eight names") << asMade << 0
                                 << "$VRFLS,0,RMC,GGA,GLL,ZDA,VTG,HDT,HDM,HDG*53\r\n";
    QTest::newRow("free slots are empty fields")
        << asMade << 8 << "$VRFLS,8,TTM,VDO,VDM,DBT,,,,*54\r\n";
    QTest::newRow("slots 16 to 23") << asMade << 16 << "$VRFLS,16,,,,,,,,*76\r\n";
    QTest::newRow("slots 24 to 31, all free: seven commas behind the index field")
        << asMade << 24 << "$VRFLS,24,,,,,,,,*77\r\n";
    QTest::newRow("no comma behind the last slot")
        << slot(31, "MWV", true) << 24 << "$VRFLS,24,,,,,,,,MWV*3B\r\n";
    QTest::newRow("the mask says what is free, not the text")
        << slot(8, "TTM", false) << 8 << "$VRFLS,8,,VDO,VDM,DBT,,,,*19\r\n";
    QTest::newRow("a lower-case name is raised, the checksum is still its own")
        << slot(0, "rmc", true) << 0 << "$VRFLS,0,RMC,GGA,GLL,ZDA,VTG,HDT,HDM,HDG*73\r\n";
    QTest::newRow("slot 4 starts no sentence") << asMade << 4 << "";
    QTest::newRow("slot 32 gives nothing") << asMade << 32 << "";
    QTest::newRow("slot -8 gives nothing") << asMade << -8 << "";
}

void TestSentenceBuilders::filterList()
{
    QFETCH(Setup, setup);
    QFETCH(int, first);
    QTEST(MakeFilterListSentence(modelOf(setup), first), "sentence");
}

void TestSentenceBuilders::name_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<bool>("output");
    QTest::addColumn<int>("first");
    QTest::addColumn<QString>("sentence");

    const Setup named = [](RouterModel &model) {
        model.output_ports[0].output_name = "Ecdis 1";
        model.output_ports[2].output_name = "radar x";
        model.output_ports[11].output_name = "VDR";
        model.input_ports[11].input_name = "gyro";
    };

    QTest::newRow("no names") << asMade << true << 0 << "$VRPNM,O,0,,,,,,*28\r\n";
    QTest::newRow("no input names") << asMade << false << 0 << "$VRPNM,I,0,,,,,,*2E\r\n";
    QTest::newRow("lower-case letters stay, and the checksum covers them as typed")
        << named << true << 0 << "$VRPNM,O,0,Ecdis 1,,radar x,,,*5D\r\n";
    QTest::newRow("second half of the output ports")
        << named << true << 6 << "$VRPNM,O,6,,,,,,VDR*6E\r\n";
    QTest::newRow("input names are not output names")
        << named << false << 0 << "$VRPNM,I,0,,,,,,*2E\r\n";
    QTest::newRow("second half of the input ports")
        << named << false << 6 << "$VRPNM,I,6,,,,,,gyro*2B\r\n";
    QTest::newRow("a percent sign is a letter like any other")
        << Setup([](RouterModel &model) { model.output_ports[0].output_name = "%1 %2"; }) << true
        << 0 << "$VRPNM,O,0,%1 %2,,,,,*0B\r\n";
    QTest::newRow("first port 3 gives nothing") << named << true << 3 << "";
    QTest::newRow("first port 12 gives nothing") << named << true << 12 << "";
    QTest::newRow("first port -6 gives nothing") << named << false << -6 << "";
}

void TestSentenceBuilders::name()
{
    QFETCH(Setup, setup);
    QFETCH(bool, output);
    QFETCH(int, first);
    QTEST(MakeNameSentence(modelOf(setup), output, first), "sentence");
}

void TestSentenceBuilders::speed_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<quint32>("speed");
    QTest::addColumn<QString>("sentence");

    QTest::newRow("lowest speed, first port") << 0 << 2400U << "$VRSPD,0,2400*75\r\n";
    QTest::newRow("4800") << 7 << 4800U << "$VRSPD,7,4800*78\r\n";
    QTest::newRow("highest speed, last port") << 11 << 115200U << "$VRSPD,11,115200*44\r\n";
    QTest::newRow("any speed is taken") << 3 << 4294967295U << "$VRSPD,3,4294967295*7D\r\n";
    QTest::newRow("port 12 gives nothing") << 12 << 4800U << "";
    QTest::newRow("port -1 gives nothing") << -1 << 4800U << "";
}

void TestSentenceBuilders::speed()
{
    QFETCH(int, port);
    QFETCH(quint32, speed);
    QTEST(MakeSpeedSentence(port, speed), "sentence");
}

void TestSentenceBuilders::view_data()
{
    QTest::addColumn<int>("a");
    QTest::addColumn<int>("b");
    QTest::addColumn<QString>("sentence");

    QTest::newRow("input port 3 is 243") << 15 << 3 << "$VRVVW,243\r\n";
    QTest::newRow("output port 3 is 63") << 3 << 15 << "$VRVVW,63\r\n";
    QTest::newRow("channel 2 of output port 9 is 146") << 9 << 2 << "$VRVVW,146\r\n";
    QTest::newRow("channel 0 of output port 0 is 0") << 0 << 0 << "$VRVVW,0\r\n";
    QTest::newRow("nothing is 255") << 15 << 15 << "$VRVVW,255\r\n";
    QTest::newRow("16 is no nibble") << 16 << 0 << "";
    QTest::newRow("16 is no nibble, the second") << 0 << 16 << "";
    QTest::newRow("-1 is no nibble") << -1 << 0 << "";
    QTest::newRow("-1 is no nibble, the second") << 1 << -1 << "";
}

void TestSentenceBuilders::view()
{
    QFETCH(int, a);
    QFETCH(int, b);
    QTEST(MakeViewSentence(a, b), "sentence");
}

void TestSentenceBuilders::commands_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("download") << QString(Commands::Download) << QByteArray("$VRRLD\r\n");
    QTest::newRow("version") << QString(Commands::Version) << QByteArray("$VRVER\r\n");
    QTest::newRow("disconnect") << QString(Commands::Disconnect) << QByteArray("$VRDCN\r\n");
    QTest::newRow("end of a batch") << QString(Commands::EndOfBatch) << QByteArray("$VRWBL\r\n");
    QTest::newRow("save") << QString(Commands::SaveToEeprom) << QByteArray("$VRSVR\r\n");
}

void TestSentenceBuilders::commands()
{
    QFETCH(QString, command);
    QTEST(command.toLocal8Bit(), "bytes");
}

void TestSentenceBuilders::goldenUpload_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<QString>("transcript");

    QTest::newRow("a router that nobody has set up") << asMade << "upload-default.txt";
    QTest::newRow("every field in use")
        << Setup([](RouterModel &model) { model = richModel(); }) << "upload-rich.txt";
}

void TestSentenceBuilders::goldenUpload()
{
    QFETCH(Setup, setup);
    QFETCH(QString, transcript);
    QFile file(QStringLiteral(TK7_TEST_DATA "/") + transcript);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    const QByteArray golden = file.readAll();

    const QStringList sentences = uploadSentences(modelOf(setup));
    QCOMPARE(sentences.size(), 80);
    QByteArray upload;
    for (const QString &sentence : sentences) {
        const QByteArray bytes = sentence.toLocal8Bit();
        QCOMPARE(bytes, golden.mid(upload.size(), bytes.size()));
        upload += bytes;
    }
    QCOMPARE(upload.size(), golden.size());
}

void TestSentenceBuilders::uploadOrder()
{
    QStringList heads;
    const QStringList sentences = uploadSentences(RouterModel());
    for (const QString &sentence : sentences)
        heads += sentence.mid(1, 5);

    QStringList expected;
    for (int port = 0; port < 12; ++port)
        expected += {"VRRUL", "VRFLT", "VRFLT", "VRHDC", "VRWBL", "VRSPD"};
    expected += {"VRFLS", "VRFLS", "VRFLS", "VRFLS", "VRPNM", "VRPNM", "VRPNM", "VRPNM"};
    QCOMPARE(heads, expected);
}

void TestSentenceBuilders::buildersLeaveTheModelAlone()
{
    const RouterModel model = randomModel(Seed);
    uploadSentences(model);
    QVERIFY(model == randomModel(Seed));
}

// Reads the words of every $VRRUL back into another model, as the router's own answer would come.
void TestSentenceBuilders::ruleSentencesComeBack()
{
    constexpr int HexDigitsPerWord = 4;
    for (quint32 seed = Seed; seed < Seed + RandomModels; ++seed) {
        const RouterModel original = randomModel(seed);
        RouterModel copy = original;
        for (int port = 0; port < OutputPortCount; ++port) {
            const QString sentence = MakeRuleSentence(original, port, true);
            const QString words = sentence.section(',', 3).section('*', 0, 0);
            QCOMPARE(words.size(), ChannelCount * HexDigitsPerWord);
            for (int channel = 0; channel < ChannelCount; ++channel) {
                const uint word =
                    words.mid(channel * HexDigitsPerWord, HexDigitsPerWord).toUInt(nullptr, 16);
                QVERIFY(copy.setRule(quint8(port), channel, 0xff, 0));
                QVERIFY(copy.setRule(quint8(port), channel, quint8(word >> 8), quint8(word)));
            }
        }
        QVERIFY2(copy == original, qPrintable(QStringLiteral("seed %1").arg(seed)));
    }
}

QTEST_APPLESS_MAIN(TestSentenceBuilders)
#include "tst_sentencebuilders.moc"
