#include "firmwarebench.h"

#include "support/nofile.h"

#include <QFile>
#include <QPushButton>

#include <unistd.h>

/*! The file of a firmware update: its size, its contents, the question before the update. */
class tst_firmware_file : public QObject
{
    Q_OBJECT

private slots:
    void sizes_data();
    void sizes();
    void largestFile();
    void badFiles_data();
    void badFiles();
    void fileThatGoes_data();
    void fileThatGoes();
    void fileThatEndsEarly();
    void unreadableFile();
    void noFileChosen();
    void questions_data();
    void questions();
    void answeredNo();
    void questionsButtonsStay();
};

void tst_firmware_file::sizes_data()
{
    QTest::addColumn<int>("packets");

    // A file without a version has version 0.0.
    QTest::newRow("6") << 1;
    QTest::newRow("14") << 1;
    QTest::newRow("15") << 1;
    QTest::newRow("16") << 1;
    QTest::newRow("17") << 1;
    QTest::newRow("18") << 1;
    QTest::newRow("31") << 1;
    QTest::newRow("32") << 1;
    QTest::newRow("33") << 2;
    QTest::newRow("64") << 2;
    QTest::newRow("65") << 3;
    QTest::newRow("1000") << 32;
}

void tst_firmware_file::sizes()
{
    QFETCH(int, packets);
    const int size = QByteArray(QTest::currentDataTag()).toInt();
    const QByteArray image = firmwareImage(size);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.takeFirmware();
    const QString version = QStringLiteral("%1.%2").arg(size > 14 ? 3 : 0).arg(size > 15 ? 6 : 0);
    bench.files->expect(FirmwareBench::chooser(bench.writeFile(image)));
    bench.boxes.expect(FirmwareBench::question(version, QMessageBox::Yes)).expect(bench.success());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        dialog.findChild<QPushButton *>(QStringLiteral("pushButton_Fw_Update"))->click();
    }));
    QList<QByteArray> expected = {"$VRFWS\r\n"};
    for (int number = 1; number <= packets; ++number)
        expected += packetSentence(image, number);
    expected += {"$VRFWF\r\n", "$VRFWW\r\n"};
    QTRY_VERIFY(!bench.window.isConnected());
    QCOMPARE(bench.firmwareHeard(), expected);
    QCOMPARE(bench.taken, image);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// It would take a quarter of an hour: its beginning will do.
void tst_firmware_file::largestFile()
{
    const QByteArray image = firmwareImage(1000000);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.takeFirmware(3);
    QVERIFY(bench.startUpdate(image));
    QTRY_VERIFY(bench.heard().contains(packetSentence(image, 4)));
    QCOMPARE(bench.taken, image.left(96));
    bench.pressCancel();
    bench.verifyIdle();
}

void tst_firmware_file::badFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("error");

    const QString noFirmware = QStringLiteral("File %1 in not TK-7 firmware");
    QTest::newRow("0 bytes") << QByteArray() << noFirmware;
    QTest::newRow("5 bytes") << firmwareImage(5) << noFirmware;
    QTest::newRow("another magic") << QByteArray("fwVR47").leftJustified(100, '\0') << noFirmware;
    QTest::newRow("magic in lower case")
        << QByteArray("fwvr48").leftJustified(100, '\0') << noFirmware;
    QTest::newRow("magic behind a byte") << ' ' + firmwareImage(100) << noFirmware;
    QTest::newRow("1,000,000 bytes of nothing") << QByteArray(1000000, '\0') << noFirmware;
    QTest::newRow("1,000,001 bytes")
        << firmwareImage(1000001) << QStringLiteral("File %1 is very big");
}

void tst_firmware_file::badFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, error);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    const QString path = bench.writeFile(content);
    bench.files->expect(FirmwareBench::chooser(path));
    bench.boxes.expect(FirmwareBench::loadError(error.arg(path)));
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bench.load(dialog);
        QVERIFY(dialog.isVisible());
    }));
    QCOMPARE(bench.firmwareHeard(), QList<QByteArray>());
    bench.verifyUpdateWorks();
}

void tst_firmware_file::fileThatGoes_data()
{
    addNoFiles();
}

// Between the choice and the reading.
void tst_firmware_file::fileThatGoes()
{
    QFETCH(NoFile, noFile);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    const QString path = bench.writeFile(firmwareImage(100));
    auto chooser = FirmwareBench::chooser(path);
    chooser.onFinished = [&] { makeNoFile(noFile, path); };
    bench.files->expect(chooser);
    bench.boxes.expect(FirmwareBench::loadError(QStringLiteral("Error open file %1").arg(path)));
    QVERIFY(bench.inService([&](servicedlg &dialog) { bench.load(dialog); }));
    QCOMPARE(bench.firmwareHeard(), QList<QByteArray>());
}

