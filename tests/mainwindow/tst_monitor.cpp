#include "windowbench.h"

#include <QElapsedTimer>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStatusBar>
#include <QTextStream>

/*! The status panel: the monitor's list, its buttons, the count of bad checksums, its sizes. */
class tst_monitor : public QObject
{
    Q_OBJECT

private slots:
    void firstState();
    void form_data();
    void form();
    void alignments_data();
    void alignments();
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

    void everyOrderEndsWhereItBegan_data();
    void everyOrderEndsWhereItBegan();
    void panelIsAllOfTheBar_data();
    void panelIsAllOfTheBar();
    void foldedPanel();
    void speedView();
    void speedViewOfAWidenedWindow();
    void tallWindowGivesThePanelTheRest();

    void floodIsHarmless();

    void looks_data();
    void looks();
    void sheets_data();
    void sheets();
    void timerOfTheRows();
    void lockLabelFoldsToo();
    void unfoldsInATallWindow();
    void unfoldsInALowWindow();

private:
    static QListWidget *list(const WindowBench &bench);
    static QStringList rows(const WindowBench &bench);
    static void view(WindowBench &bench, int code);
};

namespace {

// A picture of every named widget's place, whether shown or not.
QString geometryOf(const QWidget &window)
{
    QString text;
    QTextStream out(&text);
    out << window.width() << 'x' << window.height() << '\n';
    const auto children = window.findChildren<QWidget *>();
    for (const QWidget *child : children) {
        if (child->objectName().isEmpty() || child->objectName().startsWith(QLatin1String("qt_")))
            continue;
        const QRect place = child->geometry();
        out << child->objectName() << ' ' << place.x() << ' ' << place.y() << ' ' << place.width()
            << ' ' << place.height() << ' ' << child->isVisibleTo(&window) << '\n';
    }
    return text;
}

QString firstDifference(const QString &a, const QString &b)
{
    const QStringList left = a.split(QLatin1Char('\n'));
    const QStringList right = b.split(QLatin1Char('\n'));
    for (int i = 0; i < qMin(left.size(), right.size()); ++i) {
        if (left.at(i) != right.at(i))
            return left.at(i) + QStringLiteral("  became  ") + right.at(i);
    }
    return QString();
}

bool isSameIcon(const QPushButton *button, const QString &path)
{
    const QSize size(24, 24);
    return button->icon().pixmap(size).toImage() == QIcon(path).pixmap(size).toImage();
}

} // namespace

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

