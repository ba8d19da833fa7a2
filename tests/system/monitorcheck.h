#pragma once

#include "likeness.h"

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>
#include <QVector>

/*!
 * Compares the lines in the tool's monitor with those that it was sent, by the heads of the
 * sentences: equal heads look alike, and different ones don't.
 *
 * It remembers what a head looks like, so that a line seen today is known again tomorrow.
 */
class MonitorCheck
{
public:
    /*!
     * Compares \a column, the left end of the list from its white margin on, with the last of
     * \a lines. Returns an empty text if all is well.
     */
    QString problem(const QImage &column, const QList<QByteArray> &lines);

private:
    QVector<Sight> m_known; // one of each head
};
