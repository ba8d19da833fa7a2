#include "model/commands.h"
#include "model/servicesentences.h"

#include <QTest>

Q_DECLARE_METATYPE(FirmwarePacket)

/*! The sentences behind the service dialog. The checksums were worked out apart from this code. */
class tst_servicesentences : public QObject
{
    Q_OBJECT

private slots:
    void sentences_data();
    void sentences();
    void packets_data();
    void packets();
    void everyPacketOnce_data();
    void everyPacketOnce();
    void progress_data();
    void progress();
};

void tst_servicesentences::sentences_data()
{
    QTest::addColumn<QString>("built");
    QTest::addColumn<QString>("sentence");

    QTest::newRow("status of port 0") << MakeStatusSentence(0) << "$VRSTA,0*5E\r\n";
    QTest::newRow("status of port 11") << MakeStatusSentence(11) << "$VRSTA,11*6E\r\n";
    QTest::newRow("password in lower case")
        << MakeSetPasswordSentence("abc") << "$VRPWS,abc*1C\r\n";
    QTest::newRow("password in upper case")
        << MakeSetPasswordSentence("ABC") << "$VRPWS,ABC*3C\r\n";
    QTest::newRow("unlock") << MakeUnlockSentence("Harbour7") << "$VRPWU,Harbour7*1C\r\n";
    QTest::newRow("mode") << MakeModeSentence("Day1") << "$VRMOD,Day1*03\r\n";
    QTest::newRow("chip identifier") << QString(Commands::ChipIdentifier) << "$VRSER\r\n";
    QTest::newRow("clear") << QString(Commands::ClearStatistics) << "$VRSTC\r\n";
    QTest::newRow("AIS test on") << QString(Commands::AisTestOn) << "$VRATM,ON\r\n";
    QTest::newRow("AIS test off") << QString(Commands::AisTestOff) << "$VRATM,OFF\r\n";
    QTest::newRow("firmware start") << QString(Commands::FirmwareStart) << "$VRFWS\r\n";
    QTest::newRow("firmware finish") << QString(Commands::FirmwareFinish) << "$VRFWF\r\n";
    QTest::newRow("firmware use") << QString(Commands::FirmwareUse) << "$VRFWW\r\n";
    QTest::newRow("remove password") << QString(Commands::RemovePassword) << "$VRPWD\r\n";
    QTest::newRow("view password") << QString(Commands::ViewPassword) << "$VRPWV\r\n";
    QTest::newRow("lock") << QString(Commands::Lock) << "$VRLGO\r\n";
}

void tst_servicesentences::sentences()
{
    QFETCH(QString, built);
    QTEST(built, "sentence");
}

void tst_servicesentences::packets_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<uint>("number");
    QTest::addColumn<FirmwarePacket>("result");
    QTest::addColumn<QString>("sentence");

    const QString untouched = QStringLiteral("untouched");
    const QByteArray zeros(32, '\0');
    const QString zeroPacket =
        QStringLiteral("$VRFWP,1,") + QString(64, '0') + QStringLiteral("*74\r\n");
    const auto add = [](const char *name, const QByteArray &image, uint number,
                        FirmwarePacket result, const QString &sentence) {
        QTest::newRow(name) << image << number << result << sentence;
    };
    add("no image", QByteArray(), 1, FirmwarePacket::NoImage, untouched);
    add("32 bytes", zeros, 1, FirmwarePacket::Made, zeroPacket);
    add("32 bytes, second packet", zeros, 2, FirmwarePacket::PastEnd, untouched);
    add("33 bytes, first packet", zeros + '\x0a', 1, FirmwarePacket::Made, zeroPacket);
    add("33 bytes, second packet", zeros + '\x0a', 2, FirmwarePacket::Made,
        QStringLiteral("$VRFWP,2,0A*06\r\n"));
    add("33 bytes, third packet", zeros + '\x0a', 3, FirmwarePacket::PastEnd, untouched);
    add("one byte", QByteArray(1, char(0xff)), 1, FirmwarePacket::Made,
        QStringLiteral("$VRFWP,1,FF*74\r\n"));
    add("last packet of the largest image", QByteArray(1000000, '\0'), 31250, FirmwarePacket::Made,
        QStringLiteral("$VRFWP,31250,") + QString(64, '0') + QStringLiteral("*70\r\n"));
    add("behind the largest image", QByteArray(1000000, '\0'), 31251, FirmwarePacket::PastEnd,
        untouched);
    add("far behind the image", zeros, 4294967295u, FirmwarePacket::PastEnd, untouched);
    add("packet 0", zeros, 0, FirmwarePacket::PastEnd, untouched);
}

void tst_servicesentences::packets()
{
    QFETCH(QByteArray, image);
    QFETCH(uint, number);
    QString sentence = QStringLiteral("untouched");
    const FirmwarePacket result = MakeFirmwarePacket(image, number, sentence);
    QTEST(result, "result");
    QTEST(sentence, "sentence");
}

void tst_servicesentences::everyPacketOnce_data()
{
    QTest::addColumn<int>("size");

    for (const int size : {1, 31, 32, 33, 63, 64, 65, 1000})
        QTest::addRow("%d bytes", size) << size;
}

void tst_servicesentences::everyPacketOnce()
{
    QFETCH(int, size);
    QByteArray image;
    for (int i = 0; i < size; ++i)
        image.append(char(i * 7));
    QByteArray joined;
    QString sentence;
    quint32 number = 1;
    while (MakeFirmwarePacket(image, number, sentence) == FirmwarePacket::Made) {
        const QString data = sentence.section(',', 2).section('*', 0, 0);
        QCOMPARE(data, data.toUpper());
        QVERIFY(data.size() <= 64);
        joined += QByteArray::fromHex(data.toLatin1());
        ++number;
    }
    QCOMPARE(joined, image);
    QCOMPARE(int(number) - 1, (size + 31) / 32);
}

void tst_servicesentences::progress_data()
{
    QTest::addColumn<uint>("number");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("percent");

    QTest::newRow("half") << 2u << 128 << 50;
    QTest::newRow("three quarters") << 3u << 128 << 75;
    QTest::newRow("all") << 4u << 128 << 100;
    QTest::newRow("cut, not rounded") << 2u << 96 << 66;
    QTest::newRow("beyond the end of a small image") << 2u << 33 << 193;
    QTest::newRow("the second of the largest image") << 2u << 1000000 << 0;
    QTest::newRow("a hundredth of the largest image") << 313u << 1000000 << 1;
    QTest::newRow("the last of the largest image") << 31250u << 1000000 << 100;
    QTest::newRow("no image") << 1u << 0 << 0;
}

void tst_servicesentences::progress()
{
    QFETCH(uint, number);
    QFETCH(int, size);
    QTEST(firmwareProgress(number, size), "percent");
}

QTEST_APPLESS_MAIN(tst_servicesentences)
#include "tst_servicesentences.moc"
