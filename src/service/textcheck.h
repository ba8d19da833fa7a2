#pragma once

#include <QString>

enum class TextFault {
    None,
    TooLong,
    WrongCharacters //!< also of an empty text
};

/*!
 * Tests a text that the router is to keep, a password or a mode: one to \a maxLength of the
 * characters 0 to 9, A to Z and a to z. The length is looked at first.
 */
TextFault checkText(const QString &text, int maxLength);
