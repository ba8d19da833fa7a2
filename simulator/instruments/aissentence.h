#pragma once

#include <QByteArray>
#include <QList>

namespace tk7sim {

/*!
 * The fields of \a line, a VDM, VDO or ALR sentence of any talker, from its head on and without its
 * checksum. White space around it, and a tag block between two backslashes before it, are ignored.
 * Nothing for anything else: another sentence, a field too many or missing, no right checksum, a
 * character that isn't printable ASCII, more than 82 characters.
 */
QList<QByteArray> aisFieldsOf(const QByteArray &line);

} // namespace tk7sim
