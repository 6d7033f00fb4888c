#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "host/error.h"
#include "standalone/scene/scene.h"
#include "standalone/scene/test_description.h"

namespace vantorelix::standalone {
namespace {

struct SceneAttributes : testing::Test {
  Scene s;
  NodeId a = s.nodes.create("transform", "a");
  NodeId j = s.nodes.create("joint", "j");
};

TEST_F(SceneAttributes, AnglesAreDegreesOutsideAndRadiansInside) {
  s.attributes.set(a, "rotateX", 180);
  EXPECT_DOUBLE_EQ(s.attributes.channel(a, Channel::rotateX), std::numbers::pi);
  EXPECT_DOUBLE_EQ(*s.attributes.value(a, "rx").as_float(), 180.0);
  s.attributes.set(a, "ty", 180);
  EXPECT_EQ(s.attributes.channel(a, Channel::translateY), 180.0);
}

TEST_F(SceneAttributes, ShortAndLongNamesAreTheSameAttribute) {
  const std::pair<const char*, const char*> names[] = {{"translateX", "tx"},
                                                       {"rotatePivotTranslateY", "rpty"},
                                                       {"scalePivotTranslateZ", "sptz"},
                                                       {"shearXZ", "shxz"},
                                                       {"rotateAxisZ", "raz"},
                                                       {"rotateOrder", "ro"}};
  for (const auto& [full, short_name] : names) {
    s.attributes.set(a, short_name, 1);
    EXPECT_EQ(s.attributes.value(a, full), s.attributes.value(a, short_name)) << full;
    EXPECT_TRUE(s.attributes.value(a, full).truthy()) << full;
  }
  EXPECT_TRUE(s.attributes.has(a, "translate.translateX"));
}

TEST_F(SceneAttributes, OnlyJointsHaveTheAttributesOfJoints) {
  EXPECT_TRUE(s.attributes.has(j, "jointOrientX"));
  EXPECT_TRUE(s.attributes.has(j, "ssc"));
  EXPECT_FALSE(s.attributes.has(a, "jointOrientX"));
  EXPECT_FALSE(s.attributes.has(a, "inverseScale"));
}

TEST_F(SceneAttributes, ACompoundIsAListOfThree) {
  s.attributes.set(a, "translate", host::Value::list({1, 2.5, 3}));
  EXPECT_EQ(s.attributes.value(a, "t"), host::Value::list({1.0, 2.5, 3.0}));
  EXPECT_THROW(s.attributes.set(a, "translate", host::Value::list({1, 2})), host::Error);
  EXPECT_THROW(s.attributes.set(a, "translate", 1), host::Error);
}

TEST_F(SceneAttributes, AnUnknownAttributeNamesNoObject) {
  EXPECT_EQ(text_of_failure([&] { s.attributes.set(a, "nothing", 1); }), "No object matches name: a.nothing");
  EXPECT_EQ(text_of_failure([&] { s.attributes.value(a, "nothing"); }), "No object matches name: a.nothing");
}

TEST_F(SceneAttributes, LockedAndDrivenAttributesRefuseNewValues) {
  const std::string refused = "The attribute 'a.translateX' is locked or connected and cannot be modified.";
  s.attributes.lock(a, "tx", true);
  EXPECT_EQ(text_of_failure([&] { s.attributes.set(a, "translateX", 1); }), refused);
  EXPECT_THROW(s.attributes.set(a, "translate", host::Value::list({1, 2, 3})), host::Error);
  s.attributes.set(a, "translateY", 1);
  s.attributes.lock(a, "tx", false);
  s.attributes.lock(a, "t", true);
  EXPECT_EQ(text_of_failure([&] { s.attributes.set(a, "translateX", 1); }), refused);
  s.attributes.lock(a, "t", false);
  s.attributes.set(a, "translateX", 1);
  s.curves.set_key(a, Channel::translateX, 1, 1);
  EXPECT_EQ(text_of_failure([&] { s.attributes.set(a, "translateX", 1); }), refused);
  EXPECT_EQ(s.attributes.channel(a, Channel::translateX), 1.0);
}

TEST_F(SceneAttributes, OnlyFiniteNumbersGoIn) {
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_THROW(s.attributes.set(a, "tx", bad), host::Error);
    EXPECT_THROW(s.attributes.set_channel(a, Channel::translateX, bad), host::Error);
    EXPECT_THROW(s.attributes.set(a, "t", host::Value::list({1, bad, 2})), host::Error);
    EXPECT_THROW(s.curves.set_key(a, Channel::translateX, 1, bad), host::Error);
    EXPECT_THROW(s.curves.set_key(a, Channel::translateX, bad, 1), host::Error);
  }
  EXPECT_EQ(s.attributes.value(a, "t"), host::Value::list({0.0, 0.0, 0.0}));
  EXPECT_FALSE(s.curves.has_keys(a));
  EXPECT_EQ(s.nodes.all().size(), 2u);
}

TEST_F(SceneAttributes, ARotateOrderThatIsNoneCountsAsTheFirst) {
  s.attributes.set(a, "ro", 1e300);
  EXPECT_EQ(s.attributes.value(a, "ro"), host::Value(0));
  s.attributes.set(a, "ro", 5);
  EXPECT_EQ(s.attributes.value(a, "ro"), host::Value(5));
}

TEST_F(SceneAttributes, TextIsNoNumber) { EXPECT_THROW(s.attributes.set(a, "tx", "5"), host::Error); }

TEST_F(SceneAttributes, AddedAttributesKeepTheirKind) {
  s.attributes.add(a, "frameStep", 0.5);
  s.attributes.add(a, "showLine", true);
  s.attributes.add(a, "label", "x");
  s.attributes.set(a, "frameStep", 2);
  s.attributes.set(a, "showLine", 0);
  s.attributes.set(a, "label", "y");
  EXPECT_EQ(s.attributes.value(a, "frameStep"), host::Value(2.0));
  EXPECT_EQ(s.attributes.value(a, "showLine"), host::Value(false));
  EXPECT_EQ(s.attributes.value(a, "label"), host::Value("y"));
  EXPECT_FALSE(s.attributes.has(j, "label"));
}

TEST_F(SceneAttributes, ArraysAreSharedAndMoveNothing) {
  const auto points = std::make_shared<const std::vector<Vector>>(3);
  EXPECT_EQ(s.attributes.vectors(a, "points"), nullptr);
  const std::uint64_t before = s.changes.revision();
  s.attributes.set_vectors(a, "points", points);
  EXPECT_EQ(s.attributes.vectors(a, "points"), points);
  EXPECT_EQ(s.changes.revision(), before);
}

}  // namespace
}  // namespace vantorelix::standalone
