#include "editors/smartdlg.h"

#include "ui_smartdlg.h"
#include "widgets/uiscale.h"

SmartDlg::SmartDlg(QWidget *parent)
    : QDialog(parent, Qt::WindowTitleHint), ui(std::make_unique<Ui::SmartDlg>())
{
    ui->setupUi(this);
    connect(ui->buttonBox, &QDialogButtonBox::accepted, this, &SmartDlg::accept);
    connect(ui->buttonBox, &QDialogButtonBox::accepted, this, &SmartDlg::slotButOk);
    connect(ui->buttonBox, &QDialogButtonBox::rejected, this, &SmartDlg::reject);
    buttons = {ui->radioButton_off,   ui->radioButton_gps,  ui->radioButton_hdt,
               ui->radioButton_depth, ui->radioButton_arpa, ui->radioButton_ais};

    const double factor = ui_scale();
    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    ui->verticalLayout->activate(); // the buttons are scaled from the sizes that it gives them
    scaleChildren<QFrame, QDialogButtonBox, QRadioButton, QGroupBox>(this, float(factor));
    scaleWidget(ui->verticalLayoutWidget, float(factor));
}

SmartDlg::~SmartDlg() = default;

void SmartDlg::setFunction(quint8 value, bool allowAis)
{
    smart_function = value;
    ui->radioButton_ais->setEnabled(allowAis);
    buttons[value < functionCount ? value : 0]->setChecked(true);
}

// accepted() also calls accept(), but exec() returns only when all of its slots have run.
void SmartDlg::slotButOk()
{
    for (quint8 value = 0; value < functionCount; ++value) {
        if (buttons[value]->isChecked()) {
            smart_function = value;
            return;
        }
    }
}
