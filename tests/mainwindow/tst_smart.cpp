#include "editorlines.h"

#include "editors/smartdlg.h"
#include "support/indialog.h"

#include <QDialogButtonBox>
#include <QRadioButton>

#include <memory>

/*! The smart function of a channel: its editor, its button's colour, and what the router hears. */
class tst_smart : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void everyChannel_data();
    void everyChannel();
    void everyFunction_data();
    void everyFunction();
    void unknownValue_data();
    void unknownValue();
    void cancelSendsNothing();
    void aisNeedsItsFirmware_data();
    void aisNeedsItsFirmware();
    void aisOfAnEarlierConnection();
    void aisOfTheDownloadedFirmware();
    void routerSpeaksMeanwhile();
    void colors_data();
    void colors();
    void unconnected();
    void unknownSender();

private:
    MainWindow &window() { return m_connected->window(); }
    int functionOf(int port, int channel)
    {
        return window()
            .routerModel()
            .output_ports[size_t(port)]
            .channels[size_t(channel)]
            .smart_function;
    }
    QPushButton *button(int channel) const
    {
        return m_connected->matrix.widget<QPushButton>("pushButton_channel_%1_smart", channel);
    }
    void load(int port, int channel, int value)
    {
        window().slotVRNewRule(quint8(port), channel, quint8(0xf0 | channel), quint8(value << 4));
    }

    std::unique_ptr<ConnectedMatrix> m_connected;
};

namespace {

const QString amber = QStringLiteral("QPushButton{background-color: rgb(255,199,1); }"
                                     "QPushButton:pressed{background-color: rgb(255,199,1); }");
const QString plain = QStringLiteral("QPushButton{}QPushButton:pressed{}");

const char *const radioNames[] = {"radioButton_off",   "radioButton_gps",  "radioButton_hdt",
                                  "radioButton_depth", "radioButton_arpa", "radioButton_ais"};

QRadioButton *radio(const SmartDlg &dialog, int value)
{
    return dialog.findChild<QRadioButton *>(QString::fromLatin1(radioNames[value]));
}

void press(const SmartDlg &dialog, QDialogButtonBox::StandardButton choice)
{
    dialog.findChild<QDialogButtonBox *>()->button(choice)->click();
}

// Opens the editor, chooses \a value (-1: leaves it as it is) and presses Ok.
bool choose(QAbstractButton *button, int value)
{
    return inDialog<SmartDlg>(button, [value](SmartDlg &dialog) {
        if (value >= 0)
            radio(dialog, value)->click();
        press(dialog, QDialogButtonBox::Ok);
    });
}

QByteArray rule(int port, int channel, int value)
{
    const QByteArray word =
        'F' + QByteArray::number(channel, 16).toUpper() + QByteArray::number(value) + '0';
    return ruleSentence(port, {{channel, word}});
}

} // namespace

void tst_smart::initTestCase()
{
    m_connected = std::make_unique<ConnectedMatrix>();
}

void tst_smart::init()
{
    m_connected->reset();
}

void tst_smart::cleanup()
{
    QVERIFY2(m_connected->bench.boxes.isDone(), qPrintable(m_connected->bench.boxes.report()));
}

void tst_smart::everyChannel_data()
{
    QTest::addColumn<int>("channel");

    for (int channel = 0; channel < MatrixView::size; ++channel)
        QTest::addRow("channel %d", channel) << channel;
}

void tst_smart::everyChannel()
{
    QFETCH(int, channel);
    load(9, channel, 0);
    m_connected->start(9);
    QCOMPARE(button(channel)->styleSheet(), plain);
    QVERIFY(choose(button(channel), 3));
    QCOMPARE(functionOf(9, channel), 3);
    QCOMPARE(button(channel)->styleSheet(), amber);
    QCOMPARE(m_connected->sent(), QList<QByteArray>({rule(9, channel, 3)}));
}

void tst_smart::everyFunction_data()
{
    QTest::addColumn<int>("value");

    const char *const names[] = {"OFF", "GPS", "HEADING", "DEPTH", "ARPA", "AIS"};
    for (int value = 0; value < 6; ++value)
        QTest::newRow(names[value]) << value;
}

void tst_smart::everyFunction()
{
    QFETCH(int, value);
    load(9, 2, value == 4 ? 1 : 4);
    m_connected->start(9);
    QVERIFY(choose(button(2), value));
    QCOMPARE(functionOf(9, 2), value);
    QCOMPARE(button(2)->styleSheet(), value == 0 ? plain : amber);
    QCOMPARE(m_connected->sent(), QList<QByteArray>({rule(9, 2, value)}));

    // Accepted as it is, it goes out again.
    QVERIFY(choose(button(2), -1));
    QCOMPARE(functionOf(9, 2), value);
    QCOMPARE(m_connected->sent(), QList<QByteArray>({rule(9, 2, value)}));
}

