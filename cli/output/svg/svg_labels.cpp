#include "cli/output/svg/svg_labels.h"
#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
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

// The name with so many names of the path above it, where there are so many.
std::string with_path(const session::TrailView& trail, std::size_t above) {
  std::size_t at = trail.source.rfind('|');
  if (at == std::string::npos) return trail.name;
  std::size_t from = at;
  for (; above > 0 && from != std::string::npos && from > 0; --above) from = trail.source.rfind('|', from - 1);
  const std::size_t begin = from == std::string::npos ? 0 : from + 1;
  return begin > at ? trail.name : trail.source.substr(begin, at + 1 - begin) + trail.name;
}

}  // namespace

std::string shortened(const std::string& text, std::size_t most) {
  if (width(text) <= most) return text;
  std::size_t at = text.size();
  for (std::size_t n = 0; n + 1 < most; ++n) do
      --at;
    while (at > 0 && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80);
  return "\u2026" + text.substr(at);
}

Box2 box_around(const Point2& p, double radius) { return {p.x - radius, p.x + radius, p.y - radius, p.y + radius}; }

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

std::optional<Label> place_label(Occupancy& occupancy, const Point2& at, const std::string& text,
                                 const Lettering& how) {
  const double w = 0.62 * how.size * static_cast<double>(width(text)) + 2.0 + 2.0 * how.apart, h = how.size + 1.0,
               gap = how.gap;
  const std::array<Point2, 8> offsets = {{{gap, -gap - h},
                                          {-gap - w, -gap - h},
                                          {gap, gap},
                                          {-gap - w, gap},
                                          {-w / 2, -gap - h - 2},
                                          {-w / 2, gap + 2},
                                          {gap + 3, -h / 2},
                                          {-gap - 3 - w, -h / 2}}};
  std::optional<Box2> best;
  for (const Point2& offset : offsets) {
    const Point2 corner{at.x + offset.x, at.y + offset.y};
    const Box2 box{corner.x, corner.x + w, corner.y, corner.y + h};
    if (!occupancy.is_free(box)) continue;
    const bool clear = !occupancy.crosses_line(box);
    if (clear || !best) best = box;
    if (clear) break;
  }
  if (!best) return std::nullopt;
  occupancy.take(*best);
  return Label{{best->left + 1.0 + how.apart, best->bottom - 0.2 * h}, text, how.classes, {}};
}

void draw_labels(TextSink& out, const std::vector<Label>& labels) {
  PathData leaders;
  for (const Label& label : labels) {
    if (!label.leader) continue;
    leaders.move(label.leader->from);
    leaders.line(label.leader->to);
  }
  if (!leaders.empty()) out << "<path class=\"leader\" d=\"" << leaders.text() << "\"/>\n";
  for (const Label& label : labels)
    out << "<text class=\"label " << label.classes << "\" x=\"" << pixel(label.at.x) << "\" y=\"" << pixel(label.at.y)
        << "\">" << xml_text(label.text) << "</text>\n";
}

std::vector<KeyMark> choose_keys(const std::vector<DrawnTrail>& trails, Occupancy& occupancy) {
  const bool few = trails.size() <= kFewTrails;
  std::vector<Candidate> candidates;
  for (const DrawnTrail& drawn : trails)
    if (!drawn.trail().key_times.empty() && (few || drawn.lit())) add_candidates(drawn, !few, candidates);
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

std::vector<Label> label_keys(const std::vector<KeyMark>& marks, Occupancy& occupancy, std::size_t limit) {
  std::vector<Label> labels;
  for (const KeyMark& mark : marks) {
    if (labels.size() == limit) break;
    if (auto label = place_label(occupancy, mark.at, readable(mark.time, 7), {"soft key", 10.5}))
      labels.push_back(std::move(*label));
  }
  return labels;
}

std::vector<std::string> names_of(const session::TrailReport& report) {
  std::vector<std::string> names;
  for (const session::TrailView& trail : report.trails) names.push_back(trail.name);
  std::vector<std::size_t> alike(names.size());
  for (std::size_t i = 0; i < alike.size(); ++i) alike[i] = i;
  // Each round adds a name of the path to those that are still alike; it ends with whole paths, which differ.
  for (std::size_t above = 1; above < 1000 && !alike.empty(); ++above) {
    std::unordered_map<std::string, int> uses;
    for (const std::size_t i : alike) ++uses[names[i]];
    std::erase_if(alike, [&](std::size_t i) { return uses[names[i]] == 1; });
    for (const std::size_t i : alike) names[i] = with_path(report.trails[i], above);
  }
  for (std::size_t i = 0; i < names.size(); ++i)
    if (!report.trails[i].warnings.empty()) names[i] += " \u26a0";
  return names;
}

namespace {

// As near to a point as there is room, at one of some distances; from afar a line leads to it.
std::optional<Label> place_near(Occupancy& occupancy, const Point2& at, const std::string& text, Lettering how,
                                std::initializer_list<double> gaps) {
  const double nearest = how.gap, letters = 0.62 * how.size * static_cast<double>(width(text));
  for (const double gap : gaps) {
    how.gap = gap;
    auto label = place_label(occupancy, at, text, how);
    if (!label) continue;
    const Point2& start = label->at;
    if (gap > nearest)
      label->leader = Line{
          at,
          {std::clamp(at.x, start.x, start.x + letters), at.y > start.y ? start.y + 2.0 : start.y - 0.8 * how.size}};
    return label;
  }
  return std::nullopt;
}

}  // namespace

Names place_names(const std::vector<Named>& objects, const std::vector<std::string>& names, Occupancy& occupancy,
                  std::size_t limit) {
  constexpr std::size_t kMostLetters = 32;
  constexpr double kAsOne = 8.0;  // pixels
  Names result;
  std::vector<Point2> told;
  for (const Named& object : objects) {
    const std::string name = shortened(names[object.trail], kMostLetters);
    const bool large = object.lit || objects.size() <= kFewTrails;
    auto label = large ? place_near(occupancy, object.at, name, {"ink name", 13.0, 9.0}, {9.0, 20.0, 34.0})
                       : place_label(occupancy, object.at, name, {"ink small", 11.0, 5.0});
    const bool alone = std::none_of(told.begin(), told.end(), [&](const Point2& p) {
      return base::hypot(p.x - object.at.x, p.y - object.at.y) < kAsOne;
    });
    if (!label && alone && result.numbered.size() < limit) {
      label = place_near(occupancy, object.at, std::to_string(result.numbered.size() + 1),
                         {"ink number", 10.0, 4.0, 2.0}, {4.0, 12.0, 22.0, 34.0});
      if (label) result.numbered.push_back(object.trail);
    }
    if (!label) {
      ++result.left_out;
      continue;
    }
    result.labels.push_back(std::move(*label));
    told.push_back(object.at);
  }
  return result;
}

}  // namespace vantorelix::cli
