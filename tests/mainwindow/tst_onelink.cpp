#include "matrixview.h"
#include "scriptedbench.h"
#include "support/checkedline.h"
#include "windowbench.h"

#include "link/nmeaserialport.h"
#include "platform/serialports.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QScopeGuard>
#include <QWindow>

using tk7sim::Fault;

/*! What is done to the progress dialog of a search. */
using Deed = std::function<void(QProgressDialog &, WindowBench &)>;
Q_DECLARE_METATYPE(Deed)

/*! There is one link at a time, whatever the user does, and nothing of it stays behind its end. */
class tst_onelink : public QObject
{
    Q_OBJECT

private slots:
    void progressDialogStays_data();
    void progressDialogStays();
    void firstClickBehindTheSearch();
    void oneLinkAtATime();
    void rescanInTheSearch();
    void rescanInTheConnection();
    void searchAt2400Ends();
    void everyEndLeavesNothing_data();
    void everyEndLeavesNothing();
    void windowClosedWithALink_data();
    void windowClosedWithALink();
    void endMarkInTheSearch();
    void burstBehindTheBox();
    void viewOfAnEndedConnection();

private:
    static void verifyConnectsAgain(WindowBench &bench);
};

namespace {

const QString linkTimeout = QStringLiteral("Connection timeout");

// The serial ports that this process has open; the router's side of them has no name of its own.
int openPorts()
{
    int count = 0;
    const QDir folder(QStringLiteral("/proc/self/fd"));
    const auto links = folder.entryList(QDir::Files | QDir::System);
    for (const QString &link : links) {
        const QString target = QFile::symLinkTarget(folder.filePath(link));
        count += target.startsWith(QLatin1String("/dev/pts/")) ? 1 : 0;
    }
    return count;
}

// By the window system, so that popups and modal dialogs have their say.
void click(const QWidget *widget)
{
    QWindow *window = widget->window()->windowHandle();
    const QPoint place = widget->mapTo(widget->window(), widget->rect().center());
    QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, place);
}

BoxAnswer::Box disconnectBox(QMessageBox::StandardButton click)
{
    return {QStringLiteral("TK-7 Router"),
            QStringLiteral("Are you sure want disconnected from the TK-7 Router? If you will "
                           "disconnect, router load all rules from the internal memory."),
            QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel, click};
}

void hearBusy(MainWindow &window)
{
    const QByteArray busy("$VRCNB\r\n");
    window.currentLink()->receiveBytes(busy.constData(), int(busy.size()));
}

const QString busyText = QStringLiteral("TK-7 Router Busy another Control programm");

} // namespace

void tst_onelink::verifyConnectsAgain(WindowBench &bench)
{
    bench.router.clearFaults();
    QVERIFY2(bench.connectToRouter(), qPrintable(bench.boxes.report()));
    QVERIFY(bench.boxes.isDone());
}

