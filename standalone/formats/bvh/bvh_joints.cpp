// Which joints a clip is made of.
#include <unordered_set>

#include "standalone/formats/bvh/bvh_figure.h"
#include "standalone/formats/reader.h"

namespace vantorelix::standalone {

namespace {

bool is_joint(const Scene& scene, NodeId node) { return scene.nodes.type(node) == "joint"; }

NodeId topmost_joint(const Scene& scene, NodeId node) {
  NodeId top = kNoNode;
  for (; node != kWorld; node = scene.nodes.parent(node))
    if (is_joint(scene, node)) top = node;
  return top;
}

struct Open {
  NodeId node, above;
  std::size_t depth;
};

void add_with_children(const Scene& scene, NodeId root, std::vector<BvhJoint>& joints) {
  std::vector<Open> open = {{root, kWorld, 0}};
  while (!open.empty()) {
    const Open now = open.back();
    open.pop_back();
    const std::vector<NodeId> children = scene.nodes.children(now.node);
    const bool end_site = is_bvh_end_site(scene, now.node), added = end_site || is_joint(scene, now.node);
    if (added) joints.push_back({now.node, now.above, now.depth, end_site && children.empty(), {}, {}, false});
    for (auto child = children.rbegin(); child != children.rend(); ++child)
      if (scene.nodes.is_transform(*child))
        open.push_back({*child, added ? now.node : now.above, now.depth + (added ? 1 : 0)});
  }
}

}  // namespace

bool is_bvh_end_site(const Scene& scene, NodeId node) {
  const NodeId parent = scene.nodes.parent(node);
  return parent != kWorld && is_joint(scene, parent) && !is_joint(scene, node) &&
         name_in_file(scene, node) == "End Site of " + name_in_file(scene, parent);
}

std::vector<BvhJoint> bvh_joints(const Scene& scene, const std::vector<NodeId>& objects, BvhLosses& losses) {
  std::vector<BvhJoint> joints;
  std::unordered_set<NodeId> known;
  for (const NodeId object : objects) {
    const NodeId top = topmost_joint(scene, object);
    if (top != kNoNode && known.insert(top).second) add_with_children(scene, top, joints);
    if (!is_joint(scene, object) && !is_bvh_end_site(scene, object) && scene.curves.has_keys(object))
      losses.no_joint.add(scene.names.unique_name(object));
  }
  return joints;
}

}  // namespace vantorelix::standalone
