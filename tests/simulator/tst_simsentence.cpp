#include "simulator/line/lineassembler.h"
#include "simulator/line/sentence.h"

#include <QtTest>

using namespace tk7sim;

Q_DECLARE_METATYPE(tk7sim::SentenceForm)

class TestSimSentence : public QObject
{
    Q_OBJECT

private slots:
    void writesChecksums_data();
    void writesChecksums();
    void writesWrongChecksums();
    void parses_data();
    void parses();
    void refuses_data();
    void refuses();
    void readsDecimals_data();
    void readsDecimals();
    void readsHex_data();
    void readsHex();
    void writesHex();
    void assembles_data();
    void assembles();
};

void TestSimSentence::writesChecksums_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("line");
    // 'A' ^ 'A' and so on can be followed by hand.
    QTest::newRow("the dollar doesn't count") << QByteArray("$AA") << QByteArray("$AA*00\r\n");
    QTest::newRow("one byte") << QByteArray("$A") << QByteArray("$A*41\r\n");
    QTest::newRow("filled up with 0") << QByteArray("$AK") << QByteArray("$AK*0A\r\n");
    QTest::newRow("all bits") << QByteArray("$\xff") << QByteArray("$\xff*FF\r\n");
    QTest::newRow("AIS") << QByteArray("!AA") << QByteArray("!AA*00\r\n");
    // A sentence that is printed in many a manual.
    QTest::newRow("known") << QByteArray("$GPGLL,5057.970,N,00146.110,E,142451,A")
                           << QByteArray("$GPGLL,5057.970,N,00146.110,E,142451,A*27\r\n");
}

void TestSimSentence::writesChecksums()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, line);
    QCOMPARE(withChecksum(body), line);
}

void TestSimSentence::writesWrongChecksums()
{
    const QByteArray right = withChecksum("$VRVER,3.5");
    const QByteArray wrong = withWrongChecksum("$VRVER,3.5");
    QCOMPARE(wrong.size(), right.size());
    QVERIFY(wrong != right);
    QCOMPARE(parseSentence(wrong)->form, SentenceForm::WrongChecksum);
}

void TestSimSentence::parses_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("code");
    QTest::addColumn<SentenceForm>("form");
    QTest::addColumn<QByteArrayList>("fields");
    const auto row = [](const char *name, const QByteArray &line, SentenceForm form,
                        const QByteArrayList &fields) {
        QTest::newRow(name) << line << line.mid(3, 3) << form << fields;
    };
    row("bare", "$VRCNT\r\n", SentenceForm::Bare, {});
    row("plain", "$VRVVW,243\r\n", SentenceForm::Plain, {"243"});
    row("plain with an empty field", "$VRVVW,\r\n", SentenceForm::Plain, {""});
    row("plain with two fields", "$VRVVW,1,2\r\n", SentenceForm::Plain, {"1", "2"});
    row("checked", withChecksum("$VRSPD,3,38400"), SentenceForm::Checked, {"3", "38400"});
    row("checked with empty fields", withChecksum("$VRFLS,0,,"), SentenceForm::Checked,
        {"0", "", ""});
    row("lower-case digits", withChecksum("$VRSPD,3,38400").replace("*4F", "*4f"),
        SentenceForm::Checked, {"3", "38400"});
    row("wrong checksum", "$VRSPD,3,38400*4E\r\n", SentenceForm::WrongChecksum, {"3", "38400"});
    row("one digit of checksum", "$VRSPD,3,38400*4\r\n", SentenceForm::WrongChecksum,
        {"3", "38400"});
    row("three digits of checksum", "$VRSPD,3,38400*04F\r\n", SentenceForm::WrongChecksum,
        {"3", "38400"});
    row("no digits of checksum", "$VRSPD,3,38400*\r\n", SentenceForm::WrongChecksum,
        {"3", "38400"});
    row("letters in place of a checksum", "$VRSPD,3,38400*XY\r\n", SentenceForm::WrongChecksum,
        {"3", "38400"});
    row("a second star", "$VRPNM,I*00,3*00\r\n", SentenceForm::WrongChecksum, {"I"});
}

void TestSimSentence::parses()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, code);
    QFETCH(SentenceForm, form);
    QFETCH(QByteArrayList, fields);
    const auto sentence = parseSentence(line);
    QVERIFY(sentence.has_value());
    QCOMPARE(sentence->code, code);
    QCOMPARE(sentence->form, form);
    QCOMPARE(QByteArrayList(sentence->fields), fields);
}

void TestSimSentence::refuses_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("line end only") << QByteArray("\r\n");
    QTest::newRow("head without a code") << QByteArray("$VR\r\n");
    QTest::newRow("code of two letters") << QByteArray("$VRCN\r\n");
    QTest::newRow("code in lower case") << QByteArray("$VRcnt\r\n");
    QTest::newRow("another talker") << QByteArray("$GPRMC,1\r\n");
    QTest::newRow("LF alone") << QByteArray("$VRCNT\n");
    QTest::newRow("CR alone") << QByteArray("$VRCNT\r");
    QTest::newRow("text behind the code") << QByteArray("$VRCNTX\r\n");
    QTest::newRow("bare with a checksum") << QByteArray("$VRCNT*5F\r\n");
    QTest::newRow("something before the dollar") << QByteArray(" $VRCNT\r\n");
}