void tst_onelink::progressDialogStays_data()
{
    QTest::addColumn<Deed>("deed");
    const auto key = [](Qt::Key code) {
        return [code](QProgressDialog &dialog, WindowBench &) {
            QTest::keyClick(dialog.windowHandle(), code);
        };
    };
    QTest::newRow("Escape") << Deed(key(Qt::Key_Escape));
    QTest::newRow("Return") << Deed(key(Qt::Key_Return));
    QTest::newRow("press beside it") << Deed([](QProgressDialog &, WindowBench &bench) {
        click(bench.find<QLabel>("label_input_ports"));
    });
    QTest::newRow("press beside the window") << Deed([](QProgressDialog &, WindowBench &bench) {
        QTest::mouseClick(bench.window.windowHandle(), Qt::LeftButton, Qt::NoModifier, {-9, -9});
    });
    QTest::newRow("press on it") << Deed(
        [](QProgressDialog &dialog, WindowBench &) { click(dialog.findChild<QProgressBar *>()); });
    QTest::newRow("right button beside it") << Deed([](QProgressDialog &, WindowBench &bench) {
        QTest::mouseClick(bench.window.windowHandle(), Qt::RightButton, Qt::NoModifier, {5, 5});
    });
    QTest::newRow("second press of a double click")
        << Deed([](QProgressDialog &, WindowBench &bench) {
               const auto *button = bench.find<QPushButton>("pushButton_connect");
               QTest::mouseDClick(button->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                                  button->mapTo(button->window(), button->rect().center()));
           });
    QTest::newRow("close, as by Alt+F4") << Deed([](QProgressDialog &dialog, WindowBench &) {
        QCloseEvent close;
        QCoreApplication::sendEvent(dialog.windowHandle(), &close);
    });
    QTest::newRow("closed by the program")
        << Deed([](QProgressDialog &dialog, WindowBench &) { dialog.close(); });
    QTest::newRow("rejected") << Deed(
        [](QProgressDialog &dialog, WindowBench &) { dialog.reject(); });
    QTest::newRow("taken away by the system") << Deed([](QProgressDialog &dialog, WindowBench &) {
        dialog.hide();
        QVERIFY(!dialog.isVisible());
    });
    QTest::newRow("cancelled") << Deed(
        [](QProgressDialog &dialog, WindowBench &) { dialog.cancel(); });
}

void tst_onelink::progressDialogStays()
{
    QFETCH(Deed, deed);
    WindowBench bench;
    bench.router.setFault(Fault::Silent);
    bench.find<QPushButton>("pushButton_connect")->click();
    const QPointer<NmeaSerialPort> link = bench.window.currentLink();
    const QPointer<QProgressDialog> dialog = bench.window.findChild<QProgressDialog *>();
    QVERIFY(dialog && QTest::qWaitForWindowExposed(dialog));
    for (int i = 0; i < 2; ++i) {
        deed(*dialog, bench);
        QTRY_VERIFY(dialog && dialog->isVisible());
        QCOMPARE(QApplication::activePopupWidget(), dialog.data());
        QVERIFY(!bench.find<QPushButton>("pushButton_connect")->isEnabled());
        QCOMPARE(bench.window.currentLink(), link.data());
    }
    bench.boxes.expect(WindowBench::linkBox(busyText));
    hearBusy(bench.window);
    QTRY_VERIFY(!dialog);
    QVERIFY(!QApplication::activePopupWidget());
    bench.verifyIdle();
}

// What was pressed while the dialog stood, and is let go behind it, costs the next click nothing.
void tst_onelink::firstClickBehindTheSearch()
{
    ScriptedBench bench;
    const auto *button = bench.find<QPushButton>("pushButton_connect");
    const QPoint place = button->mapTo(&bench.window, button->rect().center());
    QWindow *window = bench.window.windowHandle();
    bool isPressed = false;
    QTimer::singleShot(0, &bench.window, [&] {
        isPressed = QApplication::activePopupWidget() != nullptr;
        QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, place);
    });
    QVERIFY(bench.connectToRouter());
    QVERIFY(isPressed);
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, place);
    bench.boxes.expect(disconnectBox(QMessageBox::Cancel));
    click(button);
    QTRY_COMPARE(bench.boxes.answered(), 2);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// A silent port, and in the midst of its search the way to another one.
