#include "scriptedbench.h"

#include "link/nmeaserialport.h"
#include "platform/keyboard.h"
#include "support/aistestuser.h"
#include "support/checkedline.h"

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QWindow>

/*! The service button and what it needs, the counters of the ports, the chip, the AIS test. */
class tst_service : public QObject
{
    Q_OBJECT

private slots:
    void needsTheLeftControlKey_data();
    void needsTheLeftControlKey();
    void leftControlKeyByItsEvents();
    void needsAConnection();
    void opensByVersion_data();
    void opensByVersion();
    void functionsByVersion_data();
    void functionsByVersion();
    void opensWithTheseSentences_data();
    void opensWithTheseSentences();
    void noBoxAtTheOpening_data();
    void noBoxAtTheOpening();
    void pollIsAChain();
    void lostAnswerEndsTheChain();
    void pollStartsAnew();
    void closingEndsThePoll();
    void valuesAsReceived_data();
    void valuesAsReceived();
    void foreignPorts_data();
    void foreignPorts();
    void clearing();
    void clearRestartsThePeriod();
    void chipIdentifier();
    void chipAnswerFlipsTheView();
    void chipWithoutAnAnswer();
    void stateIsLostOnClosing();
    void aisTest();
    void closingIsNoAisTest();
    void exitCloses();
    void staysOpenWhenTheRouterIsTaken();
    void sendersAskForAConnection();
    void sendersInTheHandshake();
    void whatIsHandledAtOnce();
    void boxesComeBehindTheSentence_data();
    void boxesComeBehindTheSentence();
};

using Sentence = std::function<void(NmeaSerialPort &)>;
Q_DECLARE_METATYPE(Sentence)

namespace {

constexpr int pollMs = 2000;

const QByteArray chipDigits = "30313233343536373839414243444546"; // 0123456789ABCDEF
const QString chipText = QStringLiteral("FEDC BA98 7654 3210 ");
const QString chipHex = QStringLiteral("46454443 42413938 37363534 33323130 ");

BoxAnswer::Box warning(const QString &title, const QString &text)
{
    return {title, text, QMessageBox::Warning};
}

BoxAnswer::Box unknownVersion()
{
    return warning(QStringLiteral("Service"), QStringLiteral("Unknown Router firmware version."));
}

BoxAnswer::Box oldVersion()
{
    return warning(
        QStringLiteral("Service"),
        QStringLiteral("Service functions support Router firmware version 3.0 or higher."));
}

QByteArray request(int port)
{
    return checkedLine("$VRSTA," + QByteArray::number(port));
}

int requestedPort(const QByteArray &sentence)
{
    static const QByteArray head = "$VRSTA,";
    if (!sentence.startsWith(head))
        return -1;
    return sentence.mid(head.size(), sentence.indexOf('*') - head.size()).toInt();
}

// A router whose counters tell their port and their column.
void answerPolls(ScriptedBench &bench, int lost = -1)
{
    bench.onLine = [&bench, lost](const QByteArray &sentence) {
        const int port = requestedPort(sentence);
        if (port < 0 || port == lost)
            return;
        QByteArray body = "$VRSTA," + QByteArray::number(port);
        for (int column = 0; column < 5; ++column)
            body += ',' + QByteArray::number(1000 * port + column);
        bench.say(body);
    };
}

QTableWidget *tableOf(const servicedlg &dialog)
{
    return dialog.findChild<QTableWidget *>(QStringLiteral("tableWidget"));
}

QString cell(const servicedlg &dialog, int row, int column)
{
    return tableOf(dialog)->item(row, column)->text();
}

bool isTableEmpty(const servicedlg &dialog)
{
    const QTableWidget *table = tableOf(dialog);
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            if (!table->item(row, column)->text().isEmpty())
                return false;
        }
    }
    return true;
}

QPushButton *button(const servicedlg &dialog, const char *name)
{
    auto *found = dialog.findChild<QPushButton *>(QString::fromLatin1(name));
    if (!found)
        qFatal("no button %s", name);
    return found;
}

