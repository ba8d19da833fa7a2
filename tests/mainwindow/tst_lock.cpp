#include "locktalk.h"

#include "service/passworddlg.h"
#include "support/checkedline.h"
#include "support/indialog.h"

#include <QFile>
#include <QTemporaryFile>

#include <cstdio>
#include <memory>
#include <unistd.h>

/*! The router's lock in the service dialog: its buttons and boxes, the passwords. */
class tst_lock : public QObject
{
    Q_OBJECT

private slots:
    void buttons_data();
    void buttons();
    void withoutAPasswordTheButtonStaysAsItIs();
    void firstPassword();
    void firstPasswordRefused();
    void answerBeforeTheStatus();
    void pendingActionIsForgotten();
    void changeIsNoFirstPassword();
    void deletingIsNoFirstPassword();
    void passwordsKeepTheirCase_data();
    void passwordsKeepTheirCase();
    void unlocking();
    void wrongUnlockPassword();
    void deleting_data();
    void deleting();
    void boxKeepsTheQuestionsButtons();
    void changing();
    void changingIsForOwners_data();
    void changingIsForOwners();
    void viewing();
    void cancelledDialogsSendNothing_data();
    void cancelledDialogsSendNothing();
    void statusUnderAnOpenQuestion();
    void statusUnderAnOpenDialog();
    void statusUnderACancelledDialog();
    void statusUnderItsOwnBox();
    void passwordsStayOutOfTheOutput();

    // The last one: its window stays until the end, and two windows would answer each other's
    // boxes.
    void transitions_data();
    void transitions();
    void cleanupTestCase() { m_shared.reset(); }

private:
    std::unique_ptr<ScriptedBench> m_shared; //!< of transitions()
};

namespace {

BoxAnswer::Box deleted(QMessageBox::StandardButtons buttons = QMessageBox::Ok)
{
    return {QStringLiteral("Delete lock password"),
            QStringLiteral("Lock password deleted successfully"), QMessageBox::Warning, buttons};
}

BoxAnswer::Box deleteQuestion(QMessageBox::StandardButton click)
{
    return {QStringLiteral("Delete password"),
            QStringLiteral("Are you sure want to delete the password?"), QMessageBox::Warning,
            QMessageBox::Ok | QMessageBox::Cancel, click};
}

BoxAnswer::Box passwordSet(QMessageBox::StandardButtons buttons = QMessageBox::Ok)
{
    return {QStringLiteral("Set lock password"), QStringLiteral("Lock password set successfully"),
            QMessageBox::Information, buttons};
}

const QString serviceWelcome = QStringLiteral("   Welcome TIDEWELL MAN !!!\r\n");
const QString highestWelcome = QStringLiteral("    I salute you My CREATOR !!!\r\n");

QString welcomeOf(int level)
{
    if (level == 4)
        return serviceWelcome;
    return level == 5 ? highestWelcome : QString();
}

void typeNew(const passwordDlg &dialog, const QString &password)
{
    type(dialog, "lineEdit_lock_password", password);
    type(dialog, "lineEdit_confirm_password", password);
    button(dialog, "pushButton_Ok")->click();
}

} // namespace

void tst_lock::buttons_data()
{
    QTest::addColumn<bool>("password");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("lockShown");
    QTest::addColumn<QString>("lockText");
    QTest::addColumn<bool>("changePassword");
    QTest::addColumn<bool>("changeMode");
    QTest::addColumn<bool>("viewPassword");

    const QString remove = QStringLiteral("Delete\nPassword");
    QTest::newRow("no password, level 0")
        << false << 0 << true << "LOCK" << false << false << false;
    QTest::newRow("no password, level 5")
        << false << 5 << true << "LOCK" << false << false << false;
    QTest::newRow("level 0") << true << 0 << true << "UNLOCK" << false << false << false;
    QTest::newRow("level 1") << true << 1 << false << QString() << false << false << false;
    QTest::newRow("level 2") << true << 2 << true << remove << true << false << false;
    QTest::newRow("level 3") << true << 3 << true << remove << true << false << false;
    QTest::newRow("level 4") << true << 4 << true << remove << true << true << false;
    QTest::newRow("level 5") << true << 5 << true << remove << true << true << true;
}

