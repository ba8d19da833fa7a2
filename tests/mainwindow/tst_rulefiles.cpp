#include "dragtest.h"
#include "rulefilebench.h"

#include "../model/randommodel.h"
#include "../model/richmodel.h"
#include "support/nofile.h"

#include <QDir>
#include <QFile>
#include <QLabel>

using Bench = RuleFileBench;
using namespace RuleFileBytes;

namespace {

const QString saveTitle = QStringLiteral("Save Rules");

} // namespace

/*!
 * Rule files through the window: loading, what the screen and the line show of it, a link that ends
 * meanwhile. Saving by itself is tst_rulefiles_save.
 */
class TestRuleFiles : public DragTest
{
    Q_OBJECT

private slots:
    void cancelledDialogs();

    void loads_data();
    void loads();
    void loadLooksAtNoSuffix();
    void loadCantOpen_data();
    void loadCantOpen();
    void loadFails_data();
    void loadFails();
    void failedLoadShowsOnlySpeeds();
    void roundTrip();

    void loadWhileConnected();
    void failedLoadWhileConnected();
    void loadWhileNotConnected();
    void linkDiesUnderTheDialog();
    void linkDiesUnderTheBox();

    void foreignInputs_data();
    void foreignInputs();
    void foreignInputsOnTheWire();
};

void TestRuleFiles::cancelledDialogs()
{
    Bench bench;
    fill(bench.window, richModel());
    const RouterModel before = bench.window.routerModel();
    bench.save(QString());
    bench.load(QString());
    QCOMPARE(bench.dialogs.answered(), 2);
    QCOMPARE(bench.report(), QString());
    QVERIFY(bench.window.routerModel() == before);
    QVERIFY(QDir(bench.folder.path()).isEmpty());
}

void TestRuleFiles::loads_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("port");
    QTest::addColumn<bool>("isRich");

    for (const int port : {0, 1, 7, 11}) {
        QTest::addRow("every field in use, port %d selected", port)
            << "rules-rich.vrr" << port << true;
    }
    QTest::newRow("a router that nobody has set up, port 3 selected")
        << "rules-default.vrr" << 3 << false;
}

void TestRuleFiles::loads()
{
    QFETCH(QString, file);
    QFETCH(int, port);
    QFETCH(bool, isRich);
    Bench bench;
    bench.matrix->outputButton(port)->click();
    if (!isRich)
        fill(bench.window, richModel());
    const RouterModel before = bench.window.routerModel();
    bench.expectLoaded();
    bench.loadBytes(dataFile(file.toLatin1().constData()));
    QCOMPARE(bench.report(), QString());
    RouterModel expected = isRich ? asLoaded(richModel()) : RouterModel();
    if (!isRich) { // slots that the file leaves free keep what they had
        for (std::size_t slot = 12; slot < FilterSlotCount; ++slot)
            expected.filter_list[slot] = before.filter_list[slot];
    }
    QVERIFY(bench.window.routerModel() == expected);
    QCOMPARE(bench.differences(expected, port), QString());
    for (int i = 0; i < MatrixView::size; ++i) {
        bench.matrix->outputButton(i)->click();
        QCOMPARE(bench.differences(expected, i), QString());
    }
}

void TestRuleFiles::loadLooksAtNoSuffix()
{
    Bench bench;
    for (const char *name : {"rules", "rules.txt", "rules.VRR"}) {
        fill(bench.window, RouterModel());
        makeFile(bench.path(name), dataFile("rules-rich.vrr"));
        bench.expectLoaded();
        bench.load(bench.path(name));
        QCOMPARE(bench.report(), QString());
        QCOMPARE(bench.window.routerModel().input_ports[5].input_name, QStringLiteral("g"));
    }
}

void TestRuleFiles::loadCantOpen_data()
{
    addNoFiles();
}

