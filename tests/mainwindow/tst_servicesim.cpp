#include "servicesimtest.h"

#include "service/enterpassworddlg.h"
#include "service/modedlg.h"
#include "service/passworddlg.h"
#include "support/aistestuser.h"
#include "support/indialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>

using tk7sim::Fault;

/*! The service against the simulated router, over the line and with its faults. */
class tst_servicesim : public ServiceSimTest
{
    Q_OBJECT

private slots:
    void statistics();
    void chip();
    void aisTest();
    void lockLevels_data();
    void lockLevels();
    void lifeOfAPassword();
    void lockedFault();
    void mode();

private:
    bool unlock(servicedlg &dialog, const QString &password);
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

} // namespace

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
    bench.router.setTrafficRate(1);
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

QTEST_MAIN(tst_servicesim)
#include "tst_servicesim.moc"
