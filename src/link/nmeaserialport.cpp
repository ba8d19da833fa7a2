#include "link/nmeaserialport.h"

#include "link/fieldreader.h"
#include "link/sentence.h"
#include "platform/serialports.h"

#include <QPointer>
#include <QSerialPort>
#include <QThread>
#include <QTimer>

namespace {

constexpr int sendInterval = 25;      // ms; one line each, the link's only flow control
constexpr int scanInterval = 500;     // ms for a router to answer at one speed
constexpr int confirmInterval = 2000; // ms of silence until the router is asked, and until the end

constexpr qint32 firstScanSpeed = 4800;
constexpr qint32 workingSpeed = QSerialPort::Baud115200;

struct ScanStep
{
    qint32 speed;
    int progress;
};

constexpr ScanStep scanSteps[] = {
    {9600, 15}, {19200, 30}, {38400, 45}, {57600, 60}, {workingSpeed, 75}, {2400, 90},
};
constexpr qint32 scanStepCount = sizeof scanSteps / sizeof *scanSteps;
// The step to come once the line runs at its working speed.
constexpr qint32 stepAfterWorkingSpeed = 5;
constexpr int progressDone = 100;

constexpr int portCount = 12;
constexpr int minLineLength = 6; // '$', an address of four, LF

const QString askConnect = QStringLiteral("$VRCNT\r\n");
const QString askConfirm = QStringLiteral("$VRCNC\r\n");
const QString disconnectSentence = QStringLiteral("$VRDCN\r\n");
const QString busySentence = QStringLiteral("$VRCNB\r\n");
const QString connectAnswerHead = QStringLiteral("$VRCNU,");
const QString proprietaryHead = QStringLiteral("$VR");
const QString aisHead = QStringLiteral("$VRAI");

const QChar star = QLatin1Char('*');

} // namespace

NmeaSerialPort::NmeaSerialPort()
    : searchWait(scanInterval), watchWait(confirmInterval), parser(this)
{
}

NmeaSerialPort::~NmeaSerialPort() = default;

void NmeaSerialPort::openPort(const QString &name)
{
    closePort();

    portName = name;
    serial = new QSerialPort;
    serial->setPortName(platform::serialPortDevice(name));
    serial->setBaudRate(firstScanSpeed, QSerialPort::AllDirections);
    serial->setDataBits(QSerialPort::Data8);
    serial->setParity(QSerialPort::NoParity);
    serial->setFlowControl(QSerialPort::NoFlowControl);
    serial->setStopBits(QSerialPort::OneStop);

    sendTimer = makeLinkTimer(sendInterval);
    awaitingConfirm = false;
    confirmSuspended = false;
    scanStep = 0;
    leftLastSpeed = false;

    connect(this, &NmeaSerialPort::signalVRNMEA_receive, this, &NmeaSerialPort::slot_VRNMEA);
    connect(sendTimer.get(), &QTimer::timeout, this, &NmeaSerialPort::slot_send_timer);
    connect(searchWait.open(), &QTimer::timeout, this, &NmeaSerialPort::slot_connect_timer);
    connect(watchWait.open(), &QTimer::timeout, this, &NmeaSerialPort::slot_confirm_timer);
    // Queued: QSerialPort raises no readyRead from within a readyRead, so the event loop of a modal
    // box that a slot has opened would hear nothing, and it must outlive the emission.
    connect(serial, &QSerialPort::readyRead, this, &NmeaSerialPort::slot_ReadyRead,
            Qt::QueuedConnection);

    if (!serial->open(QIODevice::ReadWrite)) {
        const QPointer<NmeaSerialPort> self(this);
        emit signalVRConnectionProgress(progressDone);
        if (self)
            emit signalErrorOpenPort();
        return;
    }
    // Queued: the port must not be closed under the emission of its own signal.
    connect(
        serial, &QSerialPort::errorOccurred, this,
        [this, opened = serial](QSerialPort::SerialPortError error) {
            if (serial != opened || !isPortOpen())
                return;
            if (error == QSerialPort::ResourceError || platform::hasHungUp(*serial))
                releaseLostPort();
        },
        Qt::QueuedConnection);

    sendTimer->start();
    searchWait.start();
    sendSentence(askConnect);
}

