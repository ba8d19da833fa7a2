#include "model/randommodel.h"
#include "model/richmodel.h"
#include "model/rulefile.h"
#include "rules/difference.h"
#include "rules/sheet.h"
#include "rules/sheetwriters.h"
#include "rules/words.h"

#include <QBuffer>
#include <QtTest>

#include <functional>

using Change = std::function<void(RouterModel &)>;
Q_DECLARE_METATYPE(Change)

/*! What differs, in words. */
class TestRuleDifference : public QObject
{
    Q_OBJECT

private slots:
    void oneField_data();
    void oneField();
    void filterInWords_data();
    void filterInWords();
    void isEmptyExactlyForTheSameFile();
    void tellsOfEveryField();
    void printable_data();
    void printable();
};

namespace {

RouterModel shipModel()
{
    RouterModel model;
    model.output_ports[3].output_name = QStringLiteral("ECDIS 1");
    model.output_ports[3].speed = 38400;
    model.input_ports[4].input_name = QStringLiteral("DEPTH");
    model.input_ports[5].input_name = QStringLiteral("LOG");
    ChannelRecord &channel = model.output_ports[3].channels[2];
    channel.main_input = 4;
    channel.filter_enabled = true;
    channel.filter_mask = 0x3;
    channel.hdr_enabled = true;
    channel.hdr = QStringLiteral("SD");
    return model;
}

ChannelRecord &channelOf(RouterModel &model)
{
    return model.output_ports[3].channels[2];
}

QByteArray fileOf(const RouterModel &model)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return RuleFile::write(buffer, model) ? buffer.data() : QByteArray();
}

} // namespace

void TestRuleDifference::oneField_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char *name, const Change &change, const QStringList &lines) {
        QTest::newRow(name) << change << lines;
    };
    const QString place = QStringLiteral("Output 3 ECDIS 1, channel 2: ");
    const auto inPlace = [&](const char *text) { return QStringList(place + QLatin1String(text)); };
    row("nothing", [](RouterModel &) {}, {});
    row(
        "main input", [](RouterModel &m) { channelOf(m).main_input = 5; },
        inPlace("main input 4 DEPTH -> 5 LOG"));
    row(
        "main input taken out", [](RouterModel &m) { channelOf(m).main_input = NO_PORT; },
        inPlace("main input 4 DEPTH -> none"));
    row(
        "input without a name", [](RouterModel &m) { channelOf(m).main_input = 7; },
        inPlace("main input 4 DEPTH -> 7"));
    row(
        "foreign input", [](RouterModel &m) { channelOf(m).main_input = 12; },
        inPlace("main input 4 DEPTH -> 12 (no such input)"));
    row(
        "reserve input", [](RouterModel &m) { channelOf(m).reserve_input = 5; },
        inPlace("reserve input none -> 5 LOG"));
    row(
        "filter's list", [](RouterModel &m) { channelOf(m).filter_mask = 0x8; },
        inPlace("filter only RMC, GGA -> only ZDA"));
    row(
        "filter's type", [](RouterModel &m) { channelOf(m).filter_type = BlackList; },
        inPlace("filter only RMC, GGA -> all but RMC, GGA"));
    row(
        "filter off, list kept", [](RouterModel &m) { channelOf(m).filter_enabled = false; },
        inPlace("filter only RMC, GGA -> off (white list: RMC, GGA)"));
    row(
        "checksum check", [](RouterModel &m) { channelOf(m).crs_enabled = true; },
        inPlace("checksum check off -> on"));
    row(
        "header", [](RouterModel &m) { channelOf(m).hdr = QStringLiteral("II"); },
        inPlace("header SD -> II"));
    row(
        "header off", [](RouterModel &m) { channelOf(m).hdr_enabled = false; },
        inPlace("header SD -> none"));
    row(
        "smart function", [](RouterModel &m) { channelOf(m).smart_function = 3; },
        inPlace("smart function none -> DEPTH"));
    row(
        "smart function without meaning", [](RouterModel &m) { channelOf(m).smart_function = 6; },
        inPlace("smart function none -> 6 (no such function)"));
    row("speed", [](RouterModel &m) { m.output_ports[3].speed = 4800; },
        {QStringLiteral("Output and input 3: speed 38400 -> 4800")});
    row("output's name",
        [](RouterModel &m) { m.output_ports[3].output_name = QStringLiteral("RADAR"); },
        {QStringLiteral("Output 3: name \"ECDIS 1\" -> \"RADAR\"")});
    row("output's name gone", [](RouterModel &m) { m.output_ports[3].output_name.clear(); },
        {QStringLiteral("Output 3: name \"ECDIS 1\" -> none")});
    row("input's name, once and not for each of its channels",
        [](RouterModel &m) { m.input_ports[4].input_name = QStringLiteral("DEEP"); },
        {QStringLiteral("Input 4: name \"DEPTH\" -> \"DEEP\"")});
    row("new sentence name", [](RouterModel &m) { m.setFilterString(12, QStringLiteral("MWV")); },
        {QStringLiteral("List of sentence names: slot 12 free -> MWV")});
    row("sentence name under a filter",
        [](RouterModel &m) { m.setFilterString(1, QStringLiteral("GNS")); },
        {place + QLatin1String("filter only RMC, GGA -> only RMC, GNS"),
         QStringLiteral("List of sentence names: slot 1 GGA -> GNS")});
    row("sentence name freed under a filter",
        [](RouterModel &m) { m.setFilterString(1, QString()); },
        {place + QLatin1String("filter only RMC, GGA -> only RMC, slot 1"),
         QStringLiteral("List of sentence names: slot 1 GGA -> free")});
    row("slot freed under a filter, its text kept",
        [](RouterModel &m) { m.filter_list_mask &= ~2U; },
        {place + QLatin1String("filter only RMC, GGA -> only RMC, slot 1"),
         QStringLiteral("List of sentence names: slot 1 GGA -> free")});
    row("text of a free slot: nothing keeps it",
        [](RouterModel &m) { m.filter_list[20] = QStringLiteral("XYZ"); }, {});
    row("another channel",
        [](RouterModel &m) { m.output_ports[11].channels[11].reserve_input = 0; },
        {QStringLiteral("Output 11, channel 11: reserve input none -> 0")});
}

