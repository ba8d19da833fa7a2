#pragma once

#include <QString>
#include <QVector>

#include <optional>

namespace tk7sim {

/*! What can be wrong with the simulated router or its cable. Any number of them at a time. */
enum class Fault {
    Silent,         //!< does nothing and says nothing
    Busy,           //!< held by another control program: answers a query for a connection by "busy"
    SilentAfter,    //!< falls silent; value: seconds after a connection
    BusyAfter,      //!< another program takes it over; value: seconds after a connection
    NoSecondAnswer, //!< doesn't answer at 115200 baud
    WrongChecksums, //!< every checksum that it sends is wrong
    Noise,     //!< random bytes between and in the midst of sentences; value: per cent of them hit
    SaveError, //!< the EEPROM can't be written
    Locked,    //!< reports that it is locked, and refuses a save
    Slow,      //!< answers late; value: milliseconds
    Unplugged, //!< the cable is pulled out once; value: seconds after a connection
    Replug,    //!< an unplugged cable is put back; value: seconds after it was pulled out
    InputSilent,   //!< nothing comes from an instrument; value: its port. Set again: one more
    InputErrors,   //!< inputs get sentences with a wrong checksum; value: per cent of them
    InputDamage,   //!< inputs get what is no sentence any more; value: per cent of them
    FwRefuse,      //!< takes no firmware
    FwWrongNumber, //!< acknowledges the packet behind it instead; value: number of the packet
    FwRepeat,      //!< acknowledges a packet twice; value: its number
    FwEarly,       //!< acknowledges a packet before it has come; value: its number
    FwLate,        //!< every word of an update comes late; value: milliseconds
    FwSilentAt,    //!< says nothing more in an update; value: number of the packet
    FwError,       //!< reports an error at the end of an update; value: its code
    FwErrorAt      //!< reports an error instead of an acknowledgement; value: number of the packet
};

/*! A row of the table of faults. */
struct FaultInfo
{
    Fault fault;
    const char *name;      //!< as on the command line
    const char *valueName; //!< what the value is called, null where there is none
    double defaultValue;   //!< where no value is given
    double maximum;        //!< greatest value, the least is 0
    const char *text;      //!< one line for a user
    bool isWhole = false;  //!< the value has no fraction
};

/*! All faults, in the order of the enumeration. */
const QVector<FaultInfo> &faultTable();
/*! The row of \a fault. */
const FaultInfo &faultInfo(Fault fault);
/*! The name of \a fault on the command line. */
QString faultName(Fault fault);
/*! The fault called \a name, if there is one. */
std::optional<Fault> faultFromName(const QString &name);

} // namespace tk7sim