void NmeaSerialPort::closePort()
{
    connected = false;
    sendTimer.reset();
    searchWait.close();
    watchWait.close();
    confirmSuspended = false;
    disconnect(this, &NmeaSerialPort::signalVRNMEA_receive, this, &NmeaSerialPort::slot_VRNMEA);
    if (serial) {
        disconnect(serial, nullptr, this, nullptr);
        serial->close();
        serial->deleteLater();
        serial = nullptr;
    }
    lines.dropLine();
}

// The device has gone: an open QSerialPort would go on reporting that with every event. The timers
// run on, so the search or the watch ends the connection at its own time.
void NmeaSerialPort::releaseLostPort()
{
    serial->close();
}

bool NmeaSerialPort::isPortOpen() const
{
    return serial && serial->isOpen();
}

// After a stall of the computer a timer goes before what has come meanwhile: that is read first.
// True if it has begun the wait anew, or ended it.
bool NmeaSerialPort::hasHeardMeanwhile(const AnswerWait &wait)
{
    constexpr int mostReads = 16; // of up to 4 kB each: five seconds of the fastest line
    const QPointer<NmeaSerialPort> self(this);
    const quint32 before = wait.number();
    for (int i = 0; i < mostReads && isPortOpen(); ++i) {
        const bool isMore = serial->waitForReadyRead(0);
        slot_ReadyRead();
        if (!self || wait.number() != before)
            return true;
        if (!isMore)
            break;
    }
    return false;
}

bool NmeaSerialPort::sendSentence(const QString &sentence)
{
    if (!isPortOpen())
        return false;
    sendQueue.append(sentence);
    return true;
}

void NmeaSerialPort::finishSending()
{
    while (isPortOpen() && !sendQueue.isEmpty()) {
        QThread::msleep(sendInterval);
        slot_send_timer();
    }
    if (isPortOpen())
        flushPort();
}

void NmeaSerialPort::suspendConfirm()
{
    confirmSuspended = true;
}

QStringList NmeaSerialPort::scanPorts()
{
    return platform::serialPortNames();
}

void NmeaSerialPort::slot_send_timer()
{
    searchWait.noteQueueTick();
    watchWait.noteQueueTick();
    if (!isPortOpen() || sendQueue.isEmpty())
        return;
    const QString sentence = sendQueue.takeFirst();
    const QByteArray bytes = sentence.toLocal8Bit();
    if (serial->write(bytes.constData(), bytes.size()) < 0) {
        emit signalErrorWritePort();
        return;
    }
    if (!sentence.startsWith(disconnectSentence))
        return;
    // The slots close the port at once.
    flushPort();
    emit signalVRSendDisconnect();
}

// Closing drops what QSerialPort still holds.
void NmeaSerialPort::flushPort()
{
    serial->flush();
    platform::drain(*serial);
}

void NmeaSerialPort::slot_connect_timer()
{
    const QPointer<NmeaSerialPort> self(this);
    // Qt fires no timer from within its own timeout, and a box can open below: it is started anew.
    searchWait.start();
    if (hasHeardMeanwhile(searchWait))
        return;
    const qint32 step = scanStep;
    if (step >= scanStepCount) {
        closePort();
        emit signalVRConnectionProgress(progressDone);
        if (self)
            emit signalVRTimeOutConnect();
        return;
    }
    const quint32 wait = searchWait.number();
    emit signalVRConnectionProgress(scanSteps[step].progress);
    // A progress dialog runs the event loop when its value changes: the answer, or the end of the
    // connection, may have come meanwhile.
    if (!self || searchWait.number() != wait)
        return;
    ++scanStep;
    if (!isPortOpen())
        return;
    serial->clear(QSerialPort::AllDirections);
    serial->setBaudRate(scanSteps[step].speed, QSerialPort::AllDirections);
    sendSentence(askConnect);
}

void NmeaSerialPort::slot_confirm_timer()
{
    if (confirmSuspended || hasHeardMeanwhile(watchWait))
        return;
    if (!awaitingConfirm) {
        awaitingConfirm = true;
        sendSentence(askConfirm);
        return;
    }
    closePort();
    emit signalVRTimeOutConnect();
}

