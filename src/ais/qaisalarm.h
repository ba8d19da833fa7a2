#pragma once

#include <QObject>
#include <QString>

/*!
 * The last known state of one alarm of the AIS station on one input port. Its fields are written by
 * update() only and are meaningful once m_valid is set.
 */
class QAisAlarm : public QObject
{
    Q_OBJECT

public:
    explicit QAisAlarm(QObject *parent = nullptr);

    /*!
     * Takes the state over and returns whether anything differed. The first call always does.
     * \a hour, \a minute and \a second are the time as the sentence states it, \a text is the
     * alarm's text with the star that ends the sentence.
     */
    bool update(quint8 id, quint8 hour, quint8 minute, quint8 second, bool condition,
                bool acknowledged, const QString &text);

    quint8 m_id = 0;          //!< key within the port: the low eight bits of the sentence's number
    bool m_valid = false;     //!< filled at least once
    bool m_condition = false; //!< true: threshold exceeded
    bool m_acknowledged = false; //!< true: someone has acknowledged it
    quint8 m_hour = 0;           //!< 0 to 23
    quint8 m_minute = 0;         //!< 0 to 59
    quint8 m_second = 0;         //!< 0 to 59
    QString m_text;
};
