#include "rulesbench.h"

#include "routerconfigof.h"
#include "rules/ruledocument.h"

#include <QTest>

#include <csignal>

RulesBench::RulesBench()
{
    // Tests that were started to outlive their terminal ignore its end, and the program would, too.
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        std::signal(number, SIG_DFL);
    router.setTrafficRate(0);
    if (!router.open())
        qFatal("no pseudo-terminal: %s", qPrintable(router.errorString()));
    QObject::connect(&program, &QProcess::readyReadStandardOutput, &program,
                     [this] { m_out += program.readAllStandardOutput(); });
    QObject::connect(&program, &QProcess::readyReadStandardError, &program,
                     [this] { m_err += program.readAllStandardError(); });
}

RulesBench::~RulesBench()
{
    program.disconnect();
    program.kill();
    program.waitForFinished();
}

void RulesBench::giveRouter(const RouterModel &model)
{
    router.setEeprom(routerConfigOf(model));
    router.setWorking(routerConfigOf(model));
}

QString RulesBench::writeFile(const char *name, const RouterModel &model) const
{
    QString error;
    const auto bytes = RuleDocument::bytes(model, error);
    QFile file(path(name));
    if (!bytes || !file.open(QIODevice::WriteOnly) || file.write(*bytes) != bytes->size())
        qFatal("no file %s: %s", name, qPrintable(error));
    return file.fileName();
}

void RulesBench::start(const QStringList &words)
{
    QStringList arguments;
    for (const QString &word : words)
        arguments += word == QLatin1String("PORT") ? port() : word;
    m_out.clear();
    m_err.clear();
    program.start(QStringLiteral(TK7_RULES), arguments);
}

int RulesBench::finish()
{
    constexpr int longest = 60000; // ms
    const bool isOver =
        QTest::qWaitFor([this] { return program.state() == QProcess::NotRunning; }, longest);
    m_out += program.readAllStandardOutput();
    m_err += program.readAllStandardError();
    const bool isGood = isOver && program.exitStatus() == QProcess::NormalExit;
    return isGood ? program.exitCode() : -1;
}

void RulesBench::signal(int number) const
{
    ::kill(pid_t(program.processId()), number);
}

QByteArrayList RulesBench::heard() const
{
    QByteArrayList lines;
    for (const tk7sim::ReceivedLine &received : router.transcript()) {
        if (received.line != "$VRCNC\r\n")
            lines += received.line;
    }
    return lines;
}

int RulesBench::count(const char *head) const
{
    int count = 0;
    for (const QByteArray &line : heard())
        count += line.startsWith(head);
    return count;
}
