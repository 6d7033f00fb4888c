#!/usr/bin/env python3
"""Prints base/mathematics/mathematics_test_references.h: values of sine, arc tangent and their like to 100 digits of
binary, among them the arguments that are hardest to reduce. Worked out in whole numbers of 1,400 binary digits.

    python3 tools/mathematics_references.py | clang-format-14 --assume-filename=base/x.h >
    base/mathematics/mathematics_test_references.h
"""

import math
import sys
from fractions import Fraction

from mathematics_tables import BITS, ONE, PI, arc_tangent, cosine, exponential, fraction, logarithm, sine, square_root

LARGEST, SMALLEST = sys.float_info.max, 5e-324


def fixed(x):
    return int(Fraction(x) * ONE)


def nearest_to_quarter_turns(count):
    """The doubles from 1 up that come nearest to a multiple of pi/2: denominators of the continued fractions of
    2^e / (pi/2), for every exponent e."""
    found = {}
    for exponent in range(-52, 971):
        ratio = Fraction(2) ** exponent / fraction(PI // 2)
        before, now, x = 0, 1, ratio - ratio.numerator // ratio.denominator
        while x and now < 2 ** 53:
            away = abs(now * ratio - round(now * ratio)) * fraction(PI // 2)
            found[now * Fraction(2) ** exponent] = away
            whole = x.denominator // x.numerator
            before, now, x = now, whole * now + before, 1 / x - whole
    return [float(x) for x in sorted(found, key=found.get) if x >= 1][:count]


def reduced(x):
    return fixed(x) % (2 * PI)


def arc_tangent_of_ratio(y, x):
    """For y, x >= 0, not both zero, as fixed numbers."""
    if y > x:
        return PI // 2 - arc_tangent_of_ratio(x, y)
    t = (y << BITS) // x
    for _ in range(2):  # half the angle, twice
        t = (t << BITS) // (ONE + square_root(ONE + (t * t >> BITS)))
    return 4 * arc_tangent(t)


def angle_of(y, x):
    # Scaled, so that tiny numbers keep their digits.
    larger = max(abs(Fraction(y)), abs(Fraction(x)))
    there = arc_tangent_of_ratio(fixed(abs(Fraction(y)) / larger), fixed(abs(Fraction(x)) / larger))
    there = there if x > 0 else PI - there
    return there if y > 0 else -there


def arc_sine(x):
    there = arc_tangent_of_ratio(fixed(abs(x)), square_root(ONE - fixed(Fraction(x) ** 2)))
    return there if x > 0 else -there


def length(*sides):
    """As a fraction: the sides may be huge."""
    scale = max(abs(Fraction(s)) for s in sides)
    return fraction(square_root(fixed(sum((Fraction(s) / scale) ** 2 for s in sides)))) * scale


def natural_logarithm(x):
    mantissa, places = math.frexp(x)
    return fraction(logarithm(fixed(mantissa)) + places * logarithm(2 * ONE))


def power(base, exponent):
    two = logarithm(2 * ONE)
    log = natural_logarithm(base) * Fraction(exponent)
    whole = int(log / fraction(two))
    return fraction(exponential(int(log * ONE) - whole * two)) * Fraction(2) ** whole


def references():
    angles = [SMALLEST, 1e-310, 2.0 ** -28, 1e-5, 0.5, 1.0, 2.0, 3.141592653589793, -10.0, 355.0, 99999.9, 100000.1,
              1e22, 2.0 ** 1000, LARGEST] + nearest_to_quarter_turns(12)
    for x in angles:
        yield "sin", (x,), fraction(sine(reduced(x))) if abs(x) > 1e-300 else Fraction(x)
        yield "cos", (x,), fraction(cosine(reduced(x)))
    for x in (1e-310, 1e-20, 0.25, 0.5, 0.5 + 2.0 ** -53, -0.7071067811865476, 0.75, 0.99, 1 - 2.0 ** -53):
        yield "asin", (x,), fraction(arc_sine(x)) if abs(x) > 1e-300 else Fraction(x)
        yield "acos", (x,), fraction(PI // 2 - arc_sine(x))
    for y, x in ((1.0, 1.0), (1.0, -1.0), (-3.0, 4.0), (2.0 ** -600, 2.0 ** -599), (2.0, -1e-300), (1e300, 1e-300),
                 (0.41421356237309503, 1.0), (0.41421356237309509, -1.0), (1e-3, -LARGEST), (LARGEST, LARGEST),
                 (3 * SMALLEST, SMALLEST), (1e-200, 1.0), (-1.0, 2.0 ** -52)):
        yield "atan2", (y, x), fraction(angle_of(y, x))
    for sides in ((3.0, 4.0), (1.0, 1.0), (1e300, 1e300), (3e-310, 4e-310), (1.0, 1e-17), (1e200, 1e-200),
                  (2.0 ** 500, 2.0 ** 499), (5.0, SMALLEST)):
        yield "hypot of two", sides, length(*sides)
    for sides in ((2.0, 3.0, 6.0), (1.0, 1.0, 1.0), (1e300, -1e300, 1e300), (1e-310, 2e-310, 2e-310), (1.0, 2e-9, 3e-9)):
        yield "hypot of three", sides, length(*sides)
    for base, exponent in ((2.0, 0.5), (3.7, 0.25), (1e-310, 0.999), (LARGEST, 1 - 2.0 ** -53), (1 - 2.0 ** -53, 0.3),
                           (0.70710678118654746, 0.9), (5.0, 1e-300), (SMALLEST, 0.5)):
        yield "pow", (base, exponent), power(base, exponent)
    for x in (SMALLEST, 1e-310, 0.5, 0.70710678118654746, 1 - 2.0 ** -53, 1 + 2.0 ** -52, 1.4142135623730951, 204.8, LARGEST):
        yield "log", (x,), natural_logarithm(x)


def row(name, arguments, value):
    high = float(value)
    low = float(value - Fraction(high)) + 0.0
    numbers = [float(a) for a in arguments + (0.0,) * (3 - len(arguments))]
    return '    {"%s", {%s}, %s, %s},\n' % (name, ", ".join(n.hex() for n in numbers), high.hex(), low.hex())


def text():
    return """\
// Values to 100 binary digits, and where they are hard to come by. tools/mathematics_references.py prints this file.
#pragma once

#include <array>

namespace vantorelix::base {

struct Reference {
  const char* function;
  std::array<double, 3> arguments;
  double value, rest;  // their sum
};

inline constexpr Reference kReferences[] = {
%s};

}  // namespace vantorelix::base
""" % "".join(row(*reference) for reference in references())


if __name__ == "__main__":
    print(text(), end="")
