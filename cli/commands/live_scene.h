// What `view --live` puts into a page.
#pragma once

#include "cli/commands/trail_making.h"
#include "cli/output/page/live_html.h"
#include "cli/terminal/terminal.h"

namespace vantorelix::cli {

// The scene's files and what was asked of it, after it was read and objects of it were chosen, with all warnings.
// Throws UsageError for an option that a live page has no use for; Failure, also where the program has no engine for
// pages, or a file cannot be read; and what reading a scene throws.
LiveScene live_scene(const TrailOptions& options, Terminal& terminal);

}  // namespace vantorelix::cli
