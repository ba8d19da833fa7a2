#include "linkjournal.h"
#include "support/checkedline.h"

#include <QEventLoop>
#include <QTimer>
#include <QtTest>

#include <memory>

class tst_LineAssembly : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void lines_data();
    void lines();
    void splitAtEveryPosition();
    void everyChunkSize();
    void closePortDropsTheLineInHand();

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

constexpr int longestLine = 95;

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

// A line of `size` bytes, its LF included.
QByteArray lineOfSize(const QByteArray &head, int size)
{
    return head + QByteArray(size - head.size() - 1, 'x') + '\n';
}

} // namespace

void tst_LineAssembly::init()
{
    m_link = std::make_unique<NmeaSerialPort>();
    m_journal = std::make_unique<LinkJournal>(m_link.get(), LinkJournal::WithRawLines);
}

void tst_LineAssembly::cleanup()
{
    m_journal.reset();
    m_link.reset();
}

void tst_LineAssembly::feed(const QByteArray &bytes)
{
    m_link->receiveBytes(bytes.constData(), bytes.size());
}

void tst_LineAssembly::lines_data()
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
    row("noise before a line", "noise\r\n\r\n*,0" + depth, {plain(depth)});
    row("noise between lines", depth + "noise\r\n" + mark, {plain(depth), proprietary(mark)});
    row("noise behind a line", depth + "noise\r\n", {plain(depth)});
    row("line feeds only", "\n\n\n\n\n\n\n\n", {});
    row("text without a line start", "GPGLL,5057.970,N\r\n", {});
    row("'$' within a line throws away what came before", "$SDDPT,2.4$VRWBL\r\n",
        {proprietary(mark)});
    row("'!' within a line throws away what came before", "$SDDPT," + ais, {plain(ais)});
    row("'$' within a '!' line", "!AIVDM,1,1" + depth, {plain(depth)});
    row("several line starts in a row", "$$!$" + depth, {plain(depth)});
    row("line start right before LF", "$SDDPT,2.4$\n", {});
    row("line without its end", "$SDDPT,2.4,0.5*54\r", {});
    row("LF alone ends a line", "$SDDPT,2.4,0.5*54\n", {plain("$SDDPT,2.4,0.5*54\n")});
    row("CR alone doesn't", "$SDDPT,2.4\r$HEHDT,1\r\n", {plain("$HEHDT,1\r\n")});
    row("CR within a line stays", "$SDD\rPT,2.4\n", {plain("$SDD\rPT,2.4\n")});
    row("tabs and control characters stay", "$SDD\t\x01\x7f,2.4\n",
        {plain("$SDD\t\x01\x7f,2.4\n")});

    row("5 bytes are too short", "$ABC\n", {});
    row("6 bytes are enough", "$ABCD\n", {plain("$ABCD\n")});
    row("6 bytes with CR", "$ABC\r\n", {plain("$ABC\r\n")});
    row("5 bytes, proprietary", "$VRA\n", {});
    row("6 bytes, proprietary", "$VRAB\n", {proprietary("$VRAB\n")});
    row("the head of all proprietary lines, 6 bytes", "$VR\r\r\n", {proprietary("$VR\r\r\n")});
    row("'$' and LF", "$\n", {});

    const QByteArray line94 = lineOfSize("$SD", longestLine - 1);
    const QByteArray line95 = lineOfSize("$SD", longestLine);
    const QByteArray line96 = lineOfSize("$SD", longestLine + 1);
    const QByteArray vr95 = lineOfSize("$VRXYZ,", longestLine);
    const QByteArray vr96 = lineOfSize("$VRXYZ,", longestLine + 1);
    row("94 bytes", line94, {plain(line94)});
    row("95 bytes", line95, {plain(line95)});
    row("96 bytes are dropped", line96, {});
    row("95 bytes, proprietary", vr95, {proprietary(vr95)});
    row("96 bytes, proprietary, are dropped", vr96, {});
    row("95 bytes that end in CR LF", line94.left(longestLine - 2) + "\r\n",
        {plain(line94.left(longestLine - 2) + "\r\n")});
    row("96 bytes that end in CR LF are dropped", line95.left(longestLine - 1) + "\r\n", {});
    row("overlong line, then a good one", line96 + depth, {plain(depth)});
    row("rest of an overlong line is noise", QByteArray("$") + QByteArray(500, 'x') + "\r\n" + mark,
        {proprietary(mark)});
    row("a line start in the rest of an overlong line counts",
        QByteArray("$") + QByteArray(500, 'x') + mark, {proprietary(mark)});
    row("a line start at the 96th byte counts", line96.left(longestLine) + mark,
        {proprietary(mark)});
    row("a line start at the 95th byte counts", line96.left(longestLine - 1) + mark,
        {proprietary(mark)});

    const auto nul = [](const QByteArray &text) { return QByteArray(text).replace('@', '\0'); };
    row("NUL ends the text", nul("$SDDPT,2.4@,0.5\r\n"), {plain("$SDDPT,2.4")});
    row("NUL behind the digits keeps them", nul("$SDDPT,2.4,0.5*54@\r\n"),
        {plain("$SDDPT,2.4,0.5*54")});
    row("NUL before the star hides it", nul("$SDDPT,2.4@*00\r\n"), {plain("$SDDPT,2.4")});
    row("NUL leaves 5 characters, too few", nul("$SDDP@T,2.4\r\n"), {});
    row("NUL leaves 6 characters, enough", nul("$SDDPT@,2.4\r\n"), {plain("$SDDPT")});
    row("NUL right behind the '$'", nul("$@SDDPT,2.4\r\n"), {});
    row("NUL cuts a proprietary line", nul("$VRWBL@\r\n"), {proprietary("$VRWBL")});
    row("NUL between lines is noise", nul("@@") + depth + nul("@") + mark,
        {plain(depth), proprietary(mark)});

    row("UTF-8 letter is one character", "$VRPNM,\xc3\xa9\r\n",
        {QStringLiteral("VRNMEA_receive(\"$VRPNM,\u00e9\\r\\n\")")});
    row("invalid UTF-8 becomes replacement characters", "$SDD\xff\xfe,2\r\n",
        {QStringLiteral("NMEA_receive(\"$SDD\ufffd\ufffd,2\\r\\n\")")});
    row("torn UTF-8 letter at the end", "$SDDPT\xc3\n",
        {QStringLiteral("NMEA_receive(\"$SDDPT\ufffd\\n\")")});
    row("6 bytes that are 5 characters are too few", "$AB\xc3\xa9\n", {});
    row("7 bytes that are 6 characters are enough", "$ABC\xc3\xa9\n",
        {QStringLiteral("NMEA_receive(\"$ABC\u00e9\\n\")")});
    row("8-bit noise between lines", "\x80\xff\xc3" + depth, {plain(depth)});
    row("three kinds in a row", heading + ais + mark,
        {plain(heading), plain(ais), proprietary(mark)});
}

