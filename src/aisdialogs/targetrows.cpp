#include "aisdialogs/targetrows.h"

#include "ais/qais.h"
#include "aisdialogs/celltext.h"

#include <QEvent>
#include <QHeaderView>
#include <QSignalBlocker>
#include <QTableWidget>

#include <algorithm>

namespace {

constexpr int mmsiColumn = 0;
constexpr int nameColumn = 1;
constexpr int rangeColumn = 2;

// From about here on a sort of the whole table costs less than moving one row after the other.
constexpr int fewMoves = 100;

QString nameOf(const QAisTarget &target)
{
    return target.m_staticValid ? QStringLiteral("%1").arg(target.m_shipName) : QString();
}

ListItem *itemAt(const QTableWidget *table, int row, int column)
{
    return static_cast<ListItem *>(table->item(row, column));
}

} // namespace

TargetRows::TargetRows(QTableWidget *table, QObject *parent) : QObject(parent), m_table(table)
{
    table->installEventFilter(this);
}

bool TargetRows::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show && !m_table->isSortingEnabled())
        m_table->setSortingEnabled(true);
    return QObject::eventFilter(watched, event);
}

TargetRows::Row TargetRows::makeRow(const QAisTarget &target)
{
    const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
    Row items;
    items.mmsi =
        new ListItem(QStringLiteral("%1").arg(target.m_mmsi), Qt::AlignCenter, m_placement);
    items.name = new ListItem(nameOf(target), left, m_placement);
    items.range = new ListItem(target.m_rangeValid ? rangeText(target.m_range) : QString(), left,
                               m_placement);
    items.range->markAsRange();
    m_rows.insert(target.m_mmsi, items);
    return items;
}

void TargetRows::putRow(int row, const Row &items)
{
    m_table->setItem(row, mmsiColumn, items.mmsi);
    m_table->setItem(row, nameColumn, items.name);
    m_table->setItem(row, rangeColumn, items.range);
}

// Each target goes in at the top, so the last one ends there, and all are sorted in one go.
void TargetRows::addAll(const QAis &ais)
{
    const int count = ais.targetCount();
    if (count == 0)
        return;
    m_table->setSortingEnabled(false);
    m_table->model()->insertRows(0, count);
    for (int i = 0; i < count; ++i)
        putRow(count - 1 - i, makeRow(*ais.targetAt(i)));
    m_table->setSortingEnabled(true);
}

void TargetRows::add(const QAisTarget &target)
{
    const Row items = makeRow(target);
    const int row = insertionRow(items);
    m_table->insertRow(row);
    putRow(row, items);
}

