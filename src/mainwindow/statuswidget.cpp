#include "mainwindow/statuswidget.h"

#include "ui_statuswidget.h"
#include "widgets/pngicon.h"
#include "widgets/qclicklabel.h"
#include "widgets/uiscale.h"

namespace {

const QString lockedStyle =
    QStringLiteral("QLabel { background-color: rgb(229,22,28); color: white; border-style: inset; "
                   "border-width: 1px; font-size:10pt}");
const QString unlockedStyle =
    QStringLiteral("QLabel { background-color: rgb(66,133,244); color: white; border-style: inset; "
                   "border-width: 1px; font-size:10pt}");

} // namespace

statusWidget::statusWidget() : ui(std::make_unique<Ui::statusWidget>())
{
    ui->setupUi(this);
    pushButton_play = ui->pushButton_play;
    pushButton_view_small = ui->pushButton_view_small;
    pushButton_view_big = ui->pushButton_view_big;
    pushButton_view_speed = ui->pushButton_view_speed;
    label_receive_port = ui->label_receive_port;
    labelCrsErrorsCount = ui->labelCrsErrorsCount;
    labelCrsLabel = ui->labelCrsLabel;
    listWidget = ui->listWidget;
    label_lock = ui->label_lock;

    pushButton_play->setIcon(pngIcon(QStringLiteral(":/icons/player_pause.png")));
    pushButton_view_small->setIcon(pngIcon(QStringLiteral(":/icons/arrow_up.png")));
    pushButton_view_big->setIcon(pngIcon(QStringLiteral(":/icons/arrow_down.png")));
    pushButton_view_speed->setIcon(pngIcon(QStringLiteral(":/icons/arrow_right.png")));

    const double factor = ui_scale();
    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    ui->label_lock->hide();
    ui->pushButton_view_big->hide();
    // The texts of the list are lines of ASCII of one font: rows of one height spare a measurement
    // each.
    ui->listWidget->setUniformItemSizes(true);
}

statusWidget::~statusWidget() = default;

void statusWidget::setLockLabel(bool visible, bool locked)
{
    label_lock->setStyleSheet(locked ? lockedStyle : unlockedStyle);
    label_lock->setText(locked ? tr("LOCK") : tr("UNLOCK"));
    label_lock->setVisible(visible);
}

QList<QWidget *> statusWidget::legend() const
{
    return {ui->label_rs422, ui->label_rs232,   ui->label_view,
            ui->label_lock,  ui->label_website, ui->pushButton_view_big};
}

QList<QWidget *> statusWidget::monitorWidgets() const
{
    return {ui->pushButton_play, ui->label, ui->label_receive_port, ui->listWidget,
            ui->pushButton_view_small};
}

void statusWidget::rememberDistances()
{
    legend_to_bottom = height() - ui->label_rs422->y();
    list_to_legend = ui->label_rs422->y() - ui->listWidget->y() - ui->listWidget->minimumHeight();
    // The frame follows the panel in height, and the list the window.
    ui->frame_nmea_output->setMinimumSize(0, 0);
    ui->listWidget->setMinimumHeight(0);
    fitText(ui->label);
}

void statusWidget::fold(int stripHeight)
{
    big = false;
    const QList<QWidget *> hidden = monitorWidgets();
    for (QWidget *widget : hidden)
        widget->hide();
    ui->frame_nmea_output->resize(ui->frame_nmea_output->width(), stripHeight);
    const QList<QWidget *> moved = legend();
    for (QWidget *widget : moved)
        widget->move(widget->x(), ui->pushButton_play->y());
    ui->pushButton_view_big->show();
}

void statusWidget::unfold(int stripHeight)
{
    big = true;
    const QList<QWidget *> shown = monitorWidgets();
    for (QWidget *widget : shown)
        widget->show();
    ui->pushButton_view_big->hide();
    ui->frame_nmea_output->resize(ui->frame_nmea_output->width(), stripHeight);
}

void statusWidget::layOut(QSize size, int contentsWidth)
{
    setFixedSize(size);
    ui->frame_nmea_output->resize(qMax(size.width(), contentsWidth), size.height());
    if (!big)
        return;
    const int legendTop = size.height() - legend_to_bottom;
    const QList<QWidget *> moved = legend();
    for (QWidget *widget : moved)
        widget->move(widget->x(), legendTop);
    const int listHeight = legendTop - list_to_legend - ui->listWidget->y();
    ui->listWidget->resize(ui->listWidget->width(), qMax(0, listHeight));
}

void statusWidget::scrollTo(int left)
{
    ui->frame_nmea_output->move(-left, 0);
}

void statusWidget::widen(int delta)
{
    if (delta > 0) {
        panel_width = width();
        frame_width = ui->frame_nmea_output->width();
        line_width = ui->line->width();
        list_width = ui->listWidget->width();
        setFixedWidth(panel_width + delta);
        ui->frame_nmea_output->resize(frame_width + delta, ui->frame_nmea_output->height());
        ui->line->resize(line_width + delta, ui->line->height());
        ui->listWidget->resize(list_width + delta, ui->listWidget->height());
        return;
    }
    setFixedWidth(panel_width);
    ui->frame_nmea_output->resize(frame_width, ui->frame_nmea_output->height());
    ui->line->resize(line_width, ui->line->height());
    ui->listWidget->resize(list_width, ui->listWidget->height());
}