void TestSimSentence::refuses()
{
    QFETCH(QByteArray, line);
    QVERIFY(!parseSentence(line).has_value());
}

void TestSimSentence::readsDecimals_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<int>("result"); // -1: none
    QTest::newRow("zero") << QByteArray("0") << 0;
    QTest::newRow("greatest") << QByteArray("11") << 11;
    QTest::newRow("leading zeros") << QByteArray("0007") << 7;
    QTest::newRow("one too many") << QByteArray("12") << -1;
    QTest::newRow("negative") << QByteArray("-1") << -1;
    QTest::newRow("plus sign") << QByteArray("+1") << -1;
    QTest::newRow("blank") << QByteArray(" 1") << -1;
    QTest::newRow("empty") << QByteArray() << -1;
    QTest::newRow("letters") << QByteArray("1a") << -1;
    QTest::newRow("2^32") << QByteArray("4294967296") << -1;
    QTest::newRow("2^32 + 3, which a 32-bit number cuts to 3") << QByteArray("4294967299") << -1;
    QTest::newRow("very long") << QByteArray(90, '9') << -1;
}

void TestSimSentence::readsDecimals()
{
    QFETCH(QByteArray, field);
    QFETCH(int, result);
    QCOMPARE(parseDecimal(field, 11).value_or(-1), result);
}

void TestSimSentence::readsHex_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<int>("digits");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<quint32>("value");
    QTest::newRow("word") << QByteArray("F306") << 4 << true << 0xF306U;
    QTest::newRow("lower case") << QByteArray("f306") << 4 << true << 0xF306U;
    QTest::newRow("all bits") << QByteArray("FFFFFFFF") << 8 << true << 0xFFFFFFFFU;
    QTest::newRow("too short") << QByteArray("F30") << 4 << false << 0U;
    QTest::newRow("too long") << QByteArray("F3060") << 4 << false << 0U;
    QTest::newRow("sign") << QByteArray("-306") << 4 << false << 0U;
    QTest::newRow("prefix") << QByteArray("0x30") << 4 << false << 0U;
    QTest::newRow("no digit") << QByteArray("F3G6") << 4 << false << 0U;
}

void TestSimSentence::readsHex()
{
    QFETCH(QByteArray, field);
    QFETCH(int, digits);
    QFETCH(bool, ok);
    QFETCH(quint32, value);
    const auto result = parseHex(field, digits);
    QCOMPARE(result.has_value(), ok);
    QCOMPARE(result.value_or(0), value);
}

void TestSimSentence::writesHex()
{
    QCOMPARE(hex(0, 2), QByteArray("00"));
    QCOMPARE(hex(0xA, 2), QByteArray("0A"));
    QCOMPARE(hex(0xABCDEF01, 8), QByteArray("ABCDEF01"));
}

void TestSimSentence::assembles_data()
{
    QTest::addColumn<QByteArrayList>("blocks");
    QTest::addColumn<QByteArrayList>("lines");
    const auto row = [](const char *name, const QByteArrayList &blocks,
                        const QByteArrayList &lines) { QTest::newRow(name) << blocks << lines; };
    const int limit = LineAssembler::maxLength;
    const QByteArray longest = '$' + QByteArray(limit - 2, 'x') + '\n';
    const QByteArray tooLong = '$' + QByteArray(limit - 1, 'x') + '\n';
    row("one line", {"$VRCNT\r\n"}, {"$VRCNT\r\n"});
    row("two lines in a block", {"$VRCNT\r\n$VRVER\r\n"}, {"$VRCNT\r\n", "$VRVER\r\n"});
    row("byte by byte", {"$", "V", "R", "C", "N", "T", "\r", "\n"}, {"$VRCNT\r\n"});
    row("noise before", {"\x80\xff\n*5A\r\n$VRCNT\r\n"}, {"$VRCNT\r\n"});
    row("noise between", {"$VRCNT\r\nabc\xfe$VRVER\r\n"}, {"$VRCNT\r\n", "$VRVER\r\n"});
    row("a dollar starts anew", {"$VRRUL,0,$VRCNT\r\n"}, {"$VRCNT\r\n"});
    row("a NUL within", {QByteArray("$VR\0CNT\r\n", 9)}, {QByteArray("$VR\0CNT\r\n", 9)});
    row("no end", {"$VRCNT\r"}, {});
    row("longest", {longest}, {longest});
    row("one byte too long", {tooLong}, {});
    row("a line behind one that is too long", {tooLong + "$VRCNT\r\n"}, {"$VRCNT\r\n"});
    row("the rest of a long line is noise", {'$' + QByteArray(500, 'x'), "y\r\n$VRCNT\r\n"},
        {"$VRCNT\r\n"});
}

void TestSimSentence::assembles()
{
    QFETCH(QByteArrayList, blocks);
    QFETCH(QByteArrayList, lines);
    LineAssembler assembler;
    QByteArrayList result;
    for (const QByteArray &block : blocks) {
        result += assembler.take(block);
    }
    QCOMPARE(result, lines);
}

QTEST_APPLESS_MAIN(TestSimSentence)
#include "tst_simsentence.moc"
