#pragma once

#include "model/routermodel.h"

#include <QString>

/*!
 * What the numbers of a configuration are called in front of people. Every text that comes from a
 * file or from a router is made printable first.
 */
namespace Words {

/*!
 * \a text with everything that a terminal or a page could act on, or that can't be seen, as a
 * number: control characters, separators of lines, marks of the writing direction.
 */
QString printable(const QString &text);

/*! "3 ECDIS 1", or "3" without a name. */
QString numbered(int number, const QString &name);

/*! The name of input \a number; empty for a number that no input has. */
QString inputName(const RouterModel &model, quint8 number);

/*! "4 DEPTH", "none" for NO_PORT, "13 (no such input)" for another number that no input has. */
QString input(const RouterModel &model, quint8 number);

/*! "Output 3 ECDIS 1". */
QString output(const RouterModel &model, int number);

/*! "Output 3 ECDIS 1, channel 2". */
QString channel(const RouterModel &model, int port, int number);

/*! The name in \a slot, with the slot's number if the name stands in another one as well; "slot 14"
 *  for a free slot. */
QString sentence(const RouterModel &model, int slot);

/*!
 * The filter of \a channel: "only RMC, GGA", "all but VDO", "nothing passes" and "everything
 * passes" for empty lists, "none" when it is off. A list that is kept while the filter is off is
 * told.
 */
QString filter(const RouterModel &model, const ChannelRecord &channel);

/*! The header override, "none" when it is off. */
QString header(const ChannelRecord &channel);

/*! "GPS", "none" for 0, "6 (no such function)" for 6 and 7. */
QString smartFunction(quint8 number);

/*! "RS-422" or "RS-232". */
QString kind(PortKind kind);

/*! Whether slot \a slot of the list of sentence names holds a name. */
bool isTaken(const RouterModel &model, int slot);

/*! Whether \a channel has neither an input nor an option that differs from the defaults. */
bool isUnused(const ChannelRecord &channel);

} // namespace Words
