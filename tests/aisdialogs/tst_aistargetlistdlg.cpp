#include "ais/qais.h"
#include "aisdialogs/aistargetinfodlg.h"
#include "aisdialogs/aistargetlistdlg.h"
#include "aistalk.h"
#include "fakeclock.h"

#include <QElapsedTimer>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSizeGrip>
#include <QTableWidget>
#include <QTest>

#include <functional>
#include <memory>

Q_DECLARE_METATYPE(std::function<void()>)

/*! The targets of one input port. */
class tst_aistargetlistdlg : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void takesTheTargetsThatAreThere();
    void cells_data();
    void cells();
    void nameComesWithTheStaticData();
    void newTargetIsSortedIn();
    void userSortSurvives_data();
    void userSortSurvives();
    void headerClickSorts();
    void selectionMovesWithItsRow();
    void unknownTargets();
    void refreshNeedsAnOwnPosition();
    void refreshOfManyRows();
    void lostPosition_data();
    void lostPosition();
    void hiddenListIsSortedToo();
    void writesOnChangeOnly_data();
    void writesOnChangeOnly();
    void refreshWritesOnChangeOnly();
    void fillsWithOneSort();
    void manyChangesAreOneFrame();
    void userIsServedAtOnce_data();
    void userIsServedAtOnce();
    void sameTextIsNotPainted();
    void doubleClickShowsTheTarget();
    void eachOpeningRefreshes();
    void doubleClickOnARowJustGone();
    void returnShowsTheTarget_data();
    void returnShowsTheTarget();
    void returnWithoutARow();
    void oneInformationWindow();
    void informationFollows();
    void doubleClickWithoutATarget_data();
    void doubleClickWithoutATarget();
    void agedTargetHidesItsInformation();
    void otherTargetAgesOut();
    void returningTargetIsAnother();
    void resizes_data();
    void resizes();
    void resizingGoesOnInTheDialog();

private:
    void hear(const PositionReport &report);
    void hear(const VoyageData &data);
    void setOwnPosition(double minutes);
    void ageOut(quint32 kept = 0);
    QTableWidget *table() const { return m_list->findChild<QTableWidget *>("ais_list"); }
    QStringList column(int number) const;
    AisTargetInfoDlg *info() const { return m_list->findChild<AisTargetInfoDlg *>(); }
    QString infoValue(int row) const
    {
        return info()->findChild<QTableWidget *>()->item(row, 1)->text();
    }
    int rowOf(quint32 mmsi) const { return int(column(0).indexOf(QString::number(mmsi))); }
    void doubleClick(quint32 mmsi) const;

    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<QAis> m_ais;
    std::unique_ptr<AisTargetListDlg> m_list;
};

namespace {

constexpr int rangeColumn = 2;
constexpr int longestFrame = 2500; // ms, more than that of the list

// Counts how often a widget is painted.
class PaintCount : public QObject
{
public:
    explicit PaintCount(QWidget *widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }

    int count = 0;
};

void settle()
{
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
}

} // namespace

// What a spy of layoutChanged() keeps.
void tst_aistargetlistdlg::initTestCase()
{
    qRegisterMetaType<QList<QPersistentModelIndex>>();
    qRegisterMetaType<QAbstractItemModel::LayoutChangeHint>();
}

void tst_aistargetlistdlg::init()
{
    m_clock = std::make_unique<FakeClock>();
    m_ais = std::make_unique<QAis>();
    m_ais->setPortNumber(9);
    m_list = std::make_unique<AisTargetListDlg>(nullptr);
    m_list->setAis(m_ais.get());
    m_list->show();
    connect(m_ais.get(), &QAis::signalAddTarget, m_list.get(),
            [this](uint, uint mmsi) { m_list->slotAddTarget(m_ais->findTarget(mmsi)); });
    connect(m_ais.get(), &QAis::signalUpdateTarget, m_list.get(),
            [this](uint, uint mmsi) { m_list->slotUpdateTarget(mmsi); });
    connect(m_ais.get(), &QAis::signalDeleteTarget, m_list.get(),
            [this](uint, uint mmsi) { m_list->slotDeleteTarget(mmsi); });
    setOwnPosition(0);
}

void tst_aistargetlistdlg::cleanup()
{
    m_list.reset();
    m_ais.reset();
    m_clock.reset();
}

