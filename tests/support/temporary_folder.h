// A folder of its own for a test that needs files.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace vantorelix::support {

// Why a test that spells out joined paths is left out on Windows.
inline constexpr const char* kOtherPathsThere =
    "paths are joined with backslashes there; base/paths_test.cpp has both rules";

// Made empty, and removed with all it holds.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("vantorelix-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // The path of a file or folder in it, with forward slashes.
  std::string operator/(const std::string& name) const { return (path_ / name).generic_string(); }

  // Writes a file, its folders first, and returns its path.
  std::string write(const std::string& name, const std::string& content) const {
    std::filesystem::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name, std::ios::binary) << content;
    return *this / name;
  }
  std::string read(const std::string& name) const {
    std::ostringstream content;
    content << std::ifstream(path_ / name, std::ios::binary).rdbuf();
    return content.str();
  }

 private:
  std::filesystem::path path_;
};

}  // namespace vantorelix::support
