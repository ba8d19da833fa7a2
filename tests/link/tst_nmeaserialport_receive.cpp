#include "linkrig.h"
#include "support/checkedline.h"

#include <QEventLoop>
#include <QTimer>
#include <QtTest>

/*! Bytes that come in over a real port: blocks, nested event loops, ends from inside a slot. */
class tst_NmeaSerialPortReceive : public QObject
{
    Q_OBJECT

private slots:
    void wholeDownload();
    void longBurstKeepsItsOrder();
    void lineInPieces();
    void eightBitClean();
    void boxInASlot();
    void burstBehindABox_data();
    void burstBehindABox();
    void boxInAConfigurationSlot();
    void closedInTheMidstOfABlock();
    void deletedInTheMidstOfABlock();
    void laterInTheMidstOfABlock();
};

namespace {

QString plain(int i)
{
    return QStringLiteral("NMEA_receive(\"$PLAIN,%1\\r\\n\")").arg(i);
}

QByteArray plainLines(int from, int to)
{
    QByteArray lines;
    for (int i = from; i < to; ++i)
        lines += "$PLAIN," + QByteArray::number(i) + "\r\n";
    return lines;
}

QStringList plainJournal(int from, int to)
{
    QStringList all;
    for (int i = from; i < to; ++i)
        all += plain(i);
    return all;
}

} // namespace

void tst_NmeaSerialPortReceive::wholeDownload()
{
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    rig.journal().clear();
    QSignalSpy rules(rig.link(), &NmeaSerialPort::signalVRNewRule);
    QSignalSpy masks(rig.link(), &NmeaSerialPort::signalVRNewFilterMask);
    QSignalSpy headers(rig.link(), &NmeaSerialPort::signalVRNewHdr);
    QSignalSpy end(rig.link(), &NmeaSerialPort::signalVRUpdateVRData);
    QByteArray download;
    for (int port = 0; port < 12; ++port) {
        const QByteArray head = QByteArray::number(port) + ",0,";
        download += checkedLine("$VRRUL," + head + QByteArray(48, '1'));
        download += checkedLine("$VRFLT," + head + "0," + QByteArray(48, 'F'));
        download += checkedLine("$VRFLT," + head + "6," + QByteArray(48, 'F'));
        download += checkedLine("$VRHDC," + head + "GP,GP,GP,GP,GP,GP,GP,GP,GP,GP,GP,GP");
    }
    download += "$VRWBL\r\n";
    QVERIFY(rig.pty().write(download));
    QVERIFY(end.count() == 1 || end.wait());
    QCOMPARE(rules.count(), 144);
    QCOMPARE(masks.count(), 144);
    QCOMPARE(headers.count(), 144);
    QCOMPARE(rules.last(), (QVariantList{quint8(11), 11, quint8(0x11), quint8(0x11)}));
    QVERIFY(!rig.journal().contains("CommandCRSError()"));
}

void tst_NmeaSerialPortReceive::longBurstKeepsItsOrder()
{
    constexpr int blocks = 30;
    constexpr int linesInBlock = 100;
    LinkRig rig;
    rig.open();
    QTRY_COMPARE(rig.sentLines().size(), 1);
    rig.journal().clear();
    for (int block = 0; block < blocks; ++block) {
        const int from = block * linesInBlock;
        QVERIFY(rig.pty().write(plainLines(from, from + linesInBlock)));
        QTRY_VERIFY(rig.journal().contains(plain(from + linesInBlock - 1)));
    }
    const QStringList heard = rig.journal().texts().filter("NMEA_receive");
    QCOMPARE(heard, plainJournal(0, blocks * linesInBlock));
}

void tst_NmeaSerialPortReceive::lineInPieces()
{
    LinkRig rig;
    rig.open();
    QTRY_COMPARE(rig.sentLines().size(), 1);
    const QByteArray line = checkedLine("$VRVER,3.4");
    QSignalSpy version(rig.link(), &NmeaSerialPort::signalVRVersion);
    for (const char byte : line) {
        QCOMPARE(version.count(), 0);
        QVERIFY(rig.pty().write(QByteArray(1, byte)));
        QTest::qWait(1);
    }
    QTRY_COMPARE(version.count(), 1);
}

