#include "simulator/line/sentence.h"
#include "simulator/router/channelgate.h"

#include <QtTest>

using namespace tk7sim;

/*! What a channel makes of a line, line by line. */
class TestSimChannel : public QObject
{
    Q_OBJECT

private slots:
    void filter_data();
    void filter();
    void filterTypeAloneFiltersNothing();
    void maskOfAnEmptySlotListsNothing();
    void check_data();
    void check();
    void header_data();
    void header();
    void headerOptionWithoutHeader();
    void filterSeesTheLineAsItCame();
    void checkSeesTheLineAsItCame();
};

namespace {

const QByteArray rmc = "$GPRMC,120000.00,A,5412.0000,N,00724.0000,E,12.0,090.0,010124,3.2,E,A";
const QByteArray vdm = "!AIVDM,1,1,,A,13aEOK?P00PD2wVMdLDRhgvL289?,0";

QByteArray line(const QByteArray &body)
{
    return withChecksum(body).trimmed();
}

// RMC in slot 0, HDT in slot 7, VDM in slot 31; the others are free.
FormatterList formatters()
{
    FormatterList list;
    list[0] = "RMC";
    list[7] = "HDT";
    list[31] = "VDM";
    return list;
}

constexpr quint32 rmcBit = 1U << 0;
constexpr quint32 hdtBit = 1U << 7;
constexpr quint32 vdmBit = 1U << 31;

} // namespace

void TestSimChannel::filter_data()
{
    QTest::addColumn<bool>("black");
    QTest::addColumn<quint32>("mask");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("passes");
    const auto row = [](const char *name, bool black, quint32 mask, const QByteArray &body,
                        bool passes) { QTest::newRow(name) << black << mask << body << passes; };
    row("white, listed", false, rmcBit, rmc, true);
    row("white, listed in the last slot", false, vdmBit, vdm, true);
    row("white, listed but not by this channel", false, hdtBit, rmc, false);
    row("white, not listed at all", false, ~0U, "$GPGGA,1", false);
    row("white, nothing listed", false, 0U, rmc, false);
    row("white, another talker", false, rmcBit, "$GNRMC,1", true);
    row("white, formatter in lower case", false, rmcBit, "$GPrmc,1", false);
    row("white, formatter as the talker", false, rmcBit, "$RMCGP,1", false);
    row("white, proprietary", false, ~0U, "$PRMC,RMC", false);
    row("white, proprietary of five characters", false, rmcBit, "$PXRMC,1", false);
    row("white, address of four characters", false, rmcBit, "$PRMC", false);
    row("white, address of six characters", false, rmcBit, "$GPRMCX,1", false);
    row("white, address and nothing else", false, rmcBit, "$GPRMC", true);
    row("white, empty", false, ~0U, "$", false);
    row("black, listed", true, rmcBit, rmc, false);
    row("black, listed in the last slot", true, vdmBit, vdm, false);
    row("black, listed but not by this channel", true, hdtBit, rmc, true);
    row("black, not listed at all", true, ~0U, "$GPGGA,1", true);
    row("black, nothing listed", true, 0U, rmc, true);
    row("black, another talker", true, rmcBit, "$GNRMC,1", false);
    row("black, proprietary", true, ~0U, "$PXRMC,1", true);
    row("black, address of six characters", true, rmcBit, "$GPRMCX,1", true);
}

void TestSimChannel::filter()
{
    QFETCH(bool, black);
    QFETCH(quint32, mask);
    QFETCH(QByteArray, body);
    QFETCH(bool, passes);
    Channel channel;
    channel.filterEnabled = true;
    channel.filterType = black ? FilterType::Black : FilterType::White;
    channel.filterMask = mask;
    const auto passed = passChannel(line(body), channel, formatters());
    QCOMPARE(passed.has_value(), passes);
    QCOMPARE(passed.value_or(line(body)), line(body));
}

void TestSimChannel::filterTypeAloneFiltersNothing()
{
    Channel channel;
    channel.filterMask = rmcBit;
    for (const FilterType type : {FilterType::White, FilterType::Black}) {
        channel.filterType = type;
        QVERIFY(passChannel(line(rmc), channel, formatters()) == line(rmc));
        QVERIFY(passChannel(line("$GPGGA,1"), channel, formatters()) == line("$GPGGA,1"));
    }
}

