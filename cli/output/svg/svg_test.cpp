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

// The places of the dots of a colour, which are lines without length.
std::size_t dots_of(const std::string& svg) {
  std::size_t n = 0;
  for (std::size_t at = svg.find("h0"); at != std::string::npos; at = svg.find("h0", at + 1)) ++n;
  return n / 2;  // each has a casing
}

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

// A figure of many joints in little room.
session::TrailReport crowd(int joints) {
  std::vector<session::TrailView> trails{spiral("|root", 0, 0, 0, 1)};
  for (int i = 0; i < joints; ++i) {
    trails.push_back(spiral("|root|joint" + std::to_string(i), 0.02 * (i % 8), 0.02 * (i / 8), 0.01, 1 + 0.01 * i));
    trails.back().parent = "|root";
  }
  return report_of(std::move(trails));
}

TEST(Svg, EveryObjectHasItsNameOrANumberThatTheLegendExplains) {
  const auto report = crowd(60);
  const SvgOptions options;
  const Subject subject = subject_of(report, options);
  const Sheet sheet(subject, {});
  EXPECT_GT(sheet.names.numbered.size(), 5u);
  EXPECT_EQ(sheet.names.left_out, 0u);
  EXPECT_EQ(sheet.names.labels.size(), 61u);
  const std::string svg = drawn(report);
  for (const std::size_t trail : sheet.names.numbered)
    EXPECT_THAT(svg, testing::HasSubstr(">" + report.trails[trail].name + "<"));
}

TEST(Svg, WhatIsNotLitIsFaintAndHasNoDots) {
  const std::string svg = drawn(crowd(8));
  const auto count = [&](const std::string& text) {
    std::size_t n = 0;
    for (std::size_t at = svg.find(text); at != std::string::npos; at = svg.find(text, at + 1)) ++n;
    return n;
  };
  // Of the root and eight ends, five are lit.
  EXPECT_EQ(count("<g class=\"faint\">"), 4u);
  EXPECT_EQ(count("class=\"ring lit\" cx"), 6u);  // and the legend's
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
