#include "model/routermodel.h"
#include "rules/sheetwriters.h"
#include "rules/words.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int FormatVersion = 1;

QJsonObject numbered(int number, const QString &name)
{
    return {{QStringLiteral("number"), number}, {QStringLiteral("name"), name}};
}

QJsonValue inputValue(const RouterModel &model, quint8 number)
{
    if (number == NO_PORT)
        return QJsonValue::Null;
    return numbered(number, Words::inputName(model, number));
}

QJsonObject filterObject(const RouterModel &model, const ChannelRecord &channel)
{
    QJsonArray names;
    QJsonArray freeSlots;
    for (int slot = 0; slot < FilterSlotCount; ++slot) {
        if (!(channel.filter_mask >> slot & 1))
            continue;
        if (Words::isTaken(model, slot))
            names += numbered(slot, model.filter_list[std::size_t(slot)]);
        else
            freeSlots += slot;
    }
    return {{QStringLiteral("enabled"), channel.filter_enabled},
            {QStringLiteral("list"),
             channel.filter_type == WhiteList ? QStringLiteral("white") : QStringLiteral("black")},
            {QStringLiteral("sentences"), names},
            {QStringLiteral("freeSlots"), freeSlots},
            {QStringLiteral("words"), Words::filter(model, channel)}};
}

QJsonObject channelObject(const RouterModel &model, const ChannelRecord &channel, int number)
{
    return {{QStringLiteral("number"), number},
            {QStringLiteral("main"), inputValue(model, channel.main_input)},
            {QStringLiteral("reserve"), inputValue(model, channel.reserve_input)},
            {QStringLiteral("filter"), filterObject(model, channel)},
            {QStringLiteral("checksum"), channel.crs_enabled},
            {QStringLiteral("header"),
             channel.hdr_enabled ? QJsonValue(channel.hdr) : QJsonValue(QJsonValue::Null)},
            {QStringLiteral("smart"),
             numbered(channel.smart_function, Words::smartFunction(channel.smart_function))}};
}

QJsonObject portObject(int number, const QString &name, PortKind kind, quint32 speed)
{
    QJsonObject port = numbered(number, name);
    port.insert(QStringLiteral("kind"), Words::kind(kind));
    port.insert(QStringLiteral("speed"), qint64(speed));
    return port;
}

QJsonArray usesOf(const RouterModel &model, int input)
{
    QJsonArray uses;
    const auto add = [&uses](int port, int channel, const char *role) {
        uses += QJsonObject{{QStringLiteral("output"), port},
                            {QStringLiteral("channel"), channel},
                            {QStringLiteral("as"), QLatin1String(role)}};
    };
    for (int port = 0; port < OutputPortCount; ++port) {
        for (int i = 0; i < ChannelCount; ++i) {
            const ChannelRecord &channel =
                model.output_ports[std::size_t(port)].channels[std::size_t(i)];
            if (channel.main_input == input)
                add(port, i, "main");
            if (channel.reserve_input == input)
                add(port, i, "reserve");
        }
    }
    return uses;
}

} // namespace

QByteArray SheetWriters::json(const RouterModel &model)
{
    QJsonArray outputs;
    QJsonArray inputs;
    for (int number = 0; number < OutputPortCount; ++number) {
        const OutputPortRecord &record = model.output_ports[std::size_t(number)];
        QJsonArray channels;
        for (int i = 0; i < ChannelCount; ++i) {
            const ChannelRecord &channel = record.channels[std::size_t(i)];
            if (!Words::isUnused(channel))
                channels += channelObject(model, channel, i);
        }
        QJsonObject port =
            portObject(number, record.output_name, outputPortKind(number), record.speed);
        port.insert(QStringLiteral("channels"), channels);
        outputs += port;
    }
    for (int number = 0; number < InputPortCount; ++number) {
        QJsonObject port =
            portObject(number, model.input_ports[std::size_t(number)].input_name,
                       inputPortKind(number), model.output_ports[std::size_t(number)].speed);
        port.insert(QStringLiteral("goesTo"), usesOf(model, number));
        inputs += port;
    }
    QJsonArray sentences;
    for (int slot = 0; slot < FilterSlotCount; ++slot) {
        if (Words::isTaken(model, slot))
            sentences += numbered(slot, model.filter_list[std::size_t(slot)]);
    }
    const QJsonObject sheet = {{QStringLiteral("format"), QStringLiteral("tk7-rules")},
                               {QStringLiteral("version"), FormatVersion},
                               {QStringLiteral("outputs"), outputs},
                               {QStringLiteral("inputs"), inputs},
                               {QStringLiteral("sentences"), sentences}};
    return QJsonDocument(sheet).toJson();
}
