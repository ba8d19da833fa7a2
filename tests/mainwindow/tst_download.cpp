#include "matrixview.h"
#include "model/rulefile.h"
#include "support/checkedline.h"
#include "support/filedialoganswer.h"
#include "support/ptypair.h"
#include "windowbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

using tk7sim::Fault;
using tk7sim::RouterConfig;

/*! The configuration comes down; the router's reports are shown; the user leaves in order. */
class tst_download : public QObject
{
    Q_OBJECT

private slots:
    void modelEqualsTheRouter();
    void rowsShowTheModel();
    void firstSentencesOfAConnection();
    void reports();
    void flashBank_data();
    void flashBank();
    void secondEndMark();
    void breaksOff();
    void brokenDownloadStays();
    void cancelDisconnect();
    void disconnectInOrder();
    void versionIsAskedAnew();
    void modelOutlivesTheConnection();
    void inputsOfNoPortAreKept();
    // Last: its window stays open from row to row, and would answer the boxes of others.
    void absurdNumbersChangeNothing_data();
    void absurdNumbersChangeNothing();
    void cleanupTestCase() { m_shared.reset(); }

private:
    std::unique_ptr<WindowBench> m_shared;
};

namespace {

BoxAnswer::Box disconnectBox(QMessageBox::StandardButton click)
{
    return {QStringLiteral("TK-7 Router"),
            QStringLiteral("Are you sure want disconnected from the TK-7 Router? If you will "
                           "disconnect, router load all rules from the internal memory."),
            QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel, click};
}

QString text(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes);
}

void compareChannel(const ChannelRecord &record, const tk7sim::Channel &channel)
{
    QCOMPARE(int(record.main_input), int(channel.mainInput));
    QCOMPARE(int(record.reserve_input), int(channel.reserveInput));
    QCOMPARE(record.filter_enabled, channel.filterEnabled);
    QCOMPARE(record.filter_mask, channel.filterMask);
    QCOMPARE(int(record.filter_type), int(channel.filterType));
    QCOMPARE(record.crs_enabled, channel.crsEnabled);
    QCOMPARE(record.hdr_enabled, channel.hdrEnabled);
    QCOMPARE(record.hdr, text(channel.hdrEnabled ? channel.hdr : QByteArray()));
    QCOMPARE(int(record.smart_function), int(channel.smart));
}

void compareModel(const RouterModel &model, const RouterConfig &router)
{
    for (size_t port = 0; port < 12; ++port) {
        for (size_t channel = 0; channel < 12; ++channel)
            compareChannel(model.output_ports[port].channels[channel],
                           router.outputs[port].channels[channel]);
        QCOMPARE(model.output_ports[port].speed, router.speeds[port]);
        QCOMPARE(model.output_ports[port].output_name, text(router.outputNames[port]));
        QCOMPARE(model.input_ports[port].input_name, text(router.inputNames[port]));
    }
    for (size_t slot = 0; slot < 32; ++slot)
        QCOMPARE(model.filter_list[slot], text(router.filterList[slot]));
    QCOMPARE(model.filter_list_mask, router.filterListMask());
}

// Every field of every record differs from its neighbours'.
RouterConfig busyConfig()
{
    RouterConfig config = RouterConfig::factory();
    const quint32 speeds[] = {2400, 4800, 9600, 19200, 38400, 57600, 115200};
    for (size_t port = 0; port < 12; ++port) {
        config.speeds[port] = speeds[port % 7];
        config.inputNames[port] = "In-" + QByteArray::number(int(port));
        config.outputNames[port] = port % 3 ? "Out " + QByteArray::number(int(port)) : QByteArray();
        for (size_t c = 0; c < 12; ++c) {
            tk7sim::Channel &channel = config.outputs[port].channels[c];
            channel = tk7sim::Channel();
            if ((port + c) % 4 == 3)
                continue;
            channel.mainInput = quint8((port + c) % 12);
            channel.reserveInput = c % 2 ? quint8((port + 2 * c) % 12) : quint8(15);
            channel.filterEnabled = c % 3 == 0;
            channel.filterMask = quint32(port * 0x01010101u + c * 0x10000001u);
            channel.filterType = c % 2 ? tk7sim::FilterType::Black : tk7sim::FilterType::White;
            channel.crsEnabled = (port + c) % 5 == 0;
            channel.hdrEnabled = c % 4 == 1;
            if (channel.hdrEnabled)
                channel.hdr = QByteArray(1, char('A' + port)) + QByteArray(1, char('A' + c));
            channel.smart = quint8((port * c) % 8);
        }
    }
    config.filterList[31] = "ZZZ";
    config.filterList[20] = "QQQ";
    return config;
}

