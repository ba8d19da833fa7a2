#include "model/randommodel.h"
#include "model/richmodel.h"
#include "rules/ruledocument.h"
#include "rules/sheet.h"
#include "rules/sheetwriters.h"
#include "rules/words.h"
#include "schemacheck.h"

#include <QFile>
#include <QJsonDocument>
#include <QtTest>
#include <QXmlStreamReader>

Q_DECLARE_METATYPE(RouterModel)

/*! The as-built sheet in its five formats. */
class TestRuleSheets : public QObject
{
    Q_OBJECT

private slots:
    void golden_data();
    void golden();
    void htmlIsWellFormed_data();
    void htmlIsWellFormed();
    void htmlNeedsNothingFromOutside();
    void csvIsATable();
    void csvHasNoFormula();
    void markdownTablesAreWhole();
    void terminalGetsNoControlCharacters();
    void jsonFollowsItsSchema_data();
    void jsonFollowsItsSchema();
    void schemaRefuses_data();
    void schemaRefuses();
    void smartFunctionsAreThoseOfTheDialog();
};

namespace {

// A ship with names that no ship has: each wants to be something else in one of the formats.
RouterModel hostileModel()
{
    RouterModel model;
    const char *const names[] = {"<b>&\"'",   "a|b`c`",  "=1+2",   "@SUM(A1)", "+7",      "-7",
                                 "\x1b[31mX", "\"q\",x", "[a](b)", "# *_~",    "\r\nCC:", "&lt;"};
    for (std::size_t i = 0; i < InputPortCount; ++i) {
        model.input_ports[i].input_name = QString::fromLatin1(names[i]);
        model.output_ports[i].output_name = QString::fromLatin1(names[InputPortCount - 1 - i]);
        ChannelRecord &channel = model.output_ports[i].channels[i];
        channel.main_input = quint8(i);
        channel.reserve_input = i == 5 ? 200 : NO_PORT;
    }
    ChannelRecord &channel = model.output_ports[0].channels[0];
    channel.hdr_enabled = true;
    channel.hdr = QStringLiteral("<>");
    channel.filter_enabled = true;
    channel.filter_mask = 0x80000002;
    model.setFilterString(1, QStringLiteral("</p"));
    model.setFilterString(2, QStringLiteral("=A1"));
    return model;
}

RouterModel modelNamed(const QString &name)
{
    QString error;
    if (name == QLatin1String("ship"))
        return RuleDocument::read(QStringLiteral(TK7_TEST_DATA "/ship.vrr"), error)->model;
    if (name == QLatin1String("rich"))
        return richModel();
    return name == QLatin1String("hostile") ? hostileModel() : RouterModel();
}

QByteArray sheetOf(const RouterModel &model, const QString &format,
                   const QString &title = QStringLiteral("rules.vrr"))
{
    const Sheet sheet = makeSheet(model);
    if (format == QLatin1String("txt"))
        return SheetWriters::text(sheet);
    if (format == QLatin1String("md"))
        return SheetWriters::markdown(sheet, title);
    if (format == QLatin1String("html"))
        return SheetWriters::html(sheet, title);
    if (format == QLatin1String("csv"))
        return SheetWriters::csv(sheet);
    return SheetWriters::json(model);
}

// A reader of RFC 4180 that is nobody's writer.
QVector<QStringList> csvRows(const QByteArray &bytes)
{
    QVector<QStringList> rows;
    QStringList row;
    QString cell;
    bool isQuoted = false;
    const QString text = QString::fromUtf8(bytes);
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (isQuoted && c == '"' && text.mid(i + 1, 1) == QLatin1String("\"")) {
            cell += c;
            ++i;
        } else if (c == '"') {
            isQuoted = !isQuoted;
        } else if (!isQuoted && (c == ',' || c == '\r')) {
            row += cell;
            cell.clear();
            if (c == '\r') {
                rows += row;
                row.clear();
                ++i;
            }
        } else {
            cell += c;
        }
    }
    return rows;
}

QJsonObject schema()
{
    QFile file(QStringLiteral(TK7_SCHEMA));
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

} // namespace

