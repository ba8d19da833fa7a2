#include "mainwindow/mainwindow.h"
#include "platform/serialports.h"
#include "support/formcheck.h"
#include "widgets/screenarea.h"
#include "widgets/uiscale.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QMap>
#include <QMetaMethod>
#include <QPushButton>
#include <QScopeGuard>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

/*! The window's frame: start, geometry, scale, list of ports. Runs at 96 and at 144 dots per inch.
 */
class tst_shell : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void signalsAndSlots();
    void title();
    void topBar_data();
    void topBar();
    void windowSizes();
    void connectionLabelsAreEmpty();
    void styleSheets_data();
    void styleSheets();
    void logoIsTheServiceButton();
    void nothingReachesBeyondItsParent();
    void labelsShowTheirWholeText();
    void lowWindowScrolls();

    void rescanKeepsTheCurrentPort();
    void rescanSortsByCase();
    void rescanFallsBackToTheFirst();
    void noPortDisablesConnect();

private:
    void publish(const QString &name);
    QStringList listed(const MainWindow &window) const;

    QTemporaryDir m_runtime;
    QDir m_folder;
    QList<int> m_terminals;
    double m_scale = 1;
};

namespace {

QRect span(int left, int top, int right, int bottom)
{
    return QRect(QPoint(left, top), QPoint(right, bottom));
}

int cut(int length, double factor)
{
    return int(length * factor);
}

} // namespace

void tst_shell::initTestCase()
{
    QVERIFY(m_runtime.isValid());
    QVERIFY(QFile::setPermissions(m_runtime.path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime.path()));
    QVERIFY(QDir(m_runtime.path()).mkdir(QStringLiteral("tk7-ports")));
    m_folder.setPath(m_runtime.filePath(QStringLiteral("tk7-ports")));
    m_scale = QGuiApplication::primaryScreen()->logicalDotsPerInchX() / 96.0;
    // CTest runs this program once for each resolution.
    if (qEnvironmentVariableIsSet("TK7_EXPECTED_SCALE"))
        QCOMPARE(m_scale, qEnvironmentVariable("TK7_EXPECTED_SCALE").toDouble());
    QCOMPARE(ui_scale(), m_scale);
}

void tst_shell::cleanup()
{
    for (const QString &link : m_folder.entryList(QDir::Files | QDir::System))
        QFile::remove(m_folder.filePath(link));
    for (int terminal : qAsConst(m_terminals))
        ::close(terminal);
    m_terminals.clear();
}

void tst_shell::publish(const QString &name)
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(master >= 0);
    QVERIFY(grantpt(master) == 0 && unlockpt(master) == 0);
    m_terminals += master;
    QVERIFY(QFile::link(QFile::decodeName(ptsname(master)), m_folder.filePath(name)));
}

QStringList tst_shell::listed(const MainWindow &window) const
{
    const auto *box = window.findChild<QComboBox *>(QStringLiteral("comboBox_connect_port"));
    QStringList names;
    for (int i = 0; i < box->count(); ++i)
        names += box->itemText(i);
    return names;
}

