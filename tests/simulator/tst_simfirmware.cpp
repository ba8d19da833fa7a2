#include "simulator/line/sentence.h"
#include "simulator/router/firmwareupdate.h"
#include "simulator/router/routersimulator.h"

#include "terminalclient.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

using namespace tk7sim;

/*! A new firmware, packet by packet, from the image alone to the router that starts with it. */
class TestSimFirmware : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void packets_data();
    void packets();
    void sizes_data();
    void sizes();
    void tooBig();
    void header_data();
    void header();

    void arrivesAndRuns();
    void isKeptUntilItIsUsed();
    void bigImageArrives();
    void pace();
    void badSequence_data();
    void badSequence();
    void badPacketEndsIt_data();
    void badPacketEndsIt();
    void noFirmware_data();
    void noFirmware();
    void beginsAnew();
    void leftoversAreIgnored();
    void lateWordsAreForgotten();
    void forgottenPlansRunNoTimer();
    void flashTakesItsTime();
    void packetBeforeItIsReady();
    void endOfConnectionEndsIt();
    void hearsNothingWhileItReboots();
    void showsNoTraffic();

    void faults_data();
    void faults();
    void lateWords();
    void worksAfterEveryFault_data();
    void worksAfterEveryFault();

private:
    void connectTool();
    void say(const QByteArray &line);
    QByteArray ask(const QByteArray &line);
    QByteArray nextWord();
    QByteArrayList upload(const QByteArray &image);

    std::unique_ptr<RouterSimulator> m_router;
    std::unique_ptr<TerminalClient> m_tool;
    int m_wordsTaken = 0;
};

namespace {

constexpr int timeout = 10000;
constexpr int packetSize = 32;

const QByteArray start = "$VRFWS\r\n";
const QByteArray ready = "$VRFWR\r\n";
const QByteArray end = "$VRFWF\r\n";
const QByteArray whole = "$VRFWO\r\n";
const QByteArray use = "$VRFWW\r\n";

QByteArray makeImage(int size, const QByteArray &version = QByteArray("\4\1", 2),
                     const QByteArray &mode = QByteArray(2, '\0'))
{
    QByteArray image = "fwVR48--------" + version + mode;
    QRandomGenerator random(99);
    while (image.size() < size) {
        image.append(static_cast<char>(random.bounded(256)));
    }
    image.truncate(size);
    return image;
}

QByteArray packetBody(const QByteArray &image, int number)
{
    const QByteArray bytes = image.mid((number - 1) * packetSize, packetSize);
    return "$VRFWP," + QByteArray::number(number) + ',' + bytes.toHex().toUpper();
}

QByteArray packet(const QByteArray &image, int number)
{
    return withChecksum(packetBody(image, number));
}

QByteArray acknowledgement(int number)
{
    return withChecksum("$VRFWP," + QByteArray::number(number));
}

QByteArray error(int code)
{
    return withChecksum("$VRFWE," + QByteArray::number(code));
}

int packetCount(const QByteArray &image)
{
    return int((image.size() + packetSize - 1) / packetSize);
}

} // namespace

void TestSimFirmware::init()
{
    m_router = std::make_unique<RouterSimulator>();
    m_router->setFlashDuration(0);
    m_router->setRebootDuration(50);
    m_router->setStartSpeed(RouterSimulator::fastSpeed);
    m_tool = std::make_unique<TerminalClient>();
    QVERIFY2(m_router->open(), qPrintable(m_router->errorString()));
    QVERIFY(m_tool->open(m_router->deviceName()));
    connectTool();
}

void TestSimFirmware::cleanup()
{
    m_tool.reset();
    m_router.reset();
}

void TestSimFirmware::connectTool()
{
    QVERIFY(m_tool->setSpeed(RouterSimulator::fastSpeed));
    m_tool->clear();
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE(m_tool->received(), withChecksum("$VRCNU,0"));
    m_tool->clear();
    m_wordsTaken = 0;
}

// Sends, and waits until the router has heard it.
void TestSimFirmware::say(const QByteArray &line)
{
    QSignalSpy heard(m_router.get(), &RouterSimulator::lineReceived);
    QVERIFY(m_tool->write(line));
    QTRY_COMPARE_WITH_TIMEOUT(heard.count(), 1, timeout);
}

