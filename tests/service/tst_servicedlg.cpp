#include "service/modedlg.h"
#include "service/servicedlg.h"
#include "support/boxanswer.h"
#include "support/filedialoganswer.h"
#include "support/indialog.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

/*! The service dialog by itself: what it refuses and what it asks to be sent. */
class tst_servicedlg : public QObject
{
    Q_OBJECT

private slots:
    void gates_data();
    void gates();
    void asksForPortsInTurn();
    void chipBytes_data();
    void chipBytes();
    void startsAnUpdate();
    void lockAsksForNothingAtTheOpening();
};

namespace {

BoxAnswer::Box warning(const QString &title, const QString &text)
{
    return {title, text, QMessageBox::Warning};
}

FileDialogAnswer::Dialog chooser(const QString &fileName)
{
    FileDialogAnswer::Dialog dialog;
    dialog.caption = QStringLiteral("Select firmware file");
    dialog.filters = QStringList{QStringLiteral("*.efw")};
    dialog.fileName = fileName;
    return dialog;
}

QPushButton *button(const QDialog &dialog, const char *name)
{
    return dialog.findChild<QPushButton *>(QString::fromLatin1(name));
}

} // namespace

void tst_servicedlg::gates_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("statistics");
    QTest::addColumn<QString>("firmware"); // the refusals, empty where there is none
    QTest::addColumn<QString>("ais");
    QTest::addColumn<QString>("mode");

    const QString none;
    const QString firmware =
        QStringLiteral("Firmware version below 3.0 does not support firmware upgrade");
    const QString ais = QStringLiteral("Firmware version below 3.5 does not support AIS Test");
    const QString mode = QStringLiteral("Firmware version below 4.0 does not support change mode");
    const QString unknown = QStringLiteral("The router has an unknown firmware version\r\n");
    // The window never opens this dialog for one; the dialog itself refuses only what it must.
    QTest::newRow("2.9") << "2.9" << true << firmware << ais << mode;
    QTest::newRow("3.0") << "3.0" << false << none << ais << mode;
    QTest::newRow("3.1") << "3.1" << true << none << ais << mode;
    QTest::newRow("3.3") << "3.3" << true << none << ais << mode;
    QTest::newRow("3.4") << "3.4" << true << none << none << mode;
    QTest::newRow("3.5") << "3.5" << true << none << none << mode;
    QTest::newRow("3.10") << "3.10" << true << none << none << mode;
    QTest::newRow("4.0") << "4.0" << true << none << none << none;
    QTest::newRow("unknown") << QString() << true
                             << QString(unknown + QStringLiteral("Update not possible"))
                             << QString(unknown + QStringLiteral("AIS Test not possible"))
                             << QString(unknown + QStringLiteral("Change mode not possible"));
}

void tst_servicedlg::gates()
{
    QFETCH(QString, version);
    QFETCH(bool, statistics);
    QFETCH(QString, firmware);
    QFETCH(QString, ais);
    QFETCH(QString, mode);
    BoxAnswer boxes;
    FileDialogAnswer files;
    QByteArray buffer;
    servicedlg dialog(nullptr);
    dialog.setFirmwareBuffer(&buffer);
    if (!version.isEmpty())
        dialog.setVersion(version.section('.', 0, 0).toUInt(), version.section('.', 1).toUInt());
    dialog.setLockStatus(true, 5, true);
    dialog.show();
    for (const char *name : {"pushButton_Clear", "pushButton_ChipID", "pushButton_Lock"})
        QCOMPARE(button(dialog, name)->isEnabled(), statistics);
    QCOMPARE(dialog.findChild<QTableWidget *>()->isEnabled(), statistics);
    QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("label_ChipID"))->isEnabled(), statistics);

    if (firmware.isEmpty()) {
        files.expect(chooser(QString()));
    } else {
        boxes.expect(warning(QStringLiteral("Load Firmware"), firmware));
    }
    button(dialog, "pushButton_Fw_Update")->click();
    QVERIFY2(files.report().isEmpty(), qPrintable(files.report()));

    if (mode.isEmpty()) {
        QVERIFY(inDialog<modeDlg>(button(dialog, "pushButton_Change_Mode"),
                                  [](modeDlg &opened) { opened.reject(); }));
    } else {
        boxes.expect(warning(QStringLiteral("Mode error"), mode));
        button(dialog, "pushButton_Change_Mode")->click();
    }

    if (!ais.isEmpty()) {
        boxes.expect(warning(
            version.isEmpty() ? QStringLiteral("AIS Test") : QStringLiteral("Ais Test"), ais));
    }
    button(dialog, "pushButton_AisTest")->click();
    QCOMPARE(dialog.isVisible(), !ais.isEmpty());
    QCOMPARE(dialog.result(), ais.isEmpty() ? 5 : 0);
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

