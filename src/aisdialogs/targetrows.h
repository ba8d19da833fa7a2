#pragma once

#include "aisdialogs/listitem.h"

#include <QMultiHash>
#include <QObject>
#include <QVector>

QT_BEGIN_NAMESPACE
class QTableWidget;
QT_END_NAMESPACE

class QAis;
class QAisTarget;

/*!
 * The rows of a target list: columns MMSI, name and range, in the order that the user has chosen.
 *
 * The order is what a stable sort of the whole table behind each change would give, but only the
 * rows that change move, and only what is in sight is painted. A table that nobody can see isn't
 * sorted when all its ranges change, but when it is shown.
 */
class TargetRows : public QObject
{
    Q_OBJECT

public:
    /*! Works on \a table, whose rows nobody else adds or removes; not to be used without it. */
    explicit TargetRows(QTableWidget *table, QObject *parent = nullptr);

    /*! As add() for each target of \a ais in the order of its list. */
    void addAll(const QAis &ais);

    void add(const QAisTarget &target);

    /*! Writes the texts of \a target in its row, if it has one. */
    void update(const QAisTarget &target);

    void remove(uint mmsi);

    /*! Writes all ranges as \a ais knows them by now. */
    void refreshRanges(const QAis &ais);

    /*! Empties the ranges, one after the other, while sorting goes on. */
    void blankRanges();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Row
    {
        ListItem *mmsi = nullptr;
        ListItem *name = nullptr;
        ListItem *range = nullptr;
    };

    /*! A range that is to be written, and the row in which it stands. */
    struct Change
    {
        ListItem *item = nullptr;
        QString text;
        int row = 0;
    };

    Row makeRow(const QAisTarget &target);
    void putRow(int row, const Row &items);
    const Row *findRow(uint mmsi) const;

    bool isSortedBy(int column) const;
    bool precedes(const QString &first, const QString &second) const;
    int insertionRow(const Row &items) const;

    void write(ListItem *item, int column, const QString &text);
    void place(ListItem *item, int column, const QString &text);
    void updateRows(int first, int last);
    QVector<Change> changedRanges(const QAis &ais) const;
    void writeOneByOne(QVector<Change> &changes);
    void writeAndSort(const QVector<Change> &changes);

    QTableWidget *m_table;
    ListItem::Placement m_placement;
    QMultiHash<uint, Row> m_rows; //!< by MMSI
};