void tst_NmeaSerialPortReceive::eightBitClean()
{
    LinkRig rig;
    rig.open();
    QTRY_COMPARE(rig.sentLines().size(), 1);
    QByteArray noise;
    for (int code = 0; code <= 0xff; ++code)
        noise.append(char(code));
    noise.replace('$', '?').replace('!', '?');
    // None of these may stop or change the stream: not XON and XOFF, nor the codes of a terminal.
    QVERIFY(rig.pty().write(noise + "$PLAIN,1\x03\x11\x13\x1a\x7f\xff\r\n"));
    const QString expected =
        QStringLiteral("NMEA_receive(\"$PLAIN,1\u0003\u0011\u0013\u001a\u007f\ufffd"
                       "\\r\\n\")");
    QTRY_VERIFY(rig.journal().contains(expected));
}

// The box of a slot runs its own event loop: what comes meanwhile is read and heard in it.
void tst_NmeaSerialPortReceive::boxInASlot()
{
    LinkRig rig;
    rig.open();
    QTRY_COMPARE(rig.sentLines().size(), 1);
    rig.journal().clear();
    QEventLoop box;
    bool timedOut = false;
    connect(rig.link(), &NmeaSerialPort::signalVRUpdateVRData, &rig, [&] {
        rig.pty().write(plainLines(50, 100));
        QTimer::singleShot(5000, &box, [&] {
            timedOut = true;
            box.quit();
        });
        box.exec();
        rig.journal().note("box closed");
    });
    connect(rig.link(), &NmeaSerialPort::signalNMEA_receive, &box, [&](const QString &line) {
        if (line.contains(",99\r"))
            box.quit();
    });
    QVERIFY(rig.pty().write("$VRWBL\r\n" + plainLines(0, 50)));
    QTRY_VERIFY(rig.journal().contains("box closed"));
    QVERIFY(!timedOut);
    QVERIFY(rig.pty().write(plainLines(100, 120)));
    QTRY_VERIFY(rig.journal().contains(plain(119)));
    const QStringList heard = rig.journal().texts().filter(QRegularExpression("^(NMEA|VRU|box)"));
    QCOMPARE(heard,
             QStringList{"VRUpdateVRData()"} + plainJournal(0, 100) + QStringList{"box closed"}
                 + plainJournal(100, 120));
}

void tst_NmeaSerialPortReceive::burstBehindABox_data()
{
    QTest::addColumn<QByteArray>("burst");
    QTest::addColumn<int>("boxes");
    const QByteArray last = checkedLine("$VRVER,3.4");
    QTest::newRow("in the same read") << "$VRWBL\r\n" + last << 1;
    QTest::newRow("in later reads") << "$VRWBL\r\n" + plainLines(0, 100) + last << 1;
    QTest::newRow("behind a full read") << "$VRWBL\r\n$" + QByteArray(86, 'x') + last << 1;
    QTest::newRow("behind three boxes") << QByteArray("$VRWBL\r\n").repeated(3) + last << 3;
    QTest::newRow("between plain lines")
        << plainLines(0, 3) + "$VRWBL\r\n" + plainLines(3, 6) + last << 1;
}

// What came in one piece with the sentence of a box is heard in the box, without another byte. In a
// connection, where no tick comes by for two seconds and reads it.
void tst_NmeaSerialPortReceive::burstBehindABox()
{
    QFETCH(QByteArray, burst);
    QFETCH(int, boxes);
    LinkRig rig(LinkRig::routerAt(4800));
    QVERIFY(rig.openAndConnect());
    rig.journal().clear();
    bool timedOut = false;
    connect(rig.link(), &NmeaSerialPort::signalVRUpdateVRData, &rig, [&] {
        QEventLoop box;
        connect(rig.link(), &NmeaSerialPort::signalVRVersion, &box, &QEventLoop::quit);
        QTimer::singleShot(1000, &box, [&] {
            timedOut = true;
            box.quit();
        });
        box.exec();
        rig.journal().note("box closed");
    });
    QVERIFY(rig.pty().write(burst));
    QTRY_COMPARE(rig.journal().count("box closed"), boxes);
    QVERIFY(!timedOut);
    const QStringList heard = rig.journal().texts().filter(QRegularExpression("^(VRU|VRVer|box)"));
    QStringList expected;
    for (int i = 0; i < boxes; ++i)
        expected += "VRUpdateVRData()";
    expected += "VRVersion(3, 4)";
    for (int i = 0; i < boxes; ++i)
        expected += "box closed";
    QCOMPARE(heard, expected);
}

