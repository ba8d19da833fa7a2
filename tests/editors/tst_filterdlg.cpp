#include "editors/delsentencedlg.h"
#include "editors/filterdlg.h"
#include "editors/sentencelist.h"
#include "editors/sntdlg.h"
#include "support/boxanswer.h"
#include "support/indialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QTextEdit>

#include <algorithm>

/*! The filter editor alone: the list of names, the rows, adding, deleting, what Ok gives. */
class tst_filterdlg : public QObject
{
    Q_OBJECT

private slots:
    void shows_data();
    void shows();
    void startsAtTheFirstName();
    void rowsAreWholeInAnyOrder();
    void checksByMouseAndKey();
    void tabLeavesTheTable();
    void givesMaskAndType_data();
    void givesMaskAndType();
    void emptyList();
    void twoSlotsOfOneName();
    void cancelKeepsTheFields();

    void adds_data();
    void adds();
    void refusesAKnownName_data();
    void refusesAKnownName();
    void noSpace();
    void lastSpace();
    void entryCancelled();
    void entryCorrected();
    void reusesTheLowestFreeSlot();

    void asksForTheSentenceOfTheRow();
    void deletesAnUnused_data();
    void deletesAnUnused();
    void deletesAUsed_data();
    void deletesAUsed();
    void nothingToDelete_data();
    void nothingToDelete();
    void deletedRowLeavesNoBit();
};

namespace {

SentenceList makeList(const QString &names)
{
    SentenceList list;
    const QStringList slotNames = names.split(QLatin1Char(' '));
    for (int slot = 0; slot < slotNames.size(); ++slot) {
        if (slotNames.at(slot) != QLatin1String("-"))
            list.put(slot, slotNames.at(slot));
    }
    return list;
}

// The other way round; free slots at the end are left out.
QString namesOf(const SentenceList &list)
{
    QStringList names;
    for (int slot = 0; slot < SentenceList::size; ++slot) {
        const QString &name = list.names[std::size_t(slot)];
        names += list.isTaken(slot) ? name : name.isEmpty() ? QString("-") : QString("left over");
    }
    while (!names.isEmpty() && names.last() == QLatin1String("-"))
        names.removeLast();
    return names.join(QLatin1Char(' '));
}

class Bench
{
public:
    explicit Bench(const QString &names, bool black = false, quint32 mask = 0)
        : list(makeList(names))
    {
        dialog.setFilter(&list, black, mask);
        dialog.open();
    }

    QTableWidget *table() const { return dialog.findChild<QTableWidget *>(); }
    QPushButton *button(const char *name) const
    {
        return dialog.findChild<QPushButton *>(QString::fromLatin1(name));
    }
    QRadioButton *radio(const char *name) const
    {
        return dialog.findChild<QRadioButton *>(QString::fromLatin1(name));
    }
    int rowOf(const QString &name) const
    {
        return int(rows().indexOf(QRegularExpression(name + ".?")));
    }
    void setChecked(const QString &name, bool on)
    {
        table()->item(rowOf(name), 0)->setCheckState(on ? Qt::Checked : Qt::Unchecked);
    }

    // The rows from the top; a '+' behind a name that is checked.
    QStringList rows() const
    {
        QStringList texts;
        for (int row = 0; row < table()->rowCount(); ++row) {
            const bool on = table()->item(row, 0)->data(Qt::CheckStateRole).toInt() == 2;
            texts += table()->item(row, 1)->text() + (on ? QString("+") : QString());
        }
        return texts;
    }

    QString current() const
    {
        const QTableWidgetItem *item = table()->item(table()->currentRow(), 1);
        return item ? item->text() : QString();
    }

