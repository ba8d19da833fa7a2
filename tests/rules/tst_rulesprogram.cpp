#include "rules/commandline.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

/*! The program without a router: its command line, its files, its documents. */
class TestRulesProgram : public QObject
{
    Q_OBJECT

private slots:
    void wrongUse_data();
    void wrongUse();
    void explainsItself();
    void showsASheet_data();
    void showsASheet();
    void readsAPipe();
    void tellsWhatIsOdd();
    void differs();
    void checks();
    void refusesABadFile_data();
    void refusesABadFile();
    void outputThatIsFull();
    void pageOfTheGuide();
    void gitRecipe();
    void completes_data();
    void completes();

private:
    int run(const QStringList &arguments, const QByteArray &input = QByteArray());
    QString file(const char *name, const QByteArray &content);

    QTemporaryDir m_folder;
    QByteArray m_out;
    QByteArray m_err;
};

namespace {

const QString Ship = QStringLiteral(TK7_TEST_DATA "/ship.vrr");
const QString Default = QStringLiteral(TK7_MODEL_DATA "/rules-default.vrr");

constexpr const char *commands[] = {"show",   "diff",    "check",   "ports",
                                    "backup", "restore", "compare", "record"};
constexpr const char *allOptions[] = {"--format", "--force",   "--yes", "--save", "--input",
                                      "--output", "--channel", "--for", "--time"};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

int TestRulesProgram::run(const QStringList &arguments, const QByteArray &input)
{
    QProcess program;
    program.start(QStringLiteral(TK7_RULES), arguments);
    program.write(input);
    program.closeWriteChannel();
    const bool isOver = program.waitForFinished() && program.exitStatus() == QProcess::NormalExit;
    m_out = program.readAllStandardOutput();
    m_err = program.readAllStandardError();
    return isOver ? program.exitCode() : -1;
}

QString TestRulesProgram::file(const char *name, const QByteArray &content)
{
    QFile result(m_folder.filePath(QString::fromLatin1(name)));
    if (!result.open(QIODevice::WriteOnly) || result.write(content) != content.size())
        qFatal("no file %s", name);
    return result.fileName();
}

void TestRulesProgram::wrongUse_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char *line, const char *text) {
        QTest::newRow(line) << QString::fromLatin1(line) << QByteArray(text);
    };
    row("", "no command");
    row("nonsense", "no such command: nonsense");
    row("--nonsense", "nonsense");
    row("show", "wanted: tk7-rules show FILE");
    row("show a b", "wanted: tk7-rules show FILE");
    row("diff a", "wanted: tk7-rules diff OLD NEW");
    row("check", "wanted: tk7-rules check FILE");
    row("ports a", "wanted: tk7-rules ports");
    row("backup a", "wanted: tk7-rules backup PORT FILE");
    row("restore a", "wanted: tk7-rules restore FILE PORT");
    row("compare a", "wanted: tk7-rules compare PORT FILE");
    row("record", "wanted: tk7-rules record PORT");
    row("show a --format pdf", "no such format: pdf");
    row("show a --save", "show takes no --save");
    row("backup a b --yes", "backup takes no --yes");
    row("restore a b --force", "restore takes no --force");
    row("record a", "either --input or --output");
    row("record a --input 1 --output 2", "either --input or --output");
    row("record a --input 1 --channel 2", "--channel goes with --output");
    row("record a --input 12", "--input takes a number from 0 to 11");
    row("record a --input -1", "--input takes a number from 0 to 11");
    row("record a --input x", "--input takes a number from 0 to 11");
    row("record a --output 12", "--output takes a number from 0 to 11");
    row("record a --output 1 --channel 12", "--channel takes a number from 0 to 11");
    row("record a --input 1 --for 0", "--for takes a number of seconds");
    row("record a --input 1 --for -1", "--for takes a number of seconds");
    row("record a --input 1 --for soon", "--for takes a number of seconds");
    row("record a --input 1 --for nan", "--for takes a number of seconds");
    row("record a --input 1 --for 1e9", "--for takes a number of seconds");
}

