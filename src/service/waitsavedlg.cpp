#include "service/waitsavedlg.h"

#include "ui_waitsavedlg.h"
#include "widgets/uiscale.h"

#include <QLabel>

WaitSaveDlg::WaitSaveDlg(QWidget *parent)
    : QDialog(parent, Qt::ToolTip), ui(std::make_unique<Ui::WaitSaveDlg>())
{
    ui->setupUi(this);
    const double factor = ui_scale();
    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    scaleChildren<QLabel>(this, float(factor));
    fitText(ui->label);
    fitText(ui->label_2);
}

WaitSaveDlg::~WaitSaveDlg() = default;

void WaitSaveDlg::slotExitDlg()
{
    accept();
}
