#pragma once

#include "simulator/router/routerconfig.h"

#include <QByteArray>
#include <QString>

/*! What the other side of the cable is like at one moment. A plain value. */
struct RouterState
{
    tk7sim::RouterConfig working;
    QString portName; //!< as in the tool's list; empty while the cable is out
    bool isPlugged = false;
    bool isConnected = false;
    bool isAttached = false; //!< bytes have come or gone within the last moments
    int handshakes = 0;

    /*!
     * Counts whatever can have kept one side from hearing the other, or has changed one side alone.
     * As long as it stands, nothing was lost.
     */
    quint64 losses = 0;
    int downloads = 0; //!< configurations that have been sent whole, and nothing spoilt them
    int uploads = 0;   //!< configurations of the tool that have been heard whole

    quint64 downloadLosses = 0; //!< losses when the last of those downloads was on its way

    /*! A line of the configuration that the router refused, the last one; empty if none. */
    QByteArray refused;

    qint64 now = 0;        //!< microseconds
    qint64 lastHeard = 0;  //!< when the last line of the tool came
    qint64 lastSpoken = 0; //!< when the router last gave a sign of life
};
