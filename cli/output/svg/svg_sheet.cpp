#include "cli/output/svg/svg_sheet.h"

#include <algorithm>
#include <cmath>

#include "base/mathematics/mathematics.h"
#include "base/number_text.h"
#include "cli/output/text.h"
#include "session/compare.h"

namespace vantorelix::cli {

namespace {

constexpr double kWidth = 1200.0;
constexpr double kTitle = 66.0;
// The part of the plot that the motion fills across or up, and what the ground around it may leave of that.
constexpr double kFilled = 0.86, kFilledOverGround = 0.74;
// Points that all lines together keep, and dots that are drawn: a few MB at most.
constexpr std::size_t kMaxPoints = 60'000;
constexpr std::size_t kMaxDots = 5'000;

// The trails that move, here or in the second scene; all of them when none does.
std::vector<std::size_t> moving_trails(const session::Motion& here, const session::Motion& second) {
  std::vector<std::size_t> moving;
  for (std::size_t i = 0; i < here.moves.size(); ++i)
    if (here.moves[i] || second.moves[i]) moving.push_back(i);
  return moving.empty() ? here.that_move() : moving;
}

std::vector<bool> lit_trails(const session::TrailReport& report, const session::Motion& motion,
                             const std::vector<std::size_t>& moving) {
  const bool few = moving.size() <= session::kMostChosen;
  std::vector<bool> lit(report.trails.size());
  for (const std::size_t trail : few ? moving : session::first_choice(report, motion)) lit[trail] = true;
  return lit;
}

// Where the motion is on the camera's plane. A point where the motion has no extent in this view.
Box2 seen_motion(const Subject& subject) {
  Box2 seen;
  subject.fitted.for_each_point([&](const Vector& p) { seen.include(subject.camera.project(p)); });
  if (!seen) seen.include(subject.camera.project(subject.bounds.centre()));
  return seen;
}

// `box`, grown by a part of what reaches beyond it.
Box2 grown(const Box2& box, const Box2& beyond, double part) {
  return {box.left + part * std::min(beyond.left - box.left, 0.0),
          box.right + part * std::max(beyond.right - box.right, 0.0),
          box.top + part * std::min(beyond.top - box.top, 0.0),
          box.bottom + part * std::max(beyond.bottom - box.bottom, 0.0)};
}

// The least of 1, 2, 5, 10, 20 ... that is at least `least`.
std::size_t nice_stride(double least) {
  if (!(least > 1.0)) return 1;
  const double step = nice_step(std::min(least, 1e12));
  const bool head_is_two = std::lround(step / std::pow(10.0, std::floor(std::log10(step)))) == 2;
  return static_cast<std::size_t>(std::llround(step >= least ? step : step * (head_is_two ? 2.5 : 2.0)));
}

// The trails that matter first, then those that travel most.
std::vector<std::size_t> by_weight(const Subject& subject) {
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < subject.lit.size(); ++i) order.push_back(i);
  const auto weight = [&](std::size_t i) { return subject.motion.moves[i] ? subject.motion.reaches[i].length : -1.0; };
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    if (subject.lit[a] != subject.lit[b]) return subject.lit[a] > subject.lit[b];
    return !subject.lit[a] && weight(a) > weight(b);
  });
  return order;
}

}  // namespace

Subject subject_of(const session::TrailReport& report, const SvgOptions& options) {
  session::Motion motion = session::motion_of(report);
  auto second = session::second_of(report);
  auto moving = moving_trails(motion, session::motion_of(second));
  auto lit = lit_trails(report, motion, moving);
  Fitted fitted{{}, report.up_axis};
  for (const std::size_t trail : moving) fitted.lines.push_back(report.trails[trail].points);
  for (const std::size_t trail : moving)
    if (report.trails[trail].compare) fitted.lines.push_back(second.trails[trail].points);
  const Bounds bounds = bounds_of(fitted);
  const Camera camera(options.view, fitted, bounds);
  return {report,
          options,
          std::move(motion),
          std::move(moving),
          std::move(lit),
          std::move(second),
          session::farthest_apart(report),
          std::move(fitted),
          bounds,
          camera,
          ground_under(bounds)};
}

Sheet::Sheet(const Subject& what, const Room& room)
    : subject(what), lens{what.camera, {}, what.report.up_axis}, legend{what.report,
                                                                        what.options.coloring,
                                                                        by_weight(what),
                                                                        names_of(what.report),
                                                                        {},
                                                                        {},
                                                                        {},
                                                                        room.rows} {
  place(room);
  add_trails();
  add_second();
  thin_lines();
  thin_dots();
  if (subject.options.onion) skins = choose_skins(subject.report, *subject.options.onion);
  mark(room);
  explain();
  height = subject.options.size ? subject.options.size->height
                                : std::ceil(foot() + legend_height(legend, width - 2 * kMargin));
}

