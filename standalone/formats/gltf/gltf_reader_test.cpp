#include <cmath>
#include <numbers>

#include "standalone/formats/gltf/gltf_test_file.h"

namespace vantorelix::standalone {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kHalf = std::numbers::sqrt2 / 2;  // sine and cosine of 45 degrees
const float kHalfFloat = static_cast<float>(kHalf);
const std::string kBall = R"("name": "ball")";
const std::string kTip = R"("name": "tip", "translation": [1, 0, 0])";

// A ball whose child shows how it turns and scales.
GltfFile ball_and_tip() {
  GltfFile file;
  file.node(kBall + R"(, "children": [1])").node(kTip);
  return file;
}

// --- nodes ---------------------------------------------------------------------------------------------------------

TEST(Gltf, ASceneIsInMetresWithYUpAtTheRateAskedFor) {
  ReadOptions options;
  options.frames_per_second = 30.0;
  const Scene scene = clean_gltf(GltfFile().node(kBall).text(), options);
  EXPECT_EQ(scene.settings.linear_unit(), "m");
  EXPECT_EQ(scene.settings.up_axis(), 'y');
  EXPECT_EQ(scene.settings.frames_per_second(), 30.0);
  EXPECT_EQ(clean_gltf(GltfFile().node(kBall).text()).settings.frames_per_second(), 24.0);
}

TEST(Gltf, ARateThatIsNoneIsRefused) {
  ReadOptions options;
  options.frames_per_second = 0.0;
  EXPECT_THAT(gltf_error(GltfFile().node(kBall).text(), options), HasSubstr("this cannot be read into a scene"));
}

TEST(Gltf, NodesStandWhereTheirPartsPutThem) {
  const Scene scene = clean_gltf(GltfFile()
                                     .node(R"("name": "a", "translation": [1, 2, 3], "rotation": [0, 0, 2, 2],
                                              "scale": [2, 3, 4], "children": [1])")
                                     .node(R"("name": "b", "translation": [1, 1, 1])")
                                     .text());
  // Scaled to (2, 3, 4), turned by 90 degrees about z to (-3, 2, 4), moved.
  expect_place(scene, "b", 0.0, {-2.0, 4.0, 7.0});
}

TEST(Gltf, JointsOfSkinsAreJoints) {
  const Scene scene = clean_gltf(GltfFile()
                                     .node(kBall + R"(, "scale": [2, 2, 2], "children": [1])")
                                     .node(kTip)
                                     .add(R"("skins": [{"joints": [0, 1]}])")
                                     .text());
  EXPECT_EQ(scene.nodes.type(scene.names.require("ball")), "joint");
  expect_place(scene, "tip", 0.0, {2.0, 0.0, 0.0});  // scale goes on to the children
}

TEST(Gltf, NodesKnowTheirNumberAndTheirNameInTheFile) {
  const Scene scene =
      clean_gltf(GltfFile().node("").node(R"("name": "Bone.001")").node(R"("name": "caf\u00e9 \ud83d\ude00")").text());
  const NodeId first = scene.names.require("node0");
  EXPECT_EQ(name_in_file(scene, first), "node0");
  EXPECT_EQ(scene.attributes.value(first, kNumberInFile).to_int(), 0);
  EXPECT_EQ(name_in_file(scene, scene.names.require("Bone_001")), "Bone.001");
  EXPECT_EQ(scene.attributes.value(scene.names.require("Bone_001"), kNumberInFile).to_int(), 1);
  bool found = false;
  for (const NodeId node : scene.nodes.all()) found |= name_in_file(scene, node) == "caf\xC3\xA9 \xF0\x9F\x98\x80";
  EXPECT_TRUE(found);
}

TEST(Gltf, OnlyTheDefaultSceneIsReadAndTheRestCounted) {
  const std::string text = GltfFile()
                               .node(kBall)
                               .node(R"("name": "b", "children": [2])")
                               .node(R"("name": "c")")
                               .add(R"("scenes": [{"nodes": [0]}, {"nodes": [1, 1]}])")
                               .text();
  const Scene first = read_gltf(text, "scene.gltf");
  EXPECT_EQ(first.names.find("b"), kNoNode);
  EXPECT_THAT(first.warnings.all(),
              ElementsAre(testing::AllOf(
                  Field(&Warning::kind,
                        "a node outside of the file's default scene is left out; add it to that scene to see it"),
                  Field(&Warning::count, 2u))));
  std::string second = text;
  second.insert(1, R"("scene": 1, )");
  const Scene scene = read_gltf(second, "scene.gltf");
  EXPECT_NE(scene.names.find("|b|c"), kNoNode);
  EXPECT_EQ(scene.names.find("ball"), kNoNode);
}

// --- matrices ------------------------------------------------------------------------------------------------------

void expect_matrix(const std::array<double, 16>& m) {
  std::string text;
  for (const double v : m) text += (text.empty() ? "" : ", ") + std::to_string(v);
  const Scene scene = clean_gltf(GltfFile().node(kBall + R"(, "matrix": [)" + text + "]").text());
  const Affine local = scene.evaluation.world_matrix(scene.names.require("ball"), 0.0);
  for (std::size_t i = 0; i < 4; ++i)
    for (std::size_t j = 0; j < 3; ++j)
      EXPECT_NEAR(local.m[i][j], static_cast<double>(std::stof(std::to_string(m[4 * i + j]))), 1e-14) << i << j;
}

TEST(GltfMatrix, OfScaleAndRotationIsTakenApartExactly) {
  expect_matrix({0, 2, 0, 0, -3, 0, 0, 0, 0, 0, 4, 0, 5, 6, 7, 1});
  const Scene scene =
      clean_gltf(GltfFile().node(kBall + R"(, "matrix": [0, 2, 0, 0, -3, 0, 0, 0, 0, 0, 4, 0, 5, 6, 7, 1])").text());
  const NodeId ball = scene.names.require("ball");
  EXPECT_NEAR(scene.attributes.channel(ball, Channel::rotateZ), std::numbers::pi / 2, 1e-15);
  EXPECT_EQ(scene.attributes.channel(ball, Channel::scaleY), 3.0);
  EXPECT_EQ(scene.attributes.channel(ball, Channel::shearXY), 0.0);
  EXPECT_EQ(scene.attributes.channel(ball, Channel::translateX), 5.0);
}

TEST(GltfMatrix, OfSlantedAxesIsReproduced) {
  expect_matrix({1, 0.5, 0.25, 0, 0.75, 2, -0.5, 0, -1, 0.125, 3, 0, 1, 2, 3, 1});
}

TEST(GltfMatrix, OfAMirrorImageIsReproduced) {
  expect_matrix({-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
  expect_matrix({1, 0.5, 0, 0, 0, 2, 0, 0, 0.25, 0, -3, 0, 1, 0, 0, 1});
}

TEST(GltfMatrix, ThatFlattensSpaceIsReproducedToo) {
  expect_matrix({0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1});
  expect_matrix({1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1});
}

TEST(GltfMatrix, ThatIsNotAffineIsRefused) {
  EXPECT_THAT(gltf_error(GltfFile().node(R"("matrix": [1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1])").text()),
              HasSubstr("the matrix of node 0 has a last row other than 0 0 0 1"));
}

TEST(Gltf, ANegativeScaleMirrorsTheChildren) {
  const Scene scene =
      clean_gltf(GltfFile().node(kBall + R"(, "scale": [-1, 1, 1], "children": [1])").node(kTip).text());
  expect_place(scene, "tip", 0.0, {-1.0, 0.0, 0.0});
}

// --- interpolation -------------------------------------------------------------------------------------------------

TEST(GltfClip, SteppedKeysHoldTheirValue) {
  GltfFile file = ball_and_tip();
  const std::size_t times = file.scalars({0, 1, 2});
  file.channel(0, "translation", times, file.triples({0, 0, 0, 1, 2, 3, 4, 5, 6}), "STEP")
      .channel(0, "scale", times, file.triples({1, 1, 1, 2, 2, 2, 1, 1, 1}), "STEP")
      .channel(0, "rotation", times, file.quadruples({0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 1}), "STEP");
  const Scene scene = clean_gltf(file.text());
  expect_place(scene, "tip", 23.9, {1, 0, 0});
  expect_place(scene, "tip", 24, {-1, 2, 3});
  expect_place(scene, "tip", 47.9, {-1, 2, 3});
  expect_place(scene, "tip", 48, {5, 5, 6});
}

TEST(GltfClip, LinearKeysAreJoinedByLinesAndTheShorterTurn) {
  GltfFile file = ball_and_tip();
  const std::size_t times = file.scalars({0, 1});
  // By 90 degrees about z, its quaternion written with the other sign.
  file.channel(0, "translation", times, file.triples({0, 0, 0, 4, 0, 2}))
      .channel(0, "scale", times, file.triples({1, 1, 1, 3, 3, 3}))
      .channel(0, "rotation", times, file.quadruples({0, 0, 0, 1, 0, 0, -kHalfFloat, -kHalfFloat}));
  const Scene scene = clean_gltf(file.text());
  const double part = 0.25, angle = part * std::numbers::pi / 2;
  expect_place(scene, "tip", 6, {1 + 1.5 * std::cos(angle), 1.5 * std::sin(angle), 0.5});
}

TEST(GltfClip, SplinesHaveTheTangentsOfTheFile) {
  GltfFile file = ball_and_tip();
  const std::size_t times = file.scalars({0, 2});
  // Each key: in tangent, value, out tangent; a second.
  file.channel(0, "translation", times, file.triples({9, 9, 9, 0, 0, 0, 3, 0, 0, 0, 1, 0, 4, 0, 2, 9, 9, 9}),
               "CUBICSPLINE")
      .channel(0, "scale", times, file.triples({0, 0, 0, 1, 1, 1, 1, 0, 0, 0, 0, 0, 2, 1, 1, 0, 0, 0}), "CUBICSPLINE");
  const Scene scene = clean_gltf(file.text());
  // Halfway: half of each value, an eighth of the time times each tangent.
  expect_place(scene, "ball", 24, {2.0 + 2.0 * 3.0 / 8, -2.0 * 1.0 / 8, 1.0});
  EXPECT_NEAR(scene.evaluation.channel_at(scene.names.require("ball"), Channel::scaleX, 24), 1.5 + 2.0 / 8, 1e-12);
  expect_place(scene, "ball", 100, {4, 0, 2});
}

TEST(GltfClip, SplinesOfRotationsAreMixedByComponentAndThenNormalised) {
  GltfFile file = ball_and_tip();
  const std::size_t times = file.scalars({0, 2});
  file.channel(0, "rotation", times,
               file.quadruples({0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0}),
               "CUBICSPLINE");
  const Scene scene = clean_gltf(file.text());
  // At the middle z = 1/2 + 2/8, w = 1/2.
  const double angle = 2.0 * std::atan2(0.75, 0.5);
  expect_place(scene, "tip", 24, {std::cos(angle), std::sin(angle), 0});
  expect_place(scene, "tip", 48, {-1, 0, 0});
}

TEST(GltfClip, TranslationsAndScalesAreCurvesWithTheKeysOfTheFile) {
  GltfFile file = ball_and_tip();
  const std::size_t times = file.scalars({0.5f, 1.0f, 1.25f});
  file.channel(0, "translation", times, file.triples({0, 0, 0, 1, 2, 3, 4, 5, 6}));
  file.channel(1, "rotation", times, file.quadruples({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1, 0}));
  const Scene scene = clean_gltf(file.text());
  const NodeId curve = scene.curves.driving_curve(scene.names.require("ball"), Channel::translateY);
  ASSERT_NE(curve, kNoNode);
  ASSERT_EQ(scene.curves.at(curve).keys().size(), 3u);
  EXPECT_EQ(scene.curves.at(curve).keys()[1].time, 24.0);
  EXPECT_EQ(scene.curves.at(curve).keys()[1].value, 2.0);
  EXPECT_THAT(scene.curves.key_times(scene.names.require("tip")), ElementsAre(12.0, 24.0, 30.0));
  EXPECT_TRUE(scene.evaluation.is_animated(scene.names.require("tip")));
}

TEST(GltfClip, ARotationThatStaysTheSameAnimatesNothing) {
  GltfFile file = ball_and_tip();
  const std::size_t times = file.scalars({0, 1});
  file.channel(0, "rotation", times, file.quadruples({0, 0, 1, 1, 0, 0, 1, 1}));
  const Scene scene = clean_gltf(file.text());
  EXPECT_FALSE(scene.evaluation.is_animated(scene.names.require("ball")));
  EXPECT_TRUE(scene.curves.has_keys(scene.names.require("ball")));
}

TEST(GltfClip, OfTwoKeysAtOneTimeTheLaterCounts) {
  GltfFile file = ball_and_tip();
  file.channel(0, "translation", file.scalars({0, 1, 1}), file.triples({0, 0, 0, 1, 1, 1, 2, 2, 2}));
  const Scene scene = read_gltf(file.text(), "scene.gltf");
  expect_place(scene, "ball", 12, {1, 1, 1});
  EXPECT_THAT(scene.warnings.all(), Contains(Field(&Warning::kind, HasSubstr("only the later one counts"))));
}

// --- clips ---------------------------------------------------------------------------------------------------------

GltfFile two_clips() {
  GltfFile file = ball_and_tip();
  file.clip("Walk").channel(0, "translation", file.scalars({0.25f, 1.01f}), file.triples({0, 0, 0, 1, 0, 0}));
  file.clip("").channel(0, "translation", file.scalars({0, 2.083333492279053f}), file.triples({0, 0, 0, 0, 1, 0}));
  file.clip("Walk").channel(1, "scale", file.scalars({0}), file.triples({1, 1, 1}));
  return file;
}

TEST(GltfClip, TheFirstIsReadUnlessAnotherIsNamed) {
  const Scene scene = clean_gltf(two_clips().text());
  ASSERT_EQ(scene.settings.takes().size(), 3u);
  EXPECT_EQ(scene.settings.take(), 0u);
  EXPECT_EQ(scene.settings.takes()[0].name, "Walk");
  EXPECT_EQ(scene.settings.takes()[1].name, "clip1");
  EXPECT_EQ(scene.settings.takes()[2].name, "Walk_2");
  expect_place(scene, "ball", 50, {1, 0, 0});
  ReadOptions options;
  options.take = "clip1";
  const Scene other = clean_gltf(two_clips().text(), options);
  EXPECT_EQ(other.settings.take(), 1u);
  expect_place(other, "ball", 60, {0, 1, 0});
}

TEST(GltfClip, TheRangeIsItsKeysInWholeFrames) {
  const Scene scene = clean_gltf(two_clips().text());
  EXPECT_EQ(scene.settings.playback_min(), 6.0);
  EXPECT_EQ(scene.settings.playback_max(), 25.0);  // 1.01 seconds are 24.24 frames
  // Not 51, though a float just above two seconds and two frames says so.
  EXPECT_EQ(scene.settings.takes()[1].last, 50.0);
  EXPECT_EQ(scene.settings.takes()[2].last, 0.0);
}

TEST(GltfClip, AnUnknownNameListsTheOnesThereAre) {
  ReadOptions options;
  options.take = "Run";
  EXPECT_THAT(gltf_error(two_clips().text(), options),
              HasSubstr("there is no clip 'Run'; the file has 'Walk', 'clip1', 'Walk_2'"));
  EXPECT_THAT(gltf_error(GltfFile().node("").text(), options),
              HasSubstr("there is no clip 'Run'; the file has no clips"));
}

TEST(GltfClip, ASceneWithoutOneStandsStill) {
  const Scene scene = clean_gltf(ball_and_tip().text());
  EXPECT_THAT(scene.settings.takes(), IsEmpty());
  EXPECT_EQ(scene.settings.playback_max(), 0.0);
  EXPECT_FALSE(scene.evaluation.is_animated(scene.names.require("tip")));
}

TEST(GltfClip, WhatItCannotDriveIsSaid) {
  GltfFile file = ball_and_tip();
  const std::size_t times = file.scalars({0, 1}), places = file.triples({0, 0, 0, 1, 0, 0});
  file.channel(0, "translation", times, places)
      .channel(0, "translation", times, file.triples({0, 0, 0, 9, 9, 9}))
      .channel(0, "pointer", times, places)
      .channel(0, "weights", times, times)
      .add(R"("extensionsRequired": ["KHR_materials_unlit", "ACME_physics"])");
  const Scene scene = read_gltf(file.text(), "scene.gltf");
  expect_place(scene, "ball", 24, {1, 0, 0});
  std::vector<std::string> kinds;
  for (const Warning& warning : scene.warnings.all()) kinds.push_back(warning.kind);
  EXPECT_THAT(kinds,
              testing::UnorderedElementsAre(
                  "the extension 'ACME_physics', which the file requires, is not read; export the file without it",
                  "a second animation channel of the same node and path is not followed; keep only one of them",
                  "an animation channel without a node, or of an unknown path, is not followed; animate the "
                  "translation, rotation or scale of a node instead"));
}

TEST(GltfClip, AMatrixGivesWayToTheChannelsOfItsNode) {
  GltfFile file;
  file.node(kBall + R"(, "matrix": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1])");
  file.channel(0, "translation", file.scalars({0, 1}), file.triples({0, 0, 0, 1, 0, 0}));
  const Scene scene = read_gltf(file.text(), "scene.gltf");
  expect_place(scene, "ball", 24, {1, 0, 0});
  EXPECT_THAT(scene.warnings.all(), Contains(Field(&Warning::kind, HasSubstr("given as a matrix"))));
}

}  // namespace
}  // namespace vantorelix::standalone
