#include "simulator/instruments/ship.h"
#include "simulator/line/sentence.h"
#include "simulator/router/monitorfeed.h"
#include "simulator/router/trafficgenerator.h"

#include <QSet>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>

using namespace tk7sim;

namespace {

const QDateTime start(QDate(2024, 2, 29), QTime(23, 59, 50), Qt::UTC);
constexpr qint64 minute = 60000;
constexpr int maxNmeaLine = 80; // without CR LF

QByteArray formatter(const QByteArray &line)
{
    return line.mid(3, 3);
}

QByteArrayList fields(const QByteArray &line)
{
    return line.left(line.indexOf('*')).split(',');
}

double arc(const QByteArray &field, int degreeDigits)
{
    return field.left(degreeDigits).toDouble() + field.mid(degreeDigits).toDouble() / 60;
}

} // namespace

class TestSimTraffic : public QObject
{
    Q_OBJECT

private slots:
    void portsHaveCharacter_data();
    void portsHaveCharacter();
    void sparePortIsSilent();
    void checksumsAreRight();
    void rateIsBelievable();
    void rateIsAFactor();
    void instrumentsSayNoMoreThanALineCarries();
    void spansJoin();
    void timeIsTold();
    void positionMoves();
    void headingTurns();
    void courseLeadsWhereItSays();
    void viewOfNothing();
    void viewOfInput();
    void viewOfChannel();
    void viewOfReserve();
    void viewOfOutputMerges();
    void viewOfAbsurdCodes();
    void viewOfChannelPassesItsOptions();
    void viewOfOutputMergesWhatPasses();
    void viewOfInputIsRaw();
    void wrongChecksumsComeAtTheirRate_data();
    void wrongChecksumsComeAtTheirRate();
    void damageComesInAllKinds();
    void damagedLinesReachNoChannel();
    void hitsAreTheSameEachTime();
    void silenceIsASpan();
    void reserveTakesOver_data();
    void reserveTakesOver();
    void reserveWithoutMain_data();
    void reserveWithoutMain();
    void mainAndReserveAlike();
    void handoverPassesTheOptions();
    void feedRunsOnlyWhileViewed();
    void feedHoldsNoMoreThanItMay();
    void feedForgetsWithTheView();
    void feedBreaksLinesOff();
};

void TestSimTraffic::portsHaveCharacter_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArrayList>("formatters");
    const auto row = [](const char *name, const QByteArrayList &formatters) {
        QTest::newRow(*name ? name : "no name") << QByteArray(name) << formatters;
    };
    row("GPS 1", {"GGA", "GLL", "RMC", "VTG", "ZDA"});
    row("GPS 2", {"GGA", "GLL", "RMC", "VTG", "ZDA"});
    row("GYRO", {"HDT", "ROT"});
    row("AIS", {"ALR", "VDM", "VDO"});
    row("DEPTH", {"DBT", "DPT"});
    row("LOG", {"VBW", "VHW"});
    row("WIND", {"MWV"});
    row("RADAR X", {"RSD", "TTM"});
    row("ECDIS", {"ALR", "APB", "VDM", "VDO", "XTE"});
    row("FLUXGATE", {"HDG", "HDM"});
    row("WEATHER", {"MTW", "MWV", "XDR"});
    row("", {"VDM"}); // a second receiver, without a transponder
}

// The factory set-up's names say what is wired to the ports.
void TestSimTraffic::portsHaveCharacter()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArrayList, formatters);
    const auto &names = RouterConfig::factory().inputNames;
    const auto port = std::distance(names.begin(), std::find(names.begin(), names.end(), name));
    QSet<QByteArray> seen;
    const auto lines = TrafficGenerator(start).inputTraffic(static_cast<int>(port), 0, minute);
    for (const TrafficLine &line : lines) {
        seen.insert(formatter(line.text));
    }
    QByteArrayList sorted(seen.cbegin(), seen.cend());
    std::sort(sorted.begin(), sorted.end());
    QCOMPARE(sorted, formatters);
}

