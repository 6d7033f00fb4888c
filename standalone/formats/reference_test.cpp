// Every position that has a reference, over all scene files of the reference folder, by both ways of evaluation.
// The folder is named by VANTORELIX_DATA, else "../shared/data" beside the checkout; without it these tests are
// skipped. Each test prints its table.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "standalone/formats/reader.h"
#include "standalone/scene/evaluation/evaluator.h"

namespace vantorelix::standalone {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::Field;
using testing::HasSubstr;

fs::path data_folder() {
  const char* const named = std::getenv("VANTORELIX_DATA");
  return named != nullptr ? fs::path(named) : fs::path(VANTORELIX_SOURCE_DIR) / ".." / "shared" / "data";
}

#define SKIP_WITHOUT_DATA() \
  if (!fs::exists(data_folder())) GTEST_SKIP() << "no reference scenes at " << data_folder() << "; set VANTORELIX_DATA"

constexpr const char* kOffsetNode = "|rig_opm|pCube1|pCylinder1";

struct Row {
  double frame;
  std::string node;
  Vector at;
};

std::vector<std::string> cells(const std::string& line) {
  std::vector<std::string> result;
  std::istringstream in(line);
  for (std::string cell; std::getline(in, cell, ',');) result.push_back(cell);
  return result;
}

// A table of positions: comments, a heading, then rows. `only_node` is for tables without a column of names.
std::vector<Row> read_rows(const fs::path& file, const std::string& only_node) {
  std::ifstream in(file);
  std::vector<Row> rows;
  bool heading = true;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    if (heading) {
      heading = false;
      continue;
    }
    const std::vector<std::string> cell = cells(line);
    const std::size_t at = only_node.empty() ? 2 : 1;
    if (cell.size() < at + 3) continue;
    rows.push_back({std::stod(cell[0]),
                    only_node.empty() ? cell[1] : only_node,
                    {std::stod(cell[at]), std::stod(cell[at + 1]), std::stod(cell[at + 2])}});
  }
  return rows;
}

// One row a frame, three columns a node, headed "Hips.x,Hips.y,Hips.z".
std::vector<Row> read_wide_rows(const fs::path& file, double frame_time) {
  std::ifstream in(file);
  std::string line;
  std::getline(in, line);
  const std::vector<std::string> heads = cells(line);
  std::vector<Row> rows;
  while (std::getline(in, line)) {
    const std::vector<std::string> cell = cells(line);
    for (std::size_t i = 1; i + 2 < cell.size(); i += 3) {
      rows.push_back({std::round(std::stod(cell[0]) / frame_time),
                      heads[i].substr(0, heads[i].rfind('.')),
                      {std::stod(cell[i]), std::stod(cell[i + 1]), std::stod(cell[i + 2])}});
    }
  }
  return rows;
}

double largest(const Vector& a, const Vector& b) {
  return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.z - b.z)});
}

double extent(const std::vector<Row>& rows) {
  Vector low = rows[0].at, high = rows[0].at;
  for (const Row& row : rows) {
    low = {std::min(low.x, row.at.x), std::min(low.y, row.at.y), std::min(low.z, row.at.z)};
    high = {std::max(high.x, row.at.x), std::max(high.y, row.at.y), std::max(high.z, row.at.z)};
  }
  return largest(low, high);
}

// Nodes by the names that the tables use: paths in .ma files, the file's own names in clips.
NodeId node_named(const Scene& scene, const std::string& name) {
  if (const NodeId found = scene.names.find(name); found != kNoNode) return found;
  for (const NodeId node : scene.nodes.all()) {
    if (name_in_file(scene, node) == name) return node;
  }
  return kNoNode;
}

// What the tables call a node, to the scene's; kNoNode where there is none.
using FindNode = std::function<NodeId(const Scene&, const std::string&)>;