void callAllSenders(MainWindow &window)
{
    window.slotRequestStatusErrors(7);
    window.slotClearStatusErrors();
    window.slotSendMode(QStringLiteral("Day"));
    window.slotSendLockPassword(QStringLiteral("aB3"));
    window.slotSendUnlockPassword(QStringLiteral("aB3"));
    window.slotSendRemovePassword();
    window.slotVRViewPassword();
    window.slotLockClicked();
}

QString chipLabel(const servicedlg &dialog)
{
    return dialog.findChild<QLabel *>(QStringLiteral("label_ChipID"))->text();
}

} // namespace

void tst_service::needsTheLeftControlKey_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<bool>("opens"); // with the key

    QTest::newRow("3.5") << QByteArray("3.5") << true;
    QTest::newRow("2.9") << QByteArray("2.9") << false;
    QTest::newRow("unknown") << QByteArray() << false;
}

// Without it no box tells anything either, whatever the router is.
void tst_service::needsTheLeftControlKey()
{
    QFETCH(QByteArray, version);
    QFETCH(bool, opens);
    ScriptedBench bench(version);
    QVERIFY(bench.connectToRouter());
    bench.leftControl = false;
    QVERIFY(!bench.inService([](servicedlg &) {}));
    bench.waitUntilHeard();
    QCOMPARE(bench.heard(), QList<QByteArray>());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));

    bench.leftControl = true;
    if (!opens)
        bench.boxes.expect(version.isEmpty() ? unknownVersion() : oldVersion());
    QCOMPARE(bench.inService([](servicedlg &) {}), opens);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

// On a desktop that can't be asked the window has followed the key since it was made.
void tst_service::leftControlKeyByItsEvents()
{
    constexpr quint32 leftControl = 0xffe3;
    constexpr quint32 rightControl = 0xffe4;
    ScriptedBench bench;
    platform::setLeftControlSource({});
    QVERIFY(bench.connectToRouter());
    bench.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&bench.window));
    const auto strike = [&](QEvent::Type type, quint32 key) {
        QKeyEvent event(type, Qt::Key_Control, Qt::NoModifier, 0, key, 0);
        QCoreApplication::sendEvent(bench.window.windowHandle(), &event);
    };
    strike(QEvent::KeyPress, rightControl);
    QVERIFY(!bench.inService([](servicedlg &) {}));
    strike(QEvent::KeyPress, leftControl);
    QVERIFY(bench.inService([](servicedlg &) {}));
    strike(QEvent::KeyPress, leftControl);
    strike(QEvent::KeyRelease, leftControl);
    QVERIFY(!bench.inService([](servicedlg &) {}));
}

void tst_service::needsAConnection()
{
    ScriptedBench bench;
    QVERIFY(!bench.inService([](servicedlg &) {}));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_service::opensByVersion_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<bool>("opens");

    QTest::newRow("2.9") << QByteArray("2.9") << false;
    for (const char *version : {"3.0", "3.1", "3.3", "3.4", "3.5", "4.0", "10.0"})
        QTest::newRow(version) << QByteArray(version) << true;
    QTest::newRow("unknown") << QByteArray() << false;
}

