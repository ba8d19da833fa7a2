#include "windowbench.h"

#include <QCloseEvent>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

using tk7sim::Fault;

Q_DECLARE_METATYPE(BoxAnswer::Box)

/*! The upload of the whole configuration and the save in the router's EEPROM. */
class tst_save : public QObject
{
    Q_OBJECT

private slots:
    void savesInTheRouter();
    void waitDialogLooks();
    void uploadIsPaced();
    void routerCantSave();
    void lockedRouter();
    void unlockedRouterIsAsked();
    void cancelSendsNothing();
    void linkDiesWhileWaiting();
    void linkDiesUnderTheQuestion();
    void busyWhileWaiting();
    void waitStays_data();
    void waitStays();
    void waitGoesWithTheDisconnect();
    void secondSaveWhileOneGoesOn();
    void resultWithoutASave();
    void nothingWhileNotConnected();
    void disconnectedUnderTheQuestion();
    void waitDialogIsTheApplications();
    void boxesBelongToTheWindow();
    void waitDialogGoesBeforeTheBox_data();
    void waitDialogGoesBeforeTheBox();
};

namespace {

constexpr int longSave = 60000; // ms, longer than any test

const QString saveTitle = QStringLiteral("Save Rules");

BoxAnswer::Box question(QMessageBox::StandardButton click = QMessageBox::Ok)
{
    return {saveTitle, QStringLiteral("Are you sure you want save rules in Router?"),
            QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel, click};
}

BoxAnswer::Box completed()
{
    return {QStringLiteral("TK-7 Router"),
            QStringLiteral("Saving rules in the Router is completed"), QMessageBox::Information};
}

BoxAnswer::Box failed()
{
    return {QStringLiteral("TK-7 Router"), QStringLiteral("Error saving rules in the Router"),
            QMessageBox::Critical};
}

BoxAnswer::Box farewell()
{
    return {QStringLiteral("TK-7 Router"),
            QStringLiteral("Are you sure want disconnected from the TK-7 Router? If you will "
                           "disconnect, router load all rules from the internal memory."),
            QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel};
}

QDialog *waitDialog(const WindowBench &bench)
{
    return bench.window.findChild<QDialog *>(QStringLiteral("WaitSaveDlg"));
}

} // namespace

void tst_save::savesInTheRouter()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.router.setEeprom(tk7sim::RouterConfig());
    QTRY_VERIFY(bench.heard().contains("$VRVER\r\n"));
    bench.router.clearTranscript();
    bench.boxes.expect(question()).expect(completed());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 3, 10000);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QVERIFY(!waitDialog(bench));

    const QList<QByteArray> heard = bench.heard();
    QCOMPARE(heard.size(), 81);
    QCOMPARE(heard.last(), QByteArray("$VRSVR\r\n"));
    for (int port = 0; port < 12; ++port) {
        const auto startsWith = [&](int line, const char *code, const char *rest) {
            return heard.at(line).startsWith(QByteArray(code + QByteArray::number(port) + rest));
        };
        const int first = 6 * port;
        QVERIFY(startsWith(first, "$VRRUL,", ",B,"));
        QVERIFY(startsWith(first + 1, "$VRFLT,", ",B,0,"));
        QVERIFY(startsWith(first + 2, "$VRFLT,", ",B,6,"));
        QVERIFY(startsWith(first + 3, "$VRHDC,", ",B,"));
        QCOMPARE(heard.at(first + 4), QByteArray("$VRWBL\r\n"));
        QVERIFY(startsWith(first + 5, "$VRSPD,", ","));
    }
    QVERIFY(bench.router.eeprom() == bench.router.working());
    QVERIFY(bench.router.eeprom() == tk7sim::RouterConfig::factory());
}

