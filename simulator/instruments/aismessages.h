#pragma once

#include <QByteArray>

#include <tuple>

namespace tk7sim {

/*!
 * What stations report, field by field as ITU-R M.1371 counts: these are the numbers before they
 * are made into bits, so a test can compare with them whatever the encoder does.
 */

/*! The position report of a class A station, types 1, 2 and 3. */
struct AisPositionReport
{
    static constexpr int noRateOfTurn = -128;
    static constexpr int noSpeed = 1023;
    static constexpr qint32 noLongitude = 108600000; //!< 181 degrees
    static constexpr qint32 noLatitude = 54600000;   //!< 91 degrees
    static constexpr int noCourse = 3600;
    static constexpr int noHeading = 511;

    int type = 1; //!< 1 to 3
    quint32 mmsi = 0;
    int navStatus = 0;              //!< 0 to 15
    int rateOfTurn = noRateOfTurn;  //!< -128 to 127, 4.733 times the root of degrees a minute
    int speed = noSpeed;            //!< over ground, 1/10 knot, 0 to 1023
    bool isAccurate = false;        //!< better than 10 m
    qint32 longitude = noLongitude; //!< 1/10000 minute of arc, east positive
    qint32 latitude = noLatitude;   //!< 1/10000 minute of arc, north positive
    int course = noCourse;          //!< over ground, 1/10 degree, 0 to 4095
    int heading = noHeading;        //!< true, degrees, 0 to 511
    int second = 60;                //!< of UTC, 0 to 59; 60: not known
};

/*! The static and voyage data of a class A station, type 5. */
struct AisVoyageData
{
    static constexpr int callSignLength = 7;
    static constexpr int textLength = 20; //!< of name and destination
    static constexpr int noHour = 24;
    static constexpr int noMinute = 60;

    quint32 mmsi = 0;
    quint32 imo = 0;        //!< 0: none
    QByteArray callSign;    //!< at most 7 characters from blank to '_'
    QByteArray name;        //!< at most 20 of them
    int shipType = 0;       //!< 0 to 255
    int toBow = 0;          //!< metres from the antenna, 0 to 511
    int toStern = 0;        //!< metres, 0 to 511
    int toPort = 0;         //!< metres, 0 to 63
    int toStarboard = 0;    //!< metres, 0 to 63
    int fixType = 0;        //!< position fixing device, 0 to 15
    int month = 0;          //!< of arrival, UTC; 0: not known
    int day = 0;            //!< 0: not known
    int hour = noHour;      //!< 24: not known
    int minute = noMinute;  //!< 60: not known
    int draught = 0;        //!< 1/10 metre, 0 to 255
    QByteArray destination; //!< at most 20 characters
};

/*! What a station says of one of its alarms. */
struct AisAlarmState
{
    int id = 0;   //!< 1 to 999
    int hour = 0; //!< these three: when its condition changed last, UTC
    int minute = 0;
    int second = 0;
    bool isActive = false; //!< the condition holds
    bool isAcknowledged = false;
    QByteArray text;
};

/*! The position of the router's own receiver. */
struct AisRouterPosition
{
    qint32 latitude = 0;  //!< 1/10000 minute of arc, north positive
    qint32 longitude = 0; //!< 1/10000 minute of arc, east positive
};

inline bool operator==(const AisAlarmState &a, const AisAlarmState &b)
{
    const auto all = [](const AisAlarmState &s) {
        return std::tie(s.id, s.hour, s.minute, s.second, s.isActive, s.isAcknowledged, s.text);
    };
    return all(a) == all(b);
}

inline bool operator!=(const AisAlarmState &a, const AisAlarmState &b)
{
    return !(a == b);
}

} // namespace tk7sim
