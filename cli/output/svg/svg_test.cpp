#include "cli/output/svg/svg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "cli/output/output_file.h"
#include "cli/output/svg/svg_path.h"
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

TEST(Svg, PathDataMovesBetweenRoundedPlacesSoThatRoundingDoesNotAddUp) {
  PathData path;
  path.move({0.0, 0.0});
  for (int i = 1; i <= 10; ++i) path.line({i * 0.04, 0.0});
  // 0.4 in all; each step alone would round to nothing.
  EXPECT_EQ(path.text(), "M0 0l0 0 .1 0 0 0 .1 0 0 0 0 0 .1 0 0 0 .1 0 0 0");
}

}  // namespace
}  // namespace vantorelix::cli
