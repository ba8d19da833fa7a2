#include "ais/qais.h"
#include "bitbybitreader.h"
#include "payloadbuilder.h"

#include <QBitArray>
#include <QCoreApplication>
#include <QVector>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <memory>
#include <random>

/*!
 * How many AIS messages a second the engine takes in, whole (payload, fields, look-up of the
 * target, range, signals), beside a straightforward reading of the same payloads bit by bit, which
 * does nothing but fill in a record; and what an own position and a tick cost.
 */

namespace {

constexpr int minTargets = 100;
constexpr int maxTargets = 10000;
constexpr int manyTargets = 10;
constexpr double ownLatitude = 3345.123;
constexpr double ownLongitude = 1656.456;

QVector<QByteArray> shuffled(QVector<QByteArray> payloads)
{
    constexpr unsigned seed = 70001;
    std::shuffle(payloads.begin(), payloads.end(), std::mt19937(seed));
    return payloads;
}

quint32 mmsiOf(int ship)
{
    constexpr quint32 first = 201000000;
    constexpr quint32 step = 54321; // MMSIs are spread over the world's countries
    return first + quint32(ship) * step;
}

QVector<QByteArray> positionReports(int ships)
{
    QVector<QByteArray> payloads;
    for (int i = 0; i < ships; ++i) {
        PositionReport report;
        report.mmsi = mmsiOf(i);
        report.longitude = 15000000 + quint32(i) * 211;
        report.latitude = 33000000 + quint32(i) * 97;
        report.speed = quint32(i) % 300;
        payloads.append(report.payload());
    }
    return shuffled(payloads);
}

QVector<QByteArray> voyageData(int ships, const QByteArray &destination = "ST PETERSBURG")
{
    QVector<QByteArray> payloads;
    for (int i = 0; i < ships; ++i) {
        VoyageData data;
        data.mmsi = mmsiOf(i);
        data.name = "SHIP NUMBER " + QByteArray::number(i);
        data.destination = destination;
        payloads.append(data.payload());
    }
    return shuffled(payloads);
}

/*! An engine that knows so many targets, holds an own position and has a receiver of its signals.
 */
class KnownTargets
{
public:
    explicit KnownTargets(int ships)
    {
        QObject::connect(&ais, &QAis::signalUpdateTarget, &ais,
                         [this](uint port, uint mmsi) { heard += port + mmsi; });
        own.m_lat = ownLatitude;
        own.m_lon = ownLongitude;
        ais.setOwnPosition(QAis::RouterSource, &own);
        for (const QByteArray &payload : voyageData(ships)) {
            ais.decodeMessage(QAis::TargetMessage, 1, 1, 0, VoyageData::FillBits,
                              payload.constData());
        }
        for (const QByteArray &payload : positionReports(ships))
            ais.decodeMessage(QAis::TargetMessage, 1, 1, 0, 0, payload.constData());
    }

