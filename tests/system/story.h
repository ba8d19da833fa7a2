#pragma once

#include <QColor>
#include <QString>

/*!
 * What the tour does, where several of its chapters need it: ports, channels and texts that one of
 * them changes and another finds changed. Ports and channels are numbered 0 to 11.
 */
namespace Story {

const QString routerTitle = QStringLiteral("TK-7 Router"); //!< of most boxes

//! The two routers on this machine, by their ports; the tool connects to the second.
struct Ports
{
    QString sparePort;
    QString port;
};
const Ports unixPorts{QStringLiteral("router-a"), QStringLiteral("router-b")};
const Ports windowsPorts{QStringLiteral("COM9"), QStringLiteral("COM12")};
//! The fourth of the speeds that the tool tries, so that there is time to see it try.
constexpr int firstStartSpeed = 38400;

//! The output port whose channels are changed.
constexpr int chosenOutput = 5;
//! Its channel that has two GPS receivers, one as reserve, and a filter.
constexpr int gpsChannel = 0;
constexpr int gpsInput = 0;
constexpr int reserveGpsInput = 1;
//! Its channel that is empty at first.
constexpr int freeChannel = 2;
//! The input that gets into it, and the one that doesn't.
constexpr int draggedInput = 3;
constexpr int refusedInput = 4;

constexpr int namedInput = 11;
constexpr int namedOutput = 2;
const QString newName = QStringLiteral("GYRO2");
const QString newOutputName = QStringLiteral("Radar-S");

//! Share of a ground's colour that a text leaves.
constexpr double mostly = 0.4;
constexpr QColor rs422(5, 0, 180);

} // namespace Story
