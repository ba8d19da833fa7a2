#include "editors/sntdlg.h"

#include "editors/letters.h"
#include "ui_sntdlg.h"
#include "widgets/uiscale.h"

#include <QMessageBox>

namespace {

constexpr int sentenceLength = 3;

} // namespace

SntDlg::SntDlg(QWidget *parent)
    : QDialog(parent, Qt::WindowTitleHint), ui(std::make_unique<Ui::SntDlg>())
{
    ui->setupUi(this);
    connect(ui->buttonBox, &QDialogButtonBox::accepted, this, &SntDlg::slotButOk);
    connect(ui->buttonBox, &QDialogButtonBox::rejected, this, &SntDlg::reject);

    const double factor = ui_scale();
    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    scaleChildren<QFrame, QLineEdit, QDialogButtonBox>(this, float(factor));
    fitText(ui->label);
}

SntDlg::~SntDlg() = default;

void SntDlg::slotButOk()
{
    const QString text = ui->lineEdit->text();
    if (text.size() != sentenceLength) {
        QMessageBox::information(this, tr("NMEA Sentence"),
                                 tr("The NMEA sentence consist of 3 characters."));
        return;
    }
    const QString name = text.toUpper();
    if (!isLatinCapitals(name, sentenceLength)) {
        QMessageBox::information(this, tr("NMEA Sentence"),
                                 tr("The NMEA sentence can consist only Latin characters."));
        return;
    }
    accepted_sentence = name;
    accept();
}
