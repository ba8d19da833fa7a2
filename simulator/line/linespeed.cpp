#include "simulator/line/linespeed.h"

#include <termios.h>

#include <algorithm>

namespace tk7sim {

namespace {

struct TermiosSpeed
{
    speed_t constant;
    int baud;
};

constexpr std::array<TermiosSpeed, 7> termiosSpeeds = {{{B2400, 2400},
                                                        {B4800, 4800},
                                                        {B9600, 9600},
                                                        {B19200, 19200},
                                                        {B38400, 38400},
                                                        {B57600, 57600},
                                                        {B115200, 115200}}};

} // namespace

bool isLineSpeed(int baud)
{
    return std::find(lineSpeeds.begin(), lineSpeeds.end(), baud) != lineSpeeds.end();
}

int baudOfTermios(unsigned int termiosSpeed)
{
    const auto row =
        std::find_if(termiosSpeeds.begin(), termiosSpeeds.end(),
                     [=](const TermiosSpeed &s) { return s.constant == termiosSpeed; });
    return row == termiosSpeeds.end() ? 0 : row->baud;
}

} // namespace tk7sim
