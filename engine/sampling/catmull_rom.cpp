#include "engine/sampling/catmull_rom.h"

#include <algorithm>
#include <array>

#include "engine/sampling/limits.h"
#include "host/error.h"

namespace vantorelix {

namespace {

// One component of a span as a polynomial in u, its terms summed in this order.
struct Cubic {
  double constant, first, second, third;

  Cubic(double p0, double p1, double p2, double p3)
      : constant(2.0 * p1),
        first(-p0 + p2),
        second(2.0 * p0 - 5.0 * p1 + 4.0 * p2 - p3),
        third(-p0 + 3.0 * p1 - 3.0 * p2 + p3) {}
  double operator()(double u, double u2, double u3) const {
    return 0.5 * (constant + first * u + second * u2 + third * u3);
  }
};

struct Span {
  Cubic x, y, z;

  Span(const Position& p0, const Position& p1, const Position& p2, const Position& p3)
      : x(p0.x, p1.x, p2.x, p3.x), y(p0.y, p1.y, p2.y, p3.y), z(p0.z, p1.z, p2.z, p3.z) {}
  Position operator()(double u) const {
    const double u2 = u * u;
    const double u3 = u2 * u;
    return {x(u, u2, u3), y(u, u2, u3), z(u, u2, u3)};
  }
};

// Appends the positions strictly between indices i1 and i2, as far as they lie below `end`.
void fill_gap(const Span& span, std::int64_t i1, std::int64_t i2, std::int64_t end, std::vector<Position>& out) {
  const double length = static_cast<double>(i2 - i1);
  std::array<Position, 256> block;
  for (std::int64_t j = i1 + 1; j < std::min(i2, end);) {
    const std::int64_t count = std::min<std::int64_t>(std::min(i2, end) - j, block.size());
    for (std::int64_t b = 0; b < count; ++b)
      block[static_cast<std::size_t>(b)] = span(static_cast<double>(j - i1 + b) / length);
    out.insert(out.end(), block.begin(), block.begin() + count);
    j += count;
  }
}

}  // namespace

SampleMap::SampleMap(std::int64_t expected) {
  positions_.reserve(reservation(expected));
  present_.reserve(reservation(expected));
}

void SampleMap::set(std::int64_t index, const Position& position) {
  if (index < 0 || index >= kMostSamples) throw host::Error("too many samples", host::ErrorKind::overflow);
  const auto at = static_cast<std::size_t>(index);
  if (at >= positions_.size()) {
    positions_.resize(at + 1);
    present_.resize(at + 1, false);
  }
  if (!present_[at]) ++count_;
  present_[at] = true;
  positions_[at] = position;
}

bool SampleMap::contains(std::int64_t index) const {
  return index >= 0 && static_cast<std::size_t>(index) < present_.size() && present_[static_cast<std::size_t>(index)];
}

std::vector<std::int64_t> SampleMap::indices() const {
  std::vector<std::int64_t> held;
  held.reserve(count_);
  for (std::size_t i = 0; i < present_.size(); ++i)
    if (present_[i]) held.push_back(static_cast<std::int64_t>(i));
  return held;
}

Position _catmull_point(const Position& p0, const Position& p1, const Position& p2, const Position& p3, double u) {
  return Span(p0, p1, p2, p3)(u);
}

std::vector<Position> _smooth_fill(std::int64_t n_total, const SampleMap& sampled) {
  const std::vector<std::int64_t> idxs = sampled.indices();
  std::vector<Position> out;
  if (idxs.size() < 2) {
    for (const std::int64_t index : idxs) out.push_back(sampled.at(index));
    return out;
  }
  const auto pt = [&](std::size_t k) -> const Position& { return sampled.at(idxs[k]); };
  const std::size_t last = idxs.size() - 1;
  const std::int64_t n = std::max<std::int64_t>(n_total, 0);
  out.reserve(reservation(n));
  out.insert(out.end(), static_cast<std::size_t>(std::min(idxs[0], n)), pt(0));
  for (std::size_t k = 0; k < last && idxs[k] < n; ++k) {
    out.push_back(pt(k));
    if (idxs[k + 1] - idxs[k] < 2) continue;
    fill_gap(Span(pt(k > 0 ? k - 1 : 0), pt(k), pt(k + 1), pt(std::min(k + 2, last))), idxs[k], idxs[k + 1], n, out);
  }
  if (static_cast<std::size_t>(n) > out.size())
    out.insert(out.end(), static_cast<std::size_t>(n) - out.size(), pt(last));
  return out;
}

}  // namespace vantorelix
