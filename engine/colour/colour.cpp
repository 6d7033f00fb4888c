#include "engine/colour/colour.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "engine/frame/attempt.h"
#include "engine/frame/constants.h"
#include "engine/sampling/spacing.h"
#include "engine/sampling/spacing_kernel.h"
#include "host/error.h"

namespace vantorelix {

namespace {

constexpr Colour kStandard = {0.15, 0.75, 0.65};
constexpr Colour kPast = {1.0, 0.75, 0.0};
constexpr Colour kFuture = {0.0, 0.65, 0.65};
constexpr Colour kOddBeat = {0.15, 0.85, 0.25};
constexpr Colour kEvenBeat = {1.0, 1.0, 1.0};

// --- the ramp --------------------------------------------------------------------------------------------------

// One piece of the ramp: from `colour` at t0, by `change` over `length`.
struct RampSegment {
  double t0, length;
  Colour colour, change;
};
using RampSegments = std::array<RampSegment, _RAMP_STOPS.size() - 1>;

constexpr RampSegments ramp_segments() {
  RampSegments segments{};
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const RampStop& a = _RAMP_STOPS[i];
    const RampStop& b = _RAMP_STOPS[i + 1];
    segments[i] = {
        a.t, b.t - a.t, a.colour, {b.colour.x - a.colour.x, b.colour.y - a.colour.y, b.colour.z - a.colour.z}};
  }
  return segments;
}
constexpr RampSegments kSegments = ramp_segments();

// For t in 0..1. A t on a stop belongs to the segment below it; the segment is counted, not searched, so that no
// branch depends on the data.
inline Colour ramp(double t) {
  std::size_t k = 0;
  for (std::size_t i = 1; i < kSegments.size(); ++i) k += t > kSegments[i].t0 ? 1 : 0;
  const RampSegment& s = kSegments[k];
  const double u = (t - s.t0) / s.length;
  return {s.colour.x + s.change.x * u, s.colour.y + s.change.y * u, s.colour.z + s.change.z * u};
}

// --- the spacing mode, block by block --------------------------------------------------------------------------

constexpr std::size_t kBlock = 128;  // segments worked on at a time: what they need stays in the nearest cache
constexpr std::size_t kWindow = static_cast<std::size_t>(kSpacingWindow);

// Lengths of the segments after positions first ... last - 1.
void segment_lengths(const Position* pos, std::size_t first, std::size_t last, double* out) {
  for (std::size_t i = first; i < last; ++i) {
    const double dx = pos[i + 1].x - pos[i].x;
    const double dy = pos[i + 1].y - pos[i].y;
    const double dz = pos[i + 1].z - pos[i].z;
    out[i - first] = std::sqrt(dx * dx + dy * dy + dz * dz);
  }
}

// The smoothed segment lengths of a whole trail, one less than positions, and their baseline where one is wanted.
std::unique_ptr<double[]> smoothed_lengths(const std::vector<Position>& pos, kernel::Baseline* baseline) {
  const std::size_t n = pos.size() - 1;
  std::unique_ptr<double[]> smoothed(new double[n]);  // a vector would write it all once more, with zeros
  std::array<double, kBlock + 2 * kWindow> lengths;
  for (std::size_t first = 0; first < n; first += kBlock) {
    const std::size_t last = std::min(first + kBlock, n);
    const std::size_t base = first - std::min(first, kWindow);
    segment_lengths(pos.data(), base, std::min(last + kWindow, n), lengths.data());
    kernel::smooth(lengths.data(), base, n, SpacingWindow{}, first, last, smoothed.get() + first);
    if (baseline) baseline->add(smoothed.get() + first, last - first);
  }
  return smoothed;
}

// One colour a point from the parameters of the n segments on its two sides; an end has one side only.
std::vector<Colour> point_colours(const double* lengths, std::size_t n, double scale) {
  std::vector<Colour> colours(n + 1);
  std::array<double, kBlock + 1> t;  // t[0] is the last of the block before; the first segment stands in before itself
  kernel::parameters(lengths, 1, scale, t.data());
  for (std::size_t first = 0; first < n; first += kBlock) {
    const std::size_t count = std::min(kBlock, n - first);
    kernel::parameters(lengths + first, count, scale, t.data() + 1);
    for (std::size_t i = 0; i < count; ++i) colours[first + i] = ramp(0.5 * (t[i] + t[i + 1]));
    t[0] = t[count];
  }
  colours[n] = ramp(t[0]);
  return colours;
}

}  // namespace

Colour _color_ramp(double t) { return ramp(kernel::clamp_unit(t)); }

std::pair<std::vector<Colour>, host::Value> _colors_from_positions(const std::vector<Position>& pos,
                                                                   const host::Value& ref) {
  if (pos.empty()) return {{}, _t_from_spacing({}, ref).second};
  if (pos.size() == 1) throw host::Error("list index out of range", host::ErrorKind::index);
  kernel::Baseline baseline;
  const auto lengths = smoothed_lengths(pos, ref.is_none() ? &baseline : nullptr);
  const host::Value reference = ref.is_none() ? host::Value::list({baseline.mean()}) : ref;
  return {point_colours(lengths.get(), pos.size() - 1, _spacing_baseline(reference) * _SPACING_RED_MULT), reference};
}

// --- the modes that count indices ------------------------------------------------------------------------------

namespace {

std::vector<Colour> repeated(const host::Value& n, const Colour& colour) {
  return std::vector<Colour>(static_cast<std::size_t>(std::max<std::int64_t>(0, n.to_int())), colour);
}

double step_or_one(double frame_step) { return frame_step > 1e-9 ? frame_step : 1.0; }

}  // namespace

std::vector<Colour> compute_standard_colors(const host::Value& n) { return repeated(n, kStandard); }

std::vector<Colour> compute_temperature_colors(const host::Value& n, double start_frame, double frame_step) {
  double current_frame = start_frame;
  attempt([&] { current_frame = oma->currentTime(); });
  const double current_idx = (current_frame - start_frame) / step_or_one(frame_step);
  std::vector<Colour> colours = repeated(n, kFuture);
  for (std::size_t i = 0; i < colours.size() && static_cast<double>(i) <= current_idx; ++i) colours[i] = kPast;
  return colours;
}

std::vector<Colour> compute_beats_colors(const host::Value& n, double start_frame, double frame_step,
                                         const std::vector<double>& key_times) {
  std::vector<Colour> colours = repeated(n, kEvenBeat);
  std::vector<double> kt = key_times;
  std::sort(kt.begin(), kt.end());
  const double step = step_or_one(frame_step);
  for (std::size_t i = 0; i < colours.size(); ++i) {
    const double frame = start_frame + static_cast<double>(i) * step;
    const auto keys_before = std::upper_bound(kt.begin(), kt.end(), frame) - kt.begin();
    if (keys_before % 2 == 1) colours[i] = kOddBeat;
  }
  return colours;
}

}  // namespace vantorelix