void tst_service::opensByVersion()
{
    QFETCH(QByteArray, version);
    QFETCH(bool, opens);
    ScriptedBench bench(version);
    QVERIFY(bench.connectToRouter());
    if (!opens)
        bench.boxes.expect(version.isEmpty() ? unknownVersion() : oldVersion());
    QCOMPARE(bench.inService([](servicedlg &) {}), opens);
    bench.waitUntilHeard();
    QVERIFY(opens || bench.heard().isEmpty());
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_service::functionsByVersion_data()
{
    QTest::addColumn<bool>("statistics");
    QTest::addColumn<bool>("aisTest");

    QTest::newRow("3.0") << false << false;
    QTest::newRow("3.1") << true << false;
    QTest::newRow("3.3") << true << false;
    QTest::newRow("3.4") << true << true;
    QTest::newRow("3.5") << true << true;
    QTest::newRow("4.0") << true << true;
}

void tst_service::functionsByVersion()
{
    QFETCH(bool, statistics);
    QFETCH(bool, aisTest);
    ScriptedBench bench(QTest::currentDataTag());
    QVERIFY(bench.connectToRouter());
    const AisTestUser tester;
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        for (const char *name : {"pushButton_Clear", "pushButton_ChipID", "pushButton_Lock"})
            QCOMPARE(button(dialog, name)->isEnabled(), statistics);
        QCOMPARE(tableOf(dialog)->isEnabled(), statistics);
        QCOMPARE(dialog.findChild<QLabel *>("label_ChipID")->isEnabled(), statistics);
        for (const char *name : {"pushButton_Fw_Update", "pushButton_AisTest", "pushButton_Exit"})
            QVERIFY(button(dialog, name)->isEnabled());
        if (!aisTest) {
            bench.boxes.expect(
                warning(QStringLiteral("Ais Test"),
                        QStringLiteral("Firmware version below 3.5 does not support AIS Test")));
        }
        button(dialog, "pushButton_AisTest")->click();
        QCOMPARE(dialog.isVisible(), !aisTest);
    }));
    QCOMPARE(tester.hasCome(), aisTest);
    bench.waitUntilHeard();
    QTRY_COMPARE(bench.heard().contains("$VRATM,OFF\r\n"), aisTest);
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_service::opensWithTheseSentences_data()
{
    QTest::addColumn<QByteArray>("version");

    QTest::newRow("3.5") << QByteArray("3.5");
    QTest::newRow("3.0, though nothing of the answers can be used") << QByteArray("3.0");
}

void tst_service::opensWithTheseSentences()
{
    QFETCH(QByteArray, version);
    ScriptedBench bench(version);
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QCOMPARE(dialog.parentWidget(), &bench.window);
        QVERIFY(dialog.isModal());
        QVERIFY(!(dialog.windowFlags() & Qt::WindowContextHelpButtonHint));
        QTRY_COMPARE(bench.heard(), QList<QByteArray>({"$VRSER\r\n", request(0)}));
    }));
    QVERIFY(!bench.serviceDialog());
}

void tst_service::noBoxAtTheOpening_data()
{
    QTest::addColumn<QByteArray>("status");

    QTest::newRow("no password") << QByteArray("$VRLCK,0,0");
    QTest::newRow("no password, a level all the same") << QByteArray("$VRLCK,0,5");
    for (int level = 0; level <= 5; ++level)
        QTest::addRow("level %d", level) << "$VRLCK,1," + QByteArray::number(level);
}

void tst_service::noBoxAtTheOpening()
{
    QFETCH(QByteArray, status);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    bench.say(status);
    bench.waitUntilHeard();
    QVERIFY(bench.inService([&](servicedlg &) { bench.waitUntilHeard(); }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_service::pollIsAChain()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    answerPolls(bench);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(isTableEmpty(dialog));
        QTRY_COMPARE(cell(dialog, 11, 4), QStringLiteral("11004"));
        QList<QByteArray> expected = {"$VRSER\r\n"};
        for (int port = 0; port < 12; ++port)
            expected += request(port);
        // The last answer asks for nothing.
        QTest::qWait(200);
        QCOMPARE(bench.heard(), expected);
        for (int row = 0; row < 12; ++row) {
            for (int column = 0; column < 5; ++column)
                QCOMPARE(cell(dialog, row, column), QString::number(1000 * row + column));
        }
    }));
}

void tst_service::lostAnswerEndsTheChain()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    answerPolls(bench, 3);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        const QList<QByteArray> first = {"$VRSER\r\n", request(0), request(1), request(2),
                                         request(3)};
        QTRY_COMPARE(bench.heard(), first);
        QTRY_VERIFY_WITH_TIMEOUT(bench.heard().size() > first.size(), 3000);
        QCOMPARE(bench.heard().at(first.size()), request(0));
        QVERIFY2(clock.elapsed() >= pollMs, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(cell(dialog, 3, 0).isEmpty());
        QCOMPARE(cell(dialog, 2, 0), QStringLiteral("2000"));
    }));
}

