#include "dragtest.h"
#include "matrixview.h"

#include <QDragEnterEvent>
#include <QMimeData>

#include <memory>

using MatrixRows::emptyRow;
using MatrixRows::fullRow;
using MatrixRows::plainRow;

namespace {

using Words = QMap<int, QByteArray>;

constexpr int foreign = 0; // the code of a frame that is not of the matrix

} // namespace

Q_DECLARE_METATYPE(Words)

/*! Drags labels with the mouse: who may go where, what is no drop. */
class TestDragDrop : public DragTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void decisions_data();
    void decisions();
    void portToCell_data();
    void portToCell();
    void lastInputOut_data();
    void lastInputOut();
    void mainOutWithReserve();
    void sameChannelTwice();
    void samePortInTwoChannels();
    void labelOfTwoChannelsGoesHome();
    void homeFromAnotherPortsFrame();
    void namedLabelIsMoved();

    void abandoned_data();
    void abandoned();
    void placeholderIsNotDragged();
    void dropOnAForeignFrame();
    void dropWithoutEnter();
    void emptyCellAsSource_data();
    void emptyCellAsSource();
    void offline();

private:
    MainWindow &window() { return m_connected->window(); }
    MatrixView &matrix() { return m_connected->matrix; }
    const ChannelRecord &record(int channel, int port = 0)
    {
        return window().routerModel().output_ports[size_t(port)].channels[size_t(channel)];
    }
    void setChannel(int port, int channel, int rules, int flags = 0);
    using DragTest::drag;
    Outcome drag(int from, int to) { return drag(matrix().frame(from), matrix().frame(to)); }
    // Whether the frame takes what was pressed last; then the frame's own answer to a drop.
    static bool enters(DragFrame *frame);
    static bool drops(DragFrame *frame);
    static QString editedName(DragFrame *frame);

    std::unique_ptr<ConnectedMatrix> m_connected;
    std::unique_ptr<DragFrame> m_foreign;
};

void TestDragDrop::initTestCase()
{
    m_connected = std::make_unique<ConnectedMatrix>();
    window().resize(853, 1000); // the screen is too low for the whole matrix
}

// A frame of another kind over the head of the output ports, with a label and all connections.
void TestDragDrop::init()
{
    m_connected->reset();
    m_foreign = std::make_unique<DragFrame>(&window());
    m_foreign->move(100, 46);
    auto *label = new QLabel(QStringLiteral("PORT 7"), m_foreign.get());
    label->setGeometry(4, 4, 88, 24);
    connect(m_foreign.get(), &DragFrame::signalPressEvent, &window(), &MainWindow::slotPressEvent);
    connect(m_foreign.get(), &DragFrame::signalEnterEvent, &window(), &MainWindow::slotEnterEvent);
    connect(m_foreign.get(), &DragFrame::signalDropEvent, &window(), &MainWindow::slotDropEvent);
    m_foreign->show();
}

void TestDragDrop::cleanup()
{
    m_foreign.reset();
    QVERIFY2(m_connected->bench.boxes.isDone(), qPrintable(m_connected->bench.boxes.report()));
    QVERIFY(window().isConnected());
}

void TestDragDrop::cleanupTestCase()
{
    m_connected.reset();
}

void TestDragDrop::setChannel(int port, int channel, int rules, int flags)
{
    window().slotVRNewRule(quint8(port), channel, quint8(rules), quint8(flags));
    if (flags == 0)
        return;
    window().slotVRNewHdr(quint8(port), channel, QStringLiteral("GP"));
    window().slotVRNewFilterMask(quint8(port), channel, 0x80000001);
}