void TestSimTraffic::sparePortIsSilent()
{
    TrafficGenerator generator(start);
    generator.inputs().setAisPorts(QVector<int>{3});
    QVERIFY(generator.inputTraffic(11, 0, minute).isEmpty());
    QVERIFY(generator.inputTraffic(noPort, 0, minute).isEmpty());
    QVERIFY(generator.inputTraffic(-1, 0, minute).isEmpty());
    QVERIFY(RouterConfig::factory().inputNames[11].isEmpty());
}

void TestSimTraffic::checksumsAreRight()
{
    TrafficGenerator generator(start);
    for (int port = 0; port < portCount; ++port) {
        for (const TrafficLine &line : generator.inputTraffic(port, 0, minute)) {
            QVERIFY(line.text.startsWith('$') || line.text.startsWith('!'));
            QVERIFY2(line.text.size() <= maxNmeaLine, line.text.constData());
            const int star = int(line.text.indexOf('*'));
            QCOMPARE(star, line.text.size() - 3);
            quint8 sum = 0;
            for (int i = 1; i < star; ++i) {
                sum = static_cast<quint8>(sum ^ static_cast<quint8>(line.text.at(i)));
            }
            QCOMPARE(line.text.mid(star + 1).toInt(nullptr, 16), int(sum));
        }
    }
}

void TestSimTraffic::rateIsBelievable()
{
    TrafficGenerator generator(start);
    for (int port = 0; port < portCount - 1; ++port) {
        const int perMinute = int(generator.inputTraffic(port, 0, minute).size());
        QVERIFY2(perMinute >= 60 && perMinute <= 600, qPrintable(QString::number(perMinute)));
    }
}

void TestSimTraffic::rateIsAFactor()
{
    TrafficGenerator generator(start);
    const int usual = int(generator.inputTraffic(0, 0, minute).size());
    generator.setRate(10);
    QCOMPARE(generator.inputTraffic(0, 0, minute).size() / 10, usual);
    generator.setRate(0.5);
    QCOMPARE(generator.inputTraffic(0, 0, minute).size() * 2, usual);
    generator.setRate(0);
    QVERIFY(generator.inputTraffic(0, 0, minute).isEmpty());
}

// At the greatest rate each fills a line of 115200 baud, and not much more.
void TestSimTraffic::instrumentsSayNoMoreThanALineCarries()
{
    constexpr double carried = 11520; // bytes a second
    TrafficGenerator generator(start);
    generator.inputs().setAisPorts(QVector<int>());
    generator.setRate(1000);
    for (int port = 0; port < portCount; ++port) {
        double bytes = 0;
        for (const TrafficLine &line : generator.inputTraffic(port, minute, 2 * minute)) {
            bytes += double(line.text.size() + 2);
        }
        if (port == 3 || port == 11) {
            QCOMPARE(bytes, 0.0); // no AIS station, nothing wired
            continue;
        }
        QVERIFY2(bytes / 60 > 1.05 * carried && bytes / 60 < 1.4 * carried,
                 qPrintable(QStringLiteral("port %1: %2").arg(port).arg(bytes / 60)));
    }
}

// However the time is cut into spans, the same lines come, each once.
void TestSimTraffic::spansJoin()
{
    TrafficGenerator generator(start);
    for (const double rate : {1.0, 0.7, 3.3}) {
        generator.setRate(rate);
        const auto whole = generator.inputTraffic(0, 0, minute);
        QVector<TrafficLine> joined;
        for (qint64 from = 0; from < minute;) {
            const qint64 to = qMin(from + 1 + (from * 7) % 130, minute);
            joined += generator.inputTraffic(0, from, to);
            from = to;
        }
        QCOMPARE(joined.size(), whole.size());
        for (int i = 0; i < whole.size(); ++i) {
            QCOMPARE(joined.at(i).text, whole.at(i).text);
        }
    }
}

void TestSimTraffic::timeIsTold()
{
    TrafficGenerator generator(start);
    QByteArrayList dates;
    QByteArrayList times;
    for (const TrafficLine &line : generator.inputTraffic(0, 0, minute)) {
        if (formatter(line.text) == "RMC") {
            times.append(fields(line.text).at(1));
            dates.append(fields(line.text).at(9));
        }
    }
    QCOMPARE(times.constFirst(), QByteArray("235951.00"));
    QCOMPARE(dates.constFirst(), QByteArray("290224"));
    QCOMPARE(times.constLast(), QByteArray("000050.00"));
    QCOMPARE(dates.constLast(), QByteArray("010324"));
}

