// Both ways to a world matrix against a straightforward product of 4 x 4 matrices, and against each other.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "standalone/scene/evaluation/evaluator.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {
namespace {

using Matrix = std::array<std::array<double, 4>, 4>;

Matrix identity() {
  Matrix m{};
  for (std::size_t i = 0; i < 4; ++i) m[i][i] = 1;
  return m;
}

Matrix operator*(const Matrix& a, const Matrix& b) {
  Matrix r{};
  for (std::size_t i = 0; i < 4; ++i)
    for (std::size_t j = 0; j < 4; ++j)
      for (std::size_t k = 0; k < 4; ++k) r[i][j] += a[i][k] * b[k][j];
  return r;
}

class Formula {
 public:
  Formula(const Scene& scene, NodeId node) : scene_(scene), node_(node) {}

  Matrix local() const {
    Matrix m = moved(Channel::scalePivotX, -1) * scaled(Channel::scaleX, false) * shear() *
               moved(Channel::scalePivotX, 1) * moved(Channel::scalePivotTranslateX, 1) *
               moved(Channel::rotatePivotX, -1) * turned(Channel::rotateAxisX, 0) *
               turned(Channel::rotateX, static_cast<int>(at(Channel::rotateOrder)));
    if (scene_.nodes.type(node_) == "joint") {
      m = m * turned(Channel::jointOrientX, 0);
      if (at(Channel::segmentScaleCompensate) != 0) m = m * scaled(Channel::inverseScaleX, true);
    }
    return m * moved(Channel::rotatePivotX, 1) * moved(Channel::rotatePivotTranslateX, 1) *
           moved(Channel::translateX, 1);
  }

 private:
  double at(Channel c, int k = 0) const {
    return scene_.attributes.channel(node_, static_cast<Channel>(static_cast<int>(c) + k));
  }
  Matrix moved(Channel c, double sign) const {
    Matrix m = identity();
    for (int k = 0; k < 3; ++k) m[3][static_cast<std::size_t>(k)] = sign * at(c, k);
    return m;
  }
  Matrix scaled(Channel c, bool inverse) const {
    Matrix m = identity();
    for (int k = 0; k < 3; ++k) {
      const auto i = static_cast<std::size_t>(k);
      m[i][i] = inverse ? 1 / at(c, k) : at(c, k);
    }
    return m;
  }
  Matrix shear() const {
    Matrix m = identity();
    m[1][0] = at(Channel::shearXY);
    m[2][0] = at(Channel::shearXZ);
    m[2][1] = at(Channel::shearYZ);
    return m;
  }
  Matrix turned(Channel c, int order) const {
    static constexpr int kOrders[6][3] = {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}};
    Matrix m = identity();
    for (const int axis : kOrders[order]) {
      const auto a = static_cast<std::size_t>((axis + 1) % 3), b = static_cast<std::size_t>((axis + 2) % 3);
      Matrix r = identity();
      r[a][a] = r[b][b] = std::cos(at(c, axis));
      r[a][b] = std::sin(at(c, axis));
      r[b][a] = -r[a][b];
      m = m * r;
    }
    return m;
  }

  const Scene& scene_;
  NodeId node_;
};

class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}
  bool chance(double p) { return std::uniform_real_distribution<double>(0, 1)(engine_) < p; }
  double between(double a, double b) { return std::uniform_real_distribution<double>(a, b)(engine_); }
  std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(engine_); }

 private:
  std::mt19937 engine_;
};

double some_value(Dice& dice, Channel c) {
  const bool scale =
      (c >= Channel::scaleX && c <= Channel::scaleZ) || (c >= Channel::inverseScaleX && c <= Channel::inverseScaleZ);
  if (scale) return dice.between(0.5, 2);
  if (c == Channel::rotateOrder) return static_cast<double>(dice.below(6));
  if (c >= Channel::inheritsTransform) return dice.chance(0.8) ? 1 : 0;
  return dice.between(-3, 3);
}

void set_some(Scene& s, Dice& dice, NodeId node, double share) {
  for (int c = 0; c < static_cast<int>(Channel::count); ++c)
    if (dice.chance(share))
      s.attributes.set_channel(node, static_cast<Channel>(c), some_value(dice, static_cast<Channel>(c)));
}

