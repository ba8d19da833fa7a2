#include "widgets/qmlineedit.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QRegExpValidator>
#include <QSignalSpy>
#include <QTest>

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

} // namespace

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
    void takesFromAnInputMethod();

    void escapeEndsTheEdit();
    void returnAcceptsAndEnds_data();
    void returnAcceptsAndEnds();

    void clicks_data();
    void clicks();
    void clickThroughTheWindow_data();
    void clickThroughTheWindow();

private:
    std::unique_ptr<Below> m_below;
    QMLineEdit *m_editor = nullptr;
};

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
    const auto *validator = qobject_cast<const QRegExpValidator *>(m_editor->validator());
    QVERIFY(validator);
    QCOMPARE(validator->parent(), m_editor);
    QCOMPARE(validator->regExp(),
             QRegExp(QStringLiteral("[a-z -Z]*"), Qt::CaseSensitive, QRegExp::RegExp));
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

    QMouseEvent event(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
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
