#pragma once

#include "simulator/instruments/aisreport.h"
#include "simulator/instruments/ports.h"

#include <array>
#include <optional>

namespace tk7sim {

/*! The last that each station has said, of the reports that were recorded. */
class AisTruth
{
public:
    void record(const AisReport &report);

    //! What \a port, 0 to 11, has heard.
    const AisPortTruth &port(int port) const { return m_ports[static_cast<size_t>(port)]; }
    //! What the router's own receiver has said last.
    const std::optional<AisRouterPosition> &routerPosition() const { return m_routerPosition; }
    quint64 reports() const { return m_reports; }

private:
    std::array<AisPortTruth, portCount> m_ports;
    std::optional<AisRouterPosition> m_routerPosition;
    quint64 m_reports = 0;
};

} // namespace tk7sim
