#include "model/randommodel.h"
#include "routerconfigof.h"
#include "rules/difference.h"
#include "rules/ruledocument.h"
#include "rulesbench.h"

#include <QtTest>

#include <csignal>
#include <functional>
#include <vector>

using namespace RulesFixture;
using tk7sim::Fault;

/*! The program at a router, over a pseudo-terminal, when things go wrong. */
class TestRulesTrouble : public QObject
{
    Q_OBJECT

private slots:
    void backupLeavesNothingBehind();
    void lostSentencesAreSentAgain();
    void routerThatTakesNotEverything();
    void downloadIsRepeated();
    void faults();
    void brokenOff();
    void brokenOffWhileItAsks();
};

namespace {

/*! A run that goes wrong. All of them are on their way at the same time. */
struct Trouble
{
    const char *name;
    const char *command; // FILE is a changed rule file
    std::function<void(RulesBench &)> prepare;
    const char *text;
    bool isMixed = false; // the router is left between two sets of rules
    bool isSaved = false; // the router has saved the new ones
};

void onSentence(RulesBench &bench, const char *head, int number,
                const std::function<void()> &action)
{
    QObject::connect(&bench.router, &tk7sim::RouterSimulator::lineReceived, &bench.program,
                     [&bench, head, number, action](const QByteArray &line) {
                         if (line.startsWith(head) && bench.count(head) == number)
                             action();
                     });
}

void unplugAt(RulesBench &bench, const char *head, int number)
{
    onSentence(bench, head, number, [&bench] {
        QMetaObject::invokeMethod(
            &bench.router, [&bench] { bench.router.unplug(); }, Qt::QueuedConnection);
    });
}

void silenceAt(RulesBench &bench, const char *head, int number)
{
    onSentence(bench, head, number, [&bench] { bench.router.setFault(Fault::Silent); });
}

const char *const restoreAndSave = "restore FILE PORT --yes --save";

} // namespace

// The router's names can be texts that a file can't hold. Two letters of the same kind cancel each
// other in the checksum, so that the name gets through.
void TestRulesTrouble::backupLeavesNothingBehind()
{
    RulesBench bench;
    auto config = routerConfigOf(shipModel());
    config.inputNames[4] = "\xc3\xa9\xc3\xa9";
    bench.router.setEeprom(config);
    bench.router.setWorking(config);
    QCOMPARE(bench.run({QStringLiteral("backup"), Port, bench.path("a.vrr")}), 3);
    QVERIFY2(bench.err().contains(QStringLiteral("a rule file can't hold the router's rules")),
             qPrintable(bench.err()));
    QCOMPARE(namesIn(bench), QStringList());
}

// No sentence is acknowledged. What the router hasn't got is sent once more.
void TestRulesTrouble::lostSentencesAreSentAgain()
{
    RulesBench bench;
    bench.giveRouter(shipModel());
    connect(&bench.router, &tk7sim::RouterSimulator::lineReceived, this,
            [&](const QByteArray &line) {
                if (line == "$VRRLD\r\n" && bench.count("$VRRLD") == 2)
                    bench.router.setWorking(routerConfigOf(shipModel()));
            });
    const QString file = bench.writeFile("a.vrr", changedModel());
    QCOMPARE(bench.run({QStringLiteral("restore"), file, Port, QStringLiteral("--yes"),
                        QStringLiteral("--save")}),
             0);
    QCOMPARE(bench.count("$VRRUL"), 2 * OutputPortCount);
    QVERIFY(bench.router.eeprom() == routerConfigOf(changedModel()));
}

void TestRulesTrouble::routerThatTakesNotEverything()
{
    RulesBench bench;
    bench.giveRouter(shipModel());
    connect(&bench.router, &tk7sim::RouterSimulator::lineReceived, this,
            [&](const QByteArray &line) {
                if (line == "$VRRLD\r\n")
                    bench.router.setWorking(routerConfigOf(shipModel()));
            });
    const QString file = bench.writeFile("a.vrr", changedModel());
    QCOMPARE(bench.run({QStringLiteral("restore"), file, Port, QStringLiteral("--yes"),
                        QStringLiteral("--save")}),
             1);
    QVERIFY2(bench.err().contains(QStringLiteral("the router has not taken everything")),
             qPrintable(bench.err()));
    QVERIFY(bench.err().contains(Change));
    QCOMPARE(bench.count("$VRRUL"), 3 * OutputPortCount);
    QCOMPARE(bench.count("$VRSVR"), 0);
    QVERIFY(bench.router.eeprom() == routerConfigOf(shipModel()));
}

