#include "windowbench.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <ctime>

/*! The monitor in the status panel: its list, its buttons, the count of bad checksums. */
class tst_monitor : public QObject
{
    Q_OBJECT

private slots:
    void versionOnlyWhileConnected();

    void viewTexts_data();
    void viewTexts();
    void absurdViewChangesNothing_data();
    void absurdViewChangesNothing();
    void linesOfThePortUnderView();
    void nothingUnderView();
    void lineEnds_data();
    void lineEnds();
    void hundredRows();
    void fiveTimesASecond();
    void pauseThrowsAway();
    void viewUnpauses();
    void clickWhilePausedPlays_data();
    void clickWhilePausedPlays();
    void endOfTheConnectionEmptiesTheList();

    void badChecksums();
    void checksumCountStops();
    void labelOfTheCountHidesAgain();

    void floodIsHarmless();

    void timerOfTheRows();

private:
    static QListWidget *list(const WindowBench &bench);
    static QStringList rows(const WindowBench &bench);
    static void view(WindowBench &bench, int code);
};

QListWidget *tst_monitor::list(const WindowBench &bench)
{
    return bench.find<QListWidget>("listWidget");
}

QStringList tst_monitor::rows(const WindowBench &bench)
{
    QStringList texts;
    for (int i = 0; i < list(bench)->count(); ++i)
        texts += list(bench)->item(i)->text();
    return texts;
}

// The view as the router confirms it.
void tst_monitor::view(WindowBench &bench, int code)
{
    bench.router.sendLine("$VRVVW," + QByteArray::number(code) + "\r\n");
}

void tst_monitor::versionOnlyWhileConnected()
{
    WindowBench bench;
    const auto *label = bench.find<QLabel>("label_firmware_version");
    bench.window.slotVRVersion(9, 81);
    QCOMPARE(label->text(), QString());
    QVERIFY(bench.connectToRouter());
    bench.window.slotVRVersion(10, 2);
    QCOMPARE(label->text(), QStringLiteral("fw: v.10.2"));
    bench.boxes.expect(WindowBench::busyBox());
    bench.router.sendLine("$VRCNB\r\n");
    QTRY_VERIFY(!bench.window.isConnected());
    bench.window.slotVRVersion(9, 81);
    QCOMPARE(label->text(), QString());
}

void tst_monitor::viewTexts_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("input 0") << 0xF0 << "INPUT PORT 0";
    QTest::newRow("input 11") << 0xFB << "INPUT PORT 11";
    QTest::newRow("output 0") << 0x0F << "OUTPUT PORT 0";
    QTest::newRow("output 11") << 0xBF << "OUTPUT PORT 11";
    QTest::newRow("channel") << 0x57 << "OUTPUT PORT 5 - CHANNEL 7";
    QTest::newRow("channel 0 of output 0") << 0x00 << "OUTPUT PORT 0 - CHANNEL 0";
    QTest::newRow("input 12, which no router has") << 0xFC << "INPUT PORT 12";
    QTest::newRow("input 14") << 0xFE << "INPUT PORT 14";
    QTest::newRow("output 12") << 0xCF << "OUTPUT PORT 12";
    QTest::newRow("channel 12") << 0x0C << "OUTPUT PORT 0 - CHANNEL 12";
    QTest::newRow("channel 12 of output 12") << 0xCC << "OUTPUT PORT 12 - CHANNEL 12";
    QTest::newRow("nothing") << 0xFF << "";
}

void tst_monitor::viewTexts()
{
    QFETCH(int, code);
    QFETCH(QString, text);
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    // The download has told that nothing is under view.
    QTRY_COMPARE(rows(bench), QStringList(QStringLiteral("----  ----")));
    list(bench)->clear();
    bench.find<QLabel>("label_receive_port")->setText(QStringLiteral("before"));
    view(bench, code);
    QTRY_COMPARE(bench.find<QLabel>("label_receive_port")->text(), text);
    const QString wrapped = QStringLiteral("---- %1 ----").arg(text);
    QTRY_COMPARE(rows(bench), QStringList(wrapped));
}

