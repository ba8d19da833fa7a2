#include "toolprocess.h"

#include "endprocess.h"
#include "monitoredtool.h"

#include <QCoreApplication>
#include <QTest>

namespace {

constexpr int startLimit = 30000; // ms
constexpr int answerLimit = 5000; // ms
constexpr int endLimit = 3000;    // ms
constexpr int nothingUnderView = 255;

} // namespace

ToolProcess::~ToolProcess()
{
    endProcess(m_process, endLimit);
}

bool ToolProcess::start(const QString &platform)
{
    m_router.setTrafficRate(0); // the traffic is sent by hand
    if (!m_router.open())
        return false;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    environment.insert(QStringLiteral("QT_FONT_DPI"), QStringLiteral("96"));
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--child"), m_router.deviceName()});
    const auto isShown = [this] { return m_router.view() != nothingUnderView; };
    const auto isDecided = [&] { return isShown() || m_process.state() == QProcess::NotRunning; };
    return QTest::qWaitFor(isDecided, startLimit) && isShown();
}

ToolProcess::Count ToolProcess::count()
{
    order(MonitoredTool::countOrder);
    return awaitCount(answerLimit);
}

void ToolProcess::order(const QByteArray &text)
{
    m_process.write(text + '\n');
}

ToolProcess::Count ToolProcess::awaitCount(int milliseconds)
{
    if (!QTest::qWaitFor([this] { return m_process.canReadLine(); }, milliseconds))
        return {};
    const QList<QByteArray> numbers = m_process.readLine().trimmed().split(' ');
    if (numbers.size() != 3)
        return {};
    return {numbers[0].toLongLong(), numbers[1].toLongLong(), numbers[2].toInt()};
}
