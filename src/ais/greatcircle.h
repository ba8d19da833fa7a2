#pragma once

class QGpsKrd;

/*!
 * Great circle distances from one position. What depends on that position alone is computed once,
 * for all the targets whose range is measured from it.
 */
class GreatCircle
{
public:
    /*! Measures from 0, 0. */
    GreatCircle() = default;
    explicit GreatCircle(const QGpsKrd &from);

    /*!
     * The distance to \a to in nautical miles. Between two positions that are the same, or nearly
     * so, it may be not a number.
     */
    double distanceTo(const QGpsKrd &to) const;

private:
    double m_lon = 0.0; //!< minutes of arc
    double m_sinLat = 0.0;
    double m_cosLat = 1.0;
};
