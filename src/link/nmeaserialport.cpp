#include "link/nmeaserialport.h"

#include "link/sentence.h"
#include "platform/serialports.h"

#include <QPointer>
#include <QSerialPort>
#include <QStringRef>
#include <QThread>
#include <QTimer>

#include <cstring>

namespace {

constexpr int sendInterval = 25;  // ms; one line each, the link's only flow control
constexpr int scanInterval = 500; // ms for a router to answer at one speed
constexpr int confirmInterval =
    2000; // ms of silence before the router is asked, and again before the end

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
constexpr int channelCount = 12;
constexpr int minLineLength = 6; // '$', an address of four, LF
constexpr int headLength = 6;    // "$VR" and three letters
constexpr int fieldsStart = 7;   // behind the head and its comma

const QString askConnect = QStringLiteral("$VRCNT\r\n");
const QString askConfirm = QStringLiteral("$VRCNC\r\n");
const QString disconnectSentence = QStringLiteral("$VRDCN\r\n");
const QString busySentence = QStringLiteral("$VRCNB\r\n");
const QString connectAnswerHead = QStringLiteral("$VRCNU,");
const QString proprietaryHead = QStringLiteral("$VR");
const QString aisHead = QStringLiteral("$VRAI");
const QString lineEnd = QStringLiteral("\r\n");

const QChar comma = QLatin1Char(',');
const QChar star = QLatin1Char('*');

// Cuts the fields of a sentence, from the left. A separator that is missing ends the sentence.
class FieldReader
{
public:
    explicit FieldReader(const QString &sentence)
        : m_text(&sentence), m_pos(qMin(fieldsStart, sentence.size()))
    {
    }

    bool cut(QChar separator, QStringRef &field)
    {
        const int end = m_text->indexOf(separator, m_pos);
        if (end < 0)
            return false;
        field = m_text->midRef(m_pos, end - m_pos);
        m_pos = end + 1;
        return true;
    }

    // A number that doesn't convert counts as 0.
    bool cutNumber(QChar separator, quint32 &number)
    {
        QStringRef field;
        if (!cut(separator, field))
            return false;
        number = field.toUInt();
        return true;
    }

    bool skip(QChar separator)
    {
        QStringRef ignored;
        return cut(separator, ignored);
    }

    // The next `length` characters as a hexadecimal number; fewer, or none, at the end of the text.
    quint32 takeHex(int length)
    {
        const quint32 number = m_text->midRef(m_pos, length).toUInt(nullptr, 16);
        m_pos = qMin(m_pos + length, m_text->size());
        return number;
    }

private:
    const QString *m_text;
    int m_pos;
};

QChar listSeparator(int index, int count)
{
    return index == count - 1 ? star : comma;
}

// Hands the texts of a list of `count` to take(index, text), until one is missing or `take` is
// false.
template <typename Take> void readList(FieldReader &fields, int count, Take take)
{
    for (int i = 0; i < count; ++i) {
        QStringRef text;
        if (!fields.cut(listSeparator(i, count), text) || !take(i, text))
            return;
    }
}

} // namespace

enum class Shape {
    Head, // the head and a comma start the line
    Line  // the head and CR LF start the line
};

struct NmeaSerialPort::SentenceRow
{
    char code[4];
    Shape shape;
    bool checked;
    void (NmeaSerialPort::*parse)(const QString &);
};

