#include "dialogmap.h"
#include "likeness.h"
#include "limits.h"
#include "simulator/instruments/aistruth.h"
#include "stepfailure.h"
#include "tablerows.h"
#include "tour.h"
#include "wait.h"

#include <algorithm>

using namespace tk7sim;

// The AIS test: its table, and the windows of one of its ports.

namespace {

const QString testTitle = QStringLiteral("AIS info");
const QString listTitle = QStringLiteral("Ais Target list - input port %1");
const QString targetTitle = QStringLiteral("AIS Target Info - input port %1");
const QString ownTitle = QStringLiteral("AIS Own Info - input port %1");
const QString alarmTitle = QStringLiteral("Ais Alarm list - input port %1");

constexpr int port = 3; // has the ship's own transponder, and its alarms
constexpr int vessels = 24;
constexpr double hurry = 8; // times the usual number of reports, so that names come soon

} // namespace

// What the station on the port has heard; the own ship isn't among the stations.
const AisPortTruth &Tour::aisTruth() const
{
    return m_router.aisTruth().port(port);
}

// The rows of the table in `window`, seen in `strip`, which has no text.
QVector<TableRow> Tour::rowsIn(const XDesktop::Window &window, const QRect &strip) const
{
    QVector<TableRow> rows = tableRows(m_tool.look(window, strip));
    for (TableRow &row : rows)
        row.top += m_tool.map().scaled(strip.y());
    return rows;
}

void Tour::awaitRows(const XDesktop::Window &window, const QRect &strip,
                     const std::function<int()> &count)
{
    int seen = 0;
    const auto isThere = [&] {
        seen = int(rowsIn(window, strip).size());
        return seen == count();
    };
    if (!waitUntil(isThere, Limit::paint)) {
        throw StepFailure{QStringLiteral("\"%1\" has %2 rows in place of %3")
                              .arg(window.title)
                              .arg(seen)
                              .arg(count())};
    }
}

QString Tour::startAisTest()
{
    m_router.setAisVessels(vessels);
    m_router.setTrafficRate(hurry);
    openService();
    m_tool.click(m_service, DialogMap::Service::aisTest);
    m_aisTest = m_tool.awaitWindow(testTitle, Limit::box);
    m_listener.expect({"$VRATM,ON\r\n"}, Limit::hear);
    require(m_router.isAisTestOn(), QStringLiteral("the router doesn't test"));

    const auto hasAllHeard = [this] {
        const AisPortTruth &truth = aisTruth();
        const auto isNamed = [](const AisStationTruth &station) {
            return station.voyage.has_value();
        };
        constexpr double most = 0.7; // some never tell their names
        const auto named = std::count_if(truth.stations.cbegin(), truth.stations.cend(), isNamed);
        return named > 1 && static_cast<double>(named) > most * double(truth.stations.size())
            && truth.ownShip.voyage && !truth.alarms.isEmpty();
    };
    await(hasAllHeard, Limit::ais,
          QStringLiteral("the router doesn't tell of all its vessels and an alarm"));
    awaitRows(m_aisTest, DialogMap::AisTest::blank, [this] { return m_ais.ports().size(); });
    await([this] { return isAlarmButtonEnabled(); }, Limit::paint,
          QStringLiteral("the button for the alarms is grey"));
    return QStringLiteral("a row for each of %1 input ports").arg(m_ais.ports().size());
}

// The text of a button that is disabled is too pale to be seen as ink.
bool Tour::isAlarmButtonEnabled() const
{
    using namespace DialogMap::AisTest;
    const int row = int(m_ais.ports().indexOf(port));
    return !columnIn(m_aisTest, table, blank, alarms).value(row).isNull();
}

// Presses the button in `column` of the port's row.
XDesktop::Window Tour::openAisWindow(int column, const QString &title)
{
    const QVector<TableRow> rows = rowsIn(m_aisTest, DialogMap::AisTest::blank);
    const int row = int(m_ais.ports().indexOf(port));
    require(row >= 0 && row < rows.size(), QStringLiteral("the port has no row"));
    const QRect head = DialogMap::AisTest::columnHead(column);
    m_tool.clickAt(
        m_aisTest,
        QPoint(m_tool.map().scaled(head.center().x()), rows[row].top + rows[row].height / 2));
    XDesktop::Window window = m_tool.awaitWindow(title.arg(port), Limit::box);
    m_tool.restMouse();
    return window;
}

QString Tour::openTargets()
{
    m_aisWindow = openAisWindow(DialogMap::AisTest::targets, listTitle);
    awaitRows(m_aisWindow, DialogMap::TargetList::blank,
              [this] { return aisTruth().stations.size(); });
    return QStringLiteral("%1 targets, the nearest first").arg(aisTruth().stations.size());
}

