// What the writers promise about the files of others, on data that no scene file holds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>

#include "cli/output/curve_writers.h"
#include "cli/output/output_file.h"
#include "cli/output/writers.h"
#include "standalone/formats/reader.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/trail_views.h"

namespace vantorelix::cli {
namespace {

std::size_t file_count(const support::TemporaryFolder& folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder / ""), {}));
}

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(WritersTest, JsonHoldsNullForWhatIsNotFiniteAndReplacesBytesThatAreNoUtf8) {
  const support::TemporaryFolder folder;
  OutputFile out(folder / "a.json");
  write_json(out, support::report_of({{0, kNan, 0.1}, {1, 2, std::numeric_limits<double>::infinity()}}));
  out.commit();
  const auto document = nlohmann::json::parse(folder.read("a.json"));
  const auto& trail = document["trails"][0];
  EXPECT_TRUE(trail["points"][0][1].is_null());
  EXPECT_TRUE(trail["points"][1][2].is_null());
  EXPECT_EQ(trail["points"][0][2].get<double>(), 0.1);
  EXPECT_EQ(trail["name"].get<std::string>(), "caf\xEF\xBF\xBD");
  EXPECT_EQ(trail["source"].get<std::string>(), "|a,\"b\"");
}

TEST(WritersTest, JsonHoldsTheNumberOfANodeWhereItsFileHasNumbers) {
  const support::TemporaryFolder folder;
  session::TrailReport report = support::report_of({{0, 0, 0}, {1, 2, 3}});
  report.trails.push_back(report.trails[0]);
  report.trails[1].node = 17;
  OutputFile out(folder / "a.json");
  write_json(out, report);
  out.commit();
  const auto trails = nlohmann::json::parse(folder.read("a.json"))["trails"];
  EXPECT_TRUE(trails[0]["node"].is_null());
  EXPECT_EQ(trails[1]["node"].get<int>(), 17);
}

TEST(WritersTest, CsvQuotesNamesAndLeavesOutWhatIsNotFinite) {
  const support::TemporaryFolder folder;
  OutputFile out(folder / "a.csv");
  write_csv(out, support::report_of({{0, kNan, 0.5}, {1, 2, 3}}));
  out.commit();
  EXPECT_EQ(folder.read("a.csv"),
            "source,sample,frame,x,y,z,r,g,b\n\"|a,\"\"b\"\"\",0,0,0,,0.5,0,1,0\n\"|a,\"\"b\"\"\",1,1,1,2,3,0,1,0\n");
}

// Samples at frames 10, 10.5 and so on, 24 frames a second.
session::TrailReport stepping() {
  session::TrailReport report = support::report_of({{0, 0, 0}, {3, 4, 0}, {3, 4, kNan}, {3, 4, 0}, {3, 4, 1}});
  report.trails[0].start_frame = 10.0;
  report.trails[0].frame_step = 0.5;
  report.trails[0].source = "|a";
  return report;
}

std::string csv_of(const session::TrailReport& report, const std::vector<CsvColumn>& columns) {
  StringSink out;
  write_csv(out, report, columns);
  return out.text();
}

TEST(WritersTest, CsvHasTheSpeedOnTheWayToTheNextSampleWhereItIsAskedFor) {
  EXPECT_EQ(csv_of(stepping(), {CsvColumn::speed}),
            "source,sample,frame,x,y,z,r,g,b,speed\n"
            "|a,0,10,0,0,0,0,1,0,240\n"
            "|a,1,10.5,3,4,0,0,1,0,\n"
            "|a,2,11,3,4,,0,1,0,\n"
            "|a,3,11.5,3,4,0,0,1,0,48\n"
            "|a,4,12,3,4,1,0,1,0,\n");
}

TEST(WritersTest, CsvCountsTheKeysAtTheirNearestSamples) {
  session::TrailReport report = stepping();
  report.trails[0].key_times = {9.9, 10.6, 10.75, 10.8, 12, 99};
  const std::string keys = csv_of(report, {CsvColumn::speed, CsvColumn::key});
  EXPECT_THAT(keys, testing::StartsWith("source,sample,frame,x,y,z,r,g,b,speed,key\n|a,0,10,0,0,0,0,1,0,240,1\n"));
  EXPECT_THAT(keys, testing::HasSubstr("|a,1,10.5,3,4,0,0,1,0,,2\n"));
  EXPECT_THAT(keys, testing::HasSubstr("|a,2,11,3,4,,0,1,0,,1\n"));
  EXPECT_THAT(keys, testing::HasSubstr("|a,3,11.5,3,4,0,0,1,0,48,0\n"));
  EXPECT_THAT(keys, testing::EndsWith("|a,4,12,3,4,1,0,1,0,,2\n"));
}