// Fits the motion into the plot, with as much of the ground around it as leaves it large.
void Sheet::place(const Room& room) {
  const auto& size = subject.options.size;
  width = size ? size->width : kWidth;
  const bool ruled = !subject.camera.is_perspective();
  const double left = kMargin + (ruled ? 40.0 : 0.0), wide = width - kMargin - left;
  const double top = kTitle + (ruled ? 36.0 : 20.0), below = (ruled ? 40.0 : 20.0) + room.legend;
  const Box2 motion = seen_motion(subject);
  const double nothing = 1e-9 * subject.bounds.extent();
  Box2 ground;
  if (!ruled)
    for (const Vector& corner : subject.ground.corners()) ground.include(subject.camera.project(corner));
  for (double part = ruled ? 0.0 : 1.0; part >= 0.0; part -= 0.125) {
    Box2 seen = grown(motion, ground, ruled ? 0.0 : part);
    if (!(seen.width() > nothing) && !(seen.height() > nothing))
      seen = {seen.left - subject.bounds.extent(), seen.right + subject.bounds.extent(), seen.top, seen.bottom};
    const double w = std::max(seen.width(), 1e-3 * nothing), h = std::max(seen.height(), 1e-3 * nothing);
    const double high = size ? std::max(size->height - top - below, 1.0) : std::clamp(wide * h / w, 360.0, 760.0);
    const double scale = std::min(kFilled * wide / w, kFilled * high / h);
    plot = {left, left + wide, top, top + high};
    lens.placement.scale = scale;
    lens.placement.shift = {left + wide / 2 - scale * (seen.left + seen.right) / 2,
                            top + high / 2 - scale * (seen.top + seen.bottom) / 2};
    if (std::max(scale * motion.width() / wide, scale * motion.height() / high) >= kFilledOverGround) break;
  }
  if (ruled) ruled_step = nice_step(100.0 / lens.placement.scale);
}

void Sheet::add_trails() {
  const auto& views = subject.report.trails;
  trails.reserve(views.size());
  for (std::size_t i = 0; i < views.size(); ++i)
    trails.emplace_back(views[i], look_of(subject.report, i, subject.options.coloring, subject.lit[i]), lens);
}

// Of the lit trails, as on the page, and of the one that is farthest apart.
void Sheet::add_second() {
  const auto& views = subject.second.trails;
  for (std::size_t i = 0; i < views.size(); ++i)
    if (views[i].compare && (subject.lit[i] || (subject.farthest == i && views[i].compare->largest > 0.0)))
      beside.push_back(i);
  second.reserve(beside.size());
  for (const std::size_t i : beside) second.emplace_back(views[i], Look{}, lens);
  if (!subject.farthest) return;
  const session::Comparison& most = *views[*subject.farthest].compare;
  const auto here = figure().spot(*subject.farthest, most.frame);
  const auto there = second_figure().spot(*subject.farthest, most.frame);
  if (most.largest > 0.0 && here && there) apart = Line{*here, *there};
}

