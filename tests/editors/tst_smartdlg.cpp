#include "editors/smartdlg.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

/*! The choice of a smart function. */
class tst_smartdlg : public QObject
{
    Q_OBJECT

private slots:
    void shows_data();
    void shows();
    void chooses_data();
    void chooses();
    void aisIsOffered_data();
    void aisIsOffered();
    void firstCheckedCounts();
    void valueIsThereWhenExecReturns();

private:
    static QString checkedButton(const SmartDlg &dialog);
};

namespace {

void press(const SmartDlg &dialog, QDialogButtonBox::StandardButton button)
{
    dialog.findChild<QDialogButtonBox *>()->button(button)->click();
}

} // namespace

QString tst_smartdlg::checkedButton(const SmartDlg &dialog)
{
    QStringList names;
    const auto buttons = dialog.findChildren<QRadioButton *>();
    for (const QRadioButton *button : buttons) {
        if (button->isChecked())
            names += button->objectName();
    }
    return names.join(QLatin1Char(' '));
}

void tst_smartdlg::shows_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("afterOk");

    QTest::newRow("none") << 0 << "radioButton_off" << 0;
    QTest::newRow("GPS") << 1 << "radioButton_gps" << 1;
    QTest::newRow("heading") << 2 << "radioButton_hdt" << 2;
    QTest::newRow("depth") << 3 << "radioButton_depth" << 3;
    QTest::newRow("ARPA") << 4 << "radioButton_arpa" << 4;
    QTest::newRow("AIS") << 5 << "radioButton_ais" << 5;
    QTest::newRow("6 has no button") << 6 << "radioButton_off" << 0;
    QTest::newRow("7 has no button") << 7 << "radioButton_off" << 0;
    QTest::newRow("no value of the field") << 255 << "radioButton_off" << 0;
}

void tst_smartdlg::shows()
{
    QFETCH(int, value);
    SmartDlg dialog(nullptr);
    dialog.setFunction(quint8(value), true);
    QTEST(checkedButton(dialog), "button");
    QCOMPARE(int(dialog.function()), value);

    dialog.open();
    press(dialog, QDialogButtonBox::Cancel);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(int(dialog.function()), value);

    dialog.open();
    press(dialog, QDialogButtonBox::Ok);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QTEST(int(dialog.function()), "afterOk");
}

void tst_smartdlg::chooses_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("value");

    QTest::newRow("OFF") << "radioButton_off" << 0;
    QTest::newRow("GPS") << "radioButton_gps" << 1;
    QTest::newRow("HEADING") << "radioButton_hdt" << 2;
    QTest::newRow("DEPTH") << "radioButton_depth" << 3;
    QTest::newRow("ARPA") << "radioButton_arpa" << 4;
    QTest::newRow("AIS") << "radioButton_ais" << 5;
}

void tst_smartdlg::chooses()
{
    QFETCH(QString, button);
    for (quint8 before = 0; before <= 7; ++before) {
        SmartDlg dialog(nullptr);
        dialog.setFunction(before, true);
        dialog.open();
        dialog.findChild<QRadioButton *>(button)->click();
        QCOMPARE(checkedButton(dialog), button);
        QCOMPARE(dialog.function(), before);
        press(dialog, QDialogButtonBox::Ok);
        QTEST(int(dialog.function()), "value");
    }
}

void tst_smartdlg::aisIsOffered_data()
{
    QTest::addColumn<bool>("allowed");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("button");

    QTest::newRow("allowed") << true << 1 << "radioButton_gps";
    QTest::newRow("not allowed") << false << 1 << "radioButton_gps";
    QTest::newRow("allowed and set") << true << 5 << "radioButton_ais";
    QTest::newRow("not allowed, but set: stays chosen") << false << 5 << "radioButton_ais";
}

void tst_smartdlg::aisIsOffered()
{
    QFETCH(bool, allowed);
    QFETCH(int, value);
    SmartDlg dialog(nullptr);
    dialog.setFunction(quint8(value), allowed);
    dialog.open();
    auto *ais = dialog.findChild<QRadioButton *>(QStringLiteral("radioButton_ais"));
    ais->click();
    QCOMPARE(ais->isEnabled(), allowed);
    QCOMPARE(ais->isChecked(), allowed || value == 5);
    const auto buttons = dialog.findChildren<QRadioButton *>();
    for (const QRadioButton *button : buttons)
        QVERIFY2(button->isEnabled() || button == ais, qPrintable(button->objectName()));
    if (!allowed)
        QTEST(checkedButton(dialog), "button");
    press(dialog, QDialogButtonBox::Ok);
    QCOMPARE(int(dialog.function()), allowed ? 5 : value);
}

// The buttons exclude each other; if they didn't, the order of the list would decide.
void tst_smartdlg::firstCheckedCounts()
{
    SmartDlg dialog(nullptr);
    dialog.setFunction(5, true);
    const auto buttons = dialog.findChildren<QRadioButton *>();
    for (QRadioButton *button : buttons) {
        button->setAutoExclusive(false);
        button->setChecked(button->objectName() != QLatin1String("radioButton_off"));
    }
    dialog.open();
    press(dialog, QDialogButtonBox::Ok);
    QCOMPARE(int(dialog.function()), 1);
}

// accepted() of the buttons both ends exec() and stores the value.
void tst_smartdlg::valueIsThereWhenExecReturns()
{
    SmartDlg dialog(nullptr);
    dialog.setFunction(6, true);
    QTimer::singleShot(0, &dialog, [&dialog] {
        dialog.findChild<QRadioButton *>(QStringLiteral("radioButton_depth"))->click();
        press(dialog, QDialogButtonBox::Ok);
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QCOMPARE(int(dialog.function()), 3);
}

QTEST_MAIN(tst_smartdlg)
#include "tst_smartdlg.moc"
