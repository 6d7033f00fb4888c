#include "engine/commands/apply_preferences.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "engine/rebuild/triggers.h"
#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "engine/state/preferences.h"
#include "engine/state/state.h"
#include "engine/trails/nodes.h"

namespace vantorelix {

namespace {

using DisplaySettings = std::array<std::pair<const char*, host::Value>, 6>;

// In the order in which they are read and written. Braces evaluate left to right.
DisplaySettings read_display_settings() {
  return DisplaySettings{{
      {"lineWidth", _get_pref_line_width()},
      {"pointSize", _get_pref_point_size()},
      {"showLine", _get_pref_show_line()},
      {"showDots", _get_pref_show_dots()},
      {"xrayMode", _get_pref_xray()},
      {"colorMode", _get_pref_color_mode()},
  }};
}

// The node is told at once, so that it maps the samples it has to frames; the samples themselves follow later.
void apply_density(const std::string& viz_tr, Settings& settings, std::int64_t samples) {
  settings.set("samples_per_frame", samples);
  attempt([&] {
    const std::string shape = _first_shape(viz_tr);
    cmds->setAttr(shape + ".frameStep", 1.0 / static_cast<double>(std::max<std::int64_t>(1, samples)));
    cmds->setAttr(shape + ".startFrame", cmds->playbackOptions_min());
  });
}

}  // namespace

void apply_prefs_to_existing_trails(bool rebuild_if_samples_changed) {
  const std::vector<std::string> shapes = cmds->ls_type(NODE_TYPE);
  const DisplaySettings display = read_display_settings();
  for (const std::string& shape : shapes) {
    for (const auto& [attribute, value] : display) {
      attempt([&, name = attribute, &setting = value] { cmds->setAttr(shape + "." + name, setting); });
    }
  }
  if (rebuild_if_samples_changed && !_REGISTRY.empty()) {
    const std::int64_t samples = _get_pref_samples();
    const auto trails = _REGISTRY.snapshot();
    for (const auto& [viz_tr, settings] : *trails) apply_density(viz_tr, *settings, samples);
    _schedule_rebuild();
  }
  attempt([] { cmds->refresh(); });
}

}  // namespace vantorelix
