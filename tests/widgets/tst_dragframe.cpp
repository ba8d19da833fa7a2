#include "widgets/dragframe.h"

#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

namespace {

constexpr int restStyle = 33;
constexpr int pressedStyle = 49;

const QPoint overEnabled(10, 10);
const QPoint overDisabled(60, 10);
const QPoint overNothing(90, 28);
const QPoint enabledPlace(4, 4);
const QSize childSize(40, 20);

const QString labelFormat = QStringLiteral("application/label");

} // namespace

/*! A frame with an enabled label at its left and a disabled one at its right. */
class TestDragFrame : public QObject
{
    Q_OBJECT

public:
    // Unlike the offscreen platform this one plays a drag, with the events of its own mouse.
    static void initMain() { qputenv("QT_QPA_PLATFORM", "minimal"); }

private slots:
    void init();
    void cleanup();

    void construction();
    void press_data();
    void press();
    void pressPositionIsRounded_data();
    void pressPositionIsRounded();
    void signalsComeInOrder();
    void pressOnTheLabelReachesTheFrame();

    void moveStartsDrag_data();
    void moveStartsDrag();
    void moveNeedsLeftButton();
    void onlyAnArmedFrameDrags_data();
    void onlyAnArmedFrameDrags();
    void staysArmedAfterRelease();
    void letGoEndsThePress();
    void draggedData();
    void draggedPicture();

    void release_data();
    void release();

    void enter_data();
    void enter();
    void drop_data();
    void drop();
    void answersStartRefusing();
    void dragMoveDoesNothing_data();
    void dragMoveDoesNothing();

private:
    // Straight to the frame, so that the event tells whether the base handler has ignored it.
    bool mouse(QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::MouseButtons held);
    void pressEnabled();
    // Moves the mouse; if that starts a drag, looks at it and gives it up.
    using Look = std::function<void(const QDrag &)>;
    bool moveStartsADrag(QPoint place, Qt::MouseButtons held, const Look &look = Look());
    // Runs act while something is dragged out of the window.
    void duringADrag(const std::function<void()> &act);
    void giveUpDrag() { QTest::keyClick(m_window->windowHandle(), Qt::Key_Escape); }

    bool m_movedToBase = false;

    std::unique_ptr<QWidget> m_window;
    DragFrame *m_frame = nullptr;
    QLabel *m_enabled = nullptr;
};

void TestDragFrame::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->resize(200, 100);
    m_frame = new DragFrame(m_window.get());
    m_enabled = new QLabel(QStringLiteral("enabled"), m_frame);
    m_enabled->setGeometry(QRect(enabledPlace, childSize));
    auto *disabled = new QLabel(QStringLiteral("disabled"), m_frame);
    disabled->setGeometry(QRect(QPoint(46, 4), childSize));
    disabled->setEnabled(false);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void TestDragFrame::cleanup()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_window.reset();
}

bool TestDragFrame::mouse(QEvent::Type type, QPointF place, Qt::MouseButton button,
                          Qt::MouseButtons held)
{
    QMouseEvent event(type, place, m_frame->mapToGlobal(place.toPoint()), button, held,
                      Qt::NoModifier);
    static_cast<QObject *>(m_frame)->event(&event);
    return !event.isAccepted();
}

void TestDragFrame::pressEnabled()
{
    mouse(QEvent::MouseButtonPress, overEnabled, Qt::LeftButton, Qt::LeftButton);
}

bool TestDragFrame::moveStartsADrag(QPoint place, Qt::MouseButtons held, const Look &look)
{
    bool started = false;
    QTimer::singleShot(0, this, [&] {
        const auto *drag = m_frame->findChild<QDrag *>();
        if (!drag)
            return;
        started = true;
        if (look)
            look(*drag);
        giveUpDrag();
    });
    m_movedToBase = mouse(QEvent::MouseMove, place, Qt::NoButton, held);
    QCoreApplication::processEvents(); // the look, if the move has not waited for it in a drag
    return started;
}

void TestDragFrame::duringADrag(const std::function<void()> &act)
{
    auto *drag = new QDrag(m_window.get());
    drag->setMimeData(new QMimeData);
    QTimer::singleShot(0, this, [&] {
        act();
        giveUpDrag();
    });
    drag->exec(Qt::MoveAction);
}

