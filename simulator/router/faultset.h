#pragma once

#include "simulator/router/faults.h"

#include <QMap>

namespace tk7sim {

/*! The faults that a router has at present, with their values. */
class FaultSet
{
public:
    void set(Fault fault, double value);
    void clear(Fault fault) { m_values.remove(fault); }
    void clear() { m_values.clear(); }
    bool has(Fault fault) const { return m_values.contains(fault); }
    //! The value of \a fault, within the range of its row; 0 if it isn't set.
    double value(Fault fault) const { return m_values.value(fault); }

private:
    QMap<Fault, double> m_values;
};

} // namespace tk7sim
