#include "cli/output/svg/svg_colors.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "engine/colour/colour.h"
#include "engine/state/constants.h"

namespace vantorelix::cli {

namespace {

// Steps of a colour channel. Speeds change from sample to sample: coarser than the eye can tell apart in a thin line,
// so that neighbours share a path.
constexpr int kSpeedLevels = 51, kAllLevels = 255;

// The page has the same (viewer/src/model/colors.ts).
constexpr std::array<Vector, 8> kObjects = {{{0xe6 / 255.0, 0x9f / 255.0, 0x00 / 255.0},
                                             {0x56 / 255.0, 0xb4 / 255.0, 0xe9 / 255.0},
                                             {0x00 / 255.0, 0x9e / 255.0, 0x73 / 255.0},
                                             {0xcc / 255.0, 0x79 / 255.0, 0xa7 / 255.0},
                                             {0xd5 / 255.0, 0x5e / 255.0, 0x00 / 255.0},
                                             {0x00 / 255.0, 0x72 / 255.0, 0xb2 / 255.0},
                                             {0xb8 / 255.0, 0xa9 / 255.0, 0x10 / 255.0},
                                             {0x8a / 255.0, 0x6f / 255.0, 0xd1 / 255.0}}};
constexpr std::array<RampStop, 6> kSafeRamp = {{{0.0, {0.13, 0.17, 0.56}},
                                                {0.25, {0.27, 0.34, 0.6}},
                                                {0.5, {0.5, 0.5, 0.52}},
                                                {0.7, {0.73, 0.66, 0.42}},
                                                {0.85, {0.89, 0.8, 0.3}},
                                                {1.0, {1.0, 0.93, 0.2}}}};
// The engine's generator of these asks its host for the current time, and a picture is made when no host is in force.
constexpr FlowColors kFlowColors = {{1.0, 0.75, 0.0}, {0.0, 0.65, 0.65}};
constexpr FlowColors kSafeFlow = {{0.9, 0.6, 0.0}, {0.0, 0.45, 0.7}};
constexpr BeatColors kSafeBeats = {{0.0, 0.45, 0.7}, {0.95, 0.9, 0.25}};

Vector safe_ramp(double t) {
  const double c = std::clamp(t, 0.0, 1.0);
  std::size_t i = 0;
  while (i + 2 < kSafeRamp.size() && c > kSafeRamp[i + 1].t) ++i;
  const RampStop &a = kSafeRamp[i], &b = kSafeRamp[i + 1];
  const double u = (c - a.t) / (b.t - a.t);
  return {a.colour.x + (b.colour.x - a.colour.x) * u, a.colour.y + (b.colour.y - a.colour.y) * u,
          a.colour.z + (b.colour.z - a.colour.z) * u};
}

// Where on the engine's ramp a colour lies: its stretches differ, so each colour has one place.
double ramp_position(const Vector& c) {
  if (c.z > 0.0 && c.x == 0.0) return c.y < 1.0 ? 0.25 * c.y : 0.25 + 0.25 * (1.0 - c.z);  // blue, cyan, green
  if (c.y == 1.0) return 0.5 + 0.2 * c.x;                                                  // green to yellow
  return c.y >= 0.5 ? 0.7 + 0.3 * (1.0 - c.y) : 0.85 + 0.3 * (0.5 - c.y);                  // yellow, orange, red
}

Vectors shared(std::vector<Vector> colors) { return std::make_shared<const std::vector<Vector>>(std::move(colors)); }

std::vector<Vector> flow(const session::TrailView& trail, double current, const FlowColors& colors) {
  const double step = trail.frame_step > 1e-9 ? trail.frame_step : 1.0;
  const double now = (current - trail.start_frame) / step;
  std::vector<Vector> result(trail.points->size(), colors.future);
  for (std::size_t i = 0; i < result.size() && static_cast<double>(i) <= now; ++i) result[i] = colors.past;
  return result;
}

std::vector<Vector> beats(const session::TrailView& trail, const Coloring& coloring) {
  const host::Value n(static_cast<std::int64_t>(trail.points->size()));
  std::vector<Vector> result = compute_beats_colors(n, trail.start_frame, trail.frame_step, trail.key_times);
  const Vector odd = beat_colors({}).odd;
  const BeatColors colors = beat_colors(coloring);
  for (Vector& color : result) color = color == odd ? colors.odd : colors.even;
  return result;
}

std::vector<Vector> safe_spacing(std::vector<Vector> colors) {
  for (Vector& color : colors) color = safe_ramp(ramp_position(color));
  return colors;
}

}  // namespace

Vector object_color(std::size_t index) { return kObjects[index % kObjects.size()]; }

FlowColors flow_colors(const Coloring& coloring) { return coloring.safe ? kSafeFlow : kFlowColors; }

BeatColors beat_colors(const Coloring& coloring) {
  if (coloring.safe) return kSafeBeats;
  const auto colors = compute_beats_colors(2, 0.0, 1.0, {1.0});  // before a key and after it
  return {colors.back(), colors.front()};
}

Vector speed_color(double t, const Coloring& coloring) { return coloring.safe ? safe_ramp(t) : _color_ramp(t); }

Look look_of(const session::TrailReport& report, std::size_t index, const Coloring& coloring, bool lit) {
  const session::TrailView& trail = report.trails[index];
  const std::size_t n = trail.points->size();
  if (coloring.by_object) return {shared(std::vector<Vector>(n, object_color(index))), kAllLevels, lit};
  switch (trail.color_mode) {
    case kSpacing:
      return {coloring.safe ? shared(safe_spacing(*trail.colors)) : trail.colors, kSpeedLevels, lit};
    case kFlow:
      return {shared(flow(trail, report.current, flow_colors(coloring))), kAllLevels, lit};
    case kBeats:
      return {shared(beats(trail, coloring)), kAllLevels, lit};
    default:
      return {shared(compute_standard_colors(static_cast<std::int64_t>(n))), kAllLevels, lit};
  }
}

}  // namespace vantorelix::cli
