#include "service/passworddlg.h"

#include "service/passwordrule.h"
#include "ui_passworddlg.h"
#include "widgets/uiscale.h"

passwordDlg::passwordDlg(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::passwordDlg>())
{
    ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    connect(ui->pushButton_Ok, &QPushButton::clicked, this, &passwordDlg::slotOk);
    connect(ui->pushButton_Cancel, &QPushButton::clicked, this, &passwordDlg::slotCancel);

    const double factor = ui_scale();
    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    scaleChildren<QPushButton, QLineEdit, QLabel>(this, float(factor));
    // The labels reach under the fields, their texts must not.
    fitText(ui->label_lock_password,
            ui->lineEdit_lock_password->x() - ui->label_lock_password->x());
    fitText(ui->label_lock_password_2,
            ui->lineEdit_confirm_password->x() - ui->label_lock_password_2->x());
}

passwordDlg::~passwordDlg() = default;

void passwordDlg::slotOk()
{
    const QString text = ui->lineEdit_lock_password->text();
    const QString complaint = complaintAbout(text);
    if (!complaint.isEmpty()) {
        message_box.show(PasswordRule::boxTitle(), complaint, QMessageBox::Warning);
        return;
    }
    accepted_password = text;
    accept();
}

QString passwordDlg::complaintAbout(const QString &text) const
{
    if (text != ui->lineEdit_confirm_password->text())
        return tr("Confirm password does not match lock password");
    return PasswordRule::complaintAbout(text);
}

void passwordDlg::slotCancel()
{
    reject();
}