void tst_save::waitDialogLooks()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(question()).expect(completed());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    const QPointer<QDialog> dialog = ::waitDialog(bench);
    QVERIFY(dialog && dialog->isVisible());
    QVERIFY(dialog->isModal());
    QCOMPARE(dialog->windowFlags() & Qt::WindowType_Mask, Qt::WindowFlags(Qt::ToolTip));
    QCOMPARE(dialog->minimumSize(), QSize(225, 77));
    QCOMPARE(dialog->maximumSize(), QSize(225, 77));
    QCOMPARE(dialog->font().pointSize(), 10);
    QVERIFY(dialog->autoFillBackground());
    const QColor red(240, 102, 104);
    QCOMPARE(dialog->palette().color(QPalette::Active, QPalette::Window), red);
    QCOMPARE(dialog->palette().color(QPalette::Inactive, QPalette::Window), red);
    QCOMPARE(dialog->palette().color(QPalette::Disabled, QPalette::Window), red);
    QCOMPARE(dialog->palette().color(QPalette::Active, QPalette::Base), QColor(Qt::white));
    QCOMPARE(dialog->palette().color(QPalette::Inactive, QPalette::Base), QColor(Qt::white));
    QCOMPARE(dialog->palette().color(QPalette::Disabled, QPalette::Base), red);
    const auto *label = dialog->findChild<QLabel *>(QStringLiteral("label"));
    const auto *label2 = dialog->findChild<QLabel *>(QStringLiteral("label_2"));
    QCOMPARE(label->text(), QStringLiteral("Saving rules in the EEPROM"));
    QCOMPARE(label->geometry(), QRect(40, 20, 181, 16));
    QCOMPARE(label2->text(), QStringLiteral("Please WAIT..."));
    QCOMPARE(label2->geometry(), QRect(80, 40, 101, 20));
    QTRY_VERIFY_WITH_TIMEOUT(!dialog, 10000);
}

// One line a tick: the line is quiet between any two, whatever they weigh.
void tst_save::uploadIsPaced()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.router.clearTranscript();
    bench.boxes.expect(question()).expect(completed());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 3, 10000);
    QList<qint64> times;
    for (const auto &received : bench.router.transcript()) {
        if (received.line.startsWith("$VRRUL") || received.line == "$VRSVR\r\n")
            times += received.microseconds;
    }
    QCOMPARE(times.size(), 13);
    // 80 ticks of 25 ms lie between the first and the last. A busy machine can only stretch them.
    const qint64 span = (times.last() - times.first()) / 1000;
    QVERIFY2(span >= 1950, qPrintable(QString::number(span)));
}

void tst_save::routerCantSave()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.router.setFault(Fault::SaveError);
    bench.boxes.expect(question()).expect(failed());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 3, 10000);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QVERIFY(!::waitDialog(bench));
    QVERIFY(bench.window.isConnected());
}

void tst_save::lockedRouter()
{
    WindowBench bench;
    bench.router.setFault(Fault::Locked);
    QVERIFY(bench.connectToRouter());
    const auto *lock = bench.find<QLabel>("label_lock");
    QTRY_VERIFY(lock->isVisible());
    QCOMPARE(lock->text(), QStringLiteral("LOCK"));
    QTRY_VERIFY(bench.heard().contains("$VRVER\r\n"));
    bench.router.clearTranscript();
    bench.boxes.expect(
        {saveTitle,
         QStringLiteral(
             "Router TK-7 is LOCKED.\r\nSaving Rules is not posible until you unlock the router."),
         QMessageBox::Critical});
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QCOMPARE(bench.boxes.answered(), 2);
    bench.find<QPushButton>("pushButton_output_port_3")->click();
    QTRY_VERIFY(!bench.heard().isEmpty());
    QCOMPARE(bench.heard(), QList<QByteArray>({"$VRVVW,63\r\n"}));
}

void tst_save::unlockedRouterIsAsked()
{
    WindowBench bench;
    bench.router.setLock(true, 2);
    QVERIFY(bench.connectToRouter());
    const auto *lock = bench.find<QLabel>("label_lock");
    QTRY_COMPARE(lock->text(), QStringLiteral("UNLOCK"));
    QVERIFY(lock->isVisible());
    bench.boxes.expect(question(QMessageBox::Cancel));
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QCOMPARE(bench.boxes.answered(), 2);
}

