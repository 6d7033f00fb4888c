#include "engine/sampling/catmull_rom.h"

#include <algorithm>
#include <cstring>

#include "engine/sampling/limits.h"
#include "host/error.h"

namespace vantorelix {

namespace {

[[noreturn]] void too_many() { throw host::Error("too many samples", host::ErrorKind::overflow); }

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

// out[j] for the indices j strictly between i1 and i2, as far as they lie below `end`.
void fill_gap(const Span& span, std::int64_t i1, std::int64_t i2, std::int64_t end, Position* out) {
  const double length = static_cast<double>(i2 - i1);
  // Counted in 32 bits, which a gap always fits: processors turn those into doubles several at a time.
  const auto count = static_cast<std::int32_t>(std::min(i2, end) - i1);
  for (std::int32_t b = 1; b < count; ++b) out[i1 + b] = span(static_cast<double>(b) / length);
}

}  // namespace

SampleMap::SampleMap(std::int64_t expected) {
  positions_.reserve(reservation(expected));
  present_.reserve(reservation(expected));
}

void SampleMap::set(std::int64_t index, const Position& position) {
  if (index < 0 || index >= kMostSamples) too_many();
  const auto at = static_cast<std::size_t>(index);
  if (at >= positions_.size()) {
    positions_.resize(at + 1);
    present_.resize(at + 1, 0);
  }
  if (!present_[at]) ++count_;
  present_[at] = 1;
  positions_[at] = position;
}

bool SampleMap::contains(std::int64_t index) const {
  return index >= 0 && static_cast<std::size_t>(index) < present_.size() &&
         present_[static_cast<std::size_t>(index)] != 0;
}

std::vector<std::int64_t> SampleMap::indices() const {
  std::vector<std::int64_t> held;
  held.reserve(count_);
  const unsigned char* const begin = present_.data();
  const unsigned char* const end = begin + present_.size();
  for (const unsigned char* at = begin; held.size() < count_; ++at) {
    at = static_cast<const unsigned char*>(std::memchr(at, 1, static_cast<std::size_t>(end - at)));
    held.push_back(at - begin);
  }
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
  if (n > kMostSamples) too_many();
  out.assign(static_cast<std::size_t>(n), pt(0));  // what lies before the first sample holds it
  for (std::size_t k = 0; k < last && idxs[k] < n; ++k) {
    out[static_cast<std::size_t>(idxs[k])] = pt(k);
    if (idxs[k + 1] - idxs[k] < 2) continue;
    fill_gap(Span(pt(k > 0 ? k - 1 : 0), pt(k), pt(k + 1), pt(std::min(k + 2, last))), idxs[k], idxs[k + 1], n,
             out.data());
  }
  if (idxs[last] < n) std::fill(out.begin() + idxs[last], out.end(), pt(last));
  return out;
}

}  // namespace vantorelix
