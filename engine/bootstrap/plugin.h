// Finding, staging and loading the node plug-in. Paths are texts in the host's form.
#pragma once

#include <string>
#include <vector>

namespace vantorelix {

// The user's plug-ins folder for the running host version, created when it is missing and can be.
std::string _maya_user_plugins_dir();
// Path of the copy in the user plug-ins folder, or `src_path` where staging is impossible or needless.
std::string _stage_plugin_in_safe_dir(const std::string& src_path);
// What to try, in order.
std::vector<std::string> _candidate_plugin_paths();
// Adds an existing folder to the host's safe-mode list unless it is there.
void _whitelist_folder(const std::string& folder);
// Appends a folder to MAYA_PLUG_IN_PATH unless it is there.
void _ensure_plugin_path_env(const std::string& folder);
// True when the plug-in is loaded at the end; otherwise one warning names every place tried.
bool _ensure_plugin();

}  // namespace vantorelix