const NmeaSerialPort::SentenceRow NmeaSerialPort::sentenceRows[] = {
    {"SPD", Shape::Head, true, &NmeaSerialPort::parsePortSpeed},
    {"RUL", Shape::Head, true, &NmeaSerialPort::parseRules},
    {"FLT", Shape::Head, true, &NmeaSerialPort::parseFilterMasks},
    {"PNM", Shape::Head, true, &NmeaSerialPort::parsePortNames},
    {"HDC", Shape::Head, true, &NmeaSerialPort::parseHeaders},
    {"FLS", Shape::Head, true, &NmeaSerialPort::parseFilterList},
    {"VER", Shape::Head, true, &NmeaSerialPort::parseVersion},
    {"MOD", Shape::Head, true, &NmeaSerialPort::parseMode},
    {"ERR", Shape::Head, true, &NmeaSerialPort::parseErrors},
    {"WBL", Shape::Line, false, &NmeaSerialPort::parseEndOfData},
    {"VVW", Shape::Head, false, &NmeaSerialPort::parsePortView},
    {"SRO", Shape::Line, false, &NmeaSerialPort::parseSaveOk},
    {"SRE", Shape::Line, false, &NmeaSerialPort::parseSaveError},
    {"FWR", Shape::Line, false, &NmeaSerialPort::parseFirmwareReady},
    {"FWP", Shape::Head, true, &NmeaSerialPort::parseFirmwarePacket},
    {"FWE", Shape::Head, true, &NmeaSerialPort::parseFirmwareError},
    {"FWO", Shape::Line, false, &NmeaSerialPort::parseFirmwareOk},
    {"STA", Shape::Head, true, &NmeaSerialPort::parseStatus},
    {"SER", Shape::Head, true, &NmeaSerialPort::parseSerial},
    {"PWS", Shape::Head, true, &NmeaSerialPort::parsePasswordAnswer},
    {"LCK", Shape::Head, true, &NmeaSerialPort::parseLock},
    {"PWV", Shape::Head, true, &NmeaSerialPort::parsePassword},
    {"FBK", Shape::Head, true, &NmeaSerialPort::parseFlashBank},
    {"AIM", Shape::Head, true, &NmeaSerialPort::parseAisMessage},
    {"AIO", Shape::Head, true, &NmeaSerialPort::parseAisMessage},
    {"AIA", Shape::Head, true, &NmeaSerialPort::parseAisMessage},
    {"AIP", Shape::Head, true, &NmeaSerialPort::parseAisPosition},
};

NmeaSerialPort::NmeaSerialPort() = default;

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

    for (QTimer **timer : {&sendTimer, &connectTimer, &confirmTimer}) {
        *timer = new QTimer;
        (*timer)->setTimerType(Qt::PreciseTimer);
    }
    awaitingConfirm = false;
    confirmSuspended = false;
    scanStep = 0;
    leftLastSpeed = false;

    connect(this, &NmeaSerialPort::signalVRNMEA_receive, this, &NmeaSerialPort::slot_VRNMEA);
    connect(sendTimer, &QTimer::timeout, this, &NmeaSerialPort::slot_send_timer);
    connect(connectTimer, &QTimer::timeout, this, &NmeaSerialPort::slot_connect_timer);
    connect(confirmTimer, &QTimer::timeout, this, &NmeaSerialPort::slot_confirm_timer);
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

    connectTimer->setInterval(scanInterval);
    confirmTimer->setInterval(confirmInterval);
    sinceSendTick.start();
    sendTimer->start(sendInterval);
    startSearchWait();
    sendSentence(askConnect);
}

