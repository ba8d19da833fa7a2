#include "matrixtest.h"

#include "widgets/qmlineedit.h"

#include <QComboBox>

/*! Names of the ports, in a window that is not connected but where lines are sent. */
class TestNames : public MatrixTest
{
    Q_OBJECT

private slots:
    void outputEditor();
    void inputEditor_data();
    void inputEditor();
    void editorKnowsTheName();
    void leftAndRightOpenTheEditor();
    void noEditor_data();
    void noEditor();

    void outputName_data();
    void outputName();
    void inputName_data();
    void inputName();
    void typed_data();
    void typed();
    void emptyNameBringsBackTheDefault_data();
    void emptyNameBringsBackTheDefault();
    void nameOfALabelInACell();

    void cancelled_data();
    void cancelled();
    void ends_data();
    void ends();
    void firstClickOnABoxCounts_data();
    void firstClickOnABoxCounts();
    void editorOverAnEditor();
    void focusAfterConnecting_data();
    void focusAfterConnecting();
    void clickInsideGoesOn();
    void clickElsewhereDoesNothingElse();
    void oneEditorAtATime();
    void windowEndsUnderAnOpenEditor_data();
    void windowEndsUnderAnOpenEditor();

    void namesFromTheRouterWaitForTheScreen();
    void namesAreNotSent();

private:
    // Where keys are typed the window has to be the active one.
    MainWindow *fresh();

    // Presses a mouse button over the middle of a widget, by way of the window.
    static void click(QWidget *widget, Qt::MouseButton button);
    static void click(QWidget *window, Qt::MouseButton button, QPoint place);
    // Types at the window, for whatever has the focus.
    static void type(QWidget *window, const QString &text);
    static void press(QWidget *window, Qt::Key key)
    {
        QTest::keyClick(window->windowHandle(), key);
    }

    // The name editors that are open; those that are to be deleted are deleted.
    static QList<QMLineEdit *> editors(const QWidget *window);

    const QString &inputNameOf(int port)
    {
        return fresh()->routerModel().input_ports[size_t(port)].input_name;
    }
    const QString &outputNameOf(int port)
    {
        return fresh()->routerModel().output_ports[size_t(port)].output_name;
    }
};

MainWindow *TestNames::fresh()
{
    MainWindow *window = MatrixTest::fresh();
    if (window->isActiveWindow())
        return window;
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window))
        qFatal("the window does not become active");
    return window;
}

void TestNames::click(QWidget *widget, Qt::MouseButton button)
{
    click(widget->window(), button, widget->mapTo(widget->window(), widget->rect().center()));
}

void TestNames::click(QWidget *window, Qt::MouseButton button, QPoint place)
{
    QTest::mouseClick(window->windowHandle(), button, Qt::NoModifier, place);
}

void TestNames::type(QWidget *window, const QString &text)
{
    for (const QChar character : text)
        QTest::keyClick(window->windowHandle(), character.toLatin1());
}

QList<QMLineEdit *> TestNames::editors(const QWidget *window)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return window->findChildren<QMLineEdit *>();
}

// Opening the editor

void TestNames::outputEditor()
{
    const MatrixView matrix(*fresh());
    for (int port : {0, 5, 11}) {
        QPushButton *button = matrix.outputButton(port);
        click(button, Qt::RightButton);
        const auto open = editors(fresh());
        QCOMPARE(open.size(), 1);
        const QMLineEdit *editor = open.first();
        QCOMPARE(editor->parent(), button);
        QCOMPARE(editor->geometry(), QRect(QPoint(0, 0), button->size()));
        QCOMPARE(editor->minimumSize(), button->size());
        QCOMPARE(editor->maximumSize(), button->size());
        QCOMPARE(editor->font().pointSize(), 8);
        QCOMPARE(editor->maxLength(), 8);
        QCOMPARE(editor->text(), QString());
        QVERIFY(editor->isVisible());
        QCOMPARE(QApplication::focusWidget(), editor);
        QCOMPARE(QWidget::mouseGrabber(), editor);
        press(fresh(), Qt::Key_Escape);
    }
}

