#include "engine/state/messages.h"

#include <gmock/gmock.h>

#include "host/error.h"
#include "tests/support/engine_test.h"

// A wrong number of arguments cannot be tried here: it does not compile.

namespace vantorelix {
namespace {

using support::EngineTest;
using testing::ElementsAre;
using testing::IsEmpty;

class Messages : public EngineTest {
 protected:
  // Installs a handler that records what it is given, then fails with `failure` if there is one.
  void install_handler(std::function<void()> failure = {}) {
    _set_msg_handler(host::Value::function("handler", [this, failure](const host::Value& text) {
      heard.push_back(text);
      if (failure) failure();
    }));
  }

  std::vector<host::Value> heard;
};

TEST_F(Messages, WithoutAHandlerAppearInTheViewportAndArePrintedOnce) {
  _msg("All trails cleared.");
  EXPECT_THAT(recorder.log(), ElementsAre("cmds.inViewMessage(amg='All trails cleared.', pos='midCenter', fade=True, "
                                          "alpha=0.9)",
                                          "print('[Vantorelix] All trails cleared.')"));
}

TEST_F(Messages, GoBareToAHandlerAndArePrintedOnce) {
  install_handler();
  _msg("Trail built.");
  EXPECT_THAT(heard, ElementsAre(host::Value("Trail built.")));
  EXPECT_THAT(recorder.log(), ElementsAre("print('[Vantorelix] Trail built.')"));
}

TEST_F(Messages, OfAFailingHandlerGoToTheViewportInstead) {
  install_handler([] { throw host::Error("no window"); });
  _msg("x");
  EXPECT_THAT(fake.messages, ElementsAre(host::Value("x")));
  EXPECT_THAT(fake.prints, ElementsAre("[Vantorelix] x"));
}

TEST_F(Messages, AreDeliveredAgainWhenThePrintAfterTheHandlerFails) {
  install_handler();
  recorder.fail_line("print", 1);
  _msg("x");
  EXPECT_EQ(heard.size(), 1u);
  EXPECT_THAT(fake.messages, ElementsAre(host::Value("x")));
  EXPECT_THAT(fake.prints, ElementsAre("[Vantorelix] x"));
}

TEST_F(Messages, ArePrintedWhereTheViewportFails) {
  recorder.fail_line("cmds.inViewMessage");
  _msg("x");
  EXPECT_THAT(fake.prints, ElementsAre("[Vantorelix] x"));
}

TEST_F(Messages, LetOnlyTheFailureOfTheLastPrintOut) {
  recorder.fail_line("print");
  EXPECT_THROW(_msg("x"), host::Error);
}

TEST_F(Messages, NeverSwallowAnInterrupt) {
  install_handler([] { throw host::Interrupt(); });
  EXPECT_THROW(_msg("x"), host::Interrupt);
  EXPECT_THAT(fake.prints, IsEmpty());
  _set_msg_handler({});
  recorder.fail_line("cmds.inViewMessage", 0, support::Failure::interrupt);
  EXPECT_THROW(_msg("x"), host::Interrupt);
  EXPECT_THAT(fake.prints, IsEmpty());
}

TEST_F(Messages, AnythingNotCallableRestoresTheViewport) {
  for (const host::Value& nothing : {host::Value(), host::Value(42), host::Value("handler")}) {
    install_handler();
    _set_msg_handler(nothing);
    EXPECT_TRUE(_MSG_HANDLER.is_none());
    _msg("x");
    EXPECT_THAT(heard, IsEmpty());
  }
  EXPECT_EQ(fake.messages.size(), 3u);
}

TEST_F(Messages, ThatAreNoTextAreHandedOnUnchanged) {
  _msg(42);
  install_handler();
  _msg(7.0);
  EXPECT_THAT(fake.messages, ElementsAre(host::Value(42)));
  EXPECT_THAT(heard, ElementsAre(host::Value(7.0)));
  EXPECT_THAT(fake.prints, ElementsAre("[Vantorelix] 42", "[Vantorelix] 7.0"));
}

TEST_F(Messages, MayReplaceTheirOwnHandler) {
  _set_msg_handler(host::Value::function("once", [](const host::Value&) { _set_msg_handler({}); }));
  _msg("first");
  _msg("second");
  EXPECT_THAT(fake.messages, ElementsAre(host::Value("second")));
}

}  // namespace
}  // namespace vantorelix