// The same whether the status was there before the dialog or comes while it is open.
void tst_lock::buttons()
{
    QFETCH(bool, password);
    QFETCH(int, level);
    QFETCH(bool, lockShown);
    QFETCH(QString, lockText);
    QFETCH(bool, changePassword);
    QFETCH(bool, changeMode);
    QFETCH(bool, viewPassword);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    // A level at which no box follows on any other status.
    setStatus(bench, true, 2);
    const auto verify = [&](const servicedlg &dialog) {
        const QPushButton *lock = button(dialog, "pushButton_Lock");
        QCOMPARE(lock->isVisible(), lockShown);
        if (lockShown)
            QCOMPARE(lock->text(), lockText);
        QCOMPARE(button(dialog, "pushButton_Change_Password")->isVisible(), changePassword);
        QCOMPARE(button(dialog, "pushButton_Change_Mode")->isVisible(), changeMode);
        QCOMPARE(button(dialog, "pushButton_View_Password")->isVisible(), viewPassword);
    };
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        if (!password)
            bench.boxes.expect(deleted());
        setStatus(bench, password, level);
        verify(dialog);
    }));
    QVERIFY(bench.inService([&](servicedlg &dialog) { verify(dialog); }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// Hidden or not, the end of the password changes its text only.
void tst_lock::withoutAPasswordTheButtonStaysAsItIs()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 2);
    bench.boxes.expect(deleted()).expect(unlocked()).expect(deleted());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        const QPushButton *lock = button(dialog, "pushButton_Lock");
        setStatus(bench, false, 0);
        QVERIFY(lock->isVisible());
        QCOMPARE(lock->text(), QStringLiteral("LOCK"));
        setStatus(bench, true, 1);
        QVERIFY(!lock->isVisible());
        setStatus(bench, false, 0);
        QVERIFY(!lock->isVisible());
        QCOMPARE(lock->text(), QStringLiteral("LOCK"));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_lock::transitions_data()
{
    QTest::addColumn<bool>("oldPassword");
    QTest::addColumn<int>("oldLevel");
    QTest::addColumn<bool>("password");
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("box");

    struct State
    {
        bool password;
        int level;
    };
    QList<State> states = {{false, 0}, {false, 3}};
    for (int level = 0; level <= 5; ++level)
        states += State{true, level};
    for (const State &from : states) {
        for (const State &to : states) {
            QString box;
            if (!to.password)
                box = from.password ? QStringLiteral("deleted") : QString();
            else if (from.level == 0)
                box = to.level == 0 ? QStringLiteral("wrong") : QStringLiteral("unlocked");
            QTest::addRow("%s to %s", status(from.password, from.level).constData() + 7,
                          status(to.password, to.level).constData() + 7)
                << from.password << from.level << to.password << to.level << box;
        }
    }
}

// Of statuses that come unasked, while the service dialog is open.
void tst_lock::transitions()
{
    QFETCH(bool, oldPassword);
    QFETCH(int, oldLevel);
    QFETCH(bool, password);
    QFETCH(int, level);
    QFETCH(QString, box);
    // One connection serves all rows: the status at the opening brings no box.
    if (!m_shared) {
        m_shared = std::make_unique<ScriptedBench>();
        QVERIFY(m_shared->connectToRouter());
    }
    ScriptedBench &bench = *m_shared;
    // Two steps that bring no box, whatever the state before: unlocked, then as wanted.
    setStatus(bench, true, 2);
    setStatus(bench, oldPassword, oldLevel);
    if (box == QLatin1String("deleted"))
        bench.boxes.expect(deleted());
    else if (box == QLatin1String("wrong"))
        bench.boxes.expect(wrongPassword());
    else if (box == QLatin1String("unlocked"))
        bench.boxes.expect(unlocked(welcomeOf(level)));
    QVERIFY(bench.inService([&](servicedlg &) {
        setStatus(bench, password, level);
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_lock::firstPassword()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    bench.onLine = [&](const QByteArray &sentence) {
        if (!sentence.startsWith("$VRPWS,"))
            return;
        bench.say("$VRLCK,1,2");
        bench.say("$VRPWS,OK");
    };
    bench.boxes.expect(passwordSet());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<passwordDlg>(button(dialog, "pushButton_Lock"), [&](passwordDlg &enter) {
            QCOMPARE(enter.parentWidget(), &dialog);
            typeNew(enter, QStringLiteral("Harbour7"));
        }));
        QTRY_COMPARE(bench.commands(), QList<QByteArray>({checkedLine("$VRPWS,Harbour7")}));
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        bench.waitUntilHeard();
        QCOMPARE(button(dialog, "pushButton_Lock")->text(), QStringLiteral("Delete\nPassword"));
        QVERIFY(!dialog.findChild<passwordDlg *>());
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_lock::firstPasswordRefused()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    bench.onLine = [&](const QByteArray &sentence) {
        if (sentence.startsWith("$VRPWS,"))
            bench.say("$VRPWS,ERROR");
    };
    bench.boxes.expect({QStringLiteral("Set lock password"),
                        QStringLiteral("Password setting error"), QMessageBox::Warning});
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<passwordDlg>(button(dialog, "pushButton_Lock"), [](passwordDlg &enter) {
            typeNew(enter, QStringLiteral("Harbour7"));
        }));
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        QCOMPARE(button(dialog, "pushButton_Lock")->text(), QStringLiteral("LOCK"));
    }));
}

