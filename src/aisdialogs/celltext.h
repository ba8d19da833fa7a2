#pragma once

#include <QString>

QT_BEGIN_NAMESPACE
class QFont;
class QTableWidgetItem;
QT_END_NAMESPACE

/*! What the tables of the AIS test have in common. */

/*! \a range in nautical miles with one decimal, filled with zeros to four characters: 07.3. */
QString rangeText(double range);

/*!
 * Makes the font of \a item smaller until its text fits its column: one that doesn't grow with the
 * screen.
 */
void fitText(QTableWidgetItem *item, const QFont &font, int columnWidth);

/*! Gives \a item the \a text if it has another one, and returns whether it had. */
bool writeText(QTableWidgetItem *item, const QString &text);
