#include "link/nmeaserialport.h"
#include "scriptedbench.h"
#include "support/checkedline.h"
#include "windowbench.h"

#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QScopeGuard>

#include <memory>
#include <utility>

using tk7sim::Fault;

/*! From the Connect button to the connected display, and every way in which that can fail. */
class tst_connect : public QObject
{
    Q_OBJECT

private slots:
    void connectsFromEverySpeed_data();
    void connectsFromEverySpeed();
    void progressDialog();
    void silentRouterTimesOut();
    void busyRouter();
    void busyDuringTheConnection();
    void portThatWontOpen();
    void noSecondAnswer();
    void wrongChecksums();
    void checksumCountBeginsWithTheConnection();
    void versionKnownBeforeTheConnection();
    void viewBeforeTheConnection();
    void nothingIsKnownOfTheNextConnection();
    void viewEndsWithTheConnection_data();
    void viewEndsWithTheConnection();
    void linkDiesUnderAnOpenBox();
    void windowUnderTheBox_data();
    void windowUnderTheBox();

private:
    static void verifyConnectsAgain(WindowBench &bench);
};

namespace {

// What the user sees of the count of bad checksums.
QString shownCount(const MainWindow &window)
{
    const auto *count = window.findChild<QLabel *>(QStringLiteral("labelCrsErrorsCount"));
    const auto *label = window.findChild<QLabel *>(QStringLiteral("labelCrsLabel"));
    return QStringLiteral("\"%1\", %2, %3 %4")
        .arg(count->text(), count->styleSheet())
        .arg(label->isVisible())
        .arg(count->isVisible());
}

const QString noCount = QStringLiteral("\"\", QLabel{color: default}, 0 0");
const QString countOfNothing = QStringLiteral("\"0\", QLabel{color: default}, 0 0");
const QString countInTheSearch = QStringLiteral("\"\", QLabel{color: red}, 1 1");

// What was shown after each bad checksum of the search that has just begun.
std::shared_ptr<QStringList> followCount(const MainWindow &window)
{
    auto shown = std::make_shared<QStringList>();
    QObject::connect(window.currentLink(), &NmeaSerialPort::signalCommandCRSError, &window,
                     [shown, &window] { *shown += shownCount(window); });
    return shown;
}

} // namespace

void tst_connect::verifyConnectsAgain(WindowBench &bench)
{
    bench.router.clearFaults();
    QVERIFY2(bench.connectToRouter(), qPrintable(bench.boxes.report()));
    QVERIFY(bench.boxes.isDone());
}

void tst_connect::connectsFromEverySpeed_data()
{
    QTest::addColumn<int>("speed");
    for (int speed : {2400, 4800, 9600, 19200, 38400, 57600, 115200})
        QTest::newRow(qPrintable(QString::number(speed))) << speed;
}

