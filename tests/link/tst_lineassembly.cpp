#include "link/lineassembler.h"

#include <QByteArrayList>
#include <QtTest>

/*! Bytes in, lines out. What the link makes of the lines is in tst_nmeaserialport_lines. */
class tst_LineAssembly : public QObject
{
    Q_OBJECT

private slots:
    void lines_data();
    void lines();
    void linesInPieces_data() { lines_data(); }
    void linesInPieces();
    void bytesAddedBetweenTwoLines();
    void hasLineEnd();
    void droppedLine_data();
    void droppedLine();
    void bytesAreCopied();
    void longBlock();
};

namespace {

QByteArrayList takenFrom(LineAssembler &assembler)
{
    QByteArrayList taken;
    QByteArray line;
    while (assembler.takeLine(line))
        taken += line;
    return taken;
}

void add(LineAssembler &assembler, const QByteArray &bytes)
{
    assembler.add(bytes.constData(), int(bytes.size()));
}

// A line of `size` bytes, its LF included.
QByteArray lineOfSize(int size)
{
    return "$SD" + QByteArray(size - 4, 'x') + '\n';
}

} // namespace

void tst_LineAssembly::lines_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArrayList>("expected");
    const auto row = [](const char *name, const QByteArray &bytes, const QByteArrayList &expected) {
        QTest::newRow(name) << bytes << expected;
    };
    const QByteArray depth = "$SDDPT,2.4,0.5*54\r\n";
    const QByteArray ais = "!AIVDM,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0*5C\r\n";
    const QByteArray mark = "$VRWBL\r\n";

    row("nothing", QByteArray(), {});
    row("line that starts with '$'", depth, {depth});
    row("line that starts with '!'", ais, {ais});
    row("three lines", depth + ais + mark, {depth, ais, mark});
    row("noise before a line", "noise\r\n\r\n*,0" + depth, {depth});
    row("noise between lines", depth + "noise\r\n" + mark, {depth, mark});
    row("noise behind a line", depth + "noise\r\n", {depth});
    row("8-bit noise between lines", depth + "\x80\xff\xc3" + mark, {depth, mark});
    row("line feeds only", "\n\n\n\n\n\n\n\n", {});
    row("text without a line start", "GPGLL,5057.970,N\r\n", {});
    row("'$' within a line throws away what came before", "$SDDPT,2.4$VRWBL\r\n", {mark});
    row("'!' within a line throws away what came before", "$SDDPT," + ais, {ais});
    row("'$' within a '!' line", "!AIVDM,1,1" + depth, {depth});
    row("several line starts in a row", "$$!$" + depth, {depth});
    row("line start right before LF", "$SDDPT,2.4$\n", {"$\n"});
    row("line without its end", "$SDDPT,2.4,0.5*54\r", {});
    row("LF alone ends a line", "$SDDPT,2.4,0.5*54\n", {"$SDDPT,2.4,0.5*54\n"});
    row("CR alone doesn't", "$SDDPT,2.4\r$HEHDT,1\r\n", {"$HEHDT,1\r\n"});
    row("CR within a line stays", "$SDD\rPT,2.4\n", {"$SDD\rPT,2.4\n"});
    row("tabs and control characters stay", "$SDD\t\x01\x7f,2.4\n", {"$SDD\t\x01\x7f,2.4\n"});
    row("8-bit characters stay", "$SDD\xff\xc3,2\r\n", {"$SDD\xff\xc3,2\r\n"});

    const QByteArray zero(1, '\0');
    row("NUL stays", "$SDD" + zero + "PT\r\n", {"$SDD" + zero + "PT\r\n"});
    row("NUL right behind the '$'", '$' + zero + "SDDPT\r\n", {'$' + zero + "SDDPT\r\n"});
    row("NUL between lines is noise", zero + zero + depth + zero + mark, {depth, mark});

    const QByteArray line94 = lineOfSize(94);
    const QByteArray line95 = lineOfSize(95);
    const QByteArray line96 = lineOfSize(96);
    row("94 bytes", line94, {line94});
    row("95 bytes", line95, {line95});
    row("96 bytes are dropped", line96, {});
    row("95 bytes that end in CR LF", line94.left(93) + "\r\n", {line94.left(93) + "\r\n"});
    row("96 bytes that end in CR LF are dropped", line95.left(94) + "\r\n", {});
    row("overlong line, then a good one", line96 + depth, {depth});
    row("rest of an overlong line is noise", "$" + QByteArray(500, 'x') + "\r\n" + mark, {mark});
    row("a line start in the rest of an overlong line counts", "$" + QByteArray(500, 'x') + mark,
        {mark});
    row("a line start at the 96th byte counts", line96.left(95) + mark, {mark});
    row("a line start at the 95th byte counts", line96.left(94) + mark, {mark});
}

