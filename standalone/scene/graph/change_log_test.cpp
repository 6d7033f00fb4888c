#include "standalone/scene/graph/change_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "host/error.h"
#include "standalone/scene/scene.h"
#include "standalone/scene/test_description.h"

namespace vantorelix::standalone {
namespace {

using host::Value;
using testing::ElementsAre;

struct ChangeLogTest : testing::Test {
  Scene s;
  NodeId ball = s.nodes.create("transform", "ball");

  // What an edit writes down.
  template <class Edit>
  ChangeLog recorded(Edit edit) {
    ChangeLog log;
    s.changes.record(&log);
    edit();
    EXPECT_EQ(s.changes.record(nullptr), &log);
    return log;
  }

  // The edit, undone, done again and undone.
  template <class Edit>
  void expect_undone(Edit edit) {
    const std::string before = description(s);
    ChangeLog log = recorded(edit);
    EXPECT_FALSE(log.empty());
    const std::string after = description(s);
    EXPECT_NE(before, after) << "the edit does nothing that can be seen";
    s.changes.undo(log);
    EXPECT_EQ(description(s), before);
    s.changes.redo(log);
    EXPECT_EQ(description(s), after);
    s.changes.undo(log);
    EXPECT_EQ(description(s), before);
  }
};

TEST_F(ChangeLogTest, NothingIsWrittenDownWhileNobodyRecords) {
  ChangeLog log = recorded([] {});
  s.attributes.set_channel(ball, Channel::translateX, 1);
  EXPECT_TRUE(log.empty());
  s.changes.undo(log);
  EXPECT_EQ(s.attributes.channel(ball, Channel::translateX), 1);
}

TEST_F(ChangeLogTest, ACreatedNodeGoesAndComesBackUnderItsNumber) {
  NodeId made = kNoNode;
  ChangeLog log = recorded([&] { made = s.nodes.create("joint", "hip", ball); });
  s.changes.undo(log);
  EXPECT_FALSE(s.nodes.exists(made));
  EXPECT_EQ(s.names.find("hip"), kNoNode);
  EXPECT_NE(s.nodes.create("joint", "other"), made);
  s.changes.redo(log);
  EXPECT_EQ(s.names.find("hip"), made);
  EXPECT_EQ(s.nodes.parent(made), ball);
}

TEST_F(ChangeLogTest, AShapeTakesItsTransformAlong) {
  expect_undone([&] { s.nodes.create("nurbsCurve", ""); });
}

TEST_F(ChangeLogTest, ADeletedTreeIsBackWithItsCurvesAndConnections) {
  const NodeId hip = s.nodes.create("joint", "hip", ball);
  const NodeId knee = s.nodes.create("joint", "knee", hip);
  const NodeId watcher = s.nodes.create("transform", "watcher");
  s.curves.set_key(knee, Channel::rotateZ, 1, 0.5);
  s.curves.set_key(knee, Channel::rotateZ, 9, 1.5);
  s.connections.connect(knee, "worldMatrix[0]", watcher, "offsetParentMatrix");
  s.nodes.create("transform", "last", ball);
  expect_undone([&] { s.nodes.remove(hip); });
  EXPECT_EQ(s.curves.at(s.curves.driving_curve(knee, Channel::rotateZ)).keys().size(), 2u);
}

TEST_F(ChangeLogTest, ChildrenAreBackInTheirOrder) {
  std::vector<NodeId> children;
  for (int i = 0; i < 40; ++i) children.push_back(s.nodes.create("transform", "child", ball));
  for (const int first : {0, 7, 33})
    expect_undone([&] {
      for (int i = 0; i < 7; ++i) s.nodes.remove(children[static_cast<std::size_t>(first + i)]);
    });
  expect_undone([&] {
    for (const NodeId child : children) s.nodes.remove(child);
  });
  EXPECT_EQ(s.nodes.children(ball), children);
}

TEST_F(ChangeLogTest, NamesAndPlacesAreBack) {
  const NodeId hip = s.nodes.create("transform", "hip");
  s.nodes.create("nurbsCurve", "hipShape", hip);
  const NodeId twin = s.nodes.create("transform", "ball", hip);
  expect_undone([&] { s.nodes.rename(hip, "pelvis"); });
  expect_undone([&] { s.nodes.set_parent(twin, kWorld); });
  expect_undone([&] { s.nodes.set_parent(ball, hip); });
}

TEST_F(ChangeLogTest, ValuesAreBack) {
  const NodeId shape = s.nodes.create("nurbsCurve", "", ball);
  expect_undone([&] { s.attributes.set_channels(ball, Channel::translateX, {1, 2, 3}); });
  expect_undone([&] { s.attributes.set(ball, "visibility", Value(false)); });
  expect_undone([&] { s.attributes.add(ball, "extra", Value(2.5)); });
  expect_undone([&] {
    std::array<double, 16> matrix = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1};
    s.attributes.set_offset_parent_matrix(ball, matrix);
  });
  expect_undone([&] { s.attributes.set_curve_points(shape, 1, {{1, 2, 3}, {4, 5, 6}}); });
  expect_undone([&] {
    s.attributes.set_vectors(shape, "points", std::make_shared<const std::vector<Vector>>(3, Vector{1, 2, 3}));
  });
}

TEST_F(ChangeLogTest, LocksAreBack) {
  const auto is_locked = [&] {
    try {
      s.attributes.set(ball, "tx", Value(0.0));
      return false;
    } catch (const host::Error&) {
      return true;
    }
  };
  ChangeLog log = recorded([&] { s.attributes.lock(ball, "tx", true); });
  s.changes.undo(log);
  EXPECT_FALSE(is_locked());
  s.changes.redo(log);
  EXPECT_TRUE(is_locked());
  ChangeLog node = recorded([&] { s.nodes.lock(ball, true); });
  s.changes.undo(node);
  EXPECT_NO_THROW(s.nodes.rename(ball, "bullet"));
  s.changes.redo(node);
  EXPECT_THROW(s.nodes.rename(ball, "other"), host::Error);
}

TEST_F(ChangeLogTest, ConnectionsAreBackInTheirOrder) {
  std::vector<NodeId> curves;
  for (int i = 0; i < 3; ++i) {
    curves.push_back(s.curves.create(CurveKind::unitless, "curve"));
    s.curves.set_key(curves.back(), 1, i + 1);
  }
  s.connections.connect(curves[0], "output", ball, "tx");
  s.connections.connect(curves[1], "output", ball, "ty");
  s.connections.connect(curves[0], "output", ball, "tz");
  expect_undone([&] { s.connections.disconnect(ball, "ty"); });
  expect_undone([&] { s.connections.connect(curves[2], "output", ball, "tx"); });
  expect_undone([&] { s.connections.connect(curves[2], "output", ball, "sx"); });
  expect_undone([&] { s.nodes.remove(curves[0]); });
  EXPECT_THAT(s.curves.driving_curves(ball), ElementsAre(curves[0], curves[1]));
}

TEST_F(ChangeLogTest, KeysAreBack) {
  const NodeId curve = s.curves.set_key(ball, Channel::translateX, 1, 5);
  s.curves.set_key(curve, 10, 6);
  expect_undone([&] { s.curves.set_key(curve, 5, 2); });
  expect_undone([&] { s.curves.set_key(curve, 10, 2); });
  expect_undone([&] { s.curves.set_key(curve, Key{.time = 1, .value = -0.0, .in = Tangent::step, .out_y = 3}); });
  expect_undone([&] { s.curves.remove_key(curve, 1); });
  expect_undone([&] {
    s.curves.remove_key(curve, 1);
    s.curves.remove_key(curve, 10);
  });
  expect_undone([&] { s.curves.set_infinity(curve, Infinity::cycle, Infinity::linear); });
  expect_undone([&] { s.curves.assign(curve, {{3, 4}, {5, 6}, {7, 8}}, true, Infinity::linear, Infinity::constant); });
  expect_undone([&] { s.curves.set_key(ball, Channel::rotateX, 1, 0.25); });
}

TEST_F(ChangeLogTest, AKeyOfALongCurveTakesNoCopyOfIt) {
  const NodeId curve = s.curves.set_key(ball, Channel::translateX, 0, 0);
  std::vector<Key> keys(100000);
  for (std::size_t i = 0; i < keys.size(); ++i) keys[i].time = static_cast<double>(i);
  s.curves.assign(curve, std::move(keys), false, Infinity::constant, Infinity::constant);
  std::vector<ChangeLog> steps;
  for (int i = 0; i < 500; ++i) steps.push_back(recorded([&] { s.curves.set_key(curve, 100 * i + 0.5, i); }));
  for (auto step = steps.rbegin(); step != steps.rend(); ++step) s.changes.undo(*step);
  EXPECT_EQ(s.curves.at(curve).keys().size(), 100000u);
  for (const Key& key : s.curves.at(curve).keys()) ASSERT_EQ(key.value, 0);
}

TEST_F(ChangeLogTest, TheScenesOwnSettingsAreBack) {
  s.curves.set_key(ball, Channel::translateX, 1, 5);
  expect_undone([&] {
    s.settings.set_playback_range(3, 300);
    s.settings.set_current_time(4);
    s.settings.set_frames_per_second(30);
    s.settings.set_up_axis('z');
    s.settings.set_linear_unit("m");
    s.settings.set_takes({{"run", 1, 2}, {"jump", 3, 4}}, 1);
  });
}

TEST_F(ChangeLogTest, NamespacesComeAndGoWithWhatMadeAndRemovedThem) {
  expect_undone([&] { s.nodes.create("transform", "a:b:x"); });
  expect_undone([&] { s.nodes.rename(ball, "c:d:ball"); });
  expect_undone([&] { s.namespaces.add("e:f"); });
  const NodeId made = s.nodes.create("transform", "a:b:x");
  expect_undone([&] { s.namespaces.set_current("a"); });
  expect_undone([&] {
    s.nodes.remove(made);
    s.namespaces.remove("a:b");
    s.namespaces.remove("a");
  });
  EXPECT_TRUE(recorded([&] { s.namespaces.add("a:b"); }).empty());
}

TEST_F(ChangeLogTest, ACurveThatWasAwayFollowsTheRateOfTheScene) {
  const NodeId curve = s.curves.set_key(ball, Channel::translateX, 0, 0);
  const Key end{.time = 10, .value = 10, .in = Tangent::fixed, .in_x = 1, .in_y = 50};
  s.curves.set_key(curve, end);
  ChangeLog log = recorded([&] { s.nodes.remove(curve); });
  s.settings.set_frames_per_second(60);
  s.changes.undo(log);
  AnimCurve fresh(CurveKind::linear, 60);
  fresh.set_key(0, 0);
  fresh.set_key(end);
  EXPECT_EQ(s.curves.at(curve).evaluate(7), fresh.evaluate(7));
}

TEST_F(ChangeLogTest, AnEditThatFailedLeavesNothingToUndo) {
  s.nodes.lock(ball, true);
  s.attributes.lock(ball, "tx", true);
  const ChangeLog log = recorded([&] {
    EXPECT_THROW(s.nodes.remove(ball), host::Error);
    EXPECT_THROW(s.nodes.rename(ball, "x"), host::Error);
    EXPECT_THROW(s.attributes.set(ball, "tx", Value(1.0)), host::Error);
    EXPECT_THROW(s.curves.set_key(ball, Channel::translateX, std::nan(""), 1), host::Error);
  });
  EXPECT_TRUE(log.empty());
}

TEST_F(ChangeLogTest, LogsJoinInTheirOrder) {
  ChangeLog first = recorded([&] { s.attributes.set_channel(ball, Channel::translateX, 1); });
  first.append(recorded([&] { s.nodes.rename(ball, "bullet"); }));
  first.append(recorded([&] { s.attributes.set_channel(ball, Channel::translateX, 2); }));
  s.changes.undo(first);
  EXPECT_EQ(s.attributes.channel(ball, Channel::translateX), 0);
  EXPECT_EQ(s.names.short_name(ball), "ball");
  s.changes.redo(first);
  EXPECT_EQ(s.attributes.channel(ball, Channel::translateX), 2);
}

struct Told : ChangeLogTest {
  std::vector<std::string> told;

