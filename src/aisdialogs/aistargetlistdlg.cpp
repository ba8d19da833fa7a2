#include "aisdialogs/aistargetlistdlg.h"

#include "ais/qais.h"
#include "aisdialogs/aistargetinfodlg.h"
#include "aisdialogs/celltext.h"
#include "aisdialogs/targetrows.h"
#include "ui_aistargetlistdlg.h"

#include <QResizeEvent>

namespace {

constexpr int mmsiColumn = 0;
constexpr int nameColumn = 1;
constexpr int rangeColumn = 2;

constexpr int mmsiPercent = 25;
constexpr int namePercent = 60;

constexpr int lowestWindow = 10;
constexpr int spaceBelow = 6;

} // namespace

AisTargetListDlg::AisTargetListDlg(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::AisTargetListDlg>())
{
    ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    QTableWidget *table = ui->ais_list;
    m_rows = new TargetRows(table, this);

    const int largestHeight = maximumHeight();
    scaleTableWindow(this, table);
    setMinimumHeight(0);
    setMaximumHeight(largestHeight);

    const int percent = (table->width() - table->verticalHeader()->defaultSectionSize()) / 100;
    table->setColumnWidth(mmsiColumn, percent * mmsiPercent);
    table->setColumnWidth(nameColumn, percent * namePercent);
    // What it has at least; stretched, it takes what the others leave.
    table->setColumnWidth(rangeColumn, table->horizontalHeader()->minimumSectionSize());
    table->sortByColumn(rangeColumn, Qt::AscendingOrder);
    connect(table, &QTableWidget::cellDoubleClicked, this, &AisTargetListDlg::showTarget);
}

AisTargetListDlg::~AisTargetListDlg() = default;

void AisTargetListDlg::setAis(QAis *ais)
{
    m_ais = ais;
    m_rows->addAll(*ais);
    setWindowTitle(tr("Ais Target list - input port %1").arg(ais->portNumber()));
}

void AisTargetListDlg::refreshRanges()
{
    m_rows->refreshRanges(*m_ais);
}

void AisTargetListDlg::slotAddTarget(QAisTarget *pTarget)
{
    m_rows->add(*pTarget);
}

void AisTargetListDlg::slotUpdateTarget(uint mmsi)
{
    const QAisTarget *target = m_ais->findTarget(mmsi);
    if (!target)
        return;
    if (isInfoOf(target))
        m_info->refresh();
    m_rows->update(*target);
}

void AisTargetListDlg::slotDeleteTarget(uint mmsi)
{
    m_rows->remove(mmsi);
    // Its target stays, and its timer goes on reading it.
    if (isInfoOf(m_ais->findTarget(mmsi)))
        m_info->setVisible(false);
}

void AisTargetListDlg::slotLostPosition()
{
    m_rows->blankRanges();
}

bool AisTargetListDlg::isInfoOf(const QAisTarget *target) const
{
    return target && m_info && m_info->target() == target;
}

void AisTargetListDlg::showTarget(int row)
{
    const uint mmsi = ui->ais_list->item(row, mmsiColumn)->text().toUInt();
    QAisTarget *target = mmsi != 0 ? m_ais->findTarget(mmsi) : nullptr;
    if (!target)
        return;
    if (!m_info) {
        m_info = new AisTargetInfoDlg(this);
        m_info->setWindowTitle(tr("AIS Target Info - input port %1").arg(m_ais->portNumber()));
        m_info->setModal(false);
    }
    m_info->setTarget(target);
    m_info->refresh();
    m_info->show();
}

// The table follows the window. Deliberate: below the lowest height nothing happens at all.
void AisTargetListDlg::resizeEvent(QResizeEvent *event)
{
    if (height() < lowestWindow)
        return;
    ui->ais_list->setFixedHeight(qMax(1, height() - spaceBelow));
    QDialog::resizeEvent(event);
}
