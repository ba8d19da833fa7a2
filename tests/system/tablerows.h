#pragma once

#include <QImage>
#include <QVector>

/*! A row of a table on the screen, without the lines of the grid: from its top, so many pixels. */
struct TableRow
{
    int top = 0;
    int height = 0;
};

/*!
 * The rows of a table with a grid, of whose height \a strip shows a part without any text. The
 * head of the table and the empty ground below the last row are none.
 */
QVector<TableRow> tableRows(const QImage &strip);

/*! The lines between the columns of a table, seen in \a line, one pixel high, above any text. */
QVector<int> columnLines(const QImage &line);
