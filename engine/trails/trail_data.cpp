#include "engine/trails/trail_data.h"

#include <algorithm>
#include <memory>

#include "engine/colour/colour.h"
#include "engine/state/state.h"

namespace vantorelix {

Vectors _key_colors(std::size_t n) { return std::make_shared<const std::vector<Colour>>(n, Colour{1.0, 1.0, 1.0}); }

std::int64_t _samples_per_frame(const host::Value& samples_per_frame) {
  return std::max<std::int64_t>(1, samples_per_frame.to_int());
}

std::optional<std::pair<TrailData, host::Value>> _compute_trail_data(const std::string& obj,
                                                                     const host::Value& samples_per_frame,
                                                                     const host::Value& ref, SamplerPtr sampler) {
  const double start = cmds->playbackOptions_min();
  const double end = cmds->playbackOptions_max();
  const double step = 1.0 / static_cast<double>(_samples_per_frame(samples_per_frame));
  if (!sampler) sampler = _make_fast_sampler(obj);
  auto pos = std::make_shared<const std::vector<Position>>(_sample_positions(obj, start, end, step, sampler));
  if (pos->size() < 2) return std::nullopt;

  auto [colors, used_ref] = _colors_from_positions(*pos, ref);
  TrailData data;
  data.key_times = _keyframe_times(obj, start, end);
  data.viz.positions = std::move(pos);
  data.viz.colors = std::make_shared<const std::vector<Colour>>(std::move(colors));
  data.viz.key_positions =
      std::make_shared<const std::vector<Position>>(_sample_at_times(obj, data.key_times, sampler));
  data.viz.key_colors = _key_colors(data.viz.key_positions->size());
  return std::pair{std::move(data), std::move(used_ref)};
}

}  // namespace vantorelix
