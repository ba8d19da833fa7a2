#include "linkjournal.h"
#include "sentencereports.h"
#include "support/checkedline.h"

#include <QtTest>

#include <functional>

using namespace Reports;

/*! What each number of a sentence may be, and what becomes of one that it may not be. */
class tst_DispatchNumbers : public QObject
{
    Q_OBJECT

private slots:
    void numbers_data();
    void numbers();
    void connectAnswer_data();
    void connectAnswer();
};

namespace {

struct NumberText
{
    const char *text;
    quint32 value; // what an unsigned decimal conversion makes of it; 0 where it fails
};

constexpr NumberText numberTexts[] = {
    {"0", 0},
    {"11", 11},
    {"007", 7},
    {"12", 12},
    {"99", 99},
    {"255", 255},
    {"256", 256},
    {"267", 267},
    {"65536", 65536},
    {"2147483648", 2147483648U},
    {"4294967295", 4294967295U},
    {"4294967296", 0},
    {"99999999999999999999", 0},
    {"-1", 0},
    {"", 0},
    {"abc", 0},
    {"3.0", 0},
    {"1e1", 0},
};

using Expect = std::function<QStringList(quint32)>;

struct NumberField
{
    const char *name;
    QByteArray body; // '%' stands for the number
    bool checked;
    Expect expected;
};

QStringList sixNames(quint32 first)
{
    if (first != 0 && first != 6)
        return {};
    return names("false", int(first), {"a", "b", "c", "d", "e", "f"});
}

QVector<NumberField> numberFields()
{
    const QStringList eight{"AAA", "BBB", "CCC", "DDD", "EEE", "FFF", "GGG", "HHH"};
    const QStringList twelve{"AA", "", "", "", "", "", "", "", "", "", "", "LL"};
    const auto one = [](const QString &text) { return QStringList{text}; };
    const auto status = [one](int place) {
        return [one, place](quint32 n) {
            QStringList values{"1", "2", "3", "4", "5", "6"};
            values[place] = number(n);
            return one(call("VRStatusErrors", values));
        };
    };
    return {
        {"SPD port wraps to a byte", "$VRSPD,%,9600", true,
         [=](quint32 n) {
             return one(call("VRNewPortSpeed", {number(quint8(n)), "9600"}));
         }},
        {"SPD speed is the whole number", "$VRSPD,3,%", true,
         [=](quint32 n) {
             return one(call("VRNewPortSpeed", {"3", number(n)}));
         }},
        {"RUL port wraps to a byte", "$VRRUL,%,0," + twelveWords, true,
         [](quint32 n) { return rules(quint8(n), twelveWordValues); }},
        {"FLT port wraps to a byte", "$VRFLT,%,0,6," + sixMasks, true,
         [](quint32 n) { return masks(quint8(n), 6, sixMaskValues); }},
        {"FLT first is the low byte, and channels go on above it", "$VRFLT,3,0,%," + sixMasks, true,
         [](quint32 n) { return masks(3, quint8(n), sixMaskValues); }},
        {"PNM first must be 0 or 6", "$VRPNM,I,%,a,b,c,d,e,f", true, sixNames},
        {"HDC port wraps to a byte", "$VRHDC,%,0,AA,,,,,,,,,,,LL", true,
         [=](quint32 n) { return headers(quint8(n), twelve); }},
        {"FLS index wraps to a byte", "$VRFLS,%,AAA,BBB,CCC,DDD,EEE,FFF,GGG,HHH", true,
         [=](quint32 n) { return formatters(n, eight); }},
        {"VER lsb", "$VRVER,3.%", true,
         [=](quint32 n) {
             return one(call("VRVersion", {"3", number(n)}));
         }},
        {"VVW must fit a byte", "$VRVVW,%\r\n", false,
         [=](quint32 n) { return n > 255 ? QStringList() : one(call("VRPortView", {number(n)})); }},
        {"FWP", "$VRFWP,%", true, [=](quint32 n) { return one(call("VRFwPacket", {number(n)})); }},
        {"FWE", "$VRFWE,%", true, [=](quint32 n) { return one(call("VRFwError", {number(n)})); }},
        {"STA row", "$VRSTA,%,2,3,4,5,6", true, status(0)},
        {"STA first counter", "$VRSTA,1,%,3,4,5,6", true, status(1)},
        {"STA second counter", "$VRSTA,1,2,%,4,5,6", true, status(2)},
        {"STA third counter", "$VRSTA,1,2,3,%,5,6", true, status(3)},
        {"STA fourth counter", "$VRSTA,1,2,3,4,%,6", true, status(4)},
        {"STA fifth counter", "$VRSTA,1,2,3,4,5,%", true, status(5)},
        {"FBK must be 0 to 2", "$VRFBK,%", true,
         [=](quint32 n) {
             return n > 2 ? QStringList() : one(call("VRUsedFlashBank", {number(n)}));
         }},
    };
}

} // namespace

