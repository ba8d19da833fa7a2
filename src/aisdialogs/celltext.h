#pragma once

#include <QString>

#include <QTableWidgetItem>

QT_BEGIN_NAMESPACE
class QDialog;
class QTableWidget;
QT_END_NAMESPACE

/*! What the tables of the AIS test have in common. */

/*!
 * Fixes \a window at its design size times ui_scale() and scales its \a table: alone of all frames,
 * since the headers are frames, too, and the table places them.
 */
void scaleTableWindow(QDialog *window, QTableWidget *table);

/*! \a range in nautical miles with one decimal, filled with zeros to four characters: 07.3. */
QString rangeText(double range);

/*! A cell, or a title, whose text is its tool tip, too, while its column is too narrow for it. */
class ElidedItem : public QTableWidgetItem
{
public:
    using QTableWidgetItem::QTableWidgetItem;
    explicit ElidedItem(const QTableWidgetItem &other) : QTableWidgetItem(other) { }

    QVariant data(int role) const override;

private:
    bool isElided() const;
};

/*!
 * Elides the titles of \a table that don't fit their columns. Otherwise they would reach under the
 * arrow that shows the order, and out of their column on the left.
 */
void elideTitles(QTableWidget *table);

/*! Gives \a item the \a text if it has another one, and returns whether it had. */
bool writeText(QTableWidgetItem *item, const QString &text);
