#include "linkrig.h"
#include "support/checkedline.h"

#include <QIODevice>
#include <QtTest>

#include <algorithm>

// The linker sends every write of the link through here.
extern "C" qint64 writeOfDevice(QIODevice *device, const char *data,
                                qint64 size) __asm__("__real__ZN9QIODevice5writeEPKcx");
extern "C" qint64 interceptedWrite(QIODevice *device, const char *data,
                                   qint64 size) __asm__("__wrap__ZN9QIODevice5writeEPKcx");

namespace {

bool failsNextWrite = false;
int writes = 0;

} // namespace

extern "C" qint64 interceptedWrite(QIODevice *device, const char *data, qint64 size)
{
    ++writes;
    if (!failsNextWrite)
        return writeOfDevice(device, data, size);
    failsNextWrite = false;
    return -1;
}

class tst_NmeaSerialPortQueue : public QObject
{
    Q_OBJECT

private slots:
    void pacing();
    void oneWriteForEachSentence();
    void queuedWhileDraining();
    void disconnectSentence();
    void disconnectWaitsForItsTurn();
    void otherSentencesDontDisconnect_data();
    void otherSentencesDontDisconnect();
    void finishesSending();
    void finishesWithoutAPort();
    void finishesWithADisconnect();
    void writeErrorLosesOneSentence();
    void writeErrorOnDisconnect();
    void encoding();
};

namespace {

constexpr int sendInterval = 25;
const QString disconnected = QStringLiteral("VRSendDisconnect()");

QString numbered(int i)
{
    return QStringLiteral("$VRQ%1\r\n").arg(i);
}

} // namespace

void tst_NmeaSerialPortQueue::pacing()
{
    constexpr int count = 100;
    // The reader's own wake-up moves an arrival; the sender never makes up for a late tick.
    constexpr qint64 slack = 60000;
    constexpr qint64 slowest = 5000000;

    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    const int before = int(rig.pty().lines().size());
    const qint64 queuedAt = rig.pty().micros();
    for (int i = 0; i < count; ++i)
        QVERIFY(rig.link()->sendSentence(numbered(i)));
    QTRY_VERIFY_WITH_TIMEOUT(rig.pty().lines().size() >= before + count, int(slowest / 1000));

    const QVector<PtyPair::Line> lines = rig.pty().lines().mid(before, count);
    for (int i = 0; i < count; ++i) {
        const PtyPair::Line &line = lines.at(i);
        QCOMPARE(line.text, numbered(i).toLatin1());
        const qint64 due = qint64(i) * sendInterval * 1000;
        QVERIFY2(line.micros - queuedAt >= due - slack,
                 qPrintable(QStringLiteral("line %1 after %2 us").arg(i).arg(line.micros)));
    }
    // The shortest run of twenty tells the interval: a busy machine only makes runs longer.
    constexpr int run = 20;
    qint64 shortest = slowest;
    for (int i = run; i < count; ++i)
        shortest = std::min(shortest, lines.at(i).micros - lines.at(i - run).micros);
    const double interval = double(shortest) / run / 1000;
    QVERIFY2(interval > sendInterval - 2.5 && interval < sendInterval + 2.5,
             qPrintable(QString::number(interval)));
    const double mean = double(lines.last().micros - lines.first().micros) / (count - 1) / 1000;
    QVERIFY2(mean > sendInterval - 1 && mean < sendInterval + 6, qPrintable(QString::number(mean)));
}

void tst_NmeaSerialPortQueue::oneWriteForEachSentence()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    const int before = writes;
    const QString longSentence = "$VRLNG," + QString(600, 'x') + "\r\n";
    QVERIFY(rig.link()->sendSentence(longSentence));
    QVERIFY(rig.link()->sendSentence("$VRRLD\r\n"));
    QTRY_COMPARE(rig.sentLines().last(), QStringLiteral("-> $VRRLD @115200"));
    QCOMPARE(writes - before, 2);
    QVERIFY(rig.pty().received().endsWith((longSentence + "$VRRLD\r\n").toLatin1()));
}

void tst_NmeaSerialPortQueue::queuedWhileDraining()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    const int before = int(rig.pty().lines().size());
    int next = 0;
    for (; next < 5; ++next)
        QVERIFY(rig.link()->sendSentence(numbered(next)));
    connect(&rig.pty(), &PtyPair::lineReceived, &rig, [&] {
        if (next < 15)
            rig.link()->sendSentence(numbered(next++));
    });
    QTRY_COMPARE(rig.pty().lines().size(), before + 15);
    for (int i = 0; i < 15; ++i)
        QCOMPARE(rig.pty().lines().at(before + i).text, numbered(i).toLatin1());
}

// As the tool does it: the slot closes the port at once, and the router must have been told.
void tst_NmeaSerialPortQueue::disconnectSentence()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    connect(rig.link(), &NmeaSerialPort::signalVRSendDisconnect, rig.link(),
            &NmeaSerialPort::closePort);
    QVERIFY(rig.link()->sendSentence("$VRDCN\r\n"));
    QVERIFY(rig.link()->sendSentence("$VRRLD\r\n"));
    QTRY_VERIFY(rig.journal().contains(disconnected));
    QTRY_VERIFY(rig.pty().received().endsWith("$VRDCN\r\n"));
    QVERIFY(!rig.link()->sendSentence("$VRRLD\r\n"));
    QTest::qWait(4 * sendInterval);
    QVERIFY(rig.pty().received().endsWith("$VRDCN\r\n"));
    QCOMPARE(rig.journal().count(disconnected), 1);
}