    SentenceList list;
    FilterDlg dialog{nullptr};
    BoxAnswer boxes;
};

void press(const QDialog &dialog, QDialogButtonBox::StandardButton button)
{
    dialog.findChild<QDialogButtonBox *>()->button(button)->click();
}

// Adds a name as a user does; false if no entry dialog came. That is nobody's child.
bool enter(Bench &bench, const QString &name)
{
    return inDialog<SntDlg>(bench.button("pushButton_add"), [&name](SntDlg &entry) {
        QVERIFY(!entry.parentWidget());
        entry.findChild<QLineEdit *>()->setText(name);
        press(entry, QDialogButtonBox::Ok);
    });
}

BoxAnswer::Box information(const QString &title, const QString &text)
{
    return {title, text, QMessageBox::Information};
}

// One of the editor's own, and not of the entry dialog.
BoxAnswer::Box informationOf(const Bench &bench, const QString &title, const QString &text)
{
    BoxAnswer::Box box = information(title, text);
    box.parent = &bench.dialog;
    return box;
}

// No button is made the default, so it is the first that accepts.
BoxAnswer::Box deleteQuestion(const Bench &bench, const QString &name,
                              QMessageBox::StandardButton click)
{
    BoxAnswer::Box box = {QStringLiteral("NMEA Sentence"),
                          QStringLiteral("Delete '%1' NMEA sentence ?").arg(name),
                          QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel, click};
    box.defaultButton = QMessageBox::Ok;
    box.parent = &bench.dialog;
    return box;
}

QString fullList()
{
    QStringList names;
    for (int slot = 0; slot < SentenceList::size; ++slot)
        names += QStringLiteral("X%1%2").arg(QChar('A' + slot / 26)).arg(QChar('A' + slot % 26));
    return names.join(QLatin1Char(' '));
}

} // namespace

void tst_filterdlg::shows_data()
{
    QTest::addColumn<QString>("names");
    QTest::addColumn<bool>("black");
    QTest::addColumn<quint32>("mask");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("current");

    QTest::newRow("in order of the names, not of the slots")
        << "RMC GGA GLL" << false << 0U << QStringList({"GGA", "GLL", "RMC"}) << "GGA";
    QTest::newRow("checked by the slot's bit")
        << "RMC GGA GLL" << true << 0x5U << QStringList({"GGA", "GLL+", "RMC+"}) << "GGA";
    QTest::newRow("free slots have no row, whatever the mask says")
        << "- RMC - GGA" << false << 0xffffffffU << QStringList({"GGA+", "RMC+"}) << "GGA";
    QTest::newRow("the last slot") << QString("- ").repeated(31) + "VDM" << true << 0x80000000U
                                   << QStringList({"VDM+"}) << "VDM";
    QTest::newRow("no name") << "-" << true << 1U << QStringList() << QString();
}

void tst_filterdlg::shows()
{
    QFETCH(QString, names);
    QFETCH(bool, black);
    QFETCH(quint32, mask);
    const Bench bench(names, black, mask);
    QTEST(bench.rows(), "rows");
    QTEST(bench.current(), "current");
    QCOMPARE(bench.table()->currentColumn(), bench.rows().isEmpty() ? -1 : 0);
    QCOMPARE(bench.radio("radioButton_blacklist")->isChecked(), black);
    QCOMPARE(bench.radio("radioButton_whitelist")->isChecked(), !black);
    QCOMPARE(bench.dialog.filterMask(), mask);
    QCOMPARE(bench.dialog.filterType(), black);
    QVERIFY(!bench.dialog.listChanged());
    QCOMPARE(namesOf(bench.list), names == QLatin1String("-") ? QString() : names);
}

// Before it is shown, when the focus would bring it there anyway.
void tst_filterdlg::startsAtTheFirstName()
{
    SentenceList list = makeList("RMC GGA");
    FilterDlg dialog(nullptr);
    dialog.setFilter(&list, false, 0);
    const auto *table = dialog.findChild<QTableWidget *>();
    QCOMPARE(table->currentRow(), 0);
    QCOMPARE(table->currentColumn(), 0);
    QCOMPARE(dialog.focusWidget(), table);
}

// The hidden header leaves the order to the names. Were it another, no row would be torn either.
void tst_filterdlg::rowsAreWholeInAnyOrder()
{
    Bench bench("RMC GGA", false, 0x3);
    bench.table()->sortByColumn(0, Qt::AscendingOrder);
    bench.dialog.addRow(QStringLiteral("ZDA"), false);
    bench.dialog.addRow(QStringLiteral("GLL"), true);
    const QStringList rows = bench.rows();
    QCOMPARE(QSet<QString>(rows.begin(), rows.end()),
             QSet<QString>({"GGA+", "RMC+", "ZDA", "GLL+"}));
}

