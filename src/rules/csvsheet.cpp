#include "rules/sheet.h"
#include "rules/sheetwriters.h"

namespace {

// A spreadsheet takes a cell with one of these in front for a formula; an apostrophe makes it text.
bool looksLikeFormula(const QString &text)
{
    return !text.isEmpty() && QStringLiteral("=+-@").contains(text.at(0));
}

QString cell(const QString &text)
{
    QString result = text;
    if (looksLikeFormula(text))
        result.prepend(QLatin1Char('\''));
    result.replace(QLatin1Char('"'), QLatin1String("\"\""));
    const bool needsQuotes =
        result != text || result.contains(QLatin1Char(',')) || result.trimmed() != result;
    return needsQuotes ? QString(QLatin1Char('"') + result + QLatin1Char('"')) : result;
}

QString row(const QStringList &texts)
{
    QStringList cells;
    for (const QString &text : texts)
        cells += cell(text);
    return cells.join(QLatin1Char(',')) + QLatin1String("\r\n");
}

} // namespace

QByteArray SheetWriters::csv(const Sheet &sheet)
{
    const QString none;
    QString text = row({QStringLiteral("row"), QStringLiteral("port"), QStringLiteral("name"),
                        QStringLiteral("kind"), QStringLiteral("baud"), QStringLiteral("channel"),
                        QStringLiteral("main"), QStringLiteral("reserve"), QStringLiteral("filter"),
                        QStringLiteral("checksum"), QStringLiteral("header"),
                        QStringLiteral("smart"), QStringLiteral("goes to")});
    for (const Sheet::Output &output : sheet.outputs) {
        const QString number = QString::number(output.number);
        text += row({QStringLiteral("output"), number, output.name, output.kind, output.speed, none,
                     none, none, none, none, none, none, none});
        for (const Sheet::Channel &channel : output.channels) {
            text += row({QStringLiteral("channel"), number, output.name, output.kind, output.speed,
                         QString::number(channel.number), channel.main, channel.reserve,
                         channel.filter, channel.checksum, channel.header, channel.smart, none});
        }
    }
    for (const Sheet::Input &input : sheet.inputs) {
        text += row({QStringLiteral("input"), QString::number(input.number), input.name, input.kind,
                     input.speed, none, none, none, none, none, none, none,
                     input.uses.join(QLatin1String("; "))});
    }
    for (const QString &sentence : sheet.sentences) {
        text += row({QStringLiteral("sentence"), sentence.section(QLatin1Char(' '), 0, 0),
                     sentence.section(QLatin1Char(' '), 1), none, none, none, none, none, none,
                     none, none, none, none});
    }
    return text.toUtf8();
}
