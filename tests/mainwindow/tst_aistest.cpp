#include "aistalk.h"
#include "scriptedbench.h"
#include "windowbench.h"

#include "aisdialogs/aisalarmlistdlg.h"
#include "aisdialogs/aistargetinfodlg.h"
#include "aisdialogs/aistargetlistdlg.h"
#include "fakeclock.h"
#include "link/nmeaserialport.h"
#include "support/aistestuser.h"

#include <QPushButton>
#include <QTableWidget>

#include <memory>

/*!
 * The AIS test from the service dialog to its end: what is sent and when, what arrives, and the
 * link dying while any of its windows is open.
 */
class tst_aistest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void onBeforeAndOffAfter();
    void isModalToTheWindow();
    void hearsTheRouter();
    void lateSentencesDoNoHarm();
    void startsEmptyEachTime();
    void closesWithItsWindows();
    void linkDies_data();
    void linkDies();
    void cableIsPulled_data();
    void cableIsPulled();
    void linkDiesAsATargetAgesOut_data();
    void linkDiesAsATargetAgesOut();
    void routerIsTaken();
    void worksAgain();

private:
    using Use = std::function<void(aistestdlg &)>;

    bool inAisTest(const Use &use);
    void say(const QString &sentence) { m_bench->line.write(sentence.toLatin1()); }
    void fillWindow(const aistestdlg &dialog);
    void openWindows(const aistestdlg &dialog, const QStringList &windows);
    BoxAnswer::Box timeout() const;
    void verifyAllIsClosed() const;
    QByteArray lastHeard() const { return m_bench->heard().value(m_bench->heard().size() - 1); }
    int count(const QByteArray &sentence) const { return int(m_bench->heard().count(sentence)); }

    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<ScriptedBench> m_bench;
};

namespace {

const QByteArray on = "$VRATM,ON\r\n";
const QByteArray off = "$VRATM,OFF\r\n";

constexpr uint port = 7;
constexpr quint32 mmsi = 211000001;
constexpr quint32 other = 211000002;

// The columns with the buttons.
enum Column { Own = 1, List = 4, Alarms = 7 };

QTableWidget *tableOf(const QDialog &dialog)
{
    return dialog.findChild<QTableWidget *>();
}

void press(const aistestdlg &dialog, Column column)
{
    tableOf(dialog)->cellWidget(0, column)->findChild<QPushButton *>()->click();
}

} // namespace

void tst_aistest::init()
{
    m_clock = std::make_unique<FakeClock>();
    m_bench = std::make_unique<ScriptedBench>();
    QVERIFY(m_bench->connectToRouter());
}

void tst_aistest::cleanup()
{
    QVERIFY2(m_bench->boxes.isDone(), qPrintable(m_bench->boxes.report()));
    m_bench.reset();
    m_clock.reset();
}

// Runs use in the window of the test; whether it came.
bool tst_aistest::inAisTest(const Use &use)
{
    const AisTestUser tester(use);
    return m_bench->inService([](servicedlg &dialog) {
        dialog.findChild<QPushButton *>("pushButton_AisTest")->click();
    }) && tester.hasCome();
}

// A port with an own ship, two targets and an alarm.
void tst_aistest::fillWindow(const aistestdlg &dialog)
{
    say(AisTalk::position(0));
    say(AisTalk::own(port, AisTalk::northOf(mmsi, 0.5)));
    say(AisTalk::heard(port, AisTalk::northOf(mmsi, 10)));
    say(AisTalk::heard(port, AisTalk::northOf(other, 20)));
    say(AisTalk::alarm(port, 5, 'A', 'V'));
    const QTableWidget *table = tableOf(dialog);
    const auto isFull = [table] {
        return table->rowCount() == 1
            && table->cellWidget(0, Alarms)->findChild<QPushButton *>()->isEnabled();
    };
    QVERIFY(QTest::qWaitFor(isFull));
}

void tst_aistest::openWindows(const aistestdlg &dialog, const QStringList &windows)
{
    if (windows.contains("own"))
        press(dialog, Own);
    if (windows.contains("alarms"))
        press(dialog, Alarms);
    if (!windows.contains("targets"))
        return;
    press(dialog, List);
    if (!windows.contains("information"))
        return;
    const auto *list = dialog.findChild<AisTargetListDlg *>();
    QTableWidget *targets = tableOf(*list);
    emit targets->cellDoubleClicked(0, 0);
    QVERIFY(list->findChild<AisTargetInfoDlg *>()->isVisible());
}

