#pragma once

#include <QString>

/*! What may be a lock password, in the words for the user. */
namespace PasswordRule {

/*! The title of every box about a refused password. */
QString boxTitle();

/*! Why \a password is refused; empty if it isn't. */
QString complaintAbout(const QString &password);

} // namespace PasswordRule