void TestNames::inputEditor_data()
{
    QTest::addColumn<int>("rules"); // of channel 2
    QTest::addColumn<int>("frame");

    QTest::newRow("at home") << 0xff << 48 + 3;
    QTest::newRow("in a main cell") << 0xf3 << 16 + 2;
    QTest::newRow("in a reserve cell") << 0x3f << 32 + 2;
}

void TestNames::inputEditor()
{
    QFETCH(int, rules);
    QFETCH(int, frame);
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewRule(0, 2, quint8(rules), 0);
    matrix.outputButton(0)->click();

    click(matrix.labels[3], Qt::RightButton);

    const auto open = editors(fresh());
    QCOMPARE(open.size(), 1);
    const QMLineEdit *editor = open.first();
    QCOMPARE(editor->parent(), matrix.frame(frame));
    QCOMPARE(editor->geometry(), QRect(0, 0, 95, 31));
    QCOMPARE(editor->minimumSize(), QSize(95, 31));
    QCOMPARE(editor->maximumSize(), QSize(95, 31));
    QCOMPARE(editor->maxLength(), 8);
    QCOMPARE(editor->text(), QString());
    QVERIFY(editor->isVisible());
    QCOMPARE(QApplication::focusWidget(), editor);
    QCOMPARE(QWidget::mouseGrabber(), editor);
    type(fresh(), QStringLiteral("Gyro"));
    press(fresh(), Qt::Key_Return);
    QCOMPARE(inputNameOf(3), QStringLiteral("Gyro"));
}

void TestNames::editorKnowsTheName()
{
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewPortName(true, 4, QStringLiteral("VDR"));
    fresh()->slotVRNewPortName(false, 4, QStringLiteral("Gyro"));
    click(matrix.outputButton(4), Qt::RightButton);
    QCOMPARE(editors(fresh()).value(0)->text(), QStringLiteral("VDR"));
    press(fresh(), Qt::Key_Escape);
    click(matrix.labels[4], Qt::RightButton);
    QCOMPARE(editors(fresh()).value(0)->text(), QStringLiteral("Gyro"));
}

// The left button came first and stays down.
void TestNames::leftAndRightOpenTheEditor()
{
    const MatrixView matrix(*fresh());
    const QPoint place(20, 15);
    QMouseEvent event(QEvent::MouseButtonPress, place, matrix.homes[7]->mapToGlobal(place),
                      Qt::RightButton, Qt::LeftButton | Qt::RightButton, Qt::NoModifier);
    QCoreApplication::sendEvent(matrix.homes[7], &event);
    const auto open = editors(fresh());
    QCOMPARE(open.size(), 1);
    QCOMPARE(open.first()->parent(), matrix.homes[7]);
}

void TestNames::noEditor_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<int>("button");

    const QPoint over(40, 15);
    const int right = Qt::RightButton;
    QTest::newRow("placeholder of a label that is away") << 48 + 3 << over << right;
    QTest::newRow("empty cell") << 16 + 6 << over << right;
    QTest::newRow("cell whose label shows in a later channel") << 16 + 1 << over << right;
    QTest::newRow("edge of a home") << 48 + 7 << QPoint(1, 1) << right;
    QTest::newRow("left button on a label") << 48 + 7 << over << int(Qt::LeftButton);
    QTest::newRow("middle button on a label") << 48 + 7 << over << int(Qt::MiddleButton);
}

void TestNames::noEditor()
{
    QFETCH(int, frame);
    QFETCH(QPoint, place);
    QFETCH(int, button);
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewRule(0, 2, 0xf3, 0);
    fresh()->slotVRNewRule(0, 1, 0xf4, 0);
    fresh()->slotVRNewRule(0, 5, 0xf4, 0);
    matrix.outputButton(0)->click();
    click(fresh(), Qt::MouseButton(button), matrix.frame(frame)->mapTo(fresh(), place));
    QVERIFY(!QWidget::mouseGrabber());
    QCOMPARE(editors(fresh()).size(), 0);
}

// Storing a name

void TestNames::outputName_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("text");

    QTest::newRow("port 0") << 0 << "0. VDR";
    QTest::newRow("port 9") << 9 << "9. VDR";
    QTest::newRow("port 11") << 11 << "11. VDR";
}

