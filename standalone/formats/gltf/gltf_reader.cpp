// glTF 2.0 scenes: the nodes of the default scene, and one of the clips.
//
// Frame f is f / frames_per_second seconds into the clip. Lengths are metres, y is up. Names that a node lacks are
// "node<number>".
#include <cgltf.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/error.h"
#include "standalone/formats/bounds_draft.h"
#include "standalone/formats/gltf/gltf_animation.h"
#include "standalone/formats/gltf/gltf_camera.h"
#include "standalone/formats/gltf/gltf_document.h"
#include "standalone/formats/gltf/gltf_matrix.h"
#include "standalone/formats/text_input.h"
#include "standalone/scene/transforms/quaternion.h"

namespace vantorelix::standalone {
namespace {

// Extensions that change how things look or how meshes are stored, not where nodes are.
bool is_harmless(std::string_view extension) {
  static constexpr std::array<std::string_view, 12> kBeginnings = {
      "KHR_materials_",  "KHR_texture_", "EXT_texture_",        "MSFT_texture_",
      "KHR_draco_mesh_", "KHR_mesh_",    "KHR_lights_",         "EXT_mesh_gpu_instancing",
      "KHR_xmp",         "EXT_meshopt_", "KHR_node_visibility", "KHR_meshopt_"};
  return std::any_of(kBeginnings.begin(), kBeginnings.end(),
                     [extension](std::string_view beginning) { return extension.starts_with(beginning); });
}

class GltfReader {
 public:
  GltfReader(std::string_view bytes, const std::string& name, const std::filesystem::path& folder,
             const ReadOptions& options)
      : document_(bytes, name, folder), data_(document_.data()), options_(options) {}

  Scene read() {
    try {
      scene_.settings.set_linear_unit("m");
      scene_.settings.set_frames_per_second(options_.frames_per_second);
      check_extensions();
      check_hierarchy();
      find_joints();
      create_nodes();
      read_clips(document_, nodes_, options_.take, scene_);
      return std::move(scene_);
    } catch (const host::Error& error) {
      document_.fail(std::string("this cannot be read into a scene: ") + error.what() + "; correct it or export again");
    }
  }

 private:
  std::size_t number_of(const cgltf_node* node) const { return static_cast<std::size_t>(node - data_.nodes); }

  void check_extensions() {
    for (std::size_t i = 0; i < data_.extensions_required_count; ++i) {
      const std::string extension = gltf_text(data_.extensions_required[i]);
      if (!is_harmless(extension))
        scene_.warnings.add("the extension " + shown(extension) +
                            ", which the file requires, is not read; export the file without it");
    }
  }

  void check_hierarchy() {
    std::vector<std::size_t> parents(data_.nodes_count, data_.nodes_count);
    for (std::size_t i = 0; i < parents.size(); ++i) {
      if (data_.nodes[i].parent != nullptr) parents[i] = number_of(data_.nodes[i].parent);
    }
    const std::size_t circle = find_circle(parents);
    if (circle != parents.size()) document_.fail(circle_text(circle) + "; the file is damaged, export it again");
  }

  void find_joints() {
    joints_.assign(data_.nodes_count, false);
    for (std::size_t i = 0; i < data_.skins_count; ++i) {
      const cgltf_skin& skin = data_.skins[i];
      for (std::size_t k = 0; k < skin.joints_count; ++k) joints_[number_of(skin.joints[k])] = true;
    }
  }

  // The top nodes of the default scene; of a file without scenes, all that have no parent.
  std::vector<const cgltf_node*> roots() const {
    std::vector<const cgltf_node*> result;
    if (data_.scenes_count != 0) {
      const cgltf_scene& scene = data_.scene != nullptr ? *data_.scene : data_.scenes[0];
      result.assign(scene.nodes, scene.nodes + scene.nodes_count);
      return result;
    }
    for (std::size_t i = 0; i < data_.nodes_count; ++i) {
      if (data_.nodes[i].parent == nullptr) result.push_back(data_.nodes + i);
    }
    return result;
  }

  struct Open {
    const cgltf_node* node;
    std::size_t depth;
  };

  void create_nodes() {
    nodes_.assign(data_.nodes_count, kNoNode);
    std::vector<Open> open;
    const std::vector<const cgltf_node*> top = roots();
    for (auto root = top.rbegin(); root != top.rend(); ++root) open.push_back({*root, 1});
    while (!open.empty()) {
      const auto [node, depth] = open.back();
      open.pop_back();
      if (nodes_[number_of(node)] != kNoNode) continue;  // a scene may list a node twice
      if (depth > kMaxDepth) document_.fail("more than 2000 nodes inside each other; is this a scene?");
      create_node(*node);
      for (std::size_t i = node->children_count; i-- > 0;) open.push_back({node->children[i], depth + 1});
    }
    for (const NodeId node : nodes_) {
      if (node == kNoNode)
        scene_.warnings.add("a node outside of the file's default scene is left out; add it to that scene to see it");
    }
  }