void TestSimTraffic::positionMoves()
{
    TrafficGenerator generator(start);
    QVector<QPointF> track;
    for (const TrafficLine &line : generator.inputTraffic(0, 0, 10 * minute)) {
        if (formatter(line.text) == "GGA") {
            const auto f = fields(line.text);
            QCOMPARE(f.at(3), QByteArray("N"));
            QCOMPARE(f.at(5), QByteArray("E"));
            track.append({arc(f.at(4), 3), arc(f.at(2), 2)});
        }
    }
    // A ship of some 12 knots makes some 2 miles in ten minutes.
    const QPointF way = track.constLast() - track.constFirst();
    const double miles = std::hypot(way.x() * 60 * std::cos(54.2 * M_PI / 180), way.y() * 60);
    QVERIFY2(miles > 1.8 && miles < 2.3, qPrintable(QString::number(miles)));
}

void TestSimTraffic::headingTurns()
{
    QSet<QByteArray> headings;
    for (const TrafficLine &line : TrafficGenerator(start).inputTraffic(2, 0, minute)) {
        if (formatter(line.text) == "HDT") {
            const double heading = fields(line.text).at(1).toDouble();
            QVERIFY(heading >= 0 && heading < 360);
            headings.insert(fields(line.text).at(1));
        }
    }
    QVERIFY(headings.size() > 5);
}

void TestSimTraffic::courseLeadsWhereItSays()
{
    for (const double knots : {12.0, -12.0}) {
        const CircularCourse course{54, 7, 5, knots, 300};
        for (int time = 0; time < 20000; time += 777) {
            const Fix here = course.at(time);
            const Fix there = course.at(time + 10);
            const double north = there.latitude - here.latitude;
            const double east = (there.longitude - here.longitude) * std::cos(54 * M_PI / 180);
            const double bearing = normalized(std::atan2(east, north) * 180 / M_PI);
            const double off = std::fabs(bearing - here.course);
            QVERIFY2(off < 1 || off > 359, qPrintable(QString::number(off)));
            QVERIFY(std::fabs(std::hypot(north, east) * 60 - 12.0 / 360) < 0.001);
        }
    }
}

void TestSimTraffic::viewOfNothing()
{
    QVERIFY(TrafficGenerator(start)
                .viewTraffic(viewNothing, RouterConfig::factory(), 0, minute)
                .isEmpty());
}

void TestSimTraffic::viewOfInput()
{
    TrafficGenerator generator(start);
    const auto seen = generator.viewTraffic(0xF2, RouterConfig(), 0, minute);
    QCOMPARE(seen.size(), generator.inputTraffic(2, 0, minute).size());
    QVERIFY(!seen.isEmpty());
}

void TestSimTraffic::viewOfChannel()
{
    RouterConfig config;
    config.outputs[4].channels[7].mainInput = 4;
    config.outputs[4].channels[7].reserveInput = 2;
    config.outputs[4].channels[8].mainInput = 2;
    TrafficGenerator generator(start);
    const auto lines = generator.viewTraffic(0x47, config, 0, minute);
    QCOMPARE(lines.size(), generator.inputTraffic(4, 0, minute).size());
    QVERIFY(lines.constFirst().text.startsWith("$SD"));
    QVERIFY(generator.viewTraffic(0x46, config, 0, minute).isEmpty());
}

void TestSimTraffic::viewOfReserve()
{
    RouterConfig config;
    config.outputs[4].channels[7].reserveInput = 4;
    const auto lines = TrafficGenerator(start).viewTraffic(0x47, config, 0, minute);
    QVERIFY(!lines.isEmpty());
    QVERIFY(lines.constFirst().text.startsWith("$SD"));
}

void TestSimTraffic::viewOfOutputMerges()
{
    RouterConfig config;
    config.outputs[11].channels[0].mainInput = 4;
    config.outputs[11].channels[11].mainInput = 2;
    TrafficGenerator generator(start);
    const auto lines = generator.viewTraffic(0xBF, config, 0, minute);
    QCOMPARE(lines.size(),
             generator.inputTraffic(4, 0, minute).size()
                 + generator.inputTraffic(2, 0, minute).size());
    for (int i = 1; i < lines.size(); ++i) {
        QVERIFY(lines.at(i - 1).time <= lines.at(i).time);
    }
}

