#include "session/session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "host/error.h"
#include "session/failure.h"
#include "session/report.h"

namespace vantorelix::session {
namespace {

using standalone::Channel;
using standalone::Host;
using standalone::NodeId;
using standalone::Scene;

using Shown = std::vector<std::vector<Vector>>;  // the points of each trail

// `count` balls that go `far`, all alike in two places of the graph where `twins`.
Scene scene_of(int count, double far, bool twins = false) {
  Scene scene;
  scene.settings.set_playback_range(1.0, 24.0);
  for (int i = 0; i < count; ++i) {
    const NodeId group = scene.nodes.create("transform", "group" + std::to_string(i));
    const NodeId ball = scene.nodes.create("transform", twins ? "ball" : "ball" + std::to_string(i), group);
    for (const double frame : {1.0, 7.0, 24.0}) scene.curves.set_key(ball, Channel::translateX, frame, far * frame + i);
  }
  return scene;
}

// One scene at work. Its steps are the same whether another one is open or not.
class Work {
 public:
  explicit Work(Scene scene) : session_(std::move(scene), {{}, [this] { return cancelled; }, {}}) {
    for (const NodeId node : session_.scene().nodes.all())
      if (session_.scene().curves.has_keys(node)) balls_.push_back(node);
  }

  Session& session() { return session_; }
  void make() { trails_ = session_.create(balls_, {}); }
  void move(double frame, double value) {
    session_.edit([&](Host& host) { host.scene().curves.set_key(balls_.front(), Channel::translateX, frame, value); });
  }
  bool step() { return session_.run_idle_once(); }
  void settle() {
    while (step()) {
    }
  }
  Shown shown() const {
    Shown points;
    for (const TrailView& trail : read_trails(session_.scene(), trails_, "a").trails) points.push_back(*trail.points);
    return points;
  }

  bool cancelled = false;

