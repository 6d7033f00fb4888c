#include "cli/terminal/private_folder.h"

#include <random>
#include <string>
#include <system_error>

#include "cli/terminal/failure.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

fs::path make_private_folder(const char* otherwise) {
  std::error_code error;
  const fs::path all = fs::temp_directory_path(error);
  for (int attempt = 0; !error && attempt < 100; ++attempt) {
    const fs::path folder = all / ("vantorelix-" + std::to_string(std::random_device{}()));
    if (!fs::create_directory(folder, error)) continue;
    fs::permissions(folder, fs::perms::owner_all, error);
    if (!error) return folder;
  }
  throw Failure("no folder can be made for temporary files (" + error.message() + "); " + otherwise);
}

}  // namespace vantorelix::cli
