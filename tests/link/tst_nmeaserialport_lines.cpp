#include "linkjournal.h"
#include "support/checkedline.h"

#include <QEventLoop>
#include <QTimer>
#include <QtTest>

#include <memory>

/*!
 * What the link makes of the lines of its port: which road each takes, what is too short for any,
 * how bytes become text, and what holds when a slot enters again, closes the port or deletes it.
 */
class tst_NmeaSerialPortLines : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void lines_data();
    void lines();
    void everyChunkSize();
    void closePortDropsTheLineInHand();

    void readsOnBehindASentence_data();
    void readsOnBehindASentence();
    void nestedBlockComesBehindTheRest();
    void nestedEventLoopKeepsTheOrder();
    void nestedThrice();
    void closedFromInside();
    void busyFromInside();
    void deletedFromInside_data();
    void deletedFromInside();

private:
    void feed(const QByteArray &bytes);

    std::unique_ptr<NmeaSerialPort> m_link;
    std::unique_ptr<LinkJournal> m_journal;
};

namespace {

QString shown(const QByteArray &line)
{
    return LinkJournal::quoted(QString::fromUtf8(line));
}

QString plain(const QByteArray &line)
{
    return QLatin1String("NMEA_receive(") + shown(line) + QLatin1Char(')');
}

QString proprietary(const QByteArray &line)
{
    return QLatin1String("VRNMEA_receive(") + shown(line) + QLatin1Char(')');
}

const QString sumError = QStringLiteral("CommandCRSError()");

} // namespace

void tst_NmeaSerialPortLines::init()
{
    m_link = std::make_unique<NmeaSerialPort>();
    m_journal = std::make_unique<LinkJournal>(m_link.get(), LinkJournal::WithRawLines);
}

void tst_NmeaSerialPortLines::cleanup()
{
    m_journal.reset();
    m_link.reset();
}

void tst_NmeaSerialPortLines::feed(const QByteArray &bytes)
{
    m_link->receiveBytes(bytes.constData(), int(bytes.size()));
}

void tst_NmeaSerialPortLines::lines_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QByteArray &bytes, const QStringList &expected) {
        QTest::newRow(name) << bytes << expected;
    };
    const QByteArray depth = "$SDDPT,2.4,0.5*54\r\n";
    const QByteArray heading = "$HEHDT,123.4,T*2B\r\n";
    const QByteArray ais = "!AIVDM,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0*5C\r\n";
    const QByteArray mark = "$VRWBL\r\n";

    row("nothing", QByteArray(), {});
    row("plain line with its checksum", depth, {plain(depth)});
    row("plain line without a checksum", "$SDDPT,2.4\r\n", {plain("$SDDPT,2.4\r\n")});
    row("plain line with a wrong checksum: counted, and still shown", "$SDDPT,2.4,0.5*55\r\n",
        {sumError, plain("$SDDPT,2.4,0.5*55\r\n")});
    row("plain line with a star and no number", "$SDDPT,2.4*\r\n",
        {sumError, plain("$SDDPT,2.4*\r\n")});
    row("plain line with an early star", "$A*0041\r\n", {sumError, plain("$A*0041\r\n")});
    row("line that starts with '!'", ais, {plain(ais)});
    row("proprietary line", mark, {proprietary(mark)});
    row("proprietary line with a wrong checksum isn't judged here", "$VRVER,3.4*00\r\n",
        {proprietary("$VRVER,3.4*00\r\n")});
    row("proprietary head in lower case is a plain line", "$vrwbl\r\n", {plain("$vrwbl\r\n")});
    row("'!VR' is a plain line", "!VRWBL\r\n", {plain("!VRWBL\r\n")});
    row("other maker's proprietary line is a plain line", "$PVRWB\r\n", {plain("$PVRWB\r\n")});

    row("two lines", depth + mark, {plain(depth), proprietary(mark)});
    row("5 bytes are too short", "$ABC\n", {});
    row("6 bytes are enough", "$ABCD\n", {plain("$ABCD\n")});
    row("6 bytes with CR", "$ABC\r\n", {plain("$ABC\r\n")});
    row("5 bytes, proprietary", "$VRA\n", {});
    row("6 bytes, proprietary", "$VRAB\n", {proprietary("$VRAB\n")});
    row("the head of all proprietary lines, 6 bytes", "$VR\r\r\n", {proprietary("$VR\r\r\n")});
    row("'$' and LF", "$\n", {});
    const QByteArray plain95 = "$SD" + QByteArray(91, 'x') + '\n';
    const QByteArray vr95 = "$VRXYZ," + QByteArray(87, 'x') + '\n';
    row("95 bytes", plain95, {plain(plain95)});
    row("95 bytes, proprietary", vr95, {proprietary(vr95)});

    const auto nul = [](const QByteArray &text) { return QByteArray(text).replace('@', '\0'); };
    row("NUL ends the text", nul("$SDDPT,2.4@,0.5\r\n"), {plain("$SDDPT,2.4")});
    row("NUL behind the digits keeps them", nul("$SDDPT,2.4,0.5*54@\r\n"),
        {plain("$SDDPT,2.4,0.5*54")});
    row("NUL before the star hides it", nul("$SDDPT,2.4@*00\r\n"), {plain("$SDDPT,2.4")});
    row("NUL leaves 5 characters, too few", nul("$SDDP@T,2.4\r\n"), {});
    row("NUL leaves 6 characters, enough", nul("$SDDPT@,2.4\r\n"), {plain("$SDDPT")});
    row("NUL right behind the '$'", nul("$@SDDPT,2.4\r\n"), {});
    row("NUL cuts a proprietary line", nul("$VRWBL@\r\n"), {proprietary("$VRWBL")});

    row("UTF-8 letter is one character", "$VRPNM,\xc3\xa9\r\n",
        {QStringLiteral("VRNMEA_receive(\"$VRPNM,\u00e9\\r\\n\")")});
    row("invalid UTF-8 becomes replacement characters", "$SDD\xff\xfe,2\r\n",
        {QStringLiteral("NMEA_receive(\"$SDD\ufffd\ufffd,2\\r\\n\")")});
    row("torn UTF-8 letter at the end", "$SDDPT\xc3\n",
        {QStringLiteral("NMEA_receive(\"$SDDPT\ufffd\\n\")")});
    row("6 bytes that are 5 characters are too few", "$AB\xc3\xa9\n", {});
    row("7 bytes that are 6 characters are enough", "$ABC\xc3\xa9\n",
        {QStringLiteral("NMEA_receive(\"$ABC\u00e9\\n\")")});
    row("three kinds in a row", heading + ais + mark,
        {plain(heading), plain(ais), proprietary(mark)});
}

