#include "rules/sheet.h"
#include "rules/sheetwriters.h"
#include "rules/words.h"

namespace {

const QString Style = QStringLiteral(R"(
:root { color-scheme: light; }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 62rem; padding: 1.5rem 1rem; background: #fff; color: #222;
  font: .94rem/1.45 "DejaVu Sans", Verdana, "Segoe UI", sans-serif; overflow-wrap: anywhere; }
h1 { margin: 0 0 .2rem; font-size: 1.5rem; font-weight: 600; }
h2 { margin: 0; font-size: 1.05rem; font-weight: 600; }
h2 small, .about { color: #666; font-size: .85rem; font-weight: 400; }
section { margin: 1.1rem 0 0; padding: .6rem .8rem .7rem; border: 1px solid #dde1e6;
  border-left: 4px solid #c5ccd4; border-radius: 4px; break-inside: avoid; }
section.rs422 { border-left-color: #4a53c9; }
section.rs232 { border-left-color: #3f9d2f; }
section.long { break-inside: auto; }
.key { padding-left: .5rem; border-left: 4px solid; white-space: nowrap; margin-right: .8rem; }
.key.rs422 { border-color: #4a53c9; }
.key.rs232 { border-color: #3f9d2f; }
table { width: 100%; margin-top: .5rem; border-collapse: collapse; font-size: .85rem; }
th { padding: .2rem .5rem .2rem 0; border-bottom: 1px solid #c5ccd4; color: #666; font-weight: 400;
  text-align: left; vertical-align: bottom; }
td { padding: .25rem .5rem .25rem 0; border-bottom: 1px solid #eef0f2; vertical-align: top; }
tr { break-inside: avoid; }
tr:last-child td { border-bottom: 0; }
td.number { width: 4.2rem; }
td.input { width: 8.6rem; }
td.short { width: 5.4rem; }
td.name { width: 9rem; }
.none { color: #9aa2ab; }
.uses div { padding-left: .8rem; text-indent: -.8rem; }
.names span { display: inline-block; min-width: 4.2rem; }
p { margin: .4rem 0 0; }
.sign { display: flex; gap: 1.5rem; margin-top: 2.6rem; break-inside: avoid; }
.sign div { flex: 1; padding-top: .2rem; border-top: 1px solid #888; color: #666;
  font-size: .8rem; }
@media (max-width: 40rem) {
  body { padding: 1rem .7rem; }
  thead { display: none; }
  table, tbody { display: block; }
  tr { display: block; padding: .35rem 0; border-bottom: 1px solid #eef0f2; }
  tr:last-child { border-bottom: 0; }
  td, td.number, td.input, td.short, td.name { display: flex; width: auto; padding: .05rem 0;
    border: 0; }
  td::before { content: attr(data-label); flex: 0 0 6rem; color: #666; }
  td.none { display: none; }
  .sign { display: block; }
  .sign div { margin-top: 2.4rem; }
}
@page { size: A4; margin: 15mm 14mm; }
@media print {
  :root { font-size: 12.5px; }
  body { max-width: none; padding: 0; }
  section { margin-top: .9rem; }
}
)");

QString escaped(const QString &text)
{
    return text.toHtmlEscaped();
}

QString kindClass(const QString &kind)
{
    return QString(kind).remove(QLatin1Char('-')).toLower();
}

// A cell knows its heading, which a phone shows beside it.
QString cell(const char *label, const QString &text, const char *kind)
{
    const bool isNone = text == QLatin1String("none");
    return QStringLiteral("<td class=\"%1%2\" data-label=\"%3\">%4</td>")
        .arg(QLatin1String(kind), QLatin1String(isNone ? " none" : ""), QLatin1String(label),
             isNone ? QStringLiteral("&ndash;") : escaped(text));
}

QString tableHead(const QStringList &headings)
{
    return QStringLiteral("<table>\n<thead><tr><th>%1</th></tr></thead>\n<tbody>\n")
        .arg(headings.join(QLatin1String("</th><th>")));
}

QString channelRow(const Sheet::Channel &channel)
{
    return QLatin1String("<tr>") + cell("Channel", QString::number(channel.number), "number")
        + cell("Main", channel.main, "input") + cell("Reserve", channel.reserve, "input")
        + cell("Filter", channel.filter, "filter") + cell("Checksum", channel.checksum, "short")
        + cell("Header", channel.header, "short") + cell("Smart", channel.smart, "short")
        + QLatin1String("</tr>\n");
}

QString outputSection(const Sheet::Output &output)
{
    QString text =
        QStringLiteral("<section class=\"%1\">\n<h2>Output %2 <small>%3, %4 baud</small>"
                       "</h2>\n")
            .arg(kindClass(output.kind), escaped(Words::numbered(output.number, output.name)),
                 output.kind, output.speed);
    if (output.channels.isEmpty())
        return text + QLatin1String("<p class=\"none\">No inputs.</p>\n</section>\n");
    text += tableHead({QStringLiteral("Channel"), QStringLiteral("Main"), QStringLiteral("Reserve"),
                       QStringLiteral("Filter"), QStringLiteral("Checksum"),
                       QStringLiteral("Header"), QStringLiteral("Smart")});
    for (const Sheet::Channel &channel : output.channels)
        text += channelRow(channel);
    return text + QLatin1String("</tbody>\n</table>\n</section>\n");
}

QString usesCell(const Sheet::Input &input)
{
    QString uses;
    for (const QString &use : input.uses)
        uses += QStringLiteral("<div>%1</div>").arg(escaped(use));
    if (uses.isEmpty())
        uses = QStringLiteral("<div class=\"none\">nowhere</div>");
    return QStringLiteral("<td data-label=\"Goes to\"><div class=\"uses\">%1</div></td>").arg(uses);
}

QString inputSection(const Sheet &sheet)
{
    QString text = QStringLiteral("<section class=\"long\">\n<h2>Inputs</h2>\n")
        + tableHead({QStringLiteral("Input"), QStringLiteral("Kind"), QStringLiteral("Baud"),
                     QStringLiteral("Goes to")});
    for (const Sheet::Input &input : sheet.inputs) {
        text += QLatin1String("<tr>")
            + cell("Input", Words::numbered(input.number, input.name), "name")
            + cell("Kind", input.kind, "short") + cell("Baud", input.speed, "short")
            + usesCell(input) + QLatin1String("</tr>\n");
    }
    return text + QLatin1String("</tbody>\n</table>\n</section>\n");
}

QString sentenceSection(const Sheet &sheet)
{
    QString names;
    for (const QString &sentence : sheet.sentences)
        names += QStringLiteral("<span>%1</span> ").arg(escaped(sentence));
    return QStringLiteral("<section>\n<h2>Sentence names <small>the list that all filters share"
                          "</small></h2>\n<p class=\"names\">%1</p>\n</section>\n")
        .arg(names.trimmed());
}

} // namespace

QByteArray SheetWriters::html(const Sheet &sheet, const QString &title)
{
    const QString name = escaped(Words::printable(title));
    QString text =
        QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta http-equiv=\"Content-Security-Policy\" "
                       "content=\"default-src 'none'; style-src 'unsafe-inline'\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                       "<title>TK-7 rules: ")
        + name + QLatin1String("</title>\n<style>") + Style
        + QLatin1String("</style>\n</head>\n<body>\n<h1>TK-7 rules</h1>\n<p class=\"about\">")
        + name
        + QLatin1String("</p>\n<p class=\"about\"><span class=\"key rs422\">RS-422</span>"
                        "<span class=\"key rs232\">RS-232</span></p>\n");
    for (const Sheet::Output &output : sheet.outputs)
        text += outputSection(output);
    text += inputSection(sheet) + sentenceSection(sheet);
    text += QLatin1String("<div class=\"sign\"><div>Ship</div><div>Date</div><div>Signature</div>"
                          "</div>\n</body>\n</html>\n");
    return text.toUtf8();
}
