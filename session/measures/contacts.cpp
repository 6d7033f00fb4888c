#include "session/measures/contacts.h"

#include <algorithm>
#include <cmath>

#include "base/mathematics/mathematics.h"

namespace vantorelix::session {

namespace {

constexpr double kLowest = 0.05;  // the part of the samples that lies below the floor

double height_of(const Vector& p, char up_axis) { return up_axis == 'z' ? p.z : p.y; }

double floor_of(const Path& path, char up_axis) {
  std::vector<double> heights;
  for (const Vector& p : path.points)
    if (is_finite(p)) heights.push_back(height_of(p, up_axis));
  if (heights.empty()) return kUnknown;
  const auto rank = static_cast<std::ptrdiff_t>(kLowest * static_cast<double>(heights.size() - 1));
  std::nth_element(heights.begin(), heights.begin() + rank, heights.end());
  return heights[static_cast<std::size_t>(rank)];
}

double along_floor(const Vector& a, const Vector& b, char up_axis) {
  return base::hypot(b.x - a.x, up_axis == 'z' ? b.y - a.y : b.z - a.z);
}

// Gathers the steps of a path one after another.
class Gathering {
 public:
  Gathering(const Path& path, const ContactLimits& limits) : path_(path), longest_(limits.fast / path.rate()) {}

  // `along` is not known where the step is not.
  void add(std::size_t step, bool near, double along) {
    known_ += std::isnan(along) ? 0 : 1;
    if (std::isnan(along) || !near) {
      open_ = false;
      return;
    }
    if (!open_) found_.spans.push_back({path_.frame(step), 0.0, 0.0});
    open_ = true;
    found_.spans.back().last = path_.frame(step + 1);
    ++touching_;
    if (!(along > longest_)) return;
    ++sliding_;
    found_.spans.back().slide_distance += along;
  }

  Contacts result(double floor) {
    if (known_ == 0) return {};
    found_.floor = floor;
    found_.share = static_cast<double>(touching_) / static_cast<double>(known_);
    if (touching_ == 0) return found_;
    found_.slide_share = static_cast<double>(sliding_) / static_cast<double>(touching_);
    found_.slide_distance = 0.0;
    for (const Contact& span : found_.spans) found_.slide_distance += span.slide_distance;
    return found_;
  }

 private:
  const Path& path_;
  double longest_;  // step that does not slide
  std::size_t known_ = 0, touching_ = 0, sliding_ = 0;
  bool open_ = false;
  Contacts found_;
};

}  // namespace

Contacts contacts_of(const Path& path, char up_axis, const Figure& figure, const ContactLimits& limits) {
  const double floor = floor_of(path, up_axis);
  if (!(floor - figure.floor <= kComesDown * figure.height) || std::isnan(limits.near)) return {};
  const auto is_near = [&](const Vector& p) { return height_of(p, up_axis) - floor <= limits.near; };
  Gathering gathering(path, limits);
  for (std::size_t i = 0; i + 1 < path.points.size(); ++i) {
    const Vector &a = path.points[i], &b = path.points[i + 1];
    const bool known = is_finite(a) && is_finite(b);
    gathering.add(i, is_near(a) && is_near(b), known ? along_floor(a, b, up_axis) : kUnknown);
  }
  return gathering.result(floor);
}

}  // namespace vantorelix::session
