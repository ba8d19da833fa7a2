#!/usr/bin/env python3
"""Makes the reference values of the coordinate and target tests.

None of them comes from the program's own formulae in its own arithmetic. Everything is computed
with 50 decimal digits (mpmath), and where two forms exist, by the other one:

greatcircle.csv   the angle between two vectors in space, as atan2(|a x b|, a . b), where the
                  program takes the arc cosine of the spherical law of cosines
rhumb.csv         mid-latitude sailing; course and distance as angle and length of the vector
                  (latitude difference, departure), by atan2, where the program takes a quotient and
                  sorts out the quadrants; the shorter way round is found by trying both
                  For legs under 100 nautical miles the script also checks that the rhumb line
                  proper, over the difference of meridional parts, agrees within 0.5 %.
deadreckoning.csv the end of the leg as a complex number, folded by a remainder
rateofturn.csv    raw / 4.733 to two decimals, in decimal fractions

All angles are in minutes of arc, courses in degrees, distances in nautical miles.

    make_reference.py           writes the files beside itself
    make_reference.py --check   compares them and fails on a difference
"""

import random
import sys
from decimal import Decimal, ROUND_HALF_EVEN
from pathlib import Path

from mpmath import atan2, cos, fabs, hypot, log, mp, mpc, mpf, pi, sin, sqrt, tan

mp.dps = 50
HERE = Path(__file__).resolve().parent
FULL = 21600


def radians(minutes):
    return mpf(minutes) * pi / (180 * 60)


def number(value):
    return mp.nstr(value, 17, strip_zeros=False)


def vector(latitude, longitude):
    lat, lon = radians(latitude), radians(longitude)
    return (cos(lat) * cos(lon), cos(lat) * sin(lon), sin(lat))


def great_circle(lat1, lon1, lat2, lon2):
    a, b = vector(lat1, lon1), vector(lat2, lon2)
    cross = (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])
    dot = sum(x * y for x, y in zip(a, b))
    return atan2(sqrt(sum(x * x for x in cross)), dot) * 180 * 60 / pi


def shorter(difference):
    return min((difference, difference - FULL, difference + FULL), key=fabs)


def mid_latitude(lat1, lon1, lat2, lon2):
    north = mpf(lat2) - mpf(lat1)
    east = shorter(mpf(lon2) - mpf(lon1)) * cos(radians((mpf(lat1) + mpf(lat2)) / 2))
    course = atan2(east, north) * 180 / pi
    return hypot(north, east), course + 360 if course < 0 else course


def loxodrome(lat1, lon1, lat2, lon2):
    """The rhumb line proper: distance only, for legs that aren't due east or west."""
    def parts(latitude):
        return log(tan(pi / 4 + radians(latitude) / 2)) * 180 * 60 / pi

    north = mpf(lat2) - mpf(lat1)
    east = shorter(mpf(lon2) - mpf(lon1)) * north / (parts(lat2) - parts(lat1))
    return hypot(north, east)


def dead_reckoning(lat, lon, distance, course):
    angle = mpf(course) * pi / 180
    leg = mpf(distance) * mpc(cos(angle), sin(angle))
    longitude = mpf(lon) + leg.imag / cos(radians(lat))
    if longitude > FULL / 2 or longitude < -FULL / 2:
        longitude = (longitude + FULL / 2) % FULL - FULL / 2
    return mpf(lat) + leg.real, longitude


def coordinate(source, bound):
    return f"{source.uniform(-bound, bound):.3f}"


def great_circles(source):
    yield "lat1,lon1,lat2,lon2,distance"
    legs = [
        ("0", "0", "0", "60"), ("0", "0", "60", "0"), ("0", "0", "5400", "0"),
        ("5400", "0", "-5400", "0"), ("0", "10790", "0", "-10790"), ("0", "-10790", "0", "10790"),
        ("3600", "0", "3600", "10800"), ("-2400", "-600", "2390", "10180"),
        # Los Angeles to New York, 2144 nautical miles in textbooks of spherical navigation.
        ("2037", "-7104", "2438", "-4427"),
    ]
    for _ in range(150):
        legs.append((coordinate(source, 5400), coordinate(source, 10800),
                     coordinate(source, 5400), coordinate(source, 10800)))
    for _ in range(60):  # as an AIS station sees them
        lat, lon = source.uniform(-4800, 4800), source.uniform(-10700, 10700)
        legs.append((f"{lat:.4f}", f"{lon:.4f}", f"{lat + source.uniform(0.1, 40):.4f}",
                     f"{lon + source.uniform(-40, 40):.4f}"))
    for leg in legs:
        yield ",".join(leg + (number(great_circle(*leg)),))


def rhumb_lines(source):
    yield "lat1,lon1,lat2,lon2,distance,course"
    legs = [
        ("60", "0", "0", "0"), ("0", "0", "60", "0"), ("60", "60", "0", "0"),
        ("0", "10790", "10", "-10790"), ("0", "-10790", "10", "10790"),
        ("10", "10790", "0", "-10790"), ("10", "-10790", "0", "10790"),
        ("2037", "-7104", "2438", "-4427"),
    ]
    for _ in range(150):
        legs.append((coordinate(source, 5000), coordinate(source, 10800),
                     coordinate(source, 5000), coordinate(source, 10800)))
    for _ in range(60):
        lat, lon = source.uniform(-3600, 3600), source.uniform(-10700, 10700)
        legs.append((f"{lat:.4f}", f"{lon:.4f}", f"{lat + source.uniform(0.1, 40):.4f}",
                     f"{lon + source.uniform(-40, 40):.4f}"))
    for leg in legs:
        distance, course = mid_latitude(*leg)
        if distance < 100:
            assert fabs(loxodrome(*leg) - distance) < distance * mpf("0.005"), leg
        yield ",".join(leg + (number(distance), number(course)))


def reckonings(source):
    yield "lat,lon,distance,course,endlat,endlon"
    legs = [
        ("0", "0", "60", "0"), ("0", "0", "60", "90"), ("0", "0", "60", "180"),
        ("0", "0", "60", "270"), ("0", "10790", "20", "90"), ("0", "-10790", "20", "270"),
        ("3600", "0", "30", "90"), ("5390", "0", "20", "0"),
    ]
    for _ in range(150):
        legs.append((coordinate(source, 4800), coordinate(source, 10800),
                     f"{source.uniform(0, 1000):.2f}", f"{source.uniform(0, 360):.1f}"))
    for leg in legs:
        lat, lon = dead_reckoning(*leg)
        yield ",".join(leg + (number(lat), number(lon)))


def turns(_source):
    yield "raw,text"
    for raw in range(-128, 128):
        value = (Decimal(raw) / Decimal("4.733")).quantize(Decimal("0.01"), ROUND_HALF_EVEN)
        yield f"{raw},{'' if raw == -128 else value}"


def main():
    files = {"greatcircle.csv": great_circles, "rhumb.csv": rhumb_lines,
             "deadreckoning.csv": reckonings, "rateofturn.csv": turns}
    same = True
    for name, rows in files.items():
        text = "\n".join(rows(random.Random(name))) + "\n"
        path = HERE / name
        if "--check" not in sys.argv:
            path.write_text(text, encoding="ascii")
        elif path.read_text(encoding="ascii") != text:
            print(f"{name} is not what this script makes")
            same = False
    return 0 if same else 1


if __name__ == "__main__":
    sys.exit(main())
