#include "cli/output/svg/svg_labels.h"
#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_map>

#include "base/mathematics/mathematics.h"
#include "cli/output/svg/svg_path.h"
#include "cli/output/text.h"

namespace vantorelix::cli {

namespace {

// Side of a raster cell, in pixels.
constexpr double kCell = 4.0;
constexpr double kMarkRadius = 4.5;
// More keys than this, closer together than every other frame (a baked curve), and only round frame numbers are marked.
constexpr std::size_t kManyKeys = 24;
// Up to here names are written large.
constexpr std::size_t kFewTrails = 8;

Box2 box_around(const Point2& p, double radius) { return {p.x - radius, p.x + radius, p.y - radius, p.y + radius}; }

// How telling a frame number is: multiples of 100 before those of 50, 20, 10, 5, 2, then whole ones, then the rest.
int roundness(double frame) {
  constexpr std::array<double, 7> kSteps = {100, 50, 20, 10, 5, 2, 1};
  for (std::size_t i = 0; i < kSteps.size(); ++i)
    if (std::abs(frame - kSteps[i] * std::round(frame / kSteps[i])) < 1e-9) return static_cast<int>(i);
  return static_cast<int>(kSteps.size());
}

struct Candidate {
  KeyMark mark;
  int rank;  // smaller comes first
};

// `ends_only`: of a trail with many keys.
void add_candidates(const DrawnTrail& drawn, bool ends_only, std::vector<Candidate>& candidates) {
  const session::TrailView& trail = drawn.trail();
  const std::size_t n = std::min(trail.key_times.size(), trail.key_points->size());
  const bool many = n > kManyKeys && trail.key_times[n - 1] - trail.key_times[0] < 2.0 * static_cast<double>(n - 1);
  const double step = many ? 2.0 * nice_step(std::max((trail.key_times[n - 1] - trail.key_times[0]) / 12.0, 1e-9)) : 0;
  for (std::size_t k = 0; k < n; ++k) {
    const Vector& position = (*trail.key_points)[k];
    const double time = trail.key_times[k];
    if (!is_finite(position)) continue;
    const bool end = k == 0 || k + 1 == n;
    if (many && !end && (ends_only || std::abs(time - step * std::round(time / step)) > 1e-9 * step)) continue;
    const Vector color = k < trail.key_colors->size() ? (*trail.key_colors)[k] : Vector{1, 1, 1};
    candidates.push_back({{drawn.place(position), time, position, hex_color(color)}, end ? -1 : roundness(time)});
  }
}

}  // namespace

Occupancy::Occupancy(const Box2& area)
    : area_(area),
      columns_(static_cast<std::size_t>(area.width() / kCell) + 1),
      lines_(columns_ * (static_cast<std::size_t>(area.height() / kCell) + 1)) {}

std::size_t Occupancy::cell(double x, double y) const {
  const auto index = [](double v, double low, double high) {
    return static_cast<std::size_t>((std::clamp(v, low, high) - low) / kCell);
  };
  return index(y, area_.top, area_.bottom) * columns_ + index(x, area_.left, area_.right);
}

void Occupancy::note_line(const Point2& from, const Point2& to) {
  const double steps = std::min(std::ceil(base::hypot(to.x - from.x, to.y - from.y) / kCell), 1e3);
  for (double k = 0.0; k <= steps; k += 1.0) {
    const double u = steps > 0.0 ? k / steps : 0.0;
    lines_[cell(from.x + u * (to.x - from.x), from.y + u * (to.y - from.y))] = true;
  }
}

bool Occupancy::crosses_line(const Box2& box) const {
  for (double y = box.top; y < box.bottom + kCell; y += kCell)
    for (double x = box.left; x < box.right + kCell; x += kCell)
      if (lines_[cell(std::min(x, box.right), std::min(y, box.bottom))]) return true;
  return false;
}

bool Occupancy::is_free(const Box2& box) const {
  if (box.left < area_.left || box.right > area_.right || box.top < area_.top || box.bottom > area_.bottom)
    return false;
  return std::none_of(taken_.begin(), taken_.end(), [&](const Box2& other) { return other.overlaps(box); });
}

bool draw_label(TextSink& out, Occupancy& occupancy, const Point2& at, const std::string& text, const char* classes,
                double size) {
  const double w = 0.62 * size * static_cast<double>(width(text)) + 2.0, h = size + 1.0, gap = 7.0;
  const std::array<Point2, 8> offsets = {{{gap, -gap - h},
                                          {-gap - w, -gap - h},
                                          {gap, gap},
                                          {-gap - w, gap},
                                          {-w / 2, -gap - h - 2},
                                          {-w / 2, gap + 2},
                                          {gap + 3, -h / 2},
                                          {-gap - 3 - w, -h / 2}}};
  const Box2* best = nullptr;
  std::array<Box2, 8> boxes;
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    const Point2 corner{at.x + offsets[i].x, at.y + offsets[i].y};
    boxes[i] = {corner.x, corner.x + w, corner.y, corner.y + h};
    if (!occupancy.is_free(boxes[i])) continue;
    const bool clear = !occupancy.crosses_line(boxes[i]);
    if (clear || best == nullptr) best = &boxes[i];
    if (clear) break;
  }
  if (best == nullptr) return false;
  occupancy.take(*best);
  out << "<text class=\"label " << classes << "\" x=\"" << pixel(best->left + 1.0) << "\" y=\""
      << pixel(best->bottom - 0.2 * h) << "\">" << xml_text(text) << "</text>\n";
  return true;
}