// The next whole line from the router that wasn't taken before.
QByteArray TestSimFirmware::nextWord()
{
    const auto hasWord = [this] {
        const auto lines = m_tool->lines();
        return lines.size() > m_wordsTaken && lines.at(m_wordsTaken).endsWith('\n');
    };
    QSignalSpy changed(m_tool.get(), &TerminalClient::changed);
    while (!hasWord()) {
        if (!changed.wait(timeout)) {
            return QByteArray();
        }
    }
    return m_tool->lines().at(m_wordsTaken++);
}

QByteArray TestSimFirmware::ask(const QByteArray &line)
{
    return m_tool->write(line) ? nextWord() : QByteArray();
}

// As a tool does it: each packet when the one before is acknowledged by its number. Everything
// that was heard; the last word is not what was hoped for, or tells that all is well.
QByteArrayList TestSimFirmware::upload(const QByteArray &image)
{
    QByteArrayList heard{ask(start)};
    if (heard.constLast() != ready) {
        return heard;
    }
    for (int number = 1; number <= packetCount(image); ++number) {
        heard.append(ask(packet(image, number)));
        if (heard.constLast() != acknowledgement(number)) {
            return heard;
        }
    }
    heard.append(ask(end));
    return heard;
}

void TestSimFirmware::packets_data()
{
    QTest::addColumn<QByteArrayList>("before");
    QTest::addColumn<QByteArrayList>("fields");
    QTest::addColumn<int>("error");
    const QByteArray full = QByteArray("0A").repeated(packetSize);
    const auto row = [](const char *name, const QByteArrayList &before,
                        const QByteArrayList &fields, FirmwareError error) {
        QTest::newRow(name) << before << fields << static_cast<int>(error);
    };
    row("first", {}, {"1", full}, FirmwareError::None);
    row("one byte", {}, {"1", "FF"}, FirmwareError::None);
    row("small digits", {}, {"1", "ff0a"}, FirmwareError::None);
    row("second", {full}, {"2", full}, FirmwareError::None);
    row("number 0", {}, {"0", full}, FirmwareError::WrongNumber);
    row("first left out", {}, {"2", full}, FirmwareError::WrongNumber);
    row("repeated", {full}, {"1", full}, FirmwareError::WrongNumber);
    row("one left out", {full}, {"3", full}, FirmwareError::WrongNumber);
    row("empty", {}, {"1", ""}, FirmwareError::WrongSize);
    row("33 bytes", {}, {"1", full + "00"}, FirmwareError::WrongSize);
    row("behind a short one", {"0102"}, {"2", full}, FirmwareError::WrongSize);
    row("half a byte", {}, {"1", "0A0"}, FirmwareError::WrongData);
    row("no digits", {}, {"1", "0G"}, FirmwareError::WrongData);
    row("no number", {}, {"", full}, FirmwareError::WrongData);
    row("negative", {}, {"-1", full}, FirmwareError::WrongData);
    row("no data field", {}, {"1"}, FirmwareError::WrongData);
    row("a field too many", {}, {"1", full, ""}, FirmwareError::WrongData);
    row("no field", {}, {}, FirmwareError::WrongData);
}

void TestSimFirmware::packets()
{
    QFETCH(QByteArrayList, before);
    QFETCH(QByteArrayList, fields);
    QFETCH(int, error);
    FirmwareImage image;
    QByteArray expected;
    for (const QByteArray &data : qAsConst(before)) {
        const QByteArray number = QByteArray::number(image.nextPacket());
        QVERIFY(image.add({number, data}) == FirmwareError::None);
        expected += QByteArray::fromHex(data);
    }
    const int next = image.nextPacket();
    QCOMPARE(static_cast<int>(image.add(fields)), error);
    if (error == 0) {
        expected += QByteArray::fromHex(fields.at(1));
    }
    QCOMPARE(image.bytes(), expected);
    QCOMPARE(image.nextPacket(), error == 0 ? next + 1 : next);
}

void TestSimFirmware::sizes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("good");
    for (const int size : {0, 5, 6, 17}) {
        QTest::addRow("%d bytes", size) << size << false;
    }
    for (const int size : {18, 31, 32, 33, 64}) {
        QTest::addRow("%d bytes", size) << size << true;
    }
}