void tst_onelink::oneLinkAtATime()
{
    const int portsBefore = openPorts();
    WindowBench bench;
    bench.router.setFault(Fault::Silent);
    bench.boxes.expect(WindowBench::linkBox(linkTimeout));
    auto *button = bench.find<QPushButton>("pushButton_connect");
    button->click();
    const QPointer<NmeaSerialPort> link = bench.window.currentLink();
    QTRY_COMPARE(openPorts(), portsBefore + 1);

    PtyPair other;
    auto *ports = bench.find<QComboBox>("comboBox_connect_port");
    click(bench.find<QLabel>("label_input_ports"));
    click(bench.find<QPushButton>("pushButton_rescan_ports"));
    bench.window.slotRescanPorts();
    ports->addItem(other.slavePath());
    ports->setCurrentText(other.slavePath());
    QVERIFY(!button->isEnabled());
    click(button);
    bench.window.slotConnectPort();
    QCOMPARE(bench.window.currentLink(), link.data());
    QCOMPARE(bench.window.findChildren<QProgressDialog *>().size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(bench.boxes.answered(), 1, 8000);
    QTRY_VERIFY(!link);
    QVERIFY(other.lines().isEmpty());
    bench.verifyIdle();
    other.hangUp();
    QCOMPARE(openPorts(), portsBefore);
    bench.selectRouterPort();
    verifyConnectsAgain(bench);
}

// By a program that presses what a hand can't reach, and a list that empties meanwhile.
void tst_onelink::rescanInTheSearch()
{
    WindowBench bench;
    bench.router.setFault(Fault::Silent);
    const auto *button = bench.find<QPushButton>("pushButton_connect");
    auto *ports = bench.find<QComboBox>("comboBox_connect_port");
    bench.find<QPushButton>("pushButton_connect")->click();
    platform::setSystemPortSource([] { return QStringList{QStringLiteral("ttyA")}; });
    const auto restore = qScopeGuard([] { platform::setSystemPortSource({}); });
    QVERIFY(bench.find<QPushButton>("pushButton_rescan_ports")->isEnabled());
    bench.find<QPushButton>("pushButton_rescan_ports")->click();
    QVERIFY(ports->findText(QStringLiteral("ttyA")) >= 0);
    QVERIFY(!button->isEnabled());
    ports->clear();
    bench.boxes.expect(WindowBench::linkBox(busyText));
    hearBusy(bench.window);
    QCOMPARE(bench.boxes.answered(), 1);
    QVERIFY(!bench.window.currentLink());
    // No port is listed: there is nothing to connect to.
    QVERIFY(!button->isEnabled());
    bench.selectRouterPort();
    verifyConnectsAgain(bench);
}

void tst_onelink::rescanInTheConnection()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    platform::setSystemPortSource([] { return QStringList(); });
    const auto restore = qScopeGuard([] { platform::setSystemPortSource({}); });
    bench.window.slotRescanPorts();
    const auto *button = bench.find<QPushButton>("pushButton_connect");
    QCOMPARE(button->text(), QStringLiteral("Disconnect"));
    QVERIFY(button->isEnabled());
    bench.selectRouterPort();
}

// It answers at 2400 baud and doesn't follow to 115200, however often it is asked.
void tst_onelink::searchAt2400Ends()
{
    constexpr int answerDelay = 400; // late, which makes the search as long as it can be
    constexpr int longest = 4500;
    constexpr int late = 900;
    PtyPair line;
    MainWindow window;
    BoxAnswer boxes;
    connect(&line, &PtyPair::lineReceived, &window, [&](const QByteArray &, int speed) {
        if (speed == 2400)
            QTimer::singleShot(answerDelay, &line, [&] { line.write(checkedLine("$VRCNU,3")); });
    });
    auto *ports = window.findChild<QComboBox *>(QStringLiteral("comboBox_connect_port"));
    ports->addItem(line.slavePath());
    ports->setCurrentText(line.slavePath());
    window.show();
    boxes.expect(WindowBench::linkBox(linkTimeout));
    QElapsedTimer clock;
    clock.start();
    window.slotConnectPort();
    QTRY_VERIFY_WITH_TIMEOUT(boxes.answered() == 1, 10000);
    QVERIFY2(clock.elapsed() < longest + late, qPrintable(QString::number(clock.elapsed())));
    QTRY_VERIFY(!window.currentLink());
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
    int asked = 0;
    for (const PtyPair::Line &heard : line.lines())
        asked += heard.speed == 2400 ? 1 : 0;
    QCOMPARE(asked, 2);
}

