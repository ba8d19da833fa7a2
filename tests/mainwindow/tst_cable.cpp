#include "windowbench.h"

#include <QElapsedTimer>
#include <QPushButton>

#include <sys/resource.h>

/*! The cable is pulled out: no box but the one, no processor time, a clean new connection. */
class tst_cable : public QObject
{
    Q_OBJECT

private slots:
    void pulledInTheConnection();
    void pulledInTheSearch();
    void pulledInTheDownload();
    void disconnectingWithoutACable();

private:
    static void verifyConnectsAgain(WindowBench &bench);
};

namespace {

qint64 processorMilliseconds()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto milliseconds = [](const timeval &time) {
        return qint64(time.tv_sec) * 1000 + time.tv_usec / 1000;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

const QString timeout = QStringLiteral("Connection timeout");

} // namespace

void tst_cable::verifyConnectsAgain(WindowBench &bench)
{
    QTRY_VERIFY(!bench.window.isConnected());
    bench.router.disconnect(&bench.window);
    if (!bench.router.isPlugged())
        QVERIFY(bench.router.plug());
    bench.selectRouterPort();
    QVERIFY2(bench.connectToRouter(), qPrintable(bench.boxes.report()));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_cable::pulledInTheConnection()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(WindowBench::linkBox(timeout));
    // The last sentence was heard no later than now.
    QElapsedTimer clock;
    clock.start();
    const qint64 before = processorMilliseconds();
    bench.router.unplug();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 2, 8000);
    const qint64 waited = clock.elapsed();
    const qint64 used = processorMilliseconds() - before;
    QVERIFY2(waited <= 4300, qPrintable(QString::number(waited)));
    // Looking for boxes every 5 ms is the test's own share. A spinning port takes all there is.
    QVERIFY2(used * 100 < waited * 20,
             qPrintable(QStringLiteral("%1 of %2 ms").arg(used).arg(waited)));
    verifyConnectsAgain(bench);
}

void tst_cable::pulledInTheSearch()
{
    WindowBench bench;
    bench.router.setFault(tk7sim::Fault::Silent);
    bench.boxes.expect(WindowBench::linkBox(timeout));
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.router.lineSpeed() == 9600, 3000);
    bench.router.unplug();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 8000);
    bench.router.clearFaults();
    verifyConnectsAgain(bench);
}

void tst_cable::pulledInTheDownload()
{
    WindowBench bench;
    bench.boxes.expect(WindowBench::linkBox(timeout));
    connect(&bench.router, &tk7sim::RouterSimulator::lineReceived, &bench.window,
            [&](const QByteArray &line) {
                if (line == "$VRRLD\r\n")
                    QTimer::singleShot(100, &bench.window, [&] { bench.router.unplug(); });
            });
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 10000);
    verifyConnectsAgain(bench);
}

// The question can't be sent any more: the end comes by the watch, not by the answer.
void tst_cable::disconnectingWithoutACable()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.router.unplug();
    bench.boxes
        .expect({QStringLiteral("TK-7 Router"),
                 QStringLiteral("Are you sure want disconnected from the TK-7 Router? If you will "
                                "disconnect, router load all rules from the internal memory."),
                 QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel})
        .expect(WindowBench::linkBox(timeout));
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 3, 8000);
    verifyConnectsAgain(bench);
}

QTEST_MAIN(tst_cable)
#include "tst_cable.moc"
