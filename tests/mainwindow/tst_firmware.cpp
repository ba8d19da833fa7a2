#include "firmwarebench.h"
#include "windowbench.h"

#include "link/nmeaserialport.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QWindow>

/*! The firmware update: all states, all ends, and the attempt that follows. */
class tst_firmware : public QObject
{
    Q_OBJECT

private slots:
    void progressDialog();
    void progressValues_data();
    void progressValues();
    void packets();
    void startSentenceComesFirst();
    void nothingElseIsSentMeanwhile();
    void succeeds();
    void boxClosedAtOnce();
    void watchIsSuspended();
    void takenOverUnderTheLastBox();
    void readyTwiceStartsAgain();
    void zeroStandsForReady();
    void finishAcknowledgedFinishesAgain();
    void doneInAnyState_data();
    void doneInAnyState();

    void keysInTheProgress_data();
    void keysInTheProgress();
    void cancel_data();
    void cancel();
    void wrongAcknowledgements_data();
    void wrongAcknowledgements();
    void lateAcknowledgement();
    void acknowledgedAgainAtTheEnd();
    void errorCodes_data();
    void errorCodes();
    void timeout_data();
    void timeout();
    void takenOver_data();
    void takenOver();
    void disconnectOvertakenByAnUpdate();
    void everyStepWindsTheWatchdog();
    void imageLostOnTheWay_data();
    void imageLostOnTheWay();
    void lateSentencesAreIgnored();
    void manyFailuresInARow();
    void startsOnlyWithAnImageAndAConnection();
    void doesNotStartBehindTheEnd();
};

namespace {

const QString wrongNumber = QStringLiteral("Error firmware update. code: -1");
const QString timeoutText = QStringLiteral("Error: Firmware update timeout");

// Where an update of three packets can be when something comes in between.
enum State { Waiting, Sending, Finishing };

constexpr int smallSize = 70;
constexpr int watchdogMs = FirmwareBench::watchdogMs;

void addStates()
{
    QTest::addColumn<int>("state");
    QTest::newRow("waiting") << int(Waiting);
    QTest::newRow("sending") << int(Sending);
    QTest::newRow("finishing") << int(Finishing);
}

QByteArray lastSentenceOf(State state, const QByteArray &image)
{
    switch (state) {
    case Waiting:
        return "$VRFWS\r\n";
    case Sending:
        return packetSentence(image, 2);
    case Finishing:
        return "$VRFWF\r\n";
    }
    return QByteArray();
}

// An update of three packets that stands still in `state`.
bool bringTo(FirmwareBench &bench, State state, const QByteArray &image)
{
    bench.onLine = [&bench, state](const QByteArray &sentence) {
        const int number = packetNumber(sentence);
        if (sentence == "$VRFWS\r\n" && state != Waiting)
            bench.sayBare("$VRFWR");
        else if (number > 0 && (state == Finishing || number == 1))
            bench.say("$VRFWP," + QByteArray::number(number));
    };
    if (!bench.startUpdate(image))
        return false;
    return QTest::qWaitFor([&] { return bench.heard().endsWith(lastSentenceOf(state, image)); });
}

} // namespace

void tst_firmware::progressDialog()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, Waiting, firmwareImage(smallSize)));
    QVERIFY(!bench.serviceDialog());
    const QPointer<QProgressDialog> dialog = bench.progress();
    QCOMPARE(dialog->parentWidget(), &bench.window);
    QCOMPARE(dialog->labelText(), QStringLiteral("Firmware update...     "));
    QCOMPARE(dialog->findChild<QPushButton *>()->text(), QStringLiteral("Cancel"));
    QCOMPARE(dialog->minimum(), 0);
    QCOMPARE(dialog->maximum(), 100);
    QCOMPARE(dialog->value(), 0);
    QCOMPARE(dialog->minimumDuration(), 0);
    QCOMPARE(dialog->windowFlags() & Qt::WindowType_Mask, Qt::WindowFlags(Qt::Dialog));
    QVERIFY(dialog->windowFlags() & Qt::MSWindowsFixedSizeDialogHint);
    QVERIFY(dialog->windowFlags() & Qt::CustomizeWindowHint);
    QCOMPARE(dialog->windowModality(), Qt::WindowModal);
    QVERIFY(dialog->autoFillBackground());
    QCOMPARE(dialog->font().pointSize(), 9);
    for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(dialog->palette().color(group, QPalette::Window), QColor(255, 199, 1));
        QCOMPARE(dialog->palette().color(group, QPalette::Button), QColor(214, 214, 214));
    }
    dialog->findChild<QPushButton *>()->click();
    QTRY_VERIFY(!dialog);
    bench.verifyIdle();
}

