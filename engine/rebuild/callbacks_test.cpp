#include "engine/rebuild/callbacks.h"

#include <gmock/gmock.h>

#include "engine/state/state.h"
#include "host/error.h"
#include "tests/support/engine_test.h"
#include "tests/support/trail_scene.h"

namespace vantorelix {
namespace {

using support::Lines;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const Lines kInstallation = {"oma.MAnimMessage.addAnimCurveEditedCallback(_on_anim_edit)",
                             "oma.MAnimMessage.addAnimKeyframeEditedCallback(_on_anim_edit)",
                             "om.MDGMessage.addNodeRemovedCallback(_on_anim_edit, 'animCurve')"};

class CallbacksTest : public support::EngineTest {
 protected:
  static std::vector<host::Value> identifiers() { return std::get<std::vector<host::Value>>(*_CB_ID); }
};

TEST_F(CallbacksTest, ThreeMessagesAreSubscribedOnce) {
  _ensure_callback();
  _ensure_callback();
  EXPECT_EQ(recorder.log(), kInstallation);
  EXPECT_THAT(identifiers(), ElementsAre(host::Value(1), host::Value(2), host::Value(3)));
}

TEST_F(CallbacksTest, RemovalTakesThemInTheirOrder) {
  _ensure_callback();
  recorder.clear();
  _remove_callback();
  EXPECT_THAT(recorder.log(), ElementsAre("om.MMessage.removeCallback(1)", "om.MMessage.removeCallback(2)",
                                          "om.MMessage.removeCallback(3)"));
  EXPECT_FALSE(_CB_ID);
  EXPECT_THAT(fake.subscriptions, IsEmpty());
}

TEST_F(CallbacksTest, AFailedKeyframeSubscriptionIsSilent) {
  recorder.fail_line(kInstallation[1]);
  _ensure_callback();
  EXPECT_EQ(recorder.log(), kInstallation);
  EXPECT_THAT(identifiers(), SizeIs(2));
}

TEST_F(CallbacksTest, WhenAllSubscriptionsFailOneWarningIsShownAndTheNextCallTriesAgain) {
  for (const std::string& line : kInstallation) recorder.fail_line(line);
  expect_warning("[Vantorelix] callback register fail: injected failure at call 1: " + kInstallation[0]);
  _ensure_callback();
  EXPECT_FALSE(_CB_ID);
  recorder.stop_failing();
  _ensure_callback();
  EXPECT_THAT(identifiers(), SizeIs(3));
}

TEST_F(CallbacksTest, AFailedWarningLeavesTheInstallation) {
  recorder.fail_line(kInstallation[0]);
  recorder.fail_line("cmds.warning(");
  EXPECT_THROW(_ensure_callback(), host::Error);
  EXPECT_FALSE(_CB_ID);
}

TEST_F(CallbacksTest, AnInterruptWhileSubscribingPassesThrough) {
  recorder.fail_line(kInstallation[2], 0, support::Failure::interrupt);
  EXPECT_THROW(_ensure_callback(), host::Interrupt);
}

TEST_F(CallbacksTest, RemovalStopsTheQueueEvenWhenNothingIsInstalled) {
  _PENDING = true;
  _WORK = std::make_shared<WorkRecord>();
  _remove_callback();
  EXPECT_FALSE(_PENDING);
  EXPECT_FALSE(_WORK);
  EXPECT_THAT(recorder.log(), IsEmpty());
}

TEST_F(CallbacksTest, ASingleIdentifierIsRemovedToo) {
  _CB_ID = host::Value("one");
  _remove_callback();
  EXPECT_THAT(recorder.log(), ElementsAre("om.MMessage.removeCallback('one')"));
  EXPECT_FALSE(_CB_ID);
}

TEST_F(CallbacksTest, ARemovalThatFailsDoesNotKeepTheOthers) {
  _ensure_callback();
  recorder.fail_line("om.MMessage.removeCallback(1)");
  _remove_callback();
  EXPECT_THAT(fake.subscriptions, SizeIs(1));
  EXPECT_FALSE(_CB_ID);
}

// Callbacks take no arguments here: the host layer drops whatever it is passed before it calls.
TEST_F(CallbacksTest, EachOfTheThreeMessagesSchedulesARebuild) {
  support::add_trail(fake, "ball");
  _ensure_callback();
  fake.fire_curve_edited();
  EXPECT_EQ(_GEN, 1);
  fake.fire_key_edited();
  EXPECT_EQ(_GEN, 2);
  fake.fire_node_removed();
  EXPECT_EQ(_GEN, 3);
  fake.fire_node_removed("transform");
  EXPECT_EQ(_GEN, 3);
  EXPECT_THAT(fake.deferred, SizeIs(1));
}

TEST_F(CallbacksTest, AnEditWithoutTrailsIsIgnoredAndTheSubscriptionsStay) {
  _ensure_callback();
  fake.fire_curve_edited();
  EXPECT_EQ(_GEN, 0);
  EXPECT_THAT(fake.subscriptions, SizeIs(3));
}

}  // namespace
}  // namespace vantorelix
