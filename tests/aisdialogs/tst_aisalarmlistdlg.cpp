#include "ais/qais.h"
#include "aisdialogs/aisalarmlistdlg.h"

#include <QHeaderView>
#include <QSignalSpy>
#include <QSizeGrip>
#include <QTableWidget>
#include <QTest>
#include <QTextDocument>

#include <memory>

/*! The alarms of one input port. */
class tst_aisalarmlistdlg : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void texts_data();
    void texts();
    void unknownAlarms();
    void tellsWhetherItWrote();
    void writesOnChangeOnly();
    void rightRowThoughItMoves_data();
    void rightRowThoughItMoves();
    void startsInOrderOfFirstReports();
    void sortSurvivesANewRow();
    void rebuilds();
    void rebuildsAFilledTable();
    void newRowsAreAppended();
    void toolTips_data();
    void toolTips();
    void toolTipIsPlainText();
    void rebuildsAsManyAsAPortCanHave();
    void resizes_data();
    void resizes();
    void resizingGoesOnInTheDialog();

private:
    void alarm(quint8 id, bool condition, bool acknowledged, const QString &text, int hour = 12,
               int minute = 5, int second = 34)
    {
        m_ais->updateAlarm(id, quint8(hour), quint8(minute), quint8(second), condition,
                           acknowledged, text);
    }
    QTableWidget *table() const { return m_list->findChild<QTableWidget *>("ais_alarm_list"); }
    QStringList column(int number) const;
    QStringList row(int number) const;

    std::unique_ptr<QAis> m_ais;
    std::unique_ptr<AisAlarmListDlg> m_list;
};

namespace {

const QString text = QStringLiteral("AIS: Tx malfunction*");

} // namespace

void tst_aisalarmlistdlg::init()
{
    m_ais = std::make_unique<QAis>();
    m_ais->setPortNumber(9);
    m_list = std::make_unique<AisAlarmListDlg>(nullptr);
    m_list->setAis(m_ais.get());
    m_list->show();
}

QStringList tst_aisalarmlistdlg::column(int number) const
{
    QStringList cells;
    for (int i = 0; i < table()->rowCount(); ++i)
        cells += table()->item(i, number)->text();
    return cells;
}

QStringList tst_aisalarmlistdlg::row(int number) const
{
    QStringList cells;
    for (int i = 0; i < table()->columnCount(); ++i)
        cells += table()->item(number, i)->text();
    return cells;
}

void tst_aisalarmlistdlg::texts_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<bool>("condition");
    QTest::addColumn<bool>("acknowledged");
    QTest::addColumn<QTime>("time");
    QTest::addColumn<QStringList>("cells");

    QTest::newRow("exceeded, not acknowledged")
        << 5 << true << false << QTime(12, 5, 34)
        << QStringList({"5", "12:05:34", "exceeded", "no", text});
    QTest::newRow("not exceeded, acknowledged")
        << 255 << false << true << QTime(0, 0, 0)
        << QStringList({"255", "00:00:00", "not exceeded", "yes", text});
    QTest::newRow("exceeded, acknowledged")
        << 0 << true << true << QTime(23, 59, 59)
        << QStringList({"0", "23:59:59", "exceeded", "yes", text});
    QTest::newRow("not exceeded, not acknowledged")
        << 26 << false << false << QTime(1, 2, 3)
        << QStringList({"26", "01:02:03", "not exceeded", "no", text});
}

void tst_aisalarmlistdlg::texts()
{
    QFETCH(int, id);
    QFETCH(bool, condition);
    QFETCH(bool, acknowledged);
    QFETCH(QTime, time);
    alarm(quint8(id), condition, acknowledged, text, time.hour(), time.minute(), time.second());
    QVERIFY(m_list->showAlarm(quint8(id)));
    QCOMPARE(table()->rowCount(), 1);
    QTEST(row(0), "cells");
    for (int i = 0; i < 4; ++i)
        QCOMPARE(table()->item(0, i)->textAlignment(), int(Qt::AlignCenter));
    QCOMPARE(table()->item(0, 4)->textAlignment(), int(Qt::AlignLeft | Qt::AlignVCenter));
}

void tst_aisalarmlistdlg::unknownAlarms()
{
    QVERIFY(!m_list->showAlarm(5));
    AisAlarmListDlg withoutPort(nullptr);
    QVERIFY(!withoutPort.showAlarm(5));
    withoutPort.rebuild();
    QCOMPARE(table()->rowCount(), 0);
}

void tst_aisalarmlistdlg::tellsWhetherItWrote()
{
    alarm(5, true, false, text);
    QVERIFY(m_list->showAlarm(5));
    QVERIFY(!m_list->showAlarm(5));
    alarm(5, true, true, text);
    QVERIFY(m_list->showAlarm(5));
    alarm(5, true, true, text, 13);
    QVERIFY(m_list->showAlarm(5));
    QVERIFY(!m_list->showAlarm(5));
}

