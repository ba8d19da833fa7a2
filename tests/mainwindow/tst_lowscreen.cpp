#include "aisdialogs/aistargetinfodlg.h"
#include "mainwindow/mainwindow.h"
#include "mainwindow/statuswidget.h"
#include "support/formcheck.h"
#include "widgets/screenarea.h"

#include <QGuiApplication>
#include <QProxyStyle>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStatusBar>
#include <QStyle>
#include <QTableWidget>

/*!
 * The window on the screens of a ship's laptops: none of its steps leaves a border outside the
 * available area.
 *
 * Runs for many screens without a display, and once for each resolution on a display of 1366 by 768
 * with a window manager, where the row is the screen itself.
 */
class tst_lowscreen : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { pretendAvailableArea(QRect()); }

    void start_data() { addScreens(); }
    void start();
    void startValues_data();
    void startValues();
    void steps_data() { addScreens(); }
    void steps();
    void unfoldFromFullHeight_data() { addScreens(); }
    void unfoldFromFullHeight();
    void speedViewAtTheRightEdge_data() { addScreens(); }
    void speedViewAtTheRightEdge();
    void narrowWindowScrolls_data() { addScreens(); }
    void narrowWindowScrolls();
    void wideScrollBar_data();
    void wideScrollBar();
    void targetInformation_data() { addScreens(); }
    void targetInformation();

private:
    static void addScreens();
    static bool isOnDisplay();
    static bool isInSight(const QWidget &window);
    static bool comesInSight(const QWidget &window);
};

namespace {

// What the row's screen has room for.
int highest(const QWidget &window)
{
    return availableArea(&window).height() - frameOf(&window).top() - 10;
}

int cut(int length)
{
    return FormCheck::cut(length);
}

int round(int length)
{
    return qRound(length * FormCheck::expectedScale());
}

QString placeOf(const QWidget &window)
{
    QString text;
    QDebug(&text) << window.geometry() << frameOf(&window);
    return text;
}

void press(const QWidget &window, const char *button)
{
    window.findChild<QPushButton *>(QString::fromLatin1(button))->click();
}

} // namespace

bool tst_lowscreen::isOnDisplay()
{
    return QGuiApplication::platformName() == QLatin1String("xcb");
}

void tst_lowscreen::initTestCase()
{
    if (isOnDisplay())
        QCOMPARE(QGuiApplication::primaryScreen()->size(), QSize(1366, 768));
}

void tst_lowscreen::addScreens()
{
    QTest::addColumn<QRect>("area");
    if (isOnDisplay()) {
        QTest::newRow("display") << QRect();
        return;
    }
    QTest::newRow("1366 by 768") << QRect(0, 0, 1366, 768);
    QTest::newRow("1366 by 768, docks") << QRect(64, 28, 1302, 740);
    QTest::newRow("1280 by 800") << QRect(0, 0, 1280, 800);
    QTest::newRow("1280 by 800, dock below") << QRect(0, 0, 1280, 760);
    QTest::newRow("1024 by 768") << QRect(0, 0, 1024, 768);
    QTest::newRow("1024 by 768, dock above") << QRect(0, 28, 1024, 740);
    QTest::newRow("second screen") << QRect(1920, 200, 1366, 768);
    QTest::newRow("1920 by 1440") << QRect(0, 0, 1920, 1440);
}

// The rectangle is the system's to set: on a display its answer takes a while.
bool tst_lowscreen::comesInSight(const QWidget &window)
{
    constexpr int longestAnswer = 2000; // ms
    QCoreApplication::processEvents();
    return QTest::qWaitFor([&] { return isInSight(window); }, isOnDisplay() ? longestAnswer : 0);
}

bool tst_lowscreen::isInSight(const QWidget &window)
{
    const QRect area = availableArea(&window);
    const QMargins frame = frameOf(&window);
    const QRect whole = window.geometry().marginsAdded(frame);
    if (whole.top() < area.top() || whole.bottom() > area.bottom())
        return false;
    if (whole.width() <= area.width())
        return area.contains(whole);
    // As wide as the screen: one of its lateral borders can't be seen, or both.
    return whole.left() >= area.left() - frame.left()
        && whole.right() <= area.right() + frame.left() + frame.right();
}

void tst_lowscreen::start()
{
    QFETCH(QRect, area);
    pretendAvailableArea(area);
    MainWindow window;
    const QRect place = window.geometry();
    const int titleBar = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const QRect screen = availableArea(&window);
    QCOMPARE(place.width(), qMin(cut(853), screen.width()));
    QCOMPARE(window.minimumWidth(), place.width());
    QCOMPARE(window.maximumWidth(), place.width());
    QCOMPARE(place.height(), qMin(cut(600) + cut(197), screen.height() - titleBar - 10));
    QCOMPARE(place.x() - screen.x(), (screen.width() - place.width()) / 2);
    // Title bar and window together stand in the middle.
    const int above = place.y() - titleBar - screen.y();
    const int below = screen.bottom() - place.bottom();
    QVERIFY2(above == below || above == below - 1, qPrintable(QString::number(above - below)));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(comesInSight(window));
}

