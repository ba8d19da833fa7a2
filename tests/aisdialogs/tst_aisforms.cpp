#include "ais/qais.h"
#include "aisdialogs/aisalarmlistdlg.h"
#include "aisdialogs/aistargetinfodlg.h"
#include "aisdialogs/aistargetlistdlg.h"
#include "aisdialogs/aistestdlg.h"
#include "aistalk.h"
#include "support/formcheck.h"
#include "widgets/uiscale.h"

#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QStyleOptionHeader>
#include <QTableWidget>
#include <QTest>

#include <memory>

/*! The forms of the AIS test. Runs at 96 and at 144 dots per inch. */
class tst_aisforms : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void dialogs_data();
    void dialogs();
    void sizes_data();
    void sizes();
    void tables_data();
    void tables();
    void headers_data();
    void headers();
    void testTable();
    void targetTable();
    void infoTable();
    void alarmTable();
    void rowsFit();
    void textsFit_data();
    void textsFit();
    void titlesStayOffTheArrow_data();
    void titlesStayOffTheArrow();
};

using namespace FormCheck;

namespace {

std::unique_ptr<QDialog> make(const QString &name)
{
    if (name == QLatin1String("aistestdlg"))
        return std::make_unique<aistestdlg>(nullptr);
    if (name == QLatin1String("AisTargetListDlg"))
        return std::make_unique<AisTargetListDlg>(nullptr);
    if (name == QLatin1String("AisTargetInfoDlg"))
        return std::make_unique<AisTargetInfoDlg>(nullptr);
    if (name == QLatin1String("AisAlarmListDlg"))
        return std::make_unique<AisAlarmListDlg>(nullptr);
    qFatal("no dialog %s", qPrintable(name));
    return nullptr;
}

std::unique_ptr<QDialog> makeCurrent()
{
    return make(QString::fromLatin1(QTest::currentDataTag()));
}

QTableWidget *tableOf(const QDialog &dialog)
{
    return dialog.findChild<QTableWidget *>();
}

QStringList titlesOf(const QTableWidget *table)
{
    QStringList titles;
    for (int column = 0; column < table->columnCount(); ++column) {
        const QTableWidgetItem *item = table->horizontalHeaderItem(column);
        titles += item ? item->text() : QString();
    }
    return titles;
}

} // namespace

void tst_aisforms::initTestCase()
{
    QCOMPARE(ui_scale(), expectedScale());
}

void tst_aisforms::dialogs_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QRect>("place");

    QTest::newRow("aistestdlg") << "AIS info"
                                << "ais_table" << QRect(2, 2, 602, 193);
    QTest::newRow("AisTargetListDlg") << "Ais Target List"
                                      << "ais_list" << QRect(2, 2, 352, 432);
    QTest::newRow("AisTargetInfoDlg") << "Dialog"
                                      << "target_info_table" << QRect(3, 3, 383, 583);
    QTest::newRow("AisAlarmListDlg") << "Ais Alarms Info"
                                     << "ais_alarm_list" << QRect(2, 0, 622, 220);
}

void tst_aisforms::dialogs()
{
    QFETCH(QString, table);
    QFETCH(QRect, place);
    const auto dialog = makeCurrent();
    QCOMPARE(dialog->objectName(), QString::fromLatin1(QTest::currentDataTag()));
    QTEST(dialog->windowTitle(), "title");
    QVERIFY(!dialog->isModal());
    // A dialog as any other, without the button for help.
    QCOMPARE(dialog->windowFlags(), QDialog().windowFlags() & ~Qt::WindowContextHelpButtonHint);
    const auto *widget = dialog->findChild<QTableWidget *>(table);
    QVERIFY(widget);
    QCOMPARE(widget->geometry(), cut(place));
    QCOMPARE(widget->minimumSize(), cut(place.size()));
}

