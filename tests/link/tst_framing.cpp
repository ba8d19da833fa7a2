#include "link/sentence.h"
#include "support/checkedline.h"

#include <QRandomGenerator>
#include <QtTest>

class tst_Framing : public QObject
{
    Q_OBJECT

private slots:
    void sum_data();
    void sum();
    void earlyStarIsFinite_data();
    void earlyStarIsFinite();
    void sumEqualsXorOfLatin1();
    void testLine_data();
    void testLine();
    void everyWrongNumberFails();
    void hasStar_data();
    void hasStar();
    void trailer_data();
    void trailer();
    void checked_data();
    void checked();
};

void tst_Framing::sum_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");
    QTest::addColumn<bool>("hasMark");

    QTest::newRow("no text sums to 0") << QString() << 0 << false;
    QTest::newRow("the '$' alone sums to 0") << "$" << 0 << false;
    QTest::newRow("any single character sums to 0") << "A" << 0 << false;
    QTest::newRow("two characters: the second") << "$A" << 0x41 << false;
    QTest::newRow("three characters: second xor third") << "$AB" << 0x03 << false;
    QTest::newRow("the first character never takes part") << "!AB" << 0x03 << false;
    QTest::newRow("star at index 3 ends the sum") << "$AB*" << 0x03 << true;
    QTest::newRow("nothing behind the star takes part") << "$AB*CDEF\r\n" << 0x03 << true;
    QTest::newRow("only the first star counts") << "$AB*CD*EF" << 0x03 << true;
    QTest::newRow("known position sentence") << "$GPGLL,5057.970,N,00146.110,E,142451,A*27\r\n"
                                             << 0x27 << true;
    QTest::newRow("known fix sentence")
        << "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n"
        << 0x47 << true;
    QTest::newRow("known AIS sentence") << "!AIVDM,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0*5C\r\n"
                                        << 0x5c << true;
    QTest::newRow("outbound body without a star") << "$VRCNU,3" << 0x43 << false;
    QTest::newRow("body that ends in its star sums as without") << "$VRCNU,3*" << 0x43 << true;
    QTest::newRow("CR takes part where no star stops the sum") << "$VRCNU,3\r" << 0x4e << false;
    QTest::newRow("LF takes part where no star stops the sum") << "$VRCNU,3\r\n" << 0x44 << false;
    QTest::newRow("Latin-1 letter sums as its byte") << QStringLiteral("$A\u00e9") << 0xa8 << false;
    QTest::newRow("Latin-1 letter at index 1") << QStringLiteral("$\u00ff") << 0xff << false;
    QTest::newRow("character outside Latin-1 sums as a question mark")
        << QStringLiteral("$A\u20ac") << 0x7e << false;
    QTest::newRow("NUL takes part as 0")
        << QString(QStringLiteral("$A\0B").constData(), 4) << 0x03 << false;
}

void tst_Framing::sum()
{
    QFETCH(QString, text);
    QFETCH(int, expected);
    QFETCH(bool, hasMark);
    quint8 checksum = 0xaa; // must be overwritten, whatever the text
    QCOMPARE(calcChecksum(text, checksum), hasMark);
    QCOMPARE(int(checksum), expected);
}

void tst_Framing::earlyStarIsFinite_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("star at index 0, alone") << "*";
    QTest::newRow("star at index 0, digits behind") << "*00\r\n";
    QTest::newRow("star at index 0, a sentence behind") << "*VRCNU,3*43\r\n";
    QTest::newRow("star at index 1, alone") << "$*";
    QTest::newRow("star at index 1, zero behind") << "$*00\r\n";
    QTest::newRow("star at index 1, the star's own code behind") << "$*2A\r\n";
    QTest::newRow("star at index 1, padded to a testable line") << "$*002A\r\n";
    QTest::newRow("star at index 2, alone") << "$A*";
    QTest::newRow("star at index 2, zero behind") << "$A*00\r\n";
    QTest::newRow("star at index 2, the letter's code behind") << "$A*41\r\n";
    QTest::newRow("star at index 2, letter xor star behind") << "$A*6B\r\n";
    QTest::newRow("star at index 2, padded to a testable line") << "$A*0041\r\n";
}

// Nothing stands between the '$' and such a star that could be summed, so no number behind it fits.
void tst_Framing::earlyStarIsFinite()
{
    QFETCH(QString, line);
    quint8 checksum = 0;
    QVERIFY(calcChecksum(line, checksum));
    QVERIFY(!testChecksum(line));
    const QString padded = QString(line).remove(QLatin1String("\r\n"));
    for (int number = 0; number <= 0xff; ++number) {
        const int mark = int(padded.indexOf(QLatin1Char('*')));
        const QString tried = padded.left(mark + 1) + QString::number(number, 16) + "\r\n";
        QVERIFY2(!testChecksum(tried), qPrintable(tried));
    }
}

void tst_Framing::sumEqualsXorOfLatin1()
{
    constexpr quint32 seed = 20210;
    constexpr int texts = 2000;
    constexpr int maxLength = 120;
    QRandomGenerator random(seed);
    for (int i = 0; i < texts; ++i) {
        QString text(QLatin1Char('$'));
        const int length = random.bounded(1, maxLength);
        for (int k = 0; k < length; ++k) {
            const QChar sign(ushort(random.bounded(k % 3 ? 0x100 : 0x10000)));
            text += sign == QLatin1Char('*') ? QLatin1Char('+') : sign;
        }
        quint8 checksum = 0;
        QVERIFY(!calcChecksum(text, checksum));
        QCOMPARE(checksum, xorSum(text.toLatin1()));
    }
}

