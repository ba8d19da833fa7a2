#include "ais/timeofday.h"
#include "aisdialogs/aisalarmlistdlg.h"
#include "aisdialogs/aistargetinfodlg.h"
#include "aisdialogs/aistargetlistdlg.h"
#include "aisdialogs/aistestdlg.h"
#include "fakeclock.h"
#include "timerdriver.h"
#include "worldmodel.h"

#include "simulator/instruments/aisworld.h"
#include "simulator/line/sentence.h"
#include "simulator/router/aiscopy.h"

#include <QHeaderView>
#include <QPushButton>
#include <QSet>
#include <QTableWidget>
#include <QtTest>

#include <memory>
#include <random>

using namespace tk7sim;

/*!
 * An hour of the simulated router's AIS world through the windows of the AIS test: every cell of
 * every table against what the vessels have said, put through a second writing of the rules.
 */
class tst_aisworld : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void anHour_data();
    void anHour();

private:
    enum Column { PortColumn, OwnColumn, ListColumn = 4, AlarmColumn = 7 };

    void hearAll(qint64 now);
    void hear(const AisReport &report);
    void say(const QByteArray &body);
    void finishHeld();
    void use(qint64 second);
    void press(int port, Column column);
    void lookAround(int port, qint64 now);
    void showInfo(int port, uint mmsi);
    void compare(const char *moment);
    void compareOrder();
    QTableWidget *table() const;
    int rowOf(int port) const;
    AisTargetListDlg *list(int port) const;
    template <typename Dialog> Dialog *titled(const QString &title) const;
    QStringList describe() const;
    QStringList describeList(int port, AisTargetListDlg *dialog) const;
    void awaitTimers(int count);

    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<TimerDriver> m_timers;
    std::unique_ptr<aistestdlg> m_dialog;
    std::unique_ptr<AisWorld> m_world;
    std::unique_ptr<WorldModel> m_model;
    std::mt19937 m_random;
    std::optional<AisReport> m_held; // its second sentence hasn't been said yet
    int m_comparisons = 0;
    int m_heldBack = 0;
    int m_torn = 0;      // long messages without their second sentence
    QSet<uint> m_looked; // vessels whose information was shown
};

namespace {

constexpr qint64 step = 250; // ms
constexpr qint64 second = 1000;
constexpr qint64 hour = 3600;      // s
constexpr qint64 afterwards = 330; // s, in which nobody reports and all targets go
constexpr int firstTimers = AisWorld::portCount + 1;

// Under the sanitizers the same is compared less often.
#if defined(__SANITIZE_ADDRESS__)
constexpr qint64 compareEvery = 10; // s
#else
constexpr qint64 compareEvery = 1;
#endif

QString textOf(const QTableWidget *table, int row, int column)
{
    const QTableWidgetItem *item = table->item(row, column);
    return item ? item->text() : QStringLiteral("no item");
}

QPushButton *buttonIn(const QTableWidget *table, int row, int column)
{
    const QWidget *cell = table->cellWidget(row, column);
    return cell ? cell->findChild<QPushButton *>() : nullptr;
}

QString stateOf(const QTableWidget *table, int row, int column)
{
    const QPushButton *button = buttonIn(table, row, column);
    if (!button)
        return QStringLiteral("no button");
    return button->isEnabled() ? QStringLiteral("on") : QStringLiteral("off");
}

QString valuesOf(const AisTargetInfoDlg *dialog)
{
    const auto *table = dialog->findChild<QTableWidget *>(QStringLiteral("target_info_table"));
    QStringList values;
    for (int row = 0; row < table->rowCount(); ++row)
        values << textOf(table, row, 1);
    return values.join(QLatin1Char('|'));
}

} // namespace

void tst_aisworld::init()
{
    m_timers = std::make_unique<TimerDriver>();
    m_random.seed(7);
    m_held.reset();
    m_comparisons = 0;
    m_heldBack = 0;
    m_torn = 0;
    m_looked.clear();
}

void tst_aisworld::cleanup()
{
    m_dialog.reset();
    m_timers.reset();
    m_clock.reset();
    m_world.reset();
    m_model.reset();
}

