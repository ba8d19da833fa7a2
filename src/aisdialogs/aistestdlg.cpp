#include "aisdialogs/aistestdlg.h"

#include "aisdialogs/aisalarmlistdlg.h"
#include "aisdialogs/aistargetinfodlg.h"
#include "aisdialogs/aistargetlistdlg.h"
#include "aisdialogs/celltext.h"
#include "ui_aistestdlg.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <algorithm>

namespace {

enum Column {
    PortColumn,
    OwnColumn,
    MessagesColumn,
    TargetsColumn,
    ListColumn,
    RangeColumn,
    AllTimeRangeColumn,
    AlarmColumn
};

constexpr int tickInterval = 1000; // ms
constexpr int buttonMargin = 2;
constexpr double noRange = -1.0;

} // namespace

aistestdlg::aistestdlg(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::aistestdlg>())
{
    ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    scaleTableWindow(this, ui->ais_table);
    ui->ais_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);

    m_allTimeMaxRange.fill(noRange);
    for (uint port = 0; port < m_ais.size(); ++port) {
        m_ais[port].setPortNumber(port);
        wirePort(m_ais[port]);
    }
    connect(&m_dlgTimer, &QTimer::timeout, this, &aistestdlg::slotDlgTimer);
    m_dlgTimer.start(tickInterval);
}

void aistestdlg::wirePort(QAis &ais)
{
    connect(&ais, &QAis::signalAddTarget, this, &aistestdlg::slotAddTarget);
    // Direct: the target is gone from the list as soon as the signal returns.
    connect(&ais, &QAis::signalDeleteTarget, this, &aistestdlg::slotDeleteTarget,
            Qt::DirectConnection);
    connect(&ais, &QAis::signalUpdateTarget, this, &aistestdlg::slotUpdateTarget);
    connect(&ais, &QAis::signalUpdateOwnTarget, this, &aistestdlg::slotUpdateOwnTarget);
    connect(&ais, &QAis::signalNewOwnPosition, this, &aistestdlg::slotNewOwnPosition);
    connect(&ais, &QAis::signalLostPosition, this, &aistestdlg::slotLostPosition);
    connect(&ais, &QAis::signalUpdateAlarm, this, &aistestdlg::slotUpdateAlarm);
}

aistestdlg::~aistestdlg()
{
    for (QAis &ais : m_ais)
        disconnect(&ais, nullptr, this, nullptr);
    m_dlgTimer.stop();
    disconnect(&m_dlgTimer, nullptr, this, nullptr);
    // Before the decoders, whose records they show.
    for (uint port = 0; port < m_ais.size(); ++port) {
        delete m_targetList[port];
        delete m_ownInfo[port];
        delete m_alarmList[port];
    }
}

// Rows

// The rows stand in the order in which the ports have brought their first data.
void aistestdlg::requireRow(uint port)
{
    if (m_rowItem[port])
        return;
    QTableWidget *table = ui->ais_table;
    const int row = table->rowCount();
    table->insertRow(row);
    for (const int column :
         {PortColumn, MessagesColumn, TargetsColumn, RangeColumn, AllTimeRangeColumn}) {
        auto *item = new QTableWidgetItem;
        item->setTextAlignment(Qt::AlignCenter);
        table->setItem(row, column, item);
    }
    m_rowItem[port] = table->item(row, PortColumn);
    m_ownButton[port] = addViewButton(row, OwnColumn, &aistestdlg::slotOwnClick);
    m_targetButton[port] = addViewButton(row, ListColumn, &aistestdlg::slotTargetClick);
    m_alarmButton[port] = addViewButton(row, AlarmColumn, &aistestdlg::slotAlarmClick);
    writeCell(port, PortColumn, QStringLiteral("%1").arg(port));
    writeCell(port, TargetsColumn, QStringLiteral("%1").arg(m_ais[port].targetCount()));
}

QPushButton *aistestdlg::addViewButton(int row, int column, void (aistestdlg::*slot)())
{
    auto *cell = new QWidget;
    auto *button = new QPushButton(tr("View"));
    button->setEnabled(false);
    auto *layout = new QHBoxLayout(cell);
    layout->addWidget(button);
    layout->setAlignment(Qt::AlignCenter);
    layout->setContentsMargins(buttonMargin, buttonMargin, buttonMargin, buttonMargin);
    ui->ais_table->setCellWidget(row, column, cell);
    connect(button, &QPushButton::clicked, this, slot);
    return button;
}

void aistestdlg::writeCell(uint port, int column, const QString &text)
{
    QTableWidget *table = ui->ais_table;
    writeText(table->item(table->row(m_rowItem[port]), column), text);
}

void aistestdlg::updateMaxRange(uint port)
{
    if (!m_rowItem[port])
        return;
    const double range = m_ais[port].maxRange();
    const QString text = range >= 0.0 ? rangeText(range) : QString();
    writeCell(port, RangeColumn, text);
    if (range <= m_allTimeMaxRange[port])
        return;
    m_allTimeMaxRange[port] = range;
    writeCell(port, AllTimeRangeColumn, text);
}