void tst_NmeaSerialPortLines::lines()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, expected);
    feed(bytes);
    QCOMPARE(m_journal->texts(), expected);

    // The same once more: nothing of the bytes before may be left, but an unfinished line, which a
    // line start throws away.
    m_journal->clear();
    feed(bytes);
    QCOMPARE(m_journal->texts(), expected);
}

namespace {

// Every kind of line, and noise, in one stream, with what must come of it.
const QByteArray mixedStream = QByteArrayLiteral(
    "\r\nxx,*00$SDDPT,2.4,0.5*54\r\n$VRWBL\r\nnoise!AIVDM,torn$HEHDT,123.4,T*00\r\n"
    "$AB\n$VRVER,3.4*40\n!ABCDE\r\n\n\n$VRZZZ,1\r\n");

QStringList mixedJournal()
{
    return {plain("$SDDPT,2.4,0.5*54\r\n"), proprietary("$VRWBL\r\n"),      sumError,
            plain("$HEHDT,123.4,T*00\r\n"), proprietary("$VRVER,3.4*40\n"), plain("!ABCDE\r\n"),
            proprietary("$VRZZZ,1\r\n")};
}

} // namespace

void tst_NmeaSerialPortLines::everyChunkSize()
{
    for (int size = 1; size <= mixedStream.size(); ++size) {
        m_journal->clear();
        for (int from = 0; from < mixedStream.size(); from += size)
            feed(mixedStream.mid(from, size));
        QVERIFY2(m_journal->texts() == mixedJournal(), qPrintable(QString::number(size)));
    }
}

void tst_NmeaSerialPortLines::closePortDropsTheLineInHand()
{
    feed("$SDDPT,2");
    m_link->closePort();
    feed(".4\r\n$VRWBL\r\n");
    QCOMPARE(m_journal->texts(), QStringList{proprietary("$VRWBL\r\n")});
}

namespace {

// The events that an object posts to itself.
class OwnEvents : public QObject
{
public:
    explicit OwnEvents(QObject *object) { object->installEventFilter(this); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        m_count += event->type() == QEvent::MetaCall;
        return false;
    }

