#include "link/sentenceparser.h"

#include "link/fieldreader.h"
#include "link/nmeaserialport.h"
#include "link/sentence.h"
#include "platform/qtversion.h"

#include <QPointer>

using platform::TextPart;

namespace {

constexpr int channelCount = 12;
constexpr int prefixLength = 3; // "$VR"
constexpr int headLength = 6;   // and three letters

const QString lineEnd = QStringLiteral("\r\n");
const QChar comma = QLatin1Char(',');
const QChar star = QLatin1Char('*');

QChar listSeparator(int index, int count)
{
    return index == count - 1 ? star : comma;
}

// Hands the texts of a list of `count` to take(index, text), until one is missing or `take` is
// false.
template <typename Take> void readList(FieldReader &fields, int count, Take take)
{
    for (int i = 0; i < count; ++i) {
        TextPart text;
        if (!fields.cut(listSeparator(i, count), text) || !take(i, text))
            return;
    }
}

enum class Form {
    Bare,   // the head and CR LF start the line
    Plain,  // the head and a comma
    Checked // the same, and it has a checksum
};

} // namespace

using Link = NmeaSerialPort;

struct SentenceParser::Row
{
    char code[4];
    Form form;
    void (SentenceParser::*parse)(const QString &);
};

const SentenceParser::Row SentenceParser::rows[] = {
    {"SPD", Form::Checked, &SentenceParser::parsePortSpeed},
    {"RUL", Form::Checked, &SentenceParser::parseRules},
    {"FLT", Form::Checked, &SentenceParser::parseFilterMasks},
    {"PNM", Form::Checked, &SentenceParser::parsePortNames},
    {"HDC", Form::Checked, &SentenceParser::parseHeaders},
    {"FLS", Form::Checked, &SentenceParser::parseFilterList},
    {"VER", Form::Checked, &SentenceParser::parseVersion},
    {"MOD", Form::Checked, &SentenceParser::parseText<&Link::signalVRMode>},
    {"ERR", Form::Checked, &SentenceParser::parseErrors},
    {"WBL", Form::Bare, &SentenceParser::parseBare<&Link::signalVRUpdateVRData>},
    {"VVW", Form::Plain, &SentenceParser::parsePortView},
    {"SRO", Form::Bare, &SentenceParser::parseBare<&Link::signalVRSaveEepromOk>},
    {"SRE", Form::Bare, &SentenceParser::parseBare<&Link::signalVRSaveEepromError>},
    {"FWR", Form::Bare, &SentenceParser::parseBare<&Link::signalVRReadyFirmwareUpdate>},
    {"FWP", Form::Checked, &SentenceParser::parseNumber<&Link::signalVRFwPacket>},
    {"FWE", Form::Checked, &SentenceParser::parseNumber<&Link::signalVRFwError>},
    {"FWO", Form::Bare, &SentenceParser::parseBare<&Link::signalVRFwOk>},
    {"STA", Form::Checked, &SentenceParser::parseStatus},
    {"SER", Form::Checked, &SentenceParser::parseSerial},
    {"PWS", Form::Checked, &SentenceParser::parsePasswordAnswer},
    {"LCK", Form::Checked, &SentenceParser::parseLock},
    {"PWV", Form::Checked, &SentenceParser::parseText<&Link::signalVRSendPassword>},
    {"FBK", Form::Checked, &SentenceParser::parseFlashBank},
    {"AIM", Form::Checked, &SentenceParser::parseWhole<&Link::signalVRAISMessage>},
    {"AIO", Form::Checked, &SentenceParser::parseWhole<&Link::signalVRAISMessage>},
    {"AIA", Form::Checked, &SentenceParser::parseWhole<&Link::signalVRAISMessage>},
    {"AIP", Form::Checked, &SentenceParser::parseWhole<&Link::signalVRAISPosition>},
};

void SentenceParser::parse(const QString &str)
{
    if (str.size() <= headLength)
        return;
    const QChar *code = str.constData() + prefixLength;
    for (const Row &row : rows) {
        if (code[0] != QLatin1Char(row.code[0]) || code[1] != QLatin1Char(row.code[1])
            || code[2] != QLatin1Char(row.code[2])) {
            continue;
        }
        const bool hasForm = row.form == Form::Bare ? platform::partFrom(str, headLength).startsWith(lineEnd)
                                                    : str.at(headLength) == comma;
        if (!hasForm)
            return;
        // Cleared before the checksum is tested: a torn "$VRSER" leaves no old identifier behind.
        if (row.parse == &SentenceParser::parseSerial)
            m_serialBlock.clear();
        if (row.form == Form::Checked && !testChecksum(str)) {
            emit m_link->signalCommandCRSError();
            return;
        }
        (this->*row.parse)(str);
        return;
    }
}

