#include "model/randommodel.h"
#include "model/sentencebuilders.h"
#include "routerconfigof.h"
#include "rules/difference.h"
#include "rules/ruledocument.h"
#include "rulesbench.h"
#include "support/ptypair.h"

#include <QtTest>

using namespace RulesFixture;
using tk7sim::Fault;

/*! The program at a router, over a pseudo-terminal, as it should go. */
class TestRulesRouter : public QObject
{
    Q_OBJECT

private slots:
    void listsTheRoutersPort();
    void backupHasTheRoutersRules();
    void backupKeepsAFileThatIsThere();
    void compareTells();
    void restoreSaves();
    void restoreWithoutSaving();
    void restoreOfWhatIsThere();
    void restoreAsks_data();
    void restoreAsks();
    void restoreStaysUntilReturn();
    void restoreIsTriedUntilTheCableIsOut();
    void restoreRefusesAFile_data();
    void restoreRefusesAFile();
    void records_data();
    void records();
    void recordEndsWithItsPipe();
    void progressIsForTerminals();
};

void TestRulesRouter::listsTheRoutersPort()
{
    RulesBench bench;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), bench.folder.path());
    bench.program.setProcessEnvironment(environment);
    QVERIFY(QDir(bench.folder.path()).mkdir(QStringLiteral("tk7-ports")));
    for (const char *name : {"tk7-ports/tk7-sim", "tk7-ports/bridge"})
        QVERIFY(QFile::link(bench.port(), bench.path(name)));
    QCOMPARE(bench.run({QStringLiteral("ports")}), 0);
    const QStringList names = bench.out().split(QLatin1Char('\n'));
    QVERIFY(names.contains(QStringLiteral("tk7-sim")));
    QVERIFY(names.indexOf(QStringLiteral("bridge")) < names.indexOf(QStringLiteral("tk7-sim")));

    // And the name is as good as the path.
    QCOMPARE(bench.run({QStringLiteral("backup"), QStringLiteral("tk7-sim"), bench.path("a.vrr")}),
             0);
}

void TestRulesRouter::backupHasTheRoutersRules()
{
    RulesBench bench;
    const RouterModel model = randomModel(4);
    bench.giveRouter(model);
    QCOMPARE(bench.run({QStringLiteral("backup"), Port, bench.path("a.vrr")}), 0);
    QCOMPARE(bench.out(), QString());
    QCOMPARE(bench.err(), QString());
    QString error;
    const auto document = RuleDocument::read(bench.path("a.vrr"), error);
    QVERIFY2(document, qPrintable(error));
    QCOMPARE(document->remarks, QStringList());
    QCOMPARE(differences(model, document->model), QStringList());
    QTRY_COMPARE(bench.heard().constLast(), QByteArray("$VRDCN\r\n"));
    QTRY_VERIFY(!bench.router.isConnected());
    QVERIFY(bench.router.working() == routerConfigOf(model));
}

