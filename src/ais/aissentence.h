#pragma once

#include "ais/qais.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <optional>

/*!
 * Taking apart of the sentences in which the router wraps the AIS traffic of its input ports. The
 * checksum has been tested before and is not looked at again. Every function accepts any text; one
 * that doesn't fit gives nothing.
 */

/*! Input ports of the router. */
constexpr int AisPortCount = 12;

/*! The engine: one decoder for each input port, the index is the port's number. */
using AisPorts = std::array<QAis, AisPortCount>;

/*! A fragment of a message, the arguments of QAis::decodeMessage() and the port it belongs to. */
struct AisFragment
{
    int kind = QAis::TargetMessage;
    uint total = 0; //!< 0 when the field is empty, as of the next two
    uint fragment = 0;
    uint sequence = 0;
    uint port = 0; //!< 0 to 11
    QByteArray payload;
    int fillBits = 0;
};

/*! The state of an alarm, the arguments of QAis::updateAlarm() and the port it belongs to. */
struct AisAlarmReport
{
    uint port = 0; //!< 0 to 11
    quint8 hour = 0;
    quint8 minute = 0;
    quint8 second = 0;
    quint8 id = 0;
    bool condition = false;
    bool acknowledged = false;
    QString text; //!< with the star that ends the sentence
};

/*! Reads "$VRAIM,total,fragment,sequence,port,payload,fill*", and "$VRAIO," with the same fields.
 */
std::optional<AisFragment> parseAisFragment(const QString &sentence);

/*! Reads "$VRAIA,port,hhmmss.ss,id,condition,acknowledged,text*". */
std::optional<AisAlarmReport> parseAisAlarm(const QString &sentence);

/*!
 * Reads "$VRAIP,ddmm.mmm,N,dddmm.mmm,E*" into \a position, whatever stands before the first comma.
 * Returns false, with nothing changed, when it doesn't fit.
 */
bool parseAisPosition(const QString &sentence, QGpsKrd &position);

/*! Hands a "$VRAIM", "$VRAIO" or "$VRAIA" sentence to the decoder of its port. */
void deliverAisSentence(const QString &sentence, AisPorts &ports);