void TestDragFrame::construction()
{
    const DragFrame frame(m_window.get());
    QCOMPARE(frame.parentWidget(), m_window.get());
    QCOMPARE(frame.size(), QSize(95, 31));
    QCOMPARE(frame.frameStyle(), restStyle);
    QVERIFY(frame.acceptDrops());
    QCOMPARE(frame.midLineWidth(), 1);
}

void TestDragFrame::press_data()
{
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<int>("held");
    QTest::addColumn<bool>("pressed");
    QTest::addColumn<bool>("edit");
    QTest::addColumn<bool>("toBase");

    const int left = Qt::LeftButton;
    const int right = Qt::RightButton;
    const int middle = Qt::MiddleButton;
    QTest::newRow("left on an enabled child") << overEnabled << left << true << false << true;
    QTest::newRow("left on a disabled child") << overDisabled << left << false << false << false;
    QTest::newRow("left on no child") << overNothing << left << false << false << false;
    QTest::newRow("right on an enabled child") << overEnabled << right << false << true << true;
    QTest::newRow("right on a disabled child") << overDisabled << right << false << true << true;
    QTest::newRow("right on no child") << overNothing << right << false << false << true;
    QTest::newRow("both on an enabled child")
        << overEnabled << (left | right) << true << true << true;
    QTest::newRow("both on a disabled child")
        << overDisabled << (left | right) << false << false << false;
    QTest::newRow("both on no child") << overNothing << (left | right) << false << false << false;
    QTest::newRow("middle on an enabled child") << overEnabled << middle << false << false << true;
    QTest::newRow("left and middle on an enabled child")
        << overEnabled << (left | middle) << true << false << true;
}

void TestDragFrame::press()
{
    QFETCH(QPoint, place);
    QFETCH(int, held);
    QFETCH(bool, pressed);
    QFETCH(bool, edit);
    QSignalSpy presses(m_frame, &DragFrame::signalPressEvent);
    QSignalSpy edits(m_frame, &DragFrame::signalInputPortEditName);

    // Which button came last is of no account, only which are held.
    const bool toBase =
        mouse(QEvent::MouseButtonPress, place, Qt::XButton1, Qt::MouseButtons(held));

    QCOMPARE(presses.count(), int(pressed));
    QCOMPARE(edits.count(), int(edit));
    for (const QSignalSpy *spy : {&presses, &edits}) {
        for (const QList<QVariant> &arguments : *spy)
            QCOMPARE(arguments.at(0).value<DragFrame *>(), m_frame);
    }
    QCOMPARE(m_frame->frameStyle(), pressed ? pressedStyle : restStyle);
    QTEST(toBase, "toBase");
}

void TestDragFrame::pressPositionIsRounded_data()
{
    QTest::addColumn<QPointF>("place");
    QTest::addColumn<bool>("hits");

    QTest::newRow("up into the child") << QPointF(3.6, 10) << true;
    QTest::newRow("down beside the child") << QPointF(3.4, 10) << false;
    QTest::newRow("down into the child") << QPointF(43.4, 10) << true;
    QTest::newRow("up beside the child") << QPointF(43.6, 10) << false;
}

void TestDragFrame::pressPositionIsRounded()
{
    QFETCH(QPointF, place);
    QSignalSpy presses(m_frame, &DragFrame::signalPressEvent);
    mouse(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton);
    QTEST(presses.count() == 1, "hits");
}

