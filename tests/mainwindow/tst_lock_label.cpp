#include "locktalk.h"
#include "windowbench.h"

#include "support/checkedline.h"
#include "support/indialog.h"
#include "widgets/qclicklabel.h"

/*! The router's lock in the main window: the label in the status panel, and its dialog. */
class tst_lock_label : public QObject
{
    Q_OBJECT

private slots:
    void statusPanel_data();
    void statusPanel();
    void panelIsHiddenWithoutAConnection();
    void clickOnTheLabel_data();
    void clickOnTheLabel();
    void labelNeedsAConnection();
    void labelUnlocks();
    void labelCancels();
    void labelRefusesABadPassword();
    void wrongPasswordInTheWindow_data();
    void wrongPasswordInTheWindow();
    void wrongPasswordTwice();
    void serviceTakesTheStatus();

    // The last one: its window stays until the end, and two windows would answer each other's
    // boxes.
};

namespace {

// Runs `use` in the dialog that a press on the lock label opens.
bool inLabelDialog(ScriptedBench &bench, const std::function<void(EnterPasswordDlg &)> &use)
{
    bool hasCome = false;
    QTimer::singleShot(0, &bench.line, [&] {
        const QPointer<EnterPasswordDlg> dialog = bench.window.findChild<EnterPasswordDlg *>();
        if (!dialog || !dialog->isVisible())
            return;
        hasCome = true;
        use(*dialog);
        if (dialog && dialog->isVisible())
            dialog->reject();
    });
    QTest::mousePress(bench.find<QClickLabel>("label_lock"), Qt::LeftButton);
    QCoreApplication::processEvents();
    return hasCome;
}

} // namespace

void tst_lock_label::statusPanel_data()
{
    QTest::addColumn<bool>("password");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("style");

    const QString rest = QStringLiteral("; color: white; border-style: inset; border-width: 1px; "
                                        "font-size:10pt}");
    const QString red = QStringLiteral("QLabel { background-color: rgb(229,22,28)") + rest;
    const QString blue = QStringLiteral("QLabel { background-color: rgb(66,133,244)") + rest;
    QTest::newRow("no password") << false << 0 << false << "LOCK" << red;
    QTest::newRow("locked") << true << 0 << true << "LOCK" << red;
    for (int level = 1; level <= 5; ++level)
        QTest::addRow("level %d", level) << true << level << true << "UNLOCK" << blue;
}

void tst_lock_label::statusPanel()
{
    QFETCH(bool, password);
    QFETCH(int, level);
    QFETCH(QString, text);
    QFETCH(QString, style);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    auto *label = bench.find<QClickLabel>("label_lock");
    QVERIFY(!label->isVisible());
    setStatus(bench, password, level);
    QTEST(label->isVisible(), "visible");
    if (password) {
        QCOMPARE(label->text(), text);
        QCOMPARE(label->styleSheet(), style);
    }
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_lock_label::panelIsHiddenWithoutAConnection()
{
    ScriptedBench bench;
    auto *label = bench.find<QClickLabel>("label_lock");
    QVERIFY(!label->isVisible());
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    QVERIFY(label->isVisible());
    bench.boxes.expect(WindowBench::timeoutBox());
    bench.endLink();
    QVERIFY(!label->isVisible());
    // Locked once in the old connection: the first status of the new one is no answer to anything.
    QVERIFY(bench.connectToRouter());
    QVERIFY(!label->isVisible());
    setStatus(bench, true, 0);
    QVERIFY(label->isVisible());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_lock_label::clickOnTheLabel_data()
{
    QTest::addColumn<bool>("password");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("asks");
    QTest::addColumn<QList<QByteArray>>("sent");

    const QList<QByteArray> lock = {"$VRLGO\r\n"};
    QTest::newRow("no password") << false << 0 << false << QList<QByteArray>();
    QTest::newRow("locked") << true << 0 << true << QList<QByteArray>();
    for (int level = 1; level <= 5; ++level)
        QTest::addRow("level %d", level) << true << level << false << lock;
}

void tst_lock_label::clickOnTheLabel()
{
    QFETCH(bool, password);
    QFETCH(int, level);
    QFETCH(QList<QByteArray>, sent);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, password, level);
    const bool asked = inLabelDialog(bench, [](EnterPasswordDlg &) {});
    QTEST(asked, "asks");
    bench.waitUntilHeard();
    QTRY_COMPARE(bench.commands(), sent);
}

void tst_lock_label::labelNeedsAConnection()
{
    MainWindow alone;
    alone.slotVRLockStatus(true, 0);
    QVERIFY(!inDialog<EnterPasswordDlg>([&] { alone.slotLockClicked(); },
                                        [](EnterPasswordDlg &enter) { enter.reject(); }));
}

void tst_lock_label::labelUnlocks()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    QVERIFY(inLabelDialog(bench, [&](EnterPasswordDlg &dialog) {
        QCOMPARE(dialog.parentWidget(), &bench.window);
        typeUnlock(dialog, QStringLiteral("Harbour7"));
    }));
    QTRY_COMPARE(bench.commands(), QList<QByteArray>({checkedLine("$VRPWU,Harbour7")}));
    setStatus(bench, true, 2);
    QCOMPARE(bench.find<QClickLabel>("label_lock")->text(), QStringLiteral("UNLOCK"));
    QVERIFY(!bench.window.findChild<EnterPasswordDlg *>());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_lock_label::labelCancels()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    QVERIFY(inLabelDialog(bench, [](EnterPasswordDlg &dialog) {
        type(dialog, "lineEdit_password", QStringLiteral("Harbour7"));
        button(dialog, "pushButton_Cancel")->click();
    }));
    bench.waitUntilHeard();
    QCOMPARE(bench.commands(), QList<QByteArray>());
}