void TestSimTraffic::viewOfAbsurdCodes()
{
    TrafficGenerator generator(start);
    for (const int code : {-1, 12, 0xCF, 0xDD, 0xFC, 256, 4096, INT_MAX, INT_MIN}) {
        QVERIFY(generator.viewTraffic(code, RouterConfig::factory(), 0, minute).isEmpty());
    }
}

void TestSimTraffic::viewOfChannelPassesItsOptions()
{
    RouterConfig config;
    config.filterList[9] = "RMC";
    Channel &channel = config.outputs[4].channels[7];
    channel.mainInput = 0;
    channel.filterEnabled = true;
    channel.filterMask = 1U << 9;
    channel.hdrEnabled = true;
    channel.hdr = "IN";
    const auto lines = TrafficGenerator(start).viewTraffic(0x47, config, 0, minute);
    QCOMPARE(lines.size(), 60);
    for (const TrafficLine &line : lines) {
        QVERIFY2(line.text.startsWith("$INRMC,"), line.text.constData());
        QCOMPARE(parseHex(line.text.right(2), 2).value(), quint32(checksumOf(line.text)));
    }
}

void TestSimTraffic::viewOfOutputMergesWhatPasses()
{
    RouterConfig config;
    config.filterList[0] = "HDT";
    auto &channels = config.outputs[11].channels;
    channels[0].mainInput = 4;
    channels[3].mainInput = 2;
    channels[3].filterEnabled = true;
    channels[3].filterMask = 1;
    channels[3].filterType = FilterType::Black;
    channels[11].mainInput = 2;
    channels[11].hdrEnabled = true;
    channels[11].hdr = "II";
    TrafficGenerator generator(start);
    QMap<QByteArray, int> counts;
    const auto lines = generator.viewTraffic(0xBF, config, 0, minute);
    for (const TrafficLine &line : lines) {
        ++counts[line.text.left(6)];
    }
    const QMap<QByteArray, int> expected = {
        {"$SDDBT", 60}, {"$SDDPT", 60}, {"$HEROT", 150}, {"$IIHDT", 300}, {"$IIROT", 150}};
    // Each begins at its own time within its period.
    QCOMPARE(counts.keys(), expected.keys());
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        QVERIFY2(std::abs(counts.value(it.key()) - it.value()) <= 1, it.key().constData());
    }
    for (int i = 1; i < lines.size(); ++i) {
        QVERIFY(lines.at(i - 1).time <= lines.at(i).time);
    }
}

// Whatever the channels make of it.
void TestSimTraffic::viewOfInputIsRaw()
{
    TrafficGenerator generator(start);
    InputConditions conditions;
    conditions.wrongChecksums = 20;
    conditions.damage = 20;
    generator.setConditions(conditions);
    QSet<int> flaws;
    for (const TrafficLine &line : generator.viewTraffic(0xF0, RouterConfig(), 0, minute)) {
        flaws.insert(static_cast<int>(line.flaw));
    }
    QCOMPARE(flaws.size(), 5);
}

void TestSimTraffic::wrongChecksumsComeAtTheirRate_data()
{
    QTest::addColumn<double>("percent");
    for (const int percent : {0, 1, 10, 50, 100}) {
        QTest::addRow("%d per cent", percent) << double(percent);
    }
}

void TestSimTraffic::wrongChecksumsComeAtTheirRate()
{
    QFETCH(double, percent);
    TrafficGenerator generator(start);
    InputConditions conditions;
    conditions.wrongChecksums = percent;
    generator.setConditions(conditions);
    RouterConfig config;
    config.outputs[0].channels[0].mainInput = 0;
    config.outputs[0].channels[1].mainInput = 0;
    config.outputs[0].channels[1].crsEnabled = true;

    int wrong = 0;
    const auto raw = generator.inputTraffic(0, 0, 20 * minute);
    for (const TrafficLine &line : raw) {
        const bool matches = parseHex(line.text.right(2), 2) == checksumOf(line.text);
        QCOMPARE(line.flaw == LineFlaw::WrongChecksum, !matches);
        wrong += matches ? 0 : 1;
    }
    QCOMPARE(raw.size(), 6000);
    const double expected = double(raw.size()) * percent / 100;
    QVERIFY2(std::fabs(wrong - expected) <= 0.2 * expected, qPrintable(QString::number(wrong)));
    QCOMPARE(generator.viewTraffic(0x00, config, 0, 20 * minute).size(), raw.size());
    QCOMPARE(generator.viewTraffic(0x01, config, 0, 20 * minute).size(), raw.size() - wrong);
}

