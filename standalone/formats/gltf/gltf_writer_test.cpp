// glTF files with the animation of an edited scene, read by our own reader.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "standalone/formats/gltf/gltf_test_file.h"
#include "standalone/formats/writer.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A file in a folder of its own, and the scene that it is.
class OpenFile {
 public:
  explicit OpenFile(const std::string& bytes, const std::string& name = "scene.glb")
      : file_(folder() / name), bytes_(bytes) {
    std::filesystem::create_directories(folder());
    replace(bytes);
    scene = read_scene(file_);
  }
  ~OpenFile() { std::filesystem::remove_all(folder()); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  void replace(const std::string& bytes) const { std::ofstream(file_, std::ios::binary) << bytes; }
  const std::string& bytes() const { return bytes_; }

  NodeId operator[](const std::string& name) const { return scene.names.require(name); }
  Written written() const {
    std::vector<NodeId> objects;
    for (const NodeId node : scene.nodes.all())
      if (scene.nodes.is_transform(node)) objects.push_back(node);
    return write_gltf(scene, objects, file_);
  }
  std::string refusal() const {
    try {
      written();
    } catch (const CannotWrite& error) {
      return error.what();
    }
    return "written";
  }

  Scene scene;

 private:
  static std::filesystem::path folder() {
    return std::filesystem::temp_directory_path() /
           ("vantorelix-gltf-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
  }

  std::filesystem::path file_;
  std::string bytes_;
};

// "ball" moves by lines, "box" by a spline and turns by quaternions, "gate" by steps; "still" does not. Ball and post
// share a sampler's keys, not the sampler.
GltfFile some_file() {
  GltfFile file;
  file.node(R"("name": "ball")").node(R"("name": "box", "translation": [1, 2, 3])").node(R"("name": "gate")");
  file.node(R"("name": "still", "scale": [1, 2, 1])").node(R"("name": "post")");
  file.clip("walk");
  const std::size_t times = file.scalars({0.0f, 0.5f, 1.1f});
  const std::size_t line = file.triples({0, 0, 0, 1.7f, 2, 3, -4, 5.3f, 6});
  file.channel(0, "translation", times, line);
  const std::size_t spline = file.triples({0, 0, 0, 1, 2, 3, 0.3f, 9, 0,  //
                                           2, 0, 1, 4, 4, 4, 2,    0, 1,  //
                                           0, 5, 0, 7, 1, 3, 0,    0, 0});
  file.channel(1, "translation", times, spline, "CUBICSPLINE");
  file.channel(1, "rotation", times, file.quadruples({0, 0, 0, 1, 0.6f, 0, 0, 0.8f, 0, 1, 0, 0}));
  file.channel(2, "scale", times, file.triples({1, 1, 1, 2, 3, 1, 1, 1, 1}), "STEP");
  file.channel(4, "translation", times, line);
  file.add(R"("extras": {"é \" } ]": [1.50, "\\", {"uri": null}], "accessors": 7}, "images": [{"uri": "a.png"}])");
  return file;
}

const std::string kImage = "the file still refers to 'a.png', which has to lie where it lies for the first one";

Scene reread(const Written& written) { return clean_gltf(written.bytes); }

// Every channel of every node, in between keys too.
void expect_near(const Scene& have, const Scene& want, double near = 2e-6) {
  for (const NodeId node : want.nodes.all()) {
    if (!want.nodes.is_transform(node)) continue;
    const NodeId again = have.names.require(want.names.unique_name(node));
    for (Channel c = Channel::translateX; c <= Channel::scaleZ; c = component(c, 1))
      for (double frame = 0.1; frame < 40.0; frame += 0.37) {
        const double wanted = want.evaluation.channel_at(node, c, frame);
        EXPECT_NEAR(have.evaluation.channel_at(again, c, frame), wanted, near * std::max(1.0, std::abs(wanted)))
            << want.names.unique_name(node) << '.' << static_cast<int>(c) << " at " << frame;
      }
  }
}

Key linear(double time, double value) { return {time, value, Tangent::linear, Tangent::linear}; }

TEST(GltfFileWritten, IsTheFileThatWasOpenedWhenNobodyEdits) {
  const OpenFile open(some_file().binary());
  const Written same = open.written();
  EXPECT_EQ(same.bytes, open.bytes());
  EXPECT_THAT(same.lost, ElementsAre(kImage));
}

TEST(GltfFileWritten, KeepsTheBytesOfWhatIsNotEdited) {
  OpenFile open(some_file().binary());
  const NodeId curve = open.scene.curves.driving_curve(open["ball"], Channel::translateX);
  open.scene.curves.set_key(curve, linear(12.0, 1.25));
  const std::string bytes = open.written().bytes;
  for (const char* text : {R"("extras": {"é \" } ]": [1.50, "\\", {"uri": null}], "accessors": 7})",
                           R"("name": "still", "scale": [1, 2, 1])", R"("interpolation": "CUBICSPLINE"})"})
    EXPECT_THAT(bytes, HasSubstr(text));
  const std::string binary = open.bytes().substr(open.bytes().find(std::string("BIN\0", 4)) + 4);
  EXPECT_THAT(bytes, HasSubstr(binary));
}