void TestSimFirmware::sizes()
{
    QFETCH(int, size);
    QFETCH(bool, good);
    const QByteArray bytes = makeImage(size);
    FirmwareImage image;
    for (int number = 1; number <= packetCount(bytes); ++number) {
        QVERIFY(image.add(parseSentence(packet(bytes, number))->fields) == FirmwareError::None);
    }
    QCOMPARE(image.bytes(), bytes);
    QCOMPARE(image.check() == FirmwareError::None, good);
    QCOMPARE(image.header().has_value(), good);
}

void TestSimFirmware::tooBig()
{
    const QByteArray full = QByteArray("00").repeated(packetSize);
    FirmwareImage image;
    for (int number = 1; number <= FirmwareImage::maxSize / packetSize; ++number) {
        QVERIFY(image.add({QByteArray::number(number), full}) == FirmwareError::None);
    }
    QCOMPARE(image.bytes().size(), FirmwareImage::maxSize);
    const QByteArray next = QByteArray::number(image.nextPacket());
    QVERIFY(image.add({next, "00"}) == FirmwareError::TooBig);
    QCOMPARE(image.bytes().size(), FirmwareImage::maxSize);
}

void TestSimFirmware::header_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("good");
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");
    QTest::addColumn<QByteArray>("mode");
    const auto row = [](const char *name, const QByteArray &bytes, bool good, int major, int minor,
                        const QByteArray &mode) {
        QTest::newRow(name) << bytes << good << major << minor << mode;
    };
    const QByteArray front = "fwVR48abcdefgh";
    const auto tail = [](int majorVersion, int minorVersion, int first, int second) {
        const char fields[] = {char(majorVersion), char(minorVersion), char(first), char(second)};
        return QByteArray(fields, sizeof fields);
    };
    row("no mode", front + tail(4, 1, 0, 0), true, 4, 1, "");
    row("no mode, whatever follows", front + tail(4, 1, 0, 'X'), true, 4, 1, "");
    row("mode of one letter", front + tail(3, 5, 'N', 0), true, 3, 5, "N");
    row("mode of two letters", front + tail(3, 5, 'N', '7'), true, 3, 5, "N7");
    row("mode that is no text", front + tail(3, 5, '*', '\r'), true, 3, 5, "");
    row("great numbers", front + tail(255, 128, 0, 0), true, 255, 128, "");
    row("bytes behind it", front + tail(4, 1, 0, 0) + "more", true, 4, 1, "");
    row("another beginning", "fwVR49abcdefgh" + tail(4, 1, 0, 0), false, 0, 0, "");
    row("a byte too few", front + tail(4, 1, 0, 0).left(3), false, 0, 0, "");
}

void TestSimFirmware::header()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, good);
    QFETCH(int, major);
    QFETCH(int, minor);
    QFETCH(QByteArray, mode);
    FirmwareImage image;
    QVERIFY(image.add({"1", bytes.toHex()}) == FirmwareError::None);
    const auto header = image.header();
    QCOMPARE(header.has_value(), good);
    if (good) {
        QCOMPARE(header->versionMajor, major);
        QCOMPARE(header->versionMinor, minor);
        QCOMPARE(header->mode, mode);
    }
}

