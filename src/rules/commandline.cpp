#include "rules/commandline.h"

#include "model/routermodel.h"

#include <QCommandLineParser>

#include <algorithm>
#include <array>

namespace {

using Command = CommandLine::Command;

/*! A command, what stands behind it, and the options that it takes. */
struct CommandRow
{
    Command command;
    const char *name;
    QStringList operands;
    QStringList options;
    const char *summary;
};

const QString File = QStringLiteral("FILE");
const QString Port = QStringLiteral("PORT");

const QString Format = QStringLiteral("format");
const QString Force = QStringLiteral("force");
const QString Yes = QStringLiteral("yes");
const QString Save = QStringLiteral("save");
const QString Input = QStringLiteral("input");
const QString Output = QStringLiteral("output");
const QString Channel = QStringLiteral("channel");
const QString For = QStringLiteral("for");
const QString Time = QStringLiteral("time");

const QVector<CommandRow> &commandTable()
{
    static const QVector<CommandRow> table = {
        {Command::Show, "show", {File}, {Format}, "prints the as-built sheet of a rule file"},
        {Command::Diff,
         "diff",
         {QStringLiteral("OLD"), QStringLiteral("NEW")},
         {},
         "tells in words in what two rule files differ"},
        {Command::Check, "check", {File}, {}, "looks for what is torn, foreign or of no use"},
        {Command::Ports, "ports", {}, {}, "lists the serial ports"},
        {Command::Backup, "backup", {Port, File}, {Force}, "copies a router's rules into a file"},
        {Command::Restore,
         "restore",
         {File, Port},
         {Yes, Save},
         "brings the rules of a file into a router"},
        {Command::Compare,
         "compare",
         {Port, File},
         {},
         "tells in what a router differs from a file"},
        {Command::Record,
         "record",
         {Port},
         {Input, Output, Channel, For, Time},
         "prints the sentences of a port of the router"},
    };
    return table;
}

QString synopsis(const CommandRow &row)
{
    return QStringList(QStringList(QLatin1String(row.name)) + row.operands).join(QLatin1Char(' '));
}

QString description()
{
    constexpr int width = 20;
    QString text = QStringLiteral("Copies, compares and prints the rules of a TK-7 router.\n\n"
                                  "Commands:\n");
    for (const CommandRow &row : commandTable())
        text += QStringLiteral("  %1  %2\n")
                    .arg(synopsis(row).leftJustified(width), QLatin1String(row.summary));
    return text
        + QLatin1String("\nExit codes: 0 done, or the same; 1 different; 2 wrong call or bad file; "
                        "3 no\nrouter, router busy or locked, link lost, or broken off.");
}

void addOptions(QCommandLineParser &parser)
{
    const auto option = [&parser](const QString &name, const QString &text,
                                  const QString &value = QString()) {
        parser.addOption(QCommandLineOption(name, text, value));
    };
    option(Format,
           QStringLiteral("show: %1; without it, text.")
               .arg(CommandLine::formats().join(QLatin1String(", "))),
           QStringLiteral("FORMAT"));
    option(Force, QStringLiteral("backup: write over a file that is there."));
    option(Yes, QStringLiteral("restore: don't ask."));
    option(Save, QStringLiteral("restore: let the router save the rules, so that they last."));
    option(Input, QStringLiteral("record: what comes in at input N."), QStringLiteral("N"));
    option(Output, QStringLiteral("record: what leaves at output N."), QStringLiteral("N"));
    option(Channel, QStringLiteral("record: of that output, what passes channel M."),
           QStringLiteral("M"));
    option(For, QStringLiteral("record: end after so many seconds; without it, at Ctrl-C."),
           QStringLiteral("SECONDS"));
    option(Time, QStringLiteral("record: the time in front of each sentence, in UTC."));
}

} // namespace

const QStringList &CommandLine::formats()
{
    static const QStringList names = {QStringLiteral("text"), QStringLiteral("markdown"),
                                      QStringLiteral("html"), QStringLiteral("csv"),
                                      QStringLiteral("json")};
    return names;
}

