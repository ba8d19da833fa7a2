#include "rules/rulecheck.h"

#include "model/routermodel.h"
#include "rules/ruledocument.h"
#include "rules/words.h"

#include <algorithm>

namespace {

// These frame a sentence, and nothing escapes them.
bool canTravel(QChar c)
{
    return c.unicode() >= ' ' && c.unicode() <= '~' && !QStringLiteral("!$*,").contains(c);
}

bool canTravel(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return canTravel(c); });
}

// The builders turn headers and sentence names to capitals behind their checksum.
bool isOfCapitals(const QString &text, int length)
{
    return text.size() == length && canTravel(text) && text == text.toUpper();
}

bool fitsNibble(quint8 input)
{
    return input <= NO_PORT;
}

bool isForeign(quint8 input)
{
    return input != NO_PORT && !isInputPort(input);
}

QString named(const char *what, const QString &text)
{
    return QStringLiteral("%1 \"%2\"").arg(QLatin1String(what), Words::printable(text));
}

class Inspector
{
public:
    Inspector(const RouterModel &model, RuleCheck &check) : m_model(model), m_check(check) { }

    void run()
    {
        for (int port = 0; port < OutputPortCount; ++port) {
            for (int i = 0; i < ChannelCount; ++i)
                inspectChannel(port, i);
            findRepeatedInputs(port);
        }
        findUnusedInputs();
        findRepeatedSentences();
    }

private:
    const ChannelRecord &channelAt(int port, int i) const
    {
        return m_model.output_ports[std::size_t(port)].channels[std::size_t(i)];
    }

    void inspectChannel(int port, int i)
    {
        const ChannelRecord &channel = channelAt(port, i);
        const QString place = Words::channel(m_model, port, i) + QLatin1String(": ");
        for (const quint8 input : {channel.main_input, channel.reserve_input}) {
            if (isForeign(input))
                m_check.warnings += place + QStringLiteral("input ") + Words::input(m_model, input);
        }
        if (isEmpty(channel)) {
            inspectEmpty(channel, place);
            return;
        }
        m_uses |= bitOf(channel.main_input) | bitOf(channel.reserve_input);
        if (channel.main_input == channel.reserve_input)
            m_check.warnings += place + QLatin1String("the reserve is the main input itself");
        if (!isInputPort(channel.main_input))
            m_check.notes += place + QLatin1String("a reserve input without a main input");
        inspectFilter(channel, place);
        if (channel.smart_function > LastSmartFunction)
            m_check.warnings += place + QStringLiteral("smart function ")
                + Words::smartFunction(channel.smart_function);
    }

    void inspectEmpty(const ChannelRecord &channel, const QString &place)
    {
        const auto warn = [&](bool isSet, const QString &text) {
            if (isSet)
                m_check.warnings += place + text + QLatin1String(", but no input");
        };
        warn(channel.hdr_enabled, QLatin1String("header ") + Words::header(channel));
        warn(channel.filter_enabled, QLatin1String("filter ") + Words::filter(m_model, channel));
        warn(channel.crs_enabled, QStringLiteral("checksum check"));
        warn(channel.smart_function != 0,
             QLatin1String("smart function ") + Words::smartFunction(channel.smart_function));
    }

    void inspectFilter(const ChannelRecord &channel, const QString &place)
    {
        if (!channel.filter_enabled)
            return;
        const quint32 listed = channel.filter_mask & m_model.filter_list_mask;
        if (listed == 0 && channel.filter_type == WhiteList)
            m_check.warnings += place + QLatin1String("an empty white list lets nothing pass");
        if (listed == 0 && channel.filter_type != WhiteList)
            m_check.notes += place + QLatin1String("an empty black list lets everything pass");
        if (listed != channel.filter_mask)
            m_check.warnings += place + QLatin1String("the filter lists a free slot: ")
                + Words::filter(m_model, channel);
    }

    // Legitimate with two filters, and the sentences come twice without.
    void findRepeatedInputs(int port)
    {
        for (quint8 input = 0; input < InputPortCount; ++input) {
            QStringList channels;
            for (int i = 0; i < ChannelCount; ++i) {
                if (channelAt(port, i).main_input == input)
                    channels += QString::number(i);
            }
            if (channels.size() > 1)
                m_check.notes +=
                    QStringLiteral("%1: input %2 is the main input of channels %3")
                        .arg(Words::output(m_model, port), Words::input(m_model, input),
                             channels.join(QLatin1String(", ")));
        }
    }

    void findUnusedInputs()
    {
        QStringList unnamed;
        for (quint8 input = 0; input < InputPortCount; ++input) {
            if (m_uses & bitOf(input))
                continue;
            if (Words::inputName(m_model, input).isEmpty())
                unnamed += QString::number(input);
            else
                m_check.warnings +=
                    QStringLiteral("Input %1 goes nowhere").arg(Words::input(m_model, input));
        }
        if (!unnamed.isEmpty())
            m_check.notes += QStringLiteral("Inputs without a name that go nowhere: %1")
                                 .arg(unnamed.join(QLatin1String(", ")));
    }

    void findRepeatedSentences()
    {
        for (int slot = 0; slot < FilterSlotCount; ++slot) {
            if (Words::isTaken(m_model, slot)
                && Words::sentence(m_model, slot)
                    != Words::printable(m_model.filter_list[std::size_t(slot)]))
                m_check.warnings += QStringLiteral("List of sentence names: %1 is there twice")
                                        .arg(Words::sentence(m_model, slot));
        }
    }

    static quint32 bitOf(quint8 input) { return isInputPort(input) ? quint32(1) << input : 0; }

    static constexpr int LastSmartFunction = 5;

    const RouterModel &m_model;
    RuleCheck &m_check;
    quint32 m_uses = 0;
};

} // namespace

RuleCheck RuleCheck::of(const RuleDocument &document)
{
    RuleCheck check;
    check.warnings = document.remarks + untransportable(document.model);
    Inspector(document.model, check).run();
    return check;
}

QStringList RuleCheck::untransportable(const RouterModel &model)
{
    QStringList texts;
    const auto look = [&texts](bool isGood, const QString &place, const QString &what) {
        if (!isGood)
            texts += QStringLiteral("%1: %2 can't be sent to a router").arg(place, what);
    };
    for (int port = 0; port < OutputPortCount; ++port) {
        const OutputPortRecord &output = model.output_ports[std::size_t(port)];
        look(canTravel(output.output_name), QStringLiteral("Output %1").arg(port),
             named("the name", output.output_name));
        for (int i = 0; i < ChannelCount; ++i) {
            const ChannelRecord &channel = output.channels[std::size_t(i)];
            const QString place = Words::channel(model, port, i);
            for (const quint8 input : {channel.main_input, channel.reserve_input})
                look(fitsNibble(input), place, QStringLiteral("input %1").arg(input));
            look(!channel.hdr_enabled || isOfCapitals(channel.hdr, HeaderLength), place,
                 named("the header", channel.hdr));
        }
    }
    for (int port = 0; port < InputPortCount; ++port) {
        const QString &name = model.input_ports[std::size_t(port)].input_name;
        look(canTravel(name), QStringLiteral("Input %1").arg(port), named("the name", name));
    }
    for (int slot = 0; slot < FilterSlotCount; ++slot) {
        const QString &name = model.filter_list[std::size_t(slot)];
        look(!Words::isTaken(model, slot) || isOfCapitals(name, SentenceNameLength),
             QStringLiteral("List of sentence names, slot %1").arg(slot), named("the name", name));
    }
    return texts;
}