    int count() const { return m_count; }

private:
    int m_count = 0;
};

} // namespace

void tst_NmeaSerialPortLines::readsOnBehindASentence_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("turns");
    QTest::newRow("nothing behind it") << QByteArray("$VRWBL\r\n") << 0;
    QTest::newRow("half a line behind it") << QByteArray("$VRWBL\r\n$VRAIM,1,1") << 0;
    QTest::newRow("a line behind it") << QByteArray("$VRWBL\r\n$VRWBL\r\n") << 1;
    QTest::newRow("a line and a half behind it")
        << QByteArray("$VRWBL\r\n$SDDPT,2.4\r\n$VRA") << 1;
    QTest::newRow("once for all") << QByteArray("$VRWBL\r\n").repeated(9) << 1;
    QTest::newRow("no sentence") << QByteArray("$SDDPT,2.4\r\n$SDDPT,2.4\r\n") << 0;
}

// A turn of the event loop for each would cost more than the sentences themselves.
void tst_NmeaSerialPortLines::readsOnBehindASentence()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, turns);
    const OwnEvents events(m_link.get());
    feed(bytes);
    QCoreApplication::sendPostedEvents(m_link.get());
    QCOMPARE(events.count(), turns);
}

void tst_NmeaSerialPortLines::nestedBlockComesBehindTheRest()
{
    bool entered = false;
    connect(m_link.get(), &NmeaSerialPort::signalNMEA_receive, m_journal.get(), [&] {
        if (entered)
            return;
        entered = true;
        feed("GHIJ\r\n$LATER,5\r\n");
        m_journal->note("slot ends");
    });
    feed("$FIRST,1\r\n$VRWBL\r\n$SECOND,2\r\n$THIRD,3\r\nnoise$ABCDEF,");
    feed("$LATER,6\r\n");
    QCOMPARE(m_journal->texts(),
             (QStringList{plain("$FIRST,1\r\n"), proprietary("$VRWBL\r\n"), plain("$SECOND,2\r\n"),
                          plain("$THIRD,3\r\n"), plain("$ABCDEF,GHIJ\r\n"), plain("$LATER,5\r\n"),
                          "slot ends", plain("$LATER,6\r\n")}));
}

void tst_NmeaSerialPortLines::nestedEventLoopKeepsTheOrder()
{
    bool entered = false;
    connect(m_link.get(), &NmeaSerialPort::signalVRNMEA_receive, m_journal.get(), [&] {
        if (entered)
            return;
        entered = true;
        QEventLoop box;
        QTimer::singleShot(0, &box, [&] { feed("$IN,THE,BOX,4\r\n$IN,THE,"); });
        QTimer::singleShot(0, &box, [&] {
            feed("BOX,5\r\n");
            box.quit();
        });
        box.exec();
        m_journal->note("box closed");
    });
    feed("$FIRST,1\r\n$VRWBL\r\n$SECOND,2\r\n$THIRD,3\r\n");
    feed("$LAST,6\r\n");
    QCOMPARE(m_journal->texts(),
             (QStringList{plain("$FIRST,1\r\n"), proprietary("$VRWBL\r\n"), plain("$SECOND,2\r\n"),
                          plain("$THIRD,3\r\n"), plain("$IN,THE,BOX,4\r\n"),
                          plain("$IN,THE,BOX,5\r\n"), "box closed", plain("$LAST,6\r\n")}));
}

void tst_NmeaSerialPortLines::nestedThrice()
{
    int depth = 0;
    connect(m_link.get(), &NmeaSerialPort::signalVRNMEA_receive, m_journal.get(), [&] {
        if (depth == 3)
            return;
        ++depth;
        feed("$VRWB" + QByteArray::number(depth) + "\r\n$MARK," + QByteArray::number(depth)
             + "\r\n");
    });
    feed("$VRWB0\r\n$MARK,0\r\n");
    QCOMPARE(
        m_journal->texts(),
        (QStringList{proprietary("$VRWB0\r\n"), plain("$MARK,0\r\n"), proprietary("$VRWB1\r\n"),
                     plain("$MARK,1\r\n"), proprietary("$VRWB2\r\n"), plain("$MARK,2\r\n"),
                     proprietary("$VRWB3\r\n"), plain("$MARK,3\r\n")}));
}

