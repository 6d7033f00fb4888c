// The hierarchy of an FBX file, and where its nodes stand without animation.
#include <ufbx.h>

#include <algorithm>

#include "base/mathematics/mathematics.h"
#include "standalone/formats/bounds_draft.h"
#include "standalone/formats/fbx/fbx_properties.h"
#include "standalone/formats/fbx/fbx_reader.h"
#include "standalone/scene/transforms/rotation.h"

namespace vantorelix::standalone {
namespace {

std::array<double, 3> read_triple(const ufbx_node& node, const char* name, double rest) {
  ufbx_vec3 otherwise;
  otherwise.x = otherwise.y = otherwise.z = rest;
  return numbers_of(ufbx_find_vec3(&node.props, name, otherwise));
}

bool is_zero(const std::array<double, 3>& v) { return v[0] == 0.0 && v[1] == 0.0 && v[2] == 0.0; }

// 0 xyz ... 5 zyx here; other numbers there.
double rotate_order(const ufbx_node& node) {
  if (!node.use_rotation_space) return 0.0;
  switch (node.rotation_order) {
    case UFBX_ROTATION_ORDER_YZX:
      return 1.0;
    case UFBX_ROTATION_ORDER_ZXY:
      return 2.0;
    case UFBX_ROTATION_ORDER_XZY:
      return 3.0;
    case UFBX_ROTATION_ORDER_YXZ:
      return 4.0;
    case UFBX_ROTATION_ORDER_ZYX:
      return 5.0;
    default:
      return 0.0;
  }
}

// The angles, in radians and in the same order (xyz), that turn back what `angles` turn.
std::array<double, 3> inverse_angles(const std::array<double, 3>& angles) {
  const auto turns = std::count_if(angles.begin(), angles.end(), [](double a) { return a != 0.0; });
  if (turns <= 1) return {-angles[0], -angles[1], -angles[2]};
  const Basis there = rotation(angles[0], angles[1], angles[2], 0);
  const auto back = [&there](std::size_t row, std::size_t column) { return there[column][row]; };
  // Where this is a right angle the others still come out right: only right angles lead there, and the cosine of one is
  // tiny but not zero.
  const double y = base::asin(std::clamp(-back(0, 2), -1.0, 1.0));
  return {base::atan2(back(1, 2), back(2, 2)), y, base::atan2(back(0, 1), back(0, 0))};
}

}  // namespace

std::array<double, 3> numbers_of(const ufbx_vec3& v) { return {v.x, v.y, v.z}; }

double fbx_unit(const FbxNodeProperty& property) { return property.kind == CurveKind::angular ? base::kDegree : 1.0; }

bool FbxReader::is_joint(const ufbx_node& node) const {
  if (node.bone != nullptr || node.inherit_mode != UFBX_INHERIT_MODE_NORMAL) return true;
  if (!node.use_rotation_space) return false;
  return !is_zero(read_triple(node, "PreRotation", 0.0)) || values_of(node, kFbxPreRotation) != nullptr;
}

void FbxReader::create_nodes() {
  const ufbx_node_list& nodes = document_->nodes;
  // Every scene has a node, and tells what its top nodes hang on.
  if (nodes.count < 2 || document_->connections_src.count == 0) {
    throw FormatError(name_, 0, "the file ends before its nodes and their connections; it is cut off, export it again");
  }
  ids_.assign(nodes.count, kWorld);
  // Parents come before their children.
  for (const ufbx_node* node : nodes) {
    if (node->is_root) continue;
    progress_.tell();
    const std::string name(node->name.data, node->name.length);
    const NodeId parent = node->parent == nullptr ? kWorld : id_of(*node->parent);
    const NodeId id = scene_.nodes.create(is_joint(*node) ? "joint" : "transform", name, parent);
    keep_name_in_file(scene_, id, name);
    ids_[node->typed_id] = id;
    place(*node, id);
    if (node->camera != nullptr) read_camera(*node, id);
    if (node->mesh != nullptr) find_bounds(*node, id);
    if (converts_ && parent == kWorld) scene_.attributes.set_offset_parent_matrix(id, conversion_);
  }
}

void FbxReader::place(const ufbx_node& node, NodeId id) {
  for (std::size_t i = 0; i < kFbxNodeProperties.size(); ++i) {
    const FbxNodeProperty& property = kFbxNodeProperties[i];
    if (i == kFbxPreRotation && !node.use_rotation_space) continue;
    std::array<double, 3> values = read_triple(node, property.name, property.rest);
    for (double& value : values) value *= fbx_unit(property);
    scene_.attributes.set_channels(id, property.first, values);
  }
  scene_.attributes.set_channel(id, Channel::rotateOrder, rotate_order(node));
  if (node.use_rotation_space) {
    std::array<double, 3> angles = read_triple(node, kFbxPostRotation, 0.0);
    for (double& angle : angles) angle *= base::kDegree;
    scene_.attributes.set_channels(id, Channel::rotateAxisX, inverse_angles(angles));
    if (node.rotation_order == UFBX_ROTATION_ORDER_SPHERIC) {
      scene_.warnings.add(
          "a spherical rotation order is read as xyz; choose another order, or bake the rotation, before exporting");
    }
  }
  const bool inherits = node.inherit_mode == UFBX_INHERIT_MODE_NORMAL;
  if (scene_.nodes.type(id) == "joint")
    scene_.attributes.set_channel(id, Channel::segmentScaleCompensate, inherits ? 0.0 : 1.0);
}

// None where geometry is not read.
void FbxReader::find_bounds(const ufbx_node& node, NodeId id) {
  if (!options_.bounds) return;
  if (node.mesh->all_deformers.count != 0) return mark_deformed(scene_, id);
  BoundsDraft draft;
  for (const ufbx_vec3& vertex : node.mesh->vertices) {
    const ufbx_vec3 p = ufbx_transform_position(&node.geometry_to_node, vertex);
    draft.add({p.x, p.y, p.z});
  }
  draft.assign_to(scene_, id);
}

NodeId FbxReader::id_of(const ufbx_node& node) const { return ids_[node.typed_id]; }

}  // namespace vantorelix::standalone