// A file of the system that is said to have 4096 bytes and has a few: the same as one that is cut
// while it is read.
void tst_firmware_file::fileThatEndsEarly()
{
    const QString path = QStringLiteral("/sys/devices/system/cpu/online");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.size() > file.readAll().size());
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.files->expect(FirmwareBench::chooser(path));
    bench.boxes.expect(FirmwareBench::loadError(QStringLiteral("Error read file %1").arg(path)));
    QVERIFY(bench.inService([&](servicedlg &dialog) { bench.load(dialog); }));
    QCOMPARE(bench.firmwareHeard(), QList<QByteArray>());
    bench.verifyUpdateWorks();
}

// A file of the system that nobody may read, the superuser neither.
void tst_firmware_file::unreadableFile()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    const QString path = QStringLiteral("/proc/sys/vm/compact_memory");
    QVERIFY(QFile::exists(path) && !QFileInfo(path).isReadable());
    bench.files->expect(FirmwareBench::chooser(path));
    bench.boxes.expect(FirmwareBench::loadError(QStringLiteral("Error open file %1").arg(path)));
    QVERIFY(bench.inService([&](servicedlg &dialog) { bench.load(dialog); }));
}

void tst_firmware_file::noFileChosen()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.files->expect(FirmwareBench::chooser(QString()));
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bench.load(dialog);
        QVERIFY(dialog.isVisible());
    }));
    QCOMPARE(bench.firmwareHeard(), QList<QByteArray>());
}

void tst_firmware_file::questions_data()
{
    QTest::addColumn<QByteArray>("fields"); // offsets 14 to 17
    QTest::addColumn<QString>("version");

    QTest::newRow("no mode") << QByteArray("\x03\x06\0\0", 4) << "3.6";
    QTest::newRow("offset 17 alone is no mode") << QByteArray("\x03\x06\0B", 4) << "3.6";
    QTest::newRow("one character") << QByteArray("\x04\x00"
                                                 "A\0",
                                                 4)
                                   << "4.0 mode A";
    QTest::newRow("two characters") << QByteArray("\x09\x09"
                                                  "AB",
                                                  4)
                                    << "9.9 mode AB";
    QTest::newRow("percent signs") << QByteArray("\x01\x02"
                                                 "%1",
                                                 4)
                                   << "1.2 mode %1";
    QTest::newRow("numbers that are no digits") << QByteArray("\x0a\x11\0\0", 4) << ":.A";
}

void tst_firmware_file::questions()
{
    QFETCH(QByteArray, fields);
    QFETCH(QString, version);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    const QByteArray image = firmwareImage(100).replace(14, 4, fields);
    bench.files->expect(FirmwareBench::chooser(bench.writeFile(image)));
    bench.boxes.expect(FirmwareBench::question(version, QMessageBox::No));
    QVERIFY(bench.inService([&](servicedlg &dialog) { bench.load(dialog); }));
    QCOMPARE(bench.firmwareHeard(), QList<QByteArray>());
}

void tst_firmware_file::answeredNo()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    const QString path = bench.writeFile(firmwareImage(100));
    bench.files->expect(FirmwareBench::chooser(path));
    bench.boxes.expect(FirmwareBench::question(QStringLiteral("3.6"), QMessageBox::No));
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bench.load(dialog);
        QVERIFY(dialog.isVisible());
        QVERIFY(!bench.progress());
    }));
    QTest::qWait(100);
    QCOMPARE(bench.firmwareHeard(), QList<QByteArray>());
    bench.verifyUpdateWorks();
}

void tst_firmware_file::questionsButtonsStay()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    const QString path = bench.writeFile(firmwareImage(100));
    const QString bad = bench.writeFile(QByteArray(100, 'x'), QStringLiteral("bad.efw"));
    bench.files->expect(FirmwareBench::chooser(bad))
        .expect(FirmwareBench::chooser(path))
        .expect(FirmwareBench::chooser(bad));
    BoxAnswer::Box error =
        FirmwareBench::loadError(QStringLiteral("File %1 in not TK-7 firmware").arg(bad));
    bench.boxes.expect(error).expect(
        FirmwareBench::question(QStringLiteral("3.6"), QMessageBox::No));
    error.buttons = QMessageBox::Yes | QMessageBox::No;
    error.click = QMessageBox::Yes;
    bench.boxes.expect(error);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        for (int i = 0; i < 3; ++i)
            dialog.findChild<QPushButton *>(QStringLiteral("pushButton_Fw_Update"))->click();
        QVERIFY(dialog.isVisible());
        QVERIFY2(bench.files->report().isEmpty(), qPrintable(bench.files->report()));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QCOMPARE(bench.firmwareHeard(), QList<QByteArray>());
}

QTEST_MAIN(tst_firmware_file)
#include "tst_firmware_file.moc"