void tst_aisworld::anHour_data()
{
    QTest::addColumn<QTime>("start");
    QTest::addColumn<int>("vessels");
    QTest::addColumn<quint32>("seed");
    QTest::newRow("in the morning") << QTime(9, 0) << 40 << 1U;
    QTest::newRow("over midnight") << QTime(23, 10) << 60 << 7U;
}

void tst_aisworld::anHour()
{
    QFETCH(QTime, start);
    QFETCH(int, vessels);
    QFETCH(quint32, seed);
    AisWorldSettings settings;
    settings.vessels = vessels;
    settings.seed = seed;
    settings.ports = QVector<int>{3, 8, 11, 0}; // nobody opens the list of the last one
    settings.start = QDateTime(QDate(2026, 12, 28), start, Qt::UTC);
    m_clock = std::make_unique<FakeClock>(start);
    m_world = std::make_unique<AisWorld>(settings);
    m_model = std::make_unique<WorldModel>();
    m_dialog = std::make_unique<aistestdlg>(nullptr);
    m_dialog->show();
    awaitTimers(firstTimers);

    for (qint64 now = 0; now <= (hour + afterwards) * second; now += step) {
        m_clock->set(start.addMSecs(int(now)));
        if (now <= hour * second)
            hearAll(now);
        if (now % second == second / 2 && now / second % compareEvery == 0)
            compare("between two seconds");
        if (now % second != 0)
            continue;
        m_timers->tick();
        m_model->tick(m_clock->now().msecsSinceStartOfDay());
        use(now / second);
        if (now / second % compareEvery == 0)
            compare("behind a second");
        if (QTest::currentTestFailed()) {
            qWarning("%lld ms from the start", static_cast<long long>(now));
            return;
        }
    }

    // It was an hour in which everything has happened.
    const WorldModel::Events &events = m_model->events();
    QVERIFY(m_comparisons >= 2 * hour / compareEvery);
    QVERIFY(m_heldBack > 20);
    QVERIFY(m_torn > 20);
    QVERIFY(m_looked.size() > vessels * 7 / 10);
    QVERIFY(events.born > 50);
    QVERIFY(events.died > events.returned);
    QVERIFY(events.returned > 3);
    QVERIFY(events.sourceChanges > 3);
    QVERIFY(events.lostPositions >= 2 * AisWorld::portCount);
    QVERIFY(events.hiddenInfos > 3);
    QVERIFY(events.changedAlarms > 20);
    QVERIFY(events.staleRanges > 0);
    for (const int port : m_world->ports()) {
        QCOMPARE(textOf(table(), rowOf(port), 3), QStringLiteral("0"));
        QVERIFY(m_world->truth(port).stations.size() > 10);
        QVERIFY(textOf(table(), rowOf(port), 2).toUInt() * 10 > m_world->truth(port).messages * 9);
    }
}

// The world's reports, and with its own sentences those of ports between the two halves of a long
// message of another port.
void tst_aisworld::hearAll(qint64 now)
{
    while (const auto report = m_world->take(now))
        hear(*report);
    finishHeld();
}

void tst_aisworld::hear(const AisReport &report)
{
    constexpr uint heldOfSo = 3;
    constexpr uint tornOfSo = 20;
    if (m_held && m_held->port == report.port)
        finishHeld();
    const bool isHeldBack = !m_held && report.bodies.size() > 1 && m_random() % heldOfSo == 0;
    const QByteArrayList bodies = wrapReport(report);
    say(bodies.constFirst());
    if (report.bodies.size() > 1 && m_random() % tornOfSo == 0) {
        ++m_torn;
        return;
    }
    if (isHeldBack) {
        m_held = report;
        return;
    }
    for (const QByteArray &body : bodies.mid(1))
        say(body);
    m_model->hear(report, m_clock->now().msecsSinceStartOfDay());
    m_heldBack += m_held ? 1 : 0;
}

void tst_aisworld::finishHeld()
{
    if (!m_held)
        return;
    for (const QByteArray &body : wrapReport(*m_held).mid(1))
        say(body);
    m_model->hear(*m_held, m_clock->now().msecsSinceStartOfDay());
    m_held.reset();
}

void tst_aisworld::say(const QByteArray &body)
{
    const QString line = QString::fromLatin1(withChecksum(body));
    if (body.startsWith("$VRAIP"))
        m_dialog->slotAISPosition(line);
    else
        m_dialog->slotAISMessage(line);
}

