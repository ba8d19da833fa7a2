#include "linkrig.h"
#include "support/checkedline.h"

#include <QIODevice>
#include <QSerialPort>
#include <QSocketNotifier>
#include <QtTest>

// The linker sends every read of the link through here.
extern "C" qint64 readOfDevice(QIODevice *device, char *data,
                               qint64 size) __asm__("__real__ZN9QIODevice4readEPcx");
extern "C" qint64 interceptedRead(QIODevice *device, char *data,
                                  qint64 size) __asm__("__wrap__ZN9QIODevice4readEPcx");

namespace {

bool failsNextRead = false;

} // namespace

extern "C" qint64 interceptedRead(QIODevice *device, char *data, qint64 size)
{
    if (!failsNextRead)
        return readOfDevice(device, data, size);
    failsNextRead = false;
    return -1;
}

/*! Errors of the port, and slots that end the link within the very signal that tells of it. */
class tst_NmeaSerialPortFaults : public QObject
{
    Q_OBJECT

private slots:
    void settingsOfTheLine();
    void deletedAsTheOpenFails();
    void deletedAsTheSearchEnds();
    void connectedAtTheLastStep();
    void closedAsItConnects_data();
    void closedAsItConnects();
    void connectedWithoutAPort();
    void deletedByANestedBlock();
    void failedReadLosesTheLine();
    void errorOfAnOpenPort();
    void errorOfALostPortComesTwice();
    void errorOfAClosedPort();
};

namespace {

const QByteArray answer = checkedLine("$VRCNU,3");
const QByteArray version = checkedLine("$VRVER,3.4");
const QString heardVersion = QStringLiteral("VRVersion(3, 4)");
const QString connected = QStringLiteral("VRConnect(3)");
constexpr int stepsOfASearch = 6;
constexpr int lastStep = 90;
constexpr int done = 100;

void receive(NmeaSerialPort &link, const QByteArray &bytes)
{
    link.receiveBytes(bytes.constData(), int(bytes.size()));
}

QString progress(int value)
{
    return QStringLiteral("VRConnectionProgress(%1)").arg(value);
}

// Finds the serial port inside a link by the notifier that tells it of bytes.
class PortFinder : public QObject
{
public:
    PortFinder() { QCoreApplication::instance()->installEventFilter(this); }

    QSerialPort *port() const { return m_port; }

    bool eventFilter(QObject *watched, QEvent *) override
    {
        if (qobject_cast<QSocketNotifier *>(watched)) {
            if (auto *port = qobject_cast<QSerialPort *>(watched->parent()))
                m_port = port;
        }
        return false;
    }

private:
    QPointer<QSerialPort> m_port;
};

// Opens the rig's link and has it hear a line, so that the finder has met its port.
bool openAndHear(LinkRig &rig)
{
    QSignalSpy heard(rig.link(), &NmeaSerialPort::signalVRVersion);
    rig.open();
    return rig.pty().write(version) && heard.wait();
}

} // namespace

void tst_NmeaSerialPortFaults::settingsOfTheLine()
{
    const PortFinder finder;
    LinkRig rig;
    QVERIFY(openAndHear(rig));
    QVERIFY(finder.port());
    QCOMPARE(finder.port()->dataBits(), QSerialPort::Data8);
    QCOMPARE(finder.port()->parity(), QSerialPort::NoParity);
    QCOMPARE(finder.port()->stopBits(), QSerialPort::OneStop);
    QCOMPARE(finder.port()->flowControl(), QSerialPort::NoFlowControl);
    QCOMPARE(finder.port()->baudRate(QSerialPort::Input), 4800);
    QCOMPARE(finder.port()->baudRate(QSerialPort::Output), 4800);
}

void tst_NmeaSerialPortFaults::deletedAsTheOpenFails()
{
    auto *link = new NmeaSerialPort;
    LinkJournal journal(link);
    connect(link, &NmeaSerialPort::signalVRConnectionProgress, &journal, [&] {
        link->closePort();
        delete link;
    });
    QSignalSpy gone(link, &QObject::destroyed);
    link->openPort("/dev/no-such-device");
    QCOMPARE(gone.count(), 1);
    QCOMPARE(journal.texts(), QStringList{progress(done)});
}

void tst_NmeaSerialPortFaults::deletedAsTheSearchEnds()
{
    const PtyPair pty;
    auto *link = new NmeaSerialPort;
    LinkJournal journal(link);
    connect(link, &NmeaSerialPort::signalVRConnectionProgress, &journal, [&](int value) {
        if (value == done)
            delete link;
    });
    QSignalSpy gone(link, &QObject::destroyed);
    link->openPort(pty.slavePath());
    for (int step = 0; step <= stepsOfASearch; ++step)
        link->slot_connect_timer();
    QCOMPARE(gone.count(), 1);
    QCOMPARE(journal.texts().last(), progress(done));
}