// A file that goes between the dialog and the reading.
void TestRuleFiles::loadCantOpen()
{
    QFETCH(NoFile, noFile);
    Bench bench;
    const QString path = bench.path("rules.vrr");
    makeFile(path, dataFile("rules-rich.vrr"));
    auto dialog = bench.loadDialog(path);
    dialog.onFinished = [=] { makeNoFile(noFile, path); };
    bench.dialogs.expect(dialog);
    bench.expectWarning(loadTitle, QStringLiteral("Error open file %1").arg(path));
    bench.find<QPushButton>("pushButton_LoadFile")->click();
    QCOMPARE(bench.report(), QString());
    QVERIFY(bench.window.routerModel() == RouterModel());
}

void TestRuleFiles::loadFails_data()
{
    QTest::addColumn<QByteArray>("bytes");

    const QByteArray good = dataFile("rules-default.vrr");
    QTest::newRow("an empty file") << QByteArray();
    QTest::newRow("other magic") << "VRS" + good.mid(3);
    QTest::newRow("magic alone") << good.left(3);
    QTest::newRow("torn in a channel") << good.left(200);
    QTest::newRow("torn in a speed") << good.left(MagicSize + SpeedOffset + 2);
    QTest::newRow("torn in the mask of the sentence names") << good.left(InputNamesOffset - 38);
    QTest::newRow("torn in the last sentence name") << good.left(InputNamesOffset - 1);
    QTest::newRow("a sentence name with a 0")
        << good.left(InputNamesOffset - 1) + '\0' + good.mid(InputNamesOffset);
}

void TestRuleFiles::loadFails()
{
    QFETCH(QByteArray, bytes);
    Bench bench;
    bench.expectWarning(loadTitle,
                        QStringLiteral("Error load rules from %1").arg(bench.path("rules.vrr")));
    bench.loadBytes(bytes);
    QCOMPARE(bench.report(), QString());
    QVERIFY(bench.heard().isEmpty());
}

// No rollback, and no refresh: what was read is in the model, the screen shows of it the speeds.
void TestRuleFiles::failedLoadShowsOnlySpeeds()
{
    Bench bench;
    const QByteArray rich = dataFile("rules-rich.vrr");
    const QByteArray torn = rich.left(MagicSize + 2 * PortSize + 1 + 5 * ChannelSize);
    bench.expectWarning(loadTitle,
                        QStringLiteral("Error load rules from %1").arg(bench.path("rules.vrr")));
    bench.loadBytes(torn);
    QCOMPARE(bench.report(), QString());

    const RouterModel loaded = asLoaded(richModel());
    RouterModel expected;
    expected.output_ports[0] = loaded.output_ports[0];
    expected.output_ports[1] = loaded.output_ports[1]; // its name has one character
    std::copy_n(loaded.output_ports[2].channels.begin(), 5,
                expected.output_ports[2].channels.begin());
    QVERIFY(bench.window.routerModel() == expected);

    RouterModel shown;
    shown.output_ports[0].speed = loaded.output_ports[0].speed;
    shown.output_ports[1].speed = loaded.output_ports[1].speed;
    QCOMPARE(bench.differences(shown, 0), QString());
    bench.find<QPushButton>("pushButton_view_speed")->click();
    const auto labels = bench.window.findChildren<QLabel *>();
    QVERIFY(std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
        return label->isVisible() && label->text() == QStringLiteral("2400");
    }));
}

void TestRuleFiles::roundTrip()
{
    constexpr quint32 firstSeed = 71000;
    constexpr quint32 models = 20;
    Bench bench;
    for (quint32 seed = firstSeed; seed < firstSeed + models; ++seed) {
        const QString path = bench.path(QStringLiteral("%1.vrr").arg(seed));
        const RouterModel model = randomModel(seed);
        fill(bench.window, model);
        QVERIFY(bench.window.routerModel() == model);
        bench.save(path);

        RouterModel other = randomModel(~seed);
        other.filter_list_mask = 0; // no names in the slots that the file leaves free
        fill(bench.window, other);
        QVERIFY(bench.window.routerModel() != model);
        bench.expectLoaded();
        bench.load(path);
        QCOMPARE(bench.report(), QString());
        QVERIFY(bench.window.routerModel() == model);
        QCOMPARE(bench.differences(model, 0), QString());
    }
}