void tst_lock_label::labelRefusesABadPassword()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    bench.boxes.expect(
        {QStringLiteral("Password error"),
         QStringLiteral("The password can only contain numbers and Latin characters"),
         QMessageBox::Warning});
    QVERIFY(inLabelDialog(bench, [](EnterPasswordDlg &dialog) {
        typeUnlock(dialog, QStringLiteral("with blank"));
        QVERIFY(dialog.isVisible());
        typeUnlock(dialog, QStringLiteral("without"));
        QVERIFY(!dialog.isVisible());
    }));
    QTRY_COMPARE(bench.commands(), QList<QByteArray>({checkedLine("$VRPWU,without")}));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_lock_label::wrongPasswordInTheWindow_data()
{
    QTest::addColumn<bool>("oldPassword");
    QTest::addColumn<int>("oldLevel");
    QTest::addColumn<bool>("password");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("box");

    QTest::newRow("locked, locked again") << true << 0 << true << 0 << true;
    QTest::newRow("no password, then locked") << false << 0 << true << 0 << false;
    QTest::newRow("unlocked, then locked") << true << 2 << true << 0 << false;
    QTest::newRow("locked, then unlocked") << true << 0 << true << 2 << false;
    QTest::newRow("locked, then no password") << true << 0 << false << 0 << false;
    QTest::newRow("no password, again") << false << 0 << false << 0 << false;
    QTest::newRow("unlocked, again") << true << 3 << true << 3 << false;
}

void tst_lock_label::wrongPasswordInTheWindow()
{
    QFETCH(bool, oldPassword);
    QFETCH(int, oldLevel);
    QFETCH(bool, password);
    QFETCH(int, level);
    QFETCH(bool, box);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, oldPassword, oldLevel);
    if (box)
        bench.boxes.expect(wrongPassword());
    setStatus(bench, password, level);
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// The second status comes while the box of the first is open.
void tst_lock_label::wrongPasswordTwice()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    bench.boxes.expect(wrongPassword()).expect(wrongPassword());
    bench.say(status(true, 0));
    bench.say(status(true, 0));
    bench.waitUntilHeard();
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// With the service dialog open its own box comes, and only that one.
void tst_lock_label::serviceTakesTheStatus()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    QVERIFY(bench.inService([&](servicedlg &) {
        bench.boxes.expect(wrongPassword());
        setStatus(bench, true, 0);
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
    QCOMPARE(bench.find<QClickLabel>("label_lock")->text(), QStringLiteral("LOCK"));
    // What came while it was open counts behind it.
    bench.boxes.expect(wrongPassword());
    setStatus(bench, true, 0);
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

QTEST_MAIN(tst_lock_label)
#include "tst_lock_label.moc"