void tst_aisalarmlistdlg::writesOnChangeOnly()
{
    alarm(5, true, false, text);
    m_list->showAlarm(5);
    QSignalSpy written(table(), &QTableWidget::cellChanged);
    m_list->showAlarm(5);
    QCOMPARE(written.size(), 0);
    alarm(5, true, true, text);
    m_list->showAlarm(5);
    QCOMPARE(written.size(), 1);
    QCOMPARE(written.at(0).at(1).toInt(), 3);
}

void tst_aisalarmlistdlg::rightRowThoughItMoves_data()
{
    QTest::addColumn<int>("sortColumn");
    QTest::addColumn<Qt::SortOrder>("order");

    for (int column = 0; column < 5; ++column) {
        QTest::addRow("column %d, ascending", column) << column << Qt::AscendingOrder;
        QTest::addRow("column %d, descending", column) << column << Qt::DescendingOrder;
    }
}

// Sorting stays on while an existing row is written, so that it can move under the writer.
void tst_aisalarmlistdlg::rightRowThoughItMoves()
{
    QFETCH(int, sortColumn);
    QFETCH(Qt::SortOrder, order);
    table()->sortByColumn(sortColumn, order);
    alarm(1, false, false, QStringLiteral("B*"), 10);
    alarm(2, false, true, QStringLiteral("D*"), 11);
    alarm(3, true, false, QStringLiteral("F*"), 12);
    for (quint8 id = 1; id <= 3; ++id)
        m_list->showAlarm(id);
    alarm(2, true, false, QStringLiteral("G*"), 13);
    m_list->showAlarm(2);
    alarm(3, false, true, QStringLiteral("A*"), 9);
    m_list->showAlarm(3);

    QVERIFY(table()->isSortingEnabled());
    QSet<QStringList> rows;
    for (int i = 0; i < 3; ++i)
        rows += row(i);
    QCOMPARE(rows,
             QSet<QStringList>({{"1", "10:05:34", "not exceeded", "no", "B*"},
                                {"2", "13:05:34", "exceeded", "no", "G*"},
                                {"3", "09:05:34", "not exceeded", "yes", "A*"}}));
    QStringList keys = column(sortColumn);
    if (order == Qt::DescendingOrder)
        std::reverse(keys.begin(), keys.end());
    QVERIFY(std::is_sorted(keys.begin(), keys.end()));
}

// Sorting is on, but nobody has chosen a column yet.
void tst_aisalarmlistdlg::startsInOrderOfFirstReports()
{
    for (const quint8 id : {quint8(2), quint8(3), quint8(1)}) {
        alarm(id, true, false, text);
        m_list->showAlarm(id);
    }
    QVERIFY(table()->isSortingEnabled());
    QCOMPARE(column(0), QStringList({"2", "3", "1"}));
    m_list->rebuild();
    QCOMPARE(column(0), QStringList({"2", "3", "1"}));
}

void tst_aisalarmlistdlg::sortSurvivesANewRow()
{
    table()->sortByColumn(4, Qt::DescendingOrder);
    for (quint8 id = 1; id <= 3; ++id) {
        alarm(id, true, true, QString(QChar('A' + id)));
        m_list->showAlarm(id);
    }
    QCOMPARE(column(4), QStringList({"D", "C", "B"}));
    QCOMPARE(table()->horizontalHeader()->sortIndicatorSection(), 4);
    QCOMPARE(table()->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
}

void tst_aisalarmlistdlg::rebuilds()
{
    m_list->rebuild();
    QCOMPARE(table()->rowCount(), 0);
    for (const quint8 id : {quint8(7), quint8(3), quint8(9)})
        alarm(id, true, false, text);
    table()->sortByColumn(0, Qt::AscendingOrder);
    m_list->rebuild();
    QCOMPARE(column(0), QStringList({"3", "7", "9"}));
    m_list->rebuild();
    QCOMPARE(column(0), QStringList({"3", "7", "9"}));
}

// Emptied first. Of rows that are equal by the column sorted by, the last one comes first then.
void tst_aisalarmlistdlg::rebuildsAFilledTable()
{
    for (const quint8 id : {quint8(7), quint8(3), quint8(9)})
        alarm(id, true, false, text);
    m_list->rebuild();
    table()->sortByColumn(0, Qt::DescendingOrder);
    table()->sortByColumn(2, Qt::AscendingOrder);
    QCOMPARE(column(0), QStringList({"9", "7", "3"}));
    const QSignalSpy removed(table()->model(), &QAbstractItemModel::rowsRemoved);
    m_list->rebuild();
    QCOMPARE(removed.size(), 1);
    QCOMPARE(removed.at(0).at(1).toInt(), 0);
    QCOMPARE(removed.at(0).at(2).toInt(), 2);
    QCOMPARE(column(0), QStringList({"9", "3", "7"}));
}

void tst_aisalarmlistdlg::newRowsAreAppended()
{
    table()->sortByColumn(0, Qt::DescendingOrder);
    const QSignalSpy inserted(table()->model(), &QAbstractItemModel::rowsInserted);
    for (const quint8 id : {quint8(7), quint8(3), quint8(9)}) {
        alarm(id, true, false, text);
        m_list->showAlarm(id);
    }
    QCOMPARE(inserted.size(), 3);
    for (int i = 0; i < inserted.size(); ++i)
        QCOMPARE(inserted.at(i).at(1).toInt(), i);
    QCOMPARE(column(0), QStringList({"9", "7", "3"}));
}

void tst_aisalarmlistdlg::toolTips_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("whole");

    QTest::newRow("id") << 0 << "255";
    QTest::newRow("time") << 1 << "12:05:34";
    QTest::newRow("condition") << 2 << "not exceeded";
    QTest::newRow("acknowledged") << 3 << "yes";
    QTest::newRow("text") << 4 << text;
}