  void create_node(const cgltf_node& source) {
    const std::size_t number = number_of(&source);
    document_.take(1, GltfAllowance::kNode);
    const std::string in_file = gltf_text(source.name);
    const std::string wanted = in_file.empty() ? "node" + std::to_string(number) : in_file;
    const NodeId parent = source.parent == nullptr ? kWorld : nodes_[number_of(source.parent)];
    const NodeId node = scene_.nodes.create(joints_[number] ? "joint" : "transform", wanted, parent);
    nodes_[number] = node;
    keep_name_in_file(scene_, node, wanted);
    scene_.attributes.add(node, kNumberInFile, host::Value(static_cast<std::int64_t>(number)));
    // A joint's scale goes on to its children here.
    if (joints_[number]) scene_.attributes.set_channel(node, Channel::segmentScaleCompensate, 0.0);
    if (source.has_matrix) {
      place_by_matrix(scene_, node, matrix_of(source));
    } else {
      place(source, node);
    }
    if (source.camera != nullptr) read_camera(*source.camera, scene_, node);
    if (options_.bounds && source.mesh != nullptr) find_bounds(source, node);
  }

  static bool is_deformed(const cgltf_node& source) {
    const cgltf_mesh& mesh = *source.mesh;
    const auto has_targets = [](const cgltf_primitive& part) { return part.targets_count != 0; };
    return source.skin != nullptr || std::any_of(mesh.primitives, mesh.primitives + mesh.primitives_count, has_targets);
  }

  // As the file tells them beside the positions, which need not be read.
  void find_bounds(const cgltf_node& source, NodeId node) {
    if (is_deformed(source)) return mark_deformed(scene_, node);
    const cgltf_mesh& mesh = *source.mesh;
    BoundsDraft draft;
    for (const cgltf_primitive* part = mesh.primitives; part != mesh.primitives + mesh.primitives_count; ++part) {
      for (const cgltf_attribute* a = part->attributes; a != part->attributes + part->attributes_count; ++a) {
        if (a->type != cgltf_attribute_type_position || a->data == nullptr) continue;
        const cgltf_accessor& positions = *a->data;
        const bool told = positions.has_min && positions.has_max && positions.type == cgltf_type_vec3;
        if (!told || positions.component_type != cgltf_component_type_r_32f) continue;
        draft.add({positions.min[0], positions.min[1], positions.min[2]});
        draft.add({positions.max[0], positions.max[1], positions.max[2]});
      }
    }
    draft.assign_to(scene_, node);
  }

  std::array<double, 16> matrix_of(const cgltf_node& source) const {
    std::array<double, 16> matrix;
    std::copy(source.matrix, source.matrix + 16, matrix.begin());
    const std::string label = "the matrix of node " + std::to_string(number_of(&source));
    if (!std::all_of(matrix.begin(), matrix.end(), [](double v) { return std::isfinite(v); })) {
      document_.fail(label + " is not finite; correct it or export again");
    }
    if (matrix[3] != 0.0 || matrix[7] != 0.0 || matrix[11] != 0.0 || matrix[15] != 1.0) {
      document_.fail(label + " has a last row other than 0 0 0 1; correct it or export again");
    }
    return matrix;
  }

  void place(const cgltf_node& source, NodeId node) {
    for (std::size_t i = 0; i < 3; ++i) {
      scene_.attributes.set_channel(node, component(Channel::translateX, i),
                                    static_cast<double>(source.translation[i]));
      scene_.attributes.set_channel(node, component(Channel::scaleX, i), static_cast<double>(source.scale[i]));
    }
    Quaternion q;
    std::copy(source.rotation, source.rotation + 4, q.begin());
    if (!normalise(q)) {
      document_.fail("the rotation of node " + std::to_string(number_of(&source)) +
                     " has no length, or is not finite; correct it or export again");
    }
    scene_.attributes.set_channels(node, Channel::rotateX, angles_of(basis_of(q), 0));
  }

  GltfDocument document_;
  const cgltf_data& data_;
  const ReadOptions& options_;
  Scene scene_;
  std::vector<bool> joints_;  // by the file's number of the node
  std::vector<NodeId> nodes_;
};

}  // namespace

Scene read_gltf(std::string_view bytes, const std::string& name, const std::filesystem::path& folder,
                const ReadOptions& options) {
  return GltfReader(bytes, name, folder, options).read();
}

}  // namespace vantorelix::standalone
