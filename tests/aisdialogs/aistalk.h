#pragma once

#include "payloadbuilder.h"

#include <QByteArray>
#include <QString>

/*! What a router says in an AIS test: whole sentences from the '$' to the line feed. */
namespace AisTalk {

/*! A position report of \a mmsi at \a minutes of latitude, north, on the meridian of Greenwich. */
PositionReport northOf(quint32 mmsi, double minutes);

/*! A vessel's static and voyage data with that \a name. */
VoyageData named(quint32 mmsi, const QByteArray &name);

QString heard(uint port, const PositionReport &report);
QString heard(uint port, const VoyageData &data);
QString own(uint port, const PositionReport &report);
QString own(uint port, const VoyageData &data);

/*! The router's own position, \a minutes north on the meridian of Greenwich. */
QString position(double minutes);

/*! An alarm at 12:05:34; \a condition and \a acknowledged are 'A' or 'V'. */
QString alarm(uint port, uint id, char condition, char acknowledged,
              const QByteArray &text = QByteArrayLiteral("AIS: Tx malfunction"),
              const QByteArray &time = QByteArrayLiteral("120534.00"));

} // namespace AisTalk