// A name can't be edited, but its box can be checked.
void tst_filterdlg::checksByMouseAndKey()
{
    Bench bench("RMC GGA GLL");
    QTest::keyClick(bench.table(), Qt::Key_Space);
    QCOMPARE(bench.rows(), QStringList({"GGA+", "GLL", "RMC"}));

    const QRect cell = bench.table()->visualItemRect(bench.table()->item(2, 0));
    const QPoint box(cell.left() + cell.height() / 3, cell.center().y());
    QTest::mouseClick(bench.table()->viewport(), Qt::LeftButton, Qt::NoModifier, box);
    QCOMPARE(bench.rows(), QStringList({"GGA+", "GLL", "RMC+"}));

    const QRect name = bench.table()->visualItemRect(bench.table()->item(1, 1));
    QTest::mouseDClick(bench.table()->viewport(), Qt::LeftButton, Qt::NoModifier, name.center());
    QTest::keyClicks(bench.table(), QStringLiteral("ZZZ"));
    QCOMPARE(bench.rows(), QStringList({"GGA+", "GLL", "RMC+"}));

    bench.button("pushButton_ok")->click();
    QCOMPARE(bench.dialog.filterMask(), 0x3U);
}

void tst_filterdlg::tabLeavesTheTable()
{
    Bench bench("RMC GGA GLL");
    bench.table()->setFocus();
    QTest::keyClick(bench.table(), Qt::Key_Tab);
    QCOMPARE(bench.dialog.focusWidget()->objectName(), QStringLiteral("radioButton_whitelist"));
    QCOMPARE(bench.table()->currentColumn(), 0);
    bench.table()->setFocus();
    QTest::keyClick(bench.table(), Qt::Key_Backtab);
    QCOMPARE(bench.dialog.focusWidget()->objectName(), QStringLiteral("pushButton_del"));
}

void tst_filterdlg::givesMaskAndType_data()
{
    QTest::addColumn<bool>("blackBefore");
    QTest::addColumn<QString>("radio");
    QTest::addColumn<QStringList>("checked");
    QTest::addColumn<quint32>("mask");
    QTest::addColumn<bool>("black");

    QTest::newRow("nothing checked") << false << "" << QStringList() << 0U << false;
    QTest::newRow("stays black") << true << "" << QStringList("RMC") << 0x1U << true;
    QTest::newRow("white to black")
        << false << "radioButton_blacklist" << QStringList("ZDA") << 0x20U << true;
    QTest::newRow("black to white")
        << true << "radioButton_whitelist" << QStringList({"GGA", "ZDA"}) << 0x28U << false;
    QTest::newRow("everything") << false << "" << QStringList({"GGA", "RMC", "VDM", "ZDA"})
                                << 0x80000029U << false;
}

void tst_filterdlg::givesMaskAndType()
{
    QFETCH(bool, blackBefore);
    QFETCH(QString, radio);
    QFETCH(QStringList, checked);
    // The mask that it comes with is of a free slot and of one that is unchecked now.
    Bench bench("RMC - - GGA - ZDA " + QString("- ").repeated(25) + "VDM", blackBefore, 0x22);
    bench.setChecked("ZDA", false);
    // Half checked, as no user can have it, is not checked.
    bench.table()->item(bench.rowOf("RMC"), 0)->setCheckState(Qt::PartiallyChecked);
    for (const QString &name : qAsConst(checked))
        bench.setChecked(name, true);
    if (!radio.isEmpty())
        bench.dialog.findChild<QRadioButton *>(radio)->click();
    bench.button("pushButton_ok")->click();
    QVERIFY(!bench.dialog.isVisible());
    QCOMPARE(bench.dialog.result(), int(QDialog::Accepted));
    QTEST(bench.dialog.filterMask(), "mask");
    QTEST(bench.dialog.filterType(), "black");
    QVERIFY(!bench.dialog.listChanged());
}

void tst_filterdlg::emptyList()
{
    for (const bool black : {false, true}) {
        Bench bench("-", black, 0xffffffff);
        QCOMPARE(bench.table()->rowCount(), 0);
        bench.button("pushButton_ok")->click();
        QCOMPARE(bench.dialog.result(), int(QDialog::Accepted));
        QCOMPARE(bench.dialog.filterMask(), 0U);
        QCOMPARE(bench.dialog.filterType(), black);
    }
}

