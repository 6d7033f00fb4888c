#include "session/editing/placing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "base/matrix.h"
#include "base/number_text.h"
#include "host/error.h"
#include "session/editing/own_translation.h"
#include "standalone/scene/curves/key_insertion.h"
#include "standalone/scene/graph/change_log.h"

namespace vantorelix::session {

using standalone::AnimCurve;
using standalone::ChangeLog;
using standalone::Channel;
using standalone::Key;
using standalone::NodeId;
using standalone::Scene;

namespace {

using Numbers = std::array<double, 3>;
using Rows = std::array<Numbers, 3>;

Numbers numbers_of(const Vector& v) { return {v.x, v.y, v.z}; }

double largest(const Numbers& v) { return std::max({std::abs(v[0]), std::abs(v[1]), std::abs(v[2])}); }

// None where the rows do not span space.
std::optional<Rows> inverse(const Affine& matrix) {
  const auto& m = matrix.m;
  const auto cofactor = [&](std::size_t i, std::size_t j) {
    const std::size_t a = (i + 1) % 3, b = (i + 2) % 3, c = (j + 1) % 3, d = (j + 2) % 3;
    return m[a][c] * m[b][d] - m[a][d] * m[b][c];
  };
  const double volume = m[0][0] * cofactor(0, 0) + m[0][1] * cofactor(0, 1) + m[0][2] * cofactor(0, 2);
  double box = 1.0;
  for (std::size_t i = 0; i < 3; ++i) box *= std::sqrt(m[i][0] * m[i][0] + m[i][1] * m[i][1] + m[i][2] * m[i][2]);
  if (!(std::abs(volume) > 1e-9 * box) || !std::isfinite(volume)) return std::nullopt;
  Rows result;
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) result[i][j] = cofactor(j, i) / volume;
  return result;
}

struct Axis : OwnChannel {
  bool keyed = false;  // at the frame
};

class Placement {
 public:
  Placement(const Scene& scene, NodeId object, double frame)
      : scene_(scene), object_(object), frame_(frame), name_(scene.names.unique_name(object)) {
    const std::array<OwnChannel, 3> channels = translation_of(scene, object);
    for (std::size_t k = 0; k < 3; ++k)
      axes_[k] = {channels[k], channels[k].curve != standalone::kNoNode &&
                                   scene.curves.at(channels[k].curve).key_at(frame) != nullptr};
  }

  void require_possible() const {
    require_keys();
    if (!inverse(above())) fail_flat();
    if (!std::isfinite(largest(now()))) fail(Obstacle::not_finite, name_ + " is nowhere at this time");
  }

  // A single step leads there, but for rounding, which another one makes smaller.
  void go(Scene& scene, const Vector& wanted) {
    if (!std::isfinite(largest(numbers_of(wanted)))) fail(Obstacle::not_finite, "a place is three finite numbers");
    const double size = size_around(wanted);
    double miss = std::numeric_limits<double>::infinity();
    for (int step = 0; step < 3 && miss > 1e-13 * size; ++step) {
      move(scene, wanted);
      miss = largest(away(wanted));
    }
    if (!(miss <= 1e-9 * size))
      fail(Obstacle::depends, "what " + name_ + " hangs on, or its own pivots, move with its translation");
  }

 private:
  [[noreturn]] void fail(Obstacle obstacle, const std::string& text) const { throw CannotPlace(obstacle, text); }
  [[noreturn]] void fail_flat() const {
    fail(Obstacle::flat_parent, "what is above " + name_ + " is scaled flat at this time");
  }
  void require_keys() const {
    if (std::any_of(axes_.begin(), axes_.end(), [](const Axis& axis) { return axis.keyed; })) return;
    const auto other =
        std::find_if(axes_.begin(), axes_.end(), [](const Axis& axis) { return axis.driver != standalone::kNoNode; });
    if (other != axes_.end()) throw driven(scene_, object_, *other);
    const std::string at = " at frame " + number_text(frame_);
    const auto times = scene_.curves.key_times(object_);
    const bool keyed = std::find(times.begin(), times.end(), frame_) != times.end();
    const bool moves =
        std::any_of(axes_.begin(), axes_.end(), [](const Axis& axis) { return axis.curve != standalone::kNoNode; });
    if (keyed && !moves)
      fail(Obstacle::rotations_only, "only rotations and other channels of " + name_ + " have keys" + at);
    fail(Obstacle::no_key, "the translation of " + name_ + " has no key" + at);
  }