// The answer reaches the dialog behind the status that follows it, also when both come in one read.
void tst_lock::answerBeforeTheStatus()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    bench.onLine = [&](const QByteArray &sentence) {
        if (!sentence.startsWith("$VRPWS,"))
            return;
        bench.line.write(checkedLine("$VRPWS,OK") + checkedLine("$VRLCK,1,5"));
    };
    bench.boxes.expect(passwordSet());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<passwordDlg>(button(dialog, "pushButton_Lock"), [](passwordDlg &enter) {
            typeNew(enter, QStringLiteral("Harbour7"));
        }));
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        bench.waitUntilHeard();
        QVERIFY(button(dialog, "pushButton_View_Password")->isVisible());
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// Any status ends it: the second change to unlocked is news again.
void tst_lock::pendingActionIsForgotten()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<passwordDlg>(button(dialog, "pushButton_Lock"), [](passwordDlg &enter) {
            typeNew(enter, QStringLiteral("Harbour7"));
        }));
        setStatus(bench, true, 2);
        setStatus(bench, true, 0);
        QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        bench.boxes.expect(unlocked());
        setStatus(bench, true, 2);
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
    // Not kept for the next opening either.
    setStatus(bench, false, 0);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<passwordDlg>(button(dialog, "pushButton_Lock"), [](passwordDlg &enter) {
            typeNew(enter, QStringLiteral("Harbour7"));
        }));
    }));
    QVERIFY(bench.inService([&](servicedlg &) {
        bench.boxes.expect(unlocked());
        setStatus(bench, true, 3);
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
}

// Locked by others while the new password is being typed: the unlocking that follows is told.
void tst_lock::changeIsNoFirstPassword()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 2);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<passwordDlg>(button(dialog, "pushButton_Change_Password"),
                                      [&](passwordDlg &enter) {
                                          setStatus(bench, true, 0);
                                          typeNew(enter, QStringLiteral("Harbour8"));
                                      }));
        bench.boxes.expect(unlocked());
        setStatus(bench, true, 2);
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// Locked by others while the question is open.
void tst_lock::deletingIsNoFirstPassword()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 2);
    BoxAnswer::Box question = deleteQuestion(QMessageBox::NoButton);
    question.whileOpen = [&](QMessageBox &box) {
        setStatus(bench, true, 0);
        box.button(QMessageBox::Ok)->click();
    };
    BoxAnswer::Box told = unlocked();
    told.buttons = question.buttons;
    bench.boxes.expect(question).expect(told);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        button(dialog, "pushButton_Lock")->click();
        QTRY_COMPARE(bench.commands(), QList<QByteArray>({"$VRPWD\r\n"}));
        setStatus(bench, true, 2);
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_lock::passwordsKeepTheirCase_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QByteArray>("sentence");

    QTest::newRow("abc") << "abc" << checkedLine("$VRPWS,abc");
    QTest::newRow("ABC") << "ABC" << checkedLine("$VRPWS,ABC");
    QTest::newRow("0") << "0" << checkedLine("$VRPWS,0");
    QTest::newRow("20 characters")
        << "aB3dEf7hIj1LmN5pQr9T" << checkedLine("$VRPWS,aB3dEf7hIj1LmN5pQr9T");
}

void tst_lock::passwordsKeepTheirCase()
{
    QFETCH(QString, password);
    QFETCH(QByteArray, sentence);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<passwordDlg>(button(dialog, "pushButton_Lock"),
                                      [&](passwordDlg &enter) { typeNew(enter, password); }));
        QTRY_COMPARE(bench.commands(), QList<QByteArray>({sentence}));
    }));
}

