#include "simulator/line/linepacer.h"

#include "simulator/line/linespeed.h"

#include <algorithm>
#include <chrono>

namespace tk7sim {

namespace {

constexpr qint64 nanosecondsPerSecond = 1'000'000'000;
constexpr qint64 nanosecondsPerMillisecond = 1'000'000;
constexpr qint64 turn = 4 * nanosecondsPerMillisecond; // of a long text, between two writes

qint64 steadyNow()
{
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(time).count();
}

} // namespace

LinePacer::LinePacer(QObject *parent) : QObject(parent), m_speed(lineSpeeds.front()), m_timer(this)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &LinePacer::slotTick);
}

bool LinePacer::enqueue(const QByteArray &bytes, int delay, int thenSpeed)
{
    if (bytes.isEmpty() || bytes.size() > maxQueued - m_queuedBytes) {
        return false;
    }
    const qint64 now = steadyNow();
    if (m_queue.isEmpty()) {
        m_lineFree = std::max(m_lineFree, now);
    }
    m_queue.enqueue({bytes, now + delay * nanosecondsPerMillisecond, thenSpeed});
    m_queuedBytes += int(bytes.size());
    if (!m_timer.isActive()) {
        scheduleNext(now);
    }
    return true;
}

void LinePacer::clear()
{
    m_queue.clear();
    m_queuedBytes = 0;
    m_lineFree = 0;
    m_timer.stop();
}

void LinePacer::slotTick()
{
    const qint64 now = steadyNow();
    sendDue(now);
    if (!m_queue.isEmpty() && !m_timer.isActive()) {
        scheduleNext(now);
    }
}

void LinePacer::sendDue(qint64 now)
{
    m_lineFree = std::max(m_lineFree, now - catchUpLimit);
    while (!m_queue.isEmpty()) {
        Item &head = m_queue.head();
        m_lineFree = std::max(m_lineFree, head.notBefore);
        const qint64 allowed = (now - m_lineFree) * m_speed / (bitsPerByte * nanosecondsPerSecond);
        if (allowed <= 0) {
            return;
        }
        const int count = static_cast<int>(std::min<qint64>(allowed, head.bytes.size()));
        const QByteArray due = head.bytes.left(count);
        head.bytes.remove(0, count);
        m_queuedBytes -= count;
        m_lineFree += timeOf(count);
        const bool finished = head.bytes.isEmpty();
        const int thenSpeed = head.thenSpeed;
        if (finished) {
            m_queue.dequeue();
        }
        emit bytesDue(due);
        if (finished && thenSpeed != 0) {
            m_speed = thenSpeed;
            emit speedReached(thenSpeed);
        }
    }
}

void LinePacer::scheduleNext(qint64 now)
{
    const Item &head = m_queue.head();
    const qint64 start = std::max(m_lineFree, head.notBefore);
    const qint64 wait = start - now + std::min(timeOf(head.bytes.size()), turn);
    // A slow line needs longer than a turn for one byte.
    const qint64 atLeast = start - now + timeOf(1);
    const qint64 nanoseconds = std::max(wait, atLeast);
    m_timer.start(static_cast<int>(std::max<qint64>(
        (nanoseconds + nanosecondsPerMillisecond - 1) / nanosecondsPerMillisecond, 1)));
}

qint64 LinePacer::timeOf(qint64 byteCount) const
{
    return byteCount * bitsPerByte * nanosecondsPerSecond / m_speed;
}

} // namespace tk7sim
