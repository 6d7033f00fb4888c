// Files that are broken, or want what they should not have.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "host/error.h"
#include "standalone/formats/gltf/gltf_document.h"
#include "standalone/formats/gltf/gltf_test_file.h"

namespace vantorelix::standalone {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const std::string kMoves = bytes_of<float>({0, 1, 0, 0, 0, 1, 2, 3});

// A ball that moves, its two keys in a buffer that `buffer` tells about.
GltfFile moving(const std::string& buffer = "") {
  GltfFile file;
  file.node(R"("name": "ball")").buffer(buffer);
  const std::size_t times = file.scalars({0, 1});
  file.channel(0, "translation", times, file.triples({0, 0, 0, 1, 2, 3}));
  return file;
}

std::string error_with_buffer(const std::string& buffer) { return gltf_error(moving(buffer).text()); }

class GltfFolder : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "vantorelix_gltf_XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
    fs::create_directories(folder_ / "inner/sub");
  }
  void TearDown() override { fs::remove_all(folder_); }

  void write(const std::string& name, const std::string& bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
  }
  // The scene lies in "inner".
  std::string error_of(const std::string& uri, const std::string& length = "32") const {
    try {
      write("inner/scene.gltf", moving(R"({"uri": ")" + uri + R"(", "byteLength": )" + length + "}").text());
      const Scene scene = read_scene(folder_ / "inner/scene.gltf");
      return scene.evaluation.world_matrix(scene.names.require("ball"), 24).translation() == Vector{1, 2, 3} ? "read"
                                                                                                             : "wrong";
    } catch (const FormatError& error) {
      return error.what();
    }
  }

  fs::path folder_;
};

TEST_F(GltfFolder, BuffersBesideTheSceneAndBelowItAreRead) {
  write("inner/a b.bin", kMoves);
  write("inner/sub/c.bin", kMoves + "more");
  EXPECT_EQ(error_of("a%20b.bin"), "read");
  EXPECT_EQ(error_of("sub/c.bin"), "read");
  EXPECT_EQ(error_of("./sub/c.bin"), "read");
}

TEST_F(GltfFolder, BuffersElsewhereAreNot) {
  write("outside.bin", kMoves);
  for (const std::string uri : {"../outside.bin", "sub/../../outside.bin", "%2e%2e/outside.bin", "..\\\\outside.bin",
                                "http://example.org/a.bin", "file:///etc/hostname", "C:/a.bin", "", "a\\u0000.bin"}) {
    EXPECT_THAT(error_of(uri), testing::AnyOf(HasSubstr("only files in the scene's folder or below it are read"),
                                              HasSubstr("which is missing")))
        << uri;
  }
  EXPECT_THAT(error_of((folder_ / "outside.bin").generic_string()), HasSubstr("only files in the scene's folder"));
  EXPECT_THAT(error_of("../outside.bin"), HasSubstr("only files in the scene's folder"));
}

TEST_F(GltfFolder, ABufferThatIsMissingOrTooShortIsNamed) {
  EXPECT_THAT(error_of("gone.bin"), HasSubstr("buffer 0 is the file 'gone.bin', which is missing"));
  EXPECT_THAT(error_of("sub"), HasSubstr("is not an ordinary file"));
  write("inner/short.bin", kMoves.substr(0, 31));
  EXPECT_THAT(error_of("short.bin"), HasSubstr("'short.bin' and should be 32 bytes, but has 31"));
  EXPECT_THAT(error_of("short.bin", "1152921504606846976"), HasSubstr("but has 31"));
}

TEST(GltfDamage, BuffersOfAFileInMemoryHaveNoFolder) {
  EXPECT_THAT(error_with_buffer(R"({"uri": "a.bin", "byteLength": 32})"), HasSubstr("cannot be read here"));
}

TEST(GltfDamage, EmbeddedBuffersMustBeWhole) {
  const std::string good = base64(kMoves);
  const auto error = [](const std::string& uri, const std::string& length) {
    return error_with_buffer(R"({"uri": "data:)" + uri + R"(", "byteLength": )" + length + "}");
  };
  EXPECT_EQ(error(";base64," + good, "32"), "no error");
  EXPECT_THAT(error(",plain", "32"), HasSubstr("embedded, but not as base64"));
  EXPECT_THAT(error(";base64," + good, "1152921504606846976"), HasSubstr("holds fewer bytes than it says"));
  EXPECT_THAT(error(";base64," + good.substr(0, 20) + "!" + good.substr(21), "32"),
              HasSubstr("is not complete base64 text"));
  EXPECT_THAT(error(";base64," + good, "16"), HasSubstr("reaches beyond the end of its buffer"));
  EXPECT_THAT(error_with_buffer(R"({"byteLength": 32})"), HasSubstr("buffer 0 has neither a 'uri' nor bytes"));
}

