#include "link/nmeaserialport.h"
#include "mainwindow/mainwindow.h"
#include "mainwindow/statuswidget.h"
#include "ui_mainwindow.h"
#include "widgets/screenarea.h"
#include "widgets/uiscale.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>

void MainWindow::slotRescanPorts()
{
    QComboBox *box = ui->comboBox_connect_port;
    const QString current = box->currentText();
    box->clear();
    QStringList ports = NmeaSerialPort::scanPorts();
    ports.sort(Qt::CaseSensitive);
    box->addItems(ports);
    const int index = box->findText(current, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (!ports.isEmpty())
        box->setCurrentIndex(qMax(0, index));
    // While there is a link the button is its own: disabled in the search, "Disconnect" then.
    if (!link)
        enableConnect();
}

void MainWindow::applyScale()
{
    const double factor = ui_scale();
    const QSize window = frameSize();
    const int barHeight = ui->statusBar->height();
    scaleChildren<QPushButton, QComboBox, QFrame, QCheckBox, QLineEdit>(this, float(factor));

    const int panelHeight = status_widget->frameSize().height();
    const int width = scaled(window.width(), factor);
    const int matrixHeight = scaled(window.height() - barHeight, factor);
    big_size = QSize(width, matrixHeight + panelHeight);
    small_size = QSize(width, matrixHeight + scaled(stripHeight, factor));

    setMinimumHeight(int(topBarHeight * factor + panelHeight));
    rememberGeometry();
    placeOnScreen();
}

// On a screen that is narrower than the window its contents scroll, and the panel with them.
void MainWindow::makeScrollable()
{
    contents_area = new QScrollArea(this);
    contents_area->setFrameShape(QFrame::NoFrame);
    contents_area->setFocusPolicy(Qt::NoFocus);
    contents_area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    contents_area->setWidgetResizable(true);
    // Straight from one to the other: without a parent between, every widget would change its font
    // twice.
    contents_area->setWidget(centralWidget());
    setCentralWidget(contents_area);
    connect(contents_area->horizontalScrollBar(), &QScrollBar::valueChanged, status_widget,
            &statusWidget::scrollTo);
}

// The places that the panel's two sizes, the speed view and the columns of a low window start from.
void MainWindow::rememberGeometry()
{
    for (QFrame *contents :
         {ui->frame_output_ports, ui->frame_input_channels_tabl, ui->frame_input_ports}) {
        contents->setFixedSize(contents->minimumSize());
    }
    const std::array<QScrollArea *, 3> areas = {
        ui->scrollAreaInputPorts, ui->scrollAreaInputChannels, ui->scrollAreaOutputPorts};
    for (size_t i = 0; i < areas.size(); ++i) {
        columns[i] = {areas[i], QRect(areas[i]->pos(), areas[i]->minimumSize())};
        areas[i]->setMinimumHeight(0);
    }
    connect(ui->scrollAreaInputChannels->horizontalScrollBar(), &QScrollBar::rangeChanged, this,
            &MainWindow::keepChannelsInSight);
    contents_area->setMinimumSize(0, 0);
    // The bar is as wide as the window, not as the panel and the room that a status bar wants
    // beside it.
    ui->statusBar->setMinimumWidth(1);
    narrow_widths = {big_size.width(), ui->scrollAreaInputPorts->minimumWidth(),
                     ui->frame_input_ports->minimumWidth(), ui->label_input_ports->minimumWidth(),
                     ui->frame->minimumWidth()};

    panel_size = status_widget->frameSize();
    remembered_panel_size = panel_size;
    status_widget->rememberDistances();
    ui->centralWidget->setMinimumWidth(narrow_widths.window);
    fixPanelHeight(panel_size.height());
}

void MainWindow::placeOnScreen()
{
    const QRect area = availableArea(this);
    QRect place = fittedTo(area, QRect(area.topLeft(), big_size), frameOf(this));
    // The title bar lies above the rectangle: both together stand in the middle.
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight);
    place.moveTopLeft(area.topLeft()
                      + QPoint((area.width() - place.width()) / 2,
                               (area.height() - place.height() + titleBar) / 2));
    setFixedWidth(place.width());
    setGeometry(place);
}

bool MainWindow::isNarrow() const
{
    return width() < ui->centralWidget->minimumWidth();
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    const int excess = qMax(0, height() - big_size.height());
    fixPanelHeight(status_widget->isBig() ? panel_size.height() + excess
                                          : ui->statusBar->maximumHeight());
    setAreaBottoms();
    QMainWindow::resizeEvent(event);
}

// A wide vertical bar, as Windows has at a high resolution, would cover the right end of the channels:
// they give way to the left, as far as their margin there is bare.
void MainWindow::keepChannelsInSight()
{
    QFrame *channels = ui->frame_input_channels_tabl;
    QScrollBar *bar = ui->scrollAreaInputChannels->horizontalScrollBar();
    const QWidget *last = ui->pushButton_channel_0_hdr_set;
    const int end = last->mapTo(channels, QPoint(last->width(), 0)).x();
    const int margin = ui->pushButton_channel_0->mapTo(channels, QPoint()).x();
    bar->setValue(qBound(0, bar->maximum() - (channels->width() - end), margin));
}

// In a window that is too low for the matrix the columns end above the status bar and scroll.
void MainWindow::setAreaBottoms()
{
    int barTop = height() - ui->statusBar->maximumHeight();
    if (isNarrow())
        barTop -= contents_area->horizontalScrollBar()->sizeHint().height();
    for (const Column &column : columns) {
        if (!column.area)
            continue;
        const int bottom = qMin(column.design.y() + column.design.height(), barTop - 1);
        column.area->resize(column.area->width(), qMax(0, bottom - column.design.y()));
    }
}
