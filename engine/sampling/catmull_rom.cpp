#include "engine/sampling/catmull_rom.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "base/large_pages.h"
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
  Position operator()(double u, double u2, double u3) const { return {x(u, u2, u3), y(u, u2, u3), z(u, u2, u3)}; }
};

constexpr std::size_t kBlock = 128;  // positions made at a time: few enough for the nearest cache

// u, u^2 and u^3 at the steps of a gap. They depend on the gap's length alone, and most gaps are as long as the one
// before them, so they are worked out again only when the length changes. Made anew for each gap, filling 10,000
// positions from 100 takes 1.35 times as long (build/bin/vantorelix_bench --benchmark_filter=fill, without the first
// line of turn_to, in turns).
class Steps {
 public:
  // Turns to `count` steps, at most kBlock, from the step `first` on; a gap has `length` of them.
  void turn_to(std::int64_t length, std::int64_t first, std::size_t count) {
    if (length == length_ && first == first_ && count == count_) return;
    length_ = length;
    first_ = first;
    count_ = count;
    // Counted in 32 bits, which a gap always fits: processors turn those into doubles several at a time.
    const auto begin = static_cast<std::int32_t>(first);
    const auto some = static_cast<std::int32_t>(count);
    for (std::int32_t i = 0; i < some; ++i) {
      const double u = static_cast<double>(begin + i) / static_cast<double>(length);
      u_[i] = u;
      u2_[i] = u * u;
      u3_[i] = u * u * u;
    }
  }
  Position along(const Span& span, std::size_t i) const { return span(u_[i], u2_[i], u3_[i]); }

 private:
  std::int64_t length_ = 0, first_ = 0;
  std::size_t count_ = 0;
  std::array<double, kBlock> u_, u2_, u3_;
};

// Puts the positions at the first `count` steps into a gap to `out`.
void fill_gap(const Span& span, std::int64_t length, std::int64_t count, Steps& steps, Position* out) {
  std::array<Position, kBlock> block;
  for (std::int64_t done = 0; done < count; done += kBlock) {
    const std::size_t some = std::min(kBlock, static_cast<std::size_t>(count - done));
    steps.turn_to(length, done + 1, some);
    for (std::size_t i = 0; i < some; ++i) block[i] = steps.along(span, i);
    std::copy_n(block.data(), some, out + done);
  }
}

}  // namespace

SampleMap::SampleMap(std::int64_t expected) {
  reserve(positions_, reservation(expected));
  present_.reserve(reservation(expected));
}

void SampleMap::set(std::int64_t index, const Position& position) {
  if (index < 0 || index >= kMaxSamples) throw too_many_samples();
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
  return Span(p0, p1, p2, p3)(u, u * u, u * u * u);
}

std::vector<Position> _smooth_fill(std::int64_t n_total, SampleMap sampled) {
  const std::vector<std::int64_t> idxs = sampled.indices();
  if (idxs.empty()) return {};
  if (idxs.size() == 1) return {sampled.at(idxs[0])};
  std::vector<Position> out = sampled.take();
  const auto pt = [&](std::size_t k) { return out[static_cast<std::size_t>(idxs[k])]; };
  const std::size_t last = idxs.size() - 1;
  const std::int64_t n = std::max<std::int64_t>(n_total, 0);
  if (n > kMaxSamples) throw too_many_samples();
  std::fill_n(out.begin(), idxs[0], pt(0));  // what lies before the first sample holds it
  Steps steps;
  for (std::size_t k = 0; k < last && idxs[k] < n; ++k) {
    const std::int64_t length = idxs[k + 1] - idxs[k];
    if (length < 2) continue;
    fill_gap(Span(pt(k > 0 ? k - 1 : 0), pt(k), pt(k + 1), pt(std::min(k + 2, last))), length,
             std::min(idxs[k + 1], n) - idxs[k] - 1, steps, &out[static_cast<std::size_t>(idxs[k]) + 1]);
  }
  out.resize(static_cast<std::size_t>(n), pt(last));
  return out;
}

}  // namespace vantorelix