void TestDragFrame::signalsComeInOrder()
{
    QStringList order;
    connect(m_frame, &DragFrame::signalPressEvent, this, [&] {
        order += QStringLiteral("press");
        order += QString::number(m_frame->frameStyle());
    });
    connect(m_frame, &DragFrame::signalInputPortEditName, this,
            [&] { order += QStringLiteral("edit"); });
    mouse(QEvent::MouseButtonPress, overEnabled, Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    QCOMPARE(order, QStringList({"press", "49", "edit"}));
}

void TestDragFrame::pressOnTheLabelReachesTheFrame()
{
    QSignalSpy presses(m_frame, &DragFrame::signalPressEvent);
    QSignalSpy releases(m_frame, &DragFrame::signalReleaseEvent);
    QTest::mousePress(m_enabled, Qt::LeftButton, Qt::NoModifier, QPoint(3, 3));
    QCOMPARE(presses.count(), 1);
    QCOMPARE(m_frame->frameStyle(), pressedStyle);
    QTest::mouseRelease(m_enabled, Qt::LeftButton, Qt::NoModifier, QPoint(3, 3));
    QCOMPARE(releases.count(), 1);
    QCOMPARE(m_frame->frameStyle(), restStyle);
}

void TestDragFrame::moveStartsDrag_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<QPoint>("way");
    QTest::addColumn<bool>("drags");

    QTest::newRow("not at all") << 10 << QPoint(0, 0) << false;
    QTest::newRow("the start distance to the right") << 10 << QPoint(10, 0) << false;
    QTest::newRow("one more to the right") << 10 << QPoint(11, 0) << true;
    QTest::newRow("the start distance up") << 10 << QPoint(0, -10) << false;
    QTest::newRow("one more up") << 10 << QPoint(0, -11) << true;
    QTest::newRow("both ways, in sum the start distance") << 10 << QPoint(-4, 6) << false;
    QTest::newRow("both ways, in sum one more") << 10 << QPoint(-5, 6) << true;
    QTest::newRow("a shorter start distance, reached") << 3 << QPoint(3, 0) << false;
    QTest::newRow("a shorter start distance, exceeded") << 3 << QPoint(4, 0) << true;
}

void TestDragFrame::moveStartsDrag()
{
    QFETCH(int, limit);
    QFETCH(QPoint, way);
    QFETCH(bool, drags);
    const int usual = QApplication::startDragDistance();
    QApplication::setStartDragDistance(limit);
    pressEnabled();
    const bool started = moveStartsADrag(overEnabled + way, Qt::LeftButton);
    QApplication::setStartDragDistance(usual);

    QCOMPARE(started, drags);
    QCOMPARE(m_frame->frameStyle(), drags ? restStyle : pressedStyle);
    QVERIFY(m_movedToBase);
}

void TestDragFrame::moveNeedsLeftButton()
{
    pressEnabled();
    QVERIFY(!moveStartsADrag(QPoint(90, 30), Qt::RightButton));
    QVERIFY(m_movedToBase);
    QCOMPARE(m_frame->frameStyle(), pressedStyle);
}

void TestDragFrame::onlyAnArmedFrameDrags_data()
{
    QTest::addColumn<bool>("armedBefore");
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<int>("held");

    QTest::newRow("never pressed") << false << QPoint() << int(Qt::NoButton);
    QTest::newRow("pressed on a disabled child") << false << overDisabled << int(Qt::LeftButton);
    QTest::newRow("pressed on no child") << false << overNothing << int(Qt::LeftButton);
    QTest::newRow("pressed with the right button") << false << overEnabled << int(Qt::RightButton);
    QTest::newRow("then on a disabled child") << true << overDisabled << int(Qt::LeftButton);
    QTest::newRow("then on no child") << true << overNothing << int(Qt::LeftButton);
    QTest::newRow("then with the right button") << true << overEnabled << int(Qt::RightButton);
    QTest::newRow("then with the middle button") << true << overEnabled << int(Qt::MiddleButton);
}

void TestDragFrame::onlyAnArmedFrameDrags()
{
    QFETCH(bool, armedBefore);
    QFETCH(QPoint, place);
    QFETCH(int, held);
    if (armedBefore) {
        pressEnabled();
        mouse(QEvent::MouseButtonRelease, overEnabled, Qt::LeftButton, Qt::NoButton);
    }
    if (held != Qt::NoButton)
        mouse(QEvent::MouseButtonPress, place, Qt::MouseButton(held), Qt::MouseButtons(held));
    QVERIFY(!moveStartsADrag(QPoint(200, 90), Qt::LeftButton));
    QVERIFY(!m_movedToBase);
}

void TestDragFrame::staysArmedAfterRelease()
{
    pressEnabled();
    mouse(QEvent::MouseButtonRelease, overEnabled, Qt::LeftButton, Qt::NoButton);
    QVERIFY(!moveStartsADrag(QPoint(200, 90), Qt::NoButton));
    QVERIFY(m_movedToBase);
    QVERIFY(moveStartsADrag(QPoint(200, 90), Qt::LeftButton));
}

