#include "editors/filterdlg.h"

#include "editors/delsentencedlg.h"
#include "editors/sentencelist.h"
#include "editors/sntdlg.h"
#include "ui_filterdlg.h"
#include "widgets/plainbox.h"
#include "widgets/uiscale.h"

namespace {

constexpr int checkColumn = 0;
constexpr int nameColumn = 1;

// Design pixels.
constexpr int checkColumnWidth = 25;
constexpr int nameColumnWidth = 60;

} // namespace

FilterDlg::FilterDlg(QWidget *parent)
    : QDialog(parent, Qt::WindowTitleHint), ui(std::make_unique<Ui::FilterDlg>())
{
    ui->setupUi(this);
    connect(ui->pushButton_ok, &QPushButton::clicked, this, &FilterDlg::slotButOkClicked);
    connect(ui->pushButton_cancel, &QPushButton::clicked, this, &FilterDlg::reject);
    connect(ui->pushButton_add, &QPushButton::clicked, this, &FilterDlg::slotButAddClicked);
    connect(ui->pushButton_del, &QPushButton::clicked, this, &FilterDlg::slotButDelClicked);

    const double factor = ui_scale();
    QTableWidget *table = ui->filterTableWidget;
    // The style of Windows makes no column as narrow as the design's first one.
    table->horizontalHeader()->setMinimumSectionSize(1);
    table->setColumnWidth(checkColumn, scaled(checkColumnWidth, factor));
    table->setColumnWidth(nameColumn, scaled(nameColumnWidth, factor));
    table->sortByColumn(nameColumn, Qt::AscendingOrder);
    table->setFocus();

    setFixedSize(scaled(width(), factor), scaled(height(), factor));
    ui->verticalLayout->activate(); // the buttons are scaled from the sizes that it gives them
    scaleChildren<QPushButton, QRadioButton, QGroupBox>(this, float(factor));
    // The table alone of all frames: its headers are frames, too, and the table places them.
    scaleWidget(table, float(factor));
    scaleWidget(ui->verticalLayoutWidget, float(factor));
}

FilterDlg::~FilterDlg() = default;

void FilterDlg::setFilter(SentenceList *list, bool blackList, quint32 mask)
{
    sentences = list;
    filter_mask = mask;
    filter_type = blackList;
    for (int slot = 0; slot < SentenceList::size; ++slot) {
        if (sentences->isTaken(slot))
            addRow(sentences->names[std::size_t(slot)], mask & SentenceList::bit(slot));
    }
    (blackList ? ui->radioButton_blacklist : ui->radioButton_whitelist)->setChecked(true);
    ui->filterTableWidget->setCurrentCell(0, 0);
}

void FilterDlg::addRow(const QString &name, bool checked)
{
    QTableWidget *table = ui->filterTableWidget;
    // A sorted table would move the row away between its two items.
    table->setSortingEnabled(false);
    auto *check = new QTableWidgetItem;
    check->setData(Qt::CheckStateRole, checked ? Qt::Checked : Qt::Unchecked);
    const int row = table->rowCount();
    table->setRowCount(row + 1);
    table->setItem(row, checkColumn, check);
    table->setItem(row, nameColumn, new QTableWidgetItem(name));
    table->setSortingEnabled(true);
}

void FilterDlg::setUsedList(const QStringList &used)
{
    used_list = used;
}

QString FilterDlg::nameInRow(int row) const
{
    return ui->filterTableWidget->item(row, nameColumn)->text();
}

void FilterDlg::selectName(const QString &name)
{
    QTableWidget *table = ui->filterTableWidget;
    for (int row = 0; row < table->rowCount(); ++row) {
        if (nameInRow(row) == name) {
            table->setCurrentCell(row, checkColumn);
            return;
        }
    }
}

void FilterDlg::slotButOkClicked()
{
    const QTableWidget *table = ui->filterTableWidget;
    filter_mask = 0;
    filter_type = !ui->radioButton_whitelist->isChecked();
    for (int row = 0; row < table->rowCount(); ++row) {
        const int slot = sentences->slotOf(nameInRow(row));
        const QVariant state = table->item(row, checkColumn)->data(Qt::CheckStateRole);
        if (slot >= 0 && state.toInt() == Qt::Checked)
            filter_mask |= SentenceList::bit(slot);
    }
    accept();
}

void FilterDlg::slotButAddClicked()
{
    const int slot = sentences->freeSlot();
    if (slot < 0) {
        showPlainBox(this, QMessageBox::Information, tr("Add new sentence"),
                     tr("Not enough space for the new NMEA sentence"));
        return;
    }
    SntDlg dialog;
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QString name = dialog.sentence();
    if (sentences->slotOf(name) >= 0) {
        showPlainBox(this, QMessageBox::Information, tr("NMEA Sentence"),
                     tr("The NMEA sentence %1 already exist.").arg(name));
        return;
    }
    list_changed = true;
    sentences->put(slot, name);
    addRow(name, false);
    selectName(name);
}

void FilterDlg::slotButDelClicked()
{
    const int row = ui->filterTableWidget->currentRow();
    if (row < 0)
        return;
    const QString name = nameInRow(row);
    const int slot = sentences->slotOf(name);
    if (slot < 0)
        return;
    emit signal_reqest_list(SentenceList::bit(slot));
    if (!askDelete(name))
        return;
    list_changed = true;
    ui->filterTableWidget->removeRow(row);
    sentences->clear(slot);
}

bool FilterDlg::askDelete(const QString &name)
{
    if (used_list.isEmpty()) {
        const auto answer = showPlainBox(this, QMessageBox::Question, tr("NMEA Sentence"),
                                         tr("Delete '%1' NMEA sentence ?").arg(name),
                                         QMessageBox::Ok | QMessageBox::Cancel);
        return answer == QMessageBox::Ok;
    }
    DelSentenceDlg dialog;
    dialog.setList(used_list);
    dialog.setSentence(name);
    return dialog.exec() == QDialog::Accepted;
}
