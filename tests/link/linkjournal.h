#pragma once

#include "link/nmeaserialport.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

/*!
 * Writes down every signal of a NmeaSerialPort with its arguments, in the order raised:
 * `VRNewRule(5, 0, 18, 52)`. Texts stand in quotes, with CR and LF made visible; the serial block
 * stands as hexadecimal digits.
 */
class LinkJournal : public QObject
{
    Q_OBJECT

public:
    enum RawLines { WithoutRawLines, WithRawLines };

    struct Entry
    {
        QString text;
        qint64 ms; //!< since the journal was made
    };

    /*! \a rawLines says whether signalVRNMEA_receive, the link's inner road, is written too. */
    explicit LinkJournal(NmeaSerialPort *link, RawLines rawLines = WithoutRawLines);

    /*! Adds a line of the test's own, such as what came out of the port. */
    void note(const QString &text);

    const QVector<Entry> &entries() const { return m_entries; }
    QStringList texts() const;
    int count(const QString &text) const;
    bool contains(const QString &text) const { return count(text) > 0; }

    /*! When \a text was first written, in ms since the journal was made; -1 when it wasn't. */
    qint64 timeOf(const QString &text) const;

    qint64 elapsed() const { return m_clock.elapsed(); }
    void clear() { m_entries.clear(); }

    /*! \a text as it stands in the journal: in quotes, CR and LF made visible. */
    static QString quoted(const QString &text);

signals:
    /*! Raised behind each entry, within the signal that it tells of. */
    void noted(const QString &text);

private:
    template <typename... Args>
    void watch(NmeaSerialPort *link, const char *name, void (NmeaSerialPort::*signal)(Args...));

    QElapsedTimer m_clock;
    QVector<Entry> m_entries;
};
