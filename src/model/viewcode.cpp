#include "model/viewcode.h"

QString ViewCode::text() const
{
    if (isNone())
        return QString();
    if (isInput())
        return tr("INPUT PORT %1").arg(port());
    if (isOutput())
        return tr("OUTPUT PORT %1").arg(port());
    return tr("OUTPUT PORT %1 - CHANNEL %2").arg(port()).arg(channel());
}