// A drag of the whole window stands in for one that began in the frame pressed last.
bool TestDragDrop::enters(DragFrame *frame)
{
    QMimeData data;
    data.setData(QStringLiteral("application/label"), QByteArray());
    QDragEnterEvent event(QPoint(9, 9), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QWidget *window = frame->window();
    auto *drag = new QDrag(window);
    drag->setMimeData(new QMimeData);
    QTimer::singleShot(0, window, [&] {
        static_cast<QObject *>(frame)->event(&event);
        QTest::keyClick(window->windowHandle(), Qt::Key_Escape);
    });
    drag->exec(Qt::MoveAction);
    return event.isAccepted();
}

bool TestDragDrop::drops(DragFrame *frame)
{
    QMimeData data;
    QDropEvent event(QPoint(9, 9), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject *>(frame)->event(&event);
    return event.isAccepted();
}

// Who may go where. Channel 2 has ports 3 and 5 and all options, channel 4 ports 8 and 9.

void TestDragDrop::decisions_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<Words>("words"); // of the rule, if accepted
    QTest::addColumn<int>("place");   // of the label

    struct Target
    {
        const char *name;
        int code;
    };
    const Target targets[] = {
        {"an empty main cell", 16 + 6},    {"a taken main cell", 16 + 4},
        {"an empty reserve cell", 32 + 6}, {"a taken reserve cell", 32 + 4},
        {"another port's home", 48 + 10},  {"a foreign frame", foreign},
    };
    const Words other = {{4, "9800"}};
    const auto with = [&](const Words &words) {
        Words all = other;
        for (auto it = words.begin(); it != words.end(); ++it)
            all[it.key()] = it.value();
        return all;
    };
    const QMap<int, Words> fromMain = {{16 + 6, with({{2, "5F3B"}, {6, "F300"}})},
                                       {32 + 6, with({{2, "5F3B"}, {6, "3F00"}})},
                                       {48 + 10, with({{2, "5F3B"}})}};
    const QMap<int, Words> fromReserve = {{16 + 6, with({{2, "F33B"}, {6, "F500"}})},
                                          {32 + 6, with({{2, "F33B"}, {6, "5F00"}})},
                                          {48 + 10, with({{2, "F33B"}})}};
    const QMap<int, Words> fromHome = {{16 + 6, with({{2, "533B"}, {6, "F700"}})},
                                       {32 + 6, with({{2, "533B"}, {6, "7F00"}})}};

    const auto rows = [&](const char *source, int from, int port,
                          const QMap<int, Words> &accepted) {
        for (const Target &target : targets) {
            const bool isAccepted = accepted.contains(target.code);
            int place = from;
            if (isAccepted)
                place = target.code < 48 ? target.code : 48 + port;
            QTest::addRow("%s to %s", source, target.name)
                << from << target.code << isAccepted << accepted.value(target.code) << place;
        }
    };
    rows("main", 16 + 2, 3, fromMain);
    rows("reserve", 32 + 2, 5, fromReserve);
    rows("home", 48 + 7, 7, fromHome);
    rows("foreign", foreign, 0, {});

    QTest::newRow("main to its own cell") << 18 << 18 << false << Words() << 18;
    QTest::newRow("reserve to its own cell") << 34 << 34 << false << Words() << 34;
    QTest::newRow("home to itself") << 55 << 55 << false << Words() << 55;
    QTest::newRow("main to the taken reserve of its channel") << 18 << 34 << false << Words() << 18;
    QTest::newRow("main to its port's home") << 18 << 51 << true << fromMain.value(48 + 10) << 51;
    QTest::newRow("reserve to its port's home")
        << 34 << 53 << true << fromReserve.value(48 + 10) << 53;
}

void TestDragDrop::decisions()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(bool, accepted);
    QFETCH(Words, words);
    QFETCH(int, place);
    setChannel(0, 2, 0x53, 0x3b);
    setChannel(0, 4, 0x98);
    m_connected->start(0);
    const RouterModel before = window().routerModel();
    const auto frame = [&](int code) {
        return code == foreign ? m_foreign.get() : matrix().frame(code);
    };
    QLabel *label = qobject_cast<QLabel *>(frame(from)->childAt(40, 15));
    QVERIFY(label && label->isEnabled());

    const Outcome outcome = drag(frame(from), frame(to));

    QVERIFY(outcome.started);
    QCOMPARE(outcome.accepted, accepted);
    QCOMPARE(matrix().codeOf(label->parentWidget()), place);
    QCOMPARE(label->geometry(), QRect(4, 4, 88, 24));
    QVERIFY(label->isVisible() && label->isEnabled());
    QCOMPARE(frame(from)->frameStyle(), 33);
    if (!accepted) {
        QVERIFY(window().routerModel() == before);
        QCOMPARE(m_connected->sent(), QList<QByteArray>{});
        return;
    }
    QCOMPARE(m_connected->sent(), QList<QByteArray>{ruleSentence(0, words)});
    for (int c = 0; c < MatrixView::size; ++c) {
        const QByteArray word = words.value(c, "FF00");
        QCOMPARE(int(record(c).reserve_input), word.mid(0, 1).toInt(nullptr, 16));
        QCOMPARE(int(record(c).main_input), word.mid(1, 1).toInt(nullptr, 16));
        const QString inUse = c == 2 ? fullRow : plainRow;
        QCOMPARE(matrix().row(c), word == "FF00" ? emptyRow : inUse);
    }
    QCOMPARE(record(2).filter_mask, 0x80000001U);
}

