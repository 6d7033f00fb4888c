// Transforms compiled for evaluation.
// For the files of standalone/scene only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "standalone/scene/evaluation/expression.h"
#include "standalone/scene/evaluation/time_cache.h"
#include "standalone/scene/transforms/local_matrix.h"

namespace vantorelix::standalone {

struct Node;

struct DrivenChannel {
  const AnimCurve* curve;    // null: see expression
  std::uint32_t expression;  // a place in Record::expressions
  Channel channel;
};

// A transform with its drivers resolved and its static parts worked out. Static channels are in `channels`; driven
// ones there are what they were at the last sample.
struct Record {
  NodeId node = kNoNode;
  std::uint64_t structure = 0;     // the scene's count when it was compiled
  std::uint64_t local_values = 0;  // ... when its static channels were read
  std::uint64_t values = 0;        // ... when what it hangs on was, too

  Record* parent = nullptr;         // null at the top, and where inheriting is off for good
  Record* offset_source = nullptr;  // whose matrix is the offset parent matrix
  bool offset_is_local = false;     // ... its local one
  bool has_offset = false;
  bool joint = false;
  bool drivers_unfollowed = false;  // some driver of a channel is left out
  bool unfollowed = false;          // ... or of the offset parent matrix
  bool asked = false;               // somebody samples this node
  std::uint32_t dependents = 0;     // transforms whose world matrix needs this one's

  Factors factors;
  std::uint64_t driven_mask = 0;
  std::vector<DrivenChannel> driven;  // those of the translation first
  std::size_t driven_translate = 0;   // how many
  std::vector<Expression> expressions;

  bool linear_moves = false;  // the upper three rows change
  bool shift_moves = false;   // what the pivots add changes
  bool moves = false;         // the world matrix changes

  Channels channels = kRestChannels;
  Rotations rotations;
  Vector shift;
  Affine offset;  // where it stands still
  Affine local;
  Affine world;              // where it stands still
  std::uint32_t behind = 0;  // how many matrices move for the sake of this one, itself counted; kMaxBehind at most
  static constexpr std::uint32_t kMaxBehind = 1 << 20;

  // For Positions: the world matrices at the times that its `stamp` stands for.
  Columns current;
  std::uint64_t stamp = 0;
  CachedMatrices cached;

  // For PlainMatrices: the world matrix of the walk `walk`.
  Affine walked;
  std::uint64_t walk = 0;
};

// What drives a node's offset parent matrix.
struct OffsetDriver {
  bool connected = false;
  bool followed = false;
  bool local = false;  // the source's own matrix rather than its world matrix
  bool cycle = false;  // the source's world matrix hangs on the node's
  NodeId source = kNoNode;
};
OffsetDriver offset_driver(const Graph& scene, const Node& node);

// The records of a scene's transforms, made when somebody asks. A record stays where it is.
class Records {
 public:
  explicit Records(const Graph& scene) : scene_(scene) {}

  // Compiled and refreshed together with everything it depends on. Throws host::Error where there is no such transform.
  Record& of(NodeId node);

 private:
  bool is_current(const Node& node) const;
  Record& local(const Node& node);
  void refresh_world(const Node& node, Record& r, const OffsetDriver& offset);

  const Graph& scene_;
  std::vector<std::unique_ptr<Record>> of_node_;
};

// The channels at a frame: the plain way.
Channels channels_at(const Record& record, double frame);

}  // namespace vantorelix::standalone