void tst_service::pollStartsAnew()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    answerPolls(bench);
    QVERIFY(bench.inService([&](servicedlg &) {
        QTRY_COMPARE_WITH_TIMEOUT(bench.heard().count(request(0)), 3, 6000);
    }));
    QList<qint64> starts;
    for (const PtyPair::Line &line : bench.line.lines()) {
        if (line.text == request(0))
            starts += line.micros / 1000;
    }
    for (int i = 1; i < starts.size(); ++i) {
        const qint64 gap = starts.at(i) - starts.at(i - 1);
        QVERIFY2(gap > pollMs - 150 && gap < pollMs + 150, qPrintable(QString::number(gap)));
    }
}

void tst_service::closingEndsThePoll()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(
        bench.inService([&](servicedlg &) { QTRY_COMPARE(bench.heard().count(request(0)), 1); }));
    // Also an answer that comes late asks for nothing any more.
    bench.say("$VRSTA,0,1,2,3,4,5");
    QTest::qWait(pollMs + 300);
    QCOMPARE(bench.heard(), QList<QByteArray>({"$VRSER\r\n", request(0)}));
}

void tst_service::valuesAsReceived_data()
{
    QTest::addColumn<QByteArray>("fields");
    QTest::addColumn<QStringList>("shown");

    QTest::newRow("plain") << QByteArray("120934,2,0,1,0")
                           << QStringList({"120934", "2", "0", "1", "0"});
    QTest::newRow("largest") << QByteArray("4294967295,4294967295,4294967295,4294967295,4294967295")
                             << QStringList({"4294967295", "4294967295", "4294967295", "4294967295",
                                             "4294967295"});
    QTest::newRow("leading zeros")
        << QByteArray("007,00,01,02,03") << QStringList({"7", "0", "1", "2", "3"});
    QTest::newRow("no numbers") << QByteArray("a,b,,-1,x")
                                << QStringList({"0", "0", "0", "0", "0"});
}

void tst_service::valuesAsReceived()
{
    QFETCH(QByteArray, fields);
    QFETCH(QStringList, shown);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bench.say("$VRSTA,11," + fields);
        bench.waitUntilHeard();
        QStringList found;
        for (int column = 0; column < 5; ++column)
            found += cell(dialog, 11, column);
        QCOMPARE(found, shown);
    }));
}

void tst_service::foreignPorts_data()
{
    QTest::addColumn<QByteArray>("port");

    for (const char *port : {"12", "99", "255", "256", "4294967295", "2147483648"})
        QTest::newRow(port) << QByteArray(port);
}

void tst_service::foreignPorts()
{
    QFETCH(QByteArray, port);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QTRY_COMPARE(bench.heard().size(), 2);
        bench.say("$VRSTA," + port + ",1,2,3,4,5");
        bench.waitUntilHeard();
        QVERIFY(isTableEmpty(dialog));
        QTest::qWait(100);
        QCOMPARE(bench.heard().size(), 2);
    }));
}

void tst_service::clearing()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QTRY_COMPARE(bench.heard().size(), 2);
        button(dialog, "pushButton_Clear")->click();
        QTRY_COMPARE(bench.heard().mid(2), QList<QByteArray>({"$VRSTC\r\n", request(0)}));
    }));
}

void tst_service::clearRestartsThePeriod()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QTest::qWait(pollMs / 2);
        bench.forgetHeard();
        QElapsedTimer clock;
        clock.start();
        button(dialog, "pushButton_Clear")->click();
        QTRY_COMPARE_WITH_TIMEOUT(bench.heard().count(request(0)), 2, 4000);
        // Without the restart it would have come after half of that.
        QVERIFY2(clock.elapsed() >= pollMs - 50, qPrintable(QString::number(clock.elapsed())));
    }));
}

