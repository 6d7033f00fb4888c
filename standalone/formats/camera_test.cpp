#include "standalone/formats/camera.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/mathematics/mathematics.h"
#include "standalone/formats/fbx/fbx_test_scene.h"
#include "standalone/formats/reader.h"

namespace vantorelix::standalone {
namespace {

NodeId only_camera(const Scene& scene) {
  const auto all = scene.nodes.of_type("camera");
  EXPECT_EQ(all.size(), 1u);
  return all.at(0);
}

CameraView maya(const std::string& statements, double frame = 1.0) {
  const Scene scene = read_maya_ascii(
      "createNode transform -n \"cam\";createNode camera -n \"camShape\" -p \"cam\";" + statements, "a.ma");
  EXPECT_TRUE(scene.warnings.all().empty());
  return camera_at(scene, only_camera(scene), frame);
}

TEST(MayaCamera, HasTheHostsValuesWhereTheFileSaysNothing) {
  const CameraView view = maya("");
  EXPECT_DOUBLE_EQ(view.aperture_x, 1.41732 * kInch);
  EXPECT_DOUBLE_EQ(view.aperture_y, 0.94488 * kInch);
  EXPECT_EQ(view.focal_length, 35.0);
  EXPECT_EQ(view.fit, FilmFit::fill);
  EXPECT_EQ(view.width, 0.0);
}

TEST(MayaCamera, HasFilmLensAndClips) {
  const CameraView view = maya(
      "setAttr \".cap\" -type \"double2\" 2 1;setAttr \".fl\" 50;setAttr \".ff\" 3;setAttr \".lsr\" 2;"
      "setAttr \".hfo\" 0.5;setAttr \".ncp\" 0.25;setAttr \".fcp\" 900;");
  EXPECT_DOUBLE_EQ(view.aperture_x, 4.0 * kInch);
  EXPECT_DOUBLE_EQ(view.aperture_y, kInch);
  EXPECT_DOUBLE_EQ(view.offset_x, kInch);
  EXPECT_EQ(view.focal_length, 50.0);
  EXPECT_EQ(view.fit, FilmFit::overscan);
  EXPECT_EQ(view.near_clip, 0.25);
  EXPECT_EQ(view.far_clip, 900.0);
}

TEST(MayaCamera, IsOrthographicWithAWidth) {
  EXPECT_EQ(maya("setAttr \".o\" yes;setAttr \".ow\" 12;").width, 12.0);
  EXPECT_EQ(maya("setAttr \".o\" no;setAttr \".ow\" 12;").width, 0.0);
}

TEST(MayaCamera, IsAnimatedByCurves) {
  const std::string curve =
      "createNode animCurveTU -n \"c\";setAttr \".tan\" 2;setAttr -s 2 \".ktv[0:1]\" 1 30 11 80;"
      "connectAttr \"c.o\" \"camShape.fl\";";
  EXPECT_EQ(maya(curve, 6.0).focal_length, 55.0);
  EXPECT_EQ(maya(curve, 20.0).focal_length, 80.0);
}

Scene gltf(const std::string& cameras, const std::string& node = "\"camera\":0") {
  return read_gltf(
      "{\"asset\":{\"version\":\"2.0\"},\"nodes\":[{\"name\":\"eye\"," + node + "}],\"cameras\":" + cameras + "}",
      "a.gltf");
}

TEST(GltfCamera, SeesAsHighAsItsFieldOfView) {
  const Scene scene =
      gltf("[{\"type\":\"perspective\",\"perspective\":{\"yfov\":0.5,\"aspectRatio\":2,\"znear\":0.5}}]");
  const CameraView view = camera_at(scene, only_camera(scene), 1.0);
  EXPECT_NEAR(2.0 * std::atan(view.aperture_y / 2.0 / view.focal_length), 0.5, 1e-12);
  EXPECT_NEAR(view.aperture_x, 2.0 * view.aperture_y, 1e-12);
  EXPECT_EQ(view.fit, FilmFit::vertical);
  EXPECT_EQ(view.near_clip, 0.5);
  EXPECT_EQ(view.far_clip, 0.0);
  EXPECT_FALSE(looks_along_x(scene, only_camera(scene)));
  EXPECT_EQ(scene.nodes.parent(only_camera(scene)), scene.names.require("eye"));
}

TEST(GltfCamera, IsOrthographicWithTwiceItsMagnification) {
  const Scene scene =
      gltf("[{\"type\":\"orthographic\",\"orthographic\":{\"xmag\":3,\"ymag\":1.5,\"znear\":0.5,\"zfar\":8}}]");
  const CameraView view = camera_at(scene, only_camera(scene), 1.0);
  EXPECT_EQ(view.width, 6.0);
  EXPECT_NEAR(view.aperture_x, 2.0 * view.aperture_y, 1e-12);
  EXPECT_EQ(view.far_clip, 8.0);
}

TEST(GltfCamera, ThatIsNoCameraIsLeftOutAndTheSceneIsRead) {
  for (const char* const cameras : {"[]", "[4]", "[{}]", "[{\"type\":\"perspective\"}]",
                                    "[{\"type\":\"perspective\",\"perspective\":{\"yfov\":[]}}]"}) {
    const Scene scene = gltf(cameras);
    EXPECT_TRUE(scene.nodes.of_type("camera").empty()) << cameras;
    EXPECT_NE(scene.names.find("eye"), kNoNode);
  }
  const std::string sound = "[{\"type\":\"perspective\",\"perspective\":{\"yfov\":0.5,\"znear\":0.5}}]";
  for (const char* const node : {"\"camera\":1", "\"camera\":-1", "\"camera\":\"x\""})
    EXPECT_TRUE(gltf(sound, node).nodes.of_type("camera").empty()) << node;
}

const FbxText::Properties kFilm = {
    {"FilmWidth", {1.5}}, {"FilmHeight", {1.0}}, {"NearPlane", {2}}, {"FarPlane", {500}}};

FbxText::Properties film_and(std::initializer_list<FbxText::Property> more) {
  FbxText::Properties all = kFilm;
  all.insert(all.end(), more);
  return all;
}

TEST(FbxCamera, HasFilmLensAndClipsAndLooksAlongX) {
  const Scene scene = read(FbxText().node("eye").camera(
      "eye", film_and({{"FocalLength", {50.5}}, {"ApertureMode", {3}}, {"GateFit", {4}}})));
  const CameraView view = camera_at(scene, only_camera(scene), 1.0);
  EXPECT_DOUBLE_EQ(view.aperture_x, 1.5 * kInch);
  EXPECT_DOUBLE_EQ(view.aperture_y, 1.0 * kInch);
  EXPECT_EQ(view.focal_length, 50.5);
  EXPECT_EQ(view.fit, FilmFit::overscan);
  EXPECT_EQ(view.near_clip, 2.0);
  EXPECT_EQ(view.far_clip, 500.0);
  EXPECT_TRUE(looks_along_x(scene, only_camera(scene)));
}

TEST(FbxCamera, OfAFieldOfViewHasTheLensThatGoesWithIt) {
  const Scene wide =
      read(FbxText().node("eye").camera("eye", film_and({{"FieldOfView", {60.5}}, {"ApertureMode", {1}}})));
  const CameraView view = camera_at(wide, only_camera(wide), 1.0);
  EXPECT_NEAR(2.0 * std::atan(view.aperture_x / 2.0 / view.focal_length), 60.5 * base::kDegree, 1e-9);
  EXPECT_EQ(view.fit, FilmFit::horizontal);
  const Scene high =
      read(FbxText().node("eye").camera("eye", film_and({{"FieldOfView", {40.5}}, {"ApertureMode", {2}}})));
  const CameraView upright = camera_at(high, only_camera(high), 1.0);
  EXPECT_NEAR(2.0 * std::atan(upright.aperture_y / 2.0 / upright.focal_length), 40.5 * base::kDegree, 1e-9);
  EXPECT_EQ(upright.fit, FilmFit::vertical);
}

TEST(FbxCamera, IsAnimatedByCurvesOfItsFocalLength) {
  const Scene scene = read(FbxText()
                               .node("eye")
                               .camera("eye", film_and({{"FocalLength", {50.5}}, {"ApertureMode", {3}}}))
                               .take("zoom", 0, 10)
                               .curve("eye camera", "FocalLength", 'X', {{0, 20}, {10, 40}}));
  EXPECT_NEAR(camera_at(scene, only_camera(scene), 5.0).focal_length, 30.0, 1e-6);
}

TEST(FbxCamera, ClipsInTheUnitThatTheSceneIsConvertedTo) {
  ReadOptions options;
  options.linear_unit = "m";
  const Scene scene = read(FbxText().node("eye").camera("eye", film_and({{"FocalLength", {50}}})), options);
  EXPECT_NEAR(camera_at(scene, only_camera(scene), 0.0).near_clip, 0.02, 1e-12);
}

}  // namespace
}  // namespace vantorelix::standalone
