#include "simulator/router/aiscopy.h"

#include "simulator/instruments/aissentence.h"
#include "simulator/line/sentence.h"

#include <algorithm>
#include <numeric>

namespace tk7sim {

namespace {

constexpr int channelField = 4;
constexpr int talkerEnd = 3; // behind the mark and the talker
constexpr int tail = 5;      // '*', two digits, CR LF

QByteArray wrapPosition(const QByteArray &body)
{
    return "$VRAIP," + body;
}

} // namespace

std::optional<QByteArray> wrapAisLine(const QByteArray &line, int port)
{
    auto fields = aisFieldsOf(line);
    if (fields.isEmpty()) {
        return std::nullopt;
    }
    const QByteArray name = fields.constFirst().mid(talkerEnd);
    const QByteArray portDigit = QByteArray::number(port, 16).toUpper();
    if (name == "ALR") {
        fields[0] = "$VRAIA," + portDigit;
    } else {
        fields[0] = name == "VDM" ? "$VRAIM" : "$VRAIO";
        fields[channelField] = portDigit;
    }
    return fields.join(',');
}

QList<QByteArray> wrapReport(const AisReport &report)
{
    if (report.kind == AisReportKind::RouterPosition) {
        return {wrapPosition(report.bodies.constFirst())};
    }
    QList<QByteArray> bodies;
    for (const QByteArray &body : report.bodies) {
        bodies.append(wrapAisLine(withChecksum(body), report.port).value_or(QByteArray()));
    }
    return bodies;
}

AisCopy::AisCopy(const RouterClock *clock, TrafficGenerator *traffic, QObject *parent)
    : QObject(parent), m_clock(clock), m_traffic(traffic), m_timer(this)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &AisCopy::slotTick);
}

void AisCopy::start()
{
    m_truth = {};
    m_copiedUpTo = m_clock->now();
    m_timer.start();
}

void AisCopy::stop()
{
    m_timer.stop();
    clear();
}

QByteArray AisCopy::takeLine()
{
    const Waiting next = m_waiting.dequeue();
    m_waitingBytes -= int(next.line.size());
    if (next.report) {
        m_truth.record(*next.report);
        emit reported(*next.report);
    }
    return next.line;
}

void AisCopy::clear()
{
    m_waiting.clear();
    m_waitingBytes = 0;
}

void AisCopy::slotTick()
{
    const qint64 now = m_clock->now();
    const qint64 from = std::max(m_copiedUpTo, now - longestGap);
    m_copiedUpTo = now;
    for (const AisStations::Said &said : m_traffic->inputs().ownPositions(from, now)) {
        enqueue({wrapPosition(said.body)}, said.report);
    }
    // In turns, so that a full line has room for all.
    for (int i = 0; i < portCount; ++i) {
        copyInput((m_firstPort + i) % portCount, from, now);
    }
    m_firstPort = (m_firstPort + 1) % portCount;
    if (hasLine()) {
        emit linesWaiting();
    }
}

void AisCopy::copyInput(int port, qint64 from, qint64 to)
{
    const auto lines = m_traffic->inputTraffic(port, from, to);
    for (auto line = lines.cbegin(); line != lines.cend();) {
        const auto isOther = [line](const TrafficLine &next) {
            return !line->report || next.report != line->report;
        };
        const auto end = std::find_if(line + 1, lines.cend(), isOther);
        copyLines(port, line, end);
        line = end;
    }
}

// The lines of one report, or a single one. A spoilt one can't be read; the others are copied
// nevertheless.
void AisCopy::copyLines(int port, LineIterator begin, LineIterator end)
{
    QList<QByteArray> bodies;
    std::for_each(begin, end, [&](const TrafficLine &line) {
        const auto body = line.flaw == LineFlaw::None ? wrapAisLine(line.text, port) : std::nullopt;
        if (body) {
            bodies.append(*body);
        }
    });
    const bool isWhole = begin->report && bodies.size() == begin->report->bodies.size();
    enqueue(bodies, isWhole ? begin->report : nullptr);
}

// All of them or none.
void AisCopy::enqueue(const QList<QByteArray> &bodies,
                      const std::shared_ptr<const AisReport> &report)
{
    const int size =
        std::accumulate(bodies.cbegin(), bodies.cend(), 0,
                        [](int sum, const QByteArray &b) { return sum + int(b.size()); })
        + int(bodies.size()) * tail;
    if (m_waitingBytes + size > maxWaiting) {
        return;
    }
    for (int i = 0; i < bodies.size(); ++i) {
        m_waiting.enqueue({withChecksum(bodies.at(i)), i == bodies.size() - 1 ? report : nullptr});
    }
    m_waitingBytes += size;
}

} // namespace tk7sim