void TestRuleFiles::loadWhileConnected()
{
    Bench bench;
    bench.router.setWorking(tk7sim::RouterConfig());
    QVERIFY(bench.connectToRouter());
    QTRY_VERIFY(bench.heard().contains("$VRVER\r\n"));
    bench.router.clearTranscript();
    bench.router.resetCounters();

    QList<QByteArray> expected;
    const RouterModel rich = richModel();
    for (int port = 0; port < OutputPortCount; ++port) {
        const quint32 speed = rich.output_ports[std::size_t(port)].speed;
        if (speed != DefaultPortSpeed) {
            expected += checkedSentence("$VRSPD," + QByteArray::number(port) + ','
                                        + QByteArray::number(speed));
        }
    }
    const int changedSpeeds = int(expected.size());
    QVERIFY(changedSpeeds > 0 && changedSpeeds < OutputPortCount);
    for (const QByteArray &line : dataFile("upload-rich.txt").split('\n')) {
        if (!line.isEmpty())
            expected += line + '\n';
    }
    QCOMPARE(expected.size(), changedSpeeds + 80);

    bench.expectLoaded();
    bench.loadBytes(dataFile("rules-rich.vrr"));
    QCOMPARE(bench.report(), QString());
    QTRY_VERIFY_WITH_TIMEOUT(bench.heard().size() >= expected.size(), 10000);
    bench.matrix->channelButton(4)->click(); // a mark behind all that was sent
    expected += "$VRVVW,4\r\n";
    QTRY_COMPARE(bench.heard().size(), expected.size());
    QCOMPARE(bench.heard(), expected); // and not $VRSVR
    QCOMPARE(bench.router.counters().refusedSentences, quint64(0));
    QCOMPARE(bench.router.counters().checksumErrors, quint64(0));
    QVERIFY(bench.router.working() != bench.router.eeprom());
}

void TestRuleFiles::failedLoadWhileConnected()
{
    Bench bench;
    bench.router.setWorking(tk7sim::RouterConfig());
    QVERIFY(bench.connectToRouter());
    QTRY_VERIFY(bench.heard().contains("$VRVER\r\n"));
    bench.router.clearTranscript();
    bench.expectWarning(loadTitle,
                        QStringLiteral("Error load rules from %1").arg(bench.path("rules.vrr")));
    bench.loadBytes(dataFile("rules-rich.vrr").left(MagicSize + PortSize + 10));
    QCOMPARE(bench.report(), QString());
    bench.matrix->channelButton(4)->click();
    QTRY_VERIFY(bench.heard().contains("$VRVVW,4\r\n"));
    QCOMPARE(bench.heard(), QList<QByteArray>({checkedSentence("$VRSPD,0,2400"), "$VRVVW,4\r\n"}));
}

// A router that connects and then says nothing: what a save uploads is what was loaded before.
void TestRuleFiles::loadWhileNotConnected()
{
    Bench bench;
    bench.expectLoaded();
    bench.loadBytes(dataFile("rules-rich.vrr"));
    QCOMPARE(bench.report(), QString());
    QVERIFY(bench.heard().isEmpty());

    QObject::connect(&bench.router, &tk7sim::RouterSimulator::lineSent, &bench.window, [&] {
        if (bench.router.handshakes() > 0)
            bench.router.setFault(tk7sim::Fault::Silent);
    });
    bench.find<QPushButton>("pushButton_connect")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.window.isConnected(), 5000);
    bench.boxes.expect({saveTitle, QStringLiteral("Are you sure you want save rules in Router?"),
                        QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel});
    bench.find<QPushButton>("pushButton_SaveEEPROM")->click();
    QTRY_VERIFY_WITH_TIMEOUT(bench.heard().contains("$VRSVR\r\n"), 10000);
    QByteArray upload;
    const QList<QByteArray> heard = bench.heard();
    for (const QByteArray &line : heard.mid(heard.size() - 81, 80))
        upload += line;
    QCOMPARE(upload, dataFile("upload-rich.txt"));
    bench.boxes.expect(WindowBench::timeoutBox());
    QTRY_VERIFY_WITH_TIMEOUT(!bench.window.isConnected(), 10000);
    QCOMPARE(bench.report(), QString());
}