// Compares all rows, prints the table's line, and fails beyond the tolerance. `file` may name a clip behind the path.
void compare(const Scene& scene, const std::string& file, const std::string& table, const std::vector<Row>& rows,
             double tolerance, double scene_extent, const FindNode& find) {
  ASSERT_FALSE(rows.empty()) << table;
  std::map<std::string, NodeId> ids;
  std::map<std::string, std::unique_ptr<Evaluator>> evaluators;
  double worst = 0.0;
  std::string where;
  for (const Row& row : rows) {
    if (!ids.contains(row.node)) {
      ids[row.node] = find(scene, row.node);
      ASSERT_NE(ids[row.node], kNoNode) << row.node;
      evaluators[row.node] = std::make_unique<Evaluator>(scene.evaluation, ids[row.node]);
      EXPECT_TRUE(scene.evaluation.not_followed(ids[row.node]).empty()) << row.node;
    }
    const Vector plain = scene.evaluation.world_matrix(ids[row.node], row.frame).translation();
    EXPECT_EQ(evaluators[row.node]->translation(row.frame), plain) << row.node << " at " << row.frame;
    const double difference = largest(plain, row.at);
    if (!(difference <= worst)) {
      worst = difference;
      where = row.node + " at " + std::to_string(row.frame);
    }
  }
  std::printf("| %-47s | %-56s | %5zu | %9.2e | %8.2f | %7.0e |\n", file.c_str(), table.c_str(), rows.size(), worst,
              scene_extent, tolerance);
  EXPECT_LE(worst, tolerance) << where;
  EXPECT_LE(worst, 1e-4 * scene_extent) << where;
}

void compare(const std::string& file, const std::string& table, const std::vector<Row>& rows, double tolerance) {
  ASSERT_FALSE(rows.empty()) << table;
  compare(read_scene(data_folder() / file), file, table, rows, tolerance, extent(rows), node_named);
}

void print_heading() {
  std::printf("| %-47s | %-56s | %5s | %9s | %8s | %7s |\n", "file", "reference", "rows", "worst", "extent", "allowed");
}

TEST(Reference, EveryPositionOfTheClipsAgrees) {
  SKIP_WITHOUT_DATA();
  print_heading();
  // Six decimals; half a unit of the last one, and what summing in another order costs.
  for (const char* name :
       {"cmu_01_01", "walk01", "fair1_dab", "pybvh_test1", "pybvh_test3", "rotation_first_root", "bvhio_example"}) {
    const std::string table = std::string("bvh/ref/") + name + ".pos.csv";
    compare(std::string("bvh/") + name + ".bvh", table, read_rows(data_folder() / table, ""), 1e-6);
  }
}

TEST(Reference, EveryPositionOfTheUpstreamTableOfTheWalkAgrees) {
  SKIP_WITHOUT_DATA();
  const fs::path table = data_folder() / "bvh/ref/walk01_pos.upstream.csv";
  std::vector<Row> rows = read_wide_rows(table, 0.0416667);
  for (Row& row : rows) {
    if (row.node.ends_with("_End")) row.node = "End Site of " + row.node.substr(0, row.node.size() - 4);
  }
  // Five decimals of single-precision sums.
  compare("bvh/walk01.bvh", "bvh/ref/walk01_pos.upstream.csv", rows, 2e-5);
}

TEST(Reference, EveryPositionOfTheFbxScenesAgrees) {
  SKIP_WITHOUT_DATA();
  print_heading();
  // What the library makes of the file, which takes a third for 0.333333 where the programs reckon with a third.
  for (const char* name :
       {"maya_interpolation_modes_7500_ascii", "maya_child_pivots_7700_ascii", "maya_pivot_offset_6100_binary",
        "maya_game_sausage_7500_binary_wiggle", "maya_anim_no_inherit_scale_7700_ascii",
        "maya_kenney_character_7700_binary", "maya_anim_layers_7500_ascii", "motionbuilder_tangent_weight_7700_ascii",
        "maya_axes_anim_7700_ascii", "dembones_Bone_Trans", "pab_jog"}) {
    const std::string table = std::string("fbx/ref/") + name + ".pos.csv";
    compare(std::string("fbx/") + name + ".fbx", table, read_rows(data_folder() / table, ""), 1e-5);
  }
}

// A table of one number a time: at k/24 s, in a file of `rate`. Where a curve steps, the number is the one just after.
std::vector<Row> read_samples(const fs::path& file, double rate) {
  std::vector<Row> rows;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    const std::vector<std::string> cell = cells(line);
    if (line[0] == '#' || cell[0] == "frame" || cell[0] == "i") continue;
    const double just_after = file.filename().string().starts_with("maya_interpolation") ? 1e-7 : 0.0;
    rows.push_back({std::stod(cell[0]) / 24.0 * rate + just_after, "pCube1", {std::stod(cell.back()), 0.0, 0.0}});
  }
  return rows;
}

