#include "service/enterpassworddlg.h"
#include "service/passworddlg.h"
#include "support/boxanswer.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

/*! The dialog that asks for a password and the one that asks for a new one. */
class tst_passworddialogs : public QObject
{
    Q_OBJECT

private slots:
    void passwords_data();
    void passwords();
    void unequal_data();
    void unequal();
    void cancel();
    void fieldsAreHidden();
    void returnPressesOk();
    void deletedUnderTheBox();
};

namespace {

BoxAnswer::Box error(const QString &text)
{
    BoxAnswer::Box box = {QStringLiteral("Password error"), text, QMessageBox::Warning};
    box.parent = nullptr;
    return box;
}

const QString tooLong = QStringLiteral("Password can be up to 20 characters long");
const QString wrong = QStringLiteral("The password can only contain numbers and Latin characters");
const QString noMatch = QStringLiteral("Confirm password does not match lock password");

void fill(const QDialog &dialog, const QString &password)
{
    const QList<QLineEdit *> fields = dialog.findChildren<QLineEdit *>();
    for (QLineEdit *field : fields)
        field->setText(password);
}

void press(const QDialog &dialog, const char *name)
{
    dialog.findChild<QPushButton *>(QString::fromLatin1(name))->click();
}

template <typename Dialog> void verifyPassword(const QString &password, const QString &complaint)
{
    BoxAnswer boxes;
    Dialog dialog(nullptr);
    dialog.show();
    fill(dialog, password);
    if (!complaint.isEmpty())
        boxes.expect(error(complaint));
    press(dialog, "pushButton_Ok");
    QCOMPARE(dialog.isVisible(), !complaint.isEmpty());
    QCOMPARE(dialog.password(), complaint.isEmpty() ? password : QString());
    QCOMPARE(dialog.result(), int(complaint.isEmpty() ? QDialog::Accepted : QDialog::Rejected));
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

} // namespace

void tst_passworddialogs::passwords_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("complaint");

    QTest::newRow("20 characters") << "aB3dEf7hIj1LmN5pQr9T" << QString();
    QTest::newRow("21 characters") << "aB3dEf7hIj1LmN5pQr9Tu" << tooLong;
    QTest::newRow("21 hyphens") << QString(21, '-') << tooLong;
    QTest::newRow("empty") << QString() << wrong;
    QTest::newRow("blank") << "a b" << wrong;
    QTest::newRow("hyphen") << "a-b" << wrong;
    QTest::newRow("lower case") << "abc" << QString();
    QTest::newRow("upper case") << "ABC" << QString();
}

void tst_passworddialogs::passwords()
{
    QFETCH(QString, password);
    QFETCH(QString, complaint);
    verifyPassword<EnterPasswordDlg>(password, complaint);
    verifyPassword<passwordDlg>(password, complaint);
}

void tst_passworddialogs::unequal_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("confirmation");

    QTest::newRow("another") << "Harbour7"
                             << "Harbour8";
    QTest::newRow("another case") << "abc"
                                  << "ABC";
    QTest::newRow("no confirmation") << "abc" << QString();
    QTest::newRow("no password") << QString() << "abc";
    // The comparison comes before length and characters.
    QTest::newRow("too long as well") << QString(21, 'a') << QString(22, 'a');
    QTest::newRow("wrong as well") << "a b"
                                   << "a c";
}

void tst_passworddialogs::unequal()
{
    QFETCH(QString, password);
    QFETCH(QString, confirmation);
    BoxAnswer boxes;
    boxes.expect(error(noMatch));
    passwordDlg dialog(nullptr);
    dialog.show();
    dialog.findChild<QLineEdit *>(QStringLiteral("lineEdit_lock_password"))->setText(password);
    dialog.findChild<QLineEdit *>(QStringLiteral("lineEdit_confirm_password"))
        ->setText(confirmation);
    press(dialog, "pushButton_Ok");
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
    QVERIFY(dialog.isVisible());
    QVERIFY(dialog.password().isEmpty());
    // The next attempt uses the same box.
    fill(dialog, QStringLiteral("x y"));
    boxes.expect(error(wrong));
    press(dialog, "pushButton_Ok");
    fill(dialog, QStringLiteral("xy"));
    press(dialog, "pushButton_Ok");
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
    QCOMPARE(dialog.password(), QStringLiteral("xy"));
}

void tst_passworddialogs::cancel()
{
    EnterPasswordDlg unlock(nullptr);
    passwordDlg lock(nullptr);
    for (QDialog *dialog : std::initializer_list<QDialog *>{&unlock, &lock}) {
        dialog->show();
        fill(*dialog, QStringLiteral("Harbour7"));
        press(*dialog, "pushButton_Cancel");
        QVERIFY(!dialog->isVisible());
        QCOMPARE(dialog->result(), int(QDialog::Rejected));
    }
    QVERIFY(unlock.password().isEmpty());
    QVERIFY(lock.password().isEmpty());
}

void tst_passworddialogs::fieldsAreHidden()
{
    const EnterPasswordDlg unlock(nullptr);
    const passwordDlg lock(nullptr);
    const QList<QLineEdit *> fields =
        unlock.findChildren<QLineEdit *>() + lock.findChildren<QLineEdit *>();
    QCOMPARE(fields.size(), 3);
    for (QLineEdit *field : fields) {
        QCOMPARE(field->echoMode(), QLineEdit::Password);
        field->setText(QStringLiteral("abc"));
        QVERIFY(field->displayText() != field->text());
    }
}

void tst_passworddialogs::returnPressesOk()
{
    EnterPasswordDlg dialog(nullptr);
    dialog.show();
    auto *field = dialog.findChild<QLineEdit *>();
    QTest::keyClicks(field, QStringLiteral("Harbour7"));
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(dialog.password(), QStringLiteral("Harbour7"));
    QVERIFY(!dialog.isVisible());
}

// As at the end of the link, by a press of a real button.
void tst_passworddialogs::deletedUnderTheBox()
{
    BoxAnswer boxes;
    for (int kind = 0; kind < 2; ++kind) {
        const QPointer<QDialog> dialog = kind == 0
            ? static_cast<QDialog *>(new passwordDlg(nullptr))
            : new EnterPasswordDlg(nullptr);
        BoxAnswer::Box box = error(wrong);
        box.click = QMessageBox::NoButton;
        box.whileOpen = [&](QMessageBox &) { delete dialog; };
        boxes.expect(box);
        dialog->show();
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("pushButton_Ok")),
                          Qt::LeftButton);
        QVERIFY(!dialog);
    }
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

QTEST_MAIN(tst_passworddialogs)
#include "tst_passworddialogs.moc"
