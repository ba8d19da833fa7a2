#include "aisdialogs/aistargetlistdlg.h"

#include "ais/qais.h"
#include "aisdialogs/aistargetinfodlg.h"
#include "aisdialogs/celltext.h"
#include "aisdialogs/paintpace.h"
#include "ui_aistargetlistdlg.h"

#include <QResizeEvent>
#include <QShortcut>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr int mmsiColumn = 0;
constexpr int nameColumn = 1;
constexpr int rangeColumn = 2;

constexpr int mmsiPercent = 25;
constexpr int namePercent = 60;

constexpr int lowestWindow = 10;
constexpr int spaceBelow = 6;

// A cell that is ordered by its text, as any other, but has it and its number at hand: a sort
// compares some thousand times, and an own position looks at all ranges of all lists.
class ListItem : public QTableWidgetItem
{
public:
    explicit ListItem(const QString &text) : QTableWidgetItem(UserType)
    {
        ListItem::setData(Qt::DisplayRole, text);
    }

    bool operator<(const QTableWidgetItem &other) const override
    {
        const auto &cell = static_cast<const ListItem &>(other);
        const bool isPassing = m_passesEquals || cell.m_passesEquals;
        return isPassing ? m_text <= cell.m_text : m_text < cell.m_text;
    }

    // A table that sorts puts a cell that is written before its equals; while this is set, behind
    // them.
    void setPassesEquals(bool passes) { m_passesEquals = passes; }

    void setData(int role, const QVariant &value) override
    {
        if (role == Qt::DisplayRole || role == Qt::EditRole)
            setShown(value.toString());
        QTableWidgetItem::setData(role, value);
    }

    const QString &shown() const { return m_text; }

    // Not a number where the text is none.
    double number() const { return m_number; }

    // Whether the text is certainly that of the range: half a step of it, less what rounding may
    // do.
    bool reads(double range) const
    {
        constexpr double tolerance = 0.0499;
        return std::abs(range - m_number) < tolerance;
    }

private:
    void setShown(const QString &text)
    {
        bool isNumber = false;
        m_text = text;
        m_number = text.toDouble(&isNumber);
        if (!isNumber)
            m_number = std::numeric_limits<double>::quiet_NaN();
    }

    QString m_text;
    double m_number = 0;
    bool m_passesEquals = false;
};

ListItem *cellAt(const QTableWidget *table, int row, int column)
{
    return static_cast<ListItem *>(table->item(row, column));
}

const QString &textAt(const QTableWidget *table, int row, int column)
{
    return cellAt(table, row, column)->shown();
}

uint mmsiAt(const QTableWidget *table, int row)
{
    return uint(cellAt(table, row, mmsiColumn)->number());
}

// The numbers of the rows. The last is the widest; Qt would measure two hundred of them behind each
// sort.
class RowNumbers : public QHeaderView
{
public:
    explicit RowNumbers(const QHeaderView &model, QWidget *parent)
        : QHeaderView(Qt::Vertical, parent)
    {
        setMinimumSectionSize(model.minimumSectionSize());
        setDefaultSectionSize(model.defaultSectionSize());
        setSectionsClickable(model.sectionsClickable());
        setHighlightSections(model.highlightSections());
    }

    QSize sizeHint() const override
    {
        return count() > 0 ? sectionSizeFromContents(count() - 1) : QHeaderView::sizeHint();
    }
};

QString mmsiText(uint mmsi)
{
    return QStringLiteral("%1").arg(mmsi);
}

QString nameOf(const QAisTarget &target)
{
    return target.m_staticValid ? QStringLiteral("%1").arg(target.m_shipName) : QString();
}

// Empty without a target, or without a range.
QString rangeOf(const QAisTarget *target)
{
    return target && target->m_rangeValid ? rangeText(target->m_range) : QString();
}

} // namespace

AisTargetListDlg::AisTargetListDlg(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::AisTargetListDlg>())
{
    ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    QTableWidget *table = ui->ais_list;

    m_pace = new PaintPace(table);
    table->setVerticalHeader(new RowNumbers(*table->verticalHeader(), table));

    const int largestHeight = maximumHeight();
    scaleTableWindow(this, table);
    setMinimumHeight(0);
    setMaximumHeight(largestHeight);

    const int percent = (table->width() - table->verticalHeader()->defaultSectionSize()) / 100;
    table->setColumnWidth(mmsiColumn, percent * mmsiPercent);
    table->setColumnWidth(nameColumn, percent * namePercent);
    // What it has at least; stretched, it takes what the others leave.
    table->setColumnWidth(rangeColumn, table->horizontalHeader()->minimumSectionSize());
    elideTitles(table);
    table->sortByColumn(rangeColumn, Qt::AscendingOrder);
    connect(table, &QTableWidget::cellDoubleClicked, this, &AisTargetListDlg::showTarget);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *open = new QShortcut(key, table, nullptr, nullptr, Qt::WidgetShortcut);
        connect(open, &QShortcut::activated, this, &AisTargetListDlg::showCurrentTarget);
    }
}

AisTargetListDlg::~AisTargetListDlg() = default;

void AisTargetListDlg::setAis(QAis *ais)
{
    m_ais = ais;
    const int count = ais->targetCount();
    if (count > 0) {
        // Each comes in at the top, so the last one of the list ends there.
        changeAndSort([this, ais, count] {
            ui->ais_list->setRowCount(count);
            for (int i = 0; i < count; ++i)
                fillRow(count - 1 - i, *ais->targetAt(i));
        });
    }
    setWindowTitle(tr("Ais Target list - input port %1").arg(ais->portNumber()));
}