void TestRuleFiles::linkDiesUnderTheDialog()
{
    Bench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes.expect(WindowBench::timeoutBox());
    makeFile(bench.path("rules.vrr"), dataFile("rules-rich.vrr"));
    auto dialog = bench.loadDialog(bench.path("rules.vrr"));
    dialog.whileOpen = [&bench] {
        bench.router.unplug();
        QTRY_VERIFY_WITH_TIMEOUT(!bench.window.isConnected(), 10000);
        bench.expectLoaded();
    };
    bench.dialogs.expect(dialog);
    bench.find<QPushButton>("pushButton_LoadFile")->click();
    QCOMPARE(bench.report(), QString());
    QCOMPARE(bench.window.routerModel().input_ports[5].input_name, QStringLiteral("g"));
}

// The time-out closes the boxes that wait for the router; this one doesn't.
void TestRuleFiles::linkDiesUnderTheBox()
{
    Bench bench;
    QVERIFY(bench.connectToRouter());
    bench.boxes
        .expect({QStringLiteral("TK-7 Router"), QStringLiteral("Load rules complete"),
                 QMessageBox::Information, QMessageBox::Ok, QMessageBox::NoButton})
        .expect(WindowBench::timeoutBox());
    QTimer::singleShot(0, &bench.window, [&] { bench.router.unplug(); });
    QString lastBox;
    QTimer close;
    close.setInterval(20);
    QObject::connect(&close, &QTimer::timeout, &bench.window, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || bench.boxes.answered() < 3 || bench.window.isConnected())
            return;
        lastBox = box->text();
        box->button(QMessageBox::Ok)->click();
    });
    close.start();
    bench.loadBytes(dataFile("rules-rich.vrr"));
    QCOMPARE(bench.report(), QString());
    QCOMPARE(lastBox, QStringLiteral("Load rules complete"));
    QVERIFY(!bench.window.isConnected());
}

void TestRuleFiles::foreignInputs_data()
{
    QTest::addColumn<int>("number");

    for (const int number : {12, 13, 14, 16, 31, 32, 48, 200, 240, 255})
        QTest::addRow("port %d", number) << number;
}

