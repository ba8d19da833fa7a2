#include "simulator/line/sentence.h"

#include <algorithm>

namespace tk7sim {

namespace {

constexpr int headLength = 6;       // "$VR" and three letters
constexpr int checksumTail = 3;     // '*' and two digits
constexpr int maxDecimalDigits = 9; // fits an int
constexpr quint8 wrongMask = 0x55;

bool isHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

bool isCapital(char c)
{
    return c >= 'A' && c <= 'Z';
}

QByteArray withTail(const QByteArray &body, quint8 checksum)
{
    return body + '*' + hex(checksum, 2) + "\r\n";
}

SentenceForm formOf(const QByteArray &text)
{
    const auto star = text.indexOf('*');
    if (star < 0) {
        return SentenceForm::Plain;
    }
    if (star != text.size() - checksumTail) {
        return SentenceForm::WrongChecksum;
    }
    const auto stated = parseHex(text.mid(star + 1), 2);
    return stated && *stated == checksumOf(text) ? SentenceForm::Checked
                                                 : SentenceForm::WrongChecksum;
}

} // namespace

quint8 checksumOf(const QByteArray &text)
{
    quint8 sum = 0;
    for (int i = 1; i < text.size() && text.at(i) != '*'; ++i) {
        sum = static_cast<quint8>(sum ^ static_cast<quint8>(text.at(i)));
    }
    return sum;
}

QByteArray withChecksum(const QByteArray &body)
{
    return withTail(body, checksumOf(body));
}

QByteArray withWrongChecksum(const QByteArray &body)
{
    return withTail(body, static_cast<quint8>(checksumOf(body) ^ wrongMask));
}

std::optional<Sentence> parseSentence(const QByteArray &line)
{
    if (line.size() < headLength + 2 || !line.startsWith("$VR") || !line.endsWith("\r\n")) {
        return std::nullopt;
    }
    Sentence sentence;
    sentence.code = line.mid(3, 3);
    if (!std::all_of(sentence.code.cbegin(), sentence.code.cend(), isCapital)) {
        return std::nullopt;
    }
    const QByteArray text = line.left(line.size() - 2);
    if (text.size() == headLength) {
        return sentence;
    }
    if (text.at(headLength) != ',') {
        return std::nullopt;
    }
    sentence.form = formOf(text);
    const QByteArray beforeStar = text.split('*').constFirst();
    sentence.fields = beforeStar.mid(headLength + 1).split(',');
    return sentence;
}

std::optional<int> parseDecimal(const QByteArray &field, int maximum)
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (field.isEmpty() || field.size() > maxDecimalDigits
        || !std::all_of(field.cbegin(), field.cend(), isDigit)) {
        return std::nullopt;
    }
    const int value = field.toInt();
    return value <= maximum ? std::optional(value) : std::nullopt;
}

std::optional<quint32> parseHex(const QByteArray &field, int digits)
{
    if (field.size() != digits || !std::all_of(field.cbegin(), field.cend(), isHexDigit)) {
        return std::nullopt;
    }
    return field.toUInt(nullptr, 16);
}

bool isAlphanumeric(const QByteArray &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](char c) {
        return isCapital(c) || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    });
}

QByteArray hex(quint32 value, int digits)
{
    return QByteArray::number(value, 16).toUpper().rightJustified(digits, '0');
}

} // namespace tk7sim