void tst_lock::unlocking()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    bench.onLine = [&](const QByteArray &sentence) {
        if (sentence.startsWith("$VRPWU,"))
            bench.say("$VRLCK,1,3");
    };
    bench.boxes.expect(unlocked());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<EnterPasswordDlg>(button(dialog, "pushButton_Lock"),
                                           [&](EnterPasswordDlg &enter) {
                                               QCOMPARE(enter.parentWidget(), &dialog);
                                               typeUnlock(enter, QStringLiteral("Harbour7"));
                                           }));
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        QCOMPARE(bench.commands(), QList<QByteArray>({checkedLine("$VRPWU,Harbour7")}));
        QVERIFY(!dialog.findChild<EnterPasswordDlg *>());
    }));
}

void tst_lock::wrongUnlockPassword()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    bench.onLine = [&](const QByteArray &sentence) {
        if (sentence.startsWith("$VRPWU,"))
            bench.say("$VRLCK,1,0");
    };
    bench.boxes.expect(wrongPassword()).expect(wrongPassword());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        for (int attempt = 1; attempt <= 2; ++attempt) {
            QVERIFY(inDialog<EnterPasswordDlg>(
                button(dialog, "pushButton_Lock"),
                [](EnterPasswordDlg &enter) { typeUnlock(enter, QStringLiteral("Harbour8")); }));
            QTRY_COMPARE(bench.boxes.answered(), 1 + attempt);
        }
        QCOMPARE(button(dialog, "pushButton_Lock")->text(), QStringLiteral("UNLOCK"));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_lock::deleting_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("confirm");

    for (int level = 2; level <= 5; ++level) {
        QTest::addRow("level %d, Ok", level) << level << true;
        QTest::addRow("level %d, Cancel", level) << level << false;
    }
}

void tst_lock::deleting()
{
    QFETCH(int, level);
    QFETCH(bool, confirm);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, level);
    bench.onLine = [&](const QByteArray &sentence) {
        if (sentence == "$VRPWD\r\n")
            bench.say("$VRLCK,0,0");
    };
    bench.boxes.expect(deleteQuestion(confirm ? QMessageBox::Ok : QMessageBox::Cancel));
    if (confirm)
        bench.boxes.expect(deleted(QMessageBox::Ok | QMessageBox::Cancel));
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        button(dialog, "pushButton_Lock")->click();
        bench.waitUntilHeard();
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        const QList<QByteArray> sentences = {"$VRPWD\r\n"};
        QCOMPARE(bench.commands(), confirm ? sentences : QList<QByteArray>());
        QCOMPARE(button(dialog, "pushButton_Lock")->text(),
                 confirm ? QStringLiteral("LOCK") : QStringLiteral("Delete\nPassword"));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// Until the dialog closes: the next one has a new box.
void tst_lock::boxKeepsTheQuestionsButtons()
{
    constexpr auto both = QMessageBox::Ok | QMessageBox::Cancel;
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 5);
    bench.boxes.expect(passwordSet()).expect(deleteQuestion(QMessageBox::Cancel));
    BoxAnswer::Box password = {QStringLiteral("Lock password"),
                               QStringLiteral("Current Lock Password: Harbour7"),
                               QMessageBox::Information, both};
    bench.boxes.expect(passwordSet(both)).expect(password);
    BoxAnswer::Box wrong = wrongPassword();
    wrong.buttons = both;
    bench.boxes.expect(wrong);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bench.say("$VRPWS,OK");
        QTRY_COMPARE(bench.boxes.answered(), 2);
        button(dialog, "pushButton_Lock")->click();
        QTRY_COMPARE(bench.boxes.answered(), 3);
        bench.say("$VRPWS,OK");
        QTRY_COMPARE(bench.boxes.answered(), 4);
        bench.say("$VRPWV,Harbour7");
        QTRY_COMPARE(bench.boxes.answered(), 5);
        setStatus(bench, true, 0);
        setStatus(bench, true, 0);
        QTRY_COMPARE(bench.boxes.answered(), 6);
        QCOMPARE(dialog.findChildren<QMessageBox *>().size(), 1);
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    bench.boxes.expect(wrongPassword());
    QVERIFY(bench.inService([&](servicedlg &) {
        setStatus(bench, true, 0);
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
}

void tst_lock::changing()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 2);
    bench.onLine = [&](const QByteArray &sentence) {
        if (sentence.startsWith("$VRPWS,"))
            bench.line.write(checkedLine("$VRPWS,OK") + checkedLine("$VRLCK,1,2"));
    };
    bench.boxes.expect(passwordSet());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<passwordDlg>(
            button(dialog, "pushButton_Change_Password"),
            [](passwordDlg &enter) { typeNew(enter, QStringLiteral("Harbour8")); }));
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        QCOMPARE(bench.commands(), QList<QByteArray>({checkedLine("$VRPWS,Harbour8")}));
    }));
}

