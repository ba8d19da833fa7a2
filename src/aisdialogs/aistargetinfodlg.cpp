#include "aisdialogs/aistargetinfodlg.h"

#include "ais/qaistarget.h"
#include "ais/timeofday.h"
#include "aisdialogs/celltext.h"
#include "ui_aistargetinfodlg.h"

namespace {

constexpr int labelColumn = 0;
constexpr int valueColumn = 1;
constexpr int labelPercent = 50;
constexpr int ageRow = 18;
constexpr int ageInterval = 1000; // ms

QString mmsiText(const QAisTarget &target)
{
    return QStringLiteral("%1").arg(target.m_mmsi);
}

template <QString (QAisTarget::*text)() const> QString textOf(const QAisTarget &target)
{
    return (target.*text)();
}

struct Line
{
    const char *label;
    QString (*value)(const QAisTarget &);
};

// The rows, but for the value of the last one, which the timer writes.
constexpr Line lines[] = {
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "MMSI"), mmsiText},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "IMO"), textOf<&QAisTarget::imoText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Call Sign"), textOf<&QAisTarget::callSignText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Ship Name"), textOf<&QAisTarget::nameText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Position Fix Type"), textOf<&QAisTarget::fixTypeText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Position Accuracy"), textOf<&QAisTarget::accuracyText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Position"), textOf<&QAisTarget::positionText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Speed Over Ground"), textOf<&QAisTarget::speedText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Course Over Ground"), textOf<&QAisTarget::courseText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "True Heading"), textOf<&QAisTarget::headingText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Rate of Turn"), textOf<&QAisTarget::rateOfTurnText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Navigation Status"), textOf<&QAisTarget::statusText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Ship Type"), textOf<&QAisTarget::shipTypeText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Length"), textOf<&QAisTarget::lengthText>},
    // Deliberately spelled so.
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Breadths"), textOf<&QAisTarget::breadthText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Draught"), textOf<&QAisTarget::draughtText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Destination"), textOf<&QAisTarget::destinationText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "ETA"), textOf<&QAisTarget::etaText>},
    {QT_TRANSLATE_NOOP("AisTargetInfoDlg", "Last Update"), nullptr},
};

} // namespace

AisTargetInfoDlg::AisTargetInfoDlg(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::AisTargetInfoDlg>())
{
    ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    writeLabels();

    QTableWidget *table = ui->target_info_table;
    scaleTableWindow(this, table);
    table->setColumnWidth(labelColumn, table->width() / 100 * labelPercent);

    connect(&m_ageTimer, &QTimer::timeout, this, &AisTargetInfoDlg::showAge);
    m_ageTimer.start(ageInterval);
}

AisTargetInfoDlg::~AisTargetInfoDlg() = default;

void AisTargetInfoDlg::writeLabels()
{
    int row = 0;
    for (const Line &line : lines) {
        ui->target_info_table->setItem(row, labelColumn, new QTableWidgetItem(tr(line.label)));
        ui->target_info_table->setItem(row, valueColumn, new QTableWidgetItem);
        ++row;
    }
}

void AisTargetInfoDlg::refresh()
{
    if (!m_target || m_target->m_mmsi == 0)
        return;
    for (int row = 0; row < ageRow; ++row)
        writeText(ui->target_info_table->item(row, valueColumn), lines[row].value(*m_target));
}

void AisTargetInfoDlg::showAge()
{
    if (!m_target)
        return;
    const QTime &last = m_target->m_lastUpdate;
    const int age = last.isValid() ? TimeOfDay::msecsSince(last) : 0;
    // Deliberate: a time of day without its hour, so the age wraps after an hour.
    const QString text = QTime(0, 0).addMSecs(age).toString(QStringLiteral("mm:ss"));
    writeText(ui->target_info_table->item(ageRow, valueColumn), text);
}