  Told() {
    s.changes.set_listener({[this](NodeId curve) { told.push_back("curve " + std::string(s.names.short_name(curve))); },
                            [this](NodeId curve) { told.push_back("key " + std::string(s.names.short_name(curve))); },
                            [this](NodeId node, const std::string& type) {
                              EXPECT_TRUE(s.nodes.exists(node));
                              told.push_back("gone " + type);
                            }});
  }
};

TEST_F(Told, OfEachEditedCurveOnceAndOfANodeThatGoes) {
  const NodeId curve = s.curves.set_key(ball, Channel::translateX, 1, 5);
  ChangeLog keys = recorded([&] {
    s.curves.set_key(curve, 2, 5);
    s.curves.set_key(curve, 3, 5);
  });
  told.clear();
  s.changes.undo(keys);
  EXPECT_THAT(told, ElementsAre("curve ball_translateX", "key ball_translateX"));
  ChangeLog away = recorded([&] { s.nodes.remove(curve); });
  told.clear();
  s.changes.undo(away);
  EXPECT_THAT(told, ElementsAre("curve ball_translateX", "key ball_translateX"));
  told.clear();
  s.changes.redo(away);
  EXPECT_THAT(told, ElementsAre("gone animCurveTL"));
}

TEST_F(Told, AListenerMayDeleteWhatGoesItself) {
  ChangeLog log = recorded([&] { s.nodes.create("transform", "made"); });
  s.changes.set_listener({{}, {}, [this](NodeId node, const std::string&) {
                            if (s.nodes.exists(node)) s.nodes.remove(node);
                          }});
  s.changes.undo(log);
  EXPECT_EQ(s.names.find("made"), kNoNode);
  s.changes.redo(log);
  EXPECT_EQ(s.names.find("made"), kNoNode);
}

TEST_F(Told, AListenerIsNotRecorded) {
  const NodeId curve = s.curves.set_key(ball, Channel::translateX, 1, 5);
  ChangeLog log = recorded([&] { s.curves.set_key(curve, 1, 6); });
  s.changes.set_listener({[this](NodeId) { s.attributes.set_channel(ball, Channel::translateY, 3); }, {}, {}});
  ChangeLog outer = recorded([&] { s.changes.undo(log); });
  EXPECT_TRUE(outer.empty());
  EXPECT_EQ(s.attributes.channel(ball, Channel::translateY), 3);
}

}  // namespace
}  // namespace vantorelix::standalone