void tst_firmware::progressValues_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QList<int>>("values"); // when packet 1, 2, ... leaves

    QTest::newRow("one packet") << 32 << QList<int>({0});
    QTest::newRow("four full packets") << 128 << QList<int>({0, 50, 75, 100});
    // Beyond 100, which the bar ignores.
    QTest::newRow("two packets, the last not full") << 33 << QList<int>({0, 0});
    QTest::newRow("three packets, the last not full") << 70 << QList<int>({0, 91, 91});
    QTest::newRow("six packets, the last not full") << 180 << QList<int>({0, 35, 53, 71, 88, 88});
}

void tst_firmware::progressValues()
{
    QFETCH(int, size);
    QFETCH(QList<int>, values);
    const QByteArray image = firmwareImage(size);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, Waiting, image));
    bench.keepSilent();
    bench.sayBare("$VRFWR");
    for (int number = 1; number <= values.size(); ++number) {
        QTRY_VERIFY(bench.heard().endsWith(packetSentence(image, number)));
        QCOMPARE(bench.progress()->value(), values.at(number - 1));
        bench.say("$VRFWP," + QByteArray::number(number));
    }
    // It stays until the router has finished, too.
    QTRY_VERIFY(bench.heard().endsWith("$VRFWF\r\n"));
    QVERIFY(bench.isUpdating());
    QCOMPARE(bench.progress()->value(), values.last());
    QCOMPARE(bench.progress()->findChild<QProgressBar *>()->text(),
             QStringLiteral("%1%").arg(values.last()));
    bench.pressCancel();
    bench.verifyIdle();
}

void tst_firmware::packets()
{
    QByteArray image = firmwareImage(33);
    image[18] = '\x0a';
    image[19] = char(0xff);
    image[32] = '\x0a';
    image.replace(20, 12, QByteArray(12, '\0'));
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.takeFirmware(2);
    QVERIFY(bench.startUpdate(image));
    QTRY_VERIFY(bench.heard().endsWith("$VRFWF\r\n"));
    // The sums were worked out apart from this program.
    QCOMPARE(bench.firmwareHeard(),
             QList<QByteArray>({"$VRFWS\r\n",
                                "$VRFWP,1,66775652343801020304050607080306"
                                "00000AFF000000000000000000000000*00\r\n",
                                "$VRFWP,2,0A*06\r\n", "$VRFWF\r\n"}));
    bench.pressCancel();
    bench.verifyIdle();
}

// The service dialog is still open when the request is queued, and closed before the first packet.
void tst_firmware::startSentenceComesFirst()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.files->expect(FirmwareBench::chooser(bench.writeFile(firmwareImage(smallSize))));
    bench.boxes.expect(FirmwareBench::question(QStringLiteral("3.6"), QMessageBox::Yes));
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bool wasOpen = false;
        connect(&dialog, &servicedlg::startFirmwareUpdate, &dialog,
                [&] { wasOpen = dialog.isVisible() && bench.progress(); });
        bench.load(dialog);
        QVERIFY(wasOpen);
        QVERIFY(!dialog.isVisible());
    }));
    QTRY_VERIFY(bench.isUpdating());
    QTRY_COMPARE(bench.firmwareHeard(), QList<QByteArray>({"$VRFWS\r\n"}));
    bench.pressCancel();
    bench.verifyIdle();
}

void tst_firmware::nothingElseIsSentMeanwhile()
{
    const QByteArray image = firmwareImage(3200);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.takeFirmware();
    QVERIFY(bench.startUpdate(image));
    bench.boxes.expect(bench.success());
    QTRY_VERIFY_WITH_TIMEOUT(!bench.window.isConnected(), 20000);
    const QList<QByteArray> heard = bench.heard();
    const int start = int(heard.indexOf("$VRFWS\r\n"));
    QCOMPARE(heard.size() - start, 1 + 100 + 2);
}

