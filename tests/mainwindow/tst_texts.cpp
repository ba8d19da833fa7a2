#include "filteruser.h"
#include "firmwarebench.h"
#include "matrixview.h"

#include "aisdialogs/aisalarmlistdlg.h"
#include "aisdialogs/aistargetinfodlg.h"
#include "aisdialogs/aistargetlistdlg.h"
#include "aisdialogs/aistestdlg.h"
#include "editors/hdreditdlg.h"
#include "editors/smartdlg.h"
#include "service/enterpassworddlg.h"
#include "service/modedlg.h"
#include "service/passworddlg.h"

#include <QFile>
#include <QLabel>

#include <functional>

namespace {

/*!
 * Looks at every widget of every window that comes up.
 *
 * A label takes no text for markup, but for the one that is a link; a button has no shortcut but
 * those that Qt gives its standard buttons.
 */
class Walker : public QObject
{
public:
    Walker() { qApp->installEventFilter(this); }

    void walk(const QWidget *window)
    {
        ++m_windows;
        const auto labels = window->findChildren<QLabel *>();
        for (const QLabel *label : labels) {
            m_seen += label->text() + QLatin1Char('\n');
            const bool isMarkup = label->textFormat() != Qt::PlainText
                && (label->textFormat() != Qt::AutoText || Qt::mightBeRichText(label->text()));
            if (isMarkup && label->objectName() != QLatin1String("label_website"))
                m_problems += QStringLiteral("markup: ") + label->text();
        }
        const auto buttons = window->findChildren<QAbstractButton *>();
        for (const QAbstractButton *button : buttons) {
            m_seen += visibleText(button) + QLatin1Char('\n');
            const bool isStandard = qobject_cast<const QDialogButtonBox *>(button->parentWidget());
            if (!button->shortcut().isEmpty() && !isStandard)
                m_problems += QStringLiteral("shortcut: ") + button->text();
        }
    }

    int windows() const { return m_windows; }
    bool hasSeen(const QString &text) const { return m_seen.contains(text); }
    QString problems() const { return m_problems.join(QLatin1Char('\n')); }

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *widget = qobject_cast<QWidget *>(object);
        const bool isQts = qobject_cast<QFileDialog *>(widget);
        if (event->type() == QEvent::Show && widget && widget->isWindow() && !isQts)
            walk(widget);
        return false;
    }

private:
    QString m_seen;
    QStringList m_problems;
    int m_windows = 0;
};

const QString markupName = QStringLiteral("<b>GPS");
const QString linkName = QStringLiteral("<a>A&B");
const QString shortcutName = QStringLiteral("A&B");

} // namespace

/*! Names, files and what the router says are texts, whatever is in them. */
class TestTexts : public QObject
{
    Q_OBJECT

private slots:
    void mainWindow();
    void storedAndSentAsTyped();
    void typedName();
    void namedLabelHearsTheMouse();
    void editors();
    void ruleFiles();
    void service();
    void firmwareFiles();
    void otherWindows();
};

void TestTexts::mainWindow()
{
    Walker walker;
    ScriptedBench bench;
    const MatrixView matrix(bench.window);
    QVERIFY(bench.connectToRouter());
    bench.window.slotVRNewPortName(false, 3, markupName);
    bench.window.slotVRNewPortName(false, 4, linkName);
    for (int port : {0, 7, 11})
        bench.window.slotVRNewPortName(true, quint8(port), shortcutName);
    bench.window.slotVRNewPortName(true, 1, markupName);
    bench.window.slotVRNewPortName(true, 2, QStringLiteral("&&&"));
    bench.window.slotVRMode(QStringLiteral("<i>AB"));
    bench.boxes.expect(WindowBench::downloadBox());
    bench.window.slotVRUpdateVRData();

    walker.walk(&bench.window);
    QCOMPARE(walker.problems(), QString());
    for (const QString &text :
         {QString("3. <b>GPS\n"), QString(" 3. <b>GPS\n"), QString("4. <a>A&B\n"),
          QString("\n0. A&B\n"), QString("\n1. <b>GPS\n"), QString("mode: <i>AB\n")}) {
        QVERIFY2(walker.hasSeen(text), qPrintable(text));
    }
    QCOMPARE(visibleText(matrix.outputButton(2)), QStringLiteral("2. &&&"));
    for (int port = 0; port < MatrixView::size; ++port) {
        QVERIFY(matrix.outputButton(port)->shortcut().isEmpty());
        QCOMPARE(matrix.labels[size_t(port)]->textFormat(), Qt::PlainText);
        QCOMPARE(matrix.placeholders[size_t(port)]->textFormat(), Qt::PlainText);
    }
    QVERIFY(bench.find<QLabel>("label_website")->text().contains("<a href="));
    QVERIFY(bench.find<QLabel>("label_website")->textFormat() != Qt::PlainText);
}

