// Opening the scene that a command works on.
#pragma once

#include <string>
#include <vector>

#include "cli/args/options.h"
#include "cli/terminal/terminal.h"
#include "session/session.h"
#include "standalone/formats/reader.h"
#include "standalone/scene/scene.h"

namespace vantorelix::cli {

// Reads the scene, with progress, and passes its warnings on; with `bounds` also how large its surfaces are. `format`
// receives what the file is. Throws Failure, UsageError or standalone::FormatError.
standalone::Scene load_scene(const SceneOptions& wanted, Terminal& terminal, bool bounds = false,
                             standalone::Format* format = nullptr);

// The objects that the options choose. Throws Failure when there are none, and UsageError for a pattern that is not
// valid.
std::vector<standalone::NodeId> choose_objects(const standalone::Scene& scene, const SceneOptions& options);

// A session's progress on the terminal; an interrupt cancels it.
session::Options session_options(Terminal& terminal);

// "Maya ASCII", "BVH", "FBX", "glTF", "samples".
std::string format_name(standalone::Format format);

// "constraint ... (3 times)"
std::string warning_text(const standalone::Warning& warning);

}  // namespace vantorelix::cli