void tst_aistargetlistdlg::hear(const PositionReport &report)
{
    m_ais->decodeMessage(QAis::TargetMessage, 1, 1, 0, 0, report.payload().constData());
}

void tst_aistargetlistdlg::hear(const VoyageData &data)
{
    m_ais->decodeMessage(QAis::TargetMessage, 1, 1, 0, VoyageData::FillBits,
                         data.payload().constData());
}

void tst_aistargetlistdlg::setOwnPosition(double minutes)
{
    QGpsKrd position;
    position.m_lat = minutes;
    m_ais->setOwnPosition(QAis::RouterSource, &position);
}

// All targets but one fall silent.
void tst_aistargetlistdlg::ageOut(quint32 kept)
{
    m_clock->advance(200);
    if (kept != 0)
        hear(AisTalk::named(kept, "KEPT"));
    m_clock->advance(100);
    m_ais->expire();
}

QStringList tst_aistargetlistdlg::column(int number) const
{
    QStringList cells;
    for (int row = 0; row < table()->rowCount(); ++row)
        cells += table()->item(row, number)->text();
    return cells;
}

void tst_aistargetlistdlg::doubleClick(quint32 mmsi) const
{
    settle();
    const QRect place = table()->visualItemRect(table()->item(rowOf(mmsi), 1));
    // Qt takes a double click for one that follows a click.
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, place.center());
    QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, place.center());
}

void tst_aistargetlistdlg::takesTheTargetsThatAreThere()
{
    for (const quint32 mmsi : {1u, 2u, 3u, 4u})
        hear(AisTalk::northOf(mmsi, mmsi % 2 ? 5 : 3));
    AisTargetListDlg late(nullptr);
    late.setAis(m_ais.get());
    QCOMPARE(late.windowTitle(), QStringLiteral("Ais Target list - input port 9"));
    const auto *list = late.findChild<QTableWidget *>();
    QStringList order;
    for (int row = 0; row < list->rowCount(); ++row)
        order += list->item(row, 0)->text();
    // By range; of those that are equal the last one in the list comes first.
    QCOMPARE(order, QStringList({"4", "2", "3", "1"}));
    QCOMPARE(column(0), order);
}

void tst_aistargetlistdlg::cells_data()
{
    QTest::addColumn<bool>("isStatic");
    QTest::addColumn<double>("minutes");
    QTest::addColumn<QStringList>("texts");

    QTest::newRow("position only") << false << 7.3 << QStringList({"211000001", "", "07.3"});
    QTest::newRow("static data only") << true << -1.0 << QStringList({"211000001", "NAME", ""});
    QTest::newRow("both") << true << 112.44 << QStringList({"211000001", "NAME", "112.4"});
}

void tst_aistargetlistdlg::cells()
{
    QFETCH(bool, isStatic);
    QFETCH(double, minutes);
    QFETCH(QStringList, texts);
    if (minutes >= 0)
        hear(AisTalk::northOf(211000001, minutes));
    if (isStatic)
        hear(AisTalk::named(211000001, "NAME"));
    QCOMPARE(table()->rowCount(), 1);
    const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
    const Qt::Alignment alignments[] = {Qt::AlignCenter, left, left};
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(table()->item(0, i)->text(), texts.at(i));
        QCOMPARE(table()->item(0, i)->textAlignment(), int(alignments[i]));
    }
}

void tst_aistargetlistdlg::nameComesWithTheStaticData()
{
    hear(AisTalk::northOf(5, 10));
    QCOMPARE(column(1), QStringList(""));
    hear(AisTalk::named(5, "FIRST"));
    QCOMPARE(column(1), QStringList("FIRST"));
    hear(AisTalk::named(5, "SECOND"));
    QCOMPARE(column(1), QStringList("SECOND"));
    hear(AisTalk::northOf(5, 11));
    QCOMPARE(column(1), QStringList("SECOND"));
    QCOMPARE(column(2), QStringList("11.0"));
}

void tst_aistargetlistdlg::newTargetIsSortedIn()
{
    hear(AisTalk::northOf(1, 10));
    hear(AisTalk::northOf(2, 8));
    hear(AisTalk::named(3, "NO RANGE"));
    hear(AisTalk::northOf(4, 9));
    hear(AisTalk::named(5, "NO RANGE"));
    hear(AisTalk::northOf(6, 100)); // by its text, not by its number
    QCOMPARE(column(2), QStringList({"", "", "08.0", "09.0", "10.0", "100.0"}));
    QCOMPARE(column(0), QStringList({"5", "3", "2", "4", "1", "6"}));
}

