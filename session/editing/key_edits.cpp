#include "session/editing/key_edits.h"

#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "base/number_text.h"
#include "session/failure.h"
#include "standalone/scene/curves/key_insertion.h"
#include "standalone/scene/curves/key_tangents.h"

namespace vantorelix::session {

using standalone::AnimCurve;
using standalone::Key;
using standalone::KeyTangents;
using standalone::NodeId;
using standalone::Scene;

namespace {

std::optional<std::size_t> place_of_key(const AnimCurve& curve, double frame) {
  const Key* const key = curve.key_at(frame);
  if (key == nullptr) return std::nullopt;
  return static_cast<std::size_t>(key - curve.keys().data());
}

void replace(Scene& scene, NodeId id, std::vector<Key> keys, bool weighted) {
  const AnimCurve& curve = scene.curves.at(id);
  scene.curves.assign(id, std::move(keys), weighted, curve.pre_infinity(), curve.post_infinity());
}

[[noreturn]] void fail_without_key(double frame) {
  throw Failure(Failure::Kind::no_such_key, "there is no key at frame " + number_text(frame));
}

void require_room(const AnimCurve& curve, std::size_t at, double to) {
  const auto& keys = curve.keys();
  const auto refuse = [&](const Key& neighbour) {
    throw Failure(Failure::Kind::cannot_place, "the key at frame " + number_text(keys[at].time) +
                                                   " stays on its side of its neighbour at frame " +
                                                   number_text(neighbour.time) + "; move that one first");
  };
  if (at > 0 && to <= keys[at - 1].time) refuse(keys[at - 1]);
  if (at + 1 < keys.size() && to >= keys[at + 1].time) refuse(keys[at + 1]);
}

double length(const Tangent& tangent) { return std::sqrt(tangent.x * tangent.x + tangent.y * tangent.y); }

// The other side of a tangent that has turned.
Tangent turned(const Tangent& other, const Tangent& along, bool weighted) {
  if (weighted) {
    const double scale = length(other) / length(along);
    return {along.x * scale, along.y * scale};
  }
  if (along.x == 0.0) return along;
  return {other.x, along.y / along.x * other.x};
}

}  // namespace

void move_keys(Scene& scene, const Curves& curves, double frame, double to) {
  if (!std::isfinite(to)) throw Failure(Failure::Kind::cannot_place, "a frame is a finite number");
  std::vector<std::pair<NodeId, std::vector<Key>>> moved;
  for (const NodeId id : curves) {
    const AnimCurve& curve = scene.curves.at(id);
    const auto at = place_of_key(curve, frame);
    if (!at) continue;
    require_room(curve, *at, to);
    moved.emplace_back(id, curve.keys());
    moved.back().second[*at].time = to;
  }
  if (moved.empty()) fail_without_key(frame);
  for (auto& [id, keys] : moved) replace(scene, id, std::move(keys), scene.curves.at(id).weighted());
}

void insert_keys(Scene& scene, const Curves& curves, double frame) {
  if (!std::isfinite(frame)) throw Failure(Failure::Kind::cannot_place, "a frame is a finite number");
  if (curves.empty()) throw Failure(Failure::Kind::no_such_key, "there is no curve to insert a key into; set one");
  std::vector<std::pair<NodeId, std::vector<Key>>> made;
  for (const NodeId id : curves)
    if (!place_of_key(scene.curves.at(id), frame))
      made.emplace_back(id, standalone::with_key_inserted(scene.curves.at(id), frame));
  for (auto& [id, keys] : made) replace(scene, id, std::move(keys), scene.curves.at(id).weighted());
}

void remove_keys(Scene& scene, const Curves& curves, double frame) {
  bool removed = false;
  for (const NodeId id : curves)
    if (scene.nodes.exists(id)) removed = scene.curves.remove_key(id, frame) || removed;
  if (!removed) fail_without_key(frame);
}

void set_tangent(Scene& scene, NodeId id, double frame, Side side, const Tangent& tangent, bool unified) {
  const AnimCurve& curve = scene.curves.at(id);
  const double rate = curve.frames_per_second();
  const auto at = place_of_key(curve, frame);
  if (!at) fail_without_key(frame);
  if (!(tangent.x >= 0.0 && std::isfinite(tangent.x) && std::isfinite(tangent.y) && length(tangent) > 0.0))
    throw Failure(Failure::Kind::cannot_place, "a tangent leads forward in time, by finite numbers");
  Key key = curve.keys()[*at];
  const KeyTangents before = standalone::tangents_of(curve)[*at];
  const bool in = side == Side::in;
  const Tangent other = in ? Tangent{before.out_x / rate, before.out_y} : Tangent{before.in_x / rate, before.in_y};
  const Tangent along = turned(other, tangent, curve.weighted());
  if (in || unified) {
    const Tangent& own = in ? tangent : along;
    standalone::fix_in(key, own.x * rate, own.y, rate);
  }
  if (!in || (unified && !standalone::steps(key.out))) {
    const Tangent& own = in ? along : tangent;
    standalone::fix_out(key, own.x * rate, own.y, rate);
  }
  scene.curves.set_key(id, key);
}

void set_weighted(Scene& scene, NodeId id, bool weighted) {
  const AnimCurve& curve = scene.curves.at(id);
  if (curve.weighted() == weighted) return;
  std::vector<Key> keys = curve.keys();
  const std::vector<KeyTangents> tangents = standalone::tangents_of(curve);
  for (std::size_t i = 0; weighted && i < keys.size(); ++i) {
    const KeyTangents& t = tangents[i];
    if (keys[i].in == standalone::Tangent::fixed)
      standalone::fix_in(keys[i], t.in_x, t.in_y, curve.frames_per_second());
    if (keys[i].out == standalone::Tangent::fixed)
      standalone::fix_out(keys[i], t.out_x, t.out_y, curve.frames_per_second());
  }
  replace(scene, id, std::move(keys), weighted);
}

}  // namespace vantorelix::session
