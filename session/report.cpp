#include "session/report.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <unordered_set>

#include "base/mathematics/mathematics.h"
#include "standalone/formats/reader.h"

namespace vantorelix::session {

using standalone::NodeId;
using standalone::Scene;

namespace {

Vectors array(const Scene& scene, NodeId shape, const char* attribute) {
  Vectors values = scene.attributes.vectors(shape, attribute);
  return values ? values : std::make_shared<const std::vector<Vector>>();
}

void warn_of_gaps(TrailView& trail) {
  const auto bad =
      std::count_if(trail.points->begin(), trail.points->end(), [](const Vector& p) { return !is_finite(p); });
  if (bad != 0) trail.warnings.push_back(std::to_string(bad) + " samples are not finite numbers");
}

using Sources = std::unordered_set<NodeId>;

std::optional<std::string> parent_of(const Scene& scene, NodeId object, const Sources& sources) {
  for (NodeId node = scene.nodes.parent(object); node != standalone::kWorld; node = scene.nodes.parent(node))
    if (sources.count(node) != 0) return scene.names.long_name(node);
  return std::nullopt;
}

TrailView read_trail(const Scene& scene, const Trail& trail, const Sources& sources) {
  const NodeId shape = scene.nodes.shapes(trail.viz).at(0);
  TrailView data;
  data.viz = scene.names.short_name(trail.viz);
  data.source = scene.names.long_name(trail.source);
  data.name = standalone::name_in_file(scene, trail.source);
  if (scene.attributes.has(trail.source, standalone::kNumberInFile)) {
    data.node = scene.attributes.value(trail.source, standalone::kNumberInFile).to_int();
  }
  data.parent = parent_of(scene, trail.source, sources);
  data.samples_per_frame = trail.samples_per_frame;
  data.color_mode = scene.attributes.value(shape, "colorMode").to_int();
  data.start_frame = scene.attributes.value(shape, "startFrame").to_float();
  data.frame_step = scene.attributes.value(shape, "frameStep").to_float();
  data.line_width = scene.attributes.value(shape, "lineWidth").to_float();
  data.point_size = scene.attributes.value(shape, "pointSize").to_float();
  data.show_line = scene.attributes.value(shape, "showLine").truthy();
  data.show_dots = scene.attributes.value(shape, "showDots").truthy();
  data.ghost = scene.attributes.value(shape, "xrayMode").truthy();
  data.points = array(scene, shape, "points");
  data.colors = array(scene, shape, "colors");
  data.key_points = array(scene, shape, "keyPoints");
  data.key_colors = array(scene, shape, "keyColors");
  for (const Vector& time : *array(scene, shape, "keyTimes")) data.key_times.push_back(time.x);
  data.warnings = scene.evaluation.not_followed(trail.source);
  warn_of_gaps(data);
  return data;
}

}  // namespace

std::string unit_text(const TrailReport& report) { return report.unit == kUnknownUnit ? "units" : report.unit; }

TrailReport read_trails(const Scene& scene, const std::vector<Trail>& trails, const std::string& file) {
  TrailReport report{file,
                     scene.settings.frames_per_second(),
                     scene.settings.playback_min(),
                     scene.settings.playback_max(),
                     scene.settings.linear_unit(),
                     scene.settings.up_axis(),
                     {}};
  report.current = scene.settings.current_time();
  Sources sources;
  for (const Trail& trail : trails) sources.insert(trail.source);
  report.trails.reserve(trails.size());
  for (const Trail& trail : trails) report.trails.push_back(read_trail(scene, trail, sources));
  return report;
}

double way_after(const TrailView& trail, std::size_t sample) {
  const auto& points = *trail.points;
  if (sample + 1 >= points.size()) return std::numeric_limits<double>::quiet_NaN();
  const Vector &a = points[sample], &b = points[sample + 1];
  const double way = base::hypot(b.x - a.x, b.y - a.y, b.z - a.z);
  return std::isfinite(way) ? way : std::numeric_limits<double>::quiet_NaN();
}

double ways_a_second(const TrailView& trail, double fps) { return fps / trail.frame_step; }

TrailMeasure measure(const TrailView& trail, double fps) {
  TrailMeasure result;
  double shortest = std::numeric_limits<double>::infinity();
  double longest = 0.0;
  std::size_t ways = 0;
  for (std::size_t i = 0; i < trail.points->size(); ++i) {
    const double way = way_after(trail, i);
    if (std::isnan(way)) continue;
    ++ways;
    result.length += way;
    shortest = std::min(shortest, way);
    longest = std::max(longest, way);
  }
  if (ways == 0) return result;
  const double a_second = ways_a_second(trail, fps);
  result.slowest = shortest * a_second;
  result.top_speed = longest * a_second;
  result.mean_speed = result.length / static_cast<double>(ways) * a_second;
  return result;
}

}  // namespace vantorelix::session