// What the button shows is for the eye alone: the upload of a file has the names of the file.
void TestTexts::storedAndSentAsTyped()
{
    FirmwareBench bench;
    const QString file = bench.folder.filePath(QStringLiteral("x<b>y.vrr"));
    const auto choose = [&](const QString &caption, QFileDialog::AcceptMode mode,
                            const QStringList &filters) {
        FileDialogAnswer::Dialog dialog;
        dialog.caption = caption;
        dialog.filters = filters;
        dialog.mode = mode;
        dialog.fileName = file;
        bench.files->expect(dialog);
    };
    bench.window.slotVRNewPortName(true, 0, shortcutName);
    bench.window.slotVRNewPortName(false, 3, markupName);
    choose(QStringLiteral("Save rules"), QFileDialog::AcceptSave,
           {QStringLiteral("TK-7 data (*.vrr)")});
    bench.window.slotSaveToFile();
    QFile saved(file);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QByteArray bytes = saved.readAll();
    QVERIFY(bytes.contains(QByteArray("A&B\0", 4)) && !bytes.contains("&&"));
    QVERIFY(bytes.contains(QByteArray("<b>GPS\0", 7)));

    QVERIFY(bench.connectToRouter());
    choose(QStringLiteral("Load rules"), QFileDialog::AcceptOpen,
           {QStringLiteral("TK-7 data (*.vrr)"), QStringLiteral("*.*")});
    bench.boxes.expect({QStringLiteral("TK-7 Router"), QStringLiteral("Load rules complete"),
                        QMessageBox::Information});
    bench.window.slotLoadFromFile();
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QCOMPARE(bench.files->report(), QString());
    const auto hasHeard = [&](const char *head) {
        const auto lines = bench.heard();
        return std::any_of(lines.begin(), lines.end(),
                           [head](const QByteArray &line) { return line.startsWith(head); });
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasHeard("$VRPNM,O,0,A&B,,,,,*"), 10000);
    QTRY_VERIFY_WITH_TIMEOUT(hasHeard("$VRPNM,I,0,,,,<b>GPS,,*"), 10000);
    QCOMPARE(visibleText(bench.find<QPushButton>("pushButton_output_port_0")),
             QStringLiteral("0. A&B"));
}

void TestTexts::typedName()
{
    MainWindow window;
    const MatrixView matrix(window);
    window.resize(853, 1000); // the screen may be too low for the whole matrix
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const auto name = [&](QWidget *place, const QString &text) {
        QTest::mouseClick(window.windowHandle(), Qt::RightButton, Qt::NoModifier,
                          place->mapTo(&window, place->rect().center()));
        QTest::keyClicks(QApplication::focusWidget(), text);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    };
    name(matrix.outputButton(5), shortcutName);
    name(matrix.labels[3], markupName);
    QCOMPARE(window.routerModel().output_ports[5].output_name, shortcutName);
    QCOMPARE(window.routerModel().input_ports[3].input_name, markupName);
    QCOMPARE(matrix.outputButton(5)->text(), QStringLiteral("5. A&&B"));
    QVERIFY(matrix.outputButton(5)->shortcut().isEmpty());
    QCOMPARE(matrix.labels[3]->text(), QStringLiteral("3. <b>GPS"));
    QCOMPARE(matrix.placeholders[3]->text(), QStringLiteral(" 3. <b>GPS"));
}

