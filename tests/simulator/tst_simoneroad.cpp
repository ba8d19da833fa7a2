#include "simulator/instruments/aissentence.h"
#include "simulator/line/sentence.h"
#include "simulator/router/aiscopy.h"
#include "simulator/router/monitorfeed.h"
#include "simulator/router/portstatistics.h"

#include "aisbits.h"

#include <QSet>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <array>
#include <memory>

using namespace tk7sim;

/*!
 * The one road of a sentence: from the instrument to the input port, and from there on three ways,
 * through a channel, to the monitor, and as a copy to an AIS test. What is wrong at the input shows
 * on all of them, and in the counters.
 */
class TestSimOneRoad : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void waysAgree_data();
    void waysAgree();
    void silenceEndsAllWays();
    void rateCountsOnAllWays();
    void sameVesselsOnAllWays();
    void everyTestHearsTheSameVessels();
    void vesselsAreThoseOfTheInstruments();
    void replayComesByAllWays();
    void replayCanBeSilent();
    void tornReportIsNotTold();
    void ownPositionNeedsNoInput();

private:
    void pass(int seconds);
    static void awaitTick(const QObject *way);
    void forget();
    void listenTo(int port);
    QByteArrayList copiesOf(int port) const;

    std::unique_ptr<RouterClock> m_clock;
    RouterConfig m_config;
    std::unique_ptr<TrafficGenerator> m_traffic;
    std::unique_ptr<PortStatistics> m_statistics;
    std::unique_ptr<MonitorFeed> m_inputView;
    std::unique_ptr<MonitorFeed> m_channelView;
    std::unique_ptr<AisCopy> m_copy;
    QByteArrayList m_input; // what each way has brought, as it came
    QByteArrayList m_channel;
    QByteArrayList m_copied; // bodies
};

namespace {

constexpr int ecdis = 8; // has sentences of its own, and an AIS station
constexpr int channelView = 0x40;
constexpr int inputView = 0xF0;

// The payload of an AIS sentence of either kind, the text of an alarm.
QByteArray payloadOf(const QByteArrayList &fields)
{
    return fields.size() > 5 ? fields.mid(5, 2).join(',') : QByteArray();
}

// What a copy would make of these lines: of the AIS sentences with a right checksum their payloads.
QByteArrayList readable(const QByteArrayList &lines)
{
    QByteArrayList payloads;
    for (const QByteArray &line : lines) {
        const QByteArrayList fields = line.endsWith("\r\n") ? aisFieldsOf(line) : QByteArrayList();
        if (!fields.isEmpty()) {
            payloads.append(fields.constFirst().endsWith("ALR") ? fields.last()
                                                                : payloadOf(fields));
        }
    }
    return payloads;
}

bool isDamaged(const QByteArray &line)
{
    return !line.endsWith("\r\n") || line.contains('\x15') || line.size() > 84;
}

bool hasWrongChecksum(const QByteArray &line)
{
    return !isDamaged(line) && parseHex(line.trimmed().right(2), 2) != checksumOf(line);
}

quint32 count(const QByteArrayList &lines, bool (*is)(const QByteArray &))
{
    return static_cast<quint32>(std::count_if(lines.cbegin(), lines.cend(), is));
}

// The vessels of position reports and voyage data.
QSet<quint32> vesselsIn(const QByteArrayList &lines)
{
    QSet<quint32> vessels;
    for (const QByteArray &line : lines) {
        const QByteArrayList fields = aisFieldsOf(line);
        if (fields.size() != 7 || !fields.constFirst().endsWith("VDM") || fields.at(2) != "1") {
            continue;
        }
        const AisBits bits(fields.at(5));
        const quint32 type = bits.number(0, 6);
        if (type <= 3 || type == 5) {
            vessels.insert(bits.number(8, 30));
        }
    }
    return vessels;
}

} // namespace

