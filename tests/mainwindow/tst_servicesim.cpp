#include "firmwarebench.h"
#include "windowbench.h"

#include "platform/keyboard.h"
#include "service/enterpassworddlg.h"
#include "service/modedlg.h"
#include "service/passworddlg.h"
#include "support/aistestuser.h"
#include "support/indialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

using tk7sim::Fault;

/*! The service against the simulated router, over the line and with its faults. */
class tst_servicesim : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void statistics();
    void chip();
    void aisTest();
    void lockLevels_data();
    void lockLevels();
    void lifeOfAPassword();
    void lockedFault();
    void mode();
    void largeFirmware();
    void faults_data();
    void faults();
    void cancelAndAgain_data();
    void cancelAndAgain();
    void reconnectsToTheNewVersion();

private:
    QPushButton *button(const QWidget &dialog, const char *name) const
    {
        return dialog.findChild<QPushButton *>(QString::fromLatin1(name));
    }
    bool connectToRouter();
    bool inService(const std::function<void(servicedlg &)> &use);
    bool startUpdate(const QByteArray &image);
    void verifyUpdateWorks(const QByteArray &image);
    bool unlock(servicedlg &dialog, const QString &password);

    std::unique_ptr<WindowBench> m_bench;
    std::unique_ptr<FileDialogAnswer> m_files;
    QTemporaryDir m_folder;
};

namespace {

BoxAnswer::Box unlocked(int level)
{
    QString welcome;
    if (level == 4)
        welcome = QStringLiteral("   Welcome TIDEWELL MAN !!!\r\n");
    else if (level == 5)
        welcome = QStringLiteral("    I salute you My CREATOR !!!\r\n");
    return {QStringLiteral("Unlock TK-7"),
            welcome + QStringLiteral("Router TK-7 unlocked successfully"),
            QMessageBox::Information};
}

BoxAnswer::Box wrongPassword()
{
    return {QStringLiteral("Unlock TK-7"), QStringLiteral("Wrong Unlock Password"),
            QMessageBox::Warning};
}

BoxAnswer::Box passwordSet()
{
    return {QStringLiteral("Set lock password"), QStringLiteral("Lock password set successfully"),
            QMessageBox::Information};
}

// Closed when the router has heard that it may use the firmware.
BoxAnswer::Box success(WindowBench &bench)
{
    BoxAnswer::Box box = {
        QStringLiteral("Firmware update"),
        QStringLiteral("The firmware has been successfully loaded, the router will reboot. Please "
                       "reconnect to the router."),
        QMessageBox::Information, QMessageBox::Ok, QMessageBox::NoButton};
    box.whileOpen = [&bench](QMessageBox &open) {
        QTRY_VERIFY(bench.heard().endsWith("$VRFWW\r\n"));
        open.accept();
    };
    return box;
}

QString failure(int code)
{
    return QStringLiteral("Error firmware update. code: %1").arg(code);
}

} // namespace

void tst_servicesim::init()
{
    m_bench = std::make_unique<WindowBench>();
    m_files = std::make_unique<FileDialogAnswer>();
    m_bench->router.setVersion(4, 0);
    platform::setLeftControlSource([] { return true; });
}

void tst_servicesim::cleanup()
{
    platform::setLeftControlSource({});
    m_files.reset();
    m_bench.reset();
}

// The version comes behind the download.
bool tst_servicesim::connectToRouter()
{
    const auto *label = m_bench->find<QLabel>("label_firmware_version");
    return m_bench->connectToRouter()
        && QTest::qWaitFor([label] { return !label->text().isEmpty(); });
}

bool tst_servicesim::inService(const std::function<void(servicedlg &)> &use)
{
    bool hasCome = false;
    QTimer::singleShot(0, &m_bench->window, [&] {
        const QPointer<servicedlg> dialog = m_bench->window.findChild<servicedlg *>();
        if (!dialog || !dialog->isVisible())
            return;
        hasCome = true;
        use(*dialog);
        if (dialog)
            dialog->close();
    });
    m_bench->find<QPushButton>("pushButton_Service")->click();
    return hasCome;
}