void tst_aisforms::sizes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("freeWidth");
    QTest::addColumn<bool>("freeHeight");
    QTest::addColumn<QSize>("shownTable"); // beside the window's size; empty: as in the form

    QTest::newRow("aistestdlg") << QSize(606, 197) << false << false << QSize();
    QTest::newRow("AisTargetListDlg") << QSize(355, 434) << false << true << QSize(-1, 6);
    QTest::newRow("AisTargetInfoDlg") << QSize(387, 587) << false << false << QSize();
    QTest::newRow("AisAlarmListDlg") << QSize(626, 222) << true << true << QSize(2, 6);
}

void tst_aisforms::sizes()
{
    QFETCH(QSize, size);
    QFETCH(bool, freeWidth);
    QFETCH(bool, freeHeight);
    QFETCH(QSize, shownTable);
    const auto dialog = makeCurrent();
    QCOMPARE(dialog->size(), cut(size));
    QCOMPARE(dialog->minimumWidth(), freeWidth ? 0 : cut(size.width()));
    QCOMPARE(dialog->maximumWidth(), freeWidth ? QWIDGETSIZE_MAX : cut(size.width()));
    QCOMPARE(dialog->minimumHeight(), freeHeight ? 0 : cut(size.height()));
    QCOMPARE(dialog->maximumHeight(), freeHeight ? QWIDGETSIZE_MAX : cut(size.height()));

    const QTableWidget *table = tableOf(*dialog);
    QSize expected = table->size();
    if (shownTable.width() > 0)
        expected.setWidth(dialog->width() - shownTable.width());
    if (shownTable.height() > 0)
        expected.setHeight(dialog->height() - shownTable.height());
    dialog->show();
    QCOMPARE(dialog->size(), cut(size));
    QCOMPARE(table->size(), expected);
}

void tst_aisforms::tables_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("columns");
    QTest::addColumn<bool>("overwrite");
    QTest::addColumn<QAbstractItemView::SelectionMode>("mode");
    QTest::addColumn<QAbstractItemView::SelectionBehavior>("behavior");
    QTest::addColumn<bool>("sorting");
    QTest::addColumn<Qt::TextElideMode>("elide");

    using View = QAbstractItemView;
    QTest::newRow("aistestdlg") << 0 << 8 << false << View::NoSelection << View::SelectRows << false
                                << Qt::ElideNone;
    QTest::newRow("AisTargetListDlg")
        << 0 << 3 << false << View::SingleSelection << View::SelectRows << true << Qt::ElideNone;
    QTest::newRow("AisTargetInfoDlg")
        << 19 << 2 << false << View::NoSelection << View::SelectItems << false << Qt::ElideRight;
    QTest::newRow("AisAlarmListDlg")
        << 0 << 5 << true << View::NoSelection << View::SelectRows << true << Qt::ElideRight;
}

void tst_aisforms::tables()
{
    const auto dialog = makeCurrent();
    const QTableWidget *table = tableOf(*dialog);
    QTEST(table->rowCount(), "rows");
    QTEST(table->columnCount(), "columns");
    QCOMPARE(table->editTriggers(), QAbstractItemView::EditTriggers());
    QVERIFY(!table->tabKeyNavigation());
    QVERIFY(!table->showDropIndicator());
    QTEST(table->dragDropOverwriteMode(), "overwrite");
    QVERIFY(table->alternatingRowColors());
    QTEST(table->selectionMode(), "mode");
    QTEST(table->selectionBehavior(), "behavior");
    QTEST(table->isSortingEnabled(), "sorting");
    QTEST(table->textElideMode(), "elide");
}

void tst_aisforms::headers_data()
{
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<bool>("horizontal");
    QTest::addColumn<bool>("vertical");
    QTest::addColumn<bool>("stretched"); // the last section

    QTest::newRow("aistestdlg") << QStringList(
        {"Input\nPort", "Own\nData", "Message\nCount", "Targets\nCount", "AIS\nTargets",
         "Current\nMax Range", "All Time\nMax Range", "Alarms"})
                                << true << false << false;
    QTest::newRow("AisTargetListDlg")
        << QStringList({"MMSI", "Ship Name", "Range"}) << true << true << true;
    QTest::newRow("AisTargetInfoDlg") << QStringList({"", ""}) << false << false << true;
    QTest::newRow("AisAlarmListDlg")
        << QStringList({"Alarm Id", "Time", "Condition", "Acknowledged", "Alarm"}) << true << true
        << true;
}

