#include "widgets/qmlineedit.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QRegularExpressionValidator>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <memory>

namespace {

// Counts what an editor lets through to the widget below it.
class Below : public QWidget
{
public:
    QString keys;
    int presses = 0;

protected:
    void keyPressEvent(QKeyEvent *event) override { keys += event->text(); }
    void mousePressEvent(QMouseEvent *) override { ++presses; }
};

using Way = std::function<void(QMLineEdit *)>;

} // namespace

Q_DECLARE_METATYPE(Way)

class TestQMLineEdit : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void construction();
    void validator();
    void grabsTheMouse();

    void types_data();
    void types();
    void forbiddenKeysGoNoFurtherThanTheirParent_data();
    void forbiddenKeysGoNoFurtherThanTheirParent();
    void hasNoLimitOfItsOwn();
    void limitIsTheWindows();

    void pastes_data();
    void pastes();
    void pastesTheSelection();
    void takesFromAnInputMethod();
    void takesADrop();
    void keepsTheCursorsPlace_data();
    void keepsTheCursorsPlace();
    void keepsTheHistory_data();
    void keepsTheHistory();
    void leavesAForeignNameAlone();

    void escapeEndsTheEdit();
    void returnAcceptsAndEnds_data();
    void returnAcceptsAndEnds();

    void ends_data();
    void ends();
    void wheelInsideGoesOn();

    void clicks_data();
    void clicks();
    void clickThroughTheWindow_data();
    void clickThroughTheWindow();

private:
    std::unique_ptr<Below> m_below;
    QMLineEdit *m_editor = nullptr;

    // Each puts "x,y" in at the cursor, in one of the ways in which a text can come.
    static void addWays();
    static void paste(QMLineEdit *editor);
    static void commit(QMLineEdit *editor);
    static void drop(QMLineEdit *editor);
};

void TestQMLineEdit::addWays()
{
    QTest::addColumn<Way>("way");
    QTest::newRow("paste") << Way(paste);
    QTest::newRow("input method") << Way(commit);
    QTest::newRow("drop") << Way(drop);
}

void TestQMLineEdit::paste(QMLineEdit *editor)
{
    QApplication::clipboard()->setText(QStringLiteral("x,y"));
    QTest::keyClick(editor, Qt::Key_V, Qt::ControlModifier);
}

void TestQMLineEdit::commit(QMLineEdit *editor)
{
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral("x,y"));
    QCoreApplication::sendEvent(editor, &event);
}

void TestQMLineEdit::drop(QMLineEdit *editor)
{
    QMimeData data;
    data.setText(QStringLiteral("x,y"));
    const QPoint cursor = editor->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QDropEvent event(cursor, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject *>(editor)->event(&event); // not by way of a drag
    QVERIFY(event.isAccepted());
}

void TestQMLineEdit::init()
{
    m_below = std::make_unique<Below>();
    m_below->resize(300, 200);
    m_editor = new QMLineEdit;
    m_editor->setFixedSize(93, 25);
    m_editor->setParent(m_below.get());
    m_editor->move(50, 60);
    m_below->show();
    m_editor->show();
    m_below->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_below.get()));
    m_editor->setFocus(Qt::OtherFocusReason);
}

void TestQMLineEdit::cleanup()
{
    m_below.reset();
}

void TestQMLineEdit::construction()
{
    const QMLineEdit editor;
    QVERIFY(!editor.parent());
    QVERIFY(!editor.dragEnabled());
    QCOMPARE(editor.contextMenuPolicy(), Qt::CustomContextMenu);
    QCOMPARE(editor.text(), QString());
}

void TestQMLineEdit::validator()
{
    const auto *validator =
        qobject_cast<const QRegularExpressionValidator *>(m_editor->validator());
    QVERIFY(validator);
    QCOMPARE(validator->parent(), m_editor);
    QCOMPARE(validator->regularExpression(), QRegularExpression(QStringLiteral("[a-z -Z]*")));
}

