#include "ais/qais.h"
#include "aisdialogs/aistargetlistdlg.h"
#include "aistalk.h"

#include <QHeaderView>
#include <QRandomGenerator>
#include <QScreen>
#include <QScrollBar>
#include <QTableWidget>
#include <QTest>
#include <QWindow>

#include <memory>

/*!
 * A target list against a table that is sorted as a whole behind each change: the same rows in the
 * same order, whatever happens, those that are equal included; and against a list painted anew.
 */
class tst_aistargetlist_order : public QObject
{
    Q_OBJECT

private slots:
    void asSortedAsAWhole_data();
    void asSortedAsAWhole();
    void fillsAsOneByOne_data();
    void fillsAsOneByOne();
    void paintedAsAnew();
};

namespace {

constexpr int columnCount = 3;

// The plain way: sorting off, write, sort, sorting on.
class SortedAsAWhole
{
public:
    SortedAsAWhole() : table(0, columnCount) { }

    QTableWidget table;

    void add(const QAisTarget &target)
    {
        const Stop stop(table);
        table.insertRow(0);
        for (int column = 0; column < columnCount; ++column)
            table.setItem(0, column, new QTableWidgetItem(QString()));
        table.item(0, 0)->setText(QString::number(target.m_mmsi));
        write(0, target);
    }

    void update(const QAisTarget &target)
    {
        const Stop stop(table);
        write(rowOf(target.m_mmsi), target);
    }

    void remove(uint mmsi)
    {
        const Stop stop(table);
        table.removeRow(rowOf(mmsi));
    }

    void refresh(const QAis &ais)
    {
        const Stop stop(table);
        for (int row = 0; row < table.rowCount(); ++row)
            writeRange(row, *ais.findTarget(table.item(row, 0)->text().toUInt()));
    }

private:
    struct Stop
    {
        explicit Stop(QTableWidget &of)
            : table(of), column(of.horizontalHeader()->sortIndicatorSection()),
              order(of.horizontalHeader()->sortIndicatorOrder())
        {
            table.setSortingEnabled(false);
        }
        ~Stop()
        {
            table.sortItems(column, order);
            table.setSortingEnabled(true);
        }

        QTableWidget &table;
        int column;
        Qt::SortOrder order;
    };

    int rowOf(uint mmsi) const
    {
        for (int row = 0; row < table.rowCount(); ++row) {
            if (table.item(row, 0)->text() == QString::number(mmsi))
                return row;
        }
        qFatal("no row of %u", mmsi);
        return -1;
    }

    void write(int row, const QAisTarget &target)
    {
        if (target.m_staticValid)
            table.item(row, 1)->setText(target.m_shipName);
        writeRange(row, target);
    }

    void writeRange(int row, const QAisTarget &target)
    {
        const QString text = target.m_rangeValid
            ? QStringLiteral("%1").arg(target.m_range, 4, 'f', 1, QLatin1Char('0'))
            : QString();
        table.item(row, 2)->setText(text);
    }
};

QStringList contents(const QTableWidget &table)
{
    QStringList rows;
    for (int row = 0; row < table.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < columnCount; ++column)
            cells += table.item(row, column)->text();
        rows += cells.join(QLatin1Char('|'));
    }
    return rows;
}

void hear(QAis &ais, const PositionReport &report)
{
    ais.decodeMessage(QAis::TargetMessage, 1, 1, 0, 0, report.payload().constData());
}

void hear(QAis &ais, const VoyageData &data)
{
    ais.decodeMessage(QAis::TargetMessage, 1, 1, 0, VoyageData::FillBits,
                      data.payload().constData());
}

// The table of a list.
QTableWidget *tableOf(const AisTargetListDlg &list)
{
    return list.findChild<QTableWidget *>(QStringLiteral("ais_list"));
}

// A world of few vessels in few ranges under few names, so that many rows are equal, and its moves.
class World
{
public:
    World(quint32 seed, int vessels) : list(nullptr), m_random(seed), m_vessels(vessels)
    {
        moveOwnShip();
        list.setAis(&ais);
        QObject::connect(&ais, &QAis::signalAddTarget, &ais, [this](uint, uint mmsi) {
            plain.add(*ais.findTarget(mmsi));
            list.slotAddTarget(ais.findTarget(mmsi));
        });
        QObject::connect(&ais, &QAis::signalUpdateTarget, &ais, [this](uint, uint mmsi) {
            plain.update(*ais.findTarget(mmsi));
            list.slotUpdateTarget(mmsi);
        });
    }

