#include "engine/commands/nurbs.h"

#include <gmock/gmock.h>

#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class NurbsTest : public support::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    support::add_trail(fake, "ball");
    support::add_trail(fake, "cube");
    fake.range_last = 5.0;
  }
  std::vector<std::string> curve_names() {
    std::vector<std::string> names;
    for (const auto& curve : fake.curves) names.push_back(curve.name);
    return names;
  }
  host::Value message() { return fake.messages.back(); }
};

const std::string kNothing = "No trails to convert. Build a trail first.";

TEST_F(NurbsTest, ACurveIsMadeFromFreshSamplesAndSelected) {
  _REGISTRY.erase("vlx_cube_viz");
  convert_to_nurbs();
  const auto head =
      std::vector<std::string>{"cmds.ls(sl=True, long=True)", "cmds.objExists('|ball')",
                               "cmds.playbackOptions(q=True, min=True)", "cmds.playbackOptions(q=True, max=True)"};
  const std::string message = "Created 1 standalone NURBS curve(s).";
  EXPECT_EQ(recorder.log(),
            support::together({head,
                               support::fast_sampler_lines("ball"),
                               {"plug.translation_at(1.0)", "plug.translation_at(2.0)", "plug.translation_at(3.0)",
                                "plug.translation_at(4.0)", "plug.translation_at(5.0)",
                                "cmds.keyframe('|ball', q=True, timeChange=True)",
                                "cmds.curve(d=3, p=<5>, name='vlx_ball_curve')", "cmds.select(['vlx_ball_curve'])",
                                "cmds.inViewMessage(amg='" + message + "', pos='midCenter', fade=True, alpha=0.9)",
                                "print('[Vantorelix] " + message + "')"}}));
  EXPECT_EQ(fake.curves.front().points.back(), (Vector{5, 0, 0}));
}

TEST_F(NurbsTest, WithNothingSelectedEveryRegisteredTrailIsConverted) {
  convert_to_nurbs();
  EXPECT_THAT(curve_names(), ElementsAre("vlx_ball_curve", "vlx_cube_curve"));
  EXPECT_EQ(message(), host::Value("Created 2 standalone NURBS curve(s)."));
}

TEST_F(NurbsTest, SelectingTheObjectOrTheTrailConvertsThatTrailOnly) {
  fake.selection = {"|cube"};
  convert_to_nurbs();
  fake.selection = {"vlx_ball_viz"};
  convert_to_nurbs();
  EXPECT_THAT(curve_names(), ElementsAre("vlx_cube_curve", "vlx_ball_curve"));
}

TEST_F(NurbsTest, WithNothingToConvertTheSelectionStaysAndTheMessageSaysSo) {
  fake.add("|other");
  fake.selection = {"|other"};
  convert_to_nurbs();
  EXPECT_EQ(message(), host::Value(kNothing));
  _REGISTRY.clear();
  fake.selection = {};
  convert_to_nurbs();
  EXPECT_EQ(message(), host::Value(kNothing));
  EXPECT_EQ(recorder.count("cmds.select("), 0u);
}

TEST_F(NurbsTest, TrailsWithoutSourceOrSamplesAreSkipped) {
  fake.remove("|ball");
  convert_to_nurbs();
  EXPECT_THAT(curve_names(), ElementsAre("vlx_cube_curve"));
  fake.range_last = fake.range_first;
  convert_to_nurbs(1);
  EXPECT_EQ(message(), host::Value(kNothing));
}

TEST_F(NurbsTest, ADegreeNeedsOnePointMore) {
  convert_to_nurbs(5);
  EXPECT_THAT(curve_names(), IsEmpty());
  convert_to_nurbs(4);
  EXPECT_EQ(fake.curves.size(), 2u);
  fake.range_last = 2.0;
  fake.selection = {};  // converting selects the curves
  convert_to_nurbs(1);
  EXPECT_EQ(fake.curves.size(), 4u);
}

TEST_F(NurbsTest, ADegreeThatIsNoNumberReachesTheCaller) {
  EXPECT_THROW(convert_to_nurbs("3"), host::Error);
  EXPECT_THROW(convert_to_nurbs(host::Value()), host::Error);
}

TEST_F(NurbsTest, ConvertingTwiceAddsASecondSetUnderTheHostsNames) {
  convert_to_nurbs();
  fake.selection = {};
  convert_to_nurbs();
  EXPECT_EQ(fake.curves.size(), 4u);
  EXPECT_THAT(fake.selection, ElementsAre("vlx_ball_curve1", "vlx_cube_curve1"));
  EXPECT_EQ(message(), host::Value("Created 2 standalone NURBS curve(s)."));
}

TEST_F(NurbsTest, ATrailWithoutADensityFailsWithItsName) {
  _REGISTRY.at("vlx_ball_viz")->erase("samples_per_frame");
  try {
    convert_to_nurbs();
    FAIL();
  } catch (const host::Error& error) {
    EXPECT_STREQ(error.what(), "'samples_per_frame'");
    EXPECT_EQ(error.kind(), host::ErrorKind::key);
  }
}

TEST_F(NurbsTest, TheTrailsReferenceAndNodesAreLeftAsTheyAre) {
  convert_to_nurbs();
  EXPECT_TRUE(_REGISTRY.at("vlx_ball_viz")->get("ref").is_none());
  EXPECT_THAT(support::viz_shape(fake, "ball").arrays, IsEmpty());
}

}  // namespace
}  // namespace vantorelix
