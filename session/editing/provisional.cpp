#include "session/editing/provisional.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "standalone/scene/evaluation/evaluator.h"

namespace vantorelix::session {

using standalone::Evaluator;
using standalone::FrameRange;
using standalone::NodeId;
using standalone::Scene;

namespace {

// How many times an evaluator works out together.
constexpr std::size_t kTogether = 64;

double frame_of(const TrailView& trail, std::size_t sample) {
  return trail.start_frame + static_cast<double>(sample) * trail.frame_step;
}

// The samples of a trail in the range, without positions yet.
Stretch samples_in(const TrailView& trail, std::size_t number, const FrameRange& range) {
  const std::size_t count = trail.points == nullptr ? 0 : trail.points->size();
  std::size_t first = 0;
  while (first < count && frame_of(trail, first) < range.first) ++first;
  std::size_t end = first;
  while (end < count && frame_of(trail, end) <= range.last) ++end;
  return {number, first, std::vector<Vector>(end - first)};
}

struct Moving {
  Stretch stretch;
  std::unique_ptr<Evaluator> evaluator;
};

// Some of the points, all at times that lie together.
void work_out(Moving& moving, const TrailView& trail, std::size_t from) {
  std::vector<Vector>& points = moving.stretch.points;
  if (from >= points.size()) return;
  const std::size_t end = std::min(points.size(), from + kTogether);
  std::vector<double> frames;
  for (std::size_t i = from; i < end; ++i) frames.push_back(frame_of(trail, moving.stretch.first + i));
  moving.evaluator->expect(frames);
  for (std::size_t i = from; i < end; ++i) points[i] = moving.evaluator->translation(frames[i - from]);
}

}  // namespace

std::vector<Stretch> provisional(const Scene& scene, const std::vector<Trail>& trails, const TrailReport& report,
                                 NodeId edited, const FrameRange& range) {
  std::vector<Moving> all;
  std::size_t longest = 0;
  for (std::size_t t = 0; t < trails.size(); ++t) {
    if (!scene.nodes.exists(trails[t].source) || !scene.evaluation.moves_with(trails[t].source, edited)) continue;
    Stretch stretch = samples_in(report.trails[t], t, range);
    longest = std::max(longest, stretch.points.size());
    if (!stretch.points.empty())
      all.push_back({std::move(stretch), std::make_unique<Evaluator>(scene.evaluation, trails[t].source)});
  }
  // All objects at the same times, then at the next: the scene remembers what they share.
  for (std::size_t from = 0; from < longest; from += kTogether)
    for (Moving& moving : all) work_out(moving, report.trails[moving.stretch.trail], from);
  std::vector<Stretch> stretches;
  for (Moving& moving : all) stretches.push_back(std::move(moving.stretch));
  return stretches;
}

FrameRange felt_around(const Scene& scene, const std::vector<NodeId>& curves, double frame) {
  constexpr double kFar = std::numeric_limits<double>::infinity();
  if (curves.empty()) return {-kFar, kFar};
  FrameRange all = {kFar, -kFar};
  for (const NodeId curve : curves) {
    const FrameRange one = standalone::felt_around(scene.curves.at(curve), frame);
    all = {std::min(all.first, one.first), std::max(all.last, one.last)};
  }
  return all;
}

}  // namespace vantorelix::session