// A router can send a name twice: either row stands for the lower slot.
void tst_filterdlg::twoSlotsOfOneName()
{
    Bench bench("RMC GGA RMC", false, 0x4);
    QCOMPARE(bench.rows().filter("RMC").size(), 2);
    QCOMPARE(bench.rows().filter("RMC+").size(), 1);
    bench.button("pushButton_ok")->click();
    QCOMPARE(bench.dialog.filterMask(), 0x1U);
}

void tst_filterdlg::cancelKeepsTheFields()
{
    Bench bench("RMC GGA", false, 0x1);
    bench.setChecked("GGA", true);
    bench.radio("radioButton_blacklist")->click();
    bench.button("pushButton_cancel")->click();
    QVERIFY(!bench.dialog.isVisible());
    QCOMPARE(bench.dialog.result(), int(QDialog::Rejected));
    QCOMPARE(bench.dialog.filterMask(), 0x1U);
    QVERIFY(!bench.dialog.filterType());
    QVERIFY(!bench.dialog.listChanged());
}

void tst_filterdlg::adds_data()
{
    QTest::addColumn<QString>("names");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("current");

    QTest::newRow("to an empty list") << "-"
                                      << "GGA"
                                      << "GGA" << QStringList("GGA") << "GGA";
    QTest::newRow("behind the others")
        << "RMC ZDA"
        << "GGA"
        << "RMC ZDA GGA" << QStringList({"GGA", "RMC+", "ZDA"}) << "GGA";
    QTest::newRow("in the lowest gap")
        << "RMC - ZDA - VDM"
        << "WPL"
        << "RMC WPL ZDA - VDM" << QStringList({"RMC+", "VDM", "WPL", "ZDA"}) << "WPL";
    QTest::newRow("small letters are stored as capitals")
        << "RMC"
        << "gga"
        << "RMC GGA" << QStringList({"GGA", "RMC+"}) << "GGA";
    // Which of them comes first is the matter of the language that the desktop speaks.
    QStringList rmc{"RMC", "rmc+"};
    if (QString::localeAwareCompare("RMC", "rmc") > 0)
        std::reverse(rmc.begin(), rmc.end());
    QTest::newRow("a name that differs in case only from the router's")
        << "rmc"
        << "RMC"
        << "rmc RMC" << rmc << "RMC";
}

void tst_filterdlg::adds()
{
    QFETCH(QString, names);
    QFETCH(QString, typed);
    Bench bench(names, false, 0x1);
    QVERIFY(enter(bench, typed));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QVERIFY(bench.dialog.listChanged());
    QTEST(namesOf(bench.list), "after");
    QTEST(bench.rows(), "rows");
    QTEST(bench.current(), "current");
    QCOMPARE(bench.table()->currentColumn(), 0);
    QVERIFY(bench.dialog.isVisible());
    bench.button("pushButton_ok")->click();
    QCOMPARE(bench.dialog.filterMask(), names == QLatin1String("-") ? 0U : 1U);
}

void tst_filterdlg::refusesAKnownName_data()
{
    QTest::addColumn<QString>("typed");

    QTest::newRow("as it stands") << "GGA";
    QTest::newRow("in small letters, the message has capitals") << "gga";
}

void tst_filterdlg::refusesAKnownName()
{
    QFETCH(QString, typed);
    Bench bench("RMC GGA");
    bench.boxes.expect(informationOf(bench, QStringLiteral("NMEA Sentence"),
                                     QStringLiteral("The NMEA sentence GGA already exist.")));
    bool entryWasClosed = false;
    QVERIFY(inDialog<SntDlg>(bench.button("pushButton_add"), [&](SntDlg &entry) {
        entry.findChild<QLineEdit *>()->setText(typed);
        press(entry, QDialogButtonBox::Ok);
        entryWasClosed = !entry.isVisible() && bench.boxes.answered() == 0;
    }));
    QVERIFY(entryWasClosed);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QCOMPARE(namesOf(bench.list), QStringLiteral("RMC GGA"));
    QCOMPARE(bench.rows(), QStringList({"GGA", "RMC"}));
    QVERIFY(!bench.dialog.listChanged());
    QVERIFY(bench.dialog.isVisible());
}