void tst_monitor::absurdViewChangesNothing_data()
{
    QTest::addColumn<int>("code");
    for (int code : {256, 1000})
        QTest::addRow("%d", code) << code;
}

void tst_monitor::absurdViewChangesNothing()
{
    QFETCH(int, code);
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    view(bench, 0xF3);
    QTRY_COMPARE(bench.find<QLabel>("label_receive_port")->text(), QStringLiteral("INPUT PORT 3"));
    view(bench, code);
    bench.router.sendChecked("$VRMOD,SEEN");
    QTRY_COMPARE(bench.find<QLabel>("label_firmware_mode")->text(), QStringLiteral("mode: SEEN"));
    QCOMPARE(bench.find<QLabel>("label_receive_port")->text(), QStringLiteral("INPUT PORT 3"));
}

void tst_monitor::linesOfThePortUnderView()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    view(bench, 0xF3);
    bench.router.sendLine("$GPGGA,1*55\r\n");
    bench.router.sendLine("!AIVDM,2\r\n");
    QTRY_VERIFY(rows(bench).endsWith(QStringLiteral("!AIVDM,2")));
    QCOMPARE(rows(bench).mid(rows(bench).size() - 3),
             QStringList({"---- INPUT PORT 3 ----", "$GPGGA,1*55", "!AIVDM,2"}));
}

void tst_monitor::nothingUnderView()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    view(bench, 0xFF);
    bench.router.sendLine("$GPGGA,1\r\n");
    view(bench, 0xF3);
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- INPUT PORT 3 ----")));
    QVERIFY(!rows(bench).contains(QStringLiteral("$GPGGA,1")));
}

void tst_monitor::lineEnds_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("row");
    QTest::newRow("CR LF") << "$GPGGA\r\n"
                           << "$GPGGA";
    QTest::newRow("LF") << "$GPGGA\n"
                        << "$GPGGA";
    QTest::newRow("none") << "$GPGGA"
                          << "$GPGGA";
    QTest::newRow("many") << "$GPGGA\r\n\r\n\n\r"
                          << "$GPGGA";
    QTest::newRow("only CR LF") << "\r\n"
                                << "";
    QTest::newRow("CR within") << "$GP\rGGA\r\n"
                               << "$GP\rGGA";
}

void tst_monitor::lineEnds()
{
    QFETCH(QString, line);
    QFETCH(QString, row);
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    view(bench, 0xF3);
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- INPUT PORT 3 ----")));
    bench.window.slotNMEAReceive(line);
    bench.window.slotStringTimer();
    QCOMPARE(rows(bench).last(), row);
}

void tst_monitor::hundredRows()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    view(bench, 0xF3);
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- INPUT PORT 3 ----")));
    list(bench)->clear();
    for (int i = 0; i < 100; ++i)
        bench.window.slotNMEAReceive(QString::number(i));
    bench.window.slotStringTimer();
    QCOMPARE(list(bench)->count(), 100);
    QCOMPARE(rows(bench).first(), QStringLiteral("0"));
    bench.window.slotNMEAReceive(QStringLiteral("100"));
    bench.window.slotStringTimer();
    QCOMPARE(list(bench)->count(), 100);
    QCOMPARE(rows(bench).first(), QStringLiteral("1"));
    QCOMPARE(rows(bench).last(), QStringLiteral("100"));

    for (int i = 0; i < 5000; ++i)
        bench.window.slotNMEAReceive(QString::number(i));
    bench.window.slotStringTimer();
    QCOMPARE(list(bench)->count(), 100);
    QCOMPARE(rows(bench).first(), QStringLiteral("4900"));
    // The last row is in sight.
    const QRect last = list(bench)->visualItemRect(list(bench)->item(99));
    QVERIFY(list(bench)->viewport()->rect().contains(last));
}

