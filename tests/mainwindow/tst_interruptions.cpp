#include "dragtest.h"
#include "matrixview.h"
#include "scriptedbench.h"

#include "editors/sntdlg.h"
#include "link/nmeaserialport.h"
#include "service/waitsavedlg.h"
#include "widgets/qmlineedit.h"

#include <QProgressDialog>

#include <functional>
#include <memory>

namespace {

using Way = std::function<void(ScriptedBench &)>;

constexpr int restStyle = 33;
constexpr int pressedStyle = 49;
const QString anyBox = QStringLiteral("(a box)");

} // namespace

Q_DECLARE_METATYPE(Way)

/*!
 * Something opens over the window while the mouse is at work in it: a drag, a press or the editor
 * of a name ends, and the first click on what has opened counts.
 */
class TestInterruptions : public DragTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void drag_data() { ways(); }
    void drag();
    void press_data() { ways(); }
    void press();
    void nameEditor_data() { ways(); }
    void nameEditor();

    void dragGoesOnUnderNothing();

private:
    static void ways();
    void clickWhatOpens();

    std::unique_ptr<ScriptedBench> m_bench;
    std::unique_ptr<MatrixView> m_matrix;
    QTimer m_clicker;
    QStringList m_problems;
};

void TestInterruptions::initTestCase()
{
    m_bench = std::make_unique<ScriptedBench>();
    m_matrix = std::make_unique<MatrixView>(m_bench->window);
    m_bench->window.resize(853, 1000); // the screen is too low for the whole matrix
    connect(&m_clicker, &QTimer::timeout, this, &TestInterruptions::clickWhatOpens);
    m_clicker.setInterval(5);
}

// One window for all: the platform's drag remembers the frame that it was over.
void TestInterruptions::init()
{
    constexpr int usual = 5;
    constexpr int never = 24 * 3600 * 1000; // in the tests the mouse answers
    m_bench->boxes.setLookInterval(usual);
    if (!m_bench->window.isConnected())
        QVERIFY(m_bench->connectToRouter());
    m_bench->say("$VRLCK,0,0");
    m_bench->waitUntilHeard();
    m_bench->boxes.setLookInterval(never);
    m_problems.clear();
}

void TestInterruptions::cleanup()
{
    QTRY_VERIFY(!QApplication::activeModalWidget());
    m_clicker.stop();
    QVERIFY2(m_problems.isEmpty(), qPrintable(m_problems.join(QLatin1Char('\n'))));
    QVERIFY(!QWidget::mouseGrabber());
}

void TestInterruptions::cleanupTestCase()
{
    m_matrix.reset();
    m_bench.reset();
}

// Every way in which something can open by itself, or by what the router does.
void TestInterruptions::ways()
{
    QTest::addColumn<Way>("open");
    const auto row = [](const char *name, const Way &open) { QTest::newRow(name) << open; };
    row("end of a download", [](ScriptedBench &b) { b.sayBare("$VRWBL"); });
    row("saved", [](ScriptedBench &b) { b.sayBare("$VRSRO"); });
    row("not saved", [](ScriptedBench &b) { b.sayBare("$VRSRE"); });
    row("taken by another", [](ScriptedBench &b) { b.sayBare("$VRCNB"); });
    row("silent router", [](ScriptedBench &b) { b.endLink(); });
    row("wrong password", [](ScriptedBench &b) {
        b.say("$VRLCK,1,0");
        b.say("$VRLCK,1,0");
    });
    row("box of a static function",
        [](ScriptedBench &b) { QMessageBox::warning(&b.window, anyBox, anyBox); });
    row("dialog without a parent", [](ScriptedBench &) { SntDlg().exec(); });
    row("box of another box", [](ScriptedBench &b) {
        // At once, so that nobody has clicked on the first one by then.
        QTimer::singleShot(0, &b.window, [&b] { b.window.slotVRSaveToEepromOk(); });
        QMessageBox::warning(&b.window, anyBox, anyBox);
    });
    row("dialog that waits for a save", [](ScriptedBench &b) {
        auto *dialog = new WaitSaveDlg(&b.window);
        dialog->setModal(true);
        dialog->show();
        QTimer::singleShot(50, dialog, [dialog] { delete dialog; });
    });
    row("progress", [](ScriptedBench &b) {
        auto *dialog = new QProgressDialog(anyBox, anyBox, 0, 100, &b.window);
        dialog->setWindowModality(Qt::WindowModal);
        dialog->show();
        QTimer::singleShot(50, dialog, [dialog] { delete dialog; });
    });
}

// With the mouse, at the last button of what is on top; whoever keeps the mouse keeps the click.
void TestInterruptions::clickWhatOpens()
{
    QWidget *dialog = QApplication::activeModalWidget();
    if (!dialog || !dialog->isVisible() || qobject_cast<WaitSaveDlg *>(dialog)
        || qobject_cast<QProgressDialog *>(dialog)) {
        return;
    }
    const auto windows = QGuiApplication::allWindows();
    for (const QWindow *window : windows) {
        if (window->inherits("QShapedPixmapWindow") && window->isVisible())
            m_problems +=
                QStringLiteral("a label is dragged over \"%1\"").arg(dialog->windowTitle());
    }
    const auto buttons = dialog->findChildren<QPushButton *>();
    const QPointer<QWidget> open = dialog;
    QTest::mouseClick(dialog->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      middle(buttons.constLast()));
    if (!open || !open->isVisible() || dialog != QApplication::activeModalWidget())
        return;
    m_problems += QStringLiteral("\"%1\" doesn't hear the click").arg(dialog->windowTitle());
    static_cast<QDialog *>(dialog)->reject();
}