void TestDragFrame::letGoEndsThePress()
{
    pressEnabled();
    QCOMPARE(m_frame->frameStyle(), pressedStyle);
    QSignalSpy released(m_frame, &DragFrame::signalReleaseEvent);
    m_frame->letGo();
    QCOMPARE(m_frame->frameStyle(), restStyle);
    QCOMPARE(released.count(), 0);
    const QPoint away = overEnabled + QPoint(QApplication::startDragDistance() + 1, 0);
    QVERIFY(!moveStartsADrag(away, Qt::LeftButton));
    pressEnabled();
    QVERIFY(moveStartsADrag(away, Qt::LeftButton));
}

void TestDragFrame::draggedData()
{
    pressEnabled();
    QVERIFY(moveStartsADrag(QPoint(40, 30), Qt::LeftButton, [this](const QDrag &drag) {
        QCOMPARE(m_frame->frameStyle(), restStyle);
        QCOMPARE(drag.mimeData()->formats(), QStringList(labelFormat));
        QVERIFY(drag.mimeData()->hasFormat(labelFormat));
        QCOMPARE(drag.mimeData()->data(labelFormat), QByteArray());
        QCOMPARE(drag.supportedActions(), Qt::DropActions(Qt::MoveAction));
        QCOMPARE(drag.source(), m_frame);
        QCOMPARE(drag.hotSpot(), overEnabled - enabledPlace);
    }));
}

void TestDragFrame::draggedPicture()
{
    m_enabled->setStyleSheet(QStringLiteral("QLabel{background-color: rgb(5,0,180);}"));
    m_enabled->clear();
    auto *inner = new QLabel(m_enabled);
    inner->setGeometry(0, 0, 5, 5);
    inner->setStyleSheet(QStringLiteral("QLabel{background-color: rgb(29,177,0);}"));
    inner->show();

    pressEnabled();
    QVERIFY(moveStartsADrag(QPoint(40, 30), Qt::LeftButton, [](const QDrag &drag) {
        const QImage picture = drag.pixmap().toImage();
        QCOMPARE(picture.size(), childSize);
        QCOMPARE(picture.pixelColor(20, 10), QColor(5, 0, 180));
        QCOMPARE(picture.pixelColor(39, 19), QColor(5, 0, 180));
        QCOMPARE(picture.pixelColor(2, 2), QColor(29, 177, 0));
    }));
}

void TestDragFrame::release_data()
{
    QTest::addColumn<bool>("pressedBefore");
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("held");
    QTest::addColumn<int>("signalCount");
    QTest::addColumn<int>("style");

    const int left = Qt::LeftButton;
    const int right = Qt::RightButton;
    QTest::newRow("left after a press") << true << left << int(Qt::NoButton) << 1 << restStyle;
    QTest::newRow("left, the right still held") << true << left << right << 1 << restStyle;
    QTest::newRow("left after no press on a child")
        << false << left << int(Qt::NoButton) << 1 << restStyle;
    QTest::newRow("right, the left still held") << true << right << left << 0 << pressedStyle;
    QTest::newRow("right alone") << false << right << int(Qt::NoButton) << 0 << restStyle;
}

void TestDragFrame::release()
{
    QFETCH(bool, pressedBefore);
    QFETCH(int, button);
    QFETCH(int, held);
    QSignalSpy releases(m_frame, &DragFrame::signalReleaseEvent);
    if (pressedBefore)
        pressEnabled();
    const bool toBase = mouse(QEvent::MouseButtonRelease, overEnabled, Qt::MouseButton(button),
                              Qt::MouseButtons(held));
    QTEST(int(releases.count()), "signalCount");
    if (!releases.isEmpty())
        QCOMPARE(releases.at(0).at(0).value<DragFrame *>(), m_frame);
    QTEST(m_frame->frameStyle(), "style");
    QVERIFY(toBase);
}

