#pragma once

#include "ais/greatcircle.h"
#include "ais/qaistarget.h"
#include "ais/qbitstream.h"
#include "ais/qgpskrd.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QTime>
#include <QTimer>

class QAisAlarm;

/*!
 * The AIS traffic of one input port: joins the fragments of messages, decodes the types 1, 2, 3 and
 * 5 of ITU-R M.1371, keeps the targets, the own ship, the alarms and the counters, drops targets
 * that fall silent, and reports every change by a signal. Messages of other types leave no trace.
 *
 * Targets and alarms are handed out as plain pointers that stay valid for ever: such a record is
 * never deleted, neither when it leaves its list nor with this object. A target that falls silent
 * and returns is another record.
 *
 * All expiry is by the time of day and knows nothing of midnight. Main thread only.
 */
class QAis : public QObject
{
    Q_OBJECT

public:
    /*! Whose message a sentence carries. */
    enum Kind {
        TargetMessage = 1, //!< heard from another station
        OwnMessage = 2     //!< sent by the own station
    };

    /*! Source number of the router's own position; input ports are 0 to 11. */
    static constexpr uint RouterSource = 100;

    explicit QAis(QObject *parent = nullptr);

    /*! Numbers this object's input port, 0 to 11. To be called once, before anything else. */
    void setPortNumber(uint port);
    uint portNumber() const { return m_port; }

    int targetCount() const { return int(m_targets.size()); }
    int alarmCount() const { return int(m_alarms.size()); }

    /*! Whole messages of the types 1, 2, 3 and 5 from other stations. Never reset. */
    quint32 messageCount() const { return m_messageCount; }

    /*! The same from the own station. */
    quint32 ownMessageCount() const { return m_ownMessageCount; }

    /*! The target, the alarm at \a index in order of first hearing; null outside the list. */
    QAisTarget *targetAt(int index) const;
    QAisAlarm *alarmAt(int index) const;

    /*! The target of that \a mmsi, the alarm of that \a id; null when there is none. */
    QAisTarget *findTarget(uint mmsi) const { return m_targetByMmsi.value(mmsi); }
    QAisAlarm *findAlarm(quint8 id) const;

    /*! The own ship as this port reports it. Owned by this object. */
    QAisTarget *ownTarget() { return &m_ownTarget; }

    /*! Whether an own position is held, from which ranges are measured. */
    bool hasOwnPosition() const { return m_hasOwnPosition; }

    /*!
     * The greatest range of all targets that have one, in nautical miles; -1.0 when there is none
     * or no own position is held.
     */
    double maxRange() const;

    /*!
     * Takes in fragment number \a fragment of \a total, with \a sequence the number that the
     * fragments of one message share. \a payload is NUL-terminated armoured text, \a fillBits the
     * number of its last bits that are none. All values are accepted; a kind that is not OwnMessage
     * counts as TargetMessage. Returns whether a message, of whatever type, became whole.
     */
    bool decodeMessage(int kind, uint total, uint fragment, uint sequence, int fillBits,
                       const char *payload);

    /*! Takes in the state of the alarm \a id; see QAisAlarm::update(). */
    void updateAlarm(quint8 id, quint8 hour, quint8 minute, quint8 second, bool condition,
                     bool acknowledged, const QString &text);

    /*!
     * Offers a \a position of the own ship, which is copied and must not be null, from \a source:
     * an input port or RouterSource. That of the own port is always taken; otherwise the source
     * that is held keeps its place until it has been silent for 10 s. All ranges are computed anew,
     * also when the position is dropped, which changes none of them. Returns whether it is taken.
     */
    bool setOwnPosition(uint source, const QGpsKrd *position);

    /*!
     * What the timer runs each second: the own position and the targets that have been silent for
     * 300 s go.
     */
    void expire();

signals:
    /*! A new target was appended to the list. */
    void signalAddTarget(uint port, uint mmsi);
    /*! A target has fallen silent. It is still in the list, until the direct receivers return. */
    void signalDeleteTarget(uint port, uint mmsi);
    /*! A known target was refreshed, or a new one has brought its static data. */
    void signalUpdateTarget(uint port, uint mmsi);
    void signalUpdateOwnTarget(uint port);
    /*! The own station has reported a usable position. \a Pos belongs to this object. */
    void signalNewOwnPosition(uint port, QGpsKrd *Pos);
    /*! The own position is no longer held. */
    void signalLostPosition(uint port);
    /*! An alarm is new or has changed. */
    void signalUpdateAlarm(uint port, quint8 alarm_id);

private:
    void decode(int kind);
    void decodePositionReport(int kind, quint32 mmsi);
    void decodeVoyageData(int kind, quint32 mmsi);
    QAisTarget *findOrAddTarget(quint32 mmsi, bool &isNew);
    void expireOwnPosition(const QTime &now);
    void expireTargets(const QTime &now);
    bool takesPosition(uint source) const;
    void updateRange(QAisTarget &target) const;

    bool m_hasOwnPosition = false;
    quint32 m_positionSource = 0; //!< an input port or RouterSource
    QTime m_positionTime;         //!< when the own position was last refreshed
    QGpsKrd m_ownPosition;
    QAisTarget m_ownTarget;        //!< never in m_targets
    bool m_ownDynamicSeen = false; //!< kept for diagnosis; nothing reads it
    bool m_ownStaticSeen = false;  //!< kept for diagnosis; nothing reads it
    QList<QAisTarget *> m_targets; //!< in order of first hearing, one for each MMSI
    QList<QAisAlarm *> m_alarms;   //!< in order of first report, one for each id
    QBitStream m_bitStream;        //!< the message that is being joined
    quint32 m_port = 0;            //!< 0 to 11
    quint32 m_fragmentTotal = 0;   //!< these three: of the fragment last accepted
    quint32 m_fragmentNumber = 0;
    quint32 m_fragmentSequence = 0;
    quint32 m_messageCount = 0;
    quint32 m_ownMessageCount = 0;
    QTimer m_timer;
    QHash<uint, QAisTarget *> m_targetByMmsi; //!< the same targets as m_targets
    GreatCircle m_fromOwnPosition;            //!< measures from m_ownPosition
};
