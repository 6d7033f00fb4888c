// What is written for Maya, read by our own reader.
#include <bit>
#include <random>

#include "standalone/formats/maya/maya_test_scene.h"
#include "standalone/formats/writer.h"

namespace vantorelix::standalone {
namespace {

constexpr Tangent kSorts[] = {Tangent::global,        Tangent::fixed,   Tangent::linear,    Tangent::flat,
                              Tangent::step,          Tangent::slow,    Tangent::fast,      Tangent::spline,
                              Tangent::clamped,       Tangent::plateau, Tangent::step_next, Tangent::automatic,
                              Tangent::automatic_ease};
constexpr Infinity kEnds[] = {Infinity::constant, Infinity::linear, Infinity::cycle, Infinity::cycle_offset,
                              Infinity::oscillate};

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  double number(double size) { return std::uniform_real_distribution<double>(-size, size)(engine_); }
  std::size_t below(std::size_t n) { return engine_() % n; }

 private:
  std::mt19937 engine_;
};

// A ball under a group, with curves of anything on some of its channels.
Scene some_scene(unsigned seed, const std::string& unit) {
  Random random(seed);
  Scene scene;
  scene.settings.set_linear_unit(unit);
  scene.settings.set_frames_per_second(seed % 2 == 0 ? 30.0 : 120.5);
  const NodeId group = scene.nodes.create("transform", "group");
  const NodeId ball = scene.nodes.create("joint", "ball", group);
  for (const Channel c : {Channel::translateX, Channel::rotateY, Channel::scaleZ, Channel::jointOrientX}) {
    std::vector<Key> keys;
    for (std::size_t i = 0, count = 1 + random.below(20); i < count; ++i)
      keys.push_back({random.number(100.0), random.number(9.0), kSorts[random.below(std::size(kSorts))],
                      kSorts[random.below(std::size(kSorts))], std::abs(random.number(1.0)), random.number(5.0),
                      std::abs(random.number(1.0)), random.number(5.0)});
    const NodeId curve = scene.curves.set_key(ball, c, 1.0, 0.0);
    scene.curves.assign(curve, std::move(keys), random.below(2) == 0, kEnds[random.below(5)], kEnds[random.below(5)]);
  }
  return scene;
}

std::vector<NodeId> everything(const Scene& scene) {
  std::vector<NodeId> found;
  for (const NodeId node : scene.nodes.all())
    if (scene.nodes.is_transform(node)) found.push_back(node);
  return found;
}

void expect_same_bits(double have, double want, const std::string& what) {
  EXPECT_EQ(std::bit_cast<std::uint64_t>(have), std::bit_cast<std::uint64_t>(want))
      << what << ' ' << have << ' ' << want;
}

// Where the tangents' lengths may be rounded they are not compared to the last bit.
void expect_same_curve(const AnimCurve& have, const AnimCurve& want, bool rounded) {
  EXPECT_EQ(have.weighted(), want.weighted());
  EXPECT_EQ(have.pre_infinity(), want.pre_infinity());
  EXPECT_EQ(have.post_infinity(), want.post_infinity());
  ASSERT_EQ(have.keys().size(), want.keys().size());
  for (std::size_t i = 0; i < want.keys().size(); ++i) {
    const Key &a = have.keys()[i], &b = want.keys()[i];
    expect_same_bits(a.time, b.time, "time");
    expect_same_bits(a.value, b.value, "value");
    EXPECT_EQ(a.in, b.in);
    EXPECT_EQ(a.out, b.out);
    expect_same_bits(a.in_x, b.in_x, "in x");
    expect_same_bits(a.out_x, b.out_x, "out x");
    if (rounded) {
      EXPECT_DOUBLE_EQ(a.in_y, b.in_y);
      EXPECT_DOUBLE_EQ(a.out_y, b.out_y);
    } else {
      expect_same_bits(a.in_y, b.in_y, "in y");
      expect_same_bits(a.out_y, b.out_y, "out y");
    }
  }
}

const std::string kObjects = "createNode transform -n \"group\";createNode joint -n \"ball\" -p \"group\";";

TEST(CurveFile, IsReadBackOntoTheSameNamesToTheLastBit) {
  std::size_t rounded = 0;
  for (unsigned seed = 0; seed < 60; ++seed) {
    const Scene before = some_scene(seed, seed % 3 == 0 ? "cm" : seed % 3 == 1 ? "m" : "in");
    const Written written = write_maya_curves(before, everything(before));
    rounded += written.lost.size();
    EXPECT_TRUE(seed % 3 != 0 || written.lost.empty()) << seed;
    const Scene after = clean(kObjects + written.bytes);
    EXPECT_EQ(after.settings.frames_per_second(), before.settings.frames_per_second());
    EXPECT_EQ(after.settings.linear_unit(), before.settings.linear_unit());
    const NodeId ball = before.names.require("ball"), again = after.names.require("ball");
    for (const Channel c : {Channel::translateX, Channel::rotateY, Channel::scaleZ, Channel::jointOrientX}) {
      const NodeId old = before.curves.driving_curve(ball, c), fresh = after.curves.driving_curve(again, c);
      ASSERT_NE(fresh, kNoNode);
      EXPECT_EQ(after.names.unique_name(fresh), before.names.unique_name(old));
      expect_same_curve(after.curves.at(fresh), before.curves.at(old), !written.lost.empty());
    }
  }
  EXPECT_GT(rounded, 0u);  // inches
}

TEST(CurveFile, SaysWhatItDoesNotHold) {
  Scene scene;
  scene.settings.set_linear_unit("unknown");
  const NodeId ball = scene.nodes.create("transform", "ball");
  scene.curves.set_key(ball, Channel::translateX, 1.0, 2.0);
  scene.attributes.lock(ball, "translateX", true);
  scene.connections.connect(scene.nodes.create("expression", "bob"), "output[0]", ball, "translateY");
  const Written written = write_maya_curves(scene, {ball});
  EXPECT_THAT(written.lost, testing::ElementsAre(testing::HasSubstr("ball.translateX is locked"),
                                                 testing::HasSubstr("ball.translateY is driven by the expression bob"),
                                                 testing::HasSubstr("unit of length")));
  EXPECT_THAT(written.bytes, testing::Not(testing::HasSubstr("bob")));
}

TEST(CurveFile, HoldsTheCurvesOfTheObjectsThatAreNamedAlone) {
  const Scene scene = some_scene(1, "cm");
  EXPECT_THAT(write_maya_curves(scene, {scene.names.require("group")}).bytes,
              testing::Not(testing::HasSubstr("createNode")));
}

TEST(CurveScript, HasEachKeyAsItIs) {
  Scene scene;
  scene.settings.set_frames_per_second(25.0);
  const NodeId ball = scene.nodes.create("transform", "ball");
  const NodeId curve = scene.curves.set_key(ball, Channel::rotateX, 1.0, 0.1);
  scene.curves.set_key(curve, Key{2.5, -0.0, Tangent::fixed, Tangent::step_next, 0.1, 0.3, 1.0, 0.0});
  scene.curves.set_infinity(curve, Infinity::linear, Infinity::cycle_offset);
  const Written written = write_maya_script(scene, {ball});
  EXPECT_THAT(written.lost, testing::IsEmpty());
  EXPECT_THAT(written.bytes, testing::HasSubstr("TIME_UNIT, LINEAR_UNIT = \"pal\", \"cm\"\n"));
  EXPECT_THAT(written.bytes, testing::HasSubstr("    (\"ball.rotateX\", False, \"linear\", \"cycleRelative\", [\n"
                                                "        (1.0, 0.1, \"auto\", \"auto\", 1.0, 0.0, 1.0, 0.0),\n"
                                                "        (2.5, -0.0, \"fixed\", \"stepnext\", 0.1, 0.3, 1.0, 0.0),\n"
                                                "    ]),\n"));
}

TEST(CurveScript, KeepsTangentsOfLengthsInCentimetres) {
  Scene scene;
  scene.settings.set_linear_unit("m");
  const NodeId ball = scene.nodes.create("transform", "ball");
  const NodeId curve = scene.curves.set_key(ball, Channel::translateX, 1.0, 2.0);
  scene.curves.set_key(curve, Key{1.0, 2.0, Tangent::fixed, Tangent::fixed, 0.5, 3.0, 0.5, 4.0});
  EXPECT_THAT(write_maya_script(scene, {ball}).bytes,
              testing::HasSubstr("(1.0, 2.0, \"fixed\", \"fixed\", 0.5, 300.0, 0.5, 400.0)"));
}

}  // namespace
}  // namespace vantorelix::standalone
