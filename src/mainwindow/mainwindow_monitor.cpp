#include "mainwindow/mainwindow.h"
#include "mainwindow/matrixstyle.h"
#include "mainwindow/statuswidget.h"
#include "model/viewcode.h"
#include "ui_mainwindow.h"
#include "widgets/pngicon.h"
#include "widgets/screenarea.h"
#include "widgets/uiscale.h"

#include <QLayout>
#include <QListWidget>

#include <cmath>

namespace {

constexpr int maxMonitorRows = 100;
constexpr int maxCountedErrors = 99999; // counted up from at most, so the count ends at 100000
constexpr int speedViewWidth = 50;      // design pixels

int rounded(int length)
{
    return int(std::lround(length * ui_scale()));
}

// Takes the room away that a status bar leaves round its items.
void dropSpacers(QLayout *layout)
{
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem *item = layout->itemAt(i);
        if (item->spacerItem())
            item->spacerItem()->changeSize(0, 0);
        else if (item->layout())
            dropSpacers(item->layout());
    }
    layout->invalidate();
}

} // namespace

void MainWindow::slotNMEAReceive(QString str)
{
    if (connected && !ViewCode(view_code).isNone())
        AddMonitorLine(str);
}

void MainWindow::AddMonitorLine(const QString &line)
{
    if (!play_enabled)
        return;
    QString shown = line;
    while (shown.endsWith(QLatin1Char('\r')) || shown.endsWith(QLatin1Char('\n')))
        shown.chop(1);
    pending_lines += shown;
}

void MainWindow::slotStringTimer()
{
    if (!play_enabled || pending_lines.isEmpty())
        return;
    QListWidget *list = status_widget->listWidget;
    list->addItems(pending_lines);
    pending_lines.clear();
    while (list->count() > maxMonitorRows)
        delete list->takeItem(0);
    list->scrollToItem(list->item(list->count() - 1));
}

void MainWindow::slotPlayNMEA()
{
    if (play_enabled)
        pending_lines.clear();
    setPlay(!play_enabled);
}

void MainWindow::setPlay(bool play)
{
    play_enabled = play;
    status_widget->pushButton_play->setIcon(
        pngIcon(play ? QStringLiteral(":/icons/player_pause.png")
                     : QStringLiteral(":/icons/player_play.png")));
    nameSwitches();
}

void MainWindow::slotVRPortView(quint8 port)
{
    if (!connected)
        return;
    const ViewCode code(port);
    view_code = port;
    const QString text = code.text();
    if (!code.isNone())
        setPlay(true);
    status_widget->label_receive_port->setText(text);
    AddMonitorLine(QStringLiteral("---- %1 ----").arg(text));
    SetViewColors(port);
}

void MainWindow::slotCRSError()
{
    if (crs_errors > maxCountedErrors)
        return;
    ++crs_errors;
    UpdateCrsErrorsLabel();
}

void MainWindow::UpdateCrsErrorsLabel()
{
    QLabel *count = status_widget->labelCrsErrorsCount;
    const bool hasErrors = crs_errors != 0;
    count->setText(connected ? QString::number(crs_errors) : QString());
    count->setStyleSheet(hasErrors ? MatrixStyle::errorCount : MatrixStyle::noErrorCount);
    count->setVisible(hasErrors);
    status_widget->labelCrsLabel->setVisible(hasErrors);
}

void MainWindow::fixPanelHeight(int height)
{
    ui->statusBar->setFixedHeight(height);
    status_widget->layOut(QSize(width(), height), ui->centralWidget->minimumWidth());
    ui->statusBar->reformat();
    dropSpacers(ui->statusBar->layout()); // the panel is all of the bar
}

void MainWindow::slotButSmallStatus()
{
    const int strip = rounded(stripHeight);
    remembered_panel_size = status_widget->frameSize();
    QRect place = geometry();
    place.setBottom(place.bottom() - (remembered_panel_size.height() - strip));

    status_widget->fold(strip);
    ui->statusBar->hide();
    fixPanelHeight(strip);
    ui->statusBar->show();

    setMaximumHeight(small_size.height());
    setMinimumHeight(int(topBarHeight * ui_scale()) + strip);
    setGeometry(fittedToScreen(this, place));
}

void MainWindow::slotButBigStatus()
{
    const int strip = rounded(stripHeight);
    const bool isLow = height() < small_size.height();
    const int panelHeight = isLow ? panel_size.height() : remembered_panel_size.height();
    QRect place = geometry();
    place.setBottom(place.bottom() + (panelHeight - strip));

    status_widget->unfold(strip);
    fixPanelHeight(panelHeight);

    setMaximumHeight(2 * big_size.height());
    setMinimumHeight(int(topBarHeight * ui_scale()) + panelHeight);
    setGeometry(fittedToScreen(this, place));
}

void MainWindow::slotButViewSpeed()
{
    const int delta = rounded(speedViewWidth);
    speed_visible = !speed_visible;
    SpeedViewWidths widths = narrow_widths;
    if (speed_visible) {
        for (int *width :
             {&widths.window, &widths.area, &widths.contents, &widths.heading, &widths.top_frame}) {
            *width += delta;
        }
    }
    setViewWidths(widths, speed_visible ? delta : -delta);
    status_widget->pushButton_view_speed->setIcon(
        pngIcon(speed_visible ? QStringLiteral(":/icons/arrow_left.png")
                              : QStringLiteral(":/icons/arrow_right.png")));
    nameSwitches();
    for (const InputRow &row : input_rows)
        row.speed_label->setVisible(speed_visible);
}

void MainWindow::setViewWidths(const SpeedViewWidths &widths, int delta)
{
    ui->scrollAreaInputPorts->setFixedWidth(widths.area);
    ui->frame_input_ports->setFixedWidth(widths.contents);
    ui->label_input_ports->setFixedWidth(widths.heading);
    ui->frame->setFixedWidth(widths.top_frame);
    status_widget->widen(delta);
    ui->centralWidget->setMinimumWidth(widths.window);
    const QRect place =
        fittedToScreen(this, QRect(geometry().topLeft(), QSize(widths.window, height())));
    setFixedWidth(place.width());
    setGeometry(place);
    // On a screen that is narrower than both views the width stays, and no resize event comes.
    fixPanelHeight(ui->statusBar->maximumHeight());
    setAreaBottoms();
}
