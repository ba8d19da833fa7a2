#include "traffic.h"

#include <numeric>

using tk7sim::RouterSimulator;

Traffic::Traffic(RouterSimulator *router)
{
    connect(router, &RouterSimulator::lineSent, this, &Traffic::slotLineSent);
}

QByteArray Traffic::headOf(const QByteArray &line)
{
    return line.left(line.indexOf(','));
}

bool Traffic::hasRightChecksum(const QByteArray &line)
{
    constexpr int digits = 2;
    const QByteArray sentence = line.trimmed();
    const int star = int(sentence.indexOf('*'));
    if (star < 0 || sentence.size() != star + 1 + digits)
        return false;
    const int sum = std::accumulate(sentence.begin() + 1, sentence.begin() + star, 0,
                                    [](int total, char c) { return total ^ uchar(c); });
    return sentence.right(digits).toInt(nullptr, 16) == sum;
}

void Traffic::slotLineSent(const QByteArray &line)
{
    constexpr int firstInput = 240;
    const QByteArray viewHead = "$VRVVW,";
    if (line.startsWith(viewHead))
        m_lines += line.mid(viewHead.size()).split('*').first().toInt() < firstInput ? "---- OUTPUT"
                                                                                     : "---- INPUT";
    else if (!line.startsWith("$VR"))
        m_lines += line.trimmed();
}