// The rows of each output port, as the screen shows them when it is chosen.
QStringList allRows(const MatrixView &matrix)
{
    QStringList rows;
    for (int port = 0; port < MatrixView::size; ++port) {
        matrix.outputButton(port)->click();
        for (int c = 0; c < MatrixView::size; ++c)
            rows += matrix.row(c);
        for (int input = 0; input < MatrixView::size; ++input)
            rows += QString::number(matrix.placeOf(input));
    }
    return rows;
}

} // namespace

void tst_download::modelEqualsTheRouter()
{
    WindowBench bench;
    compareModel(bench.window.routerModel(), [] {
        RouterConfig config;
        const char *usual[] = {"RMC", "GGA", "GLL", "ZDA", "VTG", "HDT",
                               "HDM", "HDG", "TTM", "VDO", "VDM", "DBT"};
        for (size_t i = 0; i < 12; ++i)
            config.filterList[i] = usual[i];
        return config;
    }());
    bench.router.setWorking(busyConfig());
    QVERIFY2(bench.connectToRouter(), qPrintable(bench.boxes.report()));
    compareModel(bench.window.routerModel(), busyConfig());
}

void tst_download::rowsShowTheModel()
{
    WindowBench bench;
    const RouterConfig config = busyConfig();
    bench.router.setWorking(config);
    QVERIFY(bench.connectToRouter());
    for (int port = 0; port < 12; ++port) {
        const QByteArray &name = config.outputNames[size_t(port)];
        const QString blanks = port > 9 ? QStringLiteral("PORT  %1") : QStringLiteral("PORT   %1");
        QCOMPARE(
            bench.find<QPushButton>(QStringLiteral("pushButton_output_port_%1").arg(port))->text(),
            name.isEmpty() ? blanks.arg(port) : QStringLiteral("%1. %2").arg(port).arg(text(name)));
        QCOMPARE(bench.find<QComboBox>(QStringLiteral("comboBox_output_port_%1").arg(port))
                     ->currentText(),
                 QString::number(config.speeds[size_t(port)]));
    }
    for (int port : {0, 5, 11}) {
        bench.find<QPushButton>(QStringLiteral("pushButton_output_port_%1").arg(port))->click();
        QCOMPARE(bench.find<QLabel>("label_cur_ch_out")->text(),
                 QStringLiteral("< OUTPUT PORT %1 >").arg(port));
        for (int c = 0; c < 12; ++c) {
            const tk7sim::Channel &channel = config.outputs[size_t(port)].channels[size_t(c)];
            const bool inUse = channel.mainInput != 15 || channel.reserveInput != 15;
            const auto *filter =
                bench.find<QCheckBox>(QStringLiteral("checkBox_channel_%1_filter").arg(c));
            const auto *crs =
                bench.find<QCheckBox>(QStringLiteral("checkBox_channel_%1_crs").arg(c));
            const auto *hdr =
                bench.find<QCheckBox>(QStringLiteral("checkBox_channel_%1_hdr").arg(c));
            const auto *header =
                bench.find<QLineEdit>(QStringLiteral("lineEdit_channel_%1_hdr").arg(c));
            QCOMPARE(filter->isEnabled(), inUse);
            QCOMPARE(filter->isChecked(), channel.filterEnabled);
            QCOMPARE(crs->isChecked(), channel.crsEnabled);
            QCOMPARE(hdr->isChecked(), channel.hdrEnabled);
            QCOMPARE(header->text(), text(channel.hdr));
        }
    }
}

