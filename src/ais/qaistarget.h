#pragma once

#include "ais/qgpskrd.h"

#include <QObject>
#include <QString>
#include <QTime>

/*!
 * One vessel as heard on one input port: what its position reports and its static and voyage data
 * said, when it was last heard, how far away it is. Also the own ship of a port.
 *
 * QAis writes the fields; windows read the texts. The dynamic fields count once m_dynamicValid is
 * set, the static ones once m_staticValid is; until then their texts are empty.
 */
class QAisTarget : public QObject
{
    Q_OBJECT

public:
    explicit QAisTarget(QObject *parent = nullptr);

    // Dynamic data
    QString statusText() const;
    QString accuracyText() const;   //!< "<10m" or ">10м"
    /*!
     * The raw value over 4.733 with two decimals, which is not degrees per minute: those grow with
     * its square. Empty when it is not available.
     */
    QString rateOfTurnText() const;
    QString positionText() const;
    QString speedText() const;   //!< knots with one decimal
    QString courseText() const;  //!< degrees with one decimal
    QString headingText() const; //!< whole degrees

    // Static and voyage data
    QString imoText() const;
    QString nameText() const;
    QString callSignText() const;
    QString shipTypeText() const;
    QString fixTypeText() const;
    QString lengthText() const;  //!< metres
    QString breadthText() const; //!< metres
    QString draughtText() const; //!< metres
    QString destinationText() const;
    QString etaText() const; //!< day.month hour:minute UTC

    bool m_dynamicValid = false; //!< a position report has been taken in
    QTime m_lastUpdate;          //!< when the last message of any kind came
    quint32 m_mmsi = 0;          //!< key of the target; 0: no data yet
    quint8 m_navStatus = 0;      //!< 0 to 15
    qint8 m_rateOfTurn = 0;      //!< raw; -128: not available
    quint8 m_accuracy = 0;       //!< 1: better than 10 m
    QGpsKrd m_position;
    double m_course = 0;  //!< over ground, degrees; 360.0: not available
    qint32 m_heading = 0; //!< degrees; 360 or more: not available
    double m_speed = 0;   //!< over ground, knots; 102.3: not available

    bool m_rangeValid = false; //!< m_range is usable
    double m_range = 0.0;      //!< from the own position, nautical miles

    bool m_staticValid = false; //!< static and voyage data have been taken in
    quint8 m_aisVersion = 0;
    quint32 m_imo = 0;
    QString m_callSign;        //!< up to 7 characters
    QString m_shipName;        //!< up to 20 characters
    quint8 m_shipType = 0;     //!< 0: not available
    quint32 m_toBow = 0;       //!< metres from the reference point, 0 to 511
    quint32 m_toStern = 0;     //!< metres, 0 to 511
    quint32 m_toPort = 0;      //!< metres, 0 to 63
    quint32 m_toStarboard = 0; //!< metres, 0 to 63
    quint8 m_fixType = 0;      //!< electronic position fixing device, 0 to 15
    quint8 m_etaMinute = 0;    //!< UTC; 60: not available
    quint8 m_etaHour = 0;      //!< UTC; 24: not available
    quint8 m_etaDay = 0;       //!< 0: not available
    quint8 m_etaMonth = 0;     //!< 0: not available
    float m_draught = 0;       //!< metres
    QString m_destination;     //!< up to 20 characters
    quint8 m_dte = 0;
};
