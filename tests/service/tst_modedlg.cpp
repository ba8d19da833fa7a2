#include "service/modedlg.h"
#include "support/boxanswer.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

/*! The dialog that asks for the router's mode. */
class tst_modedlg : public QObject
{
    Q_OBJECT

private slots:
    void modes_data();
    void modes();
    void cancel();
    void fieldShowsWhatIsTyped();
};

void tst_modedlg::modes_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("complaint");

    const QString tooLong = QStringLiteral("Mode can be up to 8 characters long");
    const QString wrong = QStringLiteral("The mode can only contain numbers and Latin characters");
    QTest::newRow("8 characters") << "aBcD1234" << QString();
    QTest::newRow("9 characters") << "aBcD12345" << tooLong;
    QTest::newRow("9 hyphens") << QString(9, '-') << tooLong;
    QTest::newRow("one character") << "x" << QString();
    QTest::newRow("empty") << QString() << wrong;
    QTest::newRow("blank") << "a b" << wrong;
    QTest::newRow("hyphen") << "a-b" << wrong;
}

void tst_modedlg::modes()
{
    QFETCH(QString, mode);
    QFETCH(QString, complaint);
    BoxAnswer boxes;
    modeDlg dialog(nullptr);
    dialog.show();
    dialog.findChild<QLineEdit *>()->setText(mode);
    BoxAnswer::Box box = {QStringLiteral("Mode error"), complaint, QMessageBox::Warning};
    box.parent = nullptr;
    if (!complaint.isEmpty())
        boxes.expect(box);
    dialog.findChild<QPushButton *>(QStringLiteral("pushButton_Ok"))->click();
    QCOMPARE(dialog.isVisible(), !complaint.isEmpty());
    QCOMPARE(dialog.mode(), complaint.isEmpty() ? mode : QString());
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

void tst_modedlg::cancel()
{
    modeDlg dialog(nullptr);
    dialog.show();
    dialog.findChild<QLineEdit *>()->setText(QStringLiteral("DAY"));
    dialog.findChild<QPushButton *>(QStringLiteral("pushButton_Cancel"))->click();
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QVERIFY(dialog.mode().isEmpty());
}

void tst_modedlg::fieldShowsWhatIsTyped()
{
    const modeDlg dialog(nullptr);
    auto *field = dialog.findChild<QLineEdit *>();
    QCOMPARE(field->echoMode(), QLineEdit::Normal);
    field->setText(QStringLiteral("DAY"));
    QCOMPARE(field->displayText(), QStringLiteral("DAY"));
}

QTEST_MAIN(tst_modedlg)
#include "tst_modedlg.moc"
