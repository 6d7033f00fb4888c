// Surfaces that deformers move.
#include <algorithm>
#include <array>

#include "standalone/formats/bounds_draft.h"
#include "standalone/formats/maya/maya_reader.h"

namespace vantorelix::standalone {
namespace {

constexpr std::array<const char*, 3> kSurfaces = {"mesh", "nurbsSurface", "subdiv"};

// Deformers of every kind, from plug-ins too, hand their geometry on by this attribute.
bool is_deformed_geometry(std::string_view attribute) {
  return attribute.starts_with("og[") || attribute.starts_with("outputGeometry[");
}

}  // namespace

// A tweak holds the offsets of single vertices, which stand still.
void MayaReader::note_deformer(NodeId driver, std::string_view attribute) {
  if (bounds_ && is_deformed_geometry(attribute) && scene_.nodes.type(driver) != "tweak") deformers_.insert(driver);
}

// Those that get their geometry from a deformer, be it through other nodes; but what a surface does to a transform, as
// a constraint or a follicle would, deforms nothing there.
void MayaReader::mark_deformed_surfaces() {
  if (deformers_.empty()) return;
  std::unordered_map<NodeId, std::vector<NodeId>> outputs;
  for (const NodeId node : scene_.nodes.all()) {
    if (scene_.nodes.is_transform(node)) continue;
    for (const Connection& c : scene_.connections.into(node)) outputs[c.source].push_back(node);
  }
  std::vector<NodeId> open(deformers_.begin(), deformers_.end());
  while (!open.empty()) {
    const NodeId node = open.back();
    open.pop_back();
    for (const NodeId next : outputs[node])
      if (deformers_.insert(next).second) open.push_back(next);
  }
  for (const NodeId node : deformers_) {
    const std::string& type = scene_.nodes.type(node);
    if (std::find(kSurfaces.begin(), kSurfaces.end(), type) != kSurfaces.end()) mark_deformed(scene_, node);
  }
}

}  // namespace vantorelix::standalone