void TestQMLineEdit::grabsTheMouse()
{
    QCOMPARE(QWidget::mouseGrabber(), m_editor);
    m_below.reset();
    QVERIFY(!QWidget::mouseGrabber());
}

void TestQMLineEdit::types_data()
{
    QTest::addColumn<char>("character");
    QTest::addColumn<bool>("accepted");

    const QByteArray refused = "!$*,[\\]^_`{|}~";
    for (char character = 0x20; character < 0x7f; ++character) {
        const QByteArray name = "0x" + QByteArray::number(character, 16) + ' ' + character;
        QTest::newRow(name.constData()) << character << !refused.contains(character);
    }
}

void TestQMLineEdit::types()
{
    QFETCH(char, character);
    QFETCH(bool, accepted);
    QTest::keyClick(m_editor, 'x');
    QTest::keyClick(m_editor, character);
    QTest::keyClick(m_editor, 'y');
    const QString typed(QLatin1Char{character});
    QCOMPARE(m_editor->text(), accepted ? 'x' + typed + 'y' : QStringLiteral("xy"));
}

void TestQMLineEdit::forbiddenKeysGoNoFurtherThanTheirParent_data()
{
    QTest::addColumn<char>("character");
    QTest::addColumn<bool>("ignored");

    QTest::newRow("exclamation mark") << '!' << true;
    QTest::newRow("dollar") << '$' << true;
    QTest::newRow("star") << '*' << true;
    QTest::newRow("comma") << ',' << true;
    QTest::newRow("letter") << 'a' << false;
}

// The four keys are ignored, so they travel on; any other key the editor keeps.
void TestQMLineEdit::forbiddenKeysGoNoFurtherThanTheirParent()
{
    QFETCH(char, character);
    QFETCH(bool, ignored);
    QSignalSpy finished(m_editor, &QLineEdit::editingFinished);
    QTest::keyClick(m_editor, character);
    QCOMPARE(m_below->keys, ignored ? QString(QLatin1Char(character)) : QString());
    QCOMPARE(finished.count(), 0);
    QVERIFY(m_editor->isVisible());
}

void TestQMLineEdit::hasNoLimitOfItsOwn()
{
    const QString longName = QStringLiteral("A NAME THAT IS MUCH LONGER THAN A PORT MAY HAVE");
    QTest::keyClicks(m_editor, longName);
    QCOMPARE(m_editor->text(), longName);
}

void TestQMLineEdit::limitIsTheWindows()
{
    m_editor->setMaxLength(8);
    QTest::keyClicks(m_editor, QStringLiteral("123456789"));
    QCOMPARE(m_editor->text(), QStringLiteral("12345678"));
}

void TestQMLineEdit::pastes_data()
{
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("text");

    QTest::newRow("plain") << "Gyro 1"
                           << "Gyro 1";
    QTest::newRow("each of the four is dropped") << "a!b$c*d,e"
                                                 << "abcde";
    QTest::newRow("nothing but the four") << "!$*,,*$!"
                                          << "";
    QTest::newRow("at both ends") << ",GPS,"
                                  << "GPS";
    QTest::newRow("a sign that the validator refuses refuses all") << "a_b"
                                                                   << "";
    QTest::newRow("not even together with the four") << "a,b[c"
                                                     << "";
}

void TestQMLineEdit::pastes()
{
    QFETCH(QString, pasted);
    QApplication::clipboard()->setText(pasted);
    QTest::keyClick(m_editor, Qt::Key_V, Qt::ControlModifier);
    QTEST(m_editor->text(), "text");
}

void TestQMLineEdit::takesFromAnInputMethod()
{
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral("A!B,C"));
    QCoreApplication::sendEvent(m_editor, &event);
    QCOMPARE(m_editor->text(), QStringLiteral("ABC"));
}

// By the middle button, where the system has such a thing; an X server has, the platforms without
// a display have not.
void TestQMLineEdit::pastesTheSelection()
{
    QClipboard *clipboard = QApplication::clipboard();
    clipboard->setText(QStringLiteral("A!B,C"), QClipboard::Selection);
    QTest::mouseClick(m_editor, Qt::MiddleButton);
    QCOMPARE(m_editor->text(), clipboard->supportsSelection() ? QStringLiteral("ABC") : QString());
}

