#!/usr/bin/env python3
"""Prints base/mathematics/mathematics_tables.h: every constant that sine, arc tangent and their like are computed from.

    python3 tools/mathematics_tables.py | clang-format-14 --assume-filename=base/x.h >
    base/mathematics/mathematics_tables.h

All of it is worked out here, in whole numbers of 1,400 binary digits: pi by Machin's formula, sine and arc tangent by
their series, polynomials by interpolation at Chebyshev's points. Needs nothing but Python.
"""

import re
from fractions import Fraction

BITS = 1400
ONE = 1 << BITS


def _arc_tangent_of_inverse(n):
    """atan(1/n), n a whole number, by its series; as all numbers here in units of 2^-BITS."""
    total, power, k = 0, ONE // n, 1
    while power:
        total += power // k if k % 4 == 1 else -(power // k)
        power, k = power // (n * n), k + 2
    return total


PI = 4 * (4 * _arc_tangent_of_inverse(5) - _arc_tangent_of_inverse(239))


def sine(x):
    """By its series, for |x| up to a few turns."""
    total, term, k = 0, x, 1
    while term:
        total += term
        term = -(term * x >> BITS) * x // ((k + 1) * (k + 2) << BITS)
        k += 2
    return total


def cosine(x):
    return sine(PI // 2 - x)


def arc_tangent(x):
    """By its series, for |x| < 1/2."""
    total, power, k = 0, x, 1
    while abs(power) > 1:
        total += power // k if k % 4 == 1 else -(power // k)
        power, k = (power * x >> BITS) * x >> BITS, k + 2
    return total


def logarithm(x):
    """Of x between 1/2 and 2, by the series of the inverse of the hyperbolic tangent."""
    s = ((x - ONE) << BITS) // (x + ONE)
    total, power, k = 0, s, 1
    while abs(power) > 1:
        total += power // k
        power, k = (power * s >> BITS) * s >> BITS, k + 2
    return 2 * total


def exponential(x):
    """By its series, for |x| up to a few units."""
    total, term, k = 0, ONE, 1
    while abs(term) > 1:
        total += term
        term, k = (term * x >> BITS) // k, k + 1
    return total


def square_root(x):
    low, high = 0, max(x, ONE) + 1
    while high - low > 1:
        middle = (low + high) // 2
        low, high = (middle, high) if middle * middle <= x << BITS else (low, middle)
    return low


def fraction(x):
    return Fraction(x, ONE)


def parts(x, *grids):
    """x as a sum of doubles: multiples of 2^-grid for each of `grids`, and what is left."""
    left, found = fraction(x), []
    for grid in grids:
        found.append(Fraction(round(left * 2 ** grid), 2 ** grid))
        left -= found[-1]
    return [float(part) + 0.0 for part in found + [left if abs(left) > Fraction(1, 2 ** 1000) else 0]]


def polynomial(function, least, most, count):
    """The coefficients, lowest first, of the polynomial through `function` at the `count` Chebyshev points of
    [least, most], which comes within a few per cent of the best one."""
    turns = [PI * (2 * i + 1) // (2 * count) for i in range(count)]
    points = [(least + most) // 2 + (most - least) * cosine(turn) // (2 * ONE) for turn in turns]
    xs = [Fraction(p, ONE).limit_denominator(10 ** 40) for p in points]
    ys = [fraction(function(int(x * ONE))) for x in xs]
    for step in range(1, count):  # divided differences
        for i in range(count - 1, step - 1, -1):
            ys[i] = (ys[i] - ys[i - 1]) / (xs[i] - xs[i - step])
    result = [Fraction(0)] * count
    for i in range(count - 1, -1, -1):  # Horner's scheme over the polynomials (q - x)
        result = [ys[i] - xs[i] * result[0]] + [result[k - 1] - xs[i] * result[k] for k in range(1, count)]
    return [float(c) for c in result]


def sine_rest(q):
    """(sin(r) / r - 1) / q with q = r * r."""
    r = square_root(q)
    return ((sine(r) * ONE // r - ONE) << BITS) // q


def cosine_rest(q):
    """((cos(r) - 1) / q + 1/2) / q"""
    return ((((cosine(square_root(q)) - ONE) << BITS) // q + ONE // 2) << BITS) // q


def arc_sine_rest(q):
    """(asin(x) / x - 1) / q with q = x * x."""
    x = square_root(q)
    arc = 2 * arc_tangent(x * ONE // (ONE + square_root(ONE - q)))
    return ((arc * ONE // x - ONE) << BITS) // q


def logarithm_rest(q):
    """(log((1 + s) / (1 - s)) / s - 2) / q with q = s * s."""
    s = square_root(q)
    return ((logarithm(((ONE + s) << BITS) // (ONE - s)) * ONE // s - 2 * ONE) << BITS) // q


def exponential_rest(r):
    """(exp(r) - 1 - r) / (r * r)"""
    return ((exponential(r) - ONE - r) << BITS) // (r * r >> BITS)


def arc_tangent_rest(q):
    """(atan(t) / t - 1) / q with q = t * t."""
    t = square_root(q)
    return ((arc_tangent(t) * ONE // t - ONE) << BITS) // q


def polynomial_text(function, most, count, least=0):
    return numbers(polynomial(function, least * ONE // 1, most * ONE // 1, count))


def numbers(values):
    """On one line, or one to a line where they are more than three."""
    texts = [repr(float(v)) for v in values]
    return "{%s}" % ", ".join(texts) if len(texts) <= 3 else "{\n%s}" % "".join("    %s,\n" % t for t in texts)


def pairs(values, grid):
    """One a line: a multiple of 2^-grid, and the rest."""
    return "{{\n%s}}" % "".join("    {%r, %r},\n" % tuple(parts(v, grid)) for v in values)


def hexadecimal(words):
    lines = [", ".join("0x%08x" % word for word in words[i:i + 8]) for i in range(0, len(words), 8)]
    return "{\n    %s}" % ",\n    ".join(lines)


TEMPLATE = """\
// What sine and arc tangent are computed from. tools/mathematics_tables.py prints this file; change that instead.
#pragma once

#include <array>
#include <cstdint>

namespace vantorelix::base::tables {

// Sines of the multiples of pi/32 up to a right angle: a multiple of 2^-24, and the rest.
inline constexpr std::array<std::array<double, 2>, 17> kSines = SINES;

// pi/32 as a sum. The first two parts times a whole number of up to twenty binary digits are exact.
inline constexpr std::array<double, 3> kNode = NODE;
inline constexpr double kNodesPerRadian = PER_RADIAN;

// With q = r * r and |r| <= pi/64: sin(r) = r + r * q * P(q), and cos(r) = 1 - q / 2 + q * q * P(q).
inline constexpr std::array<double, 3> kSine = SINE_REST;
inline constexpr std::array<double, 3> kCosine = COSINE_REST;

// With q = t * t and |t| <= tan(pi/8): atan(t) = t + t * q * P(q).
inline constexpr double kTangentOfEighth = CORNER;
inline constexpr std::array<double, 12> kArcTangent = ARC_TANGENT_REST;

// With q = x * x and |x| <= 1/2: asin(x) = x + x * q * P(q).
inline constexpr std::array<double, 13> kArcSine = ARC_SINE_REST;

// The logarithm of 2: the first part times a whole number of up to eleven binary digits is exact. One over it.
inline constexpr std::array<double, 2> kLog2 = LOG_TWO;
inline constexpr double kPerLog2 = PER_LOG;

// With q = s * s and |s| <= 0.1716: log((1 + s) / (1 - s)) = 2 * s + s * q * P(q).
inline constexpr std::array<double, 8> kLogarithm = LOG_REST;

// With |r| <= 0.35: exp(r) = 1 + r + r * r * P(r).
inline constexpr std::array<double, 12> kExponential = EXP_REST;

// 0 to 4 eighths of a turn: a multiple of 2^-48, and the rest.
inline constexpr std::array<std::array<double, 2>, 5> kEighths = EIGHTHS;

// A turn in radians as a sum of three parts, the first two of up to 26 binary digits.
inline constexpr std::array<double, 3> kTurn = WHOLE;

// A radian in turns: 64 zeros, then the binary digits after the point.
inline constexpr std::array<std::uint32_t, 40> kTurnsPerRadian = PLACES;

}  // namespace vantorelix::base::tables
"""


def text():
    most = fraction(PI // 64) ** 2  # of q, for sines
    corner = fraction(square_root(2 * ONE) - ONE)
    inverse = ONE * ONE // (2 * PI)
    places = [0, 0] + [(inverse >> (BITS - 32 * (i + 1))) & 0xFFFFFFFF for i in range(38)]
    values = {
        "SINES": pairs([sine(i * PI // 32) if i else 0 for i in range(17)], 24),
        "NODE": numbers(parts(PI // 32, 36, 69)),
        "PER_RADIAN": repr(float(Fraction(32 * ONE, PI))),
        "SINE_REST": polynomial_text(sine_rest, most, 3),
        "COSINE_REST": polynomial_text(cosine_rest, most, 3),
        "CORNER": repr(float(corner)),
        "ARC_TANGENT_REST": polynomial_text(arc_tangent_rest, corner ** 2, 12),
        "ARC_SINE_REST": polynomial_text(arc_sine_rest, Fraction(1, 4), 13),
        "LOG_TWO": numbers(parts(logarithm(2 * ONE), 41)),
        "PER_LOG": repr(float(1 / fraction(logarithm(2 * ONE)))),
        "LOG_REST": polynomial_text(logarithm_rest, Fraction(1716, 10000) ** 2, 8),
        "EXP_REST": polynomial_text(exponential_rest, Fraction(35, 100), 12, least=-Fraction(35, 100)),
        "EIGHTHS": pairs([PI * k // 4 for k in range(5)], 48),
        "WHOLE": numbers(parts(2 * PI, 23, 49)),
        "PLACES": hexadecimal(places),
    }
    return re.sub(r"= ([A-Z_]+);", lambda match: "= %s;" % values[match.group(1)], TEMPLATE)


if __name__ == "__main__":
    print(text(), end="")