// A progress dialog runs the event loop, in which the answer can come: the step is not taken then.
void tst_NmeaSerialPortFaults::connectedAtTheLastStep()
{
    const PtyPair pty;
    NmeaSerialPort link;
    const LinkJournal journal(&link);
    connect(&link, &NmeaSerialPort::signalVRConnectionProgress, &link, [&](int value) {
        if (value == lastStep)
            receive(link, answer);
    });
    link.openPort(pty.slavePath());
    for (int step = 0; step < stepsOfASearch; ++step)
        link.slot_connect_timer();
    QVERIFY(journal.contains(connected));
    QCOMPARE(pty.speed(), 115200);
    link.closePort();
}

void tst_NmeaSerialPortFaults::closedAsItConnects_data()
{
    QTest::addColumn<bool>("isBefore");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("by the progress") << true << QStringList{progress(done)};
    QTest::newRow("by the connection") << false << QStringList{progress(done), connected};
}

void tst_NmeaSerialPortFaults::closedAsItConnects()
{
    QFETCH(bool, isBefore);
    const PtyPair pty;
    NmeaSerialPort link;
    const LinkJournal journal(&link);
    if (isBefore) {
        connect(&link, &NmeaSerialPort::signalVRConnectionProgress, &link,
                &NmeaSerialPort::closePort);
    } else {
        connect(&link, &NmeaSerialPort::signalVRConnect, &link, &NmeaSerialPort::closePort);
    }
    link.openPort(pty.slavePath());
    receive(link, answer);
    receive(link, answer);
    QTEST(journal.texts(), "expected");
    QVERIFY(!link.sendSentence("$VRRLD\r\n"));
}

// There is no timer to watch such a link with.
void tst_NmeaSerialPortFaults::connectedWithoutAPort()
{
    NmeaSerialPort link;
    const LinkJournal journal(&link);
    connect(&link, &NmeaSerialPort::signalVRNMEA_receive, &link, &NmeaSerialPort::slot_VRNMEA);
    receive(link, answer + answer + version);
    QCOMPARE(journal.texts(), (QStringList{progress(done), connected, heardVersion}));
}

void tst_NmeaSerialPortFaults::deletedByANestedBlock()
{
    auto *link = new NmeaSerialPort;
    QSignalSpy gone(link, &QObject::destroyed);
    QStringList heard;
    connect(link, &NmeaSerialPort::signalNMEA_receive, this, [&](const QString &line) {
        heard += line;
        if (heard.size() == 1)
            receive(*link, "$PLAIN,3\r\n");
        else
            delete link;
    });
    receive(*link, "$PLAIN,1\r\n$PLAIN,2\r\n");
    QCOMPARE(gone.count(), 1);
    QCOMPARE(heard, (QStringList{"$PLAIN,1\r\n", "$PLAIN,2\r\n"}));
}

void tst_NmeaSerialPortFaults::failedReadLosesTheLine()
{
    LinkRig rig;
    QVERIFY(openAndHear(rig));
    rig.journal().clear();
    const QString begun = QStringLiteral("NMEA_receive(\"$PLAIN,1\\r\\n\")");
    QVERIFY(rig.pty().write("$PLAIN,1\r\n$PLAIN,"));
    QTRY_VERIFY(rig.journal().contains(begun));
    failsNextRead = true;
    QVERIFY(rig.pty().write("2\r\n"));
    QTRY_VERIFY(!failsNextRead);
    QVERIFY(rig.pty().write(version));
    QTRY_VERIFY(rig.journal().contains(heardVersion));
    QCOMPARE(rig.journal().texts().filter("NMEA_receive"), QStringList{begun});
}

void tst_NmeaSerialPortFaults::errorOfAnOpenPort()
{
    const PortFinder finder;
    LinkRig rig;
    QVERIFY(openAndHear(rig));
    QVERIFY(finder.port());
    rig.journal().clear();
    emit finder.port()->errorOccurred(QSerialPort::ReadError);
    QVERIFY(rig.pty().write(version));
    QTRY_VERIFY(rig.journal().contains(heardVersion));
    QVERIFY(rig.link()->sendSentence("$VRRLD\r\n"));
}

void tst_NmeaSerialPortFaults::errorOfALostPortComesTwice()
{
    const PortFinder finder;
    LinkRig rig;
    QVERIFY(openAndHear(rig));
    QVERIFY(finder.port());
    emit finder.port()->errorOccurred(QSerialPort::ResourceError);
    emit finder.port()->errorOccurred(QSerialPort::ResourceError);
    QVERIFY(rig.link()->sendSentence("$VRRLD\r\n"));
    QTRY_VERIFY(!rig.link()->sendSentence("$VRRLD\r\n"));
    QVERIFY(!rig.journal().contains("VRTimeOutConnect()"));
}

// The news of the old port's end, which comes late, is none of the new port.
void tst_NmeaSerialPortFaults::errorOfAClosedPort()
{
    const PortFinder finder;
    LinkRig rig;
    QVERIFY(openAndHear(rig));
    QVERIFY(finder.port());
    emit finder.port()->errorOccurred(QSerialPort::ResourceError);
    rig.journal().clear();
    QVERIFY(openAndHear(rig));
    QCOMPARE(rig.journal().count(heardVersion), 1);
    QVERIFY(rig.link()->sendSentence("$VRRLD\r\n"));
}

QTEST_GUILESS_MAIN(tst_NmeaSerialPortFaults)
#include "tst_nmeaserialport_faults.moc"