// What is written in the cells of `column`, which isn't the first, from the top.
QVector<QImage> Tour::columnIn(const XDesktop::Window &window, const QRect &table,
                               const QRect &blank, int column) const
{
    QVector<QImage> cells;
    const QImage picture = m_tool.look(window, table);
    const QVector<TableRow> rows = rowsIn(window, blank);
    for (const TableRow &row : rows) {
        const int top = row.top - m_tool.map().scaled(table.y());
        const QVector<int> lines = columnLines(picture.copy(0, top + 1, picture.width(), 1));
        require(column < lines.size(),
                QStringLiteral("the table in \"%1\" has too few columns").arg(window.title));
        const int left = lines[column - 1] + 1;
        cells += inkOf(picture.copy(left, top, lines[column] - left, row.height));
    }
    return cells;
}

QVector<QImage> Tour::targetNames() const
{
    using namespace DialogMap::TargetList;
    return columnIn(m_aisWindow, table, blank, nameColumn);
}

void Tour::pressNameHead()
{
    using namespace DialogMap::TargetList;
    const QImage before = m_tool.look(m_aisWindow, heads);
    m_tool.click(m_aisWindow, nameHead);
    m_tool.restMouse();
    await([&] { return m_tool.look(m_aisWindow, heads) != before; }, Limit::paint,
          QStringLiteral("the heads of the list are as they were"));
    awaitStill([this] { return m_tool.look(m_aisWindow, names); });
}

// Of a list that is sorted the other way round every name stands as far from the other end.
QString Tour::sortTargets()
{
    pressNameHead();
    const QVector<QImage> rising = targetNames();
    require(rising.size() > 1 && rising.size() == aisTruth().stations.size(),
            QStringLiteral("the list doesn't have all targets"));
    QVector<QImage> falling = rising;
    std::reverse(falling.begin(), falling.end());
    require(!lookAlike(rising, falling), QStringLiteral("all names look alike"));
    for (const QVector<QImage> &order : {falling, rising}) {
        pressNameHead();
        require(lookAlike(targetNames(), order), QStringLiteral("the list isn't sorted by name"));
    }
    return QStringLiteral("sorted by name, the other way round, and back");
}

// The values in an information window, as they are seen.
QVector<QImage> Tour::valuesIn(const XDesktop::Window &window) const
{
    using namespace DialogMap::TargetInfo;
    return columnIn(window, table, blank, valueColumn);
}

// The age of the last message comes with the first second of the window.
void Tour::awaitAge(const XDesktop::Window &window)
{
    using namespace DialogMap::TargetInfo;
    awaitRows(window, blank, [] { return rowCount; });
    await([&] { return !valuesIn(window).value(ageRow).isNull(); }, Limit::paint,
          QStringLiteral("\"%1\" tells no age").arg(window.title));
}

// The window is that of the target whose name is in the row.
QString Tour::openTarget()
{
    const QVector<TableRow> rows = rowsIn(m_aisWindow, DialogMap::TargetList::blank);
    const QImage name = targetNames().last();
    require(!name.isNull(), QStringLiteral("the last target has no name"));
    const QPoint last(m_tool.map().scaled(DialogMap::TargetList::nameHead.center().x()),
                      rows.last().top + rows.last().height / 2);
    m_tool.doubleClickAt(m_aisWindow, last);
    m_box = m_tool.awaitWindow(targetTitle.arg(port), Limit::box);
    m_tool.restMouse();
    awaitAge(m_box);
    require(lookAlike(valuesIn(m_box).value(DialogMap::TargetInfo::nameRow), name),
            QStringLiteral("the name isn't that of the list"));
    return QStringLiteral("what the last one has told of itself");
}

QString Tour::openOwnShip()
{
    m_tool.leaveBox(m_box);
    m_tool.leaveBox(m_aisWindow);
    m_aisWindow = openAisWindow(DialogMap::AisTest::own, ownTitle);
    awaitAge(m_aisWindow);
    require(!valuesIn(m_aisWindow).value(DialogMap::TargetInfo::nameRow).isNull(),
            QStringLiteral("the own ship has no name"));
    return QStringLiteral("what the own ship's transponder tells");
}

QString Tour::openAlarms()
{
    m_tool.leaveBox(m_aisWindow);
    m_aisWindow = openAisWindow(DialogMap::AisTest::alarms, alarmTitle);
    awaitRows(m_aisWindow, DialogMap::AlarmList::blank,
              [this] { return aisTruth().alarms.size(); });
    return QStringLiteral("%1 alarm of this port").arg(aisTruth().alarms.size());
}

QString Tour::endAisTest()
{
    m_listener.expectNothing();
    m_tool.leaveBox(m_aisWindow);
    m_tool.leaveBox(m_aisTest);
    m_listener.expect({"$VRATM,OFF\r\n"}, Limit::hear);
    require(!m_router.isAisTestOn(), QStringLiteral("the router still tests"));
    return QStringLiteral("the router has heard the end of the test");
}
