#include "tests/support/recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/error.h"
#include "tests/support/fake_host.h"

namespace vantorelix::support {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecorderTest : public testing::Test {
 protected:
  RecorderTest() { fake.add("|ball|ballShape", "vantorelix"); }

  // The text of the error that asking for a node's existence gives.
  std::string failure() {
    try {
      hear.cmds->objExists("ball");
    } catch (const host::Error& e) {
      return e.what();
    }
    return "";
  }

  FakeHost fake;
  Recorder recorder{fake.handles()};
  Handles hear = recorder.handles();
};

TEST_F(RecorderTest, WritesCallsAsAScriptMakesThem) {
  hear.cmds->ls_selection();
  hear.cmds->setAttr("|ball|ballShape.lineWidth", 2.5);
  hear.cmds->setAttr("ballShape.note", "it's");
  hear.cmds->select({"ball"});
  hear.cmds->modelEditor_query((fake.panels = {{"p"}}, "p"), "motionTrails");
  hear.cmds->optionVar_append_string("paths", "/x");
  hear.cmds->curve(3, {{}, {}}, "c");
  hear.cmds->evalDeferred({"_rebuild_step", [] {}});
  hear.interpreter->set_environment("A", "b");
  EXPECT_THAT(recorder.log(),
              ElementsAre("cmds.ls(sl=True, long=True)", "cmds.setAttr('|ball|ballShape.lineWidth', 2.5)",
                          "cmds.setAttr('ballShape.note', \"it's\")", "cmds.select(['ball'])",
                          "cmds.modelEditor('p', q=True, motionTrails=True)",
                          "cmds.optionVar(stringValueAppend=('paths', '/x'))", "cmds.curve(d=3, p=<2>, name='c')",
                          "cmds.evalDeferred(_rebuild_step, lowestPriority=True)", "os.environ['A'] = 'b'"));
  EXPECT_EQ(fake.node("ballShape").attributes["lineWidth"], host::Value(2.5));
  EXPECT_EQ(fake.deferred.size(), 1u);
}

TEST_F(RecorderTest, PassesArraysThroughUnderTheirLength) {
  const auto values = std::make_shared<const std::vector<Vector>>(250);
  hear.om->findPlug("ballShape", "points")->set_vector_array(hear.om->vector_array(values));
  const auto array = hear.om->vector_array();
  array->append({1, 2, 3});
  hear.om->findPlug("ballShape", "colors")->set_vector_array(array);
  EXPECT_THAT(recorder.log(),
              ElementsAre("om.findPlug('ballShape', 'points')", "om.MVectorArray(<250>)", "plug.setMObject(<250>)",
                          "om.MVectorArray()", "array.append((1.0, 2.0, 3.0))", "om.findPlug('ballShape', 'colors')",
                          "plug.setMObject(<1>)"));
  EXPECT_EQ(fake.node("ballShape").arrays["points"], values);  // the same storage
  EXPECT_THAT(*fake.node("ballShape").arrays["colors"], ElementsAre(Vector{1, 2, 3}));
}

TEST_F(RecorderTest, LeavesOutTheLinesThatAreNotAskedFor) {
  hear.interpreter->time();
  hear.om->findPlug("ball", "worldMatrix")->translation_at(3.0, fake.ui_unit);
  hear.interpreter->print("x");
  EXPECT_THAT(recorder.calls(), ElementsAre("om.findPlug('ball', 'worldMatrix')", "print('x')"));
  EXPECT_THAT(recorder.log({kClock, kPrints}),
              ElementsAre("om.findPlug('ball', 'worldMatrix')", "plug.translation_at(3.0)"));
  EXPECT_EQ(recorder.count("time.time()"), 1u);
  EXPECT_EQ(recorder.call_count(), 4u);
}

TEST_F(RecorderTest, FailsTheCallOfANumberOnceAndSaysWhich) {
  hear.cmds->refresh();
  recorder.fail_call(2);
  EXPECT_EQ(failure(), "");
  EXPECT_EQ(failure(), "injected failure at call 3: cmds.objExists('ball')");
  EXPECT_EQ(failure(), "");
  EXPECT_EQ(recorder.call_count(), 4u);
}

TEST_F(RecorderTest, FailsCallsByTheirBeginning) {
  recorder.fail_line("cmds.objExists", 2);
  EXPECT_EQ(failure(), "");
  hear.cmds->refresh();
  EXPECT_NE(failure(), "");
  EXPECT_EQ(failure(), "");
  recorder.fail_line("cmds.objExists('ba");
  EXPECT_NE(failure(), "");
  EXPECT_NE(failure(), "");
  recorder.stop_failing();
  EXPECT_EQ(failure(), "");
}

TEST_F(RecorderTest, AFailedCallIsHeardButDoesNotReachTheHost) {
  recorder.fail_line("cmds.refresh", 1, Failure::interrupt);
  EXPECT_THROW(hear.cmds->refresh(), host::Interrupt);
  EXPECT_EQ(fake.refreshes, 0u);
  EXPECT_THAT(recorder.log(), ElementsAre("cmds.refresh()"));
}

TEST_F(RecorderTest, CountsAndFailsWithoutKeepingLines) {
  recorder.set_recording(false);
  recorder.fail_call(2);
  EXPECT_EQ(failure(), "");
  EXPECT_EQ(failure(), "injected failure at call 2: cmds.objExists('ball')");
  EXPECT_EQ(failure(), "");
  EXPECT_EQ(recorder.call_count(), 3u);
  EXPECT_THAT(recorder.log(), IsEmpty());
}

TEST_F(RecorderTest, ClearingStartsTheCountAgain) {
  hear.cmds->refresh();
  recorder.clear();
  EXPECT_EQ(recorder.call_count(), 0u);
  EXPECT_THAT(recorder.log(), IsEmpty());
}

TEST_F(RecorderTest, FollowsImportedModules) {
  bool called = false;
  fake.modules["Front"]["menu"] = [&] { called = true; };
  const auto module = hear.interpreter->import_module("Front");
  EXPECT_TRUE(module->has_attribute("menu"));
  module->call("menu");
  EXPECT_TRUE(called);
  EXPECT_THAT(recorder.log(), ElementsAre("import Front", "hasattr(Front, 'menu')", "Front.menu()"));
}

}  // namespace
}  // namespace vantorelix::support