void tst_firmware::succeeds()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.verifyUpdateWorks();
    QVERIFY(!bench.window.currentLink());
    QCOMPARE(bench.find<QPushButton>("pushButton_connect")->text(), QStringLiteral("Connect"));
    QVERIFY(bench.find<QLabel>("label_firmware_version")->text().isEmpty());
    // The router comes back, and can be updated again.
    QVERIFY(bench.connectToRouter());
    bench.verifyUpdateWorks();
}

// A user who is quicker than the queue.
void tst_firmware::boxClosedAtOnce()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.setLookInterval(0);
    bench.takeFirmware();
    QVERIFY(bench.startUpdate(firmwareImage(smallSize)));
    bench.boxes.expect(FirmwareBench::successBox());
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QTRY_VERIFY(bench.firmwareHeard().endsWith("$VRFWW\r\n"));
    // The line is closed and quiet behind it.
    QTest::qWait(60);
    QVERIFY(bench.heard().endsWith("$VRFWW\r\n"));
}

// A router that restarts is silent for longer than the watch would bear.
void tst_firmware::watchIsSuspended()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.takeFirmware();
    QVERIFY(bench.startUpdate(firmwareImage(smallSize)));
    bench.boxes.expect(bench.success([&] {
        QVERIFY(!bench.isUpdating());
        const int before = int(bench.line.lines().size());
        QTest::qWait(4500);
        QCOMPARE(bench.line.lines().size(), before);
        QVERIFY(bench.window.isConnected());
    }));
    QTRY_VERIFY_WITH_TIMEOUT(!bench.window.isConnected(), 10000);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_firmware::takenOverUnderTheLastBox()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    bench.takeFirmware();
    bool isTaken = false;
    QVERIFY(bench.startUpdate(firmwareImage(smallSize)));
    bench.boxes
        .expect(bench.success([&] {
            bench.sayBare("$VRCNB");
            QTRY_VERIFY(!bench.window.isConnected());
            isTaken = true;
        }))
        .expect(WindowBench::busyBox());
    QTRY_VERIFY(isTaken && !bench.window.findChild<QMessageBox *>());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QVERIFY(bench.connectToRouter());
    bench.verifyUpdateWorks();
}

void tst_firmware::readyTwiceStartsAgain()
{
    const QByteArray image = firmwareImage(smallSize);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, Sending, image));
    bench.sayBare("$VRFWR");
    const QList<QByteArray> expected = {"$VRFWS\r\n", packetSentence(image, 1),
                                        packetSentence(image, 2), packetSentence(image, 1),
                                        packetSentence(image, 2)};
    QTRY_COMPARE(bench.firmwareHeard(), expected);
    bench.pressCancel();
    bench.verifyIdle();
}

// Before the first packet the number last sent is 0: a router that acknowledges it gets packet 1.
void tst_firmware::zeroStandsForReady()
{
    const QByteArray image = firmwareImage(smallSize);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, Waiting, image));
    bench.keepSilent();
    bench.say("$VRFWP,0");
    const QList<QByteArray> expected = {"$VRFWS\r\n", packetSentence(image, 1)};
    QTRY_COMPARE(bench.firmwareHeard(), expected);
    bench.boxes.expect(FirmwareBench::failure(wrongNumber));
    bench.say("$VRFWP,0");
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    bench.verifyIdle();
}

// The number behind the last packet is the one that counts then, again and again, and winds the
// watchdog.
void tst_firmware::finishAcknowledgedFinishesAgain()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, Finishing, firmwareImage(smallSize)));
    const QTimer *watchdog = bench.watchdog();
    QVERIFY(watchdog && watchdog->isActive());
    for (int number = 4; number <= 5; ++number) {
        QTRY_VERIFY(watchdog->remainingTime() < 5000);
        const int before = int(bench.firmwareHeard().size());
        bench.say("$VRFWP," + QByteArray::number(number));
        QTRY_COMPARE(bench.firmwareHeard().size(), before + 1);
        QCOMPARE(bench.firmwareHeard().last(), QByteArray("$VRFWF\r\n"));
        QVERIFY(watchdog->remainingTime() > 5000);
        QVERIFY(bench.isUpdating());
    }
    bench.pressCancel();
    bench.verifyIdle();
}