// A download whose sentences come with wrong checksums is asked for again.
void TestRulesTrouble::downloadIsRepeated()
{
    RulesBench bench;
    bench.giveRouter(shipModel());
    connect(&bench.router, &tk7sim::RouterSimulator::lineReceived, this,
            [&](const QByteArray &line) {
                if (line != "$VRRLD\r\n")
                    return;
                if (bench.count("$VRRLD") == 3)
                    bench.router.clearFaults();
                else
                    bench.router.setFault(Fault::WrongChecksums);
            });
    QCOMPARE(bench.run({QStringLiteral("backup"), Port, bench.path("a.vrr")}), 0);
    QCOMPARE(bench.count("$VRRLD"), 3);
    QString error;
    const auto document = RuleDocument::read(bench.path("a.vrr"), error);
    QVERIFY(document);
    QCOMPARE(differences(shipModel(), document->model), QStringList());
}

void TestRulesTrouble::faults()
{
    const auto fault = [](Fault which) {
        return [which](RulesBench &bench) { bench.router.setFault(which); };
    };
    const Trouble troubles[] = {
        {"no such port", "backup nowhere0 NEW", [](RulesBench &) {}, "the port can't be opened"},
        {"silent, backup", "backup PORT NEW", fault(Fault::Silent), "no router answers"},
        {"silent, compare", "compare PORT FILE", fault(Fault::Silent), "no router answers"},
        {"silent, record", "record PORT --input 0", fault(Fault::Silent), "no router answers"},
        {"busy", "backup PORT NEW", fault(Fault::Busy), "busy with another control program"},
        {"wrong checksums", "backup PORT NEW", fault(Fault::WrongChecksums), "no router answers"},
        {"no second answer", "backup PORT NEW", fault(Fault::NoSecondAnswer), "no router answers"},
        {"busy in a connection", "backup PORT NEW",
         [](RulesBench &bench) {
             onSentence(bench, "$VRRLD", 1, [&bench] { bench.router.sendLine("$VRCNB\r\n"); });
         },
         "busy with another control program"},
        {"unplugged in a download", "backup PORT NEW",
         [](RulesBench &bench) {
             bench.router.setFault(Fault::Slow, 200);
             unplugAt(bench, "$VRRLD", 1);
         },
         "the link to the router is lost"},
        {"silent in a download", "compare PORT FILE",
         [](RulesBench &bench) { silenceAt(bench, "$VRRLD", 1); },
         "the link to the router is lost"},
        {"no whole download", "backup PORT NEW",
         [](RulesBench &bench) {
             onSentence(bench, "$VRRLD", 1,
                        [&bench] { bench.router.setFault(Fault::WrongChecksums); });
         },
         "missing: the speed of port 0, the rules of output 0"},
        {"unplugged in an upload", restoreAndSave,
         [](RulesBench &bench) { unplugAt(bench, "$VRRUL", 5); }, "the link to the router is lost",
         true},
        {"silent in an upload", restoreAndSave,
         [](RulesBench &bench) { silenceAt(bench, "$VRRUL", 5); }, "the link to the router is lost",
         true},
        {"busy in an upload", restoreAndSave,
         [](RulesBench &bench) {
             onSentence(bench, "$VRRUL", 5, [&bench] { bench.router.sendLine("$VRCNB\r\n"); });
         },
         "busy with another control program", true},
        {"unplugged in a save", restoreAndSave,
         [](RulesBench &bench) { unplugAt(bench, "$VRSVR", 1); }, "whether the router has saved",
         false, true},
        {"save error", restoreAndSave, fault(Fault::SaveError),
         "the router could not save its rules"},
        {"locked", restoreAndSave, fault(Fault::Locked), "the router is locked"},
        {"unplugged in a recording", "record PORT --input 2",
         [](RulesBench &bench) {
             bench.router.setTrafficRate(10);
             unplugAt(bench, "$VRVVW", 1);
         },
         "the link to the router is lost"},
    };

    std::vector<std::unique_ptr<RulesBench>> benches;
    for (const Trouble &trouble : troubles) {
        auto bench = std::make_unique<RulesBench>();
        bench->giveRouter(shipModel());
        QStringList command = words(trouble.command);
        const QString file = bench->writeFile("a.vrr", changedModel());
        command.replaceInStrings(QStringLiteral("FILE"), file);
        command.replaceInStrings(QStringLiteral("NEW"), bench->path("new.vrr"));
        trouble.prepare(*bench);
        bench->start(command);
        benches.push_back(std::move(bench));
    }
    for (std::size_t i = 0; i < benches.size(); ++i) {
        const Trouble &trouble = troubles[i];
        RulesBench &bench = *benches[i];
        const int exitCode = bench.finish();
        const QByteArray told = trouble.name + QByteArray(": ") + bench.err().toUtf8();
        QVERIFY2(exitCode == 3, told.constData());
        QVERIFY2(bench.err().contains(QString::fromLatin1(trouble.text)), told.constData());
        QVERIFY2(bench.err().contains(QStringLiteral("mixed state")) == trouble.isMixed,
                 told.constData());
        QVERIFY2(!trouble.isMixed || bench.err().contains(QStringLiteral("switch it off and on")),
                 told.constData());
        QVERIFY2(namesIn(bench) == QStringList(QStringLiteral("a.vrr")), told.constData());
        const RouterModel kept = trouble.isSaved ? changedModel() : shipModel();
        QVERIFY2(bench.router.eeprom() == routerConfigOf(kept), told.constData());
    }
}

