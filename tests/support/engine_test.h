// What every test of the engine starts from.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "tests/support/fake_host.h"
#include "tests/support/recorder.h"

namespace vantorelix::host {

// How failures of tests show them.
inline void PrintTo(const Value& value, std::ostream* out) { *out << value.repr(); }
inline void PrintTo(const Vector& v, std::ostream* out) {
  *out << "(" << float_repr(v.x) << ", " << float_repr(v.y) << ", " << float_repr(v.z) << ")";
}

}  // namespace vantorelix::host

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
