// How large the surfaces are that hang on the nodes, where that is asked for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "standalone/formats/fbx/fbx_test_scene.h"
#include "standalone/formats/gltf/gltf_test_file.h"
#include "standalone/formats/reader.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;

ReadOptions with_bounds() {
  ReadOptions options;
  options.bounds = true;
  return options;
}

// Two corners; none where the node has none.
std::vector<Vector> bounds_of(const Scene& scene, const std::string& node) {
  const Vectors bounds = scene.attributes.vectors(scene.names.require(node), kBounds);
  return bounds ? *bounds : std::vector<Vector>();
}

const auto kUnitCube = ElementsAre(Vector{-0.5, -0.5, -0.5}, Vector{0.5, 0.5, 0.5});

FbxText fbx(const FbxText::Properties& properties = {}) {
  FbxText file;
  file.node("ball", "", properties, "Mesh").node("empty");
  file.triangle("ball", {-1, 0, 2, 3, -4, 5, 0, 1, 0});
  return file;
}

TEST(Bounds, OfAnFbxMeshHoldItsVertices) {
  const Scene scene = read(fbx(), with_bounds());
  EXPECT_THAT(bounds_of(scene, "ball"), ElementsAre(Vector{-1, -4, 0}, Vector{3, 1, 5}));
  EXPECT_THAT(bounds_of(scene, "empty"), testing::IsEmpty());
}

TEST(Bounds, OfAnFbxMeshFollowTheTransformThatIsItsAlone) {
  const Scene scene = read(
      fbx({{"GeometricTranslation", {10, 0, 0}}, {"GeometricScaling", {2, 1, 1}}, {"Lcl Translation", {0, 0, 100}}}),
      with_bounds());
  EXPECT_THAT(bounds_of(scene, "ball"), ElementsAre(Vector{8, -4, 0}, Vector{16, 1, 5}));
}

TEST(Bounds, AreNotReadUnlessAskedFor) { EXPECT_THAT(bounds_of(read(fbx()), "ball"), testing::IsEmpty()); }

std::string gltf_mesh(const std::string& primitives) {
  GltfFile file;
  file.node(R"("name": "ball", "mesh": 0)").node(R"("name": "empty")");
  file.accessor(R"("componentType": 5126, "type": "VEC3", "count": 3, "min": [-1, 0, -2], "max": [1, 2, 3])");
  file.accessor(R"("componentType": 5126, "type": "VEC3", "count": 3, "min": [0, -7, 0], "max": [0, 0, 0.5])");
  file.accessor(R"("componentType": 5123, "type": "VEC3", "count": 3, "min": [0, 0, 0], "max": [65535, 65535, 65535])");
  return file.add(R"("meshes": [{"primitives": [)" + primitives + "]}]").text();
}

TEST(Bounds, OfAGltfMeshAreWhatTheFileTellsOfItsParts) {
  const std::string parts = R"({"attributes": {"POSITION": 0, "NORMAL": 2}}, {"attributes": {"POSITION": 1}})";
  const Scene scene = read_gltf(gltf_mesh(parts), "scene.gltf", {}, with_bounds());
  EXPECT_THAT(bounds_of(scene, "ball"), ElementsAre(Vector{-1, -7, -2}, Vector{1, 2, 3}));
  EXPECT_THAT(bounds_of(scene, "empty"), testing::IsEmpty());
  EXPECT_THAT(bounds_of(read_gltf(gltf_mesh(parts), "scene.gltf"), "ball"), testing::IsEmpty());
}

TEST(Bounds, OfAGltfMeshWhosePositionsAreNoFloatsAreAUnitCube) {
  const Scene scene = read_gltf(gltf_mesh(R"({"attributes": {"POSITION": 2}})"), "scene.gltf", {}, with_bounds());
  EXPECT_THAT(bounds_of(scene, "ball"), kUnitCube);
}

// Whether the reader says that something deforms the surface.
bool is_deformed(const Scene& scene, const std::string& node) {
  const Vectors bounds = scene.attributes.vectors(scene.names.require(node), kBounds);
  return bounds && bounds->empty();
}

TEST(Bounds, OfADeformedFbxMeshAreNone) {
  for (const std::string kind : {"Skin", "BlendShape"}) {
    FbxText file = fbx();
    file.deformer("ball", kind);
    EXPECT_TRUE(is_deformed(read(file, with_bounds()), "ball")) << kind;
    EXPECT_FALSE(is_deformed(read(fbx(), with_bounds()), "ball"));
  }
}

TEST(Bounds, OfASkinnedGltfMeshAreNone) {
  GltfFile file;
  file.node(R"("name": "body", "mesh": 0, "skin": 0)").node(R"("name": "bone")").node(R"("name": "hat", "mesh": 0)");
  file.accessor(R"("componentType": 5126, "type": "VEC3", "count": 3, "min": [-1, 0, -2], "max": [1, 2, 3])");
  file.add(R"("meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}], "skins": [{"joints": [1]}])");
  const Scene scene = read_gltf(file.text(), "scene.gltf", {}, with_bounds());
  EXPECT_TRUE(is_deformed(scene, "body"));
  EXPECT_THAT(bounds_of(scene, "hat"), ElementsAre(Vector{-1, 0, -2}, Vector{1, 2, 3}));
}

