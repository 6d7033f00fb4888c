// Scenes read from FBX files, against what the library itself makes of the same files at the same times.
#include <ufbx.h>

#include <cmath>
#include <memory>

#include "standalone/formats/fbx/fbx_test_scene.h"

namespace vantorelix::standalone {
namespace {

struct Freed {
  void operator()(ufbx_scene* scene) const { ufbx_free_scene(scene); }
};
using Library = std::unique_ptr<ufbx_scene, Freed>;

// The largest difference of any number of any node's world matrix.
double difference_at(const Scene& scene, const ufbx_scene& file, double frame) {
  const Library at(ufbx_evaluate_scene(&file, file.anim, frame / 24.0, nullptr, nullptr));
  double worst = 0.0;
  for (const ufbx_node* node : at->nodes) {
    if (node->is_root) continue;
    const Affine ours = scene.evaluation.world_matrix(scene.names.require(node->name.data), frame);
    for (std::size_t row = 0; row < 4; ++row) {
      const ufbx_vec3& v = node->node_to_world.cols[row];
      worst = std::max(
          {worst, std::abs(ours.m[row][0] - v.x), std::abs(ours.m[row][1] - v.y), std::abs(ours.m[row][2] - v.z)});
    }
  }
  return worst;
}

// The values have six digits or so: the library takes a third for 0.333333 and keeps handles in single precision.
void expect_as_library(const FbxText& text, double first, double last, double step = 0.37, double tolerance = 2e-5) {
  const std::string bytes = text.text();
  const Library file(ufbx_load_memory(bytes.data(), bytes.size(), nullptr, nullptr));
  ASSERT_NE(file, nullptr);
  const Scene scene = read(text);
  for (double frame = first; frame <= last; frame += step) {
    ASSERT_LE(difference_at(scene, *file, frame), tolerance) << "at frame " << frame;
  }
}

FbxText moving(const std::vector<FbxKey>& keys, const std::string& beyond = "CC", int repeats = -1) {
  return std::move(FbxText().node("a").take("t", 0, 30).curve("a", "Lcl Translation", 'X', keys, beyond, repeats));
}

const std::vector<FbxKey> kBumps = {{0, 1, kFbxAuto}, {6, 9, kFbxAuto}, {11, 4, kFbxAuto}, {20, 7, kFbxAuto}};

TEST(FbxLibrary, AgreesOnEveryInterpolation) {
  expect_as_library(moving({{0, 1, kFbxStep},
                            {5, 9, kFbxStepNext},
                            {9, 2, kFbxLinear},
                            {14, 6, kFbxAuto},
                            {20, 3, kFbxAuto},
                            {26, 8, kFbxLinear}}),
                    -2, 30);
}

TEST(FbxLibrary, AgreesOnBrokenTangents) {
  expect_as_library(moving({{0, 1, kFbxBroken, 40.0f, -25.0f}, {6, 9, kFbxBroken, -70.0f, 12.0f}, {13, 2, kFbxBroken}}),
                    -2, 15);
}

TEST(FbxLibrary, AgreesOnWeightedTangents) {
  expect_as_library(moving({{0, 1, kFbxWeighted, 40.0f, -25.0f, 9000, 1000},
                            {6, 9, kFbxWeighted, -70.0f, 12.0f, 100, 9900},
                            {13, 2, kFbxWeighted, 5.0f, 5.0f, 9999, 9999},
                            {20, 6, kFbxBroken, 3.0f, 4.0f},
                            {28, 6, kFbxLinear}}),
                    -2, 30);
}

TEST(FbxLibrary, AgreesOnEveryWayToGoOnBeyondTheKeys) {
  for (const char* beyond : {"CC", "RR", "MM", "KK", "AA", "RM", "AK", "KC"}) {
    SCOPED_TRACE(beyond);
    expect_as_library(moving(kBumps, beyond), -75, 95, 1.7);
  }
}

TEST(FbxLibrary, AgreesOnRepeatsThatEnd) {
  for (const char* beyond : {"RR", "MM", "AA"}) {
    SCOPED_TRACE(beyond);
    expect_as_library(moving(kBumps, beyond, 2), -95, 95, 1.7);
    expect_as_library(moving(kBumps, beyond, 0), -25, 45, 1.7);
  }
}

TEST(FbxLibrary, AgreesOnEveryRotationOrder) {
  for (int order = 0; order < 6; ++order) {
    SCOPED_TRACE(order);
    FbxText text;
    text.node("a", "", {{"RotationOrder", {static_cast<double>(order)}}, {"Lcl Rotation", {30, 50, 70}}});
    text.node("b", "a", {{"Lcl Translation", {1, 2, 3}}});
    expect_as_library(text, 0, 0);
    text.take("t", 0, 10).curve("a", "Lcl Rotation", 'Y', {{0, 0}, {10, 300}});
    expect_as_library(text, 0, 10);
  }
}

FbxText::Properties all_pivots(double angle) {
  return {{"Lcl Translation", {1, 2, 3}}, {"Lcl Rotation", {20, -40, angle}}, {"Lcl Scaling", {1.5, 0.5, 2}},
          {"RotationPivot", {4, -3, 2}},  {"RotationOffset", {0.5, 6, -1}},   {"ScalingPivot", {-2, 1, 5}},
          {"ScalingOffset", {3, 3, -4}},  {"PreRotation", {10, 75, -30}},     {"PostRotation", {-50, 15, angle}},
          {"RotationOrder", {3}}};
}

TEST(FbxLibrary, AgreesOnPivotsAndOffsets) {
  FbxText text;
  text.node("a", "", all_pivots(65)).node("b", "a", all_pivots(0)).node("c", "b", all_pivots(-90));
  expect_as_library(text, 0, 0);
  text.take("t", 0, 10)
      .curve("a", "Lcl Rotation", 'X', {{0, 0}, {10, 90}})
      .curve("b", "Lcl Scaling", 'Y', {{0, 1}, {10, 3}})
      .curve("b", "RotationPivot", 'Z', {{0, 1}, {10, 3}})
      .curve("b", "ScalingOffset", 'X', {{2, 1}, {10, 3}})
      .curve("c", "PreRotation", 'X', {{0, 1}, {10, 30}});
  expect_as_library(text, 0, 10, 0.37, 2e-4);
}

TEST(FbxLibrary, AgreesOnPostRotationsWhoseInverseTurnsByARightAngle) {
  for (const auto& angles : std::vector<std::vector<double>>{{90, 40, 90}, {-90, 40, 90}, {25, 90, 25}, {0, 90, 0}}) {
    FbxText text;
    text.node("a", "", {{"PostRotation", angles}}).node("b", "a", {{"Lcl Translation", {1, 2, 3}}});
    expect_as_library(text, 0, 0);
  }
}

TEST(FbxLibrary, AgreesWhereThereIsNoRotationSpace) {
  FbxText::Properties properties = all_pivots(65);
  properties.push_back({"RotationActive", {0}});
  FbxText text;
  text.node("a", "", properties).node("b", "a", {{"Lcl Translation", {1, 2, 3}}});
  expect_as_library(text, 0, 0);
}

// A chain whose scales and rotations differ on every level; what each level inherits is given by its digit.
FbxText chain(const std::string& modes) {
  FbxText text;
  text.node("n");
  std::string parent = "n";
  for (std::size_t i = 0; i < modes.size(); ++i) {
    const std::string name = std::string("n") + static_cast<char>('a' + i);
    const auto k = static_cast<double>(i);
    text.node(name, parent,
              {{"InheritType", {static_cast<double>(modes[i] - '0')}},
               {"Lcl Translation", {1 + k, 2, 3 - k}},
               {"Lcl Rotation", {20 + 9 * k, -40, 10}},
               {"Lcl Scaling", {1.5 - k / 4, 0.5 + k / 3, 2}}});
    parent = name;
  }
  return text;
}

TEST(FbxLibrary, AgreesOnEveryMixOfInheritedScales) {
  for (int mix = 0; mix < 81; ++mix) {
    const std::string modes = {static_cast<char>('0' + mix % 3), static_cast<char>('0' + mix / 3 % 3),
                               static_cast<char>('0' + mix / 9 % 3), static_cast<char>('0' + mix / 27)};
    SCOPED_TRACE(modes);
    FbxText text = chain(modes);
    expect_as_library(text, 0, 0);
    text.take("t", 0, 10)
        .curve("na", "Lcl Scaling", 'X', {{0, 1}, {10, 3}})
        .curve("nb", "Lcl Scaling", 'Z', {{0, 2}, {10, 0.5}})
        .curve("nb", "Lcl Rotation", 'Y', {{0, 2}, {10, 100}});
    expect_as_library(text, 0, 10, 1.7);
  }
}

TEST(FbxLibrary, AgreesOnScaleCurvesBelowScaleCurvesHoweverTheyAreInherited) {
  for (int mix = 0; mix < 27; ++mix) {
    const std::string modes = {'1', static_cast<char>('0' + mix % 3), static_cast<char>('0' + mix / 3 % 3),
                               static_cast<char>('0' + mix / 9)};
    SCOPED_TRACE(modes);
    FbxText text = chain(modes);
    text.take("t", 0, 10);
    for (const char* node : {"na", "nb", "nc"}) {
      text.curve(node, "Lcl Scaling", 'X', {{0, 2}, {10, 3}}).curve(node, "Lcl Scaling", 'Y', {{0, 2}, {10, 0.5}});
    }
    expect_as_library(text, 0, 10, 1.7);
  }
}

TEST(FbxLibrary, AgreesOnLayersOfEveryKind) {
  for (int kind = 0; kind < 3; ++kind) {
    for (const double weight : {100.0, 30.0}) {
      SCOPED_TRACE(std::to_string(kind) + " at " + std::to_string(weight));
      FbxText text;
      text.node("a", "", {{"Lcl Translation", {1, 2, 3}}}).node("b", "a", {{"Lcl Translation", {1, 2, 3}}});
      text.take("t", 0, 20)
          .curve("a", "Lcl Translation", 'X', kBumps)
          .curve("a", "Lcl Rotation", 'Z', {{0, 10}, {20, 80}})
          .curve("a", "Lcl Scaling", 'Y', {{0, 1}, {20, 4}});
      text.layer("second", {{"BlendMode", {static_cast<double>(kind)}},
                            {"Weight", {weight}},
                            {"RotationAccumulationMode", {static_cast<double>(kind % 2)}},
                            {"ScaleAccumulationMode", {static_cast<double>(kind % 2)}}});
      text.curve("a", "Lcl Translation", 'X', {{5, 3}, {15, 8}})
          .curve("a", "Lcl Rotation", 'X', {{5, 3}, {15, 80}})
          .curve("a", "Lcl Scaling", 'Y', {{5, 3}, {15, 2}})
          .curve("b", "Lcl Translation", 'Y', {{5, 3}, {15, 2}});
      expect_as_library(text, -3, 23);
    }
  }
}

}  // namespace
}  // namespace vantorelix::standalone