// What a user does in this hour. Windows are opened early, late and never.
void tst_aisworld::use(qint64 now)
{
    switch (now) {
    case 20:
        press(3, OwnColumn);
        press(3, ListColumn);
        break;
    case 100:
        press(3, AlarmColumn);
        press(8, ListColumn);
        break;
    case 1500:
        list(3)->findChild<QTableWidget *>()->sortByColumn(1, Qt::DescendingOrder);
        break;
    case 1800:
        press(11, ListColumn);
        press(8, AlarmColumn);
        break;
    case 2100:
        list(8)->close();
        list(3)->findChild<QTableWidget *>()->sortByColumn(0, Qt::AscendingOrder);
        break;
    case 2400:
        press(8, ListColumn);
        press(3, AlarmColumn);
        break;
    case 3000:
        list(3)->findChild<QTableWidget *>()->sortByColumn(2, Qt::AscendingOrder);
        press(8, OwnColumn);
        break;
    default:
        break;
    }
    for (const int port : {3, 8, 11}) {
        if (list(port) && now < hour)
            lookAround(port, now + port);
    }
    if (now % 60 == 0)
        QCoreApplication::processEvents();
}

void tst_aisworld::press(int port, Column column)
{
    QPushButton *button = buttonIn(table(), rowOf(port), column);
    QVERIFY(button);
    QVERIFY(button->isEnabled());
    const bool isFirstOwn = column == OwnColumn
        && !titled<AisTargetInfoDlg>(QStringLiteral("AIS Own Info - input port %1").arg(port));
    button->click();
    if (column == OwnColumn) {
        m_model->openOwnInfo(port);
    } else if (column == ListColumn) {
        m_model->openList(port);
    } else {
        m_model->openAlarms(port);
    }
    if (isFirstOwn)
        awaitTimers(m_timers->count() + 1);
}

// At one vessel after the other for a minute, and then for a minute at the one that will be gone
// first.
void tst_aisworld::lookAround(int port, qint64 now)
{
    constexpr qint64 cycle = 120;
    constexpr qint64 patient = 60;
    constexpr qint64 glance = 3;
    const qint64 phase = now % cycle;
    if (phase == patient) {
        showInfo(port, m_model->longestSilent(port, m_clock->now().msecsSinceStartOfDay()));
    } else if (phase < patient && phase % glance == 0) {
        const auto *rows = list(port)->findChild<QTableWidget *>();
        const int row = int(now / glance) % qMax(rows->rowCount(), 1);
        showInfo(port, textOf(rows, row, 0).toUInt());
    }
}

void tst_aisworld::showInfo(int port, uint mmsi)
{
    auto *rows = list(port)->findChild<QTableWidget *>();
    const bool isFirst = !list(port)->findChild<AisTargetInfoDlg *>();
    for (int row = 0; row < rows->rowCount(); ++row) {
        if (textOf(rows, row, 0).toUInt() != mmsi)
            continue;
        emit rows->cellDoubleClicked(row, 1);
        break;
    }
    m_model->openInfo(port, mmsi);
    m_looked.insert(mmsi);
    if (isFirst && list(port)->findChild<AisTargetInfoDlg *>())
        awaitTimers(m_timers->count() + 1);
}

// In real time: until they have fired for the first time.
void tst_aisworld::awaitTimers(int count)
{
    constexpr int timeout = 20000;
    QTRY_COMPARE_WITH_TIMEOUT(m_timers->count(), count, timeout);
}

void tst_aisworld::compare(const char *moment)
{
    if (QTest::currentTestFailed())
        return;
    ++m_comparisons;
    const QStringList shown = describe();
    const QStringList expected = m_model->describe();
    for (int i = 0; i < qMax(shown.size(), expected.size()); ++i) {
        const QString difference =
            QStringLiteral("%1: shown <%2>, not <%3>")
                .arg(QLatin1String(moment), shown.value(i), expected.value(i));
        QVERIFY2(shown.value(i) == expected.value(i), qPrintable(difference));
    }
    compareOrder();
}

