#include "matrixlooks.h"
#include "matrixtest.h"

#include <QComboBox>
#include <QFrame>
#include <QSignalSpy>

#include <functional>

using namespace MatrixLooks;
using MatrixRows::emptyRow;
using MatrixRows::plainRow;
using Act = std::function<void(MainWindow &, DragFrame *)>;
Q_DECLARE_METATYPE(Act)

namespace {

constexpr int inputPort(int view)
{
    return view >= 0xf0 && view < 0xfc ? view - 0xf0 : -1;
}
constexpr int outputPort(int view)
{
    return view % 16 == 15 && view / 16 < 12 ? view / 16 : -1;
}
constexpr int channel(int view)
{
    return view % 16 < 12 && view / 16 < 15 ? view % 16 : -1; // whatever port it names
}

// The style sheets of all that shows a view, row by row: output port, channel, input port.
QStringList viewSheets(const MatrixView &matrix)
{
    QStringList sheets;
    for (int i = 0; i < MatrixView::size; ++i) {
        sheets << matrix.outputButton(i)->styleSheet() << matrix.channelButton(i)->styleSheet()
               << matrix.labels[MatrixView::at(i)]->styleSheet();
    }
    return sheets;
}

// And as they are to be under this view.
QStringList viewSheets(int view)
{
    QStringList sheets;
    for (int i = 0; i < MatrixView::size; ++i) {
        const QString &outputAtRest = i < 8 ? rs422Output : rs232Output;
        const QString &inputAtRest = i < 10 ? rs422Input : rs232Input;
        sheets << (outputPort(view) == i ? viewedButton : outputAtRest)
               << (channel(view) == i ? viewedButton : restingChannel)
               << (inputPort(view) == i ? viewedInput : inputAtRest);
    }
    return sheets;
}

} // namespace

/*! What the matrix does: the view's colours, its buttons, clicks on frames, boxes, what is sent. */
class TestMatrix : public MatrixTest
{
    Q_OBJECT

private slots:
    void viewColors();
    void viewIsIgnoredWhileNotConnected();

    void selectOutputPort_data();
    void selectOutputPort();
    void selectionOffline();
    void selectionKeepsTheModel();
    void channelButton_data();
    void channelButton();
    void viewFollowsTheRouter();

    void clickOnFrame_data();
    void clickOnFrame();
    void clickRepaintsThePresentView();
    void clickOnPlaceholder();

    void crsBox_data();
    void crsBox();
    void crsBoxOfAnEmptyChannel();
    void crsBoxOffline();

    void returnAll();
    void returnAllOffline();

    void unknownSenders_data();
    void unknownSenders();
    void nothingIsSentBeforeTheConnectionStands();

private:
    MainWindow &window() { return connected()->window(); }
    const ChannelRecord &record(int port, int channel)
    {
        return window().routerModel().output_ports[size_t(port)].channels[size_t(channel)];
    }
};

// Colours of the view

void TestMatrix::viewColors()
{
    for (int step = 0; step <= 256; ++step) {
        const int code = step % 256; // all of them, and from nothing back to the first
        window().slotVRPortView(quint8(code));
        const QString message = QStringLiteral("code %1").arg(code);
        QVERIFY2(viewSheets(connected()->matrix) == viewSheets(code), qPrintable(message));
    }
}

void TestMatrix::viewIsIgnoredWhileNotConnected()
{
    const MatrixView matrix(*fresh());
    const QStringList atRest = viewSheets(matrix);
    for (int code : {0x0f, 0x00, 0xf3})
        fresh()->slotVRPortView(quint8(code));
    QCOMPARE(viewSheets(matrix), atRest);
}

// Buttons

void TestMatrix::selectOutputPort_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("port 0") << 0 << QByteArray("$VRVVW,15\r\n");
    QTest::newRow("port 1") << 1 << QByteArray("$VRVVW,31\r\n");
    QTest::newRow("port 3") << 3 << QByteArray("$VRVVW,63\r\n");
    QTest::newRow("port 7") << 7 << QByteArray("$VRVVW,127\r\n");
    QTest::newRow("port 8") << 8 << QByteArray("$VRVVW,143\r\n");
    QTest::newRow("port 10") << 10 << QByteArray("$VRVVW,175\r\n");
    QTest::newRow("port 11") << 11 << QByteArray("$VRVVW,191\r\n");
}