void TestSimTraffic::damageComesInAllKinds()
{
    TrafficGenerator generator(start);
    InputConditions conditions;
    conditions.damage = 100;
    generator.setConditions(conditions);
    QMap<LineFlaw, int> counts;
    for (const TrafficLine &line : generator.inputTraffic(3, 0, 5 * minute)) {
        ++counts[line.flaw];
        const bool isPrintable = std::all_of(line.text.cbegin(), line.text.cend(),
                                             [](char c) { return c >= ' ' && c <= '~'; });
        QCOMPARE(isPrintable, line.flaw != LineFlaw::Unprintable);
        QCOMPARE(line.text.contains('*'), line.flaw != LineFlaw::Broken);
        QCOMPARE(line.text.size() > maxNmeaLine, line.flaw == LineFlaw::Oversize);
    }
    QCOMPARE(counts.size(), 3);
    for (const LineFlaw flaw : {LineFlaw::Unprintable, LineFlaw::Broken, LineFlaw::Oversize}) {
        QVERIFY(counts.value(flaw) > 50);
    }
}

void TestSimTraffic::damagedLinesReachNoChannel()
{
    TrafficGenerator generator(start);
    InputConditions conditions;
    conditions.damage = 30;
    generator.setConditions(conditions);
    RouterConfig config;
    config.outputs[0].channels[0].mainInput = 0;
    int whole = 0;
    for (const TrafficLine &line : generator.inputTraffic(0, 0, minute)) {
        whole += line.flaw == LineFlaw::None ? 1 : 0;
    }
    const auto passed = generator.viewTraffic(0x00, config, 0, minute);
    QCOMPARE(passed.size(), whole);
    QVERIFY(whole > 100 && whole < 290);
    for (const TrafficLine &line : passed) {
        QVERIFY(line.flaw == LineFlaw::None);
    }
}

void TestSimTraffic::hitsAreTheSameEachTime()
{
    QByteArrayList heard;
    for (const quint32 seed : {5U, 5U, 6U}) {
        TrafficGenerator generator(start);
        InputConditions conditions;
        conditions.wrongChecksums = 50;
        conditions.seed = seed;
        generator.setConditions(conditions);
        QByteArray all;
        for (const TrafficLine &line : generator.inputTraffic(2, 0, minute)) {
            all += line.text;
        }
        heard.append(all);
    }
    QCOMPARE(heard.at(0), heard.at(1));
    QVERIFY(heard.at(1) != heard.at(2));
}

void TestSimTraffic::silenceIsASpan()
{
    TrafficGenerator generator(start);
    InputConditions conditions;
    conditions.silences[0] = {10000, 20000};
    generator.setConditions(conditions);
    int before = 0;
    int after = 0;
    for (const TrafficLine &line : generator.inputTraffic(0, 0, minute)) {
        QVERIFY(line.time < 10000 || line.time >= 20000);
        before += line.time < 10000 ? 1 : 0;
        after += line.time >= 20000 ? 1 : 0;
    }
    QVERIFY(before > 40 && after > 190);
    QVERIFY(!generator.inputTraffic(1, 10000, 20000).isEmpty());
}

