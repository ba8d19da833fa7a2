#pragma once

#include <QString>

/*!
 * Framing of the sentences on the router's line, after NMEA 0183.
 *
 * A checked sentence is a body, a star, two upper-case hexadecimal digits and CR LF. The checksum
 * is the exclusive OR of the bytes between the leading '$' and the star, summed over the Latin-1
 * form of the text. All functions are stateless and accept any text.
 */

/*!
 * Computes the checksum of \a text up to its first star, or up to its end, into \a checksum.
 * Serves both directions: a body without a star on its way out, a received line on its way in.
 * Returns whether \a text contains a star.
 */
bool calcChecksum(const QString &text, quint8 &checksum);

/*!
 * True when \a line has a star and what follows it is the hexadecimal checksum of what stands
 * before it. One or more digits of either case are accepted, with or without CR LF behind them; the
 * comparison is on the whole number. A line with its star at index 0, 1 or 2 has no valid checksum.
 */
bool testChecksum(const QString &line);

/*! True when \a line contains a star. Tells a line without a checksum from one with a wrong one. */
bool hasChecksum(const QString &line);

/*! The tail of a checked sentence: a star, two upper-case digits, CR LF. */
QString checksumTrailer(quint8 checksum);

/*! \a body with its trailer appended. The body keeps its case and must not contain a star. */
QString checkedSentence(const QString &body);
