#include "service/modedlg.h"

#include "service/textcheck.h"
#include "ui_modedlg.h"
#include "widgets/uiscale.h"

namespace {

constexpr int maxModeLength = 8;

} // namespace

modeDlg::modeDlg(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::modeDlg>())
{
    ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    connect(ui->pushButton_Ok, &QPushButton::clicked, this, &modeDlg::slotOk);
    connect(ui->pushButton_Cancel, &QPushButton::clicked, this, &modeDlg::slotCancel);

    const double factor = ui_scale();
    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    scaleChildren<QPushButton, QLineEdit, QLabel>(this, float(factor));
    fitText(ui->label);
}

modeDlg::~modeDlg() = default;

void modeDlg::slotOk()
{
    const QString text = ui->lineEdit_mode->text();
    const QString complaint = complaintAbout(text);
    if (!complaint.isEmpty()) {
        message_box.show(tr("Mode error"), complaint, QMessageBox::Warning);
        return;
    }
    accepted_mode = text;
    accept();
}

QString modeDlg::complaintAbout(const QString &text) const
{
    switch (checkText(text, maxModeLength)) {
    case TextFault::TooLong:
        return tr("Mode can be up to %1 characters long").arg(maxModeLength);
    case TextFault::WrongCharacters:
        return tr("The mode can only contain numbers and Latin characters");
    case TextFault::None:
        break;
    }
    return QString();
}

void modeDlg::slotCancel()
{
    reject();
}