// No row moves while \a change is written. Switched on again, the table sorts itself by the column
// that the user has chosen; rows that are equal keep their order.
template <typename Change> void AisTargetListDlg::changeAndSort(const Change &change)
{
    m_pace->beginChange();
    ui->ais_list->setSortingEnabled(false);
    change();
    ui->ais_list->setSortingEnabled(true);
}

void AisTargetListDlg::slotAddTarget(QAisTarget *pTarget)
{
    changeAndSort([this, pTarget] {
        ui->ais_list->insertRow(0);
        fillRow(0, *pTarget);
    });
}

void AisTargetListDlg::fillRow(int row, const QAisTarget &target)
{
    const auto put = [this, row](int column, const QString &text, Qt::Alignment alignment) {
        auto *item = new ListItem(text);
        item->setData(Qt::TextAlignmentRole, int(alignment));
        ui->ais_list->setItem(row, column, item);
    };
    const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
    put(mmsiColumn, mmsiText(target.m_mmsi), Qt::AlignCenter);
    m_cells.insert(target.m_mmsi, ui->ais_list->item(row, mmsiColumn));
    put(nameColumn, nameOf(target), left);
    put(rangeColumn, rangeOf(&target), left);
}

void AisTargetListDlg::slotUpdateTarget(uint mmsi)
{
    const QAisTarget *target = m_ais->findTarget(mmsi);
    if (!target)
        return;
    if (isInfoOf(target))
        m_info->refresh();
    const int row = rowOf(mmsi);
    if (row < 0)
        return;
    const QTableWidget *table = ui->ais_list;
    const QString &name = textAt(table, row, nameColumn);
    const QString texts[] = {textAt(table, row, mmsiColumn),
                             target->m_staticValid ? nameOf(*target) : name, rangeOf(target)};
    if (name == texts[nameColumn] && textAt(table, row, rangeColumn) == texts[rangeColumn])
        return;
    // Found before any is written: the row moves.
    QTableWidgetItem *const cells[] = {table->item(row, nameColumn), table->item(row, rangeColumn)};
    const int column = table->horizontalHeader()->sortIndicatorSection();
    ListItem *place = cellAt(table, row, column);
    m_pace->beginChange();
    // As if all rows were sorted anew.
    place->setPassesEquals(goesUp(row, texts[column]));
    writeText(cells[0], texts[nameColumn]);
    writeText(cells[1], texts[rangeColumn]);
    place->setPassesEquals(false);
}

// Whether \a row goes up when it reads \a text in the column sorted by. Rows that are equal keep
// their order, so it stands behind its equals then, and before them on the way down.
bool AisTargetListDlg::goesUp(int row, const QString &text) const
{
    const QTableWidget *table = ui->ais_list;
    const QHeaderView *header = table->horizontalHeader();
    if (row == 0)
        return false;
    const QString &above = textAt(table, row - 1, header->sortIndicatorSection());
    return header->sortIndicatorOrder() == Qt::AscendingOrder ? text < above : text > above;
}

void AisTargetListDlg::slotDeleteTarget(uint mmsi)
{
    // The other rows keep their order.
    const int row = rowOf(mmsi);
    if (row >= 0) {
        m_pace->beginChange();
        m_cells.remove(mmsi);
        ui->ais_list->removeRow(row);
    }
    // Its target stays, and its timer goes on reading it.
    if (isInfoOf(m_ais->findTarget(mmsi)))
        m_info->setVisible(false);
}

void AisTargetListDlg::refreshRanges()
{
    if (!m_ais->hasOwnPosition())
        return;
    const QTableWidget *table = ui->ais_list;
    std::vector<std::pair<QTableWidgetItem *, QString>> changes;
    for (int row = 0; row < table->rowCount(); ++row) {
        const QAisTarget *target = m_ais->findTarget(mmsiAt(table, row));
        ListItem *range = cellAt(table, row, rangeColumn);
        if (target && target->m_rangeValid && range->reads(target->m_range))
            continue;
        QString text = rangeOf(target);
        if (range->shown() != text)
            changes.emplace_back(range, std::move(text));
    }
    if (changes.empty())
        return;
    changeAndSort([&changes] {
        for (const auto &[range, text] : changes)
            range->setText(text);
    });
}

// Deliberate: sorting is not stopped here, so in a descending table each row moves to the end while
// it is being written, and they end in reverse order.
void AisTargetListDlg::slotLostPosition()
{
    QVector<QTableWidgetItem *> ranges;
    for (int row = 0; row < ui->ais_list->rowCount(); ++row)
        ranges += ui->ais_list->item(row, rangeColumn);
    for (QTableWidgetItem *range : qAsConst(ranges))
        writeText(range, QString());
}

// -1: it has none.
int AisTargetListDlg::rowOf(uint mmsi) const
{
    const QTableWidgetItem *cell = m_cells.value(mmsi);
    return cell ? ui->ais_list->row(cell) : -1;
}

bool AisTargetListDlg::isInfoOf(const QAisTarget *target) const
{
    return target && m_info && m_info->target() == target;
}

void AisTargetListDlg::showCurrentTarget()
{
    showTarget(ui->ais_list->currentRow());
}

void AisTargetListDlg::showTarget(int row)
{
    // The row may have gone between the two clicks.
    const QTableWidgetItem *item = ui->ais_list->item(row, mmsiColumn);
    const uint mmsi = item ? item->text().toUInt() : 0;
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
    m_pace->paintNow();
    ui->ais_list->setFixedHeight(qMax(1, height() - spaceBelow));
    QDialog::resizeEvent(event);
}