void tst_service::chipIdentifier()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    bench.onLine = [&](const QByteArray &sentence) {
        if (sentence == "$VRSER\r\n")
            bench.say("$VRSER," + chipDigits);
    };
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QVERIFY(chipLabel(dialog).isEmpty());
        QTRY_COMPARE(chipLabel(dialog), chipText);
        button(dialog, "pushButton_ChipID")->click();
        QCOMPARE(chipLabel(dialog), chipHex);
        button(dialog, "pushButton_ChipID")->click();
        QCOMPARE(chipLabel(dialog), chipText);
    }));
}

void tst_service::chipAnswerFlipsTheView()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        for (const QString &shown : {chipText, chipHex, chipText}) {
            bench.say("$VRSER," + chipDigits);
            QTRY_COMPARE(chipLabel(dialog), shown);
        }
        // Capitals or not, the digits are shown in lower case.
        bench.say("$VRSER,00FFaAbB00000000000000000000007F");
        QTRY_COMPARE(chipLabel(dialog), QStringLiteral("7f000000 00000000 00000000 bbaaff00 "));
    }));
}

void tst_service::chipWithoutAnAnswer()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        button(dialog, "pushButton_ChipID")->click();
        QVERIFY(chipLabel(dialog).isEmpty());
        // The click has flipped the view, so the answer shows the other one.
        bench.say("$VRSER," + chipDigits);
        QTRY_COMPARE(chipLabel(dialog), chipHex);
    }));
}

void tst_service::stateIsLostOnClosing()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    answerPolls(bench);
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bench.say("$VRSER," + chipDigits);
        QTRY_COMPARE(chipLabel(dialog), chipText);
        QTRY_VERIFY(!cell(dialog, 11, 0).isEmpty());
    }));
    bench.onLine = nullptr;
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        bench.waitUntilHeard();
        QVERIFY(isTableEmpty(dialog));
        QVERIFY(chipLabel(dialog).isEmpty());
    }));
}

void tst_service::aisTest()
{
    ScriptedBench bench("3.4");
    QVERIFY(bench.connectToRouter());
    const AisTestUser tester([&](aistestdlg &) {
        QVERIFY(!bench.serviceDialog());
        QTRY_COMPARE(bench.heard().mid(2), QList<QByteArray>({"$VRATM,ON\r\n"}));
        QTest::qWait(100);
        QCOMPARE(bench.heard().size(), 3);
    });
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        QTRY_COMPARE(bench.heard().size(), 2);
        button(dialog, "pushButton_AisTest")->click();
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), 5);
    }));
    QVERIFY(tester.hasCome());
    QTRY_COMPARE(bench.heard().mid(2), QList<QByteArray>({"$VRATM,ON\r\n", "$VRATM,OFF\r\n"}));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
}

void tst_service::closingIsNoAisTest()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([](servicedlg &dialog) { dialog.close(); }));
    QTRY_COMPARE(bench.heard().size(), 2);
    QTest::qWait(100);
    QCOMPARE(bench.heard().size(), 2);
}

void tst_service::exitCloses()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([](servicedlg &dialog) {
        button(dialog, "pushButton_Exit")->click();
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), 0);
    }));
}

// Only a link that has died closes the dialog; of a router that has been taken over the user sees
// the message, and the table stops changing.
void tst_service::staysOpenWhenTheRouterIsTaken()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        const QPointer<servicedlg> guard(&dialog);
        bench.boxes.expect(warning(QStringLiteral("COM Port"),
                                   QStringLiteral("TK-7 Router Busy another Control programm")));
        bench.sayBare("$VRCNB");
        QTRY_VERIFY(!bench.window.isConnected());
        QVERIFY(guard && guard->isVisible());
        // Nobody is there to be asked.
        for (const char *name : {"pushButton_Clear", "pushButton_ChipID"})
            button(dialog, name)->click();
    }));
    QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([](servicedlg &) {}));
}

