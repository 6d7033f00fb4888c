// Where nodes are at any time.
#pragma once

#include <string>
#include <vector>

#include "base/matrix.h"
#include "standalone/scene/names/node_id.h"
#include "standalone/scene/transforms/channel.h"

namespace vantorelix::standalone {

struct Evaluation;  // evaluation.h

class SceneEvaluation {
 public:
  explicit SceneEvaluation(Evaluation& evaluation) : evaluation_(&evaluation) {}

  // The exact way, by PlainMatrices. A shape has its transform's world matrix, and the identity as local matrix. Where
  // an inverse scale is zero the result holds infinities or NaN.
  Affine world_matrix(NodeId node, double frame) const;
  Affine local_matrix(NodeId node, double frame) const;
  // What a transform's local matrix is multiplied with at a frame: the offset parent matrix and all that is above. But
  // for rounding, local_matrix * matrix_above is world_matrix.
  Affine matrix_above(NodeId transform, double frame) const;
  // What a transform's channel is at a frame, driven or not. Radians on angles.
  double channel_at(NodeId node, Channel c, double frame) const;
  // True when the node or a parent is driven by a curve or track that varies.
  bool is_animated(NodeId node) const;
  // Whether an edit of the other transform's channels or of its curves may move the node: it is the node or above it,
  // goes into its offset parent matrix, or shares a curve with what does. Tracks and static values that others read
  // through connections are not looked at.
  bool moves_with(NodeId node, NodeId other) const;
  // Why the node's world position is not what its scene would give: one text per driver on it or on its parents that
  // cannot be followed. Empty when all is well.
  std::vector<std::string> not_followed(NodeId node) const;

 private:
  friend class Evaluator;
  Evaluation* evaluation_;  // keeps what was worked out before: questions fill it, and it changes no answer
};

}  // namespace vantorelix::standalone