// Whatever an input says that no router has: its cell is empty, takes a label, and gives none.
void TestRuleFiles::foreignInputs()
{
    QFETCH(int, number);
    RouterModel model;
    ChannelRecord &both = model.output_ports[0].channels[0];
    both.main_input = both.reserve_input = quint8(number);
    both.filter_enabled = both.crs_enabled = both.hdr_enabled = true;
    both.hdr = QStringLiteral("GP");
    both.smart_function = 5;
    ChannelRecord &mixed = model.output_ports[0].channels[11];
    mixed = both;
    mixed.reserve_input = 11;
    model.output_ports[11].channels[11].main_input = quint8(number);

    Bench bench;
    bench.expectLoaded();
    bench.loadBytes(written(model));
    QCOMPARE(bench.report(), QString());
    QVERIFY(bench.window.routerModel() == model);
    QCOMPARE(bench.differences(model, 0), QString());
    QCOMPARE(bench.matrix->row(0), QStringLiteral("-------\"\""));
    QCOMPARE(bench.matrix->placeOf(11), 32 + 11);
    for (DragFrame *cell :
         {bench.matrix->main[0], bench.matrix->reserve[0], bench.matrix->main[11]}) {
        QVERIFY(cell->findChildren<QLabel *>().isEmpty());
        bench.window.slotReleaseEvent(cell);
    }
    bench.matrix->outputButton(11)->click();
    QCOMPARE(bench.differences(model, 11), QString());
    bench.matrix->outputButton(0)->click();

    // The label of port 4 into the cell that the file left with a foreign number, and home again.
    bench.window.resize(853, 1000); // the screen is too low for the whole matrix
    QVERIFY(drag(bench.matrix->homes[4], bench.matrix->main[0]).accepted);
    ChannelRecord expected = both;
    expected.main_input = 4;
    QVERIFY(bench.window.routerModel().output_ports[0].channels[0] == expected);
    QCOMPARE(bench.matrix->row(0), rowOf(expected));
    QCOMPARE(bench.matrix->placeOf(4), 16);
    QVERIFY(drag(bench.matrix->main[0], bench.matrix->homes[7]).accepted);
    expected = ChannelRecord();
    expected.reserve_input = quint8(number);
    QVERIFY(bench.window.routerModel().output_ports[0].channels[0] == expected);
    QCOMPARE(bench.matrix->row(0), QStringLiteral("-------\"\""));
    QCOMPARE(bench.matrix->placeOf(4), 48 + 4);

    // A torn file leaves labels where the model has something else by now: nothing breaks.
    RouterModel torn;
    for (ChannelRecord &channel : torn.output_ports[0].channels)
        channel.main_input = channel.reserve_input = quint8(number);
    bench.expectWarning(loadTitle,
                        QStringLiteral("Error load rules from %1").arg(bench.path("rules.vrr")));
    bench.loadBytes(written(torn).left(PortSize));
    QCOMPARE(bench.report(), QString());
    const auto drop = [&bench](DragFrame *from, DragFrame *to) {
        bench.window.slotPressEvent(from);
        bench.window.slotEnterEvent(to);
        bench.window.slotDropEvent(to);
    };
    drop(bench.matrix->reserve[11], bench.matrix->main[3]);
    drop(bench.matrix->main[3], bench.matrix->homes[2]);
    bench.window.slotVRPortView(quint8(number));
    bench.matrix->outputButton(0)->click();
    QCOMPARE(bench.differences(bench.window.routerModel(), 0), QString());
}

// What is a nibble goes as it is; a greater number as no port.
void TestRuleFiles::foreignInputsOnTheWire()
{
    RouterModel model;
    int channel = 0;
    for (const int number : {12, 13, 14, 16, 200, 255}) {
        ChannelRecord *records = &model.output_ports[0].channels[std::size_t(channel)];
        records[0].main_input = quint8(number);
        records[0].reserve_input = 7;
        records[1].reserve_input = quint8(number);
        records[1].crs_enabled = true;
        channel += 2;
    }
    Bench bench;
    bench.router.setWorking(tk7sim::RouterConfig());
    QVERIFY(bench.connectToRouter());
    QTRY_VERIFY(bench.heard().contains("$VRVER\r\n"));
    bench.router.clearTranscript();
    bench.router.resetCounters();
    bench.expectLoaded();
    bench.loadBytes(written(model));
    QCOMPARE(bench.report(), QString());
    QTRY_VERIFY_WITH_TIMEOUT(bench.heard().size() >= 80, 10000);
    QCOMPARE(bench.heard().size(), 80);
    QCOMPARE(bench.heard().first(),
             checkedSentence("$VRRUL,0,B,7C00CF017D00DF017E00EF017F00FF017F00FF017F00FF01"));
    QCOMPARE(bench.router.counters().refusedSentences, quint64(0));
    for (std::size_t c = 0; c < 12; ++c) {
        const tk7sim::Channel &heard = bench.router.working().outputs[0].channels[c];
        const int number = c < 6 ? 12 + int(c / 2) : 15;
        QCOMPARE(int(heard.mainInput), c % 2 == 0 ? number : 15);
        QCOMPARE(int(heard.reserveInput), c % 2 == 0 ? 7 : number);
    }
}

QTEST_MAIN(TestRuleFiles)
#include "tst_rulefiles.moc"