void NmeaSerialPort::slot_ReadyRead()
{
    const QPointer<NmeaSerialPort> self(this);
    // Nothing is read while lines wait that an interrupted pass has left.
    handleLines();
    while (self && serial && serial->bytesAvailable() != 0) {
        char chunk[LineAssembler::MaxLineBytes];
        const qint64 count = serial->read(chunk, sizeof chunk);
        if (count < 0)
            lines.dropLine();
        else
            receiveBytes(chunk, int(count));
    }
}

void NmeaSerialPort::receiveBytes(const char *data, int size)
{
    lines.add(data, size);
    handleLines();
}

// A slot may open a box. What stands behind its sentence follows in the event loop of the box, and
// doesn't wait for the next byte. The first half of a line has to: most sentences have one behind
// them, and each turn of the event loop costs more than a sentence.
void NmeaSerialPort::readOnInEventLoop()
{
    const bool isAllRead = !lines.hasLineEnd() && (!serial || serial->bytesAvailable() == 0);
    if (isAllRead || readsOn)
        return;
    readsOn = true;
    const auto readOn = [this] {
        readsOn = false;
        slot_ReadyRead();
    };
    QMetaObject::invokeMethod(this, readOn, Qt::QueuedConnection);
}

// A slot may run an event loop that enters here again and takes the lines that follow, close the
// port, or delete this object.
void NmeaSerialPort::handleLines()
{
    const QPointer<NmeaSerialPort> self(this);
    QByteArray line;
    while (self && lines.takeLine(line))
        handleLine(line);
}

void NmeaSerialPort::handleLine(const QByteArray &bytes)
{
    if (bytes.size() < minLineLength)
        return;
    const int textBytes = int(qstrnlen(bytes.constData(), uint(bytes.size())));
    const QString text = QString::fromUtf8(bytes.constData(), textBytes);
    if (text.size() < minLineLength)
        return;
    if (text.startsWith(proprietaryHead)) {
        readOnInEventLoop();
        emit signalVRNMEA_receive(text);
        return;
    }
    const QPointer<NmeaSerialPort> self(this);
    if (hasChecksum(text) && !testChecksum(text))
        emit signalCommandCRSError();
    if (self)
        emit signalNMEA_receive(text);
}

void NmeaSerialPort::slot_VRNMEA(QString str)
{
    if (str.startsWith(connectAnswerHead)) {
        handleConnectAnswer(str);
        return;
    }
    if (str == busySentence) {
        closePort();
        emit signalVRBusy();
        return;
    }
    if (!str.startsWith(proprietaryHead))
        return;
    feedWatch(str);
    parser.parse(str);
}

void NmeaSerialPort::handleConnectAnswer(const QString &str)
{
    if (!testChecksum(str)) {
        emit signalCommandCRSError();
        return;
    }
    // A router that answers at the last speed and isn't there at 115200 is asked at both once more,
    // but not for ever.
    const bool isLastSpeed = !connected && scanStep == scanStepCount;
    if (isLastSpeed && leftLastSpeed)
        return;
    leftLastSpeed = leftLastSpeed || isLastSpeed;
    // Also in a connection that stands, where it sets the search going again at its last step.
    searchWait.start();
    if (connected)
        return;
    if (scanStep != stepAfterWorkingSpeed) {
        scanStep = stepAfterWorkingSpeed;
        if (isPortOpen())
            serial->setBaudRate(workingSpeed, QSerialPort::AllDirections);
        sendSentence(askConnect);
        return;
    }
    quint32 port = 0;
    if (!FieldReader(str).cutNumber(star, port) || port >= portCount)
        return;
    connected = true;
    searchWait.stop();
    awaitingConfirm = false;
    confirmSuspended = false;

    const QPointer<NmeaSerialPort> self(this);
    emit signalVRConnectionProgress(progressDone);
    if (self && connected)
        emit signalVRConnect(quint8(port));
    if (self && connected)
        watchWait.start();
}

// Any "$VR" sentence is a sign of life, known or not and with whatever checksum. The AIS family is
// not: it comes by itself while the AIS test runs.
void NmeaSerialPort::feedWatch(const QString &str)
{
    if (str.startsWith(aisHead))
        return;
    awaitingConfirm = false;
    if (connected)
        watchWait.start();
}
