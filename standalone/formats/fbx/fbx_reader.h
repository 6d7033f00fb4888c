// What reading an FBX file does to a scene. For the files of this folder only.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "standalone/formats/fbx/fbx_curve.h"
#include "standalone/formats/fbx/fbx_document.h"
#include "standalone/formats/text_input.h"
#include "standalone/scene/scene.h"

struct ufbx_anim_layer;
struct ufbx_anim_value;
struct ufbx_camera;

namespace vantorelix::standalone {

// A node's matrix is the same product in FBX and here, under other names:
//
//   translation, rotation offset, rotation pivot, pre-rotation, rotation, inverse post-rotation, scaling offset,
//   scaling pivot, scaling = translate, rotatePivotTranslate, rotatePivot, jointOrient, rotate, rotateAxis,
//   scalePivotTranslate, scalePivot, scale
//
// Only joints have an orientation and can leave their parent's scale out, so a node that does either becomes one. What
// moves no node's origin is passed over in silence: geometry and its transforms, skins, materials, visibility.
class FbxReader {
 public:
  FbxReader(FbxDocument document, std::string name, const ReadOptions& options);
  Scene read();

 private:
  struct LayerValue {
    std::size_t layer;
    const ufbx_anim_value* value;
  };
  using Values = std::vector<LayerValue>;

  // --- fbx_reader.cpp: the scene as a whole
  void read_units();
  void read_axes();
  void choose_take();
  void note_unfollowed();
  void note_constraints();
  void note_connections();
  void note_limits();
  bool leaves_limits(const ufbx_node& node, std::size_t property, const std::string& limits) const;
  void hold_as_unfollowed(const ufbx_node& node, const char* what, const std::string& name);

  // --- fbx_nodes.cpp
  void create_nodes();
  void place(const ufbx_node& node, NodeId id);
  bool is_joint(const ufbx_node& node) const;
  void find_bounds(const ufbx_node& node, NodeId id);

  // --- fbx_animation.cpp
  void collect_animation();
  void animate();
  void animate(const ufbx_node& node, std::size_t property, const Values& values);
  void connect_curves(const ufbx_node& node, std::size_t property, const ufbx_anim_value& value);
  void connect_track(std::vector<const ufbx_node*> nodes, std::size_t property);
  std::vector<const ufbx_node*> scales_behind(const ufbx_node& node) const;
  bool has_scale(const ufbx_node& node) const;
  void inherit_scales();
  void note_keys(double first, double last);
  bool is_plain(const Values& values) const;
  const Values* values_of(const ufbx_node& node, std::size_t property) const;

  // --- fbx_cameras.cpp
  void read_camera(const ufbx_node& node, NodeId id);
  void animate_cameras();
  void drive_cameras(const ufbx_camera& camera, std::string_view attribute, const ufbx_anim_curve& curve);

  NodeId id_of(const ufbx_node& node) const;

  FbxDocument document_;
  std::string name_;
  const ReadOptions& options_;
  ProgressReport progress_;
  FbxClock clock_;
  Scene scene_;
  const ufbx_anim* anim_;
  std::array<double, 16> conversion_;  // of positions, from the file's axes and unit to those asked for
  bool converts_ = false;
  std::vector<NodeId> ids_;  // by the file's numbers of nodes
  // By node and property (fbx_properties.h).
  std::map<std::pair<std::uint32_t, std::size_t>, Values> values_;
  std::multimap<const ufbx_camera*, NodeId> cameras_;  // their shapes
  double first_key_ = 0.0;
  double last_key_ = -1.0;
};

}  // namespace vantorelix::standalone