// While its column is too narrow, and only then.
void tst_aisalarmlistdlg::toolTips()
{
    QFETCH(int, column);
    QFETCH(QString, whole);
    alarm(255, false, true, text);
    m_list->showAlarm(255);
    m_list->resize(1000, 222);
    table()->horizontalHeader()->setStretchLastSection(false);
    table()->horizontalHeader()->setMinimumSectionSize(15);
    const QFont font = table()->item(0, column)->font();
    const QTableWidgetItem *title = table()->horizontalHeaderItem(column);
    table()->setColumnWidth(column, 20);
    QCOMPARE(table()->item(0, column)->toolTip(), whole);
    QCOMPARE(title->toolTip(), title->text());
    table()->setColumnWidth(column, 300);
    QCOMPARE(table()->item(0, column)->toolTip(), QString());
    QCOMPARE(title->toolTip(), QString());
    QCOMPARE(table()->item(0, column)->text(), whole);
    QCOMPARE(table()->item(0, column)->font(), font);
}

void tst_aisalarmlistdlg::toolTipIsPlainText()
{
    alarm(5, false, true, QStringLiteral("<b>AIS</b>: all & sundry*"));
    m_list->showAlarm(5);
    table()->horizontalHeader()->setStretchLastSection(false);
    table()->setColumnWidth(4, 40);
    QTextDocument shown;
    shown.setHtml(table()->item(0, 4)->toolTip());
    QCOMPARE(shown.toPlainText(), QStringLiteral("<b>AIS</b>: all & sundry*"));
}

void tst_aisalarmlistdlg::rebuildsAsManyAsAPortCanHave()
{
    for (int id = 0; id < 256; ++id)
        alarm(quint8(id), id % 2, id % 3, text, id % 24, id % 60, id % 60);
    m_list->rebuild();
    QCOMPARE(table()->rowCount(), 256);
    for (int row = 0; row < table()->rowCount(); ++row) {
        for (int column = 0; column < table()->columnCount(); ++column)
            QVERIFY(table()->item(row, column));
    }
}

void tst_aisalarmlistdlg::resizes_data()
{
    QTest::addColumn<QSize>("window");
    QTest::addColumn<QSize>("list");

    QTest::newRow("larger") << QSize(800, 400) << QSize(798, 394);
    QTest::newRow("smaller") << QSize(300, 100) << QSize(298, 94);
    QTest::newRow("lowest") << QSize(300, 10) << QSize(298, 4);
    QTest::newRow("too low: nothing happens") << QSize(300, 9) << QSize(618, 214);
    QTest::newRow("narrowest") << QSize(1, 100) << QSize(1, 94);
}

void tst_aisalarmlistdlg::resizes()
{
    QFETCH(QSize, window);
    m_list->resize(620, 220);
    QCOMPARE(table()->size(), QSize(618, 214));
    m_list->resize(window);
    QCOMPARE(m_list->size(), window);
    QTEST(table()->size(), "list");
}

// A dialog's own handler moves the grip to the corner.
void tst_aisalarmlistdlg::resizingGoesOnInTheDialog()
{
    m_list->setSizeGripEnabled(true);
    const auto *grip = m_list->findChild<QSizeGrip *>();
    m_list->resize(500, 300);
    QCOMPARE(grip->geometry().bottomRight(), QPoint(499, 299));
    m_list->resize(500, 9);
    QCOMPARE(grip->geometry().bottom(), 299);
}

QTEST_MAIN(tst_aisalarmlistdlg)
#include "tst_aisalarmlistdlg.moc"
