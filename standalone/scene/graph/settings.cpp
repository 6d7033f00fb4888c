#include "standalone/scene/graph/settings.h"

#include <utility>

#include "standalone/scene/graph/graph.h"

namespace vantorelix::standalone {

double SceneSettings::frames_per_second() const { return graph().settings.frames_per_second; }

void SceneSettings::set_frames_per_second(double fps) {
  if (!(fps > 0.0) || fps > 1e9) throw host::Error("frames per second must be above 0", host::ErrorKind::value);
  graph().change_settings().frames_per_second = fps;
  for (const auto& node : graph().nodes)
    if (node && node->curve) node->curve->set_frames_per_second(fps);
  graph().curves_changed();
}

std::string SceneSettings::linear_unit() const { return graph().settings.linear_unit; }
char SceneSettings::up_axis() const { return graph().settings.up_axis; }
const std::vector<Take>& SceneSettings::takes() const { return graph().settings.takes; }
std::size_t SceneSettings::take() const { return graph().settings.take; }
double SceneSettings::playback_min() const { return graph().settings.playback_min; }
double SceneSettings::playback_max() const { return graph().settings.playback_max; }
double SceneSettings::current_time() const { return graph().settings.current_time; }

void SceneSettings::set_linear_unit(std::string unit) { graph().change_settings().linear_unit = std::move(unit); }
void SceneSettings::set_up_axis(char axis) { graph().change_settings().up_axis = axis; }
void SceneSettings::set_current_time(double frame) { graph().change_settings().current_time = frame; }

void SceneSettings::set_takes(std::vector<Take> takes, std::size_t chosen) {
  Settings& settings = graph().change_settings();
  settings.takes = std::move(takes);
  settings.take = chosen;
}

void SceneSettings::set_playback_range(double first, double last) {
  Settings& settings = graph().change_settings();
  settings.playback_min = first;
  settings.playback_max = last;
}

void SceneWarnings::add(std::string kind) {
  const auto [place, fresh] = graph().warning_places.try_emplace(kind, graph().warnings.size());
  if (fresh) graph().warnings.push_back({std::move(kind), 0});
  ++graph().warnings[place->second].count;
}

std::vector<Warning> SceneWarnings::all() const { return graph().warnings; }

}  // namespace vantorelix::standalone
