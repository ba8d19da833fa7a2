#include "service/keptbox.h"
#include "support/boxanswer.h"

#include <QPushButton>
#include <QTest>
#include <QWidget>

/*! The message box that a dialog keeps. */
class tst_keptbox : public QObject
{
    Q_OBJECT

private slots:
    void isMadeWhenNeeded();
    void keepsItsButtons();
    void answers_data();
    void answers();
    void secondMessageUnderTheFirst();
    void ownerGoesUnderTheBox();
};

namespace {

BoxAnswer::Box box(const QString &text, QMessageBox::Icon icon,
                   QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                   QMessageBox::StandardButton click = QMessageBox::Ok)
{
    return {QStringLiteral("Title"), text, icon, buttons, click};
}

} // namespace

void tst_keptbox::isMadeWhenNeeded()
{
    QWidget window;
    KeptBox kept(&window);
    QVERIFY(!window.findChild<QMessageBox *>());
    BoxAnswer boxes;
    boxes.expect(box(QStringLiteral("first"), QMessageBox::Warning))
        .expect(box(QStringLiteral("second"), QMessageBox::Information));
    kept.show(QStringLiteral("Title"), QStringLiteral("first"), QMessageBox::Warning);
    const auto *made = window.findChild<QMessageBox *>();
    QVERIFY(made);
    QVERIFY(!made->isVisible());
    kept.show(QStringLiteral("Title"), QStringLiteral("second"), QMessageBox::Information);
    QCOMPARE(window.findChildren<QMessageBox *>(),
             QList<QMessageBox *>({const_cast<QMessageBox *>(made)}));
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

void tst_keptbox::keepsItsButtons()
{
    constexpr auto both = QMessageBox::Ok | QMessageBox::Cancel;
    constexpr auto yesNo = QMessageBox::Yes | QMessageBox::No;
    KeptBox kept;
    BoxAnswer boxes;
    boxes.expect(box(QStringLiteral("1"), QMessageBox::Warning))
        .expect(box(QStringLiteral("2"), QMessageBox::Question, both, QMessageBox::Cancel))
        .expect(box(QStringLiteral("3"), QMessageBox::Information, both))
        .expect(box(QStringLiteral("4"), QMessageBox::Question, yesNo, QMessageBox::No))
        .expect(box(QStringLiteral("5"), QMessageBox::Warning, yesNo, QMessageBox::Yes));
    const auto show = [&](const char *text, QMessageBox::Icon icon,
                          QMessageBox::StandardButtons buttons = QMessageBox::NoButton) {
        return kept.show(QStringLiteral("Title"), QString::fromLatin1(text), icon, buttons);
    };
    QCOMPARE(show("1", QMessageBox::Warning), QMessageBox::Ok);
    QCOMPARE(show("2", QMessageBox::Question, both), QMessageBox::Cancel);
    QCOMPARE(show("3", QMessageBox::Information), QMessageBox::Ok);
    QCOMPARE(show("4", QMessageBox::Question, yesNo), QMessageBox::No);
    QCOMPARE(show("5", QMessageBox::Warning), QMessageBox::Yes);
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

void tst_keptbox::answers_data()
{
    QTest::addColumn<int>("click");

    QTest::newRow("Ok") << int(QMessageBox::Ok);
    QTest::newRow("Cancel") << int(QMessageBox::Cancel);
}

void tst_keptbox::answers()
{
    QFETCH(int, click);
    const auto button = QMessageBox::StandardButton(click);
    constexpr auto both = QMessageBox::Ok | QMessageBox::Cancel;
    KeptBox kept;
    BoxAnswer boxes;
    boxes.expect(box(QStringLiteral("?"), QMessageBox::Warning, both, button));
    QCOMPARE(kept.show(QStringLiteral("Title"), QStringLiteral("?"), QMessageBox::Warning, both),
             button);
}

// The question stays what it was, and so does its answer.
void tst_keptbox::secondMessageUnderTheFirst()
{
    constexpr auto both = QMessageBox::Ok | QMessageBox::Cancel;
    QWidget window;
    KeptBox kept(&window);
    BoxAnswer boxes;
    BoxAnswer::Box question =
        box(QStringLiteral("?"), QMessageBox::Warning, both, QMessageBox::NoButton);
    question.whileOpen = [&](QMessageBox &first) {
        const auto answer =
            kept.show(QStringLiteral("Title"), QStringLiteral("news"), QMessageBox::Information);
        QCOMPARE(answer, QMessageBox::Ok);
        QCOMPARE(first.text(), QStringLiteral("?"));
        QVERIFY(first.isVisible());
        first.button(QMessageBox::Cancel)->click();
    };
    boxes.expect(question).expect(box(QStringLiteral("news"), QMessageBox::Information));
    QCOMPARE(kept.show(QStringLiteral("Title"), QStringLiteral("?"), QMessageBox::Warning, both),
             QMessageBox::Cancel);
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
    QCOMPARE(window.findChildren<QMessageBox *>().size(), 1);
}

void tst_keptbox::ownerGoesUnderTheBox()
{
    auto window = std::make_unique<QWidget>();
    auto kept = std::make_unique<KeptBox>(window.get());
    BoxAnswer boxes;
    BoxAnswer::Box last = box(QStringLiteral("!"), QMessageBox::Warning);
    last.click = QMessageBox::NoButton;
    last.whileOpen = [&](QMessageBox &) {
        kept.reset();
        window.reset();
    };
    boxes.expect(last);
    QCOMPARE(kept->show(QStringLiteral("Title"), QStringLiteral("!"), QMessageBox::Warning),
             QMessageBox::NoButton);
    QVERIFY2(boxes.isDone(), qPrintable(boxes.report()));
}

QTEST_MAIN(tst_keptbox)
#include "tst_keptbox.moc"
