#pragma once

#include <QtGlobal>

/*! The firmware version of a router, as far as it has told it. */
struct RouterVersion
{
    bool is_known = false;
    quint32 major = 0;
    quint32 minor = 0;
};

/*! What depends on the router's firmware. */
enum class RouterFunction {
    Service,        //!< opening the service dialog
    Statistics,     //!< the counters of the ports, the chip identifier, setting a lock password
    FirmwareUpdate, //!< loading another firmware
    AisTest,        //!< $VRATM
    SmartAis,       //!< the smart function AIS of a channel
    ModeChange      //!< $VRMOD to the router
};

/*! Whether a router of \a version has \a function. One whose version isn't known has none. */
bool supports(const RouterVersion &version, RouterFunction function);
