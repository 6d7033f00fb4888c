#include "session/measures/holds.h"

#include <algorithm>

namespace vantorelix::session {

std::vector<Hold> holds_of(const Path& path) {
  const auto& steps = path.steps;
  const double mean = mean_active_step(path);
  std::vector<Hold> holds;
  if (mean == 0.0) return holds;
  const double still = std::max(kNoStep, kSlow * mean);
  for (std::size_t i = 0, first = 0; i <= steps.size(); ++i) {
    if (i < steps.size() && steps[i] <= still) continue;
    if (path.frame(i) - path.frame(first) >= 2.0 - 1e-9) holds.push_back({path.frame(first), path.frame(i)});
    first = i + 1;
  }
  return holds;
}

}  // namespace vantorelix::session
