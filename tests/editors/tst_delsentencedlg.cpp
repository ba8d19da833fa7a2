#include "editors/delsentencedlg.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextEdit>

/*! The question before a sentence name leaves the filters that use it. */
class tst_delsentencedlg : public QObject
{
    Q_OBJECT

private slots:
    void list_data();
    void list();
    void question();
    void buttons_data();
    void buttons();
};

void tst_delsentencedlg::list_data()
{
    QTest::addColumn<QStringList>("list");
    QTest::addColumn<QString>("text");

    QTest::newRow("no line") << QStringList() << QString();
    QTest::newRow("a line feed behind the only line")
        << QStringList("Output Port 0 -> input channel 11")
        << "Output Port 0 -> input channel 11\n";
    QTest::newRow("a line feed behind every line, the last too")
        << QStringList({"one", "two", "three"}) << "one\ntwo\nthree\n";
    QTest::newRow("no markup") << QStringList({"<b>one</b>"}) << "<b>one</b>\n";
}

void tst_delsentencedlg::list()
{
    QFETCH(QStringList, list);
    DelSentenceDlg dialog;
    dialog.setList({QStringLiteral("an earlier list")});
    dialog.setList(list);
    QTEST(dialog.findChild<QTextEdit *>()->toPlainText(), "text");
}

void tst_delsentencedlg::question()
{
    DelSentenceDlg dialog;
    dialog.setSentence(QStringLiteral("GGA"));
    QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("label"))->text(),
             QStringLiteral("NMEA sentence 'GGA' is used in other filters. \n"
                            "Are you sure want delete from all filters?"));
}

void tst_delsentencedlg::buttons_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("result");

    QTest::newRow("ok") << int(QDialogButtonBox::Ok) << int(QDialog::Accepted);
    QTest::newRow("cancel") << int(QDialogButtonBox::Cancel) << int(QDialog::Rejected);
}

void tst_delsentencedlg::buttons()
{
    QFETCH(int, button);
    DelSentenceDlg dialog;
    dialog.open();
    auto *box = dialog.findChild<QDialogButtonBox *>();
    QSignalSpy finished(&dialog, &QDialog::finished);
    box->button(QDialogButtonBox::StandardButton(button))->click();
    QVERIFY(!dialog.isVisible());
    QCOMPARE(finished.size(), 1);
    QTEST(finished.first().first().toInt(), "result");
}

QTEST_MAIN(tst_delsentencedlg)
#include "tst_delsentencedlg.moc"
