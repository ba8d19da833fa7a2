#include "aiswatch.h"

using namespace tk7sim;

AisWatch::AisWatch(RouterSimulator *router)
{
    connect(router, &RouterSimulator::aisReported, this, &AisWatch::slotReported);
}

void AisWatch::slotReported(const AisReport &report)
{
    const bool isShown =
        report.kind != AisReportKind::Other && report.kind != AisReportKind::RouterPosition;
    if (isShown && !m_ports.contains(report.port))
        m_ports += report.port;
}
