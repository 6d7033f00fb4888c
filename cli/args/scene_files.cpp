#include "cli/args/scene_files.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "base/paths.h"
#include "base/pattern.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

namespace {

std::vector<std::string> matching_files(const std::string& name) {
  const fs::path path = paths::file(name);
  const std::string pattern = path.filename().string();
  std::vector<std::string> found;
  std::error_code error;
  if (pattern.find_first_of("*?") == std::string::npos || fs::exists(path, error)) return found;
  const std::string folder = name.substr(0, name.size() - pattern.size());
  fs::directory_iterator entry(folder.empty() ? fs::path(".") : paths::file(folder), error);
  for (const fs::directory_iterator end; !error && entry != end; entry.increment(error)) {
    const std::string file = entry->path().filename().string();
    const bool hidden = file.starts_with(".") && !pattern.starts_with(".");
    std::error_code ignored;
    if (!hidden && matches(pattern, file) && !entry->is_directory(ignored)) found.push_back(folder + file);
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace

std::vector<std::string> scene_files(const std::vector<std::string>& names) {
  std::vector<std::string> files;
  for (const std::string& name : names) {
    const auto found = matching_files(name);
    if (found.empty())
      files.push_back(name);
    else
      files.insert(files.end(), found.begin(), found.end());
  }
  return files;
}

}  // namespace vantorelix::cli
