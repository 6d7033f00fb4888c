// From an animated object to its world positions and key times. Times are frames of the host's UI time unit.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/state/state.h"

namespace vantorelix {

// Maps a time to a Position. Throws when its object cannot be evaluated.
class Sampler {
 public:
  virtual ~Sampler() = default;
  virtual Position operator()(double t) = 0;
};
using SamplerPtr = std::shared_ptr<Sampler>;

// The exact, slow query: the translation row of the world matrix, through the command layer.
Position _world_pos_at(const std::string& obj, double t);

// The fast sampler, which evaluates the object's world-matrix plug in a time context; null when anything about it
// fails, or when it differs from the slow query at the current time by more than 0.0001 in all.
SamplerPtr _make_fast_sampler(const std::string& obj);

// A sampler that asks _world_pos_at for `obj`.
SamplerPtr _make_slow_sampler(const std::string& obj);

// Number of samples from start to end inclusive: (end - start) / step rounded to the nearest integer, halves to
// even, plus 1; zero or negative for a reversed range. Throws host::Error: zero_division for a step of 0, value for
// NaN, overflow beyond kMostSamples.
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
