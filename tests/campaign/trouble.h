#pragma once

#include "dice.h"

#include "simulator/router/faults.h"
#include "simulator/router/routerconfig.h"

#include <QString>

#include <vector>

class RouterHost;
class RouterThread;
class StepLog;

/*!
 * What goes wrong on the router's side: faults, noise, the cable, restarts, floods, sentences that
 * no router should send. Also what changes there without a fault.
 */
class Trouble
{
public:
    Trouble(RouterThread &router, Dice &dice, StepLog &log);

    /*! One step of the router, by chance. \a isPlugged says if the cable is in. */
    void step(bool isPlugged);
    /*! The router is well again, and the cable in. */
    void heal();
    /*! The router tells at last that it has saved: the tool waits for that and for nothing else. */
    void answerSave();
    /*! The present faults that keep the tool from connecting or staying connected. */
    bool isDeadly() const;
    static bool isDeadly(tk7sim::Fault fault);

    /*! A configuration with a value in every field that a router and a tool can agree on. */
    static tk7sim::RouterConfig randomConfig(Dice &dice);

private:
    struct Row
    {
        const char *name;
        int weight;
        QString (Trouble::*run)();
    };
    static const Row rows[];

    QString setFault();
    QString clearFaults();
    QString unplug();
    QString plug();
    QString restart();
    QString changeSpeed();
    QString flood();
    QString sayOutOfRange();
    QString sayAnything();
    QString sayForeignConfig();
    QString sayOwnStatus();
    QString changeVersion();
    QString changeLock();
    QString newConfiguration();
    QString countErrors();

    double valueFor(const tk7sim::FaultInfo &info);
    QByteArray outOfRangeBody();

    RouterThread &m_router;
    Dice &m_dice;
    StepLog &m_log;
    std::vector<tk7sim::Fault> m_faults; // that were set and not cleared
};
