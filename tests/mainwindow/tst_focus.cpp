#include "windowbench.h"

#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest/qtestspontaneevent.h>

#include <algorithm>
#include <QWheelEvent>
#include <QWindow>

/*! The main window by keyboard and wheel, and as a screen reader sees it. */
class tst_focus : public QObject
{
    Q_OBJECT

private slots:
    void policies_data();
    void policies();
    void tabOrder_data();
    void tabOrder();
    void spacePresses_data();
    void spacePresses();

    void wheelOverASpeed_data();
    void wheelOverASpeed();

    void names_data();
    void names();
    void boxesAreDescribed();
    void switchesChangeTheirNames();
    void everyControlHasItsName();
};

namespace {

QStringList numbered(const QString &pattern)
{
    QStringList names;
    for (int i = 0; i < 12; ++i)
        names += pattern.arg(i);
    return names;
}

// As from the mouse: only then Qt lets it give the focus and go on to the widgets behind.
void wheel(QWidget *widget, int steps)
{
    QWidget *window = widget->window();
    const QPoint centre = widget->rect().center();
    QWheelEvent event(widget->mapTo(window, centre), widget->mapToGlobal(centre), QPoint(),
                      QPoint(0, steps * QWheelEvent::DefaultDeltasPerStep), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(window->windowHandle(), &event);
}

QString accessibleText(QWidget *widget, QAccessible::Text kind = QAccessible::Name)
{
    const QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(widget);
    return interface ? interface->text(kind) : QStringLiteral("(none)");
}

// The interfaces below \a root, from the top of the tree.
void collect(QAccessibleInterface *root, QList<QAccessibleInterface *> &found)
{
    for (int i = 0; i < root->childCount(); ++i) {
        QAccessibleInterface *child = root->child(i);
        if (!child)
            continue;
        found += child;
        collect(child, found);
    }
}

bool isControl(QAccessible::Role role)
{
    return role == QAccessible::PushButton || role == QAccessible::CheckBox
        || role == QAccessible::ComboBox || role == QAccessible::EditableText
        || role == QAccessible::List;
}

} // namespace

void tst_focus::policies_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<Qt::FocusPolicy>("policy");
    const auto row = [](const char *name, const QStringList &names, Qt::FocusPolicy policy) {
        QTest::newRow(name) << names << policy;
    };
    row("output buttons", numbered("pushButton_output_port_%1"), Qt::StrongFocus);
    row("channel buttons", numbered("pushButton_channel_%1"), Qt::StrongFocus);
    row("the other buttons",
        {"pushButton_return_input", "pushButton_play", "pushButton_view_small",
         "pushButton_view_big", "pushButton_view_speed"},
        Qt::StrongFocus);
    row("the monitor's list", {"listWidget"}, Qt::StrongFocus);
    // The wheel alone must not give it to them.
    row("speeds", numbered("comboBox_output_port_%1"), Qt::StrongFocus);
    row("filters", numbered("checkBox_channel_%1_filter"), Qt::NoFocus);
    row("filters' buttons", numbered("pushButton_channel_%1_filter_set"), Qt::NoFocus);
    row("checksums", numbered("checkBox_channel_%1_crs"), Qt::NoFocus);
    row("smart functions", numbered("pushButton_channel_%1_smart"), Qt::NoFocus);
    row("headers", numbered("checkBox_channel_%1_hdr"), Qt::NoFocus);
    row("headers' texts", numbered("lineEdit_channel_%1_hdr"), Qt::NoFocus);
    row("headers' buttons", numbered("pushButton_channel_%1_hdr_set"), Qt::NoFocus);
}

void tst_focus::policies()
{
    QFETCH(QStringList, names);
    QFETCH(Qt::FocusPolicy, policy);
    const MainWindow window;
    for (const QString &name : qAsConst(names)) {
        const auto *widget = window.findChild<QWidget *>(name);
        QVERIFY2(widget, qPrintable(name));
        QVERIFY2(widget->focusPolicy() == policy, qPrintable(name));
    }
}

void tst_focus::tabOrder_data()
{
    QTest::addColumn<bool>("folded");
    QTest::newRow("unfolded") << false;
    QTest::newRow("folded") << true;
}