void TestMatrix::selectOutputPort()
{
    QFETCH(int, port);
    QFETCH(QByteArray, line);
    MatrixView &matrix = connected()->matrix;
    connected()->start(port == 5 ? 6 : 5);
    // Each output port takes its own input port, as main of its own channel.
    for (int o = 0; o < MatrixView::size; ++o)
        window().slotVRNewRule(quint8(o), o, quint8(0xf0 + o), 0x11);
    const QColor plain = window().palette().color(QPalette::Window);

    QTest::mouseClick(matrix.outputButton(port), Qt::LeftButton);

    for (int i = 0; i < MatrixView::size; ++i) {
        const auto *frame = matrix.widget<QFrame>("frame_output_ports_%1", i);
        for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
            QCOMPARE(frame->palette().color(group, frame->backgroundRole()),
                     i == port ? violet : plain);
        QCOMPARE(matrix.row(i), i == port ? QStringLiteral("F-C+H--S\"\"!") : emptyRow);
        QCOMPARE(matrix.placeOf(i), i == port ? 16 + i : 48 + i);
    }
    QCOMPARE(connected()->bench.find<QLabel>("label_cur_ch_out")->text(),
             QStringLiteral("< OUTPUT PORT %1 >").arg(port));
    QCOMPARE(connected()->sent(), QList<QByteArray>{line});

    QTest::mouseClick(matrix.outputButton(port), Qt::LeftButton);
    QCOMPARE(connected()->sent(), QList<QByteArray>{line}); // also when it is the present one
}

void TestMatrix::selectionOffline()
{
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewRule(11, 2, 0xf3, 0);
    QTest::mouseClick(matrix.outputButton(11), Qt::LeftButton);
    QCOMPARE(matrix.placeOf(3), 18);
    QCOMPARE(matrix.row(2), plainRow);
    QCOMPARE(fresh()->findChild<QLabel *>("label_cur_ch_out")->text(),
             QStringLiteral("< OUTPUT PORT 11 >"));
    QTest::mouseClick(matrix.outputButton(0), Qt::LeftButton);
    QCOMPARE(matrix.placeOf(3), 51);
    QCOMPARE(matrix.row(2), emptyRow);
}

void TestMatrix::selectionKeepsTheModel()
{
    for (int o = 0; o < MatrixView::size; ++o)
        window().slotVRNewRule(quint8(o), o, quint8(0x10 * o + 3), 0x7f);
    const RouterModel before = window().routerModel();
    for (int port = 0; port < MatrixView::size; ++port)
        connected()->select(port);
    QVERIFY(window().routerModel() == before);
}

void TestMatrix::channelButton_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("channel");
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("channel 0 of port 0") << 0 << 0 << QByteArray("$VRVVW,0\r\n");
    QTest::newRow("channel 7 of port 3") << 3 << 7 << QByteArray("$VRVVW,55\r\n");
    QTest::newRow("channel 3 of port 7") << 7 << 3 << QByteArray("$VRVVW,115\r\n");
    QTest::newRow("channel 11 of port 11") << 11 << 11 << QByteArray("$VRVVW,187\r\n");
}

void TestMatrix::channelButton()
{
    QFETCH(int, port);
    QFETCH(int, channel);
    QFETCH(QByteArray, line);
    constexpr int mark = 10;
    connected()->start(port);
    const RouterModel before = window().routerModel();
    QTest::mouseClick(connected()->matrix.channelButton(channel), Qt::LeftButton);
    QCOMPARE(connected()->sent(mark), QList<QByteArray>{line});
    QVERIFY(window().routerModel() == before);
}

void TestMatrix::viewFollowsTheRouter()
{
    connected()->start(0);
    MatrixView &matrix = connected()->matrix;
    const auto *heading = connected()->bench.find<QLabel>("label_receive_port");
    QTest::mouseClick(matrix.outputButton(3), Qt::LeftButton);
    QVERIFY(matrix.outputButton(3)->styleSheet() != viewedButton); // not before the router says so
    QTRY_COMPARE(heading->text(), QStringLiteral("OUTPUT PORT 3"));
    QCOMPARE(matrix.outputButton(3)->styleSheet(), viewedButton);

    QTest::mouseClick(matrix.channelButton(4), Qt::LeftButton);
    QCOMPARE(matrix.channelButton(4)->styleSheet(), restingChannel);
    QTRY_COMPARE(heading->text(), QStringLiteral("OUTPUT PORT 3 - CHANNEL 4"));
    QCOMPARE(matrix.channelButton(4)->styleSheet(), viewedButton);
    QCOMPARE(matrix.outputButton(3)->styleSheet(), rs422Output);

    QTest::mouseClick(matrix.labels[10], Qt::LeftButton);
    QCOMPARE(matrix.labels[10]->styleSheet(), rs232Input);
    QTRY_COMPARE(heading->text(), QStringLiteral("INPUT PORT 10"));
    QCOMPARE(matrix.labels[10]->styleSheet(), viewedInput);
    QCOMPARE(matrix.channelButton(4)->styleSheet(), restingChannel);
}

