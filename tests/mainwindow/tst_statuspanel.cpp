#include "windowbench.h"

#include <QFrame>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStatusBar>
#include <QTextStream>

/*! The looks of the status panel: its form, folded or not, with the speeds or without. */
class tst_statuspanel : public QObject
{
    Q_OBJECT

private slots:
    void firstState();
    void form_data();
    void form();
    void alignments_data();
    void alignments();

    void everyOrderEndsWhereItBegan_data();
    void everyOrderEndsWhereItBegan();
    void panelIsAllOfTheBar_data();
    void panelIsAllOfTheBar();
    void foldedPanel();
    void speedView();
    void speedViewOfAWidenedWindow();
    void tallWindowGivesThePanelTheRest();

    void looks_data();
    void looks();
    void sheets_data();
    void sheets();
    void lockLabelFoldsToo();
    void unfoldsInATallWindow();
    void unfoldsInALowWindow();
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

} // namespace

void tst_statuspanel::firstState()
{
    WindowBench bench;
    QVERIFY(!bench.find<QLabel>("label_lock")->isVisible());
    QVERIFY(!bench.find<QPushButton>("pushButton_view_big")->isVisible());
    QVERIFY(!bench.find<QLabel>("labelCrsLabel")->isVisible());
    QVERIFY(!bench.find<QLabel>("labelCrsErrorsCount")->isVisible());
    QVERIFY(WindowBench::isSameIcon(bench.find<QPushButton>("pushButton_play"),
                                    ":/icons/player_pause.png"));
    QVERIFY(WindowBench::isSameIcon(bench.find<QPushButton>("pushButton_view_small"),
                                    ":/icons/arrow_up.png"));
    QVERIFY(WindowBench::isSameIcon(bench.find<QPushButton>("pushButton_view_big"),
                                    ":/icons/arrow_down.png"));
    QVERIFY(WindowBench::isSameIcon(bench.find<QPushButton>("pushButton_view_speed"),
                                    ":/icons/arrow_right.png"));
    for (const char *name : {"pushButton_play", "pushButton_view_small", "pushButton_view_big",
                             "pushButton_view_speed"}) {
        QCOMPARE(bench.find<QPushButton>(QString::fromLatin1(name))->iconSize(), QSize(24, 24));
    }
    const auto *list = bench.find<QListWidget>("listWidget");
    QCOMPARE(list->editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(list->selectionMode(), QAbstractItemView::NoSelection);
    QCOMPARE(list->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(!list->showDropIndicator());
    QCOMPARE(list->font().pointSize(), 8);
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

void tst_statuspanel::form_data()
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

void tst_statuspanel::form()
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

void tst_statuspanel::alignments_data()
{
    QTest::addColumn<bool>("centred");
    for (const char *name : {"label", "label_receive_port", "label_rs422", "label_rs232",
                             "label_view", "labelCrsLabel", "labelCrsErrorsCount"})
        QTest::newRow(name) << false;
    QTest::newRow("label_lock") << true;
    QTest::newRow("label_website") << true;
}

void tst_statuspanel::alignments()
{
    QFETCH(bool, centred);
    WindowBench bench;
    const auto *label = bench.find<QLabel>(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(label->alignment(),
             centred ? Qt::Alignment(Qt::AlignCenter) : Qt::AlignLeft | Qt::AlignVCenter);
}

void tst_statuspanel::everyOrderEndsWhereItBegan_data()
{
    QTest::addColumn<int>("height");
    QTest::newRow("design height") << 797;
    QTest::newRow("taller") << 900;
    QTest::newRow("lower") << 600;
    QTest::newRow("lowest") << 244;
}

// Every walk of six steps: fold or unfold, show or hide the speeds. A state looks the same
// whichever way it was reached, also in a window that has walked before.
void tst_statuspanel::everyOrderEndsWhereItBegan()
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

void tst_statuspanel::panelIsAllOfTheBar_data()
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
void tst_statuspanel::panelIsAllOfTheBar()
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

void tst_statuspanel::foldedPanel()
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

void tst_statuspanel::speedView()
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
    QVERIFY(WindowBench::isSameIcon(button, ":/icons/arrow_left.png"));
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
    QVERIFY(WindowBench::isSameIcon(button, ":/icons/arrow_right.png"));
    for (const auto &widget : widened)
        QCOMPARE(bench.find<QWidget>(widget.name)->width(), widget.width);
    for (const QLabel *label : labels)
        QVERIFY(!label->isVisible());
}

// A window manager need not care for the fixed width. The contents gain and lose what the speeds
// need, whatever the window has.
void tst_statuspanel::speedViewOfAWidenedWindow()
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

void tst_statuspanel::tallWindowGivesThePanelTheRest()
{
    WindowBench bench;
    bench.window.resize(853, 897);
    QCoreApplication::processEvents();
    QCOMPARE(bench.find<QStatusBar>("statusBar")->height(), 297);
    QCOMPARE(bench.find<QWidget>("listWidget")->height(), 241);
    QCOMPARE(bench.find<QWidget>("label_rs422")->y(), 272);
    QCOMPARE(bench.find<QWidget>("scrollAreaInputPorts")->height(), 477);
}

void tst_statuspanel::looks_data()
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

void tst_statuspanel::looks()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, property);
    QFETCH(QVariant, expected);
    WindowBench bench;
    const QVariant value = bench.find<QWidget>(name)->property(property.constData());
    QVERIFY(value.isValid());
    if (expected.userType() == QMetaType::QString)
        QCOMPARE(value.toString(), expected.toString());
    else
        QCOMPARE(value.toInt(), expected.toInt());
}

void tst_statuspanel::sheets_data()
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

void tst_statuspanel::sheets()
{
    WindowBench bench;
    QTEST(bench.find<QLabel>(QString::fromLatin1(QTest::currentDataTag()))->styleSheet(), "sheet");
}

void tst_statuspanel::lockLabelFoldsToo()
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
void tst_statuspanel::unfoldsInATallWindow()
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
void tst_statuspanel::unfoldsInALowWindow()
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

QTEST_MAIN(tst_statuspanel)
#include "tst_statuspanel.moc"