void tst_lowscreen::startValues_data()
{
    QTest::addColumn<QRect>("area");
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("aboveMiddle"); // of the free height, title bar included
    const int freeWidth = 1920 - cut(853);
    const int freeHeight = 1440 - cut(600) - cut(197);
    QTest::newRow("room") << QRect(0, 0, 1920, 1440) << freeWidth / 2 << freeHeight / 2;
    QTest::newRow("docks") << QRect(64, 28, 1856, 1412) << 64 + (freeWidth - 64) / 2
                           << 28 + (freeHeight - 28) / 2;
    QTest::newRow("low") << QRect(0, 0, 1366, 768) << (1366 - cut(853)) / 2 << 5;
}

void tst_lowscreen::startValues()
{
    QFETCH(QRect, area);
    QFETCH(int, left);
    QFETCH(int, aboveMiddle);
    pretendAvailableArea(area);
    const MainWindow window;
    const int titleBar = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    QCOMPARE(window.x(), left);
    const bool isLow = area.height() < cut(600) + cut(197) + titleBar + 10;
    const int expected = isLow ? aboveMiddle + titleBar : aboveMiddle + titleBar / 2;
    QVERIFY2(qAbs(window.y() - expected) <= 1, qPrintable(QString::number(window.y())));
}

// All walks of four steps, each from another corner of the screen. Not for a display: the answers
// of a window manager to so many steps overtake each other.
void tst_lowscreen::steps()
{
    QFETCH(QRect, area);
    pretendAvailableArea(area);
    constexpr int length = 4;
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QRect screen = availableArea(&window);
    bool folded = false;
    bool wide = false;
    for (int walk = 0; walk < 1 << length; ++walk) {
        const QPoint corner(walk & 1 ? screen.right() - window.width() : screen.left(),
                            walk & 2 ? screen.bottom() - window.height() : screen.top() + 30);
        window.move(corner);
        for (int i = 0; i < length; ++i) {
            if (walk >> i & 1) {
                press(window, folded ? "pushButton_view_big" : "pushButton_view_small");
                folded = !folded;
            } else {
                press(window, "pushButton_view_speed");
                wide = !wide;
            }
            QVERIFY2(comesInSight(window), qPrintable(placeOf(window)));
            const int told = cut(853) + (wide ? round(50) : 0);
            QTRY_COMPARE(window.width(), qMin(told, screen.width()));
            QCOMPARE(window.minimumWidth(), window.maximumWidth());
        }
    }
}

// The folded window, drawn as high as it goes, is unfolded.
void tst_lowscreen::unfoldFromFullHeight()
{
    QFETCH(QRect, area);
    pretendAvailableArea(area);
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    press(window, "pushButton_view_small");
    QVERIFY(comesInSight(window));
    const int full = qMin(cut(600) + cut(30), highest(window));
    window.resize(window.width(), full);
    QTRY_COMPARE(window.height(), full);
    press(window, "pushButton_view_big");
    const int told = full + cut(197) - round(30);
    QTRY_COMPARE(window.height(), qMin(told, highest(window)));
    QVERIFY(comesInSight(window));
    const auto *bar = window.findChild<QStatusBar *>();
    QCOMPARE(bar->geometry().bottom(), window.height() - 1);
}

void tst_lowscreen::speedViewAtTheRightEdge()
{
    QFETCH(QRect, area);
    pretendAvailableArea(area);
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QRect screen = availableArea(&window);
    const int right = screen.x() + screen.width() - window.frameGeometry().width();
    window.move(right, window.y());
    QTRY_COMPARE(window.x(), right);
    press(window, "pushButton_view_speed");
    QVERIFY(comesInSight(window));
    QTRY_COMPARE(window.width(), qMin(cut(853) + round(50), screen.width()));
}