void TestInterruptions::drag()
{
    QFETCH(Way, open);
    const RouterModel before = m_bench->window.routerModel();
    QWindow *screen = m_bench->window.windowHandle();
    const QPoint from = middle(m_matrix->labels[7]);
    bool wasDragging = false;
    bool wasStuck = false;
    QTimer guard;
    connect(&guard, &QTimer::timeout, &m_bench->window, [&] {
        wasStuck = true; // Escape ends a drag that nothing else has ended
        QTest::keyClick(screen, Qt::Key_Escape);
    });
    QTest::mousePress(screen, Qt::LeftButton, Qt::NoModifier, from);
    QTimer::singleShot(0, &m_bench->window, [&] {
        wasDragging = m_bench->window.findChild<QDrag *>() != nullptr;
        QTest::mouseMove(screen, middle(m_matrix->main[6]));
        m_clicker.start();
        guard.start(1000);
        open(*m_bench);
    });
    // The drag begins and ends within this move.
    QTest::mouseMove(screen, from + QPoint(QApplication::startDragDistance() + 1, 0));
    guard.stop();
    QVERIFY(wasDragging);
    QVERIFY(!wasStuck);
    QCOMPARE(m_matrix->homes[7]->frameStyle(), restStyle);
    QTRY_VERIFY(!QApplication::activeModalWidget());

    // The hand still has to let go; then everything is as it was.
    QTest::mouseRelease(screen, Qt::LeftButton, Qt::NoModifier, middle(m_matrix->main[6]));
    QVERIFY(m_bench->window.routerModel() == before);
    QCOMPARE(m_matrix->placeOf(7), 48 + 7);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!m_bench->window.findChild<QDrag *>());
}

// The release goes elsewhere: the frame is drawn as at rest, and doesn't begin a drag later.
void TestInterruptions::press()
{
    QFETCH(Way, open);
    QWindow *screen = m_bench->window.windowHandle();
    DragFrame *home = m_matrix->homes[7];
    QTest::mousePress(screen, Qt::LeftButton, Qt::NoModifier, middle(m_matrix->labels[7]));
    QCOMPARE(home->frameStyle(), pressedStyle);
    m_clicker.start();
    open(*m_bench);
    QTRY_COMPARE(home->frameStyle(), restStyle);
    QTRY_VERIFY(!QApplication::activeModalWidget());

    const QPoint away = QPoint(40, 15) + QPoint(QApplication::startDragDistance() + 1, 0);
    QMouseEvent move(QEvent::MouseMove, away, home->mapToGlobal(away), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    bool isDragging = false;
    QTimer::singleShot(0, home, [&] {
        isDragging = home->findChild<QDrag *>() != nullptr;
        QDrag::cancel();
    });
    QCoreApplication::sendEvent(home, &move);
    QCoreApplication::processEvents();
    QVERIFY(!isDragging);
}

void TestInterruptions::nameEditor()
{
    QFETCH(Way, open);
    const RouterModel before = m_bench->window.routerModel();
    QTest::mouseClick(m_bench->window.windowHandle(), Qt::RightButton, Qt::NoModifier,
                      middle(m_matrix->labels[7]));
    const QPointer<QMLineEdit> editor = m_bench->window.findChild<QMLineEdit *>();
    QVERIFY(editor && editor->isVisible());
    QCOMPARE(QWidget::mouseGrabber(), editor);
    m_clicker.start();
    open(*m_bench);
    QTRY_VERIFY(!editor);
    QTRY_VERIFY(!QApplication::activeModalWidget());
    QVERIFY(m_bench->window.routerModel() == before);
}

// Without a box the drag goes its way, whatever the router says.
void TestInterruptions::dragGoesOnUnderNothing()
{
    QWindow *screen = m_bench->window.windowHandle();
    const QPoint from = middle(m_matrix->labels[7]);
    QTest::mousePress(screen, Qt::LeftButton, Qt::NoModifier, from);
    QTimer::singleShot(0, &m_bench->window, [&] {
        m_bench->say("$VRVER,4.1");
        m_bench->waitUntilHeard();
        QTest::mouseMove(screen, middle(m_matrix->main[6]));
        QTest::mouseRelease(screen, Qt::LeftButton, Qt::NoModifier, middle(m_matrix->main[6]));
    });
    QTest::mouseMove(screen, from + QPoint(QApplication::startDragDistance() + 1, 0));
    QCOMPARE(int(m_bench->window.routerModel().output_ports[0].channels[6].main_input), 7);
}

QTEST_MAIN(TestInterruptions)
#include "tst_interruptions.moc"