TEST(Bounds, OfAGltfMeshWithMorphTargetsAreNone) {
  const std::string part = R"({"attributes": {"POSITION": 0}, "targets": [{"POSITION": 1}]})";
  EXPECT_TRUE(is_deformed(read_gltf(gltf_mesh(part), "scene.gltf", {}, with_bounds()), "ball"));
}

Scene maya(const std::string& text, const ReadOptions& options = with_bounds()) {
  return read_maya_ascii("createNode transform -n \"ball\";\ncreateNode mesh -n \"ballShape\" -p \"ball\";\n" + text,
                         "scene.ma", options);
}

TEST(Bounds, OfAMayaMeshHoldItsVerticesFromEveryStatement) {
  const std::string vertices = "setAttr -s 3 \".vt[0:1]\" -1 0 2 3 -4 5;\nsetAttr \".vt[2]\" -type \"float3\" 0 1 0;\n";
  EXPECT_THAT(bounds_of(maya(vertices), "ballShape"), ElementsAre(Vector{-1, -4, 0}, Vector{3, 1, 5}));
  EXPECT_THAT(bounds_of(maya(vertices, {}), "ballShape"), testing::IsEmpty());
}

TEST(Bounds, OfAMayaCubeAndPlaneAreOfTheNumbersThatTheyAreMadeOf) {
  const std::string link = "connectAttr \"maker.out\" \"ballShape.i\";\n";
  EXPECT_THAT(
      bounds_of(maya("createNode polyCube -n \"maker\";\nsetAttr \".w\" 4;\nsetAttr \".d\" 10;\n" + link), "ballShape"),
      ElementsAre(Vector{-2, -0.5, -5}, Vector{2, 0.5, 5}));
  EXPECT_THAT(bounds_of(maya("createNode polyPlane -n \"maker\";\nsetAttr \".w\" 4;\nsetAttr \".h\" 10;\n" + link),
                        "ballShape"),
              ElementsAre(Vector{-2, 0, -5}, Vector{2, 0, 5}));
  EXPECT_THAT(bounds_of(maya("createNode polySphere -n \"maker\";\n" + link), "ballShape"), testing::IsEmpty());
}

constexpr const char* kVertices = "setAttr \".vt[0:1]\" -1 0 2 3 -4 5;\n";

// Two meshes with vertices.
std::string ball_and_hat() {
  return std::string(kVertices) + "createNode transform -n \"hat\";\ncreateNode mesh -n \"hatShape\" -p \"hat\";\n" +
         kVertices;
}

TEST(Bounds, OfAMayaMeshThatADeformerMovesAreNone) {
  for (const std::string type : {"skinCluster", "blendShape", "someStudiosDeformer"}) {
    const std::string deformer = "createNode " + type + " -n \"d\";\n";
    EXPECT_TRUE(is_deformed(maya(kVertices + deformer + "connectAttr \"d.og[0]\" \"ballShape.i\";\n"), "ballShape"));
    EXPECT_TRUE(is_deformed(maya(kVertices + deformer + "connectAttr \"d.outputGeometry[0]\" \"ballShape.inMesh\";\n"),
                            "ballShape"));
  }
}

TEST(Bounds, OfAMayaMeshBehindADeformerAreNoneWhateverLiesBetween) {
  const Scene scene = maya(ball_and_hat() +
                           "createNode skinCluster -n \"skin\";\ncreateNode polySoftEdge -n \"soft\";\n"
                           "createNode tweak -n \"tweak\";\n"
                           "connectAttr \"soft.out\" \"ballShape.i\";\nconnectAttr \"skin.og[0]\" \"soft.ip\";\n"
                           "connectAttr \"tweak.og[0]\" \"hatShape.i\";\nparent -add \"|ball|ballShape\" \"hat\";\n");
  EXPECT_TRUE(is_deformed(scene, "|ball|ballShape"));
  // A second path of it is deformed too; single vertices that were moved deform nothing.
  EXPECT_TRUE(is_deformed(scene, "|hat|ballShape"));
  EXPECT_THAT(bounds_of(scene, "hatShape"), ElementsAre(Vector{-1, -4, 2}, Vector{3, 0, 5}));
}

TEST(Bounds, OfAMayaMeshAreNotLostToAConstraintOnADeformedOne) {
  const Scene scene = maya(ball_and_hat() +
                           "createNode cluster -n \"d\";\nconnectAttr \"d.og[0]\" \"ballShape.i\";\n"
                           "createNode pointOnPolyConstraint -n \"hold\" -p \"hat\";\n"
                           "connectAttr \"ballShape.w\" \"hold.tg[0].tm\";\nconnectAttr \"hold.ctx\" \"hat.tx\";\n"
                           "connectAttr \"hat.wm\" \"hatShape.x\";\n");
  EXPECT_TRUE(is_deformed(scene, "ballShape"));
  EXPECT_FALSE(is_deformed(scene, "hatShape"));
}

}  // namespace
}  // namespace vantorelix::standalone
