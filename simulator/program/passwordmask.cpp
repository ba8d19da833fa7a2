#include "simulator/program/passwordmask.h"

namespace tk7sim {

QByteArray withoutPassword(const QByteArray &line, bool isAnswer)
{
    constexpr int headLength = 6; // "$VRPWS"
    const bool isResult =
        isAnswer && (line.startsWith("$VRPWS,OK*") || line.startsWith("$VRPWS,ERROR*"));
    const bool isWhole = line.trimmed().size() <= headLength;
    if (!line.startsWith("$VRPW") || isResult || isWhole) {
        return line;
    }
    return line.left(headLength).append(",***");
}

} // namespace tk7sim