void TestRulesRouter::backupKeepsAFileThatIsThere()
{
    RulesBench bench;
    QFile file(bench.path("a.vrr"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("precious");
    file.close();
    const QStringList command = {QStringLiteral("backup"), Port, file.fileName()};
    QCOMPARE(bench.run(command), 2);
    QVERIFY(bench.err().contains(QStringLiteral("a.vrr is there; --force writes over it")));
    QCOMPARE(contentOf(file.fileName()), QByteArray("precious"));
    QCOMPARE(bench.router.handshakes(), 0);

    // No force makes a folder or a device a file.
    for (const QString &path : {bench.folder.path(), QStringLiteral("/dev/null")}) {
        QCOMPARE(bench.run({QStringLiteral("backup"), QStringLiteral("--force"), Port, path}), 2);
        QVERIFY2(bench.err().contains(QStringLiteral("is no file")), qPrintable(bench.err()));
    }
    QCOMPARE(bench.run({QStringLiteral("backup"), Port, bench.path("none/a.vrr")}), 2);
    QVERIFY(bench.err().contains(QStringLiteral("no such folder")));
    QCOMPARE(bench.router.handshakes(), 0);

    QCOMPARE(bench.run(command + QStringList(QStringLiteral("--force"))), 0);
    QVERIFY(contentOf(file.fileName()).startsWith("VRR"));
    QCOMPARE(namesIn(bench), QStringList(QStringLiteral("a.vrr")));
}

void TestRulesRouter::compareTells()
{
    RulesBench bench;
    bench.giveRouter(shipModel());
    const QString same = bench.writeFile("same.vrr", shipModel());
    const QString other = bench.writeFile("other.vrr", changedModel());
    QCOMPARE(bench.run({QStringLiteral("compare"), Port, same}), 0);
    QCOMPARE(bench.out(), QString());
    QCOMPARE(bench.run({QStringLiteral("compare"), Port, other}), 1);
    QCOMPARE(bench.out(),
             QStringLiteral("Output 3 ECDIS 1, channel 2: main input 5 LOG -> 4 DEPTH\n"));
    QVERIFY(bench.err().contains(QStringLiteral("in the file -> in the router")));
    QVERIFY(bench.router.working() == routerConfigOf(shipModel()));
}

void TestRulesRouter::restoreSaves()
{
    RulesBench bench;
    bench.giveRouter(shipModel());
    const QString file = bench.writeFile("a.vrr", changedModel());
    QCOMPARE(bench.run({QStringLiteral("restore"), file, Port, QStringLiteral("--yes"),
                        QStringLiteral("--save")}),
             0);
    QCOMPARE(bench.out(), QStringLiteral("These rules will change:\n") + Change);
    QVERIFY(bench.err().contains(QStringLiteral("restored, and saved in the router")));
    QVERIFY(bench.router.eeprom() == routerConfigOf(changedModel()));

    // The upload is the window's, in its order; nothing touches lock and firmware.
    QByteArrayList wanted = {"$VRRLD\r\n"};
    for (const QString &sentence : uploadSentences(changedModel()))
        wanted += sentence.toLatin1();
    wanted += {"$VRRLD\r\n", "$VRSVR\r\n", "$VRDCN\r\n"};
    QTRY_COMPARE(bench.heard().constLast(), QByteArray("$VRDCN\r\n"));
    const QByteArrayList heard = bench.heard();
    QCOMPARE(heard.mid(heard.indexOf("$VRRLD\r\n")), wanted);
}

void TestRulesRouter::restoreWithoutSaving()
{
    RulesBench bench;
    bench.giveRouter(shipModel());
    bool hadIt = false;
    connect(&bench.router, &tk7sim::RouterSimulator::configurationChanged, this,
            [&] { hadIt = hadIt || bench.router.working() == routerConfigOf(changedModel()); });
    const QString file = bench.writeFile("a.vrr", changedModel());
    QCOMPARE(bench.run({QStringLiteral("restore"), file, Port, QStringLiteral("--yes")}), 0);
    QVERIFY(bench.err().contains(QStringLiteral("restored, but not saved")));
    QVERIFY(hadIt);
    QCOMPARE(bench.count("$VRSVR"), 0);
    QVERIFY(bench.router.eeprom() == routerConfigOf(shipModel()));
}

void TestRulesRouter::restoreOfWhatIsThere()
{
    RulesBench bench;
    bench.giveRouter(shipModel());
    const QString file = bench.writeFile("a.vrr", shipModel());
    QCOMPARE(bench.run({QStringLiteral("restore"), file, Port}), 0);
    QVERIFY(bench.err().contains(QStringLiteral("the router has these rules already")));
    QCOMPARE(bench.count("$VRRUL"), 0);

    QCOMPARE(bench.run({QStringLiteral("restore"), file, Port, QStringLiteral("--yes"),
                        QStringLiteral("--save")}),
             0);
    QCOMPARE(bench.out(), QString());
    QCOMPARE(bench.count("$VRSVR"), 1);
}

void TestRulesRouter::restoreAsks_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("y") << QByteArray("y\n") << 0;
    QTest::newRow("yes") << QByteArray(" YES \n") << 0;
    QTest::newRow("n") << QByteArray("n\n") << 1;
    QTest::newRow("Return") << QByteArray("\n") << 1;
    QTest::newRow("nobody there") << QByteArray() << 1;
    QTest::newRow("something else") << QByteArray("yellow\n") << 1;
}

void TestRulesRouter::restoreAsks()
{
    QFETCH(QByteArray, answer);
    QFETCH(int, exitCode);
    RulesBench bench;
    bench.giveRouter(shipModel());
    const QString file = bench.writeFile("a.vrr", changedModel());
    bench.start({QStringLiteral("restore"), file, Port});
    bench.program.write(answer);
    bench.program.closeWriteChannel();
    QCOMPARE(bench.finish(), exitCode);
    QCOMPARE(bench.out(), QStringLiteral("These rules will change:\n") + Change);
    QVERIFY(bench.err().contains(QStringLiteral("Restore? [y/N] ")));
    QCOMPARE(bench.err().contains(QStringLiteral("nothing was changed")), exitCode == 1);
    QCOMPARE(bench.count("$VRRUL"), exitCode == 0 ? OutputPortCount : 0);
    QTRY_COMPARE(bench.heard().constLast(), QByteArray("$VRDCN\r\n"));
}

// Whoever sits at a terminal can try the rules; a watch that is longer than the link's shows that
// the connection lives on meanwhile.
void TestRulesRouter::restoreStaysUntilReturn()
{
    RulesBench bench;
    PtyPair terminal;
    bench.giveRouter(shipModel());
    const QString file = bench.writeFile("a.vrr", changedModel());
    bench.program.setStandardInputFile(terminal.slavePath());
    bench.start({QStringLiteral("restore"), file, Port});
    QVERIFY(terminal.write("y\n"));
    QTRY_VERIFY_WITH_TIMEOUT(bench.count("$VRRLD") == 2
                                 && bench.router.working() == routerConfigOf(changedModel()),
                             10000);
    // Nothing but the watch speaks now.
    QTRY_COMPARE_WITH_TIMEOUT(bench.router.transcript().constLast().line, QByteArray("$VRCNC\r\n"),
                              10000);
    QVERIFY(bench.router.isConnected());
    QVERIFY(bench.router.working() == routerConfigOf(changedModel()));
    QVERIFY(terminal.write("\n"));
    QCOMPARE(bench.finish(), 0);
    QVERIFY(bench.err().contains(QStringLiteral("until you press Return")));
    QTRY_VERIFY(bench.router.working() == routerConfigOf(shipModel()));
}

void TestRulesRouter::restoreIsTriedUntilTheCableIsOut()
{
    RulesBench bench;
    PtyPair terminal;
    bench.giveRouter(shipModel());
    const QString file = bench.writeFile("a.vrr", changedModel());
    bench.program.setStandardInputFile(terminal.slavePath());
    bench.start({QStringLiteral("restore"), file, Port});
    QVERIFY(terminal.write("y\n"));
    QTRY_VERIFY_WITH_TIMEOUT(bench.err().contains(QStringLiteral("until you press Return")), 10000);
    bench.router.unplug();
    QCOMPARE(bench.finish(), 3);
    QVERIFY(bench.err().contains(QStringLiteral("the link to the router is lost")));
}

void TestRulesRouter::restoreRefusesAFile_data()
{
    QTest::addColumn<int>("cut");
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    QTest::addColumn<QString>("text");
    QTest::newRow("torn") << 1 << QByteArray() << QByteArray() << "torn, or not a rule file";
    QTest::newRow("name with a comma")
        << 0 << QByteArray("DEPTH") << QByteArray("D,PTH") << "can't be sent to a router";
    QTest::newRow("name that isn't ASCII")
        << 0 << QByteArray("DEPTH") << QByteArray("D\xc3\xa9TH") << "not plain ASCII";
    QTest::newRow("speed of no port")
        << 0 << QByteArray("\x00\x96\x00\x00", 4) << QByteArray("\x00\x97\x00\x00", 4)
        << "a speed that no port has";
    QTest::newRow("number of more than a nibble")
        << 0 << QByteArray("\x00\x04\x0f", 3) << QByteArray("\x00\x10\x0f", 3)
        << "input 16 can't be sent to a router";
    QTest::newRow("something behind its end")
        << -1 << QByteArray() << QByteArray() << "Behind its end: 1 bytes";
}

void TestRulesRouter::restoreRefusesAFile()
{
    QFETCH(int, cut);
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QFETCH(QString, text);
    RulesBench bench;
    const QString path = bench.writeFile("a.vrr", shipModel());
    QByteArray content = contentOf(path);
    if (!from.isEmpty()) {
        QVERIFY(content.contains(from));
        content.replace(from, to);
    }
    content = cut < 0 ? content + 'x' : content.left(content.size() - cut);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    QCOMPARE(bench.run({QStringLiteral("restore"), path, Port, QStringLiteral("--yes")}), 2);
    QVERIFY2(bench.err().contains(text), qPrintable(bench.err()));
    QCOMPARE(bench.router.handshakes(), 0);
}

void TestRulesRouter::records_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("view");
    QTest::addColumn<QString>("line");
    QTest::newRow("input") << "--input 2" << QByteArray("$VRVVW,242\r\n") << "^\\$HEHDT,";
    QTest::newRow("output") << "--output 1" << QByteArray("$VRVVW,31\r\n") << "^\\$HE";
    QTest::newRow("channel") << "--output 3 --channel 2" << QByteArray("$VRVVW,50\r\n") << "^!AIVD";
    QTest::newRow("time") << "--input 2 --time" << QByteArray("$VRVVW,242\r\n")
                          << "^20\\d\\d-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\dZ \\$HEHDT,";
}

