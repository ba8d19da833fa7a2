#pragma once

#include <QByteArray>
#include <QString>

/*!
 * The sentences behind the service dialog that have fields.
 *
 * Every builder makes one complete line with its CR LF, ready for the outbound queue. Texts go out
 * in the case in which they come; they must consist of Latin letters and digits.
 */

/*! $VRSTA: asks for the counters of port \a port. */
QString MakeStatusSentence(uint port);

/*! $VRPWS: sets \a password, the first one or another. */
QString MakeSetPasswordSentence(const QString &password);

/*! $VRPWU: unlocks the router by \a password. */
QString MakeUnlockSentence(const QString &password);

/*! $VRMOD: sets the router's mode. */
QString MakeModeSentence(const QString &mode);

enum class FirmwarePacket {
    Made,
    PastEnd, //!< the image ends before this packet
    NoImage  //!< the image is empty
};

/*!
 * $VRFWP: packet \a number, from 1 on, of a firmware \a image: 32 bytes, or what is left in the
 * last one. \a sentence is changed only if the packet was made.
 */
FirmwarePacket MakeFirmwarePacket(const QByteArray &image, quint32 number, QString &sentence);

/*!
 * How far an update is when packet \a number of an image of \a size bytes leaves, in per cent; more
 * than 100 with a last packet that isn't full.
 */
int firmwareProgress(quint32 number, int size);
