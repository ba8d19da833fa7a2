#include "service/textcheck.h"

#include <algorithm>

namespace {

bool isLatinOrDigit(QChar character)
{
    const auto isBetween = [character](char first, char last) {
        return character >= QLatin1Char(first) && character <= QLatin1Char(last);
    };
    return isBetween('0', '9') || isBetween('A', 'Z') || isBetween('a', 'z');
}

} // namespace

TextFault checkText(const QString &text, int maxLength)
{
    if (text.size() > maxLength)
        return TextFault::TooLong;
    if (text.isEmpty() || !std::all_of(text.begin(), text.end(), isLatinOrDigit))
        return TextFault::WrongCharacters;
    return TextFault::None;
}
