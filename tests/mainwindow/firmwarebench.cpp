#include "firmwarebench.h"

#include "support/checkedline.h"

#include <QFile>
#include <QPushButton>

#include <algorithm>
#include <random>

namespace {

constexpr int packetBytes = 32;
constexpr int headerBytes = 18;

void closeChildOfTheWindow(QMessageBox &box)
{
    const QWidget *parent = box.parentWidget();
    box.accept();
    QVERIFY(qobject_cast<const MainWindow *>(parent));
}

} // namespace

QByteArray firmwareImage(int size, quint32 seed)
{
    QByteArray image = QByteArray("fwVR48\x01\x02\x03\x04\x05\x06\x07\x08\x03\x06", 16);
    image.append(headerBytes - image.size(), '\0');
    std::mt19937 random(seed);
    while (image.size() < size)
        image.append(char(random() & 0xff));
    image.truncate(size);
    return image;
}

QByteArray packetSentence(const QByteArray &image, int number)
{
    const QByteArray data = image.mid((number - 1) * packetBytes, packetBytes);
    return checkedLine("$VRFWP," + QByteArray::number(number) + ',' + data.toHex().toUpper());
}

int packetNumber(const QByteArray &sentence)
{
    static const QByteArray head = "$VRFWP,";
    if (!sentence.startsWith(head))
        return 0;
    return sentence.mid(head.size(), sentence.indexOf(',', head.size()) - head.size()).toInt();
}

FirmwareBench::FirmwareBench(const QByteArray &version) : ScriptedBench(version) { }

void FirmwareBench::takeFirmware(int last)
{
    taken.clear();
    isFinished = false;
    onLine = [this, last](const QByteArray &sentence) {
        const int number = packetNumber(sentence);
        if (sentence == "$VRFWS\r\n") {
            sayBare("$VRFWR");
        } else if (number > 0 && (last < 0 || number <= last)) {
            const int data = int(sentence.lastIndexOf(',') + 1);
            taken += QByteArray::fromHex(sentence.mid(data, sentence.indexOf('*') - data));
            say("$VRFWP," + QByteArray::number(number));
        } else if (sentence == "$VRFWF\r\n" && last < 0) {
            isFinished = true;
            sayBare("$VRFWO");
        }
    };
}

QString FirmwareBench::writeFile(const QByteArray &content, const QString &name)
{
    QString path = folder.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("can't write %s", qPrintable(path));
    return path;
}

FileDialogAnswer::Dialog FirmwareBench::chooser(const QString &fileName)
{
    FileDialogAnswer::Dialog dialog;
    dialog.caption = QStringLiteral("Select firmware file");
    dialog.filters = QStringList{QStringLiteral("*.efw")};
    dialog.fileName = fileName;
    return dialog;
}

BoxAnswer::Box FirmwareBench::question(const QString &version, QMessageBox::StandardButton click)
{
    return {QStringLiteral("Load Firmware"),
            QStringLiteral("Are you sure want to install the firmware version ") + version
                + QStringLiteral(" ?"),
            QMessageBox::Question, QMessageBox::Yes | QMessageBox::No, click};
}

BoxAnswer::Box FirmwareBench::failure(const QString &text)
{
    return {QStringLiteral("Firmware update"),
            text,
            QMessageBox::Critical,
            QMessageBox::Ok,
            QMessageBox::NoButton,
            closeChildOfTheWindow};
}

BoxAnswer::Box FirmwareBench::successBox()
{
    return {QStringLiteral("Firmware update"),
            QStringLiteral("The firmware has been successfully loaded, the router will reboot. "
                           "Please reconnect to the router."),
            QMessageBox::Information};
}

BoxAnswer::Box FirmwareBench::success(const std::function<void()> &whileOpen)
{
    const auto close = [this, whileOpen](QMessageBox &box) {
        QTRY_VERIFY(firmwareHeard().endsWith("$VRFWW\r\n"));
        if (whileOpen)
            whileOpen();
        closeChildOfTheWindow(box);
    };
    BoxAnswer::Box box = successBox();
    box.click = QMessageBox::NoButton;
    box.whileOpen = close;
    return box;
}

bool FirmwareBench::startUpdate(const QByteArray &image)
{
    files->expect(chooser(writeFile(image)));
    boxes.expect(question(QStringLiteral("3.6"), QMessageBox::Yes));
    bool isClosed = false;
    const bool hasCome = inService([&](servicedlg &dialog) {
        dialog.findChild<QPushButton *>(QStringLiteral("pushButton_Fw_Update"))->click();
        isClosed = !dialog.isVisible();
    });
    return hasCome && isClosed;
}

void FirmwareBench::pressCancel()
{
    progress()->findChild<QPushButton *>()->click();
}

QList<QByteArray> FirmwareBench::firmwareHeard() const
{
    QList<QByteArray> sentences;
    const QList<QByteArray> all = heard();
    for (const QByteArray &sentence : all) {
        if (sentence.startsWith("$VRFW"))
            sentences += sentence;
    }
    return sentences;
}

QTimer *FirmwareBench::watchdog() const
{
    const auto timers = window.findChildren<QTimer *>();
    const auto found = std::find_if(timers.begin(), timers.end(), [](const QTimer *timer) {
        return timer->interval() == watchdogMs;
    });
    return found == timers.end() ? nullptr : *found;
}

void FirmwareBench::load(servicedlg &dialog)
{
    dialog.findChild<QPushButton *>(QStringLiteral("pushButton_Fw_Update"))->click();
    QVERIFY2(files->report().isEmpty(), qPrintable(files->report()));
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

BoxAnswer::Box FirmwareBench::loadError(const QString &text)
{
    return {QStringLiteral("Load Firmware"), text, QMessageBox::Warning};
}

void FirmwareBench::verifyUpdateWorks()
{
    const QByteArray image = firmwareImage(100, 7);
    takeFirmware();
    QVERIFY(startUpdate(image));
    boxes.expect(success());
    QTRY_VERIFY(!window.isConnected());
    QVERIFY(isFinished);
    QCOMPARE(taken, image);
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
    QVERIFY2(files->report().isEmpty(), qPrintable(files->report()));
}

void FirmwareBench::verifyNoUpdate()
{
    QTRY_VERIFY(!progress());
    QVERIFY(!watchdog()->isActive());
    window.slotStartFirmwareUpdate();
    QVERIFY(!progress());
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

void FirmwareBench::verifyIdle()
{
    verifyNoUpdate();
    QVERIFY(window.isConnected());
}