void tst_aisforms::headers()
{
    const auto dialog = makeCurrent();
    const QTableWidget *table = tableOf(*dialog);
    QTEST(titlesOf(table), "titles");
    QTEST(!table->horizontalHeader()->isHidden(), "horizontal");
    QTEST(!table->verticalHeader()->isHidden(), "vertical");
    QTEST(table->horizontalHeader()->stretchLastSection(), "stretched");
}

void tst_aisforms::testTable()
{
    const aistestdlg dialog(nullptr);
    const QTableWidget *table = tableOf(dialog);
    QCOMPARE(table->frameShape(), QFrame::Box);
    QCOMPARE(table->frameShadow(), QFrame::Raised);
    QCOMPARE(table->midLineWidth(), 1);
    QCOMPARE(table->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(!table->wordWrap());
    QVERIFY(!table->isCornerButtonEnabled());
    for (int column = 0; column < 8; ++column)
        QCOMPARE(table->horizontalHeader()->sectionResizeMode(column), QHeaderView::Stretch);
}

void tst_aisforms::targetTable()
{
    const AisTargetListDlg dialog(nullptr);
    const QTableWidget *table = tableOf(dialog);
    const QHeaderView *header = table->horizontalHeader();
    QCOMPARE(table->horizontalScrollMode(), QAbstractItemView::ScrollPerPixel);
    QCOMPARE(table->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    QVERIFY(table->showGrid());
    QCOMPARE(table->gridStyle(), Qt::SolidLine);
    QCOMPARE(header->minimumSectionSize(), 30);
    QCOMPARE(header->sortIndicatorSection(), 2);
    QCOMPARE(header->sortIndicatorOrder(), Qt::AscendingOrder);
    QCOMPARE(table->horizontalHeaderItem(2)->textAlignment(),
             int(Qt::AlignLeft | Qt::AlignVCenter));
    const int percent = (cut(352) - table->verticalHeader()->defaultSectionSize()) / 100;
    QCOMPARE(table->columnWidth(0), 25 * percent);
    QCOMPARE(table->columnWidth(1), 60 * percent);
    for (int column = 0; column < 3; ++column)
        QCOMPARE(header->sectionResizeMode(column), QHeaderView::Interactive);
}

void tst_aisforms::infoTable()
{
    const AisTargetInfoDlg dialog(nullptr);
    const QTableWidget *table = tableOf(dialog);
    QCOMPARE(table->columnWidth(0), cut(383) / 100 * 50);
    const QStringList labels = {
        "MMSI",
        "IMO",
        "Call Sign",
        "Ship Name",
        "Position Fix Type",
        "Position Accuracy",
        "Position",
        "Speed Over Ground",
        "Course Over Ground",
        "True Heading",
        "Rate of Turn",
        "Navigation Status",
        "Ship Type",
        "Length",
        "Breadths",
        "Draught",
        "Destination",
        "ETA",
        "Last Update",
    };
    for (int row = 0; row < 19; ++row) {
        QCOMPARE(table->item(row, 0)->text(), labels.at(row));
        QVERIFY(table->item(row, 1));
    }
}

void tst_aisforms::alarmTable()
{
    const AisAlarmListDlg dialog(nullptr);
    const QTableWidget *table = tableOf(dialog);
    // Of the design width on every screen.
    QCOMPARE(table->columnWidth(0), 62);
    QCOMPARE(table->columnWidth(1), 62);
    QCOMPARE(table->columnWidth(2), 124);
    QCOMPARE(table->columnWidth(3), 124);
}

// The whole of the information window is in sight, and so are some rows of the test.
void tst_aisforms::rowsFit()
{
    AisTargetInfoDlg info(nullptr);
    info.show();
    QCOMPARE(tableOf(info)->verticalScrollBar()->maximum(), 0);

    aistestdlg dialog(nullptr);
    dialog.show();
    for (uint port = 0; port < 12; ++port)
        dialog.slotAISMessage(AisTalk::heard(port, PositionReport()));
    QCoreApplication::processEvents();
    const QTableWidget *table = tableOf(dialog);
    QVERIFY(table->viewport()->height() >= 4 * table->rowHeight(0));
    for (int column = 0; column < 8; ++column) {
        const QSize title = textSize(table->horizontalHeader(), titlesOf(table).at(column));
        QVERIFY(title.width() <= table->columnWidth(column));
        QVERIFY(title.height() <= table->horizontalHeader()->height());
    }
    const auto buttons = table->findChildren<QPushButton *>();
    QCOMPARE(buttons.size(), 36);
    for (const QPushButton *button : buttons) {
        QVERIFY(isInsideParent(button));
        QVERIFY(textSize(button, button->text()).width() + 6 <= button->width());
        QVERIFY(textSize(button, button->text()).height() <= button->height());
    }
}

void tst_aisforms::textsFit_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("text");

    QTest::newRow("MMSI") << 0 << "888888888";
    QTest::newRow("ship name of twenty letters") << 1 << "MEDITERRANEAN QUEENS";
    QTest::newRow("range") << 2 << "888.8";
}

void tst_aisforms::textsFit()
{
    constexpr int margins = 8;
    QFETCH(int, column);
    QFETCH(QString, text);
    AisTargetListDlg dialog(nullptr);
    dialog.show();
    const QTableWidget *table = tableOf(dialog);
    QVERIFY(textSize(table, text).width() + margins <= table->columnWidth(column));
}

void tst_aisforms::titlesStayOffTheArrow_data()
{
    QTest::addColumn<QString>("dialog");
    QTest::addColumn<int>("column");

    for (int column = 0; column < 3; ++column)
        QTest::addRow("target list, column %d", column) << "AisTargetListDlg" << column;
    for (int column = 0; column < 5; ++column)
        QTest::addRow("alarm list, column %d", column) << "AisAlarmListDlg" << column;
}

// However narrow the column, a title begins with its first letters, and nothing stands under the
// arrow.
void tst_aisforms::titlesStayOffTheArrow()
{
    QFETCH(QString, dialog);
    QFETCH(int, column);
    const auto window = make(dialog);
    QTableWidget *table = tableOf(*window);
    QHeaderView *header = table->horizontalHeader();
    header->setStretchLastSection(false);
    window->show();
    table->sortByColumn(column, Qt::AscendingOrder);
    const QString title = table->horizontalHeaderItem(column)->text();
    int settled = 0;
    for (int width = 30; width < 160; width += 7) {
        table->setColumnWidth(column, width);
        QStyleOptionHeader option;
        option.initFrom(header);
        option.rect = QRect(0, 0, width, header->height());
        option.state |= QStyle::State_Horizontal;
        option.sortIndicator = QStyleOptionHeader::SortDown;
        const QRect label =
            header->style()->subElementRect(QStyle::SE_HeaderLabel, &option, header);
        const QRect arrow =
            header->style()->subElementRect(QStyle::SE_HeaderArrow, &option, header);
        const auto grab = [&](const QString &text) {
            table->horizontalHeaderItem(column)->setText(text);
            const QRect section =
                option.rect.translated(header->sectionViewportPosition(column), 0);
            return header->viewport()->grab(section).toImage();
        };
        const QImage painted = grab(title);
        const auto elided = [&](const QString &text) {
            return header->fontMetrics().elidedText(text, Qt::ElideRight, label.width());
        };
        // With its dots a text may be a pixel too wide, and would be elided once more.
        const bool isSettled = elided(elided(title)) == elided(title);
        QVERIFY2(!isSettled || painted == grab(elided(title)), qPrintable(QString::number(width)));
        settled += isSettled;
        QVERIFY2(painted.copy(arrow) == grab(QString()).copy(arrow),
                 qPrintable(QString::number(width)));
    }
    QVERIFY(settled > 10);
}

TK7_FORM_TEST_MAIN(tst_aisforms)
#include "tst_aisforms.moc"
