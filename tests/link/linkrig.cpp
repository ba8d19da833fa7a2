#include "linkrig.h"

#include "support/checkedline.h"

#include <QSignalSpy>
#include <QTimer>

namespace {

constexpr int workingSpeed = 115200;
constexpr int handshakeTimeout = 5000;
const QString sentMark = QStringLiteral("-> ");

} // namespace

LinkRig::LinkRig(Router router)
    : m_link(new NmeaSerialPort), m_journal(m_link.get()), m_router(std::move(router))
{
    connect(&m_pty, &PtyPair::lineReceived, this, &LinkRig::answer);
}

LinkRig::~LinkRig()
{
    m_link->closePort();
}

void LinkRig::open()
{
    m_link->openPort(m_pty.slavePath());
}

bool LinkRig::openAndConnect()
{
    QSignalSpy connectedSpy(m_link.get(), &NmeaSerialPort::signalVRConnect);
    open();
    return connectedSpy.wait(handshakeTimeout);
}

QStringList LinkRig::sentLines() const
{
    QStringList sent;
    for (const QString &text : m_journal.texts()) {
        if (text.startsWith(sentMark))
            sent += text;
    }
    return sent;
}

void LinkRig::after(int ms, std::function<void()> action)
{
    QTimer::singleShot(ms, Qt::PreciseTimer, this, std::move(action));
}

LinkRig::Router LinkRig::routerAt(int speed, const QByteArray &port)
{
    return [ownSpeed = speed, port](const QByteArray &line, int lineSpeed) mutable {
        if (lineSpeed != ownSpeed || line != "$VRCNT\r\n")
            return QByteArray();
        ownSpeed = workingSpeed;
        return checkedLine("$VRCNU," + port);
    };
}

void LinkRig::answer(const QByteArray &line, int speed)
{
    QString text = QString::fromUtf8(line);
    if (text.endsWith(QLatin1String("\r\n")))
        text.chop(2);
    else
        text += QLatin1String("(no CR LF)");
    m_journal.note(sentMark + text + QLatin1String(" @") + QString::number(speed));
    if (!m_router)
        return;
    const QByteArray reply = m_router(line, speed);
    if (!reply.isEmpty())
        m_pty.write(reply);
}