// A signal in the midst: leave is taken of the router, no file is left, and the words fit.
void TestRulesTrouble::brokenOff()
{
    struct Break
    {
        const char *name;
        const char *command;
        const char *sentence;
        int number;
        int signal;
        int exitCode;
        bool isMixed;
    };
    const Break breaks[] = {
        {"Ctrl-C in a download", "backup PORT NEW", "$VRRLD", 1, SIGINT, 3, false},
        {"closed terminal in a download", "compare PORT FILE", "$VRRLD", 1, SIGHUP, 3, false},
        {"Ctrl-C in an upload", "restore FILE PORT --yes", "$VRRUL", 4, SIGINT, 3, true},
        {"end of the system in an upload", restoreAndSave, "$VRRUL", 4, SIGTERM, 3, true},
        {"Ctrl-C in a recording without end", "record PORT --input 2", "$VRVVW", 1, SIGINT, 0,
         false},
        {"Ctrl-C in a recording with one", "record PORT --input 2 --for 600", "$VRVVW", 1, SIGINT,
         3, false},
    };
    std::vector<std::unique_ptr<RulesBench>> benches;
    for (const Break &row : breaks) {
        auto bench = std::make_unique<RulesBench>();
        bench->giveRouter(shipModel());
        bench->router.setFault(Fault::Slow, 200);
        QStringList command = words(row.command);
        const QString file = bench->writeFile("a.vrr", changedModel());
        command.replaceInStrings(QStringLiteral("FILE"), file);
        command.replaceInStrings(QStringLiteral("NEW"), bench->path("new.vrr"));
        RulesBench *target = bench.get();
        onSentence(*bench, row.sentence, row.number, [target, row] { target->signal(row.signal); });
        bench->start(command);
        benches.push_back(std::move(bench));
    }
    for (std::size_t i = 0; i < benches.size(); ++i) {
        const Break &row = breaks[i];
        RulesBench &bench = *benches[i];
        const int exitCode = bench.finish();
        const QByteArray told = row.name + QByteArray(": ") + bench.err().toUtf8();
        QVERIFY2(exitCode == row.exitCode, told.constData());
        QVERIFY2(bench.err().contains(QStringLiteral("broken off")) == (exitCode != 0),
                 told.constData());
        QVERIFY2(bench.err().contains(QStringLiteral("mixed state")) == row.isMixed,
                 told.constData());
        QVERIFY2(namesIn(bench) == QStringList(QStringLiteral("a.vrr")), told.constData());
        QTRY_VERIFY2(bench.heard().constLast() == "$VRDCN\r\n", told.constData());
        QVERIFY2(bench.count("$VRRUL") < OutputPortCount, told.constData());
        QTRY_VERIFY2(bench.router.working() == routerConfigOf(shipModel()), told.constData());
    }
}

void TestRulesTrouble::brokenOffWhileItAsks()
{
    RulesBench bench;
    bench.giveRouter(shipModel());
    const QString file = bench.writeFile("a.vrr", changedModel());
    bench.start({QStringLiteral("restore"), file, Port});
    QTRY_VERIFY_WITH_TIMEOUT(bench.err().contains(QStringLiteral("[y/N]")), 10000);
    bench.signal(SIGINT);
    QCOMPARE(bench.finish(), 3);
    QVERIFY(bench.err().contains(QStringLiteral("broken off")));
    QVERIFY(!bench.err().contains(QStringLiteral("mixed state")));
    QTRY_COMPARE(bench.heard().constLast(), QByteArray("$VRDCN\r\n"));
    QCOMPARE(bench.count("$VRRUL"), 0);
}

QTEST_GUILESS_MAIN(TestRulesTrouble)
#include "tst_rulestrouble.moc"