void tst_aistargetlistdlg::userSortSurvives_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<Qt::SortOrder>("order");
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("ship name") << 1 << Qt::AscendingOrder << QStringList({"11", "13", "12"});
    QTest::newRow("ship name, descending")
        << 1 << Qt::DescendingOrder << QStringList({"12", "13", "11"});
    QTest::newRow("MMSI") << 0 << Qt::AscendingOrder << QStringList({"11", "12", "13"});
    QTest::newRow("range, descending")
        << 2 << Qt::DescendingOrder << QStringList({"13", "11", "12"});
}

void tst_aistargetlistdlg::userSortSurvives()
{
    QFETCH(int, column);
    QFETCH(Qt::SortOrder, order);
    table()->sortByColumn(column, order);
    hear(AisTalk::northOf(11, 10));
    hear(AisTalk::named(11, "C"));
    hear(AisTalk::northOf(12, 11));
    hear(AisTalk::named(12, "D"));
    hear(AisTalk::northOf(14, 1));
    hear(AisTalk::named(11, "A"));
    hear(AisTalk::northOf(13, 12));
    hear(AisTalk::named(13, "B"));
    hear(AisTalk::northOf(12, 3));
    setOwnPosition(1);
    m_list->refreshRanges();
    m_list->slotDeleteTarget(14);
    QTEST(this->column(0), "rows");
    QCOMPARE(table()->horizontalHeader()->sortIndicatorSection(), column);
    QCOMPARE(table()->horizontalHeader()->sortIndicatorOrder(), order);
    QVERIFY(table()->isSortingEnabled());
}

void tst_aistargetlistdlg::headerClickSorts()
{
    hear(AisTalk::named(1, "B"));
    hear(AisTalk::named(2, "A"));
    hear(AisTalk::named(3, "C"));
    const QHeaderView *header = table()->horizontalHeader();
    settle();
    const QPoint name(header->sectionViewportPosition(1) + 30, header->height() / 2);
    for (const QStringList &order : {QStringList{"A", "B", "C"}, QStringList{"C", "B", "A"}}) {
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, name);
        if (column(1) != order)
            QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, name);
        QCOMPARE(column(1), order);
    }
}

void tst_aistargetlistdlg::selectionMovesWithItsRow()
{
    for (quint32 mmsi = 1; mmsi <= 50; ++mmsi)
        hear(AisTalk::northOf(mmsi, mmsi));
    table()->selectRow(rowOf(10));
    const auto verifySelected = [this] {
        const QModelIndexList rows = table()->selectionModel()->selectedRows();
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.first().row(), rowOf(10));
        QCOMPARE(table()->currentRow(), rowOf(10));
        QCOMPARE(table()->selectedItems().size(), 3);
        QCOMPARE(table()->selectedItems().first()->text(), QStringLiteral("10"));
    };
    hear(AisTalk::northOf(10, 40.5));
    QCOMPARE(rowOf(10), 39);
    verifySelected();
    hear(AisTalk::northOf(50, 0.5)); // another one passes it
    QCOMPARE(rowOf(10), 40);
    verifySelected();
    hear(AisTalk::northOf(10, 0.1));
    QCOMPARE(rowOf(10), 0);
    verifySelected();
    m_list->slotDeleteTarget(11);
    verifySelected();
}

void tst_aistargetlistdlg::unknownTargets()
{
    hear(AisTalk::northOf(1, 10));
    m_list->slotUpdateTarget(2);
    m_list->slotDeleteTarget(2);
    QCOMPARE(column(0), QStringList("1"));
}

void tst_aistargetlistdlg::refreshNeedsAnOwnPosition()
{
    hear(AisTalk::northOf(1, 10));
    setOwnPosition(3);
    QCOMPARE(column(rangeColumn), QStringList("10.0"));
    m_list->refreshRanges();
    QCOMPARE(column(rangeColumn), QStringList("07.0"));

    m_clock->advance(300);
    hear(AisTalk::named(1, "ALIVE"));
    m_ais->expire();
    QVERIFY(!m_ais->hasOwnPosition());
    table()->item(0, rangeColumn)->setText(QStringLiteral("x"));
    m_list->refreshRanges();
    QCOMPARE(column(rangeColumn), QStringList("x"));
}

