// Compiled once for each width of register; VANTORELIX_LANES names the result.
//
// All else is local to the unit, and so are the functions of the headers that are called here: the linker keeps one
// copy of a shared function for the whole program, and it could be the one that only some processors run.
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

// Points worked on at a time while lengths are smoothed. A count that the compiler knows, and the processor is in the
// next step while the one sum that has to run in order is still under way.
using Step = std::integral_constant<std::size_t, kernel::kBaselineStep>;
constexpr std::size_t kStep = Step::value;

// Calls `body` with the count, as a constant where it is that of a whole block. With the variable alone, colouring
// 10,000 points takes 1.3 times as long (build/bin/vantorelix_bench --benchmark_filter=colours/10000, in turns).
template <class Block, class Body>
void with_count(std::size_t count, Body body) {
  if (count == Block::value)
    body(Block{});
  else
    body(count);
}

// Squares first, in the order of memory: taken apart into x, y and z is one array, not two.
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

// One piece of the ramp: from `colour` at t0, by `change` over `length`.
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

// A t on a stop belongs to the segment below it. Nothing is looked up and nothing branches: from the lowest up, each
// segment takes the value over where t lies above its start.
template <double Segment::*field, std::size_t k = 1>
double of_segment(double t, double below = kSegments.at[0].*field) {
  if constexpr (k > kLast)
    return below;
  else
    return of_segment<field, k + 1>(t, t > kSegments.at[k].t0 ? kSegments.at[k].*field : below);
}
template <std::size_t channel, std::size_t k>
double segment(double u) {
  constexpr double colour = kSegments.at[k].colour[channel];
  constexpr double change = kSegments.at[k].change[channel];
  return change == 0.0 ? colour : colour + change * u;
}
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
