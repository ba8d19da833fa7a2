#pragma once

#include <QByteArray>
#include <QString>

class NmeaSerialPort;

/*!
 * The sentences of the router but for those of the handshake: knows each by its code and form,
 * tests its checksum, cuts its fields, and raises its signal of the link.
 */
class SentenceParser
{
public:
    explicit SentenceParser(NmeaSerialPort *link) : m_link(link) { }

    /*!
     * Parses \a str, a whole "$VR" line from its '$' to its LF, or any text. A slot of the signal
     * may delete the link, and this object with it.
     */
    void parse(const QString &str);

private:
    struct Row;
    static const Row rows[];

    // Sentences of one kind, each with its own signal.
    template <void (NmeaSerialPort::*raised)()> void parseBare(const QString &);
    template <void (NmeaSerialPort::*raised)(QString)> void parseWhole(const QString &str);
    template <void (NmeaSerialPort::*raised)(QString)> void parseText(const QString &str);
    template <void (NmeaSerialPort::*raised)(quint32)> void parseNumber(const QString &str);

    void parsePortSpeed(const QString &str);
    void parseRules(const QString &str);
    void parseFilterMasks(const QString &str);
    void parsePortNames(const QString &str);
    void parseHeaders(const QString &str);
    void parseFilterList(const QString &str);
    void parseVersion(const QString &str);
    void parseErrors(const QString &str);
    void parsePortView(const QString &str);
    void parseStatus(const QString &str);
    void parseSerial(const QString &str);
    void parsePasswordAnswer(const QString &str);
    void parseLock(const QString &str);
    void parseFlashBank(const QString &str);

    static constexpr int portCount = 12;

    struct FilterHalves
    {
        bool first = false;
        bool second = false;
    };

    NmeaSerialPort *m_link;
    FilterHalves m_filterHalfSeen[portCount];
    QByteArray m_serialBlock;
};
