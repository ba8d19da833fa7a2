#include "simulator/line/linenoise.h"

namespace tk7sim {

namespace {

constexpr double all = 100.0; // per cent
constexpr int byteValues = 256;
constexpr int asciiValues = 128;

} // namespace

LineNoise::LineNoise(quint32 seed) : m_random(seed) { }

QByteArray LineNoise::spoil(const QByteArray &line, double percent)
{
    QByteArray result = line;
    if (m_random.generateDouble() * all < percent) {
        result.insert(m_random.bounded(line.size() + 1), randomByte());
        result[m_random.bounded(result.size())] = randomByte();
    }
    const int burst = m_random.bounded(maxBurst + 1);
    for (int i = 0; i < burst; ++i) {
        result.append(randomByte());
    }
    return result;
}

QByteArray LineNoise::garble(const QByteArray &bytes)
{
    QByteArray result(bytes.size(), '\0');
    for (char &byte : result) {
        byte = static_cast<char>(asciiValues + m_random.bounded(asciiValues));
    }
    return result;
}

char LineNoise::randomByte()
{
    return static_cast<char>(m_random.bounded(byteValues));
}

} // namespace tk7sim
