#pragma once

#include <QString>
#include <QStringList>

class RouterModel;

/*!
 * The sentences that carry the configuration to the router.
 *
 * Every builder returns one complete line with its CR LF, ready for the outbound queue, and changes
 * nothing. A port, channel or index that is out of the stated range gives an empty text.
 *
 * Where a builder has the argument \a batch, it says whether the sentence is part of the upload of
 * the whole configuration (field B, its port closed by Commands::EndOfBatch) or stands alone
 * (field W).
 */

/*! $VRRUL: inputs and options of the 12 channels of output port \a port, 0 to 11. */
QString MakeRuleSentence(const RouterModel &model, int port, bool batch);

/*!
 * $VRFLT: the filter masks of six channels of output port \a port, 0 to 11. \a first is 0 or 6.
 */
QString MakeFilterSentence(const RouterModel &model, int port, int first, bool batch);

/*!
 * $VRHDC: the header overrides of the 12 channels of output port \a port, 0 to 11. A channel whose
 * override is off has an empty field, whatever its record still holds.
 *
 * The checksum covers the headers as they are, and the whole line is turned to upper case only
 * then. Headers are upper case; of one that is not, the checksum is deliberately not repaired.
 */
QString MakeHdrSentence(const RouterModel &model, int port, bool batch);

/*!
 * $VRFLS: eight slots of the list of sentence names. \a first is 0, 8, 16 or 24. A slot whose bit
 * in the list's mask is clear has an empty field. Case and checksum as in MakeHdrSentence().
 */
QString MakeFilterListSentence(const RouterModel &model, int first);

/*!
 * $VRPNM: the names of six output ports, or input ports if \a output is false. \a first is 0 or 6.
 * The names keep their case.
 */
QString MakeNameSentence(const RouterModel &model, bool output, int first);

/*! $VRSPD: the \a speed in baud of port \a port, 0 to 11. Any speed is taken. */
QString MakeSpeedSentence(int port, quint32 speed);

/*!
 * $VRVVW: asks the router to show a port in the monitor. \a a and \a b, 0 to 15 each, are the two
 * nibbles of a ViewCode: (output port, 15), (output port, channel) or (15, input port).
 */
QString MakeViewSentence(int a, int b);

/*! The whole configuration: the 80 sentences of an upload, in the order in which they are sent. */
QStringList uploadSentences(const RouterModel &model);