void TestSimOneRoad::init()
{
    m_clock = std::make_unique<RouterClock>();
    m_clock->hold();
    m_config = RouterConfig();
    m_traffic = std::make_unique<TrafficGenerator>(m_clock->start());
    m_statistics = std::make_unique<PortStatistics>(m_clock.get(), m_config, m_traffic.get());
    m_inputView = std::make_unique<MonitorFeed>(m_clock.get(), &m_config, m_traffic.get());
    m_channelView = std::make_unique<MonitorFeed>(m_clock.get(), &m_config, m_traffic.get());
    m_copy = std::make_unique<AisCopy>(m_clock.get(), m_traffic.get());
    for (const QObject *way :
         std::initializer_list<QObject *>{m_inputView.get(), m_channelView.get(), m_copy.get()}) {
        way->findChild<QTimer *>()->setInterval(0); // they look as often as they can
    }
    forget();
    listenTo(ecdis);
}

void TestSimOneRoad::cleanup()
{
    m_copy.reset();
    m_channelView.reset();
    m_inputView.reset();
}

void TestSimOneRoad::forget()
{
    for (QByteArrayList *lines : {&m_input, &m_channel, &m_copied}) {
        lines->clear();
    }
}

// On all three ways from this moment on.
void TestSimOneRoad::listenTo(int port)
{
    m_config.outputs[channelView >> 4].channels[0].mainInput = static_cast<quint8>(port);
    m_inputView->setView(inputView + port);
    m_channelView->setView(channelView);
    m_copy->start();
}

// So many seconds at once, of which each way hears in turn.
void TestSimOneRoad::pass(int seconds)
{
    constexpr int second = 1000;
    for (int i = 0; i < seconds; ++i) {
        m_clock->skip(second);
        m_statistics->settle();
        awaitTick(m_inputView.get());
        awaitTick(m_channelView.get());
        awaitTick(m_copy.get());
        while (m_inputView->hasLine()) {
            m_input.append(m_inputView->takeLine());
        }
        while (m_channelView->hasLine()) {
            m_channel.append(m_channelView->takeLine());
        }
        while (m_copy->hasLine()) {
            m_copied.append(m_copy->takeLine());
        }
    }
}

void TestSimOneRoad::awaitTick(const QObject *way)
{
    const auto *timer = way->findChild<QTimer *>();
    QSignalSpy ticks(timer, &QTimer::timeout);
    QVERIFY(!timer->isActive() || ticks.wait());
}

// The payloads that the test was told of \a port.
QByteArrayList TestSimOneRoad::copiesOf(int port) const
{
    const QByteArray digit = QByteArray::number(port, 16).toUpper();
    QByteArrayList payloads;
    for (const QByteArray &line : m_copied) {
        const QByteArrayList fields = line.left(line.indexOf('*')).split(',');
        const bool isAlarm = line.startsWith("$VRAIA");
        if (!line.startsWith("$VRAIP") && fields.at(isAlarm ? 1 : 4) == digit) {
            payloads.append(isAlarm ? fields.last() : payloadOf(fields));
        }
    }
    return payloads;
}

void TestSimOneRoad::waysAgree_data()
{
    QTest::addColumn<double>("wrongChecksums");
    QTest::addColumn<double>("damage");
    QTest::addColumn<bool>("isCopied");
    QTest::newRow("nothing wrong") << 0.0 << 0.0 << true;
    QTest::newRow("some checksums wrong") << 30.0 << 0.0 << true;
    QTest::newRow("all checksums wrong") << 100.0 << 0.0 << false;
    QTest::newRow("some damaged") << 0.0 << 30.0 << true;
    QTest::newRow("all damaged") << 0.0 << 100.0 << false;
    QTest::newRow("both") << 20.0 << 20.0 << true;
}

