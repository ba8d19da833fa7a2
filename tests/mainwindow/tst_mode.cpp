#include "scriptedbench.h"

#include "service/modedlg.h"
#include "support/checkedline.h"
#include "support/indialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

/*! Changing the router's mode from the service dialog. */
class tst_mode : public QObject
{
    Q_OBJECT

private slots:
    void byVersionAndLevel_data();
    void byVersionAndLevel();
    void sendsTheModeAsTyped_data();
    void sendsTheModeAsTyped();
    void refusedModesStayInTheDialog_data();
    void refusedModesStayInTheDialog();
    void cancelSendsNothing();
    void longModesFitTheirLabel();
    void noAnswerIsAwaited();
    void changeIsNoFirstPassword();
};

namespace {

BoxAnswer::Box modeError(const QString &text)
{
    return {QStringLiteral("Mode error"), text, QMessageBox::Warning};
}

BoxAnswer::Box wrongCharacters()
{
    return modeError(QStringLiteral("The mode can only contain numbers and Latin characters"));
}

void setLevel(ScriptedBench &bench, int level)
{
    bench.say("$VRLCK,1," + QByteArray::number(level));
    bench.waitUntilHeard();
}

QPushButton *button(const QWidget &dialog, const char *name)
{
    return dialog.findChild<QPushButton *>(QString::fromLatin1(name));
}

void enter(const modeDlg &dialog, const QString &mode)
{
    auto *field = dialog.findChild<QLineEdit *>(QStringLiteral("lineEdit_mode"));
    field->clear();
    QTest::keyClicks(field, mode);
    button(dialog, "pushButton_Ok")->click();
}

} // namespace

void tst_mode::byVersionAndLevel_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("asks");
    QTest::addColumn<QString>("refusal");

    const QString old = QStringLiteral("Firmware version below 4.0 does not support change mode");
    for (const char *version : {"3.0", "3.1", "3.3", "3.4", "3.5"}) {
        for (int level = 4; level <= 5; ++level)
            QTest::addRow("%s, level %d", version, level)
                << QByteArray(version) << level << false << old;
    }
    for (const char *version : {"4.0", "4.1", "10.0"}) {
        for (int level = 0; level <= 5; ++level)
            QTest::addRow("%s, level %d", version, level)
                << QByteArray(version) << level << (level >= 4) << QString();
    }
    // Below the level nothing is said of the version either.
    QTest::newRow("3.5, level 3") << QByteArray("3.5") << 3 << false << QString();
}

void tst_mode::byVersionAndLevel()
{
    QFETCH(QByteArray, version);
    QFETCH(int, level);
    QFETCH(bool, asks);
    QFETCH(QString, refusal);
    ScriptedBench bench(version);
    QVERIFY(bench.connectToRouter());
    setLevel(bench, level);
    if (!refusal.isEmpty())
        bench.boxes.expect(modeError(refusal));
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QCOMPARE(button(dialog, "pushButton_Change_Mode")->isVisible(), level >= 4);
        bool hasCome = false;
        QTimer::singleShot(0, &dialog, [&] {
            if (auto *mode = dialog.findChild<modeDlg *>()) {
                hasCome = true;
                QCOMPARE(mode->parentWidget(), &dialog);
                mode->reject();
            }
        });
        dialog.slotModeClicked();
        QCOMPARE(hasCome, asks);
        QVERIFY(!dialog.findChild<modeDlg *>());
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_mode::sendsTheModeAsTyped_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QByteArray>("sentence");

    QTest::newRow("8 characters") << "aBcDeF12" << checkedLine("$VRMOD,aBcDeF12");
    QTest::newRow("upper case") << "DAY" << checkedLine("$VRMOD,DAY");
    QTest::newRow("lower case") << "day" << checkedLine("$VRMOD,day");
    QTest::newRow("one digit") << "7" << checkedLine("$VRMOD,7");
    QTest::newRow("known sum") << "Z" << QByteArray("$VRMOD,Z*34\r\n");
}

