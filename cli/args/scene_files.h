// Which files somebody means by the scenes of a command line.
#pragma once

#include <string>
#include <vector>

namespace vantorelix::cli {

// The scenes as they were named. A name whose last part has "*" or "?", and which is not that of a file, stands for the
// files of its folder that match, in the order of their names: what most shells do before a program starts, and those
// of Windows do not. It stays as it is where none matches.
std::vector<std::string> scene_files(const std::vector<std::string>& names);

}  // namespace vantorelix::cli
