#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace tk7sim {

/*! The exclusive or of the bytes of \a text behind its first, up to a star or the end. */
quint8 checksumOf(const QByteArray &text);
/*! \a body ("$VRVER,3.5") with a star, its checksum as two upper-case digits, CR LF. */
QByteArray withChecksum(const QByteArray &body);
/*! The same with a checksum that is wrong. */
QByteArray withWrongChecksum(const QByteArray &body);

/*! How a proprietary sentence is written. */
enum class SentenceForm {
    Bare,         //!< head, CR LF
    Plain,        //!< head, comma, fields, CR LF
    Checked,      //!< as Plain, with a star and a right checksum before CR LF
    WrongChecksum //!< as Checked, but the checksum doesn't match or isn't two digits
};

/*! A proprietary sentence, cut at its commas. */
struct Sentence
{
    QByteArray code; //!< the three capital letters behind "$VR"
    SentenceForm form = SentenceForm::Bare;
    QList<QByteArray> fields; //!< without the checksum; empty for a bare sentence
};

/*! Cuts \a line, from '$' to LF; nothing if it isn't a proprietary sentence. */
std::optional<Sentence> parseSentence(const QByteArray &line);

/*! A field of decimal digits only, from 0 to \a maximum; nothing if it is anything else. */
std::optional<int> parseDecimal(const QByteArray &field, int maximum);
/*! A field of exactly \a digits hexadecimal digits, 8 at most; nothing if it is anything else. */
std::optional<quint32> parseHex(const QByteArray &field, int digits);
/*! True if \a text holds nothing but digits and Latin letters. */
bool isAlphanumeric(const QByteArray &text);
/*! \a value as \a digits upper-case hexadecimal digits. */
QByteArray hex(quint32 value, int digits);

} // namespace tk7sim
