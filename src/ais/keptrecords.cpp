#include "ais/keptrecords.h"

#include <QObject>
#include <QVector>

namespace {

// Deliberately without an end of its own: records may be read while static objects are destroyed.
QVector<QObject *> &records()
{
    static auto *const kept = new QVector<QObject *>;
    return *kept;
}

} // namespace

void KeptRecords::keep(QObject *record)
{
    records().append(record);
}

int KeptRecords::count()
{
    return int(records().size());
}

void KeptRecords::releaseAll()
{
    qDeleteAll(records());
    records().clear();
}
