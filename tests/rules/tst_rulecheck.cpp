#include "model/randommodel.h"
#include "rules/rulecheck.h"
#include "rules/ruledocument.h"

#include <QtTest>

#include <functional>

using Change = std::function<void(RouterModel &)>;
Q_DECLARE_METATYPE(Change)

/*! What a check finds, and what it leaves alone. */
class TestRuleCheck : public QObject
{
    Q_OBJECT

private slots:
    void finds_data();
    void finds();
    void passesOnRemarks();
    void untransportable_data();
    void untransportable();
    void editorsMakeNothingUntransportable();
};

namespace {

ChannelRecord &channelOf(RouterModel &model)
{
    return model.output_ports[3].channels[2];
}

// All inputs go somewhere, so that nothing is to be found.
RouterModel goodModel()
{
    RouterModel model;
    for (std::size_t i = 0; i < InputPortCount; ++i)
        model.output_ports[11].channels[i].main_input = quint8(i);
    return model;
}

} // namespace

void TestRuleCheck::finds_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QStringList>("notes");
    const auto warn = [](const char *name, const Change &change, const QString &text) {
        QTest::newRow(name) << change << QStringList(text) << QStringList();
    };
    const auto note = [](const char *name, const Change &change, const QString &text) {
        QTest::newRow(name) << change << QStringList() << QStringList(text);
    };
    QTest::newRow("nothing") << Change([](RouterModel &) {}) << QStringList() << QStringList();

    warn(
        "foreign main", [](RouterModel &m) { channelOf(m).main_input = 12; },
        QStringLiteral("Output 3, channel 2: input 12 (no such input)"));
    warn(
        "foreign reserve",
        [](RouterModel &m) {
            channelOf(m).main_input = 1;
            channelOf(m).reserve_input = 14;
        },
        QStringLiteral("Output 3, channel 2: input 14 (no such input)"));
    warn(
        "named input that goes nowhere",
        [](RouterModel &m) {
            m.output_ports[11].channels[6].main_input = NO_PORT;
            m.input_ports[6].input_name = QStringLiteral("WIND");
        },
        QStringLiteral("Input 6 WIND goes nowhere"));
    note(
        "unnamed inputs that go nowhere",
        [](RouterModel &m) {
            m.output_ports[11].channels[6].main_input = NO_PORT;
            m.output_ports[11].channels[9].main_input = NO_PORT;
        },
        QStringLiteral("Inputs without a name that go nowhere: 6, 9"));
    QTest::newRow("input that is a reserve only goes somewhere") << Change([](RouterModel &m) {
        m.output_ports[11].channels[6].main_input = 0;
        m.output_ports[11].channels[0].main_input = 1;
        m.output_ports[11].channels[1].main_input = 2;
        m.output_ports[11].channels[2].main_input = 3;
        m.output_ports[11].channels[3].main_input = NO_PORT;
        channelOf(m).main_input = 0;
        channelOf(m).reserve_input = 6;
    }) << QStringList() << QStringList();
    warn(
        "header on an empty channel",
        [](RouterModel &m) {
            channelOf(m).hdr_enabled = true;
            channelOf(m).hdr = QStringLiteral("GP");
        },
        QStringLiteral("Output 3, channel 2: header GP, but no input"));
    warn(
        "filter on an empty channel",
        [](RouterModel &m) {
            channelOf(m).filter_enabled = true;
            channelOf(m).filter_mask = 1;
        },
        QStringLiteral("Output 3, channel 2: filter only RMC, but no input"));
    warn(
        "check on an empty channel", [](RouterModel &m) { channelOf(m).crs_enabled = true; },
        QStringLiteral("Output 3, channel 2: checksum check, but no input"));
    warn(
        "smart function on an empty channel",
        [](RouterModel &m) { channelOf(m).smart_function = 5; },
        QStringLiteral("Output 3, channel 2: smart function AIS, but no input"));
    warn(
        "reserve is the main input",
        [](RouterModel &m) { channelOf(m).main_input = channelOf(m).reserve_input = 4; },
        QStringLiteral("Output 3, channel 2: the reserve is the main input itself"));
    note(
        "reserve without a main input", [](RouterModel &m) { channelOf(m).reserve_input = 4; },
        QStringLiteral("Output 3, channel 2: a reserve input without a main input"));
    warn(
        "empty white list",
        [](RouterModel &m) {
            channelOf(m).main_input = 4;
            channelOf(m).filter_enabled = true;
        },
        QStringLiteral("Output 3, channel 2: an empty white list lets nothing pass"));
    note(
        "empty black list",
        [](RouterModel &m) {
            channelOf(m).main_input = 4;
            channelOf(m).filter_enabled = true;
            channelOf(m).filter_type = BlackList;
        },
        QStringLiteral("Output 3, channel 2: an empty black list lets everything pass"));
    warn(
        "free slot in a filter",
        [](RouterModel &m) {
            channelOf(m).main_input = 4;
            channelOf(m).filter_enabled = true;
            channelOf(m).filter_mask = 0x10001;
        },
        QStringLiteral("Output 3, channel 2: the filter lists a free slot: only RMC, slot 16"));
    warn(
        "smart function without a meaning",
        [](RouterModel &m) {
            channelOf(m).main_input = 4;
            channelOf(m).smart_function = 6;
        },
        QStringLiteral("Output 3, channel 2: smart function 6 (no such function)"));
    note(
        "one input twice in an output",
        [](RouterModel &m) {
            channelOf(m).main_input = 4;
            m.output_ports[3].channels[7].main_input = 4;
        },
        QStringLiteral("Output 3: input 4 is the main input of channels 2, 7"));
    QTest::newRow("one sentence name twice")
        << Change([](RouterModel &m) { m.setFilterString(20, QStringLiteral("RMC")); })
        << QStringList{QStringLiteral("List of sentence names: RMC (slot 0) is there twice"),
                       QStringLiteral("List of sentence names: RMC (slot 20) is there twice")}
        << QStringList();
}