void tst_DispatchNumbers::numbers_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("expected");
    for (const NumberField &field : numberFields()) {
        for (const NumberText &text : numberTexts) {
            const QByteArray body = QByteArray(field.body).replace('%', text.text);
            QTest::addRow("%s: '%s'", field.name, text.text)
                << (field.checked ? checkedLine(body) : body) << field.expected(text.value);
        }
    }
    // The version's first number ends at the first dot, wherever it comes from.
    QTest::newRow("VER msb: '4294967295'")
        << checkedLine("$VRVER,4294967295.4") << QStringList{"VRVersion(4294967295, 4)"};
    QTest::newRow("VER msb: '4294967296'")
        << checkedLine("$VRVER,4294967296.4") << QStringList{"VRVersion(0, 4)"};
    QTest::newRow("VER msb: '-1'") << checkedLine("$VRVER,-1.4") << QStringList{"VRVersion(0, 4)"};
    QTest::newRow("VER msb: ''") << checkedLine("$VRVER,.4") << QStringList{"VRVersion(0, 4)"};
    QTest::newRow("VER msb: '3.0'")
        << checkedLine("$VRVER,3.0.4") << QStringList{"VRVersion(3, 0)"};
}

void tst_DispatchNumbers::numbers()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, expected);
    QCOMPARE(of(QString::fromLatin1(line)), expected);
}

void tst_DispatchNumbers::connectAnswer_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<int>("port"); // -1: refused
    QTest::newRow("lowest port") << QByteArray("0") << 0;
    QTest::newRow("highest port") << QByteArray("11") << 11;
    QTest::newRow("12 is above the highest") << QByteArray("12") << -1;
    QTest::newRow("255") << QByteArray("255") << -1;
    QTest::newRow("256 doesn't wrap to 0") << QByteArray("256") << -1;
    QTest::newRow("267 doesn't wrap to 11") << QByteArray("267") << -1;
    QTest::newRow("4294967295") << QByteArray("4294967295") << -1;
    QTest::newRow("4294967296 doesn't convert and counts as 0") << QByteArray("4294967296") << 0;
    QTest::newRow("negative counts as 0") << QByteArray("-1") << 0;
    QTest::newRow("empty counts as 0") << QByteArray("") << 0;
    QTest::newRow("text counts as 0") << QByteArray("abc") << 0;
    QTest::newRow("two fields count as 0") << QByteArray("3,4") << 0;
}

// The first answer moves the search to its last speed, whatever it says; the second is looked at.
void tst_DispatchNumbers::connectAnswer()
{
    QFETCH(QByteArray, field);
    QFETCH(int, port);
    const QString answer = QString::fromLatin1(checkedLine("$VRCNU," + field));
    NmeaSerialPort link;
    const LinkJournal journal(&link);
    link.slot_VRNMEA(answer);
    QCOMPARE(journal.texts(), QStringList());
    link.slot_VRNMEA(answer);
    if (port < 0) {
        QCOMPARE(journal.texts(), QStringList());
        return;
    }
    QCOMPARE(
        journal.texts(),
        (QStringList{"VRConnectionProgress(100)", "VRConnect(" + QString::number(port) + ")"}));
    link.slot_VRNMEA(answer);
    QCOMPARE(journal.entries().size(), 2);
}

QTEST_APPLESS_MAIN(tst_DispatchNumbers)
#include "tst_dispatch_numbers.moc"
