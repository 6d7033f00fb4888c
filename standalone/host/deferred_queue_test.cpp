#include "standalone/host/deferred_queue.h"

#include <gtest/gtest.h>

#include <string>

#include "host/error.h"

namespace vantorelix::standalone {
namespace {

DeferredQueue* queue = nullptr;
std::string ran;

void a() { ran += 'a'; }
void b() { ran += 'b'; }
void again() {
  ran += 'r';
  queue->push({"again", again});
}
void fail() { throw host::Error("no luck"); }

class DeferredQueueTest : public testing::Test {
 protected:
  DeferredQueueTest() {
    queue = &calls;
    ran.clear();
  }
  DeferredQueue calls;
};

TEST_F(DeferredQueueTest, runs_calls_in_order_each_once) {
  calls.push({"a", a});
  calls.push({"b", b});
  calls.push({"a", a});
  while (calls.run_one()) {
  }
  EXPECT_EQ(ran, "aba");
  EXPECT_FALSE(calls.run_one());
}

TEST_F(DeferredQueueTest, puts_a_call_that_queues_itself_behind_the_others) {
  calls.push({"again", again});
  calls.push({"a", a});
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(calls.run_one());
  EXPECT_EQ(ran, "rar");
  EXPECT_EQ(calls.size(), 1u);
}

TEST_F(DeferredQueueTest, counts_a_call_that_throws_as_run) {
  calls.push({"fail", fail});
  calls.push({"a", a});
  EXPECT_THROW(calls.run_one(), host::Error);
  EXPECT_TRUE(calls.run_one());
  EXPECT_EQ(ran, "a");
}

}  // namespace
}  // namespace vantorelix::standalone
