#include "aistalk.h"
#include "fakeclock.h"

#include "aisdialogs/aisalarmlistdlg.h"
#include "aisdialogs/aistargetinfodlg.h"
#include "aisdialogs/aistargetlistdlg.h"
#include "aisdialogs/aistestdlg.h"

#include <QLayout>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

#include <memory>

/*! The table of the AIS test: its rows, counters, ranges and buttons, and what these open. */
class tst_aistestdlg : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void emptyWithoutTraffic();
    void droppedSentences_data();
    void droppedSentences();
    void firstEvent_data();
    void firstEvent();
    void cellsOfARow();
    void portNumbers_data();
    void portNumbers();
    void rowsInOrderOfFirstData();
    void messageCountComesWithTheTick();
    void countedMessages_data();
    void countedMessages();
    void cellsAreWrittenOnChangeOnly();
    void rangeTexts_data();
    void rangeTexts();
    void noRange_data();
    void noRange();
    void rangesFollowOnlyAnOpenedList();
    void newTargetRefreshesTheRange();
    void allTimeRangeOnlyGrows();
    void lastTargetAgesOut();
    void dyingTargetIsCountedOnceMore();
    void lostPositionWithAnOpenedList();
    void lostPositionWithoutAList();
    void buttonsStayEnabled();
    void positionGoesToAllPorts();
    void ownPositionGoesToAllPorts();
    void badPositions_data();
    void badPositions();
    void positionBeyondThePoleCounts();
    void windows_data();
    void windows();
    void windowsAreKept_data();
    void windowsAreKept();
    void eachOpeningRefreshes();
    void ticksEachSecond();
    void ownWindowFollows();
    void ownWindowIsNotThatOfTheList();
    void alarmWindowFollows();
    void slotsWithoutAButton();
    void endsWithAllWindowsOpen();

private:
    enum Column { Port, Own, Messages, Targets, List, Range, AllTimeRange, Alarms };

    void hear(const QString &sentence) { m_dialog->slotAISMessage(sentence); }
    void hearPosition(double minutes) { m_dialog->slotAISPosition(AisTalk::position(minutes)); }
    QTableWidget *table() const { return m_dialog->findChild<QTableWidget *>("ais_table"); }
    QString cell(Column column, int row = 0) const { return table()->item(row, column)->text(); }
    QPushButton *button(Column column, int row = 0) const;
    /*! The window that a button opens, of a class of its own. */
    template <typename Window> Window *open(Column column, int row = 0) const
    {
        button(column, row)->click();
        return m_dialog->findChild<Window *>(QString(), Qt::FindDirectChildrenOnly);
    }
    void openAll(int row) const;

    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<aistestdlg> m_dialog;
};

namespace {

constexpr int tick = 3000; // ms, more than the second of the timers
constexpr quint32 first = 211000001;
constexpr quint32 second = 211000002;

const char *const classes[] = {"AisTargetInfoDlg", "AisTargetListDlg", "AisAlarmListDlg"};

QString infoValue(const QDialog &info, int row)
{
    return info.findChild<QTableWidget *>()->item(row, 1)->text();
}

} // namespace

void tst_aistestdlg::init()
{
    m_clock = std::make_unique<FakeClock>();
    m_dialog = std::make_unique<aistestdlg>(nullptr);
    m_dialog->show();
}

void tst_aistestdlg::cleanup()
{
    m_dialog.reset();
    m_clock.reset();
}

QPushButton *tst_aistestdlg::button(Column column, int row) const
{
    return table()->cellWidget(row, column)->findChild<QPushButton *>();
}

void tst_aistestdlg::openAll(int row) const
{
    for (const Column column : {Own, List, Alarms})
        button(column, row)->click();
}

void tst_aistestdlg::emptyWithoutTraffic()
{
    QTest::qWait(1100); // a tick
    QCOMPARE(table()->rowCount(), 0);
    hearPosition(0);
    QCOMPARE(table()->rowCount(), 0);
}