void TestSimFirmware::arrivesAndRuns()
{
    m_router->setStartSpeed(19200);
    m_router->setFlashBank(0);
    m_router->setLockPassword("Owner1");
    QSignalSpy started(m_router.get(), &RouterSimulator::updateStarted);
    QSignalSpy received(m_router.get(), &RouterSimulator::firmwareReceived);
    QSignalSpy rebooting(m_router.get(), &RouterSimulator::rebooting);
    QSignalSpy rebooted(m_router.get(), &RouterSimulator::rebooted);
    connect(m_router.get(), &RouterSimulator::rebooting, this, [this] {
        QVERIFY(m_router->isRebooting());
        QVERIFY(!m_router->isConnected());
        QCOMPARE(m_router->speed(), 19200);
    });
    const QByteArray image = makeImage(70, QByteArray("\4\2", 2), "S1");
    QCOMPARE(
        upload(image),
        QByteArrayList({ready, acknowledgement(1), acknowledgement(2), acknowledgement(3), whole}));
    QCOMPARE(started.count(), 1);
    QCOMPARE(received.count(), 1);
    QCOMPARE(received.constFirst().constFirst().toByteArray(), image);
    QCOMPARE(m_router->firmwareImage(), image);
    QCOMPARE(m_router->firmwarePackets(), 3);
    QCOMPARE(m_router->version(), QByteArray("3.5"));
    QVERIFY(m_router->isConnected());

    QVERIFY(m_tool->write(use));
    QTRY_COMPARE(rebooted.count(), 1);
    QCOMPARE(rebooting.count(), 1);
    QVERIFY(!m_router->isRebooting());
    QCOMPARE(m_router->version(), QByteArray("4.2"));
    QCOMPARE(m_router->mode(), QByteArray("S1"));
    QCOMPARE(m_router->flashBank(), 1);
    QCOMPARE(m_router->lockPassword(), QByteArray("Owner1"));
    QCOMPARE(m_router->firmwareImage(), image);

    QVERIFY(m_tool->setSpeed(19200));
    m_tool->clear();
    QVERIFY(m_tool->write("$VRCNT\r\n"));
    QTRY_COMPARE(m_router->speed(), RouterSimulator::fastSpeed);
    connectTool();
    QCOMPARE(ask("$VRVER\r\n"), withChecksum("$VRVER,4.2"));
}

void TestSimFirmware::isKeptUntilItIsUsed()
{
    const QByteArray image = makeImage(40);
    QCOMPARE(upload(image).constLast(), whole);
    say("$VRDCN\r\n");
    QTRY_VERIFY(!m_router->isConnected());
    connectTool();
    say(use); // belongs to nothing any more
    QVERIFY(!m_router->isRebooting());
    QCOMPARE(m_router->version(), QByteArray("3.5"));
    QCOMPARE(m_router->counters().refusedSentences, 1U);
    QCOMPARE(m_router->firmwareImage(), image);
}

void TestSimFirmware::bigImageArrives()
{
    const QByteArray image = makeImage(20000);
    const QByteArrayList heard = upload(image);
    QCOMPARE(heard.size(), packetCount(image) + 2);
    QCOMPARE(heard.constLast(), whole);
    QCOMPARE(m_router->firmwareImage(), image);
}

// An acknowledgement goes out at once, before the router does anything else.
void TestSimFirmware::pace()
{
    QCOMPARE(ask(start), ready);
    QSignalSpy heard(m_router.get(), &RouterSimulator::lineReceived);
    bool isTurnOver = false;
    bool isAtOnce = false;
    connect(m_router.get(), &RouterSimulator::lineReceived, this, [&] {
        QMetaObject::invokeMethod(
            this, [&] { isTurnOver = true; }, Qt::QueuedConnection);
    });
    connect(m_router.get(), &RouterSimulator::lineSent, this,
            [&] { isAtOnce = heard.count() == 1 && !isTurnOver; });
    QCOMPARE(ask(packet(makeImage(packetSize), 1)), acknowledgement(1));
    QVERIFY(isAtOnce);
    QVERIFY(isTurnOver);
}

void TestSimFirmware::badSequence_data()
{
    QTest::addColumn<QByteArrayList>("lines");
    QTest::addColumn<QByteArray>("answer");
    const QByteArray image = makeImage(70);
    const auto row = [](const char *name, const QByteArrayList &lines, int code) {
        QTest::newRow(name) << lines << error(code);
    };
    row("second packet first", {packet(image, 2)}, 3);
    row("a packet twice", {packet(image, 1), packet(image, 1)}, 3);
    row("a packet left out", {packet(image, 1), packet(image, 3)}, 3);
    row("behind the last",
        {packet(image, 1), packet(image, 2), packet(image, 3), withChecksum("$VRFWP,4,00")}, 4);
    row("end without a packet", {end}, 8);
    row("end in the header", {withChecksum("$VRFWP,1,667756523438"), end}, 8);
}

