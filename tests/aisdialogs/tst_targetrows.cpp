#include "ais/qais.h"
#include "aisdialogs/celltext.h"
#include "aisdialogs/targetrows.h"
#include "aistalk.h"

#include <QHeaderView>
#include <QRandomGenerator>
#include <QTableWidget>
#include <QTest>

#include <memory>

/*!
 * The rows of a target list against a table that is sorted as a whole behind each change: the same
 * rows in the same order, whatever happens, those that are equal included.
 */
class tst_targetrows : public QObject
{
    Q_OBJECT

private slots:
    void asSortedAsAWhole_data();
    void asSortedAsAWhole();
    void addsAllAsOneByOne_data();
    void addsAllAsOneByOne();
    void sameRangeNeedsNoText_data();
    void sameRangeNeedsNoText();
    void textOfOthersIsReplaced();
    void rowOfNobody();
    void sameMmsiTwice();
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

// A table as the window has it.
struct Bench
{
    Bench() : table(0, columnCount), rows(&table)
    {
        table.setSortingEnabled(true);
        table.resize(300, 300);
    }

    QTableWidget table;
    TargetRows rows;
};

// A world of few vessels in few ranges under few names, so that many rows are equal, and its moves.
class World
{
public:
    World(quint32 seed, int vessels) : m_random(seed), m_vessels(vessels)
    {
        moveOwnShip();
        QObject::connect(&ais, &QAis::signalAddTarget, &ais, [this](uint, uint mmsi) {
            plain.add(*ais.findTarget(mmsi));
            bench.rows.add(*ais.findTarget(mmsi));
        });
        QObject::connect(&ais, &QAis::signalUpdateTarget, &ais, [this](uint, uint mmsi) {
            plain.update(*ais.findTarget(mmsi));
            bench.rows.update(*ais.findTarget(mmsi));
        });
    }

    void sort(int column, Qt::SortOrder order)
    {
        for (QTableWidget *table : {&plain.table, &bench.table})
            table->sortByColumn(column, order);
    }

    void step()
    {
        const quint32 mmsi = 100 + quint32(m_random.bounded(m_vessels));
        switch (m_random.bounded(8)) {
        case 0:
            hear(ais, AisTalk::named(mmsi, QByteArray(1, char('A' + m_random.bounded(5)))));
            return;
        case 1:
            removeOne();
            return;
        case 2:
            moveOwnShip();
            plain.refresh(ais);
            bench.rows.refreshRanges(ais);
            return;
        case 3:
            sort(m_random.bounded(columnCount), Qt::SortOrder(m_random.bounded(2)));
            return;
        default:
            hear(ais, AisTalk::northOf(mmsi, m_random.bounded(12) / 10.0));
        }
    }

    QAis ais;
    SortedAsAWhole plain;
    Bench bench;

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
        if (bench.table.rowCount() == 0)
            return;
        const int row = m_random.bounded(bench.table.rowCount());
        const uint mmsi = bench.table.item(row, 0)->text().toUInt();
        plain.remove(mmsi);
        bench.rows.remove(mmsi);
        plain.add(*ais.findTarget(mmsi));
        bench.rows.add(*ais.findTarget(mmsi));
    }

    QRandomGenerator m_random;
    int m_vessels;
};

} // namespace

void tst_targetrows::asSortedAsAWhole_data()
{
    QTest::addColumn<int>("vessels");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<int>("steps");

    QTest::newRow("few vessels") << 4 << true << 4000;
    QTest::newRow("some vessels") << 30 << true << 4000;
    // Whose refresh sorts the whole table.
    QTest::newRow("many vessels") << 300 << true << 1500;
}

void tst_targetrows::asSortedAsAWhole()
{
    QFETCH(int, vessels);
    QFETCH(bool, visible);
    QFETCH(int, steps);
    World world(quint32(vessels), vessels);
    world.bench.table.setVisible(visible);
    world.sort(2, Qt::AscendingOrder);
    for (int i = 0; i < steps; ++i) {
        world.step();
        QVERIFY(world.bench.table.isSortingEnabled());
        QCOMPARE(contents(world.bench.table), contents(world.plain.table));
    }
}