// Rows come by the timer alone, not by the line.
void tst_monitor::fiveTimesASecond()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    view(bench, 0xF3);
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- INPUT PORT 3 ----")));
    int insertions = 0;
    connect(list(bench)->model(), &QAbstractItemModel::rowsInserted, &bench.window,
            [&] { ++insertions; });
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 1000) {
        bench.window.slotNMEAReceive(QStringLiteral("$GPGGA"));
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    }
    QVERIFY2(insertions >= 1 && insertions <= 6, qPrintable(QString::number(insertions)));
}

void tst_monitor::pauseThrowsAway()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    view(bench, 0xF3);
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- INPUT PORT 3 ----")));
    auto *play = bench.find<QPushButton>("pushButton_play");
    const QStringList before = rows(bench);

    bench.window.slotNMEAReceive(QStringLiteral("queued"));
    play->click();
    QVERIFY(WindowBench::isSameIcon(play, ":/icons/player_play.png"));
    bench.window.slotNMEAReceive(QStringLiteral("paused"));
    bench.window.slotStringTimer();
    QCOMPARE(rows(bench), before);

    play->click();
    QVERIFY(WindowBench::isSameIcon(play, ":/icons/player_pause.png"));
    bench.window.slotNMEAReceive(QStringLiteral("played"));
    bench.window.slotStringTimer();
    QCOMPARE(rows(bench), before + QStringList(QStringLiteral("played")));
}

void tst_monitor::viewUnpauses()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    auto *play = bench.find<QPushButton>("pushButton_play");
    play->click();
    view(bench, 0xFF);
    bench.router.sendChecked("$VRMOD,SEEN");
    QTRY_COMPARE(bench.find<QLabel>("label_firmware_mode")->text(), QStringLiteral("mode: SEEN"));
    QVERIFY(WindowBench::isSameIcon(play, ":/icons/player_play.png"));
    view(bench, 0xF3);
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- INPUT PORT 3 ----")));
    QVERIFY(WindowBench::isSameIcon(play, ":/icons/player_pause.png"));
}

void tst_monitor::clickWhilePausedPlays_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("shown");
    QTest::newRow("output port") << "pushButton_output_port_4"
                                 << "OUTPUT PORT 4";
    QTest::newRow("channel") << "pushButton_channel_6"
                             << "OUTPUT PORT 0 - CHANNEL 6";
}

// The click asks the router, and its answer sets the monitor going.
void tst_monitor::clickWhilePausedPlays()
{
    QFETCH(QString, button);
    QFETCH(QString, shown);
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    auto *play = bench.find<QPushButton>("pushButton_play");
    play->click();
    QVERIFY(WindowBench::isSameIcon(play, ":/icons/player_play.png"));
    bench.find<QPushButton>(button)->click();
    QVERIFY(WindowBench::isSameIcon(play, ":/icons/player_play.png"));
    QTRY_COMPARE(bench.find<QLabel>("label_receive_port")->text(), shown);
    QVERIFY(WindowBench::isSameIcon(play, ":/icons/player_pause.png"));
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- %1 ----").arg(shown)));
}

void tst_monitor::endOfTheConnectionEmptiesTheList()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    view(bench, 0xF3);
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- INPUT PORT 3 ----")));
    bench.window.slotNMEAReceive(QStringLiteral("pending"));
    bench.boxes.expect(WindowBench::busyBox());
    bench.router.sendLine("$VRCNB\r\n");
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY(rows(bench).isEmpty());
    bench.window.slotStringTimer();
    QVERIFY(rows(bench).isEmpty());
    QVERIFY(bench.find<QLabel>("label_receive_port")->text().isEmpty());
}

