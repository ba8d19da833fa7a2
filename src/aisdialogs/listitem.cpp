#include "aisdialogs/listitem.h"

#include <cmath>

namespace {

constexpr double noRange = std::numeric_limits<double>::quiet_NaN();

} // namespace

ListItem::ListItem(const QString &text, Qt::Alignment alignment, const Placement &placement)
    : QTableWidgetItem(UserType), m_placement(placement)
{
    ListItem::setData(Qt::DisplayRole, text);
    setTextAlignment(int(alignment));
}

bool ListItem::operator<(const QTableWidgetItem &other) const
{
    const auto &item = static_cast<const ListItem &>(other);
    const int order = m_shown.compare(item.m_shown);
    if (order != 0)
        return order < 0;
    // The search for the place of an item asks "item < placed" in an ascending table, "placed <
    // item" in a descending one, and goes on behind this item if it is told yes.
    const bool isPlacing = m_placement.item == this || m_placement.item == &item;
    return isPlacing && m_placement.isBehindEquals;
}

void ListItem::setData(int role, const QVariant &value)
{
    if (role == Qt::DisplayRole || role == Qt::EditRole) {
        m_shown = value.toString();
        m_range = noRange;
    }
    QTableWidgetItem::setData(role, value);
}

bool ListItem::reads(double range) const
{
    // Half a step of the text, less what rounding may do. Never true of what is not a number.
    constexpr double tolerance = 0.0499;
    return std::abs(range - m_range) < tolerance;
}

void ListItem::markAsRange()
{
    bool isNumber = false;
    const double range = m_shown.toDouble(&isNumber);
    m_range = isNumber ? range : noRange;
}
