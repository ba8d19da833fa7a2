#include "simulator/instruments/aisreplay.h"
#include "simulator/line/sentence.h"
#include "simulator/router/aiscopy.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace tk7sim;

/*! AIS sentences, as the router wraps them, and files of them that an input hears. */
class TestSimAisReplay : public QObject
{
    Q_OBJECT

private slots:
    void wraps_data();
    void wraps();
    void leavesOut_data();
    void leavesOut();
    void survivesAnything();
    void countsLines();
    void keepsItsPace_data();
    void keepsItsPace();
    void beginsAnew();
    void forgetsALongGap();
    void loads();
    void refuses_data();
    void refuses();
};

namespace {

const QByteArray report = "!AIVDM,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0*5C";

QByteArray sentence(const QByteArray &body)
{
    return withChecksum(body).trimmed();
}

QByteArray wrapped(const QByteArray &line, int port)
{
    return wrapAisLine(line, port).value_or("nothing");
}

} // namespace

void TestSimAisReplay::wraps_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("body");
    const QByteArray alarm = sentence("$AIALR,120534.00,026,A,V,AIS: no sensor position in use");
    QTest::newRow("VDM") << 3 << report
                         << QByteArray("$VRAIM,1,1,,3,177KQJ5000G?tO`K>RA1wUbN0TKH,0");
    QTest::newRow("port with a letter")
        << 10 << report << QByteArray("$VRAIM,1,1,,A,177KQJ5000G?tO`K>RA1wUbN0TKH,0");
    QTest::newRow("second part") << 0 << sentence("!AIVDM,2,2,1,A,88888888880,2")
                                 << QByteArray("$VRAIM,2,2,1,0,88888888880,2");
    QTest::newRow("VDO") << 11 << sentence("!AIVDO,1,1,,,15MgK45P3@G?fl0E`JbR0OwT0@MS,0")
                         << QByteArray("$VRAIO,1,1,,B,15MgK45P3@G?fl0E`JbR0OwT0@MS,0");
    QTest::newRow("ALR") << 3 << alarm
                         << QByteArray("$VRAIA,3,120534.00,026,A,V,AIS: no sensor position in use");
    QTest::newRow("base station's talker")
        << 1 << sentence("!BSVDM,1,1,,A,0,0") << QByteArray("$VRAIM,1,1,,1,0,0");
    QTest::newRow("blanks around") << 1 << '\t' + sentence("!AIVDM,1,1,,A,0,0") + " \r\n"
                                   << QByteArray("$VRAIM,1,1,,1,0,0");
    QTest::newRow("tag block") << 1 << "\\s:rx1,c:1700000000*5B\\" + sentence("!AIVDM,1,1,,A,0,0")
                               << QByteArray("$VRAIM,1,1,,1,0,0");
    QTest::newRow("checksum in small letters")
        << 3 << report.left(report.size() - 1) + 'c'
        << QByteArray("$VRAIM,1,1,,3,177KQJ5000G?tO`K>RA1wUbN0TKH,0");
    QTest::newRow("nonsense within a sentence that is whole")
        << 2 << sentence("!AIVDM,99999999999,-1,x,?,~~~ ~~~,77")
        << QByteArray("$VRAIM,99999999999,-1,x,2,~~~ ~~~,77");
    QTest::newRow("longest") << 2 << sentence("!AIVDM,1,1,,A," + QByteArray(63, '0') + ",0")
                             << "$VRAIM,1,1,,2," + QByteArray(63, '0') + ",0";
}

void TestSimAisReplay::wraps()
{
    QFETCH(int, port);
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, body);
    QCOMPARE(wrapped(line, port), body);
}

void TestSimAisReplay::leavesOut_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("blanks") << QByteArray("   ");
    QTest::newRow("wrong checksum") << report.left(report.size() - 1) + 'D';
    QTest::newRow("no checksum") << report.left(report.size() - 3);
    QTest::newRow("half a checksum") << report.left(report.size() - 1);
    QTest::newRow("no digits") << report.left(report.size() - 2) + "XY";
    QTest::newRow("something behind") << report + "0";
    QTest::newRow("torn at its begin") << report.mid(10);
    QTest::newRow("torn in its midst") << report.left(20);
    QTest::newRow("two on a line") << report + report;
    QTest::newRow("control character") << sentence("!AIVDM,1,1,,A,0\x01,0");
    QTest::newRow("zero byte") << sentence(QByteArray("!AIVDM,1,1,,A,0\0,0", 18));
    QTest::newRow("beyond ASCII") << sentence("!AIVDM,1,1,,A,\xe4,0");
    QTest::newRow("too long") << sentence("!AIVDM,1,1,,A," + QByteArray(64, '0') + ",0");
    QTest::newRow("very long") << sentence("!AIVDM,1,1,,A," + QByteArray(100000, '0') + ",0");
    QTest::newRow("a field missing") << sentence("!AIVDM,1,1,,A,0");
    QTest::newRow("a field more") << sentence("!AIVDM,1,1,,A,0,0,0");
    QTest::newRow("no payload") << sentence("!AIVDM,1,1,,A,,0");
    QTest::newRow("an alarm with a field missing") << sentence("$AIALR,120534.00,026,A,V");
    QTest::newRow("an alarm with a field more") << sentence("$AIALR,120534.00,026,A,V,x,y");
    QTest::newRow("VDM behind a dollar") << sentence("$AIVDM,1,1,,A,0,0");
    QTest::newRow("ALR behind an exclamation mark") << sentence("!AIALR,120534.00,026,A,V,x");
    QTest::newRow("another sentence") << sentence("$GPGLL,5958.4730,N,02446.2100,E");
    QTest::newRow("the router's own") << sentence("$VRAIM,1,1,,A,0,0");
    QTest::newRow("talker too long") << sentence("!AIXVDM,1,1,,A,0,0");
    QTest::newRow("only a star") << QByteArray("*");
    QTest::newRow("only a tag block") << QByteArray("\\s:rx1*1A");
    QTest::newRow("an open tag block") << "\\" + report.mid(1);
}