void TestSimFirmware::badSequence()
{
    QFETCH(QByteArrayList, lines);
    QFETCH(QByteArray, answer);
    QCOMPARE(ask(start), ready);
    for (int i = 0; i < lines.size(); ++i) {
        const QByteArray word = ask(lines.at(i));
        QCOMPARE(word, i == lines.size() - 1 ? answer : acknowledgement(i + 1));
    }
    QVERIFY(!m_router->isUpdating());
    QVERIFY(m_router->firmwareImage().isEmpty());
    QVERIFY(m_router->isConnected());
    QCOMPARE(upload(makeImage(70)).constLast(), whole);
}

void TestSimFirmware::badPacketEndsIt_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("answer");
    const QByteArray body = packetBody(makeImage(70), 1);
    QTest::newRow("wrong checksum") << withWrongChecksum(body) << error(6);
    QTest::newRow("a digit hit on the way") << withChecksum(body).replace("77", "76") << error(6);
    QTest::newRow("33 bytes") << withChecksum(body + "00") << error(4);
    QTest::newRow("half a byte") << withChecksum(body.chopped(1)) << error(5);
    QTest::newRow("no bytes") << withChecksum("$VRFWP,1,") << error(4);
    QTest::newRow("no data field") << withChecksum("$VRFWP,1") << error(5);
}

void TestSimFirmware::badPacketEndsIt()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, answer);
    QCOMPARE(ask(start), ready);
    QVERIFY(m_router->isUpdating());
    QCOMPARE(ask(line), answer);
    QVERIFY(!m_router->isUpdating());
    QCOMPARE(m_router->firmwarePackets(), 0);
    QCOMPARE(upload(makeImage(70)).constLast(), whole);
}

void TestSimFirmware::noFirmware_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::newRow("foreign") << QByteArray("no firmware at all, but long enough");
    QTest::newRow("nearly") << QByteArray("fwVR4").append(40, '8').replace(5, 1, "9");
    QTest::newRow("header cut") << makeImage(17);
}

void TestSimFirmware::noFirmware()
{
    QFETCH(QByteArray, image);
    QCOMPARE(upload(image).constLast(), error(8));
    QVERIFY(m_router->firmwareImage().isEmpty());
    say(use);
    QVERIFY(!m_router->isRebooting());
}

// A request in the midst of an update, as after a tool's cancel.
void TestSimFirmware::beginsAnew()
{
    const QByteArray image = makeImage(100);
    QCOMPARE(ask(start), ready);
    QCOMPARE(ask(packet(image, 1)), acknowledgement(1));
    QCOMPARE(ask(packet(image, 2)), acknowledgement(2));
    const QByteArray other = makeImage(70, QByteArray("\5\0", 2));
    QCOMPARE(upload(other).constLast(), whole);
    QCOMPARE(m_router->firmwareImage(), other);
    // And behind a whole one that isn't used.
    QCOMPARE(upload(image).constLast(), whole);
    QCOMPARE(m_router->firmwareImage(), image);
}

void TestSimFirmware::leftoversAreIgnored()
{
    const QByteArray image = makeImage(70);
    for (const QByteArray &line : {packet(image, 1), withWrongChecksum("$VRFWP,1,00"), end, use}) {
        say(line);
    }
    QCOMPARE(ask("$VRVER\r\n"), withChecksum("$VRVER,3.5"));
    QCOMPARE(m_tool->lines().size(), 1);
    QVERIFY(!m_router->isUpdating());
}

// What one update still had to say isn't heard in the next.
void TestSimFirmware::lateWordsAreForgotten()
{
    m_router->setFault(Fault::FwLate, 60);
    const QByteArray image = makeImage(70);
    say(start);
    say(start);
    QCOMPARE(nextWord(), ready);
    say(packet(image, 1));
    say(start);
    QCOMPARE(nextWord(), ready);
    QCOMPARE(ask(packet(image, 1)), acknowledgement(1));
    QCOMPARE(m_tool->lines().size(), 3);
}

void TestSimFirmware::forgottenPlansRunNoTimer()
{
    FaultSet faults;
    FirmwareUpdate update(&faults);
    const auto isWaiting = [&] {
        const auto timers = update.findChildren<QTimer *>();
        return std::any_of(timers.cbegin(), timers.cend(),
                           [](const QTimer *timer) { return timer->isActive(); });
    };
    update.setFlashDuration(60000);
    update.start();
    QVERIFY(isWaiting());
    update.abort();
    QVERIFY(!isWaiting());
    update.setFlashDuration(0);
    faults.set(Fault::FwLate, 60000);
    update.start();
    QVERIFY(isWaiting());
    update.abort();
    QVERIFY(!isWaiting());
}