void tst_LineAssembly::lines()
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
    "$AB\n$VRVER,3.4*40\n!ABCDE\r\n\n\n$VRZZZ");
const QByteArray mixedStreamEnd = QByteArrayLiteral(",1\r\n");

QStringList mixedJournal()
{
    return {plain("$SDDPT,2.4,0.5*54\r\n"), proprietary("$VRWBL\r\n"),      sumError,
            plain("$HEHDT,123.4,T*00\r\n"), proprietary("$VRVER,3.4*40\n"), plain("!ABCDE\r\n"),
            proprietary("$VRZZZ,1\r\n")};
}

} // namespace

void tst_LineAssembly::splitAtEveryPosition()
{
    const QByteArray stream = mixedStream + mixedStreamEnd;
    for (int cut = 0; cut <= stream.size(); ++cut) {
        m_journal->clear();
        feed(stream.left(cut));
        feed(stream.mid(cut));
        QVERIFY2(m_journal->texts() == mixedJournal(), qPrintable(QString::number(cut)));
    }
}

void tst_LineAssembly::everyChunkSize()
{
    const QByteArray stream = mixedStream + mixedStreamEnd;
    for (int size = 1; size <= stream.size(); ++size) {
        m_journal->clear();
        for (int from = 0; from < stream.size(); from += size)
            feed(stream.mid(from, size));
        QVERIFY2(m_journal->texts() == mixedJournal(), qPrintable(QString::number(size)));
    }
}

void tst_LineAssembly::closePortDropsTheLineInHand()
{
    feed("$SDDPT,2");
    m_link->closePort();
    feed(".4\r\n$VRWBL\r\n");
    QCOMPARE(m_journal->texts(), QStringList{proprietary("$VRWBL\r\n")});
}

void tst_LineAssembly::nestedBlockComesBehindTheRest()
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

void tst_LineAssembly::nestedEventLoopKeepsTheOrder()
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

void tst_LineAssembly::nestedThrice()
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

void tst_LineAssembly::closedFromInside()
{
    connect(m_link.get(), &NmeaSerialPort::signalNMEA_receive, m_link.get(),
            [this] { m_link->closePort(); });
    feed("$FIRST,1\r\nnoise");
    feed("$SECOND,2\r\n$THIRD,");
    feed("3\r\n");
    QCOMPARE(m_journal->texts(),
             (QStringList{plain("$FIRST,1\r\n"), plain("$SECOND,2\r\n"), plain("$THIRD,3\r\n")}));
}

void tst_LineAssembly::busyFromInside()
{
    connect(m_link.get(), &NmeaSerialPort::signalVRNMEA_receive, m_link.get(),
            &NmeaSerialPort::slot_VRNMEA);
    feed("$VRCNB\r\n$VRWBL\r\n$PLAIN,1\r\n");
    // The line behind the busy answer still takes the inner road, but nothing parses it any more.
    QCOMPARE(m_journal->texts(),
             (QStringList{proprietary("$VRCNB\r\n"), "VRBusy()", proprietary("$VRWBL\r\n"),
                          plain("$PLAIN,1\r\n")}));
}

void tst_LineAssembly::deletedFromInside_data()
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
void tst_LineAssembly::deletedFromInside()
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
    m_link->receiveBytes(stream.constData(), stream.size());
    QVERIFY(deleted);
    QCOMPARE(m_journal->texts().last(), last);
}

QTEST_GUILESS_MAIN(tst_LineAssembly)
#include "tst_lineassembly.moc"
