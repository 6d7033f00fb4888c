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

// A transform with its drivers resolved and its static parts worked out. Compiled in three stages, each of which is
// current while its count equals the scene's (ChangeCounts): `structure` for the drivers, `local_values` for the static
// channels and the local matrix, `values` for these and for everything that the record hangs on.
//
// `channels` has the static values; those of driven channels are left over from the last sample and mean nothing.
struct Record {
  NodeId node = kNoNode;
  std::uint64_t structure = 0;
  std::uint64_t local_values = 0;
  std::uint64_t values = 0;

  Record* parent = nullptr;         // null at the top, and where inheriting is off for good
  Record* offset_source = nullptr;  // whose matrix is the offset parent matrix
  bool offset_is_local = false;     // the offset is the source's local matrix instead of its world matrix
  bool has_offset = false;
  bool joint = false;
  bool drivers_unfollowed = false;  // some driver of a channel is left out
  bool unfollowed = false;          // some driver of a channel or of the offset parent matrix is left out
  bool asked = false;               // an Evaluator samples this node, so its matrices are worth remembering
  std::uint32_t dependents = 0;     // transforms whose world matrix needs this one's

  Factors factors;
  std::uint64_t driven_mask = 0;      // bit(c) for each driven channel c
  std::vector<DrivenChannel> driven;  // ascending by channel, so those of the translation come first
  std::size_t driven_translate = 0;   // how many of them are of the translation
  std::vector<Expression> expressions;

  bool linear_moves = false;  // the upper three rows of the local matrix change with time
  bool shift_moves = false;   // `shift` changes with time
  bool moves = false;         // the world matrix may change with time; where not, `world` is it

  Channels channels = kRestChannels;
  Rotations rotations;
  Vector shift;   // what pivot_shift gives
  Affine offset;  // the offset parent matrix, where it does not move
  Affine local;
  Affine world;              // valid where `moves` is false
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

  // The node's record, current until the scene's values change: compiled and refreshed with everything it hangs on.
  // Throws host::Error where there is no such transform.
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
