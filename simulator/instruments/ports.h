#pragma once

namespace tk7sim {

constexpr int portCount = 12; //!< input ports, and output ports, numbered 0 to 11

/*! True for a port number, 0 to 11. */
constexpr bool isPort(int number)
{
    return number >= 0 && number < portCount;
}

} // namespace tk7sim