// A label that has been taken for markup would keep the press from its frame.
void TestTexts::namedLabelHearsTheMouse()
{
    MainWindow window;
    const MatrixView matrix(window);
    window.resize(853, 1000);
    window.show();
    for (const QString &name : {markupName, linkName, QStringLiteral("<a href>")}) {
        window.slotVRNewPortName(false, 7, name);
        matrix.outputButton(1)->click(); // places the labels anew
        QSignalSpy pressed(matrix.homes[7], &DragFrame::signalPressEvent);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          matrix.labels[7]->mapTo(&window, QPoint(20, 12)));
        QCOMPARE(pressed.count(), 1);
        QCOMPARE(matrix.homes[7]->frameStyle(), 33);
    }
}

// The list of names that an odd router sends can hold anything of three characters.
void TestTexts::editors()
{
    Walker walker;
    ScriptedBench bench;
    bench.window.slotVRNewFilterStr(0, QStringLiteral("<b>"));
    bench.window.slotVRNewFilterStr(1, QStringLiteral("<i>"));
    bench.window.slotVRNewRule(0, 2, 0xf3, 0x0a);
    bench.window.slotVRNewHdr(0, 2, QStringLiteral("<b"));
    bench.window.slotVRNewFilterMask(0, 2, 1);
    bench.find<QPushButton>("pushButton_output_port_0")->click();
    const auto answerBox = [&](QAbstractButton *button, const BoxAnswer::Box &box) {
        bench.boxes.expect(box);
        button->click();
        return bench.boxes.isDone();
    };
    bool isDone = false;
    QVERIFY(inDialog<FilterDlg>(
        bench.find<QPushButton>("pushButton_channel_2_filter_set"), [&](FilterDlg &dialog) {
            FilterUser user(dialog, answerBox);
            QVERIFY(user.go(QStringLiteral("<i>")));
            bench.boxes.expect(FilterUser::deleteQuestion(QStringLiteral("<i>"), false));
            user.button("pushButton_del")->click();
            QVERIFY(user.go(QStringLiteral("<b>")));
            isDone = inDialog<DelSentenceDlg>(user.button("pushButton_del"), [](auto &del) {
                QVERIFY(del.template findChild<QTextEdit *>()->toPlainText().startsWith(
                    QLatin1String("Output Port 0 -> input channel 2")));
                del.reject();
            });
            dialog.reject();
        }));
    QVERIFY(isDone);
    QVERIFY(inDialog<HdrEditDlg>(bench.find<QPushButton>("pushButton_channel_2_hdr_set"),
                                 [](HdrEditDlg &dialog) { dialog.reject(); }));
    QVERIFY(inDialog<SmartDlg>(bench.find<QPushButton>("pushButton_channel_2_smart"),
                               [](SmartDlg &dialog) { dialog.reject(); }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QCOMPARE(walker.problems(), QString());
    QVERIFY(walker.hasSeen(QStringLiteral("Delete '<i>' NMEA sentence ?")));
    QVERIFY(walker.hasSeen(QStringLiteral("NMEA sentence '<b>' is used in other filters.")));
    QCOMPARE(bench.find<QLineEdit>("lineEdit_channel_2_hdr")->text(), QStringLiteral("<b"));
}

void TestTexts::ruleFiles()
{
    Walker walker;
    FirmwareBench bench;
    const auto use = [&](bool save, const QString &file, const QString &title,
                         const QString &text) {
        FileDialogAnswer::Dialog dialog;
        dialog.caption = save ? QStringLiteral("Save rules") : QStringLiteral("Load rules");
        dialog.filters = QStringList{QStringLiteral("TK-7 data (*.vrr)")};
        if (!save)
            dialog.filters += QStringLiteral("*.*");
        dialog.mode = save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen;
        dialog.fileName = file;
        if (text.startsWith(QLatin1String("Error open")))
            dialog.onFinished = [file] { QFile::remove(file); };
        bench.files->expect(dialog);
        bench.boxes.expect({title, text.arg(file), QMessageBox::Warning});
        if (save)
            bench.window.slotSaveToFile();
        else
            bench.window.slotLoadFromFile();
        QVERIFY(walker.hasSeen(text.arg(file)));
    };
    const QString torn = bench.writeFile("VRR", QStringLiteral("x<b>y.vrr"));
    use(false, torn, QStringLiteral("Load Rules"), QStringLiteral("Error load rules from %1"));
    bench.window.slotVRNewRule(0, 0, 0xf0, 0x08); // a header that isn't there can't be saved
    use(true, bench.folder.filePath(QStringLiteral("x<u>y.vrr")), QStringLiteral("Save Rules"),
        QStringLiteral("Error save rules to %1"));
    const QString gone = bench.writeFile("VRR", QStringLiteral("x<i>y.vrr"));
    use(false, gone, QStringLiteral("Load Rules"), QStringLiteral("Error open file %1"));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QCOMPARE(walker.problems(), QString());
}

void TestTexts::service()
{
    Walker walker;
    ScriptedBench bench("4.0");
    QVERIFY(bench.connectToRouter());
    bench.say("$VRLCK,1,5");
    bench.waitUntilHeard();
    const QString password =
        QStringLiteral("Current Lock Password: ") + QStringLiteral("<b>Secret");
    bench.boxes.expect({QStringLiteral("Lock password"), password, QMessageBox::Information});
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bench.say("$VRSER,2020202020202020202020203E623C47");
        auto *chip = dialog.findChild<QLabel *>(QStringLiteral("label_ChipID"));
        QTRY_VERIFY(chip->text().contains(QLatin1String("G<b>")));
        walker.walk(&dialog);
        bench.say("$VRPWV,<b>Secret");
        QTRY_VERIFY(bench.boxes.isDone());
    }));
    QCOMPARE(walker.problems(), QString());
    QVERIFY(walker.hasSeen(password));
}