std::vector<KeyMark> choose_keys(const std::vector<DrawnTrail>& trails, Occupancy& occupancy) {
  std::vector<Candidate> candidates;
  for (const DrawnTrail& drawn : trails)
    if (!drawn.trail().key_times.empty()) add_candidates(drawn, trails.size() > kFewTrails, candidates);
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate& a, const Candidate& b) { return a.rank < b.rank; });
  std::vector<KeyMark> marks;
  constexpr std::size_t kMax = 400;
  for (const Candidate& candidate : candidates) {
    const Box2 box = box_around(candidate.mark.at, kMarkRadius);
    if (marks.size() == kMax || !occupancy.is_free(box)) continue;
    occupancy.take(box);
    marks.push_back(candidate.mark);
  }
  return marks;
}

void draw_keys(TextSink& out, const std::vector<KeyMark>& marks) {
  if (marks.empty()) return;
  PathData path;
  const std::string color = marks.front().color;
  for (const KeyMark& mark : marks) {
    const double r = kMarkRadius;
    path.move({mark.at.x, mark.at.y - r});
    path.line({mark.at.x + r, mark.at.y});
    path.line({mark.at.x, mark.at.y + r});
    path.line({mark.at.x - r, mark.at.y});
    path.line({mark.at.x, mark.at.y - r});
  }
  out << "<path class=\"diamond\" style=\"fill:" << color << "\" d=\"" << path.text() << "\"/>\n";
}

std::size_t label_keys(TextSink& out, const std::vector<KeyMark>& marks, Occupancy& occupancy, std::size_t limit) {
  std::size_t done = 0;
  for (const KeyMark& mark : marks)
    if (done < limit && draw_label(out, occupancy, mark.at, readable(mark.time, 7), "soft key", 10.5)) ++done;
  return marks.size() - done;
}

void label_trails(TextSink& out, const std::vector<DrawnTrail>& trails, Occupancy& occupancy) {
  std::unordered_map<std::string, int> uses;
  for (const DrawnTrail& drawn : trails) ++uses[drawn.trail().name];
  for (const DrawnTrail& drawn : trails) {
    const session::TrailView& trail = drawn.trail();
    const auto last =
        std::find_if(trail.points->rbegin(), trail.points->rend(), [](const Vector& p) { return is_finite(p); });
    if (last == trail.points->rend()) continue;
    const std::string text = uses[trail.name] > 1 ? trail.source : trail.name;
    const std::string shown = trail.warnings.empty() ? text : text + " \u26a0";
    if (trails.size() <= kFewTrails)
      draw_label(out, occupancy, drawn.place(*last), shown, "ink name", 13.0);
    else
      draw_label(out, occupancy, drawn.place(*last), shown, "ink small", 11.0);
  }
}

}  // namespace vantorelix::cli