void TestDragFrame::enter_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<bool>("fromThisProgram");
    QTest::addColumn<bool>("answer");
    QTest::addColumn<bool>("asked");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("a label, wanted") << labelFormat << true << true << true << true;
    QTest::newRow("a label, not wanted") << labelFormat << true << false << true << false;
    QTest::newRow("a label of another program") << labelFormat << false << true << false << false;
    QTest::newRow("a text") << "text/plain" << true << true << false << false;
    QTest::newRow("nearly a label") << "application/labels" << true << true << false << false;
    QTest::newRow("a text of another program") << "text/plain" << false << true << false << false;
}

void TestDragFrame::enter()
{
    QFETCH(QString, format);
    QFETCH(bool, fromThisProgram);
    QFETCH(bool, answer);
    QFETCH(bool, asked);
    QFETCH(bool, accepted);
    m_frame->setAcceptEnter(!answer);
    QSignalSpy entered(m_frame, &DragFrame::signalEnterEvent);
    connect(m_frame, &DragFrame::signalEnterEvent, this,
            [answer](DragFrame *frame) { frame->setAcceptEnter(answer); });

    QMimeData data;
    data.setData(format, QByteArray());
    QDragEnterEvent event(QPoint(20, 10), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    const auto deliver = [&] {
        QCOMPARE(event.source() != nullptr, fromThisProgram);
        static_cast<QObject *>(m_frame)->event(&event);
    };
    if (fromThisProgram)
        duringADrag(deliver);
    else
        deliver();

    QCOMPARE(entered.count(), int(asked));
    if (asked)
        QCOMPARE(entered.at(0).at(0).value<DragFrame *>(), m_frame);
    QCOMPARE(event.isAccepted(), accepted);
    if (accepted)
        QCOMPARE(event.dropAction(), Qt::MoveAction);
}

void TestDragFrame::drop_data()
{
    QTest::addColumn<bool>("answer");

    QTest::newRow("taken") << true;
    QTest::newRow("refused") << false;
}

void TestDragFrame::drop()
{
    QFETCH(bool, answer);
    m_frame->setAcceptDrop(!answer);
    QSignalSpy dropped(m_frame, &DragFrame::signalDropEvent);
    connect(m_frame, &DragFrame::signalDropEvent, this,
            [answer](DragFrame *frame) { frame->setAcceptDrop(answer); });

    QMimeData data;
    QDropEvent event(QPoint(20, 10), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject *>(m_frame)->event(&event);

    QCOMPARE(dropped.count(), 1);
    QCOMPARE(dropped.at(0).at(0).value<DragFrame *>(), m_frame);
    QCOMPARE(event.isAccepted(), answer);
}

void TestDragFrame::answersStartRefusing()
{
    QMimeData data;
    data.setData(labelFormat, QByteArray());
    QDragEnterEvent enter(QPoint(20, 10), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QDropEvent drop(QPoint(20, 10), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QSignalSpy entered(m_frame, &DragFrame::signalEnterEvent);
    duringADrag([&] {
        static_cast<QObject *>(m_frame)->event(&enter);
        static_cast<QObject *>(m_frame)->event(&drop);
    });
    QCOMPARE(entered.count(), 1);
    QVERIFY(!enter.isAccepted());
    QVERIFY(!drop.isAccepted());
}

void TestDragFrame::dragMoveDoesNothing_data()
{
    QTest::addColumn<bool>("accepted");

    QTest::newRow("what was accepted stays so") << true;
    QTest::newRow("what was refused stays so") << false;
}

void TestDragFrame::dragMoveDoesNothing()
{
    QFETCH(bool, accepted);
    m_frame->setAcceptEnter(!accepted);
    m_frame->setAcceptDrop(!accepted);
    QSignalSpy entered(m_frame, &DragFrame::signalEnterEvent);
    QSignalSpy dropped(m_frame, &DragFrame::signalDropEvent);

    QMimeData data;
    data.setData(labelFormat, QByteArray());
    QDragMoveEvent event(QPoint(20, 10), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    event.setAccepted(accepted);
    static_cast<QObject *>(m_frame)->event(&event);

    QCOMPARE(event.isAccepted(), accepted);
    QCOMPARE(entered.count() + dropped.count(), 0);
    QCOMPARE(m_frame->frameStyle(), restStyle);
}

QTEST_MAIN(TestDragFrame)
#include "tst_dragframe.moc"
