// Our functions beside those of the C library, on arguments as animation has them.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "base/mathematics/mathematics.h"
#include "tests/support/mathematics_arguments.h"

namespace vantorelix::bench {
namespace {

using benchmark::State;
using support::Arguments;

std::vector<Arguments> vectors(double limit) {
  support::Draw draw(1);
  std::vector<Arguments> made(4096);
  for (Arguments& a : made) a = {draw.within(limit), draw.within(limit), draw.within(limit)};
  return made;
}

template <class F>
void measure(State& state, const F& function, double limit) {
  const std::vector<Arguments> arguments = vectors(limit);
  std::size_t i = 0;
  for ([[maybe_unused]] auto _ : state) {
    auto result = function(arguments[i++ % 4096]);
    benchmark::DoNotOptimize(result);
  }
}

constexpr double kAngle = 62.8, kSide = 1.0, kLength = 5.0;

#define VANTORELIX_PAIR(name, limit, ours, theirs)                                 \
  BENCHMARK_CAPTURE(                                                               \
      measure, name##_ours, [](const Arguments& a) { return base::ours; }, limit); \
  BENCHMARK_CAPTURE(                                                               \
      measure, name##_library, [](const Arguments& a) { return theirs; }, limit)

VANTORELIX_PAIR(sin, kAngle, sin(a[0]), std::sin(a[0]));
VANTORELIX_PAIR(cos, kAngle, cos(a[0]), std::cos(a[0]));
VANTORELIX_PAIR(sin_cos, kAngle, sin_cos(a[0]), (base::SinCos{std::sin(a[0]), std::cos(a[0])}));
VANTORELIX_PAIR(asin, kSide, asin(a[0]), std::asin(a[0]));
VANTORELIX_PAIR(acos, kSide, acos(a[0]), std::acos(a[0]));
VANTORELIX_PAIR(atan2, kLength, atan2(a[0], a[1]), std::atan2(a[0], a[1]));
VANTORELIX_PAIR(hypot_2, kLength, hypot(a[0], a[1]), std::hypot(a[0], a[1]));
VANTORELIX_PAIR(hypot_3, kLength, hypot(a[0], a[1], a[2]), std::hypot(a[0], a[1], a[2]));

}  // namespace
}  // namespace vantorelix::bench