void tst_aistestdlg::droppedSentences_data()
{
    QTest::addColumn<QString>("sentence");

    const QByteArray payload = PositionReport().payload();
    const auto with = [&payload](const char *before) -> QString {
        return QString::fromLatin1(before + payload + ",0*00\r\n");
    };
    QTest::newRow("empty") << QString();
    QTest::newRow("another sentence") << with("$VRAIX,1,1,,4,");
    QTest::newRow("small letters") << with("$vraim,1,1,,4,");
    QTest::newRow("port C") << with("$VRAIM,1,1,,C,");
    QTest::newRow("port of two characters") << with("$VRAIM,1,1,,04,");
    QTest::newRow("no payload") << QString("$VRAIM,1,1,,4,,0*00\r\n");
    QTest::newRow("first of two fragments") << with("$VRAIM,2,1,7,4,");
    QTest::newRow("second of two fragments") << with("$VRAIM,2,2,7,4,");
    QTest::newRow("empty numbers") << with("$VRAIM,,,,4,");
    QTest::newRow("alarm without a time") << QString("$VRAIA,4,,5,A,V,AIS: x*00\r\n");
    QTest::newRow("alarm, another condition") << QString("$VRAIA,4,120000,5,X,V,AIS: x*00\r\n");
}

void tst_aistestdlg::droppedSentences()
{
    QFETCH(QString, sentence);
    hear(sentence);
    QCOMPARE(table()->rowCount(), 0);
}

void tst_aistestdlg::firstEvent_data()
{
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<bool>("own");
    QTest::addColumn<bool>("targets");
    QTest::addColumn<bool>("alarms");
    QTest::addColumn<QString>("count");

    QTest::newRow("target") << AisTalk::heard(4, PositionReport()) << false << true << false << "1";
    QTest::newRow("target, static data")
        << AisTalk::heard(4, VoyageData()) << false << true << false << "1";
    QTest::newRow("own ship") << AisTalk::own(4, PositionReport()) << true << false << false << "0";
    QTest::newRow("own ship, static data")
        << AisTalk::own(4, VoyageData()) << true << false << false << "0";
    QTest::newRow("alarm") << AisTalk::alarm(4, 5, 'A', 'V') << false << false << true << "0";
}

void tst_aistestdlg::firstEvent()
{
    QFETCH(QString, sentence);
    hear(sentence);
    QCOMPARE(table()->rowCount(), 1);
    QCOMPARE(cell(Port), QStringLiteral("4"));
    QTEST(cell(Targets), "count");
    QTEST(button(Own)->isEnabled(), "own");
    QTEST(button(List)->isEnabled(), "targets");
    QTEST(button(Alarms)->isEnabled(), "alarms");
    for (const Column column : {Messages, Range, AllTimeRange})
        QCOMPARE(cell(column), QString());
    hear(sentence);
    QCOMPARE(table()->rowCount(), 1);
}

void tst_aistestdlg::cellsOfARow()
{
    hear(AisTalk::own(4, PositionReport()));
    for (const Column column : {Port, Messages, Targets, Range, AllTimeRange})
        QCOMPARE(table()->item(0, column)->textAlignment(), int(Qt::AlignCenter));
    for (const Column column : {Own, List, Alarms}) {
        QWidget *widget = table()->cellWidget(0, column);
        QVERIFY(widget->layout());
        QCOMPARE(widget->layout()->contentsMargins(), QMargins(2, 2, 2, 2));
        QCOMPARE(widget->layout()->alignment(), Qt::AlignCenter);
        QCOMPARE(button(column)->text(), QStringLiteral("View"));
    }
}

void tst_aistestdlg::portNumbers_data()
{
    QTest::addColumn<uint>("port");
    for (uint port = 0; port < 12; ++port)
        QTest::addRow("%u", port) << port;
}

void tst_aistestdlg::portNumbers()
{
    QFETCH(uint, port);
    hear(AisTalk::heard(port, PositionReport()));
    hear(AisTalk::own(port, PositionReport()));
    hear(AisTalk::alarm(port, 5, 'A', 'V'));
    QCOMPARE(table()->rowCount(), 1);
    QCOMPARE(cell(Port), QString::number(port));
    const QString number = QString::number(port);
    QCOMPARE(open<AisTargetInfoDlg>(Own)->windowTitle(), "AIS Own Info - input port " + number);
    QCOMPARE(open<AisTargetListDlg>(List)->windowTitle(), "Ais Target list - input port " + number);
    QCOMPARE(open<AisAlarmListDlg>(Alarms)->windowTitle(), "Ais Alarm list - input port " + number);
}

