// Compiled once for each width of register, with that width's flags; VANTORELIX_LANES is the name of the table at the
// end.
//
// Every function here, and every one of a header that is called here, must be local to this file (static). The linker
// keeps one copy of a shared inline function for the whole program, and that copy could use instructions which only
// some processors have.
#include <cmath>
#include <cstddef>
#include <type_traits>

#include "engine/colour/lanes.h"
#include "engine/sampling/spacing_kernel.h"
#include "engine/state/ramp_stops.h"

#ifndef VANTORELIX_LANES
#define VANTORELIX_LANES base
#endif

namespace vantorelix::lanes {

namespace {

// How many points are worked on at a time while lengths are smoothed. It is a constant so that loops are unrolled, and
// small so that the processor can begin the next step while the baseline's sum, which must run in order, is still being
// added.
using Step = std::integral_constant<std::size_t, kernel::kBaselineStep>;
constexpr std::size_t kStep = Step::value;

// Calls body(count), with the count as a compile-time constant where it is that of a full Block. With the variable
// alone, colouring 10,000 points takes 1.3 times as long (build/bin/vantorelix_bench --benchmark_filter=colours/10000,
// in turns).
template <class Block, class Body>
void with_count(std::size_t count, Body body) {
  if (count == Block::value)
    body(Block{});
  else
    body(count);
}

// The squares first, in the order of memory: then x, y and z have to be picked out of one array instead of two.
template <class Count>
void step_lengths(const double* xyz, Count count, double* out) {
  alignas(64) double squares[3 * kStep];
  for (std::size_t i = 0; i < 3 * count; ++i) {
    const double d = xyz[i + 3] - xyz[i];
    squares[i] = d * d;
  }
  for (std::size_t i = 0; i < count; ++i) out[i] = std::sqrt(squares[3 * i] + squares[3 * i + 1] + squares[3 * i + 2]);
}

void lengths(const double* xyz, std::size_t count, double* out) {
  for (std::size_t i = 0; i < count; i += kStep)
    with_count<Step>(count - i < kStep ? count - i : kStep, [&](auto n) { step_lengths(xyz + 3 * i, n, out + i); });
}

void smoothed(const double* xyz, std::size_t count, double* out, kernel::Baseline* baseline) {
  constexpr std::size_t kBlock = 4 * kStep, kAround = 2 * kernel::SpacingWindow::value;
  alignas(64) double v[kBlock + kAround];
  lengths(xyz, kAround, v);
  for (std::size_t first = 0; first < count; first += kBlock) {
    const std::size_t size = count - first < kBlock ? count - first : kBlock;
    lengths(xyz + 3 * (first + kAround), size, v + kAround);
    for (std::size_t i = 0; i < size; i += kStep)
      with_count<Step>(size - i < kStep ? size - i : kStep, [&](auto n) {
        kernel::full_means(v + i, n, kernel::SpacingWindow{}, out + first + i);
        if (baseline) kernel::add(*baseline, out + first + i, n);
      });
    for (std::size_t i = 0; i < kAround; ++i) v[i] = v[size + i];
  }
}

using Block = std::integral_constant<std::size_t, kLaneBlock>;

void parameters(const double* lengths, std::size_t count, double scale, double* out) {
  with_count<Block>(count, [&](auto n) { kernel::parameters(lengths, n, scale, out); });
}

// A stretch of the ramp between two stops: `colour` at t0, and colour + change at t0 + length.
struct Segment {
  double t0, length, colour[3], change[3];
};
struct Segments {
  Segment at[_RAMP_STOPS.size() - 1];
};

constexpr Segments segments() {
  Segments all{};
  for (std::size_t i = 0; i + 1 < _RAMP_STOPS.size(); ++i) {
    const RampStop& a = _RAMP_STOPS[i];
    const RampStop& b = _RAMP_STOPS[i + 1];
    all.at[i] = {a.t,
                 b.t - a.t,
                 {a.colour.x, a.colour.y, a.colour.z},
                 {b.colour.x - a.colour.x, b.colour.y - a.colour.y, b.colour.z - a.colour.z}};
  }
  return all;
}
constexpr Segments kSegments = segments();
constexpr std::size_t kLast = _RAMP_STOPS.size() - 2;

// A field of the segment that t lies in; a t on a stop belongs to the segment below it. Without table look-ups and
// branches, so that it is vectorised: from the lowest segment up, each one replaces the value where t is above its
// start.
template <double Segment::*field, std::size_t k = 1>
double of_segment(double t, double below = kSegments.at[0].*field) {
  if constexpr (k > kLast)
    return below;
  else
    return of_segment<field, k + 1>(t, t > kSegments.at[k].t0 ? kSegments.at[k].*field : below);
}
// A channel of segment k at u, 0 at its start and 1 at its end.
template <std::size_t channel, std::size_t k>
double segment(double u) {
  constexpr double colour = kSegments.at[k].colour[channel];
  constexpr double change = kSegments.at[k].change[channel];
  return change == 0.0 ? colour : colour + change * u;
}
// The same of the segment that t lies in, chosen as in of_segment; `below` is the value that segment k - 1 gives.
template <std::size_t channel, std::size_t k = 1>
double value(double t, double u, double below) {
  if constexpr (k > kLast)
    return below;
  else
    return value<channel, k + 1>(t, u, t > kSegments.at[k].t0 ? segment<channel, k>(u) : below);
}

template <class Count>
void ramp_of(const double* t, Count count, double* rgb) {
  alignas(64) double middle[kLaneBlock];
  alignas(64) double u[kLaneBlock];
  for (std::size_t i = 0; i < count; ++i) {
    middle[i] = 0.5 * (t[i] + t[i + 1]);
    u[i] = (middle[i] - of_segment<&Segment::t0>(middle[i])) / of_segment<&Segment::length>(middle[i]);
  }
  for (std::size_t i = 0; i < count; ++i) {
    rgb[3 * i] = value<0>(middle[i], u[i], segment<0, 0>(u[i]));
    rgb[3 * i + 1] = value<1>(middle[i], u[i], segment<1, 0>(u[i]));
    rgb[3 * i + 2] = value<2>(middle[i], u[i], segment<2, 0>(u[i]));
  }
}

void ramp(const double* t, std::size_t count, double* rgb) {
  with_count<Block>(count, [&](auto n) { ramp_of(t, n, rgb); });
}

}  // namespace

extern const Lanes VANTORELIX_LANES;
#define VANTORELIX_TEXT_OF(x) #x
#define VANTORELIX_TEXT(x) VANTORELIX_TEXT_OF(x)
const Lanes VANTORELIX_LANES = {VANTORELIX_TEXT(VANTORELIX_LANES), lengths, smoothed, parameters, ramp};

}  // namespace vantorelix::lanes
