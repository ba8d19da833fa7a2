#include "aisdialogs/paintpace.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTableWidget>

PaintPace::PaintPace(QTableWidget *table) : QObject(table), m_table(table)
{
    constexpr int interval = 1000; // ms
    m_frame.setSingleShot(true);
    m_frame.setInterval(interval);
    connect(&m_frame, &QTimer::timeout, this, &PaintPace::paintNow);

    for (const QScrollBar *bar : {table->horizontalScrollBar(), table->verticalScrollBar()})
        connect(bar, &QScrollBar::valueChanged, this, &PaintPace::paintNow);
    const QHeaderView *header = table->horizontalHeader();
    connect(header, &QHeaderView::sectionResized, this, &PaintPace::paintNow);
    connect(header, &QHeaderView::sortIndicatorChanged, this, &PaintPace::paintNow);
    connect(table, &QTableWidget::itemSelectionChanged, this, &PaintPace::paintNow);
}

void PaintPace::beginChange()
{
    if (m_frame.isActive())
        m_table->setUpdatesEnabled(false);
    else
        m_frame.start();
}

void PaintPace::paintNow()
{
    if (m_table->updatesEnabled())
        return;
    m_table->setUpdatesEnabled(true);
    m_frame.start();
}