void TestRuleDifference::oneField()
{
    QFETCH(Change, change);
    QFETCH(QStringList, lines);
    const RouterModel before = shipModel();
    RouterModel after = before;
    change(after);
    QCOMPARE(differences(before, after), lines);
    QCOMPARE(differences(after, before).size(), lines.size());
}

void TestRuleDifference::filterInWords_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("type");
    QTest::addColumn<quint32>("mask");
    QTest::addColumn<QString>("words");
    QTest::newRow("none") << false << int(WhiteList) << 0U << "none";
    QTest::newRow("white") << true << int(WhiteList) << 0x803U << "only RMC, GGA, DBT";
    QTest::newRow("black") << true << int(BlackList) << 0x200U << "all but VDO";
    QTest::newRow("empty white") << true << int(WhiteList) << 0U << "nothing passes";
    QTest::newRow("empty black") << true << int(BlackList) << 0U << "everything passes";
    QTest::newRow("off, list kept") << false << int(BlackList) << 0x1U << "off (black list: RMC)";
    QTest::newRow("off, black kept") << false << int(BlackList) << 0U << "off (black list: empty)";
    QTest::newRow("free slot") << true << int(WhiteList) << 0x80000001U << "only RMC, slot 31";
    QTest::newRow("name in two slots")
        << true << int(WhiteList) << 0x1001U << "only RMC, GGA (slot 12)";
}

void TestRuleDifference::filterInWords()
{
    QFETCH(bool, enabled);
    QFETCH(int, type);
    QFETCH(quint32, mask);
    RouterModel model;
    if (mask >> 12 & 1)
        model.setFilterString(12, QStringLiteral("GGA"));
    ChannelRecord channel;
    channel.filter_enabled = enabled;
    channel.filter_type = quint8(type);
    channel.filter_mask = mask;
    QTEST(Words::filter(model, channel), "words");
}