// The monitor shows all that comes, the channel what is a sentence, the test what can be read, and
// the counters tell the rest.
void TestSimOneRoad::waysAgree()
{
    QFETCH(double, wrongChecksums);
    QFETCH(double, damage);
    QFETCH(bool, isCopied);
    InputConditions conditions;
    conditions.wrongChecksums = wrongChecksums;
    conditions.damage = damage;
    m_traffic->setConditions(conditions);
    pass(30);

    QVERIFY(m_input.size() > 100);
    QCOMPARE(copiesOf(ecdis), readable(m_input));
    QCOMPARE(copiesOf(ecdis).size() > 15, isCopied);
    QByteArrayList whole = m_input;
    whole.erase(std::remove_if(whole.begin(), whole.end(), isDamaged), whole.end());
    QCOMPARE(m_channel, whole);

    const PortCounters counters = m_statistics->at(ecdis);
    QCOMPARE(counters.crs, count(m_input, hasWrongChecksum));
    QCOMPARE(counters.print + counters.broken + counters.size, count(m_input, isDamaged));
    QCOMPARE(counters.crs > 10, wrongChecksums > 0);
    QCOMPARE(counters.broken > 5, damage > 0);
}

void TestSimOneRoad::silenceEndsAllWays()
{
    InputConditions conditions;
    conditions.wrongChecksums = 50; // so that there is something to count
    m_traffic->setConditions(conditions);
    pass(20);
    QVERIFY(!m_channel.isEmpty());
    QVERIFY(!copiesOf(ecdis).isEmpty());
    const quint32 counted = m_statistics->at(ecdis).crs;
    QVERIFY(counted > 0);

    conditions.silences[ecdis] = {m_clock->now(), InputSilence::never};
    m_traffic->setConditions(conditions);
    forget();
    pass(20);
    QCOMPARE(m_input, QByteArrayList());
    QCOMPARE(m_channel, QByteArrayList());
    QCOMPARE(copiesOf(ecdis), QByteArrayList());
    QCOMPARE(m_statistics->at(ecdis).crs, counted);
    // At the others nothing has changed.
    QVERIFY(copiesOf(3).size() > 10);
    QVERIFY(m_statistics->at(3).crs > 10);

    conditions.silences[ecdis].until = m_clock->now();
    m_traffic->setConditions(conditions);
    pass(20);
    QVERIFY(!m_input.isEmpty());
    QCOMPARE(m_channel, m_input);
    QCOMPARE(copiesOf(ecdis), readable(m_input));
    QVERIFY(m_statistics->at(ecdis).crs > counted);
}

void TestSimOneRoad::rateCountsOnAllWays()
{
    InputConditions conditions;
    conditions.wrongChecksums = 50;
    m_traffic->setConditions(conditions);
    QVector<std::array<double, 4>> numbers; // at each rate: of each way, and of the counter
    for (const double rate : {1.0, 4.0, 0.0}) {
        m_statistics->settle();
        m_statistics->clear();
        m_traffic->setRate(rate);
        m_inputView->restart();
        m_channelView->restart();
        forget();
        pass(60);
        numbers.append({double(m_input.size()), double(m_channel.size()),
                        double(copiesOf(ecdis).size()), double(m_statistics->at(ecdis).crs)});
    }
    for (size_t way = 0; way < numbers.at(0).size(); ++way) {
        const double usual = numbers.at(0)[way];
        const double quick = numbers.at(1)[way];
        QVERIFY(usual > 20);
        // The own ship's station keeps its pace.
        QVERIFY2(quick > 2 * usual && quick < 5 * usual, qPrintable(QString::number(quick)));
        QCOMPARE(numbers.at(2)[way], 0.0);
    }
}

// On the monitor of each port the vessels that the test finds there.
void TestSimOneRoad::sameVesselsOnAllWays()
{
    for (const int port : {3, 8, 11}) {
        listenTo(port);
        forget();
        pass(200); // within which everybody reports who isn't silent
        const auto known = m_copy->truth().port(port).stations.keys();
        QVERIFY(known.size() > 10);
        QCOMPARE(vesselsIn(m_input), QSet<quint32>(known.cbegin(), known.cend()));
        QCOMPARE(m_channel, m_input);
    }
}

void TestSimOneRoad::everyTestHearsTheSameVessels()
{
    QVector<QSet<quint32>> heard;
    for (int test = 0; test < 2; ++test) {
        m_copy->stop();
        m_copy->start();
        QCOMPARE(m_copy->truth().reports(), 0U);
        pass(60);
        const auto known = m_copy->truth().port(3).stations.keys();
        heard.append(QSet<quint32>(known.cbegin(), known.cend()));
    }
    // Some may have fallen silent, and others have begun to speak.
    const auto both = QSet<quint32>(heard.at(0)).intersect(heard.at(1));
    QVERIFY(both.size() > 8);
    QVERIFY(heard.at(0).size() - both.size() <= 3);
}

