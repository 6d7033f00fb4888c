#include "session/compare.h"

#include <cmath>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/mathematics/mathematics.h"
#include "base/number_text.h"

namespace vantorelix::session {

using standalone::NodeId;
using standalone::Scene;

namespace {

// --- which object is which

std::string without_namespaces(const std::string& path) {
  std::string result;
  std::size_t component = 0;  // where the last one begins in the result
  for (const char c : path) {
    if (c == ':') {
      result.resize(component);
      continue;
    }
    result += c;
    if (c == '|') component = result.size();
  }
  return result;
}

NodeId find_exactly(const Scene& scene, const std::string& path) {
  const NodeId node = scene.names.find(path);
  return node != standalone::kNoNode && scene.nodes.is_transform(node) && scene.names.long_name(node) == path
             ? node
             : standalone::kNoNode;
}

// The transforms of a scene, but for `taken`, by their paths without namespaces.
std::unordered_map<std::string, std::vector<NodeId>> by_plain_path(const Scene& scene,
                                                                   const std::unordered_set<NodeId>& taken) {
  std::unordered_map<std::string, std::vector<NodeId>> result;
  for (const NodeId node : scene.nodes.all())
    if (scene.nodes.is_transform(node) && taken.count(node) == 0)
      result[without_namespaces(scene.names.long_name(node))].push_back(node);
  return result;
}

// --- one scene's positions in the other's terms

// Positions of one scene as another would have them.
struct Conversion {
  double scale = 1.0;
  char from_up = 'y', to_up = 'y';

  Conversion(const TrailReport& from, const TrailReport& to) : from_up(from.up_axis), to_up(to.up_axis) {
    const auto from_unit = centimetres(from.unit), to_unit = centimetres(to.unit);
    if (from.unit != to.unit && from_unit && to_unit) scale = *from_unit / *to_unit;
  }
  bool changes_nothing() const { return scale == 1.0 && from_up == to_up; }
  // A quarter turn around x makes y of z.
  Vector operator()(const Vector& p) const {
    const Vector v{p.x * scale, p.y * scale, p.z * scale};
    if (from_up == to_up) return v;
    return to_up == 'z' ? Vector{v.x, -v.z, v.y} : Vector{v.x, v.z, -v.y};
  }
};

Vectors converted(const Vectors& points, const Conversion& conversion) {
  if (conversion.changes_nothing()) return points;
  std::vector<Vector> result;
  result.reserve(points->size());
  for (const Vector& p : *points) result.push_back(conversion(p));
  return std::make_shared<const std::vector<Vector>>(std::move(result));
}

Comparison compared(const TrailView& trail, const TrailView& other, const Conversion& conversion) {
  Comparison result{other.source, converted(other.points, conversion), {}, kUnknown, kUnknown};
  result.figure = {conversion.scale * other.figure.height, conversion.scale * other.figure.floor};
  const auto &here = *trail.points, &there = *result.points;
  result.distances.reserve(here.size());
  for (std::size_t i = 0; i < here.size(); ++i) {
    const bool known = i < there.size() && is_finite(here[i]) && is_finite(there[i]);
    const double distance =
        known ? base::hypot(here[i].x - there[i].x, here[i].y - there[i].y, here[i].z - there[i].z) : kUnknown;
    result.distances.push_back(distance);
    // The first that is known is larger than none.
    if (!std::isfinite(distance) || distance <= result.largest) continue;
    result.largest = distance;
    result.frame = trail.start_frame + static_cast<double>(i) * trail.frame_step;
  }
  return result;
}

std::vector<std::string> doubts(const TrailReport& report, const TrailReport& other) {
  std::vector<std::string> texts;
  if (other.fps != report.fps)
    texts.push_back("runs at " + readable(other.fps, 6) + " frames a second and " + report.scene + " at " +
                    readable(report.fps, 6) + ": frames of the same number are compared");
  if (other.unit == report.unit || (centimetres(other.unit) && centimetres(report.unit))) return texts;
  const bool mine = !centimetres(report.unit);
  texts.push_back("its numbers are taken for those of " + report.scene + ": the unit of " +
                  (mine ? report.scene : "this file") + " is not known");
  return texts;
}

}  // namespace

std::vector<std::optional<NodeId>> counterparts(const TrailReport& report, const Scene& other) {
  std::vector<std::optional<NodeId>> result(report.trails.size());
  std::unordered_set<NodeId> taken;
  std::unordered_map<std::string, std::vector<std::size_t>> left;  // trails by their paths without namespaces
  for (std::size_t i = 0; i < result.size(); ++i) {
    const std::string& path = report.trails[i].source;
    const NodeId node = find_exactly(other, path);
    if (node == standalone::kNoNode)
      left[without_namespaces(path)].push_back(i);
    else
      taken.insert(*(result[i] = node));
  }
  if (left.empty()) return result;
  const auto candidates = by_plain_path(other, taken);
  for (const auto& [path, trails] : left) {
    const auto found = candidates.find(path);
    if (found != candidates.end() && found->second.size() == 1 && trails.size() == 1)
      result[trails[0]] = found->second[0];
  }
  return result;
}

std::vector<std::string> compare(TrailReport& report, const std::vector<std::optional<std::string>>& paths,
                                 const TrailReport& other) {
  std::unordered_map<std::string, const TrailView*> by_source;
  for (const TrailView& trail : other.trails) by_source.emplace(trail.source, &trail);
  const Conversion conversion(other, report);
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const auto found = paths[i] ? by_source.find(*paths[i]) : by_source.end();
    if (found != by_source.end()) report.trails[i].compare = compared(report.trails[i], *found->second, conversion);
  }
  return doubts(report, other);
}

std::optional<std::size_t> farthest_apart(const TrailReport& report) {
  std::optional<std::size_t> farthest;
  for (std::size_t i = 0; i < report.trails.size(); ++i) {
    const auto& compare = report.trails[i].compare;
    if (!compare || std::isnan(compare->largest)) continue;
    if (!farthest || compare->largest > report.trails[*farthest].compare->largest) farthest = i;
  }
  return farthest;
}

TrailReport second_of(const TrailReport& report) {
  static const auto kNowhere = std::make_shared<const std::vector<Vector>>();
  TrailReport second = report;
  for (TrailView& trail : second.trails) trail.points = trail.compare ? trail.compare->points : kNowhere;
  return second;
}

}  // namespace vantorelix::session