void TestNames::outputName()
{
    QFETCH(int, port);
    const MatrixView matrix(*fresh());
    RouterModel expected = fresh()->routerModel();
    expected.output_ports[size_t(port)].output_name = QStringLiteral("VDR");

    click(matrix.outputButton(port), Qt::RightButton);
    type(fresh(), QStringLiteral("VDR"));
    QVERIFY(outputNameOf(port).isEmpty()); // only Return stores
    press(fresh(), Qt::Key_Return);

    QVERIFY(fresh()->routerModel() == expected);
    QTEST(matrix.outputButton(port)->text(), "text");
    QVERIFY(!QWidget::mouseGrabber());
    QCOMPARE(editors(fresh()).size(), 0);
    QCOMPARE(matrix.labels[size_t(port)]->text(), QStringLiteral("PORT %1").arg(port));
}

void TestNames::inputName_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("text");

    QTest::newRow("port 0, Return") << 0 << int(Qt::Key_Return) << "0. GPS";
    QTest::newRow("port 9, Return") << 9 << int(Qt::Key_Return) << "9. GPS";
    QTest::newRow("port 11, Enter") << 11 << int(Qt::Key_Enter) << "11. GPS";
}

void TestNames::inputName()
{
    QFETCH(int, port);
    QFETCH(int, key);
    QFETCH(QString, text);
    const MatrixView matrix(*fresh());
    RouterModel expected = fresh()->routerModel();
    expected.input_ports[size_t(port)].input_name = QStringLiteral("GPS");

    click(matrix.labels[size_t(port)], Qt::RightButton);
    type(fresh(), QStringLiteral("GPS"));
    QVERIFY(inputNameOf(port).isEmpty());
    press(fresh(), Qt::Key(key));

    QVERIFY(fresh()->routerModel() == expected);
    QCOMPARE(matrix.labels[size_t(port)]->text(), text);
    QCOMPARE(matrix.placeholders[size_t(port)]->text(), QString(QLatin1Char(' ') + text));
    QVERIFY(!QWidget::mouseGrabber());
    QCOMPARE(editors(fresh()).size(), 0);
    const QString button = matrix.outputButton(port)->text();
    QVERIFY(button.startsWith(QStringLiteral("PORT  ")));
}

void TestNames::typed_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("stored");

    QTest::newRow("eight characters") << "12345678"
                                      << "12345678";
    QTest::newRow("the ninth is lost") << "123456789"
                                       << "12345678";
    QTest::newRow("comma") << "A,B"
                           << "AB";
    QTest::newRow("exclamation mark, dollar, star") << "!A$B*"
                                                    << "AB";
    QTest::newRow("lower case stays") << "Gyro"
                                      << "Gyro";
    QTest::newRow("blanks stay") << " A B "
                                 << " A B ";
    QTest::newRow("signs below the letters") << "#1 (A/B)"
                                             << "#1 (A/B)";
    QTest::newRow("signs above the letters") << "a_b~c[d"
                                             << "abcd";
}

void TestNames::typed()
{
    QFETCH(QString, typed);
    QFETCH(QString, stored);
    const MatrixView matrix(*fresh());
    click(matrix.outputButton(2), Qt::RightButton);
    type(fresh(), typed);
    press(fresh(), Qt::Key_Return);
    QCOMPARE(outputNameOf(2), stored);
    QCOMPARE(matrix.outputButton(2)->text(), QString("2. " + stored));
    click(matrix.labels[2], Qt::RightButton);
    type(fresh(), typed);
    press(fresh(), Qt::Key_Return);
    QCOMPARE(inputNameOf(2), stored);
    QCOMPARE(matrix.labels[2]->text(), QString("2. " + stored));
}

void TestNames::emptyNameBringsBackTheDefault_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("label");

    QTest::newRow("port 0") << 0 << "PORT   0"
                            << "PORT 0";
    QTest::newRow("port 9") << 9 << "PORT   9"
                            << "PORT 9";
    QTest::newRow("port 10") << 10 << "PORT  10"
                             << "PORT 10";
    QTest::newRow("port 11") << 11 << "PORT  11"
                             << "PORT 11";
}