void tst_download::firstSentencesOfAConnection()
{
    WindowBench bench;
    // A speed that differs from the one on the screen would be sent back.
    bench.router.setWorking(RouterConfig());
    QVERIFY(bench.connectToRouter());
    QTRY_VERIFY(
        bench.find<QLabel>("label_firmware_version")->text().startsWith(QLatin1String("fw: v.")));
    QCOMPARE(bench.heard(),
             QList<QByteArray>({"$VRCNT\r\n", "$VRCNT\r\n", "$VRRLD\r\n", "$VRVER\r\n"}));
}

void tst_download::reports()
{
    WindowBench bench;
    bench.router.setVersion(3, 5);
    bench.router.setMode("NIGHT");
    bench.router.setError(0x00AB, 0x02);
    QVERIFY(bench.connectToRouter());
    QTRY_COMPARE(bench.find<QLabel>("label_firmware_version")->text(), QStringLiteral("fw: v.3.5"));
    QTRY_COMPARE(bench.find<QLabel>("label_firmware_mode")->text(), QStringLiteral("mode: NIGHT"));
    QTRY_COMPARE(bench.find<QLabel>("label_vr48_errors")->text(), QStringLiteral("s:00ab"));
    bench.router.sendChecked("$VRVER,4.12");
    QTRY_COMPARE(bench.find<QLabel>("label_firmware_version")->text(),
                 QStringLiteral("fw: v.4.12"));
}

void tst_download::flashBank_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("shown");
    QTest::newRow("bank 0") << QByteArray("$VRFBK,0") << "<";
    QTest::newRow("bank 1") << QByteArray("$VRFBK,1") << ">";
    QTest::newRow("bank 2 changes nothing") << QByteArray("$VRFBK,2") << "before";
    QTest::newRow("bank 3 is no bank") << QByteArray("$VRFBK,3") << "before";
}

void tst_download::flashBank()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, shown);
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    auto *label = bench.find<QLabel>("label_vr48_flash_page");
    label->setText(QStringLiteral("before"));
    bench.router.sendChecked(body);
    bench.router.sendChecked("$VRMOD,SEEN");
    QTRY_COMPARE(bench.find<QLabel>("label_firmware_mode")->text(), QStringLiteral("mode: SEEN"));
    QCOMPARE(label->text(), shown);
}

void tst_download::secondEndMark()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    QTRY_VERIFY(!bench.find<QLabel>("label_firmware_version")->text().isEmpty());
    bench.router.clearTranscript();
    bench.boxes.expect(WindowBench::downloadBox());
    bench.router.sendLine("$VRWBL\r\n");
    QTRY_COMPARE(bench.boxes.answered(), 2);
    // A sentence that is known to come later shows that no version was asked for before it.
    bench.find<QPushButton>("pushButton_output_port_3")->click();
    QTRY_VERIFY(bench.heard().contains("$VRVVW,63\r\n"));
    QCOMPARE(bench.heard(), QList<QByteArray>({"$VRVVW,63\r\n"}));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_download::breaksOff()
{
    WindowBench bench;
    bench.router.setWorking(busyConfig());
    int sent = 0;
    connect(&bench.router, &tk7sim::RouterSimulator::lineSent, &bench.window,
            [&](const QByteArray &line) {
                if (line.startsWith("$VRSPD,3,"))
                    bench.router.setFault(Fault::Unplugged, 0);
                ++sent;
            });
    bench.boxes.expect(WindowBench::timeoutBox());
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.boxes.answered() == 1, 10000);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QTRY_VERIFY(!bench.window.isConnected());
}