// As the eye goes: the bar at the top, the outputs, the channels, the panel; and round again.
void tst_focus::tabOrder()
{
    QFETCH(bool, folded);
    WindowBench bench;
    bench.find<QPushButton>("pushButton_SaveEEPROM")->setEnabled(true);
    QStringList expected = {"comboBox_connect_port", "pushButton_rescan_ports",
                            "pushButton_connect",    "pushButton_SaveEEPROM",
                            "pushButton_SaveFile",   "pushButton_LoadFile",
                            "pushButton_Service"};
    for (int i = 0; i < 12; ++i) {
        expected += QStringLiteral("pushButton_output_port_%1").arg(i);
        expected += QStringLiteral("comboBox_output_port_%1").arg(i);
    }
    expected += numbered("pushButton_channel_%1");
    expected += "pushButton_return_input";
    if (folded) {
        bench.window.slotButSmallStatus();
        expected += {"pushButton_view_speed", "label_website", "pushButton_view_big"};
    } else {
        expected += {"pushButton_play", "pushButton_view_small", "pushButton_view_speed",
                     "listWidget", "label_website"};
    }
    bench.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&bench.window));
    bench.find<QComboBox>("comboBox_connect_port")->setFocus();
    QStringList walked;
    QString name = expected.first();
    do {
        walked += name;
        QTest::keyClick(bench.window.focusWidget(), Qt::Key_Tab);
        if (bench.window.focusWidget()->objectName()
            == name) // the link in a text is a stop as well
            QTest::keyClick(bench.window.focusWidget(), Qt::Key_Tab);
        name = bench.window.focusWidget()->objectName();
    } while (name != expected.first() && walked.size() < 2 * expected.size());
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE(walked.value(i), expected.at(i));
    QCOMPARE(walked.size(), expected.size());
    QTest::keyClick(bench.window.focusWidget(), Qt::Key_Backtab);
    QCOMPARE(bench.window.focusWidget()->objectName(), expected.last());
}

void tst_focus::spacePresses_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("output") << "pushButton_output_port_3" << QByteArray("$VRVVW,63\r\n");
    QTest::newRow("channel") << "pushButton_channel_7" << QByteArray("$VRVVW,7\r\n");
}

void tst_focus::spacePresses()
{
    QFETCH(QString, button);
    QFETCH(QByteArray, sent);
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(!bench.heard().contains(sent));
    auto *pressed = bench.find<QPushButton>(button);
    pressed->setFocus();
    QTest::keyClick(pressed, Qt::Key_Space);
    QTRY_VERIFY(bench.heard().contains(sent));
}

void tst_focus::wheelOverASpeed_data()
{
    QTest::addColumn<bool>("focused");
    QTest::newRow("without the focus") << false;
    QTest::newRow("with the focus") << true;
}

// In a low window the column of the outputs scrolls.
void tst_focus::wheelOverASpeed()
{
    QFETCH(bool, focused);
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.window.resize(bench.window.width(), 500);
    QCoreApplication::processEvents();
    auto *box = bench.find<QComboBox>("comboBox_output_port_2");
    auto *bar = bench.find<QScrollArea>("scrollAreaOutputPorts")->verticalScrollBar();
    QVERIFY(bar->maximum() > 0);
    const int speed = box->currentIndex();
    const int place = bar->value();
    bench.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&bench.window));
    bench.find<QPushButton>("pushButton_connect")->setFocus();
    if (focused)
        box->setFocus();
    bench.router.clearTranscript();

    wheel(box, -1);
    QCOMPARE(box->currentIndex(), focused ? speed + 1 : speed);
    QCOMPARE(bar->value() > place, !focused);
    QCOMPARE(box->hasFocus(), focused);
    bench.find<QPushButton>("pushButton_channel_7")->click();
    QTRY_VERIFY(!bench.heard().isEmpty() && bench.heard().last() == "$VRVVW,7\r\n");
    const QList<QByteArray> heard = bench.heard();
    const auto isSpeed = [](const QByteArray &line) { return line.startsWith("$VRSPD,"); };
    QCOMPARE(std::count_if(heard.begin(), heard.end(), isSpeed), focused ? 1 : 0);
}