TEST(WorldMatrix, IsTheProductOfTheFormula) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    Dice dice(seed);
    Scene s;
    NodeId node = kWorld;
    Matrix wanted = identity();
    for (int depth = 0; depth < 4; ++depth) {
      node = s.nodes.create(dice.chance(0.5) ? "joint" : "transform", "n", node);
      set_some(s, dice, node, seed % 4 == 0 ? 1.0 : 0.3);
      std::array<double, 16> offset = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
      if (dice.chance(0.3))
        for (std::size_t i = 0; i < 4; ++i)
          for (std::size_t j = 0; j < 3; ++j) offset[4 * i + j] = dice.between(-1, 1);
      s.attributes.set_offset_parent_matrix(node, offset);
      Matrix opm;
      for (std::size_t i = 0; i < 16; ++i) opm[i / 4][i % 4] = offset[i];
      const bool inherits = s.attributes.channel(node, Channel::inheritsTransform) != 0;
      wanted = Formula(s, node).local() * opm * (inherits ? wanted : identity());
    }
    const Affine got = s.evaluation.world_matrix(node, 1);
    double size = 1;
    for (const auto& row : wanted)
      for (const double v : row) size = std::max(size, std::abs(v));
    for (std::size_t i = 0; i < 4; ++i)
      for (std::size_t j = 0; j < 3; ++j) EXPECT_NEAR(got.m[i][j], wanted[i][j], 1e-12 * size) << seed;
  }
}

// A scene of everything that evaluation follows.
class RandomScene {
 public:
  explicit RandomScene(unsigned seed) : dice(seed) {
    for (std::size_t i = 0; i < 24; ++i) {
      const NodeId parent = nodes.empty() || dice.chance(0.1) ? kWorld : nodes[dice.below(nodes.size())];
      nodes.push_back(scene.nodes.create(dice.chance(0.4) ? "joint" : "transform", "n", parent));
      set_some(scene, dice, nodes.back(), dice.chance(0.3) ? 0.3 : 0.05);
      if (dice.chance(0.15)) set_offset(nodes.back());
    }
    for (const NodeId node : nodes) drive(node);
  }

  void edit() {
    const NodeId node = nodes[dice.below(nodes.size())];
    switch (dice.below(6)) {
      case 0:
        return set_some(scene, dice, node, 0.1);
      case 1:
        return drive(node);
      case 2:
        return set_offset(node);
      case 3: {
        try {
          scene.nodes.set_parent(node, nodes[dice.below(nodes.size())]);
        } catch (const std::exception&) {  // under itself
        }
        return;
      }
      case 4: {
        const NodeId curve = scene.curves.driving_curve(node, Channel::rotateY);
        if (curve != kNoNode) scene.curves.set_key(curve, dice.between(0, 20), dice.between(-2, 2));
        return;
      }
      default:
        scene.connections.disconnect(node, "rotateX");
    }
  }

  Scene scene;
  Dice dice;
  std::vector<NodeId> nodes;

 private:
  NodeId curve(double from, double to) {
    const NodeId c = scene.curves.create(CurveKind::unitless, "c");
    const double late = dice.chance(0.3) ? dice.between(0, 1) : 0.0;  // off the frames
    for (int k = 0; k < 4; ++k) scene.curves.set_key(c, 6.0 * k + late, dice.between(from, to));
    return c;
  }
  void set_offset(NodeId node) {
    if (dice.chance(0.5)) {
      const NodeId other = nodes[dice.below(nodes.size())];
      scene.connections.connect(other, dice.chance(0.6) ? "worldMatrix[0]" : "matrix", node, "offsetParentMatrix");
    } else {
      std::array<double, 16> m = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
      m[12] = dice.between(-2, 2);
      m[1] = dice.between(-1, 1);
      scene.attributes.set_offset_parent_matrix(node, m);
    }
  }
  void drive(NodeId node) {
    static const char* const kNames[] = {"tx",  "ty",  "tz",  "rx",  "ry",   "rz",  "sx",   "sy",  "sz", "shxy", "shyz",
                                         "rax", "ray", "jox", "rpx", "rpty", "spz", "sptx", "isx", "ro", "it",   "ssc"};
    const double share = dice.chance(0.3) ? 0.3 : 0.08;
    for (const char* const name : kNames) {
      if (!dice.chance(share) || !scene.attributes.has(node, name)) continue;
      const bool flag = std::string_view(name) == "it" || std::string_view(name) == "ssc";
      scene.connections.connect(curve(flag ? -1 : 0.3, flag ? 1 : 2), "o", node, name);
    }
    if (dice.chance(0.2)) blend(node);
    if (dice.chance(0.2)) scene.connections.connect(nodes[dice.below(nodes.size())], "scale", node, "inverseScale");
    if (dice.chance(0.1)) scene.connections.connect(nodes[dice.below(nodes.size())], "translate", node, "translate");
    if (dice.chance(0.1)) scene.connections.connect(scene.nodes.create("expression", "e"), "out", node, "ty");
  }
  void blend(NodeId node) {
    const NodeId b = scene.nodes.create("pairBlend", "b");
    scene.connections.connect(curve(-1, 1), "o", b, "irx1");
    scene.connections.connect(curve(-1, 1), "o", b, "irz2");
    scene.connections.connect(curve(0, 1), "o", b, "w");
    scene.attributes.add(b, "ri", dice.chance(0.5) ? 1 : 0);
    scene.connections.connect(node, "rotateOrder", b, "ro");
    scene.connections.connect(b, "outRotate", node, "rotate");
  }
};

