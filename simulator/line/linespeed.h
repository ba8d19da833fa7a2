#pragma once

#include <array>

namespace tk7sim {

/*! The speeds that the router's ports know, in baud, ascending. */
constexpr std::array<int, 7> lineSpeeds = {2400, 4800, 9600, 19200, 38400, 57600, 115200};

constexpr int bitsPerByte = 10; //!< on the line: start bit, eight data bits, stop bit

/*! True for one of the seven speeds. */
bool isLineSpeed(int baud);
/*! The speed that the terminal settings' constant \a termiosSpeed stands for; 0 if none of ours. */
int baudOfTermios(unsigned int termiosSpeed);

} // namespace tk7sim
