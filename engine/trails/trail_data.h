// One trail's complete data in one blocking call.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/vector.h"
#include "engine/sampling/position_sampling.h"

namespace vantorelix {

// What the viz node is given: colours one per position, key colours one per key position.
struct VizData {
  Vectors positions;
  Vectors colors;
  Vectors key_positions;
  Vectors key_colors;
};

struct TrailData {
  VizData viz;
  std::vector<double> key_times;  // frames, ascending
};

// White, once for each of n keys.
Vectors _key_colors(std::size_t n);

// Samples per frame as a whole number of at least 1, from any number by truncation.
std::int64_t _samples_per_frame(const host::Value& samples_per_frame);

// Samples `obj` over the playback range. Nothing when there are fewer than two positions. The second value is the
// spacing reference that the colours were measured against. Catches nothing.
std::optional<std::pair<TrailData, host::Value>> _compute_trail_data(const std::string& obj,
                                                                     const host::Value& samples_per_frame,
                                                                     const host::Value& ref = {},
                                                                     SamplerPtr sampler = nullptr);

}  // namespace vantorelix