TEST(GltfDamage, ABinaryFileHoldsItsFirstBuffer) {
  const Scene scene = clean_gltf(moving().binary());
  expect_place(scene, "ball", 12, {0.5, 1, 1.5});
  EXPECT_THAT(gltf_error(moving(R"({"byteLength": 36})").binary()), HasSubstr("longer than the binary part"));
}

TEST(GltfDamage, ABinaryFileThatIsCutOffOrAnotherKindIsRefused) {
  std::string sound = moving().binary();
  EXPECT_THAT(gltf_error(sound.substr(0, sound.size() - 1)), HasSubstr("it is cut off, export it again"));
  EXPECT_THAT(gltf_error(sound.substr(0, 15)), HasSubstr("it is cut off"));
  EXPECT_THAT(gltf_error(""), HasSubstr("it is cut off"));
  sound[4] = 1;
  EXPECT_THAT(gltf_error(sound), HasSubstr("this is glTF 1.0"));
}

TEST(GltfDamage, DamagedJsonIsNamedWithItsLine) {
  EXPECT_THAT(gltf_error("{\"asset\": {\"version\": \"2.0\"},\n\"nodes\": [{]}"),
              HasSubstr("scene.gltf:2: the JSON text"));
  EXPECT_THAT(gltf_error("this is not a glTF file"), HasSubstr("scene.gltf:1: the JSON text is damaged"));
  EXPECT_THAT(gltf_error(GltfFile().node(R"("children": [1e9999])").text()), HasSubstr("a number in the JSON text is"));
  EXPECT_THAT(gltf_error("{\"nodes\": [{}, {}]}"), HasSubstr("there is no 'asset' with a 'version'"));
}

// A ball that moves, with something that moves nothing.
std::string with(const std::string& of_node, const std::string& of_file, bool binary) {
  GltfFile file;
  file.node(R"("name": "ball", "mesh": 0, "translation": [0, 0, 0], )" + of_node);
  const std::size_t times = file.scalars({0, 1});
  file.channel(0, "translation", times, file.triples({0, 0, 0, 1, 2, 3}));
  file.add(R"("meshes": [{"primitives": [{"attributes": {"POSITION": 1}, "material": 0}]}], "materials": [{}])");
  if (!of_file.empty()) file.add(of_file);
  return binary ? file.binary() : file.text();
}

TEST(GltfDamage, WhatMovesNothingIsReadInAnyForm) {
  const std::pair<const char*, const char*> kForms[] = {
      {R"("extensions": {"EXT_mesh_gpu_instancing": {"attributes": {"TRANSLATION": 1}}})",
       R"("extensionsRequired": ["EXT_mesh_gpu_instancing"])"},
      {R"("extras": 1)", R"("extensions": {"KHR_lights_punctual": {"lights": [{"type": "point", "spot": null}]}})"},
      {R"("extras": 1)", R"("textures": [{"source": 7}])"}};
  for (const auto& [of_node, of_file] : kForms) {
    for (const bool binary : {false, true}) {
      const Scene scene = clean_gltf(with(of_node, of_file, binary));
      expect_place(scene, "ball", 12, {0.5, 1, 1.5});
    }
  }
}

TEST(GltfDamage, WhatMovesNodesIsStillRefusedWhereItIsDamaged) {
  const std::string instances = R"("extensions": {"EXT_mesh_gpu_instancing": {"attributes": {"TRANSLATION": 1}}})";
  EXPECT_THAT(gltf_error(with(instances + R"(, "children": [5])", "", false)), HasSubstr("there is no such node"));
  EXPECT_THAT(gltf_error(with(instances + R"(, "skin": 3)", "", false)), HasSubstr("an index leads nowhere"));
}

