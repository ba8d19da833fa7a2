#include "editors/delsentencedlg.h"

#include "ui_delsentencedlg.h"
#include "widgets/uiscale.h"

DelSentenceDlg::DelSentenceDlg(QWidget *parent)
    : QDialog(parent, Qt::WindowTitleHint), ui(std::make_unique<Ui::DelSentenceDlg>())
{
    ui->setupUi(this);
    ui->label->setTextFormat(Qt::PlainText);
    connect(ui->buttonBox, &QDialogButtonBox::accepted, this, &DelSentenceDlg::accept);
    connect(ui->buttonBox, &QDialogButtonBox::rejected, this, &DelSentenceDlg::reject);

    const double factor = ui_scale();
    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    scaleChildren<QFrame, QDialogButtonBox>(this, float(factor));
}

DelSentenceDlg::~DelSentenceDlg() = default;

void DelSentenceDlg::setList(const QStringList &list)
{
    QString text;
    for (const QString &line : list)
        text += line + QLatin1Char('\n');
    ui->textEdit->setPlainText(text);
}

void DelSentenceDlg::setSentence(const QString &sentence)
{
    ui->label->setText(tr("NMEA sentence '%1' is used in other filters. \n"
                          "Are you sure want delete from all filters?")
                           .arg(sentence));
    fitText(ui->label);
}