// The router falls silent in the midst of its configuration: what came is kept, and shown.
void tst_download::brokenDownloadStays()
{
    constexpr int watchTime = 4000;
    constexpr int late = 900;
    const QString words = QStringLiteral("F302").repeated(12);
    const QByteArray part = checkedLine("$VRRUL,0,W," + words.toLatin1())
        + checkedLine("$VRFLT,0,W,0," + QByteArray("0000000F").repeated(6))
        + checkedLine("$VRSPD,3,57600") + checkedLine("$VRPNM,O,0,GPS,,,,,")
        + checkedLine("$VRMOD,NIGHT") + checkedLine("$VRRUL,1,W,F30").left(12);
    PtyPair line;
    MainWindow window;
    BoxAnswer boxes;
    QElapsedTimer clock;
    connect(&line, &PtyPair::lineReceived, &line, [&](const QByteArray &sentence) {
        if (sentence == "$VRCNT\r\n")
            line.write(checkedLine("$VRCNU,3"));
        if (sentence == "$VRRLD\r\n") {
            clock.start();
            line.write(part);
        }
    });
    auto *ports = window.findChild<QComboBox *>(QStringLiteral("comboBox_connect_port"));
    ports->addItem(line.slavePath());
    ports->setCurrentText(line.slavePath());
    window.show();
    const MatrixView matrix(window);
    RouterModel expected = window.routerModel();
    for (ChannelRecord &channel : expected.output_ports[0].channels) {
        channel.main_input = 3;
        channel.filter_enabled = true;
    }
    for (size_t c = 0; c < 6; ++c)
        expected.output_ports[0].channels[c].filter_mask = 0xF;
    expected.output_ports[3].speed = 57600;
    expected.output_ports[0].output_name = QStringLiteral("GPS");

    boxes.expect(WindowBench::timeoutBox());
    window.slotConnectPort();
    QTRY_VERIFY_WITH_TIMEOUT(boxes.answered() == 1, 12000);
    const qint64 took = clock.elapsed();
    QVERIFY2(took >= watchTime - 100 && took <= watchTime + late,
             qPrintable(QString::number(took)));
    QTRY_VERIFY(!window.isConnected());
    const RouterModel &model = window.routerModel();
    for (size_t port = 0; port < 12; ++port) {
        for (size_t c = 0; c < 12; ++c) {
            const ChannelRecord &found = model.output_ports[port].channels[c];
            const ChannelRecord &wanted = expected.output_ports[port].channels[c];
            QCOMPARE(found.main_input, wanted.main_input);
            QCOMPARE(found.reserve_input, wanted.reserve_input);
            QCOMPARE(found.filter_enabled, wanted.filter_enabled);
            QCOMPARE(found.filter_mask, wanted.filter_mask);
        }
        QCOMPARE(model.output_ports[port].speed, expected.output_ports[port].speed);
        QCOMPARE(model.output_ports[port].output_name, expected.output_ports[port].output_name);
    }
    QCOMPARE(window.findChild<QComboBox *>(QStringLiteral("comboBox_output_port_3"))->currentText(),
             QStringLiteral("57600"));
    matrix.outputButton(1)->click();
    QCOMPARE(matrix.row(5), QStringLiteral("-------\"\""));
    matrix.outputButton(0)->click();
    for (int c = 0; c < 12; ++c)
        QCOMPARE(matrix.row(c), QStringLiteral("F+sCH--S\"\""));
}