std::vector<double> sorted(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values;
}

bool same_bits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

TEST(Evaluator, GivesTheBitsOfTheAttributeQueryThroughAllEdits) {
  std::size_t moving = 0;
  for (unsigned seed = 0; seed < 60; ++seed) {
    RandomScene r(seed);
    std::vector<std::unique_ptr<Evaluator>> evaluators;
    for (const NodeId node : r.nodes) evaluators.push_back(std::make_unique<Evaluator>(r.scene.evaluation, node));
    for (int round = 0; round < 6; ++round) {
      for (std::size_t i = 0; i < r.nodes.size(); ++i) {
        const std::size_t which = r.dice.chance(0.2) ? r.dice.below(r.nodes.size()) : i;
        const auto is_right = [&](double frame) {
          const Vector fast = evaluators[which]->translation(frame);
          const Vector plain = r.scene.evaluation.world_matrix(r.nodes[which], frame).translation();
          return same_bits(fast.x, plain.x) && same_bits(fast.y, plain.y) && same_bits(fast.z, plain.z);
        };
        const std::vector<double> frames = {0.0, 18.0, 9.0, 4.0, 4.5, 13.25, -3.0, 100.0};
        if (seed % 3 != 0) evaluators[which]->expect(frames);
        for (const double frame : frames)
          ASSERT_TRUE(is_right(frame)) << "seed " << seed << " round " << round << " node " << which << ' ' << frame;
        const std::vector<double> keys = sorted(r.scene.curves.key_times(r.nodes[which]));
        if (seed % 3 == 1) evaluators[which]->expect(keys);
        for (const double key : keys)
          ASSERT_TRUE(is_right(key)) << "seed " << seed << " round " << round << " node " << which << " key " << key;
        moving += r.scene.evaluation.is_animated(r.nodes[which]) ? 1 : 0;
      }
      r.edit();
    }
  }
  EXPECT_GT(moving, 3000u);  // else this says little
}

TEST(Evaluator, HugeAnglesAndInheritanceThatComesAndGoesAreAsTheAttributeQuerySays) {
  Scene s;
  std::vector<NodeId> nodes = {kWorld};
  for (const std::size_t parent : {0u, 1u, 1u, 3u, 4u}) {  // a chain, and a sibling of its second
    nodes.push_back(s.nodes.create("transform", "n", nodes[parent]));
    s.attributes.set_channel(nodes.back(), Channel::translateX, 1);
    s.curves.set_key(nodes.back(), Channel::rotateY, 0, 0);
    s.curves.set_key(nodes.back(), Channel::rotateY, 300, nodes.size() == 5 ? 1e6 : 10);
  }
  for (const auto& [frame, value] : {std::pair(0, 0), {100, 0}, {101, 1}, {300, 1}})
    s.curves.set_key(nodes[3], Channel::inheritsTransform, frame, value);
  for (std::size_t i = 1; i < nodes.size(); ++i) {
    Evaluator e(s.evaluation, nodes[i]);
    for (int frame = 0; frame < 300; ++frame) {
      if (frame % 50 == 0) {
        std::vector<double> coming(50);
        std::iota(coming.begin(), coming.end(), frame);
        e.expect(coming);
      }
      const Vector fast = e.translation(frame), plain = s.evaluation.world_matrix(nodes[i], frame).translation();
      ASSERT_TRUE(same_bits(fast.x, plain.x) && same_bits(fast.z, plain.z)) << i << " at " << frame;
    }
  }
}

