#include "rules/difference.h"

#include "model/routermodel.h"
#include "rules/words.h"

namespace {

QString change(const QString &what, const QString &before, const QString &after)
{
    return QStringLiteral("%1 %2 -> %3").arg(what, before, after);
}

QString quoted(const QString &name)
{
    if (name.isEmpty())
        return QStringLiteral("none");
    return QLatin1Char('"') + Words::printable(name) + QLatin1Char('"');
}

QString yesNo(bool yes)
{
    return yes ? QStringLiteral("on") : QStringLiteral("off");
}

class Comparison
{
public:
    Comparison(const RouterModel &before, const RouterModel &after)
        : m_before(before), m_after(after)
    {
    }

    QStringList run()
    {
        for (int port = 0; port < OutputPortCount; ++port)
            compareOutput(port);
        for (int port = 0; port < InputPortCount; ++port)
            compareInput(port);
        for (int slot = 0; slot < FilterSlotCount; ++slot)
            compareSentence(slot);
        return m_lines;
    }

private:
    void add(const QString &place, const QString &what, const QString &before, const QString &after)
    {
        if (before != after)
            m_lines += QStringLiteral("%1: %2").arg(place, change(what, before, after));
    }

    void compareOutput(int port)
    {
        const OutputPortRecord &before = m_before.output_ports[std::size_t(port)];
        const OutputPortRecord &after = m_after.output_ports[std::size_t(port)];
        add(QStringLiteral("Output %1").arg(port), QStringLiteral("name"),
            quoted(before.output_name), quoted(after.output_name));
        add(QStringLiteral("Output and input %1").arg(port), QStringLiteral("speed"),
            QString::number(before.speed), QString::number(after.speed));
        for (int i = 0; i < ChannelCount; ++i) {
            // By its name as it is now, by its old one if it has lost it.
            const RouterModel &named = after.output_name.isEmpty() ? m_before : m_after;
            compareChannel(Words::channel(named, port, i), before.channels[std::size_t(i)],
                           after.channels[std::size_t(i)]);
        }
    }

    void compareChannel(const QString &place, const ChannelRecord &before,
                        const ChannelRecord &after)
    {
        // By number: another name of the same input is told where the inputs are.
        if (before.main_input != after.main_input)
            add(place, QStringLiteral("main input"), Words::input(m_before, before.main_input),
                Words::input(m_after, after.main_input));
        if (before.reserve_input != after.reserve_input)
            add(place, QStringLiteral("reserve input"),
                Words::input(m_before, before.reserve_input),
                Words::input(m_after, after.reserve_input));
        add(place, QStringLiteral("filter"), Words::filter(m_before, before),
            Words::filter(m_after, after));
        add(place, QStringLiteral("checksum check"), yesNo(before.crs_enabled),
            yesNo(after.crs_enabled));
        add(place, QStringLiteral("header"), Words::header(before), Words::header(after));
        add(place, QStringLiteral("smart function"), Words::smartFunction(before.smart_function),
            Words::smartFunction(after.smart_function));
    }

    void compareInput(int port)
    {
        add(QStringLiteral("Input %1").arg(port), QStringLiteral("name"),
            quoted(m_before.input_ports[std::size_t(port)].input_name),
            quoted(m_after.input_ports[std::size_t(port)].input_name));
    }

    void compareSentence(int slot)
    {
        const auto text = [slot](const RouterModel &model) {
            return Words::isTaken(model, slot)
                ? Words::printable(model.filter_list[std::size_t(slot)])
                : QStringLiteral("free");
        };
        add(QStringLiteral("List of sentence names"), QStringLiteral("slot %1").arg(slot),
            text(m_before), text(m_after));
    }

    const RouterModel &m_before;
    const RouterModel &m_after;
    QStringList m_lines;
};

} // namespace

QStringList differences(const RouterModel &before, const RouterModel &after)
{
    return Comparison(before, after).run();
}