void tst_firmware::doneInAnyState_data()
{
    addStates();
}

void tst_firmware::doneInAnyState()
{
    QFETCH(int, state);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, State(state), firmwareImage(smallSize)));
    bench.boxes.expect(bench.success());
    bench.sayBare("$VRFWO");
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_firmware::keysInTheProgress_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<bool>("ends");

    QTest::newRow("Return") << QList<int>({Qt::Key_Return}) << false;
    QTest::newRow("Enter") << QList<int>({Qt::Key_Enter}) << false;
    QTest::newRow("blank") << QList<int>({Qt::Key_Space}) << false;
    QTest::newRow("Escape") << QList<int>({Qt::Key_Escape}) << true;
    QTest::newRow("the button by Tab and blank")
        << QList<int>({Qt::Key_Tab, Qt::Key_Space}) << true;
    QTest::newRow("close") << QList<int>() << true; // as the window manager does
}

// What ends the update asks nothing and tells nothing; Return, pressed once too often, doesn't.
void tst_firmware::keysInTheProgress()
{
    QFETCH(QList<int>, keys);
    QFETCH(bool, ends);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, Sending, firmwareImage(smallSize)));
    QProgressDialog *dialog = bench.progress();
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    QVERIFY(!dialog->findChild<QPushButton *>()->hasFocus());
    const int before = int(bench.heard().size());
    if (keys.isEmpty())
        dialog->close();
    for (const int key : qAsConst(keys)) {
        const QPointer<QWindow> target = dialog->windowHandle();
        QTest::keyPress(target, Qt::Key(key));
        if (target)
            QTest::keyRelease(target, Qt::Key(key));
    }
    if (ends) {
        bench.verifyIdle();
    } else {
        bench.waitUntilHeard();
        QVERIFY(bench.isUpdating());
        bench.pressCancel();
        bench.verifyIdle();
    }
    QTest::qWait(60);
    QCOMPARE(bench.heard().size(), before);
}

void tst_firmware::cancel_data()
{
    addStates();
}

void tst_firmware::cancel()
{
    QFETCH(int, state);
    const QByteArray image = firmwareImage(smallSize);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, State(state), image));
    const int before = int(bench.heard().size());
    bench.pressCancel();
    bench.verifyIdle();
    // The router is told nothing.
    QTest::qWait(100);
    QCOMPARE(bench.heard().size(), before);
    QVERIFY(!bench.progress());
    bench.verifyUpdateWorks();
}

void tst_firmware::wrongAcknowledgements_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QByteArray>("number");

    QTest::newRow("repeated") << int(Sending) << QByteArray("1");
    QTest::newRow("early") << int(Sending) << QByteArray("3");
    QTest::newRow("foreign") << int(Sending) << QByteArray("31250");
    QTest::newRow("none") << int(Sending) << QByteArray("0");
    QTest::newRow("no number") << int(Sending) << QByteArray("x");
    QTest::newRow("largest") << int(Sending) << QByteArray("4294967295");
    QTest::newRow("before the router is ready") << int(Waiting) << QByteArray("1");
    QTest::newRow("repeated at the end") << int(Finishing) << QByteArray("3");
}

void tst_firmware::wrongAcknowledgements()
{
    QFETCH(int, state);
    QFETCH(QByteArray, number);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, State(state), firmwareImage(smallSize)));
    bench.boxes.expect(FirmwareBench::failure(wrongNumber));
    const int before = int(bench.heard().size());
    bench.say("$VRFWP," + number);
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    bench.verifyIdle();
    QTest::qWait(60);
    QCOMPARE(bench.heard().size(), before);
    bench.verifyUpdateWorks();
}

// The last packet of an update that was cancelled is acknowledged when the next one waits already:
// an acknowledgement like any other that is not due.
void tst_firmware::lateAcknowledgement()
{
    const QByteArray image = firmwareImage(smallSize);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, Sending, image));
    bench.pressCancel();
    bench.verifyIdle();
    QVERIFY(bringTo(bench, Waiting, image));
    bench.boxes.expect(FirmwareBench::failure(wrongNumber));
    bench.say("$VRFWP,2");
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    bench.verifyIdle();
    bench.verifyUpdateWorks();
}

