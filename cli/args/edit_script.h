// Timed edits, read from a JSON file.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "session/edits.h"

namespace vantorelix::cli {

// In the order in which they happen; episodes are two events, begin and end. Throws Failure for a file that is
// not such a script, or that names what is not in the scene.
std::vector<session::LiveEvent> read_edits(const std::filesystem::path& file, const standalone::Scene& scene);
std::vector<session::LiveEvent> parse_edits(const std::string& text, const std::string& name,
                                            const standalone::Scene& scene);

}  // namespace vantorelix::cli
