#include "aisuser.h"

#include "aisdialogs/aistestdlg.h"

#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>

namespace {

QTableWidget *tableOf(const QWidget *window)
{
    const auto tables = window->findChildren<QTableWidget *>();
    for (QTableWidget *table : tables) {
        if (table->window() == window)
            return table;
    }
    return nullptr;
}

} // namespace

QString AisUser::step(aistestdlg *dialog)
{
    constexpr int watch = 30;
    constexpr int leave = 36;
    constexpr int view = 65;
    const int choice = m_dice.below(100);
    if (choice < watch)
        return QString();
    if (choice < leave) {
        dialog->close();
        return QStringLiteral("close");
    }
    QTableWidget *table = tableOf(dialog);
    if (choice < view && table)
        return pressView(table);
    QList<QWidget *> open;
    const auto windows = dialog->findChildren<QDialog *>();
    for (QDialog *window : windows) {
        if (window->isVisible())
            open += window;
    }
    return open.isEmpty() ? QString() : useWindow(m_dice.pick(open));
}

QString AisUser::pressView(QTableWidget *table)
{
    QList<QPair<int, int>> cells;
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            if (qobject_cast<QPushButton *>(table->cellWidget(row, column)))
                cells += {row, column};
        }
    }
    if (cells.isEmpty())
        return QString();
    const auto [row, column] = m_dice.pick(cells);
    table->scrollTo(table->model()->index(row, column));
    m_hand.click(table->cellWidget(row, column));
    return QStringLiteral("view row %1, column %2").arg(row).arg(column);
}

QString AisUser::useWindow(QWidget *window)
{
    constexpr int close = 25;
    constexpr int resize = 35;
    const QString name = QString::fromLatin1(window->metaObject()->className());
    const int choice = m_dice.below(100);
    if (choice < close) {
        window->close();
        return QStringLiteral("close ") + name;
    }
    if (choice < resize) {
        window->resize(m_dice.between(200, 900), m_dice.between(100, 700));
        return QStringLiteral("resize ") + name;
    }
    QTableWidget *table = tableOf(window);
    return name + QLatin1Char(' ') + (table ? useTable(table) : QString());
}

QString AisUser::useTable(QTableWidget *table)
{
    constexpr int sort = 40;
    if (m_dice.chance(sort)) {
        const QHeaderView *header = table->horizontalHeader();
        const int column = m_dice.below(qMax(1, header->count()));
        const QPoint place(header->sectionViewportPosition(column) + 5, header->height() / 2);
        m_hand.click(header->viewport(), place);
        return QStringLiteral("sort by column %1").arg(column);
    }
    if (table->rowCount() == 0)
        return QStringLiteral("nothing to choose");
    const int row = m_dice.below(table->rowCount());
    QTableWidgetItem *item = table->item(row, 0);
    if (!item)
        return QString();
    table->scrollToItem(item);
    m_hand.doubleClick(table->viewport(), table->visualItemRect(item).center());
    return QStringLiteral("double click row %1").arg(row);
}
