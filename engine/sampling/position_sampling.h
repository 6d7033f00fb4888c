// From an animated object to its world positions and key times. Times are frames of the host's UI time unit.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "engine/state/state.h"

namespace vantorelix {

// Maps a time to a Position. Throws when its object cannot be evaluated.
class Sampler {
 public:
  virtual ~Sampler() = default;
  virtual Position operator()(double t) = 0;
  // The times that it will be called with next, as host::Plug::expect. May be left out, and may be wrong.
  virtual void expect(std::span<const double> /*times*/) {}
};
using SamplerPtr = std::shared_ptr<Sampler>;

// How many coming times a sampler is told at once. More gains little, and what the host has worked out ahead is lost
// where a deadline ends the sampling first.
inline constexpr std::size_t kExpectedAtOnce = 64;

// Samples `times` (a vector or SampleTimes) in ascending order of index, beginning anywhere, and announces the coming
// ones to the sampler. Sampler and times must outlive it.
template <class Times>
class OrderedSampler {
 public:
  OrderedSampler(Sampler& sampler, const Times& times) : sampler_(sampler), times_(times) {}

  // i < times.size()
  Position at(std::size_t i) {
    if (i >= told_) tell(i);
    return sampler_(times_[i]);
  }

 private:
  void tell(std::size_t first) {
    std::array<double, kExpectedAtOnce> coming;
    const std::size_t count = std::min(coming.size(), times_.size() - first);
    for (std::size_t i = 0; i < count; ++i) coming[i] = times_[first + i];
    told_ = first + count;
    sampler_.expect({coming.data(), count});
  }

  Sampler& sampler_;
  const Times& times_;
  std::size_t told_ = 0;  // times before this one need no further hint
};

// The exact, slow query: the translation row of the world matrix, through the command layer.
Position _world_pos_at(const std::string& obj, double t);

// The fast sampler, which evaluates the object's world-matrix plug in a time context; null when anything about it
// fails, or when it differs from the slow query at the current time by more than 0.0001 in all.
SamplerPtr _make_fast_sampler(const std::string& obj);

// A sampler that asks _world_pos_at for `obj`.
SamplerPtr _make_slow_sampler(const std::string& obj);

// Number of samples from start to end inclusive: (end - start) / step rounded to the nearest integer, halves to
// even, plus 1; zero or negative for a reversed range. Throws host::Error: zero_division for a step of 0, value for
// NaN, overflow beyond kMaxSamples.
std::int64_t _sample_count(double start, double end, double step);

// Positions at start + i * step. Without a sampler: the fast one, else the slow one.
std::vector<Position> _sample_positions(const std::string& obj, double start, double end, double step,
                                        SamplerPtr sampler = nullptr);

// The object's key times within [start, end], widened by 1e-6 on both sides, ascending, exact duplicates merged.
std::vector<double> _keyframe_times(const std::string& obj, double start, double end);

// One position per time, in the order given.
std::vector<Position> _sample_at_times(const std::string& obj, const std::vector<double>& times,
                                       SamplerPtr sampler = nullptr);

}  // namespace vantorelix