void tst_download::absurdNumbersChangeNothing_data()
{
    QTest::addColumn<QByteArray>("body");
    const QByteArray words = QByteArray("F300").repeated(12);
    const QByteArray masks = QByteArray("FFFFFFFF").repeated(6);
    for (const char *number : {"12", "99", "255"}) {
        const QByteArray port(number);
        QTest::addRow("rule of port %s", number) << "$VRRUL," + port + ",W," + words;
        QTest::addRow("mask of port %s", number) << "$VRFLT," + port + ",W,0," + masks;
        QTest::addRow("mask of channel %s", number) << "$VRFLT,0,W," + port + "," + masks;
        QTest::addRow("header of port %s", number)
            << "$VRHDC," + port + ",W,AA,BB,CC,DD,EE,FF,GG,HH,II,JJ,KK,LL";
        QTest::addRow("speed of port %s", number) << "$VRSPD," + port + ",115200";
        QTest::addRow("names from %s", number) << "$VRPNM,I," + port + ",a,b,c,d,e,f";
        QTest::addRow("names of outputs from %s", number) << "$VRPNM,O," + port + ",a,b,c,d,e,f";
    }
    QTest::newRow("list from 32") << QByteArray("$VRFLS,32,AAA,BBB,CCC,DDD,EEE,FFF,GGG,HHH");
    QTest::newRow("list from 99") << QByteArray("$VRFLS,99,AAA,BBB,CCC,DDD,EEE,FFF,GGG,HHH");
    QTest::newRow("list from 240") << QByteArray("$VRFLS,240,AAA,BBB,CCC,DDD,EEE,FFF,GGG,HHH");
    QTest::newRow("names from 3") << QByteArray("$VRPNM,I,3,a,b,c,d,e,f");
    QTest::newRow("names from nowhere") << QByteArray("$VRPNM,X,0,a,b,c,d,e,f");
    QTest::newRow("speed 1200") << QByteArray("$VRSPD,0,1200");
    QTest::newRow("speed 4294967295") << QByteArray("$VRSPD,0,4294967295");
    QTest::newRow("speed negative") << QByteArray("$VRSPD,0,-1");
    QTest::newRow("speed empty") << QByteArray("$VRSPD,0,");
}

// What is in the router stays there: the tool sends back what it has heard.
void tst_download::inputsOfNoPortAreKept()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    const QByteArray words = "FC00CF03DE00" + QByteArray("F300").repeated(9);
    bench.router.sendChecked("$VRRUL,7,W," + words);
    bench.router.sendChecked("$VRMOD,SEEN");
    QTRY_COMPARE(bench.find<QLabel>("label_firmware_mode")->text(), QStringLiteral("mode: SEEN"));
    const auto &channels = bench.window.routerModel().output_ports[7].channels;
    QCOMPARE(int(channels[0].main_input), 12);
    QCOMPARE(int(channels[0].reserve_input), 15);
    QCOMPARE(int(channels[1].main_input), 15);
    QCOMPARE(int(channels[1].reserve_input), 12);
    QVERIFY(channels[1].filter_enabled && channels[1].crs_enabled);
    QCOMPARE(int(channels[2].main_input), 14);
    QCOMPARE(int(channels[2].reserve_input), 13);

    bench.router.clearTranscript();
    bench.find<QPushButton>("pushButton_output_port_7")->click();
    bench.find<QCheckBox>("checkBox_channel_5_crs")->click();
    const QByteArray sent = QByteArray(words).replace(4 * 5, 4, "F301");
    QTRY_VERIFY(bench.heard().size() >= 2);
    QVERIFY2(bench.heard().last().startsWith(QByteArray("$VRRUL,7,W," + sent + '*')),
             bench.heard().last().constData());
}

void tst_download::absurdNumbersChangeNothing()
{
    QFETCH(QByteArray, body);
    // One connection serves all rows: no row changes anything.
    if (!m_shared) {
        m_shared = std::make_unique<WindowBench>();
        QVERIFY(m_shared->connectToRouter());
    }
    WindowBench &bench = *m_shared;
    bench.find<QLabel>("label_firmware_mode")->clear();
    const RouterModel before = bench.window.routerModel();
    bench.router.sendChecked(body);
    bench.router.sendChecked("$VRMOD,SEEN");
    QTRY_COMPARE(bench.find<QLabel>("label_firmware_mode")->text(), QStringLiteral("mode: SEEN"));
    QVERIFY(bench.window.routerModel() == before);
}

void tst_download::cancelDisconnect()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(disconnectBox(QMessageBox::Cancel));
    bench.find<QPushButton>("pushButton_connect")->click();
    QCOMPARE(bench.boxes.answered(), 2);
    QVERIFY(bench.window.isConnected());
    bench.find<QPushButton>("pushButton_output_port_3")->click();
    QTRY_VERIFY(bench.heard().contains("$VRVVW,63\r\n"));
    QVERIFY(!bench.heard().contains("$VRDCN\r\n"));
}

