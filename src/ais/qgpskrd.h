#pragma once

#include <QObject>
#include <QString>

#include <array>

/*!
 * A position on the earth, in minutes of arc: parsing, validity, texts and navigation arithmetic.
 *
 * North and east are positive. A minute of arc on a meridian is a nautical mile, so distances come
 * out in nautical miles without a further constant. Any two numbers are held; isValid() tells
 * whether they lie on the earth. A new position is 0, 0.
 */
class QGpsKrd : public QObject
{
    Q_OBJECT

public:
    static constexpr double MaxLatitude = 5400.0;   //!< minutes of arc, the pole
    static constexpr double MaxLongitude = 10800.0; //!< minutes of arc, the 180th meridian

    /*! One coordinate, taken apart for building and printing. */
    struct Coordinate
    {
        qint32 degrees = 0;
        qint32 minutes = 0;
        qint32 thousandths = 0; //!< of a minute
        char hemisphere = 0;    //!< 'N' or 'S', 'E' or 'W'
    };

    struct Parts
    {
        Coordinate latitude;
        Coordinate longitude;
    };

    /*!
     * Six bytes: degrees, minutes with the top bit set for south or west, low byte of the
     * thousandths; latitude, then longitude.
     */
    using Packed = std::array<quint8, 6>;

    /*! What a position made of two others is to be. */
    enum class Combination {
        Sum,               //!< a + b, as operator+=
        Difference,        //!< a - b; of the longitude only a result below -10800 is folded
        ShortestDifference //!< a - b, over the 180th meridian where that is shorter
    };

    explicit QGpsKrd(QObject *parent = nullptr);
    QGpsKrd(const QGpsKrd &a, const QGpsKrd &b, Combination combination);

    /*!
     * Dead reckoning: where one is after \a distance nautical miles from \a start on \a course, in
     * degrees. The latitude of the start, not a mean one, widens the longitude.
     */
    QGpsKrd(const QGpsKrd &start, double distance, double course);

    /*! Copies latitude and longitude of \a other. */
    void assign(const QGpsKrd &other);

    /*! False when a coordinate lies beyond its bound; the bounds themselves are valid. */
    bool isValid() const;

    /*!
     * Reads "ddmm.mmm,N,dddmm.mmm,E", with any number of decimals, from the start of \a text; what
     * follows is ignored, and so is the character between the first hemisphere and the longitude.
     * The minutes are not limited. Returns false, with nothing changed, when \a text begins with
     * anything else.
     */
    bool parseFields(const QString &text);

    /*!
     * Great circle distance to \a other in nautical miles. For two positions that are the same, or
     * nearly so, it may be not a number.
     */
    double distanceTo(const QGpsKrd &other) const;

    /*! Degrees, minutes and thousandths of a minute, cut and not rounded. */
    Parts toParts() const;

    QString latitudeText() const;  //!< such as "N  55.45.123"
    QString longitudeText() const; //!< such as "E037.36.123"
    QString positionText() const;  //!< both, with two blanks between them

    /*!
     * Sets both coordinates. Returns false, with nothing changed, when a part exceeds its range or
     * a hemisphere is another letter. Degrees and minutes have no lower bound.
     */
    bool setFromParts(const Parts &parts);

    /*! Sets a position that isValid() turns down. */
    void setInvalid();

    /*! Sets 0, 0. */
    void clear();

    /*! Cuts both coordinates to a thousandth of a minute, if setFromParts() takes them. */
    void roundToThousandths();

    /*! Adds both coordinates. The longitude is folded into -10800 to 10800, the latitude isn't. */
    QGpsKrd &operator+=(const QGpsKrd &other);

    bool operator!=(const QGpsKrd &other) const;

    /*!
     * Rhumb line to \a other by mid-latitude sailing, the shorter way across the 180th meridian.
     * Returns the course in degrees, 0 to 360, and writes the nautical miles into \a distance,
     * which must not be null. The course to the very same place is not a number.
     */
    double courseAndDistanceTo(const QGpsKrd &other, double *distance) const;

    /*! setFromParts() with the parts in \a bytes; thousandths above 255 did not survive packing. */
    bool fromPacked(const Packed &bytes);
    Packed toPacked() const;

    double m_lat = 0.0; //!< minutes of arc, north positive
    double m_lon = 0.0; //!< minutes of arc, east positive
};
