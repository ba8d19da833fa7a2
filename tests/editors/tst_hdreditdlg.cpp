#include "editors/hdreditdlg.h"
#include "support/boxanswer.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

/*! The entry of a header override. */
class tst_hdreditdlg : public QObject
{
    Q_OBJECT

private slots:
    void entry_data();
    void entry();
    void showsThePresentHeader();
    void takesNoMoreThanTwoCharacters();
    void cancelGivesNoHeader();
};

namespace {

const QString tooShort = QStringLiteral("The NMEA header consist of 2 characters.");
const QString notLatin = QStringLiteral("The NMEA header can consist only Latin characters.");
const QString reserved = QStringLiteral("The NMEA header VR reserved for TK-7.");

void press(const HdrEditDlg &dialog, QDialogButtonBox::StandardButton button)
{
    dialog.findChild<QDialogButtonBox *>()->button(button)->click();
}

} // namespace

void tst_hdreditdlg::entry_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("refusal");
    QTest::addColumn<QString>("hdr");

    QTest::newRow("capitals") << "GP" << QString() << "GP";
    QTest::newRow("small letters are turned to capitals") << "gp" << QString() << "GP";
    QTest::newRow("mixed case") << "aI" << QString() << "AI";
    QTest::newRow("the ends of the alphabet") << "az" << QString() << "AZ";
    QTest::newRow("nothing") << "" << tooShort << QString();
    QTest::newRow("a single letter") << "G" << tooShort << QString();
    QTest::newRow("a single digit: the length comes first") << "1" << tooShort << QString();
    QTest::newRow("a digit behind") << "G1" << notLatin << QString();
    QTest::newRow("a digit in front") << "1G" << notLatin << QString();
    QTest::newRow("blanks") << "  " << notLatin << QString();
    QTest::newRow("below A") << "G@" << notLatin << QString();
    QTest::newRow("above Z") << "G[" << notLatin << QString();
    QTest::newRow("a comma would break the sentence") << "G," << notLatin << QString();
    QTest::newRow("an umlaut") << QString::fromUtf8("G\u00c4") << notLatin << QString();
    QTest::newRow("a sharp s becomes two letters")
        << QString::fromUtf8("G\u00df") << notLatin << QString();
    QTest::newRow("the router's own") << "VR" << reserved << QString();
    QTest::newRow("the router's own in small letters") << "vr" << reserved << QString();
    QTest::newRow("the router's own in mixed case") << "vR" << reserved << QString();
    QTest::newRow("the router's own turned round") << "RV" << QString() << "RV";
}

void tst_hdreditdlg::entry()
{
    QFETCH(QString, text);
    QFETCH(QString, refusal);
    BoxAnswer boxes;
    HdrEditDlg dialog(nullptr);
    BoxAnswer::Box box = {QStringLiteral("NMEA Header"), refusal, QMessageBox::Information};
    box.parent = &dialog;
    if (!refusal.isEmpty())
        boxes.expect(box);
    dialog.open();
    dialog.findChild<QLineEdit *>()->setText(text);
    press(dialog, QDialogButtonBox::Ok);
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
    QTEST(dialog.hdr(), "hdr");
    QCOMPARE(dialog.isVisible(), !refusal.isEmpty());
    QCOMPARE(dialog.result(), int(refusal.isEmpty() ? QDialog::Accepted : QDialog::Rejected));
}

void tst_hdreditdlg::showsThePresentHeader()
{
    HdrEditDlg dialog(nullptr);
    QCOMPARE(dialog.findChild<QLineEdit *>()->text(), QString());
    dialog.setHdr(QStringLiteral("GP"));
    QCOMPARE(dialog.findChild<QLineEdit *>()->text(), QStringLiteral("GP"));
    QCOMPARE(dialog.hdr(), QString());
    dialog.open();
    press(dialog, QDialogButtonBox::Ok);
    QCOMPARE(dialog.hdr(), QStringLiteral("GP"));
}

void tst_hdreditdlg::takesNoMoreThanTwoCharacters()
{
    HdrEditDlg dialog(nullptr);
    dialog.open();
    auto *field = dialog.findChild<QLineEdit *>();
    QTest::keyClicks(field, QStringLiteral("gpx"));
    QCOMPARE(field->text(), QStringLiteral("gp"));
}

void tst_hdreditdlg::cancelGivesNoHeader()
{
    HdrEditDlg dialog(nullptr);
    dialog.setHdr(QStringLiteral("GP"));
    dialog.open();
    press(dialog, QDialogButtonBox::Cancel);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(dialog.hdr(), QString());
}

QTEST_MAIN(tst_hdreditdlg)
#include "tst_hdreditdlg.moc"
