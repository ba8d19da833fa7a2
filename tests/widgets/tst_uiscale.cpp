#include "widgets/uiscale.h"

#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTest>

namespace {

const char resolutionVariable[] = "QT_FONT_DPI";

} // namespace

/*! Runs at 96 and at 144 dots per inch. */
class TestUiScale : public QObject
{
    Q_OBJECT

public:
    static void initMain()
    {
        if (!qEnvironmentVariableIsSet(resolutionVariable))
            qputenv(resolutionVariable, "96");
    }

private slots:
    void followsTheScreen();
    void lengths_data();
    void lengths();
    void widgets_data();
    void widgets();
    void scalesTheNamedTypesOnly();
    void scalesTypeByType();
    void leavesPopupsAlone();
    void fitsText_data();
    void fitsText();
};

void TestUiScale::followsTheScreen()
{
    const double resolution = qEnvironmentVariable(resolutionVariable).toDouble();
    QCOMPARE(QGuiApplication::primaryScreen()->logicalDotsPerInchX(), resolution);
    QCOMPARE(ui_scale(), resolution / 96.0);
}

void TestUiScale::lengths_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<double>("factor");
    QTest::addColumn<int>("result");

    QTest::newRow("unscaled") << 853 << 1.0 << 853;
    QTest::newRow("80 becomes 120") << 80 << 1.5 << 120;
    QTest::newRow("90 becomes 135") << 90 << 1.5 << 135;
    QTest::newRow("the half is cut") << 47 << 1.5 << 70;
    QTest::newRow("nearly the next is cut") << 31 << 1.25 << 38;
    QTest::newRow("nothing") << 0 << 1.5 << 0;
    QTest::newRow("a negative half is cut towards zero") << -47 << 1.5 << -70;
    QTest::newRow("a small negative becomes nothing") << -1 << 0.75 << 0;
}

void TestUiScale::lengths()
{
    QFETCH(int, length);
    QFETCH(double, factor);
    QTEST(scaled(length, factor), "result");
}

void TestUiScale::widgets_data()
{
    QTest::addColumn<QRect>("place");
    QTest::addColumn<float>("factor");
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<QSize>("minimum");

    QTest::newRow("unscaled") << QRect(80, 6, 90, 35) << 1.0F << QPoint(80, 6) << QSize(90, 35);
    QTest::newRow("a button at 144 dots per inch")
        << QRect(80, 6, 90, 35) << 1.5F << QPoint(120, 9) << QSize(135, 52);
    QTest::newRow("every number is cut by itself")
        << QRect(151, 5, 95, 31) << 1.5F << QPoint(226, 7) << QSize(142, 46);
    QTest::newRow("at 120 dots per inch")
        << QRect(7, 27, 27, 31) << 1.25F << QPoint(8, 33) << QSize(33, 38);
    QTest::newRow("left of and above its parent")
        << QRect(-3, -5, 10, 10) << 1.5F << QPoint(-4, -7) << QSize(15, 15);
    // In double precision the products would be a little less, and cut to 24, 49 and 99.
    QTest::newRow("at 100 dots per inch, in single precision")
        << QRect(24, 48, 24, 96) << float(100.0 / 96.0) << QPoint(25, 50) << QSize(25, 100);
}

void TestUiScale::widgets()
{
    QFETCH(QRect, place);
    QFETCH(float, factor);
    QWidget parent;
    QWidget widget(&parent);
    widget.setGeometry(place);
    scaleWidget(&widget, factor);
    QTEST(widget.pos(), "position");
    QTEST(widget.minimumSize(), "minimum");
    // A minimum below the present size leaves the size alone.
    QCOMPARE(widget.size(), place.size().expandedTo(widget.minimumSize()));
}

void TestUiScale::scalesTheNamedTypesOnly()
{
    QWidget window;
    QFrame frame(&window);
    frame.setGeometry(4, 0, 100, 40);
    QPushButton deepButton(&frame);
    deepButton.setGeometry(8, 6, 60, 30);
    QWidget plain(&window);
    plain.setGeometry(10, 10, 20, 20);
    window.resize(300, 200);

    scaleChildren<QPushButton, QFrame>(&window, 1.5F);
    QCOMPARE(frame.geometry(), QRect(6, 0, 150, 60));
    QCOMPARE(deepButton.geometry(), QRect(12, 9, 90, 45));
    QCOMPARE(plain.geometry(), QRect(10, 10, 20, 20));
    QCOMPARE(window.size(), QSize(300, 200));
}

void TestUiScale::scalesTypeByType()
{
    QWidget window;
    QLabel label(&window);
    label.setGeometry(10, 10, 20, 20);
    // A label is a frame too, so it is reached twice when both types are named.
    scaleChildren<QFrame, QLabel>(&window, 2.0F);
    QCOMPARE(label.geometry(), QRect(40, 40, 80, 80));
}

void TestUiScale::leavesPopupsAlone()
{
    QWidget window;
    QFrame frame(&window);
    frame.setGeometry(10, 10, 20, 20);
    QFrame popup(&window, Qt::Popup);
    popup.setGeometry(10, 10, 20, 20);
    scaleChildren<QFrame>(&window, 1.5F);
    QCOMPARE(frame.geometry(), QRect(15, 15, 30, 30));
    QCOMPARE(popup.geometry(), QRect(10, 10, 20, 20));
    QCOMPARE(popup.minimumSize(), QSize(0, 0));
}

void TestUiScale::fitsText_data()
{
    QTest::addColumn<double>("share"); // of the width that the text takes
    QTest::addColumn<bool>("shrinks");
    QTest::addColumn<bool>("narrows");
    QTest::addColumn<bool>("fits");

    QTest::newRow("wide enough") << 1.0 << false << false << true;
    QTest::newRow("a little too narrow") << 0.9 << true << false << true;
    QTest::newRow("narrower letters at 7.5 points") << 0.58 << true << true << true;
    QTest::newRow("much too narrow: not below 7.5 points and 80 %") << 0.1 << true << true << false;
}

void TestUiScale::fitsText()
{
    QFETCH(double, share);
    QFETCH(bool, shrinks);
    QFETCH(bool, narrows);
    QFETCH(bool, fits);
    constexpr qreal design = 12;
    constexpr qreal smallest = 7.5;
    QLabel label(QStringLiteral("Saving rules in the EEPROM"));
    QFont font = label.font();
    font.setPointSizeF(design);
    label.setFont(font);
    label.setMinimumWidth(int(label.sizeHint().width() * share));

    fitText(&label);

    font = label.font();
    QCOMPARE(font.pointSizeF() < design, shrinks);
    QCOMPARE(font.stretch() != QFont::AnyStretch, narrows);
    QCOMPARE(label.sizeHint().width() <= label.minimumWidth(), fits);
    if (narrows)
        QCOMPARE(font.pointSizeF(), smallest);
    if (!fits) {
        QCOMPARE(font.stretch(), 80);
        return;
    }
    // No smaller and no narrower than needed.
    if (!shrinks)
        return;
    if (narrows)
        font.setStretch(font.stretch() + 1);
    else
        font.setPointSizeF(font.pointSizeF() + 0.25);
    label.setFont(font);
    QVERIFY(label.sizeHint().width() > label.minimumWidth());
}

QTEST_MAIN(TestUiScale)
#include "tst_uiscale.moc"