// Two models that differ in a few fields, or in none: lines, files and text sheets agree on that.
void TestRuleDifference::isEmptyExactlyForTheSameFile()
{
    constexpr int rounds = 300;
    QRandomGenerator random(16);
    int same = 0;
    for (int i = 0; i < rounds; ++i) {
        const RouterModel before = randomModel(quint32(i));
        const RouterModel other = randomModel(quint32(rounds + i));
        RouterModel after = before;
        const auto port = std::size_t(random.bounded(OutputPortCount));
        const auto number = std::size_t(random.bounded(ChannelCount));
        ChannelRecord &channel = after.output_ports[port].channels[number];
        const ChannelRecord &from = other.output_ports[port].channels[number];
        switch (random.bounded(10)) {
        case 0:
            channel.main_input = from.main_input;
            break;
        case 1:
            channel.reserve_input = from.reserve_input;
            break;
        case 2:
            channel.filter_enabled = from.filter_enabled;
            channel.filter_type = from.filter_type;
            break;
        case 3:
            channel.filter_mask ^= quint32(1) << random.bounded(FilterSlotCount);
            break;
        case 4:
            channel.crs_enabled = from.crs_enabled;
            break;
        case 5:
            channel.hdr_enabled = from.hdr_enabled;
            channel.hdr = from.hdr;
            break;
        case 6:
            channel.smart_function = from.smart_function;
            break;
        case 7:
            after.output_ports[port].speed = other.output_ports[port].speed;
            break;
        case 8:
            after.input_ports[port] = other.input_ports[port];
            break;
        default:
            after.setFilterString(quint8(number), other.filter_list[number]);
            break;
        }
        const bool isSameFile = fileOf(before) == fileOf(after);
        QVERIFY(!fileOf(before).isEmpty());
        QCOMPARE(differences(before, after).isEmpty(), isSameFile);
        QCOMPARE(SheetWriters::text(makeSheet(before)) == SheetWriters::text(makeSheet(after)),
                 isSameFile);
        same += isSameFile;
    }
    QVERIFY(same > rounds / 20);
    QVERIFY(same < rounds / 2);
}

void TestRuleDifference::tellsOfEveryField()
{
    const QStringList lines = differences(RouterModel(), richModel());
    QVERIFY(lines.size() > 500);
    for (const QString &line : lines)
        QVERIFY2(line.contains(QLatin1String(" -> ")), qPrintable(line));
    QCOMPARE(differences(richModel(), richModel()), QStringList());
}

void TestRuleDifference::printable_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("plain") << "GPS 1"
                           << "GPS 1";
    QTest::newRow("marks") << "<b>&|="
                           << "<b>&|=";
    QTest::newRow("escape sequence") << "\x1b[31mred"
                                     << "\\x1b[31mred";
    QTest::newRow("line end") << "a\r\nb"
                              << "a\\x0d\\x0ab";
    QTest::newRow("delete") << "\x7f"
                            << "\\x7f";
    QTest::newRow("eight bits") << QString(QChar(0x9b)) << "\\x9b";
    QTest::newRow("letter") << QString(QChar(0xe9)) << QString(QChar(0xe9));
    QTest::newRow("right to left") << QString(QChar(0x202e)) << "\\u202e";
    QTest::newRow("line separator") << QString(QChar(0x2028)) << "\\u2028";
    QTest::newRow("hard blank") << QString(QChar(0xa0)) << "\\xa0";
    QTest::newRow("half a character") << QString(QChar(0xd800)) << "\\ud800";
}

void TestRuleDifference::printable()
{
    QFETCH(QString, text);
    QTEST(Words::printable(text), "shown");
}

QTEST_GUILESS_MAIN(TestRuleDifference)
#include "tst_ruledifference.moc"
