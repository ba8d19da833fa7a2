#include "simulator/line/lineassembler.h"

namespace tk7sim {

QList<QByteArray> LineAssembler::take(const QByteArray &bytes)
{
    QList<QByteArray> lines;
    for (const char byte : bytes) {
        if (byte == '$') {
            m_line.clear();
        } else if (m_line.isEmpty()) {
            continue;
        }
        m_line.append(byte);
        if (byte == '\n') {
            lines.append(m_line);
            m_line.clear();
        } else if (m_line.size() >= maxLength) {
            m_line.clear();
        }
    }
    return lines;
}

} // namespace tk7sim