BoxAnswer::Box tst_aistest::timeout() const
{
    return WindowBench::timeoutBox();
}

void tst_aistest::verifyAllIsClosed() const
{
    QVERIFY(!QApplication::activeModalWidget());
    QCOMPARE(m_bench->window.findChildren<QDialog *>().size(), 0);
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *widget : windows) {
        QVERIFY2(!widget->isVisible() || widget == &m_bench->window,
                 widget->metaObject()->className());
    }
}

void tst_aistest::onBeforeAndOffAfter()
{
    QVERIFY(inAisTest([&](aistestdlg &) {
        QVERIFY(!m_bench->serviceDialog());
        QTRY_COMPARE(lastHeard(), on);
        QTest::qWait(200);
        QCOMPARE(count(off), 0);
    }));
    QTRY_COMPARE(lastHeard(), off);
    QCOMPARE(count(on), 1);
    QCOMPARE(count(off), 1);
    verifyAllIsClosed();
}

void tst_aistest::isModalToTheWindow()
{
    QVERIFY(inAisTest([&](aistestdlg &dialog) {
        QVERIFY(dialog.isModal());
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.parentWidget(), &m_bench->window);
        QVERIFY(!(dialog.windowFlags() & Qt::WindowContextHelpButtonHint));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("AIS info"));
    }));
}

void tst_aistest::hearsTheRouter()
{
    QVERIFY(inAisTest([&](aistestdlg &dialog) {
        fillWindow(dialog);
        const QTableWidget *table = tableOf(dialog);
        QCOMPARE(table->item(0, 0)->text(), QString::number(port));
        QCOMPARE(table->item(0, 3)->text(), QStringLiteral("2"));
        // From the own ship of the port, which comes before the router's own position.
        QCOMPARE(table->item(0, 5)->text(), QStringLiteral("19.5"));
        openWindows(dialog, {"own", "targets", "information", "alarms"});
        QCOMPARE(tableOf(*dialog.findChild<AisTargetListDlg *>())->rowCount(), 2);
        QCOMPARE(tableOf(*dialog.findChild<AisAlarmListDlg *>())->rowCount(), 1);
    }));
}

// The router talks on until it has heard OFF.
void tst_aistest::lateSentencesDoNoHarm()
{
    QVERIFY(inAisTest([&](aistestdlg &) {}));
    say(AisTalk::heard(port, AisTalk::northOf(mmsi, 10)));
    say(AisTalk::position(0));
    m_bench->waitUntilHeard();
    verifyAllIsClosed();
}

void tst_aistest::startsEmptyEachTime()
{
    for (int run = 0; run < 2; ++run) {
        QVERIFY(inAisTest([&](aistestdlg &dialog) {
            QCOMPARE(tableOf(dialog)->rowCount(), 0);
            fillWindow(dialog);
            dialog.slotDlgTimer();
            QCOMPARE(tableOf(dialog)->item(0, 2)->text(), QStringLiteral("2"));
        }));
    }
    QTRY_COMPARE(count(off), 2);
}

void tst_aistest::closesWithItsWindows()
{
    QVERIFY(inAisTest([&](aistestdlg &dialog) {
        fillWindow(dialog);
        openWindows(dialog, {"own", "targets", "information", "alarms"});
    }));
    verifyAllIsClosed();
    QTRY_COMPARE(count(off), 1);
}

void tst_aistest::linkDies_data()
{
    QTest::addColumn<QStringList>("windows");

    const QStringList all = {"own", "targets", "information", "alarms"};
    QTest::newRow("test alone") << QStringList();
    QTest::newRow("own ship") << QStringList("own");
    QTest::newRow("target list") << QStringList("targets");
    QTest::newRow("target information") << QStringList({"targets", "information"});
    QTest::newRow("alarm list") << QStringList("alarms");
    QTest::newRow("all") << all;
}

