#include "model/routerversion.h"

namespace {

struct Gate
{
    RouterFunction function;
    quint32 major; // the first version that has it
    quint32 minor;
};

constexpr Gate gates[] = {
    {RouterFunction::Service, 3, 0},        //
    {RouterFunction::Statistics, 3, 1},     //
    {RouterFunction::FirmwareUpdate, 3, 0}, //
    {RouterFunction::AisTest, 3, 4},        //
    {RouterFunction::SmartAis, 3, 5},       //
    {RouterFunction::ModeChange, 4, 0},     //
};

} // namespace

bool supports(const RouterVersion &version, RouterFunction function)
{
    if (!version.is_known)
        return false;
    for (const Gate &gate : gates) {
        if (gate.function != function)
            continue;
        return version.major > gate.major
            || (version.major == gate.major && version.minor >= gate.minor);
    }
    return false;
}