void TestNames::emptyNameBringsBackTheDefault()
{
    QFETCH(int, port);
    QFETCH(QString, button);
    QFETCH(QString, label);
    const MatrixView matrix(*fresh());
    const auto name = [&](QWidget *place, const QString &text) {
        click(place, Qt::RightButton);
        editors(fresh()).value(0)->selectAll();
        press(fresh(), Qt::Key_Delete);
        type(fresh(), text);
        press(fresh(), Qt::Key_Return);
    };
    name(matrix.outputButton(port), QStringLiteral("VDR"));
    name(matrix.labels[size_t(port)], QStringLiteral("GPS"));
    QVERIFY(matrix.outputButton(port)->text() != button);
    QVERIFY(matrix.labels[size_t(port)]->text() != label);

    name(matrix.outputButton(port), QString());
    name(matrix.labels[size_t(port)], QString());
    QCOMPARE(outputNameOf(port), QString());
    QCOMPARE(inputNameOf(port), QString());
    QCOMPARE(matrix.outputButton(port)->text(), button);
    QCOMPARE(matrix.labels[size_t(port)]->text(), label);
    QCOMPARE(matrix.placeholders[size_t(port)]->text(), QString(QLatin1Char(' ') + label));
}

void TestNames::nameOfALabelInACell()
{
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewRule(0, 5, 0x3f, 0);
    matrix.outputButton(0)->click();
    click(matrix.reserve[5], Qt::RightButton);
    type(fresh(), QStringLiteral("Gyro"));
    press(fresh(), Qt::Key_Return);
    QCOMPARE(inputNameOf(3), QStringLiteral("Gyro"));
    QCOMPARE(inputNameOf(5), QString());
    QCOMPARE(matrix.placeOf(3), 37);
    QCOMPARE(matrix.labels[3]->text(), QStringLiteral("3. Gyro"));
    QCOMPARE(matrix.placeholders[3]->text(), QStringLiteral(" 3. Gyro"));
    matrix.outputButton(1)->click();
    QCOMPARE(matrix.placeOf(3), 51);
    QCOMPARE(matrix.labels[3]->text(), QStringLiteral("3. Gyro"));
}

// Leaving the editor otherwise

void TestNames::cancelled_data()
{
    QTest::addColumn<bool>("output");
    QTest::addColumn<bool>("escape");
    QTest::addColumn<int>("button");

    const int left = Qt::LeftButton;
    const int right = Qt::RightButton;
    QTest::newRow("output name, Escape") << true << true << 0;
    QTest::newRow("input name, Escape") << false << true << 0;
    QTest::newRow("output name, click elsewhere") << true << false << left;
    QTest::newRow("input name, click elsewhere") << false << false << left;
    QTest::newRow("output name, right click elsewhere") << true << false << right;
    QTest::newRow("input name, right click elsewhere") << false << false << right;
}

void TestNames::cancelled()
{
    QFETCH(bool, output);
    QFETCH(bool, escape);
    QFETCH(int, button);
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewPortName(true, 3, QStringLiteral("old"));
    fresh()->slotVRNewPortName(false, 3, QStringLiteral("old"));
    const RouterModel before = fresh()->routerModel();
    QWidget *place = matrix.labels[3];
    if (output)
        place = matrix.outputButton(3);
    const QString text = place->property("text").toString();

    click(place, Qt::RightButton);
    type(fresh(), QStringLiteral("er"));
    QMLineEdit *editor = editors(fresh()).value(0);
    QCOMPARE(editor->text(), QStringLiteral("older"));
    // Behind the window's own slot: it has given the mouse back by then.
    bool isReleased = false;
    connect(editor, &QLineEdit::editingFinished, this,
            [&] { isReleased = !QWidget::mouseGrabber() && editor->isHidden(); });
    if (escape)
        press(fresh(), Qt::Key_Escape);
    else
        click(fresh(), Qt::MouseButton(button), QPoint(500, 75));

    QVERIFY(fresh()->routerModel() == before);
    QCOMPARE(place->property("text").toString(), text);
    QVERIFY(isReleased);
    QCOMPARE(editors(fresh()).size(), 0);
}

