#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <utility>

#include "base/number_text.h"
#include "cli/output/curve_writers.h"
#include "cli/output/text.h"
#include "cli/terminal/failure.h"
#include "session/report.h"

namespace vantorelix::cli {

namespace {

// The rate as the scene format names it; empty for one that it has no name for.
std::string time_unit(double fps) {
  constexpr std::array<std::pair<double, const char*>, 8> kNamed = {{{24.0, "film"},
                                                                     {25.0, "pal"},
                                                                     {30.0, "ntsc"},
                                                                     {15.0, "game"},
                                                                     {48.0, "show"},
                                                                     {50.0, "palf"},
                                                                     {60.0, "ntscf"},
                                                                     {120.0, "120fps"}}};
  for (const auto& [rate, name] : kNamed)
    if (std::abs(fps - rate) < 1e-4 * rate) return name;
  return {};
}

void write_header(TextSink& out, const standalone::Scene& scene) {
  // A scene that does not tell its unit becomes one in the format's own.
  const std::string length =
      scene.settings.linear_unit() == session::kUnknownUnit ? "cm" : scene.settings.linear_unit();
  out << "//Maya ASCII 2018 scene\n//Codeset: UTF-8\nrequires maya \"2018\";\ncurrentUnit -l " << length
      << " -a degree";
  const std::string unit = time_unit(scene.settings.frames_per_second());
  if (!unit.empty()) out << " -t " << unit;
  out << ";\nfileInfo \"application\" \"vantorelix\";\n";
}

void write_curve(TextSink& out, const CurveView& curve) {
  const auto& points = *curve.points;
  const auto knots = open_uniform_knots(points.size(), curve.degree);
  out << "createNode transform -n \"" << curve.name << "\";\ncreateNode nurbsCurve -n \"" << curve.shape << "\" -p \""
      << curve.name << "\";\n\tsetAttr -k off \".v\";\n\tsetAttr \".cc\" -type \"nurbsCurve\" \n\t\t"
      << static_cast<std::int64_t>(curve.degree) << ' ' << static_cast<std::int64_t>(points.size()) - curve.degree
      << " 0 no 3\n\t\t" << static_cast<std::int64_t>(knots.size());
  for (std::size_t i = 0; i < knots.size(); ++i) out << (i % 20 == 19 ? "\n\t\t" : " ") << knots[i];
  out << "\n\t\t" << static_cast<std::int64_t>(points.size()) << "\n";
  for (const Vector& p : points) {
    if (!is_finite(p))
      throw Failure(curve.name + ": has points that are not finite numbers; choose other objects with --select");
    out << "\t\t" << p.x << ' ' << p.y << ' ' << p.z << "\n";
  }
  out << "\t\t;\n";
}

void write_playback(TextSink& out, const standalone::Scene& scene) {
  const std::string first = number_text(scene.settings.playback_min()),
                    last = number_text(scene.settings.playback_max());
  out << "createNode script -n \"sceneConfigurationScriptNode\";\n\tsetAttr \".b\" -type \"string\" \"playbackOptions "
         "-min "
      << first << " -max " << last << " -ast " << first << " -aet " << last << " \";\n\tsetAttr \".st\" 6;\n";
}

}  // namespace

std::vector<double> open_uniform_knots(std::size_t points, int degree) {
  const long spans = static_cast<long>(points) - degree;
  std::vector<double> knots;
  for (long i = 0; i < spans + 2L * degree - 1; ++i)
    knots.push_back(static_cast<double>(std::clamp(i - degree + 1L, 0L, spans)));
  return knots;
}

void write_maya_ascii(TextSink& out, const std::vector<CurveView>& curves, const standalone::Scene& scene) {
  write_header(out, scene);
  for (const CurveView& curve : curves) write_curve(out, curve);
  write_playback(out, scene);
  out << "// End of scene\n";
}

void write_curve_csv(TextSink& out, const std::vector<CurveView>& curves) {
  out << "curve,cv,x,y,z\n";
  for (const CurveView& curve : curves) {
    const std::string name = csv_text(curve.name);
    for (std::size_t i = 0; i < curve.points->size(); ++i) {
      const Vector& p = (*curve.points)[i];
      out << name << ',' << static_cast<std::int64_t>(i);
      for (const double value : {p.x, p.y, p.z}) {
        out << ',';
        if (std::isfinite(value)) out << value;
      }
      out << '\n';
    }
  }
}

}  // namespace vantorelix::cli