void tst_aistargetlistdlg::refreshOfManyRows()
{
    for (quint32 i = 0; i < 500; ++i) {
        const quint32 group = i / 7; // of targets at the same range
        hear(AisTalk::northOf(100 + i, 1 + group * 0.1));
    }
    for (const double minutes : {2.0, 2.1, 30.0}) {
        setOwnPosition(minutes);
        m_list->refreshRanges();
        const QStringList ranges = column(rangeColumn);
        QVERIFY(std::is_sorted(ranges.begin(), ranges.end()));
        for (int row = 0; row < table()->rowCount(); ++row) {
            const QAisTarget *target = m_ais->findTarget(column(0).at(row).toUInt());
            QCOMPARE(ranges.at(row),
                     QStringLiteral("%1").arg(target->m_range, 4, 'f', 1, QLatin1Char('0')));
        }
    }
}

void tst_aistargetlistdlg::lostPosition_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<Qt::SortOrder>("order");
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QStringList>("after");

    const QStringList up = {"4", "1", "2", "3"};
    QTest::newRow("range") << 2 << Qt::AscendingOrder << up << up;
    // Sorting goes on meanwhile: each row moves to the end of those that have a range.
    QTest::newRow("range, descending: rows move while they are written")
        << 2 << Qt::DescendingOrder << QStringList({"3", "2", "1", "4"})
        << QStringList({"1", "2", "3", "4"});
    QTest::newRow("MMSI") << 0 << Qt::AscendingOrder << QStringList({"1", "2", "3", "4"})
                          << QStringList({"1", "2", "3", "4"});
    QTest::newRow("MMSI, descending")
        << 0 << Qt::DescendingOrder << QStringList({"4", "3", "2", "1"})
        << QStringList({"4", "3", "2", "1"});
}

void tst_aistargetlistdlg::lostPosition()
{
    QFETCH(int, column);
    QFETCH(Qt::SortOrder, order);
    for (const quint32 mmsi : {1u, 2u, 3u})
        hear(AisTalk::northOf(mmsi, 10 + mmsi));
    hear(AisTalk::named(4, "NO RANGE"));
    table()->sortByColumn(column, order);
    QTEST(this->column(0), "before");
    m_list->slotLostPosition();
    QCOMPARE(this->column(rangeColumn), QStringList({"", "", "", ""}));
    QVERIFY(table()->isSortingEnabled());
    QTEST(this->column(0), "after");
    // The next report of a target brings what is known then.
    hear(AisTalk::northOf(2, 20));
    QCOMPARE(table()->item(rowOf(2), rangeColumn)->text(), QStringLiteral("20.0"));
}

void tst_aistargetlistdlg::hiddenListIsSortedToo()
{
    for (quint32 mmsi = 1; mmsi <= 20; ++mmsi)
        hear(AisTalk::northOf(mmsi, mmsi));
    m_list->close();
    setOwnPosition(15);
    m_list->refreshRanges();
    hear(AisTalk::northOf(3, 15.5));
    hear(AisTalk::northOf(21, 15.2));
    m_list->slotDeleteTarget(7);
    QCOMPARE(table()->item(rowOf(3), rangeColumn)->text(), QStringLiteral("00.5"));
    QCOMPARE(table()->item(rowOf(1), rangeColumn)->text(), QStringLiteral("14.0"));
    QVERIFY(table()->isSortingEnabled());
    const QStringList ranges = column(rangeColumn);
    QCOMPARE(ranges.size(), 20);
    QVERIFY(std::is_sorted(ranges.begin(), ranges.end()));
    const QStringList rows = column(0);
    m_list->show();
    QCOMPARE(column(0), rows);
}

void tst_aistargetlistdlg::writesOnChangeOnly_data()
{
    QTest::addColumn<double>("minutes"); // where the target reports itself
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("writes");
    QTest::addColumn<bool>("moves");

    QTest::newRow("nothing") << 10.04 << QByteArray("NAME") << 0 << false;
    QTest::newRow("range") << 10.3 << QByteArray("NAME") << 1 << false;
    QTest::newRow("range, behind another row") << 13.0 << QByteArray("NAME") << 1 << true;
    QTest::newRow("range, on the way up to its equal") << 8.0 << QByteArray("NAME") << 1 << true;
    QTest::newRow("name") << 10.0 << QByteArray("OTHER") << 1 << false;
    QTest::newRow("both") << 10.3 << QByteArray("OTHER") << 2 << false;
}

