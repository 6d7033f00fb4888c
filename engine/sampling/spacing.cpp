#include "engine/sampling/spacing.h"

#include <algorithm>
#include <string>

#include "engine/frame/constants.h"
#include "engine/sampling/spacing_kernel.h"
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
    smooth_over(SpacingWindow{});
  } else {
    // A window beyond the values is as good as one that just covers them.
    smooth_over(std::min(static_cast<std::uint64_t>(window), std::uint64_t{n}));
  }
  return out;
}

double _spacing_baseline(const host::Value& ref) {
  if (!ref.truthy()) return 0.0;
  if (!ref.as_list())
    throw host::Error("'" + std::string(ref.type_name()) + "' object is not subscriptable", host::ErrorKind::type);
  return number((*ref.as_list())->front());
}

std::pair<std::vector<double>, host::Value> _t_from_spacing(const std::vector<double>& dists, const host::Value& ref) {
  if (dists.empty()) return {{}, ref.truthy() ? ref : host::Value::list({0.0})};
  host::Value reference = ref;
  if (reference.is_none()) {
    kernel::Baseline baseline;
    baseline.add(dists.data(), dists.size());
    reference = host::Value::list({baseline.mean()});
  }
  std::vector<double> t(dists.size());
  kernel::parameters(dists.data(), dists.size(), _spacing_baseline(reference) * _SPACING_RED_MULT, t.data());
  return {std::move(t), reference};
}

_bisect_indices::_bisect_indices(std::int64_t n) : n_(n) {}

std::optional<std::int64_t> _bisect_indices::next() {
  // The ends come first: 0, and n - 1 where that is another one.
  if (ends_given_ < 2) {
    if (ends_given_ >= n_) return std::nullopt;
    if (ends_given_++ == 0) return 0;
    push(0, n_ - 1);
    return n_ - 1;
  }
  if (spans_.empty()) return std::nullopt;
  const auto [a, b] = spans_.front();
  spans_.pop_front();
  const std::int64_t m = a + (b - a) / 2;
  push(a, m);
  push(m, b);
  return m;
}

void _bisect_indices::push(std::int64_t a, std::int64_t b) {
  if (b - a > 1) spans_.emplace_back(a, b);
}

}  // namespace vantorelix
