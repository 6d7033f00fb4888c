// Instances: nodes with several parents.
//
// The scene's nodes have one parent each. What stands under a second one becomes nodes of their own, with the same
// values, driven by the same connections, and so does everything below it.
#include <algorithm>

#include "host/error.h"
#include "standalone/formats/maya/maya_reader.h"

namespace vantorelix::standalone {
namespace {

// Instances of instances multiply: a small file could ask for any number of nodes.
constexpr std::size_t kMaxTwins = 100'000;

std::string second_path(NodeId above, std::string_view name) { return std::to_string(above) + "|" + std::string(name); }

bool is_identity(const std::vector<host::Value>& matrix) {
  for (std::size_t k = 0; k < matrix.size(); ++k)
    if (matrix[k].to_float() != (k % 5 == 0 ? 1.0 : 0.0)) return false;
  return true;
}

void copy_values(Scene& scene, NodeId from, NodeId to) {
  if (const Vectors bounds = scene.attributes.vectors(from, kBounds)) scene.attributes.set_vectors(to, kBounds, bounds);
  if (!scene.nodes.is_transform(from)) return;
  for (std::size_t c = 0; c < static_cast<std::size_t>(Channel::count); ++c) {
    const auto channel = static_cast<Channel>(c);
    scene.attributes.set_channel(to, channel, scene.attributes.channel(from, channel));
  }
  const host::Value offset = scene.attributes.value(from, "offsetParentMatrix");
  if (!is_identity(**offset.as_list())) scene.attributes.set(to, "offsetParentMatrix", offset);
}

}  // namespace

void MayaReader::add_instances(const std::vector<std::string>& names, NodeId above) {
  for (const std::string& name : names) {
    const NodeId node = find(name);
    if (node == kNoNode || !(scene_.nodes.is_transform(node) || scene_.nodes.is_shape(node))) continue;
    if (above == kWorld &&
        !(scene_.nodes.is_transform(node) && scene_.nodes.is_registered_type(scene_.nodes.type(node))))
      continue;
    instances_.emplace_back(node, above);
    instances_under_[above].push_back(node);
    second_paths_.emplace(second_path(above, scene_.names.short_name(node)), node);
  }
}

// The node of a path that goes through a second parent.
NodeId MayaReader::find_by_second_path(std::string_view path) {
  const std::size_t bar = path.rfind('|');
  if (bar == std::string_view::npos || static_cast<std::size_t>(std::count(path.begin(), path.end(), '|')) > kMaxDepth)
    return kNoNode;
  const std::string_view name = path.substr(bar + 1);
  const NodeId above = bar == 0 ? kWorld : find(path.substr(0, bar));
  if (above == kNoNode) return kNoNode;
  const auto found = second_paths_.find(second_path(above, name));
  if (found != second_paths_.end()) return found->second;
  return above == kWorld ? kNoNode : scene_.names.find(scene_.names.long_name(above) + "|" + std::string(name));
}

void MayaReader::make_instances() {
  if (instances_.empty()) return;
  const NodeId first_twin = scene_.nodes.all().back() + 1;
  twins_left_ = kMaxTwins;
  for (const auto& [node, above] : instances_) {
    if (!scene_.nodes.exists(node) || !(above == kWorld || scene_.nodes.exists(above))) continue;
    try {
      make_twins(node, above, first_twin);
    } catch (const host::Error& error) {
      note(std::string("an instance is left out, bake it before saving: ") + error.what());
      twin_path_.clear();
    }
  }
}

// Makes `node` and all below it a second time under `above`. Children from `first_twin` on are twins themselves, made
// for another instance, and are not copied again.
void MayaReader::make_twins(NodeId node, NodeId above, NodeId first_twin) {
  if (!twin_path_.insert(node).second)
    return note(
        "a node is an instance of itself below itself, and is left out there; delete that instance before saving");
  if (twins_left_ == 0 || twin_path_.size() > kMaxDepth) {
    note("instances make more than " + std::to_string(kMaxTwins) +
         " nodes, or 2000 inside each other; the others are missing: bake or delete some of them before saving");
  } else {
    --twins_left_;
    const NodeId twin = make_twin(node, above);
    std::vector<NodeId> below = scene_.nodes.children(node);
    std::erase_if(below, [first_twin](NodeId child) { return child >= first_twin; });
    if (const auto more = instances_under_.find(node); more != instances_under_.end())
      below.insert(below.end(), more->second.begin(), more->second.end());
    for (const NodeId child : below) make_twins(child, twin, first_twin);
  }
  twin_path_.erase(node);
}

NodeId MayaReader::make_twin(NodeId node, NodeId above) {
  const NodeId twin = scene_.nodes.create(scene_.nodes.type(node), scene_.names.short_name(node), above);
  keep_name_in_file(scene_, twin, name_in_file(scene_, node));
  copy_values(scene_, node, twin);
  for (const Connection& c : scene_.connections.into(node))
    scene_.connections.connect(c.source, c.source_attribute, twin, c.attribute);
  return twin;
}

}  // namespace vantorelix::standalone