void TestSimFirmware::flashTakesItsTime()
{
    constexpr int duration = 100;
    m_router->setFlashDuration(duration);
    const QByteArray image = makeImage(20);
    qint64 begin = RouterSimulator::now();
    QCOMPARE(ask(start), ready);
    QVERIFY(RouterSimulator::now() - begin >= qint64(duration) * 1000);
    QCOMPARE(ask(packet(image, 1)), acknowledgement(1));
    begin = RouterSimulator::now();
    QCOMPARE(ask(end), whole);
    QVERIFY(RouterSimulator::now() - begin >= qint64(duration) * 1000);
}

void TestSimFirmware::packetBeforeItIsReady()
{
    m_router->setFlashDuration(60000);
    say(start);
    QVERIFY(m_router->isUpdating());
    QCOMPARE(ask(packet(makeImage(20), 1)), error(2));
    QVERIFY(!m_router->isUpdating());
    m_router->setFlashDuration(0);
    QCOMPARE(upload(makeImage(20)).constLast(), whole);
}

void TestSimFirmware::endOfConnectionEndsIt()
{
    const QByteArray image = makeImage(70);
    QCOMPARE(ask(start), ready);
    QCOMPARE(ask(packet(image, 1)), acknowledgement(1));
    say("$VRDCN\r\n");
    QVERIFY(!m_router->isUpdating());
    connectTool();
    say(packet(image, 2));
    QCOMPARE(ask("$VRVER\r\n"), withChecksum("$VRVER,3.5"));
}

void TestSimFirmware::hearsNothingWhileItReboots()
{
    m_router->setRebootDuration(1000);
    QCOMPARE(upload(makeImage(40)).constLast(), whole);
    QSignalSpy sent(m_router.get(), &RouterSimulator::lineSent);
    QSignalSpy rebooted(m_router.get(), &RouterSimulator::rebooted);
    int heard = 0;
    connect(m_router.get(), &RouterSimulator::rebooting, this, [&] {
        m_router->sendLine("anything");
        QVERIFY(m_tool->write("$VRCNT\r\n"));
    });
    connect(m_router.get(), &RouterSimulator::lineReceived, this,
            [&] { heard += m_router->isRebooting() ? 1 : 0; });
    QVERIFY(m_tool->write(use));
    QTRY_COMPARE_WITH_TIMEOUT(rebooted.count(), 1, timeout);
    QCOMPARE(heard, 1);
    QCOMPARE(sent.count(), 0);
    QCOMPARE(m_router->handshakes(), 1);
    connectTool();
    QCOMPARE(m_router->handshakes(), 2);
}

void TestSimFirmware::showsNoTraffic()
{
    m_router->setTrafficRate(100);
    QCOMPARE(ask("$VRVVW,240\r\n"), QByteArray("$VRVVW,240\r\n"));
    QVERIFY(!nextWord().startsWith("$VR"));
    say(start);
    QTRY_VERIFY(m_tool->received().contains(ready));
    const QByteArray image = makeImage(640);
    m_tool->clear();
    m_wordsTaken = 0;
    for (int number = 1; number <= packetCount(image); ++number) {
        QCOMPARE(ask(packet(image, number)), acknowledgement(number));
    }
    QCOMPARE(ask(end), whole);
    QTRY_VERIFY(m_tool->received().contains("$GP"));
}