void TestRulesProgram::wrongUse()
{
    QFETCH(QString, line);
    QFETCH(QByteArray, text);
    QCOMPARE(run(line.split(QLatin1Char(' '), Qt::SkipEmptyParts)), 2);
    QVERIFY2(m_err.contains(text), m_err.constData());
    QVERIFY(m_err.contains("Try: tk7-rules --help"));
    QCOMPARE(m_out, QByteArray());
}

void TestRulesProgram::explainsItself()
{
    for (const char *option : {"--help", "-h"}) {
        QCOMPARE(run({QString::fromLatin1(option)}), 0);
        for (const char *word : commands)
            QVERIFY2(m_out.contains(QByteArray(QByteArray("\n  ") + word + ' ')), word);
        for (const char *word : allOptions)
            QVERIFY2(m_out.contains(word), word);
        for (const QString &format : CommandLine::formats())
            QVERIFY(m_out.contains(format.toLatin1()));
        QCOMPARE(m_err, QByteArray());
    }
    QCOMPARE(run({QStringLiteral("show"), QStringLiteral("--help")}), 0);
    QVERIFY(m_out.startsWith("Usage: "));
    QCOMPARE(run({QStringLiteral("--version")}), 0);
    QVERIFY(QRegularExpression(QStringLiteral("^tk7-rules \\d+\\.\\d+\n$"))
                .match(QString::fromLatin1(m_out))
                .hasMatch());
}

void TestRulesProgram::showsASheet_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("golden");
    QTest::newRow("without a format") << QStringList() << "txt";
    const auto row = [](const char *format, const char *golden) {
        QTest::newRow(format) << QStringList{QStringLiteral("--format"),
                                             QString::fromLatin1(format)}
                              << QString::fromLatin1(golden);
    };
    row("text", "txt");
    row("markdown", "md");
    row("html", "html");
    row("csv", "csv");
    row("json", "json");
}

void TestRulesProgram::showsASheet()
{
    QFETCH(QStringList, options);
    QFETCH(QString, golden);
    const QString path = file("rules.vrr", contentOf(Ship));
    QCOMPARE(run(QStringList{QStringLiteral("show"), path} + options), 0);
    QCOMPARE(m_err, QByteArray());
    QVERIFY(!m_out.isEmpty());
    QVERIFY(m_out == contentOf(QStringLiteral(TK7_TEST_DATA "/ship.") + golden));
}

void TestRulesProgram::readsAPipe()
{
    QCOMPARE(run({QStringLiteral("show"), QStringLiteral("/dev/stdin")}, contentOf(Ship)), 0);
    QVERIFY(m_out == contentOf(QStringLiteral(TK7_TEST_DATA "/ship.txt")));
}

void TestRulesProgram::tellsWhatIsOdd()
{
    const QString path = file("odd.vrr", contentOf(Ship) + "more");
    for (const QStringList &line : {QStringList{QStringLiteral("show"), path},
                                    QStringList{QStringLiteral("diff"), path, Ship},
                                    QStringList{QStringLiteral("diff"), Ship, path}}) {
        QCOMPARE(run(line), 0);
        QVERIFY2(m_err.contains("odd.vrr: Behind its end: 4 bytes"), m_err.constData());
    }
}

void TestRulesProgram::differs()
{
    QCOMPARE(run({QStringLiteral("diff"), Ship, Ship}), 0);
    QCOMPARE(m_out, QByteArray());
    QByteArray content = contentOf(Ship);
    QVERIFY(content.contains("DEPTH"));
    const QString changed = file("changed.vrr", content.replace("DEPTH", "DEEP!"));
    QCOMPARE(run({QStringLiteral("diff"), Ship, changed}), 1);
    QCOMPARE(m_out, QByteArray("Input 4: name \"DEPTH\" -> \"DEEP!\"\n"));
    QCOMPARE(run({QStringLiteral("diff"), Default, Ship}), 1);
    QVERIFY(m_out.contains("Output 0 A-PILOT, channel 0: filter none -> only RMC, GLL, VTG\n"));
    QCOMPARE(m_err, QByteArray());
}

void TestRulesProgram::checks()
{
    QCOMPARE(run({QStringLiteral("check"), Ship}), 0);
    QCOMPARE(m_out, QByteArray("note: Inputs without a name that go nowhere: 11\n"));
    const QString odd = file("odd.vrr", contentOf(Ship) + "more");
    QCOMPARE(run({QStringLiteral("check"), odd}), 1);
    QVERIFY(m_out.startsWith("warning: Behind its end: 4 bytes that are not read\n"));
}

