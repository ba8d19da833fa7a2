#pragma once

#include "model/routermodel.h"

#include <QRandomGenerator>

/*!
 * A model in which every field has a random value from its whole range. The same \a seed gives the
 * same model.
 */
inline RouterModel randomModel(quint32 seed)
{
    QRandomGenerator random(seed);
    const auto letters = [&random](int count) {
        QString text;
        for (int i = 0; i < count; ++i)
            text += QLatin1Char(char(random.bounded('A', 'Z' + 1)));
        return text;
    };
    const auto input = [&random] {
        const int port = random.bounded(InputPortCount + 1);
        return quint8(port == InputPortCount ? int(NO_PORT) : port);
    };
    const auto yes = [&random] { return random.bounded(2) == 1; };

    RouterModel model;
    for (OutputPortRecord &port : model.output_ports) {
        for (ChannelRecord &channel : port.channels) {
            channel.main_input = input();
            channel.reserve_input = input();
            channel.filter_enabled = yes();
            channel.filter_mask = random.generate();
            channel.filter_type = yes() ? BlackList : WhiteList;
            channel.crs_enabled = yes();
            channel.hdr_enabled = yes();
            channel.hdr = channel.hdr_enabled ? letters(HeaderLength) : QString();
            channel.smart_function = quint8(random.bounded(MaxSmartFunction + 1));
        }
        port.speed = portSpeeds()[std::size_t(random.bounded(PortSpeedCount))];
        port.output_name = letters(random.bounded(PortNameLength + 1));
    }
    for (InputPortRecord &port : model.input_ports)
        port.input_name = letters(random.bounded(PortNameLength + 1)).toLower();
    model.filter_list_mask = 0;
    for (int slot = 0; slot < FilterSlotCount; ++slot) {
        const bool isTaken = yes();
        model.filter_list[std::size_t(slot)] = isTaken ? letters(SentenceNameLength) : QString();
        model.filter_list_mask |= quint32(isTaken) << slot;
    }
    return model;
}