void TestSimOneRoad::vesselsAreThoseOfTheInstruments()
{
    m_traffic->inputs().setVessels(7);
    m_traffic->inputs().setAisPorts(QVector<int>{ecdis});
    pass(30);
    QCOMPARE(vesselsIn(m_input).size(), 7);
    QCOMPARE(m_copy->truth().port(ecdis).stations.size(), 7);
    QVERIFY(copiesOf(3).isEmpty());
    QVERIFY(!m_traffic->inputs().isWired(3));
}

void TestSimOneRoad::replayComesByAllWays()
{
    const QByteArray report = "!AIVDM,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0*5C";
    m_traffic->inputs().addReplay(AisReplay(ecdis, report));
    pass(10);
    const auto isReport = [&](const QByteArray &line) { return line == report + "\r\n"; };
    QVERIFY(std::count_if(m_input.cbegin(), m_input.cend(), isReport) > 90);
    QCOMPARE(m_channel, m_input);
    QCOMPARE(copiesOf(ecdis), readable(m_input));
    // Beside it the instrument at that port goes on; of the world nothing comes there.
    QVERIFY(std::any_of(m_input.cbegin(), m_input.cend(),
                        [](const QByteArray &line) { return line.startsWith("$EIAPB"); }));
    QVERIFY(m_copy->truth().port(ecdis).stations.isEmpty());
    QVERIFY(!m_copy->truth().port(3).stations.isEmpty());
}

void TestSimOneRoad::replayCanBeSilent()
{
    constexpr int spare = 10;
    m_traffic->inputs().addReplay(
        AisReplay(spare, "!AIVDM,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0*5C"));
    InputConditions conditions;
    conditions.silences[spare] = {0, InputSilence::never};
    m_traffic->setConditions(conditions);
    pass(5);
    QVERIFY(copiesOf(spare).isEmpty());
    conditions.silences[spare].until = m_clock->now();
    m_traffic->setConditions(conditions);
    pass(5);
    QVERIFY(copiesOf(spare).size() > 40);
}

// Of a message in two sentences one may be lost: the other comes, and the report isn't told.
void TestSimOneRoad::tornReportIsNotTold()
{
    InputConditions conditions;
    conditions.damage = 40;
    m_traffic->setConditions(conditions);
    int told = 0;
    connect(m_copy.get(), &AisCopy::reported, this, [&](const AisReport &report) {
        told += report.kind == AisReportKind::Voyage ? 1 : 0;
        for (const QByteArray &body : wrapReport(report)) {
            const QByteArray line = withChecksum(body);
            const bool isTakenNow = body == wrapReport(report).constLast();
            QVERIFY2(isTakenNow || m_copied.contains(line), line.constData());
        }
    });
    pass(45); // in the first of which all tell their names
    int firstParts = 0;
    int secondParts = 0;
    for (const QByteArray &line : qAsConst(m_copied)) {
        firstParts += line.startsWith("$VRAIM,2,1,") ? 1 : 0;
        secondParts += line.startsWith("$VRAIM,2,2,") ? 1 : 0;
    }
    QVERIFY(told > 5);
    QVERIFY(told < firstParts);
    QVERIFY(told < secondParts);
}

// The router tells it itself.
void TestSimOneRoad::ownPositionNeedsNoInput()
{
    InputConditions conditions;
    conditions.silences.fill({0, InputSilence::never});
    m_traffic->setConditions(conditions);
    pass(10);
    QVERIFY(m_copied.size() >= 9);
    for (const QByteArray &line : qAsConst(m_copied)) {
        QVERIFY2(line.startsWith("$VRAIP,54"), line.constData());
    }
    QVERIFY(m_copy->truth().routerPosition());
}

QTEST_GUILESS_MAIN(TestSimOneRoad)
#include "tst_simoneroad.moc"