void tst_NmeaSerialPortLines::closedFromInside()
{
    connect(m_link.get(), &NmeaSerialPort::signalNMEA_receive, m_link.get(),
            [this] { m_link->closePort(); });
    feed("$FIRST,1\r\nnoise");
    feed("$SECOND,2\r\n$THIRD,");
    feed("3\r\n");
    QCOMPARE(m_journal->texts(),
             (QStringList{plain("$FIRST,1\r\n"), plain("$SECOND,2\r\n"), plain("$THIRD,3\r\n")}));
}

void tst_NmeaSerialPortLines::busyFromInside()
{
    connect(m_link.get(), &NmeaSerialPort::signalVRNMEA_receive, m_link.get(),
            &NmeaSerialPort::slot_VRNMEA);
    feed("$VRCNB\r\n$VRWBL\r\n$PLAIN,1\r\n");
    // The line behind the busy answer still takes the inner road, but nothing parses it any more.
    QCOMPARE(m_journal->texts(),
             (QStringList{proprietary("$VRCNB\r\n"), "VRBusy()", proprietary("$VRWBL\r\n"),
                          plain("$PLAIN,1\r\n")}));
}

void tst_NmeaSerialPortLines::deletedFromInside_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("last");

    const auto row = [](const char *name, const QByteArray &line, const QString &last) {
        QTest::newRow(name) << line << last;
    };
    row("plain line", "$SDDPT,2.4\r\n", plain("$SDDPT,2.4\r\n"));
    row("checksum error of a plain line", "$SDDPT,2.4*00\r\n", sumError);
    row("checksum error of a proprietary line", "$VRVER,3.4*00\r\n", sumError);
    row("first connect answer's error", "$VRCNU,3*00\r\n", sumError);
    row("busy", "$VRCNB\r\n", "VRBusy()");
    row("progress of the second connect answer", checkedLine("$VRCNU,3") + checkedLine("$VRCNU,3"),
        "VRConnectionProgress(100)");
    row("connected", checkedLine("$VRCNU,3") + checkedLine("$VRCNU,3"), "VRConnect(3)");
    row("end of data", "$VRWBL\r\n", "VRUpdateVRData()");
    row("speed", checkedLine("$VRSPD,3,9600"), "VRNewPortSpeed(3, 9600)");
    const QByteArray rule = checkedLine("$VRRUL,5,0," + QByteArray(12, '1') + QByteArray(36, '0'));
    row("first of twelve rules", rule, "VRNewRule(5, 0, 17, 17)");
    row("last of twelve rules", rule, "VRNewRule(5, 11, 0, 0)");
    row("first of six masks", checkedLine("$VRFLT,5,0,6," + QByteArray(48, '0')),
        "VRNewFilterMask(5, 6, 0)");
    row("first of six names", checkedLine("$VRPNM,I,0,a,b,c,d,e,f"),
        "VRNewPortName(false, 0, \"a\")");
    row("first of twelve headers", checkedLine("$VRHDC,5,0,GP,,,,,,,,,,,"),
        "VRNewHdr(5, 0, \"GP\")");
    row("first of eight formatters", checkedLine("$VRFLS,8,RMC,,,,,,,"),
        "VRNewFilterStr(8, \"RMC\")");
    row("serial number", checkedLine("$VRSER," + QByteArray(32, '0')),
        "VRSerial(" + QString(32, '0') + ")");
    row("port statistics", checkedLine("$VRSTA,1,2,3,4,5,6"), "VRStatusErrors(1, 2, 3, 4, 5, 6)");
    row("lock", checkedLine("$VRLCK,1,5"), "VRLockStatus(true, 5)");
}

// What deleteLater does in the event loop of a box that a slot has opened: the object is gone when
// the slot returns into it. The address sanitizer watches this test.
void tst_NmeaSerialPortLines::deletedFromInside()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, last);
    connect(m_link.get(), &NmeaSerialPort::signalVRNMEA_receive, m_link.get(),
            &NmeaSerialPort::slot_VRNMEA);
    bool deleted = false;
    connect(m_journal.get(), &LinkJournal::noted, this, [&](const QString &text) {
        if (deleted || text != last)
            return;
        deleted = true;
        m_link.reset();
    });

    const QByteArray stream = line + "$BEHIND,1\r\n$VRWBL\r\n$VRVER,3.4*40\r\n";
    m_link->receiveBytes(stream.constData(), int(stream.size()));
    QVERIFY(deleted);
    QCOMPARE(m_journal->texts().last(), last);
}

QTEST_GUILESS_MAIN(tst_NmeaSerialPortLines)
#include "tst_nmeaserialport_lines.moc"
