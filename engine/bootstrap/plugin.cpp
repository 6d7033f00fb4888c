#include "engine/bootstrap/plugin.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "base/paths.h"
#include "base/utf8.h"
#include "engine/state/attempt.h"
#include "engine/state/constants.h"
#include "engine/state/state.h"
#include "host/value.h"

namespace vantorelix {

namespace {

namespace fs = std::filesystem;

const std::string kPluginFileName = "Vantorelix_plugin.py";
const std::string kSearchPathVariable = "MAYA_PLUG_IN_PATH";
const std::string kAllowedPaths = "SafeModeAllowedlistPaths";

bool is_folder(const std::string& path) {
  std::error_code ignored;
  return fs::is_directory(paths::file(path), ignored);
}

bool is_file(const std::string& path) {
  std::error_code ignored;
  return fs::is_regular_file(paths::file(path), ignored);
}

// Content, permissions and modification time, so that a later comparison of times finds the copy current.
void copy_file(const std::string& from, const std::string& to) {
  const fs::path source = paths::file(from);
  const fs::path target = paths::file(to);
  fs::copy_file(source, target, fs::copy_options::overwrite_existing);
  fs::permissions(target, fs::status(source).permissions());
  fs::last_write_time(target, fs::last_write_time(source));
}

bool is_newer(const std::string& a, const std::string& b) {
  return fs::last_write_time(paths::file(a)) > fs::last_write_time(paths::file(b));
}

// The folder that holds the engine module; empty where the host cannot tell.
std::string engine_folder() {
  const std::string file = interpreter->module_file();
  return file.empty() ? "" : paths::directory_name(paths::absolute(file));
}

// The folder above; nothing at the top.
std::optional<std::string> folder_above(const std::string& folder) {
  std::string above = paths::directory_name(folder);
  if (above.empty() || above == folder) return std::nullopt;
  return above;
}

// The texts among what the safe-mode list holds, in whatever form the host gives it.
std::vector<std::string> allowed_folders() {
  host::Value stored;
  attempt([&] { stored = cmds->optionVar_query(kAllowedPaths); });
  if (const std::string* one = stored.as_text()) return {*one};
  if (const host::Bytes* bytes = stored.as_bytes()) return {utf8_text(bytes->data)};
  std::vector<std::string> folders;
  attempt([&] {
    if (stored.is_none()) return;
    for (const host::Value& entry : stored.items()) {
      if (const std::string* text = entry.as_text()) folders.push_back(*text);
    }
  });
  return folders;
}

std::string canonical(const std::string& folder) { return paths::forward_slashes(paths::normalised(folder)); }

bool is_loaded() { return cmds->pluginInfo_loaded(PLUGIN_BASENAME); }

bool is_python_file(const std::string& candidate) { return candidate.ends_with(".py"); }

// The first of the places beside the engine that has the plug-in goes into the user's folder.
void stage_shipped_plugin() {
  const std::string here = engine_folder();
  if (here.empty()) return;
  for (const std::string& source :
       {paths::join(here, kPluginFileName),
        paths::join(paths::join(paths::directory_name(here), "modules"), kPluginFileName)}) {
    if (!is_file(source)) continue;
    _stage_plugin_in_safe_dir(source);
    return;
  }
}

// True when the plug-in is loaded afterwards. Throws what loading throws.
bool load_candidate(std::string candidate) {
  if (is_python_file(candidate)) {
    candidate = _stage_plugin_in_safe_dir(candidate);
    _ensure_plugin_path_env(paths::directory_name(paths::absolute(candidate)));
  }
  cmds->loadPlugin(candidate);
  return is_loaded();
}

std::string joined(const std::vector<std::string>& texts, const std::string& between) {
  std::string all;
  for (const std::string& text : texts) all += (&text == &texts.front() ? "" : between) + text;
  return all;
}

}  // namespace

std::string _maya_user_plugins_dir() {
  const std::string base = cmds->internalVar_userAppDir();
  const std::string version = cmds->about_version();
  const std::string year(host::stripped(std::string_view(version).substr(0, version.find('.'))));
  std::string folder = paths::forward_slashes(paths::join(paths::join(base, year), "plug-ins"));
  if (!is_folder(folder)) {
    std::error_code ignored;
    fs::create_directories(paths::file(folder), ignored);
  }
  return folder;
}

std::string _stage_plugin_in_safe_dir(const std::string& src_path) {
  const std::string folder = _maya_user_plugins_dir();
  if (folder.empty() || !is_folder(folder)) return src_path;
  try {
    const std::string source = paths::absolute(src_path);
    const std::string target = paths::normalised(paths::join(folder, kPluginFileName));
    if (paths::lower(source) == paths::lower(target)) return src_path;
    if (!is_file(target) || is_newer(source, target)) copy_file(source, target);
    return paths::forward_slashes(target);
  } catch (const std::exception&) {
    return src_path;
  }
}

std::vector<std::string> _candidate_plugin_paths() {
  std::vector<std::string> candidates;
  const auto add = [&](const std::string& folder) { candidates.push_back(paths::join(folder, kPluginFileName)); };
  const std::string user_folder = _maya_user_plugins_dir();
  if (!user_folder.empty()) add(user_folder);
  if (const std::string here = engine_folder(); !here.empty()) {
    add(here);
    if (const auto parent = folder_above(here)) {
      add(paths::join(*parent, "modules"));
      add(*parent);
      if (const auto grandparent = folder_above(*parent)) {
        add(paths::join(paths::join(*grandparent, "bin"), "modules"));
        add(paths::join(*grandparent, "modules"));
      }
    }
  }
  for (const host::Value& entry : interpreter->module_search_path()) {
    const std::string* folder = entry.as_text();
    if (!folder) continue;
    const std::string candidate = paths::join(*folder, kPluginFileName);
    if (std::find(candidates.begin(), candidates.end(), candidate) == candidates.end()) {
      candidates.push_back(candidate);
    }
  }
  candidates.push_back(kPluginFileName);
  candidates.push_back(PLUGIN_BASENAME);
  return candidates;
}

void _whitelist_folder(const std::string& folder) {
  if (folder.empty() || !is_folder(folder)) return;
  const std::string wanted = canonical(folder);
  for (const std::string& allowed : allowed_folders()) {
    if (!allowed.empty() && canonical(allowed) == wanted) return;
  }
  attempt([&] { cmds->optionVar_append_string(kAllowedPaths, wanted); });
}

void _ensure_plugin_path_env(const std::string& folder) {
  if (folder.empty()) return;
  const std::string value = interpreter->environment(kSearchPathVariable).value_or("");
  std::vector<std::string> pieces;
  std::size_t from = 0;
  while (from < value.size()) {
    const std::size_t to = std::min(value.find(paths::kNative.list_separator, from), value.size());
    if (to > from) pieces.push_back(value.substr(from, to - from));
    from = to + 1;
  }
  if (std::find(pieces.begin(), pieces.end(), folder) != pieces.end()) return;
  pieces.push_back(folder);
  interpreter->set_environment(kSearchPathVariable, joined(pieces, std::string(1, paths::kNative.list_separator)));
}

bool _ensure_plugin() {
  bool loaded = false;
  attempt([&] { loaded = is_loaded(); });
  if (loaded) return true;

  if (const std::string user_folder = _maya_user_plugins_dir(); !user_folder.empty()) {
    _ensure_plugin_path_env(user_folder);
    _whitelist_folder(user_folder);
  }
  stage_shipped_plugin();

  const std::vector<std::string> candidates = _candidate_plugin_paths();
  std::optional<std::string> last_error;
  for (const std::string& candidate : candidates) {
    if (is_python_file(candidate) && !is_file(candidate)) continue;
    try {
      if (load_candidate(candidate)) return true;
    } catch (const std::exception& error) {
      last_error = error.what();
    }
  }
  std::string message = "Plugin 'Vantorelix_plugin.py' not found. Tried: " + joined(candidates, " | ");
  if (last_error) message += " | last error: " + *last_error;
  cmds->warning("[" + SCRIPT_NAME + "] " + message);
  return false;
}

}  // namespace vantorelix