TEST(WritersTest, JsonNamesLengthAndSpeedsAndTheirUnits) {
  StringSink out;
  write_json(out, stepping());
  const auto document = nlohmann::json::parse(out.text());
  const auto& trail = document["trails"][0];
  // 5 and 1 in half a frame each; what is beside the gap is not known.
  EXPECT_EQ(trail["length"], 6.0);
  EXPECT_EQ(trail["mean_speed"], 144.0);
  EXPECT_EQ(trail["top_speed"], 240.0);
  EXPECT_EQ(trail["mean_speed_per_frame"], 6.0);
  EXPECT_EQ(trail["top_speed_per_frame"], 10.0);
  const auto wanted = nlohmann::json::parse(R"({"length": "cm", "mean_speed": "cm per second",
      "top_speed": "cm per second", "mean_speed_per_frame": "cm per frame", "top_speed_per_frame": "cm per frame"})");
  for (const auto& [name, unit] : wanted.items()) EXPECT_EQ(document["units"][name], unit);
}

TEST(WritersTest, JsonHasTheMeasuresOfATrailAndAUnitForEach) {
  StringSink out;
  write_json(out, stepping());
  const auto document = nlohmann::json::parse(out.text());
  const auto& measures = document["trails"][0]["measures"];
  EXPECT_EQ(measures["length"], 6.0);
  EXPECT_EQ(measures["top_speed_frame"], 10.0);
  EXPECT_TRUE(measures["sparc"].is_null());
  for (const auto& [name, value] : measures.items())
    EXPECT_NE(document["units"].contains(name), value.is_array()) << name;
  EXPECT_EQ(document["units"]["top_jerk"], "cm per second cubed");
}

TEST(WritersTest, AFileAppearsOnlyWhenItIsCommitted) {
  const support::TemporaryFolder folder;
  {
    OutputFile out(folder / "a.csv");
    out << "half";
    EXPECT_FALSE(std::filesystem::exists(folder / "a.csv"));
  }
  EXPECT_EQ(file_count(folder), 0u);
  OutputFile out(folder / "a.csv");
  out << "whole";
  out.commit();
  EXPECT_EQ(folder.read("a.csv"), "whole");
  EXPECT_EQ(file_count(folder), 1u);
}

TEST(WritersTest, OurReaderReadsBackTheCurvesThatWeWrite) {
  const support::TemporaryFolder folder;
  const std::vector<Vector> points = {{0.1, 0.2, 1.0 / 3.0}, {-1e-9, 2, 3}, {4, 5e12, 6}, {7, 8, 9}, {1, 1, 1}};
  for (const int degree : {1, 3}) {
    OutputFile out(folder / "c.ma");
    standalone::Scene scene;
    scene.settings.set_frames_per_second(25.0);
    write_maya_ascii(out, {{"crv", "crvShape", degree, &points}}, scene);
    out.commit();
    const standalone::Scene back = standalone::read_scene(folder / "c.ma");
    const standalone::NodeId shape = back.names.require("crvShape");
    EXPECT_EQ(back.attributes.curve_degree(shape), degree);
    EXPECT_EQ(back.attributes.curve_points(shape), points);
    EXPECT_EQ(back.settings.frames_per_second(), 25.0);
    EXPECT_TRUE(back.warnings.all().empty());
  }
}

TEST(WritersTest, KnotsAreOpenAndUniform) {
  EXPECT_EQ(open_uniform_knots(4, 3), (std::vector<double>{0, 0, 0, 1, 1, 1}));
  EXPECT_EQ(open_uniform_knots(6, 3), (std::vector<double>{0, 0, 0, 1, 2, 3, 3, 3}));
  EXPECT_EQ(open_uniform_knots(3, 1), (std::vector<double>{0, 1, 2}));
}

}  // namespace
}  // namespace vantorelix::cli
