#include "matrixtest.h"

#include <QComboBox>

/*! Speeds of the output ports, in a window that is not connected but where lines are sent. */
class TestSpeeds : public MatrixTest
{
    Q_OBJECT

private slots:
    void speedChoices();
    void chosenSpeed_data();
    void chosenSpeed();
    void speedByKeyboard();
    void sameSpeedSendsNothing();
    void noSpeed_data();
    void noSpeed();
    void anotherTextIsNoOtherSpeed();
    void chosenSpeedOffline();
    void speedFromTheRouter_data();
    void speedFromTheRouter();
    void refusedSpeed_data();
    void refusedSpeed();
    void speedFromTheRouterOffline();
};

void TestSpeeds::speedChoices()
{
    const MatrixView matrix(*fresh());
    const QStringList speeds = {"2400", "4800", "9600", "19200", "38400", "57600", "115200"};
    for (int port = 0; port < MatrixView::size; ++port) {
        const auto *box = matrix.widget<QComboBox>("comboBox_output_port_%1", port);
        QStringList items;
        for (int i = 0; i < box->count(); ++i)
            items += box->itemText(i);
        QCOMPARE(items, speeds);
        QCOMPARE(box->currentIndex(), 1);
        QVERIFY(!box->isEditable());
    }
}

void TestSpeeds::chosenSpeed_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("index");
    QTest::addColumn<uint>("speed");
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("2400") << 6 << 0 << 2400U << QByteArray("$VRSPD,6,2400*73\r\n");
    QTest::newRow("9600") << 6 << 2 << 9600U << checkedSentence("$VRSPD,6,9600");
    QTest::newRow("19200") << 6 << 3 << 19200U << checkedSentence("$VRSPD,6,19200");
    QTest::newRow("38400") << 6 << 4 << 38400U << checkedSentence("$VRSPD,6,38400");
    QTest::newRow("57600") << 6 << 5 << 57600U << checkedSentence("$VRSPD,6,57600");
    QTest::newRow("115200") << 6 << 6 << 115200U << checkedSentence("$VRSPD,6,115200");
    QTest::newRow("port 0") << 0 << 4 << 38400U << checkedSentence("$VRSPD,0,38400");
    QTest::newRow("port 11") << 11 << 4 << 38400U << checkedSentence("$VRSPD,11,38400");
}

void TestSpeeds::chosenSpeed()
{
    QFETCH(int, port);
    QFETCH(int, index);
    QFETCH(uint, speed);
    QFETCH(QByteArray, line);
    ConnectedMatrix *tool = connected();
    RouterModel expected = tool->window().routerModel();
    expected.output_ports[size_t(port)].speed = speed;

    tool->matrix.widget<QComboBox>("comboBox_output_port_%1", port)->setCurrentIndex(index);

    QVERIFY(tool->window().routerModel() == expected);
    for (int i = 0; i < MatrixView::size; ++i) {
        const QString text = i == port ? QString::number(speed) : QStringLiteral("4800");
        QCOMPARE(tool->matrix.speedLabel(i)->text(), text);
    }
    QCOMPARE(tool->sent(), QList<QByteArray>{line});
}

void TestSpeeds::speedByKeyboard()
{
    ConnectedMatrix *tool = connected();
    auto *box = tool->matrix.widget<QComboBox>("comboBox_output_port_%1", 2);
    QTest::keyClick(box, Qt::Key_Down);
    QTest::keyClick(box, Qt::Key_Down);
    QTest::keyClick(box, Qt::Key_Up);
    QCOMPARE(tool->window().routerModel().output_ports[2].speed, 9600U);
    const QByteArray slow = checkedSentence("$VRSPD,2,9600");
    QCOMPARE(tool->sent(), (QList<QByteArray>{slow, checkedSentence("$VRSPD,2,19200"), slow}));
}

void TestSpeeds::sameSpeedSendsNothing()
{
    ConnectedMatrix *tool = connected();
    tool->matrix.widget<QComboBox>("comboBox_output_port_%1", 2)->setCurrentIndex(1);
    QCOMPARE(tool->sent(), QList<QByteArray>{});
}

void TestSpeeds::noSpeed_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("no number") << "fast";
    QTest::newRow("zero") << "0";
    QTest::newRow("nothing") << "";
    QTest::newRow("a number and more") << "9600 baud";
}

// An entry that is no speed leaves everything as it was.
void TestSpeeds::noSpeed()
{
    QFETCH(QString, text);
    ConnectedMatrix *tool = connected();
    const RouterModel before = tool->window().routerModel();
    auto *box = tool->matrix.widget<QComboBox>("comboBox_output_port_%1", 2);
    box->addItem(text);
    box->setCurrentIndex(7);
    QVERIFY(tool->window().routerModel() == before);
    QCOMPARE(tool->matrix.speedLabel(2)->text(), QStringLiteral("4800"));
    QCOMPARE(tool->sent(), QList<QByteArray>{});
    box->setCurrentIndex(1);
    box->removeItem(7);
}