// Six decimals, but where handles differ in length: those programs solve such spans in single precision.
TEST(Reference, EveryPositionThatTheProgramsOfTheFbxScenesShowedAgrees) {
  SKIP_WITHOUT_DATA();
  print_heading();
  const auto compare_samples = [](const std::string& name, double rate, double tolerance) {
    const std::string table = "fbx/ref/" + name + ".upstream.csv";
    compare("fbx/" + name + ".fbx", table, read_samples(data_folder() / table, rate), tolerance);
  };
  compare_samples("maya_interpolation_modes_7500_ascii", 24.0, 1e-4);
  compare_samples("maya_anim_extrapolation_7700_ascii", 24.0, 1e-6);
  compare_samples("motionbuilder_tangent_weight_7700_ascii", 30.0, 2e-3);
  const std::string joints = "fbx/ref/maya_anim_no_inherit_scale_7700_ascii.upstream.csv";
  std::vector<Row> rows;
  std::ifstream in(data_folder() / joints);
  for (std::string line; std::getline(in, line);) {
    const std::vector<std::string> cell = cells(line);
    if (line[0] != '#' && cell[0] != "frame")
      rows.push_back({std::stod(cell[0]), cell[1], {0.0, std::stod(cell[3]), 0.0}});
  }
  compare("fbx/maya_anim_no_inherit_scale_7700_ascii.fbx", joints, rows, 1e-6);
}

TEST(Reference, EveryPositionOfTheMayaScenesAgrees) {
  SKIP_WITHOUT_DATA();
  print_heading();
  for (const char* name : {"AnimatedCubeChildSphere1", "GroupedFingersPivotAnim1", "ZeroParentScaleTestAnim",
                           "simpleAnimatedCamera1", "UsdExportCameraTest", "UsdExportSkeleton"}) {
    const std::string table = std::string("ma/ref/") + name + ".pos.csv";
    compare(std::string("ma/") + name + ".ma", table, read_rows(data_folder() / table, ""), 1e-6);
  }
  const std::string rig = "ma/ref/offset_parent_matrix_rig.pos.csv";
  std::vector<Row> rows = read_rows(data_folder() / rig, "");
  std::erase_if(rows, [](const Row& row) { return row.node == kOffsetNode; });
  compare("ma/offset_parent_matrix_rig.ma", rig, rows, 1e-6);
  compare("ma/ripple.ma", "ma/ref/ripple.keys.csv", read_rows(data_folder() / "ma/ref/ripple.keys.csv", ""), 2e-6);
}

// That table leaves an offset parent matrix out that is not connected but written in the file (half size, 1.5 up): for
// this node it holds the parent's positions. The world matrix has it: the difference is those 1.5 in the parent's
// space.
TEST(Reference, AWrittenOffsetParentMatrixCountsThoughTheTableLeavesItOut) {
  SKIP_WITHOUT_DATA();
  const Scene scene = read_scene(data_folder() / "ma/offset_parent_matrix_rig.ma");
  const NodeId node = scene.names.require(kOffsetNode);
  std::size_t count = 0;
  for (const Row& row : read_rows(data_folder() / "ma/ref/offset_parent_matrix_rig.pos.csv", "")) {
    if (row.node != kOffsetNode) continue;
    ++count;
    const Affine parent = scene.evaluation.world_matrix(scene.nodes.parent(node), row.frame);
    EXPECT_LE(largest(parent.translation(), row.at), 1e-6) << row.frame;
    const Vector raised = transform_point({0.0, 1.5, 0.0}, parent);
    EXPECT_LE(largest(scene.evaluation.world_matrix(node, row.frame).translation(), raised), 1e-12) << row.frame;
  }
  EXPECT_EQ(count, 9u);
}

TEST(Reference, EveryPositionThatMayaItselfWroteAgrees) {
  SKIP_WITHOUT_DATA();
  print_heading();
  compare("ma/simpleAnimatedCamera1.ma", "ma/ref/simpleAnimatedCamera1.maya.csv",
          read_rows(data_folder() / "ma/ref/simpleAnimatedCamera1.maya.csv", "camera1"), 2e-6);
  compare("ma/UsdExportCameraTest.ma", "ma/ref/UsdExportCameraTest.maya.csv",
          read_rows(data_folder() / "ma/ref/UsdExportCameraTest.maya.csv", ""), 2e-6);
}

// --- glTF: a table a file, all clips in it, nodes by their numbers -----------------------------------------------

NodeId node_numbered(const Scene& scene, const std::string& number) {
  for (const NodeId node : scene.nodes.all()) {
    if (scene.attributes.has(node, kNumberInFile) && scene.attributes.value(node, kNumberInFile).text() == number)
      return node;
  }
  return kNoNode;
}

