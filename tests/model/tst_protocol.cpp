#include "model/commands.h"
#include "model/routermodel.h"
#include "model/sentencebuilders.h"
#include "model/servicesentences.h"

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

// Keeps docs/protocol.md true: its examples stand in blocks marked "sentence", one a line, with ">"
// for the way to the router and "<" for the way from it.

namespace {

const QLatin1Char ToRouter('>');
const QLatin1Char FromRouter('<');

constexpr int HeadLength = 6;          // "$VR" and a code of three letters
constexpr int LongestInboundLine = 95; // CR LF included
constexpr int LineEndLength = 2;
constexpr int DirectionLength = 2; // the sign and a blank before the sentence

/*! One line of an example block, and the heading under which it stands. */
struct Example
{
    int lineNumber;
    QString heading;
    QChar direction;
    QString sentence;
};

QStringList documentLines()
{
    QFile file(QStringLiteral(TK7_PROTOCOL_DOCUMENT));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s: %s", TK7_PROTOCOL_DOCUMENT, qPrintable(file.errorString()));
    return QString::fromUtf8(file.readAll()).split('\n');
}

/*! All lines of the example blocks, whatever they hold. */
QVector<Example> readExamples()
{
    static const QLatin1String blockStart("```sentence");
    static const QLatin1String blockEnd("```");
    static const QLatin1String headingMark("### ");

    QVector<Example> examples;
    QString heading;
    bool inBlock = false;
    int lineNumber = 0;
    const QStringList lines = documentLines();
    for (const QString &line : lines) {
        ++lineNumber;
        if (inBlock && line != blockEnd)
            examples.append({lineNumber, heading, line.isEmpty() ? QChar() : line.at(0),
                             line.mid(DirectionLength)});
        if (line.startsWith(headingMark))
            heading = line.mid(headingMark.size());
        if (line.startsWith(blockEnd))
            inBlock = line == blockStart;
    }
    return examples;
}

enum class Form : char { Bare, Plain, Checked };

/*! What the tool knows of a sentence: direction, form, head and what its fields match. */
struct Grammar
{
    QLatin1Char direction;
    Form form;
    const char *head;
    const char *fields;
};

#define TK7_PORT "(\\d|1[01])"
#define TK7_SPEED "(2400|4800|9600|19200|38400|57600|115200)"
#define TK7_NAMES "([^,*!$]{0,8},){5}[^,*!$]{0,8}"
#define TK7_HEADERS "(([A-Z]{2})?,){11}([A-Z]{2})?"
#define TK7_SLOTS "(([A-Z]{3})?,){7}([A-Z]{3})?"
#define TK7_AIS "\\d,\\d,\\d?,[0-9A-B],[0-W`-w]+,[0-5]"

const Grammar grammars[] = {
    {ToRouter, Form::Bare, "$VRCNT", ""},
    {ToRouter, Form::Bare, "$VRCNC", ""},
    {ToRouter, Form::Bare, "$VRRLD", ""},
    {ToRouter, Form::Bare, "$VRVER", ""},
    {ToRouter, Form::Bare, "$VRDCN", ""},
    {ToRouter, Form::Checked, "$VRRUL", TK7_PORT ",[BW],[0-9A-F]{48}"},
    {ToRouter, Form::Checked, "$VRFLT", TK7_PORT ",[BW],[06],[0-9A-F]{48}"},
    {ToRouter, Form::Checked, "$VRHDC", TK7_PORT ",[BW]," TK7_HEADERS},
    {ToRouter, Form::Checked, "$VRFLS", "(0|8|16|24)," TK7_SLOTS},
    {ToRouter, Form::Checked, "$VRPNM", "[OI],[06]," TK7_NAMES},
    {ToRouter, Form::Checked, "$VRSPD", TK7_PORT "," TK7_SPEED},
    {ToRouter, Form::Plain, "$VRVVW", "\\d{1,3}"},
    {ToRouter, Form::Bare, "$VRWBL", ""},
    {ToRouter, Form::Bare, "$VRSVR", ""},
    {ToRouter, Form::Bare, "$VRSER", ""},
    {ToRouter, Form::Checked, "$VRSTA", TK7_PORT},
    {ToRouter, Form::Bare, "$VRSTC", ""},
    {ToRouter, Form::Plain, "$VRATM", "(ON|OFF)"},
    {ToRouter, Form::Bare, "$VRFWS", ""},
    {ToRouter, Form::Checked, "$VRFWP", "[1-9]\\d{0,4},([0-9A-F]{2}){1,32}"},
    {ToRouter, Form::Bare, "$VRFWF", ""},
    {ToRouter, Form::Bare, "$VRFWW", ""},
    {ToRouter, Form::Checked, "$VRPWS", "[0-9A-Za-z]{1,20}"},
    {ToRouter, Form::Checked, "$VRPWU", "[0-9A-Za-z]{1,20}"},
    {ToRouter, Form::Bare, "$VRPWD", ""},
    {ToRouter, Form::Bare, "$VRPWV", ""},
    {ToRouter, Form::Bare, "$VRLGO", ""},
    {ToRouter, Form::Checked, "$VRMOD", "[0-9A-Za-z]{1,8}"},

    {FromRouter, Form::Checked, "$VRCNU", TK7_PORT},
    {FromRouter, Form::Bare, "$VRCNB", ""},
    {FromRouter, Form::Checked, "$VRSPD", TK7_PORT "," TK7_SPEED},
    {FromRouter, Form::Checked, "$VRRUL", TK7_PORT ",[^,*]*,[0-9A-Fa-f]{48}"},
    {FromRouter, Form::Checked, "$VRFLT", TK7_PORT ",[^,*]*,[06],[0-9A-Fa-f]{48}"},
    {FromRouter, Form::Checked, "$VRPNM", "[OI],[06]," TK7_NAMES},
    {FromRouter, Form::Checked, "$VRHDC", TK7_PORT ",[^,*]*," TK7_HEADERS},
    {FromRouter, Form::Checked, "$VRFLS", "(0|8|16|24)," TK7_SLOTS},
    {FromRouter, Form::Checked, "$VRVER", "\\d+\\.\\d+"},
    {FromRouter, Form::Checked, "$VRMOD", "[0-9A-Za-z]{1,8}"},
    {FromRouter, Form::Checked, "$VRERR", "[0-9A-Fa-f]{4},[0-9A-Fa-f]{2}"},
    {FromRouter, Form::Bare, "$VRWBL", ""},
    {FromRouter, Form::Plain, "$VRVVW", "\\d{1,3}"},
    {FromRouter, Form::Bare, "$VRSRO", ""},
    {FromRouter, Form::Bare, "$VRSRE", ""},
    {FromRouter, Form::Bare, "$VRFWR", ""},
    {FromRouter, Form::Checked, "$VRFWP", "\\d+"},
    {FromRouter, Form::Checked, "$VRFWE", "\\d+"},
    {FromRouter, Form::Bare, "$VRFWO", ""},
    {FromRouter, Form::Checked, "$VRSTA", TK7_PORT "(,\\d+){5}"},
    {FromRouter, Form::Checked, "$VRSER", "[0-9A-Fa-f]{32}"},
    {FromRouter, Form::Checked, "$VRPWS", "(OK|ERROR)"},
    {FromRouter, Form::Checked, "$VRLCK", "[01],[0-5]"},
    {FromRouter, Form::Checked, "$VRPWV", "[0-9A-Za-z]+"},
    {FromRouter, Form::Checked, "$VRFBK", "[0-2]"},
    {FromRouter, Form::Checked, "$VRAIM", TK7_AIS},
    {FromRouter, Form::Checked, "$VRAIO", TK7_AIS},
    {FromRouter, Form::Checked, "$VRAIA", "[0-9A-B],\\d{6}[^,]*,\\d+,[AV],[AV],[^*]*"},
    {FromRouter, Form::Checked, "$VRAIP", "\\d{4}\\.\\d+,[NS],\\d{5}\\.\\d+,[EW]"},
};

const Grammar *grammarOf(QChar direction, const QString &sentence)
{
    for (const Grammar &grammar : grammars) {
        if (direction == grammar.direction
            && sentence.left(HeadLength) == QLatin1String(grammar.head))
            return &grammar;
    }
    return nullptr;
}

QRegularExpression shapeOf(const Grammar &grammar)
{
    QString pattern = QRegularExpression::escape(QLatin1String(grammar.head));
    if (grammar.form != Form::Bare)
        pattern += ',' + QLatin1String(grammar.fields);
    if (grammar.form == Form::Checked)
        pattern += QLatin1String("\\*[0-9A-F]{2}");
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern));
}

