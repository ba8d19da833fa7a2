#include "simulator/router/linerecord.h"

#include <chrono>

namespace tk7sim {

qint64 steadyMicroseconds()
{
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

void LineRecord::append(const QByteArray &line, int lineSpeed)
{
    if (m_lines.size() >= maxEntries) {
        m_lines.removeFirst();
    }
    m_lines.append({line, steadyMicroseconds(), lineSpeed});
}

} // namespace tk7sim