TEST(Evaluator, NoticesEditsOfEveryKind) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), b = s.nodes.create("transform", "b", a);
  Evaluator e(s.evaluation, b);
  const auto x = [&] { return e.translation(5).x; };
  EXPECT_EQ(x(), 0);
  s.attributes.set_channel(b, Channel::translateX, 1);
  EXPECT_EQ(x(), 1);
  s.attributes.set_channel(a, Channel::scaleX, 3);
  EXPECT_EQ(x(), 3);
  const NodeId curve = s.curves.set_key(a, Channel::translateX, 5, 10);
  EXPECT_EQ(x(), 13);
  s.curves.set_key(curve, 5, 20);
  EXPECT_EQ(x(), 23);
  s.nodes.set_parent(b, kWorld);
  EXPECT_EQ(x(), 1);
  s.nodes.set_parent(b, a);
  s.nodes.remove(curve);
  EXPECT_EQ(x(), 3);
  s.nodes.remove(a);
  EXPECT_THROW(x(), std::exception);
}

TEST(Evaluator, AShapeIsWhereItsTransformIs) {
  Scene s;
  const NodeId a = s.nodes.create("transform", "a"), shape = s.nodes.create("camera", "c", a);
  s.curves.set_key(a, Channel::translateX, 1, 4);
  s.curves.set_key(a, Channel::translateX, 9, 5);
  EXPECT_EQ(Evaluator(s.evaluation, shape).translation(1).x, 4);
  EXPECT_EQ(s.evaluation.world_matrix(shape, 1), s.evaluation.world_matrix(a, 1));
  EXPECT_TRUE(s.evaluation.is_animated(shape));
}

TEST(Evaluator, ChainsLongerThanTheStackAreFollowed) {
  Scene s;
  NodeId node = kWorld;
  for (int i = 0; i < 100000; ++i) node = s.nodes.create("transform", "n", node);
  s.curves.set_key(s.nodes.children(kWorld)[0], Channel::translateX, 1, 2);
  s.curves.set_key(s.nodes.children(kWorld)[0], Channel::translateX, 3, 4);
  EXPECT_EQ(Evaluator(s.evaluation, node).translation(3).x, 4);
  EXPECT_EQ(s.evaluation.world_matrix(node, 3).translation().x, 4);
  EXPECT_TRUE(s.evaluation.is_animated(node));
  s.nodes.remove(s.nodes.children(kWorld)[0]);
  EXPECT_TRUE(s.nodes.all().empty());
}

TEST(Evaluator, AVanishingScaleHarmsNoMoreThanTheNumbers) {
  Scene s;
  const NodeId a = s.nodes.create("joint", "a"), b = s.nodes.create("joint", "b", a),
               c = s.nodes.create("joint", "c", b);
  s.curves.set_key(a, Channel::scaleX, 1, 1);
  s.curves.set_key(a, Channel::scaleX, 10, 0);
  s.connections.connect(a, "scale", b, "inverseScale");
  s.attributes.set_channel(c, Channel::translateX, 1);
  Evaluator e(s.evaluation, c);
  EXPECT_EQ(e.translation(1).x, 1);
  EXPECT_TRUE(std::isnan(e.translation(10).x));  // 1 / 0 * 0
  EXPECT_EQ(e.translation(1).x, 1);
}

TEST(Evaluator, MoreTimesThanAreRememberedAreStillRight) {
  Scene s;
  const NodeId group = s.nodes.create("transform", "g");
  const NodeId a = s.nodes.create("transform", "a", group), b = s.nodes.create("transform", "b", group);
  s.curves.set_key(group, Channel::rotateZ, 0, 0);
  s.curves.set_key(group, Channel::rotateZ, 1000, 3);
  s.attributes.set_channel(a, Channel::translateX, 1);
  s.attributes.set_channel(b, Channel::translateX, 1);
  Evaluator first(s.evaluation, a), second(s.evaluation, b);
  for (int begin = 0; begin < 300000; begin += 50) {
    std::vector<double> frames;
    for (int i = begin; i < begin + 50; ++i) frames.push_back(i * 0.003);
    std::vector<double> x;
    first.expect(frames);
    for (const double frame : frames) x.push_back(first.translation(frame).x);
    second.expect(frames);
    for (std::size_t i = 0; i < frames.size(); ++i) ASSERT_EQ(second.translation(frames[i]).x, x[i]);
    ASSERT_EQ(x[7], s.evaluation.world_matrix(a, frames[7]).translation().x);
  }
}

}  // namespace
}  // namespace vantorelix::standalone
