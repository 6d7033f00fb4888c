// The example scenes give the same bits in every build: debug and release, whatever the compiler.
//
// What could tell builds apart is shut out: contraction of a * b + c is off for every target, sums keep their order,
// sines and their like are our own (base/mathematics), and the library functions left (square root, fmod, rounding)
// have one right answer.
//
// So a changed hash means changed results. Renew a constant only when an independent check says that the new numbers
// are right (the reference positions of standalone/formats, a position worked out by hand), and say in the commit
// which.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>

#include "engine/commands/create.h"
#include "standalone/formats/reader.h"
#include "tests/contract/session.h"

namespace vantorelix::contract {
namespace {

// FNV-1a, 64 bits, over the bytes of the numbers, least significant byte first.
class Hash {
 public:
  void add(double number) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    for (int byte = 0; byte < 8; ++byte) {
      value_ ^= (bits >> (8 * byte)) & 0xff;
      value_ *= 0x100000001b3u;
    }
  }
  void add(const std::vector<Vector>& vectors) {
    add(static_cast<double>(vectors.size()));
    for (const Vector& v : vectors) {
      add(v.x);
      add(v.y);
      add(v.z);
    }
  }
  std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 0xcbf29ce484222325u;
};

// The engine must add nothing to what the scene's own, plain evaluation says.
void expect_positions_of_the_scene(Session& session, const std::string& viz, const Settings& settings) {
  const standalone::Scene& scene = session.scene();
  const standalone::NodeId source = scene.names.require(*settings.at("source").as_text());
  const Vectors points = session.vectors(viz, "points");
  for (std::size_t i = 0; i < points->size(); i += 7) {
    const double frame = scene.settings.playback_min() + static_cast<double>(i) * 0.25;
    ASSERT_EQ((*points)[i], scene.evaluation.world_matrix(source, frame).translation()) << viz << " at frame " << frame;
  }
}

// All five arrays of a trail for every animated object.
std::uint64_t hash_of(const std::string& example) {
  Session session(standalone::read_scene(std::string(VANTORELIX_SOURCE_DIR) + "/examples/" + example), 0.0);
  std::vector<standalone::NodeId> animated;
  for (const standalone::NodeId node : session.scene().nodes.all())
    if (session.scene().nodes.is_transform(node) && session.scene().evaluation.is_animated(node))
      animated.push_back(node);
  session.host().select(animated);
  session.recorder().set_recording(false);
  create_trail(4);
  EXPECT_EQ(_REGISTRY.size(), animated.size());
  EXPECT_FALSE(_PENDING) << "trails are exact at once where time stands still";
  Hash hash;
  for (const auto& [viz, settings] : _REGISTRY) {
    expect_positions_of_the_scene(session, viz, *settings);
    for (const char* attribute : {"points", "colors", "keyPoints", "keyColors", "keyTimes"})
      hash.add(*session.vectors(viz, attribute));
  }
  return hash.value();
}

struct Example {
  const char* file;
  std::uint64_t hash;

  friend void PrintTo(const Example& example, std::ostream* out) { *out << example.file; }
};

class Determinism : public testing::TestWithParam<Example> {};

TEST_P(Determinism, gives_the_example_its_committed_bits) {
  const auto [file, expected] = GetParam();
  const std::uint64_t hash = hash_of(file);
  EXPECT_EQ(hash, expected) << file << " hashes to 0x" << std::hex << hash;
  EXPECT_EQ(hash_of(file), hash) << "within one program";
}

INSTANTIATE_TEST_SUITE_P(Examples, Determinism,
                         testing::Values(Example{"bounce.ma", 0xfa6a36cf1f073b43u},
                                         Example{"arm.ma", 0xac15f0e3e0c9aa8fu},
                                         Example{"prop.ma", 0x9d8c99adfca64449u},
                                         Example{"walk.bvh", 0xb1bcdbdaf6f3d5b2u}),
                         [](const testing::TestParamInfo<Example>& param) {
                           std::string name = param.param.file;
                           name[name.find('.')] = '_';
                           return name;
                         });

}  // namespace
}  // namespace vantorelix::contract
