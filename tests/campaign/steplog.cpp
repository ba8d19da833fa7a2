#include "steplog.h"

#include <QMutex>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace {

constexpr double millisecondsPerSecond = 1000;
constexpr int keptLines = 300;
constexpr int lineLength = 200;

// Plain memory, so that it can be written out from a signal handler.
char tail[keptLines][lineLength];
int tailEnd = 0;
char head[lineLength];

QMutex problemMutex;
QString problem;

// What a platform says of itself, whatever the program does.
const char *const platformMessages[] = {
    "This plugin does not support ",
};

void die(int signalNumber)
{
    StepLog::printTail();
    std::signal(signalNumber, SIG_DFL);
    std::raise(signalNumber);
}

void keep(char *place, const QByteArray &line)
{
    std::snprintf(place, lineLength, "%.*s\n", lineLength - 2, line.constData());
}

} // namespace

StepLog::StepLog(quint32 seed, bool prints) : m_prints(prints)
{
    m_clock.start();
    keep(head, "the last steps of seed " + QByteArray::number(seed) + ':');
    qInstallMessageHandler(&StepLog::takeMessage);
    for (const int signalNumber : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL})
        std::signal(signalNumber, die);
}

StepLog::~StepLog()
{
    qInstallMessageHandler(nullptr);
}

void StepLog::note(const QString &who, const QString &kind, const QString &text)
{
    count(who, kind);
    const QString line =
        QStringLiteral("%1 %2 s %3: %4%5")
            .arg(++m_number, 6)
            .arg(double(m_clock.elapsed()) / millisecondsPerSecond, 7, 'f', 2)
            .arg(who, kind, text.isEmpty() ? QString() : QString(QLatin1String(" ") + text));
    const QByteArray bytes = line.toLocal8Bit();
    keep(tail[tailEnd++ % keptLines], bytes);
    if (m_prints) {
        std::printf("%s\n", bytes.constData());
        std::fflush(stdout);
    }
}

void StepLog::count(const QString &who, const QString &kind)
{
    ++m_counts[who][kind];
}

int StepLog::total(const QString &who) const
{
    int sum = 0;
    for (const int number : m_counts.value(who))
        sum += number;
    return sum;
}

QString StepLog::summary(const QString &who) const
{
    QStringList parts;
    const auto kinds = m_counts.value(who);
    for (auto it = kinds.begin(); it != kinds.end(); ++it)
        parts += QStringLiteral("%1 %2").arg(it.key()).arg(it.value());
    return parts.join(QStringLiteral(", "));
}

void StepLog::printTail()
{
    const auto print = [](const char *line) {
        if (::write(STDERR_FILENO, line, std::strlen(line)) < 0)
            std::_Exit(EXIT_FAILURE);
    };
    print(head);
    for (int i = std::max(0, tailEnd - keptLines); i < tailEnd; ++i)
        print(tail[i % keptLines]);
}

void StepLog::takeMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtDebugMsg || type == QtInfoMsg)
        return;
    for (const char *known : platformMessages) {
        if (text.startsWith(QLatin1String(known)))
            return;
    }
    std::fprintf(stderr, "Qt: %s\n", qPrintable(text));
    const QMutexLocker lock(&problemMutex);
    if (problem.isEmpty())
        problem = text;
}

QString StepLog::takeProblem()
{
    const QMutexLocker lock(&problemMutex);
    return std::exchange(problem, QString());
}
