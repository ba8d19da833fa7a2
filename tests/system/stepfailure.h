#pragma once

#include <QString>

/*! Thrown where the tool isn't as it must be; ends the tour. */
struct StepFailure
{
    QString text;
};

/*! Ends the tour with \a text unless \a holds. */
inline void require(bool holds, const QString &text)
{
    if (!holds)
        throw StepFailure{text};
}