void tst_servicedlg::asksForPortsInTurn()
{
    servicedlg dialog(nullptr);
    QSignalSpy requests(&dialog, &servicedlg::signalRequestStatusErrors);
    QSignalSpy clears(&dialog, &servicedlg::signalClearStatusErrors);
    dialog.slotUpdateTimer();
    for (uint port = 0; port < 12; ++port)
        dialog.slotStatusErrors(port, 1, 2, 3, 4, 5);
    dialog.slotStatusErrors(12, 1, 2, 3, 4, 5);
    QList<int> asked;
    for (const QList<QVariant> &request : qAsConst(requests))
        asked += request.first().toInt();
    QCOMPARE(asked, QList<int>({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
    QCOMPARE(clears.size(), 0);
    dialog.slotButClear();
    QCOMPARE(clears.size(), 1);
    QCOMPARE(requests.size(), 13);
}

void tst_servicedlg::chipBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("hexadecimal");

    QTest::newRow("letters") << QByteArray("0123456789ABCDEF") << "FEDC BA98 7654 3210 "
                             << "46454443 42413938 37363534 33323130 ";
    QTest::newRow("not ASCII") << QByteArray(16, char(0xe9))
                               << QString(QString(4, QChar(0xe9)) + ' ').repeated(4)
                               << QStringLiteral("e9e9e9e9 ").repeated(4);
    QTest::newRow("markup is no markup") << QByteArray("<b>x</b><i>y</i>") << ">i/< y>i< >b/< x>b< "
                                         << "3e692f3c 793e693c 3e622f3c 783e623c ";
    const QString zeros(4, QChar(0));
    QTest::newRow("zeros between")
        << QByteArray("A\0CDEFGH\0\0\0\0MNO\0", 16)
        << QString(QChar(0)) + "ONM " + zeros + " HGFE DC" + QChar(0) + "A "
        << "004f4e4d 00000000 48474645 44430041 ";
    QTest::newRow("too short to be one") << QByteArray("012345678") << QString() << QString();
    QTest::newRow("empty") << QByteArray() << QString() << QString();
}

void tst_servicedlg::chipBytes()
{
    QFETCH(QByteArray, bytes);
    servicedlg dialog(nullptr);
    const auto *label = dialog.findChild<QLabel *>(QStringLiteral("label_ChipID"));
    QVERIFY(label->text().isEmpty());
    QCOMPARE(label->textFormat(), Qt::PlainText);
    dialog.slotVRSerial(&bytes);
    QTEST(label->text(), "text");
    // A copy: what the link does with its own doesn't matter.
    bytes.clear();
    dialog.slotUpdateSerialView();
    QTEST(label->text(), "hexadecimal");
    dialog.slotUpdateSerialView();
    QTEST(label->text(), "text");
}

void tst_servicedlg::startsAnUpdate()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.efw"));
    const QByteArray content = QByteArray("fwVR48________\x03\x07\x44\x59rest", 22);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();

    BoxAnswer boxes;
    FileDialogAnswer files;
    QByteArray buffer;
    servicedlg dialog(nullptr);
    dialog.setFirmwareBuffer(&buffer);
    dialog.setVersion(3, 0);
    dialog.show();
    QSignalSpy starts(&dialog, &servicedlg::startFirmwareUpdate);
    const QString question =
        QStringLiteral("Are you sure want to install the firmware version 3.7 mode DY ?");
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        FileDialogAnswer::Dialog choice = chooser(path);
        choice.whileOpen = [] {
            const auto *open = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            QCOMPARE(open->fileMode(), QFileDialog::ExistingFile);
        };
        files.expect(choice);
        boxes.expect({QStringLiteral("Load Firmware"), question, QMessageBox::Question,
                      QMessageBox::Yes | QMessageBox::No, answer});
        button(dialog, "pushButton_Fw_Update")->click();
        QCOMPARE(buffer, content);
        QCOMPARE(starts.size(), answer == QMessageBox::Yes ? 1 : 0);
        QCOMPARE(dialog.isVisible(), answer == QMessageBox::No);
    }
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
    QVERIFY2(files.report().isEmpty(), qPrintable(files.report()));
}

void tst_servicedlg::lockAsksForNothingAtTheOpening()
{
    BoxAnswer boxes;
    for (int level = 0; level <= 5; ++level) {
        servicedlg dialog(nullptr);
        dialog.setLockStatus(true, quint8(level), true);
        dialog.setLockStatus(false, 0, true);
        dialog.setLockStatus(true, quint8(level), true);
    }
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

QTEST_MAIN(tst_servicedlg)
#include "tst_servicedlg.moc"
