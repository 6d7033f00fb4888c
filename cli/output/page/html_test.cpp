// The page's data, read back the way the page reads it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>

#include "cli/output/output_file.h"
#include "cli/output/page/html.h"
#include "cli/output/page/page.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/trail_views.h"

namespace vantorelix::cli {
namespace {

using nlohmann::json;
using support::shared;
using support::trail_of;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kHuge = 0.75 * std::numeric_limits<double>::max();

session::TrailReport report_of(std::vector<session::TrailView> trails) {
  session::TrailReport report{"a.ma", 24.0, 0.0, 10.0, "cm", 'y', std::move(trails)};
  report.current = 3.0;
  return report;
}

void add_keys(session::TrailView& trail, std::vector<double> times, std::vector<Vector> points) {
  trail.key_times = std::move(times);
  trail.key_points = trail.key_colors = shared(std::move(points));
}

std::string decoded(const std::string& text) {
  static const std::string kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  EXPECT_EQ(text.size() % 4, 0u);
  for (std::size_t i = 0; i + 3 < text.size(); i += 4) {
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 4; ++k) {
      const std::size_t digit = text[i + k] == '=' ? 0 : kDigits.find(text[i + k]);
      EXPECT_NE(digit, std::string::npos) << text[i + k];
      bits = bits << 6 | static_cast<std::uint32_t>(digit);
    }
    for (const int shift : {16, 8, 0}) bytes += static_cast<char>(bits >> shift & 255);
    if (i + 4 == text.size()) bytes.resize(bytes.size() - (text[i + 2] == '=' ? 2u : text[i + 3] == '=' ? 1u : 0u));
  }
  return bytes;
}

// A page that was written, taken apart.
class Written {
 public:
  explicit Written(const session::TrailReport& report) {
    const support::TemporaryFolder folder;
    OutputFile out(folder / "a.html");
    write_html(out, report);
    out.commit();
    text = folder.read("a.html");
    header = json::parse(block("<script type=\"application/json\" id=\"trails-header\">"));
    bytes = decoded(block("<script type=\"application/octet-stream\" id=\"trails-data\">"));
  }

  // What lies between a tag, which is there once, and the next thing that ends a script.
  std::string block(const std::string& tag) const {
    const std::size_t at = text.find(tag);
    EXPECT_NE(at, std::string::npos) << tag;
    EXPECT_EQ(text.find(tag, at + 1), std::string::npos) << tag;
    const std::size_t begin = at + tag.size();
    return text.substr(begin, text.find("</script", begin) - begin);
  }

  std::uint64_t number(const char* section, std::size_t index, std::size_t width) const {
    const std::size_t at = header["sections"][section].get<std::size_t>() + index * width;
    std::uint64_t value = 0;
    for (std::size_t k = width; k-- > 0;) value = value << 8 | static_cast<std::uint8_t>(bytes.at(at + k));
    return value;
  }

  double coordinate(const char* section, const json& trail, std::size_t position, std::size_t axis) const {
    const std::uint64_t q = number(section, position * 3 + axis, 4);
    if (q == 0xffffffffu) return kNan;
    // By halves: the extent may be more than a double holds.
    const double low = trail["low"][axis].get<double>(), step = trail["step"][axis].get<double>();
    return (low / 2.0 + static_cast<double>(q) * (step / 2.0)) * 2.0;
  }

  double key_time(std::size_t index) const {
    if (header["key_time_bytes"] == 8) return std::bit_cast<double>(number("key_times", index, 8));
    return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(number("key_times", index, 4))));
  }

  std::string text, bytes;
  json header;
};

// From `first` on the positions of a section are these, within half a step.
void expect_positions(const Written& page, const char* section, const json& trail, std::size_t first,
                      const std::vector<Vector>& points) {
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double wanted[] = {points[i].x, points[i].y, points[i].z};
    for (std::size_t k = 0; k < 3; ++k) {
      const double got = page.coordinate(section, trail, first + i, k), step = trail["step"][k].get<double>();
      // Besides, the sum that makes the position is rounded.
      const double rounding = std::abs(wanted[k]) * std::numeric_limits<double>::epsilon();
      ASSERT_LE(std::abs(got - wanted[k]), step / 2.0 * (1.0 + 1e-6) + rounding) << section << ' ' << i << ' ' << k;
    }
  }
}