    quint64 heard = 0;
    QGpsKrd own;
    QAis ais;
};

void decodeAll(benchmark::State &state, const QVector<QByteArray> &payloads, int fillBits)
{
    KnownTargets known(int(state.range(0)));
    int next = 0;
    while (state.KeepRunning()) {
        known.ais.decodeMessage(QAis::TargetMessage, 1, 1, 0, fillBits,
                                payloads.at(next).constData());
        next = next + 1 < payloads.size() ? next + 1 : 0;
    }
    if (known.heard == 0)
        state.SkipWithError("no signal came");
    state.SetItemsProcessed(state.iterations());
}

void engineType1(benchmark::State &state)
{
    decodeAll(state, positionReports(int(state.range(0))), 0);
}

void engineType5(benchmark::State &state)
{
    decodeAll(state, voyageData(int(state.range(0))), VoyageData::FillBits);
}

// Each ship's destination is another one each time.
void engineType5Changing(benchmark::State &state)
{
    const int ships = int(state.range(0));
    decodeAll(state, voyageData(ships) + voyageData(ships, "HELSINKI"), VoyageData::FillBits);
}

// As it comes over the line: two sentences for each message.
void engineType5TwoFragments(benchmark::State &state)
{
    constexpr int firstFragment = 58;
    KnownTargets known(int(state.range(0)));
    const QVector<QByteArray> payloads = voyageData(int(state.range(0)));
    QVector<QByteArray> firsts;
    for (const QByteArray &payload : payloads)
        firsts.append(payload.left(firstFragment));
    int next = 0;
    while (state.KeepRunning()) {
        known.ais.decodeMessage(QAis::TargetMessage, 2, 1, 3, 0, firsts.at(next).constData());
        known.ais.decodeMessage(QAis::TargetMessage, 2, 2, 3, VoyageData::FillBits,
                                payloads.at(next).constData() + firstFragment);
        next = next + 1 < payloads.size() ? next + 1 : 0;
    }
    state.SetItemsProcessed(state.iterations());
}

/*! What both ways of reading fill in. */
struct Report
{
    quint32 type, repeat, mmsi, status, turn, accuracy, heading;
    double speed, longitude, latitude, course;
};

struct Voyage
{
    quint32 type, repeat, mmsi, version, imo, shipType, dimensions, fixType, eta, dte;
    double draught;
    QString callSign, name, destination;
};

template <typename Reader> void readReport(Reader &reader, Report &report)
{
    report.type = reader.readBits(6);
    report.repeat = reader.readBits(2);
    report.mmsi = reader.readBits(30);
    report.status = reader.readBits(4);
    report.turn = reader.readBits(8);
    report.speed = reader.readBits(10) / 10.0;
    report.accuracy = reader.readBits(1);
    report.longitude = reader.readBits(28) / 10000.0;
    report.latitude = reader.readBits(27) / 10000.0;
    report.course = reader.readBits(12) / 10.0;
    report.heading = reader.readBits(9);
}

template <typename Reader> void fieldsType1(benchmark::State &state)
{
    const QVector<QByteArray> payloads = positionReports(minTargets);
    int next = 0;
    Reader reader;
    while (state.KeepRunning()) {
        reader.setPayload(payloads.at(next).constData(), 0);
        Report report;
        readReport(reader, report);
        benchmark::DoNotOptimize(report);
        next = next + 1 < payloads.size() ? next + 1 : 0;
    }
    state.SetItemsProcessed(state.iterations());
}

void plainFieldsType5(benchmark::State &state)
{
    const QVector<QByteArray> payloads = voyageData(minTargets);
    int next = 0;
    BitByBitReader reader;
    while (state.KeepRunning()) {
        reader.setPayload(payloads.at(next).constData(), VoyageData::FillBits);
        Voyage voyage;
        voyage.type = reader.readBits(6);
        voyage.repeat = reader.readBits(2);
        voyage.mmsi = reader.readBits(30);
        voyage.version = reader.readBits(2);
        voyage.imo = reader.readBits(30);
        voyage.callSign = reader.readText(7);
        voyage.name = reader.readText(20);
        voyage.shipType = reader.readBits(8);
        voyage.dimensions = reader.readBits(30);
        voyage.fixType = reader.readBits(4);
        voyage.eta = reader.readBits(20);
        voyage.draught = reader.readBits(8) / 10.0;
        voyage.destination = reader.readText(20);
        voyage.dte = reader.readBits(1);
        benchmark::DoNotOptimize(voyage);
        next = next + 1 < payloads.size() ? next + 1 : 0;
    }
    state.SetItemsProcessed(state.iterations());
}

// All that the engine does for a position report, each step the plain way.
void plainType1(benchmark::State &state)
{
    const int ships = int(state.range(0));
    KnownTargets known(ships);
    const QVector<QByteArray> payloads = positionReports(ships);
    int next = 0;
    BitByBitReader reader;
    while (state.KeepRunning()) {
        reader.setPayload(payloads.at(next).constData(), 0);
        Report report;
        readReport(reader, report);
        QAisTarget *target = nullptr;
        for (int i = 0; i < known.ais.targetCount() && !target; ++i) {
            QAisTarget *listed = known.ais.targetAt(i);
            target = listed->m_mmsi == report.mmsi ? listed : nullptr;
        }
        if (!target)
            continue;
        target->m_speed = report.speed;
        target->m_course = report.course;
        target->m_heading = qint32(report.heading);
        target->m_position.m_lat = report.latitude;
        target->m_position.m_lon = report.longitude;
        target->m_lastUpdate = QTime::currentTime();
        target->m_range = known.own.distanceTo(target->m_position);
        emit known.ais.signalUpdateTarget(0, report.mmsi);
        next = next + 1 < payloads.size() ? next + 1 : 0;
    }
    state.SetItemsProcessed(state.iterations());
}

void knownTargets(benchmark::internal::Benchmark *benchmark)
{
    benchmark->RangeMultiplier(manyTargets)->Range(minTargets, maxTargets);
}

void ownPosition(benchmark::State &state)
{
    KnownTargets known(int(state.range(0)));
    while (state.KeepRunning()) {
        known.own.m_lat += 0.001;
        known.ais.setOwnPosition(QAis::RouterSource, &known.own);
    }
    // What ten positions a second cost.
    constexpr double positionsPerSecond = 10;
    state.counters["cpu_per_second_at_10_Hz"] =
        benchmark::Counter(double(state.iterations()) / positionsPerSecond,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void greatestRange(benchmark::State &state)
{
    KnownTargets known(int(state.range(0)));
    while (state.KeepRunning()) {
        double range = known.ais.maxRange();
        benchmark::DoNotOptimize(range);
    }
}

// The look each second at what has fallen silent; nothing has.
void tick(benchmark::State &state)
{
    KnownTargets known(int(state.range(0)));
    while (state.KeepRunning())
        known.ais.expire();
}

BENCHMARK_TEMPLATE(fieldsType1, BitByBitReader)->Name("type 1, fields, bit by bit");
BENCHMARK_TEMPLATE(fieldsType1, QBitStream)->Name("type 1, fields, engine");
BENCHMARK(plainType1)->Name("type 1, whole, bit by bit")->Apply(knownTargets);
BENCHMARK(engineType1)->Name("type 1, whole, engine")->Apply(knownTargets);
BENCHMARK(plainFieldsType5)->Name("type 5, fields, bit by bit");
BENCHMARK(engineType5)->Name("type 5, whole, engine")->Apply(knownTargets);
BENCHMARK(engineType5Changing)->Name("type 5, changed voyage")->Arg(maxTargets);
BENCHMARK(engineType5TwoFragments)->Name("type 5, two fragments")->Arg(maxTargets);
BENCHMARK(ownPosition)->Name("own position")->Arg(maxTargets)->Unit(benchmark::kMicrosecond);
BENCHMARK(greatestRange)->Name("maxRange")->Arg(maxTargets)->Unit(benchmark::kMicrosecond);
BENCHMARK(tick)->Name("tick")->Arg(maxTargets)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