void tst_connect::connectsFromEverySpeed()
{
    QFETCH(int, speed);
    WindowBench bench;
    QVERIFY(bench.router.setStartSpeed(speed));
    bench.router.setControlPort(7);
    QVERIFY2(bench.connectToRouter(), qPrintable(bench.boxes.report()));
    QCOMPARE(bench.router.lineSpeed(), 115200);
    QCOMPARE(bench.router.speed(), 115200);
    QVERIFY(bench.router.isConnected());

    const auto *button = bench.find<QPushButton>("pushButton_connect");
    QCOMPARE(button->text(), QStringLiteral("Disconnect"));
    QVERIFY(button->isEnabled());
    QVERIFY(!bench.find<QComboBox>("comboBox_connect_port")->isEnabled());
    QVERIFY(!bench.find<QPushButton>("pushButton_rescan_ports")->isEnabled());
    QVERIFY(bench.find<QPushButton>("pushButton_SaveEEPROM")->isEnabled());
    QCOMPARE(bench.find<QLabel>("label_3")->text(), QStringLiteral("TK-7 Router:"));
    QCOMPARE(bench.find<QLabel>("label_vr48_status")->text(), QStringLiteral("Connected"));
    QCOMPARE(bench.find<QLabel>("label_vr48_port")->text(), QStringLiteral("Port:7"));
    QTRY_VERIFY(!bench.window.findChild<QProgressDialog *>());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_connect::progressDialog()
{
    WindowBench bench;
    bench.router.setFault(Fault::Silent);
    bench.boxes.expect(WindowBench::timeoutBox());
    bench.find<QPushButton>("pushButton_connect")->click();

    QPointer<QProgressDialog> dialog = bench.window.findChild<QProgressDialog *>();
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    QVERIFY(!bench.find<QPushButton>("pushButton_connect")->isEnabled());
    QVERIFY(bench.find<QComboBox>("comboBox_connect_port")->isEnabled());
    QVERIFY(bench.find<QPushButton>("pushButton_rescan_ports")->isEnabled());
    QVERIFY(!bench.find<QPushButton>("pushButton_SaveEEPROM")->isEnabled());
    QCOMPARE(dialog->labelText(), QStringLiteral("Connecting TK-7...       "));
    QVERIFY(dialog->findChildren<QPushButton *>().isEmpty());
    QCOMPARE(dialog->minimum(), 0);
    QCOMPARE(dialog->maximum(), 100);
    QCOMPARE(dialog->minimumDuration(), 0);
    QVERIFY(dialog->autoFillBackground());
    QCOMPARE(dialog->parentWidget(), &bench.window);
    QCOMPARE(dialog->windowFlags() & Qt::WindowType_Mask, Qt::WindowFlags(Qt::Popup));
    QCOMPARE(dialog->windowModality(), Qt::WindowModal);
    QCOMPARE(dialog->font().pointSize(), 8);
    for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(dialog->palette().color(group, QPalette::Window), QColor(0x00, 0xce, 0xff));
        QCOMPARE(dialog->palette().color(group, QPalette::Button), QColor(Qt::white));
    }
    QList<int> values;
    auto *bar = dialog->findChild<QProgressBar *>();
    QVERIFY(bar);
    values += bar->value();
    connect(bar, &QProgressBar::valueChanged, &bench.window, [&](int value) {
        if (value >= 0)
            values += value;
    });
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 8000);
    QCOMPARE(values, QList<int>({0, 15, 30, 45, 60, 75, 90, 100}));
    QTRY_VERIFY(!dialog);
}

void tst_connect::silentRouterTimesOut()
{
    WindowBench bench;
    bench.router.setFault(Fault::Silent);
    bench.boxes.expect(WindowBench::timeoutBox());
    QElapsedTimer clock;
    clock.start();
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 10000);
    QVERIFY2(clock.elapsed() >= 3450, qPrintable(QString::number(clock.elapsed())));
    bench.verifyIdle();
    verifyConnectsAgain(bench);
}

void tst_connect::busyRouter()
{
    WindowBench bench;
    bench.router.setFault(Fault::Busy);
    bench.boxes.expect(WindowBench::busyBox());
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 5000);
    bench.verifyIdle();
    verifyConnectsAgain(bench);
}

void tst_connect::busyDuringTheConnection()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(WindowBench::busyBox());
    bench.router.sendLine("$VRCNB\r\n");
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 2, 5000);
    QTRY_VERIFY(!bench.window.isConnected());
    bench.verifyIdle();
}

void tst_connect::portThatWontOpen()
{
    WindowBench bench;
    auto *ports = bench.find<QComboBox>("comboBox_connect_port");
    ports->addItem(QStringLiteral("/dev/null/none"));
    ports->setCurrentIndex(ports->count() - 1);
    BoxAnswer::Box box = WindowBench::linkBox(QStringLiteral("Error open COM port"));
    box.click = QMessageBox::NoButton;
    bool isReachable = false;
    box.whileOpen = [&](QMessageBox &open) {
        isReachable = !QApplication::activePopupWidget();
        open.accept();
    };
    bench.boxes.expect(box);
    bench.find<QPushButton>("pushButton_connect")->click();
    QCOMPARE(bench.boxes.answered(), 1);
    QVERIFY(isReachable);
    bench.verifyIdle();
    bench.selectRouterPort();
    verifyConnectsAgain(bench);
}

void tst_connect::noSecondAnswer()
{
    WindowBench bench;
    bench.router.setFault(Fault::NoSecondAnswer);
    bench.boxes.expect(WindowBench::timeoutBox());
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 10000);
    bench.verifyIdle();
}

// Every answer is counted as a bad checksum, and none is taken for an answer. The number itself is
// shown in a connection only.
void tst_connect::wrongChecksums()
{
    constexpr int speeds = 7;
    WindowBench bench;
    bench.router.setFault(Fault::WrongChecksums);
    bench.boxes.expect(WindowBench::timeoutBox());
    QCOMPARE(shownCount(bench.window), noCount);
    bench.find<QPushButton>("pushButton_connect")->click();
    const auto shown = followCount(bench.window);
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 10000);
    QVERIFY(!shown->isEmpty() && shown->size() <= speeds);
    for (const QString &count : qAsConst(*shown))
        QCOMPARE(count, countInTheSearch);
    bench.verifyIdle();
    QCOMPARE(shownCount(bench.window), noCount);
    verifyConnectsAgain(bench);
}