std::vector<Vector> spiral(std::size_t count, double size, double away) {
  std::vector<Vector> points;
  for (std::size_t i = 0; i < count; ++i) {
    const double t = static_cast<double>(i);
    points.push_back({away + size * std::sin(t * 0.7), size * std::cos(t * 1.3) * t, -away + 5.0});
  }
  return points;
}

TEST(Html, PositionsReadBackWithinHalfAStepOfWhichThereAreFourThousandMillion) {
  for (const double away : {0.0, 1e6}) {
    const auto points = spiral(1000, 3.0, away);
    const Written page(report_of({trail_of({{0, 0, 0}, {1, 1, 1}}), trail_of(points)}));
    const json& trail = page.header["trails"][1];
    expect_positions(page, "positions", trail, 2, points);
    EXPECT_NEAR(trail["step"][0].get<double>() * 4294967294.0, 6.0, 1e-3);
    EXPECT_EQ(trail["step"][2].get<double>(), 0.0);
    EXPECT_EQ(trail["low"][2].get<double>(), -away + 5.0);
    EXPECT_EQ(trail["count"], 1000);
  }
}

TEST(Html, PositionsFurtherApartThanADoubleHoldsDoNotOverflow) {
  const std::vector<Vector> points = {{-kHuge, 0, 0}, {kHuge, 1, 0}, {0, 0, 0}};
  const Written page(report_of({trail_of(points)}));
  expect_positions(page, "positions", page.header["trails"][0], 0, points);
  EXPECT_EQ(page.number("positions", 3, 4), 4294967294u);
}

TEST(Html, ASampleThatIsNotFiniteIsMarkedInAllCoordinatesAndDoesNotStretchTheBox) {
  const Written page(report_of({trail_of({{0, 0, 0}, {1, kNan, 1e300}, {2, 4, 8}})}));
  const json& trail = page.header["trails"][0];
  for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(page.number("positions", 3 + k, 4), 0xffffffffu);
  expect_positions(page, "positions", trail, 2, {{2, 4, 8}});
  const Written none(report_of({trail_of({{kNan, 0, 0}})}));
  EXPECT_EQ(none.header["trails"][0]["low"], json({0, 0, 0}));
}

TEST(Html, KeysThatLieOnSamplesAreNotStoredTwice) {
  session::TrailView trail = trail_of({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}});
  trail.start_frame = 10.0;
  trail.frame_step = 0.5;
  add_keys(trail, {10.0, 11.0}, {{0, 0, 0}, {3, 0, 0}});
  const Written page(report_of({trail}));
  EXPECT_EQ(page.header["trails"][0]["keys_on_samples"], true);
  EXPECT_EQ(page.header["trails"][0]["keys"], 2);
  EXPECT_EQ(page.header["sections"]["key_positions"], page.header["sections"]["key_times"]);
  EXPECT_EQ(page.key_time(0), 10.0);
  EXPECT_EQ(page.key_time(1), 11.0);
}

TEST(Html, KeysBesideSamplesAreStoredWithTheirPositions) {
  session::TrailView between = trail_of({{0, 0, 0}, {1, 0, 0}}), elsewhere = between, outside = between, on = between;
  add_keys(between, {0.5}, {{0.5, 0, 0}});
  add_keys(elsewhere, {0.0, 1.0}, {{0, 0, 0}, {1, 1e-300, 0}});
  add_keys(outside, {-1.0}, {{-7, 2, 0}});
  add_keys(on, {1.0}, {{1, 0, 0}});
  const Written page(report_of({between, on, elsewhere, outside}));
  const json& trails = page.header["trails"];
  EXPECT_EQ(trails[1]["keys_on_samples"], true);
  for (const std::size_t i : {0, 2, 3}) EXPECT_EQ(trails[i]["keys_on_samples"], false) << i;
  expect_positions(page, "key_positions", trails[0], 0, {{0.5, 0, 0}});
  expect_positions(page, "key_positions", trails[2], 1, {{0, 0, 0}, {1, 1e-300, 0}});
  expect_positions(page, "key_positions", trails[3], 3, {{-7, 2, 0}});
  EXPECT_EQ(page.key_time(4), -1.0);
}

