// What the library ufbx calls instead of the functions of <math.h>, so that what it evaluates has the same bits
// everywhere. cmake/ufbx.cmake compiles it with this header; nothing else includes it.
#pragma once

#include <cmath>

#include "base/mathematics/mathematics.h"

inline double vantorelix_ufbx_sin(double x) { return vantorelix::base::sin(x); }
inline double vantorelix_ufbx_cos(double x) { return vantorelix::base::cos(x); }
inline double vantorelix_ufbx_asin(double x) { return vantorelix::base::asin(x); }
inline double vantorelix_ufbx_acos(double x) { return vantorelix::base::acos(x); }
inline double vantorelix_ufbx_atan2(double y, double x) { return vantorelix::base::atan2(y, x); }
// It asks for exponents between 0 and 1 of numbers that are not negative.
inline double vantorelix_ufbx_pow(double x, double y) { return vantorelix::base::pow(x, y); }

// For fields of view of cameras.
inline double vantorelix_ufbx_tan(double x) { return vantorelix::base::sin(x) / vantorelix::base::cos(x); }
inline double vantorelix_ufbx_atan(double x) { return vantorelix::base::atan2(x, 1.0); }

// Exact on every system.
inline double vantorelix_ufbx_sqrt(double x) { return std::sqrt(x); }
inline double vantorelix_ufbx_fabs(double x) { return std::fabs(x); }
inline double vantorelix_ufbx_fmin(double a, double b) { return std::fmin(a, b); }
inline double vantorelix_ufbx_fmax(double a, double b) { return std::fmax(a, b); }
inline double vantorelix_ufbx_copysign(double x, double sign) { return std::copysign(x, sign); }
inline double vantorelix_ufbx_nextafter(double x, double to) { return std::nextafter(x, to); }
inline double vantorelix_ufbx_rint(double x) { return std::rint(x); }
inline double vantorelix_ufbx_floor(double x) { return std::floor(x); }
inline double vantorelix_ufbx_ceil(double x) { return std::ceil(x); }
inline int vantorelix_ufbx_isnan(double x) { return std::isnan(x) ? 1 : 0; }