// The number that would come next, of a packet that was never sent.
void tst_firmware::acknowledgedAgainAtTheEnd()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, Finishing, firmwareImage(smallSize)));
    bench.keepSilent();
    bench.say("$VRFWP,4");
    QTRY_COMPARE(bench.firmwareHeard().count("$VRFWF\r\n"), 2);
    QVERIFY(bench.isUpdating());
    bench.boxes.expect(bench.success());
    bench.sayBare("$VRFWO");
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_firmware::errorCodes_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QByteArray>("code");

    QTest::newRow("waiting, 0") << int(Waiting) << QByteArray("0");
    QTest::newRow("waiting, 3") << int(Waiting) << QByteArray("3");
    QTest::newRow("sending, 17") << int(Sending) << QByteArray("17");
    QTest::newRow("finishing, 4294967295") << int(Finishing) << QByteArray("4294967295");
}

void tst_firmware::errorCodes()
{
    QFETCH(int, state);
    QFETCH(QByteArray, code);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, State(state), firmwareImage(smallSize)));
    bench.boxes.expect(FirmwareBench::failure(QStringLiteral("Error firmware update. code: ")
                                              + QString::fromLatin1(code)));
    bench.say("$VRFWE," + code);
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    bench.verifyIdle();
    bench.verifyUpdateWorks();
}

void tst_firmware::timeout_data()
{
    addStates();
}

void tst_firmware::timeout()
{
    QFETCH(int, state);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, State(state), firmwareImage(smallSize)));
    bench.boxes.expect(FirmwareBench::failure(timeoutText));
    const int due = bench.watchdog()->remainingTime();
    QVERIFY(due > 0 && due <= watchdogMs);
    QElapsedTimer clock;
    clock.start();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.isDone(), 3 * watchdogMs);
    const qint64 elapsed = clock.elapsed();
    constexpr int early = watchdogMs / 20; // as a timer of Qt may be
    QVERIFY2(elapsed > due - early, qPrintable(QString::number(elapsed)));
    bench.verifyIdle();
    bench.verifyUpdateWorks();
}

void tst_firmware::takenOver_data()
{
    addStates();
}

// The connection goes, and the update with it, before the box.
void tst_firmware::takenOver()
{
    QFETCH(int, state);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, State(state), firmwareImage(smallSize)));
    bench.keepSilent();
    bool isOver = false;
    BoxAnswer::Box box = WindowBench::busyBox();
    box.click = QMessageBox::NoButton;
    box.whileOpen = [&](QMessageBox &open) {
        isOver = !bench.isUpdating() && !bench.watchdog()->isActive();
        open.accept();
    };
    bench.boxes.expect(box);
    bench.sayBare("$VRCNB");
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY(isOver);
    bench.verifyNoUpdate();
    QVERIFY(bench.connectToRouter());
    bench.verifyIdle();
    bench.verifyUpdateWorks();
}

// A farewell that still waits behind a long queue when the update starts.
void tst_firmware::disconnectOvertakenByAnUpdate()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, Waiting, firmwareImage(smallSize)));
    bench.window.currentLink()->sendSentence(QStringLiteral("$VRDCN\r\n"));
    QTRY_VERIFY(!bench.window.isConnected());
    bench.verifyNoUpdate();
    QVERIFY(bench.connectToRouter());
    bench.verifyUpdateWorks();
}

void tst_firmware::everyStepWindsTheWatchdog()
{
    constexpr int slow = 4000; // ms; two of them are more than the watchdog bears
    const QByteArray image = firmwareImage(32);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, Waiting, image));
    bench.keepSilent();
    QTest::qWait(slow);
    bench.sayBare("$VRFWR");
    QTest::qWait(slow);
    QVERIFY(bench.heard().endsWith(packetSentence(image, 1)));
    bench.say("$VRFWP,1");
    QTest::qWait(slow);
    QVERIFY(bench.heard().endsWith("$VRFWF\r\n"));
    QVERIFY(bench.isUpdating());
    bench.boxes.expect(bench.success());
    bench.sayBare("$VRFWO");
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_firmware::imageLostOnTheWay_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QByteArray>("number");

    QTest::newRow("sending") << int(Sending) << QByteArray("2");
    QTest::newRow("finishing") << int(Finishing) << QByteArray("4");
}