void tst_connect::checksumCountBeginsWithTheConnection()
{
    ScriptedBench bench;
    bool isWrong = true;
    bench.onLine = [&](const QByteArray &sentence) {
        if (sentence == "$VRCNT\r\n" && std::exchange(isWrong, false))
            bench.line.write(wronglyCheckedLine("$VRVER,3.4"));
    };
    bench.boxes.expect(WindowBench::downloadBox());
    bench.find<QPushButton>("pushButton_connect")->click();
    const auto shown = followCount(bench.window);
    QTRY_COMPARE(bench.boxes.answered(), 1);
    QCOMPARE(*shown, QStringList(countInTheSearch));
    QVERIFY(bench.window.isConnected());
    QCOMPARE(shownCount(bench.window), countOfNothing);
}

// It comes between the router's two answers, so it is shown as soon as the connection stands, and
// not asked for.
void tst_connect::versionKnownBeforeTheConnection()
{
    ScriptedBench bench;
    bool isFirst = true;
    bench.onLine = [&](const QByteArray &sentence) {
        if (sentence == "$VRCNT\r\n" && std::exchange(isFirst, false))
            bench.say("$VRVER,9.81");
    };
    const auto *label = bench.find<QLabel>("label_firmware_version");
    bench.boxes.expect(WindowBench::downloadBox());
    bench.find<QPushButton>("pushButton_connect")->click();
    QString before;
    connect(bench.window.currentLink(), &NmeaSerialPort::signalVRVersion, &bench.window,
            [&] { before = label->text() + QLatin1Char('.'); });
    QTRY_COMPARE(bench.boxes.answered(), 1);
    QCOMPARE(before, QStringLiteral("."));
    QCOMPARE(label->text(), QStringLiteral("fw: v.9.81"));
    bench.waitUntilHeard();
    QVERIFY(!bench.heard().contains("$VRVER\r\n"));
}

// Nothing is under view before there is a connection, whatever the router says.
void tst_connect::viewBeforeTheConnection()
{
    ScriptedBench bench;
    bool isFirst = true;
    bench.onLine = [&](const QByteArray &sentence) {
        if (sentence == "$VRCNT\r\n" && std::exchange(isFirst, false))
            bench.sayBare("$VRVVW,243");
    };
    bench.find<QPushButton>("pushButton_play")->click();
    const QString paused = bench.find<QPushButton>("pushButton_play")->accessibleName();
    bench.boxes.expect(WindowBench::downloadBox());
    bench.find<QPushButton>("pushButton_connect")->click();
    const QSignalSpy views(bench.window.currentLink(), &NmeaSerialPort::signalVRPortView);
    QTRY_COMPARE(bench.boxes.answered(), 1);
    QCOMPARE(views.count(), 1);
    QCOMPARE(bench.find<QLabel>("label_receive_port")->text(), QString());
    QCOMPARE(bench.find<QPushButton>("pushButton_play")->accessibleName(), paused);
}

// What the router of the last connection has told of itself went with it.
void tst_connect::nothingIsKnownOfTheNextConnection()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    const auto *version = bench.find<QLabel>("label_firmware_version");
    const auto *mode = bench.find<QLabel>("label_firmware_mode");
    QVERIFY(!version->text().isEmpty() && !mode->text().isEmpty());
    bench.boxes.expect(WindowBench::timeoutBox());
    bench.endLink();
    QVERIFY(!bench.window.isConnected());

    bench.boxes.expect(WindowBench::downloadBox());
    bench.find<QPushButton>("pushButton_connect")->click();
    QString shown;
    connect(bench.window.currentLink(), &NmeaSerialPort::signalVRConnect, &bench.window,
            [&] { shown = QStringLiteral("\"%1\" \"%2\"").arg(version->text(), mode->text()); });
    QTRY_COMPARE(bench.boxes.answered(), 3);
    QCOMPARE(shown, QStringLiteral("\"\" \"\""));
}

void tst_connect::viewEndsWithTheConnection_data()
{
    QTest::addColumn<QByteArray>("code");
    QTest::newRow("output port") << QByteArray("63");
    QTest::newRow("channel") << QByteArray("4");
    QTest::newRow("input port") << QByteArray("243");
}

