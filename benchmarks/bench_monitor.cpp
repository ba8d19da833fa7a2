#include "cutecomprocess.h"
#include "monitoredtool.h"
#include "monitorstream.h"
#include "processusage.h"
#include "toolprocess.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <QVector>

#include <algorithm>
#include <cstdio>
#include <memory>

/*!
 * What the monitor costs at a saturated line of 115200 baud: the tool's share of a processor core
 * and its memory, beside those of cutecom, a plain serial terminal program, at the same lines in
 * the same seconds. Offscreen, and on the display if there is one.
 *
 * With --flood: whether the tool's memory stays flat over an hour of such traffic.
 */

namespace {

constexpr double aim = 3;             // per cent of a core
constexpr double leastBytes = 11400;  // a second, of a line that counts as saturated
constexpr double leastPaints = 4.5;   // a second, of a list that follows its five ticks
constexpr int maxRows = 100;          // of the monitor
constexpr qint64 streamBytes = 11500; // a second: the rest is for the router's own answers
constexpr int feedInterval = 10;      // ms
constexpr qint64 longestLag = 50;     // ms that a late feed makes up for, as a line would
constexpr int warmUp = 4000;          // ms
constexpr int defaultSeconds = 10;
constexpr int defaultRounds = 3;
constexpr int floodParts = 6;
constexpr int floodPartSeconds = 600;
constexpr int floodPartLimit = 600000; // ms
constexpr int percent = 100;
constexpr int msPerSecond = 1000;

struct Options
{
    int seconds = defaultSeconds; // of a round
    int rounds = defaultRounds;
};

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values[values.size() / 2];
}

/*! What one process did while it was measured. */
struct Row
{
    QVector<double> shares; // per cent of a core, by round
    QVector<double> rates;  // bytes a second, by round
    QVector<double> paints; // of the list, a second, by round
    double memoryBefore = 0;
    double memoryAfter = 0;
    int rows = 0;
};

/*! Gives both processes the same lines at the pace of the line. */
class Feed : public QObject
{
public:
    Feed(ToolProcess *tool, CutecomProcess *cutecom) : m_tool(tool), m_cutecom(cutecom)
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, &Feed::feed);
        m_timer.start(feedInterval);
        m_clock.start();
    }

private:
    void feed()
    {
        const qint64 due = m_clock.elapsed() * streamBytes / msPerSecond;
        m_sent = qMax(m_sent, due - longestLag * streamBytes / msPerSecond);
        while (m_sent < due) {
            const QByteArray line = m_stream.nextLine();
            m_tool->sendLine(line);
            if (m_cutecom)
                m_cutecom->sendLine(line);
            m_sent += line.size();
        }
    }

    ToolProcess *m_tool;
    CutecomProcess *m_cutecom;
    MonitorStream m_stream;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_sent = 0;
};

/*! Reads both processes at the ends of a round. */
struct Reading
{
    Reading(ToolProcess *tool, CutecomProcess *cutecom) : toolCount(tool->count())
    {
        clock.start();
        toolUsage = ProcessUsage::of(tool->pid());
        if (!cutecom)
            return;
        cutecomBytes = cutecom->bytesRead();
        cutecomUsage = ProcessUsage::of(cutecom->pid());
    }

    QElapsedTimer clock;
    ToolProcess::Count toolCount;
    ProcessUsage toolUsage;
    qint64 cutecomBytes = 0;
    ProcessUsage cutecomUsage;
};

void addRound(Row &row, const ProcessUsage &before, const ProcessUsage &after, qint64 bytes,
              double seconds)
{
    if (row.shares.isEmpty())
        row.memoryBefore = before.residentMegabytes;
    row.memoryAfter = after.residentMegabytes;
    row.shares += (after.processorSeconds - before.processorSeconds) / seconds * percent;
    row.rates += double(bytes) / seconds;
}

void printHeading()
{
    std::printf("%-10s %-8s %8s  %13s %6s %7s  %14s %12s  %8s %5s %7s\n", "platform", "program",
                "bytes/s", "processor [%]", "lowest", "highest", "first RSS [MB]", "last RSS",
                "paints/s", "rows", "aim");
}

void printRow(const QString &platform, const char *program, const Row &row)
{
    const auto shares = std::minmax_element(row.shares.begin(), row.shares.end());
    std::printf("%-10s %-8s %8.0f  %13.2f %6.2f %7.2f  %14.1f %12.1f", qPrintable(platform),
                program, median(row.rates), median(row.shares), *shares.first, *shares.second,
                row.memoryBefore, row.memoryAfter);
}

void printToolRow(const QString &platform, const Row &row)
{
    printRow(platform, "tool", row);
    std::printf("  %8.1f %5d %7s\n", median(row.paints), row.rows,
                median(row.shares) < aim ? "met" : "missed");
}

void printCutecomRow(const QString &platform, const Row &row)
{
    printRow(platform, "cutecom", row);
    std::printf("\n");
}

std::unique_ptr<CutecomProcess> startCutecom(const QString &platform)
{
    if (!CutecomProcess::isInstalled())
        return nullptr;
    auto cutecom = std::make_unique<CutecomProcess>();
    if (cutecom->start(platform))
        return cutecom;
    std::printf("%-10s cutecom doesn't open its port\n", qPrintable(platform));
    return nullptr;
}

