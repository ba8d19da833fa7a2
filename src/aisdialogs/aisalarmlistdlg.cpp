#include "aisdialogs/aisalarmlistdlg.h"

#include "ais/qais.h"
#include "ais/qaisalarm.h"
#include "aisdialogs/celltext.h"
#include "ui_aisalarmlistdlg.h"

#include <QResizeEvent>

#include <array>

namespace {

constexpr int idColumn = 0;
constexpr int columnCount = 5;

// The last column takes the rest.
constexpr int columnPercents[] = {10, 10, 20, 20};

constexpr Qt::Alignment columnAlignment(int column)
{
    constexpr int textColumn = 4;
    return column == textColumn ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignCenter;
}

// Design pixels between the table and the window's edge.
constexpr int lowestWindow = 10;
constexpr int spaceBelow = 6;
constexpr int spaceBeside = 2;

QString timeText(const QAisAlarm &alarm)
{
    const QLatin1Char zero('0');
    return AisAlarmListDlg::tr("%L1:%L2:%L3")
        .arg(alarm.m_hour, 2, 10, zero)
        .arg(alarm.m_minute, 2, 10, zero)
        .arg(alarm.m_second, 2, 10, zero);
}

} // namespace

AisAlarmListDlg::AisAlarmListDlg(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::AisAlarmListDlg>())
{
    ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    QTableWidget *table = ui->ais_alarm_list;
    const QSize largest = maximumSize();
    // Deliberately of the width in design pixels, on every screen.
    for (int column = 0; column < int(std::size(columnPercents)); ++column)
        table->setColumnWidth(column, table->width() * columnPercents[column] / 100);
    elideTitles(table);
    scaleTableWindow(this, table);
    setMinimumSize(0, 0);
    setMaximumSize(largest);
}

AisAlarmListDlg::~AisAlarmListDlg() = default;

void AisAlarmListDlg::setAis(QAis *ais)
{
    m_ais = ais;
    setWindowTitle(tr("Ais Alarm list - input port %1").arg(ais->portNumber()));
}

void AisAlarmListDlg::rebuild()
{
    ui->ais_alarm_list->setRowCount(0);
    for (int i = 0; m_ais && i < m_ais->alarmCount(); ++i)
        showAlarm(m_ais->alarmAt(i)->m_id);
}

bool AisAlarmListDlg::showAlarm(quint8 id)
{
    const QAisAlarm *alarm = m_ais ? m_ais->findAlarm(id) : nullptr;
    if (!alarm)
        return false;
    QTableWidget *table = ui->ais_alarm_list;
    const QString idText = QStringLiteral("%1").arg(alarm->m_id);
    int row = rowOf(idText);
    bool isChanged = row < 0;
    if (row < 0)
        row = appendRow(idText);

    // Found before any is written: sorting is on, and the row moves while it is being written.
    std::array<QTableWidgetItem *, columnCount> cells;
    for (int column = idColumn + 1; column < columnCount; ++column)
        cells[size_t(column)] = table->item(row, column);
    const QString texts[] = {idText, timeText(*alarm),
                             alarm->m_condition ? tr("exceeded") : tr("not exceeded"),
                             alarm->m_acknowledged ? tr("yes") : tr("no"), alarm->m_text};
    for (size_t column = idColumn + 1; column < cells.size(); ++column)
        isChanged = writeText(cells[column], texts[column]) || isChanged;
    return isChanged;
}

int AisAlarmListDlg::rowOf(const QString &idText) const
{
    const QTableWidget *table = ui->ais_alarm_list;
    for (int row = 0; row < table->rowCount(); ++row) {
        if (table->item(row, idColumn)->text() == idText)
            return row;
    }
    return -1;
}

int AisAlarmListDlg::appendRow(const QString &idText)
{
    QTableWidget *table = ui->ais_alarm_list;
    // Switched on again, it sorts by the column that the user has chosen.
    table->setSortingEnabled(false);
    const int row = table->rowCount();
    table->insertRow(row);
    for (int column = 0; column < columnCount; ++column) {
        auto *item = new ElidedItem;
        item->setData(Qt::TextAlignmentRole, int(columnAlignment(column)));
        table->setItem(row, column, item);
    }
    QTableWidgetItem *idItem = table->item(row, idColumn);
    idItem->setText(idText);
    table->setSortingEnabled(true);
    return table->row(idItem);
}

// The table follows the window. Deliberate: below the lowest height nothing happens at all.
void AisAlarmListDlg::resizeEvent(QResizeEvent *event)
{
    if (height() < lowestWindow)
        return;
    ui->ais_alarm_list->setFixedHeight(qMax(1, height() - spaceBelow));
    ui->ais_alarm_list->setFixedWidth(qMax(1, width() - spaceBeside));
    QDialog::resizeEvent(event);
}
