#include "widgets/screenarea.h"

#include <QScreen>
#include <QStyle>
#include <QTest>
#include <QWidget>

Q_DECLARE_METATYPE(QMargins)

/*! Windows on screens that are too small for them: moved first, then cut. */
class tst_screenarea : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { pretendAvailableArea(QRect()); }

    void places_data();
    void places();
    void everyScreen_data();
    void everyScreen();
    void frameOfAHiddenWindow();
    void pretendedArea();
};

namespace {

constexpr QMargins titleBar(0, 24, 0, 0);
constexpr QMargins wholeFrame(1, 20, 1, 6);

} // namespace

void tst_screenarea::places_data()
{
    QTest::addColumn<QRect>("area");
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QMargins>("frame");
    QTest::addColumn<QRect>("fitted");

    const QRect laptop(0, 0, 1366, 768);
    QTest::newRow("has room") << laptop << QRect(100, 50, 853, 630) << wholeFrame
                              << QRect(100, 50, 853, 630);
    QTest::newRow("fills the room")
        << laptop << QRect(1, 20, 1364, 738) << wholeFrame << QRect(1, 20, 1364, 738);
    QTest::newRow("below") << laptop << QRect(100, 200, 853, 630) << wholeFrame
                           << QRect(100, 132, 853, 630);
    QTest::newRow("beside") << laptop << QRect(600, 50, 853, 630) << wholeFrame
                            << QRect(512, 50, 853, 630);
    QTest::newRow("title bar above")
        << laptop << QRect(100, 5, 853, 630) << wholeFrame << QRect(100, 20, 853, 630);
    QTest::newRow("left of it") << laptop << QRect(-30, 50, 853, 630) << wholeFrame
                                << QRect(1, 50, 853, 630);
    QTest::newRow("a pixel too high")
        << laptop << QRect(100, 50, 853, 735) << titleBar << QRect(100, 34, 853, 734);
    QTest::newRow("just as high") << laptop << QRect(100, 24, 853, 734) << titleBar
                                  << QRect(100, 24, 853, 734);
    QTest::newRow("much too high")
        << laptop << QRect(100, 50, 853, 1195) << titleBar << QRect(100, 34, 853, 734);
    QTest::newRow("lower border higher than the free pixels")
        << laptop << QRect(100, 50, 853, 1195) << QMargins(1, 20, 1, 30)
        << QRect(100, 20, 853, 718);
    QTest::newRow("too wide") << QRect(0, 0, 1024, 768) << QRect(10, 50, 1066, 400) << wholeFrame
                              << QRect(0, 50, 1024, 400);
    QTest::newRow("as wide as the screen, but for its frame")
        << QRect(0, 0, 1280, 800) << QRect(30, 50, 1279, 400) << wholeFrame
        << QRect(1, 50, 1279, 400);
    QTest::newRow("docks at the left and the top")
        << QRect(64, 28, 1302, 740) << QRect(0, 0, 853, 1195) << titleBar
        << QRect(64, 52, 853, 706);
    QTest::newRow("second screen") << QRect(1920, 0, 1366, 768) << QRect(3000, 600, 853, 630)
                                   << wholeFrame << QRect(2432, 132, 853, 630);
}

void tst_screenarea::places()
{
    QFETCH(QRect, area);
    QFETCH(QRect, place);
    QFETCH(QMargins, frame);
    QTEST(fittedTo(area, place, frame), "fitted");
}

void tst_screenarea::everyScreen_data()
{
    QTest::addColumn<QRect>("area");
    QTest::addColumn<double>("scale");
    const QSize screens[] = {{1366, 768}, {1280, 800}, {1024, 768}};
    const struct
    {
        const char *name;
        QMargins margins;
    } docks[] = {{"no dock", {}},
                 {"dock at the bottom", {0, 0, 0, 40}},
                 {"dock at the top", {0, 28, 0, 0}},
                 {"dock at the left", {64, 0, 0, 0}},
                 {"docks all round", {64, 28, 48, 40}}};
    for (const QSize &screen : screens) {
        for (const auto &dock : docks) {
            for (const int dpi : {96, 120, 144}) {
                QTest::addRow("%d by %d, %s, %d dpi", screen.width(), screen.height(), dock.name,
                              dpi)
                    << QRect(QPoint(), screen).marginsRemoved(dock.margins) << dpi / 96.0;
            }
        }
    }
}

// Whatever the window and wherever it was: what has room keeps its size, all of it is in sight, and
// what was in sight stays where it was.
void tst_screenarea::everyScreen()
{
    QFETCH(QRect, area);
    QFETCH(double, scale);
    const QSize designs[] = {{853, 797}, {903, 797}, {853, 630},
                             {387, 587}, {355, 434}, {853, 244}};
    for (const QSize &design : designs) {
        const QSize size = design * scale;
        for (const QMargins &frame : {titleBar, wholeFrame}) {
            for (const int x : {-200, 0, 70, 400, 1300}) {
                for (const int y : {-200, 0, 60, 300, 700}) {
                    const QRect place(QPoint(x, y), size);
                    const QRect fitted = fittedTo(area, place, frame);
                    const int room = area.height() - frame.top() - 10;
                    QCOMPARE(fitted.width(), qMin(size.width(), area.width()));
                    QCOMPARE(fitted.height(), qMin(size.height(), room));
                    QVERIFY(area.contains(fitted));
                    const QRect whole = fitted.marginsAdded(frame);
                    QVERIFY(whole.top() >= area.top() && whole.bottom() <= area.bottom());
                    if (whole.width() <= area.width())
                        QVERIFY(area.contains(whole));
                    if (area.contains(place.marginsAdded(frame)) && size.height() <= room)
                        QCOMPARE(fitted, place);
                    QCOMPARE(fittedTo(area, fitted, frame), fitted);
                }
            }
        }
    }
}

void tst_screenarea::frameOfAHiddenWindow()
{
    const QWidget window;
    const int title = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    QCOMPARE(frameOf(&window), QMargins(0, title, 0, 0));
}

void tst_screenarea::pretendedArea()
{
    const QWidget window;
    QCOMPARE(availableArea(&window), window.screen()->availableGeometry());
    const QRect area(64, 28, 1302, 740);
    pretendAvailableArea(area);
    QCOMPARE(availableArea(&window), area);
    const int title = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    QCOMPARE(fittedToScreen(&window, QRect(0, 0, 400, 300)), QRect(64, 28 + title, 400, 300));
}

QTEST_MAIN(tst_screenarea)
#include "tst_screenarea.moc"
