#include "session/editing/path_segment.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "base/number_text.h"
#include "session/editing/own_translation.h"
#include "standalone/scene/curves/key_insertion.h"
#include "standalone/scene/curves/key_tangents.h"

namespace vantorelix::session {

using standalone::AnimCurve;
using standalone::Infinity;
using standalone::Key;
using standalone::NodeId;
using standalone::Scene;
using standalone::SegmentBezier;
using standalone::TimeHandles;

namespace {

// Handles in time that differ by less, in parts of the segment, are the same.
constexpr double kSameHandles = 1e-10;

constexpr double kForever = std::numeric_limits<double>::infinity();

std::size_t first_after(const std::vector<Key>& keys, double frame) {
  const auto later = [](double time, const Key& key) { return time < key.time; };
  return static_cast<std::size_t>(std::upper_bound(keys.begin(), keys.end(), frame, later) - keys.begin());
}

bool are_same(const TimeHandles& a, const TimeHandles& b) {
  return std::abs(a.out - b.out) <= kSameHandles && std::abs(a.in - b.in) <= kSameHandles;
}

// Whether the piece after a key goes anywhere before the next key.
bool piece_moves(const AnimCurve& curve, std::size_t key) {
  const Key &left = curve.keys()[key], &right = curve.keys()[key + 1];
  if (left.value != right.value) return left.out != standalone::Tangent::step;
  if (standalone::steps(left.out)) return false;
  const SegmentBezier bezier = standalone::bezier_after(curve, key);
  return bezier.out_y != 0.0 || bezier.in_y != 0.0;
}

bool moves_before(const AnimCurve& curve) {
  return curve.pre_infinity() != Infinity::constant &&
         (curve.pre_infinity() != Infinity::linear || standalone::tangents_of(curve).front().in_y != 0.0);
}

bool moves_after(const AnimCurve& curve) {
  return curve.post_infinity() != Infinity::constant &&
         (curve.post_infinity() != Infinity::linear || standalone::tangents_of(curve).back().out_y != 0.0);
}

bool moves_between(const AnimCurve& curve, double first, double last) {
  const std::vector<Key>& keys = curve.keys();
  if (curve.is_constant()) return false;
  if ((first < keys.front().time && moves_before(curve)) || (last > keys.back().time && moves_after(curve)))
    return true;
  for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
    if (keys[i].time >= last || keys[i + 1].time <= first) continue;
    const bool jumps = keys[i + 1].time < last && keys[i].value != keys[i + 1].value;
    if (jumps || piece_moves(curve, i)) return true;
  }
  return false;
}

class Search {
 public:
  Search(const Scene& scene, NodeId object, double frame)
      : scene_(scene), object_(object), frame_(frame), name_(scene.names.unique_name(object)) {}

  std::variant<PathSegment, CannotPlace> run() {
    for (const OwnChannel& own : translation_of(scene_, object_)) look_at(own);
    for (const Piece& rest : resting_)
      if (moves_between(scene_.curves.at(rest.own.curve), found_.first, found_.last)) narrow(rest);
    if (moving_.empty())
      fail(Obstacle::still, "no keys of the translation of " + name_ + " move it at frame " + number_text(frame_));
    for (const Piece& piece : moving_) add(piece.own);
    settle_time();
    if (why_not_) return *why_not_;
    return std::move(found_);
  }

 private:
  // What a channel does around the frame: the keys beside it, infinite where there is none.
  struct Piece {
    OwnChannel own;
    double first, last;
  };

  // The first reason counts.
  void fail(Obstacle obstacle, const std::string& text) {
    if (!why_not_) why_not_ = CannotPlace(obstacle, text);
  }

  void narrow(const Piece& piece) {
    found_.first = std::max(found_.first, piece.first);
    found_.last = std::min(found_.last, piece.last);
  }

  void look_at(const OwnChannel& own) {
    if (own.driver != standalone::kNoNode && !why_not_) why_not_ = driven(scene_, object_, own);
    if (own.curve == standalone::kNoNode) return;
    const AnimCurve& curve = scene_.curves.at(own.curve);
    const std::vector<Key>& keys = curve.keys();
    const std::size_t after = first_after(keys, frame_);
    const Piece piece = {own, after > 0 ? keys[after - 1].time : -kForever,
                         after < keys.size() ? keys[after].time : kForever};
    if (after == 0 || after == keys.size()) {
      if (!curve.is_constant() && (after == 0 ? moves_before(curve) : moves_after(curve)))
        fail(Obstacle::beyond_keys, "the path of " + name_ + " at frame " + number_text(frame_) +
                                        " lies beyond the keys of " + text_of(scene_, object_, own.channel));
    } else if (standalone::steps(keys[after - 1].out) && keys[after - 1].value != keys[after].value) {
      fail(Obstacle::steps, text_of(scene_, object_, own.channel) + " steps there, without a path in between");
    } else if (piece_moves(curve, after - 1)) {
      if (scene_.attributes.is_locked(object_, own.channel) && !why_not_)
        why_not_ = locked(scene_, object_, own.channel);
      narrow(piece);
      moving_.push_back(piece);
      return;
    }
    resting_.push_back(piece);
  }

  // With keys at both ends.
  void add(const OwnChannel& own) {
    AnimCurve curve = scene_.curves.at(own.curve);
    for (const double end : {found_.first, found_.last})
      curve.assign(standalone::with_key_inserted(curve, end), curve.weighted(), curve.pre_infinity(),
                   curve.post_infinity());
    const std::size_t key = first_after(curve.keys(), found_.first) - 1;
    found_.channels.push_back({own.channel, own.curve, standalone::bezier_after(curve, key)});
    rises_.push_back(curve.keys()[key + 1].value - curve.keys()[key].value);
  }

  // Lines take the handles of the others.
  void settle_time() {
    std::optional<TimeHandles> shared;
    for (const PathSegment::Moving& moving : found_.channels) {
      if (!std::isfinite(moving.bezier.out_y + moving.bezier.in_y))
        fail(Obstacle::not_finite, text_of(scene_, object_, moving.channel) + " is too large there");
      if (moving.bezier.line) continue;
      if (shared && !are_same(*shared, moving.bezier.time))
        fail(Obstacle::weights_differ,
             "the weights of the tangents of " + name_ + " differ between the channels of its translation there");
      if (!shared) shared = moving.bezier.time;
    }
    found_.time = shared.value_or(TimeHandles{1.0 / 3.0, 1.0 / 3.0});
    for (std::size_t i = 0; i < rises_.size(); ++i) {
      SegmentBezier& bezier = found_.channels[i].bezier;
      if (!bezier.line) continue;
      bezier.out_y = 3.0 * rises_[i] * found_.time.out;
      bezier.in_y = 3.0 * rises_[i] * found_.time.in;
    }
  }

  const Scene& scene_;
  NodeId object_;
  double frame_;
  std::string name_;
  PathSegment found_{-kForever, kForever, {}, {}};
  std::vector<Piece> moving_, resting_;
  std::vector<double> rises_;  // of the values, beside the channels that were found
  std::optional<CannotPlace> why_not_;
};

}  // namespace

std::variant<PathSegment, CannotPlace> path_segment(const Scene& scene, NodeId object, double frame) {
  return Search(scene, object, frame).run();
}

}  // namespace vantorelix::session