// The window's own, as its meta-object has them.
void tst_shell::signalsAndSlots()
{
    QStringList expected =
        QString::fromLatin1(
            "slotRescanPorts() slotConnectPort() slotProgress(int) "
            "slotConnectEstablish(uchar) slotErrorOpenPort() slotTimeOutConnectPort() "
            "slotConnectBusy() slotVRNewRule(uchar,int,uchar,uchar) "
            "slotVRNewFilterMask(uchar,int,uint) slotVRNewHdr(uchar,int,QString) "
            "slotVRNewFilterStr(uchar,QString) slotVRNewPortSpeed(uchar,uint) "
            "slotVRNewPortName(bool,uchar,QString) slotVRUpdateVRData() "
            "slotVRVersion(uint,uint) slotVRMode(QString) slotVRErrorsCode(uint,uint) "
            "slotUsedFlashBank(uint) slotVRLockStatus(bool,uchar) slotVRSendDisconnect() "
            "slotSaveToEeprom() slotVRSaveToEepromOk() slotVRSaveToEepromError() "
            "slotServiceClicked() slotRequestStatusErrors(uint) slotClearStatusErrors() "
            "slotSendLockPassword(QString) slotSendUnlockPassword(QString) "
            "slotSendRemovePassword() slotVRViewPassword() slotSendMode(QString) "
            "slotLockClicked() slotStartFirmwareUpdate() slotCancelFirmwareUpdate() "
            "slotReadyFirmwareUpdate() slotFirmwareError(uint) slotFirmwareOk() "
            "slotFirmwarePacket(uint) slotFirmwareTimeout() slotSaveToFile() "
            "slotLoadFromFile() slotPressEvent(DragFrame*) slotReleaseEvent(DragFrame*) "
            "slotEnterEvent(DragFrame*) slotDropEvent(DragFrame*) "
            "slotOutputPortButttonClicked() slotChannelButtonClicked() "
            "slotCrsCheckChanged(bool) slotReturnInputPorts() "
            "SetSmartButtonColor(uchar,bool) slotFilterSetClicked() "
            "slotRequestFilterList(uint) slotFilterCheckChanged(bool) "
            "slotHdrCheckChanged(bool) slotHdrSetClicked() slotSmartClicked() "
            "slotPortSpeedChanged(QString) slotInputPortEditName(DragFrame*) "
            "slotOutputPortButtonRightClicked() slotEditPortNameOk() "
            "slotEditOutputPortNameOk() slotEditPortNameFinish() slotVRPortView(uchar) "
            "slotNMEAReceive(QString) slotStringTimer() slotPlayNMEA() slotCRSError() "
            "slotButSmallStatus() slotButBigStatus() slotButViewSpeed()")
            .split(' ');
    QStringList slotNames;
    QStringList signalNames;
    const QMetaObject &window = MainWindow::staticMetaObject;
    for (int i = window.methodOffset(); i < window.methodCount(); ++i) {
        const QMetaMethod method = window.method(i);
        QStringList &names = method.methodType() == QMetaMethod::Signal ? signalNames : slotNames;
        names += QString::fromLatin1(method.methodSignature());
    }
    expected.sort();
    slotNames.sort();
    QCOMPARE(signalNames, QStringList("exitWaitSaveDlg()"));
    QCOMPARE(slotNames, expected);
}

void tst_shell::title()
{
    MainWindow window;
    QCOMPARE(window.windowTitle(), QStringLiteral("Brelland Sea Works - TK-7 v4.0"));
}

void tst_shell::topBar_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("frame") << "frame" << span(4, 0, 848, 46) << QString() << true;
    QTest::newRow("label") << "label_com_port" << span(8, 6, 72, 40) << "COM port:" << true;
    QTest::newRow("ports") << "comboBox_connect_port" << span(80, 6, 169, 40) << QString() << true;
    QTest::newRow("rescan") << "pushButton_rescan_ports" << span(180, 6, 269, 40) << "Rescan Ports"
                            << true;
    QTest::newRow("connect") << "pushButton_connect" << span(280, 6, 369, 40) << "Connect" << true;
    QTest::newRow("save in router")
        << "pushButton_SaveEEPROM" << span(410, 6, 499, 40) << "Save Rules\nin Router" << false;
    QTest::newRow("save to file") << "pushButton_SaveFile" << span(510, 6, 599, 40)
                                  << "Save Rules\nto File" << true;
    QTest::newRow("load from file")
        << "pushButton_LoadFile" << span(610, 6, 699, 40) << "Load Rules\nfrom File" << true;
    QTest::newRow("service") << "pushButton_Service" << span(740, 6, 829, 40) << QString() << true;

    QTest::newRow("label_3") << "label_3" << span(4, 6, 81, 21) << QString() << true;
    QTest::newRow("status") << "label_vr48_status" << span(85, 6, 157, 21) << QString() << true;
    QTest::newRow("version") << "label_firmware_version" << span(4, 22, 66, 42) << QString()
                             << true;
    QTest::newRow("port") << "label_vr48_port" << span(168, 6, 222, 21) << QString() << true;
    QTest::newRow("errors") << "label_vr48_errors" << span(168, 22, 214, 42) << QString() << true;
    QTest::newRow("mode") << "label_firmware_mode" << span(66, 22, 152, 42) << QString() << true;
    QTest::newRow("flash page") << "label_vr48_flash_page" << span(215, 22, 228, 42) << QString()
                                << true;
}

void tst_shell::topBar()
{
    QFETCH(QString, name);
    QFETCH(QRect, place);
    QFETCH(QString, text);
    QFETCH(bool, enabled);

    publish(QStringLiteral("port"));
    MainWindow window;
    window.show();
    const auto *widget = window.findChild<QWidget *>(name);
    QVERIFY(widget);
    QCOMPARE(widget->pos(), QPoint(cut(place.x(), m_scale), cut(place.y(), m_scale)));
    QCOMPARE(widget->size(), QSize(cut(place.width(), m_scale), cut(place.height(), m_scale)));
    QCOMPARE(widget->isEnabled(), enabled);
    const QVariant shown = widget->property("text");
    if (shown.isValid())
        QCOMPARE(shown.toString(), text);
}

