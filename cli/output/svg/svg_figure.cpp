#include "cli/output/svg/svg_figure.h"

#include <algorithm>
#include <cmath>

#include "base/number_text.h"
#include "cli/output/svg/svg_path.h"

namespace vantorelix::cli {

namespace {

// More figures on one side, and nobody could tell them apart.
constexpr std::size_t kMaxSkins = 24;
// Segments that all skins together draw.
constexpr std::size_t kMaxSkinParts = 60'000;
constexpr std::size_t kMaxRings = 2'000;

// Frames that have a skin, in order.
std::vector<double> skin_frames(const session::TrailReport& report, const Onion& onion) {
  std::vector<double> frames;
  if (onion.every > 0.0) {
    const double before = std::floor((report.current - report.first) / onion.every + 1e-9);
    const double after = std::floor((report.last - report.current) / onion.every + 1e-9);
    const double most = 1e6;
    for (double k = -std::min(before, most); k <= std::min(after, most); k += 1.0)
      frames.push_back(report.current + k * onion.every);
    return frames;
  }
  for (const session::TrailView& trail : report.trails)
    frames.insert(frames.end(), trail.key_times.begin(), trail.key_times.end());
  std::erase_if(frames, [&](double frame) { return !(frame >= report.first && frame <= report.last); });
  std::sort(frames.begin(), frames.end());
  frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
  return frames;
}

}  // namespace

Skins choose_skins(const session::TrailReport& report, const Onion& onion) {
  const auto frames = skin_frames(report, onion);
  const std::size_t most =
      std::clamp<std::size_t>(kMaxSkinParts / 2 / std::max<std::size_t>(report.trails.size(), 1), 1, kMaxSkins);
  const auto now = std::lower_bound(frames.begin(), frames.end(), report.current - 1e-9);
  const auto after = std::find_if(now, frames.end(), [&](double frame) { return frame > report.current + 1e-9; });
  const std::size_t before_count = std::min<std::size_t>(most, static_cast<std::size_t>(now - frames.begin()));
  const std::size_t after_count = std::min<std::size_t>(most, static_cast<std::size_t>(frames.end() - after));
  Skins result;
  result.left_out =
      static_cast<std::size_t>((now - frames.begin()) + (frames.end() - after)) - before_count - after_count;
  const auto steps = static_cast<double>(std::max(before_count, after_count) + 1);
  for (std::size_t k = std::max(before_count, after_count); k > 0; --k) {
    const double strength = 1.0 - static_cast<double>(k) / steps;
    const auto offset = static_cast<std::ptrdiff_t>(k);
    if (k <= before_count) result.skins.push_back({*(now - offset), strength});
    if (k <= after_count) result.skins.push_back({*(after + offset - 1), strength});
  }
  return result;
}

double ring_radius(bool lit, bool moves) { return lit ? 6.5 : moves ? 3.2 : 2.2; }

Figure::Figure(const session::TrailReport& report, const session::Motion& motion, const Lens& lens)
    : report_(report), motion_(motion), lens_(lens) {
  std::vector<bool> has_bone(motion.parents.size());
  for (std::size_t i = 0; i < has_bone.size(); ++i)
    if (motion.parents[i]) has_bone[i] = has_bone[*motion.parents[i]] = true;
  for (std::size_t i = 0; i < has_bone.size(); ++i)
    if (!has_bone[i] && motion.moves[i]) loners_.push_back(i);
}

std::optional<Point2> Figure::spot(std::size_t trail, double frame) const {
  const Vector place = session::place_at(report_.trails[trail], frame);
  return is_finite(place) ? std::optional(lens_(place)) : std::nullopt;
}

void Figure::for_each_bone(double frame, const std::function<void(const Point2&, const Point2&)>& visit) const {
  for (std::size_t i = 0; i < motion_.parents.size(); ++i) {
    if (!motion_.parents[i]) continue;
    const auto from = spot(*motion_.parents[i], frame), to = spot(i, frame);
    if (from && to) visit(*from, *to);
  }
}

void Figure::draw_skins(TextSink& out, const std::vector<Skin>& skins) const {
  for (const Skin& skin : skins) {
    PathData bones;
    std::string alone;
    for_each_bone(skin.frame, [&](const Point2& from, const Point2& to) {
      bones.move(from);
      bones.line(to);
    });
    for (const std::size_t i : loners_)
      if (const auto at = spot(i, skin.frame))
        alone += "<circle cx=\"" + pixel(at->x) + "\" cy=\"" + pixel(at->y) + "\" r=\"6.5\"/>";
    out << "<g class=\"skin " << (skin.frame < report_.current ? "before" : "after") << "\" opacity=\""
        << fixed(0.15 + 0.6 * skin.strength, 2) << "\">";
    if (!bones.empty()) out << "<path d=\"" << bones.text() << "\"/>";
    out << alone << "</g>\n";
  }
}

void Figure::draw_bones(TextSink& out) const {
  PathData path;
  for_each_bone(report_.current, [&](const Point2& from, const Point2& to) {
    path.move(from);
    path.line(to);
  });
  if (path.empty()) return;
  out << "<path class=\"bone under\" d=\"" << path.text() << "\"/>\n<path class=\"bone\" d=\"" << path.text()
      << "\"/>\n";
}

void Figure::draw_rings(TextSink& out, const std::vector<DrawnTrail>& trails, const Box2& area) const {
  std::size_t drawn = 0;
  const auto draw = [&](bool lit) {
    for (std::size_t i = 0; i < trails.size() && drawn < kMaxRings; ++i) {
      if (trails[i].lit() != lit) continue;
      const auto at = spot(i, report_.current);
      if (!at || !area.contains(*at)) continue;
      ++drawn;
      out << "<circle class=\"ring" << (lit ? " lit" : "") << "\" cx=\"" << pixel(at->x) << "\" cy=\"" << pixel(at->y)
          << "\" r=\"" << pixel(ring_radius(lit, motion_.moves[i])) << "\" fill=\""
          << hex_color(trails[i].color_at(report_.current)) << "\"/>\n";
    }
  };
  draw(false);
  draw(true);
}

}  // namespace vantorelix::cli