// All senders may be called at any time. Of those that ask nobody for a connection it is the link
// that drops what can't be sent.
void tst_service::sendersAskForAConnection()
{
    ScriptedBench bench;
    callAllSenders(bench.window);
    QVERIFY(bench.connectToRouter());
    callAllSenders(bench.window);
    QTRY_COMPARE(bench.heard(),
                 QList<QByteArray>({"$VRSTA,7*59\r\n", "$VRSTC\r\n", checkedLine("$VRMOD,Day"),
                                    checkedLine("$VRPWS,aB3"), checkedLine("$VRPWU,aB3"),
                                    "$VRPWD\r\n", "$VRPWV\r\n"}));
}

// Of all of them only the poll asks whether the connection stands.
void tst_service::sendersInTheHandshake()
{
    ScriptedBench bench;
    bench.boxes.expect({QStringLiteral("TK-7 Router"),
                        QStringLiteral("NMEA Router TK-7 connected\n   Download rules complete"),
                        QMessageBox::Information});
    bench.find<QPushButton>("pushButton_connect")->click();
    QVERIFY(bench.window.currentLink() && !bench.window.isConnected());
    callAllSenders(bench.window);
    QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    bench.waitUntilHeard();
    QList<QByteArray> heard = bench.heard();
    heard.removeAll("$VRCNT\r\n");
    QCOMPARE(heard.mid(0, 6),
             QList<QByteArray>({"$VRSTC\r\n", checkedLine("$VRMOD,Day"), checkedLine("$VRPWS,aB3"),
                                checkedLine("$VRPWU,aB3"), "$VRPWD\r\n", "$VRPWV\r\n"}));
    QVERIFY(!heard.contains(request(7)));
}

// Counters, chip and lock are dealt with before the link goes on reading, the lock's box included.
void tst_service::whatIsHandledAtOnce()
{
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &dialog) {
        NmeaSerialPort *link = bench.window.currentLink();
        emit link->signalVRStatusErrors(11, 1, 2, 3, 4, 5);
        QCOMPARE(cell(dialog, 11, 4), QStringLiteral("5"));
        QByteArray chip = QByteArray::fromHex(chipDigits);
        emit link->signalVRSerial(&chip);
        QCOMPARE(chipLabel(dialog), chipText);
        bench.boxes.expect(
            warning(QStringLiteral("Unlock TK-7"), QStringLiteral("Wrong Unlock Password")));
        emit link->signalVRLockStatus(true, 0);
        QVERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
        QCOMPARE(button(dialog, "pushButton_Lock")->text(), QStringLiteral("UNLOCK"));
    }));
}

void tst_service::boxesComeBehindTheSentence_data()
{
    QTest::addColumn<Sentence>("sentence");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("icon");

    const auto answer = [](bool result) {
        return Sentence(
            [result](NmeaSerialPort &link) { emit link.signalVRSetPasswordAnswer(result); });
    };
    const QString title = QStringLiteral("Set lock password");
    QTest::newRow("password set") << answer(true) << title << "Lock password set successfully"
                                  << int(QMessageBox::Information);
    QTest::newRow("password refused")
        << answer(false) << title << "Password setting error" << int(QMessageBox::Warning);
    QTest::newRow("password under view")
        << Sentence([](NmeaSerialPort &link) { emit link.signalVRSendPassword("aB3"); })
        << "Lock password"
        << "Current Lock Password: aB3" << int(QMessageBox::Information);
}

// The signal of the sentence returns before its box opens.
void tst_service::boxesComeBehindTheSentence()
{
    QFETCH(Sentence, sentence);
    QFETCH(QString, title);
    QFETCH(QString, text);
    QFETCH(int, icon);
    ScriptedBench bench;
    QVERIFY(bench.connectToRouter());
    QVERIFY(bench.inService([&](servicedlg &) {
        const int before = bench.boxes.answered();
        bench.boxes.expect({title, text, QMessageBox::Icon(icon)});
        sentence(*bench.window.currentLink());
        QCOMPARE(bench.boxes.answered(), before);
        QTRY_VERIFY2(bench.boxes.isDone(), qPrintable(bench.boxes.report()));
    }));
}

QTEST_MAIN(tst_service)
#include "tst_service.moc"
