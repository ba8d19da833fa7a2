#pragma once

#include <QString>

/*!
 * The bare commands of a session: complete lines, CR LF included and without a checksum, ready for
 * the outbound queue. Sentences with fields are made by the functions of sentencebuilders.h.
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

} // namespace Commands
