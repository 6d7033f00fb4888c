// Before and after: a report's trails beside those of the same objects in another scene, or in another take of it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "session/report.h"
#include "standalone/scene/scene.h"

namespace vantorelix::session {

// For each trail of the report the transform of another scene that has its path; where none has, the one whose path is
// the same but for namespaces, if that is clear without doubt on both sides.
std::vector<std::optional<standalone::NodeId>> counterparts(const TrailReport& report, const standalone::Scene& other);

// Gives each trail whose counterpart is in `other` its `compare`; `paths` are the long paths of the counterparts there.
// Both reports hold the same frames with as many samples each. The other's positions are converted to the report's unit
// and up axis. Returns what a reader should know of the comparison, a text each: rates that differ, a unit that is
// not known.
std::vector<std::string> compare(TrailReport& report, const std::vector<std::optional<std::string>>& paths,
                                 const TrailReport& other);

// The trail whose largest distance is the largest of all, the first of equals; none where no distance is known.
std::optional<std::size_t> farthest_apart(const TrailReport& report);

// The report's trails as the second scene has them: without samples where that lacks the object.
TrailReport second_of(const TrailReport& report);

}  // namespace vantorelix::session
