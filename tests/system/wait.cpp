#include "wait.h"

#include "stepfailure.h"

#include <QEventLoop>
#include <QTimer>

namespace {

constexpr int pollInterval = 10; // ms

} // namespace

void runFor(int milliseconds)
{
    QEventLoop loop;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(milliseconds);
    loop.exec();
}

bool waitUntil(const std::function<bool()> &condition, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(milliseconds))
            return false;
        runFor(pollInterval);
    }
    return true;
}

void await(const std::function<bool()> &condition, int milliseconds, const QString &text)
{
    if (!waitUntil(condition, milliseconds))
        throw StepFailure{text};
}

void awaitNoProblem(const std::function<QString()> &problem, int milliseconds)
{
    QString last;
    const auto isSolved = [&] {
        last = problem();
        return last.isEmpty();
    };
    if (!waitUntil(isSolved, milliseconds))
        throw StepFailure{last};
}

double secondsOf(const QElapsedTimer &timer)
{
    constexpr double millisecondsPerSecond = 1000;
    return static_cast<double>(timer.elapsed()) / millisecondsPerSecond;
}