void TestNames::ends_data()
{
    QTest::addColumn<bool>("output");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("how");

    for (const bool output : {true, false}) {
        for (const char *how : {"Escape", "Tab", "Backtab", "focus", "wheel over a speed", "wheel",
                                "another window", "click"}) {
            const auto row = [&](const char *what, const char *name, const char *typed) {
                QTest::addRow("%s name, %s, %s", output ? "output" : "input", what, how)
                    << output << name << typed << how;
            };
            row("empty", "", "");
            row("empty, typed", "", "AB");
            row("old", "old", "");
            row("old, typed", "old", "er");
            row("refused", "A_B", "");
            row("refused, typed", "A_B", "C");
        }
        // The validator likes a name or it doesn't; the user isn't asked twice.
        QTest::addRow("%s name, refused, Return", output ? "output" : "input") << output << "A_B"
                                                                               << ""
                                                                               << "Return";
        QTest::addRow("%s name, refused, typed, Return", output ? "output" : "input")
            << output << "A_B"
            << "C"
            << "Return";
    }
}

// Nothing is stored, the mouse is free, and who had the focus before has it again.
void TestNames::ends()
{
    QFETCH(bool, output);
    QFETCH(QString, name);
    QFETCH(QString, typed);
    QFETCH(QString, how);
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewPortName(output, 3, name);
    const RouterModel before = fresh()->routerModel();
    fresh()->findChild<QWidget *>(QStringLiteral("pushButton_LoadFile"))->setFocus();
    QWidget *place = matrix.labels[3];
    if (output)
        place = matrix.outputButton(3);
    click(place, Qt::MiddleButton); // a press alone can move the focus
    QWidget *had = fresh()->focusWidget();
    QVERIFY(had);
    click(place, Qt::RightButton);
    const QPointer<QMLineEdit> editor = editors(fresh()).value(0);
    QVERIFY(editor);
    QCOMPARE(editor->text(), name);
    QCOMPARE(QApplication::focusWidget(), editor);
    type(fresh(), typed);

    const auto wheelOver = [&](QWidget *widget) {
        QPoint at = widget->mapTo(fresh(), widget->rect().center());
        QTest::mouseMove(fresh()->windowHandle(), at);
        QWheelEvent wheel(at, fresh()->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(fresh()->windowHandle(), &wheel);
    };
    QWidget *expected = had;
    QWidget other;
    if (how == QLatin1String("focus")) {
        expected = fresh()->findChild<QWidget *>(QStringLiteral("pushButton_SaveFile"));
        expected->setFocus();
    } else if (how == QLatin1String("wheel over a speed")) {
        auto *speed = matrix.widget<QComboBox>("comboBox_output_port_%1", 9);
        wheelOver(speed);
        if (speed->hasFocus())
            expected = speed;
    } else if (how == QLatin1String("wheel")) {
        wheelOver(matrix.homes[8]);
    } else if (how == QLatin1String("another window")) {
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
    } else if (how == QLatin1String("click")) {
        click(fresh(), Qt::LeftButton, QPoint(500, 75));
    } else {
        const QMap<QString, Qt::Key> keys = {{"Escape", Qt::Key_Escape},
                                             {"Tab", Qt::Key_Tab},
                                             {"Backtab", Qt::Key_Backtab},
                                             {"Return", Qt::Key_Return}};
        press(fresh(), keys.value(how));
    }

    QCOMPARE(editors(fresh()).size(), 0);
    QVERIFY(!QWidget::mouseGrabber());
    QCOMPARE(fresh()->focusWidget(), expected);
    RouterModel after = fresh()->routerModel();
    for (size_t port = 0; port < after.output_ports.size(); ++port)
        after.output_ports[port].speed = before.output_ports[port].speed;
    QVERIFY(after == before);
}

void TestNames::firstClickOnABoxCounts_data()
{
    QTest::addColumn<bool>("output");
    QTest::addColumn<QString>("name");

    for (const bool output : {true, false}) {
        for (const char *name : {"", "old", "A_B"})
            QTest::addRow("%s name \"%s\"", output ? "output" : "input", name) << output << name;
    }
}

void TestNames::firstClickOnABoxCounts()
{
    QFETCH(bool, output);
    QFETCH(QString, name);
    ConnectedMatrix *tool = connected();
    MainWindow &window = tool->window();
    window.resize(853, 1000);
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    window.slotVRNewPortName(output, 3, name);
    const RouterModel before = window.routerModel();
    QWidget *place = tool->matrix.labels[3];
    if (output)
        place = tool->matrix.outputButton(3);
    click(place, Qt::MiddleButton); // a press alone can move the focus
    const QWidget *had = window.focusWidget();
    click(place, Qt::RightButton);
    QCOMPARE(editors(&window).size(), 1);

    bool isFree = false;
    bool isClosed = false;
    BoxAnswer::Box box = WindowBench::downloadBox();
    box.click = QMessageBox::NoButton;
    box.whileOpen = [&](QMessageBox &open) {
        isFree = !QWidget::mouseGrabber() && editors(&window).isEmpty();
        click(open.button(QMessageBox::Ok), Qt::LeftButton);
        isClosed = !open.isVisible();
        open.reject();
    };
    tool->bench.boxes.expect(box);
    window.slotVRUpdateVRData();
    QVERIFY(isFree);
    QVERIFY(isClosed);
    QCOMPARE(window.focusWidget(), had);
    QVERIFY(window.routerModel() == before);
}

// The hand can't open a second one; whatever does, the first one ends.
void TestNames::editorOverAnEditor()
{
    const MatrixView matrix(*fresh());
    click(matrix.outputButton(3), Qt::MiddleButton); // a press alone can move the focus
    const QWidget *had = fresh()->focusWidget();
    click(matrix.outputButton(3), Qt::RightButton);
    QMetaObject::invokeMethod(matrix.outputButton(5), "signalPushRightMouse");
    const auto open = editors(fresh());
    QCOMPARE(open.size(), 1);
    QCOMPARE(open.first()->parent(), matrix.outputButton(5));
    QCOMPARE(QApplication::focusWidget(), open.first());
    press(fresh(), Qt::Key_Escape);
    QCOMPARE(editors(fresh()).size(), 0);
    QCOMPARE(fresh()->focusWidget(), had);
}

void TestNames::focusAfterConnecting_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");

    QTest::newRow("Connect") << "pushButton_connect"
                             << "pushButton_connect";
    QTest::newRow("list of ports") << "comboBox_connect_port"
                                   << "pushButton_connect";
    QTest::newRow("rescan") << "pushButton_rescan_ports"
                            << "pushButton_connect";
    QTest::newRow("load") << "pushButton_LoadFile"
                          << "pushButton_LoadFile";
}