void tst_focus::names_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("name");
    QTest::newRow("logo") << "pushButton_Service"
                          << "Service";
    QTest::newRow("return") << "pushButton_return_input"
                            << "Return all inputs of this output port";
    QTest::newRow("output") << "pushButton_output_port_11"
                            << "PORT  11";
    QTest::newRow("channel") << "pushButton_channel_4"
                             << "Channel 4";
    QTest::newRow("filter") << "checkBox_channel_4_filter"
                            << "Filter of channel 4";
    QTest::newRow("filter's button") << "pushButton_channel_4_filter_set"
                                     << "Set filter of channel 4";
    QTest::newRow("checksum") << "checkBox_channel_4_crs"
                              << "Checksum of channel 4";
    QTest::newRow("smart") << "pushButton_channel_4_smart"
                           << "Smart function of channel 4";
    QTest::newRow("header") << "checkBox_channel_4_hdr"
                            << "Header of channel 4";
    QTest::newRow("header's text") << "lineEdit_channel_4_hdr"
                                   << "Header text of channel 4";
    QTest::newRow("header's button") << "pushButton_channel_4_hdr_set"
                                     << "Set header of channel 4";
    QTest::newRow("play") << "pushButton_play"
                          << "Pause";
    QTest::newRow("list") << "listWidget"
                          << "Received NMEA lines";
    QTest::newRow("arrow up") << "pushButton_view_small"
                              << "Fold the panel";
    QTest::newRow("arrow down") << "pushButton_view_big"
                                << "Unfold the panel";
    QTest::newRow("arrow right") << "pushButton_view_speed"
                                 << "Show the speeds of the input ports";
}

void tst_focus::names()
{
    QFETCH(QString, object);
    WindowBench bench;
    QTEST(accessibleText(bench.find<QWidget>(object)), "name");
}

// Some systems give a combo box its text for a name, whatever name it has.
void tst_focus::boxesAreDescribed()
{
    WindowBench bench;
    const auto described = [&bench](const QString &name, const QString &text) {
        auto *box = bench.find<QComboBox>(name);
        return box->accessibleName() == text
            && accessibleText(box, QAccessible::Description) == text;
    };
    QVERIFY(described("comboBox_connect_port", "COM port"));
    for (int i = 0; i < 12; ++i) {
        QVERIFY(described(QStringLiteral("comboBox_output_port_%1").arg(i),
                          QStringLiteral("Speed of output port %1").arg(i)));
    }
}

void tst_focus::switchesChangeTheirNames()
{
    WindowBench bench;
    auto *play = bench.find<QPushButton>("pushButton_play");
    auto *speeds = bench.find<QPushButton>("pushButton_view_speed");
    play->click();
    speeds->click();
    QCOMPARE(accessibleText(play), QStringLiteral("Play"));
    QCOMPARE(accessibleText(speeds), QStringLiteral("Hide the speeds of the input ports"));
    play->click();
    speeds->click();
    QCOMPARE(accessibleText(play), QStringLiteral("Pause"));
    QCOMPARE(accessibleText(speeds), QStringLiteral("Show the speeds of the input ports"));
}

// The tree as a screen reader walks it: each control and each cell with a name that no other has.
void tst_focus::everyControlHasItsName()
{
    WindowBench bench;
    bench.window.slotButViewSpeed();
    QList<QAccessibleInterface *> all;
    collect(QAccessible::queryAccessibleInterface(&bench.window), all);
    QStringList controls;
    QStringList cells;
    QStringList speeds;
    for (QAccessibleInterface *interface : qAsConst(all)) {
        auto *widget = qobject_cast<QWidget *>(interface->object());
        if (!widget || !widget->isVisible())
            continue;
        const bool isBox = interface->role() == QAccessible::ComboBox;
        const QString name = interface->text(isBox ? QAccessible::Description : QAccessible::Name);
        if (isControl(interface->role())) {
            QVERIFY2(!name.isEmpty(), qPrintable(widget->objectName()));
            QVERIFY2(!controls.contains(name), qPrintable(name));
            controls += name;
        } else if (widget->inherits("DragFrame")) {
            cells += name;
        } else if (!interface->text(QAccessible::Description).isEmpty()) {
            QCOMPARE(name, QStringLiteral("4800"));
            speeds += interface->text(QAccessible::Description);
        }
    }
    // 7 of the bar, 24 of the outputs, 96 of the channels, ">>", 4 of the panel.
    QCOMPARE(controls.size(), 7 + 24 + 96 + 1 + 4);
    const QStringList expected = numbered("Main input of channel %1")
        + numbered("Reserve input of channel %1") + numbered("Input port %1");
    for (const QString &name : expected)
        QVERIFY2(cells.count(name) == 1, qPrintable(name));
    QCOMPARE(cells.size(), 36);
    QCOMPARE(speeds, numbered("Speed of input port %1"));
}

QTEST_MAIN(tst_focus)
#include "tst_focus.moc"
