#include "simulator/router/faultset.h"

#include <QtGlobal>

namespace tk7sim {

void FaultSet::set(Fault fault, double value)
{
    m_values.insert(fault, qBound(0.0, value, faultInfo(fault).maximum));
}

} // namespace tk7sim