// By the number of the clip. Columns: clip, name, seconds, node, name, x, y, z.
std::map<std::size_t, std::vector<Row>> read_clip_rows(const fs::path& file) {
  std::ifstream in(file);
  std::map<std::size_t, std::vector<Row>> rows;
  for (std::string line; std::getline(in, line);) {
    const std::vector<std::string> cell = cells(line);
    if (line.empty() || line[0] == '#' || cell.size() != 8 || cell[0] == "clip") continue;
    rows[std::stoul(cell[0])].push_back(
        {std::stod(cell[2]) * 24.0, cell[3], {std::stod(cell[5]), std::stod(cell[6]), std::stod(cell[7])}});
  }
  return rows;
}

// Of what the clips move and of what stands: a table may be of one node that does not leave its place.
double extent_of_all(const Scene& scene, const std::map<std::size_t, std::vector<Row>>& clips) {
  std::vector<Row> all;
  for (const auto& [clip, rows] : clips) all.insert(all.end(), rows.begin(), rows.end());
  for (const NodeId node : scene.nodes.all()) {
    if (scene.nodes.is_transform(node))
      all.push_back({0.0, "", scene.evaluation.world_matrix(node, 0.0).translation()});
  }
  return extent(all);
}

TEST(Reference, EveryPositionOfTheGltfClipsAgrees) {
  SKIP_WITHOUT_DATA();
  print_heading();
  for (const char* name : {"BoxAnimated.gltf", "interpolation_test.gltf", "RiggedSimple.gltf", "Fox.glb",
                           "06_parent-inverse-anim.gltf", "Elf_foot_animated.gltf"}) {
    const std::string file = std::string("gltf/") + name;
    const std::string table = "gltf/ref/" + fs::path(name).stem().string() + ".pos.csv";
    const std::map<std::size_t, std::vector<Row>> clips = read_clip_rows(data_folder() / table);
    const std::vector<Take> takes = read_scene(data_folder() / file).settings.takes();
    const double total = extent_of_all(read_scene(data_folder() / file), clips);
    for (const auto& [clip, rows] : clips) {
      ASSERT_LT(clip, takes.size()) << file;
      ReadOptions options;
      options.take = takes[clip].name;
      compare(read_scene(data_folder() / file, options), file, takes[clip].name, rows, 1e-6, total, node_numbered);
    }
  }
}

TEST(Reference, AGltfHierarchyThatContainsItselfEndsWithAnError) {
  SKIP_WITHOUT_DATA();
  try {
    read_scene(data_folder() / "gltf/RecursiveNodes.gltf");
    FAIL() << "it was read";
  } catch (const FormatError& error) {
    EXPECT_THAT(error.what(), HasSubstr("is its own ancestor: the hierarchy has a cycle"));
  }
}

TEST(Reference, NoTableIsLeftOut) {
  SKIP_WITHOUT_DATA();
  std::size_t tables = 0;
  for (const char* kind : {"bvh", "ma", "fbx", "gltf"}) {
    for (const auto& entry : fs::directory_iterator(data_folder() / kind / "ref")) {
      tables += entry.path().extension() == ".csv";
    }
  }
  EXPECT_EQ(tables, 7u + 1u + 8u + 2u + 11u + 4u + 6u);
}

// --- scenes without a reference end as they should ---------------------------------------------------------------

auto warns(const std::string& part, std::size_t count) {
  return Contains(testing::AllOf(Field(&Warning::kind, HasSubstr(part)), Field(&Warning::count, count)));
}

std::size_t count_animated(const Scene& scene) {
  const std::vector<NodeId> nodes = scene.nodes.all();
  return static_cast<std::size_t>(std::count_if(nodes.begin(), nodes.end(), [&scene](NodeId node) {
    return scene.nodes.is_transform(node) && scene.evaluation.is_animated(node);
  }));
}

TEST(Reference, ASceneWithoutAnimationIsJustThat) {
  SKIP_WITHOUT_DATA();
  const Scene scene = read_scene(data_folder() / "ma/SimpleCube1.ma");
  EXPECT_EQ(count_animated(scene), 0u);
  EXPECT_TRUE(scene.warnings.all().empty());
}

