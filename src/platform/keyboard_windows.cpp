#include "platform/keyboard.h"

#include <utility>

#include <windows.h>

namespace platform {

namespace {

constexpr int downBit = 0x80; // of the low byte

std::function<bool()> &source()
{
    static std::function<bool()> function;
    return function;
}

} // namespace

bool isLeftControlDown()
{
    if (source())
        return source()();
    return (GetKeyState(VK_LCONTROL) & downBit) != 0;
}

void followLeftControl() { }

void setLeftControlSource(std::function<bool()> function)
{
    source() = std::move(function);
}

} // namespace platform
