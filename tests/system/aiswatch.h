#pragma once

#include "simulator/router/routersimulator.h"

#include <QObject>
#include <QVector>

/*! What the tool's AIS test has been told so far. */
class AisWatch : public QObject
{
    Q_OBJECT

public:
    explicit AisWatch(tk7sim::RouterSimulator *router);

    //! The input ports with data of vessels or alarms, in the order in which they were first heard:
    //! the rows of the tool's table.
    const QVector<int> &ports() const { return m_ports; }

private:
    void slotReported(const tk7sim::AisReport &report);

    QVector<int> m_ports;
};