void TestRuleSheets::golden_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("format");
    for (const char *model : {"default", "ship", "hostile"}) {
        for (const char *format : {"txt", "md", "html", "csv", "json"})
            QTest::addRow("%s.%s", model, format)
                << QString::fromLatin1(model) << QString::fromLatin1(format);
    }
}

// With TK7_WRITE_GOLDEN set the files are made anew: read what has changed before it lands.
void TestRuleSheets::golden()
{
    QFETCH(QString, model);
    QFETCH(QString, format);
    const QByteArray sheet = sheetOf(modelNamed(model), format);
    QFile file(QStringLiteral(TK7_TEST_DATA "/%1.%2").arg(model, format));
    if (qEnvironmentVariableIsSet("TK7_WRITE_GOLDEN")) {
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(sheet), qint64(sheet.size()));
        QSKIP("written");
    }
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
    const QList<QByteArray> wanted = file.readAll().split('\n');
    const QList<QByteArray> lines = sheet.split('\n');
    for (int i = 0; i < qMin(lines.size(), wanted.size()); ++i)
        QCOMPARE(lines.at(i), wanted.at(i));
    QCOMPARE(lines.size(), wanted.size());
}

void TestRuleSheets::htmlIsWellFormed_data()
{
    QTest::addColumn<QString>("model");
    for (const char *model : {"default", "rich", "hostile"})
        QTest::newRow(model) << QString::fromLatin1(model);
}

// Nothing that came from a file has become an element, and every element is closed.
void TestRuleSheets::htmlIsWellFormed()
{
    QFETCH(QString, model);
    static const QStringList known = {
        QStringLiteral("html"),    QStringLiteral("head"),  QStringLiteral("meta"),
        QStringLiteral("title"),   QStringLiteral("style"), QStringLiteral("body"),
        QStringLiteral("h1"),      QStringLiteral("h2"),    QStringLiteral("small"),
        QStringLiteral("section"), QStringLiteral("p"),     QStringLiteral("span"),
        QStringLiteral("table"),   QStringLiteral("thead"), QStringLiteral("tbody"),
        QStringLiteral("tr"),      QStringLiteral("th"),    QStringLiteral("td"),
        QStringLiteral("div")};
    QByteArray page =
        sheetOf(modelNamed(model), QStringLiteral("html"), QStringLiteral("<i>.vrr\"&"));
    page.replace("&ndash;", "-");
    const QRegularExpression empty(QStringLiteral("<meta ([^>]*[^/])>"));
    const QString text = QString::fromUtf8(page)
                             .replace(empty, QStringLiteral("<meta \\1/>"))
                             .remove(QStringLiteral("<!DOCTYPE html>\n"));
    QXmlStreamReader reader(text);
    int sections = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement())
            continue;
        QVERIFY2(known.contains(reader.name().toString()), qPrintable(reader.name().toString()));
        sections += reader.name() == QLatin1String("section");
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(sections, OutputPortCount + 2);
}

void TestRuleSheets::htmlNeedsNothingFromOutside()
{
    const QByteArray page = sheetOf(richModel(), QStringLiteral("html"));
    for (const char *word : {"http:", "https:", "src=", "href=", "<script", "@import", "url("})
        QVERIFY2(!page.contains(word), word);
    QVERIFY(page.contains("@page { size: A4;"));
    QVERIFY(page.contains("name=\"viewport\""));
}

void TestRuleSheets::csvIsATable()
{
    for (const char *name : {"default", "rich", "hostile"}) {
        const RouterModel model = modelNamed(QString::fromLatin1(name));
        const auto rows = csvRows(sheetOf(model, QStringLiteral("csv")));
        int channels = 0;
        for (const QStringList &row : rows) {
            QCOMPARE(row.size(), 13);
            channels += row.first() == QLatin1String("channel");
        }
        int wanted = 0;
        for (const Sheet::Output &output : makeSheet(model).outputs)
            wanted += int(output.channels.size());
        QCOMPARE(channels, wanted);
    }
}