    void sort(int column, Qt::SortOrder order)
    {
        for (QTableWidget *table : {&plain.table, tableOf(list)})
            table->sortByColumn(column, order);
    }

    void step()
    {
        const quint32 mmsi = 100 + quint32(m_random.bounded(m_vessels));
        switch (m_random.bounded(9)) {
        case 0:
            hear(ais, AisTalk::named(mmsi, QByteArray(1, char('A' + m_random.bounded(5)))));
            return;
        case 1:
            removeOne();
            return;
        case 2:
            moveOwnShip();
            plain.refresh(ais);
            list.refreshRanges();
            return;
        case 3:
            sort(m_random.bounded(columnCount), Qt::SortOrder(m_random.bounded(2)));
            return;
        case 4:
            list.setVisible(m_random.bounded(4) != 0); // seldom in the background
            return;
        default:
            hear(ais, AisTalk::northOf(mmsi, m_random.bounded(12) / 10.0));
        }
    }

    QAis ais;
    SortedAsAWhole plain;
    AisTargetListDlg list;

private:
    void moveOwnShip()
    {
        QGpsKrd position;
        position.m_lat = m_random.bounded(5) / 10.0;
        ais.setOwnPosition(QAis::RouterSource, &position);
    }

    // From the tables only: the engine can't be told to forget one. It comes back with its next
    // report.
    void removeOne()
    {
        const QTableWidget *table = tableOf(list);
        if (table->rowCount() == 0)
            return;
        const uint mmsi = table->item(m_random.bounded(table->rowCount()), 0)->text().toUInt();
        plain.remove(mmsi);
        list.slotDeleteTarget(mmsi);
        plain.add(*ais.findTarget(mmsi));
        list.slotAddTarget(ais.findTarget(mmsi));
    }

    QRandomGenerator m_random;
    int m_vessels;
};

// What the user does to a table.
void use(QTableWidget &table, QRandomGenerator &random)
{
    switch (random.bounded(5)) {
    case 0:
        table.verticalScrollBar()->setValue(
            random.bounded(table.verticalScrollBar()->maximum() + 1));
        return;
    case 1:
        table.setColumnWidth(random.bounded(2), 40 + random.bounded(100));
        return;
    case 2:
        table.window()->resize(table.window()->width(), 120 + random.bounded(300));
        return;
    case 3:
        table.clearSelection();
        return;
    default:
        if (table.rowCount() > 0)
            table.setCurrentCell(random.bounded(table.rowCount()), random.bounded(columnCount));
    }
}

// What stands on the screen, as it was painted piece by piece.
QImage onScreen(const QWidget &window)
{
    return window.screen()->grabWindow(window.winId()).toImage();
}

// The same list, made and painted anew.
QImage paintedAnew(const AisTargetListDlg &list)
{
    const QTableWidget *table = tableOf(list);
    AisTargetListDlg anew(nullptr);
    QTableWidget *other = tableOf(anew);
    other->setSortingEnabled(false);
    other->setRowCount(table->rowCount());
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < columnCount; ++column)
            other->setItem(row, column, table->item(row, column)->clone());
    }
    const QHeaderView *header = table->horizontalHeader();
    other->sortByColumn(header->sortIndicatorSection(), header->sortIndicatorOrder());
    other->setSortingEnabled(true);
    for (int column = 0; column < columnCount - 1; ++column)
        other->setColumnWidth(column, table->columnWidth(column));
    anew.resize(list.size());
    anew.setAttribute(Qt::WA_DontShowOnScreen);
    anew.show();
    other->setCurrentCell(table->currentRow(), table->currentColumn(),
                          QItemSelectionModel::NoUpdate);
    const auto selected = table->selectionModel()->selectedRows();
    if (!selected.isEmpty())
        other->selectionModel()->select(other->model()->index(selected.first().row(), 0),
                                        QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QCoreApplication::processEvents();
    other->verticalScrollBar()->setValue(table->verticalScrollBar()->value());
    other->horizontalScrollBar()->setValue(table->horizontalScrollBar()->value());
    return anew.grab().toImage();
}

} // namespace