TEST(Reference, ASceneThatAnExpressionDrivesNamesIt) {
  SKIP_WITHOUT_DATA();
  const Scene scene = read_scene(data_folder() / "ma/skel.ma");
  EXPECT_EQ(scene.settings.frames_per_second(), 25.0);
  EXPECT_EQ(scene.settings.playback_min(), 0.0);
  EXPECT_EQ(scene.settings.playback_max(), 3900.0);
  EXPECT_EQ(scene.nodes.of_type("joint").size(), 67u);
  EXPECT_EQ(count_animated(scene), 0u);
  EXPECT_THAT(scene.warnings.all(), warns("'expression' is not evaluated", 19));
  EXPECT_FALSE(scene.evaluation.not_followed(scene.names.require("FBX_NeckRoll")).empty());
}

TEST(Reference, AnFbxSceneOfConstraintsStandsStillAndNamesThem) {
  SKIP_WITHOUT_DATA();
  const Scene scene = read_scene(data_folder() / "fbx/maya_constraint_zoo_7500_ascii.fbx");
  EXPECT_EQ(count_animated(scene), 0u);
  EXPECT_EQ(scene.settings.playback_min(), 1.0);
  EXPECT_EQ(scene.settings.playback_max(), 120.0);
  std::size_t constraints = 0, marked = 0;
  for (const Warning& warning : scene.warnings.all())
    constraints += warning.kind.starts_with("the constraint ") * warning.count;
  EXPECT_EQ(constraints, 7u);
  for (const NodeId node : scene.nodes.all())
    marked += scene.nodes.is_transform(node) && !scene.evaluation.not_followed(node).empty();
  EXPECT_GE(marked, 7u);
}

TEST(Reference, AnFbxMeshOfAPointCacheIsNamed) {
  SKIP_WITHOUT_DATA();
  EXPECT_THAT(read_scene(data_folder() / "fbx/maya_axes_anim_7700_ascii.fbx").warnings.all(),
              warns("a point cache moves", 2));
}

TEST(Reference, AnFbxTakeKeepsTheKeysBeyondIt) {
  SKIP_WITHOUT_DATA();
  const Scene scene = read_scene(data_folder() / "fbx/pab_jog.fbx");
  EXPECT_EQ(scene.settings.playback_max(), 24.0);
  const std::vector<double> times = scene.curves.key_times(scene.names.require("Camera02"));
  EXPECT_EQ(*std::max_element(times.begin(), times.end()), 100.0);
}

TEST(Reference, ASceneOfAMissingReferenceNamesIt) {
  SKIP_WITHOUT_DATA();
  const Scene scene = read_scene(data_folder() / "ma/rhino_anim_001.ma");
  EXPECT_THAT(scene.warnings.all(), warns("the reference 'rhino_rig_029RN' to '", 1));
  EXPECT_THAT(scene.warnings.all(), warns("moves only something in the missing reference 'rhino_rig_029RN'", 110));
  std::size_t curves = 0, keys = 0;
  for (const NodeId node : scene.nodes.all()) {
    if (!scene.curves.is_curve(node)) continue;
    ++curves;
    keys += scene.curves.at(node).keys().size();
  }
  EXPECT_EQ(curves, 113u);
  EXPECT_EQ(keys, 10262u);
}

TEST(Reference, ASceneOfClipsAndACharacterSetNamesThem) {
  SKIP_WITHOUT_DATA();
  const Scene scene = read_scene(data_folder() / "ma/ComplexAnim1.ma");
  EXPECT_THAT(scene.warnings.all(), Contains(Field(&Warning::kind, HasSubstr("'character' is not evaluated"))));
  EXPECT_EQ(scene.settings.playback_min(), 1.0);
  EXPECT_EQ(scene.settings.playback_max(), 40.0);
  std::size_t marked = 0;
  for (const NodeId node : scene.nodes.of_type("joint")) marked += !scene.evaluation.not_followed(node).empty();
  EXPECT_GT(marked, 0u);
}

TEST(Reference, TheNodesThatAPluginDrivesAreCounted) {
  SKIP_WITHOUT_DATA();
  const Scene scene = read_scene(data_folder() / "ma/ripple.ma");
  EXPECT_THAT(scene.warnings.all(), warns("'exprespy' is not evaluated", 400));
  std::size_t marked = 0;
  for (const NodeId node : scene.nodes.of_type("transform")) marked += !scene.evaluation.not_followed(node).empty();
  EXPECT_EQ(marked, 400u);
  EXPECT_TRUE(scene.evaluation.not_followed(scene.names.require("locator1")).empty());
}

}  // namespace
}  // namespace vantorelix::standalone
