#pragma once

#include <QString>
#include <QStringRef>

/*!
 * Cuts the fields of a "$VR" sentence, from the left, beginning behind its head and comma. The
 * sentence must outlive it.
 */
class FieldReader
{
public:
    explicit FieldReader(const QString &sentence)
        : m_text(&sentence), m_pos(qMin(fieldsStart, sentence.size()))
    {
    }

    /*! The text up to \a separator into \a field. False, with nothing cut, if there is none. */
    bool cut(QChar separator, QStringRef &field)
    {
        const int end = m_text->indexOf(separator, m_pos);
        if (end < 0)
            return false;
        field = m_text->midRef(m_pos, end - m_pos);
        m_pos = end + 1;
        return true;
    }

    /*! The same as a decimal number; one that doesn't convert counts as 0. */
    bool cutNumber(QChar separator, quint32 &number)
    {
        QStringRef field;
        if (!cut(separator, field))
            return false;
        number = field.toUInt();
        return true;
    }

    bool skip(QChar separator)
    {
        QStringRef ignored;
        return cut(separator, ignored);
    }

    /*! The next \a length characters, or what is left of them, as a hexadecimal number, or 0. */
    quint32 takeHex(int length)
    {
        const quint32 number = m_text->midRef(m_pos, length).toUInt(nullptr, 16);
        m_pos = qMin(m_pos + length, m_text->size());
        return number;
    }

    /*! What hasn't been cut yet, with the sentence's checksum and CR LF. */
    QStringRef rest() const { return m_text->midRef(m_pos); }

private:
    static constexpr int fieldsStart = 7; // behind "$VR", three letters and a comma

    const QString *m_text;
    int m_pos;
};