void tst_lock::changingIsForOwners_data()
{
    QTest::addColumn<bool>("asks");

    for (int level = 0; level <= 5; ++level)
        QTest::addRow("%d", level) << (level >= 2);
}

// However it is called: below the owner's level the button is hidden.
void tst_lock::changingIsForOwners()
{
    QFETCH(bool, asks);
    servicedlg dialog(nullptr);
    dialog.setLockStatus(true, quint8(atoi(QTest::currentDataTag())), true);
    QCOMPARE(inDialog<passwordDlg>([&] { dialog.slotChangePassword(); },
                                   [](passwordDlg &enter) { enter.reject(); }),
             asks);
}

void tst_lock::viewing()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 5);
    bench.onLine = [&](const QByteArray &sentence) {
        if (sentence == "$VRPWV\r\n")
            bench.say("$VRPWV,<b>Harbour7");
    };
    // Shown as it comes, and not as markup.
    BoxAnswer::Box shown = {QStringLiteral("Lock password"),
                            QStringLiteral("Current Lock Password: <b>Harbour7"),
                            QMessageBox::Information, QMessageBox::Ok, QMessageBox::NoButton};
    shown.whileOpen = [&](QMessageBox &box) {
        QCOMPARE(box.parentWidget(), bench.serviceDialog());
        QCOMPARE(box.textFormat(), Qt::PlainText);
        box.accept();
    };
    bench.boxes.expect(shown);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bench.forgetHeard();
        button(dialog, "pushButton_View_Password")->click();
        QTRY_COMPARE(bench.boxes.answered(), 2);
        QTRY_COMPARE(bench.commands(), QList<QByteArray>({"$VRPWV\r\n"}));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_lock::cancelledDialogsSendNothing_data()
{
    QTest::addColumn<bool>("password");
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("name");

    QTest::newRow("first password") << false << 0 << "pushButton_Lock";
    QTest::newRow("unlock") << true << 0 << "pushButton_Lock";
    QTest::newRow("change") << true << 2 << "pushButton_Change_Password";
}

void tst_lock::cancelledDialogsSendNothing()
{
    QFETCH(bool, password);
    QFETCH(int, level);
    QFETCH(QString, name);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, password, level);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<QDialog>(button(dialog, name.toLatin1().constData()), [](QDialog &enter) {
            const QList<QLineEdit *> fields = enter.findChildren<QLineEdit *>();
            for (QLineEdit *field : fields)
                field->setText(QStringLiteral("Harbour7"));
            button(enter, "pushButton_Cancel")->click();
        }));
        QCOMPARE(dialog.findChildren<QDialog *>().size(), 0);
        bench.waitUntilHeard();
        QTest::qWait(60);
        QCOMPARE(bench.commands(), QList<QByteArray>());
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// What comes in between has its own box: pressing Ok there deletes nothing.
void tst_lock::statusUnderAnOpenQuestion()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 2);
    BoxAnswer::Box question = deleteQuestion(QMessageBox::NoButton);
    question.whileOpen = [&](QMessageBox &box) {
        bench.say("$VRPWS,OK");
        QTRY_COMPARE(bench.boxes.answered(), 3);
        bench.waitUntilHeard();
        QVERIFY(box.isVisible());
        QCOMPARE(box.text(), QStringLiteral("Are you sure want to delete the password?"));
        box.reject();
    };
    bench.boxes.expect(question).expect(passwordSet());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        button(dialog, "pushButton_Lock")->click();
        bench.waitUntilHeard();
        QCOMPARE(bench.commands(), QList<QByteArray>());
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// Unlocked by other means while the password is being typed: what is sent is what was asked for,
// and the question about deleting follows, since the level now allows it.
void tst_lock::statusUnderAnOpenDialog()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    bench.boxes.expect(unlocked()).expect(deleteQuestion(QMessageBox::Cancel));
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<EnterPasswordDlg>(button(dialog, "pushButton_Lock"),
                                           [&](EnterPasswordDlg &enter) {
                                               setStatus(bench, true, 2);
                                               QTRY_COMPARE(bench.boxes.answered(), 2);
                                               typeUnlock(enter, QStringLiteral("Harbour7"));
                                           }));
        QTRY_COMPARE(bench.commands(), QList<QByteArray>({checkedLine("$VRPWU,Harbour7")}));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// The question depends on the level alone, and not on what was answered before.
