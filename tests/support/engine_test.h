// What every test of the engine starts from.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/fake_host.h"
#include "tests/support/recorder.h"

namespace vantorelix::support {

// A fresh engine on a fresh fake host, with an empty log of calls. A warning that the test does not announce fails it,
// and so does an announced one that is not shown.
class EngineTest : public ::testing::Test {
 protected:
  FakeHost fake;
  Recorder recorder{fake.handles()};

  // The next warning's whole text. Several are expected in the order announced.
  void expect_warning(const std::string& text) { expected_warnings_.push_back(text); }

  // Called again, starts the engine anew on the same host: a reload.
  void initialise() {
    _initialise(recorder.handles());
    recorder.clear();
  }

  void SetUp() override { initialise(); }
  void TearDown() override {
    EXPECT_EQ(fake.warnings, expected_warnings_);
    // Plugs that the engine still holds must go before the host does.
    recorder.stop_failing();
    initialise();
  }

 private:
  std::vector<std::string> expected_warnings_;
};

}  // namespace vantorelix::support