TEST(GltfFileWritten, HasEditedLinesAsLines) {
  OpenFile open(some_file().binary());
  const NodeId curve = open.scene.curves.driving_curve(open["ball"], Channel::translateX);
  open.scene.curves.set_key(curve, linear(12.0, 1.25));
  open.scene.curves.set_key(curve, linear(20.0, -2.5));
  open.scene.curves.set_key(curve, linear(0.0, 0.5));
  const Written written = open.written();
  EXPECT_THAT(written.lost, testing::Contains("ball translation is rounded to glTF's 32 bits"));
  const Scene again = reread(written);
  expect_near(again, open.scene);
  const NodeId fresh = again.curves.driving_curve(again.names.require("ball"), Channel::translateY);
  EXPECT_EQ(again.curves.at(fresh).keys().size(), 4u);
  EXPECT_EQ(again.curves.at(fresh).keys()[1].out, Tangent::linear);
}

TEST(GltfFileWritten, HasUntouchedKeysOfAnEditedSplineToTheLastBit) {
  OpenFile open(some_file().binary());
  const NodeId curve = open.scene.curves.driving_curve(open["box"], Channel::translateX);
  Key key = open.scene.curves.at(curve).keys()[1];
  key.value = 2.0;
  open.scene.curves.set_key(curve, key);
  const Written written = open.written();
  EXPECT_THAT(written.lost, ElementsAre(kImage));  // nothing is rounded
  const Scene again = reread(written);
  for (const Channel c : {Channel::translateX, Channel::translateY, Channel::translateZ}) {
    const auto& have = again.curves.at(again.curves.driving_curve(again.names.require("box"), c)).keys();
    const auto& want = open.scene.curves.at(open.scene.curves.driving_curve(open["box"], c)).keys();
    ASSERT_EQ(have.size(), want.size());
    for (std::size_t i = 0; i < want.size(); ++i) {
      EXPECT_EQ(have[i].time, want[i].time);
      EXPECT_EQ(have[i].value, want[i].value);
      EXPECT_EQ(have[i].out_y, i + 1 < want.size() ? want[i].out_y : have[i].out_y);
      EXPECT_EQ(have[i].in_y, i > 0 ? want[i].in_y : have[i].in_y);
    }
  }
  expect_near(again, open.scene);
}

TEST(GltfFileWritten, HasStepsBesideSplines) {
  OpenFile open(some_file().binary());
  open.scene.curves.set_key(open["gate"], Channel::scaleX, 5.0, 7.0);
  open.scene.curves.set_key(open["gate"], Channel::scaleX, 9.0, 1.0);
  const NodeId curve = open.scene.curves.driving_curve(open["gate"], Channel::scaleY);
  open.scene.curves.set_key(curve, {6.0, 2.5, Tangent::linear, Tangent::step_next});
  expect_near(reread(open.written()), open.scene);
}