void tst_download::disconnectInOrder()
{
    WindowBench bench;
    QVERIFY(bench.connectToRouter());
    bench.router.sendLine("$GPGLL,1*00\r\n");
    const auto *errors = bench.find<QLabel>("labelCrsErrorsCount");
    QTRY_COMPARE(errors->text(), QStringLiteral("1"));
    QVERIFY(errors->isVisible());

    bench.boxes.expect(disconnectBox(QMessageBox::Ok));
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY(!bench.window.isConnected());
    QTRY_VERIFY(bench.heard().endsWith("$VRDCN\r\n"));
    QTRY_VERIFY(!bench.router.isConnected());

    QCOMPARE(bench.find<QPushButton>("pushButton_connect")->text(), QStringLiteral("Connect"));
    QVERIFY(bench.find<QPushButton>("pushButton_connect")->isEnabled());
    QVERIFY(bench.find<QComboBox>("comboBox_connect_port")->isEnabled());
    QVERIFY(bench.find<QPushButton>("pushButton_rescan_ports")->isEnabled());
    QVERIFY(!bench.find<QPushButton>("pushButton_SaveEEPROM")->isEnabled());
    for (const char *name :
         {"label_3", "label_vr48_status", "label_vr48_port", "label_firmware_version",
          "label_firmware_mode", "label_vr48_errors", "label_vr48_flash_page"}) {
        QVERIFY2(bench.find<QLabel>(name)->text().isEmpty(), name);
    }
    QVERIFY(!errors->isVisible());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_download::versionIsAskedAnew()
{
    WindowBench bench;
    for (int i = 0; i < 2; ++i) {
        bench.router.clearTranscript();
        QVERIFY(bench.connectToRouter());
        QTRY_VERIFY(bench.heard().contains("$VRVER\r\n"));
        QTRY_VERIFY(!bench.find<QLabel>("label_firmware_version")->text().isEmpty());
        bench.boxes.expect(disconnectBox(QMessageBox::Ok));
        bench.find<QPushButton>("pushButton_connect")->click();
        QTRY_VERIFY(!bench.window.isConnected());
        QTRY_VERIFY(!bench.router.isConnected());
    }
}

void tst_download::modelOutlivesTheConnection()
{
    WindowBench bench;
    const MatrixView matrix(bench.window);
    bench.router.setWorking(busyConfig());
    QVERIFY(bench.connectToRouter());
    const QStringList rows = allRows(matrix);
    matrix.outputButton(4)->click();
    const QString lastRow = matrix.row(11);
    bench.boxes.expect(disconnectBox(QMessageBox::Ok));
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY(!bench.window.isConnected());
    QCOMPARE(matrix.row(11), lastRow);
    compareModel(bench.window.routerModel(), busyConfig());
    QCOMPARE(bench.find<QComboBox>("comboBox_output_port_6")->currentText(),
             QStringLiteral("115200"));
    QCOMPARE(bench.find<QPushButton>("pushButton_output_port_1")->text(),
             QStringLiteral("1. Out 1"));
    QCOMPARE(allRows(matrix), rows);

    // And a rule file that is saved now holds all of it.
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("after.vrr"));
    FileDialogAnswer dialogs;
    dialogs.expect({QStringLiteral("Save rules"),
                    {QStringLiteral("TK-7 data (*.vrr)")},
                    QFileDialog::AcceptSave,
                    path,
                    {},
                    {}});
    bench.find<QPushButton>("pushButton_SaveFile")->click();
    QVERIFY2(dialogs.report().isEmpty(), qPrintable(dialogs.report()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    RouterModel saved;
    QVERIFY(RuleFile::read(file, saved));
    // A slot that is free keeps the name that it had before.
    for (size_t slot = 0; slot < saved.filter_list.size(); ++slot) {
        if (!(saved.filter_list_mask >> slot & 1))
            saved.filter_list[slot].clear();
    }
    compareModel(saved, busyConfig());
}

QTEST_MAIN(tst_download)
#include "tst_download.moc"