/*! The two digits that belong behind the star. Deliberately not the tool's own helper. */
QByteArray checksumOf(const QString &sentence)
{
    const QByteArray bytes = sentence.toLatin1();
    char sum = 0;
    for (int i = 1; i < bytes.size() && bytes.at(i) != '*'; ++i)
        sum = char(sum ^ bytes.at(i));
    return QByteArray(1, sum).toHex().toUpper();
}

QString nameOf(const Example &example)
{
    return QStringLiteral("line %1: %2 %3")
        .arg(QString::number(example.lineNumber), QString(example.direction), example.sentence);
}

/*! The router that the last section of the document describes. */
RouterModel exampleRouter()
{
    RouterModel model;
    OutputPortRecord &radar = model.output_ports[5];
    radar.speed = 38400;
    radar.output_name = "Radar";
    radar.channels[0].main_input = 0;
    radar.channels[0].reserve_input = 1;
    radar.channels[0].crs_enabled = true;
    radar.channels[0].filter_enabled = true;
    radar.channels[0].filter_type = WhiteList;
    radar.channels[0].filter_mask = 1U << 0 | 1U << 4;
    radar.channels[2].main_input = 3;
    radar.channels[2].hdr_enabled = true;
    radar.channels[2].hdr = "HE";
    radar.channels[2].smart_function = 2;
    radar.channels[7].main_input = 10;
    radar.channels[7].filter_enabled = true;
    radar.channels[7].filter_type = BlackList;
    radar.channels[7].filter_mask = 1U << 8 | 1U << 12;
    model.setFilterString(12, "MWV");
    model.input_ports[0].input_name = "GPS bow";
    model.input_ports[3].input_name = "Gyro";
    return model;
}

