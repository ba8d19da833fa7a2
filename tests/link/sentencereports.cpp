#include "sentencereports.h"

#include "linkjournal.h"

QStringList Reports::of(const QString &line)
{
    NmeaSerialPort link;
    const LinkJournal journal(&link);
    link.slot_VRNMEA(line);
    return journal.texts();
}

QString Reports::call(const char *name, const QStringList &arguments)
{
    return QLatin1String(name) + '(' + arguments.join(QLatin1String(", ")) + ')';
}

QString Reports::number(quint32 value)
{
    return QString::number(value);
}

QStringList Reports::rules(int port, const QVector<Word> &words)
{
    QStringList all;
    for (int channel = 0; channel < 12; ++channel) {
        const Word word = words.value(channel, {0, 0});
        all += call("VRNewRule",
                    {QString::number(port), QString::number(channel), QString::number(word.rules),
                     QString::number(word.flags)});
    }
    return all;
}

QStringList Reports::masks(int port, int first, const QVector<quint32> &values)
{
    QStringList all;
    for (int i = 0; i < 6; ++i) {
        all +=
            call("VRNewFilterMask",
                 {QString::number(port), QString::number(first + i), number(values.value(i, 0))});
    }
    return all;
}

QStringList Reports::names(const char *type, int first, const QStringList &texts)
{
    QStringList all;
    for (int i = 0; i < texts.size(); ++i) {
        all += call(
            "VRNewPortName",
            {QLatin1String(type), QString::number(first + i), LinkJournal::quoted(texts.at(i))});
    }
    return all;
}

QStringList Reports::headers(int port, const QStringList &texts)
{
    QStringList all;
    for (int i = 0; i < texts.size(); ++i) {
        all += call("VRNewHdr",
                    {QString::number(port), QString::number(i), LinkJournal::quoted(texts.at(i))});
    }
    return all;
}

QStringList Reports::formatters(quint32 first, const QStringList &texts)
{
    QStringList all;
    for (int i = 0; i < texts.size(); ++i) {
        all +=
            call("VRNewFilterStr",
                 {QString::number(quint8(first + quint32(i))), LinkJournal::quoted(texts.at(i))});
    }
    return all;
}