void TestSpeeds::anotherTextIsNoOtherSpeed()
{
    ConnectedMatrix *tool = connected();
    const RouterModel before = tool->window().routerModel();
    auto *box = tool->matrix.widget<QComboBox>("comboBox_output_port_%1", 2);
    box->setItemText(1, QStringLiteral("9600"));
    QVERIFY(tool->window().routerModel() == before);
    QCOMPARE(tool->matrix.speedLabel(2)->text(), QStringLiteral("4800"));
    QCOMPARE(tool->sent(), QList<QByteArray>{});
    box->setItemText(1, QStringLiteral("4800"));
}

void TestSpeeds::chosenSpeedOffline()
{
    const MatrixView matrix(*fresh());
    matrix.widget<QComboBox>("comboBox_output_port_%1", 5)->setCurrentIndex(6);
    QCOMPARE(fresh()->routerModel().output_ports[5].speed, 115200U);
    QCOMPARE(matrix.speedLabel(5)->text(), QStringLiteral("115200"));
    QVERIFY(matrix.speedLabel(5)->isHidden());
}

void TestSpeeds::speedFromTheRouter_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<uint>("speed");
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("echo");

    QTest::newRow("2400") << 4 << 2400U << 0 << true;
    QTest::newRow("4800, as it is") << 4 << 4800U << 1 << false;
    QTest::newRow("9600") << 4 << 9600U << 2 << true;
    QTest::newRow("19200") << 4 << 19200U << 3 << true;
    QTest::newRow("38400") << 4 << 38400U << 4 << true;
    QTest::newRow("57600") << 4 << 57600U << 5 << true;
    QTest::newRow("115200") << 4 << 115200U << 6 << true;
    QTest::newRow("port 11") << 11 << 9600U << 2 << true;
}

void TestSpeeds::speedFromTheRouter()
{
    QFETCH(int, port);
    QFETCH(uint, speed);
    QFETCH(int, index);
    QFETCH(bool, echo);
    ConnectedMatrix *tool = connected();
    RouterModel expected = tool->window().routerModel();
    expected.output_ports[size_t(port)].speed = speed;

    const QByteArray body = QStringLiteral("$VRSPD,%1,%2").arg(port).arg(speed).toLatin1();
    tool->bench.router.sendChecked(body);
    // A second one, of another port, tells that the first has come.
    tool->bench.router.sendChecked("$VRSPD,7,57600");
    QTRY_COMPARE(tool->window().routerModel().output_ports[7].speed, 57600U);
    expected.output_ports[7].speed = 57600;

    QVERIFY(tool->window().routerModel() == expected);
    QCOMPARE(tool->matrix.widget<QComboBox>("comboBox_output_port_%1", port)->currentIndex(),
             index);
    QCOMPARE(tool->matrix.speedLabel(port)->text(), QString::number(speed));
    QList<QByteArray> lines = {checkedSentence("$VRSPD,7,57600")};
    if (echo)
        lines.prepend(checkedSentence(body));
    QCOMPARE(tool->sent(), lines);
}

void TestSpeeds::refusedSpeed_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<uint>("speed");

    QTest::newRow("1200 baud") << 4 << 1200U;
    QTest::newRow("no baud") << 4 << 0U;
    QTest::newRow("nearly a speed") << 4 << 9601U;
    QTest::newRow("the greatest number") << 4 << 4294967295U;
    QTest::newRow("port 12") << 12 << 9600U;
    QTest::newRow("port 15") << 15 << 9600U;
    QTest::newRow("port 255") << 255 << 9600U;
}

void TestSpeeds::refusedSpeed()
{
    QFETCH(int, port);
    QFETCH(uint, speed);
    ConnectedMatrix *tool = connected();
    const RouterModel before = tool->window().routerModel();
    tool->window().slotVRNewPortSpeed(quint8(port), speed);
    QVERIFY(tool->window().routerModel() == before);
    for (int i = 0; i < MatrixView::size; ++i) {
        QCOMPARE(tool->matrix.widget<QComboBox>("comboBox_output_port_%1", i)->currentIndex(), 1);
        QCOMPARE(tool->matrix.speedLabel(i)->text(), QStringLiteral("4800"));
    }
    QCOMPARE(tool->sent(), QList<QByteArray>{});
}

void TestSpeeds::speedFromTheRouterOffline()
{
    const MatrixView matrix(*fresh());
    fresh()->slotVRNewPortSpeed(9, 2400);
    QCOMPARE(fresh()->routerModel().output_ports[9].speed, 2400U);
    QCOMPARE(matrix.widget<QComboBox>("comboBox_output_port_%1", 9)->currentText(),
             QStringLiteral("2400"));
    QCOMPARE(matrix.speedLabel(9)->text(), QStringLiteral("2400"));
}

QTEST_MAIN(TestSpeeds)
#include "tst_speeds.moc"
