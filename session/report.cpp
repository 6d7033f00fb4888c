#include "session/report.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <unordered_set>

#include "base/number.h"
#include "session/figure.h"
#include "standalone/formats/maya/maya_units.h"
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

void add_figures(TrailReport& report, const Scene& scene, const std::vector<Trail>& trails) {
  std::vector<NodeId> objects;
  for (const Trail& trail : trails) objects.push_back(trail.source);
  const auto found = figures_of(scene, objects);
  for (std::size_t i = 0; i < found.size(); ++i) report.trails[i].figure = found[i];
}

ContactLimits limits_of(const TrailReport& report, const Figure& figure) {
  const bool by_figure = report.contacts == ContactRule::figure;
  const ContactLimits& limits = by_figure ? kPartsOfFigure : kCentimetres;
  const double scale = by_figure ? figure.height : 1.0 / centimetres(report.unit).value_or(kUnknown);
  return {scale * limits.near, scale * limits.fast};
}

}  // namespace

std::string unit_text(const TrailReport& report) { return report.unit == kUnknownUnit ? "units" : report.unit; }

std::optional<double> centimetres(const std::string& unit) {
  if (const auto named = standalone::linear_unit_named(unit)) return named->centimetres;
  const std::size_t blank = unit.find(" cm");  // "2.5 cm", of an FBX file
  if (blank == std::string::npos) return std::nullopt;
  double number = 0.0;
  parse_number(unit.data(), unit.data() + blank, number);
  return number > 0.0 ? std::optional(number) : std::nullopt;
}

TrailReport read_trails(const Scene& scene, const std::vector<Trail>& trails, const std::string& file,
                        Figures figures) {
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
  if (figures == Figures::with) add_figures(report, scene, trails);
  return report;
}

Path path_of(const TrailView& trail, double fps) { return {*trail.points, trail.start_frame, trail.frame_step, fps}; }

Ground ground_of(const TrailReport& report, const Figure& figure) {
  return {report.up_axis, figure, limits_of(report, figure)};
}

Measures measures_of(const TrailView& trail, const TrailReport& report) {
  return measures_of(path_of(trail, report.fps), ground_of(report, trail.figure));
}

std::optional<Measures> measures_of_second(const TrailView& trail, const TrailReport& report) {
  if (!trail.compare) return std::nullopt;
  const Path path{*trail.compare->points, trail.start_frame, trail.frame_step, report.compared->fps};
  return measures_of(path, ground_of(report, trail.compare->figure));
}

}  // namespace vantorelix::session
