#pragma once

#include "simulator/instruments/ship.h"

namespace tk7sim {

/*! A vessel that follows a rhumb line and turns at a steady rate when it gets another course. */
class DeadReckoning
{
public:
    DeadReckoning() = default;
    //! Starts at \a fix with \a knots, able to turn by \a turnRate degrees a minute.
    DeadReckoning(const Fix &fix, double knots, double turnRate);

    //! Lets \a seconds pass.
    void advance(double seconds);
    //! Turns the shorter way to \a course, degrees true.
    void steer(double course);

    const Fix &fix() const { return m_fix; }
    double knots() const { return m_knots; }
    //! Degrees a minute, positive to starboard; 0 on a straight course.
    double rateOfTurn() const;

private:
    double toTurn() const;
    void sail(double seconds, double course);

    Fix m_fix = {0, 0, 0};
    double m_knots = 0;
    double m_turnRate = 0;
    double m_goal = 0;
};

/*! Nautical miles from \a a to \a b on a plane chart, good enough for some tens of miles. */
double milesBetween(const Fix &a, const Fix &b);
/*! The course from \a a to \a b, degrees true, likewise. */
double courseTo(const Fix &a, const Fix &b);

} // namespace tk7sim
