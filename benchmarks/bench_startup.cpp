// How long the tool takes from the start of its process to its first painted window, by the clock
// and in processor time, and how much memory it holds then, beside an empty QMainWindow of the same
// toolkit.
//
// Starts itself once for each measurement. Runs on the platform that QT_QPA_PLATFORM names.

#include "mainwindow/mainwindow.h"

#include <QApplication>
#include <QFile>
#include <QMainWindow>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <unistd.h>
#include <vector>

namespace {

constexpr int runs = 21;              // odd, for a median that was measured
constexpr int childTimeLimit = 10000; // ms
// A window manager that is busy with the end of one window can overlook the next one, which has got
// the same id from the server: a run without a paint is repeated so many times.
constexpr int mostOverlooked = 3;

struct Sample
{
    double milliseconds = 0;
    double processorMilliseconds = 0;
    double megabytes = 0;
};

qint64 microseconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return qint64(time.tv_sec) * 1000000 + time.tv_nsec / 1000;
}

qint64 now()
{
    return microseconds(CLOCK_MONOTONIC);
}

qint64 residentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> pages = statm.readAll().split(' ');
    return pages.size() > 1 ? pages.at(1).toLongLong() * sysconf(_SC_PAGESIZE) : 0;
}

// Ends the event loop after the first paint of the window has reached the screen.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(QWidget *window) : QObject(window) { window->installEventFilter(this); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !m_seen) {
            m_seen = true;
            QTimer::singleShot(0, qApp, &QApplication::quit);
        }
        return false;
    }

private:
    bool m_seen = false;
};

template <typename Window> int runChild(int argc, char *argv[], qint64 started)
{
    QApplication application(argc, argv);
    Window window;
    new FirstPaint(&window);
    window.show();
    QApplication::exec();
    std::printf("%lld %lld %lld\n", static_cast<long long>(now() - started),
                static_cast<long long>(microseconds(CLOCK_PROCESS_CPUTIME_ID)),
                static_cast<long long>(residentBytes()));
    return 0;
}

// The three numbers that a child prints; none if its window was never painted.
QList<QByteArray> runMeasured(const QString &what)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--child"), what, QString::number(now())});
    if (child.waitForFinished(childTimeLimit) && child.exitCode() == 0)
        return child.readAllStandardOutput().trimmed().split(' ');
    child.kill();
    child.waitForFinished();
    return {};
}

// The runs of one window.
class Series
{
public:
    explicit Series(const QString &window) : m_window(window) { }

    bool run()
    {
        for (int overlooked = 0; overlooked <= mostOverlooked; ++overlooked) {
            const QList<QByteArray> numbers = runMeasured(m_window);
            if (numbers.size() != 3)
                continue;
            m_times.push_back(numbers.at(0).toDouble() / 1e3);
            m_processorTimes.push_back(numbers.at(1).toDouble() / 1e3);
            m_sizes.push_back(numbers.at(2).toDouble() / (1024 * 1024));
            return true;
        }
        return false;
    }

    Sample median() const { return {median(m_times), median(m_processorTimes), median(m_sizes)}; }

private:
    static double median(std::vector<double> values)
    {
        std::sort(values.begin(), values.end());
        return values[values.size() / 2];
    }

    QString m_window;
    std::vector<double> m_times;
    std::vector<double> m_processorTimes;
    std::vector<double> m_sizes;
};

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 4 && qstrcmp(argv[1], "--child") == 0) {
        const qint64 started = QByteArray(argv[3]).toLongLong();
        return qstrcmp(argv[2], "tool") == 0 ? runChild<MainWindow>(argc, argv, started)
                                             : runChild<QMainWindow>(argc, argv, started);
    }

    const QCoreApplication application(argc, argv);
    Series emptyRuns(QStringLiteral("empty"));
    Series toolRuns(QStringLiteral("tool"));
    // In turns: what else the machine does meets both alike.
    for (int i = 0; i < runs; ++i) {
        if (!emptyRuns.run() || !toolRuns.run()) {
            std::fprintf(stderr, "bench_startup: a measured process failed\n");
            return 1;
        }
    }
    const Sample empty = emptyRuns.median();
    const Sample tool = toolRuns.median();
    std::printf(
        "start to first painted window, median of %d runs, platform %s\n", runs,
        qEnvironmentVariable("QT_QPA_PLATFORM", QStringLiteral("default")).toUtf8().constData());
    std::printf("%-24s %12s %16s %14s\n", "window", "start [ms]", "processor [ms]",
                "resident [MB]");
    const auto print = [](const char *window, const Sample &sample) {
        std::printf("%-24s %12.1f %16.1f %14.1f\n", window, sample.milliseconds,
                    sample.processorMilliseconds, sample.megabytes);
    };
    print("empty QMainWindow", empty);
    print("tool", tool);
    print("difference",
          {tool.milliseconds - empty.milliseconds,
           tool.processorMilliseconds - empty.processorMilliseconds,
           tool.megabytes - empty.megabytes});
    std::printf("%-24s %12.2f %16.2f %14.2f\n", "times", tool.milliseconds / empty.milliseconds,
                tool.processorMilliseconds / empty.processorMilliseconds,
                tool.megabytes / empty.megabytes);
    return 0;
}