// An item drops a text that it has, so the signals of the model are what tells.
void tst_aistargetlistdlg::writesOnChangeOnly()
{
    QFETCH(double, minutes);
    QFETCH(QByteArray, name);
    QFETCH(int, writes);
    QFETCH(bool, moves);
    hear(AisTalk::northOf(1, 8));
    hear(AisTalk::northOf(2, 9));
    hear(AisTalk::northOf(3, 12));
    hear(AisTalk::northOf(5, 10));
    hear(AisTalk::named(5, "NAME"));
    const QSignalSpy written(table()->model(), &QAbstractItemModel::dataChanged);
    const QSignalSpy moved(table()->model(), &QAbstractItemModel::layoutChanged);
    hear(AisTalk::northOf(5, minutes));
    hear(AisTalk::named(5, name));
    m_list->refreshRanges();
    QCOMPARE(written.size(), writes);
    QCOMPARE(!moved.isEmpty(), moves);
}

void tst_aistargetlistdlg::refreshWritesOnChangeOnly()
{
    for (quint32 mmsi = 1; mmsi <= 20; ++mmsi)
        hear(AisTalk::northOf(mmsi, mmsi + (mmsi % 2 ? 0.04 : 0.0)));
    const QSignalSpy written(table()->model(), &QAbstractItemModel::dataChanged);
    const QSignalSpy moved(table()->model(), &QAbstractItemModel::layoutChanged);
    m_list->refreshRanges();
    QCOMPARE(written.size(), 0);
    QCOMPARE(moved.size(), 0);
    setOwnPosition(-0.02); // half of them read another range then
    m_list->refreshRanges();
    QCOMPARE(written.size(), 10);
    QCOMPARE(moved.size(), 1); // one sort
}

void tst_aistargetlistdlg::fillsWithOneSort()
{
    for (quint32 mmsi = 1; mmsi <= 20; ++mmsi)
        hear(AisTalk::northOf(mmsi, 30 - mmsi));
    AisTargetListDlg late(nullptr);
    const auto *list = late.findChild<QTableWidget *>();
    const QSignalSpy moved(list->model(), &QAbstractItemModel::layoutChanged);
    late.setAis(m_ais.get());
    QCOMPARE(list->rowCount(), 20);
    QCOMPARE(moved.size(), 1);
}

void tst_aistargetlistdlg::manyChangesAreOneFrame()
{
    for (quint32 mmsi = 1; mmsi <= 20; ++mmsi)
        hear(AisTalk::northOf(mmsi, mmsi));
    QTRY_VERIFY(table()->updatesEnabled());
    QTest::qWait(longestFrame);
    PaintCount paints(table()->viewport());
    hear(AisTalk::northOf(20, 0.5));
    settle();
    QVERIFY(paints.count > 0); // the first change at once
    paints.count = 0;
    QElapsedTimer clock;
    clock.start();
    constexpr int paintsOfAFrame = 4;
    const auto mostPaints = [&clock] { // none, unless the machine takes longer than a frame
        constexpr int shortestFrame = 900; // ms
        return int(clock.elapsed() / shortestFrame) * paintsOfAFrame;
    };
    for (quint32 mmsi = 1; mmsi <= 19; ++mmsi) {
        hear(AisTalk::northOf(mmsi, 30 - mmsi));
        settle();
    }
    QVERIFY2(paints.count <= mostPaints(), qPrintable(QString::number(paints.count)));
    QTRY_VERIFY_WITH_TIMEOUT(table()->updatesEnabled(), longestFrame);
    settle();
    QVERIFY(paints.count > 0);
    QVERIFY2(paints.count <= mostPaints() + paintsOfAFrame, qPrintable(QString::number(paints.count)));
}

