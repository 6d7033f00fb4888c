#include "standalone/host/host.h"

#include <cstdio>
#include <utility>

#include "host/error.h"
#include "standalone/host/commands.h"
#include "standalone/host/host_state.h"
#include "standalone/host/interpreter.h"
#include "standalone/host/object_model.h"

namespace vantorelix::standalone {

using host::Error;
using host::ErrorKind;

NodeId node_named(const Scene& scene, std::string_view name, std::string_view shown) {
  NodeId node = kNoNode;
  try {
    node = scene.names.find(name);
  } catch (const Error&) {
    throw Error("More than one object matches name: " + std::string(shown), ErrorKind::value);
  }
  if (node == kNoNode) throw Error("No object matches name: " + std::string(shown), ErrorKind::value);
  return node;
}

HostState::HostState(Scene given_scene, HostOptions given_options)
    : scene(std::move(given_scene)),
      options(std::move(given_options)),
      messages([this](const std::string& text) { warn(text); }),
      option_variables(options.preferences ? OptionStore(*options.preferences) : OptionStore()),
      plugins(scene) {
  for (const std::string& panel : options.model_panels) panels[panel] = {{"motionTrails", false}};
  if (options.plugin_loaded) plugins.load_built_in();
  scene.changes.set_listener({[this](NodeId) { messages.send(Message::curve_edited); },
                              [this](NodeId) { messages.send(Message::keyframe_edited); },
                              [this](NodeId, const std::string& type) { messages.send(Message::node_removed, type); }});
}

void HostState::warn(const std::string& text) const {
  if (options.warning) return options.warning(text);
  std::fputs(("Warning: " + text + "\n").c_str(), stderr);
}

std::vector<NodeId> HostState::selected() const {
  std::vector<NodeId> present;
  for (const NodeId node : selection)
    if (scene.nodes.exists(node)) present.push_back(node);
  return present;
}

struct Host::Data {
  Data(Scene scene, HostOptions options) : state(std::move(scene), std::move(options)) {}

  HostState state;
  Commands commands{state};
  Objects objects{state};
  Animation animation{state};
  StandaloneInterpreter interpreter{state};
};

Host::Host(Scene scene, HostOptions options) : data_(std::make_unique<Data>(std::move(scene), std::move(options))) {}
Host::~Host() = default;

host::CommandLayer& Host::cmds() { return data_->commands; }
host::ObjectModel& Host::om() { return data_->objects; }
host::AnimationModel& Host::oma() { return data_->animation; }
host::Interpreter& Host::interpreter() { return data_->interpreter; }
Scene& Host::scene() { return data_->state.scene; }

void Host::select(const std::vector<NodeId>& nodes) { data_->state.selection = nodes; }
std::vector<NodeId> Host::selection() const { return data_->state.selected(); }

bool Host::run_idle_once() { return data_->state.deferred.run_one(); }

std::size_t Host::run_idle(std::size_t limit) {
  std::size_t ran = 0;
  while (ran < limit && run_idle_once()) ++ran;
  return ran;
}

std::size_t Host::idle_count() const { return data_->state.deferred.size(); }

void Host::set_playing(bool playing) { data_->state.playing = playing; }
void Host::set_file_activity(FileActivity activity) { data_->state.file_activity = activity; }

void Host::add_model_panel(const std::string& panel) {
  data_->state.options.model_panels.push_back(panel);
  data_->state.panels[panel] = {{"motionTrails", false}};
}

void Host::set_panel_flag(const std::string& panel, const std::string& flag, bool on) {
  data_->state.panels[panel][flag] = on;
}

bool Host::panel_flag(const std::string& panel, const std::string& flag) const {
  const auto found = data_->state.panels.find(panel);
  if (found == data_->state.panels.end()) return false;
  const auto known = found->second.find(flag);
  return known != found->second.end() && known->second;
}

std::size_t Host::refresh_count() const { return data_->state.refreshes; }

void Host::set_option(const std::string& name, const host::Value& value) {
  data_->state.option_variables.set(name, value);
}

std::optional<host::Value> Host::option(const std::string& name) const {
  return data_->state.option_variables.get(name);
}

std::vector<std::string> Host::option_names() const { return data_->state.option_variables.names(); }

void Host::set_environment(const std::string& name, const std::string& value) {
  data_->state.environment[name] = value;
}

void Host::add_module(const std::string& name, std::vector<std::pair<std::string, std::function<void()>>> functions) {
  data_->state.modules[name] = std::move(functions);
}

std::vector<std::string> Host::loaded_plugins() const { return data_->state.plugins.loaded(); }

std::size_t Host::callback_count() const { return data_->state.messages.size(); }

}  // namespace vantorelix::standalone
