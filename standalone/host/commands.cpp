// Application, option variables, deferred calls, messages and panels. The scene's own commands are in
// scene_commands.cpp.
#include "standalone/host/commands.h"

#include <algorithm>
#include <filesystem>

#include "host/error.h"

namespace vantorelix::standalone {

using host::Error;
using host::ErrorKind;
using host::Value;

namespace {

// The folders of a search path, empty entries left out.
std::vector<std::string> folders_of(const std::string& search_path) {
  const char separator = std::filesystem::path::preferred_separator == '/' ? ':' : ';';
  std::vector<std::string> folders;
  std::size_t begin = 0;
  while (begin <= search_path.size()) {
    const std::size_t end = std::min(search_path.find(separator, begin), search_path.size());
    if (end > begin) folders.push_back(search_path.substr(begin, end - begin));
    begin = end + 1;
  }
  return folders;
}

}  // namespace

void Commands::evalDeferred(const host::Callback& function) { state_.deferred.push(function); }

void Commands::refresh() { ++state_.refreshes; }

void Commands::inViewMessage(const Value& text) {
  if (state_.options.batch) throw Error("inViewMessage: not available in batch mode");
  if (state_.options.in_view_message) state_.options.in_view_message(text.text());
}

void Commands::warning(const std::string& text) { state_.warn(text); }

std::vector<std::string> Commands::getPanel_model() {
  if (state_.options.batch) return {};
  return state_.options.model_panels;
}

bool& Commands::panel_flag(const std::string& panel, const std::string& flag) {
  const auto found = state_.panels.find(panel);
  if (found == state_.panels.end()) throw Error("Object '" + panel + "' not found.");
  const auto known = found->second.find(flag);
  if (known == found->second.end()) throw Error("Invalid flag '" + flag + "'", ErrorKind::type);
  return known->second;
}

bool Commands::modelEditor_query(const std::string& panel, const std::string& flag) { return panel_flag(panel, flag); }

void Commands::modelEditor_enable(const std::string& panel, const std::string& flag) { panel_flag(panel, flag) = true; }

bool Commands::optionVar_exists(const std::string& name) { return state_.option_variables.get(name).has_value(); }

Value Commands::optionVar_query(const std::string& name) { return state_.option_variables.get(name).value_or(0); }

void Commands::optionVar_set_int(const std::string& name, std::int64_t value) {
  state_.option_variables.set(name, value);
}

void Commands::optionVar_set_float(const std::string& name, double value) { state_.option_variables.set(name, value); }

void Commands::optionVar_append_string(const std::string& name, const std::string& value) {
  state_.option_variables.append(name, value);
}

bool Commands::about_batch() { return state_.options.batch; }

std::string Commands::about_version() { return state_.options.version; }

std::string Commands::internalVar_userAppDir() { return state_.options.user_app_dir; }

bool Commands::pluginInfo_loaded(const std::string& name) { return state_.plugins.is_loaded(name); }

void Commands::loadPlugin(const std::string& path) {
  const auto found = state_.environment.find("MAYA_PLUG_IN_PATH");
  state_.plugins.load(path, folders_of(found == state_.environment.end() ? "" : found->second));
}

}  // namespace vantorelix::standalone