void tst_onelink::everyEndLeavesNothing_data()
{
    QTest::addColumn<QString>("end");
    QTest::newRow("silence") << "silence";
    QTest::newRow("busy") << "busy";
    QTest::newRow("disconnect") << "disconnect";
}

// Of a connection with a mode, an error, a view and wrong checksums nothing stays behind its end.
void tst_onelink::everyEndLeavesNothing()
{
    QFETCH(QString, end);
    const int portsBefore = openPorts();
    WindowBench bench;
    const MatrixView matrix(bench.window);
    const auto styles = [&matrix] {
        QStringList all;
        for (int i = 0; i < MatrixView::size; ++i)
            all << matrix.outputButton(i)->styleSheet() << matrix.channelButton(i)->styleSheet();
        return all;
    };
    QVERIFY(bench.connectToRouter());
    const QPointer<NmeaSerialPort> link = bench.window.currentLink();
    QCOMPARE(openPorts(), portsBefore + 1);
    const QStringList plainStyles = styles();
    const auto *count = bench.find<QLabel>("labelCrsErrorsCount");
    const auto *mode = bench.find<QLabel>("label_firmware_mode");
    const auto *list = bench.find<QListWidget>("listWidget");
    bench.router.setMode("NIGHT");
    bench.router.sendChecked("$VRMOD,NIGHT");
    bench.router.sendChecked("$VRLCK,1,0");
    bench.router.sendLine("$VRVER,1.1*00\r\n$VRVVW,2\r\n$GPGLL,1,N\r\n");
    QTRY_VERIFY(list->count() > 1);
    QCOMPARE(count->text(), QStringLiteral("1"));
    QCOMPARE(mode->text(), QStringLiteral("mode: NIGHT"));
    QVERIFY(styles() != plainStyles);
    QVERIFY(bench.find<QLabel>("label_lock")->isVisible());

    if (end == QLatin1String("disconnect")) {
        bench.boxes.expect(disconnectBox(QMessageBox::Ok));
        bench.find<QPushButton>("pushButton_connect")->click();
    } else if (end == QLatin1String("busy")) {
        bench.boxes.expect(WindowBench::linkBox(busyText));
        bench.router.sendLine("$VRCNB\r\n");
    } else {
        bench.boxes.expect(WindowBench::linkBox(linkTimeout));
        bench.router.setFault(Fault::Silent);
    }
    QTRY_VERIFY_WITH_TIMEOUT(!link, 8000);
    bench.verifyIdle();
    QCOMPARE(openPorts(), portsBefore);
    QCOMPARE(styles(), plainStyles);
    QCOMPARE(list->count(), 0);
    QVERIFY(count->text().isEmpty() && !count->isVisible());
    QVERIFY(!bench.find<QLabel>("label_lock")->isVisible());
    QVERIFY(bench.find<QLabel>("label_receive_port")->text().isEmpty());

    // The next connection begins with nothing of the last one, until its own router tells.
    bench.router.clearFaults();
    const auto restarted = [&] { return !bench.router.isConnected(); };
    bench.router.restart();
    QTRY_VERIFY(restarted());
    QStringList atConnect;
    connect(&bench.router, &tk7sim::RouterSimulator::lineReceived, &bench.window,
            [&](const QByteArray &line) {
                if (line == "$VRRLD\r\n")
                    atConnect << mode->text() << count->text();
            });
    verifyConnectsAgain(bench);
    QCOMPARE(atConnect, QStringList({QString(), QStringLiteral("0")}));
    bench.router.disconnect(&bench.window);
}

void tst_onelink::windowClosedWithALink_data()
{
    QTest::addColumn<bool>("isConnected");
    QTest::newRow("in the search") << false;
    QTest::newRow("in the connection") << true;
}