// A blank struck too often must not open the dialog of a file.
void TestNames::focusAfterConnecting()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    disconnectWindow();
    WindowBench bench;
    bench.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&bench.window));
    bench.find<QWidget>(before)->setFocus();
    QVERIFY2(bench.connectToRouter(), qPrintable(bench.boxes.report()));
    QCOMPARE(bench.window.focusWidget(), bench.find<QWidget>(after));

    // And when the connection ends under the button of the save.
    bench.find<QWidget>("pushButton_SaveEEPROM")->setFocus();
    bench.router.unplug();
    bench.boxes.expect(WindowBench::timeoutBox());
    QTRY_VERIFY_WITH_TIMEOUT(!bench.window.isConnected(), 10000);
    QCOMPARE(bench.window.focusWidget(), bench.find<QWidget>("pushButton_connect"));
}

void TestNames::clickInsideGoesOn()
{
    const MatrixView matrix(*fresh());
    click(matrix.labels[3], Qt::RightButton);
    type(fresh(), QStringLiteral("Gy"));
    click(matrix.homes[3], Qt::LeftButton);
    QCOMPARE(editors(fresh()).size(), 1);
    type(fresh(), QStringLiteral("ro"));
    press(fresh(), Qt::Key_Return);
    QCOMPARE(inputNameOf(3).size(), 4);
}

