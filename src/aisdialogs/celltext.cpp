#include "aisdialogs/celltext.h"

#include "widgets/screenarea.h"
#include "widgets/uiscale.h"

#include <QDialog>
#include <QHeaderView>
#include <QPainter>
#include <QProxyStyle>
#include <QTableWidget>
#include <QTextDocument>

namespace {

// Of the titles of a header. Qt's own way leaves room for more than the arrow.
class ElidingStyle : public QProxyStyle
{
public:
    void drawItemText(QPainter *painter, const QRect &rect, int flags, const QPalette &palette,
                      bool enabled, const QString &text, QPalette::ColorRole role) const override
    {
        const QString elided =
            painter->fontMetrics().elidedText(text, Qt::ElideRight, rect.width());
        QProxyStyle::drawItemText(painter, rect, flags, palette, enabled, elided, role);
    }
};

} // namespace

void scaleTableWindow(QDialog *window, QTableWidget *table)
{
    const double factor = ui_scale();
    const QSize whole(scaled(window->width(), factor), scaled(window->height(), factor));
    const QWidget *opener = window->parentWidget() ? window->parentWidget()->window() : window;
    const QSize fitted = fittedToScreen(opener, QRect(QPoint(), whole)).size();
    window->setFixedSize(fitted);
    scaleWidget(table, float(factor));
    table->setMinimumSize(table->minimumSize() - (whole - fitted));
    table->resize(table->minimumSize());
}

QString rangeText(double range)
{
    constexpr int width = 4;
    constexpr int decimals = 1;
    return QStringLiteral("%1").arg(range, width, 'f', decimals, QLatin1Char('0'));
}

bool writeText(QTableWidgetItem *item, const QString &text)
{
    if (item->text() == text)
        return false;
    item->setText(text);
    return true;
}

QVariant ElidedItem::data(int role) const
{
    if (role != Qt::ToolTipRole || !isElided())
        return QTableWidgetItem::data(role);
    // A text of the line is no rich text.
    const QString whole = text();
    return Qt::mightBeRichText(whole) ? Qt::convertFromPlainText(whole) : whole;
}

bool ElidedItem::isElided() const
{
    const QTableWidget *table = tableWidget();
    if (!table)
        return false;
    if (column() >= 0) {
        const QModelIndex index = table->model()->index(row(), column());
        return table->sizeHintForIndex(index).width() > table->visualRect(index).width();
    }
    const QHeaderView *header = table->horizontalHeader();
    for (int section = 0; section < header->count(); ++section) {
        if (table->horizontalHeaderItem(section) == this)
            return header->sectionSizeHint(section) > header->sectionSize(section);
    }
    return false;
}

void elideTitles(QTableWidget *table)
{
    auto *style = new ElidingStyle;
    style->setParent(table);
    table->horizontalHeader()->setStyle(style);
    for (int column = 0; column < table->columnCount(); ++column)
        table->setHorizontalHeaderItem(column,
                                       new ElidedItem(*table->horizontalHeaderItem(column)));
}
