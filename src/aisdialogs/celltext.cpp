#include "aisdialogs/celltext.h"

#include "widgets/uiscale.h"

#include <QDialog>
#include <QFontMetrics>
#include <QTableWidget>

void scaleTableWindow(QDialog *window, QTableWidget *table)
{
    const double factor = ui_scale();
    window->setFixedSize(scaled(window->width(), factor), scaled(window->height(), factor));
    scaleWidget(table, float(factor));
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

void fitText(QTableWidgetItem *item, const QFont &font, int columnWidth)
{
    constexpr int margins = 8;
    constexpr qreal smallestFont = 4;
    constexpr qreal step = 0.25;
    QFont smaller = font;
    const auto width = [&] {
        return QFontMetrics(smaller).size(0, item->text()).width() + margins;
    };
    while (width() > columnWidth && smaller.pointSizeF() > smallestFont)
        smaller.setPointSizeF(smaller.pointSizeF() - step);
    if (smaller.pointSizeF() < font.pointSizeF())
        item->setFont(smaller);
}