void TestRuleCheck::finds()
{
    QFETCH(Change, change);
    QFETCH(QStringList, warnings);
    QFETCH(QStringList, notes);
    RuleDocument document;
    document.model = goodModel();
    change(document.model);
    const RuleCheck check = RuleCheck::of(document);
    QCOMPARE(check.warnings, warnings);
    QCOMPARE(check.notes, notes);
    QCOMPARE(check.isClean(), warnings.isEmpty());
}

void TestRuleCheck::passesOnRemarks()
{
    RuleDocument document;
    document.model = goodModel();
    document.remarks = QStringList(QStringLiteral("odd"));
    QCOMPARE(RuleCheck::of(document).warnings, document.remarks);
}

void TestRuleCheck::untransportable_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const Change &change, const QString &text) {
        QTest::newRow(name) << change << text;
    };
    for (const char *mark : {",", "*", "$", "!", "\n", "\x7f", "\xe9"}) {
        const QString name = QString::fromLatin1(mark);
        row(
            qPrintable(QStringLiteral("name with %1").arg(quint8(*mark))),
            [name](RouterModel &m) { m.output_ports[3].output_name = name; },
            QStringLiteral("Output 3: the name"));
    }
    row(
        "input's name", [](RouterModel &m) { m.input_ports[3].input_name = QStringLiteral("a,b"); },
        QStringLiteral("Input 3: the name \"a,b\" can't be sent to a router"));
    row(
        "header in small letters",
        [](RouterModel &m) {
            channelOf(m).hdr_enabled = true;
            channelOf(m).hdr = QStringLiteral("gp");
        },
        QStringLiteral("Output 3, channel 2: the header \"gp\" can't be sent to a router"));
    row(
        "header with a comma",
        [](RouterModel &m) {
            channelOf(m).hdr_enabled = true;
            channelOf(m).hdr = QStringLiteral("G,");
        },
        QStringLiteral("Output 3, channel 2: the header"));
    row(
        "sentence name in small letters",
        [](RouterModel &m) { m.setFilterString(3, QStringLiteral("zda")); },
        QStringLiteral("List of sentence names, slot 3: the name \"zda\""));
    row(
        "number of more than a nibble", [](RouterModel &m) { channelOf(m).reserve_input = 16; },
        QStringLiteral("Output 3, channel 2: input 16 can't be sent"));
}

void TestRuleCheck::untransportable()
{
    QFETCH(Change, change);
    QFETCH(QString, text);
    RouterModel model = goodModel();
    QCOMPARE(RuleCheck::untransportable(model), QStringList());
    change(model);
    const QStringList texts = RuleCheck::untransportable(model);
    QCOMPARE(texts.size(), 1);
    QVERIFY2(texts.first().startsWith(text), qPrintable(texts.first()));
}

void TestRuleCheck::editorsMakeNothingUntransportable()
{
    for (quint32 seed = 0; seed < 100; ++seed)
        QCOMPARE(RuleCheck::untransportable(randomModel(seed)), QStringList());
}

QTEST_GUILESS_MAIN(TestRuleCheck)
#include "tst_rulecheck.moc"