void tst_aistargetlistdlg::userIsServedAtOnce_data()
{
    QTest::addColumn<std::function<void()>>("act");

    QTest::newRow("scrolls") << std::function<void()>(
        [this] { table()->verticalScrollBar()->setValue(5); });
    QTest::newRow("selects") << std::function<void()>([this] { table()->selectRow(3); });
    QTest::newRow("widens a column")
        << std::function<void()>([this] { table()->setColumnWidth(0, 120); });
    QTest::newRow("sorts") << std::function<void()>(
        [this] { table()->sortByColumn(0, Qt::DescendingOrder); });
    QTest::newRow("resizes the window")
        << std::function<void()>([this] { m_list->resize(m_list->width(), 300); });
}

void tst_aistargetlistdlg::userIsServedAtOnce()
{
    QFETCH(std::function<void()>, act);
    for (quint32 mmsi = 1; mmsi <= 50; ++mmsi)
        hear(AisTalk::northOf(mmsi, mmsi));
    settle();
    hear(AisTalk::northOf(1, 60));
    hear(AisTalk::northOf(2, 61));
    QVERIFY(!table()->updatesEnabled());
    act();
    QVERIFY(table()->updatesEnabled());
}

void tst_aistargetlistdlg::sameTextIsNotPainted()
{
    hear(AisTalk::northOf(1, 10));
    settle();
    const PaintCount paints(table()->viewport());
    hear(AisTalk::northOf(1, 10.01));
    setOwnPosition(0.01);
    m_list->refreshRanges();
    settle();
    QCOMPARE(paints.count, 0);
}

void tst_aistargetlistdlg::doubleClickShowsTheTarget()
{
    hear(AisTalk::northOf(11, 10));
    hear(AisTalk::northOf(12, 12));
    doubleClick(12);
    QVERIFY(info());
    QVERIFY(info()->isVisible());
    QVERIFY(!info()->isModal());
    QVERIFY(!(info()->windowFlags() & Qt::WindowContextHelpButtonHint));
    QCOMPARE(info()->parentWidget(), m_list.get());
    QCOMPARE(info()->windowTitle(), QStringLiteral("AIS Target Info - input port 9"));
    QCOMPARE(info()->target(), m_ais->findTarget(12));
    QCOMPARE(infoValue(0), QStringLiteral("12"));
}

void tst_aistargetlistdlg::eachOpeningRefreshes()
{
    hear(AisTalk::northOf(12, 12));
    doubleClick(12);
    info()->findChild<QTableWidget *>()->item(0, 1)->setText(QStringLiteral("x"));
    doubleClick(12);
    QCOMPARE(infoValue(0), QStringLiteral("12"));
}

// Between the two clicks: the table tells the number of a row that is gone by then.
void tst_aistargetlistdlg::doubleClickOnARowJustGone()
{
    hear(AisTalk::northOf(11, 10));
    hear(AisTalk::northOf(12, 12));
    ageOut(11);
    emit table()->cellDoubleClicked(1, 0);
    QVERIFY(!info());
    emit table()->cellDoubleClicked(-1, 0);
    QVERIFY(!info());
}

void tst_aistargetlistdlg::returnShowsTheTarget_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
}

void tst_aistargetlistdlg::returnShowsTheTarget()
{
    QFETCH(Qt::Key, key);
    hear(AisTalk::northOf(11, 10));
    hear(AisTalk::northOf(12, 12));
    settle();
    table()->setFocus();
    table()->setCurrentCell(rowOf(12), 1);
    QTest::keyClick(table(), key);
    QVERIFY(info());
    QVERIFY(info()->isVisible());
    QCOMPARE(info()->target(), m_ais->findTarget(12));
    QVERIFY(m_list->isVisible());
}

void tst_aistargetlistdlg::returnWithoutARow()
{
    settle();
    table()->setFocus();
    QTest::keyClick(table(), Qt::Key_Return);
    QVERIFY(!info());
    QVERIFY(m_list->isVisible());
}

void tst_aistargetlistdlg::oneInformationWindow()
{
    hear(AisTalk::northOf(11, 10));
    hear(AisTalk::northOf(12, 12));
    doubleClick(12);
    const AisTargetInfoDlg *opened = info();
    doubleClick(11);
    QCOMPARE(m_list->findChildren<AisTargetInfoDlg *>().size(), 1);
    QCOMPARE(info(), opened);
    QCOMPARE(infoValue(0), QStringLiteral("11"));
    info()->close();
    doubleClick(12);
    QVERIFY(info()->isVisible());
    QCOMPARE(info(), opened);
}

