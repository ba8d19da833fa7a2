#include "service/enterpassworddlg.h"

#include "service/passwordrule.h"
#include "ui_enterpassworddlg.h"
#include "widgets/uiscale.h"

EnterPasswordDlg::EnterPasswordDlg(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::EnterPasswordDlg>())
{
    ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    connect(ui->pushButton_Ok, &QPushButton::clicked, this, &EnterPasswordDlg::slotOk);
    connect(ui->pushButton_Cancel, &QPushButton::clicked, this, &EnterPasswordDlg::slotCancel);

    const double factor = ui_scale();
    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    scaleChildren<QPushButton, QLineEdit, QLabel>(this, float(factor));
    fitText(ui->label);
}

EnterPasswordDlg::~EnterPasswordDlg() = default;

void EnterPasswordDlg::slotOk()
{
    const QString text = ui->lineEdit_password->text();
    const QString complaint = PasswordRule::complaintAbout(text);
    if (!complaint.isEmpty()) {
        message_box.show(PasswordRule::boxTitle(), complaint, QMessageBox::Warning);
        return;
    }
    accepted_password = text;
    accept();
}

void EnterPasswordDlg::slotCancel()
{
    reject();
}
