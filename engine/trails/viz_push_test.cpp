#include "engine/trails/viz_push.h"

#include <gmock/gmock.h>

#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using support::pushed;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// That a group of anything but four sequences is refused needs no test: VizData has exactly four.
class VizPushTest : public support::EngineTest {
 protected:
  VizData data{vectors({{1, 2, 3}, {4, 5, 6}}), vectors({{0, 0, 1}, {0, 1, 0}}), vectors({{7, 8, 9}}),
               vectors({{1, 1, 1}})};

  void SetUp() override {
    EngineTest::SetUp();
    support::add_trail(fake, "ball");
  }
  static Vectors vectors(std::vector<Vector> values) {
    return std::make_shared<const std::vector<Vector>>(std::move(values));
  }
};

TEST_F(VizPushTest, ThePushWritesTheFourArraysAndTheKeyTimesInOrder) {
  const std::vector<double> key_times = {2.5};
  _push_data_to_viz("vlx_ball_viz", data, &key_times);
  EXPECT_EQ(recorder.log(), support::push_lines("ball", 2, 1));
  EXPECT_EQ(*pushed(fake, "ball", "keyPoints"), *data.key_positions);
  EXPECT_EQ(*pushed(fake, "ball", "keyColors"), *data.key_colors);
  EXPECT_THAT(*pushed(fake, "ball", "keyTimes"), ElementsAre(Vector{2.5, 0, 0}));
}

TEST_F(VizPushTest, AHostThatCanSharesTheArraysInsteadOfCopyingThem) {
  _push_data_to_viz("vlx_ball_viz", data);
  EXPECT_EQ(pushed(fake, "ball", "points"), data.positions);
  EXPECT_EQ(pushed(fake, "ball", "colors"), data.colors);
}

TEST_F(VizPushTest, EmptySequencesAreWrittenAsEmptyArrays) {
  const std::vector<double> none;
  data.key_positions = data.key_colors = vectors({});
  _push_data_to_viz("vlx_ball_viz", data, &none);
  EXPECT_THAT(*pushed(fake, "ball", "keyPoints"), IsEmpty());
  EXPECT_THAT(*pushed(fake, "ball", "keyTimes"), IsEmpty());
}

TEST_F(VizPushTest, WithoutKeyTimesTheAttributeIsLeftUntouched) {
  _push_data_to_viz("vlx_ball_viz", data);
  EXPECT_EQ(pushed(fake, "ball", "keyTimes"), nullptr);
  EXPECT_EQ(recorder.count("om.findPlug("), 4u);
}

TEST_F(VizPushTest, ANodeWithoutKeyTimesReceivesEverythingElse) {
  fake.refused = {"keyTimes"};
  const std::vector<double> key_times = {2.5};
  _push_data_to_viz("vlx_ball_viz", data, &key_times);
  EXPECT_EQ(*pushed(fake, "ball", "keyColors"), *data.key_colors);
}

TEST_F(VizPushTest, ASequenceThatTheHostCannotConvertIsAppendedValueByValueEachTime) {
  fake.converts_sequences = false;
  _set_vector_array_attr("vlx_ball_vizShape", "points", data.positions);
  EXPECT_THAT(recorder.log(),
              ElementsAre("om.findPlug('vlx_ball_vizShape', 'points')", "om.MVectorArray(<2>)", "om.MVectorArray()",
                          "array.append((1.0, 2.0, 3.0))", "array.append((4.0, 5.0, 6.0))", "plug.setMObject(<2>)"));
  EXPECT_EQ(*pushed(fake, "ball", "points"), *data.positions);
  _set_vector_array_attr("vlx_ball_vizShape", "colors", data.colors);
  EXPECT_EQ(recorder.count("om.MVectorArray(<2>)"), 2u);
}

TEST_F(VizPushTest, AMissingShapeOrAttributeReachesTheCaller) {
  EXPECT_THROW(_push_data_to_viz("gone", data), host::Error);
  EXPECT_THROW(_push_data_to_viz("ball", data), host::Error);  // a transform without a shape
  fake.refused = {"colors"};
  EXPECT_THROW(_push_data_to_viz("vlx_ball_viz", data), host::Error);
}

TEST_F(VizPushTest, AnInterruptPassesThroughTheGuards) {
  const std::vector<double> key_times = {2.5};
  recorder.fail_line("om.MVectorArray(<1>)", 3, support::Failure::interrupt);
  EXPECT_THROW(_push_data_to_viz("vlx_ball_viz", data, &key_times), host::Interrupt);
}

TEST_F(VizPushTest, FrameAttributesAreWrittenAsDoubles) {
  _update_frame_attrs("vlx_ball_viz", 5, "0.25");
  EXPECT_EQ(recorder.log(), support::frame_attr_lines("ball", "5.0", "0.25"));
}

TEST_F(VizPushTest, FrameAttributesAreBestEffort) {
  _update_frame_attrs("ball", 1.0, 1.0);
  _update_frame_attrs("gone", 1.0, 1.0);
  _update_frame_attrs("vlx_ball_viz", {}, 1.0);
  fake.refused = {"startFrame"};
  _update_frame_attrs("vlx_ball_viz", 1.0, 1.0);
  EXPECT_EQ(recorder.count("cmds.setAttr("), 1u);  // the refused one; the step is not tried after it
  EXPECT_THAT(fake.messages, IsEmpty());
}

}  // namespace
}  // namespace vantorelix
