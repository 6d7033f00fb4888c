// Spacing values and the coverage-first order of samples.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "engine/sampling/spacing_kernel.h"
#include "host/value.h"

namespace vantorelix {

// Neighbours on each side that the spacing colours average over.
inline constexpr std::int64_t kSpacingWindow = kernel::SpacingWindow::value;

// Mean over up to 2 * window + 1 neighbours, fewer at the ends. A window of 0 or less copies.
std::vector<double> _smooth(const std::vector<double>& values, std::int64_t window = kSpacingWindow);

// Ramp parameters in 0..1 for segment lengths, and the spacing reference they were measured against. `ref` none
// makes a new one: the mean of the lengths above 1e-9.
std::pair<std::vector<double>, host::Value> _t_from_spacing(const std::vector<double>& dists,
                                                            const host::Value& ref = {});

// The baseline inside a spacing reference; 0.0 when it is none or empty. Throws when it holds no number.
double _spacing_baseline(const host::Value& ref);

// Each of 0..n-1 exactly once: both ends, then midpoints level by level. Lazy: keeps its place between pulls.
class _bisect_indices {
 public:
  explicit _bisect_indices(std::int64_t n);
  // The next index, or nothing at the end.
  std::optional<std::int64_t> next();

 private:
  // Goes on by a span of this width, to the next of the level or to the first of the next level.
  void step(std::uint64_t width);

  std::int64_t n_;
  int ends_given_ = 0;
  // The span whose midpoint is next: it begins at begin_ and is number j of the 2^level_ spans of its level, counted
  // from the left from 0. Halving a span of odd width makes the right half one wider, so that span j is (n - 1 +
  // number_reversed_) / 2^level_ wide, rounded down, where number_reversed_ has the level_ bits of j in reverse order.
  int level_ = 0;
  std::uint64_t number_reversed_ = 0;
  std::uint64_t begin_ = 0;
};

}  // namespace vantorelix
