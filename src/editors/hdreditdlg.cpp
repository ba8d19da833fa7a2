#include "editors/hdreditdlg.h"

#include "editors/letters.h"
#include "ui_hdreditdlg.h"
#include "widgets/uiscale.h"

#include <QMessageBox>

namespace {

constexpr int hdrLength = 2;
const QString routerHdr = QStringLiteral("VR"); // of the router's own sentences

} // namespace

HdrEditDlg::HdrEditDlg(QWidget *parent)
    : QDialog(parent, Qt::WindowTitleHint), ui(std::make_unique<Ui::HdrEditDlg>())
{
    ui->setupUi(this);
    connect(ui->buttonBox_2, &QDialogButtonBox::accepted, this, &HdrEditDlg::slotButOk);
    connect(ui->buttonBox_2, &QDialogButtonBox::rejected, this, &HdrEditDlg::reject);

    const double factor = ui_scale();
    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    scaleChildren<QFrame, QLineEdit, QDialogButtonBox>(this, float(factor));
    fitText(ui->label);
}

HdrEditDlg::~HdrEditDlg() = default;

void HdrEditDlg::setHdr(const QString &hdr)
{
    ui->lineEdit->setText(hdr);
}

void HdrEditDlg::slotButOk()
{
    const QString text = ui->lineEdit->text();
    const QString complaint = complaintAbout(text);
    if (!complaint.isEmpty()) {
        QMessageBox::information(this, tr("NMEA Header"), complaint);
        return;
    }
    accepted_hdr = text.toUpper();
    accept();
}

QString HdrEditDlg::complaintAbout(const QString &text) const
{
    if (text.size() != hdrLength)
        return tr("The NMEA header consist of 2 characters.");
    const QString hdr = text.toUpper();
    if (!isLatinCapitals(hdr, hdrLength))
        return tr("The NMEA header can consist only Latin characters.");
    if (hdr == routerHdr)
        return tr("The NMEA header VR reserved for TK-7.");
    return QString();
}
