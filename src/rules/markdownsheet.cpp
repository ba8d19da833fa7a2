#include "rules/sheet.h"
#include "rules/sheetwriters.h"
#include "rules/words.h"

namespace {

// Everything with which Markdown, its tables, or the links that some viewers find can begin.
QString escaped(const QString &text)
{
    static const QString marks = QStringLiteral("\\`*_{}[]<>()#.!|&~$:@^");
    QString result;
    for (const QChar c : text) {
        if (marks.contains(c))
            result += QLatin1Char('\\');
        result += c;
    }
    return result;
}

QString tableRow(const QStringList &cells)
{
    QString row;
    for (const QString &cell : cells)
        row += QStringLiteral("| %1 ").arg(escaped(cell));
    return row + QLatin1String("|\n");
}

QString tableHead(const QStringList &cells)
{
    QString rule;
    for (int i = 0; i < cells.size(); ++i)
        rule += QLatin1String("|---");
    return tableRow(cells) + rule + QLatin1String("|\n");
}

QString outputSection(const Sheet::Output &output)
{
    QString text =
        QStringLiteral("\n## Output %1\n\n%2, %3 baud\n\n")
            .arg(escaped(Words::numbered(output.number, output.name)), output.kind, output.speed);
    if (output.channels.isEmpty())
        return text + QLatin1String("No inputs.\n");
    text += tableHead({QStringLiteral("Channel"), QStringLiteral("Main"), QStringLiteral("Reserve"),
                       QStringLiteral("Filter"), QStringLiteral("Checksum"),
                       QStringLiteral("Header"), QStringLiteral("Smart")});
    for (const Sheet::Channel &channel : output.channels) {
        text += tableRow({QString::number(channel.number), channel.main, channel.reserve,
                          channel.filter, channel.checksum, channel.header, channel.smart});
    }
    return text;
}

QString inputSection(const Sheet &sheet)
{
    QString text = QStringLiteral("\n## Inputs\n\n")
        + tableHead({QStringLiteral("Input"), QStringLiteral("Kind"), QStringLiteral("Baud"),
                     QStringLiteral("Goes to")});
    for (const Sheet::Input &input : sheet.inputs) {
        text += tableRow({Words::numbered(input.number, input.name), input.kind, input.speed,
                          input.uses.isEmpty() ? QStringLiteral("nowhere")
                                               : input.uses.join(QLatin1String("; "))});
    }
    return text;
}

} // namespace

QByteArray SheetWriters::markdown(const Sheet &sheet, const QString &title)
{
    QString text = QStringLiteral("# TK-7 rules: %1\n").arg(escaped(Words::printable(title)));
    for (const Sheet::Output &output : sheet.outputs)
        text += outputSection(output);
    text += inputSection(sheet);
    text += QStringLiteral("\n## Sentence names\n\n%1\n")
                .arg(escaped(sheet.sentences.join(QLatin1String(", "))));
    return text.toUtf8();
}
