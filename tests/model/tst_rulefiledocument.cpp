#include "model/routermodel.h"
#include "model/rulefile.h"

#include <QBuffer>
#include <QFile>
#include <QRegularExpression>
#include <QtTest>

#include <functional>

// Keeps docs/rule-file.md true: its example stands in a block marked "rule-file", its flags in a
// table under a heading of their own.

namespace {

using Setup = std::function<void(ChannelRecord &)>;

QStringList documentLines()
{
    QFile file(QStringLiteral(TK7_RULE_FILE_DOCUMENT));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s: %s", TK7_RULE_FILE_DOCUMENT, qPrintable(file.errorString()));
    return QString::fromUtf8(file.readAll()).split('\n');
}

QStringList between(const QString &start, const QString &end)
{
    const QStringList lines = documentLines();
    const int first = int(lines.indexOf(start) + 1);
    const int last = int(lines.indexOf(end, first));
    return first > 0 && last > first ? lines.mid(first, last - first) : QStringList();
}

/*! The router of the example, field by field as its notes tell. */
RouterModel exampleModel()
{
    RouterModel model;
    ChannelRecord &full = model.output_ports[0].channels[0];
    full.main_input = 3;
    full.reserve_input = 5;
    full.filter_enabled = true;
    full.filter_mask = 1 << 0 | 1 << 11;
    full.filter_type = BlackList;
    full.crs_enabled = true;
    full.hdr_enabled = true;
    full.hdr = QStringLiteral("GP");
    full.smart_function = 1;
    model.output_ports[0].channels[1].main_input = 10;
    model.output_ports[0].channels[1].crs_enabled = true;
    model.output_ports[0].speed = 38400;
    model.output_ports[0].output_name = QStringLiteral("VDR");
    model.output_ports[11].speed = 115200;
    model.output_ports[11].output_name = QStringLiteral("Printer2");
    model.input_ports[3].input_name = QStringLiteral("GPS 1");
    return model;
}

QByteArray written(const RouterModel &model)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return RuleFile::write(buffer, model) ? buffer.data() : QByteArray();
}

} // namespace

class TestRuleFileDocument : public QObject
{
    Q_OBJECT

private slots:
    void example();
    void sizes();
    void flags();
};

void TestRuleFileDocument::example()
{
    static const QRegularExpression form(
        QStringLiteral("^([0-9A-F]{4})  ([0-9A-F]{2}(?: [0-9A-F]{2})*)(?: +x (\\d+))?(?:  +.*)?$"));
    QByteArray bytes;
    const QStringList lines = between(QStringLiteral("```rule-file"), QStringLiteral("```"));
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = form.match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        QVERIFY2(match.captured(1).toInt(nullptr, 16) == bytes.size(), qPrintable(line));
        const int times = match.captured(3).isEmpty() ? 1 : match.captured(3).toInt();
        bytes += QByteArray::fromHex(match.captured(2).toLatin1()).repeated(times);
    }
    const RouterModel model = exampleModel();
    QCOMPARE(bytes.toHex(' '), written(model).toHex(' '));

    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    RouterModel loaded;
    QVERIFY(RuleFile::read(buffer, loaded));
    QVERIFY(loaded == model);
}

void TestRuleFileDocument::sizes()
{
    const QString text = documentLines().join(QLatin1Char(' '));
    const auto tells = [&text](const QString &words, const RouterModel &model) {
        return text.contains(words.arg(written(model).size()));
    };
    RouterModel model;
    QVERIFY(tells(QStringLiteral("A file without any names has %1 bytes"), model));
    model.filter_list_mask = 0;
    QVERIFY(tells(QStringLiteral("the smallest has %1,"), model));
    model.filter_list_mask = 0xffffffff;
    model.filter_list.fill(QStringLiteral("RMC"));
    for (OutputPortRecord &port : model.output_ports)
        port.output_name = QStringLiteral("12345678");
    for (InputPortRecord &port : model.input_ports)
        port.input_name = QStringLiteral("12345678");
    QVERIFY(tells(QStringLiteral("the largest %1."), model));
}

void TestRuleFileDocument::flags()
{
    const QMap<QString, Setup> setups = {
        {QStringLiteral("filter_enabled"), [](ChannelRecord &c) { c.filter_enabled = true; }},
        {QStringLiteral("filter_type"), [](ChannelRecord &c) { c.filter_type = BlackList; }},
        {QStringLiteral("crs_enabled"), [](ChannelRecord &c) { c.crs_enabled = true; }},
        {QStringLiteral("smart_function"), [](ChannelRecord &c) { c.smart_function = 1; }},
        {QStringLiteral("hdr_enabled"),
         [](ChannelRecord &c) {
             c.hdr_enabled = true;
             c.hdr = QStringLiteral("GP");
         }},
    };
    constexpr int flagsOffset = 3;
    static const QRegularExpression row(
        QStringLiteral("^\\| (\\d)[^|]*\\| (\\d+)[^|]*\\| `(\\w+)`"));
    QStringList found;
    const QStringList lines = between(QStringLiteral("### File flags"), QStringLiteral("### Name"));
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = row.match(line);
        if (!match.hasMatch())
            continue;
        const int value = match.captured(2).toInt();
        const QString field = match.captured(3);
        QCOMPARE(value, 1 << match.captured(1).toInt());
        QVERIFY2(setups.contains(field), qPrintable(line));
        RouterModel model;
        setups.value(field)(model.output_ports[0].channels[0]);
        QCOMPARE(int(quint8(written(model).at(flagsOffset))), value);
        found += field;
    }
    found.sort();
    QCOMPARE(found, QStringList(setups.keys()));
}

QTEST_APPLESS_MAIN(TestRuleFileDocument)
#include "tst_rulefiledocument.moc"