// No button and no label keeps the colour of what was under view.
void tst_connect::viewEndsWithTheConnection()
{
    QFETCH(QByteArray, code);
    ScriptedBench bench;
    const auto sheets = [&bench] {
        QStringList all;
        const auto widgets = bench.window.findChildren<QWidget *>();
        for (const QWidget *widget : widgets) {
            if (!widget->styleSheet().isEmpty())
                all += widget->styleSheet();
        }
        return all;
    };
    QVERIFY(bench.connectToRouter());
    const QStringList before = sheets();
    bench.sayBare("$VRVVW," + code);
    bench.waitUntilHeard();
    QCOMPARE(sheets().size(), before.size());
    QVERIFY(sheets() != before);
    bench.boxes.expect(WindowBench::timeoutBox());
    bench.endLink();
    QVERIFY(!bench.window.isConnected());
    QCOMPARE(sheets(), before);
}

// The box of the download is open while the router falls silent: the box goes, the warning comes.
void tst_connect::linkDiesUnderAnOpenBox()
{
    WindowBench bench;
    BoxAnswer::Box leftOpen = WindowBench::downloadBox();
    leftOpen.click = QMessageBox::NoButton;
    bench.boxes.expect(leftOpen).expect(WindowBench::timeoutBox());
    // The box holds the test up in its own event loop: the silence must come from a timer.
    QTimer silence;
    silence.start(10);
    connect(&silence, &QTimer::timeout, &bench.window, [&] {
        if (bench.boxes.answered() == 1)
            bench.router.setFault(Fault::Silent);
    });
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 2, 12000);
    QTRY_VERIFY(!bench.window.isConnected());
    bench.verifyIdle();
    silence.stop();
    verifyConnectsAgain(bench);
}

void tst_connect::windowUnderTheBox_data()
{
    QTest::addColumn<int>("fault"); // -1: the port won't open
    QTest::addColumn<bool>("isConnection");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("canConnect");
    const QString busy = QStringLiteral("TK-7 Router Busy another Control programm");
    const QString timeout = QStringLiteral("Connection timeout");
    QTest::newRow("open error") << -1 << false << "Error open COM port" << false;
    QTest::newRow("busy in the search") << int(Fault::Busy) << false << busy << false;
    QTest::newRow("time-out of the search") << int(Fault::Silent) << false << timeout << true;
    QTest::newRow("busy in the connection") << int(Fault::Busy) << true << busy << true;
    QTest::newRow("time-out in the connection") << int(Fault::Silent) << true << timeout << true;
}

// What the display told of the connection has gone when the box comes; the list of ports and the
// save follow when it has been read.
void tst_connect::windowUnderTheBox()
{
    QFETCH(int, fault);
    QFETCH(bool, isConnection);
    QFETCH(QString, text);
    QFETCH(bool, canConnect);
    WindowBench bench;
    auto *button = bench.find<QPushButton>("pushButton_connect");
    if (fault < 0) {
        auto *ports = bench.find<QComboBox>("comboBox_connect_port");
        ports->addItem(QStringLiteral("/dev/null/none"));
        ports->setCurrentIndex(ports->count() - 1);
    }
    if (isConnection)
        QVERIFY(bench.connectToRouter());
    bool isSeen = false;
    BoxAnswer::Box box = WindowBench::linkBox(text);
    box.parent = &bench.window;
    box.click = QMessageBox::NoButton;
    box.whileOpen = [&](QMessageBox &open) {
        isSeen = true;
        const auto close = qScopeGuard([&open] { open.accept(); });
        QCOMPARE(button->text(), QStringLiteral("Connect"));
        QCOMPARE(button->isEnabled(), canConnect);
        QCOMPARE(bench.find<QComboBox>("comboBox_connect_port")->isEnabled(), !isConnection);
        QCOMPARE(bench.find<QPushButton>("pushButton_rescan_ports")->isEnabled(), !isConnection);
        QCOMPARE(bench.find<QPushButton>("pushButton_SaveEEPROM")->isEnabled(), isConnection);
        QCOMPARE(bench.find<QLabel>("label_vr48_status")->text(), QString());
        QCOMPARE(bench.find<QLabel>("label_firmware_mode")->text(), QString());
        QCOMPARE(bench.find<QLabel>("label_firmware_version")->text(), QString());
    };
    bench.boxes.expect(box);
    if (isConnection && fault == int(Fault::Busy))
        bench.router.sendLine("$VRCNB\r\n");
    else if (fault >= 0)
        bench.router.setFault(Fault(fault));
    if (!isConnection)
        button->click();
    QTRY_VERIFY_WITH_TIMEOUT(isSeen && !bench.window.currentLink(), 10000);
    bench.verifyIdle();
}

QTEST_MAIN(tst_connect)
#include "tst_connect.moc"
