#include "rules/words.h"

#include <QStringList>

#include <algorithm>

namespace {

constexpr int Hexadecimal = 16;
constexpr int ShortDigits = 2;
constexpr int LongDigits = 4;
constexpr ushort LastByte = 0xff;

const QString None = QStringLiteral("none");

bool isHarmless(QChar c)
{
    const bool isSeparator = c.category() == QChar::Separator_Line
        || c.category() == QChar::Separator_Paragraph || c == QChar(QChar::Nbsp);
    return c.isPrint() && !isSeparator && !c.isSurrogate();
}

QString escaped(QChar c)
{
    const bool isShort = c.unicode() <= LastByte;
    return QString(QLatin1String(isShort ? "\\x%1" : "\\u%1"))
        .arg(c.unicode(), isShort ? ShortDigits : LongDigits, Hexadecimal, QLatin1Char('0'));
}

QStringList listed(const RouterModel &model, quint32 mask)
{
    QStringList names;
    for (int slot = 0; slot < FilterSlotCount; ++slot) {
        if (mask >> slot & 1)
            names += Words::sentence(model, slot);
    }
    return names;
}

} // namespace

QString Words::printable(const QString &text)
{
    QString result;
    for (const QChar c : text) {
        if (isHarmless(c))
            result += c;
        else
            result += escaped(c);
    }
    return result;
}

QString Words::numbered(int number, const QString &name)
{
    if (name.isEmpty())
        return QString::number(number);
    return QStringLiteral("%1 %2").arg(QString::number(number), printable(name));
}

QString Words::inputName(const RouterModel &model, quint8 number)
{
    return isInputPort(number) ? model.input_ports[number].input_name : QString();
}

QString Words::input(const RouterModel &model, quint8 number)
{
    if (number == NO_PORT)
        return None;
    if (!isInputPort(number))
        return QStringLiteral("%1 (no such input)").arg(number);
    return numbered(number, inputName(model, number));
}

QString Words::output(const RouterModel &model, int number)
{
    return QStringLiteral("Output ")
        + numbered(number, model.output_ports[std::size_t(number)].output_name);
}

QString Words::channel(const RouterModel &model, int port, int number)
{
    return QStringLiteral("%1, channel %2").arg(output(model, port)).arg(number);
}

bool Words::isTaken(const RouterModel &model, int slot)
{
    return model.filter_list_mask >> slot & 1;
}

QString Words::sentence(const RouterModel &model, int slot)
{
    if (!isTaken(model, slot))
        return QStringLiteral("slot %1").arg(slot);
    const QString &name = model.filter_list[std::size_t(slot)];
    for (int other = 0; other < FilterSlotCount; ++other) {
        if (other != slot && isTaken(model, other) && model.filter_list[std::size_t(other)] == name)
            return QStringLiteral("%1 (slot %2)").arg(printable(name)).arg(slot);
    }
    return printable(name);
}

QString Words::filter(const RouterModel &model, const ChannelRecord &channel)
{
    const bool isBlack = channel.filter_type != WhiteList;
    const QString names = listed(model, channel.filter_mask).join(QLatin1String(", "));
    if (!channel.filter_enabled) {
        if (!isBlack && names.isEmpty())
            return None;
        return QStringLiteral("off (%1 list: %2)")
            .arg(isBlack ? QStringLiteral("black") : QStringLiteral("white"),
                 names.isEmpty() ? QStringLiteral("empty") : names);
    }
    if (names.isEmpty())
        return isBlack ? QStringLiteral("everything passes") : QStringLiteral("nothing passes");
    return (isBlack ? QStringLiteral("all but ") : QStringLiteral("only ")) + names;
}

QString Words::header(const ChannelRecord &channel)
{
    if (!channel.hdr_enabled)
        return None;
    return channel.hdr.isEmpty() ? QStringLiteral("on, but empty") : printable(channel.hdr);
}

QString Words::smartFunction(quint8 number)
{
    static const QStringList names = {None,
                                      QStringLiteral("GPS"),
                                      QStringLiteral("HEADING"),
                                      QStringLiteral("DEPTH"),
                                      QStringLiteral("ARPA"),
                                      QStringLiteral("AIS")};
    if (number < names.size())
        return names.at(number);
    return QStringLiteral("%1 (no such function)").arg(number);
}

QString Words::kind(PortKind kind)
{
    return kind == PortKind::Rs422 ? QStringLiteral("RS-422") : QStringLiteral("RS-232");
}

bool Words::isUnused(const ChannelRecord &channel)
{
    ChannelRecord unused;
    unused.hdr = channel.hdr; // of no meaning while the override is off
    return channel == unused;
}