void TestTexts::firmwareFiles()
{
    Walker walker;
    FirmwareBench bench;
    QVERIFY(bench.connectToRouter());
    const QString file = bench.writeFile("no firmware", QStringLiteral("x<b>y.efw"));
    const QString text = QStringLiteral("File %1 in not TK-7 firmware").arg(file);
    bench.files->expect(FirmwareBench::chooser(file));
    bench.boxes.expect({QStringLiteral("Load Firmware"), text, QMessageBox::Warning});
    QVERIFY(bench.inService([](servicedlg &dialog) {
        dialog.findChild<QPushButton *>(QStringLiteral("pushButton_Fw_Update"))->click();
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QCOMPARE(walker.problems(), QString());
    QVERIFY(walker.hasSeen(text));
}

// Those that show nothing but their own texts and tables, whose cells know no markup.
void TestTexts::otherWindows()
{
    Walker walker;
    SntDlg sentence;
    EnterPasswordDlg unlock(nullptr);
    passwordDlg password(nullptr);
    modeDlg mode(nullptr);
    aistestdlg ais(nullptr);
    AisTargetListDlg targets(nullptr);
    AisTargetInfoDlg target(nullptr);
    AisAlarmListDlg alarms(nullptr);
    for (QDialog *dialog : std::initializer_list<QDialog *>{&sentence, &unlock, &password, &mode,
                                                            &ais, &targets, &target, &alarms}) {
        dialog->show();
    }
    QCOMPARE(walker.windows(), 8);
    QCOMPARE(walker.problems(), QString());
}

QTEST_MAIN(TestTexts)
#include "tst_texts.moc"