void TestRulesRouter::records()
{
    QFETCH(QString, options);
    QFETCH(QByteArray, view);
    QFETCH(QString, line);
    RulesBench bench;
    bench.router.setWorking(tk7sim::RouterConfig::factory());
    bench.router.setEeprom(tk7sim::RouterConfig::factory());
    bench.router.setTrafficRate(10);
    QCOMPARE(bench.run(words("record PORT --for 1") + options.split(QLatin1Char(' '))), 0);
    const QStringList lines = bench.out().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QVERIFY(lines.size() > 2);
    const QRegularExpression wanted(line);
    int found = 0;
    for (const QString &recorded : lines)
        found += wanted.match(recorded).hasMatch();
    QVERIFY2(found > lines.size() / 4, qPrintable(bench.out()));
    QVERIFY(!bench.out().contains(QLatin1Char('\r')));
    QVERIFY(bench.heard().contains(view));
    QTRY_COMPARE(bench.heard().constLast(), QByteArray("$VRDCN\r\n"));
}

void TestRulesRouter::recordEndsWithItsPipe()
{
    RulesBench bench;
    bench.router.setTrafficRate(10);
    bench.program.start(QStringLiteral("bash"),
                        {QStringLiteral("-c"),
                         QStringLiteral("\"$0\" record \"$1\" --input 2 | head -n 1; "
                                        "echo \"exit ${PIPESTATUS[0]}\""),
                         QStringLiteral(TK7_RULES), bench.port()});
    QCOMPARE(bench.finish(), 0);
    const QStringList lines = bench.out().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines.at(0).startsWith(QLatin1String("$HE")));
    QCOMPARE(lines.at(1), QStringLiteral("exit 0"));
    QCOMPARE(bench.err(), QString());
    QTRY_COMPARE(bench.heard().constLast(), QByteArray("$VRDCN\r\n"));
}

void TestRulesRouter::progressIsForTerminals()
{
    RulesBench bench;
    bench.router.setFault(Fault::Slow, 100);
    PtyPair terminal;
    bench.program.setStandardErrorFile(terminal.slavePath());
    QCOMPARE(bench.run({QStringLiteral("backup"), Port, bench.path("a.vrr")}), 0);
    QTRY_VERIFY(terminal.received().contains("Reading the rules ... 9")
                && terminal.received().endsWith(" \r")); // and gone
    const QByteArray shown = terminal.received();
    QVERIFY(shown.contains("Looking for the router ... 0 %"));
    QVERIFY(shown.contains("\rReading the rules ... "));
    QVERIFY(!shown.contains('\n'));

    bench.program.setStandardErrorFile(QString());
    QCOMPARE(bench.run({QStringLiteral("backup"), Port, bench.path("b.vrr")}), 0);
    QCOMPARE(bench.err(), QString());
}

QTEST_GUILESS_MAIN(TestRulesRouter)
#include "tst_rulesrouter.moc"