/*! A packet of a firmware file of 35 bytes, version 3.6, without a mode. */
QString firmwarePacket(quint32 number)
{
    const QByteArray image =
        QByteArray("fwVR48\1\2\3\4\5\6\7\10\3\6\0\0\12\377", 20) + QByteArray(12, 'Z') + "end";
    QString sentence;
    MakeFirmwarePacket(image, number, sentence);
    return sentence;
}

} // namespace

Q_DECLARE_METATYPE(Example)

class TestProtocol : public QObject
{
    Q_OBJECT

private slots:
    void hasExamples();
    void example_data();
    void example();
    void everySentenceHasAnExample_data();
    void everySentenceHasAnExample();
    void everySentenceHasOneGrammar();
    void toolBuildsTheOutboundExamples();
    void linksLeadSomewhere();
};

void TestProtocol::hasExamples()
{
    QVERIFY(!readExamples().isEmpty());
}

void TestProtocol::example_data()
{
    QTest::addColumn<Example>("example");
    const QVector<Example> examples = readExamples();
    for (const Example &example : examples)
        QTest::newRow(qPrintable(nameOf(example))) << example;
}

void TestProtocol::example()
{
    QFETCH(Example, example);
    const Grammar *grammar = grammarOf(example.direction, example.sentence);
    QVERIFY2(grammar, "no such sentence in this direction");
    QCOMPARE(example.heading, QString(QLatin1String(grammar->head)));
    QVERIFY2(shapeOf(*grammar).match(example.sentence).hasMatch(), "not of the sentence's shape");
    if (grammar->form == Form::Checked)
        QCOMPARE(example.sentence.section('*', 1).toLatin1(), checksumOf(example.sentence));
    if (example.direction == FromRouter)
        QVERIFY(example.sentence.size() + LineEndLength <= LongestInboundLine);
}