TEST(GltfFileWritten, HasAnyCurvesThatAreNotWeighted) {
  std::mt19937 random(11);
  const auto any = [&] { return std::uniform_real_distribution<double>(-4.0, 4.0)(random); };
  constexpr Tangent kSorts[] = {Tangent::automatic, Tangent::spline, Tangent::linear,  Tangent::flat, Tangent::fixed,
                                Tangent::clamped,   Tangent::slow,   Tangent::plateau, Tangent::step};
  for (int turn = 0; turn < 30; ++turn) {
    OpenFile open(some_file().binary());
    for (const char* name : {"ball", "box", "still", "post"})
      for (int edit = 0; edit < 6; ++edit) {
        const Channel c = component(Channel::translateX, random() % 3);
        const NodeId curve = open.scene.curves.set_key(open[name], c, static_cast<double>(random() % 30), any());
        Key key = open.scene.curves.at(curve).keys()[random() % open.scene.curves.at(curve).keys().size()];
        key.in = kSorts[random() % std::size(kSorts)];
        key.out = kSorts[random() % std::size(kSorts)];
        key.in_y = any();
        key.out_y = any();
        open.scene.curves.set_key(curve, key);
      }
    expect_near(reread(open.written()), open.scene, 1e-4);
  }
}

TEST(GltfFileWritten, TellsOfCurvesThatGltfDoesNotHave) {
  OpenFile open(some_file().binary());
  auto& curves = open.scene.curves;
  const NodeId weighted = curves.driving_curve(open["box"], Channel::translateX);
  curves.assign(weighted, curves.at(weighted).keys(), true, Infinity::constant, Infinity::cycle);
  curves.set_key(open["ball"], Channel::translateX, -3.0, 8.0);
  curves.set_key(open["still"], Channel::rotateX, 3.0, 1.0);
  curves.set_key(open["still"], Channel::rotateX, 9.0, 2.0);
  curves.set_key(open["still"], Channel::shearXY, 9.0, 2.0);
  const Written written = open.written();
  EXPECT_THAT(written.lost,
              ElementsAre("ball translation has keys before frame 0, where glTF has no time; from there on "
                          "it is kept",
                          "box translation is rounded to glTF's 32 bits",
                          "box translation goes on before or after its keys, where glTF holds",
                          HasSubstr("box translation goes straight from frame to frame"),
                          "still rotation is rounded to glTF's 32 bits",
                          HasSubstr("still rotation goes straight from frame to frame"),
                          "still.shearXY is left out, as glTF has no such channel", kImage));
  const Scene again = reread(written);
  for (const char* name : {"ball", "box", "still"})
    for (double frame = 0.0; frame < 26.0; ++frame) {
      const Affine have = again.evaluation.local_matrix(again.names.require(name), frame);
      const Affine want = open.scene.evaluation.local_matrix(open[name], frame);
      for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(have.m[3][k], want.m[3][k], 1e-5) << name << " at " << frame;
      if (name != std::string("still")) continue;
      EXPECT_NEAR(have.m[1][2], want.m[1][2], 1e-5) << frame;
    }
}

TEST(GltfFileWritten, AnimatesAFileThatHadNoClip) {
  GltfFile file;
  file.node(R"("name": "ball")");
  for (const bool binary : {true, false}) {
    OpenFile open(binary ? file.binary() : R"({"asset":{"version":"2.0"},"nodes":[{"name":"ball"}]})",
                  binary ? "a.glb" : "a.gltf");
    open.scene.curves.set_key(open["ball"], Channel::translateZ, 3.0, 1.0);
    open.scene.curves.set_key(open["ball"], Channel::translateZ, 19.0, 4.0);
    expect_near(reread(open.written()), open.scene);
  }
}

