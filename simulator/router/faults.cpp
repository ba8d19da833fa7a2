#include "simulator/router/faults.h"

#include "simulator/router/routerconfig.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr double oneDay = 86400.0;    // seconds
constexpr double oneMinute = 60000.0; // milliseconds
constexpr double maxPacket = 40000.0; // above the last packet of the longest firmware
constexpr double maxCode = 65535.0;

} // namespace

const QVector<FaultInfo> &faultTable()
{
    static const QVector<FaultInfo> table = {
        {Fault::Silent, "silent", nullptr, 0, 0, "never answers, whatever it is asked"},
        {Fault::Busy, "busy", nullptr, 0, 0, "says that another control program holds it"},
        {Fault::SilentAfter, "silent-after", "SECONDS", 5, oneDay,
         "falls silent that long after a connection, for good"},
        {Fault::BusyAfter, "busy-after", "SECONDS", 5, oneDay,
         "another control program takes it over that long after a connection"},
        {Fault::NoSecondAnswer, "no-second-answer", nullptr, 0, 0,
         "answers at its start speed, but not at 115200 baud"},
        {Fault::WrongChecksums, "wrong-checksums", nullptr, 0, 0,
         "every checksum that it sends is wrong"},
        {Fault::Noise, "noise", "PERCENT", 5, 100,
         "random bytes between sentences, and within that many of a hundred"},
        {Fault::SaveError, "save-error", nullptr, 0, 0, "the EEPROM can't be written"},
        {Fault::Locked, "locked", nullptr, 0, 0, "is locked by a password and refuses a save"},
        {Fault::Slow, "slow", "MILLISECONDS", 300, oneMinute,
         "answers that much late, and sends its configuration haltingly"},
        {Fault::Unplugged, "unplugged", "SECONDS", 5, oneDay,
         "the cable is pulled out, once, that long after a connection"},
        {Fault::Replug, "replug", "SECONDS", 5, oneDay,
         "an unplugged cable is put back that long after it was pulled out"},
        {Fault::InputSilent, "input-silent", "PORT", 0, portCount - 1,
         "nothing comes from the instrument at that input port", true},
        {Fault::InputErrors, "input-errors", "PERCENT", 10, 100,
         "that many of a hundred sentences reach the inputs with a wrong checksum"},
        {Fault::InputDamage, "input-damage", "PERCENT", 10, 100,
         "that many of a hundred sentences reach the inputs as no sentences any more"},
        {Fault::FwRefuse, "fw-refuse", nullptr, 0, 0, "refuses a firmware update"},
        {Fault::FwWrongNumber, "fw-wrong-number", "PACKET", 2, maxPacket,
         "acknowledges that firmware packet by the number behind it", true},
        {Fault::FwRepeat, "fw-repeat", "PACKET", 2, maxPacket,
         "acknowledges that firmware packet twice", true},
        {Fault::FwEarly, "fw-early", "PACKET", 2, maxPacket,
         "acknowledges that firmware packet together with the one before, and not again", true},
        {Fault::FwLate, "fw-late", "MILLISECONDS", 300, oneMinute,
         "says everything in a firmware update that much late"},
        {Fault::FwSilentAt, "fw-silent-at", "PACKET", 2, maxPacket,
         "leaves a firmware update at that packet, without a word", true},
        {Fault::FwError, "fw-error", "CODE", 7, maxCode,
         "ends a firmware update with that error, behind its last packet", true},
        {Fault::FwErrorAt, "fw-error-at", "PACKET", 2, maxPacket,
         "ends a firmware update with an error (fw-error says which) at that packet", true},
    };
    return table;
}

const FaultInfo &faultInfo(Fault fault)
{
    return faultTable().at(static_cast<int>(fault));
}

QString faultName(Fault fault)
{
    return QString::fromLatin1(faultInfo(fault).name);
}

std::optional<Fault> faultFromName(const QString &name)
{
    const auto &table = faultTable();
    const auto row = std::find_if(table.cbegin(), table.cend(), [&](const FaultInfo &info) {
        return name == QLatin1String(info.name);
    });
    return row == table.cend() ? std::nullopt : std::optional(row->fault);
}

} // namespace tk7sim