void TestProtocol::everySentenceHasAnExample_data()
{
    QTest::addColumn<QChar>("direction");
    QTest::addColumn<QString>("head");
    for (const Grammar &grammar : grammars) {
        const QString head = QLatin1String(grammar.head);
        const QString name = QString(QChar(grammar.direction)) + ' ' + head;
        QTest::newRow(qPrintable(name)) << QChar(grammar.direction) << head;
    }
}

void TestProtocol::everySentenceHasAnExample()
{
    QFETCH(QChar, direction);
    QFETCH(QString, head);
    const QVector<Example> examples = readExamples();
    const auto shows = [&](const Example &example) {
        return example.direction == direction && example.sentence.left(HeadLength) == head;
    };
    QVERIFY(std::any_of(examples.begin(), examples.end(), shows));
}

void TestProtocol::everySentenceHasOneGrammar()
{
    QSet<QString> seen;
    for (const Grammar &grammar : grammars)
        seen += QString(QChar(grammar.direction)) + QLatin1String(grammar.head);
    QCOMPARE(seen.size(), int(std::size(grammars)));
}

void TestProtocol::toolBuildsTheOutboundExamples()
{
    const RouterModel model = exampleRouter();
    const int wholePort = 15;
    QStringList built{
        Commands::Download,
        Commands::Version,
        Commands::Disconnect,
        MakeRuleSentence(model, 5, false),
        MakeRuleSentence(model, 5, true),
        MakeFilterSentence(model, 5, 0, false),
        MakeFilterSentence(model, 5, 6, true),
        MakeHdrSentence(model, 5, false),
        MakeFilterListSentence(model, 8),
        MakeFilterListSentence(model, 24),
        MakeNameSentence(model, true, 0),
        MakeNameSentence(model, false, 0),
        MakeSpeedSentence(5, model.output_ports[5].speed),
        MakeViewSentence(wholePort, 3),
        MakeViewSentence(5, wholePort),
        MakeViewSentence(5, 2),
        Commands::EndOfBatch,
        Commands::SaveToEeprom,
        Commands::ChipIdentifier,
        MakeStatusSentence(3),
        Commands::ClearStatistics,
        Commands::AisTestOn,
        Commands::AisTestOff,
        Commands::FirmwareStart,
        firmwarePacket(1),
        firmwarePacket(2),
        Commands::FirmwareFinish,
        Commands::FirmwareUse,
        MakeSetPasswordSentence("Harbour7"),
        MakeUnlockSentence("Harbour7"),
        Commands::RemovePassword,
        Commands::ViewPassword,
        Commands::Lock,
        MakeModeSentence("STD2"),
    };

    // The link itself makes these two.
    const QStringList madeElsewhere{"$VRCNT", "$VRCNC"};

    QStringList shown;
    const QVector<Example> examples = readExamples();
    for (const Example &example : examples) {
        if (example.direction == ToRouter && !madeElsewhere.contains(example.sentence))
            shown += example.sentence + "\r\n";
    }
    QCOMPARE(shown, built);
}

void TestProtocol::linksLeadSomewhere()
{
    static const QRegularExpression heading(QStringLiteral("^#+ (.*)$"));
    static const QRegularExpression link(QStringLiteral("\\]\\(#([^)]*)\\)"));
    static const QRegularExpression notInAnchors(QStringLiteral("[^a-z0-9 -]"));

    QSet<QString> anchors;
    QStringList targets;
    const QStringList lines = documentLines();
    for (const QString &line : lines) {
        const QRegularExpressionMatch headingMatch = heading.match(line);
        if (headingMatch.hasMatch()) {
            QString anchor = headingMatch.captured(1).toLower();
            anchors += anchor.remove(notInAnchors).replace(' ', '-');
        }
        QRegularExpressionMatchIterator links = link.globalMatch(line);
        while (links.hasNext())
            targets += links.next().captured(1);
    }
    QVERIFY(!targets.isEmpty());
    for (const QString &target : qAsConst(targets))
        QVERIFY2(anchors.contains(target), qPrintable(target));
}

QTEST_APPLESS_MAIN(TestProtocol)
#include "tst_protocol.moc"