void tst_save::cancelSendsNothing()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    QTRY_VERIFY(bench.heard().contains("$VRVER\r\n"));
    bench.router.clearTranscript();
    bench.boxes.expect(question(QMessageBox::Cancel));
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QVERIFY(!::waitDialog(bench));
    bench.find<QPushButton>("pushButton_output_port_3")->click();
    QTRY_VERIFY(!bench.heard().isEmpty());
    QCOMPARE(bench.heard(), QList<QByteArray>({"$VRVVW,63\r\n"}));
}

void tst_save::linkDiesWhileWaiting()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(question()).expect(WindowBench::timeoutBox());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QVERIFY(::waitDialog(bench));
    bench.router.unplug();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 3, 10000);
    QVERIFY(!::waitDialog(bench));
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY(bench.router.plug());
    bench.selectRouterPort();
    QVERIFY2(bench.connectToRouter(), qPrintable(bench.boxes.report()));
}

// The question goes with the link.
void tst_save::linkDiesUnderTheQuestion()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(question(QMessageBox::NoButton)).expect(WindowBench::timeoutBox());
    QTimer::singleShot(0, &bench.window, [&] { bench.router.unplug(); });
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QCOMPARE(bench.boxes.answered(), 3);
    QVERIFY(!bench.window.isConnected());
    QVERIFY(!::waitDialog(bench));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_save::busyWhileWaiting()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(question()).expect(WindowBench::busyBox());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    bench.router.sendLine("$VRCNB\r\n");
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 3, 10000);
    QVERIFY(!::waitDialog(bench));
    QTRY_VERIFY(!bench.window.isConnected());
}

void tst_save::waitStays_data()
{
    QTest::addColumn<bool>("answered");
    QTest::newRow("the router answers") << true;
    QTest::newRow("the link dies") << false;
}

// Whatever the user does, until the router answers or the link dies.
void tst_save::waitStays()
{
    QFETCH(bool, answered);
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.router.setSaveDuration(longSave);
    bench.boxes.expect(question());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    const QPointer<QDialog> dialog = ::waitDialog(bench);
    QVERIFY(dialog);
    const QRect place = dialog->geometry();
    QTest::keyClick(dialog.data(), Qt::Key_Escape);
    QTest::keyClick(dialog->windowHandle(), Qt::Key_Escape);
    QTest::keyClick(dialog.data(), Qt::Key_Return);
    QCloseEvent close; // of the window manager
    QCoreApplication::sendEvent(dialog, &close);
    QVERIFY(!close.isAccepted());
    QVERIFY(!dialog->close());
    dialog->reject();
    QTest::mouseClick(bench.window.windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    QVERIFY(dialog && dialog->isVisible());
    QCOMPARE(dialog->geometry(), place);
    QCOMPARE(QApplication::activeModalWidget(), dialog);

    if (answered) {
        bench.boxes.expect(completed());
        bench.router.sendLine("$VRSRO\r\n");
    } else {
        bench.boxes.expect(WindowBench::timeoutBox());
        bench.router.unplug();
    }
    QTRY_VERIFY_WITH_TIMEOUT(!dialog, 10000);
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// Not by the mouse, which the dialog keeps away: nor is the next one.
void tst_save::waitGoesWithTheDisconnect()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.router.setSaveDuration(longSave);
    bench.boxes.expect(question()).expect(farewell());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QVERIFY(::waitDialog(bench));
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(!bench.window.isConnected(), 10000);
    QVERIFY(!::waitDialog(bench));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_save::secondSaveWhileOneGoesOn()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.router.setSaveDuration(longSave);
    bench.boxes.expect(question()).expect(question());
    for (int save = 0; save < 2; ++save) {
        bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
        QCOMPARE(bench.window.findChildren<QDialog *>("WaitSaveDlg").size(), 1);
        QVERIFY(::waitDialog(bench)->isVisible());
    }
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// The second sentence comes in one piece with the first, and its box over the other's.
void tst_save::resultWithoutASave()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(failed()).expect(completed());
    bench.router.sendLine("$VRSRO\r\n$VRSRE\r\n");
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 3, 5000);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_save::nothingWhileNotConnected()
{
    WindowBench bench;
    bench.window.slotSaveToEeprom();
    QVERIFY(!::waitDialog(bench));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// The user's own farewell leaves the question open, and its answer means nothing then.
void tst_save::disconnectedUnderTheQuestion()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.router.clearTranscript();
    BoxAnswer::Box open = question(QMessageBox::NoButton);
    open.whileOpen = [&bench](QMessageBox &box) {
        QTRY_VERIFY(!bench.window.isConnected());
        box.button(QMessageBox::Ok)->click();
    };
    bench.boxes.expect(farewell()).expect(open);
    bench.find<QPushButton>("pushButton_connect")->click();
    QVERIFY(bench.window.isConnected());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QVERIFY(!bench.window.isConnected());
    QVERIFY(!::waitDialog(bench));
    QTRY_VERIFY(bench.heard().endsWith("$VRDCN\r\n"));
}

void tst_save::waitDialogIsTheApplications()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(question()).expect(completed());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    const QPointer<QDialog> dialog = ::waitDialog(bench);
    QVERIFY(dialog);
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Dialog"));
    QCOMPARE(dialog->windowModality(), Qt::ApplicationModal);
    QCOMPARE(dialog->parentWidget(), &bench.window);
    QVERIFY(QMetaObject::invokeMethod(dialog, "slotExitDlg"));
    QVERIFY(!dialog->isVisible());
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
    QTRY_VERIFY_WITH_TIMEOUT(!dialog, 10000);
}