void tst_aistestdlg::rowsInOrderOfFirstData()
{
    hear(AisTalk::alarm(7, 5, 'A', 'V'));
    hear(AisTalk::heard(2, PositionReport()));
    hear(AisTalk::own(11, PositionReport()));
    hear(AisTalk::heard(0, VoyageData()));
    hear(AisTalk::heard(7, PositionReport()));
    hear(AisTalk::own(2, PositionReport()));
    QStringList ports;
    for (int row = 0; row < table()->rowCount(); ++row)
        ports += cell(Port, row);
    QCOMPARE(ports, QStringList({"7", "2", "11", "0"}));
    // Each button belongs to the port of its row.
    QCOMPARE(open<AisTargetListDlg>(List, 1)->windowTitle(),
             QStringLiteral("Ais Target list - input port 2"));
}

void tst_aistestdlg::messageCountComesWithTheTick()
{
    hear(AisTalk::heard(3, PositionReport()));
    hear(AisTalk::heard(3, PositionReport()));
    QCOMPARE(cell(Messages), QString());
    QTRY_COMPARE_WITH_TIMEOUT(cell(Messages), QStringLiteral("2"), tick);
    hear(AisTalk::heard(3, PositionReport()));
    QCOMPARE(cell(Messages), QStringLiteral("2"));
    m_dialog->slotDlgTimer();
    QCOMPARE(cell(Messages), QStringLiteral("3"));
}

void tst_aistestdlg::countedMessages_data()
{
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<QString>("count");

    PositionReport report;
    for (const quint32 type : {1U, 2U, 3U, 4U, 18U}) {
        report.type = type;
        QTest::addRow("type %u", type)
            << AisTalk::heard(0, report) << QString::number(type <= 3 ? 2 : 1);
    }
    QTest::newRow("type 5") << AisTalk::heard(0, VoyageData()) << "2";
    QTest::newRow("own ship") << AisTalk::own(0, PositionReport()) << "1";
    QTest::newRow("alarm") << AisTalk::alarm(0, 5, 'A', 'V') << "1";
    QTest::newRow("another port") << AisTalk::heard(1, PositionReport()) << "1";
}

void tst_aistestdlg::countedMessages()
{
    QFETCH(QString, sentence);
    hear(AisTalk::heard(0, PositionReport()));
    hear(sentence);
    m_dialog->slotDlgTimer();
    QTEST(cell(Messages), "count");
}

void tst_aistestdlg::cellsAreWrittenOnChangeOnly()
{
    hearPosition(0);
    hear(AisTalk::heard(0, AisTalk::northOf(first, 10)));
    open<AisTargetListDlg>(List);
    m_dialog->slotDlgTimer();
    const QSignalSpy written(table(), &QTableWidget::cellChanged);
    m_dialog->slotDlgTimer();
    hearPosition(0);
    hear(AisTalk::heard(0, AisTalk::northOf(first, 10.01)));
    hear(AisTalk::own(0, VoyageData()));
    QCOMPARE(written.size(), 0);
    m_dialog->slotDlgTimer();
    QCOMPARE(written.size(), 1);
}

void tst_aistestdlg::rangeTexts_data()
{
    QTest::addColumn<double>("minutes");
    QTest::addColumn<QString>("text");

    QTest::newRow("filled with a zero") << 7.3 << "07.3";
    QTest::newRow("four characters") << 60.0 << "60.0";
    QTest::newRow("more than four") << 112.4 << "112.4";
    QTest::newRow("nearly nothing") << 0.04 << "00.0";
    QTest::newRow("rounded up") << 9.96 << "10.0";
    QTest::newRow("rounded down") << 9.94 << "09.9";
}

void tst_aistestdlg::rangeTexts()
{
    QFETCH(double, minutes);
    hearPosition(0);
    hear(AisTalk::heard(0, AisTalk::northOf(first, minutes)));
    QTEST(cell(Range), "text");
    QTEST(cell(AllTimeRange), "text");
}

void tst_aistestdlg::noRange_data()
{
    QTest::addColumn<bool>("hasPosition");
    QTest::addColumn<QString>("sentence");

    PositionReport west = AisTalk::northOf(first, 10);
    west.longitude = (1u << 28) - 600000;
    QTest::newRow("no own position") << false << AisTalk::heard(0, AisTalk::northOf(first, 10));
    QTest::newRow("static data only") << true << AisTalk::heard(0, VoyageData());
    QTest::newRow("west of Greenwich") << true << AisTalk::heard(0, west);
}

