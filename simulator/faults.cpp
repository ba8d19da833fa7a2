#include "simulator/faults.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr double oneDay = 86400.0;    // seconds
constexpr double oneMinute = 60000.0; // milliseconds

} // namespace

const QVector<FaultInfo> &faultTable()
{
    static const QVector<FaultInfo> table = {
        {Fault::Silent, "silent", nullptr, 0, 0, "never answers, whatever it is asked"},
        {Fault::Busy, "busy", nullptr, 0, 0, "says that another control program holds it"},
        {Fault::SilentAfter, "silent-after", "SECONDS", 5, oneDay,
         "falls silent that long after a connection, for good"},
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
