#include "link/lineassembler.h"

LineAssembler::LineAssembler()
{
    m_bytes.reserve(MaxLineBytes); // and resize() keeps it from now on
}

void LineAssembler::add(const char *data, int size)
{
    m_bytes.append(data, size);
}

bool LineAssembler::takeLine(QByteArray &line)
{
    while (m_next != m_bytes.size()) {
        const char byte = m_bytes.at(m_next++);
        if (byte == '$' || byte == '!')
            m_lineSize = 0;
        else if (m_lineSize == 0)
            continue;
        m_line[m_lineSize++] = byte;
        const bool isWhole = byte == '\n';
        if (!isWhole && m_lineSize < MaxLineBytes)
            continue;
        if (isWhole)
            line = QByteArray(m_line, m_lineSize);
        m_lineSize = 0;
        if (isWhole)
            return true;
    }
    m_bytes.resize(0);
    m_next = 0;
    return false;
}
