#include "session/motion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "base/mathematics/mathematics.h"
#include "session/measures/path.h"

namespace vantorelix::session {

namespace {

constexpr double kFar = std::numeric_limits<double>::infinity();
// What stays within this part of the scene's extent counts as still.
constexpr double kStill = 1e-4;
// Ends that stay nearer to each other than this part of the figure belong to one limb, as fingers to a hand.
constexpr double kOneLimb = 0.15;
// How often the figure is looked at, over the range.
constexpr int kLooks = 9;

constexpr Reach kNowhere{{kFar, kFar, kFar}, {-kFar, -kFar, -kFar}};

double distance(const Vector& a, const Vector& b) { return base::hypot(a.x - b.x, a.y - b.y, a.z - b.z); }

double longest_side(const Vector& low, const Vector& high) {
  return std::max({0.0, high.x - low.x, high.y - low.y, high.z - low.z});
}

void include(Reach& reach, const Vector& low, const Vector& high) {
  reach.low = {std::min(reach.low.x, low.x), std::min(reach.low.y, low.y), std::min(reach.low.z, low.z)};
  reach.high = {std::max(reach.high.x, high.x), std::max(reach.high.y, high.y), std::max(reach.high.z, high.z)};
  reach.extent = longest_side(reach.low, reach.high);
}

Reach reach_of(const TrailView& trail) {
  Reach reach = kNowhere;
  const auto& points = *trail.points;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (is_finite(points[i])) include(reach, points[i], points[i]);
    const double step = i > 0 ? distance(points[i - 1], points[i]) : 0.0;
    if (std::isfinite(step)) reach.length += step;
  }
  return reach;
}

double largest_coordinate(const Vector& v) { return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)}); }

// The scene's extent is that of everything that moves at all: a light far away is no measure.
std::vector<bool> moving(const std::vector<Reach>& reaches) {
  const auto at_all = [](const Reach& reach) { return has_extent(reach.low, reach.high); };
  Reach all = kNowhere;
  for (const Reach& reach : reaches)
    if (at_all(reach)) include(all, reach.low, reach.high);
  std::vector<bool> result;
  for (const Reach& reach : reaches) result.push_back(at_all(reach) && reach.extent > kStill * all.extent);
  return result;
}

std::vector<std::optional<std::size_t>> parents_of(const TrailReport& report) {
  std::unordered_map<std::string, std::size_t> places;
  for (std::size_t i = 0; i < report.trails.size(); ++i) places.emplace(report.trails[i].source, i);
  std::vector<std::optional<std::size_t>> parents(report.trails.size());
  for (std::size_t i = 0; i < parents.size(); ++i) {
    const auto found = report.trails[i].parent ? places.find(*report.trails[i].parent) : places.end();
    if (found != places.end()) parents[i] = found->second;
  }
  return parents;
}

// Those of the trails below which none of them is.
std::vector<std::size_t> ends_of(const std::vector<std::size_t>& trails, const Motion& motion) {
  std::unordered_set<std::size_t> above;
  for (const std::size_t trail : trails)
    for (auto at = motion.parents[trail]; at && above.insert(*at).second;) at = motion.parents[*at];
  std::vector<std::size_t> ends;
  std::copy_if(trails.begin(), trails.end(), std::back_inserter(ends),
               [&](std::size_t trail) { return above.count(trail) == 0; });
  return ends;
}

using Pose = std::array<Vector, kLooks>;  // one trail, by frame

Pose pose_of(const TrailReport& report, std::size_t trail) {
  Pose pose;
  for (int i = 0; i < kLooks; ++i)
    pose[static_cast<std::size_t>(i)] =
        place_at(report.trails[trail], report.first + (report.last - report.first) * i / (kLooks - 1));
  return pose;
}

// The longest side of the figure in its largest pose.
double figure_size(const TrailReport& report, const std::vector<std::size_t>& trails) {
  std::array<Reach, kLooks> boxes;
  boxes.fill(kNowhere);
  for (const std::size_t trail : trails) {
    const Pose pose = pose_of(report, trail);
    for (std::size_t i = 0; i < pose.size(); ++i)
      if (is_finite(pose[i])) include(boxes[i], pose[i], pose[i]);
  }
  double size = 0.0;
  for (const Reach& box : boxes) size = std::max(size, box.extent);
  return size;
}

}  // namespace

bool has_extent(const Vector& low, const Vector& high) {
  return longest_side(low, high) > kRounding * std::max(largest_coordinate(low), largest_coordinate(high));
}

std::vector<std::size_t> Motion::that_move() const {
  std::vector<std::size_t> result;
  const bool any = std::find(moves.begin(), moves.end(), true) != moves.end();
  for (std::size_t i = 0; i < moves.size(); ++i)
    if (moves[i] || !any) result.push_back(i);
  return result;
}

Motion motion_of(const TrailReport& report) {
  Motion motion;
  for (const TrailView& trail : report.trails) motion.reaches.push_back(reach_of(trail));
  motion.moves = moving(motion.reaches);
  motion.parents = parents_of(report);
  return motion;
}

Vector place_at(const TrailView& trail, double frame) {
  const auto& points = *trail.points;
  if (points.empty()) return {std::numeric_limits<double>::quiet_NaN(), 0.0, 0.0};
  const double place =
      std::clamp((frame - trail.start_frame) / trail.frame_step, 0.0, static_cast<double>(points.size() - 1));
  const auto before = static_cast<std::size_t>(place);
  const double part = place - static_cast<double>(before);
  const Vector& a = points[before];
  if (part == 0.0) return a;
  const Vector& b = points[before + 1];
  return {a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part, a.z + (b.z - a.z) * part};
}

std::vector<std::size_t> first_choice(const TrailReport& report, const Motion& motion) {
  const auto moves = motion.that_move();
  if (moves.empty() || !motion.moves[moves.front()])
    return {moves.begin(), moves.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(1, moves.size()))};
  auto ends = ends_of(moves, motion);
  // Without a figure, objects that lie side by side are not parts of one.
  const bool figure =
      std::any_of(moves.begin(), moves.end(), [&](std::size_t i) { return motion.parents[i].has_value(); });
  const double near = kOneLimb * figure_size(report, moves);
  std::stable_sort(ends.begin(), ends.end(),
                   [&](std::size_t a, std::size_t b) { return motion.reaches[a].length > motion.reaches[b].length; });
  std::vector<std::size_t> chosen;
  std::vector<Pose> poses;
  for (const std::size_t end : ends) {
    if (chosen.size() == kMostChosen) break;
    const Pose pose = pose_of(report, end);
    const auto together = [&](const Pose& other) {
      for (std::size_t i = 0; i < pose.size(); ++i)
        if (distance(pose[i], other[i]) > near) return false;
      return true;
    };
    if (figure && std::any_of(poses.begin(), poses.end(), together)) continue;
    chosen.push_back(end);
    poses.push_back(pose);
  }
  std::sort(chosen.begin(), chosen.end());
  return chosen;
}

}  // namespace vantorelix::session