void TestRulesProgram::refusesABadFile_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray whole = contentOf(Ship);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("another file") << QByteArray("%PDF-1.4 and more of that kind");
    QTest::newRow("first half") << whole.left(whole.size() / 2);
    QTest::newRow("without its last byte") << whole.left(whole.size() - 1);
    QTest::newRow("much too long") << whole + QByteArray(100000, 'x');
}

void TestRulesProgram::refusesABadFile()
{
    QFETCH(QByteArray, content);
    const QString bad = file("bad.vrr", content);
    const QString port = QStringLiteral("nowhere0"); // never asked
    const QStringList lines[] = {
        {QStringLiteral("show"), bad},          {QStringLiteral("check"), bad},
        {QStringLiteral("diff"), bad, Ship},    {QStringLiteral("diff"), Ship, bad},
        {QStringLiteral("compare"), port, bad}, {QStringLiteral("restore"), bad, port},
    };
    for (const QStringList &line : lines) {
        QCOMPARE(run(line), 2);
        QVERIFY2(m_err.contains("bad.vrr: torn, or not a rule file"), m_err.constData());
        QCOMPARE(m_out, QByteArray());
    }
    QCOMPARE(run({QStringLiteral("show"), m_folder.filePath(QStringLiteral("none.vrr"))}), 2);
    QVERIFY(m_err.contains("none.vrr: "));
}

void TestRulesProgram::outputThatIsFull()
{
    if (!QFile::exists(QStringLiteral("/dev/full")))
        QSKIP("no /dev/full here");
    QProcess program;
    program.setStandardOutputFile(QStringLiteral("/dev/full"));
    program.start(QStringLiteral(TK7_RULES), {QStringLiteral("show"), Ship});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 2);
    QVERIFY(program.readAllStandardError().contains("the standard output takes no more"));
}

// Whatever the program can do stands in the guide.
void TestRulesProgram::pageOfTheGuide()
{
    const QByteArray guide = contentOf(QStringLiteral(TK7_DOCS "/user-guide.md"));
    const int start = int(guide.indexOf("\n## Copy, compare, print"));
    QVERIFY(start > 0);
    const QByteArray chapter = guide.mid(start, guide.indexOf("\n## ", start + 1) - start);
    for (const char *command : commands)
        QVERIFY2(chapter.contains(QByteArray(QByteArray("tk7-rules ") + command)), command);
    for (const char *option : allOptions)
        QVERIFY2(chapter.contains(option), option);
}