void tst_save::boxesBelongToTheWindow()
{
    WindowBench bench;
    const auto ofTheWindow = [&bench](BoxAnswer::Box box) {
        box.parent = &bench.window;
        return box;
    };
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(ofTheWindow(question())).expect(ofTheWindow(completed()));
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 3, 10000);
    bench.boxes.expect(ofTheWindow(failed()));
    bench.router.sendLine("$VRSRE\r\n");
    QTRY_COMPARE(bench.boxes.answered(), 4);
    bench.boxes.expect(ofTheWindow(farewell()));
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_save::waitDialogGoesBeforeTheBox_data()
{
    QTest::addColumn<QByteArray>("line"); // of the router; empty: none comes any more
    QTest::addColumn<BoxAnswer::Box>("box");
    QTest::newRow("saved") << QByteArray("$VRSRO\r\n") << completed();
    QTest::newRow("not saved") << QByteArray("$VRSRE\r\n") << failed();
    QTest::newRow("busy") << QByteArray("$VRCNB\r\n") << WindowBench::busyBox();
    QTest::newRow("time-out") << QByteArray() << WindowBench::timeoutBox();
}

// It would lie above the box, and is modal.
void tst_save::waitDialogGoesBeforeTheBox()
{
    QFETCH(QByteArray, line);
    QFETCH(BoxAnswer::Box, box);
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.router.setSaveDuration(longSave);
    bench.boxes.expect(question());
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QVERIFY(::waitDialog(bench));
    bool isSeen = false;
    bool hasGone = false;
    box.click = QMessageBox::NoButton;
    box.whileOpen = [&](QMessageBox &open) {
        hasGone = !::waitDialog(bench);
        isSeen = true;
        open.accept();
    };
    bench.boxes.expect(box);
    if (line.isEmpty())
        bench.router.setFault(Fault::Silent);
    else
        bench.router.sendLine(line);
    QTRY_VERIFY_WITH_TIMEOUT(isSeen, 10000);
    QVERIFY(hasGone);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

QTEST_MAIN(tst_save)
#include "tst_save.moc"
