#pragma once

#include "model/routermodel.h"

inline QString richLetter(int index)
{
    return QChar(QLatin1Char(char('A' + index % 26)));
}

/*! Every field in use; data/make_golden.py makes the same router by the same formulas. */
inline RouterModel richModel()
{
    RouterModel model;
    for (int p = 0; p < OutputPortCount; ++p) {
        for (int c = 0; c < ChannelCount; ++c) {
            const int n = 12 * p + c;
            const int main = (p + c) % 13;
            const int reserve = (5 * p + 7 * c + 3) % 13;
            ChannelRecord &channel = model.output_ports[std::size_t(p)].channels[std::size_t(c)];
            channel.main_input = main == 12 ? NO_PORT : quint8(main);
            channel.reserve_input = reserve == 12 ? NO_PORT : quint8(reserve);
            channel.filter_enabled = n % 2 == 1;
            channel.filter_mask = quint32(n) * 0x9e3779b1U;
            channel.filter_type = n % 3 == 1 ? BlackList : WhiteList;
            channel.crs_enabled = n % 5 == 1;
            channel.hdr_enabled = n % 7 < 3;
            if (n % 7 < 5)
                channel.hdr = richLetter(n) + richLetter(3 * n + 1);
            channel.smart_function = quint8(n % 8);
        }
        OutputPortRecord &port = model.output_ports[std::size_t(p)];
        port.speed = portSpeeds()[std::size_t((3 * p) % 7)];
        port.output_name = QStringLiteral("Out ab%Z").left(p % 9);
        model.input_ports[std::size_t(p)].input_name = QStringLiteral("gPs #/19").left((p + 5) % 9);
    }
    for (int slot = 0; slot < FilterSlotCount; ++slot) {
        model.filter_list[std::size_t(slot)] =
            richLetter(slot) + QLatin1Char('Q') + richLetter(25 - slot % 26);
    }
    model.filter_list_mask = 0xa5f01ce7;
    return model;
}
