#include "listener.h"

#include "stepfailure.h"
#include "wait.h"

#include <algorithm>

using tk7sim::ReceivedLine;

namespace {

bool fits(const ReceivedLine &heard, const QByteArray &expected)
{
    return expected.endsWith('\n') ? heard.line == expected : heard.line.startsWith(expected);
}

QList<QByteArray> textsOf(const QList<ReceivedLine> &lines)
{
    QList<QByteArray> texts;
    for (const ReceivedLine &line : lines)
        texts += line.line;
    return texts;
}

QString listOf(const QList<QByteArray> &lines)
{
    QStringList texts;
    for (const QByteArray &line : lines)
        texts += QString::fromLatin1(line.trimmed());
    return texts.isEmpty() ? QStringLiteral("nothing") : texts.join(QLatin1Char(' '));
}

} // namespace

QList<ReceivedLine> Listener::heard() const
{
    QList<ReceivedLine> lines;
    const auto &transcript = m_router.transcript();
    for (int i = m_checked; i < transcript.size(); ++i) {
        const QByteArray &line = transcript[i].line;
        if (std::none_of(m_ignored.begin(), m_ignored.end(),
                         [&](const QByteArray &ignored) { return line.startsWith(ignored); })) {
            lines += transcript[i];
        }
    }
    return lines;
}

QList<ReceivedLine> Listener::expect(const QList<QByteArray> &lines, int milliseconds)
{
    waitUntil([&] { return heard().size() >= lines.size(); }, milliseconds);
    const QList<ReceivedLine> all = heard();
    const bool isRight =
        all.size() == lines.size() && std::equal(all.begin(), all.end(), lines.begin(), fits);
    require(isRight,
            QStringLiteral("the router should have heard %1, but it heard %2")
                .arg(listOf(lines), listOf(textsOf(all))));
    forget();
    return all;
}

void Listener::expectNothing() const
{
    const QList<ReceivedLine> all = heard();
    require(all.isEmpty(),
            QStringLiteral("the router should have heard nothing, but it heard %1")
                .arg(listOf(textsOf(all))));
}

QString Listener::last() const
{
    constexpr int most = 12;
    constexpr double microsecondsPerSecond = 1000000;
    const auto &transcript = m_router.transcript();
    QString text;
    for (int i = std::max(0, int(transcript.size()) - most); i < transcript.size(); ++i) {
        const double age = double(tk7sim::RouterSimulator::now() - transcript[i].microseconds)
            / microsecondsPerSecond;
        text += QStringLiteral("%1 s  %2\n")
                    .arg(age, 6, 'f', 1)
                    .arg(QString::fromLatin1(transcript[i].line.trimmed()));
    }
    return text;
}