bool isSound(const Row &tool)
{
    const bool isSaturated = median(tool.rates) >= leastBytes;
    if (!isSaturated)
        std::printf("The line was not saturated: the machine is too busy.\n");
    const bool isShown = median(tool.paints) >= leastPaints;
    if (!isShown)
        std::printf("The window was not painted as often as its monitor ticks.\n");
    const bool isShort = tool.rows >= 0 && tool.rows <= maxRows;
    if (!isShort)
        std::printf("The monitor's list has %d rows.\n", tool.rows);
    return isSaturated && isShown && isShort;
}

bool measure(const QString &platform, const Options &options)
{
    ToolProcess tool;
    if (!tool.start(platform)) {
        std::printf("%-10s the tool doesn't come to show a port\n", qPrintable(platform));
        return false;
    }
    const std::unique_ptr<CutecomProcess> cutecom = startCutecom(platform);
    const Feed feed(&tool, cutecom.get());
    QTest::qWait(warmUp);

    Row toolRow;
    Row cutecomRow;
    for (int round = 0; round < options.rounds; ++round) {
        const Reading before(&tool, cutecom.get());
        QTest::qWait(options.seconds * msPerSecond);
        const Reading after(&tool, cutecom.get());
        const double seconds = double(before.clock.msecsTo(after.clock)) / msPerSecond;
        addRound(toolRow, before.toolUsage, after.toolUsage,
                 after.toolCount.bytes - before.toolCount.bytes, seconds);
        addRound(cutecomRow, before.cutecomUsage, after.cutecomUsage,
                 after.cutecomBytes - before.cutecomBytes, seconds);
        toolRow.paints += double(after.toolCount.paints - before.toolCount.paints) / seconds;
        toolRow.rows = after.toolCount.rows;
    }
    printToolRow(platform, toolRow);
    if (cutecom)
        printCutecomRow(platform, cutecomRow);
    if (cutecom && cutecom->bytesLost() > 0)
        std::printf("cutecom was too slow for %lld bytes\n",
                    static_cast<long long>(cutecom->bytesLost()));
    return isSound(toolRow);
}

bool flood(const QString &platform)
{
    ToolProcess tool;
    if (!tool.start(platform)) {
        std::printf("%-10s the tool doesn't come to show a port\n", qPrintable(platform));
        return false;
    }
    const auto print = [&](int minutes, double elapsed, const ToolProcess::Count &count) {
        const ProcessUsage usage = ProcessUsage::of(tool.pid());
        std::printf("%-10s %14d %13lld %12.1f %14.1f %14.1f %7lld %5d\n", qPrintable(platform),
                    minutes, static_cast<long long>(count.bytes), elapsed, usage.processorSeconds,
                    usage.residentMegabytes, static_cast<long long>(count.paints), count.rows);
        return count.rows >= 0 && count.rows <= maxRows;
    };
    QElapsedTimer clock;
    clock.start();
    if (!print(0, 0, tool.count()))
        return false;
    tool.order(QByteArray(MonitoredTool::floodOrder) + ' ' + QByteArray::number(floodParts) + ' '
               + QByteArray::number(floodPartSeconds));
    for (int part = 1; part <= floodParts; ++part) {
        const ToolProcess::Count count = tool.awaitCount(floodPartLimit);
        if (!print(part * floodPartSeconds / 60, double(clock.elapsed()) / msPerSecond, count))
            return false;
    }
    return true;
}

QStringList platforms()
{
    QStringList names(QStringLiteral("offscreen"));
    if (qEnvironmentVariableIsSet("DISPLAY"))
        names += QStringLiteral("xcb");
    return names;
}

bool runFlood()
{
    std::printf("An hour of a saturated line, as fast as the window takes it\n\n");
    std::printf("%-10s %14s %13s %12s %14s %14s %7s %5s\n", "platform", "traffic [min]", "bytes",
                "elapsed [s]", "processor [s]", "resident [MB]", "paints", "rows");
    bool isGood = true;
    const QStringList names = platforms();
    for (const QString &platform : names)
        isGood = flood(platform) && isGood;
    return isGood;
}

bool runMeasurement(const Options &options)
{
    std::printf("The monitor at a saturated line of 115200 baud, median of %d rounds of %d s\n",
                options.rounds, options.seconds);
    if (!CutecomProcess::isInstalled())
        std::printf("cutecom isn't installed (Debian package cutecom): no rows to compare with\n");
    std::printf("\n");
    printHeading();
    bool isGood = true;
    const QStringList names = platforms();
    for (const QString &platform : names)
        isGood = measure(platform, options) && isGood;
    return isGood;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 3 && qstrcmp(argv[1], "--child") == 0)
        return MonitoredTool::run(argc, argv, QString::fromLocal8Bit(argv[2]));

    const QCoreApplication application(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    QCommandLineParser parser;
    const QCommandLineOption floodOption(QStringLiteral("flood"),
                                         QStringLiteral("Memory over an hour of traffic."));
    const QCommandLineOption secondsOption(
        QStringLiteral("seconds"), QStringLiteral("Length of a round."), QStringLiteral("seconds"),
        QString::number(defaultSeconds));
    const QCommandLineOption roundsOption(QStringLiteral("rounds"),
                                          QStringLiteral("How many rounds."),
                                          QStringLiteral("rounds"), QString::number(defaultRounds));
    parser.addHelpOption();
    parser.addOptions({floodOption, secondsOption, roundsOption});
    parser.process(application);
    if (parser.isSet(floodOption))
        return runFlood() ? 0 : 1;
    const Options options{qMax(1, parser.value(secondsOption).toInt()),
                          qMax(1, parser.value(roundsOption).toInt())};
    return runMeasurement(options) ? 0 : 1;
}