void TestSimChannel::maskOfAnEmptySlotListsNothing()
{
    Channel channel;
    channel.filterEnabled = true;
    channel.filterMask = 1U << 3;
    QVERIFY(!passChannel("$GP", channel, formatters()));
    QVERIFY(!passChannel("$GP,1", channel, formatters()));
    channel.filterType = FilterType::Black;
    QVERIFY(passChannel("$GP", channel, formatters()));
}

void TestSimChannel::check_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("passes");
    const auto row = [](const char *name, const QByteArray &text, bool passes) {
        QTest::newRow(name) << text << passes;
    };
    row("right", line(rmc), true);
    row("right, with an exclamation mark", line(vdm), true);
    row("right, small digits", "$GPZDA*" + hex(checksumOf("$GPZDA"), 2).toLower(), true);
    row("wrong", withWrongChecksum(rmc).trimmed(), false);
    row("wrong, with an exclamation mark", withWrongChecksum(vdm).trimmed(), false);
    row("none", rmc, true);
    row("one digit", "$GPRMC,1*4", false);
    row("three digits", line("$GPRMC,1") + '0', false);
    row("no digits", "$GPRMC,1*", false);
    row("no number", "$GPRMC,1*XX", false);
    row("two stars", line("$GPRMC,1") + line("$GPRMC,1").right(3), false);
    row("proprietary, right", line("$PABC,1"), true);
    row("proprietary, wrong", withWrongChecksum("$PABC,1").trimmed(), false);
}

void TestSimChannel::check()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, passes);
    Channel channel;
    QVERIFY(passChannel(text, channel, formatters()) == text);
    channel.crsEnabled = true;
    const auto passed = passChannel(text, channel, formatters());
    QCOMPARE(passed.has_value(), passes);
    QCOMPARE(passed.value_or(text), text);
}

void TestSimChannel::header_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    const auto row = [](const char *name, const QByteArray &before, const QByteArray &after) {
        QTest::newRow(name) << before << after;
    };
    row("talker", line(rmc), line(QByteArray(rmc).replace("GP", "IN")));
    row("talker of an exclamation mark", line(vdm), line(QByteArray(vdm).replace("AI", "IN")));
    row("the same talker", line("$INRMC,1"), line("$INRMC,1"));
    row("no checksum", "$GPRMC,1", "$INRMC,1");
    row("address and nothing else", "$GPRMC", "$INRMC");
    row("address and checksum", line("$GPRMC"), line("$INRMC"));
    row("wrong checksum stays wrong", withWrongChecksum("$GPRMC,1").trimmed(),
        withWrongChecksum("$INRMC,1").trimmed());
    row("no number stays none", "$GPRMC,1*XX", "$INRMC,1*XX");
    row("proprietary stays", line("$PXRMC,1"), line("$PXRMC,1"));
    row("address of four characters stays", line("$GPRM,1"), line("$GPRM,1"));
    row("address of six characters stays", line("$GPRMCX,1"), line("$GPRMCX,1"));
    row("star in the address stays", "$GPR*C,1", "$GPR*C,1");
    row("nothing stays", "$", "$");
}

void TestSimChannel::header()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    Channel channel;
    channel.hdr = "IN"; // a text may stay although the option is off
    QVERIFY(passChannel(before, channel, formatters()) == before);
    channel.hdrEnabled = true;
    const auto passed = passChannel(before, channel, formatters());
    QVERIFY(passed.has_value());
    QCOMPARE(*passed, after);
}

void TestSimChannel::headerOptionWithoutHeader()
{
    Channel channel;
    channel.hdrEnabled = true;
    for (const char *hdr : {"", "X", "XYZ"}) {
        channel.hdr = hdr;
        QVERIFY(passChannel(line(rmc), channel, formatters()) == line(rmc));
    }
}

void TestSimChannel::filterSeesTheLineAsItCame()
{
    Channel channel;
    channel.filterEnabled = true;
    channel.filterMask = rmcBit;
    channel.hdrEnabled = true;
    channel.hdr = "PX"; // the result looks proprietary
    QVERIFY(passChannel(line("$GPRMC,1"), channel, formatters()) == line("$PXRMC,1"));
}

void TestSimChannel::checkSeesTheLineAsItCame()
{
    Channel channel;
    channel.crsEnabled = true;
    channel.hdrEnabled = true;
    channel.hdr = "IN";
    QVERIFY(passChannel(line("$GPRMC,1"), channel, formatters()) == line("$INRMC,1"));
    QVERIFY(!passChannel(withWrongChecksum("$GPRMC,1").trimmed(), channel, formatters()));
}

QTEST_APPLESS_MAIN(TestSimChannel)
#include "tst_simchannel.moc"