void tst_monitor::firstState()
{
    WindowBench bench;
    QVERIFY(!bench.find<QLabel>("label_lock")->isVisible());
    QVERIFY(!bench.find<QPushButton>("pushButton_view_big")->isVisible());
    QVERIFY(!bench.find<QLabel>("labelCrsLabel")->isVisible());
    QVERIFY(!bench.find<QLabel>("labelCrsErrorsCount")->isVisible());
    QVERIFY(isSameIcon(bench.find<QPushButton>("pushButton_play"), ":/icons/player_pause.png"));
    QVERIFY(isSameIcon(bench.find<QPushButton>("pushButton_view_small"), ":/icons/arrow_up.png"));
    QVERIFY(isSameIcon(bench.find<QPushButton>("pushButton_view_big"), ":/icons/arrow_down.png"));
    QVERIFY(
        isSameIcon(bench.find<QPushButton>("pushButton_view_speed"), ":/icons/arrow_right.png"));
    for (const char *name : {"pushButton_play", "pushButton_view_small", "pushButton_view_big",
                             "pushButton_view_speed"}) {
        QCOMPARE(bench.find<QPushButton>(QString::fromLatin1(name))->iconSize(), QSize(24, 24));
    }
    QCOMPARE(list(bench)->editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(list(bench)->selectionMode(), QAbstractItemView::NoSelection);
    QCOMPARE(list(bench)->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(!list(bench)->showDropIndicator());
    QCOMPARE(list(bench)->font().pointSize(), 8);
    const auto *website = bench.find<QLabel>("label_website");
    QVERIFY(website->openExternalLinks());
    QCOMPARE(int(website->textInteractionFlags()), 13);
    QVERIFY(website->text().startsWith(QLatin1String("<a href=\"https://www.example.com/\"")));
    QVERIFY(website->text().endsWith(QLatin1String(">www.example.com</a>")));
    QCOMPARE(bench.find<QLabel>("label_receive_port")->font().pointSize(), 10);
    // The other gets smaller by quarters where the machine's font is wider than the design's.
    const auto *label = bench.find<QLabel>("label");
    QFont fitting = label->font();
    fitting.setPointSizeF(10);
    while (fitting.pointSizeF() > 7.5
           && QFontMetrics(fitting).size(0, label->text()).width() > label->minimumWidth())
        fitting.setPointSizeF(fitting.pointSizeF() - 0.25);
    QCOMPARE(label->font().pointSizeF(), fitting.pointSizeF());
}

void tst_monitor::form_data()
{
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QString>("text");
    QTest::newRow("frame_nmea_output") << QRect() << QString();
    QTest::newRow("label") << QRect(44, 6, 97, 16) << "Receive NMEA:";
    QTest::newRow("label_receive_port") << QRect(140, 6, 245, 16) << "";
    QTest::newRow("listWidget") << QRect(4, 30, 843, 141) << QString();
    QTest::newRow("pushButton_play") << QRect(6, 3, 33, 25) << "";
    QTest::newRow("label_rs422") << QRect(10, 172, 50, 20) << "RS-422";
    QTest::newRow("label_rs232") << QRect(70, 172, 50, 20) << "RS-232";
    QTest::newRow("label_view") << QRect(130, 172, 50, 20) << "VIEW";
    QTest::newRow("label_lock") << QRect(200, 172, 56, 20) << QString();
    QTest::newRow("label_website") << QRect(635, 172, 131, 20) << QString();
    QTest::newRow("labelCrsLabel") << QRect(510, 6, 71, 16) << "CRS Errors:";
    QTest::newRow("labelCrsErrorsCount") << QRect(580, 6, 71, 18) << "";
    QTest::newRow("pushButton_view_small") << QRect(770, 3, 33, 25) << "";
    QTest::newRow("pushButton_view_big") << QRect(770, 172, 33, 25) << "";
    QTest::newRow("pushButton_view_speed") << QRect(810, 3, 33, 25) << "";
    QTest::newRow("line") << QRect(0, 0, 850, 2) << QString();
}

void tst_monitor::form()
{
    QFETCH(QRect, place);
    QFETCH(QString, text);
    WindowBench bench;
    bench.window.resize(853, 797);
    QCoreApplication::processEvents();
    const auto *widget = bench.find<QWidget>(QString::fromLatin1(QTest::currentDataTag()));
    if (!place.isNull())
        QCOMPARE(widget->geometry(), place);
    if (!text.isNull())
        QCOMPARE(widget->property("text").toString(), text);
}

void tst_monitor::alignments_data()
{
    QTest::addColumn<bool>("centred");
    for (const char *name : {"label", "label_receive_port", "label_rs422", "label_rs232",
                             "label_view", "labelCrsLabel", "labelCrsErrorsCount"})
        QTest::newRow(name) << false;
    QTest::newRow("label_lock") << true;
    QTest::newRow("label_website") << true;
}

void tst_monitor::alignments()
{
    QFETCH(bool, centred);
    WindowBench bench;
    const auto *label = bench.find<QLabel>(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(label->alignment(),
             centred ? Qt::Alignment(Qt::AlignCenter) : Qt::AlignLeft | Qt::AlignVCenter);
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
    bench.boxes.expect(
        WindowBench::linkBox(QStringLiteral("TK-7 Router Busy another Control programm")));
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
    QVERIFY(isSameIcon(play, ":/icons/player_play.png"));
    bench.window.slotNMEAReceive(QStringLiteral("paused"));
    bench.window.slotStringTimer();
    QCOMPARE(rows(bench), before);

    play->click();
    QVERIFY(isSameIcon(play, ":/icons/player_pause.png"));
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
    QVERIFY(isSameIcon(play, ":/icons/player_play.png"));
    view(bench, 0xF3);
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- INPUT PORT 3 ----")));
    QVERIFY(isSameIcon(play, ":/icons/player_pause.png"));
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
    QVERIFY(isSameIcon(play, ":/icons/player_play.png"));
    bench.find<QPushButton>(button)->click();
    QVERIFY(isSameIcon(play, ":/icons/player_play.png"));
    QTRY_COMPARE(bench.find<QLabel>("label_receive_port")->text(), shown);
    QVERIFY(isSameIcon(play, ":/icons/player_pause.png"));
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- %1 ----").arg(shown)));
}

void tst_monitor::endOfTheConnectionEmptiesTheList()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    view(bench, 0xF3);
    QTRY_VERIFY(rows(bench).contains(QStringLiteral("---- INPUT PORT 3 ----")));
    bench.window.slotNMEAReceive(QStringLiteral("pending"));
    bench.boxes.expect(
        WindowBench::linkBox(QStringLiteral("TK-7 Router Busy another Control programm")));
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
    bench.boxes.expect(
        WindowBench::linkBox(QStringLiteral("TK-7 Router Busy another Control programm")));
    bench.router.sendLine("$VRCNB\r\n");
    QTRY_VERIFY(!bench.window.isConnected());
    QVERIFY(!count->isVisible() && !label->isVisible());
    QCOMPARE(count->text(), QString());
    QCOMPARE(count->styleSheet(), QStringLiteral("QLabel{color: default}"));
}

void tst_monitor::everyOrderEndsWhereItBegan_data()
{
    QTest::addColumn<int>("height");
    QTest::newRow("design height") << 797;
    QTest::newRow("taller") << 900;
    QTest::newRow("lower") << 600;
    QTest::newRow("lowest") << 244;
}

// Every walk of six steps: fold or unfold, show or hide the speeds. A state looks the same
// whichever way it was reached, also in a window that has walked before.
void tst_monitor::everyOrderEndsWhereItBegan()
{
    QFETCH(int, height);
    constexpr int steps = 6;
    MainWindow window;
    window.show();
    window.resize(window.width(), height);
    QCoreApplication::processEvents();
    QCOMPARE(window.height(), height);

    bool folded = false;
    bool wide = false;
    QString seen[2][2];
    const auto step = [&](bool fold) {
        if (!fold)
            window.slotButViewSpeed();
        else if (folded)
            window.slotButBigStatus();
        else
            window.slotButSmallStatus();
        (fold ? folded : wide) ^= true;
        QCoreApplication::processEvents();
    };
    const auto looksAsBefore = [&] {
        QString &known = seen[folded][wide];
        const QString now = geometryOf(window);
        if (known.isNull())
            known = now;
        return firstDifference(known, now);
    };
    QCOMPARE(looksAsBefore(), QString());
    for (int walk = 0; walk < 1 << steps; ++walk) {
        for (int i = 0; i < steps; ++i) {
            step(walk >> i & 1);
            QCOMPARE(looksAsBefore(), QString());
        }
        if (folded)
            step(true);
        if (wide)
            step(false);
        QCOMPARE(looksAsBefore(), QString());
    }
}

void tst_monitor::panelIsAllOfTheBar_data()
{
    QTest::addColumn<int>("height");
    QTest::addColumn<bool>("folded");
    QTest::addColumn<bool>("wide");
    for (const int height : {244, 600, 797, 900}) {
        for (const bool folded : {false, true}) {
            for (const bool wide : {false, true}) {
                QTest::addRow("%d%s%s", height, folded ? ", folded" : "", wide ? ", wide" : "")
                    << height << folded << wide;
            }
        }
    }
}

// No pixel of the panel lies outside the bar, nor one of its contents outside the panel.
void tst_monitor::panelIsAllOfTheBar()
{
    QFETCH(int, height);
    QFETCH(bool, folded);
    QFETCH(bool, wide);
    MainWindow window;
    window.show();
    window.resize(window.width(), height);
    if (folded)
        window.slotButSmallStatus();
    if (wide)
        window.slotButViewSpeed();
    QCoreApplication::processEvents();
    const auto *bar = window.findChild<QStatusBar *>();
    const auto *panel = window.findChild<QWidget *>(QStringLiteral("frame_nmea_output"));
    QCOMPARE(bar->width(), window.width());
    QCOMPARE(panel->parentWidget()->geometry(), bar->rect());
    QCOMPARE(panel->geometry(), bar->rect());
    const auto contents = panel->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (const QWidget *widget : contents) {
        if (widget->isVisible())
            QVERIFY2(panel->rect().contains(widget->geometry()), qPrintable(widget->objectName()));
    }
}

void tst_monitor::foldedPanel()
{
    WindowBench bench;
    bench.window.resize(853, 797);
    bench.find<QPushButton>("pushButton_view_small")->click();
    QCoreApplication::processEvents();
    QCOMPARE(bench.window.height(), 630);
    QCOMPARE(bench.window.maximumHeight(), 630);
    QCOMPARE(bench.window.minimumHeight(), 77);
    QCOMPARE(bench.find<QStatusBar>("statusBar")->height(), 30);
    QVERIFY(bench.find<QStatusBar>("statusBar")->isVisible());
    for (const char *name :
         {"pushButton_play", "label", "label_receive_port", "listWidget", "pushButton_view_small"})
        QVERIFY2(!bench.find<QWidget>(name)->isVisible(), name);
    for (const char *name :
         {"label_rs422", "label_rs232", "label_view", "label_website", "pushButton_view_big"}) {
        const auto *widget = bench.find<QWidget>(name);
        QVERIFY2(widget->isVisible(), name);
        QCOMPARE(widget->y(), bench.find<QWidget>("pushButton_play")->y());
    }

    bench.find<QPushButton>("pushButton_view_big")->click();
    QCoreApplication::processEvents();
    QCOMPARE(bench.window.height(), 797);
    QCOMPARE(bench.window.maximumHeight(), 2 * 797);
    QCOMPARE(bench.window.minimumHeight(), 47 + 197);
    QVERIFY(bench.find<QWidget>("listWidget")->isVisible());
    QVERIFY(!bench.find<QPushButton>("pushButton_view_big")->isVisible());
    QCOMPARE(bench.find<QWidget>("label_rs422")->y(), 172);
    QCOMPARE(bench.find<QWidget>("listWidget")->height(), 141);
}

void tst_monitor::speedView()
{
    WindowBench bench;
    auto *button = bench.find<QPushButton>("pushButton_view_speed");
    const struct
    {
        const char *name;
        int width;
    } widened[] = {
        {"scrollAreaInputPorts", 115}, {"label_input_ports", 115}, {"frame", 845}, {"line", 850},
        {"listWidget", 843},           {"frame_input_ports", 115}};

    button->click();
    QCoreApplication::processEvents();
    QCOMPARE(bench.window.width(), 903);
    QCOMPARE(bench.window.minimumWidth(), 903);
    QCOMPARE(bench.window.maximumWidth(), 903);
    QVERIFY(isSameIcon(button, ":/icons/arrow_left.png"));
    for (const auto &widget : widened)
        QCOMPARE(bench.find<QWidget>(widget.name)->width(), widget.width + 50);
    int shown = 0;
    const auto labels = bench.find<QWidget>("frame_input_ports")
                            ->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
    for (const QLabel *label : labels)
        shown += label->isVisible() && label->text() == QLatin1String("4800");
    QCOMPARE(shown, 12);

    button->click();
    QCoreApplication::processEvents();
    QCOMPARE(bench.window.width(), 853);
    QVERIFY(isSameIcon(button, ":/icons/arrow_right.png"));
    for (const auto &widget : widened)
        QCOMPARE(bench.find<QWidget>(widget.name)->width(), widget.width);
    for (const QLabel *label : labels)
        QVERIFY(!label->isVisible());
}

// A window manager need not care for the fixed width. The contents gain and lose what the speeds
// need, whatever the window has.
void tst_monitor::speedViewOfAWidenedWindow()
{
    WindowBench bench;
    const auto widen = [&bench] {
        bench.window.setMaximumWidth(1000);
        bench.window.resize(1000, bench.window.height());
        QCoreApplication::processEvents();
        QCOMPARE(bench.window.width(), 1000);
    };
    const auto *list = bench.find<QWidget>("listWidget");
    const auto *line = bench.find<QWidget>("line");
    widen();
    QCOMPARE(bench.find<QWidget>("frame_nmea_output")->width(), 1000);
    bench.window.slotButViewSpeed();
    QCOMPARE(list->width(), 893);
    QCOMPARE(line->width(), 900);
    widen();
    bench.window.slotButViewSpeed();
    QCOMPARE(list->width(), 843);
    QCOMPARE(line->width(), 850);
    QCOMPARE(bench.window.width(), 853);
}

void tst_monitor::tallWindowGivesThePanelTheRest()
{
    WindowBench bench;
    bench.window.resize(853, 897);
    QCoreApplication::processEvents();
    QCOMPARE(bench.find<QStatusBar>("statusBar")->height(), 297);
    QCOMPARE(bench.find<QWidget>("listWidget")->height(), 241);
    QCOMPARE(bench.find<QWidget>("label_rs422")->y(), 272);
    QCOMPARE(bench.find<QWidget>("scrollAreaInputPorts")->height(), 477);
}

// The line is saturated: the window is served all the while, and the list stays short.
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

    int beats = 0;
    QTimer heart;
    connect(&heart, &QTimer::timeout, &heart, [&beats] { ++beats; });
    heart.start(20);
    QElapsedTimer clock;
    clock.start();
    int longest = 0;
    QTRY_VERIFY_WITH_TIMEOUT(
        (longest = qMax(longest, list(bench)->count())) >= 0 && clock.elapsed() > 3000, 6000);
    // Half of the beats that an idle machine would give.
    QVERIFY2(beats > 75, qPrintable(QString::number(beats)));
    QVERIFY(longest <= 100);
    QVERIFY(list(bench)->count() > 50);
    QVERIFY(bench.window.isConnected());
}

void tst_monitor::looks_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("panel has no frame")
        << "frame_nmea_output" << QByteArray("frameShape") << QVariant(int(QFrame::NoFrame));
    QTest::newRow("line is horizontal")
        << "line" << QByteArray("frameShape") << QVariant(int(QFrame::HLine));
    QTest::newRow("line is sunken")
        << "line" << QByteArray("frameShadow") << QVariant(int(QFrame::Sunken));
    QTest::newRow("lock") << "label_lock" << QByteArray("text") << QVariant("LOCK");
}

