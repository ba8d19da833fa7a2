#include "simulator/router/routerstatus.h"

#include "simulator/line/sentence.h"

#include <algorithm>

namespace tk7sim {

QByteArray RouterStatus::defaultChipId()
{
    QByteArray id = "TK-7 SIMUNIT0001";
    std::reverse(id.begin(), id.end());
    return id;
}

QByteArray RouterStatus::version() const
{
    return QByteArray::number(versionMajor) + '.' + QByteArray::number(versionMinor);
}

QByteArray RouterStatus::errorBody() const
{
    constexpr int codeDigits = 4;
    constexpr int faultDigits = 2;
    return "$VRERR," + hex(errorCode, codeDigits) + ',' + hex(errorFault, faultDigits);
}

} // namespace tk7sim