void TestDragDrop::portToCell_data()
{
    QTest::addColumn<int>("output");
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("cell");
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("port 3 to main of channel 2, output port 5")
        << 5 << 3 << 18
        << QByteArray("$VRRUL,5,W,FF00FF00F300FF00FF00FF00FF00FF00FF00FF00FF00FF00*74\r\n");
    QTest::newRow("port 0 to main of channel 0") << 0 << 0 << 16 << ruleSentence(0, {{0, "F000"}});
    QTest::newRow("port 11 to reserve of channel 11, output port 11")
        << 11 << 11 << 43 << ruleSentence(11, {{11, "BF00"}});
    QTest::newRow("port 10 to main of channel 11")
        << 0 << 10 << 27 << ruleSentence(0, {{11, "FA00"}});
    QTest::newRow("port 9 to reserve of channel 0")
        << 0 << 9 << 32 << ruleSentence(0, {{0, "9F00"}});
}

void TestDragDrop::portToCell()
{
    QFETCH(int, output);
    QFETCH(int, port);
    QFETCH(int, cell);
    QFETCH(QByteArray, line);
    m_connected->start(output);
    QVERIFY(drag(48 + port, cell).accepted);
    QCOMPARE(matrix().placeOf(port), cell);
    QCOMPARE(matrix().row(cell % 16), plainRow);
    QCOMPARE(m_connected->sent(), QList<QByteArray>{line});
    for (int o = 0; o < MatrixView::size; ++o)
        QCOMPARE(isEmpty(record(cell % 16, o)), o != output);
}

void TestDragDrop::lastInputOut_data()
{
    QTest::addColumn<int>("rules");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QByteArray>("line");

    const QByteArray nothing = "$VRRUL,0,W,FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00FF00*04\r\n";
    QTest::newRow("main, home") << 0xf3 << 18 << 51 << nothing;
    QTest::newRow("reserve, home") << 0x3f << 34 << 51 << nothing;
    // The port's new channel gets none of the options of the old one.
    QTest::newRow("main, to another channel") << 0xf3 << 18 << 22 << ruleSentence(0, {{6, "F300"}});
    QTest::newRow("reserve, to another channel")
        << 0x3f << 34 << 22 << ruleSentence(0, {{6, "F300"}});
}

void TestDragDrop::lastInputOut()
{
    QFETCH(int, rules);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(QByteArray, line);
    setChannel(0, 2, rules, 0x7f);
    m_connected->start(0);
    QCOMPARE(matrix().row(2), fullRow);

    QVERIFY(drag(from, to).accepted);

    QVERIFY(record(2) == ChannelRecord());
    QCOMPARE(matrix().row(2), emptyRow);
    QCOMPARE(m_connected->sent(), QList<QByteArray>{line});
}

void TestDragDrop::mainOutWithReserve()
{
    setChannel(0, 2, 0x53, 0x3b);
    m_connected->start(0);
    const ChannelRecord before = record(2);
    QVERIFY(drag(18, 16 + 9).accepted);
    ChannelRecord expected = before;
    expected.main_input = 15;
    QVERIFY(record(2) == expected);
    QCOMPARE(matrix().row(2), fullRow);
    QCOMPARE(matrix().row(9), plainRow);
    QCOMPARE(matrix().placeOf(5), 34);
    QCOMPARE(m_connected->sent(), QList<QByteArray>{ruleSentence(0, {{2, "5F3B"}, {9, "F300"}})});
}

