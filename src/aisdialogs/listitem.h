#pragma once

#include <QString>
#include <QTableWidgetItem>

#include <limits>

/*!
 * A cell of the target list. It is ordered by its text, an empty one first, and knows the range
 * that its text stands for, so that a range that would read the same needs no text.
 */
class ListItem : public QTableWidgetItem
{
public:
    /*!
     * Where to put the one item that is being moved. Of items that compare equal it goes behind the
     * last or before the first in the order of the table, whichever way that is sorted.
     */
    struct Placement
    {
        const ListItem *item = nullptr;
        bool isBehindEquals = false;
    };

    /*! \a placement is that of the whole table and outlives the item. */
    ListItem(const QString &text, Qt::Alignment alignment, const Placement &placement);

    bool operator<(const QTableWidgetItem &other) const override;
    void setData(int role, const QVariant &value) override;

    /*! The text of the cell. */
    const QString &shown() const { return m_shown; }

    /*! Whether the text is certainly that of \a range, in nautical miles. */
    bool reads(double range) const;

    /*! Takes the text for a range. A text that is set afterwards is none until told so again. */
    void markAsRange();

private:
    const Placement &m_placement;
    QString m_shown;
    double m_range = std::numeric_limits<double>::quiet_NaN();
};
