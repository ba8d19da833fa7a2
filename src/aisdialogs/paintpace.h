#pragma once

#include <QObject>
#include <QTimer>

QT_BEGIN_NAMESPACE
class QTableWidget;
QT_END_NAMESPACE

/*!
 * Paints a table whose rows change all the time at most once a second. A table paints all of itself
 * whenever it is sorted, and the eye follows no faster. What the user does shows at once.
 *
 * Nothing but the painting waits: texts, order and signals are those of any table.
 */
class PaintPace : public QObject
{
    Q_OBJECT

public:
    /*! Lives as long as \a table, whose child it is. */
    explicit PaintPace(QTableWidget *table);

    /*!
     * To be called before rows change. The first change after a quiet while is painted at once,
     * those that follow wait until the second is over.
     */
    void beginChange();

    /*! Paints what has been waiting. */
    void paintNow();

private:
    QTableWidget *m_table;
    QTimer m_frame; //!< runs from one painting to the next
};
