#pragma once

#include "platform/qtversion.h"

/*!
 * Cuts the fields of a "$VR" sentence, from the left, beginning behind its head and comma. The
 * sentence must outlive it.
 */
class FieldReader
{
public:
    explicit FieldReader(const QString &sentence)
        : m_rest(platform::partFrom(sentence, fieldsStart))
    {
    }

    /*! The text up to \a separator into \a field. False, with nothing cut, if there is none. */
    bool cut(QChar separator, platform::TextPart &field)
    {
        const auto end = m_rest.indexOf(separator);
        if (end < 0)
            return false;
        field = m_rest.left(end);
        m_rest = m_rest.mid(end + 1);
        return true;
    }

    /*! The same as a decimal number; one that doesn't convert counts as 0. */
    bool cutNumber(QChar separator, quint32 &number)
    {
        platform::TextPart field;
        if (!cut(separator, field))
            return false;
        number = field.toUInt();
        return true;
    }

    bool skip(QChar separator)
    {
        platform::TextPart ignored;
        return cut(separator, ignored);
    }

    /*! The next \a length characters, or what is left of them, as a hexadecimal number, or 0. */
    quint32 takeHex(int length)
    {
        const quint32 number = m_rest.left(length).toUInt(nullptr, 16);
        m_rest = m_rest.mid(length);
        return number;
    }

    /*! What hasn't been cut yet, with the sentence's checksum and CR LF. */
    platform::TextPart rest() const { return m_rest; }

private:
    static constexpr int fieldsStart = 7; // behind "$VR", three letters and a comma

    platform::TextPart m_rest;
};
