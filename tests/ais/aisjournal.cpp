#include "aisjournal.h"

#include "ais/qais.h"

#include <utility>

AisJournal::AisJournal(QAis &ais)
{
    connect(&ais, &QAis::signalAddTarget, this, [this](uint port, uint mmsi) {
        write(QStringLiteral("add %1 %2").arg(port).arg(mmsi));
    });
    connect(&ais, &QAis::signalDeleteTarget, this, [this](uint port, uint mmsi) {
        write(QStringLiteral("delete %1 %2").arg(port).arg(mmsi));
    });
    connect(&ais, &QAis::signalUpdateTarget, this, [this](uint port, uint mmsi) {
        write(QStringLiteral("update %1 %2").arg(port).arg(mmsi));
    });
    connect(&ais, &QAis::signalUpdateOwnTarget, this,
            [this](uint port) { write(QStringLiteral("own %1").arg(port)); });
    connect(&ais, &QAis::signalNewOwnPosition, this, [this](uint port, QGpsKrd *position) {
        write(QStringLiteral("position %1 %2 %3")
                  .arg(port)
                  .arg(position->m_lat, 0, 'f', 4)
                  .arg(position->m_lon, 0, 'f', 4));
    });
    connect(&ais, &QAis::signalLostPosition, this,
            [this](uint port) { write(QStringLiteral("lost %1").arg(port)); });
    connect(&ais, &QAis::signalUpdateAlarm, this, [this](uint port, quint8 id) {
        write(QStringLiteral("alarm %1 %2").arg(port).arg(id));
    });
}

QStringList AisJournal::take()
{
    return std::exchange(m_lines, {});
}

void AisJournal::write(const QString &line)
{
    m_lines.append(line);
    if (onSignal)
        onSignal(line);
}