// A new row comes before those that are equal to it: it is put in at the top and then sorted in.
int TargetRows::insertionRow(const Row &items) const
{
    if (!m_table->isSortingEnabled())
        return 0;
    const int column = m_table->horizontalHeader()->sortIndicatorSection();
    const ListItem *const keys[] = {items.mmsi, items.name, items.range};
    const QString &key = keys[column]->shown();
    int first = 0;
    int count = m_table->rowCount();
    while (count > 0) {
        const int half = count / 2;
        if (precedes(itemAt(m_table, first + half, column)->shown(), key)) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first;
}

void TargetRows::update(const QAisTarget &target)
{
    const Row *const row = findRow(target.m_mmsi);
    if (!row)
        return;
    if (target.m_staticValid)
        write(row->name, nameColumn, nameOf(target));
    if (target.m_rangeValid && row->range->reads(target.m_range))
        return;
    write(row->range, rangeColumn, target.m_rangeValid ? rangeText(target.m_range) : QString());
    row->range->markAsRange();
}

void TargetRows::remove(uint mmsi)
{
    const Row *const found = findRow(mmsi);
    if (!found)
        return;
    const int row = m_table->row(found->mmsi);
    const auto isFound = [found](const Row &other) { return &other == found; };
    m_rows.erase(std::find_if(m_rows.find(mmsi), m_rows.end(), isFound));
    m_table->removeRow(row);
}

void TargetRows::refreshRanges(const QAis &ais)
{
    if (!ais.hasOwnPosition())
        return;
    QVector<Change> changes = changedRanges(ais);
    if (changes.isEmpty())
        return;
    if (!isSortedBy(rangeColumn)) {
        for (const Change &change : qAsConst(changes))
            change.item->setText(change.text);
    } else if (!m_table->isVisible()) {
        // Sorted when it is shown.
        m_table->setSortingEnabled(false);
        for (const Change &change : qAsConst(changes))
            change.item->setText(change.text);
    } else if (changes.size() <= fewMoves) {
        writeOneByOne(changes);
    } else {
        writeAndSort(changes);
    }
    for (const Change &change : qAsConst(changes))
        change.item->markAsRange();
}

QVector<TargetRows::Change> TargetRows::changedRanges(const QAis &ais) const
{
    QVector<Change> changes;
    for (auto it = m_rows.begin(); it != m_rows.end(); ++it) {
        const QAisTarget *target = ais.findTarget(it.key());
        const bool hasRange = target && target->m_rangeValid;
        ListItem *item = it->range;
        if (hasRange && item->reads(target->m_range))
            continue;
        const QString text = hasRange ? rangeText(target->m_range) : QString();
        if (text != item->shown())
            changes.append({item, text, 0});
    }
    return changes;
}

// Gives the order of a sort behind all changes: of rows that become equal, those that go up are
// moved from the top on and those that go down from the bottom on, so that none overtakes another.
void TargetRows::writeOneByOne(QVector<Change> &changes)
{
    for (Change &change : changes)
        change.row = m_table->row(change.item);
    const auto goesUp = [this](const Change &change) {
        return precedes(change.text, change.item->shown());
    };
    const auto down = std::partition(changes.begin(), changes.end(), goesUp);
    const auto isAbove = [](const Change &a, const Change &b) { return a.row < b.row; };
    const auto isBelow = [](const Change &a, const Change &b) { return a.row > b.row; };
    std::sort(changes.begin(), down, isAbove);
    std::sort(down, changes.end(), isBelow);
    for (const Change &change : qAsConst(changes))
        place(change.item, rangeColumn, change.text);
}

void TargetRows::writeAndSort(const QVector<Change> &changes)
{
    m_table->setSortingEnabled(false);
    for (const Change &change : changes)
        change.item->setText(change.text);
    m_table->setSortingEnabled(true);
}

// Deliberate: sorting is not stopped here, so in a descending table each row moves to the end while
// it is being written, and they end in reverse order.
void TargetRows::blankRanges()
{
    QVector<ListItem *> items;
    for (int row = 0; row < m_table->rowCount(); ++row)
        items.append(itemAt(m_table, row, rangeColumn));
    for (ListItem *item : qAsConst(items))
        write(item, rangeColumn, QString());
}

// More rows than one of an MMSI: the first counts.
const TargetRows::Row *TargetRows::findRow(uint mmsi) const
{
    const Row *found = nullptr;
    for (auto it = m_rows.find(mmsi); it != m_rows.end() && it.key() == mmsi; ++it) {
        if (!found || m_table->row(it->mmsi) < m_table->row(found->mmsi))
            found = &it.value();
    }
    return found;
}

bool TargetRows::isSortedBy(int column) const
{
    return m_table->isSortingEnabled()
        && m_table->horizontalHeader()->sortIndicatorSection() == column;
}

bool TargetRows::precedes(const QString &first, const QString &second) const
{
    const bool isAscending =
        m_table->horizontalHeader()->sortIndicatorOrder() == Qt::AscendingOrder;
    return isAscending ? first < second : second < first;
}

void TargetRows::write(ListItem *item, int column, const QString &text)
{
    if (item->shown() == text)
        return;
    if (isSortedBy(column))
        place(item, column, text);
    else
        item->setText(text);
}

// Going up, a row stops behind its equals, going down before them, as in a stable sort.
void TargetRows::place(ListItem *item, int column, const QString &text)
{
    const bool goesUp = precedes(text, item->shown());
    const int from = m_table->row(item);
    const int next = goesUp ? from - 1 : from + 1;
    const ListItem *neighbour = itemAt(m_table, next, column);
    const bool passes = neighbour
        && (goesUp ? precedes(text, neighbour->shown()) : precedes(neighbour->shown(), text));
    // The signals would have the table look for the place once more, and the view lay out and paint
    // all of it. What stands in sight is painted here.
    const QSignalBlocker quiet(m_table->model());
    if (!passes) {
        item->setText(text);
        updateRows(from, from);
        return;
    }
    // A table that sorts puts an item that it is given in its place.
    m_placement = {item, goesUp};
    m_table->takeItem(from, column);
    item->setText(text);
    m_table->setItem(from, column, item);
    m_placement = {};
    const int to = m_table->row(item);
    updateRows(qMin(from, to), qMax(from, to));
}

void TargetRows::updateRows(int first, int last)
{
    const int top = m_table->rowViewportPosition(first);
    const int bottom = m_table->rowViewportPosition(last) + m_table->rowHeight(last);
    QWidget *viewport = m_table->viewport();
    viewport->update(0, top, viewport->width(), bottom - top);
}