void TestNames::clickElsewhereDoesNothingElse()
{
    const MatrixView matrix(*fresh());
    click(matrix.labels[3], Qt::RightButton);
    click(matrix.outputButton(7), Qt::LeftButton);
    QCOMPARE(editors(fresh()).size(), 0);
    QCOMPARE(fresh()->findChild<QLabel *>("label_cur_ch_out")->text(),
             QStringLiteral("< OUTPUT PORT 0 >"));
    click(matrix.outputButton(7), Qt::LeftButton);
    QCOMPARE(fresh()->findChild<QLabel *>("label_cur_ch_out")->text(),
             QStringLiteral("< OUTPUT PORT 7 >"));
}

void TestNames::oneEditorAtATime()
{
    const MatrixView matrix(*fresh());
    click(matrix.outputButton(3), Qt::RightButton);
    click(matrix.labels[5], Qt::RightButton); // ends the first one
    QCOMPARE(editors(fresh()).size(), 0);
    click(matrix.labels[5], Qt::RightButton);
    QCOMPARE(editors(fresh()).size(), 1);
    type(fresh(), QStringLiteral("AIS"));
    press(fresh(), Qt::Key_Return);
    QCOMPARE(inputNameOf(5), QStringLiteral("AIS"));
    QCOMPARE(outputNameOf(3), QString());
    QCOMPARE(outputNameOf(5), QString());
}

void TestNames::windowEndsUnderAnOpenEditor_data()
{
    QTest::addColumn<bool>("output");

    QTest::newRow("output name") << true;
    QTest::newRow("input name") << false;
}

// The editor tells of its end to a window that is still whole.
void TestNames::windowEndsUnderAnOpenEditor()
{
    QFETCH(bool, output);
    const MatrixView matrix(*fresh());
    QWidget *place = matrix.labels[3];
    if (output)
        place = matrix.outputButton(3);
    click(place, Qt::RightButton);
    QMLineEdit *editor = editors(fresh()).value(0);
    QVERIFY(editor);
    type(fresh(), QStringLiteral("AIS"));
    QStringList heard;
    connect(editor, &QLineEdit::editingFinished, this,
            [&] { heard += QString::fromLatin1(editor->window()->metaObject()->className()); });
    closeFresh();
    heard.removeDuplicates();
    QCOMPARE(heard, QStringList("MainWindow"));
    QVERIFY(!QWidget::mouseGrabber());
}

// Names and the router

void TestNames::namesFromTheRouterWaitForTheScreen()
{
    ConnectedMatrix *tool = connected();
    const QString odd = QStringLiteral("a_long[name]!");
    tool->window().slotVRNewPortName(true, 3, QStringLiteral("VDR"));
    tool->window().slotVRNewPortName(false, 11, odd);
    QCOMPARE(tool->window().routerModel().input_ports[11].input_name, odd);
    QCOMPARE(tool->matrix.outputButton(3)->text(), QStringLiteral("PORT   3"));
    QCOMPARE(tool->matrix.labels[11]->text(), QStringLiteral("PORT 11"));
    tool->bench.boxes.expect(WindowBench::downloadBox());
    tool->window().slotVRUpdateVRData();
    QCOMPARE(tool->matrix.outputButton(3)->text(), QStringLiteral("3. VDR"));
    QCOMPARE(tool->matrix.labels[11]->text(), QStringLiteral("11. a_long[name]!"));
    QCOMPARE(tool->matrix.placeholders[11]->text(), QStringLiteral(" 11. a_long[name]!"));
}

void TestNames::namesAreNotSent()
{
    ConnectedMatrix *tool = connected();
    tool->window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&tool->window()));
    click(tool->matrix.outputButton(3), Qt::RightButton);
    type(&tool->window(), QStringLiteral("VDR"));
    press(&tool->window(), Qt::Key_Return);
    click(tool->matrix.homes[4], Qt::RightButton);
    type(&tool->window(), QStringLiteral("GPS"));
    press(&tool->window(), Qt::Key_Return);
    QCOMPARE(tool->window().routerModel().output_ports[3].output_name, QStringLiteral("VDR"));
    QCOMPARE(tool->window().routerModel().input_ports[4].input_name, QStringLiteral("GPS"));
    QCOMPARE(tool->sent(), QList<QByteArray>{});
}

QTEST_MAIN(TestNames)
#include "tst_names.moc"