void tst_targetrows::addsAllAsOneByOne_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<Qt::SortOrder>("order");

    for (int column = 0; column < columnCount; ++column) {
        QTest::addRow("column %d, ascending", column) << column << Qt::AscendingOrder;
        QTest::addRow("column %d, descending", column) << column << Qt::DescendingOrder;
    }
}

void tst_targetrows::addsAllAsOneByOne()
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
    Bench bench;
    for (QTableWidget *table : {&plain.table, &bench.table})
        table->sortByColumn(column, order);
    for (int i = 0; i < world.ais.targetCount(); ++i)
        plain.add(*world.ais.targetAt(i));
    bench.rows.addAll(world.ais);
    QCOMPARE(bench.table.rowCount(), 40);
    QCOMPARE(contents(bench.table), contents(plain.table));
}

void tst_targetrows::sameRangeNeedsNoText_data()
{
    QTest::addColumn<double>("shown");

    for (const double shown : {0.0, 0.1, 7.3, 9.9, 10.0, 12.3, 99.9, 100.0, 1234.5})
        QTest::addRow("%.1f", shown) << shown;
}

// Around each step the cell tells in exact agreement with the text whether it has to be written.
void tst_targetrows::sameRangeNeedsNoText()
{
    QFETCH(double, shown);
    const ListItem::Placement placement;
    ListItem item(rangeText(shown), Qt::AlignLeft, placement);
    QVERIFY(!item.reads(shown));
    item.markAsRange();
    QVERIFY(item.reads(shown));
    for (int i = -2000; i <= 2000; ++i) {
        const double range = qMax(0.0, shown + i / 20000.0);
        if (item.reads(range))
            QCOMPARE(rangeText(range), rangeText(shown));
    }
    item.setText(QStringLiteral("x"));
    QVERIFY(!item.reads(shown));
    item.setText(QString());
    item.markAsRange();
    QVERIFY(!item.reads(0.0));
    QVERIFY(!item.reads(qQNaN()));
}

void tst_targetrows::textOfOthersIsReplaced()
{
    World world(1, 1);
    hear(world.ais, AisTalk::northOf(100, 7));
    const QString range = world.bench.table.item(0, 2)->text();
    world.bench.table.item(0, 2)->setText(QStringLiteral("x"));
    hear(world.ais, AisTalk::northOf(100, 7));
    QCOMPARE(world.bench.table.item(0, 2)->text(), range);
}

void tst_targetrows::rowOfNobody()
{
    World world(1, 1);
    QAisTarget stranger;
    stranger.m_mmsi = 555;
    stranger.m_rangeValid = true;
    stranger.m_range = 3;
    world.bench.rows.add(stranger);
    QCOMPARE(contents(world.bench.table), QStringList("555||03.0"));
    world.bench.rows.refreshRanges(world.ais);
    QCOMPARE(contents(world.bench.table), QStringList("555||"));
    world.bench.rows.remove(556);
    QCOMPARE(world.bench.table.rowCount(), 1);
}

void tst_targetrows::sameMmsiTwice()
{
    Bench bench;
    QAisTarget target;
    target.m_mmsi = 555;
    target.m_rangeValid = true;
    bench.table.sortByColumn(2, Qt::AscendingOrder);
    for (const double range : {3.0, 5.0}) {
        target.m_range = range;
        bench.rows.add(target);
    }
    target.m_range = 7;
    bench.rows.update(target); // the first row, which is the last one then
    QCOMPARE(contents(bench.table), QStringList({"555||05.0", "555||07.0"}));
    bench.rows.remove(555);
    QCOMPARE(contents(bench.table), QStringList({"555||07.0"}));
    bench.rows.remove(555);
    QCOMPARE(bench.table.rowCount(), 0);
}

QTEST_MAIN(tst_targetrows)
#include "tst_targetrows.moc"