// Thins until the lines keep few enough points.
void Sheet::thin_lines() {
  const auto kept = [&] {
    std::size_t n = 0;
    for (const auto* lines : {&trails, &second})
      for (const DrawnTrail& trail : *lines) n += trail.kept(thinning);
    return n;
  };
  while (kept() > kMaxPoints && thinning.tolerance < 10.0) thinning.tolerance *= 1.6;
  // The points of a line that jumps to and fro are never near each other: there only leaving samples out helps.
  while (kept() > kMaxPoints && thinning.every < 1'000'000'000) thinning.every *= 2;
}

// So that dots do not touch, but for where an object eases: the page has the same rule
// (viewer/src/view/dot_spacing.ts).
void Sheet::thin_dots() {
  constexpr double kHolds = 0.05;  // pixels a frame below which the dots lie upon each other however few they are
  constexpr double kSpot = 4.0;    // dots side by side along a trail; a shorter one is a spot, however few dots it has
  constexpr double kMayTouch = 0.25;
  std::vector<double> gaps;  // of stretches: distance a frame, in parts of what dots need
  std::size_t frames = 0;
  for (const DrawnTrail& drawn : trails) {
    const session::TrailView& trail = drawn.trail();
    if (!drawn.lit() || !trail.show_dots) continue;
    const double need = trail.point_size + 1.0;
    const std::size_t before = gaps.size();
    double way = 0.0;
    drawn.for_each_stretch({0.0, 1}, [&](const Point2& from, const Point2& to) {
      const double pixels = base::hypot(to.x - from.x, to.y - from.y);
      way += pixels;
      if (pixels >= kHolds * trail.frame_step) gaps.push_back(pixels / trail.frame_step / need);
    });
    if (way < kSpot * need) gaps.resize(before);
    drawn.for_each_dot(dots, [&](std::size_t) { ++frames; });
  }
  double crowd = 1.0;
  if (!gaps.empty()) {
    const auto quarter = gaps.begin() + static_cast<std::ptrdiff_t>(kMayTouch * static_cast<double>(gaps.size()));
    std::nth_element(gaps.begin(), quarter, gaps.end());
    crowd = 1.0 / *quarter;
  }
  dots.every = nice_stride(std::max(crowd, static_cast<double>(frames) / static_cast<double>(kMaxDots)));
}

// "3.2 cm at frame 12", of the largest distance to the second scene.
std::string apart_text(const Subject& subject) {
  const session::Comparison& most = *subject.second.trails[*subject.farthest].compare;
  return readable(most.largest) + " " + session::unit_text(subject.report) + " at frame " + readable(most.frame, 8);
}

// Finds places for everything that must not lie on something else, the most telling first.
void Sheet::mark(const Room& room) {
  const Figure objects = figure();
  const double now = subject.report.current;
  Occupancy occupancy({kMargin / 2, width - kMargin / 2, plot.top - 14.0, plot.bottom + 14.0});
  const auto note = [&](const Point2& from, const Point2& to) { occupancy.note_line(from, to); };
  for (const DrawnTrail& trail : trails)
    if (trail.lit()) trail.for_each_stretch(thinning, note);
  for (const DrawnTrail& trail : second) trail.for_each_stretch(thinning, note);
  objects.for_each_bone(now, note);
  keys = choose_keys(trails, occupancy);
  holds = choose_holds(trails, occupancy.area());
  std::vector<Named> named;
  for (const std::size_t i : legend.order) {
    const auto at = objects.spot(i, now);
    if (!at || !occupancy.area().contains(*at)) continue;
    named.push_back({i, *at, subject.lit[i]});
    if (subject.lit[i])
      occupancy.take(box_around(*at, ring_radius(true, true)));
    else
      note(*at, *at);
  }
  if (apart) {
    occupancy.note_line(apart->from, apart->to);
    const Point2 middle{(apart->from.x + apart->to.x) / 2.0, (apart->from.y + apart->to.y) / 2.0};
    if (auto label = place_label(occupancy, middle, apart_text(subject), {"ink small", 11.0}))
      labels.push_back(std::move(*label));
  }
  names = place_names(named, legend.names, occupancy, room.numbers);
  legend.numbered = names.numbered;
  arrows = choose_arrows(trails, thinning, occupancy);
  for (Label& label : label_holds(holds.marks, occupancy)) labels.push_back(std::move(label));
  for (Label& label : label_keys(keys, occupancy, trails.size() > kMaxShadows ? 30 : 60))
    labels.push_back(std::move(label));
}

namespace {

std::string dots_note(const Sheet& sheet) {
  bool shown = false, any = false;
  for (const DrawnTrail& trail : sheet.trails) {
    if (!trail.lit() || !trail.trail().show_dots || trail.trail().points->empty()) continue;
    shown = true;
    trail.for_each_dot(sheet.dots, [&](std::size_t) { any = true; });
  }
  if (!shown) return "";
  if (!any) return "no dots: no sample lies on a whole frame";
  return sheet.dots.every == 1 ? "a dot every frame" : "a dot every " + std::to_string(sheet.dots.every) + " frames";
}

std::string skins_note(const Sheet& sheet) {
  if (!sheet.subject.options.onion) return "";
  const double every = sheet.subject.options.onion->every;
  std::string note = every > 0.0 ? "the figure every " + readable(every, 6) + (every == 1.0 ? " frame" : " frames")
                                 : "the figure at " + counted(sheet.skins.skins.size(), "frame") + " with keys";
  if (sheet.skins.left_out > 0) note += "; " + std::to_string(sheet.skins.left_out) + " farther away in time left out";
  return note;
}

std::string left_out(std::size_t marked, std::size_t all, const std::string& what) {
  return std::to_string(marked) + " of " + std::to_string(all) + " " + what;
}

// Of what stands still, and so had no say in what the picture fits.
std::string outside_note(const Sheet& sheet) {
  const auto is_outside = [&](const Vector& p) { return is_finite(p) && !sheet.plot.contains(sheet.lens(p)); };
  std::size_t outside = 0;
  for (std::size_t i = 0; i < sheet.trails.size(); ++i) {
    const auto& points = *sheet.trails[i].trail().points;
    if (!sheet.subject.motion.moves[i] && std::any_of(points.begin(), points.end(), is_outside)) ++outside;
  }
  if (outside == 0) return "";
  return counted(outside, "still object") + (outside == 1 ? " is" : " are") + " outside the picture";
}

void add_comparison_notes(const Sheet& sheet, std::vector<std::string>& notes) {
  const Subject& subject = sheet.subject;
  if (!subject.report.compared) return;
  const std::string name = second_name(subject.report);
  const auto& trails = subject.report.trails;
  const auto both = static_cast<std::size_t>(
      std::count_if(trails.begin(), trails.end(), [](const session::TrailView& t) { return t.compare.has_value(); }));
  if (!subject.farthest)
    notes.push_back("no distance to " + name + " is known");
  else if (trails[*subject.farthest].compare->largest > 0.0)
    notes.push_back("largest distance to " + name + ": " + sheet.legend.names[*subject.farthest] + ", " +
                    apart_text(subject));
  else
    notes.push_back(name + " has the objects in the same places");
  if (sheet.second.size() < both)
    notes.push_back(left_out(sheet.second.size(), both, "objects have a line of " + name));
  if (both < trails.size()) notes.push_back(name + " lacks " + counted(trails.size() - both, "object"));
}

// What stands beside the picture's signs, and what the picture leaves out.
std::vector<std::string> notes_of(const Sheet& sheet) {
  const Subject& subject = sheet.subject;
  const session::TrailReport& report = subject.report;
  std::vector<std::string> notes;
  const std::string unit = session::unit_text(report);
  if (sheet.ruled_step > 0.0)
    notes.push_back("grid lines every " + readable(sheet.ruled_step, 6) + " " + unit);
  else
    notes.push_back("ground squares of " + readable(subject.ground.step, 6) + " " + unit + ", at " +
                    std::string(1, report.up_axis) + " = " + readable(subject.ground.height, 6));
  if (const std::string dots = dots_note(sheet); !dots.empty()) notes.push_back(dots);
  std::size_t keys = 0;
  for (const session::TrailView& trail : report.trails) keys += trail.key_times.size();
  if (sheet.keys.empty() && keys > 0)
    notes.push_back(counted(keys, "key") + " not marked");
  else if (sheet.keys.size() < keys)
    notes.push_back(left_out(sheet.keys.size(), keys, "keys are marked"));
  if (sheet.holds.marks.size() < sheet.holds.all)
    notes.push_back(left_out(sheet.holds.marks.size(), sheet.holds.all, "holds are marked"));
  if (const std::string skins = skins_note(sheet); !skins.empty()) notes.push_back(skins);
  add_comparison_notes(sheet, notes);
  if (const std::string outside = outside_note(sheet); !outside.empty()) notes.push_back(outside);
  if (sheet.names.left_out > 0)
    notes.push_back(counted(sheet.names.left_out, "object") + " without a name or number in the picture");
  if (sheet.thinning.tolerance > Thinning{}.tolerance)
    notes.push_back("lines thinned to points " + fixed(sheet.thinning.tolerance, 1) +
                    " px apart; the data files hold them all");
  if (sheet.thinning.every > 1)
    notes.push_back("lines through one of every " + std::to_string(sheet.thinning.every) + " samples");
  if (subject.options.coloring.safe && !subject.options.coloring.by_object)
    notes.push_back("these are not the engine's own colours");
  const bool marked = std::any_of(report.trails.begin(), report.trails.end(),
                                  [](const session::TrailView& trail) { return !trail.warnings.empty(); });
  if (marked) notes.push_back("\u26a0 may differ from the scene's own motion, see the warnings");
  return notes;
}

}  // namespace

void Sheet::explain() {
  const auto show = [&](bool is_there, Sign sign) {
    if (is_there) legend.signs.push_back(sign);
  };
  show(!trails.empty(), Sign::place);
  show(!keys.empty(), Sign::key);
  show(!arrows.empty(), Sign::arrow);
  show(!holds.marks.empty(), Sign::hold);
  const double now = subject.report.current;
  const auto skin = [&](bool before) {
    return std::any_of(skins.skins.begin(), skins.skins.end(),
                       [&](const Skin& s) { return (s.frame < now) == before; });
  };
  show(skin(true), Sign::before);
  show(skin(false), Sign::after);
  show(std::any_of(subject.moving.begin(), subject.moving.end(), [&](std::size_t i) { return !subject.lit[i]; }),
       Sign::faint);
  show(!second.empty(), Sign::second);
  legend.notes = notes_of(*this);
}

}  // namespace vantorelix::cli
