#include "editors/sntdlg.h"
#include "support/boxanswer.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

/*! The entry of a sentence name. */
class tst_sntdlg : public QObject
{
    Q_OBJECT

private slots:
    void entry_data();
    void entry();
    void takesNoMoreThanThreeCharacters();
    void refusedThenCorrected();
    void cancelGivesNoName();
};

namespace {

const QString tooShort = QStringLiteral("The NMEA sentence consist of 3 characters.");
const QString notLatin = QStringLiteral("The NMEA sentence can consist only Latin characters.");

BoxAnswer::Box box(const SntDlg &dialog, const QString &text)
{
    BoxAnswer::Box expected = {QStringLiteral("NMEA Sentence"), text, QMessageBox::Information};
    expected.parent = &dialog;
    return expected;
}

void press(const SntDlg &dialog, QDialogButtonBox::StandardButton button)
{
    dialog.findChild<QDialogButtonBox *>()->button(button)->click();
}

} // namespace

void tst_sntdlg::entry_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("refusal");
    QTest::addColumn<QString>("sentence");

    QTest::newRow("capitals") << "GGA" << QString() << "GGA";
    QTest::newRow("small letters are turned to capitals") << "gga" << QString() << "GGA";
    QTest::newRow("mixed case") << "vDm" << QString() << "VDM";
    QTest::newRow("the ends of the alphabet") << "aZz" << QString() << "AZZ";
    QTest::newRow("nothing") << "" << tooShort << QString();
    QTest::newRow("one letter") << "G" << tooShort << QString();
    QTest::newRow("two letters") << "GG" << tooShort << QString();
    QTest::newRow("two characters, one a digit: the length comes first")
        << "G1" << tooShort << QString();
    QTest::newRow("a digit in the middle") << "G1A" << notLatin << QString();
    QTest::newRow("a digit in front") << "1GA" << notLatin << QString();
    QTest::newRow("a digit at the end") << "GG1" << notLatin << QString();
    QTest::newRow("blanks") << "   " << notLatin << QString();
    QTest::newRow("below A") << "GG@" << notLatin << QString();
    QTest::newRow("above Z") << "GG[" << notLatin << QString();
    QTest::newRow("a comma would break the sentence") << "G,A" << notLatin << QString();
    QTest::newRow("an umlaut") << QString::fromUtf8("G\u00c4A") << notLatin << QString();
    QTest::newRow("Cyrillic") << QString::fromUtf8("\u0413\u0413\u0410") << notLatin << QString();
    QTest::newRow("a sharp s becomes two letters")
        << QString::fromUtf8("G\u00dfA") << notLatin << QString();
}

void tst_sntdlg::entry()
{
    QFETCH(QString, text);
    QFETCH(QString, refusal);
    BoxAnswer boxes;
    SntDlg dialog;
    if (!refusal.isEmpty())
        boxes.expect(box(dialog, refusal));
    dialog.open();
    dialog.findChild<QLineEdit *>()->setText(text);
    press(dialog, QDialogButtonBox::Ok);
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
    QTEST(dialog.sentence(), "sentence");
    QCOMPARE(dialog.isVisible(), !refusal.isEmpty());
    QCOMPARE(dialog.result(), int(refusal.isEmpty() ? QDialog::Accepted : QDialog::Rejected));
}

void tst_sntdlg::takesNoMoreThanThreeCharacters()
{
    SntDlg dialog;
    dialog.open();
    auto *field = dialog.findChild<QLineEdit *>();
    QTest::keyClicks(field, QStringLiteral("ggarmc"));
    QCOMPARE(field->text(), QStringLiteral("gga"));
}

void tst_sntdlg::refusedThenCorrected()
{
    BoxAnswer boxes;
    SntDlg dialog;
    boxes.expect(box(dialog, tooShort)).expect(box(dialog, notLatin));
    dialog.open();
    auto *field = dialog.findChild<QLineEdit *>();
    for (const char *text : {"zd", "zd4", "zda"}) {
        field->setText(QString::fromLatin1(text));
        press(dialog, QDialogButtonBox::Ok);
    }
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
    QCOMPARE(dialog.sentence(), QStringLiteral("ZDA"));
    QVERIFY(!dialog.isVisible());
}

void tst_sntdlg::cancelGivesNoName()
{
    SntDlg dialog;
    dialog.open();
    dialog.findChild<QLineEdit *>()->setText(QStringLiteral("GGA"));
    press(dialog, QDialogButtonBox::Cancel);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(dialog.sentence(), QString());
}

QTEST_MAIN(tst_sntdlg)
#include "tst_sntdlg.moc"
