#pragma once

#include <QString>

#include <algorithm>

/*!
 * Whether \a text is \a length letters from A to Z. Turning a text to upper case can lengthen it:
 * the sharp s becomes two letters.
 */
inline bool isLatinCapitals(const QString &text, int length)
{
    return text.size() == length && std::all_of(text.begin(), text.end(), [](QChar letter) {
               return letter >= QLatin1Char('A') && letter <= QLatin1Char('Z');
           });
}