bool tst_servicesim::startUpdate(const QByteArray &image)
{
    const QString path = m_folder.filePath(QStringLiteral("new.efw"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(image) != image.size())
        return false;
    file.close();
    m_files->expect(FirmwareBench::chooser(path));
    m_bench->boxes.expect(FirmwareBench::question(QStringLiteral("3.6"), QMessageBox::Yes));
    bool isClosed = false;
    const bool hasCome = inService([&](servicedlg &dialog) {
        button(dialog, "pushButton_Fw_Update")->click();
        isClosed = !dialog.isVisible();
    });
    return hasCome && isClosed;
}

void tst_servicesim::verifyUpdateWorks(const QByteArray &image)
{
    QSignalSpy received(&m_bench->router, &tk7sim::RouterSimulator::firmwareReceived);
    // A whole poll: behind it the router has said its last word to an update before this one.
    QVERIFY(inService([](servicedlg &dialog) {
        QTRY_VERIFY(!dialog.findChild<QTableWidget *>()->item(11, 4)->text().isEmpty());
    }));
    QVERIFY(startUpdate(image));
    m_bench->boxes.expect(success(*m_bench));
    // Waits by an event loop of its own, and so at the pace of the line.
    QVERIFY(received.wait(120000));
    QTRY_VERIFY(!m_bench->window.isConnected());
    QVERIFY2(m_bench->boxes.isDone(), qPrintable(m_bench->boxes.report()));
    QCOMPARE(m_bench->router.firmwareImage(), image);
}

bool tst_servicesim::unlock(servicedlg &dialog, const QString &password)
{
    return inDialog<EnterPasswordDlg>(button(dialog, "pushButton_Lock"),
                                      [&](EnterPasswordDlg &enter) {
                                          enter.findChild<QLineEdit *>()->setText(password);
                                          button(enter, "pushButton_Ok")->click();
                                      });
}

void tst_servicesim::statistics()
{
    WindowBench &bench = *m_bench;
    for (int port = 0; port < 12; ++port)
        bench.router.setPortCounters(port, {});
    bench.router.setFault(Fault::InputErrors, 50);
    QVERIFY(connectToRouter());
    QVERIFY(inService([&](servicedlg &dialog) {
        const auto *table = dialog.findChild<QTableWidget *>();
        const auto value = [table](int port, int column) {
            return table->item(port, column)->text().toUInt();
        };
        QTRY_VERIFY(!table->item(11, 4)->text().isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(value(0, 1) > 3, 10000);
        const tk7sim::PortCounters counters = bench.router.portCounters(0);
        QVERIFY(value(0, 1) <= counters.crs);
        button(dialog, "pushButton_Clear")->click();
        QTRY_VERIFY_WITH_TIMEOUT(value(0, 1) <= 3, 1500);
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_servicesim::chip()
{
    QVERIFY(connectToRouter());
    QVERIFY(inService([&](servicedlg &dialog) {
        const auto *label = dialog.findChild<QLabel *>(QStringLiteral("label_ChipID"));
        QTRY_COMPARE(label->text(), QStringLiteral("TK-7  SIM UNIT 0001 "));
    }));
}

void tst_servicesim::aisTest()
{
    QVERIFY(connectToRouter());
    QSignalSpy spy(&m_bench->router, &tk7sim::RouterSimulator::aisTestChanged);
    const AisTestUser tester([&](aistestdlg &) {
        QTRY_COMPARE(spy.size(), 1);
        QVERIFY(m_bench->router.isAisTestOn());
    });
    QVERIFY(inService([&](servicedlg &dialog) { button(dialog, "pushButton_AisTest")->click(); }));
    QVERIFY(tester.hasCome());
    QTRY_COMPARE(spy.size(), 2);
    QCOMPARE(spy.at(0).at(0).toBool(), true);
    QCOMPARE(spy.at(1).at(0).toBool(), false);
}

void tst_servicesim::lockLevels_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<int>("level");

    QTest::newRow("level 1") << "simlevel1" << 1;
    QTest::newRow("owner") << "Harbour7" << 2;
    QTest::newRow("level 3") << "simlevel3" << 3;
    QTest::newRow("level 4") << "simlevel4" << 4;
    QTest::newRow("level 5") << "simlevel5" << 5;
    QTest::newRow("wrong case") << "harbour7" << 0;
}

void tst_servicesim::lockLevels()
{
    QFETCH(QString, password);
    QFETCH(int, level);
    WindowBench &bench = *m_bench;
    bench.router.setLockPassword("Harbour7");
    QVERIFY(connectToRouter());
    bench.boxes.expect(level > 0 ? unlocked(level) : wrongPassword());
    QVERIFY(inService([&](servicedlg &dialog) {
        QVERIFY(unlock(dialog, password));
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        QCOMPARE(bench.router.lockLevel(), level);
        QCOMPARE(button(dialog, "pushButton_Change_Mode")->isVisible(), level >= 4);
    }));
}

void tst_servicesim::lifeOfAPassword()
{
    constexpr auto both = QMessageBox::Ok | QMessageBox::Cancel;
    WindowBench &bench = *m_bench;
    QVERIFY(connectToRouter());
    const auto setPassword = [&](QPushButton *opener, const QString &password) {
        return inDialog<passwordDlg>(opener, [&](passwordDlg &enter) {
            const QList<QLineEdit *> fields = enter.findChildren<QLineEdit *>();
            for (QLineEdit *field : fields)
                field->setText(password);
            button(enter, "pushButton_Ok")->click();
        });
    };
    const auto expectAll = [&] {
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    };
    QVERIFY(inService([&](servicedlg &dialog) {
        bench.boxes.expect(passwordSet());
        QVERIFY(setPassword(button(dialog, "pushButton_Lock"), QStringLiteral("Harbour7")));
        expectAll();
        QCOMPARE(bench.router.lockPassword(), QByteArray("Harbour7"));
        bench.boxes.expect(passwordSet());
        QVERIFY(
            setPassword(button(dialog, "pushButton_Change_Password"), QStringLiteral("Harbour8")));
        expectAll();
        QCOMPARE(bench.router.lockPassword(), QByteArray("Harbour8"));
    }));

    // Locked by the label, and opened by it.
    auto *label = bench.find<QLabel>("label_lock");
    QTest::mousePress(label, Qt::LeftButton);
    QTRY_COMPARE(label->text(), QStringLiteral("LOCK"));
    QTimer::singleShot(0, &bench.window, [&] {
        auto *enter = bench.window.findChild<EnterPasswordDlg *>();
        QVERIFY(enter);
        enter->findChild<QLineEdit *>()->setText(QStringLiteral("simlevel5"));
        button(*enter, "pushButton_Ok")->click();
    });
    QTest::mousePress(label, Qt::LeftButton);
    QTRY_COMPARE(label->text(), QStringLiteral("UNLOCK"));

    QVERIFY(inService([&](servicedlg &dialog) {
        bench.boxes.expect({QStringLiteral("Lock password"),
                            QStringLiteral("Current Lock Password: Harbour8"),
                            QMessageBox::Information});
        button(dialog, "pushButton_View_Password")->click();
        expectAll();
        bench.boxes
            .expect({QStringLiteral("Delete password"),
                     QStringLiteral("Are you sure want to delete the password?"),
                     QMessageBox::Warning, both})
            .expect({QStringLiteral("Delete lock password"),
                     QStringLiteral("Lock password deleted successfully"), QMessageBox::Warning,
                     both});
        button(dialog, "pushButton_Lock")->click();
        expectAll();
        QVERIFY(!bench.router.isLockEnabled());
    }));
    QVERIFY(!label->isVisible());
}

void tst_servicesim::lockedFault()
{
    WindowBench &bench = *m_bench;
    bench.router.setFault(Fault::Locked);
    QVERIFY(connectToRouter());
    bench.boxes.expect(wrongPassword());
    QVERIFY(inService([&](servicedlg &dialog) {
        QVERIFY(unlock(dialog, QStringLiteral("simlevel5")));
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
}

void tst_servicesim::mode()
{
    WindowBench &bench = *m_bench;
    bench.router.setLockPassword("Harbour7");
    QVERIFY(connectToRouter());
    bench.boxes.expect(unlocked(4));
    QVERIFY(inService([&](servicedlg &dialog) {
        QVERIFY(unlock(dialog, QStringLiteral("simlevel4")));
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        QVERIFY(inDialog<modeDlg>(button(dialog, "pushButton_Change_Mode"), [&](modeDlg &enter) {
            enter.findChild<QLineEdit *>()->setText(QStringLiteral("Night2"));
            button(enter, "pushButton_Ok")->click();
        }));
        QTRY_COMPARE(bench.find<QLabel>("label_firmware_mode")->text(),
                     QStringLiteral("mode: Night2"));
    }));
    QCOMPARE(bench.router.mode(), QByteArray("Night2"));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_servicesim::largeFirmware()
{
    QVERIFY(connectToRouter());
    verifyUpdateWorks(firmwareImage(100000, 11));
    QCOMPARE(m_bench->router.firmwarePackets(), 3125);
}

void tst_servicesim::faults_data()
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

void tst_servicesim::faults()
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

void tst_servicesim::cancelAndAgain_data()
{
    QTest::addColumn<QByteArray>("heard");

    QTest::newRow("at once") << QByteArray();
    QTest::newRow("behind the request") << QByteArray("$VRFWS");
    QTest::newRow("behind packet 1") << QByteArray("$VRFWP,1,");
    QTest::newRow("behind packet 3") << QByteArray("$VRFWP,3,");
    QTest::newRow("behind the end") << QByteArray("$VRFWF");
}

// As soon as the router has said its last word to the first update.
void tst_servicesim::cancelAndAgain()
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

void tst_servicesim::reconnectsToTheNewVersion()
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

QTEST_MAIN(tst_servicesim)
#include "tst_servicesim.moc"
