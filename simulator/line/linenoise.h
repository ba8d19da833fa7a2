#pragma once

#include <QByteArray>
#include <QRandomGenerator>

namespace tk7sim {

/*! A bad line: random bytes, the same ones for the same seed. */
class LineNoise
{
public:
    static constexpr int maxBurst = 4; //!< random bytes between two sentences, at most

    explicit LineNoise(quint32 seed = 1);

    //! \a line, hit in its midst in \a percent of the cases, with random bytes behind it.
    QByteArray spoil(const QByteArray &line, double percent);
    //! What a receiver at another speed makes of \a bytes: as many bytes, none of them ASCII.
    QByteArray garble(const QByteArray &bytes);

private:
    char randomByte();

    QRandomGenerator m_random;
};

} // namespace tk7sim