void NmeaSerialPort::closePort()
{
    connected = false;
    ++searchWaits;
    ++watchWaits;
    for (QTimer **timer : {&sendTimer, &connectTimer, &confirmTimer})
        releaseTimer(*timer);
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

void NmeaSerialPort::releaseTimer(QTimer *&timer)
{
    if (!timer)
        return;
    timer->stop();
    disconnect(timer, nullptr, this, nullptr);
    timer->deleteLater();
    timer = nullptr;
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

void NmeaSerialPort::startSearchWait()
{
    ++searchWaits;
    if (connectTimer)
        connectTimer->start();
}

void NmeaSerialPort::startWatchWait()
{
    ++watchWaits;
    if (confirmTimer)
        confirmTimer->start();
}

// After a stall of the computer a timer goes before what has come meanwhile: that is read first.
// True if it has begun the wait anew, or ended it.
bool NmeaSerialPort::hasHeardMeanwhile(const quint32 &waits)
{
    constexpr int mostReads = 16; // of up to 4 kB each: five seconds of the fastest line
    const QPointer<NmeaSerialPort> self(this);
    const quint32 before = waits;
    for (int i = 0; i < mostReads && isPortOpen(); ++i) {
        const bool isMore = serial->waitForReadyRead(0);
        slot_ReadyRead();
        if (!self || waits != before)
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
    // While the computer stood still nobody was asked: the router gets its whole time once more.
    const qint64 pause = sinceSendTick.restart();
    if (pause > scanInterval / 2 && connectTimer && connectTimer->isActive())
        startSearchWait();
    if (pause > confirmInterval / 2 && confirmTimer && confirmTimer->isActive())
        startWatchWait();
    if (!isPortOpen() || sendQueue.isEmpty())
        return;
    const QString sentence = sendQueue.takeFirst();
    if (serial->write(sentence.toLocal8Bit()) < 0) {
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
    startSearchWait();
    if (hasHeardMeanwhile(searchWaits))
        return;
    const qint32 step = scanStep;
    if (step >= scanStepCount) {
        closePort();
        emit signalVRConnectionProgress(progressDone);
        if (self)
            emit signalVRTimeOutConnect();
        return;
    }
    const quint32 wait = searchWaits;
    emit signalVRConnectionProgress(scanSteps[step].progress);
    // A progress dialog runs the event loop when its value changes: the answer, or the end of the
    // connection, may have come meanwhile.
    if (!self || searchWaits != wait)
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
    if (confirmSuspended || hasHeardMeanwhile(watchWaits))
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
// doesn't wait for the next byte.
void NmeaSerialPort::readOnInEventLoop()
{
    const bool isAllRead = !lines.hasMore() && (!serial || serial->bytesAvailable() == 0);
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
    feedWatch(str);

    if (str.size() <= headLength || !str.startsWith(proprietaryHead))
        return;
    const QChar *code = str.constData() + proprietaryHead.size();
    for (const SentenceRow &row : sentenceRows) {
        if (code[0] != QLatin1Char(row.code[0]) || code[1] != QLatin1Char(row.code[1])
            || code[2] != QLatin1Char(row.code[2])) {
            continue;
        }
        const bool hasShape = row.shape == Shape::Head ? str.at(headLength) == comma
                                                       : str.midRef(headLength).startsWith(lineEnd);
        if (!hasShape)
            return;
        // Cleared before the checksum is tested: a torn "$VRSER" leaves no old identifier behind.
        if (row.parse == &NmeaSerialPort::parseSerial)
            serialBlock.clear();
        if (row.checked && !testChecksum(str)) {
            emit signalCommandCRSError();
            return;
        }
        (this->*row.parse)(str);
        return;
    }
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
    startSearchWait();
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
    if (connectTimer)
        connectTimer->stop();
    awaitingConfirm = false;
    confirmSuspended = false;

    const QPointer<NmeaSerialPort> self(this);
    emit signalVRConnectionProgress(progressDone);
    if (self && connected)
        emit signalVRConnect(quint8(port));
    if (self && connected)
        startWatchWait();
}

// Any "$VR" sentence is a sign of life, known or not and with whatever checksum. The AIS family is
// not: it comes by itself while the AIS test runs.
void NmeaSerialPort::feedWatch(const QString &str)
{
    if (!str.startsWith(proprietaryHead) || str.startsWith(aisHead))
        return;
    awaitingConfirm = false;
    if (connected)
        startWatchWait();
}

// $VRSPD,port,speed*hh
void NmeaSerialPort::parsePortSpeed(const QString &str)
{
    FieldReader fields(str);
    quint32 port = 0;
    quint32 speed = 0;
    if (!fields.cutNumber(comma, port) || !fields.cutNumber(star, speed))
        return;
    emit signalVRNewPortSpeed(quint8(port), speed);
}

// $VRRUL,port,x,w0w1...w11*hh, each word four digits: inputs, options
void NmeaSerialPort::parseRules(const QString &str)
{
    constexpr int wordDigits = 4;
    FieldReader fields(str);
    quint32 port = 0;
    if (!fields.cutNumber(comma, port) || !fields.skip(comma))
        return;
    const QPointer<NmeaSerialPort> self(this);
    for (int channel = 0; self && channel < channelCount; ++channel) {
        const quint32 word = fields.takeHex(wordDigits);
        emit signalVRNewRule(quint8(port), channel, quint8(word >> 8), quint8(word));
    }
}

// $VRFLT,port,x,first,m0m1...m5*hh, each mask eight digits
void NmeaSerialPort::parseFilterMasks(const QString &str)
{
    constexpr int maskDigits = 8;
    constexpr int masksPerSentence = 6;
    FieldReader fields(str);
    quint32 port = 0;
    quint32 number = 0;
    if (!fields.cutNumber(comma, port) || !fields.skip(comma) || !fields.cutNumber(comma, number))
        return;
    const quint8 first = quint8(number);
    if (port < portCount) {
        filterHalfSeen[port].first |= first == 0;
        filterHalfSeen[port].second |= first == masksPerSentence;
    }
    const QPointer<NmeaSerialPort> self(this);
    for (int i = 0; self && i < masksPerSentence; ++i)
        emit signalVRNewFilterMask(quint8(port), first + i, fields.takeHex(maskDigits));
}

// $VRPNM,t,first,n0,n1,n2,n3,n4,n5*hh
void NmeaSerialPort::parsePortNames(const QString &str)
{
    constexpr int namesPerSentence = 6;
    FieldReader fields(str);
    QStringRef type;
    quint32 first = 0;
    if (!fields.cut(comma, type) || type.size() != 1)
        return;
    const bool isOutput = type.at(0) == QLatin1Char('O');
    if (!isOutput && type.at(0) != QLatin1Char('I'))
        return;
    if (!fields.cutNumber(comma, first) || (first != 0 && first != namesPerSentence))
        return;
    const QPointer<NmeaSerialPort> self(this);
    readList(fields, namesPerSentence, [&](int i, const QStringRef &name) {
        emit signalVRNewPortName(isOutput, quint8(first + quint32(i)), name.toString());
        return !self.isNull();
    });
}

// $VRHDC,port,x,h0,h1,...,h11*hh
void NmeaSerialPort::parseHeaders(const QString &str)
{
    constexpr int headerLength = 2;
    FieldReader fields(str);
    quint32 port = 0;
    if (!fields.cutNumber(comma, port) || !fields.skip(comma))
        return;
    const QPointer<NmeaSerialPort> self(this);
    readList(fields, channelCount, [&](int channel, const QStringRef &header) {
        if (!header.isEmpty() && header.size() != headerLength)
            return false;
        emit signalVRNewHdr(quint8(port), channel, header.toString());
        return !self.isNull();
    });
}

// $VRFLS,first,s0,s1,...,s7*hh
void NmeaSerialPort::parseFilterList(const QString &str)
{
    constexpr int namesPerSentence = 8;
    constexpr int formatterLength = 3;
    FieldReader fields(str);
    quint32 first = 0;
    if (!fields.cutNumber(comma, first))
        return;
    const QPointer<NmeaSerialPort> self(this);
    readList(fields, namesPerSentence, [&](int i, const QStringRef &formatter) {
        if (!formatter.isEmpty() && formatter.size() != formatterLength)
            return false;
        emit signalVRNewFilterStr(quint8(first + quint32(i)), formatter.toString());
        return !self.isNull();
    });
}

// $VRVER,msb.lsb*hh
void NmeaSerialPort::parseVersion(const QString &str)
{
    FieldReader fields(str);
    quint32 msb = 0;
    quint32 lsb = 0;
    if (!fields.cutNumber(QLatin1Char('.'), msb) || !fields.cutNumber(star, lsb))
        return;
    emit signalVRVersion(msb, lsb);
}

// $VRMOD,text*hh
void NmeaSerialPort::parseMode(const QString &str)
{
    QStringRef mode;
    if (FieldReader(str).cut(star, mode))
        emit signalVRMode(mode.toString());
}

// $VRERR,cccc,ff*hh, at fixed places; what stands between the two numbers doesn't matter
void NmeaSerialPort::parseErrors(const QString &str)
{
    constexpr int codeDigits = 4;
    constexpr int faultStart = 12;
    constexpr int faultDigits = 2;
    bool isCode = false;
    bool isFault = false;
    const quint32 code = str.midRef(fieldsStart, codeDigits).toUInt(&isCode, 16);
    const quint32 fault = str.midRef(faultStart, faultDigits).toUInt(&isFault, 16);
    if (isCode && isFault)
        emit signalVRErrorsCode(code, fault);
}

void NmeaSerialPort::parseEndOfData(const QString &)
{
    emit signalVRUpdateVRData();
}

// $VRVVW,n without a checksum: with one the number doesn't convert and counts as 0
void NmeaSerialPort::parsePortView(const QString &str)
{
    const quint32 code = str.midRef(fieldsStart).toUInt();
    if (code <= 255)
        emit signalVRPortView(quint8(code));
}

void NmeaSerialPort::parseSaveOk(const QString &)
{
    emit signalVRSaveEepromOk();
}

void NmeaSerialPort::parseSaveError(const QString &)
{
    emit signalVRSaveEepromError();
}

void NmeaSerialPort::parseFirmwareReady(const QString &)
{
    emit signalVRReadyFirmwareUpdate();
}

// $VRFWP,n*hh
void NmeaSerialPort::parseFirmwarePacket(const QString &str)
{
    quint32 number = 0;
    if (FieldReader(str).cutNumber(star, number))
        emit signalVRFwPacket(number);
}

// $VRFWE,n*hh
void NmeaSerialPort::parseFirmwareError(const QString &str)
{
    quint32 code = 0;
    if (FieldReader(str).cutNumber(star, code))
        emit signalVRFwError(code);
}

void NmeaSerialPort::parseFirmwareOk(const QString &)
{
    emit signalVRFwOk();
}

// $VRSTA,port,print,crs,broken,size,full*hh
void NmeaSerialPort::parseStatus(const QString &str)
{
    constexpr int count = 6;
    FieldReader fields(str);
    quint32 values[count] = {};
    for (int i = 0; i < count; ++i) {
        if (!fields.cutNumber(listSeparator(i, count), values[i]))
            return;
    }
    emit signalVRStatusErrors(values[0], values[1], values[2], values[3], values[4], values[5]);
}

// $VRSER, 32 hexadecimal digits, *hh
void NmeaSerialPort::parseSerial(const QString &str)
{
    constexpr int byteCount = 16;
    QStringRef digits;
    if (!FieldReader(str).cut(star, digits) || digits.size() != 2 * byteCount)
        return;
    for (int i = 0; i < byteCount; ++i) {
        bool isNumber = false;
        const uint byte = digits.mid(2 * i, 2).toUInt(&isNumber, 16);
        if (!isNumber) {
            serialBlock.clear();
            return;
        }
        serialBlock.append(char(byte));
    }
    emit signalVRSerial(&serialBlock);
}

// $VRPWS,OK*hh or $VRPWS,ERROR*hh
void NmeaSerialPort::parsePasswordAnswer(const QString &str)
{
    const QStringRef answer = str.midRef(fieldsStart);
    if (answer.startsWith(QLatin1String("OK")))
        emit signalVRSetPasswordAnswer(true);
    else if (answer.startsWith(QLatin1String("ERROR")))
        emit signalVRSetPasswordAnswer(false);
}

// $VRLCK,l,a*hh
void NmeaSerialPort::parseLock(const QString &str)
{
    constexpr quint8 highestLevel = 5;
    FieldReader fields(str);
    QStringRef enabled;
    QStringRef levelText;
    if (!fields.cut(comma, enabled) || enabled.size() != 1)
        return;
    const bool hasPassword = enabled.at(0) == QLatin1Char('1');
    if (!hasPassword && enabled.at(0) != QLatin1Char('0'))
        return;
    if (!fields.cut(star, levelText) || levelText.size() != 1)
        return;
    const quint8 level = quint8(levelText.toUInt());
    if (level <= highestLevel)
        emit signalVRLockStatus(hasPassword, level);
}

// $VRPWV,password*hh
void NmeaSerialPort::parsePassword(const QString &str)
{
    QStringRef password;
    if (FieldReader(str).cut(star, password))
        emit signalVRSendPassword(password.toString());
}

// $VRFBK,n*hh
void NmeaSerialPort::parseFlashBank(const QString &str)
{
    constexpr quint32 highestBank = 2;
    quint32 bank = 0;
    if (FieldReader(str).cutNumber(star, bank) && bank <= highestBank)
        emit signalVRUsedFlashBank(bank);
}

void NmeaSerialPort::parseAisMessage(const QString &str)
{
    emit signalVRAISMessage(str);
}

void NmeaSerialPort::parseAisPosition(const QString &str)
{
    emit signalVRAISPosition(str);
}