void tst_aistargetlistdlg::informationFollows()
{
    hear(AisTalk::northOf(11, 10));
    hear(AisTalk::northOf(12, 12));
    doubleClick(12);
    hear(AisTalk::named(11, "ANOTHER"));
    QCOMPARE(infoValue(3), QString());
    hear(AisTalk::named(12, "MINE"));
    QCOMPARE(infoValue(3), QStringLiteral("MINE"));
}

void tst_aistargetlistdlg::doubleClickWithoutATarget_data()
{
    QTest::addColumn<quint32>("mmsi");

    QTest::newRow("MMSI 0") << 0u;
    QTest::newRow("a target that the port doesn't know") << 77u;
}

void tst_aistargetlistdlg::doubleClickWithoutATarget()
{
    QFETCH(quint32, mmsi);
    QAisTarget stranger;
    stranger.m_mmsi = mmsi;
    if (mmsi == 0)
        hear(AisTalk::northOf(0, 10));
    else
        m_list->slotAddTarget(&stranger);
    QCOMPARE(table()->rowCount(), 1);
    doubleClick(mmsi);
    QVERIFY(!info());
}

void tst_aistargetlistdlg::agedTargetHidesItsInformation()
{
    hear(AisTalk::northOf(11, 10));
    hear(AisTalk::northOf(12, 12));
    doubleClick(12);
    const QAisTarget *target = m_ais->findTarget(12);
    ageOut(11);
    QCOMPARE(column(0), QStringList("11"));
    QVERIFY(!info()->isVisible());
    QCOMPARE(info()->target(), target);
    // Its row is gone: the place where it stood shows nothing to click.
    const QPoint below = table()->visualItemRect(table()->item(0, 0)).bottomLeft() + QPoint(5, 9);
    QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, below);
    QVERIFY(!info()->isVisible());
    // The window's timer goes on reading it.
    m_clock->advance(5);
    QTRY_COMPARE_WITH_TIMEOUT(infoValue(18), QStringLiteral("05:05"), 3000);
}

void tst_aistargetlistdlg::otherTargetAgesOut()
{
    hear(AisTalk::northOf(11, 10));
    hear(AisTalk::northOf(12, 12));
    doubleClick(11);
    ageOut(11);
    QVERIFY(info()->isVisible());
    QCOMPARE(column(0), QStringList("11"));
    QCOMPARE(infoValue(3), QStringLiteral("KEPT"));
}

void tst_aistargetlistdlg::returningTargetIsAnother()
{
    hear(AisTalk::northOf(12, 12));
    doubleClick(12);
    const QAisTarget *old = info()->target();
    ageOut();
    QCOMPARE(table()->rowCount(), 0);
    hear(AisTalk::named(12, "RETURNED"));
    QCOMPARE(column(1), QStringList("RETURNED"));
    QCOMPARE(info()->target(), old);
    QVERIFY(!info()->isVisible());
    QCOMPARE(infoValue(3), QString());
    doubleClick(12);
    QVERIFY(info()->target() != old);
    QCOMPARE(infoValue(3), QStringLiteral("RETURNED"));
}

void tst_aistargetlistdlg::resizes_data()
{
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("listHeight");

    QTest::newRow("higher") << 700 << 694;
    QTest::newRow("lower") << 100 << 94;
    QTest::newRow("lowest") << 10 << 4;
    QTest::newRow("too low: nothing happens") << 9 << 394;
}

void tst_aistargetlistdlg::resizes()
{
    QFETCH(int, height);
    m_list->resize(m_list->width(), 400);
    QCOMPARE(table()->height(), 394);
    const int width = m_list->width();
    m_list->resize(width + 50, height);
    QCOMPARE(m_list->size(), QSize(width, height));
    QTEST(table()->height(), "listHeight");
}

// A dialog's own handler moves the grip to the corner.
void tst_aistargetlistdlg::resizingGoesOnInTheDialog()
{
    m_list->setSizeGripEnabled(true);
    const auto *grip = m_list->findChild<QSizeGrip *>();
    m_list->resize(m_list->width(), 300);
    QCOMPARE(grip->geometry().bottom(), 299);
    m_list->resize(m_list->width(), 9);
    QCOMPARE(grip->geometry().bottom(), 299);
}

QTEST_MAIN(tst_aistargetlistdlg)
#include "tst_aistargetlistdlg.moc"