// The recipe of the page, as it stands there, in a repository of its own.
void TestRulesProgram::gitRecipe()
{
    if (QStandardPaths::findExecutable(QStringLiteral("git")).isEmpty())
        QSKIP("no git here");
    const QByteArray page = contentOf(QStringLiteral(TK7_DOCS "/rule-file.md"));
    for (const char *line : {"*.vrr diff=tk7-rules",
                             "git config diff.tk7-rules.textconv "
                             "\"tk7-rules show\""})
        QVERIFY2(page.contains(line), line);

    const QTemporaryDir home;
    QByteArray content = contentOf(Ship);
    QFile script(home.filePath(QStringLiteral("recipe")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("set -e\n"
                 "git init -q .\n"
                 "echo '*.vrr diff=tk7-rules' >.gitattributes\n"
                 "git config diff.tk7-rules.textconv \"tk7-rules show\"\n"
                 "git add .gitattributes rules.vrr\n"
                 "git -c user.name=N -c user.email=n@example.com commit -q -m rules\n"
                 "cp new.vrr rules.vrr\n"
                 "git diff --no-color\n");
    script.close();
    const QDir folder(home.path());
    QVERIFY(QFile::copy(Ship, folder.filePath(QStringLiteral("rules.vrr"))));
    QFile changed(folder.filePath(QStringLiteral("new.vrr")));
    QVERIFY(changed.open(QIODevice::WriteOnly));
    changed.write(content.replace("DEPTH", "DEEP!"));
    changed.close();

    QProcess shell;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("GIT_CONFIG_NOSYSTEM"), QStringLiteral("1"));
    environment.insert(QStringLiteral("PATH"),
                       QFileInfo(QStringLiteral(TK7_RULES)).absolutePath() + QLatin1Char(':')
                           + environment.value(QStringLiteral("PATH")));
    shell.setProcessEnvironment(environment);
    shell.setWorkingDirectory(home.path());
    shell.start(QStringLiteral("sh"), {QStringLiteral("recipe")});
    QVERIFY(shell.waitForFinished());
    const QByteArray diff = shell.readAllStandardOutput();
    QVERIFY2(shell.exitCode() == 0, shell.readAllStandardError().constData());
    QVERIFY2(
        diff.contains("\n-Input 4 DEPTH, RS-422, 4800 baud\n+Input 4 DEEP!, RS-422, 4800 baud\n"),
        diff.constData());
}

void TestRulesProgram::completes_data()
{
    QTest::addColumn<QString>("line"); // the last word is the one to be completed
    QTest::addColumn<QStringList>("words");
    const auto row = [](const char *line, const QStringList &words) {
        QTest::newRow(line) << QString::fromLatin1(line) << words;
    };
    QStringList all;
    for (const char *command : commands)
        all += QString::fromLatin1(command);
    row("", all);
    row("re", {QStringLiteral("restore"), QStringLiteral("record")});
    row("--h", {QStringLiteral("--help")});
    row("show r", {QStringLiteral("rules.vrr")});
    row("show rules.vrr ", {});
    row("show --format m", {QStringLiteral("markdown")});
    row("show --format html r", {QStringLiteral("rules.vrr")});
    row("show --f", {QStringLiteral("--format")});
    row("diff rules.vrr t", {QStringLiteral("two words.vrr")});
    row("backup P", {QStringLiteral("PORT-A"), QStringLiteral("PORT-B")});
    row("backup PORT-A s", {QStringLiteral("sub")});
    row("restore rules.vrr PORT-B", {QStringLiteral("PORT-B")});
    row("restore --yes rules.vrr P", {QStringLiteral("PORT-A"), QStringLiteral("PORT-B")});
    row("restore rules.vrr PORT-A --", {QStringLiteral("--yes"), QStringLiteral("--save")});
    row("compare PORT-A r", {QStringLiteral("rules.vrr")});
    row("record --output 1", {QStringLiteral("1"), QStringLiteral("10"), QStringLiteral("11")});
    row("record PORT-A --t", {QStringLiteral("--time")});
    row("record --for 3", {});
}

void TestRulesProgram::completes()
{
    QFETCH(QString, line);
    QFETCH(QStringList, words);
    const QTemporaryDir folder;
    const QDir dir(folder.path());
    QVERIFY(dir.mkdir(QStringLiteral("sub")));
    for (const char *name : {"rules.vrr", "two words.vrr", "readme.txt"}) {
        QFile entry(dir.filePath(QString::fromLatin1(name)));
        QVERIFY(entry.open(QIODevice::WriteOnly));
    }
    QFile ports(dir.filePath(QStringLiteral("tk7-rules")));
    QVERIFY(ports.open(QIODevice::WriteOnly));
    ports.write("#!/bin/sh\necho PORT-A; echo PORT-B\n");
    ports.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    ports.close();

    QStringList arguments = {QStringLiteral("-c"),
                             QStringLiteral("source \"$0\"; COMP_WORDS=(./tk7-rules \"$@\"); "
                                            "COMP_CWORD=$#; _tk7_rules; "
                                            "printf '%s\\n' \"${COMPREPLY[@]}\""),
                             QStringLiteral(TK7_COMPLETION)};
    arguments += line.split(QLatin1Char(' '));
    QProcess shell;
    shell.setWorkingDirectory(folder.path());
    shell.start(QStringLiteral("bash"), arguments);
    QVERIFY(shell.waitForFinished());
    QCOMPARE(shell.readAllStandardError(), QByteArray());
    const QStringList found = QString::fromUtf8(shell.readAllStandardOutput())
                                  .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(found, words);
}

QTEST_GUILESS_MAIN(TestRulesProgram)
#include "tst_rulesprogram.moc"
