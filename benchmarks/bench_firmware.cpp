#include "firmwarebench.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <QVector>

#include <algorithm>
#include <cstdio>

/*!
 * How long a packet of a firmware update takes when the router acknowledges it at once, against
 * the pace of the outbound queue. The real window sends to a pseudo-terminal.
 */

namespace {

constexpr int packetCount = 400;
constexpr int packetBytes = 32;
constexpr double queuePace = 25;     // ms a sentence
constexpr double aim = 26;           // ms a packet
constexpr int longestUpdate = 60000; // ms
constexpr int lookInterval = 50;     // ms

// The gaps between the packets in ms, by an update of an image; empty if it did not come through.
QVector<double> packetGaps()
{
    FirmwareBench bench;
    if (!bench.connectToRouter())
        return {};
    bench.takeFirmware();
    if (!bench.startUpdate(firmwareImage(packetCount * packetBytes)))
        return {};
    bench.boxes.expect(bench.success());
    // An event loop: QTest's waits sleep in between, and would be measured, too.
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (!bench.window.isConnected())
            loop.quit();
    });
    look.start(lookInterval);
    QTimer::singleShot(longestUpdate, &loop, &QEventLoop::quit);
    loop.exec();

    QVector<double> gaps;
    qint64 last = 0;
    for (const PtyPair::Line &line : bench.line.lines()) {
        const int number = packetNumber(line.text);
        if (number > 1)
            gaps += double(line.micros - last) / 1000;
        if (number > 0)
            last = line.micros;
    }
    return gaps;
}

} // namespace

int main(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication app(argc, argv);
    QVector<double> gaps = packetGaps();
    if (gaps.size() != packetCount - 1) {
        std::printf("The update did not come through.\n");
        return 1;
    }
    std::sort(gaps.begin(), gaps.end());
    double sum = 0;
    for (const double gap : gaps)
        sum += gap;
    const double mean = sum / double(gaps.size());
    const double p99 = gaps.at(gaps.size() * 99 / 100);
    std::printf("Firmware update of %d packets, acknowledged at once; ms a packet\n\n",
                packetCount);
    std::printf("%10s %8s %8s %8s %8s %8s %22s\n", "queue", "mean", "min", "p99", "max", "aim",
                "1000000 bytes take");
    std::printf("%10.1f %8.3f %8.3f %8.3f %8.3f %8s %18.1f min\n", queuePace, mean, gaps.first(),
                p99, gaps.last(), mean <= aim ? "met" : "missed",
                mean * 1000000 / packetBytes / 60000);
    return 0;
}