// What the decoders report

void aistestdlg::slotAddTarget(uint port_number, uint mmsi)
{
    QAis &ais = m_ais[port_number];
    requireRow(port_number);
    m_targetButton[port_number]->setEnabled(true);
    writeCell(port_number, TargetsColumn, QStringLiteral("%1").arg(ais.targetCount()));
    updateMaxRange(port_number);
    QAisTarget *target = ais.findTarget(mmsi);
    if (m_targetList[port_number] && target)
        m_targetList[port_number]->slotAddTarget(target);
}

void aistestdlg::slotDeleteTarget(uint port_number, uint mmsi)
{
    const int count = m_ais[port_number].targetCount() - 1;
    if (m_rowItem[port_number]) {
        writeCell(port_number, TargetsColumn, QStringLiteral("%1").arg(count));
        // Deliberate: the dying target is counted once more.
        updateMaxRange(port_number);
    }
    if (m_targetButton[port_number] && count == 0)
        m_targetButton[port_number]->setEnabled(false);
    if (m_targetList[port_number])
        m_targetList[port_number]->slotDeleteTarget(mmsi);
}

// Deliberate: the ranges of a port follow the reports of known targets only from the first opening
// of its list on.
void aistestdlg::slotUpdateTarget(uint port_number, uint mmsi)
{
    if (!m_targetList[port_number])
        return;
    m_targetList[port_number]->slotUpdateTarget(mmsi);
    updateMaxRange(port_number);
}

void aistestdlg::slotUpdateOwnTarget(uint port_number)
{
    requireRow(port_number);
    m_ownButton[port_number]->setEnabled(true);
    if (m_ownInfo[port_number])
        m_ownInfo[port_number]->refresh();
}

void aistestdlg::slotUpdateAlarm(uint port_number, quint8 id)
{
    requireRow(port_number);
    m_alarmButton[port_number]->setEnabled(true);
    if (m_alarmList[port_number])
        m_alarmList[port_number]->showAlarm(id);
}

// Most ports hold another source and drop the position: nothing of their lists would change.
void aistestdlg::slotNewOwnPosition(uint port, QGpsKrd *Pos)
{
    for (uint i = 0; i < m_ais.size(); ++i) {
        const bool isTaken = m_ais[i].setOwnPosition(port, Pos);
        if (isTaken && m_targetList[i])
            m_targetList[i]->refreshRanges();
    }
}

// Deliberate: a port whose list was never opened keeps its ranges on the screen.
void aistestdlg::slotLostPosition(uint port)
{
    if (!m_targetList[port])
        return;
    m_targetList[port]->slotLostPosition();
    updateMaxRange(port);
}

void aistestdlg::slotDlgTimer()
{
    for (uint port = 0; port < m_ais.size(); ++port) {
        if (m_rowItem[port])
            writeCell(port, MessagesColumn, QStringLiteral("%1").arg(m_ais[port].messageCount()));
    }
}

// What the router sends

void aistestdlg::slotAISMessage(QString message)
{
    deliverAisSentence(message, m_ais);
}

void aistestdlg::slotAISPosition(QString message)
{
    QGpsKrd position;
    if (parseAisPosition(message, position))
        slotNewOwnPosition(QAis::RouterSource, &position);
}

// Buttons

// -1: none of these buttons has been pressed.
int aistestdlg::portOfSender(const PerPort<QPushButton *> &buttons) const
{
    const auto *button = qobject_cast<const QPushButton *>(sender());
    const auto found = std::find(buttons.begin(), buttons.end(), button);
    return button && found != buttons.end() ? int(found - buttons.begin()) : -1;
}

void aistestdlg::slotOwnClick()
{
    const int port = portOfSender(m_ownButton);
    if (port < 0)
        return;
    AisTargetInfoDlg *&dialog = m_ownInfo[size_t(port)];
    if (!dialog) {
        dialog = new AisTargetInfoDlg(this);
        dialog->setWindowTitle(tr("AIS Own Info - input port %1").arg(port));
    }
    dialog->setTarget(m_ais[size_t(port)].ownTarget());
    dialog->setModal(false);
    dialog->refresh();
    dialog->show();
}

void aistestdlg::slotTargetClick()
{
    const int port = portOfSender(m_targetButton);
    if (port < 0)
        return;
    AisTargetListDlg *&dialog = m_targetList[size_t(port)];
    if (!dialog) {
        dialog = new AisTargetListDlg(this);
        dialog->setAis(&m_ais[size_t(port)]);
    }
    dialog->setModal(false);
    dialog->show();
}

void aistestdlg::slotAlarmClick()
{
    const int port = portOfSender(m_alarmButton);
    if (port < 0)
        return;
    AisAlarmListDlg *&dialog = m_alarmList[size_t(port)];
    if (!dialog) {
        dialog = new AisAlarmListDlg(this);
        dialog->setAis(&m_ais[size_t(port)]);
    }
    dialog->rebuild();
    dialog->setModal(false);
    dialog->show();
}
