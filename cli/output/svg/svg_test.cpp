#include "cli/output/svg/svg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <regex>
#include <set>
#include <string>

#include "cli/output/output_file.h"
#include "cli/output/svg/svg_path.h"
#include "cli/output/svg/svg_sheet.h"
#include "cli/terminal/failure.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/trail_views.h"

namespace vantorelix::cli {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(Svg, APictureOfAMillionSamplesStaysSmall) {
  const support::TemporaryFolder folder;
  std::vector<Vector> points;
  for (int i = 0; i < 1'000'000; ++i)
    points.push_back({std::sin(i * 0.7) * i, std::cos(i * 1.3) * i, std::sin(i * 0.11) * i});
  OutputFile out(folder / "a.svg");
  write_svg(out, support::report_of(std::move(points)), {});
  out.commit();
  EXPECT_LT(std::filesystem::file_size(folder / "a.svg"), 3'000'000u);
  EXPECT_THAT(folder.read("a.svg"), testing::HasSubstr("lines thinned"));
}

TEST(Svg, APictureOfNothingFiniteIsStillAPicture) {
  const support::TemporaryFolder folder;
  OutputFile out(folder / "a.svg");
  write_svg(out, support::report_of({{kNan, 0, 0}, {kNan, 0, 0}}), {});
  out.commit();
  EXPECT_THAT(folder.read("a.svg"),
              testing::AllOf(testing::HasSubstr("</svg>"), testing::Not(testing::HasSubstr("nan"))));
}

std::string drawn(const session::TrailReport& report, const SvgOptions& options = {}) {
  StringSink out;
  write_svg(out, report, options);
  return out.text();
}

// A spiral of so many frames around (x, y, z), `size` wide.
session::TrailView spiral(const std::string& path, double x, double y, double z, double size, int frames = 48) {
  std::vector<Vector> points;
  for (int i = 0; i < frames; ++i) {
    const double t = i / (frames - 1.0);
    points.push_back({x + size * t * std::cos(9 * t), y + size * t, z + size * t * std::sin(7 * t)});
  }
  session::TrailView trail = support::trail_of(std::move(points));
  trail.source = path;
  trail.name = path.substr(path.rfind('|') + 1);
  trail.start_frame = 1.0;
  trail.point_size = 6.0;
  trail.line_width = 2.5;
  return trail;
}

session::TrailReport report_of(std::vector<session::TrailView> trails) {
  session::TrailReport report{"a.ma", 24.0, 1.0, 48.0, "cm", 'y', std::move(trails)};
  report.current = 1.0;
  return report;
}

// What a sheet shows of the trails that it is fitted to: how much of the plot they fill, and whether any sample is
// outside of it. Worked out from the places of the samples alone.
struct Fill {
  double share;
  bool inside;
};
Fill fill_of(const session::TrailReport& report, const SvgOptions& options, std::size_t moving) {
  const Subject subject = subject_of(report, options);
  const Sheet sheet(subject, {});
  Box2 box;
  for (std::size_t i = 0; i < moving; ++i)
    for (const Vector& p : *report.trails[i].points) box.include(sheet.lens(p));
  return {std::max(box.width() / sheet.plot.width(), box.height() / sheet.plot.height()),
          sheet.plot.contains({box.left, box.top}) && sheet.plot.contains({box.right, box.bottom})};
}

TEST(Svg, TheMotionFillsThePlotWhereverStillObjectsAre) {
  session::TrailView light = spiral("|light", 1e6, 1e6, 0, 0.0);
  for (const char* view : {"persp", "front", "side", "top"})
    for (const double size : {1e-4, 1.0, 1e7}) {
      const auto report = report_of({spiral("|a", 5, 3, 1, size), spiral("|b", 5 + 9 * size, 3, 1, size), light});
      const Fill fill = fill_of(report, {view, "auto", {}, {}, {}, {}}, 2);
      EXPECT_GE(fill.share, 0.7) << view << ' ' << size;
      EXPECT_TRUE(fill.inside) << view << ' ' << size;
    }
}

TEST(Svg, StillObjectsOutsideThePictureAreCounted) {
  const auto still = [](const char* path, double x) { return spiral(path, x, 5, 0, 0.0); };
  const auto svg = [](std::vector<session::TrailView> trails) { return drawn(report_of(std::move(trails))); };
  const auto mover = spiral("|a", 0, 0, 0, 10);
  EXPECT_THAT(svg({mover, still("|b", 1e4), still("|c", 1), still("|d", -1e3)}),
              testing::HasSubstr(">2 still objects are outside the picture<"));
  EXPECT_THAT(svg({mover, still("|b", 1e4)}), testing::HasSubstr(">1 still object is outside the picture<"));
  EXPECT_THAT(svg({mover, still("|c", 1)}), testing::Not(testing::HasSubstr("outside")));
  EXPECT_THAT(svg({still("|b", 1e4), still("|c", 1)}), testing::Not(testing::HasSubstr("outside")));
}

TEST(Svg, AMotionInAnyDirectionFillsEveryViewInWhichItHasAnExtent) {
  for (const Vector& along : {Vector{1, 0, 0}, Vector{0, 1, 0}, Vector{0, 0, 1}, Vector{1, 5, 0.1}})
    for (const char* view : {"persp", "front", "side", "top"})
      for (const char up : {'y', 'z'}) {
        std::vector<Vector> points;
        for (int i = 0; i < 48; ++i) points.push_back({along.x * i, along.y * i, along.z * i});
        auto report = report_of({support::trail_of(points)});
        report.up_axis = up;
        const SvgOptions options{view, "auto", {}, {}, {}, {}};
        const Subject subject = subject_of(report, options);
        const Point2 a = subject.camera.project(y_up(points.front(), up)),
                     b = subject.camera.project(y_up(points.back(), up));
        const Fill fill = fill_of(report, options, 1);
        EXPECT_TRUE(fill.inside) << view;
        const bool seen = std::abs(a.x - b.x) + std::abs(a.y - b.y) > 1e-6;
        EXPECT_GE(fill.share, seen ? 0.7 : 0.0) << view << along.x << along.y;
      }
}

TEST(Svg, OfManySamplesEverySecondTellsTheBestDirectionAsOnThePage) {
  std::vector<Vector> all, second;
  for (int i = 0; i <= 100'000; ++i) {
    all.push_back(i % 2 == 0 ? Vector{1.0 * i, 0, 0} : Vector{0, 0, 1.0 * i});
    if (i % 2 == 0) second.push_back(all.back());
  }
  const auto right = [](std::vector<Vector> points) {
    return Camera("persp", {{support::shared(std::move(points))}, 'y'}, {{0, 0, 0}, {1e5, 0, 1e5}}).right();
  };
  EXPECT_EQ(right(all), right(second));
}

std::size_t count(const std::string& text, const std::string& part) {
  std::size_t n = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
  return n;
}

// Each dot is a line without length, with a casing.
std::size_t dots_of(const std::string& svg) { return count(svg, "h0") / 2; }

TEST(Svg, DotsLieOnWholeFramesOnly) {
  session::TrailView trail = spiral("|a", 0, 0, 0, 10, 29);
  trail.frame_step = 0.25;  // frames 1 to 8
  EXPECT_EQ(dots_of(drawn(report_of({trail}))), 8u);
  EXPECT_THAT(drawn(report_of({trail})), testing::HasSubstr("a dot every frame<"));
  trail.start_frame = 1.1;
  EXPECT_EQ(dots_of(drawn(report_of({trail}))), 0u);
  EXPECT_THAT(drawn(report_of({trail})), testing::HasSubstr("no sample lies on a whole frame"));
}

TEST(Svg, DotsThatWouldTouchAreThinnedByFramesAndThatIsSaid) {
  // Less than 1112 pixels, so 481 dots of 6 pixels would touch, and 240 too, but 96 not.
  session::TrailView trail = support::trail_of({});
  std::vector<Vector> points;
  for (int i = 0; i <= 480; ++i) points.push_back({static_cast<double>(i), 0.0, 0.0});
  trail.points = support::shared(points);
  trail.colors = support::shared(std::vector<Vector>(points.size(), Vector{0, 1, 0}));
  trail.point_size = 6.0;
  auto report = report_of({trail});
  report.first = 0.0;
  report.last = 480.0;
  const std::string svg = drawn(report, {"front", "auto", {}, {}, {}, {}});
  EXPECT_THAT(svg, testing::HasSubstr("a dot every 5 frames"));
  EXPECT_EQ(dots_of(svg), 97u);
}

TEST(Svg, ATrailThatIsASpotInThePictureDoesNotThinTheDotsOfOthers) {
  session::TrailView spot = spiral("|spot", 0, 0, 0, 0.3);
  std::vector<Vector> line;
  for (int i = 0; i < 48; ++i) line.push_back({2.0 * i, 0, 0});
  session::TrailView trail = support::trail_of(line);
  trail.start_frame = spot.start_frame;
  EXPECT_THAT(drawn(report_of({spot, trail})), testing::HasSubstr("a dot every frame<"));
}

TEST(Svg, KeysThatAreNotMarkedAreCounted) {
  session::TrailView trail = spiral("|a", 0, 0, 0, 10);
  trail.key_points = trail.points;
  trail.key_colors = support::shared(std::vector<Vector>(48, Vector{1, 1, 1}));
  for (int i = 1; i <= 48; ++i) trail.key_times.push_back(i);
  const std::string svg = drawn(report_of({trail}));
  std::smatch found;
  ASSERT_TRUE(std::regex_search(svg, found, std::regex("(\\d+) of 48 keys are marked")));
  const Subject subject = subject_of(report_of({trail}), {});
  EXPECT_LT(std::stoi(found[1]), 48);
}

// A figure of many joints, so far from each other.
session::TrailReport crowd(int joints, double apart = 0.02) {
  std::vector<session::TrailView> trails{spiral("|root", 0, 0, 0, 1)};
  for (int i = 0; i < joints; ++i) {
    trails.push_back(spiral("|root|joint" + std::to_string(i), apart * (i % 8), apart * (i / 8), 0.01, 1 + 0.01 * i));
    trails.back().parent = "|root";
  }
  return report_of(std::move(trails));
}

TEST(Svg, EveryObjectHasItsNameOrANumberThatTheLegendExplains) {
  const auto report = crowd(60, 0.12);
  const SvgOptions options;
  const Subject subject = subject_of(report, options);
  const Sheet sheet(subject, {});
  EXPECT_GT(sheet.names.numbered.size(), 5u);
  EXPECT_EQ(sheet.names.left_out, 1u);  // the first joint, which is where the root is
  EXPECT_EQ(sheet.names.labels.size(), 60u);
  const std::string svg = drawn(report);
  for (const std::size_t trail : sheet.names.numbered)
    EXPECT_THAT(svg, testing::HasSubstr(">" + report.trails[trail].name + "<"));
}

TEST(Svg, ObjectsThatLieAsGoodAsTogetherHaveNoNumbersAndAreCounted) {
  const auto report = crowd(60);
  const SvgOptions options;
  const Subject subject = subject_of(report, options);
  const Sheet sheet(subject, {});
  const Names& names = sheet.names;
  EXPECT_GT(names.left_out, 20u);
  EXPECT_EQ(names.labels.size() + names.left_out, 61u);
  EXPECT_THAT(drawn(report),
              testing::HasSubstr(">" + std::to_string(names.left_out) + " objects without a name or number in the"));
  ASSERT_GT(names.numbered.size(), 1u);
  for (const std::size_t a : names.numbered)
    for (const std::size_t b : names.numbered) {
      const Point2 p = *sheet.figure().spot(a, 1.0), q = *sheet.figure().spot(b, 1.0);
      EXPECT_TRUE(a == b || std::hypot(p.x - q.x, p.y - q.y) >= 8.0);
    }
}

TEST(Svg, NumbersSideBySideDoNotReadAsOne) {
  Occupancy occupancy({0, 400, 0, 400});
  std::vector<Named> objects;
  std::vector<std::string> names(9, std::string(90, 'x'));  // no room for any
  for (std::size_t i = 0; i < names.size(); ++i)
    objects.push_back({i, {200.0 + 9.0 * static_cast<double>(i), 200.0}, false});
  const Names placed = place_names(objects, names, occupancy, 90);
  ASSERT_EQ(placed.labels.size(), 9u);
  for (const Label& a : placed.labels)
    for (const Label& b : placed.labels)
      EXPECT_TRUE(b.at.x <= a.at.x || std::abs(a.at.y - b.at.y) >= 10.0 || b.at.x - a.at.x >= 6.2 + 4.0);
}

TEST(Svg, ANameOfALitObjectWithoutRoomBesideItStandsFartherAwayAtALine) {
  Occupancy occupancy({0, 400, 0, 400});
  occupancy.take(box_around({200, 200}, 20));
  const Names placed = place_names({{0, {200, 200}, true}}, {"hand"}, occupancy, 0);
  ASSERT_EQ(placed.labels.size(), 1u);
  const Label& label = placed.labels[0];
  ASSERT_TRUE(label.leader);
  EXPECT_EQ(label.leader->from.x, 200.0);
  EXPECT_GT(std::hypot(label.leader->to.x - 200.0, label.leader->to.y - 200.0), 20.0);
  EXPECT_LT(std::hypot(label.leader->to.x - label.at.x, label.leader->to.y - label.at.y), 40.0);
}

TEST(Svg, WhatIsNotLitIsFaintAndHasNoDots) {
  const std::string svg = drawn(crowd(8));
  // Of the root and eight ends, five are lit.
  EXPECT_EQ(count(svg, "<g class=\"faint\">"), 4u);
  EXPECT_EQ(count(svg, "class=\"ring lit\" cx"), 6u);  // and the legend's
  EXPECT_THAT(svg, testing::HasSubstr(".faint{opacity:.25}"));
  EXPECT_THAT(svg, testing::HasSubstr("class=\"bone\""));
}

TEST(Svg, NamesThatAreEqualAreToldApartByTheirPaths) {
  const auto names = names_of(report_of({spiral("|left|hand", 0, 0, 0, 1), spiral("|right|hand", 1, 0, 0, 1),
                                         spiral("|x|a|left|foot", 0, 0, 0, 1), spiral("|x|b|left|foot", 0, 0, 0, 1),
                                         spiral("|left|head", 0, 0, 0, 1)}));
  EXPECT_THAT(names, testing::ElementsAre("left|hand", "right|hand", "a|left|foot", "b|left|foot", "head"));
}

TEST(Svg, OnionSkinsStandBeforeAndAfterTheCurrentFrameAndFade) {
  auto report = report_of({spiral("|a", 0, 0, 0, 10)});
  report.current = 21.0;
  const Skins skins = choose_skins(report, {10.0});
  std::vector<double> frames, strengths;
  for (const Skin& skin : skins.skins) {
    frames.push_back(skin.frame);
    strengths.push_back(skin.strength);
  }
  EXPECT_THAT(frames, testing::ElementsAre(1, 41, 11, 31));
  EXPECT_THAT(strengths, testing::ElementsAre(strengths[1], strengths[0], strengths[3], strengths[2]));
  EXPECT_LT(strengths[0], strengths[2]);
  report.trails[0].key_times = {1.0, 21.0, 25.0, 90.0};
  frames.clear();
  for (const Skin& skin : choose_skins(report, {}).skins) frames.push_back(skin.frame);
  EXPECT_THAT(frames, testing::UnorderedElementsAre(1, 25));
  EXPECT_EQ(choose_skins(report, {0.5}).left_out, 40u + 54u - 48u);
}

TEST(Svg, EachObjectHasItsOwnColourAndTheSafePaletteReplacesTheEnginesColours) {
  const auto report = report_of({spiral("|a", 0, 0, 0, 10), spiral("|b", 20, 0, 0, 10)});
  EXPECT_THAT(drawn(report, {"persp", "auto", {true, false}, {}, {}, {}}),
              testing::AllOf(testing::HasSubstr("stroke=\"#e69f00\""), testing::HasSubstr("stroke=\"#56b4e9\""),
                             testing::Not(testing::HasSubstr("stroke=\"#26bfa6\""))));
  auto fast = report;
  for (session::TrailView& trail : fast.trails) {
    trail.color_mode = 1;
    trail.colors = support::shared(std::vector<Vector>(48, Vector{1, 0, 0}));  // the fastest
  }
  EXPECT_THAT(drawn(fast), testing::HasSubstr("stroke=\"#ff0000\""));
  EXPECT_THAT(drawn(fast, {"persp", "auto", {false, true}, {}, {}, {}}),
              testing::AllOf(testing::HasSubstr("stroke=\"#ffeb32\""), testing::HasSubstr("not the engine's own"),
                             testing::Not(testing::HasSubstr("stroke=\"#ff0000\""))));
}

TEST(Svg, APictureOfAGivenSizeHasItAndSaysWhenItIsTooLow) {
  const auto report = crowd(60);
  EXPECT_THAT(drawn(report, {"persp", "auto", {}, {}, PictureSize{1920, 1080}, "A <title>"}),
              testing::AllOf(testing::HasSubstr("viewBox=\"0 0 1920 1080\""), testing::HasSubstr("A &lt;title&gt;")));
  try {
    drawn(report, {"persp", "auto", {}, {}, PictureSize{480, 360}, ""});
    FAIL() << "there is no room";
  } catch (const Failure& failure) {
    std::smatch found;
    const std::string text = failure.what();
    ASSERT_TRUE(std::regex_search(text, found, std::regex("--size 480x360: .*; give it a height of (\\d+) or more")));
    EXPECT_THAT(drawn(report, {"persp", "auto", {}, {}, PictureSize{480, std::stoi(found[1])}, ""}),
                testing::HasSubstr("</svg>"));
  }
}

// A figure beside which a second scene has each object `distances` farther along x, by trail; NaN: it lacks the object.
session::TrailReport compared(session::TrailReport report, const std::vector<double>& distances) {
  report.compared = session::ComparedScene{"take/b.ma", std::nullopt};
  for (std::size_t i = 0; i < report.trails.size(); ++i) {
    session::TrailView& trail = report.trails[i];
    if (std::isnan(distances[i])) continue;
    std::vector<Vector> points = *trail.points;
    for (Vector& p : points) p.x += distances[i];
    const std::vector<double> apart(points.size(), distances[i]);
    trail.compare = session::Comparison{trail.source, support::shared(points), apart, distances[i], 12.0};
  }
  return report;
}

TEST(Svg, ASecondSceneIsThinAndGreyBelowTheFirstAndItsLargestDistanceIsNamed) {
  const auto report = compared(report_of({spiral("|a", 0, 0, 0, 10), spiral("|b", 5, 0, 0, 10)}), {1.0, 3.25});
  const std::string svg = drawn(report, {"front", "light", {}, {}, {}, {}});
  EXPECT_THAT(svg, testing::AllOf(testing::HasSubstr(">b.ma<"), testing::HasSubstr("<title>b.ma</title>"),
                                  testing::HasSubstr(">largest distance to b.ma: b, 3.25 cm at frame 12<"),
                                  testing::HasSubstr(">3.25 cm at frame 12<"), testing::HasSubstr("class=\"apart\"")));
  const std::string lines = svg.substr(svg.find("<title>b.ma</title>"));
  EXPECT_EQ(count(lines, "<path class=\"second\" "), 3u);  // the legend's too
  EXPECT_EQ(count(lines, "<circle class=\"second\" "), 3u);
  EXPECT_LT(svg.find("<path class=\"second\""), svg.find("<title>|a</title>"));
  EXPECT_THAT(drawn(report_of({spiral("|a", 0, 0, 0, 10)})), testing::Not(testing::HasSubstr("class=\"second")));
}

TEST(Svg, ASecondSceneIsInThePictureTooWhereItsObjectsAreNow) {
  auto report = compared(report_of({spiral("|a", 0, 0, 0, 10)}), {200.0});
  for (const char* view : {"persp", "front", "top"}) {
    const SvgOptions options{view, "auto", {}, {}, {}, {}};
    const Subject subject = subject_of(report, options);
    const Sheet sheet(subject, {});
    for (const Vector& p : *report.trails[0].compare->points) EXPECT_TRUE(sheet.plot.contains(sheet.lens(p))) << view;
    const Point2 here = *sheet.figure().spot(0, 1.0), there = *sheet.second_figure().spot(0, 1.0);
    EXPECT_EQ(there.x, sheet.lens({200, 0, 0}).x);
    EXPECT_GT(std::abs(there.x - here.x), 0.5 * sheet.plot.width());
  }
}

TEST(Svg, WhatMovesOnlyInTheSecondSceneIsInThePictureToo) {
  auto report = compared(report_of({spiral("|a", 0, 0, 0, 10), spiral("|b", 90, 0, 0, 0.0)}), {0.0, 0.0});
  const std::vector<Vector> waved = *spiral("|b", 90, 40, 0, 20).points;
  report.trails[1].compare->points = support::shared(waved);
  const SvgOptions options{"front", "auto", {}, {}, {}, {}};
  const Subject subject = subject_of(report, options);
  const Sheet sheet(subject, {});
  for (const Vector& p : waved) EXPECT_TRUE(sheet.plot.contains(sheet.lens(p)));
  EXPECT_TRUE(sheet.plot.contains(sheet.lens({90, 0, 0})));
}

TEST(Svg, LinesOfASecondSceneAreThoseOfLitTrailsAndOfTheOneThatIsFarthestApart) {
  std::vector<double> distances(9, 0.5);
  distances[2] = kNan;  // of a root and eight ends, five are lit
  const auto beside = [&](std::size_t farthest) {
    distances[farthest] = 4.0;
    const auto report = compared(crowd(8), distances);
    distances[farthest] = 0.5;
    const SvgOptions options;
    const Subject subject = subject_of(report, options);
    return Sheet(subject, {}).beside;
  };
  EXPECT_THAT(beside(0), testing::ElementsAre(0, 4, 5, 6, 7, 8));
  EXPECT_THAT(beside(5), testing::ElementsAre(4, 5, 6, 7, 8));
  distances[0] = 4.0;
  EXPECT_THAT(drawn(compared(crowd(8), distances)),
              testing::AllOf(testing::HasSubstr("6 of 8 objects have a line of b.ma"),
                             testing::HasSubstr("b.ma lacks 1 object<"), testing::HasSubstr("class=\"second bones\"")));
}

TEST(Svg, ASecondSceneWithoutADifferenceOrWithoutKnownDistancesSaysSo) {
  const auto report = report_of({spiral("|a", 0, 0, 0, 10)});
  EXPECT_THAT(drawn(compared(report, {0.0})), testing::HasSubstr("b.ma has the objects in the same places"));
  auto unknown = compared(report, {1.0});
  unknown.trails[0].compare->largest = kNan;
  EXPECT_THAT(drawn(unknown), testing::HasSubstr("no distance to b.ma is known"));
}

TEST(Svg, ATakeOfTheSameFileIsNamedAsATake) {
  auto report = report_of({});
  EXPECT_EQ(second_name(report), "");
  report.compared = session::ComparedScene{"a.ma", "wave"};
  EXPECT_EQ(second_name(report), "take wave");
  report.compared = session::ComparedScene{"x/b.fbx", "wave"};
  EXPECT_EQ(second_name(report), "b.fbx, take wave");
}

TEST(Svg, AHoldIsMarkedWithItsFramesAndTheDirectionIsShown) {
  std::vector<Vector> points;
  for (int i = 0; i < 48; ++i) points.push_back({static_cast<double>(std::clamp(i, 10, 20) == i ? 10 : i), 0, 0});
  session::TrailView trail = support::trail_of(points);
  trail.start_frame = 1.0;
  trail.line_width = 2.0;
  const std::string svg = drawn(report_of({trail}), {"front", "auto", {}, {}, {}, {}});
  EXPECT_THAT(svg, testing::AllOf(testing::HasSubstr("holds 11\u201321"), testing::HasSubstr("class=\"hold\""),
                                  testing::HasSubstr("class=\"arrow\"")));
}

TEST(Svg, PathDataMovesBetweenRoundedPlacesSoThatRoundingDoesNotAddUp) {
  PathData path;
  path.move({0.0, 0.0});
  for (int i = 1; i <= 10; ++i) path.line({i * 0.04, 0.0});
  // 0.4 in all; each step alone would round to nothing.
  EXPECT_EQ(path.text(), "M0 0l0 0 .1 0 0 0 .1 0 0 0 0 0 .1 0 0 0 .1 0 0 0");
}

}  // namespace
}  // namespace vantorelix::cli