// Clicks on frames

void TestMatrix::clickOnFrame_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("button");
    QTest::addColumn<QByteArray>("line"); // empty if nothing is sent

    const int left = Qt::LeftButton;
    const QByteArray nothing;
    QTest::newRow("main cell") << 16 + 2 << left << QByteArray("$VRVVW,243\r\n");
    QTest::newRow("reserve cell") << 32 + 2 << left << QByteArray("$VRVVW,245\r\n");
    QTest::newRow("main cell of channel 11") << 16 + 11 << left << QByteArray("$VRVVW,240\r\n");
    QTest::newRow("empty main cell") << 16 + 4 << left << nothing;
    QTest::newRow("empty reserve cell") << 32 + 4 << left << nothing;
    QTest::newRow("main cell whose label shows in a later channel")
        << 16 + 1 << left << QByteArray("$VRVVW,244\r\n");
    QTest::newRow("home of a port in no channel") << 48 + 7 << left << QByteArray("$VRVVW,247\r\n");
    QTest::newRow("home of port 11") << 48 + 11 << left << QByteArray("$VRVVW,251\r\n");
    QTest::newRow("home of a main input") << 48 + 3 << left << nothing;
    QTest::newRow("home of a reserve input") << 48 + 5 << left << nothing;
    QTest::newRow("home of an input in two channels") << 48 + 4 << left << nothing;
    QTest::newRow("home of an input of another output port")
        << 48 + 8 << left << QByteArray("$VRVVW,248\r\n");
    QTest::newRow("middle button on a main cell") << 16 + 2 << int(Qt::MiddleButton) << nothing;
}

void TestMatrix::clickOnFrame()
{
    QFETCH(int, frame);
    QFETCH(int, button);
    QFETCH(QByteArray, line);
    constexpr int mark = 10;
    window().slotVRNewRule(0, 2, 0x53, 0);
    window().slotVRNewRule(0, 1, 0xf4, 0);
    window().slotVRNewRule(0, 6, 0xf4, 0);
    window().slotVRNewRule(0, 11, 0xf0, 0);
    window().slotVRNewRule(1, 3, 0x88, 0);
    connected()->start(0);
    const RouterModel before = window().routerModel();

    DragFrame *clicked = connected()->matrix.frame(frame);
    QTest::mouseClick(clicked, Qt::MouseButton(button), Qt::NoModifier, QPoint(20, 15));

    QCOMPARE(connected()->sent(mark),
             line.isEmpty() ? QList<QByteArray>{} : QList<QByteArray>{line});
    QVERIFY(window().routerModel() == before);
    QCOMPARE(clicked->frameStyle(), 33);
}

void TestMatrix::clickRepaintsThePresentView()
{
    connected()->start(0);
    MatrixView &matrix = connected()->matrix;
    window().slotVRPortView(0xf7);
    matrix.labels[7]->setStyleSheet(QString());
    matrix.labels[2]->setStyleSheet(QString());
    QTest::mouseClick(matrix.labels[2], Qt::LeftButton);
    QCOMPARE(matrix.labels[7]->styleSheet(), viewedInput);
    QCOMPARE(matrix.labels[2]->styleSheet(), rs422Input);
    QTRY_COMPARE(matrix.labels[2]->styleSheet(), viewedInput);
}

void TestMatrix::clickOnPlaceholder()
{
    MatrixView &matrix = connected()->matrix;
    window().slotVRNewRule(0, 2, 0xf3, 0);
    connected()->start(0);
    QLabel *placeholder = matrix.placeholders[3];
    QCOMPARE(matrix.homes[3]->childAt(placeholder->geometry().center()), placeholder);
    QSignalSpy presses(matrix.homes[3], &DragFrame::signalPressEvent);
    QSignalSpy releases(matrix.homes[3], &DragFrame::signalReleaseEvent);
    QTest::mouseClick(placeholder, Qt::LeftButton);
    QCOMPARE(presses.count(), 0);
    QCOMPARE(releases.count(), 1);
    QCOMPARE(connected()->sent(), QList<QByteArray>{});
}

// The CRS box