void tst_monitor::looks()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, property);
    QFETCH(QVariant, expected);
    WindowBench bench;
    QVariant value = bench.find<QWidget>(name)->property(property.constData());
    QVERIFY(value.isValid() && value.convert(int(expected.type())));
    QCOMPARE(value, expected);
}

void tst_monitor::sheets_data()
{
    QTest::addColumn<QString>("sheet");
    const QString button =
        QStringLiteral("QLabel { background-color: rgb(%1); color: white; border-style: inset; "
                       "border-width: 1px; font-size:10pt}");
    QTest::newRow("label_receive_port") << "QLabel { color : rgb(255,95,0); }";
    QTest::newRow("label_rs422") << button.arg("5,0,180");
    QTest::newRow("label_rs232") << button.arg("29,177,0");
    QTest::newRow("label_view") << button.arg("255,95,0");
    QTest::newRow("label_website") << button.arg("85,40,245");
}

void tst_monitor::sheets()
{
    WindowBench bench;
    QTEST(bench.find<QLabel>(QString::fromLatin1(QTest::currentDataTag()))->styleSheet(), "sheet");
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
    bench.boxes.expect(
        WindowBench::linkBox(QStringLiteral("TK-7 Router Busy another Control programm")));
    bench.router.sendLine("$VRCNB\r\n");
    QTRY_VERIFY(!bench.window.isConnected());
    QCOMPARE(running(), QList<int>());
}

