#include "model/viewcode.h"

#include <QtTest>

class TestViewCode : public QObject
{
    Q_OBJECT

private slots:
    void inspectsByte_data();
    void inspectsByte();
    void makesByte_data();
    void makesByte();
    void keepsEveryByte();
    void startsWithNothing();
};

void TestViewCode::inspectsByte_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("channel");
    QTest::addColumn<QString>("text");

    QTest::newRow("255 is nothing") << 255 << "none" << 15 << 15 << "";
    QTest::newRow("first input port") << 0xf0 << "input" << 0 << 15 << "INPUT PORT 0";
    QTest::newRow("input port 3 is 243") << 243 << "input" << 3 << 15 << "INPUT PORT 3";
    QTest::newRow("last input port") << 0xfb << "input" << 11 << 15 << "INPUT PORT 11";
    QTest::newRow("no such input port") << 0xfc << "input" << 12 << 15 << "INPUT PORT 12";
    QTest::newRow("highest input nibble") << 0xfe << "input" << 14 << 15 << "INPUT PORT 14";
    QTest::newRow("first output port") << 15 << "output" << 0 << 15 << "OUTPUT PORT 0";
    QTest::newRow("output port 3 is 63") << 63 << "output" << 3 << 15 << "OUTPUT PORT 3";
    QTest::newRow("last output port") << 0xbf << "output" << 11 << 15 << "OUTPUT PORT 11";
    QTest::newRow("no such output port") << 0xcf << "output" << 12 << 15 << "OUTPUT PORT 12";
    QTest::newRow("0 is the first channel of the first port")
        << 0 << "channel" << 0 << 0 << "OUTPUT PORT 0 - CHANNEL 0";
    QTest::newRow("port before channel")
        << 0x57 << "channel" << 5 << 7 << "OUTPUT PORT 5 - CHANNEL 7";
    QTest::newRow("last channel of the last port")
        << 0xbb << "channel" << 11 << 11 << "OUTPUT PORT 11 - CHANNEL 11";
    QTest::newRow("no such channel")
        << 0x0c << "channel" << 0 << 12 << "OUTPUT PORT 0 - CHANNEL 12";
    QTest::newRow("channel of no such port")
        << 0xe2 << "channel" << 14 << 2 << "OUTPUT PORT 14 - CHANNEL 2";
}

void TestViewCode::inspectsByte()
{
    QFETCH(int, byte);
    QFETCH(QString, kind);
    const ViewCode code{quint8(byte)};

    QCOMPARE(code.isNone(), kind == QLatin1String("none"));
    QCOMPARE(code.isInput(), kind == QLatin1String("input"));
    QCOMPARE(code.isOutput(), kind == QLatin1String("output"));
    QCOMPARE(code.isChannel(), kind == QLatin1String("channel"));
    QTEST(int(code.port()), "port");
    QTEST(int(code.channel()), "channel");
    QTEST(code.text(), "text");
}

void TestViewCode::makesByte_data()
{
    QTest::addColumn<int>("made");
    QTest::addColumn<int>("byte");

    QTest::newRow("nothing") << int(ViewCode::none().byte()) << 255;
    QTest::newRow("input port 0") << int(ViewCode::input(0).byte()) << 240;
    QTest::newRow("input port 11") << int(ViewCode::input(11).byte()) << 251;
    QTest::newRow("output port 0") << int(ViewCode::output(0).byte()) << 15;
    QTest::newRow("output port 11") << int(ViewCode::output(11).byte()) << 191;
    QTest::newRow("channel 0 of port 0") << int(ViewCode::channel(0, 0).byte()) << 0;
    QTest::newRow("channel 2 of port 9") << int(ViewCode::channel(9, 2).byte()) << 146;
    QTest::newRow("of a number too great, its low four bits")
        << int(ViewCode::channel(0x12, 0x13).byte()) << 0x23;
}

void TestViewCode::makesByte()
{
    QFETCH(int, made);
    QTEST(made, "byte");
}

void TestViewCode::keepsEveryByte()
{
    for (int byte = 0; byte <= 0xff; ++byte) {
        const ViewCode code{quint8(byte)};
        QCOMPARE(int(code.byte()), byte);
        QCOMPARE(code.isNone() + code.isInput() + code.isOutput() + code.isChannel(), 1);

        ViewCode again;
        if (code.isInput())
            again = ViewCode::input(code.port());
        if (code.isOutput())
            again = ViewCode::output(code.port());
        if (code.isChannel())
            again = ViewCode::channel(code.port(), code.channel());
        QVERIFY(again == code);
        QVERIFY(code != ViewCode(quint8(byte + 1)));
    }
}

void TestViewCode::startsWithNothing()
{
    QVERIFY(ViewCode().isNone());
}

QTEST_APPLESS_MAIN(TestViewCode)
#include "tst_viewcode.moc"
