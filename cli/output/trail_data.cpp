#include "cli/output/trail_data.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <limits>

namespace vantorelix::cli {

namespace {

constexpr std::uint64_t kAlignment = 8;
constexpr std::uint64_t kPositionBytes = 12, kColorBytes = 3;
// The last whole number is twice this, so that half the extent over it is a step and nothing overflows on the way.
constexpr double kHalfOfSteps = 2147483647.0;

constexpr std::array<double Vector::*, 3> kAxes = {&Vector::x, &Vector::y, &Vector::z};

// Grows around what is finite.
struct Range {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void add(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
};

PositionScale scale_of(std::initializer_list<Vectors> positions) {
  std::array<Range, 3> box;
  for (const Vectors& points : positions)
    for (const Vector& p : *points)
      if (is_finite(p))
        for (std::size_t k = 0; k < 3; ++k) box[k].add(p.*kAxes[k]);
  PositionScale scale;
  for (std::size_t k = 0; k < 3; ++k) {
    if (!(box[k].low <= box[k].high)) continue;
    scale.low.*kAxes[k] = box[k].low;
    scale.step.*kAxes[k] = (box[k].high / 2.0 - box[k].low / 2.0) / kHalfOfSteps;
  }
  return scale;
}

std::uint32_t steps(double value, double low, double step) {
  if (step == 0.0) return 0;
  const double count = std::round((value / 2.0 - low / 2.0) / step * 2.0);
  return static_cast<std::uint32_t>(std::clamp(count, 0.0, 2.0 * kHalfOfSteps));
}

// Bit for bit, which zeros of either sign are not.
bool same(double a, double b) { return a == b && std::signbit(a) == std::signbit(b); }

bool is_on_sample(const session::TrailView& trail, double time, const Vector& key) {
  const double index = std::round((time - trail.start_frame) / trail.frame_step);
  if (!(index >= 0.0 && index < static_cast<double>(trail.points->size()))) return false;
  if (trail.start_frame + index * trail.frame_step != time) return false;
  const Vector& sample = (*trail.points)[static_cast<std::size_t>(index)];
  return same(key.x, sample.x) && same(key.y, sample.y) && same(key.z, sample.z);
}

TrailLayout lay_out(const session::TrailView& trail) {
  TrailLayout layout{scale_of({trail.points, trail.key_points}),
                     std::min(trail.key_times.size(), trail.key_points->size()), true};
  if (trail.compare) layout.compared = scale_of({trail.compare->points});
  for (std::size_t i = 0; layout.keys_on_samples && i < layout.keys; ++i)
    layout.keys_on_samples = is_on_sample(trail, trail.key_times[i], (*trail.key_points)[i]);
  return layout;
}

bool fits_float(double value) {
  return std::abs(value) <= std::numeric_limits<float>::max() &&
         static_cast<double>(static_cast<float>(value)) == value;
}

std::uint64_t aligned(std::uint64_t bytes) { return (bytes + kAlignment - 1) / kAlignment * kAlignment; }

void write_position(Base64& out, const PositionScale& scale, const Vector& p) {
  const bool finite = is_finite(p);
  for (const auto axis : kAxes) out.integer(finite ? steps(p.*axis, scale.low.*axis, scale.step.*axis) : kNoPosition);
}

void write_color(Base64& out, const Vector& color) {
  for (const auto channel : kAxes) {
    const double value = color.*channel;
    out.byte(value > 0.0 ? static_cast<std::uint8_t>(std::lround(std::min(value, 1.0) * 255.0)) : std::uint8_t{0});
  }
}

}  // namespace

DataLayout lay_out(const session::TrailReport& report) {
  DataLayout layout;
  std::uint64_t samples = 0, keys = 0, stored_keys = 0, compared = 0;
  for (const session::TrailView& trail : report.trails) {
    const TrailLayout& one = layout.trails.emplace_back(lay_out(trail));
    samples += trail.points->size();
    keys += one.keys;
    if (!one.keys_on_samples) stored_keys += one.keys;
    if (trail.compare) compared += trail.points->size();
    layout.double_times =
        layout.double_times || !std::all_of(trail.key_times.begin(), trail.key_times.end(), fits_float);
  }
  layout.key_positions = aligned(samples * kPositionBytes);
  layout.key_times = aligned(layout.key_positions + stored_keys * kPositionBytes);
  layout.colors = aligned(layout.key_times + keys * (layout.double_times ? sizeof(double) : sizeof(float)));
  layout.compared = aligned(layout.colors + samples * kColorBytes);
  layout.bytes = aligned(layout.compared + compared * kPositionBytes);
  return layout;
}

void write_data(Base64& out, const session::TrailReport& report, const DataLayout& layout) {
  const auto for_each = [&](const auto& write) {
    for (std::size_t i = 0; i < report.trails.size(); ++i) write(report.trails[i], layout.trails[i]);
    out.pad(kAlignment);
  };
  for_each([&](const session::TrailView& trail, const TrailLayout& one) {
    for (const Vector& p : *trail.points) write_position(out, one.scale, p);
  });
  for_each([&](const session::TrailView& trail, const TrailLayout& one) {
    for (std::size_t i = 0; !one.keys_on_samples && i < one.keys; ++i)
      write_position(out, one.scale, (*trail.key_points)[i]);
  });
  for_each([&](const session::TrailView& trail, const TrailLayout& one) {
    for (std::size_t i = 0; i < one.keys; ++i)
      layout.double_times ? out.real(trail.key_times[i]) : out.real(static_cast<float>(trail.key_times[i]));
  });
  for_each([&](const session::TrailView& trail, const TrailLayout&) {
    for (std::size_t i = 0; i < trail.points->size(); ++i)
      write_color(out, i < trail.colors->size() ? (*trail.colors)[i] : Vector{});
  });
  constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();
  for_each([&](const session::TrailView& trail, const TrailLayout& one) {
    for (std::size_t i = 0; trail.compare && i < trail.points->size(); ++i) {
      const auto& points = *trail.compare->points;
      write_position(out, one.compared, i < points.size() ? points[i] : Vector{kNowhere, kNowhere, kNowhere});
    }
  });
}

}  // namespace vantorelix::cli
