#include "rules/sheet.h"
#include "rules/sheetwriters.h"
#include "rules/words.h"

namespace {

struct Column
{
    const char *heading;
    int width; // fixed, so that a longer name changes no other line
    QString Sheet::Channel::*text;
};

constexpr int NumberWidth = 2;
constexpr int InputWidth = 11; // two digits, a blank, eight letters

const Column columns[] = {
    {"Main", InputWidth, &Sheet::Channel::main}, {"Reserve", InputWidth, &Sheet::Channel::reserve},
    {"Checksum", 8, &Sheet::Channel::checksum},  {"Header", 6, &Sheet::Channel::header},
    {"Smart", 7, &Sheet::Channel::smart},        {"Filter", 0, &Sheet::Channel::filter},
};

QString headingRow()
{
    QString row = QStringLiteral("  Ch");
    for (const Column &column : columns)
        row += QLatin1String("  ")
            + QString(QLatin1String(column.heading)).leftJustified(column.width);
    return row + QLatin1Char('\n');
}

QString channelRow(const Sheet::Channel &channel)
{
    QString row = QLatin1String("  ") + QString::number(channel.number).rightJustified(NumberWidth);
    for (const Column &column : columns) {
        const QString &text = channel.*column.text;
        const bool isNone = text == QLatin1String("none");
        row +=
            QLatin1String("  ") + (isNone ? QStringLiteral("-") : text).leftJustified(column.width);
    }
    return row + QLatin1Char('\n');
}

QString heading(const QString &port, const QString &kind, const QString &speed)
{
    return QStringLiteral("\n%1, %2, %3 baud\n").arg(port, kind, speed);
}

} // namespace

QByteArray SheetWriters::text(const Sheet &sheet)
{
    QString text = QStringLiteral("TK-7 rules\n");
    for (const Sheet::Output &output : sheet.outputs) {
        text += heading(QStringLiteral("Output ") + Words::numbered(output.number, output.name),
                        output.kind, output.speed);
        text += output.channels.isEmpty() ? QStringLiteral("  no inputs\n") : headingRow();
        for (const Sheet::Channel &channel : output.channels)
            text += channelRow(channel);
    }
    for (const Sheet::Input &input : sheet.inputs) {
        text += heading(QStringLiteral("Input ") + Words::numbered(input.number, input.name),
                        input.kind, input.speed);
        for (const QString &use : input.uses)
            text += QStringLiteral("  to %1\n").arg(use);
        if (input.uses.isEmpty())
            text += QLatin1String("  goes nowhere\n");
    }
    text += QLatin1String("\nSentence names\n");
    for (const QString &sentence : sheet.sentences)
        text += QStringLiteral("  %1\n").arg(sentence);
    return text.toUtf8();
}