TEST(GltfFileWritten, TakesTheBufferOfATextIn) {
  OpenFile open(some_file().text(), "scene.gltf");
  const Scene same = reread(open.written());
  expect_near(same, open.scene, 0.0);
  open.scene.curves.set_key(open["post"], Channel::translateY, 3.0, 1.0);
  const Written written = open.written();
  EXPECT_THAT(written.bytes, testing::Not(HasSubstr("base64")));
  expect_near(reread(written), open.scene);
}

TEST(GltfFileWritten, ChangesNoOtherChannelOfASharedSampler) {
  // The last channel has the sampler of the first one.
  std::string shared = some_file().text();
  shared.replace(shared.find(R"({"sampler": 4,)"), 14, R"({"sampler": 0,)");
  OpenFile open(shared, "scene.gltf");
  open.scene.curves.set_key(open["ball"], Channel::translateY, 3.0, 1.0);
  expect_near(reread(open.written()), open.scene);
}

TEST(GltfFileWritten, HoldsAnyNames) {
  GltfFile file;
  file.node(R"("name": "<b>\" ] } \\ \n \u0000 {", "children": [1])").node(R"("name": "'; -- \u00e9")");
  file.channel(1, "translation", file.scalars({0.0f, 1.0f}), file.triples({0, 0, 0, 1, 1, 1}));
  OpenFile open(file.binary());
  const NodeId node = open.scene.nodes.children(open.scene.nodes.children(kWorld).front()).front();
  open.scene.curves.set_key(node, Channel::translateX, 12.0, 3.0);
  expect_near(reread(open.written()), open.scene);
}

TEST(GltfFileWritten, KeepsChannelsThatMoveNothing) {
  const std::string nothing = R"({"sampler": 0, "extras": "moves nothing"}, )";
  std::string text = some_file().text();
  text.insert(text.find(R"({"sampler": 0,)"), nothing);
  OpenFile open(text, "scene.gltf");
  open.scene.curves.set_key(open["box"], Channel::translateY, 3.0, 1.0);
  const Written written = open.written();
  EXPECT_THAT(written.bytes, HasSubstr(nothing));
  expect_near(read_gltf(written.bytes, "again"), open.scene);
}

TEST(GltfFileWritten, IsRefusedWhereNamesInItCanBeReadInTwoWays) {
  for (const std::string more : {R"("\u0061ccessors": [])", R"("anim\u0061tions": [{}])"}) {
    GltfFile file;
    file.node(R"("name": "ball")").add(more);
    OpenFile open(file.text(), "scene.gltf");
    open.scene.curves.set_key(open["ball"], Channel::translateX, 3.0, 1.0);
    EXPECT_THAT(open.refusal(), HasSubstr("export it again"));
  }
}

TEST(GltfFileWritten, IsRefusedForOtherScenesAndOtherFiles) {
  EXPECT_THAT(
      [] {
        Scene scene;
        write_gltf(scene, {scene.nodes.create("transform", "ball")}, "scene.glb");
      },
      testing::ThrowsMessage<CannotWrite>("only a scene that was opened from a glTF file can be written as one"));
  const OpenFile open(some_file().binary());
  GltfFile other;
  other.node(R"("name": "bowl")")
      .clip("walk")
      .channel(0, "translation", other.scalars({0.0f}), other.triples({0, 0, 0}));
  open.replace(other.binary());
  EXPECT_THAT(open.refusal(), HasSubstr("is another file than the one that was opened; open it again"));
  open.replace("damaged");
  EXPECT_THROW(open.written(), FormatError);
}

TEST(GltfFileWritten, IsRefusedForNumbersBeyond32Bits) {
  OpenFile open(some_file().binary());
  open.scene.curves.set_key(open["ball"], Channel::translateX, 3.0, 1e300);
  EXPECT_THAT(open.refusal(), HasSubstr("larger than glTF's 32 bits can hold"));
}

}  // namespace
}  // namespace vantorelix::standalone
