// Values, locks and array data of attributes.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "base/matrix.h"
#include "base/vector.h"
#include "host/value.h"
#include "standalone/scene/graph/scene_part.h"
#include "standalone/scene/names/node_id.h"
#include "standalone/scene/transforms/channel.h"

namespace vantorelix::standalone {

// Attribute names are long or short ("translateX", "tx"), without the node. Channels take radians here. Numbers that
// are not finite are refused with kind value, in every way in.
class SceneAttributes : public ScenePart {
 public:
  // What "matrix" and "worldMatrix" of a node hold at a frame is worked out elsewhere.
  using MatrixAt = std::function<Affine(NodeId node, double frame)>;
  SceneAttributes(Graph& graph, MatrixAt local, MatrixAt world)
      : ScenePart(graph), local_matrix_(std::move(local)), world_matrix_(std::move(world)) {}

  double channel(NodeId node, Channel c) const;            // its static value
  void set_channel(NodeId node, Channel c, double value);  // ignores locks and drivers: for readers and tests
  void set_channels(NodeId node, Channel first, const std::array<double, 3>& values);  // the same of three in a row
  void set_offset_parent_matrix(NodeId node, const std::array<double, 16>& matrix);
  // The script's way: converts, checks locks and connections ("The attribute 'x.y' is locked or connected and
  // cannot be modified."), takes UI units (degrees). Throws "No object matches name: x.y" for an unknown attribute.
  void set(NodeId node, std::string_view attribute, const host::Value& value);
  // The same; false where there is no such attribute.
  bool set_if_there(NodeId node, std::string_view attribute, const host::Value& value);
  host::Value value(NodeId node, std::string_view attribute) const;  // static value, UI units
  bool has(NodeId node, std::string_view attribute) const;
  // Declares an attribute on one node (addAttr), or sets one that a reader met without declaring it.
  void add(NodeId node, std::string_view attribute, const host::Value& value);
  void lock(NodeId node, std::string_view attribute, bool locked);
  bool is_locked(NodeId node, Channel c) const;  // the channel itself or its compound
  // Vector-array attributes ("points", ...): shared storage in, shared storage out; null when never set.
  void set_vectors(NodeId node, std::string_view attribute, Vectors values);
  Vectors vectors(NodeId node, std::string_view attribute) const;
  // NURBS curve geometry of a nurbsCurve shape.
  void set_curve_points(NodeId shape, int degree, std::vector<Vector> points);
  int curve_degree(NodeId shape) const;
  const std::vector<Vector>& curve_points(NodeId shape) const;

 private:
  MatrixAt local_matrix_, world_matrix_;
};

}  // namespace vantorelix::standalone