void TestQMLineEdit::takesADrop()
{
    m_editor->setText(QStringLiteral("AB"));
    QMimeData data;
    data.setText(QStringLiteral("$c*d"));
    QDropEvent event(QPoint(90, 12), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject *>(m_editor)->event(&event);
    QVERIFY(event.isAccepted());
    QCOMPARE(event.dropAction(), Qt::CopyAction);
    QCOMPARE(m_editor->text(), QStringLiteral("ABcd"));
}

void TestQMLineEdit::keepsTheCursorsPlace_data()
{
    addWays();
}

void TestQMLineEdit::keepsTheCursorsPlace()
{
    QFETCH(Way, way);
    QTest::keyClicks(m_editor, QStringLiteral("ABCD"));
    m_editor->setCursorPosition(1);
    way(m_editor);
    QCOMPARE(m_editor->text(), QStringLiteral("AxyBCD"));
    QCOMPARE(m_editor->cursorPosition(), 3);
}

void TestQMLineEdit::keepsTheHistory_data()
{
    addWays();
}

void TestQMLineEdit::keepsTheHistory()
{
    QFETCH(Way, way);
    QTest::keyClicks(m_editor, QStringLiteral("AB"));
    QTest::keyClick(m_editor, Qt::Key_Backspace);
    way(m_editor);
    QCOMPARE(m_editor->text(), QStringLiteral("Axy"));
    m_editor->undo();
    QCOMPARE(m_editor->text(), QStringLiteral("A"));
    m_editor->undo();
    QCOMPARE(m_editor->text(), QStringLiteral("AB"));
    m_editor->undo();
    QCOMPARE(m_editor->text(), QString());
    for (int i = 0; i < 3; ++i)
        m_editor->redo();
    QCOMPARE(m_editor->text(), QStringLiteral("Axy"));
}

// A router can send any name. What the user adds to it takes nothing away from it.
void TestQMLineEdit::leavesAForeignNameAlone()
{
    m_editor->setText(QStringLiteral("A!B"));
    QTest::keyClick(m_editor, 'C');
    QCOMPARE(m_editor->text(), QStringLiteral("A!BC"));
    m_editor->undo();
    QCOMPARE(m_editor->text(), QStringLiteral("A!B"));
}

void TestQMLineEdit::escapeEndsTheEdit()
{
    m_editor->setText(QStringLiteral("Gyro"));
    QSignalSpy finished(m_editor, &QLineEdit::editingFinished);
    QSignalSpy accepted(m_editor, &QLineEdit::returnPressed);
    QTest::keyClick(m_editor, Qt::Key_Escape);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(accepted.count(), 0);
    QCOMPARE(m_editor->text(), QStringLiteral("Gyro"));
    QCOMPARE(m_below->keys, QString());
}

void TestQMLineEdit::returnAcceptsAndEnds_data()
{
    QTest::addColumn<int>("key");

    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Enter") << int(Qt::Key_Enter);
}

void TestQMLineEdit::returnAcceptsAndEnds()
{
    QFETCH(int, key);
    QStringList order;
    connect(m_editor, &QLineEdit::returnPressed, this, [&] { order += QStringLiteral("accept"); });
    connect(m_editor, &QLineEdit::editingFinished, this, [&] { order += QStringLiteral("end"); });
    QTest::keyClick(m_editor, Qt::Key(key));
    QCOMPARE(order, QStringList({"accept", "end"}));
}

void TestQMLineEdit::ends_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("how");

    const QString refused = QStringLiteral("A_B");
    for (const QString &text : {QString(), QStringLiteral("GPS"), refused}) {
        for (const char *how : {"Escape", "Tab", "Shift+Tab", "focus", "wheel", "click"})
            QTest::addRow("\"%s\", %s", qPrintable(text), how) << text << QString(how);
    }
    QTest::newRow("refused, Return") << refused << "Return";
    QTest::newRow("refused, Enter") << refused << "Enter";
}

