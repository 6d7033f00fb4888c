#include "session/selection.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/pattern.h"
#include "session/failure.h"
#include "standalone/formats/reader.h"

namespace vantorelix::session {

using standalone::NodeId;
using standalone::Scene;

namespace {

bool is_shape_of_object(const Scene& scene, NodeId node) {
  return scene.nodes.is_shape(node) && scene.nodes.parent(node) != standalone::kWorld;
}

std::vector<NodeId> transforms(const Scene& scene, bool all) {
  std::vector<NodeId> found;
  for (const NodeId node : scene.nodes.all())
    if (scene.nodes.is_transform(node) && (all || scene.evaluation.is_animated(node))) found.push_back(node);
  return found;
}

// Whether the pattern stands for the path of a node, whose parts bear the names that `name` tells.
template <typename Name>
bool matches_path(const PathPattern& pattern, const Scene& scene, NodeId node, const Name& name) {
  decltype(name(node)) kept;
  return pattern.matches([&]() -> std::optional<std::string_view> {
    if (node == standalone::kWorld) return std::nullopt;
    kept = name(std::exchange(node, scene.nodes.parent(node)));
    return kept;
  });
}

class Finder {
 public:
  Finder(const Scene& scene, bool ignore_case) : scene_(scene), ignore_case_(ignore_case) {
    for (const NodeId node : scene.nodes.all()) {
      if (!scene.nodes.is_transform(node) && !is_shape_of_object(scene, node)) continue;
      nodes_.push_back(node);
      if (scene.attributes.has(node, standalone::kNameInFile))
        renamed_.emplace(standalone::name_in_file(scene, node), node);
    }
  }

  // The transforms that a pattern stands for; perhaps more than once.
  std::vector<NodeId> find(const std::string& text) const {
    const std::vector<NodeId> exact = named(text);
    if (!exact.empty()) return exact;
    try {
      return matching(PathPattern(without_colon(text), ignore_case_), PathPattern(text, ignore_case_));
    } catch (const PatternError& error) {
      throw Failure(Failure::Kind::bad_pattern, "'" + text + "' is not a valid pattern: " + error.what());
    }
  }

 private:
  // A colon in front stands for the scene's root namespace.
  static std::string_view without_colon(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(':'), text.size()));
  }

  std::vector<NodeId> named(const std::string& text) const {
    if (ignore_case_)
      return matching(PathPattern::literal(without_colon(text), true), PathPattern::literal(text, true));
    std::vector<NodeId> found;
    if (text.find_first_of("*?") == std::string::npos)
      for (const NodeId node : scene_.names.match(text)) add(node, true, found);
    const auto [first, last] = renamed_.equal_range(text);
    for (auto at = first; at != last; ++at) add(at->second, true, found);
    std::sort(found.begin(), found.end());
    return found;
  }

  std::vector<NodeId> matching(const PathPattern& in_scene, const PathPattern& in_file) const {
    std::vector<NodeId> found;
    const auto name = [&](NodeId node) { return scene_.names.short_name(node); };
    const auto file_name = [&](NodeId node) { return standalone::name_in_file(scene_, node); };
    for (const NodeId node : nodes_)
      if (matches_path(in_scene, scene_, node, name) ||
          (!renamed_.empty() && matches_path(in_file, scene_, node, file_name)))
        add(node, !in_scene.deep(), found);
    return found;
  }

  void add(NodeId node, bool shapes, std::vector<NodeId>& found) const {
    if (scene_.nodes.is_transform(node))
      found.push_back(node);
    else if (shapes && is_shape_of_object(scene_, node))
      found.push_back(scene_.nodes.parent(node));
  }

  const Scene& scene_;
  bool ignore_case_;
  std::vector<NodeId> nodes_;                             // transforms and shapes
  std::unordered_multimap<std::string, NodeId> renamed_;  // those of another name in the file, by that
};

// What to say of a scene in which nothing moves: it may be still, or moved by what is not evaluated.
Failure nothing_animated(const Scene& scene) {
  for (const NodeId node : transforms(scene, true))
    if (!scene.evaluation.not_followed(node).empty())
      return {Failure::Kind::nothing_followed, "nothing that can be followed is animated"};
  return {Failure::Kind::nothing_animated, "nothing is animated"};
}

// Those that are wanted, before any are left out.
std::vector<NodeId> wanted(const Scene& scene, const Selection& selection, const Finder& finder) {
  std::vector<NodeId> found;
  for (const std::string& pattern : selection.patterns) {
    const auto some = finder.find(pattern);
    if (some.empty()) throw Failure(Failure::Kind::no_match, "no object matches '" + pattern + "'");
    found.insert(found.end(), some.begin(), some.end());
  }
  const bool animated = selection.patterns.empty() && !selection.all;
  if (selection.all || animated) {
    const auto rest = transforms(scene, selection.all);
    found.insert(found.end(), rest.begin(), rest.end());
  }
  if (found.empty()) throw animated ? nothing_animated(scene) : Failure(Failure::Kind::no_object, "holds no object");
  return found;
}

}  // namespace

std::vector<NodeId> choose(const Scene& scene, const Selection& selection) {
  const Finder finder(scene, selection.ignore_case);
  std::unordered_set<NodeId> seen;
  for (const std::string& pattern : selection.exclude)
    for (const NodeId node : finder.find(pattern)) seen.insert(node);
  std::vector<NodeId> chosen;
  for (const NodeId node : wanted(scene, selection, finder))
    if (seen.insert(node).second) chosen.push_back(node);
  if (chosen.empty()) throw Failure(Failure::Kind::all_excluded, "every object that was chosen is excluded");
  return chosen;
}

}  // namespace vantorelix::session