void tst_Framing::testLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("passes");

    QTest::newRow("version with the right digits") << "$VRVER,3.4*40\r\n" << true;
    QTest::newRow("version, upper case digits") << "$VRVER,12.8*7C\r\n" << true;
    QTest::newRow("version, lower case digits") << "$VRVER,12.8*7c\r\n" << true;
    QTest::newRow("upper case digits") << "$VRSPD,3,9600*7F\r\n" << true;
    QTest::newRow("lower case digits") << "$VRSPD,3,9600*7f\r\n" << true;
    QTest::newRow("single digit for a small checksum") << "$AN*F\r\n" << true;
    QTest::newRow("single lower case digit") << "$AN*f\r\n" << true;
    QTest::newRow("padded digit for a small checksum") << "$AN*0F\r\n" << true;
    QTest::newRow("leading zeros, any number of digits") << "$AN*00000F\r\n" << true;
    QTest::newRow("checksum of 00") << "$AA*00\r\n" << true;
    QTest::newRow("checksum of FF") << QStringLiteral("$A\u00be*FF\r\n") << true;
    QTest::newRow("no CR") << "$VRVER,3.4*40\n" << true;
    QTest::newRow("no CR LF at all") << "$VRVER,3.4*40" << true;
    QTest::newRow("white space around the number") << "$VRVER,3.4* 40 \r\n" << true;
    QTest::newRow("Latin-1 letter in a name") << QStringLiteral("$VRX,\u00e9*12\r\n") << false;
    QTest::newRow("Latin-1 letter in a name, right digits")
        << QStringLiteral("$AB\u00e9*EA\r\n") << true;

    QTest::newRow("wrong digits") << "$VRVER,3.4*41\r\n" << false;
    QTest::newRow("right low byte under a higher digit") << "$VRVER,3.4*140\r\n" << false;
    QTest::newRow("14F is not 4F") << "$A\x0e*14F\r\n" << false;
    QTest::newRow("4F is 4F") << "$A\x0e*4F\r\n" << true;
    QTest::newRow("number above 32 bits") << "$VRVER,3.4*100000040\r\n" << false;
    QTest::newRow("no star") << "$VRVER,3.4\r\n" << false;
    QTest::newRow("no star but the digits") << "$VRVER,3.440\r\n" << false;
    QTest::newRow("empty text") << "" << false;
    QTest::newRow("CR LF only") << "\r\n" << false;
    QTest::newRow("nothing between the star and CR LF") << "$AA*\r\n" << false;
    QTest::newRow("star last of the text") << "$AA*" << false;
    QTest::newRow("star last but one, though the digit fits") << "$AN*F" << false;
    QTest::newRow("not a number") << "$AA*0G\r\n" << false;
    QTest::newRow("text behind the digits") << "$VRVER,3.4*40,\r\n" << false;
    QTest::newRow("second star behind the digits") << "$VRVER,3.4*40*40\r\n" << false;
    QTest::newRow("checksum of the part before the second star") << "$A*N*4E\r\n" << false;
}

void tst_Framing::testLine()
{
    QFETCH(QString, line);
    QFETCH(bool, passes);
    QCOMPARE(testChecksum(line), passes);
}

void tst_Framing::everyWrongNumberFails()
{
    const QByteArray body = "$VRLCK,1,5";
    for (int number = 0; number <= 0x1ff; ++number) {
        const QString line = QString::fromLatin1(body) + '*' + QString::number(number, 16) + "\r\n";
        QCOMPARE(testChecksum(line), number == xorSum(body));
    }
}

void tst_Framing::hasStar_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("expected");
    QTest::newRow("no checksum") << "$GPGLL,5057.970,N\r\n" << false;
    QTest::newRow("right checksum") << "$VRVER,3.4*40\r\n" << true;
    QTest::newRow("wrong checksum") << "$VRVER,3.4*00\r\n" << true;
    QTest::newRow("star with nothing behind") << "$AA*" << true;
    QTest::newRow("star alone") << "*" << true;
    QTest::newRow("empty") << "" << false;
}

void tst_Framing::hasStar()
{
    QFETCH(QString, line);
    QFETCH(bool, expected);
    QCOMPARE(hasChecksum(line), expected);
}

void tst_Framing::trailer_data()
{
    QTest::addColumn<int>("checksum");
    QTest::addColumn<QString>("expected");
    QTest::newRow("0 is two zeros") << 0 << "*00\r\n";
    QTest::newRow("one digit is padded") << 10 << "*0A\r\n";
    QTest::newRow("two digits") << 0x10 << "*10\r\n";
    QTest::newRow("upper case") << 0xab << "*AB\r\n";
    QTest::newRow("highest") << 255 << "*FF\r\n";
}

void tst_Framing::trailer()
{
    QFETCH(int, checksum);
    QFETCH(QString, expected);
    QCOMPARE(checksumTrailer(quint8(checksum)), expected);
}

void tst_Framing::checked_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("expected");
    QTest::newRow("connect answer") << "$VRCNU,3"
                                    << "$VRCNU,3*43\r\n";
    QTest::newRow("version") << "$VRVER,3.4"
                             << "$VRVER,3.4*40\r\n";
    QTest::newRow("the body keeps its case") << "$VRMOD,abCd"
                                             << "$VRMOD,abCd*4A\r\n";
    QTest::newRow("Latin-1 body") << QStringLiteral("$AB\u00e9")
                                  << QStringLiteral("$AB\u00e9*EA\r\n");
    QTest::newRow("checksum of 0") << "$AA"
                                   << "$AA*00\r\n";
}

void tst_Framing::checked()
{
    QFETCH(QString, body);
    QFETCH(QString, expected);
    QCOMPARE(checkedSentence(body), expected);
    QVERIFY(testChecksum(checkedSentence(body)));
}

QTEST_APPLESS_MAIN(tst_Framing)
#include "tst_framing.moc"
