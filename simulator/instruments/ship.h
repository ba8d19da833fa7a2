#pragma once

namespace tk7sim {

/*! Where something is and where it goes. */
struct Fix
{
    double latitude;  //!< degrees, north positive
    double longitude; //!< degrees, east positive
    double course;    //!< degrees true, 0 to below 360
};

/*! A ship that sails a circle for ever, so that it never leaves its sea. */
struct CircularCourse
{
    double latitude;     //!< of the middle, degrees
    double longitude;    //!< of the middle, degrees
    double radius;       //!< nautical miles
    double knots;        //!< negative: against the clock
    double startBearing; //!< from the middle, degrees

    //! Where the ship is \a seconds after the start.
    Fix at(double seconds) const;
    //! Change of course, degrees a second.
    double turnRate() const;
};

/*! What the instruments of the simulated ship measure. Angles in degrees, speeds in knots. */
struct ShipState
{
    Fix fix;
    double speed;
    double heading; //!< true
    double magneticHeading;
    double rateOfTurn;       //!< degrees a minute, positive to starboard
    double depth;            //!< metres below the transducer
    double windAngle;        //!< apparent, from the bow clockwise
    double windSpeed;        //!< apparent
    double waterTemperature; //!< degrees Celsius
    double airTemperature;   //!< degrees Celsius
    double pressure;         //!< bar
};

constexpr double magneticVariation = 3.2; //!< degrees east, where the ship sails

/*! The state of the ship \a seconds after the start. */
ShipState shipAt(double seconds);
/*! The middle of the water in which the ship and its neighbours sail. */
extern const CircularCourse ownCourse;

/*! \a degrees brought into the range from 0 to below 360. */
double normalized(double degrees);

} // namespace tk7sim
