#include "linkjournal.h"
#include "sentencereports.h"
#include "support/checkedline.h"

#include <QtTest>

using namespace Reports;

/*! Sentences that the line has damaged: they raise nothing wrong, and leave nothing old behind. */
class tst_DispatchDamage : public QObject
{
    Q_OBJECT

private slots:
    void wrongChecksum_data();
    void wrongChecksum();
    void everyTruncationIsHarmless_data();
    void everyTruncationIsHarmless();
    void serialBlockIsCleared_data();
    void serialBlockIsCleared();
};

namespace {

// A good sentence of each checked kind.
const QByteArray checkedBodies[] = {
    "$VRCNU,3",
    "$VRSPD,3,9600",
    "$VRRUL,5,0," + twelveWords,
    "$VRFLT,7,0,6," + sixMasks,
    "$VRPNM,I,0,a,b,c,d,e,f",
    "$VRHDC,9,0,GP,,HE,II,,,,,,,,AI",
    "$VRFLS,8,RMC,,GGA,VDM,,,,HDT",
    "$VRVER,3.4",
    "$VRMOD,Normal1",
    "$VRERR,01F4,2C",
    "$VRFWP,1023",
    "$VRFWE,4",
    "$VRSTA,1,2,3,4,5,6",
    "$VRSER," + chipDigits,
    "$VRPWS,OK",
    "$VRLCK,1,5",
    "$VRPWV,Secret7",
    "$VRFBK,1",
    "$VRAIM,3,1,1,,A,13u?etPv2;0n:dDPwUM1U1Cb069D,0",
    "$VRAIO,3,1,1,,,13u?etPv2;0n:dDPwUM1U1Cb069D,0",
    "$VRAIA,3,133710,001,A,V,Tx malfunction",
    "$VRAIP,5,A,5957.9700,N,03019.1100,E",
};

} // namespace

void tst_DispatchDamage::wrongChecksum_data()
{
    QTest::addColumn<QByteArray>("body");
    for (const QByteArray &body : checkedBodies)
        QTest::newRow(body.mid(3, 3).constData()) << body;
}

void tst_DispatchDamage::wrongChecksum()
{
    QFETCH(QByteArray, body);
    const QString sum = QString::number(xorSum(body), 16);
    const QString text = QString::fromLatin1(body);
    const QStringList wrong{
        QString::fromLatin1(wronglyCheckedLine(body)),
        text + "\r\n",
        text + "*\r\n",
        text + "*XX\r\n",
        text + "*1" + sum + "\r\n",
        text + "*" + sum + ",\r\n",
        text + "**" + sum + "\r\n",
    };
    for (const QString &line : wrong)
        QCOMPARE(of(line), QStringList{sumError});
}

void tst_DispatchDamage::everyTruncationIsHarmless_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("wordDigits"); // of words without a separator; 0: the fields have one
    for (const QByteArray &body : checkedBodies) {
        const QByteArray code = body.mid(3, 3);
        if (code == "CNU") // what it does depends on the search, and is tested there
            continue;
        const int wordDigits = code == "RUL" ? 4 : code == "FLT" ? 8 : 0;
        QTest::newRow(code.constData()) << body << wordDigits;
    }
}

// A body cut anywhere, with a right checksum behind it, raises a beginning of what the whole
// sentence raises. What the cut goes through can say something else, and so can words that are not
// there.
void tst_DispatchDamage::everyTruncationIsHarmless()
{
    QFETCH(QByteArray, body);
    QFETCH(int, wordDigits);
    constexpr int headLength = 6;
    NmeaSerialPort link;
    LinkJournal journal(&link);
    const auto raisedBy = [&](const QByteArray &sentence) {
        journal.clear();
        link.slot_VRNMEA(QString::fromLatin1(checkedLine(sentence)));
        return journal.texts();
    };
    const auto nameOf = [](const QString &report) { return report.section('(', 0, 0); };
    const QStringList whole = raisedBy(body);
    QVERIFY(!whole.isEmpty());
    const int wordsStart = int(body.lastIndexOf(',') + 1);
    for (int length = 1; length < body.size(); ++length) {
        const QStringList raised = raisedBy(body.left(length));
        if (length <= headLength)
            QCOMPARE(raised, QStringList());
        QVERIFY(raised.size() <= whole.size());
        const int told =
            int(wordDigits > 0 ? (length - wordsStart) / wordDigits : whole.size() - 1);
        const int unharmed = int(qBound(0, told, raised.size()));
        QCOMPARE(raised.mid(0, unharmed), whole.mid(0, unharmed));
        for (int i = 0; i < raised.size(); ++i)
            QCOMPARE(nameOf(raised.at(i)), nameOf(whole.at(i)));
    }
}

void tst_DispatchDamage::serialBlockIsCleared_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("wrong checksum") << wronglyCheckedLine("$VRSER," + chipDigits);
    QTest::newRow("30 digits") << checkedLine("$VRSER," + chipDigits.left(30));
    QTest::newRow("34 digits") << checkedLine("$VRSER," + chipDigits + "00");
    QTest::newRow("last pair isn't a number")
        << checkedLine("$VRSER," + chipDigits.left(30) + "XX");
}

void tst_DispatchDamage::serialBlockIsCleared()
{
    QFETCH(QByteArray, line);
    NmeaSerialPort link;
    const LinkJournal journal(&link);
    const QByteArray *block = nullptr;
    connect(&link, &NmeaSerialPort::signalVRSerial, &link,
            [&](const QByteArray *reported) { block = reported; });
    link.slot_VRNMEA(QString::fromLatin1(checkedLine("$VRSER," + chipDigits)));
    QVERIFY(block);
    QCOMPARE(*block, QByteArray::fromHex(chipDigits));
    link.slot_VRNMEA(QString::fromLatin1(line));
    QCOMPARE(*block, QByteArray());
    QCOMPARE(journal.count("VRSerial(" + QString::fromLatin1(chipDigits).toLower() + ")"), 1);
}

QTEST_APPLESS_MAIN(tst_DispatchDamage)
#include "tst_dispatch_damage.moc"