// The box stands within the first of twelve signals of one sentence; the others follow behind it.
void tst_NmeaSerialPortReceive::boxInAConfigurationSlot()
{
    LinkRig rig;
    rig.open();
    QTRY_COMPARE(rig.sentLines().size(), 1);
    rig.journal().clear();
    QEventLoop box;
    bool shown = false;
    connect(rig.link(), &NmeaSerialPort::signalVRNewHdr, &rig, [&] {
        if (shown)
            return;
        shown = true;
        rig.pty().write(plainLines(1, 2));
        box.exec();
    });
    connect(rig.link(), &NmeaSerialPort::signalNMEA_receive, &box, [&](const QString &line) {
        if (line.contains(",1\r"))
            box.quit();
    });
    QVERIFY(rig.pty().write(checkedLine("$VRHDC,9,0,,,,,,,,,,,,AI") + plainLines(0, 1)));
    QTRY_VERIFY(rig.journal().contains("VRNewHdr(9, 11, \"AI\")"));
    const QStringList heard = rig.journal().texts().filter(QRegularExpression("^(NMEA|VRNew)"));
    QCOMPARE(heard.size(), 14);
    QCOMPARE(heard.mid(0, 4),
             (QStringList{"VRNewHdr(9, 0, \"\")", plain(0), plain(1), "VRNewHdr(9, 1, \"\")"}));
}

void tst_NmeaSerialPortReceive::closedInTheMidstOfABlock()
{
    LinkRig rig;
    rig.open();
    QTRY_COMPARE(rig.sentLines().size(), 1);
    rig.journal().clear();
    connect(rig.link(), &NmeaSerialPort::signalVRUpdateVRData, rig.link(),
            &NmeaSerialPort::closePort);
    QSignalSpy end(rig.link(), &NmeaSerialPort::signalVRUpdateVRData);
    QVERIFY(rig.pty().write("$VRWBL\r\n$VRWBL\r\n" + plainLines(0, 100)));
    QVERIFY(end.wait());
    QSignalSpy more(rig.link(), &NmeaSerialPort::signalNMEA_receive);
    QVERIFY(!more.wait(200));
    QCOMPARE(end.count(), 1);
    // Only the piece that had been read before the port was closed is still cut into lines.
    const int heard = int(rig.journal().texts().filter("NMEA_receive").size());
    QVERIFY2(heard <= 95 / 10, qPrintable(QString::number(heard)));
    QVERIFY(!rig.link()->sendSentence("$VRRLD\r\n"));
}

void tst_NmeaSerialPortReceive::deletedInTheMidstOfABlock()
{
    PtyPair pty;
    auto *link = new NmeaSerialPort;
    LinkJournal journal(link);
    connect(link, &NmeaSerialPort::signalVRUpdateVRData, &journal, [&] {
        link->closePort();
        delete link;
    });
    QSignalSpy gone(link, &QObject::destroyed);
    link->openPort(pty.slavePath());
    QTRY_COMPARE(pty.lines().size(), 1);
    QVERIFY(pty.write("$VRWBL\r\n" + plainLines(0, 100)));
    QVERIFY(gone.count() == 1 || gone.wait());
    QCOMPARE(journal.texts(), QStringList{"VRUpdateVRData()"});
}

// deleteLater within a box, by a line of the same block, which the box's own event loop carries
// out.
void tst_NmeaSerialPortReceive::laterInTheMidstOfABlock()
{
    PtyPair pty;
    auto *link = new NmeaSerialPort;
    LinkJournal journal(link);
    QEventLoop box;
    connect(link, &NmeaSerialPort::signalVRUpdateVRData, &journal, [&] {
        connect(link, &NmeaSerialPort::signalNMEA_receive, link, [link] {
            link->closePort();
            link->deleteLater();
        });
        connect(link, &QObject::destroyed, &box, &QEventLoop::quit);
        box.exec();
        journal.note("box closed");
    });
    link->openPort(pty.slavePath());
    QTRY_COMPARE(pty.lines().size(), 1);
    QVERIFY(pty.write("$VRWBL\r\n" + plainLines(0, 100)));
    QTRY_VERIFY(journal.contains("box closed"));
    // Only the piece that had been read before the port was closed.
    const QStringList heard = journal.texts();
    QVERIFY2(heard.size() > 2 && heard.size() <= 2 + 95 / 10, qPrintable(heard.join(' ')));
    QCOMPARE(heard,
             QStringList{"VRUpdateVRData()"} + plainJournal(0, int(heard.size()) - 2)
                 + QStringList{"box closed"});
}

QTEST_GUILESS_MAIN(tst_NmeaSerialPortReceive)
#include "tst_nmeaserialport_receive.moc"