void tst_LineAssembly::lines()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArrayList, expected);
    LineAssembler assembler;
    add(assembler, bytes);
    QCOMPARE(takenFrom(assembler), expected);

    // The same once more: nothing of the bytes before may be left, but an unfinished line, which a
    // line start throws away.
    add(assembler, bytes);
    QCOMPARE(takenFrom(assembler), expected);
}

// Cut in two anywhere, and into pieces of any size.
void tst_LineAssembly::linesInPieces()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArrayList, expected);
    for (int cut = 0; cut <= bytes.size(); ++cut) {
        LineAssembler assembler;
        add(assembler, bytes.left(cut));
        QByteArrayList taken = takenFrom(assembler);
        add(assembler, bytes.mid(cut));
        taken += takenFrom(assembler);
        QVERIFY2(taken == expected, qPrintable(QString::number(cut)));
    }
    for (int size = 1; size < bytes.size(); ++size) {
        LineAssembler assembler;
        QByteArrayList taken;
        for (int from = 0; from < bytes.size(); from += size) {
            add(assembler, bytes.mid(from, size));
            taken += takenFrom(assembler);
        }
        QVERIFY2(taken == expected, qPrintable(QString::number(size)));
    }
}

// Whoever deals with a line adds bytes and takes lines himself; then the first goes on.
void tst_LineAssembly::bytesAddedBetweenTwoLines()
{
    LineAssembler assembler;
    QByteArray line;
    add(assembler, "$FIRST\r\n$SECOND\r\n$THI");
    QVERIFY(assembler.takeLine(line));
    QCOMPARE(line, QByteArray("$FIRST\r\n"));
    add(assembler, "RD\r\n$FOURTH\r\n$FIF");
    QVERIFY(assembler.takeLine(line));
    QCOMPARE(line, QByteArray("$SECOND\r\n"));
    QCOMPARE(takenFrom(assembler), (QByteArrayList{"$THIRD\r\n", "$FOURTH\r\n"}));
    QVERIFY(!assembler.takeLine(line));
    add(assembler, "TH\r\n");
    QCOMPARE(takenFrom(assembler), QByteArrayList{"$FIFTH\r\n"});
}

void tst_LineAssembly::hasLineEnd()
{
    LineAssembler assembler;
    QByteArray line;
    QVERIFY(!assembler.hasLineEnd());
    add(assembler, "$FIRST\r\n$SECOND\r\n$THI");
    QVERIFY(assembler.hasLineEnd());
    QVERIFY(assembler.takeLine(line));
    QVERIFY(assembler.hasLineEnd());
    QVERIFY(assembler.takeLine(line));
    QVERIFY(!assembler.hasLineEnd());
    add(assembler, "RD\r\n");
    QVERIFY(assembler.hasLineEnd());
    QVERIFY(assembler.takeLine(line));
    QVERIFY(!assembler.hasLineEnd());
}

void tst_LineAssembly::droppedLine_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("behind");
    QTest::addColumn<QByteArrayList>("expected");
    QTest::newRow("the rest of the line is noise")
        << QByteArray("$SDDPT,2") << QByteArray(".4\r\n$VRWBL\r\n") << QByteArrayList{"$VRWBL\r\n"};
    QTest::newRow("a line start at once")
        << QByteArray("$SDDPT,2") << QByteArray("$VRWBL\r\n") << QByteArrayList{"$VRWBL\r\n"};
    QTest::newRow("no line was in hand")
        << QByteArray("$SDDPT\r\n") << QByteArray("$VRWBL\r\n") << QByteArrayList{"$VRWBL\r\n"};
}

void tst_LineAssembly::droppedLine()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, behind);
    QFETCH(QByteArrayList, expected);
    LineAssembler assembler;
    add(assembler, before);
    takenFrom(assembler);
    assembler.dropLine();
    add(assembler, behind);
    QCOMPARE(takenFrom(assembler), expected);

    // What hasn't been cut yet stays.
    QByteArray line;
    add(assembler, "$FIRST\r\n" + behind);
    QVERIFY(assembler.takeLine(line));
    assembler.dropLine();
    QCOMPARE(takenFrom(assembler), expected);
}

// The block may go as soon as it has been added.
void tst_LineAssembly::bytesAreCopied()
{
    LineAssembler assembler;
    char block[] = "$SDDPT,2.4\r\n";
    assembler.add(block, int(sizeof block) - 1);
    std::fill(std::begin(block), std::end(block), '!');
    QCOMPARE(takenFrom(assembler), QByteArrayList{"$SDDPT,2.4\r\n"});
}

void tst_LineAssembly::longBlock()
{
    constexpr int count = 20000;
    const QByteArray sentence = "$SDDPT,2.4,0.5*54\r\n";
    LineAssembler assembler;
    add(assembler, sentence.repeated(count));
    const QByteArrayList taken = takenFrom(assembler);
    QCOMPARE(taken.size(), count);
    QCOMPARE(taken.count(sentence), count);
}

QTEST_APPLESS_MAIN(tst_LineAssembly)
#include "tst_lineassembly.moc"