 private:
  Session session_;
  std::vector<NodeId> balls_;
  std::vector<Trail> trails_;
};

// What the trails of a scene show when it is the only one: after they are made, and after each of two edits.
std::vector<Shown> alone(Scene scene, double value) {
  Work work(std::move(scene));
  std::vector<Shown> result;
  work.make();
  result.push_back(work.shown());
  for (const double frame : {7.0, 12.0}) {
    work.move(frame, value);
    work.settle();
    result.push_back(work.shown());
    EXPECT_NE(result.back(), result[result.size() - 2]);
  }
  return result;
}

TEST(Session, TwoScenesThatAreEditedByTurnsEachHaveTheirOwnTrails) {
  const auto alone_a = alone(scene_of(3, 2.0), 50.0), alone_b = alone(scene_of(5, -3.0), -70.0);
  Work a(scene_of(3, 2.0)), b(scene_of(5, -3.0));
  a.make();
  b.make();
  EXPECT_EQ(a.shown(), alone_a[0]);
  EXPECT_EQ(b.shown(), alone_b[0]);

  a.move(7.0, 50.0);
  EXPECT_FALSE(b.step());  // the edit was not B's
  EXPECT_FALSE(b.session().queue_state().pending);
  EXPECT_TRUE(a.session().queue_state().pending);
  EXPECT_EQ(a.shown(), alone_a[0]);
  b.move(7.0, -70.0);
  for (bool more = true; more;) {
    more = a.step();
    more = b.step() || more;
  }
  EXPECT_EQ(a.shown(), alone_a[1]);
  EXPECT_EQ(b.shown(), alone_b[1]);

  b.move(12.0, -70.0);
  a.move(12.0, 50.0);
  a.settle();
  EXPECT_EQ(a.shown(), alone_a[2]);
  EXPECT_EQ(b.shown(), alone_b[1]);
  b.settle();
  EXPECT_EQ(b.shown(), alone_b[2]);
}

TEST(Session, WhatIsThrownInOneSceneLeavesTheOtherAsItWas) {
  const auto alone_a = alone(scene_of(3, 2.0), 50.0), alone_b = alone(scene_of(5, -3.0), -70.0);
  Work a(scene_of(3, 2.0)), b(scene_of(5, -3.0));
  a.cancelled = true;
  EXPECT_THROW(a.make(), host::Interrupt);
  a.cancelled = false;
  b.make();
  a.make();
  EXPECT_EQ(a.shown(), alone_a[0]);
  EXPECT_EQ(b.shown(), alone_b[0]);

  const auto fail = [](Host&) { throw std::runtime_error("no"); };
  EXPECT_THROW(a.session().edit([&](Host&) { b.session().edit(fail); }), std::runtime_error);
  a.move(7.0, 50.0);
  b.move(7.0, -70.0);
  b.cancelled = true;
  EXPECT_THROW(b.settle(), host::Interrupt);
  b.cancelled = false;
  a.settle();
  EXPECT_EQ(a.shown(), alone_a[1]);
  EXPECT_EQ(b.shown(), alone_b[0]);

  // What ended in the midst is made good by the next edit.
  b.move(12.0, -70.0);
  b.settle();
  EXPECT_EQ(b.shown(), alone_b[2]);
}

TEST(Session, ClosingASceneLeavesTheOthersAtWork) {
  const auto expected = alone(scene_of(3, 2.0), 50.0);
  auto a = std::make_unique<Work>(scene_of(3, 2.0)), b = std::make_unique<Work>(scene_of(5, -3.0));
  b->make();
  a->make();
  b->move(7.0, 1.0);
  b->step();
  a->move(7.0, 50.0);
  b.reset();
  a->settle();
  EXPECT_EQ(a->shown(), expected[1]);
  const Work third(scene_of(1, 1.0));
  a->move(12.0, 50.0);
  a->settle();
  EXPECT_EQ(a->shown(), expected[2]);
}

TEST(Session, ASceneCannotBeWorkedOnInsideAnotherInsideItself) {
  Work a(scene_of(1, 1.0)), b(scene_of(1, 2.0));
  EXPECT_THROW(a.session().edit([&](Host&) { b.session().edit([&](Host&) { a.step(); }); }), std::logic_error);
  a.session().edit([&](Host&) { EXPECT_FALSE(a.step()); });
}

TEST(Session, ObjectsOfOneNameEachHaveATrail) {
  Work twins(scene_of(3, 2.0, true)), others(scene_of(3, 2.0));
  twins.make();
  others.make();
  EXPECT_EQ(twins.shown(), others.shown());
}

TEST(Session, ATrailIsFollowedUntilAnotherTakesItsNameOrItIsRemoved) {
  Work work(scene_of(2, 2.0));
  Session& session = work.session();
  const std::vector<NodeId> balls = {session.scene().names.require("ball0"), session.scene().names.require("ball1")};
  const auto followed = [&] {
    std::vector<NodeId> nodes;
    for (const Trail& trail : session.followed()) nodes.push_back(trail.viz);
    return nodes;
  };
  const auto first = session.create(balls, {});
  EXPECT_THAT(followed(), testing::ElementsAre(first[0].viz, first[1].viz));
  const auto second = session.create({balls[0]}, {});
  EXPECT_THAT(followed(), testing::UnorderedElementsAre(first[1].viz, second[0].viz));
  EXPECT_FALSE(session.scene().nodes.exists(first[0].viz));
  session.remove(first);
  EXPECT_THAT(followed(), testing::ElementsAre(second[0].viz));
  EXPECT_FALSE(session.scene().nodes.exists(first[1].viz));
}

TEST(Session, SettlingMakesTrailsExactWithoutTheQuietTime) {
  Work work(scene_of(3, 2.0));
  work.make();
  const auto expected = alone(scene_of(3, 2.0), 50.0);
  work.move(7.0, 50.0);
  EXPECT_TRUE(work.step());
  EXPECT_EQ(work.shown(), expected[0]);
  work.session().settle();
  EXPECT_EQ(work.shown(), expected[1]);
  EXPECT_EQ(work.session().idle_count(), 0u);
}

TEST(Session, ATrailsParentIsTheNearestAncestorThatHasATrail) {
  Scene scene;
  scene.settings.set_playback_range(1.0, 4.0);
  std::vector<NodeId> moving;
  NodeId above = standalone::kWorld;
  for (const char* name : {"hips", "spine", "hand"}) {
    above = scene.nodes.create("transform", name, above);
    if (std::string(name) == "spine") continue;
    scene.curves.set_key(above, Channel::translateX, 1.0, 0.0);
    scene.curves.set_key(above, Channel::translateX, 4.0, 1.0);
    moving.push_back(above);
  }
  Session session(std::move(scene));
  const auto trails = session.create(moving, {});
  const auto views = read_trails(session.scene(), trails, "a").trails;
  EXPECT_EQ(views.at(0).parent, std::nullopt);
  EXPECT_EQ(views.at(1).parent, "|hips");
  EXPECT_EQ(read_trails(session.scene(), {trails.at(1)}, "a").trails.at(0).parent, std::nullopt);
}

TEST(Session, TellsWhetherSomebodyChoseTheColourMode) {
  const Session session(scene_of(1, 2.0));
  TrailSettings settings;
  EXPECT_FALSE(session.names_color_mode(settings));
  settings.color_mode = std::int64_t{0};
  EXPECT_TRUE(session.names_color_mode(settings));
}

TEST(Session, SaysWhichSizesItCannotDo) {
  const auto kind_of = [](double last, std::size_t objects) {
    Scene scene = scene_of(1, 1.0);
    scene.settings.set_playback_range(1.0, last);
    try {
      Session(std::move(scene)).check_size(objects, {});
    } catch (const Failure& failure) {
      return std::optional(failure.kind);
    }
    return std::optional<Failure::Kind>();
  };
  EXPECT_EQ(kind_of(24.0, 1), std::nullopt);
  EXPECT_EQ(kind_of(1.0, 1), Failure::Kind::range_too_short);
  EXPECT_EQ(kind_of(1e7, 1'000), Failure::Kind::too_many_samples);
}

TEST(Session, TellsWhichTrailIsSampledUntilAllAreExact) {
  std::vector<std::size_t> told;
  Scene scene = scene_of(2, 1.0);
  scene.settings.set_playback_range(1.0, 200'000.0);
  Session session(std::move(scene), {{}, {}, [&](std::size_t number, std::size_t count) {
                                       EXPECT_EQ(count, 2u);
                                       told.push_back(number);
                                     }});
  const std::vector<NodeId> balls = {session.scene().names.require("ball0"), session.scene().names.require("ball1")};
  const auto trails = session.create(balls, {{8}, {}, {}, {}, {}, {}, {}});
  for (const TrailView& trail : read_trails(session.scene(), trails, "a").trails)
    EXPECT_EQ(trail.points->size(), 199'999u * 8 + 1);
  ASSERT_FALSE(told.empty());
  EXPECT_EQ(told.back(), 2u);
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  EXPECT_EQ(session.queue_state(), QueueState());
}

}  // namespace
}  // namespace vantorelix::session
