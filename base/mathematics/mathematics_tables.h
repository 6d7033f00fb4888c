// What sine and arc tangent are computed from. tools/mathematics_tables.py prints this file; change that instead.
#pragma once

#include <array>
#include <cstdint>

namespace vantorelix::base::tables {

// Sines of the multiples of pi/32 up to a right angle: a multiple of 2^-24, and the rest.
inline constexpr std::array<std::array<double, 2>, 17> kSines = {{
    {0.0, 0.0},
    {0.09801715612411499, -1.579455438824018e-08},
    {0.19509029388427734, 2.8131850924098286e-08},
    {0.2902846932411194, -1.5986657017129434e-08},
    {0.3826834559440613, -2.3578971507568416e-08},
    {0.4713967442512512, -7.425253572146738e-09},
    {0.5555702447891235, -1.176952131041342e-08},
    {0.6343932747840881, 9.379557363449547e-09},
    {0.7071067690849304, 1.210161710447897e-08},
    {0.7730104327201843, 2.0642552634639033e-08},
    {0.8314695954322815, 1.6870263742938163e-08},
    {0.8819212913513184, -2.7002963329662244e-08},
    {0.9238795042037964, 2.8307490369409432e-08},
    {0.9569403529167175, -1.7184508664361077e-08},
    {0.9807852506637573, 2.9739473124907433e-08},
    {0.9951847195625305, 7.109666368666712e-09},
    {1.0, 0.0},
}};

// pi/32 as a sum. The first two parts times a whole number of up to twenty binary digits are exact.
inline constexpr std::array<double, 3> kNode = {0.09817477042088285, 3.798187816439979e-12, 1.2639164054974691e-22};
inline constexpr double kNodesPerRadian = 10.185916357881302;

// With q = r * r and |r| <= pi/64: sin(r) = r + r * q * P(q), and cos(r) = 1 - q / 2 + q * q * P(q).
inline constexpr std::array<double, 3> kSine = {-0.16666666666666546, 0.008333333324333688, -0.00019840273845896154};
inline constexpr std::array<double, 3> kCosine = {0.041666666666666546, -0.0013888888879889196, 2.480059130212285e-05};

// With q = t * t and |t| <= tan(pi/8): atan(t) = t + t * q * P(q).
inline constexpr double kTangentOfEighth = 0.41421356237309503;
inline constexpr std::array<double, 12> kArcTangent = {
    -0.3333333333333333,  0.19999999999999804, -0.14285714285659828,  0.11111111105155447,
    -0.09090908753500877, 0.07692296375032143, -0.06666424885738255,  0.05878928997834775,
    -0.05230454270650244, 0.04551593220626549, -0.034570561981427744, 0.016285756855221028,
};

// With q = x * x and |x| <= 1/2: asin(x) = x + x * q * P(q).
inline constexpr std::array<double, 13> kArcSine = {
    0.16666666666666669,  0.07499999999998433,   0.04464285714635543,  0.030381944138531247, 0.02237217294214989,
    0.017352392720869973, 0.013971212973552933,  0.011479177415184906, 0.01032281435018578,  0.005457506718640358,
    0.01740087944269402,  -0.014851887071247204, 0.028757851367421566,
};

// The logarithm of 2: the first part times a whole number of up to eleven binary digits is exact. One over it.
inline constexpr std::array<double, 2> kLog2 = {0.6931471805601177, -1.7239444525614835e-13};
inline constexpr double kPerLog2 = 1.4426950408889634;

// With q = s * s and |s| <= 0.1716: log((1 + s) / (1 - s)) = 2 * s + s * q * P(q).
inline constexpr std::array<double, 8> kLogarithm = {
    0.6666666666666666,  0.4000000000000088,  0.28571428570802404, 0.22222222391987728,
    0.18181795610879042, 0.15386241293734357, 0.13268730539100895, 0.1308707158006738,
};

// With |r| <= 0.35: exp(r) = 1 + r + r * r * P(r).
inline constexpr std::array<double, 12> kExponential = {
    0.5,
    0.16666666666666666,
    0.04166666666666668,
    0.008333333333333333,
    0.001388888888887828,
    0.0001984126984126277,
    2.4801587338540415e-05,
    2.755731924861721e-06,
    2.7557261055508104e-07,
    2.5052069612234677e-08,
    2.0918952345998524e-09,
    1.6087170907940627e-10,
};

// 0 to 4 eighths of a turn: a multiple of 2^-48, and the rest.
inline constexpr std::array<std::array<double, 2>, 5> kEighths = {{
    {0.0, 0.0},
    {0.7853981633974492, -8.575622497214414e-16},
    {1.5707963267948983, -1.7151244994428829e-15},
    {2.356194490192344, 9.800269296361768e-16},
    {3.141592653589793, 1.2246467991473532e-16},
}};

// A turn in radians as a sum of three parts, the first two of up to 26 binary digits.
inline constexpr std::array<double, 3> kTurn = {6.283185362815857, -5.563627070159782e-08, 2.4492935982947064e-16};

// A radian in turns: 64 zeros, then the binary digits after the point.
inline constexpr std::array<std::uint32_t, 40> kTurnsPerRadian = {
    0x00000000, 0x00000000, 0x28be60db, 0x9391054a, 0x7f09d5f4, 0x7d4d3770, 0x36d8a566, 0x4f10e410,
    0x7f9458ea, 0xf7aef158, 0x6dc91b8e, 0x909374b8, 0x01924bba, 0x82746487, 0x3f877ac7, 0x2c4a69cf,
    0xba208d7d, 0x4baed121, 0x3a671c09, 0xad17df90, 0x4e64758e, 0x60d4ce7d, 0x272117e2, 0xef7e4a0e,
    0xc7fe25ff, 0xf7816603, 0xfbcbc462, 0xd6829b47, 0xdb4d9fb3, 0xc9f2c26d, 0xd3d18fd9, 0xa797fa8b,
    0x5d49eeb1, 0xfaf97c5e, 0xcf41ce7d, 0xe294a4ba, 0x9afed7ec, 0x47e35742, 0x1580cc11, 0xbf1edaea};

}  // namespace vantorelix::base::tables
