#pragma once

#include "simulator/router/routerconfig.h"

#include <QByteArray>

#include <array>
#include <optional>

namespace tk7sim {

using FormatterList = std::array<QByteArray, filterSlotCount>;

/*!
 * What \a channel makes of \a line (without CR LF): the line as it leaves, or nothing if it is held
 * back.
 *
 * The check comes first, then the list, then the header; \a formatters is the list that all
 * channels share. A sentence without a checksum passes the check. A proprietary sentence
 * ("$PABC,...") and one whose address hasn't five characters have neither formatter nor talker: no
 * list holds them and no header replaces anything in them.
 */
std::optional<QByteArray> passChannel(const QByteArray &line, const Channel &channel,
                                      const FormatterList &formatters);

} // namespace tk7sim
