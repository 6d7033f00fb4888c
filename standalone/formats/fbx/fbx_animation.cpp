// Curves, layers and inherited scales of an FBX file.
#include <ufbx.h>

#include <algorithm>
#include <cmath>

#include "standalone/formats/fbx/fbx_properties.h"
#include "standalone/formats/fbx/fbx_reader.h"

namespace vantorelix::standalone {
namespace {

constexpr std::array<const char*, 3> kAxes = {"X", "Y", "Z"};

// The nodes whose scales a node's own is multiplied by, nearest first; itself in front.
std::vector<const ufbx_node*> scale_chain(const ufbx_node& node) {
  std::vector<const ufbx_node*> chain = {&node};
  while (chain.back()->inherit_mode != UFBX_INHERIT_MODE_NORMAL) {
    const ufbx_node* next = chain.back()->inherit_scale_node;
    if (next == nullptr || next->is_root) break;
    chain.push_back(next);
  }
  return chain;
}

}  // namespace

void FbxReader::collect_animation() {
  for (std::size_t layer = 0; layer < anim_->layers.count; ++layer) {
    for (const ufbx_anim_prop& driven : anim_->layers[layer]->anim_props) {
      const ufbx_node* const node = ufbx_as_node(driven.element);
      if (node == nullptr || node->is_root) continue;
      const std::string_view name(driven.prop_name.data, driven.prop_name.length);
      const auto property = std::find_if(kFbxNodeProperties.begin(), kFbxNodeProperties.end(),
                                         [name](const FbxNodeProperty& p) { return name == p.name; });
      if (property != kFbxNodeProperties.end()) {
        const auto index = static_cast<std::size_t>(property - kFbxNodeProperties.begin());
        values_[{node->typed_id, index}].push_back({layer, driven.anim_value});
      } else if (name == kFbxPostRotation || name == "RotationOrder") {
        scene_.warnings.add("an animated " + std::string(name) +
                            " is not followed; it keeps its static value; bake it before exporting");
      }
    }
  }
}

const FbxReader::Values* FbxReader::values_of(const ufbx_node& node, std::size_t property) const {
  const auto found = values_.find({node.typed_id, property});
  return found == values_.end() ? nullptr : &found->second;
}

void FbxReader::animate() {
  for (const auto& [key, values] : values_) {
    progress_.tell();
    const ufbx_node& node = *document_->nodes[key.first];
    if (key.second == kFbxPreRotation && !node.use_rotation_space) continue;
    // inherit_scales drives this scale as a product; a curve on one of its components would take precedence over that.
    if (key.second == kFbxScaling && scales_behind(node).size() > 1) continue;
    animate(node, key.second, values);
  }
}

void FbxReader::animate(const ufbx_node& node, std::size_t property, const Values& values) {
  if (is_plain(values)) {
    connect_curves(node, property, *values[0].value);
  } else {
    connect_track({&node}, property);
  }
}

// Whether the curves of one layer alone give the property. Then they become animation curves, which can be edited.
bool FbxReader::is_plain(const Values& values) const {
  if (values.size() != 1) return false;
  const ufbx_anim_layer& layer = *anim_->layers[values[0].layer];
  if (values[0].layer != 0 && (layer.additive || layer.blended)) return false;
  const auto& curves = values[0].value->curves;
  return std::all_of(std::begin(curves), std::end(curves),
                     [](const ufbx_anim_curve* curve) { return curve == nullptr || is_convertible(*curve); });
}

void FbxReader::connect_curves(const ufbx_node& node, std::size_t index, const ufbx_anim_value& value) {
  const FbxNodeProperty& property = kFbxNodeProperties[index];
  const NodeId id = id_of(node);
  const double unit = fbx_unit(property);
  const std::array<double, 3> still = numbers_of(value.default_value);
  const std::string stem = std::string(scene_.names.short_name(id)) + "_" + property.compound;
  for (std::size_t k = 0; k < still.size(); ++k) {
    const ufbx_anim_curve* const curve = value.curves[k];
    scene_.attributes.set_channel(id, component(property.first, k), still[k] * unit);
    if (curve == nullptr || curve->keyframes.count == 0) continue;
    FbxCurve made = convert_curve(*curve, clock_, unit);
    note_keys(made.keys.front().time, made.keys.back().time);
    const NodeId driver = scene_.curves.create(property.kind, stem + kAxes[k]);
    scene_.curves.assign(driver, std::move(made.keys), made.weighted, made.pre, made.post);
    scene_.connections.connect(driver, "output", id, std::string(property.compound) + kAxes[k]);
  }
}

void FbxReader::connect_track(std::vector<const ufbx_node*> nodes, std::size_t index) {
  const FbxNodeProperty& property = kFbxNodeProperties[index];
  const NodeId id = id_of(*nodes.front());
  std::vector<const ufbx_anim_curve*> curves;
  for (const ufbx_node* node : nodes) {
    const Values* const values = values_of(*node, index);
    if (values == nullptr) continue;
    for (const LayerValue& layer : *values) {
      for (const ufbx_anim_curve* curve : layer.value->curves) {
        if (curve != nullptr && curve->keyframes.count > 0) curves.push_back(curve);
      }
    }
  }
  std::array<double, 3> still{};
  for (std::size_t k = 0; k < still.size(); ++k) still[k] = scene_.attributes.channel(id, component(property.first, k));
  const auto track =
      make_fbx_track(document_, {anim_, std::move(nodes), property.name, fbx_unit(property), still}, curves);
  if (!track->key_times().empty()) note_keys(track->key_times().front(), track->key_times().back());
  const std::string name = std::string(scene_.names.short_name(id)) + "_" + property.compound;
  scene_.connections.connect(scene_.curves.create_track(track, name), "output", id, property.compound);
}

void FbxReader::note_keys(double first, double last) {
  const bool none = first_key_ > last_key_;
  first_key_ = none ? first : std::min(first_key_, first);
  last_key_ = none ? last : std::max(last_key_, last);
}

// The nodes whose scales make up the node's own: itself first, and alone where no other one has a scale.
std::vector<const ufbx_node*> FbxReader::scales_behind(const ufbx_node& node) const {
  std::vector<const ufbx_node*> chain = scale_chain(node);
  if (std::none_of(chain.begin() + 1, chain.end(), [this](const ufbx_node* n) { return has_scale(*n); }))
    chain.resize(1);
  return chain;
}

bool FbxReader::has_scale(const ufbx_node& node) const {
  const ufbx_vec3 s = node.local_transform.scale;
  return values_of(node, kFbxScaling) != nullptr || s.x != 1.0 || s.y != 1.0 || s.z != 1.0;
}

// For nodes that do not inherit their parent's scale as part of its matrix. The parent's scale is divided out, as
// joints do it here: connected to inverseScale. A node that inherits it component by component (on the other side of
// its own rotation) has it multiplied into its own scale as well.
void FbxReader::inherit_scales() {
  for (const ufbx_node* node : document_->nodes) {
    if (node->is_root || node->inherit_mode == UFBX_INHERIT_MODE_NORMAL) continue;
    std::vector<const ufbx_node*> chain = scales_behind(*node);
    if (chain.size() > 1) connect_track(std::move(chain), kFbxScaling);
    if (node->parent == nullptr || node->parent->is_root) continue;
    const NodeId above = id_of(*node->parent);
    const bool scaled = scene_.attributes.channel(above, Channel::scaleX) != 1.0 || has_scale(*node->parent);
    if (scaled || scale_chain(*node->parent).size() > 1)
      scene_.connections.connect(above, "scale", id_of(*node), "inverseScale");
  }
}

}  // namespace vantorelix::standalone