TEST(Html, KeyTimesAreDoublesWhereOneFloatWouldLoseSomething) {
  session::TrailView trail = trail_of({{0, 0, 0}, {1, 0, 0}});
  for (const double time : {1.5, 0.1, 1e300}) {
    add_keys(trail, {0.0, time}, {{0, 0, 0}, {1, 0, 0}});
    const Written page(report_of({trail}));
    EXPECT_EQ(page.header["key_time_bytes"], time == 1.5 ? 4 : 8);
    EXPECT_EQ(page.key_time(1), time);
  }
}

TEST(Html, ColorsAreBytesClampedToWhatAScreenShows) {
  session::TrailView trail = trail_of({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
  trail.colors = shared({{0, 1, 0.5}, {-1, 2, kNan}});
  const Written page(report_of({trail}));
  const std::vector<std::uint64_t> wanted = {0, 255, 128, 0, 255, 0, 0, 0, 0};
  for (std::size_t i = 0; i < wanted.size(); ++i) EXPECT_EQ(page.number("colors", i, 1), wanted[i]) << i;
}

TEST(Html, SectionsBeginAtMultiplesOfEightAndFillTheData) {
  session::TrailView trail = trail_of({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
  add_keys(trail, {0.5}, {{0.5, 0, 0}});
  const Written page(report_of({trail}));
  EXPECT_EQ(page.header["sections"],
            json({{"positions", 0}, {"key_positions", 40}, {"key_times", 56}, {"colors", 64}, {"compared", 80}}));
  EXPECT_EQ(page.header["bytes"], 80);
  EXPECT_EQ(page.bytes.size(), 80u);
}

TEST(Html, PositionsOfASecondSceneFollowForTheTrailsThatHaveThem) {
  session::TrailView alone = trail_of({{0, 0, 0}, {1, 0, 0}}), both = trail_of({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
  const auto there = spiral(3, 2.0, 50.0);
  both.compare = session::Comparison{"|take2:a", shared(there), {}, 0.0, 0.0};
  session::TrailReport report = report_of({alone, both, both});
  report.trails[2].compare->points = shared({{7, 8, 9}, {7, kNan, 9}});
  report.compared = session::ComparedScene{"after.ma", "run"};
  const Written page(report);
  EXPECT_EQ(page.header["compare"], json({{"scene", "after.ma"}, {"take", "run"}}));
  const json& trails = page.header["trails"];
  EXPECT_TRUE(trails[0]["compare"].is_null());
  EXPECT_EQ(trails[1]["compare"]["source"], "|take2:a");
  expect_positions(page, "compared", trails[1]["compare"], 0, there);
  expect_positions(page, "compared", trails[2]["compare"], 3, {{7, 8, 9}});
  for (const std::size_t missing : {4, 5}) EXPECT_EQ(page.number("compared", 3 * missing, 4), 0xffffffffu) << missing;
  EXPECT_EQ(page.bytes.size(), page.header["sections"]["compared"].get<std::size_t>() + 6 * 12);
  EXPECT_TRUE(Written(report_of({alone})).header["compare"].is_null());
}

TEST(Html, TheHeaderSaysWhatTheSceneAndItsNodesHold) {
  session::TrailView trail = trail_of({{0, 0, 0}, {1, 0, 0}});
  trail.color_mode = 3;
  trail.line_width = 0.1;
  trail.ghost = true;
  trail.show_dots = false;
  trail.warnings = {"why"};
  session::TrailReport report = report_of({trail});
  report.last = std::numeric_limits<double>::infinity();
  report.statics = {{"|floor", {}, {-1, 0, -2}, {1, 0.1, kNan}}};
  report.statics[0].world.m[3] = {7, 8, 9};
  const json header = Written(report).header;
  EXPECT_EQ(header["format"], 1);
  EXPECT_EQ(header["scene"], "a.ma");
  EXPECT_EQ(header["range"], json({0, nullptr}));
  EXPECT_EQ(header["current"], 3);
  EXPECT_EQ(header["up_axis"], "y");
  const json& one = header["trails"][0];
  EXPECT_EQ(one["line_width"].get<double>(), 0.1);
  EXPECT_EQ(one["color_mode"], 3);
  EXPECT_EQ(one["ghost"], true);
  EXPECT_EQ(one["show_line"], true);
  EXPECT_EQ(one["show_dots"], false);
  EXPECT_EQ(one["warnings"], json({"why"}));
  const json& box = header["statics"][0];
  EXPECT_EQ(box["name"], "|floor");
  EXPECT_EQ(box["matrix"], json({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1}));
  EXPECT_EQ(box["low"], json({-1, 0, -2}));
  EXPECT_TRUE(box["high"][2].is_null());
}

TEST(Html, EachTrailHasAMeasureForEachFieldWithItsUnit) {
  const Written page(report_of({trail_of({{0, 0, 0}, {3, 4, 0}, {3, 4, 2}})}));
  const json &fields = page.header["measures"], &values = page.header["trails"][0]["measures"];
  ASSERT_EQ(fields.size(), values.size());
  const auto of = [&](const std::string& name) {
    for (std::size_t i = 0; i < fields.size(); ++i)
      if (fields[i]["name"] == name) return std::pair(values[i], fields[i]["unit"]);
    ADD_FAILURE() << name << " is not there";
    return std::pair(json(), json());
  };
  EXPECT_EQ(of("length"), std::pair(json(7.0), json("cm")));
  EXPECT_EQ(of("top_speed"), std::pair(json(120.0), json("cm per second")));
  EXPECT_EQ(of("top_jerk"), std::pair(json(), json("cm per second cubed")));
}

TEST(Html, NoNameEndsTheBlockThatItStandsIn) {
  const std::string hostile = "</script><script>alert(1)</script><!--trails-->&amp;\xE2\x80\xA8\xE2\x80\xA9\"\\";
  session::TrailView trail = trail_of({{0, 0, 0}, {1, 0, 0}});
  trail.source = trail.name = trail.viz = hostile;
  trail.warnings = {hostile};
  session::TrailReport report = report_of({trail});
  report.scene = report.unit = hostile;
  report.statics = {{hostile, {}, {}, {}}};
  const Written page(report);
  EXPECT_THAT(page.text, testing::Not(testing::HasSubstr("<script>alert")));
  EXPECT_THAT(page.text, testing::Not(testing::HasSubstr(kPagePlace)));
  EXPECT_THAT(page.text, testing::Not(testing::HasSubstr("\xE2\x80\xA8")));
  EXPECT_THAT(page.text, testing::Not(testing::HasSubstr("&amp;\\u2028")));
  for (const json& text : {page.header["scene"], page.header["unit"], page.header["trails"][0]["source"],
                           page.header["trails"][0]["warnings"][0], page.header["statics"][0]["name"]})
    EXPECT_EQ(text.get<std::string>(), hostile);
}

TEST(Html, BytesOfANameThatAreNoUtf8AreReplaced) {
  session::TrailView trail = trail_of({{0, 0, 0}, {1, 0, 0}});
  trail.name = "caf\xE9";
  EXPECT_EQ(Written(report_of({trail})).header["trails"][0]["name"].get<std::string>(), "caf\xEF\xBF\xBD");
}

TEST(Html, ASampleTakesThirtyBytesAtMostWithAKeyAtEveryFrame) {
  constexpr std::size_t kTrails = 50, kSamples = 1000;
  session::TrailView trail = trail_of(spiral(kSamples, 10.0, 100.0));
  std::vector<double> times;
  for (std::size_t i = 0; i < kSamples; ++i) times.push_back(static_cast<double>(i));
  add_keys(trail, times, *trail.points);
  const Written page(report_of(std::vector<session::TrailView>(kTrails, trail)));
  const std::size_t without = Written(report_of({})).text.size();
  EXPECT_LE(static_cast<double>(page.text.size() - without) / (kTrails * kSamples), 30.0);
}

}  // namespace
}  // namespace vantorelix::cli