// What is in sight stands in the order of the chosen column.
void tst_aisworld::compareOrder()
{
    const auto dialogs = m_dialog->findChildren<AisTargetListDlg *>();
    for (const AisTargetListDlg *dialog : dialogs) {
        const auto *rows = dialog->findChild<QTableWidget *>();
        if (!rows->isVisible())
            continue;
        const int column = rows->horizontalHeader()->sortIndicatorSection();
        const bool isUp = rows->horizontalHeader()->sortIndicatorOrder() == Qt::AscendingOrder;
        for (int row = 1; row < rows->rowCount(); ++row) {
            const int order =
                QString::compare(textOf(rows, row - 1, column), textOf(rows, row, column));
            QVERIFY2(isUp ? order <= 0 : order >= 0, qPrintable(dialog->windowTitle()));
        }
    }
}

QTableWidget *tst_aisworld::table() const
{
    return m_dialog->findChild<QTableWidget *>(QStringLiteral("ais_table"));
}

int tst_aisworld::rowOf(int port) const
{
    for (int row = 0; row < table()->rowCount(); ++row) {
        if (textOf(table(), row, PortColumn) == QString::number(port))
            return row;
    }
    return -1;
}

AisTargetListDlg *tst_aisworld::list(int port) const
{
    return titled<AisTargetListDlg>(QStringLiteral("Ais Target list - input port %1").arg(port));
}

template <typename Dialog> Dialog *tst_aisworld::titled(const QString &title) const
{
    const auto dialogs = m_dialog->findChildren<Dialog *>();
    for (Dialog *dialog : dialogs) {
        if (dialog->windowTitle() == title)
            return dialog;
    }
    return nullptr;
}

QStringList tst_aisworld::describe() const
{
    const QTableWidget *ports = table();
    QStringList lines;
    for (int row = 0; row < ports->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < ports->columnCount(); ++column) {
            const bool isButton =
                column == OwnColumn || column == ListColumn || column == AlarmColumn;
            cells << (isButton ? stateOf(ports, row, column) : textOf(ports, row, column));
        }
        lines << cells.join(QLatin1Char('|'));
    }
    for (int port = 0; port < AisWorld::portCount; ++port) {
        const QString head = QStringLiteral("port %1 ").arg(port);
        if (AisTargetListDlg *dialog = list(port))
            lines << describeList(port, dialog);
        const auto *own =
            titled<AisTargetInfoDlg>(QStringLiteral("AIS Own Info - input port %1").arg(port));
        if (own)
            lines << QString(head + QStringLiteral("own ") + valuesOf(own));
        const auto *alarms =
            titled<AisAlarmListDlg>(QStringLiteral("Ais Alarm list - input port %1").arg(port));
        if (!alarms)
            continue;
        const auto *rows = alarms->findChild<QTableWidget *>();
        QMultiMap<int, QString> byId;
        for (int row = 0; row < rows->rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < rows->columnCount(); ++column)
                cells << textOf(rows, row, column);
            byId.insert(textOf(rows, row, 0).toInt(),
                        head + QStringLiteral("alarm ") + cells.join(QLatin1Char('|')));
        }
        lines << QStringList(byId.values());
    }
    return lines;
}

// By MMSI: the order of the rows is compared by itself.
QStringList tst_aisworld::describeList(int port, AisTargetListDlg *dialog) const
{
    const QString head = QStringLiteral("port %1 ").arg(port);
    const auto *rows = dialog->findChild<QTableWidget *>(QStringLiteral("ais_list"));
    QMultiMap<uint, QString> byMmsi;
    for (int row = 0; row < rows->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < rows->columnCount(); ++column)
            cells << textOf(rows, row, column);
        byMmsi.insert(textOf(rows, row, 0).toUInt(),
                      head + QStringLiteral("list ") + cells.join(QLatin1Char('|')));
    }
    QStringList lines = byMmsi.values();
    if (const auto *info = dialog->findChild<AisTargetInfoDlg *>()) {
        const bool isVisible = info->isVisible();
        lines << QString(head + QStringLiteral("info ")
                         + (isVisible ? QStringLiteral("on|") : QStringLiteral("off|"))
                         + valuesOf(info));
    }
    return lines;
}

QTEST_MAIN(tst_aisworld)
#include "tst_aisworld.moc"
