#include "heartbeat.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

namespace {

constexpr int beatInterval = 5;     // ms
constexpr double sleepTime = 0.005; // seconds
constexpr double noticeable = 0.02; // seconds, below which nobody need know whose fault it is
constexpr double remarkable = 0.1;  // seconds, above which the whole account is printed
constexpr double nanosecond = 1e-9;
constexpr double millisecondsPerSecond = 1000;

} // namespace

Heartbeat::Heartbeat(QObject *parent)
    : QObject(parent), m_schedule(::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC))
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(beatInterval);
    connect(&m_timer, &QTimer::timeout, this, &Heartbeat::beat);
    m_timer.start();
    m_alive = now();
    cpu_set_t allowed;
    ::sched_getaffinity(0, sizeof allowed, &allowed);
    for (int processor = 0; processor < CPU_SETSIZE; ++processor) {
        if (!CPU_ISSET(processor, &allowed))
            continue;
        Sleeper &sleeper = m_sleepers.emplace_back();
        sleeper.thread = std::thread([this, processor, &sleeper] { sleepOn(processor, sleeper); });
    }
    restart();
}

Heartbeat::~Heartbeat()
{
    m_isOver = true;
    for (Sleeper &sleeper : m_sleepers)
        sleeper.thread.join();
    if (m_schedule >= 0)
        ::close(m_schedule);
}

double Heartbeat::now()
{
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(time).count();
}

// Three numbers: nanoseconds on a processor, nanoseconds ready and waiting for one, turns.
Heartbeat::Account Heartbeat::readAccount() const
{
    char text[128] = {};
    if (m_schedule < 0 || ::pread(m_schedule, text, sizeof text - 1, 0) <= 0)
        return {};
    unsigned long long running = 0;
    unsigned long long waiting = 0;
    if (std::sscanf(text, "%llu %llu", &running, &waiting) != 2)
        return {};
    return {double(running) * nanosecond, double(waiting) * nanosecond};
}

// When the machine goes on, the tool's thread may be the first to run.
double Heartbeat::delayOf(const Sleeper &sleeper)
{
    return std::max<double>(sleeper.late, now() - sleeper.due);
}

double Heartbeat::longestDelay() const
{
    double longest = 0;
    for (const Sleeper &sleeper : m_sleepers)
        longest = std::max(longest, delayOf(sleeper) - sleeper.lateAtLast);
    return longest;
}

void Heartbeat::restart()
{
    m_account = readAccount();
    for (Sleeper &sleeper : m_sleepers)
        sleeper.lateAtLast = delayOf(sleeper);
    m_last = now();
    m_alive = m_last;
}

void Heartbeat::beat()
{
    const double span = now() - m_last;
    if (span > noticeable) {
        const Account account = readAccount();
        const double waiting = account.waiting - m_account.waiting;
        const double stalled = std::min(span, std::max(waiting, longestDelay()));
        m_stalls += stalled * millisecondsPerSecond;
        m_longest = std::max(m_longest, (span - stalled) * millisecondsPerSecond);
        if (span - stalled > remarkable) {
            std::printf("no beat for %.3f s: running %.3f s, ready %.3f s, others delayed %.3f s\n",
                        span, account.running - m_account.running, waiting, longestDelay());
        }
    }
    restart();
}

double Heartbeat::takeLongestPause()
{
    const double longest = m_longest;
    m_longest = 0;
    return longest;
}

void Heartbeat::beginWork()
{
    beat();
}

void Heartbeat::endWork()
{
    restart();
}

void Heartbeat::setHangLimit(int seconds, void (*onHang)())
{
    m_onHang = onHang;
    m_hangLimit = seconds;
}

void Heartbeat::sleepOn(int processor, Sleeper &sleeper)
{
    cpu_set_t only;
    CPU_ZERO(&only);
    CPU_SET(processor, &only);
    ::sched_setaffinity(0, sizeof only, &only);
    sleeper.due = now() + sleepTime;
    while (!m_isOver) {
        std::this_thread::sleep_for(std::chrono::duration<double>(sleepTime));
        const double late = delayOf(sleeper);
        sleeper.due = sleeper.due + sleepTime;
        sleeper.late = late;
        checkHang();
    }
}

void Heartbeat::checkHang()
{
    const int limit = m_hangLimit;
    if (limit == 0 || now() - m_alive < limit)
        return;
    m_onHang.load()();
    std::_Exit(EXIT_FAILURE);
}