void tst_smart::unknownValue_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<int>("after");

    QTest::newRow("6 and cancel") << 6 << false << 6;
    QTest::newRow("6 and ok") << 6 << true << 0;
    QTest::newRow("7 and cancel") << 7 << false << 7;
    QTest::newRow("7 and ok") << 7 << true << 0;
}

void tst_smart::unknownValue()
{
    QFETCH(int, value);
    QFETCH(bool, ok);
    QFETCH(int, after);
    load(9, 2, value);
    m_connected->start(9);
    QCOMPARE(button(2)->styleSheet(), amber);
    QVERIFY(inDialog<SmartDlg>(button(2), [ok](SmartDlg &dialog) {
        QVERIFY(radio(dialog, 0)->isChecked());
        press(dialog, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
    }));
    QCOMPARE(functionOf(9, 2), after);
    QCOMPARE(button(2)->styleSheet(), after == 0 ? plain : amber);
    QCOMPARE(m_connected->sent(), ok ? QList<QByteArray>({rule(9, 2, 0)}) : QList<QByteArray>());
}

void tst_smart::cancelSendsNothing()
{
    load(9, 2, 1);
    m_connected->start(9);
    QVERIFY(inDialog<SmartDlg>(button(2), [this](SmartDlg &dialog) {
        QCOMPARE(dialog.parentWidget(), static_cast<QWidget *>(&window()));
        QVERIFY(dialog.isModal());
        QVERIFY(radio(dialog, 1)->isChecked());
        radio(dialog, 3)->click();
        press(dialog, QDialogButtonBox::Cancel);
    }));
    QCOMPARE(functionOf(9, 2), 1);
    QCOMPARE(m_connected->sent(), QList<QByteArray>());
}

void tst_smart::aisNeedsItsFirmware_data()
{
    QTest::addColumn<bool>("connected");
    QTest::addColumn<QPoint>("version"); // x.y, or -1 for none
    QTest::addColumn<bool>("offered");

    const QPoint none(-1, -1);
    QTest::newRow("off line, never connected") << false << none << true;
    QTest::newRow("off line, the last was 3.4") << false << QPoint(3, 4) << true;
    QTest::newRow("off line, the last was 4.0") << false << QPoint(4, 0) << true;
    QTest::newRow("connected, not known yet") << true << none << false;
    QTest::newRow("connected to 0.0") << true << QPoint(0, 0) << false;
    QTest::newRow("connected to 2.9") << true << QPoint(2, 9) << false;
    QTest::newRow("connected to 3.0") << true << QPoint(3, 0) << false;
    QTest::newRow("connected to 3.4") << true << QPoint(3, 4) << false;
    QTest::newRow("connected to 3.5") << true << QPoint(3, 5) << true;
    QTest::newRow("connected to 3.10") << true << QPoint(3, 10) << true;
    QTest::newRow("connected to 4.0") << true << QPoint(4, 0) << true;
}

void tst_smart::aisNeedsItsFirmware()
{
    QFETCH(bool, connected);
    QFETCH(QPoint, version);
    QFETCH(bool, offered);
    MainWindow alone;
    alone.slotVRNewRule(0, 2, 0xf2, 0x10);
    alone.slotVRNewRule(0, 3, 0xf3, 0x50);
    alone.findChild<QPushButton *>(QStringLiteral("pushButton_output_port_0"))->click();
    // What the link tells the window; there is no line behind it.
    if (connected)
        alone.slotConnectEstablish(0);
    if (version.x() >= 0)
        alone.slotVRVersion(uint(version.x()), uint(version.y()));
    for (const int channel : {2, 3}) {
        auto *smart = alone.findChild<QPushButton *>(
            QStringLiteral("pushButton_channel_%1_smart").arg(channel));
        QVERIFY(inDialog<SmartDlg>(smart, [&](SmartDlg &dialog) {
            for (int value = 0; value < 6; ++value)
                QCOMPARE(radio(dialog, value)->isEnabled(), value < 5 || offered);
            QVERIFY(radio(dialog, channel == 2 ? 1 : 5)->isChecked());
            press(dialog, QDialogButtonBox::Ok);
        }));
    }
    const auto &channels = alone.routerModel().output_ports[0].channels;
    QCOMPARE(int(channels[2].smart_function), 1);
    QCOMPARE(int(channels[3].smart_function), 5);
}

// The version of the last router says nothing of the one that is connected now.
void tst_smart::aisOfAnEarlierConnection()
{
    MainWindow alone;
    alone.slotVRNewRule(0, 2, 0xf2, 0x10);
    alone.findChild<QPushButton *>(QStringLiteral("pushButton_output_port_0"))->click();
    alone.slotConnectEstablish(0);
    alone.slotVRVersion(4, 0);
    m_connected->bench.boxes.expect(WindowBench::timeoutBox());
    alone.slotTimeOutConnectPort();
    alone.slotConnectEstablish(0);
    auto *smart = alone.findChild<QPushButton *>(QStringLiteral("pushButton_channel_2_smart"));
    QVERIFY(inDialog<SmartDlg>(smart, [](SmartDlg &dialog) {
        QVERIFY(!radio(dialog, 5)->isEnabled());
        dialog.reject();
    }));
}

// The same over the wire: the simulated router has told its version in the download.
void tst_smart::aisOfTheDownloadedFirmware()
{
    load(9, 2, 1);
    m_connected->start(9);
    QVERIFY(choose(button(2), 5));
    QCOMPARE(functionOf(9, 2), 5);

    m_connected->bench.router.sendChecked("$VRVER,3.4");
    const auto *label = m_connected->bench.find<QLabel>(QStringLiteral("label_firmware_version"));
    QTRY_COMPARE(label->text(), QStringLiteral("fw: v.3.4"));
    QVERIFY(inDialog<SmartDlg>(button(2), [](SmartDlg &dialog) {
        QVERIFY(!radio(dialog, 5)->isEnabled());
        QVERIFY(radio(dialog, 5)->isChecked());
        press(dialog, QDialogButtonBox::Cancel);
    }));
    m_connected->bench.router.sendChecked("$VRVER,3.5");
    QTRY_COMPARE(label->text(), QStringLiteral("fw: v.3.5"));
    m_connected->sent();
}

void tst_smart::routerSpeaksMeanwhile()
{
    for (const bool ok : {false, true}) {
        load(9, 2, 1);
        m_connected->start(9);
        QVERIFY(inDialog<SmartDlg>(button(2), [&](SmartDlg &dialog) {
            m_connected->bench.router.sendLine(rule(9, 2, 4));
            QTRY_COMPARE(functionOf(9, 2), 4);
            QVERIFY(radio(dialog, 1)->isChecked());
            press(dialog, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
        }));
        QCOMPARE(functionOf(9, 2), ok ? 1 : 4);
        m_connected->sent();
    }
}

void tst_smart::colors_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("inUse");
    QTest::addColumn<QString>("sheet");

    QTest::newRow("none") << 0 << true << plain;
    for (int value = 1; value <= 7; ++value)
        QTest::addRow("%d", value) << value << true << amber;
    QTest::newRow("a channel without an input") << 3 << false << plain;
}

void tst_smart::colors()
{
    QFETCH(int, value);
    QFETCH(bool, inUse);
    QFETCH(QString, sheet);
    window().slotVRNewRule(9, 2, inUse ? 0xf2 : 0xff, quint8(value << 4));
    m_connected->start(9);
    QCOMPARE(button(2)->styleSheet(), sheet);
    QCOMPARE(button(2)->isEnabled(), inUse);
    window().SetSmartButtonColor(2, false);
    QCOMPARE(button(2)->styleSheet(), plain);
    window().SetSmartButtonColor(2, true);
    QCOMPARE(button(2)->styleSheet(), value == 0 ? plain : amber);
    window().SetSmartButtonColor(12, true);
    window().SetSmartButtonColor(255, true);
}

void tst_smart::unconnected()
{
    MainWindow alone;
    alone.slotVRNewRule(0, 11, 0xfb, 0);
    alone.findChild<QPushButton *>(QStringLiteral("pushButton_output_port_0"))->click();
    auto *smart = alone.findChild<QPushButton *>(QStringLiteral("pushButton_channel_11_smart"));
    QVERIFY(choose(smart, 5));
    QCOMPARE(int(alone.routerModel().output_ports[0].channels[11].smart_function), 5);
    QCOMPARE(smart->styleSheet(), amber);
    QVERIFY(choose(smart, 0));
    QCOMPARE(smart->styleSheet(), plain);
}

void tst_smart::unknownSender()
{
    load(9, 2, 1);
    m_connected->start(9);
    window().slotSmartClicked();
    QCOMPARE(functionOf(9, 2), 1);
    QCOMPARE(m_connected->sent(), QList<QByteArray>());
}

QTEST_MAIN(tst_smart)
#include "tst_smart.moc"
