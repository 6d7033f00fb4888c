#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "host/error.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {
namespace {

std::string text_of_failure(const std::function<void()>& f) {
  try {
    f();
  } catch (const host::Error& error) {
    return error.what();
  }
  return "nothing was thrown";
}

struct SceneAttributes : testing::Test {
  Scene s;
  NodeId a = s.create_node("transform", "a");
  NodeId j = s.create_node("joint", "j");
};

TEST_F(SceneAttributes, AnglesAreDegreesOutsideAndRadiansInside) {
  s.set_attribute(a, "rotateX", 180);
  EXPECT_DOUBLE_EQ(s.channel(a, Channel::rotateX), std::numbers::pi);
  EXPECT_DOUBLE_EQ(*s.attribute(a, "rx").as_float(), 180.0);
  s.set_attribute(a, "ty", 180);
  EXPECT_EQ(s.channel(a, Channel::translateY), 180.0);
}

TEST_F(SceneAttributes, ShortAndLongNamesAreTheSameAttribute) {
  const std::pair<const char*, const char*> names[] = {{"translateX", "tx"},
                                                       {"rotatePivotTranslateY", "rpty"},
                                                       {"scalePivotTranslateZ", "sptz"},
                                                       {"shearXZ", "shxz"},
                                                       {"rotateAxisZ", "raz"},
                                                       {"rotateOrder", "ro"}};
  for (const auto& [full, brief] : names) {
    s.set_attribute(a, brief, 1);
    EXPECT_EQ(s.attribute(a, full), s.attribute(a, brief)) << full;
    EXPECT_TRUE(s.attribute(a, full).truthy()) << full;
  }
  EXPECT_TRUE(s.has_attribute(a, "translate.translateX"));
}

TEST_F(SceneAttributes, OnlyJointsHaveTheAttributesOfJoints) {
  EXPECT_TRUE(s.has_attribute(j, "jointOrientX"));
  EXPECT_TRUE(s.has_attribute(j, "ssc"));
  EXPECT_FALSE(s.has_attribute(a, "jointOrientX"));
  EXPECT_FALSE(s.has_attribute(a, "inverseScale"));
}

TEST_F(SceneAttributes, ACompoundIsAListOfThree) {
  s.set_attribute(a, "translate", host::Value::list({1, 2.5, 3}));
  EXPECT_EQ(s.attribute(a, "t"), host::Value::list({1.0, 2.5, 3.0}));
  EXPECT_THROW(s.set_attribute(a, "translate", host::Value::list({1, 2})), host::Error);
  EXPECT_THROW(s.set_attribute(a, "translate", 1), host::Error);
}

TEST_F(SceneAttributes, AnUnknownAttributeNamesNoObject) {
  EXPECT_EQ(text_of_failure([&] { s.set_attribute(a, "nothing", 1); }), "No object matches name: a.nothing");
  EXPECT_EQ(text_of_failure([&] { s.attribute(a, "nothing"); }), "No object matches name: a.nothing");
}

TEST_F(SceneAttributes, LockedAndDrivenAttributesRefuseNewValues) {
  const std::string refused = "The attribute 'a.translateX' is locked or connected and cannot be modified.";
  s.lock_attribute(a, "tx", true);
  EXPECT_EQ(text_of_failure([&] { s.set_attribute(a, "translateX", 1); }), refused);
  EXPECT_THROW(s.set_attribute(a, "translate", host::Value::list({1, 2, 3})), host::Error);
  s.set_attribute(a, "translateY", 1);
  s.lock_attribute(a, "tx", false);
  s.lock_attribute(a, "t", true);
  EXPECT_EQ(text_of_failure([&] { s.set_attribute(a, "translateX", 1); }), refused);
  s.lock_attribute(a, "t", false);
  s.set_attribute(a, "translateX", 1);
  s.set_key(a, Channel::translateX, 1, 1);
  EXPECT_EQ(text_of_failure([&] { s.set_attribute(a, "translateX", 1); }), refused);
  EXPECT_EQ(s.channel(a, Channel::translateX), 1.0);
}

TEST_F(SceneAttributes, OnlyFiniteNumbersGoIn) {
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_THROW(s.set_attribute(a, "tx", bad), host::Error);
    EXPECT_THROW(s.set_channel(a, Channel::translateX, bad), host::Error);
    EXPECT_THROW(s.set_attribute(a, "t", host::Value::list({1, bad, 2})), host::Error);
    EXPECT_THROW(s.set_key(a, Channel::translateX, 1, bad), host::Error);
    EXPECT_THROW(s.set_key(a, Channel::translateX, bad, 1), host::Error);
  }
  EXPECT_EQ(s.attribute(a, "t"), host::Value::list({0.0, 0.0, 0.0}));
  EXPECT_FALSE(s.has_keys(a));
  EXPECT_EQ(s.nodes().size(), 2u);
}

TEST_F(SceneAttributes, ARotateOrderThatIsNoneCountsAsTheFirst) {
  s.set_attribute(a, "ro", 1e300);
  EXPECT_EQ(s.attribute(a, "ro"), host::Value(0));
  s.set_attribute(a, "ro", 5);
  EXPECT_EQ(s.attribute(a, "ro"), host::Value(5));
}

TEST_F(SceneAttributes, TextIsNoNumber) { EXPECT_THROW(s.set_attribute(a, "tx", "5"), host::Error); }

TEST_F(SceneAttributes, AddedAttributesKeepTheirKind) {
  s.add_attribute(a, "frameStep", 0.5);
  s.add_attribute(a, "showLine", true);
  s.add_attribute(a, "label", "x");
  s.set_attribute(a, "frameStep", 2);
  s.set_attribute(a, "showLine", 0);
  s.set_attribute(a, "label", "y");
  EXPECT_EQ(s.attribute(a, "frameStep"), host::Value(2.0));
  EXPECT_EQ(s.attribute(a, "showLine"), host::Value(false));
  EXPECT_EQ(s.attribute(a, "label"), host::Value("y"));
  EXPECT_FALSE(s.has_attribute(j, "label"));
}

TEST_F(SceneAttributes, ArraysAreSharedAndMoveNothing) {
  const auto points = std::make_shared<const std::vector<Vector>>(3);
  EXPECT_EQ(s.vectors(a, "points"), nullptr);
  const std::uint64_t before = s.revision();
  s.set_vectors(a, "points", points);
  EXPECT_EQ(s.vectors(a, "points"), points);
  EXPECT_EQ(s.revision(), before);
}

}  // namespace
}  // namespace vantorelix::standalone
