#pragma once

#include <QString>

/*!
 * The sentences of a session that are always the same: complete lines, CR LF included and without a
 * checksum, ready for the outbound queue. Sentences with fields are made by the functions of
 * sentencebuilders.h and servicesentences.h.
 */
namespace Commands {

/*! \internal A QLatin1String of a literal, a constant expression with every compiler. */
template <int Size> constexpr QLatin1String literal(const char (&text)[Size])
{
    return QLatin1String(text, Size - 1);
}

/*! Asks the router for its whole configuration; its last sentence is the end mark. */
inline constexpr QLatin1String Download = literal("$VRRLD\r\n");

/*! Asks for the firmware version. */
inline constexpr QLatin1String Version = literal("$VRVER\r\n");

/*! Ends the connection. Not answered; the link closes as soon as this line is written. */
inline constexpr QLatin1String Disconnect = literal("$VRDCN\r\n");

/*! Closes the batch sentences of one output port. */
inline constexpr QLatin1String EndOfBatch = literal("$VRWBL\r\n");

/*! Saves the router's working configuration in its EEPROM. Answered by $VRSRO or $VRSRE. */
inline constexpr QLatin1String SaveToEeprom = literal("$VRSVR\r\n");

/*! Asks for the identifier of the router's chip. */
inline constexpr QLatin1String ChipIdentifier = literal("$VRSER\r\n");

/*! Sets the counters of all ports to 0. Not answered. */
inline constexpr QLatin1String ClearStatistics = literal("$VRSTC\r\n");

/*! Begin and end of the AIS test: meanwhile the router sends the AIS traffic of all inputs. */
inline constexpr QLatin1String AisTestOn = literal("$VRATM,ON\r\n");
inline constexpr QLatin1String AisTestOff = literal("$VRATM,OFF\r\n");

/*! Asks the router to prepare for a firmware update. Answered by $VRFWR or $VRFWE. */
inline constexpr QLatin1String FirmwareStart = literal("$VRFWS\r\n");

/*! All packets have been sent. Answered by $VRFWO or $VRFWE. */
inline constexpr QLatin1String FirmwareFinish = literal("$VRFWF\r\n");

/*! The router may put the new firmware into use: it restarts. Not answered. */
inline constexpr QLatin1String FirmwareUse = literal("$VRFWW\r\n");

/*! Deletes the lock password. Answered by a $VRLCK. */
inline constexpr QLatin1String RemovePassword = literal("$VRPWD\r\n");

/*! Asks for the lock password. Answered by $VRPWV at the highest level. */
inline constexpr QLatin1String ViewPassword = literal("$VRPWV\r\n");

/*! Locks the router again. Answered by a $VRLCK. */
inline constexpr QLatin1String Lock = literal("$VRLGO\r\n");

} // namespace Commands