void TestSimFirmware::faults_data()
{
    QTest::addColumn<QVector<QPair<int, double>>>("faults");
    QTest::addColumn<QByteArrayList>("heard");
    QTest::addColumn<QByteArray>("behind"); // what the router still has to say then
    using Faults = QVector<QPair<int, double>>;
    const auto row = [](const char *name, const Faults &faults, const QByteArrayList &heard,
                        const QByteArray &behind = QByteArray()) {
        QTest::newRow(name) << faults << heard << behind;
    };
    const auto of = [](Fault fault, double value = 0) { return Faults{{int(fault), value}}; };
    const QByteArray a1 = acknowledgement(1);
    const QByteArray a2 = acknowledgement(2);
    const QByteArray a3 = acknowledgement(3);
    // An upload ends at the first unexpected word; an empty one stands for none.
    row("refused", of(Fault::FwRefuse), {error(1)});
    row("wrong number at 1", of(Fault::FwWrongNumber, 1), {ready, a2});
    row("wrong number at 3", of(Fault::FwWrongNumber, 3), {ready, a1, a2, acknowledgement(4)});
    row("repeat 1", of(Fault::FwRepeat, 1), {ready, a1, a1}, a2);
    row("repeat 2", of(Fault::FwRepeat, 2), {ready, a1, a2, a2}, a3);
    row("early 1", of(Fault::FwEarly, 1), {ready, a1, a2, a3, whole});
    row("early 2", of(Fault::FwEarly, 2), {ready, a1, a2, a3, whole});
    row("error at the end", of(Fault::FwError, 77), {ready, a1, a2, a3, error(77)});
    row("error at the start", of(Fault::FwErrorAt, 0), {error(7)});
    row("error at 2", of(Fault::FwErrorAt, 2), {ready, a1, error(7)});
    row("error of the greatest code at 2",
        {{int(Fault::FwErrorAt), 2}, {int(Fault::FwError), 65535}}, {ready, a1, error(65535)});
    row("error behind the last packet", of(Fault::FwErrorAt, 4), {ready, a1, a2, a3, error(7)});
    row("silent from the start", of(Fault::FwSilentAt, 0), {""});
    row("silent at 2", of(Fault::FwSilentAt, 2), {ready, a1, ""});
    row("silent behind the last packet", of(Fault::FwSilentAt, 4), {ready, a1, a2, a3, ""});
    row("beyond the end", of(Fault::FwSilentAt, 5), {ready, a1, a2, a3, whole});
}

void TestSimFirmware::faults()
{
    using Faults = QVector<QPair<int, double>>;
    QFETCH(Faults, faults);
    QFETCH(QByteArrayList, heard);
    QFETCH(QByteArray, behind);
    for (const auto &fault : qAsConst(faults)) {
        m_router->setFault(static_cast<Fault>(fault.first), fault.second);
    }
    const QByteArray image = makeImage(70);
    const QByteArrayList said = {start, packet(image, 1), packet(image, 2), packet(image, 3), end};
    for (int i = 0; i < heard.size(); ++i) {
        if (heard.at(i).isEmpty()) {
            say(said.at(i));
            break;
        }
        QCOMPARE(ask(said.at(i)), heard.at(i));
    }
    QCOMPARE(behind.isEmpty() ? QByteArray() : nextWord(), behind);
    // The router itself is as alive as ever, and has nothing more to say of the update.
    QCOMPARE(ask("$VRVER\r\n"), withChecksum("$VRVER,3.5"));
    QCOMPARE(m_router->firmwareImage().isEmpty(), heard.constLast() != whole);
}

void TestSimFirmware::lateWords()
{
    constexpr qint64 late = 100;
    m_router->setFault(Fault::FwLate, late);
    const QByteArray image = makeImage(20);
    for (const QByteArray &line : {start, packet(image, 1), end}) {
        const qint64 begin = RouterSimulator::now();
        QVERIFY(!ask(line).isEmpty());
        QVERIFY(RouterSimulator::now() - begin >= late * 1000);
    }
    QCOMPARE(m_router->firmwareImage(), image);
    // Everything else is as quick as ever.
    m_router->setFault(Fault::FwLate, 60000);
    QCOMPARE(ask("$VRVER\r\n"), withChecksum("$VRVER,3.5"));
}

void TestSimFirmware::worksAfterEveryFault_data()
{
    faults_data();
}

void TestSimFirmware::worksAfterEveryFault()
{
    faults();
    m_router->clearFaults();
    const QByteArray image = makeImage(100);
    QCOMPARE(upload(image).constLast(), whole);
    QCOMPARE(m_router->firmwareImage(), image);
}

QTEST_GUILESS_MAIN(TestSimFirmware)
#include "tst_simfirmware.moc"