// On a screen that is narrower than the window all of it can be brought into sight.
void tst_lowscreen::narrowWindowScrolls()
{
    QFETCH(QRect, area);
    pretendAvailableArea(area);
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    press(window, "pushButton_view_speed");
    QVERIFY(comesInSight(window));
    const auto *contents = window.findChild<QWidget *>(QStringLiteral("centralWidget"));
    auto *scrolls = qobject_cast<QScrollArea *>(window.centralWidget());
    const int told = cut(853) + round(50);
    const int hidden = told - window.width();
    QTRY_COMPARE(contents->width(), told);
    QCOMPARE(scrolls->horizontalScrollBar()->isVisible(), hidden > 0);
    QCOMPARE(scrolls->horizontalScrollBar()->maximum(), hidden);
    QVERIFY(!scrolls->verticalScrollBar()->isVisible());

    scrolls->horizontalScrollBar()->setValue(hidden);
    const auto leftOf = [&window](const char *name) {
        auto *widget = window.findChild<QWidget *>(QString::fromLatin1(name));
        return QRect(widget->mapTo(&window, QPoint()), widget->size());
    };
    for (const char *name : {"scrollAreaInputPorts", "pushButton_Service", "pushButton_view_speed",
                             "pushButton_view_small"}) {
        const QRect place = leftOf(name);
        QVERIFY2(place.left() >= 0 && place.right() < window.width(), name);
    }
    // The scroll bar lies between the columns and the panel, on top of neither.
    const auto *bar = window.findChild<QStatusBar *>();
    const int barHeight = hidden > 0 ? scrolls->horizontalScrollBar()->height() : 0;
    QVERIFY(leftOf("scrollAreaInputPorts").bottom() < bar->y() - barHeight);

    press(window, "pushButton_view_speed");
    QVERIFY(comesInSight(window));
    if (cut(853) <= window.width()) {
        QTRY_VERIFY(!scrolls->horizontalScrollBar()->isVisible());
        QCOMPARE(window.findChild<QWidget *>(QStringLiteral("frame_nmea_output"))->x(), 0);
    }
}

void tst_lowscreen::wideScrollBar_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("allFits");
    QTest::newRow("as on Windows") << 17 << true;
    QTest::newRow("wider than the margin that can give way") << 60 << false;
}

// What stands in a channel's row isn't covered by a bar; of one that is too wide, not on its left.
void tst_lowscreen::wideScrollBar()
{
    QFETCH(int, width);
    QFETCH(bool, allFits);
    class WideBars : public QProxyStyle
    {
    public:
        explicit WideBars(int width) : m_width(width) { }

    private:
        int pixelMetric(PixelMetric metric, const QStyleOption *option,
                        const QWidget *widget) const override
        {
            return metric == PM_ScrollBarExtent ? m_width
                                                : QProxyStyle::pixelMetric(metric, option, widget);
        }
        int m_width;
    };
    WideBars style(round(width));
    MainWindow window;
    auto *area = window.findChild<QScrollArea *>(QStringLiteral("scrollAreaInputChannels"));
    area->verticalScrollBar()->setStyle(&style);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const auto placeOf = [&](const char *name) {
        auto *widget = window.findChild<QWidget *>(QString::fromLatin1(name));
        return QRect(widget->mapTo(area->viewport(), QPoint()), widget->size());
    };
    for (const bool isLow : {true, false, true}) {
        window.resize(window.width(), isLow ? window.minimumHeight() : cut(797));
        QTRY_COMPARE(area->verticalScrollBar()->isVisible(), isLow);
        if (allFits || !isLow)
            QTRY_VERIFY(placeOf("pushButton_channel_0_hdr_set").right()
                        < area->viewport()->width());
        else
            QTRY_COMPARE(placeOf("pushButton_channel_0").left(), 0);
        QVERIFY(placeOf("pushButton_channel_0").left() >= 0);
        if (!isLow)
            QCOMPARE(placeOf("frame_input_channels_tabl").left(), 0);
    }
}

void tst_lowscreen::targetInformation()
{
    QFETCH(QRect, area);
    pretendAvailableArea(area);
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    AisTargetInfoDlg info(&window);
    const int told = cut(587);
    const int height = qMin(told, highest(window));
    QCOMPARE(info.size(), QSize(cut(387), height));
    QCOMPARE(info.minimumSize(), info.size());
    QCOMPARE(info.maximumSize(), info.size());
    info.show();
    QVERIFY(QTest::qWaitForWindowExposed(&info));
    // Without a display nobody places a window of another screen than the platform's own.
    if (isOnDisplay()) {
        QVERIFY(comesInSight(info));
    }
    auto *table = info.findChild<QTableWidget *>();
    QVERIFY(info.rect().contains(table->geometry()));
    QCOMPARE(table->height(), cut(583) - (told - height));
    QCOMPARE(table->verticalScrollBar()->isVisible(), table->verticalScrollBar()->maximum() > 0);
    table->scrollToBottom();
    const QRect last = table->visualItemRect(table->item(18, 1));
    QVERIFY(table->viewport()->rect().contains(last));
}

TK7_FORM_TEST_MAIN(tst_lowscreen)
#include "tst_lowscreen.moc"