void tst_shell::windowSizes()
{
    MainWindow window;
    const int width = cut(853, m_scale);
    const int panel = cut(197, m_scale);
    QCOMPARE(window.minimumWidth(), width);
    QCOMPARE(window.maximumWidth(), width);
    QCOMPARE(window.minimumHeight(), int(47 * m_scale + panel));

    const QRect available = availableArea(&window);
    const int titleBar = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const int full = cut(600, m_scale) + panel;
    const bool isLow = full >= available.height() - titleBar - 9;
    QCOMPARE(window.height(), isLow ? available.height() - titleBar - 10 : full);
}

void tst_shell::connectionLabelsAreEmpty()
{
    MainWindow window;
    const auto *frame = window.findChild<QFrame *>(QStringLiteral("frame_output_ports_12"));
    QVERIFY(frame);
    const auto labels = frame->findChildren<QLabel *>();
    QCOMPARE(labels.size(), 7);
    for (const QLabel *label : labels)
        QCOMPARE(label->text(), QString());
}

void tst_shell::styleSheets_data()
{
    QTest::addColumn<QString>("sheet");
    const QString orange = QStringLiteral("QLabel { color : rgb(255,95,0); }");
    const QString blue = QStringLiteral("QLabel { color : rgb(5,0,180); }");
    QTest::newRow("label_input_ports") << orange;
    QTest::newRow("label_input_channels") << orange;
    QTest::newRow("label_vr48_status") << orange;
    QTest::newRow("label_cur_ch_out") << blue;
    QTest::newRow("label_output_ports") << blue;
}

void tst_shell::styleSheets()
{
    QFETCH(QString, sheet);
    MainWindow window;
    const auto *label = window.findChild<QLabel *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(label);
    QCOMPARE(label->styleSheet(), sheet);
}

void tst_shell::logoIsTheServiceButton()
{
    MainWindow window;
    window.show();
    const auto *button = window.findChild<QPushButton *>(QStringLiteral("pushButton_Service"));
    QVERIFY(!button->icon().isNull());
    QCOMPARE(button->iconSize(), button->size());
    QCOMPARE(QPixmap(QStringLiteral(":/icons/logo-180x60-transparent.png")).size(), QSize(180, 60));
}

// The list of the monitor follows the height of the window, the rest has its stated place.
void tst_shell::nothingReachesBeyondItsParent()
{
    MainWindow window;
    window.show();
    window.resize(window.width(), cut(600, m_scale) + cut(197, m_scale));
    QCoreApplication::processEvents();
    const auto frames = window.findChildren<QFrame *>();
    for (const QFrame *frame : frames) {
        if (!frame->isVisible() || frame->objectName().isEmpty() || frame->isWindow())
            continue;
        const QRect room(QPoint(), frame->parentWidget()->size());
        if (frame->objectName() == QLatin1String("frame_input_channels_tabl"))
            continue; // wider than its scroll area by the width of the area's frame
        QVERIFY2(room.contains(frame->geometry()), qPrintable(frame->objectName()));
    }
}

void tst_shell::labelsShowTheirWholeText()
{
    MainWindow window;
    window.show();
    const auto labels = window.findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        if (!label->isVisible() || label->text().isEmpty())
            continue;
        const QSize needed = label->sizeHint();
        QVERIFY2(needed.width() <= label->width(), qPrintable(label->objectName() + label->text()));
    }
    const auto buttons = window.findChildren<QPushButton *>();
    for (const QPushButton *button : buttons) {
        const QStringList lines = button->text().split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            const int needed = button->fontMetrics().horizontalAdvance(line);
            QVERIFY2(needed <= button->width(), qPrintable(button->objectName() + line));
        }
    }
}