// The buffer is the one that the service dialog reads into. No user can open it meanwhile.
void tst_firmware::imageLostOnTheWay()
{
    QFETCH(int, state);
    QFETCH(QByteArray, number);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bringTo(bench, State(state), firmwareImage(smallSize)));
    bench.keepSilent();
    const QString empty = bench.writeFile(QByteArray(), QStringLiteral("empty.efw"));
    bench.files->expect(FirmwareBench::chooser(empty));
    bench.boxes.expect(
        FirmwareBench::loadError(QStringLiteral("File %1 in not TK-7 firmware").arg(empty)));
    QVERIFY(bench.inService([&](servicedlg &dialog) { bench.load(dialog); }));
    bench.boxes.expect(FirmwareBench::failure(QStringLiteral("Error firmware update. code: -2")));
    bench.say("$VRFWP," + number);
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    bench.verifyIdle();
    bench.verifyUpdateWorks();
}

void tst_firmware::lateSentencesAreIgnored()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    const auto sayAll = [&] {
        bench.sayBare("$VRFWR");
        bench.say("$VRFWP,2");
        bench.say("$VRFWE,3");
        bench.sayBare("$VRFWO");
        bench.waitUntilHeard();
    };
    // Before any update, under the box that ends one, and behind it.
    sayAll();
    QVERIFY(bringTo(bench, Sending, firmwareImage(smallSize)));
    BoxAnswer::Box box = FirmwareBench::failure(QStringLiteral("Error firmware update. code: 3"));
    box.click = QMessageBox::NoButton;
    box.whileOpen = [&](QMessageBox &open) {
        sayAll();
        open.accept();
    };
    bench.boxes.expect(box);
    const int before = int(bench.firmwareHeard().size());
    bench.say("$VRFWE,3");
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QTRY_VERIFY(!bench.window.findChild<QMessageBox *>());
    sayAll();
    QTest::qWait(60);
    QCOMPARE(bench.firmwareHeard().size(), before);
    bench.verifyIdle();
    bench.verifyUpdateWorks();
}

void tst_firmware::manyFailuresInARow()
{
    const QByteArray image = firmwareImage(smallSize);
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    for (int round = 0; round < 4; ++round) {
        for (const State state : {Waiting, Sending, Finishing}) {
            QVERIFY(bringTo(bench, state, image));
            if ((round + state) % 2) {
                bench.pressCancel();
            } else {
                bench.boxes.expect(
                    FirmwareBench::failure(QStringLiteral("Error firmware update. code: 9")));
                bench.say("$VRFWE,9");
            }
            bench.verifyIdle();
        }
    }
    bench.verifyUpdateWorks();
}

void tst_firmware::startsOnlyWithAnImageAndAConnection()
{
    FirmwareBench bench;
    bench.window.slotStartFirmwareUpdate();
    QVERIFY(!bench.progress());
    QVERIFY(bench.connectToRouter());
    bench.window.slotStartFirmwareUpdate();
    bench.waitUntilHeard();
    QTest::qWait(60);
    QVERIFY(!bench.progress());
    QCOMPARE(bench.firmwareHeard(), QList<QByteArray>());
}

// The service dialog outlives a connection that another program has taken, with all that can be
// done in it.
void tst_firmware::doesNotStartBehindTheEnd()
{
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bench.boxes.expect(WindowBench::busyBox());
        bench.sayBare("$VRCNB");
        QTRY_VERIFY(!bench.window.isConnected());
        bench.files->expect(FirmwareBench::chooser(bench.writeFile(firmwareImage(smallSize))));
        bench.boxes.expect(FirmwareBench::question(QStringLiteral("3.6"), QMessageBox::Yes));
        bench.load(dialog);
        QVERIFY(!dialog.isVisible());
    }));
    QVERIFY(!bench.progress());
    QVERIFY(!bench.watchdog()->isActive());
    QVERIFY(bench.connectToRouter());
    QVERIFY(!bench.progress());
    bench.verifyUpdateWorks();
}

QTEST_MAIN(tst_firmware)
#include "tst_firmware.moc"