// Whatever is in it, also if nobody has typed anything; and without a word of acceptance.
void TestQMLineEdit::ends()
{
    QFETCH(QString, text);
    QFETCH(QString, how);
    if (!text.isEmpty())
        m_editor->setText(text);
    auto *neighbour = new QLineEdit(m_below.get());
    neighbour->show();
    QSignalSpy finished(m_editor, &QLineEdit::editingFinished);
    QSignalSpy accepted(m_editor, &QLineEdit::returnPressed);
    connect(m_editor, &QLineEdit::editingFinished, m_editor, [this] { m_editor->hide(); });
    if (how == QLatin1String("focus")) {
        neighbour->setFocus();
    } else if (how == QLatin1String("wheel")) {
        QWheelEvent wheel(QPointF(10, 10), m_below->mapToGlobal(QPoint(10, 10)), QPoint(),
                          QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_below.get(), &wheel);
    } else if (how == QLatin1String("click")) {
        QTest::mouseClick(m_below->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    } else {
        QTest::keySequence(m_editor, QKeySequence(how));
    }
    QCOMPARE(finished.count(), 1);
    QCOMPARE(accepted.count(), 0);
    QVERIFY(m_editor->isHidden());
    QCOMPARE(m_editor->text(), text);
}

void TestQMLineEdit::wheelInsideGoesOn()
{
    QSignalSpy finished(m_editor, &QLineEdit::editingFinished);
    QWheelEvent wheel(QPointF(10, 10), m_editor->mapToGlobal(QPoint(10, 10)), QPoint(),
                      QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(m_editor, &wheel);
    QCOMPARE(finished.count(), 0);
}

void TestQMLineEdit::clicks_data()
{
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<bool>("inside");

    QTest::newRow("middle") << QPoint(40, 12) << true;
    QTest::newRow("top left corner") << QPoint(0, 0) << true;
    QTest::newRow("bottom right corner, one past the last pixel") << QPoint(93, 25) << true;
    QTest::newRow("top right corner") << QPoint(93, 0) << true;
    QTest::newRow("bottom left corner") << QPoint(0, 25) << true;
    QTest::newRow("one to the left") << QPoint(-1, 12) << false;
    QTest::newRow("one above") << QPoint(40, -1) << false;
    QTest::newRow("one to the right") << QPoint(94, 12) << false;
    QTest::newRow("one below") << QPoint(40, 26) << false;
    QTest::newRow("far away") << QPoint(500, -300) << false;
}

void TestQMLineEdit::clicks()
{
    QFETCH(QPoint, place);
    QFETCH(bool, inside);
    m_editor->setText(QStringLiteral("12345678"));
    m_editor->selectAll();
    QSignalSpy finished(m_editor, &QLineEdit::editingFinished);

    QMouseEvent event(QEvent::MouseButtonPress, place, m_editor->mapToGlobal(place), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject *>(m_editor)->event(&event);
    QCOMPARE(finished.count(), int(!inside));
    QCOMPARE(event.isAccepted(), inside);
    // The base handler moves the cursor, which ends the selection.
    QCOMPARE(m_editor->hasSelectedText(), !inside);
}

void TestQMLineEdit::clickThroughTheWindow_data()
{
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<bool>("inside");

    QTest::newRow("into the editor") << QPoint(60, 70) << true;
    QTest::newRow("beside the editor") << QPoint(20, 20) << false;
}

void TestQMLineEdit::clickThroughTheWindow()
{
    QFETCH(QPoint, place);
    QFETCH(bool, inside);
    QSignalSpy finished(m_editor, &QLineEdit::editingFinished);
    QTest::mouseClick(m_below->windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
    QCOMPARE(finished.count(), int(!inside));
    QCOMPARE(m_below->presses, 0);
}

QTEST_MAIN(TestQMLineEdit)
#include "tst_qmlineedit.moc"
