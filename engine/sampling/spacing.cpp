#include "engine/sampling/spacing.h"

#include <algorithm>
#include <string>

#include "engine/sampling/spacing_kernel.h"
#include "engine/state/constants.h"
#include "host/error.h"

namespace vantorelix {

namespace {

// A reference holds a number; anything else fails as arithmetic with it does.
double number(const host::Value& value) {
  if (value.is_none())
    throw host::Error("unsupported operand type(s) for *: 'NoneType' and 'float'", host::ErrorKind::type);
  if (value.as_text() || value.as_bytes() || value.as_list())
    throw host::Error("can't multiply sequence by non-int of type 'float'", host::ErrorKind::type);
  return value.to_float();
}

}  // namespace

std::vector<double> _smooth(const std::vector<double>& values, std::int64_t window) {
  if (values.empty() || window <= 0) return values;
  const std::size_t n = values.size();
  std::vector<double> out(n);
  const auto smooth_over = [&](auto w) { kernel::smooth(values.data(), 0, n, w, 0, n, out.data()); };
  if (window == kSpacingWindow) {
    smooth_over(kernel::SpacingWindow{});
  } else {
    // A window beyond the values is as good as one that just covers them.
    smooth_over(std::min(static_cast<std::uint64_t>(window), std::uint64_t{n}));
  }
  return out;
}

double _spacing_baseline(const host::Value& ref) { return ref.truthy() ? number(ref.item(0)) : 0.0; }

std::pair<std::vector<double>, host::Value> _t_from_spacing(const std::vector<double>& dists, const host::Value& ref) {
  if (dists.empty()) return {{}, ref.truthy() ? ref : host::Value::list({0.0})};
  host::Value reference = ref;
  if (reference.is_none()) {
    kernel::Baseline baseline;
    for (std::size_t i = 0; i < dists.size(); i += kernel::kBaselineStep)
      kernel::add(baseline, dists.data() + i, std::min(dists.size() - i, kernel::kBaselineStep));
    reference = host::Value::list({baseline.mean()});
  }
  std::vector<double> t(dists.size());
  kernel::parameters(dists.data(), dists.size(), _spacing_baseline(reference) * _SPACING_RED_MULT, t.data());
  return {std::move(t), reference};
}

_bisect_indices::_bisect_indices(std::int64_t n) : n_(n) {}

std::optional<std::int64_t> _bisect_indices::next() {
  if (ends_given_ < 2) {
    // 0, and n - 1 where that is another one.
    if (ends_given_ >= n_) return std::nullopt;
    return ends_given_++ == 0 ? 0 : n_ - 1;
  }
  const auto last = static_cast<std::uint64_t>(n_ - 1);
  while (std::uint64_t{1} << level_ <
         last) {  // while some span of this level is at least 2 wide, and so has a midpoint
    const std::uint64_t begin = begin_;
    const std::uint64_t width = (last + number_reversed_) >> level_;
    step(width);
    if (width > 1) return static_cast<std::int64_t>(begin + width / 2);
  }
  return std::nullopt;
}

void _bisect_indices::step(std::uint64_t width) {
  begin_ += width;
  // Adds 1 to j, whose bits are in reverse order: the carry runs from the highest bit down.
  std::uint64_t bit = (std::uint64_t{1} << level_) >> 1;
  for (; (number_reversed_ & bit) != 0; bit >>= 1) number_reversed_ ^= bit;
  number_reversed_ |= bit;
  if (bit != 0) return;
  ++level_;
  begin_ = 0;
}

}  // namespace vantorelix