// The head alone.
template <void (NmeaSerialPort::*raised)()> void SentenceParser::parseBare(const QString &)
{
    (m_link->*raised)();
}

// Its fields are the receiver's.
template <void (NmeaSerialPort::*raised)(QString)>
void SentenceParser::parseWhole(const QString &str)
{
    (m_link->*raised)(str);
}

// $VRxxx,text*hh
template <void (NmeaSerialPort::*raised)(QString)>
void SentenceParser::parseText(const QString &str)
{
    TextPart text;
    if (FieldReader(str).cut(star, text))
        (m_link->*raised)(text.toString());
}

// $VRxxx,n*hh
template <void (NmeaSerialPort::*raised)(quint32)>
void SentenceParser::parseNumber(const QString &str)
{
    quint32 number = 0;
    if (FieldReader(str).cutNumber(star, number))
        (m_link->*raised)(number);
}

// $VRSPD,port,speed*hh
void SentenceParser::parsePortSpeed(const QString &str)
{
    FieldReader fields(str);
    quint32 port = 0;
    quint32 speed = 0;
    if (!fields.cutNumber(comma, port) || !fields.cutNumber(star, speed))
        return;
    emit m_link->signalVRNewPortSpeed(quint8(port), speed);
}

// $VRRUL,port,x,w0w1...w11*hh, each word four digits: inputs, options
void SentenceParser::parseRules(const QString &str)
{
    constexpr int wordDigits = 4;
    FieldReader fields(str);
    quint32 port = 0;
    if (!fields.cutNumber(comma, port) || !fields.skip(comma))
        return;
    const QPointer<NmeaSerialPort> link(m_link);
    for (int channel = 0; link && channel < channelCount; ++channel) {
        const quint32 word = fields.takeHex(wordDigits);
        emit link->signalVRNewRule(quint8(port), channel, quint8(word >> 8), quint8(word));
    }
}

// $VRFLT,port,x,first,m0m1...m5*hh, each mask eight digits
void SentenceParser::parseFilterMasks(const QString &str)
{
    constexpr int maskDigits = 8;
    constexpr int masksPerSentence = 6;
    FieldReader fields(str);
    quint32 port = 0;
    quint32 number = 0;
    if (!fields.cutNumber(comma, port) || !fields.skip(comma) || !fields.cutNumber(comma, number))
        return;
    const quint8 first = quint8(number);
    if (port < portCount) {
        m_filterHalfSeen[port].first |= first == 0;
        m_filterHalfSeen[port].second |= first == masksPerSentence;
    }
    const QPointer<NmeaSerialPort> link(m_link);
    for (int i = 0; link && i < masksPerSentence; ++i)
        emit link->signalVRNewFilterMask(quint8(port), first + i, fields.takeHex(maskDigits));
}

// $VRPNM,t,first,n0,n1,n2,n3,n4,n5*hh
void SentenceParser::parsePortNames(const QString &str)
{
    constexpr int namesPerSentence = 6;
    FieldReader fields(str);
    TextPart type;
    quint32 first = 0;
    if (!fields.cut(comma, type) || type.size() != 1)
        return;
    const bool isOutput = type.at(0) == QLatin1Char('O');
    if (!isOutput && type.at(0) != QLatin1Char('I'))
        return;
    if (!fields.cutNumber(comma, first) || (first != 0 && first != namesPerSentence))
        return;
    const QPointer<NmeaSerialPort> link(m_link);
    readList(fields, namesPerSentence, [&](int i, const TextPart &name) {
        emit link->signalVRNewPortName(isOutput, quint8(first + quint32(i)), name.toString());
        return !link.isNull();
    });
}

// $VRHDC,port,x,h0,h1,...,h11*hh
void SentenceParser::parseHeaders(const QString &str)
{
    constexpr int headerLength = 2;
    FieldReader fields(str);
    quint32 port = 0;
    if (!fields.cutNumber(comma, port) || !fields.skip(comma))
        return;
    const QPointer<NmeaSerialPort> link(m_link);
    readList(fields, channelCount, [&](int channel, const TextPart &header) {
        if (!header.isEmpty() && header.size() != headerLength)
            return false;
        emit link->signalVRNewHdr(quint8(port), channel, header.toString());
        return !link.isNull();
    });
}

