#include "rules/sheet.h"

#include "model/routermodel.h"
#include "rules/words.h"

namespace {

Sheet::Channel sheetChannel(const RouterModel &model, const ChannelRecord &record, int number)
{
    Sheet::Channel channel;
    channel.number = number;
    channel.main = Words::input(model, record.main_input);
    channel.reserve = Words::input(model, record.reserve_input);
    channel.filter = Words::filter(model, record);
    channel.checksum = record.crs_enabled ? QStringLiteral("checked") : QStringLiteral("none");
    channel.header = Words::header(record);
    channel.smart = Words::smartFunction(record.smart_function);
    return channel;
}

Sheet::Output sheetOutput(const RouterModel &model, int number)
{
    const OutputPortRecord &record = model.output_ports[std::size_t(number)];
    Sheet::Output output;
    output.number = number;
    output.name = Words::printable(record.output_name);
    output.kind = Words::kind(outputPortKind(number));
    output.speed = QString::number(record.speed);
    for (int i = 0; i < ChannelCount; ++i) {
        const ChannelRecord &channel = record.channels[std::size_t(i)];
        if (!Words::isUnused(channel))
            output.channels += sheetChannel(model, channel, i);
    }
    return output;
}

QStringList usesOf(const RouterModel &model, int input)
{
    QStringList uses;
    for (int port = 0; port < OutputPortCount; ++port) {
        for (int i = 0; i < ChannelCount; ++i) {
            const ChannelRecord &channel =
                model.output_ports[std::size_t(port)].channels[std::size_t(i)];
            QString place = Words::channel(model, port, i);
            place[0] = place.at(0).toLower();
            if (channel.main_input == input)
                uses += place;
            if (channel.reserve_input == input)
                uses += QString(place + QLatin1String(", as reserve"));
        }
    }
    return uses;
}

Sheet::Input sheetInput(const RouterModel &model, int number)
{
    Sheet::Input input;
    input.number = number;
    input.name = Words::printable(model.input_ports[std::size_t(number)].input_name);
    input.kind = Words::kind(inputPortKind(number));
    input.speed = QString::number(model.output_ports[std::size_t(number)].speed);
    input.uses = usesOf(model, number);
    return input;
}

} // namespace

Sheet makeSheet(const RouterModel &model)
{
    Sheet sheet;
    for (int port = 0; port < OutputPortCount; ++port)
        sheet.outputs += sheetOutput(model, port);
    for (int port = 0; port < InputPortCount; ++port)
        sheet.inputs += sheetInput(model, port);
    for (int slot = 0; slot < FilterSlotCount; ++slot) {
        if (Words::isTaken(model, slot))
            sheet.sentences += Words::numbered(slot, model.filter_list[std::size_t(slot)]);
    }
    return sheet;
}
