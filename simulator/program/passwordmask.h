#pragma once

#include <QByteArray>

namespace tk7sim {

/*!
 * \a line as it may be shown to somebody: of a sentence of the password family ("$VRPW") only the
 * head is left. Its checksum goes too, as it tells something of a short password. What a router
 * answers to a new password, "OK" or "ERROR", is kept if \a isAnswer.
 */
QByteArray withoutPassword(const QByteArray &line, bool isAnswer);

} // namespace tk7sim