void TestRuleSheets::csvHasNoFormula()
{
    const auto rows = csvRows(sheetOf(hostileModel(), QStringLiteral("csv")));
    int tamed = 0;
    for (const QStringList &row : rows) {
        for (const QString &cell : row) {
            QVERIFY2(cell.isEmpty() || !QStringLiteral("=+-@\t\r\n").contains(cell.at(0)),
                     qPrintable(cell));
            tamed += cell.startsWith(QLatin1Char('\''));
        }
    }
    QVERIFY(tamed >= 9); // four names of inputs, of outputs and in their channels, a sentence
}

void TestRuleSheets::markdownTablesAreWhole()
{
    const QRegularExpression escaped(QStringLiteral("\\\\."));
    const QString text = QString::fromUtf8(sheetOf(hostileModel(), QStringLiteral("md")));
    int rows = 0;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        const QString bare = QString(line).remove(escaped);
        for (const char mark : {'<', '>', '`', '*', '[', ']', '@', '&'})
            QVERIFY2(!bare.contains(QLatin1Char(mark)), qPrintable(line));
        if (!bare.startsWith(QLatin1Char('|')))
            continue;
        const int bars = int(bare.count(QLatin1Char('|')));
        QVERIFY2(bars == 8 || bars == 5, qPrintable(line));
        ++rows;
    }
    QVERIFY(rows > 40);
}

void TestRuleSheets::terminalGetsNoControlCharacters()
{
    for (const char *format : {"txt", "md", "html", "csv", "json"}) {
        const QByteArray sheet =
            sheetOf(hostileModel(), QString::fromLatin1(format), QStringLiteral("\x1b[2J"));
        const QString text = QString::fromUtf8(sheet).remove(QStringLiteral("\r\n"));
        for (const QChar c : text)
            QVERIFY2(c == '\n' || c.category() != QChar::Other_Control, format);
    }
}

void TestRuleSheets::jsonFollowsItsSchema_data()
{
    QTest::addColumn<RouterModel>("model");
    QTest::newRow("default") << RouterModel();
    QTest::newRow("rich") << richModel();
    QTest::newRow("hostile") << hostileModel();
    for (quint32 seed = 0; seed < 5; ++seed)
        QTest::addRow("random %u", seed) << randomModel(seed);
}

void TestRuleSheets::jsonFollowsItsSchema()
{
    QFETCH(RouterModel, model);
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(SheetWriters::json(model), &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    QVERIFY(!schema().isEmpty());
    QCOMPARE(SchemaCheck(schema()).check(document.object()), QString());
}

void TestRuleSheets::schemaRefuses_data()
{
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    QTest::newRow("another version")
        << QByteArray("\"version\": 1") << QByteArray("\"version\": 2");
    QTest::newRow("another speed")
        << QByteArray("\"speed\": 4800") << QByteArray("\"speed\": 1200");
    QTest::newRow("another list") << QByteArray("\"white\"") << QByteArray("\"grey\"");
    QTest::newRow("text for a number")
        << QByteArray("\"number\": 3") << QByteArray("\"number\": \"3\"");
    QTest::newRow("one name more") << QByteArray("\"kind\"") << QByteArray("\"kin\": 1, \"kind\"");
    QTest::newRow("one name less") << QByteArray("\"format\": \"tk7-rules\",") << QByteArray();
    QTest::newRow("number too high")
        << QByteArray("\"channel\": 11") << QByteArray("\"channel\": 12");
}

void TestRuleSheets::schemaRefuses()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QByteArray json = SheetWriters::json(modelNamed(QStringLiteral("ship")));
    const int place = int(json.indexOf(from));
    QVERIFY(place >= 0);
    json.replace(place, from.size(), to);
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(json, &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    QVERIFY(!SchemaCheck(schema()).check(document.object()).isEmpty());
}

void TestRuleSheets::smartFunctionsAreThoseOfTheDialog()
{
    QFile form(QStringLiteral(TK7_SMART_FORM));
    QVERIFY(form.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&form);
    QStringList texts;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement
            && reader.name() == QLatin1String("string"))
            texts += reader.readElementText();
    }
    const int off = int(texts.indexOf(QStringLiteral("OFF")));
    QVERIFY(off > 0);
    for (quint8 number = 1; number <= 5; ++number)
        QCOMPARE(Words::smartFunction(number), texts.at(off + number));
}

QTEST_GUILESS_MAIN(TestRuleSheets)
#include "tst_rulesheets.moc"