void tst_aistest::linkDies()
{
    QFETCH(QStringList, windows);
    QVERIFY(inAisTest([&](aistestdlg &dialog) {
        const QPointer<aistestdlg> guard(&dialog);
        fillWindow(dialog);
        openWindows(dialog, windows);
        QCOMPARE(dialog.findChildren<QDialog *>().size(), windows.size());
        QTRY_COMPARE(count(on), 1);
        m_bench->boxes.expect(timeout());
        m_bench->endLink();
        QVERIFY(!guard);
    }));
    verifyAllIsClosed();
    QVERIFY(!m_bench->window.isConnected());
    QVERIFY(!m_bench->window.currentLink());
    QTest::qWait(100); // what is queued would be sent by then
    QCOMPARE(count(on), 1);
    QCOMPARE(count(off), 0);
}

void tst_aistest::cableIsPulled_data()
{
    QTest::addColumn<QStringList>("windows");

    QTest::newRow("test alone") << QStringList();
    QTest::newRow("all") << QStringList({"own", "targets", "information", "alarms"});
}

void tst_aistest::cableIsPulled()
{
    constexpr int watch = 8000; // ms; four seconds of silence end a link
    QFETCH(QStringList, windows);
    QVERIFY(inAisTest([&](aistestdlg &dialog) {
        const QPointer<aistestdlg> guard(&dialog);
        fillWindow(dialog);
        openWindows(dialog, windows);
        m_bench->boxes.expect(timeout());
        m_bench->line.hangUp();
        QTRY_VERIFY_WITH_TIMEOUT(!guard, watch);
    }));
    verifyAllIsClosed();
    QTRY_VERIFY(!m_bench->window.currentLink());
    QCOMPARE(count(off), 0);
}

void tst_aistest::linkDiesAsATargetAgesOut_data()
{
    QTest::addColumn<bool>("agesFirst");

    QTest::newRow("the target first") << true;
    QTest::newRow("the link first") << false;
}

// The information window goes on reading its target, with the window of the test and behind it.
void tst_aistest::linkDiesAsATargetAgesOut()
{
    constexpr int tick = 3000; // ms, more than the second of the timers
    QFETCH(bool, agesFirst);
    QVERIFY(inAisTest([&](aistestdlg &dialog) {
        const QPointer<aistestdlg> guard(&dialog);
        fillWindow(dialog);
        openWindows(dialog, {"targets", "information", "own"});
        const auto *list = dialog.findChild<AisTargetListDlg *>();
        const auto *info = list->findChild<AisTargetInfoDlg *>();
        m_clock->advance(301);
        if (agesFirst) {
            QTRY_COMPARE_WITH_TIMEOUT(tableOf(*list)->rowCount(), 0, tick);
            QVERIFY(!info->isVisible());
            QTest::qWait(1100); // a tick of its timer
        }
        m_bench->boxes.expect(timeout());
        m_bench->endLink();
        QVERIFY(!guard);
    }));
    verifyAllIsClosed();
    QTest::qWait(1100); // a tick that nobody is left to hear
}

// The window stays, as the service dialog does; the router that others have taken isn't told.
void tst_aistest::routerIsTaken()
{
    QVERIFY(inAisTest([&](aistestdlg &dialog) {
        const QPointer<aistestdlg> guard(&dialog);
        m_bench->boxes.expect(WindowBench::busyBox());
        m_bench->sayBare("$VRCNB");
        QTRY_VERIFY(!m_bench->window.isConnected());
        QVERIFY(guard && guard->isVisible());
    }));
    verifyAllIsClosed();
    QTest::qWait(100);
    QCOMPARE(count(off), 0);
}

void tst_aistest::worksAgain()
{
    QVERIFY(inAisTest([&](aistestdlg &dialog) {
        fillWindow(dialog);
        m_bench->boxes.expect(timeout());
        m_bench->endLink();
    }));
    QTRY_VERIFY(!m_bench->window.currentLink());
    QVERIFY(m_bench->connectToRouter());
    QVERIFY(inAisTest([&](aistestdlg &dialog) {
        QCOMPARE(tableOf(dialog)->rowCount(), 0);
        fillWindow(dialog);
    }));
    QTRY_COMPARE(lastHeard(), off);
}

QTEST_MAIN(tst_aistest)
#include "tst_aistest.moc"