void TestSimTraffic::reserveTakesOver_data()
{
    QTest::addColumn<qint64>("from");
    QTest::addColumn<qint64>("until");
    QTest::addColumn<int>("handover");
    QTest::addColumn<qint64>("reserveFrom");
    QTest::addColumn<qint64>("reserveUntil");
    const auto row = [](const char *name, qint64 from, qint64 until, int handover,
                        qint64 reserveFrom, qint64 reserveUntil) {
        QTest::newRow(name) << from << until << handover << reserveFrom << reserveUntil;
    };
    row("and gives back", 10000, 20000, 3000, 13000, 20000);
    row("for good", 10000, InputSilence::never, 3000, 13000, minute + 1);
    row("at once", 10000, 20000, 0, 10000, 20000);
    row("from the start", 0, 20000, 0, 0, 20000);
    row("not in a short silence", 10000, 12999, 3000, minute + 1, minute + 1);
    row("for a moment", 10000, 14000, 3000, 13000, 14000);
}

void TestSimTraffic::reserveTakesOver()
{
    QFETCH(qint64, from);
    QFETCH(qint64, until);
    QFETCH(int, handover);
    QFETCH(qint64, reserveFrom);
    QFETCH(qint64, reserveUntil);
    RouterConfig config;
    Channel &channel = config.outputs[4].channels[7];
    channel.mainInput = 0;
    channel.reserveInput = 1;
    TrafficGenerator generator(start);
    InputConditions conditions;
    conditions.silences[0] = {from, until};
    conditions.handover = handover;
    generator.setConditions(conditions);

    // However the time is cut, the same lines come.
    QVector<TrafficLine> lines;
    for (qint64 time = 0; time < minute; time += 50) {
        lines += generator.viewTraffic(0x47, config, time, time + 50);
    }
    QCOMPARE(lines.size(), generator.viewTraffic(0x47, config, 0, minute).size());
    int reserve = 0;
    for (int i = 0; i < lines.size(); ++i) {
        const qint64 time = lines.at(i).time;
        const bool isReserve = lines.at(i).text.startsWith("$GN");
        QVERIFY(isReserve || lines.at(i).text.startsWith("$GP"));
        QCOMPARE(isReserve, time >= reserveFrom && time < reserveUntil);
        QVERIFY(isReserve || time < from || time >= until);
        reserve += isReserve ? 1 : 0;
        QVERIFY(i == 0 || lines.at(i - 1).time <= time);
    }
    const auto span = static_cast<double>(qMin(reserveUntil, minute) - qMin(reserveFrom, minute));
    QVERIFY(std::fabs(reserve - span / 200) <= 5);
    QCOMPARE(generator.activeInput(channel, reserveFrom), reserveFrom < minute ? 1 : 0);
    QCOMPARE(generator.activeInput(channel, reserveFrom - 1), 0);
}

void TestSimTraffic::reserveWithoutMain_data()
{
    QTest::addColumn<int>("mainInput");
    QTest::addColumn<int>("reserveInput");
    QTest::addColumn<int>("active");
    QTest::newRow("neither") << int(noPort) << int(noPort) << int(noPort);
    QTest::newRow("no reserve") << 0 << int(noPort) << 0;
    QTest::newRow("no main") << int(noPort) << 1 << 1;
    QTest::newRow("nothing wired to the main input") << 11 << 1 << 1;
    QTest::newRow("nothing wired to the reserve") << 0 << 11 << 0;
}

void TestSimTraffic::reserveWithoutMain()
{
    QFETCH(int, mainInput);
    QFETCH(int, reserveInput);
    QFETCH(int, active);
    RouterConfig config;
    Channel &channel = config.outputs[4].channels[7];
    channel.mainInput = static_cast<quint8>(mainInput);
    channel.reserveInput = static_cast<quint8>(reserveInput);
    TrafficGenerator generator(start);
    generator.inputs().setAisPorts(QVector<int>{3}); // nothing is wired to input 11 then
    QCOMPARE(generator.activeInput(channel, 0), active);
    QCOMPARE(generator.viewTraffic(0x47, config, 0, minute).size(),
             generator.inputTraffic(active, 0, minute).size());
}

void TestSimTraffic::mainAndReserveAlike()
{
    RouterConfig config;
    config.outputs[4].channels[7].mainInput = 0;
    config.outputs[4].channels[7].reserveInput = 0;
    TrafficGenerator generator(start);
    InputConditions conditions;
    conditions.silences[0] = {10000, 20000};
    generator.setConditions(conditions);
    QCOMPARE(generator.viewTraffic(0x47, config, 0, minute).size(),
             generator.inputTraffic(0, 0, minute).size());
}