  Affine above() const { return scene_.evaluation.matrix_above(object_, frame_); }
  Numbers now() const { return numbers_of(scene_.evaluation.world_matrix(object_, frame_).translation()); }
  // The largest number that positions are worked out from.
  double size_around(const Vector& wanted) const {
    return std::max({largest(now()), largest(numbers_of(wanted)), largest(numbers_of(above().translation()))});
  }
  Numbers away(const Vector& wanted) const {
    const Numbers goal = numbers_of(wanted), have = now();
    return {goal[0] - have[0], goal[1] - have[1], goal[2] - have[2]};
  }

  void move(Scene& scene, const Vector& wanted) {
    const std::optional<Rows> down = inverse(above());
    if (!down) fail_flat();
    const Numbers way = away(wanted);
    const double world = size_around(wanted);
    for (std::size_t k = 0; k < 3; ++k) {
      double by = 0.0, rounding = 0.0;
      for (std::size_t i = 0; i < 3; ++i) {
        by += way[i] * (*down)[i][k];
        rounding += 1e-15 * world * std::abs((*down)[i][k]);
      }
      const double value = scene_.evaluation.channel_at(object_, axes_[k].channel, frame_);
      if (axes_[k].keyed || std::abs(by) > rounding + 1e-15 * std::abs(value)) set(scene, axes_[k], value + by);
    }
  }

  void set(Scene& scene, Axis& axis, double value) {
    if (axis.driver != standalone::kNoNode) throw driven(scene_, object_, axis);
    if (axis.keyed && value == scene_.evaluation.channel_at(object_, axis.channel, frame_)) return;
    if (scene_.attributes.is_locked(object_, axis.channel)) throw locked(scene_, object_, axis.channel);
    if (axis.curve == standalone::kNoNode) {
      start_curve(scene, axis);
    } else if (!axis.keyed) {
      insert_key(scene, axis);
    }
    scene.curves.set_key(axis.curve, frame_, value);
    axis.keyed = true;
  }

  void insert_key(Scene& scene, const Axis& axis) const {
    const AnimCurve& curve = scene.curves.at(axis.curve);
    try {
      scene.curves.assign(axis.curve, standalone::with_key_inserted(curve, frame_), curve.weighted(),
                          curve.pre_infinity(), curve.post_infinity());
    } catch (const host::Error& error) {
      fail(Obstacle::repeats, text_of(scene_, object_, axis.channel) + ": " + error.what());
    }
  }

  // With its value at the neighbouring keys of the other channels.
  void start_curve(Scene& scene, Axis& axis) const {
    const double value = scene_.attributes.channel(object_, axis.channel);
    std::optional<double> before, after;
    for (const Axis& other : axes_) {
      if (other.curve == standalone::kNoNode) continue;
      for (const Key& key : scene_.curves.at(other.curve).keys()) {
        if (key.time < frame_) before = std::max(before.value_or(key.time), key.time);
        if (key.time > frame_) after = std::min(after.value_or(key.time), key.time);
      }
    }
    axis.curve = scene.curves.set_key(object_, axis.channel, frame_, value);
    for (const std::optional<double>& neighbour : {before, after})
      if (neighbour) scene.curves.set_key(axis.curve, *neighbour, value);
  }

  const Scene& scene_;
  NodeId object_;
  double frame_;
  std::string name_;
  std::array<Axis, 3> axes_;
};

}  // namespace

void require_placeable(const Scene& scene, NodeId object, double frame) {
  Placement(scene, object, frame).require_possible();
}

void place(Scene& scene, NodeId object, double frame, const Vector& wanted) {
  Placement placement(scene, object, frame);
  placement.require_possible();
  ChangeLog made;
  ChangeLog* const outer = scene.changes.record(&made);
  try {
    placement.go(scene, wanted);
  } catch (...) {
    scene.changes.record(nullptr);
    scene.changes.undo(made);
    scene.changes.record(outer);
    throw;
  }
  scene.changes.record(outer);
  if (outer != nullptr) outer->append(std::move(made));
}

}  // namespace vantorelix::session
