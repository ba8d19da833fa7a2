#include "link/nmeaserialport.h"
#include "mainwindow/mainwindow.h"
#include "mainwindow/statuswidget.h"
#include "ui_mainwindow.h"
#include "widgets/uiscale.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>

namespace {

constexpr int screenMargin = 10; // left free when the screen is lower than the window

} // namespace

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

    setFixedWidth(width);
    setMinimumHeight(int(topBarHeight * factor + panelHeight));
    rememberGeometry();
    placeOnScreen(big_size);
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
    narrow_widths = {big_size.width(), ui->scrollAreaInputPorts->minimumWidth(),
                     ui->frame_input_ports->minimumWidth(), ui->label_input_ports->minimumWidth(),
                     ui->frame->minimumWidth()};

    panel_size = status_widget->frameSize();
    remembered_panel_size = panel_size;
    status_widget->rememberDistances();
    fixPanelHeight(panel_size.height());
}

void MainWindow::placeOnScreen(QSize size)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    const QRect available = screen ? screen->availableGeometry() : QRect(QPoint(), size);
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight);

    QRect place(QPoint(), size);
    if (place.height() >= available.height() - titleBar - screenMargin + 1)
        place.setHeight(available.height() - titleBar - screenMargin);
    if (place.width() > available.width())
        place.setWidth(available.width());

    const int freeWidth = available.width() - place.width();
    const int freeHeight = available.height() - (place.height() + titleBar);
    if (freeWidth > 0)
        place.moveLeft(freeWidth / 2);
    if (freeHeight != 0)
        place.moveTop(freeHeight / 2);
    setGeometry(place);
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    if (status_widget->isBig()) {
        const int excess = qMax(0, height() - big_size.height());
        fixPanelHeight(panel_size.height() + excess);
    }
    setAreaBottoms();
    QMainWindow::resizeEvent(event);
}

// In a window that is too low for the matrix the columns end above the status bar and scroll.
void MainWindow::setAreaBottoms()
{
    const int barTop = height() - ui->statusBar->maximumHeight();
    for (const Column &column : columns) {
        if (!column.area)
            continue;
        const int bottom = qMin(column.design.y() + column.design.height(), barTop - 1);
        column.area->resize(column.area->width(), qMax(0, bottom - column.design.y()));
    }
}
