#pragma once

#include "model/routermodel.h"
#include "simulator/router/routerconfig.h"

/*! \a model as the simulated router keeps it. */
inline tk7sim::RouterConfig routerConfigOf(const RouterModel &model)
{
    tk7sim::RouterConfig config;
    for (std::size_t p = 0; p < OutputPortCount; ++p) {
        for (std::size_t c = 0; c < ChannelCount; ++c) {
            const ChannelRecord &from = model.output_ports[p].channels[c];
            tk7sim::Channel &to = config.outputs[p].channels[c];
            to.mainInput = from.main_input;
            to.reserveInput = from.reserve_input;
            to.filterEnabled = from.filter_enabled;
            to.filterMask = from.filter_mask;
            to.filterType = from.filter_type == WhiteList ? tk7sim::FilterType::White
                                                          : tk7sim::FilterType::Black;
            to.crsEnabled = from.crs_enabled;
            to.hdrEnabled = from.hdr_enabled;
            to.hdr = from.hdr_enabled ? from.hdr.toLatin1() : QByteArray();
            to.smart = from.smart_function;
        }
        config.speeds[p] = model.output_ports[p].speed;
        config.outputNames[p] = model.output_ports[p].output_name.toLatin1();
        config.inputNames[p] = model.input_ports[p].input_name.toLatin1();
    }
    for (std::size_t slot = 0; slot < FilterSlotCount; ++slot) {
        const bool isTaken = model.filter_list_mask >> slot & 1;
        config.filterList[slot] = isTaken ? model.filter_list[slot].toLatin1() : QByteArray();
    }
    return config;
}
