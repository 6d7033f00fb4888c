// Nodes compiled for evaluation, and the world matrices remembered between samples.
// For the files of standalone/scene only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "standalone/scene/evaluation/expression.h"
#include "standalone/scene/evaluation/time_cache.h"
#include "standalone/scene/transforms/local_matrix.h"

namespace vantorelix::standalone {

struct DrivenChannel {
  const AnimCurve* curve;  // null: see expression
  std::size_t hint;
  std::uint32_t expression;  // a place in Record::expressions
  Channel channel;
};

// A transform with its drivers resolved and its static parts worked out. Static channels are in `channels`; driven
// ones there are what they were at the last sample.
struct Record {
  NodeId node = kNoNode;
  std::uint64_t structure = 0;     // of the scene when it was compiled
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
  Affine offset;  // static, or of the last sample
  Affine local;
  Affine world;

  Affine walked;  // the world matrix of the plain walk `walk`
  std::uint64_t walk = 0;

  AffineView current;  // the world matrix at the sample `stamp`
  std::uint64_t stamp = 0;
  CachedMatrices cached;
};

// What a scene's evaluation keeps.
struct Evaluation {
  explicit Evaluation(const Graph& of) : graph(of) {}

  const Graph& graph;

  std::uint64_t stamp = 1;  // one for each pair of time and motion
  std::uint64_t stamp_motion = 0;
  double frame = 0.0;
  TimeCache::Slot slot = TimeCache::kNone;
  TimeCache cache;
  const Record* asked = nullptr;  // whose place the sample is wanted for
  // A bit for each time of the slot's chunk that will be asked for next, once found.
  std::optional<std::uint64_t> expected;
  std::vector<Record*> stack;

  // The plain walks, one for each pair of time and motion.
  std::uint64_t walk = 1;
  std::uint64_t walk_motion = 0;
  double walk_frame = 0.0;
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

// The record of a transform, compiled and refreshed together with everything it depends on.
Record& record_of(const Graph& scene, NodeId node);
// The channels at a frame: the plain way.
Channels channels_at(const Record& record, double frame);
// The translation row of the world matrix: the fast way.
Vector translation_of(Evaluation& evaluation, Record& record, double frame);

}  // namespace vantorelix::standalone