// All three columns end above the status bar, but no lower than in a window of full height, and no
// higher than their own top.
void tst_shell::lowWindowScrolls()
{
    MainWindow window;
    window.show();
    const auto *bar = window.findChild<QStatusBar *>();
    const int full = cut(600, m_scale) + cut(197, m_scale);
    const auto toHeight = [&window](int height) {
        window.resize(window.width(), height);
        QCoreApplication::processEvents();
        QCOMPARE(window.height(), height);
    };
    toHeight(full);
    QMap<const QWidget *, QRect> designs;
    for (const char *name :
         {"scrollAreaInputPorts", "scrollAreaInputChannels", "scrollAreaOutputPorts"}) {
        const auto *area = window.findChild<QWidget *>(QString::fromLatin1(name));
        designs[area] = area->geometry();
    }
    QCOMPARE(designs.size(), 3);
    QCOMPARE(designs[window.findChild<QWidget *>("scrollAreaInputPorts")].height(),
             cut(477, m_scale));

    for (const int height : {window.minimumHeight(), window.minimumHeight() + 100, full - 60,
                             full - 1, full, full + 50}) {
        toHeight(height);
        for (auto design = designs.cbegin(); design != designs.cend(); ++design) {
            const int bottom = qMin(design->y() + design->height(), bar->y() - 1);
            QCOMPARE(design.key()->pos(), design->topLeft());
            QCOMPARE(design.key()->height(), qMax(0, bottom - design->y()));
        }
    }
    toHeight(window.minimumHeight());
    for (auto design = designs.cbegin(); design != designs.cend(); ++design)
        QCOMPARE(design.key()->height(), 0);
}

void tst_shell::rescanKeepsTheCurrentPort()
{
    publish(QStringLiteral("mmm"));
    publish(QStringLiteral("zzz"));
    MainWindow window;
    auto *box = window.findChild<QComboBox *>(QStringLiteral("comboBox_connect_port"));
    box->setCurrentText(QStringLiteral("mmm"));
    publish(QStringLiteral("aaa"));
    window.findChild<QPushButton *>(QStringLiteral("pushButton_rescan_ports"))->click();
    QCOMPARE(box->currentText(), QStringLiteral("mmm"));
    QVERIFY(listed(window).contains(QStringLiteral("aaa")));
}

void tst_shell::rescanSortsByCase()
{
    for (const char *name : {"b", "a", "B", "A"})
        publish(QString::fromLatin1(name));
    MainWindow window;
    QStringList own;
    for (const QString &name : listed(window)) {
        if (name.size() == 1)
            own += name;
    }
    QCOMPARE(own,
             QStringList({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("a"),
                          QStringLiteral("b")}));
}

// None of the names that are like the one that has gone takes its place.
void tst_shell::rescanFallsBackToTheFirst()
{
    QStringList ports{"AAA", "mmm"};
    platform::setSystemPortSource([&ports] { return ports; });
    const auto restore = qScopeGuard([] { platform::setSystemPortSource({}); });
    MainWindow window;
    auto *box = window.findChild<QComboBox *>(QStringLiteral("comboBox_connect_port"));
    box->setCurrentText(QStringLiteral("mmm"));
    QCOMPARE(box->currentIndex(), 1);
    ports = QStringList{"AAA", "MMM", "a mmm", "mmm2", "mm"};
    window.slotRescanPorts();
    QCOMPARE(listed(window), (QStringList{"AAA", "MMM", "a mmm", "mm", "mmm2"}));
    QCOMPARE(box->currentIndex(), 0);
    QCOMPARE(box->currentText(), QStringLiteral("AAA"));
}

void tst_shell::noPortDisablesConnect()
{
    QStringList ports;
    platform::setSystemPortSource([&ports] { return ports; });
    const auto restore = qScopeGuard([] { platform::setSystemPortSource({}); });
    MainWindow window;
    const auto *connectButton =
        window.findChild<QPushButton *>(QStringLiteral("pushButton_connect"));
    auto *rescan = window.findChild<QPushButton *>(QStringLiteral("pushButton_rescan_ports"));
    QCOMPARE(listed(window), QStringList());
    QVERIFY(!connectButton->isEnabled());
    ports = QStringList{QStringLiteral("ttyB"), QStringLiteral("ttyA"), QStringLiteral("ttyB")};
    rescan->click();
    // Two of one name stay two.
    QCOMPARE(listed(window),
             QStringList({QStringLiteral("ttyA"), QStringLiteral("ttyB"), QStringLiteral("ttyB")}));
    QVERIFY(connectButton->isEnabled());
    ports.clear();
    rescan->click();
    QCOMPARE(listed(window), QStringList());
    QVERIFY(!connectButton->isEnabled());
    QVERIFY(!QApplication::activeModalWidget());
}

TK7_FORM_TEST_MAIN(tst_shell)
#include "tst_shell.moc"