void tst_filterdlg::noSpace()
{
    Bench bench(fullList());
    bench.boxes.expect(informationOf(bench, QStringLiteral("Add new sentence"),
                                     QStringLiteral("Not enough space for the new NMEA sentence")));
    bench.button("pushButton_add")->click();
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QVERIFY(!bench.dialog.listChanged());
    QCOMPARE(namesOf(bench.list), fullList());
    QCOMPARE(bench.table()->rowCount(), 32);
}

void tst_filterdlg::lastSpace()
{
    Bench bench(fullList().chopped(4));
    QVERIFY(enter(bench, QStringLiteral("ZZZ")));
    QCOMPARE(bench.list.mask, 0xffffffffU);
    QCOMPARE(bench.list.names[31], QStringLiteral("ZZZ"));
    bench.boxes.expect(informationOf(bench, QStringLiteral("Add new sentence"),
                                     QStringLiteral("Not enough space for the new NMEA sentence")));
    bench.button("pushButton_add")->click();
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_filterdlg::entryCancelled()
{
    Bench bench("RMC");
    QVERIFY(inDialog<SntDlg>(bench.button("pushButton_add"), [](SntDlg &entry) {
        entry.findChild<QLineEdit *>()->setText(QStringLiteral("GGA"));
        press(entry, QDialogButtonBox::Cancel);
    }));
    QCOMPARE(namesOf(bench.list), QStringLiteral("RMC"));
    QCOMPARE(bench.rows(), QStringList("RMC"));
    QVERIFY(!bench.dialog.listChanged());
}

// Two refusals in the entry dialog, which stays open, and a name in the end.
void tst_filterdlg::entryCorrected()
{
    Bench bench("RMC");
    bench.boxes
        .expect(information(QStringLiteral("NMEA Sentence"),
                            QStringLiteral("The NMEA sentence consist of 3 characters.")))
        .expect(
            information(QStringLiteral("NMEA Sentence"),
                        QStringLiteral("The NMEA sentence can consist only Latin characters.")));
    bool stayedOpen = true;
    QVERIFY(inDialog<SntDlg>(bench.button("pushButton_add"), [&stayedOpen](SntDlg &entry) {
        for (const char *text : {"GG", "G1A", "GGA"}) {
            stayedOpen = stayedOpen && entry.isVisible();
            entry.findChild<QLineEdit *>()->setText(QString::fromLatin1(text));
            press(entry, QDialogButtonBox::Ok);
        }
    }));
    QVERIFY(stayedOpen);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QCOMPARE(namesOf(bench.list), QStringLiteral("RMC GGA"));
}

void tst_filterdlg::reusesTheLowestFreeSlot()
{
    Bench bench("RMC GGA GLL ZDA");
    for (const char *name : {"GLL", "GGA"}) {
        bench.boxes.expect(deleteQuestion(bench, QString::fromLatin1(name), QMessageBox::Ok));
        bench.table()->setCurrentCell(bench.rowOf(QString::fromLatin1(name)), 0);
        bench.button("pushButton_del")->click();
    }
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QCOMPARE(namesOf(bench.list), QStringLiteral("RMC - - ZDA"));
    QVERIFY(enter(bench, QStringLiteral("VTG")));
    QVERIFY(enter(bench, QStringLiteral("AAM")));
    QVERIFY(enter(bench, QStringLiteral("DBT")));
    QCOMPARE(namesOf(bench.list), QStringLiteral("RMC VTG AAM ZDA DBT"));
    bench.setChecked("AAM", true);
    bench.button("pushButton_ok")->click();
    QCOMPARE(bench.dialog.filterMask(), 0x4U);
}

void tst_filterdlg::asksForTheSentenceOfTheRow()
{
    Bench bench("RMC GGA - ZDA " + QString("- ").repeated(27) + "VDM");
    QSignalSpy asked(&bench.dialog, &FilterDlg::signal_reqest_list);
    const QList<QPair<QString, uint>> masks = {
        {"RMC", 0x1}, {"GGA", 0x2}, {"ZDA", 0x8}, {"VDM", 0x80000000}};
    for (const auto &row : masks) {
        bench.boxes.expect(deleteQuestion(bench, row.first, QMessageBox::Cancel));
        bench.table()->setCurrentCell(bench.rowOf(row.first), 0);
        bench.button("pushButton_del")->click();
        QCOMPARE(asked.size(), 1);
        QCOMPARE(asked.takeFirst().first().toUInt(), row.second);
    }
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_filterdlg::deletesAnUnused_data()
{
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("ok") << true << "RMC - ZDA" << QStringList({"RMC+", "ZDA"});
    QTest::newRow("cancel") << false << "RMC GGA ZDA" << QStringList({"GGA+", "RMC+", "ZDA"});
}

void tst_filterdlg::deletesAnUnused()
{
    QFETCH(bool, ok);
    Bench bench("RMC GGA ZDA", false, 0x3);
    bench.boxes.expect(
        deleteQuestion(bench, QStringLiteral("GGA"), ok ? QMessageBox::Ok : QMessageBox::Cancel));
    bench.button("pushButton_del")->click();
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QTEST(namesOf(bench.list), "after");
    QTEST(bench.rows(), "rows");
    QCOMPARE(bench.dialog.listChanged(), ok);
    QVERIFY(bench.dialog.isVisible());
}

void tst_filterdlg::deletesAUsed_data()
{
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("ok") << true << "RMC - ZDA" << QStringList({"RMC", "ZDA"});
    QTest::newRow("cancel") << false << "RMC GGA ZDA" << QStringList({"GGA", "RMC", "ZDA"});
}

void tst_filterdlg::deletesAUsed()
{
    QFETCH(bool, ok);
    Bench bench("RMC GGA ZDA");
    connect(&bench.dialog, &FilterDlg::signal_reqest_list, &bench.dialog, [&bench] {
        bench.dialog.setUsedList({QStringLiteral("one place"), QStringLiteral("another")});
    });
    QVERIFY(inDialog<DelSentenceDlg>(bench.button("pushButton_del"), [ok](DelSentenceDlg &ask) {
        QVERIFY(!ask.parentWidget());
        QCOMPARE(ask.findChild<QTextEdit *>()->toPlainText(),
                 QStringLiteral("one place\nanother\n"));
        QCOMPARE(ask.findChild<QLabel *>(QStringLiteral("label"))->text(),
                 QStringLiteral("NMEA sentence 'GGA' is used in other filters. \n"
                                "Are you sure want delete from all filters?"));
        press(ask, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QTEST(namesOf(bench.list), "after");
    QTEST(bench.rows(), "rows");
    QCOMPARE(bench.dialog.listChanged(), ok);
}

void tst_filterdlg::nothingToDelete_data()
{
    QTest::addColumn<QString>("names");

    QTest::newRow("no row at all") << "-";
    QTest::newRow("no current row") << "RMC";
    QTest::newRow("a row whose name is not in the list") << "RMC";
}

void tst_filterdlg::nothingToDelete()
{
    QFETCH(QString, names);
    Bench bench(names);
    bench.table()->setCurrentCell(-1, -1);
    if (QByteArray(QTest::currentDataTag()).contains("whose name")) {
        bench.dialog.addRow(QStringLiteral("ABC"), true);
        bench.table()->setCurrentCell(bench.rowOf(QStringLiteral("ABC")), 0);
    }
    const QStringList rows = bench.rows();
    QSignalSpy asked(&bench.dialog, &FilterDlg::signal_reqest_list);
    bench.button("pushButton_del")->click();
    QCOMPARE(asked.size(), 0);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QCOMPARE(bench.rows(), rows);
    QVERIFY(!bench.dialog.listChanged());
    // Nor does such a row put a bit into the mask.
    bench.button("pushButton_ok")->click();
    QCOMPARE(bench.dialog.filterMask(), 0U);
}

void tst_filterdlg::deletedRowLeavesNoBit()
{
    Bench bench("RMC GGA ZDA", true, 0x7);
    bench.boxes.expect(deleteQuestion(bench, QStringLiteral("GGA"), QMessageBox::Ok));
    bench.button("pushButton_del")->click();
    bench.button("pushButton_ok")->click();
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QCOMPARE(bench.dialog.filterMask(), 0x5U);
    QVERIFY(bench.dialog.listChanged());
}

QTEST_MAIN(tst_filterdlg)
#include "tst_filterdlg.moc"
