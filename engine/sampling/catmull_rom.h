// A smooth curve through the few samples taken so far, at every index.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/state/state.h"

namespace vantorelix {

// The samples taken so far: index -> position, stored densely so that a complete map becomes the trail itself.
class SampleMap {
 public:
  explicit SampleMap(std::int64_t expected = 0);
  void set(std::int64_t index, const Position& position);  // index >= 0; grows as needed
  bool contains(std::int64_t index) const;
  std::size_t size() const { return count_; }
  const Position& at(std::int64_t index) const { return positions_[static_cast<std::size_t>(index)]; }
  // The indices held, ascending.
  std::vector<std::int64_t> indices() const;
  // The dense positions, moved out: what lies in a gap means nothing.
  std::vector<Position> take() { return std::move(positions_); }

 private:
  std::vector<Position> positions_;
  // 0 or 1, found by memchr: looked at one by one, filling 10,000 from 100 takes 1.17 times as long
  // (build/bin/vantorelix_bench --benchmark_filter=fill, in turns).
  std::vector<unsigned char> present_;
  std::size_t count_ = 0;
};

// Uniform Catmull-Rom between p1 (u = 0) and p2 (u = 1), tangents (p2 - p0) / 2 and (p3 - p1) / 2.
Position _catmull_point(const Position& p0, const Position& p1, const Position& p2, const Position& p3, double u);

// n_total positions: sampled ones exactly, gaps by the spline, the ends held. Fewer than two samples come back as
// they are, unpadded. The result is the memory of the samples, filled where it is.
std::vector<Position> _smooth_fill(std::int64_t n_total, SampleMap sampled);

}  // namespace vantorelix