void TestMatrix::crsBox_data()
{
    QTest::addColumn<int>("channel");
    QTest::addColumn<int>("flags");
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<QString>("row");

    QTest::newRow("set in channel 0") << 0 << 0x00 << QByteArray("5301") << "F-C+H--S\"\"";
    QTest::newRow("set in channel 5") << 5 << 0x00 << QByteArray("5301") << "F-C+H--S\"\"";
    QTest::newRow("set in channel 11") << 11 << 0x00 << QByteArray("5301") << "F-C+H--S\"\"";
    QTest::newRow("cleared in channel 5") << 5 << 0x01 << QByteArray("5300") << plainRow;
    QTest::newRow("set beside the other options")
        << 5 << 0x3e << QByteArray("533F") << "F+sC+H+tsS\"GP\"!";
    QTest::newRow("cleared beside the other options")
        << 0 << 0x3f << QByteArray("533E") << "F+sCH+tsS\"GP\"!";
}

void TestMatrix::crsBox()
{
    QFETCH(int, channel);
    QFETCH(int, flags);
    QFETCH(QByteArray, word);
    window().slotVRNewRule(2, channel, 0x53, quint8(flags));
    window().slotVRNewHdr(2, channel, QStringLiteral("GP"));
    window().slotVRNewFilterMask(2, channel, 0x80000001);
    connected()->start(2);
    RouterModel expected = window().routerModel();
    auto &changed = expected.output_ports[2].channels[size_t(channel)];
    changed.crs_enabled = !changed.crs_enabled;

    QTest::mouseClick(connected()->matrix.crsBox(channel), Qt::LeftButton, Qt::NoModifier,
                      QPoint(8, 10));

    QVERIFY(window().routerModel() == expected);
    QTEST(connected()->matrix.row(channel), "row");
    QCOMPARE(connected()->sent(), QList<QByteArray>{ruleSentence(2, {{channel, word}})});
}

void TestMatrix::crsBoxOfAnEmptyChannel()
{
    connected()->start(0);
    QTest::mouseClick(connected()->matrix.crsBox(5), Qt::LeftButton, Qt::NoModifier, QPoint(8, 10));
    QVERIFY(!record(0, 5).crs_enabled);
    QCOMPARE(connected()->sent(), QList<QByteArray>{});
}

void TestMatrix::crsBoxOffline()
{
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewRule(0, 5, 0xf3, 0);
    matrix.outputButton(0)->click();
    QTest::mouseClick(matrix.crsBox(5), Qt::LeftButton, Qt::NoModifier, QPoint(8, 10));
    QVERIFY(fresh()->routerModel().output_ports[0].channels[5].crs_enabled);
    QCOMPARE(matrix.row(5), QStringLiteral("F-C+H--S\"\""));
}

// ">>"

void TestMatrix::returnAll()
{
    for (int port = 0; port < MatrixView::size; ++port) {
        for (int c = 0; c < MatrixView::size; ++c) {
            window().slotVRNewRule(quint8(port), c, quint8(0x10 * c + 11 - c), 0x3f);
            window().slotVRNewFilterMask(quint8(port), c, 0xffffffff);
            window().slotVRNewHdr(quint8(port), c, QStringLiteral("GP"));
        }
    }
    connected()->start(4);
    RouterModel expected = window().routerModel();
    expected.output_ports[4].channels = {};

    QTest::mouseClick(connected()->bench.find<QPushButton>("pushButton_return_input"),
                      Qt::LeftButton);

    QVERIFY(window().routerModel() == expected);
    for (int i = 0; i < MatrixView::size; ++i) {
        QCOMPARE(connected()->matrix.placeOf(i), 48 + i);
        QCOMPARE(connected()->matrix.row(i), emptyRow);
    }
    const QByteArray line = "$VRRUL,4,W,FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00*00\r\n";
    QCOMPARE(connected()->sent(), QList<QByteArray>{line});
}

void TestMatrix::returnAllOffline()
{
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewRule(0, 5, 0xf3, 0x13);
    fresh()->slotVRNewRule(1, 5, 0xf3, 0x13);
    matrix.outputButton(0)->click();
    QCOMPARE(matrix.placeOf(3), 21);
    RouterModel expected = fresh()->routerModel();
    expected.output_ports[0].channels = {};
    QTest::mouseClick(fresh()->findChild<QPushButton *>("pushButton_return_input"), Qt::LeftButton);
    QVERIFY(fresh()->routerModel() == expected);
    QCOMPARE(matrix.placeOf(3), 51);
    QCOMPARE(matrix.row(5), emptyRow);
}

// What comes from nowhere