// Within a channel: its options stay, since it is never without an input.
void TestDragDrop::sameChannelTwice()
{
    setChannel(0, 2, 0xf4, 0x3b);
    setChannel(0, 7, 0xf4);
    m_connected->start(0);
    QCOMPARE(matrix().placeOf(4), 23);
    QVERIFY(drag(23, 34).accepted); // from channel 7 to the reserve of channel 2
    QCOMPARE(int(record(2).main_input), 4);
    QCOMPARE(int(record(2).reserve_input), 4);
    QCOMPARE(matrix().placeOf(4), 34);
    QCOMPARE(matrix().row(2), fullRow);
    QCOMPARE(m_connected->sent(), QList<QByteArray>{ruleSentence(0, {{2, "443B"}})});
    m_connected->select(0);
    QCOMPARE(matrix().placeOf(4), 18); // main wins
}

void TestDragDrop::samePortInTwoChannels()
{
    setChannel(0, 2, 0xf4);
    setChannel(0, 5, 0xf4);
    m_connected->start(0);
    QCOMPARE(matrix().placeOf(4), 21);
    QVERIFY(!matrix().main[2]->childAt(40, 15)); // looks empty
    QCOMPARE(matrix().row(2), plainRow);
    QVERIFY(!drag(48 + 7, 18).accepted); // and is not
    QCOMPARE(m_connected->sent(), QList<QByteArray>{});
}

void TestDragDrop::labelOfTwoChannelsGoesHome()
{
    setChannel(0, 2, 0xf4, 0x01);
    setChannel(0, 5, 0xf4, 0x01);
    m_connected->start(0);
    QVERIFY(drag(21, 48 + 4).accepted);
    QCOMPARE(matrix().placeOf(4), 52); // though channel 2 has it still
    QCOMPARE(int(record(2).main_input), 4);
    QVERIFY(record(5) == ChannelRecord());
    QCOMPARE(m_connected->sent(), QList<QByteArray>{ruleSentence(0, {{2, "F401"}})});
    m_connected->select(0);
    QCOMPARE(matrix().placeOf(4), 18);
}

void TestDragDrop::homeFromAnotherPortsFrame()
{
    setChannel(0, 2, 0xf3);
    window().slotVRNewPortName(false, 3, QStringLiteral("Gyro"));
    window().slotVRNewPortName(false, 10, QStringLiteral("GPS"));
    m_connected->start(0);
    QVERIFY(drag(18, 48 + 10).accepted);
    QCOMPARE(matrix().placeOf(3), 51);
    QCOMPARE(matrix().placeOf(10), 58);
    QCOMPARE(matrix().homes[10]->findChildren<QLabel *>().size(), 2);
    QCOMPARE(m_connected->sent(), QList<QByteArray>{ruleSentence(0)});
    // The label is known to be at home: each frame names its own port.
    QCOMPARE(editedName(matrix().homes[3]), QStringLiteral("Gyro"));
    QCOMPARE(editedName(matrix().homes[10]), QStringLiteral("GPS"));
}