void TestSimAisReplay::leavesOut()
{
    QFETCH(QByteArray, line);
    for (const int port : {0, 11}) {
        QCOMPARE(wrapped(line, port), QByteArray("nothing"));
    }
}

// Every cut of a line, every byte at every place: it is wrapped into one line, or left out.
void TestSimAisReplay::survivesAnything()
{
    int wrappedLines = 0;
    for (int at = 0; at < report.size(); ++at) {
        QVERIFY(at == 0 || !wrapAisLine(report.left(at), 5));
        for (int byte = 0; byte < 256; ++byte) {
            QByteArray line = report;
            line[at] = static_cast<char>(byte);
            // With a checksum that fits, so that the line isn't turned away for that alone.
            const QByteArray body = line.left(line.indexOf('*'));
            for (const QByteArray &tried : {line, sentence(body)}) {
                const auto result = wrapAisLine(tried, 5);
                if (!result) {
                    continue;
                }
                ++wrappedLines;
                QVERIFY(result->startsWith("$VRAIM,") || result->startsWith("$VRAIO,"));
                QVERIFY(!result->contains('\n') && !result->contains('\r'));
                QVERIFY(!result->contains('*'));
                QCOMPARE(result->count(','), 6);
            }
        }
    }
    QVERIFY(wrappedLines > 1000);
}

void TestSimAisReplay::countsLines()
{
    const AisReplay replay(
        4, "# a comment\r\n\r\n" + report + "\r\n" + report + "\ntorn\n\n" + report);
    QCOMPARE(replay.port(), 4);
    QCOMPARE(replay.lineCount(), 3);
    QCOMPARE(replay.leftOut(), 1);
}

void TestSimAisReplay::keepsItsPace_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<int>("lines"); // within 10 s
    QTest::newRow("usual") << 1.0 << 101;
    QTest::newRow("half") << 0.5 << 51;
    QTest::newRow("four times") << 4.0 << 401;
}

void TestSimAisReplay::keepsItsPace()
{
    QFETCH(double, rate);
    QFETCH(int, lines);
    AisReplay replay(4, sentence("!AIVDM,1,1,,A,0,0") + '\n' + sentence("!AIVDM,1,1,,A,1,0"));
    replay.setRate(rate);
    replay.start(5000);
    QByteArrayList bodies;
    for (qint64 now = 5000; now <= 15000; now += 50) {
        while (const auto body = replay.take(now)) {
            bodies.append(*body);
        }
    }
    QCOMPARE(bodies.size(), lines);
    for (int i = 0; i < bodies.size(); ++i) {
        QCOMPARE(bodies.at(i), "!AIVDM,1,1,,A," + QByteArray::number(i % 2) + ",0");
    }
}

void TestSimAisReplay::beginsAnew()
{
    AisReplay replay(4, sentence("!AIVDM,1,1,,A,0,0") + '\n' + sentence("!AIVDM,1,1,,A,1,0"));
    for (const qint64 start : {0, 1000}) {
        replay.start(start);
        QCOMPARE(replay.take(start).value_or(""), QByteArray("!AIVDM,1,1,,A,0,0"));
        QVERIFY(!replay.take(start + 99));
    }
}

void TestSimAisReplay::forgetsALongGap()
{
    AisReplay replay(4, report);
    replay.start(0);
    int lines = 0;
    while (replay.take(3600000)) {
        ++lines;
    }
    QVERIFY(lines <= 11);
    QVERIFY(lines >= 10);
}

void TestSimAisReplay::loads()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("ais.nmea")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write(report + "\ntorn") > 0);
    file.close();
    QString error;
    const auto replay = AisReplay::load(7, file.fileName(), &error);
    QVERIFY2(replay, qPrintable(error));
    QCOMPARE(replay->port(), 7);
    QCOMPARE(replay->lineCount(), 1);
    QCOMPARE(replay->leftOut(), 1);
}

void TestSimAisReplay::refuses_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << QByteArray() << QStringLiteral("other") << QStringLiteral("other");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("file")
                           << QStringLiteral("no AIS sentence");
    QTest::newRow("random bytes") << QByteArray(4096, '\xa5') << QStringLiteral("file")
                                  << QStringLiteral("no AIS sentence");
    QTest::newRow("too long") << QByteArray(AisReplay::maxFileSize + 1, '\n')
                              << QStringLiteral("file") << QStringLiteral("too long");
    QTest::newRow("folder") << QByteArray() << QStringLiteral(".") << QStringLiteral("no file");
    QTest::newRow("endless device")
        << QByteArray() << QStringLiteral("/dev/zero") << QStringLiteral("no file");
}

void TestSimAisReplay::refuses()
{
    QFETCH(QByteArray, contents);
    QFETCH(QString, name);
    QFETCH(QString, reason);
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), contents.size());
    file.close();
    QString error;
    QVERIFY(!AisReplay::load(0, QDir(folder.path()).absoluteFilePath(name), &error));
    QVERIFY2(error.contains(reason), qPrintable(error));
}

QTEST_GUILESS_MAIN(TestSimAisReplay)
#include "tst_simaisreplay.moc"
