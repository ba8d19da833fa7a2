#pragma once

#include <QString>

QT_BEGIN_NAMESPACE
class QDialog;
class QFont;
class QTableWidget;
class QTableWidgetItem;
QT_END_NAMESPACE

/*! What the tables of the AIS test have in common. */

/*!
 * Fixes \a window at its design size times ui_scale() and scales its \a table: alone of all frames,
 * since the headers are frames, too, and the table places them.
 */
void scaleTableWindow(QDialog *window, QTableWidget *table);

/*! \a range in nautical miles with one decimal, filled with zeros to four characters: 07.3. */
QString rangeText(double range);

/*!
 * Makes the font of \a item smaller until its text fits its column: one that doesn't grow with the
 * screen.
 */
void fitText(QTableWidgetItem *item, const QFont &font, int columnWidth);

/*! Gives \a item the \a text if it has another one, and returns whether it had. */
bool writeText(QTableWidgetItem *item, const QString &text);