// What stands in the editor that a right press in the frame opens; the editor is closed again.
QString TestDragDrop::editedName(DragFrame *frame)
{
    QTest::mousePress(frame, Qt::RightButton, Qt::NoModifier, QPoint(40, 15));
    auto *editor = frame->findChild<QLineEdit *>();
    if (!editor)
        return QStringLiteral("(no editor)");
    QString name = editor->text();
    QTest::keyClick(editor, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return name;
}

void TestDragDrop::namedLabelIsMoved()
{
    window().slotVRNewPortName(false, 3, QStringLiteral("Gyro"));
    m_connected->select(0);
    QVERIFY(drag(51, 18).accepted);
    QCOMPARE(matrix().labels[3]->text(), QStringLiteral("3. Gyro"));
    QCOMPARE(matrix().placeholders[3]->text(), QStringLiteral(" 3. Gyro"));
    QCOMPARE(matrix().labels[3]->font().pointSize(), 8);
}

// What is no drop

void TestDragDrop::abandoned_data()
{
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<bool>("escape");

    QTest::newRow("dropped beside the matrix") << QPoint(300, 75) << false;
    QTest::newRow("dropped between the rows") << QPoint(252 + 90, 102 + 38) << false;
    QTest::newRow("dropped outside the window") << QPoint(-50, -50) << false;
    QTest::newRow("Escape over an empty cell") << QPoint(252 + 90, 102 + 20) << true;
}

void TestDragDrop::abandoned()
{
    QFETCH(QPoint, to);
    QFETCH(bool, escape);
    setChannel(0, 2, 0xf3, 0x3b);
    m_connected->start(0);
    const RouterModel before = window().routerModel();
    const Outcome outcome = drag(&window(), middle(matrix().labels[3]), to, escape);
    QVERIFY(outcome.started);
    QCOMPARE(outcome.accepted, escape);
    QVERIFY(window().routerModel() == before);
    QCOMPARE(matrix().placeOf(3), 18);
    QCOMPARE(matrix().main[2]->frameStyle(), 33);
    QCOMPARE(m_connected->sent(), QList<QByteArray>{});
    QVERIFY(drag(18, 16).accepted); // it can be dragged again
}

void TestDragDrop::placeholderIsNotDragged()
{
    setChannel(0, 2, 0xf3);
    m_connected->start(0);
    QCOMPARE(matrix().homes[3]->childAt(40, 15), matrix().placeholders[3]);
    QVERIFY(!drag(51, 16 + 6).started);
    QCOMPARE(int(record(6).main_input), 15);
    QCOMPARE(m_connected->sent(), QList<QByteArray>{});
}

// No such drop comes, since entering is refused; the source is emptied before the target is known.
void TestDragDrop::dropOnAForeignFrame()
{
    setChannel(0, 2, 0xf3, 0x3b);
    m_connected->start(0);
    RouterModel expected = window().routerModel();
    expected.output_ports[0].channels[2].main_input = 15;
    QTest::mousePress(matrix().labels[3], Qt::LeftButton);
    QVERIFY(!enters(m_foreign.get()));
    m_foreign->setAcceptDrop(true);
    QVERIFY(!drops(m_foreign.get()));
    QVERIFY(window().routerModel() == expected);
    QCOMPARE(matrix().placeOf(3), 18);
    QCOMPARE(matrix().row(2), fullRow);
    QTest::mouseRelease(matrix().labels[3], Qt::LeftButton);
    QCOMPARE(m_connected->sent(), QList<QByteArray>{});
}

void TestDragDrop::dropWithoutEnter()
{
    setChannel(0, 2, 0xf3);
    setChannel(0, 4, 0xf8);
    m_connected->start(0);
    window().slotPressEvent(matrix().main[2]);
    QVERIFY(drops(matrix().main[4])); // whether it was taken is asked on entering only
    QCOMPARE(int(record(4).main_input), 3);
    QCOMPARE(matrix().placeOf(3), 20);
    QCOMPARE(m_connected->sent(), QList<QByteArray>{ruleSentence(0, {{4, "F300"}})});
}

void TestDragDrop::emptyCellAsSource_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");

    QTest::newRow("main to main") << 16 << 17;
    QTest::newRow("reserve to main") << 32 << 17;
    QTest::newRow("main to its own cell") << 16 << 16;
    QTest::newRow("main to a home") << 16 << 48;
}

// An empty cell has no label to press; should it come to that, no port goes anywhere.
void TestDragDrop::emptyCellAsSource()
{
    QFETCH(int, from);
    QFETCH(int, to);
    m_connected->start(0);
    const RouterModel before = window().routerModel();
    window().slotPressEvent(matrix().frame(from));
    QVERIFY(enters(matrix().frame(to)));
    QVERIFY(drops(matrix().frame(to)));
    QVERIFY(window().routerModel() == before);
    for (int port = 0; port < MatrixView::size; ++port)
        QCOMPARE(matrix().placeOf(port), 48 + port);
    QCOMPARE(m_connected->sent(), QList<QByteArray>{ruleSentence(0)});
}

void TestDragDrop::offline()
{
    MainWindow window;
    window.resize(853, 1000);
    window.show();
    const MatrixView matrix(window);
    QVERIFY(drag(matrix.homes[3], matrix.reserve[2]).accepted);
    QCOMPARE(int(window.routerModel().output_ports[0].channels[2].reserve_input), 3);
    QCOMPARE(matrix.placeOf(3), 34);
    QCOMPARE(matrix.row(2), plainRow);
}

QTEST_MAIN(TestDragDrop)
#include "tst_dragdrop.moc"
