// Any edits in any order, undone and done again.
#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "host/error.h"
#include "standalone/scene/graph/change_log.h"
#include "standalone/scene/scene.h"
#include "standalone/scene/test_description.h"

namespace vantorelix::standalone {
namespace {

using host::Value;

class Edits {
 public:
  Edits(Scene& scene, unsigned seed) : s_(scene), random_(seed) {}

  std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_); }

  void edit() {
    try {
      one();
    } catch (const host::Error&) {  // locked, connected, no transform, ...
    }
  }

 private:
  NodeId any() {
    const std::vector<NodeId> nodes = s_.nodes.all();
    return nodes.empty() ? s_.nodes.create("transform", "") : nodes[below(nodes.size())];
  }
  NodeId curve() {
    const std::vector<NodeId> curves = s_.nodes.of_type("animCurveTU");
    return curves.empty() ? s_.curves.create(CurveKind::unitless, "c") : curves[below(curves.size())];
  }
  const char* channel() {
    static constexpr const char* kNames[] = {"tx", "ty", "rz", "sx", "translate", "rotate"};
    return kNames[below(std::size(kNames))];
  }
  const char* name() {
    static constexpr const char* kNames[] = {"a", "b", "a1", "handShape", "b2", "n:a", "n:in:b"};
    return kNames[below(std::size(kNames))];
  }
  double number() { return static_cast<double>(below(40)) / 4 - 3; }
  std::string type() {
    static constexpr const char* kTypes[] = {"transform",      "joint",     "nurbsCurve", "locator",
                                             "unitConversion", "pairBlend", "objectSet"};
    return kTypes[below(std::size(kTypes))];
  }

  void one() {
    switch (below(18)) {
      case 0:
      case 1:
      case 2:
        s_.nodes.create(type(), below(2) ? name() : "", below(3) ? any() : kWorld);
        return;
      case 3:
        return s_.nodes.remove(any());
      case 4:
        s_.nodes.rename(any(), name());
        return;
      case 5:
        return s_.nodes.set_parent(any(), below(4) ? any() : kWorld);
      case 6:
        return s_.nodes.lock(any(), below(8) == 0);
      case 7:
        return s_.attributes.set(any(), channel(), Value(number()));
      case 8:
        return s_.attributes.add(any(), below(2) ? "extra" : "weight", Value(number()));
      case 9:
        return s_.attributes.lock(any(), channel(), below(6) == 0);
      case 10:
        return s_.attributes.set_vectors(any(), "points",
                                         std::make_shared<const std::vector<Vector>>(below(4), Vector{number()}));
      case 11:
        return s_.connections.connect(curve(), "output", any(), channel());
      case 12:
        return s_.connections.connect(any(), "worldMatrix[0]", any(), "offsetParentMatrix");
      case 13:
        return s_.connections.disconnect(any(), channel());
      case 14:
        s_.curves.set_key(any(), static_cast<Channel>(below(9)), number(), number());
        return;
      case 15:
        return s_.curves.set_key(curve(), number(), number());
      case 16:
        s_.curves.remove_key(curve(), number());
        return;
      default:
        return rare();
    }
  }

  void rare() {
    switch (below(9)) {
      case 0:
        return s_.curves.set_infinity(curve(), Infinity::cycle, Infinity::linear);
      case 1:
        return s_.curves.assign(curve(), {{1, number()}, {8, number()}}, below(2) != 0, Infinity::constant,
                                Infinity::oscillate);
      case 2:
        return s_.settings.set_frames_per_second(static_cast<double>(24 + below(3)));
      case 3:
        return s_.settings.set_playback_range(number(), number());
      case 4:
        return s_.attributes.set_curve_points(any(), 1, {{number(), 0, 0}, {1, 2, 3}});
      case 5:
        return s_.namespaces.add("n:other");
      case 6:
        return s_.namespaces.remove(below(2) ? "n:other" : "n:in");
      case 7:
        return s_.namespaces.set_current(below(2) ? "n" : "");
      default:
        return s_.connections.connect(any(), "o", any(), "input");
    }
  }

  Scene& s_;
  std::mt19937 random_;
};

class AnyEdits : public testing::TestWithParam<unsigned> {};

// A queue of steps: some are undone, some done again, and a new one takes the place of those that are undone.
TEST_P(AnyEdits, AreUndoneAndDoneAgainInAnyOrder) {
  Scene s;
  Edits edits(s, GetParam());
  std::vector<ChangeLog> steps;
  std::vector<std::string> states = {description(s)};  // before each step, and after the last one
  std::size_t done = 0;
  for (int round = 0; round < 150; ++round) {
    const std::size_t move = edits.below(3);
    if (move == 0 && done > 0) {
      s.changes.undo(steps[--done]);
    } else if (move == 1 && done < steps.size()) {
      s.changes.redo(steps[done++]);
    } else {
      steps.resize(done);
      states.resize(done + 1);
      ChangeLog log;
      s.changes.record(&log);
      for (std::size_t n = 1 + edits.below(6); n > 0; --n) edits.edit();
      s.changes.record(nullptr);
      steps.push_back(std::move(log));
      states.push_back(description(s));
      ++done;
    }
    ASSERT_EQ(description(s), states[done]) << "round " << round;
  }
  while (done > 0) s.changes.undo(steps[--done]);
  EXPECT_EQ(description(s), states[0]);
}

// What is in no log may stand in the way: then a part is left out, and the scene stays whole.
TEST_P(AnyEdits, BetweenWhichTheSceneWasChangedUnrecordedLeaveItWhole) {
  Scene s;
  Edits edits(s, GetParam() + 1000);
  std::vector<ChangeLog> steps;
  std::size_t done = 0;
  for (int round = 0; round < 150; ++round) {
    const std::size_t move = edits.below(4);
    if (move == 0 && done > 0) {
      s.changes.undo(steps[--done]);
    } else if (move == 1 && done < steps.size()) {
      s.changes.redo(steps[done++]);
    } else if (move == 2) {
      edits.edit();
    } else {
      steps.resize(done);
      ChangeLog log;
      s.changes.record(&log);
      for (std::size_t n = 1 + edits.below(6); n > 0; --n) edits.edit();
      s.changes.record(nullptr);
      steps.push_back(std::move(log));
      ++done;
    }
    description(s);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, AnyEdits, testing::Range(0u, 40u));

}  // namespace
}  // namespace vantorelix::standalone
