#include "cutecomprocess.h"

#include "endprocess.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTest>

namespace {

constexpr int startLimit = 15000; // ms
constexpr int endLimit = 3000;    // ms
constexpr int speed = 115200;

const QString program = QStringLiteral("cutecom");
const QString session = QStringLiteral("bench");

// Its own words; %1 is the name of the session and %2 the device.
const QString settings = QStringLiteral("[CuteCom]\n"
                                        "session=%1\n"
                                        "\n"
                                        "[sessions]\n"
                                        "1\\BaudRate=115200\n"
                                        "1\\DataBits=8\n"
                                        "1\\Device=%2\n"
                                        "1\\FlowControl=0\n"
                                        "1\\OpenMode=3\n"
                                        "1\\Parity=0\n"
                                        "1\\StopBits=1\n"
                                        "1\\autoReconnect=false\n"
                                        "1\\name=%1\n"
                                        "1\\showCtrlCharacters=false\n"
                                        "1\\showTimestamp=false\n"
                                        "size=1\n");

// Loaded into cutecom; there is none in a build with another Qt than cutecom's.
QString helper()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/libcutecomhelper.so");
}

} // namespace

CutecomProcess::CutecomProcess()
{
    m_pacer.setSpeed(speed);
    QObject::connect(&m_pacer, &tk7sim::LinePacer::bytesDue, &m_pty,
                     [this](const QByteArray &bytes) {
                         if (m_pty.write(bytes))
                             m_written += bytes.size();
                         else
                             m_lost += bytes.size();
                     });
}

CutecomProcess::~CutecomProcess()
{
    endProcess(m_process, endLimit);
}

bool CutecomProcess::isInstalled()
{
    return QFile::exists(helper()) && !QStandardPaths::findExecutable(program).isEmpty();
}

bool CutecomProcess::start(const QString &platform)
{
    if (!m_pty.isValid() || !writeSettings())
        return false;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    environment.insert(QStringLiteral("QT_FONT_DPI"), QStringLiteral("96"));
    environment.insert(QStringLiteral("HOME"), m_home.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.path());
    environment.insert(QStringLiteral("LD_PRELOAD"), helper());
    m_process.setProcessEnvironment(environment);
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(program, {QStringLiteral("--session"), session});
    return QTest::qWaitFor([this] { return m_pty.speed() == speed; }, startLimit);
}

bool CutecomProcess::writeSettings() const
{
    const QDir home(m_home.path());
    QFile file(home.filePath(QStringLiteral("CuteCom/CuteCom5.conf")));
    return m_home.isValid() && home.mkpath(QStringLiteral("CuteCom"))
        && file.open(QIODevice::WriteOnly)
        && file.write(settings.arg(session, m_pty.slavePath()).toUtf8()) > 0;
}