void tst_onelink::windowClosedWithALink()
{
    QFETCH(bool, isConnected);
    const int portsBefore = openPorts();
    tk7sim::RouterSimulator router;
    router.setTrafficRate(0);
    QVERIFY(router.open());
    QPointer<NmeaSerialPort> link;
    {
        BoxAnswer boxes;
        MainWindow window;
        auto *ports = window.findChild<QComboBox *>(QStringLiteral("comboBox_connect_port"));
        ports->addItem(router.deviceName());
        ports->setCurrentText(router.deviceName());
        window.show();
        window.slotConnectPort();
        link = window.currentLink();
        QVERIFY(link);
        if (isConnected) {
            boxes.expect(WindowBench::downloadBox());
            QTRY_VERIFY(boxes.isDone());
            QVERIFY(window.isConnected());
        }
        QCOMPARE(openPorts(), portsBefore + 1);
        window.close();
    }
    QVERIFY(!link);
    QCOMPARE(openPorts(), portsBefore);
    // The router is told nothing.
    QTest::qWait(100);
    for (const tk7sim::ReceivedLine &line : router.transcript())
        QVERIFY(line.line != "$VRDCN\r\n");
}

// The version is asked for at once, at the speed of the search.
void tst_onelink::endMarkInTheSearch()
{
    ScriptedBench bench;
    BoxAnswer::Box left = WindowBench::downloadBox();
    left.click = QMessageBox::NoButton;
    left.whileOpen = [&](QMessageBox &box) {
        QVERIFY(!bench.window.isConnected());
        QVERIFY(QTest::qWaitFor([&] { return bench.boxes.answered() == 2; }));
        box.accept();
    };
    bench.boxes.expect(left).expect(WindowBench::downloadBox());
    int askedEarly = 0;
    bench.onLine = [&](const QByteArray &line) {
        if (line == "$VRVER\r\n" && !bench.window.isConnected())
            ++askedEarly;
    };
    const QByteArray mark("$VRWBL\r\n");
    // The box holds this call up, so the rest follows from a timer.
    QTimer::singleShot(0, &bench.window, [&] {
        bench.window.currentLink()->receiveBytes(mark.constData(), int(mark.size()));
    });
    bench.window.slotConnectPort();
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QVERIFY(bench.window.isConnected());
    QCOMPARE(askedEarly, 1);
}

// What comes in one piece with the end mark is on the screen while its box is open.
void tst_onelink::burstBehindTheBox()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    const auto *mode = bench.find<QLabel>("label_firmware_mode");
    QString shown;
    BoxAnswer::Box left = WindowBench::downloadBox();
    left.click = QMessageBox::NoButton;
    left.whileOpen = [&](QMessageBox &box) {
        shown = mode->text();
        box.accept();
    };
    bench.boxes.expect(left);
    bench.line.write("$VRWBL\r\n" + checkedLine("$VRMOD,BURST"));
    QTRY_VERIFY(!shown.isNull());
    QCOMPARE(shown, QStringLiteral("mode: BURST"));
}

// A view that is told while the box of the end is open is forgotten by the next connection.
void tst_onelink::viewOfAnEndedConnection()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    BoxAnswer::Box left = WindowBench::linkBox(linkTimeout);
    left.click = QMessageBox::NoButton;
    left.whileOpen = [&](QMessageBox &box) {
        bench.window.slotVRPortView(2);
        box.accept();
    };
    bench.boxes.expect(left);
    bench.endLink();
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY2(bench.connectToRouter(), qPrintable(bench.boxes.report()));
    const auto *list = bench.find<QListWidget>("listWidget");
    const int before = list->count();
    bench.line.write("$GPGLL,1,N\r\n");
    bench.waitUntilHeard();
    QTest::qWait(300); // a look of the monitor at its lines
    QCOMPARE(list->count(), before);
    bench.line.write("$VRVVW,2\r\n$GPGLL,1,N\r\n");
    QTRY_COMPARE(list->count(), before + 2);
}

QTEST_MAIN(tst_onelink)
#include "tst_onelink.moc"
