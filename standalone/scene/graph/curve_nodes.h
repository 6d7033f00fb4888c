// Animation curves and tracks: their nodes, their edits, and what they drive.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "standalone/scene/curves/anim_curve.h"
#include "standalone/scene/curves/track.h"
#include "standalone/scene/graph/scene_part.h"
#include "standalone/scene/names/node_id.h"
#include "standalone/scene/transforms/channel.h"

namespace vantorelix::standalone {

class SceneCurves : public ScenePart {
 public:
  using ScenePart::ScenePart;

  NodeId create(CurveKind kind, std::string_view name);
  bool is_curve(NodeId node) const;
  const AnimCurve& at(NodeId node) const;
  void assign(NodeId node, std::vector<Key> keys, bool weighted, Infinity pre, Infinity post);
  // Sets a key on a channel, creating and connecting its curve on the first. Value in radians on angles.
  NodeId set_key(NodeId node, Channel c, double frame, double value);
  // Edits of a curve node; each sends its messages before it returns.
  void set_key(NodeId curve, double frame, double value);
  void set_key(NodeId curve, const Key& key);
  bool remove_key(NodeId curve, double frame);  // the last key takes the curve node with it
  void set_infinity(NodeId curve, Infinity pre, Infinity post);
  // The curve that drives a channel, straight or through unitConversion and pairBlend; kNoNode when none does.
  NodeId driving_curve(NodeId node, Channel c) const;
  // The curves that drive attributes of the node, in order of connection.
  std::vector<NodeId> driving_curves(NodeId node) const;
  // A node whose "output" drives the three channels of a compound ("translate"). It has keys and no edits.
  NodeId create_track(std::shared_ptr<const Track> track, std::string_view name);
  const Track* track(NodeId node) const;  // null for a node that is none
  // Key times of every curve and track that drives an attribute of the node, one by one: curves first, in order of
  // connection.
  std::vector<double> key_times(NodeId node) const;
  std::size_t key_count(NodeId node) const;
  // True when the node itself is driven by a curve or a track, whether or not it varies.
  bool has_keys(NodeId node) const;
};

}  // namespace vantorelix::standalone