void TestSimTraffic::handoverPassesTheOptions()
{
    RouterConfig config;
    config.filterList[0] = "ZDA";
    Channel &channel = config.outputs[4].channels[7];
    channel.mainInput = 0;
    channel.reserveInput = 1;
    channel.filterEnabled = true;
    channel.filterMask = 1;
    channel.hdrEnabled = true;
    channel.hdr = "IN";
    TrafficGenerator generator(start);
    InputConditions conditions;
    conditions.silences[0] = {0, InputSilence::never};
    conditions.handover = 0;
    generator.setConditions(conditions);
    const auto lines = generator.viewTraffic(0x47, config, 0, minute);
    QCOMPARE(lines.size(), 60);
    for (const TrafficLine &line : lines) {
        QVERIFY(line.text.startsWith("$INZDA,"));
    }
}

void TestSimTraffic::feedRunsOnlyWhileViewed()
{
    const RouterConfig config = RouterConfig::factory();
    const RouterClock clock;
    TrafficGenerator traffic(clock.start());
    MonitorFeed feed(&clock, &config, &traffic);
    const auto *timer = feed.findChild<QTimer *>();
    QVERIFY(!timer->isActive());
    feed.setView(0xF2);
    QVERIFY(timer->isActive());
    QTRY_VERIFY(feed.hasLine());
    const QByteArray line = feed.takeLine();
    QVERIFY(line.startsWith("$HE"));
    QVERIFY(line.endsWith("\r\n"));
    traffic.setRate(0);
    feed.restart();
    QVERIFY(!timer->isActive());
    traffic.setRate(1);
    feed.restart();
    QVERIFY(timer->isActive());
    feed.setView(viewNothing);
    QVERIFY(!timer->isActive());
}

void TestSimTraffic::feedHoldsNoMoreThanItMay()
{
    const RouterConfig config = RouterConfig::factory();
    RouterClock clock;
    TrafficGenerator traffic(clock.start());
    MonitorFeed feed(&clock, &config, &traffic);
    QSignalSpy waiting(&feed, &MonitorFeed::linesWaiting);
    traffic.setRate(1000);
    feed.restart();
    feed.setView(0xBF);
    clock.skip(MonitorFeed::longestGap);
    QTRY_VERIFY(waiting.count() > 2);
    int bytes = 0;
    while (feed.hasLine()) {
        bytes += int(feed.takeLine().size());
    }
    QVERIFY2(bytes <= MonitorFeed::maxWaiting && bytes > MonitorFeed::maxWaiting - 2 * maxNmeaLine,
             qPrintable(QString::number(bytes)));
    // What was taken makes room.
    QTRY_VERIFY(feed.hasLine());
}

void TestSimTraffic::feedForgetsWithTheView()
{
    const RouterConfig config = RouterConfig::factory();
    RouterClock clock;
    TrafficGenerator traffic(clock.start());
    MonitorFeed feed(&clock, &config, &traffic);
    feed.setView(0xF0);
    clock.skip(MonitorFeed::longestGap);
    QTRY_VERIFY(feed.hasLine());
    feed.setView(0xF2);
    QVERIFY(!feed.hasLine());
    clock.skip(MonitorFeed::longestGap);
    QTRY_VERIFY(feed.hasLine());
    QVERIFY(feed.takeLine().startsWith("$HE"));
}

void TestSimTraffic::feedBreaksLinesOff()
{
    const RouterConfig config = RouterConfig::factory();
    RouterClock clock;
    TrafficGenerator traffic(clock.start());
    MonitorFeed feed(&clock, &config, &traffic);
    InputConditions conditions;
    conditions.damage = 100;
    traffic.setConditions(conditions);
    feed.setView(0xF0);
    traffic.setRate(100);
    feed.restart();
    bool isBroken = false;
    bool isWhole = false;
    const auto look = [&] {
        while (feed.hasLine()) {
            const QByteArray line = feed.takeLine();
            isBroken = isBroken || !line.endsWith("\r\n");
            isWhole = isWhole || line.endsWith("\r\n");
        }
        return isBroken && isWhole;
    };
    QTRY_VERIFY(look());
}

QTEST_GUILESS_MAIN(TestSimTraffic)
#include "tst_simtraffic.moc"
