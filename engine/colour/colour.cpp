#include "engine/colour/colour.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

#include "base/large_pages.h"
#include "engine/colour/lanes.h"
#include "engine/sampling/limits.h"
#include "engine/sampling/spacing.h"
#include "engine/sampling/spacing_kernel.h"
#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "host/error.h"

namespace vantorelix {

namespace {

constexpr Colour kStandard = {0.15, 0.75, 0.65};
constexpr Colour kPast = {1.0, 0.75, 0.0};
constexpr Colour kFuture = {0.0, 0.65, 0.65};
constexpr Colour kOddBeat = {0.15, 0.85, 0.25};
constexpr Colour kEvenBeat = {1.0, 1.0, 1.0};

static_assert(sizeof(Position) == 3 * sizeof(double) && sizeof(Colour) == 3 * sizeof(double), "arrays of x y z x y z");
constexpr std::size_t kWindow = static_cast<std::size_t>(kSpacingWindow);

// The smoothed segment lengths of a trail, one fewer than positions; adds them to `baseline` unless it is null.
std::unique_ptr<double[]> smoothed_lengths(const Lanes& lanes, const std::vector<Position>& pos,
                                           kernel::Baseline* baseline) {
  const std::size_t n = pos.size() - 1;
  std::unique_ptr<double[]> smoothed(new double[n]);  // a vector would write it all once more, with zeros
  advise_large_pages(smoothed.get(), n * sizeof(double));
  constexpr std::size_t kAround = 2 * kWindow;
  // The elements first ... last - 1, whose windows reach beyond an end of the trail, from the lengths from `base` on.
  const auto smooth_end = [&](std::size_t base, std::size_t first, std::size_t last) {
    std::array<double, kAround> lengths;
    lanes.lengths(&pos[base].x, std::min(n, kAround), lengths.data());
    kernel::smooth(lengths.data(), base, n, kernel::SpacingWindow{}, first, last, smoothed.get() + first);
    if (baseline) kernel::add(*baseline, smoothed.get() + first, last - first);
  };
  if (n <= kAround) {
    smooth_end(0, 0, n);
  } else {
    smooth_end(0, 0, kWindow);
    lanes.smoothed(&pos[0].x, n - kAround, smoothed.get() + kWindow, baseline);
    smooth_end(n - kAround, n - kWindow, n);
  }
  return smoothed;
}

// A colour for each of n + 1 points, from the mean parameter of the segments on its two sides; an end point has one.
std::vector<Colour> point_colours(const Lanes& lanes, const double* lengths, std::size_t n, double scale) {
  std::vector<Colour> colours;
  reserve(colours, n + 1);  // and appended to: written once, not first with zeros
  alignas(64) std::array<Colour, kLaneBlock> block;
  alignas(64) std::array<double, kLaneBlock + 1>
      t;  // t[0] is the last parameter of the block before; at the start, that of the first segment
  lanes.parameters(lengths, 1, scale, t.data());
  for (std::size_t first = 0; first < n; first += kLaneBlock) {
    const std::size_t count = std::min(kLaneBlock, n - first);
    lanes.parameters(lengths + first, count, scale, t.data() + 1);
    lanes.ramp(t.data(), count, &block[0].x);
    colours.insert(colours.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
    t[0] = t[count];
  }
  colours.push_back(_color_ramp(t[0]));
  return colours;
}

}  // namespace

Colour _color_ramp(double t) {
  const double unit = kernel::clamp_unit(t);
  const double both[] = {unit, unit};
  Colour colour;
  lane_widths().here.front()->ramp(both, 1, &colour.x);
  return colour;
}

std::pair<std::vector<Colour>, host::Value> _colors_from_positions(const std::vector<Position>& pos,
                                                                   const host::Value& ref) {
  if (pos.empty()) return {{}, _t_from_spacing({}, ref).second};
  if (pos.size() == 1) throw host::Error("list index out of range", host::ErrorKind::index);
  const Lanes& lanes = *lane_widths().here.back();
  // Reading a reference may run the host's code, and that may append to the positions: it comes before they are
  // counted.
  const std::optional<double> given = ref.is_none() ? std::nullopt : std::optional(_spacing_baseline(ref));
  kernel::Baseline baseline;
  const auto lengths = smoothed_lengths(lanes, pos, given ? nullptr : &baseline);
  const double reference = given ? *given : baseline.mean();
  return {point_colours(lanes, lengths.get(), pos.size() - 1, reference * _SPACING_RED_MULT),
          given ? ref : host::Value::list({reference})};
}

// --- the modes that count indices ------------------------------------------------------------------------------

namespace {

std::vector<Colour> repeated(const host::Value& n, const Colour& colour) {
  const std::int64_t count = std::max<std::int64_t>(0, n.to_int());
  if (count > kMaxSamples) throw too_many_samples();
  return std::vector<Colour>(static_cast<std::size_t>(count), colour);
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