void tst_aistestdlg::noRange()
{
    QFETCH(bool, hasPosition);
    QFETCH(QString, sentence);
    if (hasPosition)
        hearPosition(0);
    hear(sentence);
    open<AisTargetListDlg>(List);
    hear(sentence);
    QCOMPARE(cell(Range), QString());
    QCOMPARE(cell(AllTimeRange), QString());
}

void tst_aistestdlg::rangesFollowOnlyAnOpenedList()
{
    hearPosition(0);
    hear(AisTalk::heard(0, AisTalk::northOf(first, 10)));
    hear(AisTalk::heard(0, AisTalk::northOf(first, 20)));
    hear(AisTalk::heard(0, VoyageData()));
    QCOMPARE(cell(Range), QStringLiteral("20.0")); // by the new target
    hear(AisTalk::heard(0, AisTalk::northOf(first, 30)));
    QCOMPARE(cell(Range), QStringLiteral("20.0"));
    QCOMPARE(cell(AllTimeRange), QStringLiteral("20.0"));

    auto *list = open<AisTargetListDlg>(List);
    QCOMPARE(cell(Range), QStringLiteral("20.0"));
    hear(AisTalk::heard(0, AisTalk::northOf(first, 40)));
    QCOMPARE(cell(Range), QStringLiteral("40.0"));
    list->close();
    hear(AisTalk::heard(0, AisTalk::northOf(first, 50)));
    QCOMPARE(cell(Range), QStringLiteral("50.0"));
    QCOMPARE(cell(AllTimeRange), QStringLiteral("50.0"));
}

void tst_aistestdlg::newTargetRefreshesTheRange()
{
    hear(AisTalk::heard(0, AisTalk::northOf(first, 10)));
    hearPosition(0);
    QCOMPARE(cell(Range), QString());
    hear(AisTalk::heard(0, AisTalk::northOf(second, 4)));
    QCOMPARE(cell(Range), QStringLiteral("10.0"));
    QCOMPARE(cell(Targets), QStringLiteral("2"));
}

void tst_aistestdlg::allTimeRangeOnlyGrows()
{
    hearPosition(0);
    hear(AisTalk::heard(0, AisTalk::northOf(first, 30)));
    open<AisTargetListDlg>(List);
    for (const double minutes : {20.0, 25.0}) {
        hear(AisTalk::heard(0, AisTalk::northOf(first, minutes)));
        QCOMPARE(cell(Range), QString::number(minutes, 'f', 1));
        QCOMPARE(cell(AllTimeRange), QStringLiteral("30.0"));
    }
    hear(AisTalk::heard(0, AisTalk::northOf(first, 31)));
    QCOMPARE(cell(AllTimeRange), QStringLiteral("31.0"));
}

void tst_aistestdlg::lastTargetAgesOut()
{
    hearPosition(0);
    hear(AisTalk::heard(0, AisTalk::northOf(first, 10)));
    hear(AisTalk::heard(0, AisTalk::northOf(first, 12)));
    QCOMPARE(cell(Range), QStringLiteral("10.0"));
    m_clock->advance(200);
    hearPosition(0);
    m_clock->advance(101);
    QTRY_COMPARE_WITH_TIMEOUT(cell(Targets), QStringLiteral("0"), tick);
    QVERIFY(!button(List)->isEnabled());
    // The update that counts it once more finds it where it was last.
    QCOMPARE(cell(Range), QStringLiteral("12.0"));
    // A target that comes back opens the way again.
    hear(AisTalk::heard(0, AisTalk::northOf(first, 5)));
    QVERIFY(button(List)->isEnabled());
    QCOMPARE(cell(Targets), QStringLiteral("1"));
    QCOMPARE(cell(Range), QStringLiteral("05.0"));
    QCOMPARE(cell(AllTimeRange), QStringLiteral("12.0"));
}

void tst_aistestdlg::dyingTargetIsCountedOnceMore()
{
    hearPosition(0);
    hear(AisTalk::heard(0, AisTalk::northOf(first, 60)));
    m_clock->advance(200);
    hearPosition(0);
    hear(AisTalk::heard(0, AisTalk::northOf(second, 10)));
    open<AisTargetListDlg>(List);
    m_clock->advance(101);
    QTRY_COMPARE_WITH_TIMEOUT(cell(Targets), QStringLiteral("1"), tick);
    QVERIFY(button(List)->isEnabled());
    QCOMPARE(cell(Range), QStringLiteral("60.0"));
    hear(AisTalk::heard(0, AisTalk::northOf(second, 10)));
    QCOMPARE(cell(Range), QStringLiteral("10.0"));
}