void tst_mode::sendsTheModeAsTyped()
{
    QFETCH(QString, mode);
    QFETCH(QByteArray, sentence);
    ScriptedBench bench("4.0");
    QVERIFY(bench.connectToRouter());
    setLevel(bench, 4);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<modeDlg>(button(dialog, "pushButton_Change_Mode"),
                                  [&](modeDlg &window) { enter(window, mode); }));
        QTRY_COMPARE(bench.commands(), QList<QByteArray>({sentence}));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_mode::refusedModesStayInTheDialog_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("text");

    const QString characters = wrongCharacters().text;
    const QString tooLong = QStringLiteral("Mode can be up to 8 characters long");
    QTest::newRow("9 characters") << "123456789" << tooLong;
    QTest::newRow("too long and wrong: the length comes first") << "--- --- ---" << tooLong;
    QTest::newRow("empty") << QString() << characters;
    QTest::newRow("blank") << "A B" << characters;
    QTest::newRow("hyphen") << "A-B" << characters;
}

void tst_mode::refusedModesStayInTheDialog()
{
    QFETCH(QString, mode);
    QFETCH(QString, text);
    ScriptedBench bench("4.0");
    QVERIFY(bench.connectToRouter());
    setLevel(bench, 5);
    bench.boxes.expect(modeError(text));
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<modeDlg>(button(dialog, "pushButton_Change_Mode"), [&](modeDlg &window) {
            enter(window, mode);
            QVERIFY(window.isVisible());
            enter(window, QStringLiteral("ok"));
        }));
        QTRY_COMPARE(bench.commands(), QList<QByteArray>({checkedLine("$VRMOD,ok")}));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_mode::cancelSendsNothing()
{
    ScriptedBench bench("4.0");
    QVERIFY(bench.connectToRouter());
    setLevel(bench, 4);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<modeDlg>(button(dialog, "pushButton_Change_Mode"), [](modeDlg &window) {
            window.findChild<QLineEdit *>()->setText(QStringLiteral("DAY"));
            button(window, "pushButton_Cancel")->click();
        }));
        bench.waitUntilHeard();
        QTest::qWait(60);
        QCOMPARE(bench.commands(), QList<QByteArray>());
    }));
}

// The result shows when the router tells its mode, and in no other way.
void tst_mode::longModesFitTheirLabel()
{
    ScriptedBench bench("4.0");
    QVERIFY(bench.connectToRouter());
    const auto *label = bench.find<QLabel>("label_firmware_mode");
    const QFont usual = label->font();
    bench.say("$VRMOD,TRAWLERS");
    QTRY_COMPARE(label->text(), QStringLiteral("mode: TRAWLERS"));
    QVERIFY(label->fontMetrics().size(0, label->text()).width() <= label->width());
    QVERIFY(label->font().pointSizeF() < usual.pointSizeF());
    bench.say("$VRMOD,DAY");
    QTRY_COMPARE(label->text(), QStringLiteral("mode: DAY"));
    QCOMPARE(label->font(), usual);
}

void tst_mode::noAnswerIsAwaited()
{
    ScriptedBench bench("4.0");
    QVERIFY(bench.connectToRouter());
    setLevel(bench, 4);
    auto *label = bench.find<QLabel>("label_firmware_mode");
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        const QString before = label->text();
        QVERIFY(inDialog<modeDlg>(button(dialog, "pushButton_Change_Mode"),
                                  [](modeDlg &window) { enter(window, QStringLiteral("DAY")); }));
        QTRY_COMPARE(bench.commands().size(), 1);
        QCOMPARE(label->text(), before);
        bench.say("$VRMOD,OTHER");
        QTRY_COMPARE(label->text(), QStringLiteral("mode: OTHER"));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// A change of the mode is not a first password: locked by others while the mode is being typed, the
// unlocking that follows is told.
void tst_mode::changeIsNoFirstPassword()
{
    ScriptedBench bench("4.0");
    QVERIFY(bench.connectToRouter());
    setLevel(bench, 4);
    bench.boxes.expect({QStringLiteral("Unlock TK-7"),
                        QStringLiteral("   Welcome TIDEWELL MAN !!!\r\n"
                                       "Router TK-7 unlocked successfully"),
                        QMessageBox::Information});
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<modeDlg>(button(dialog, "pushButton_Change_Mode"), [&](modeDlg &window) {
            setLevel(bench, 0);
            enter(window, QStringLiteral("DAY"));
        }));
        setLevel(bench, 4);
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

QTEST_MAIN(tst_mode)
#include "tst_mode.moc"
