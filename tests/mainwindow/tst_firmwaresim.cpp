#include "servicesimtest.h"

#include <QLabel>
#include <QProgressDialog>

using tk7sim::Fault;

/*! Firmware updates against the simulated router, over the line and with its faults. */
class tst_firmwaresim : public ServiceSimTest
{
    Q_OBJECT

private slots:
    void largeFirmware();
    void faults_data();
    void faults();
    void cancelAndAgain_data();
    void cancelAndAgain();
    void reconnectsToTheNewVersion();
};

namespace {

QString failure(int code)
{
    return QStringLiteral("Error firmware update. code: %1").arg(code);
}

} // namespace

// More bytes than 16 bits with a sign can count, half a minute long.
void tst_firmwaresim::largeFirmware()
{
    QVERIFY(connectToRouter());
    verifyUpdateWorks(firmwareImage(33000, 11));
    QCOMPARE(m_bench->router.firmwarePackets(), 1032);
}

void tst_firmwaresim::faults_data()
{
    QTest::addColumn<int>("fault");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text"); // empty: it goes well all the same

    const QString timeout = QStringLiteral("Error: Firmware update timeout");
    const auto add = [](const char *name, Fault fault, double value, const QString &text) {
        QTest::newRow(name) << int(fault) << value << text;
    };
    add("refused", Fault::FwRefuse, 0, failure(1));
    add("wrong number", Fault::FwWrongNumber, 2, failure(-1));
    add("repeated", Fault::FwRepeat, 2, failure(-1));
    add("early", Fault::FwEarly, 2, QString());
    add("late", Fault::FwLate, 300, QString());
    add("silent from the start", Fault::FwSilentAt, 0, timeout);
    add("silent at packet 2", Fault::FwSilentAt, 2, timeout);
    add("silent at the end", Fault::FwSilentAt, 5, timeout);
    add("error at the end", Fault::FwError, 42, failure(42));
    add("error at packet 1", Fault::FwErrorAt, 1, failure(7));
    add("error at the last packet", Fault::FwErrorAt, 4, failure(7));
    add("wrong checksums", Fault::WrongChecksums, 0, timeout);
}

void tst_firmwaresim::faults()
{
    QFETCH(int, fault);
    QFETCH(double, value);
    QFETCH(QString, text);
    WindowBench &bench = *m_bench;
    const QByteArray image = firmwareImage(100);
    QVERIFY(connectToRouter());
    bench.router.setFault(Fault(fault), value);
    if (text.isEmpty()) {
        verifyUpdateWorks(image);
        return;
    }
    QVERIFY(startUpdate(image));
    bench.boxes.expect(FirmwareBench::failure(text));
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.isDone(), 8000);
    bench.router.clearFaults();
    verifyUpdateWorks(image);
}

void tst_firmwaresim::cancelAndAgain_data()
{
    QTest::addColumn<QByteArray>("heard");

    QTest::newRow("at once") << QByteArray();
    QTest::newRow("behind the request") << QByteArray("$VRFWS");
    QTest::newRow("behind packet 1") << QByteArray("$VRFWP,1,");
    QTest::newRow("behind packet 3") << QByteArray("$VRFWP,3,");
    QTest::newRow("behind the end") << QByteArray("$VRFWF");
}

// As soon as the router has said its last word to the first update.
void tst_firmwaresim::cancelAndAgain()
{
    QFETCH(QByteArray, heard);
    WindowBench &bench = *m_bench;
    bench.router.setFlashDuration(0);
    QVERIFY(connectToRouter());
    QVERIFY(startUpdate(firmwareImage(100, 2)));
    const auto cancel = [&] {
        bench.window.findChild<QProgressDialog *>()->findChild<QPushButton *>()->click();
    };
    bool isCancelled = heard.isEmpty();
    if (isCancelled)
        cancel();
    const auto connection = connect(&bench.router, &tk7sim::RouterSimulator::lineReceived,
                                    &bench.window, [&](const QByteArray &line) {
                                        if (isCancelled || !line.startsWith(heard))
                                            return;
                                        isCancelled = true;
                                        cancel();
                                    });
    QTRY_VERIFY(isCancelled);
    disconnect(connection);
    verifyUpdateWorks(firmwareImage(150, 3));
}

void tst_firmwaresim::reconnectsToTheNewVersion()
{
    WindowBench &bench = *m_bench;
    bench.router.setRebootDuration(500);
    QVERIFY(connectToRouter());
    verifyUpdateWorks(firmwareImage(200));
    QTRY_VERIFY(bench.router.isRebooting());
    QTRY_VERIFY(!bench.router.isRebooting());
    QVERIFY(connectToRouter());
    QTRY_COMPARE(bench.find<QLabel>("label_firmware_version")->text(), QStringLiteral("fw: v.3.6"));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

QTEST_MAIN(tst_firmwaresim)
#include "tst_firmwaresim.moc"