void tst_aistestdlg::lostPositionWithAnOpenedList()
{
    hearPosition(0);
    hear(AisTalk::heard(0, AisTalk::northOf(first, 10)));
    open<AisTargetListDlg>(List);
    m_clock->advance(200);
    hear(AisTalk::heard(0, AisTalk::northOf(first, 12)));
    m_clock->advance(101);
    QTRY_COMPARE_WITH_TIMEOUT(cell(Range), QString(), tick);
    QCOMPARE(cell(AllTimeRange), QStringLiteral("12.0"));
    QCOMPARE(cell(Targets), QStringLiteral("1"));
    hear(AisTalk::heard(0, AisTalk::northOf(first, 14)));
    QCOMPARE(cell(Range), QString());
    QCOMPARE(cell(AllTimeRange), QStringLiteral("12.0"));
}

void tst_aistestdlg::lostPositionWithoutAList()
{
    hearPosition(0);
    hear(AisTalk::heard(0, AisTalk::northOf(first, 10)));
    hear(AisTalk::heard(1, AisTalk::northOf(first, 10)));
    open<AisTargetListDlg>(List, 1);
    m_clock->advance(200);
    for (uint port = 0; port < 2; ++port)
        hear(AisTalk::heard(port, AisTalk::northOf(first, 10)));
    m_clock->advance(101);
    QTRY_COMPARE_WITH_TIMEOUT(cell(Range, 1), QString(), tick);
    QTest::qWait(1100); // a tick of every port
    QCOMPARE(cell(Range, 0), QStringLiteral("10.0"));
}

void tst_aistestdlg::buttonsStayEnabled()
{
    hear(AisTalk::own(0, PositionReport()));
    hear(AisTalk::alarm(0, 5, 'A', 'V'));
    hear(AisTalk::alarm(0, 5, 'V', 'A'));
    hear(AisTalk::heard(0, PositionReport()));
    m_clock->advance(400);
    QTRY_COMPARE_WITH_TIMEOUT(cell(Targets), QStringLiteral("0"), tick);
    QVERIFY(button(Own)->isEnabled());
    QVERIFY(button(Alarms)->isEnabled());
    QVERIFY(!button(List)->isEnabled());
}

void tst_aistestdlg::positionGoesToAllPorts()
{
    for (uint port = 0; port < 12; ++port) {
        hear(AisTalk::heard(port, AisTalk::northOf(first, 10 + port)));
        open<AisTargetListDlg>(List, int(port));
    }
    hearPosition(0);
    for (uint port = 0; port < 12; ++port) {
        hear(AisTalk::heard(port, VoyageData()));
        QCOMPARE(cell(Range, int(port)), QString::number(10 + port) + QStringLiteral(".0"));
    }
    const auto lists = m_dialog->findChildren<AisTargetListDlg *>();
    QCOMPARE(lists.size(), 12);
    for (const AisTargetListDlg *list : lists) {
        const auto *targets = list->findChild<QTableWidget *>();
        const int row = targets->item(0, 0)->text() == QString::number(first) ? 0 : 1;
        QVERIFY(!targets->item(row, 2)->text().isEmpty());
    }
}

void tst_aistestdlg::ownPositionGoesToAllPorts()
{
    hear(AisTalk::own(3, AisTalk::northOf(first, 0.5)));
    hear(AisTalk::heard(5, AisTalk::northOf(second, 10.5)));
    QCOMPARE(cell(Range, 1), QStringLiteral("10.0"));
    // The source that is held keeps its place on another port for ten seconds.
    hear(AisTalk::own(4, AisTalk::northOf(first, 5.5)));
    hear(AisTalk::heard(5, VoyageData()));
    QCOMPARE(cell(Range, 1), QStringLiteral("10.0"));
    m_clock->advance(10);
    hear(AisTalk::own(4, AisTalk::northOf(first, 5.5)));
    hear(AisTalk::heard(5, AisTalk::northOf(first, 6)));
    QCOMPARE(cell(Range, 1), QStringLiteral("05.0"));
}

