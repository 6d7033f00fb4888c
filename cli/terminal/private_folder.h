// A folder among the system's temporary files that nobody else can have made or can look into.
#pragma once

#include <filesystem>

namespace vantorelix::cli {

// A new one, which stays. Throws Failure; `otherwise` says what the user can do then.
std::filesystem::path make_private_folder(const char* otherwise);

}  // namespace vantorelix::cli