void tst_NmeaSerialPortQueue::disconnectWaitsForItsTurn()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    for (int i = 0; i < 4; ++i)
        QVERIFY(rig.link()->sendSentence(numbered(i)));
    QVERIFY(rig.link()->sendSentence("$VRDCN\r\n"));
    QTRY_VERIFY(rig.journal().contains(disconnected));
    QTRY_VERIFY(rig.pty().received().endsWith(
        (numbered(0) + numbered(1) + numbered(2) + numbered(3) + "$VRDCN\r\n").toLatin1()));
    QVERIFY(rig.journal().timeOf(disconnected) >= rig.journal().timeOf("-> $VRQ3 @115200"));
}

void tst_NmeaSerialPortQueue::otherSentencesDontDisconnect_data()
{
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<int>("signalled");
    QTest::newRow("with its CR LF") << "$VRDCN\r\n" << 1;
    QTest::newRow("with more behind") << "$VRDCN\r\n$VRRLD\r\n" << 1;
    QTest::newRow("without CR") << "$VRDCN\n" << 0;
    QTest::newRow("with a field") << "$VRDCN,\r\n" << 0;
    QTest::newRow("lower case") << "$vrdcn\r\n" << 0;
    QTest::newRow("not at the start") << "$VRRLD\r\n$VRDCN\r\n" << 0;
}

void tst_NmeaSerialPortQueue::otherSentencesDontDisconnect()
{
    QFETCH(QString, sentence);
    QFETCH(int, signalled);
    LinkRig rig;
    rig.open();
    QVERIFY(rig.link()->sendSentence(sentence));
    QVERIFY(rig.link()->sendSentence("$VREND\r\n"));
    QTRY_VERIFY(rig.pty().received().endsWith((sentence + "$VREND\r\n").toLatin1()));
    QCOMPARE(rig.journal().count(disconnected), signalled);
}

// Without the event loop, at the queue's pace, and complete when the port is closed behind it.
void tst_NmeaSerialPortQueue::finishesSending()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    for (int i = 0; i < 4; ++i)
        QVERIFY(rig.link()->sendSentence(numbered(i)));
    const qint64 before = rig.pty().micros();
    rig.link()->finishSending();
    const qint64 lasted = rig.pty().micros() - before;
    rig.link()->closePort();
    QVERIFY2(lasted >= 4 * sendInterval * 1000, qPrintable(QString::number(lasted)));
    const QByteArray all = (numbered(0) + numbered(1) + numbered(2) + numbered(3)).toLatin1();
    QTRY_VERIFY(rig.pty().received().endsWith(all));
    QTest::qWait(4 * sendInterval);
    QVERIFY(rig.pty().received().endsWith(all));
}

void tst_NmeaSerialPortQueue::finishesWithoutAPort()
{
    LinkRig rig;
    rig.link()->finishSending();
    rig.open();
    QVERIFY(rig.link()->sendSentence("$VRRLD\r\n"));
    rig.link()->closePort();
    rig.link()->finishSending();
    QTest::qWait(4 * sendInterval);
    QCOMPARE(rig.pty().received(), QByteArray());
}

// The slot closes the port in the midst of it.
void tst_NmeaSerialPortQueue::finishesWithADisconnect()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    connect(rig.link(), &NmeaSerialPort::signalVRSendDisconnect, rig.link(),
            &NmeaSerialPort::closePort);
    for (const char *sentence : {"$VRONE\r\n", "$VRDCN\r\n", "$VRTWO\r\n"})
        QVERIFY(rig.link()->sendSentence(sentence));
    rig.link()->finishSending();
    QTRY_VERIFY(rig.pty().received().endsWith("$VRONE\r\n$VRDCN\r\n"));
    QTest::qWait(4 * sendInterval);
    QVERIFY(rig.pty().received().endsWith("$VRONE\r\n$VRDCN\r\n"));
}

void tst_NmeaSerialPortQueue::writeErrorLosesOneSentence()
{
    LinkRig rig;
    rig.open();
    QTRY_COMPARE(rig.pty().received(), QByteArray("$VRCNT\r\n"));
    failsNextWrite = true;
    QVERIFY(rig.link()->sendSentence("$VRONE\r\n"));
    QVERIFY(rig.link()->sendSentence("$VRTWO\r\n"));
    QTRY_COMPARE(rig.pty().received(), QByteArray("$VRCNT\r\n$VRTWO\r\n"));
    QCOMPARE(rig.journal().count("ErrorWritePort()"), 1);
    QVERIFY(!failsNextWrite);
}

void tst_NmeaSerialPortQueue::writeErrorOnDisconnect()
{
    LinkRig rig;
    rig.open();
    QTRY_COMPARE(rig.pty().received(), QByteArray("$VRCNT\r\n"));
    failsNextWrite = true;
    QVERIFY(rig.link()->sendSentence("$VRDCN\r\n"));
    QTRY_COMPARE(rig.journal().count("ErrorWritePort()"), 1);
    QVERIFY(rig.link()->sendSentence("$VREND\r\n"));
    QTRY_COMPARE(rig.pty().received(), QByteArray("$VRCNT\r\n$VREND\r\n"));
    QCOMPARE(rig.journal().count(disconnected), 0);
}

void tst_NmeaSerialPortQueue::encoding()
{
    LinkRig rig;
    rig.open();
    const QString sentence = QStringLiteral("$VRPNM,\u00e9\u20ac\r\n");
    QVERIFY(rig.link()->sendSentence(sentence));
    QTRY_COMPARE(rig.pty().received(), QByteArray("$VRCNT\r\n" + sentence.toLocal8Bit()));
}

QTEST_GUILESS_MAIN(tst_NmeaSerialPortQueue)
#include "tst_nmeaserialport_queue.moc"