void tst_monitor::badChecksums()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    const auto *count = bench.find<QLabel>("labelCrsErrorsCount");
    const auto *label = bench.find<QLabel>("labelCrsLabel");
    QCOMPARE(count->text(), QStringLiteral("0"));
    QVERIFY(!count->isVisible() && !label->isVisible());
    QCOMPARE(count->styleSheet(), QStringLiteral("QLabel{color: default}"));
    bench.router.sendLine("$VRVER,3.5*00\r\n$GPGGA,1*00\r\n$GPGGA,1\r\n");
    QTRY_COMPARE(count->text(), QStringLiteral("2"));
    QVERIFY(count->isVisible() && label->isVisible());
    QCOMPARE(count->styleSheet(), QStringLiteral("QLabel{color: red}"));
}

void tst_monitor::checksumCountStops()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    for (int i = 0; i < 99999; ++i)
        bench.window.slotCRSError();
    const auto *count = bench.find<QLabel>("labelCrsErrorsCount");
    QCOMPARE(count->text(), QStringLiteral("99999"));
    bench.window.slotCRSError();
    QCOMPARE(count->text(), QStringLiteral("100000"));
    bench.window.slotCRSError();
    QCOMPARE(count->text(), QStringLiteral("100000"));
}

// The next connection counts anew.
void tst_monitor::labelOfTheCountHidesAgain()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    const auto *count = bench.find<QLabel>("labelCrsErrorsCount");
    const auto *label = bench.find<QLabel>("labelCrsLabel");
    bench.router.sendLine("$GPGGA,1*00\r\n");
    QTRY_VERIFY(label->isVisible() && count->isVisible());
    bench.boxes.expect(WindowBench::busyBox());
    bench.router.sendLine("$VRCNB\r\n");
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY(!count->isVisible() && !label->isVisible());
    QCOMPARE(count->text(), QString());
    QCOMPARE(count->styleSheet(), QStringLiteral("QLabel{color: default}"));
}

// The line is saturated: that leaves the window most of its time, and the list stays short. The
// time is the processor's, since a busy machine gives the window little of any other.
void tst_monitor::floodIsHarmless()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    view(bench, 0xF3);
    QTRY_VERIFY(!rows(bench).isEmpty());
    QByteArray second;
    while (second.size() < 11520)
        second += "$GPGGA,092725.00,4717.11399,N,00833.91590,E,1,08,1.01,499.6,M,48.0,M,,*5B\r\n";
    for (int i = 0; i < 3; ++i)
        bench.router.sendLine(second);

    const std::clock_t before = std::clock();
    QElapsedTimer clock;
    clock.start();
    int longest = 0;
    QTRY_VERIFY_WITH_TIMEOUT(
        (longest = qMax(longest, list(bench)->count())) >= 0 && clock.elapsed() > 3000, 6000);
    const double seconds = double(std::clock() - before) / CLOCKS_PER_SEC;
    QVERIFY2(seconds < 1.5, qPrintable(QString::number(seconds)));
    QVERIFY(longest <= 100);
    QVERIFY(list(bench)->count() > 50);
    QVERIFY(bench.window.isConnected());
}

// It alone sets the pace of the rows, five times a second, and runs in a link's time only.
void tst_monitor::timerOfTheRows()
{
    constexpr int pace = 200;
    WindowBench bench;
    const auto running = [&bench] {
        QList<int> intervals;
        const auto timers =
            bench.window.findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
        for (const QTimer *timer : timers) {
            if (timer->isActive())
                intervals += timer->interval();
        }
        return intervals;
    };
    QCOMPARE(running(), QList<int>());
    bench.boxes.expect(WindowBench::downloadBox());
    bench.find<QPushButton>("pushButton_connect")->click();
    QCOMPARE(running(), QList<int>{pace});
    QTRY_COMPARE(bench.boxes.answered(), 1);
    QCOMPARE(running(), QList<int>{pace});
    bench.boxes.expect(WindowBench::busyBox());
    bench.router.sendLine("$VRCNB\r\n");
    QTRY_VERIFY(!bench.window.isConnected());
    QCOMPARE(running(), QList<int>());
}

QTEST_MAIN(tst_monitor)
#include "tst_monitor.moc"