void TestMatrix::unknownSenders_data()
{
    QTest::addColumn<Act>("act");

    const auto row = [](const char *name, const Act &act) { QTest::newRow(name) << act; };
    row("output port button", [](auto &w, auto) { w.slotOutputPortButttonClicked(); });
    row("output port button, right", [](auto &w, auto) { w.slotOutputPortButtonRightClicked(); });
    row("channel button", [](auto &w, auto) { w.slotChannelButtonClicked(); });
    row("CRS box", [](auto &w, auto) { w.slotCrsCheckChanged(true); });
    row("speed", [](auto &w, auto) { w.slotPortSpeedChanged(QStringLiteral("9600")); });
    row("input name", [](auto &w, auto) { w.slotEditPortNameOk(); });
    row("output name", [](auto &w, auto) { w.slotEditOutputPortNameOk(); });
    row("end of a name", [](auto &w, auto) { w.slotEditPortNameFinish(); });
    row("release of a foreign frame", [](auto &w, auto frame) { w.slotReleaseEvent(frame); });
    row("name in a foreign frame", [](auto &w, auto frame) { w.slotInputPortEditName(frame); });
    row("drop from a foreign frame", [](auto &w, auto frame) {
        w.slotPressEvent(frame);
        w.slotDropEvent(frame);
    });
    row("a check box of another column", [](auto &w, auto) {
        QCheckBox other;
        QObject::connect(&other, &QCheckBox::clicked, &w, &MainWindow::slotCrsCheckChanged);
        other.click();
    });
    row("a button of another row", [](auto &w, auto) {
        QPushButton other;
        QObject::connect(&other, &QPushButton::clicked, &w, &MainWindow::slotChannelButtonClicked);
        QObject::connect(&other, &QPushButton::clicked, &w,
                         &MainWindow::slotOutputPortButttonClicked);
        other.click();
    });
}

void TestMatrix::unknownSenders()
{
    QFETCH(Act, act);
    MatrixView &matrix = connected()->matrix;
    window().slotVRNewRule(0, 2, 0xf3, 0);
    connected()->start(0);
    const RouterModel before = window().routerModel();
    QStringList rows;
    for (int i = 0; i < MatrixView::size; ++i)
        rows += matrix.row(i);

    DragFrame foreign(&window());
    act(window(), &foreign);

    QVERIFY(window().routerModel() == before);
    for (int i = 0; i < MatrixView::size; ++i) {
        QCOMPARE(matrix.row(i), rows.at(i));
        QCOMPARE(matrix.placeOf(i), i == 3 ? 18 : 48 + i);
    }
    QCOMPARE(connected()->bench.find<QLabel>("label_cur_ch_out")->text(),
             QStringLiteral("< OUTPUT PORT 0 >"));
    QVERIFY(foreign.findChildren<QWidget *>().isEmpty());
    QCOMPARE(connected()->sent(), QList<QByteArray>{});
    window().slotPressEvent(matrix.homes[0]); // forget the foreign frame
}

// The link is open while it looks for the router, so a line queued too early would go out later.
void TestMatrix::nothingIsSentBeforeTheConnectionStands()
{
    disconnectWindow();
    WindowBench bench;
    tk7sim::RouterConfig config;
    config.speeds[6] = 38400; // the speed that is chosen below, so the download changes none
    bench.router.setWorking(config);
    bench.router.setStartSpeed(9600); // the second one of the search
    const MatrixView matrix(bench.window);
    bench.window.slotVRNewRule(0, 2, 0xf3, 0);
    bench.find<QPushButton>("pushButton_connect")->click();
    QVERIFY(!bench.window.isConnected());

    matrix.outputButton(0)->click();
    matrix.channelButton(3)->click();
    matrix.crsBox(2)->click();
    bench.window.slotReleaseEvent(matrix.main[2]);
    bench.window.slotReleaseEvent(matrix.homes[7]);
    bench.window.slotPressEvent(matrix.homes[7]);
    bench.window.slotDropEvent(matrix.main[3]);
    matrix.widget<QComboBox>("comboBox_output_port_%1", 6)->setCurrentIndex(4);
    bench.find<QPushButton>("pushButton_return_input")->click();
    QVERIFY(!bench.window.isConnected());

    bench.boxes.expect(WindowBench::downloadBox());
    QTRY_VERIFY2(bench.boxes.answered() == 1, qPrintable(bench.boxes.report()));
    QTRY_VERIFY(bench.heard().contains("$VRVER\r\n"));
    QList<QByteArray> heard = bench.heard();
    heard.removeAll("$VRCNT\r\n");
    QCOMPARE(heard, (QList<QByteArray>{"$VRRLD\r\n", "$VRVER\r\n"}));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

QTEST_MAIN(TestMatrix)
#include "tst_matrix.moc"