void tst_aistargetlist_order::asSortedAsAWhole_data()
{
    QTest::addColumn<int>("vessels");
    QTest::addColumn<int>("steps");

    QTest::newRow("few vessels") << 4 << 4000;
    QTest::newRow("some vessels") << 30 << 4000;
    QTest::newRow("many vessels") << 300 << 1500;
}

void tst_aistargetlist_order::asSortedAsAWhole()
{
    QFETCH(int, vessels);
    QFETCH(int, steps);
    World world(quint32(vessels), vessels);
    world.list.show();
    world.sort(2, Qt::AscendingOrder);
    for (int i = 0; i < steps; ++i) {
        world.step();
        QVERIFY(tableOf(world.list)->isSortingEnabled());
        QCOMPARE(contents(*tableOf(world.list)), contents(world.plain.table));
    }
}

void tst_aistargetlist_order::fillsAsOneByOne_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<Qt::SortOrder>("order");

    for (int column = 0; column < columnCount; ++column) {
        QTest::addRow("column %d, ascending", column) << column << Qt::AscendingOrder;
        QTest::addRow("column %d, descending", column) << column << Qt::DescendingOrder;
    }
}

void tst_aistargetlist_order::fillsAsOneByOne()
{
    QFETCH(int, column);
    QFETCH(Qt::SortOrder, order);
    World world(1, 40);
    world.sort(column, order);
    for (int i = 0; i < 300; ++i)
        hear(world.ais, AisTalk::northOf(100 + quint32(i * 7 % 40), i % 9));
    for (quint32 i = 0; i < 40; i += 3)
        hear(world.ais, AisTalk::named(100 + i, QByteArray(1, char('A' + i % 4))));

    SortedAsAWhole plain;
    AisTargetListDlg filled(nullptr);
    for (QTableWidget *table : {&plain.table, tableOf(filled)})
        table->sortByColumn(column, order);
    for (int i = 0; i < world.ais.targetCount(); ++i)
        plain.add(*world.ais.targetAt(i));
    filled.setAis(&world.ais);
    QCOMPARE(tableOf(filled)->rowCount(), 40);
    QCOMPARE(contents(*tableOf(filled)), contents(plain.table));
}

// Row numbers and titles included: the number of the selected row and the title of its column are
// bold.
void tst_aistargetlist_order::paintedAsAnew()
{
    constexpr int steps = 3000;
    constexpr int stepsAPicture = 100;
    constexpr int longestFrame = 5000; // ms
    World world(7, 60);
    QRandomGenerator random(8);
    world.list.show();
    // The focus is elsewhere: an active window has other colours.
    QWidget other;
    other.show();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QTableWidget *table = tableOf(world.list);
    for (int i = 1; i <= steps; ++i) {
        world.step();
        if (random.bounded(4) == 0)
            use(*table, random);
        if (random.bounded(3) == 0)
            QCoreApplication::processEvents();
        if (i % stepsAPicture != 0)
            continue;
        world.list.show();
        other.activateWindow();
        QTRY_VERIFY_WITH_TIMEOUT(table->updatesEnabled() && !world.list.isActiveWindow(),
                                 longestFrame);
        for (int k = 0; k < 5; ++k)
            QCoreApplication::processEvents();
        const QImage expected = paintedAnew(world.list);
        other.activateWindow();
        QTRY_VERIFY(!world.list.isActiveWindow());
        const QImage seen = onScreen(world.list);
        if (seen.convertToFormat(QImage::Format_RGB32)
            == expected.convertToFormat(QImage::Format_RGB32))
            continue;
        seen.save(QStringLiteral("painted-seen.png"));
        expected.save(QStringLiteral("painted-expected.png"));
        QFAIL(qPrintable(QStringLiteral("step %1: see painted-seen.png").arg(i)));
    }
}

QTEST_MAIN(tst_aistargetlist_order)
#include "tst_aistargetlist_order.moc"