TEST(GltfDamage, BracketsDeepInsideEachOtherAreRefusedBeforeTheyTakeTime) {
  const auto nested = [](std::size_t depth) {
    return GltfFile().node("").add("\"extras\":\n" + std::string(depth, '[') + std::string(depth, ']')).text();
  };
  EXPECT_EQ(gltf_error(nested(kMaxJsonDepth - 1)), "no error");
  EXPECT_EQ(gltf_error(nested(40000)),
            "scene.gltf:2: more than 256 brackets inside each other in the JSON text; is this a glTF file? Export it "
            "again");
  EXPECT_EQ(gltf_error(GltfFile().node(R"("name": ")" + std::string(9999, '[') + R"(\"]{")").text()), "no error");
}

TEST(GltfDamage, HierarchiesThatAreNoTreeAreNamed) {
  const auto error = [](GltfFile& file) { return gltf_error(file.text()); };
  EXPECT_THAT(error(GltfFile().node(R"("children": [1])").node(R"("children": [0])")),
              HasSubstr("node 0 is its own ancestor: the hierarchy has a cycle"));
  EXPECT_THAT(error(GltfFile().node("").node(R"("children": [1])")), HasSubstr("node 1 is its own ancestor"));
  EXPECT_THAT(error(GltfFile().node(R"("children": [2])").node(R"("children": [2])").node("")),
              HasSubstr("node 2 is a child of node 0 and of node 1, but a node has one parent"));
  EXPECT_THAT(error(GltfFile().node(R"("children": [7])")),
              HasSubstr("node 0 has the child 7, and there is no such node"));
  EXPECT_THAT(error(GltfFile().node(R"("children": [1])").node("").add(R"("scenes": [{"nodes": [1]}])")),
              HasSubstr("a scene lists node 1 at the top, but it is a child of node 0"));
  EXPECT_THAT(error(GltfFile().node("").add(R"("scenes": [{"nodes": [3]}])")), HasSubstr("a scene lists the node 3"));
}

TEST(GltfDamage, ThousandsOfNodesInsideEachOtherAreRefused) {
  GltfFile file;
  for (int i = 1; i < 2002; ++i) file.node(R"("children": [)" + std::to_string(i) + "]");
  EXPECT_THAT(gltf_error(file.node("").text()), HasSubstr("more than 2000 nodes inside each other"));
}

TEST(GltfDamage, NumbersOfNodesMustBeFinite) {
  EXPECT_THAT(gltf_error(GltfFile().node(R"("translation": [1e999, 0, 0])").text()),
              HasSubstr("this cannot be read into a scene"));
  EXPECT_THAT(gltf_error(GltfFile().node(R"("rotation": [0, 0, 0, 0])").text()), HasSubstr("the rotation of node 0"));
  EXPECT_THAT(gltf_error(GltfFile().node(R"("matrix": [1e999, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1])").text()),
              HasSubstr("the matrix of node 0 is not finite"));
}

TEST(GltfDamage, CompressedAnimationIsNamed) {
  std::string text = moving(R"({"byteLength": 32})").text();
  const std::string view = R"("byteLength": 8)";
  text.replace(text.find(view), view.size(),
               view + R"(, "extensions": {"EXT_meshopt_compression": {"buffer": 0, "byteOffset": 0, "byteLength": 8,
                        "byteStride": 4, "count": 2, "mode": "ATTRIBUTES"}})");
  EXPECT_THAT(gltf_error(text), HasSubstr("is compressed by EXT_meshopt_compression, which is not read"));
}

TEST(GltfDamage, KeysThatManyChannelsShareAreCounted) {
  GltfFile file;
  const std::size_t times = file.scalars(std::vector<float>(20000, 0.0f));
  std::vector<float> places(60000, 1.0f);
  const std::size_t shared = file.triples(places);
  for (int i = 0; i < 1500; ++i) file.node("").channel(i, "translation", times, shared);
  EXPECT_THAT(gltf_error(file.text()), HasSubstr("many channels share one set of keys"));
}

// Reads what it can of any bytes: it must end in a scene or in a FormatError.
void must_end(const std::string& bytes) {
  try {
    const Scene scene = read_gltf(bytes, "damaged");
    for (const NodeId node : scene.nodes.all()) {
      if (scene.nodes.is_transform(node)) scene.evaluation.world_matrix(node, 7.25);
    }
  } catch (const FormatError&) {
    // The one way to refuse a file.
  }
}

std::string example(const std::string& name) {
  std::ifstream in(std::string(VANTORELIX_SOURCE_DIR) + "/examples/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(GltfDamage, AnyByteOfAFileMayBeAnother) {
  for (const std::string& sound : {example("crane.gltf"), moving().binary()}) {
    ASSERT_GT(sound.size(), 100u);
    for (std::size_t i = 0; i < sound.size(); ++i) {
      for (const char flip : {'\x03', '\x80'}) {
        std::string damaged = sound;
        damaged[i] = static_cast<char>(damaged[i] ^ flip);
        must_end(damaged);
      }
    }
  }
}

TEST(GltfDamage, AFileMayEndAnywhere) {
  for (const std::string& sound : {example("crane.gltf"), moving().binary()}) {
    ASSERT_GT(sound.size(), 100u);
    for (std::size_t i = 0; i < sound.size(); ++i) must_end(sound.substr(0, i));
  }
}

}  // namespace
}  // namespace vantorelix::standalone