// $VRFLS,first,s0,s1,...,s7*hh
void SentenceParser::parseFilterList(const QString &str)
{
    constexpr int namesPerSentence = 8;
    constexpr int formatterLength = 3;
    FieldReader fields(str);
    quint32 first = 0;
    if (!fields.cutNumber(comma, first))
        return;
    const QPointer<NmeaSerialPort> link(m_link);
    readList(fields, namesPerSentence, [&](int i, const TextPart &formatter) {
        if (!formatter.isEmpty() && formatter.size() != formatterLength)
            return false;
        emit link->signalVRNewFilterStr(quint8(first + quint32(i)), formatter.toString());
        return !link.isNull();
    });
}

// $VRVER,msb.lsb*hh
void SentenceParser::parseVersion(const QString &str)
{
    FieldReader fields(str);
    quint32 msb = 0;
    quint32 lsb = 0;
    if (!fields.cutNumber(QLatin1Char('.'), msb) || !fields.cutNumber(star, lsb))
        return;
    emit m_link->signalVRVersion(msb, lsb);
}

// $VRERR,cccc,ff*hh, at fixed places; what stands between the two numbers doesn't matter
void SentenceParser::parseErrors(const QString &str)
{
    constexpr int codeDigits = 4;
    constexpr int faultStart = 5;
    constexpr int faultDigits = 2;
    const TextPart fields = FieldReader(str).rest();
    bool isCode = false;
    bool isFault = false;
    const quint32 code = fields.left(codeDigits).toUInt(&isCode, 16);
    const quint32 fault = fields.mid(faultStart, faultDigits).toUInt(&isFault, 16);
    if (isCode && isFault)
        emit m_link->signalVRErrorsCode(code, fault);
}

// $VRVVW,n without a checksum: with one the number doesn't convert and counts as 0
void SentenceParser::parsePortView(const QString &str)
{
    const quint32 code = FieldReader(str).rest().toUInt();
    if (code <= 255)
        emit m_link->signalVRPortView(quint8(code));
}

// $VRSTA,port,print,crs,broken,size,full*hh
void SentenceParser::parseStatus(const QString &str)
{
    constexpr int count = 6;
    FieldReader fields(str);
    quint32 values[count] = {};
    for (int i = 0; i < count; ++i) {
        if (!fields.cutNumber(listSeparator(i, count), values[i]))
            return;
    }
    emit m_link->signalVRStatusErrors(values[0], values[1], values[2], values[3], values[4],
                                      values[5]);
}

// $VRSER, 32 hexadecimal digits, *hh
void SentenceParser::parseSerial(const QString &str)
{
    constexpr int byteCount = 16;
    TextPart digits;
    if (!FieldReader(str).cut(star, digits) || digits.size() != 2 * byteCount)
        return;
    QByteArray block;
    for (int i = 0; i < byteCount; ++i) {
        bool isNumber = false;
        block.append(char(digits.mid(2 * i, 2).toUInt(&isNumber, 16)));
        if (!isNumber)
            return;
    }
    m_serialBlock = block;
    emit m_link->signalVRSerial(&m_serialBlock);
}

// $VRPWS,OK*hh or $VRPWS,ERROR*hh
void SentenceParser::parsePasswordAnswer(const QString &str)
{
    const TextPart answer = FieldReader(str).rest();
    if (answer.startsWith(QLatin1String("OK")))
        emit m_link->signalVRSetPasswordAnswer(true);
    else if (answer.startsWith(QLatin1String("ERROR")))
        emit m_link->signalVRSetPasswordAnswer(false);
}

// $VRLCK,l,a*hh
void SentenceParser::parseLock(const QString &str)
{
    constexpr quint8 highestLevel = 5;
    FieldReader fields(str);
    TextPart enabled;
    TextPart levelText;
    if (!fields.cut(comma, enabled) || enabled.size() != 1)
        return;
    const bool hasPassword = enabled.at(0) == QLatin1Char('1');
    if (!hasPassword && enabled.at(0) != QLatin1Char('0'))
        return;
    if (!fields.cut(star, levelText) || levelText.size() != 1)
        return;
    const quint8 level = quint8(levelText.toUInt());
    if (level <= highestLevel)
        emit m_link->signalVRLockStatus(hasPassword, level);
}

// $VRFBK,n*hh
void SentenceParser::parseFlashBank(const QString &str)
{
    constexpr quint32 highestBank = 2;
    quint32 bank = 0;
    if (FieldReader(str).cutNumber(star, bank) && bank <= highestBank)
        emit m_link->signalVRUsedFlashBank(bank);
}