bool CommandLine::fail(const QString &error)
{
    m_error = error;
    return false;
}

bool CommandLine::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(description());
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Shows this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Shows the version."));
    parser.addOptions({help, version});
    addOptions(parser);
    parser.addPositionalArgument(QStringLiteral("COMMAND"), QStringLiteral("One of the above."));
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("A rule file, such as rules.vrr."),
                                 QStringLiteral("[FILE]"));
    parser.addPositionalArgument(
        QStringLiteral("PORT"), QStringLiteral("A serial port as \"ports\" lists it, or its path."),
        QStringLiteral("[PORT]"));
    const bool isParsed = parser.parse(arguments);
    m_help = parser.helpText();
    if (!isParsed)
        return fail(parser.errorText());
    if (parser.isSet(help) || parser.isSet(version)) {
        m_command = parser.isSet(help) ? Command::Help : Command::Version;
        return true;
    }
    return readCommand(parser) && readOptions(parser);
}

bool CommandLine::readCommand(const QCommandLineParser &parser)
{
    const QStringList words = parser.positionalArguments();
    if (words.isEmpty())
        return fail(QStringLiteral("no command"));
    const auto &table = commandTable();
    const auto row = std::find_if(table.begin(), table.end(), [&](const CommandRow &candidate) {
        return words.first() == QLatin1String(candidate.name);
    });
    if (row == table.end())
        return fail(QStringLiteral("no such command: %1").arg(words.first()));
    m_command = row->command;
    m_operands = words.mid(1);
    if (m_operands.size() != row->operands.size())
        return fail(QStringLiteral("wanted: tk7-rules %1").arg(synopsis(*row)));
    const QStringList options = parser.optionNames();
    for (const QString &name : options) {
        if (!row->options.contains(name))
            return fail(QStringLiteral("%1 takes no --%2").arg(QLatin1String(row->name), name));
    }
    return true;
}

bool CommandLine::readOptions(const QCommandLineParser &parser)
{
    constexpr double longest = 1000000; // seconds; eleven days
    constexpr double second = 1000;     // milliseconds

    m_format = parser.isSet(Format) ? parser.value(Format) : formats().first();
    if (!formats().contains(m_format))
        return fail(QStringLiteral("no such format: %1").arg(m_format));
    m_isForced = parser.isSet(Force);
    m_isYes = parser.isSet(Yes);
    m_isSave = parser.isSet(Save);
    m_isTimed = parser.isSet(Time);
    if (parser.isSet(For)) {
        bool isNumber = false;
        const double seconds = parser.value(For).toDouble(&isNumber);
        m_milliseconds = isNumber && seconds > 0 && seconds <= longest ? int(seconds * second) : 0;
        if (m_milliseconds == 0)
            return fail(QStringLiteral("--for takes a number of seconds, up to %1").arg(longest));
    }
    return m_command != Command::Record || readView(parser);
}

bool CommandLine::readView(const QCommandLineParser &parser)
{
    if (parser.isSet(Input) == parser.isSet(Output))
        return fail(QStringLiteral("record takes either --input or --output"));
    if (parser.isSet(Channel) && !parser.isSet(Output))
        return fail(QStringLiteral("--channel goes with --output"));
    const QStringList options = {Input, Output, Channel};
    std::array<int, 3> numbers = {};
    for (int i = 0; i < options.size(); ++i) {
        if (!parser.isSet(options.at(i)))
            continue;
        bool isNumber = false;
        const int number = parser.value(options.at(i)).toInt(&isNumber);
        if (!isNumber || number < 0 || number >= InputPortCount)
            return fail(QStringLiteral("--%1 takes a number from 0 to 11").arg(options.at(i)));
        numbers[std::size_t(i)] = number;
    }
    if (parser.isSet(Input))
        m_view = ViewCode::input(numbers[0]);
    else if (parser.isSet(Channel))
        m_view = ViewCode::channel(numbers[1], numbers[2]);
    else
        m_view = ViewCode::output(numbers[1]);
    return true;
}