void tst_lock::statusUnderACancelledDialog()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    bench.boxes.expect(unlocked()).expect(deleteQuestion(QMessageBox::Cancel));
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(inDialog<EnterPasswordDlg>(button(dialog, "pushButton_Lock"),
                                           [&](EnterPasswordDlg &enter) {
                                               setStatus(bench, true, 2);
                                               QTRY_COMPARE(bench.boxes.answered(), 2);
                                               enter.reject();
                                           }));
        bench.waitUntilHeard();
        QCOMPARE(bench.commands(), QList<QByteArray>());
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// Locked and unlocked again under the box that tells of the unlocking: by then it counts as
// unlocked, so that the first is no wrong password and the second is news.
void tst_lock::statusUnderItsOwnBox()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    setStatus(bench, true, 0);
    BoxAnswer::Box box = unlocked();
    box.click = QMessageBox::NoButton;
    box.whileOpen = [&](QMessageBox &open) {
        setStatus(bench, true, 0);
        setStatus(bench, true, 2);
        QTRY_COMPARE(bench.boxes.answered(), 3);
        open.accept();
    };
    bench.boxes.expect(box).expect(unlocked());
    QVERIFY(bench.inService([&](servicedlg &) {
        bench.say(status(true, 2));
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// Everything that the program prints in a session with passwords goes to a file, which has none.
void tst_lock::passwordsStayOutOfTheOutput()
{
    QTemporaryFile output;
    QVERIFY(output.open());
    std::fflush(nullptr);
    const int standardOutput = ::dup(STDOUT_FILENO);
    const int standardError = ::dup(STDERR_FILENO);
    ::dup2(output.handle(), STDOUT_FILENO);
    ::dup2(output.handle(), STDERR_FILENO);
    qWarning("printed");
    int answered = 0;
    QString report;
    {
        ScriptedBench bench;
        bench.connectToRouter();
        bench.onLine = [&](const QByteArray &sentence) {
            if (sentence.startsWith("$VRPWS,"))
                bench.line.write(checkedLine("$VRPWS,OK") + checkedLine("$VRLCK,1,5"));
            else if (sentence.startsWith("$VRPWU,"))
                bench.say("$VRLCK,1,0");
            else if (sentence == "$VRPWV\r\n")
                bench.say("$VRPWV,Secret123");
        };
        bench.boxes.expect(passwordSet())
            .expect({QStringLiteral("Lock password"),
                     QStringLiteral("Current Lock Password: Secret123"), QMessageBox::Information})
            .expect(wrongPassword());
        bench.inService([&](servicedlg &dialog) {
            inDialog<passwordDlg>(button(dialog, "pushButton_Lock"), [](passwordDlg &enter) {
                typeNew(enter, QStringLiteral("Secret123"));
            });
            QTRY_COMPARE(bench.boxes.answered(), 2);
            bench.waitUntilHeard();
            button(dialog, "pushButton_View_Password")->click();
            QTRY_COMPARE(bench.boxes.answered(), 3);
            setStatus(bench, true, 0);
            inDialog<EnterPasswordDlg>(
                button(dialog, "pushButton_Lock"),
                [](EnterPasswordDlg &enter) { typeUnlock(enter, QStringLiteral("Secret124")); });
            QTRY_COMPARE(bench.boxes.answered(), 4);
        });
        answered = bench.boxes.answered();
        report = bench.boxes.report();
    }
    std::fflush(nullptr);
    ::dup2(standardOutput, STDOUT_FILENO);
    ::dup2(standardError, STDERR_FILENO);
    ::close(standardOutput);
    ::close(standardError);
    QVERIFY2(answered == 4, qPrintable(report));
    QFile file(output.fileName());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray printed = file.readAll();
    QVERIFY2(printed.contains("printed"), printed.constData());
    QVERIFY2(!printed.contains("Secret"), printed.constData());
}

QTEST_MAIN(tst_lock)
#include "tst_lock.moc"
