#include "engine/commands/nurbs.h"

#include <set>
#include <string>
#include <vector>

#include "engine/state/messages.h"
#include "engine/state/state.h"
#include "engine/trails/nodes.h"
#include "engine/trails/trail_data.h"
#include "host/error.h"

namespace vantorelix {

namespace {

// A curve of degree d needs d + 1 points. A number only: a numeric text does not add.
bool too_few_points(std::size_t points, const host::Value& degree) {
  if (degree.as_text()) throw host::Error("degree must be a number, as 3, not " + degree.repr(), host::ErrorKind::type);
  return static_cast<double>(points) < degree.to_float() + 1.0;
}

std::set<std::string> selected_short_names() {
  std::set<std::string> names;
  for (const std::string& path : cmds->ls_selection()) names.insert(_short_name(path));
  return names;
}

// Appends the new curve's name to `created`, or nothing where the trail cannot become a curve.
void convert_trail(const std::string& viz_tr, const Settings& settings, const std::set<std::string>& selected,
                   const host::Value& degree, std::vector<std::string>& created) {
  const std::string source = _source_of(settings);
  const std::string source_short = _short_name(source);
  if (!selected.empty() && !selected.count(_short_name(viz_tr)) && !selected.count(source_short)) return;
  if (!cmds->objExists(source)) return;
  const auto computed = _compute_trail_data(source, settings.at("samples_per_frame"), settings.get("ref"));
  if (!computed) return;
  const std::vector<Position>& pos = *computed->first.viz.positions;
  if (too_few_points(pos.size(), degree)) return;
  created.push_back(cmds->curve(degree, pos, "vlx_" + source_short + "_curve"));
}

}  // namespace

void convert_to_nurbs(const host::Value& degree) {
  const std::set<std::string> selected = selected_short_names();
  std::vector<std::string> created;
  const auto trails = _REGISTRY.snapshot();
  for (const auto& [viz_tr, settings] : *trails) {
    convert_trail(viz_tr, *settings, selected, degree, created);
  }
  if (created.empty()) {
    _msg("No trails to convert. Build a trail first.");
    return;
  }
  cmds->select(created);
  _msg("Created " + std::to_string(created.size()) + " standalone NURBS curve(s).");
}

}  // namespace vantorelix
