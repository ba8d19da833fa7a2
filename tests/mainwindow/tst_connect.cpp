#include "windowbench.h"

#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>

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
    void linkDiesUnderAnOpenBox();

private:
    static void verifyConnectsAgain(WindowBench &bench);
};

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
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_connect::progressDialog()
{
    WindowBench bench;
    bench.router.setFault(Fault::Silent);
    bench.boxes.expect(WindowBench::linkBox(QStringLiteral("Connection timeout")));
    bench.find<QPushButton>("pushButton_connect")->click();

    QPointer<QProgressDialog> dialog = bench.window.findChild<QProgressDialog *>();
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    QVERIFY(!bench.find<QPushButton>("pushButton_connect")->isEnabled());
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
    QCOMPARE(values.mid(0, 7), QList<int>({0, 15, 30, 45, 60, 75, 90}));
    QTRY_VERIFY(!dialog);
}

void tst_connect::silentRouterTimesOut()
{
    WindowBench bench;
    bench.router.setFault(Fault::Silent);
    bench.boxes.expect(WindowBench::linkBox(QStringLiteral("Connection timeout")));
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
    bench.boxes.expect(
        WindowBench::linkBox(QStringLiteral("TK-7 Router Busy another Control programm")));
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 5000);
    bench.verifyIdle();
    verifyConnectsAgain(bench);
}

void tst_connect::busyDuringTheConnection()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(
        WindowBench::linkBox(QStringLiteral("TK-7 Router Busy another Control programm")));
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
    bench.boxes.expect(WindowBench::linkBox(QStringLiteral("Connection timeout")));
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 10000);
    bench.verifyIdle();
}

// Every answer is counted as a bad checksum, and none is taken for an answer.
void tst_connect::wrongChecksums()
{
    WindowBench bench;
    bench.router.setFault(Fault::WrongChecksums);
    bench.boxes.expect(WindowBench::linkBox(QStringLiteral("Connection timeout")));
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 10000);
    bench.verifyIdle();
    verifyConnectsAgain(bench);
}

// The box of the download is open while the router falls silent: the box goes, the warning comes.
void tst_connect::linkDiesUnderAnOpenBox()
{
    WindowBench bench;
    BoxAnswer::Box leftOpen = WindowBench::downloadBox();
    leftOpen.click = QMessageBox::NoButton;
    bench.boxes.expect(leftOpen).expect(WindowBench::linkBox(QStringLiteral("Connection timeout")));
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

QTEST_MAIN(tst_connect)
#include "tst_connect.moc"
