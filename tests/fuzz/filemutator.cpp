#include "filemutator.h"

#include <iterator>

namespace {

constexpr int maxNoise = 2000;
constexpr int maxMutations = 8;
constexpr int maxPiece = 40;

// Ends of texts, blanks, the edges of numbers and of UTF-8.
constexpr char oddBytes[] = {'\0',   '\n',   '\r',   ' ',    '\x0b', '\x0c', '\x0f', '\x10',
                             '\x7f', '\x80', '\xc3', '\xe2', '\xef', '\xf0', '\xfe', '\xff'};

} // namespace

QByteArray FileMutator::nextInput()
{
    if (m_files.isEmpty() || m_random.bounded(16) == 0)
        return noise(m_random.bounded(maxNoise));
    QByteArray bytes = m_files.at(m_random.bounded(m_files.size()));
    for (int left = 1 + m_random.bounded(maxMutations); left > 0; --left)
        mutate(bytes);
    return bytes;
}

void FileMutator::mutate(QByteArray &bytes)
{
    const int at = position(bytes);
    const int length = m_random.bounded(maxPiece);
    switch (m_random.bounded(8)) {
    case 0: // one bit changes
        if (at < bytes.size())
            bytes[at] = char(bytes.at(at) ^ 1 << m_random.bounded(8));
        break;
    case 1: // a byte that means something
    case 2:
        if (at < bytes.size())
            bytes[at] = oddBytes[m_random.bounded(int(std::size(oddBytes)))];
        break;
    case 3: // a part is missing
        bytes.remove(at, length);
        break;
    case 4: // a part stands twice
        bytes.insert(at, bytes.mid(at, length));
        break;
    case 5: // bytes of nothing
        bytes.replace(at, length, noise(length));
        break;
    case 6: // torn off, at times
        if (m_random.bounded(4) == 0)
            bytes.truncate(at);
        break;
    default: // goes on as another file does
        bytes = bytes.left(at) + m_files.at(m_random.bounded(m_files.size())).mid(at);
        break;
    }
}

int FileMutator::position(const QByteArray &bytes)
{
    return int(m_random.bounded(bytes.size() + 1));
}

QByteArray FileMutator::noise(int size)
{
    QByteArray bytes(size, '\0');
    for (char &byte : bytes)
        byte = char(m_random.bounded(256));
    return bytes;
}