void tst_aistestdlg::badPositions_data()
{
    QTest::addColumn<QString>("sentence");

    QTest::newRow("empty") << QString();
    QTest::newRow("no star") << "$VRAIP,0000.000,N,00000.000,E";
    QTest::newRow("no comma") << "$VRAIP*00";
    QTest::newRow("three digits of minutes") << "$VRAIP,000.000,N,00000.000,E*00";
    QTest::newRow("another hemisphere") << "$VRAIP,0000.000,X,00000.000,E*00";
}

void tst_aistestdlg::badPositions()
{
    QFETCH(QString, sentence);
    m_dialog->slotAISPosition(sentence);
    hear(AisTalk::heard(0, AisTalk::northOf(first, 10)));
    QCOMPARE(cell(Range), QString());
}

// What can be read is a position, whether or not there is such a place.
void tst_aistestdlg::positionBeyondThePoleCounts()
{
    m_dialog->slotAISPosition(QStringLiteral("$VRAIP,9030.000,N,00000.000,E*00"));
    hear(AisTalk::heard(0, AisTalk::northOf(first, 5390)));
    QCOMPARE(cell(Range), QStringLiteral("40.0"));
}

void tst_aistestdlg::windows_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("title");

    QTest::newRow(classes[0]) << int(Own) << "AIS Own Info - input port 4";
    QTest::newRow(classes[1]) << int(List) << "Ais Target list - input port 4";
    QTest::newRow(classes[2]) << int(Alarms) << "Ais Alarm list - input port 4";
}

void tst_aistestdlg::windows()
{
    QFETCH(int, column);
    hear(AisTalk::heard(4, PositionReport()));
    hear(AisTalk::own(4, PositionReport()));
    hear(AisTalk::alarm(4, 5, 'A', 'V'));
    QVERIFY(m_dialog->findChildren<QDialog *>().isEmpty());
    auto *window = open<QDialog>(Column(column));
    QVERIFY(window);
    QVERIFY(window->inherits(QTest::currentDataTag()));
    QTEST(window->windowTitle(), "title");
    QVERIFY(window->isVisible());
    QVERIFY(!window->isModal());
    QVERIFY(window->isWindow());
    QCOMPARE(window->parentWidget(), m_dialog.get());
    QVERIFY(!(window->windowFlags() & Qt::WindowContextHelpButtonHint));
    QCOMPARE(window->findChild<QTableWidget *>()->rowCount(), column == Own ? 19 : 1);
}

void tst_aistestdlg::windowsAreKept_data()
{
    windows_data();
}

void tst_aistestdlg::windowsAreKept()
{
    QFETCH(int, column);
    hear(AisTalk::heard(4, PositionReport()));
    hear(AisTalk::own(4, PositionReport()));
    hear(AisTalk::alarm(4, 5, 'A', 'V'));
    auto *window = open<QDialog>(Column(column));
    window->close();
    QVERIFY(!window->isVisible());
    hear(AisTalk::heard(4, AisTalk::northOf(first, 10)));
    hear(AisTalk::own(4, AisTalk::northOf(second, 10)));
    hear(AisTalk::alarm(4, 6, 'A', 'V'));
    QCOMPARE(open<QDialog>(Column(column)), window);
    QCOMPARE(m_dialog->findChildren<QDialog *>().size(), 1);
    QVERIFY(window->isVisible());
    // What it shows has gone on meanwhile.
    QCOMPARE(window->findChild<QTableWidget *>()->rowCount(), column == Own ? 19 : 2);
    if (column == Own)
        QCOMPARE(infoValue(*window, 0), QString::number(second));
}

// What a window shows by chance doesn't outlast its next opening; the list of targets alone is
// opened as it stands.
void tst_aistestdlg::eachOpeningRefreshes()
{
    hear(AisTalk::own(4, AisTalk::northOf(first, 10)));
    hear(AisTalk::alarm(4, 5, 'A', 'V'));
    for (const Column column : {Own, Alarms}) {
        auto *opened = open<QDialog>(column)->findChild<QTableWidget *>();
        if (column == Alarms)
            opened = m_dialog->findChild<AisAlarmListDlg *>()->findChild<QTableWidget *>();
        const QString text = opened->item(0, 1)->text();
        opened->item(0, 1)->setText(QStringLiteral("x"));
        open<QDialog>(column);
        QCOMPARE(opened->item(0, 1)->text(), text);
    }
}