void tst_monitor::lockLabelFoldsToo()
{
    WindowBench bench;
    bench.window.resize(853, 797);
    QCoreApplication::processEvents();
    const auto *lock = bench.find<QLabel>("label_lock");
    QCOMPARE(lock->pos(), QPoint(200, 172));
    bench.window.slotButSmallStatus();
    QCOMPARE(lock->pos(), QPoint(200, 3));
    bench.window.slotButBigStatus();
    QCOMPARE(lock->pos(), QPoint(200, 172));
}

// The panel comes back as high as it was folded, and the window gets no lower than that allows.
void tst_monitor::unfoldsInATallWindow()
{
    constexpr int panel = 197 + 100;
    WindowBench bench;
    bench.window.resize(853, 797 + 100);
    QCoreApplication::processEvents();
    bench.window.slotButSmallStatus();
    QCoreApplication::processEvents();
    QCOMPARE(bench.window.height(), 630);
    bench.window.slotButBigStatus();
    QCoreApplication::processEvents();
    QCOMPARE(bench.window.minimumHeight(), 47 + panel);
    QCOMPARE(bench.window.height(), 897);
    QCOMPARE(bench.find<QStatusBar>("statusBar")->height(), panel);
}

// A window that was drawn lower since has no room for the panel of the tall one.
void tst_monitor::unfoldsInALowWindow()
{
    WindowBench bench;
    bench.window.resize(853, 797 + 100);
    QCoreApplication::processEvents();
    bench.window.slotButSmallStatus();
    bench.window.resize(853, 629);
    QCoreApplication::processEvents();
    bench.window.slotButBigStatus();
    QCoreApplication::processEvents();
    QCOMPARE(bench.window.minimumHeight(), 47 + 197);
    QCOMPARE(bench.window.height(), 629 + 197 - 30);
    QCOMPARE(bench.find<QStatusBar>("statusBar")->height(), 197);
}

QTEST_MAIN(tst_monitor)
#include "tst_monitor.moc"