void tst_aistestdlg::ticksEachSecond()
{
    const auto *timer = m_dialog->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(timer);
    QVERIFY(timer->isActive());
    QVERIFY(!timer->isSingleShot());
    QCOMPARE(timer->interval(), 1000);
}

void tst_aistestdlg::ownWindowFollows()
{
    hear(AisTalk::own(4, AisTalk::northOf(first, 10)));
    auto *info = open<AisTargetInfoDlg>(Own);
    QCOMPARE(infoValue(*info, 0), QString::number(first));
    QCOMPARE(infoValue(*info, 3), QString());
    hear(AisTalk::own(4, AisTalk::named(first, "OWN SHIP")));
    QCOMPARE(infoValue(*info, 3), QStringLiteral("OWN SHIP"));
    // That of another port changes nothing.
    hear(AisTalk::own(5, AisTalk::named(first, "OTHER SHIP")));
    QCOMPARE(infoValue(*info, 3), QStringLiteral("OWN SHIP"));
}

void tst_aistestdlg::ownWindowIsNotThatOfTheList()
{
    hear(AisTalk::own(4, AisTalk::northOf(first, 10)));
    hear(AisTalk::heard(4, AisTalk::northOf(second, 12)));
    auto *own = open<AisTargetInfoDlg>(Own);
    auto *list = open<AisTargetListDlg>(List);
    auto *targets = list->findChild<QTableWidget *>();
    emit targets->cellDoubleClicked(0, 0);
    const auto infos = m_dialog->findChildren<AisTargetInfoDlg *>();
    QCOMPARE(infos.size(), 2);
    QCOMPARE(infoValue(*own, 0), QString::number(first));
    QCOMPARE(own->windowTitle(), QStringLiteral("AIS Own Info - input port 4"));
    const auto *info = list->findChild<AisTargetInfoDlg *>();
    QVERIFY(info && info != own);
    QCOMPARE(infoValue(*info, 0), QString::number(second));
}

void tst_aistestdlg::alarmWindowFollows()
{
    hear(AisTalk::alarm(4, 5, 'A', 'V'));
    auto *alarms = open<AisAlarmListDlg>(Alarms)->findChild<QTableWidget *>();
    QCOMPARE(alarms->rowCount(), 1);
    QCOMPARE(alarms->item(0, 3)->text(), QStringLiteral("no"));
    hear(AisTalk::alarm(4, 5, 'A', 'A'));
    QCOMPARE(alarms->item(0, 3)->text(), QStringLiteral("yes"));
    hear(AisTalk::alarm(4, 261, 'V', 'A')); // the same by its low eight bits
    QCOMPARE(alarms->rowCount(), 1);
    QCOMPARE(alarms->item(0, 2)->text(), QStringLiteral("not exceeded"));
    hear(AisTalk::alarm(5, 6, 'A', 'V'));
    QCOMPARE(alarms->rowCount(), 1);
}

void tst_aistestdlg::slotsWithoutAButton()
{
    hear(AisTalk::heard(4, PositionReport()));
    m_dialog->slotOwnClick();
    m_dialog->slotTargetClick();
    m_dialog->slotAlarmClick();
    QVERIFY(m_dialog->findChildren<QDialog *>().isEmpty());
}

// The windows go before the decoders whose records they show.
void tst_aistestdlg::endsWithAllWindowsOpen()
{
    hearPosition(0);
    for (uint port = 0; port < 12; ++port) {
        hear(AisTalk::own(port, AisTalk::northOf(first, 1)));
        hear(AisTalk::heard(port, AisTalk::northOf(second, 10)));
        hear(AisTalk::alarm(port, 5, 'A', 'V'));
        openAll(int(port));
    }
    const auto lists = m_dialog->findChildren<AisTargetListDlg *>();
    for (const AisTargetListDlg *list : lists)
        emit list->findChild<QTableWidget *>()->cellDoubleClicked(0, 0);
    QCOMPARE(m_dialog->findChildren<QDialog *>().size(), 12 * 4);
    QCoreApplication::processEvents();
    m_dialog.reset();
    const QWidgetList left = QApplication::topLevelWidgets();
    for (const QWidget *widget : left)
        QVERIFY2(!widget->isVisible(), widget->metaObject()->className());
    QTest::qWait(1100); // a tick that nobody is left to hear
}

QTEST_MAIN(tst_aistestdlg)
#include "tst_aistestdlg.moc"
