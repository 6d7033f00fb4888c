#include "standalone/host/messages.h"

#include <gtest/gtest.h>

#include "host/error.h"

namespace vantorelix::standalone {
namespace {

using host::Callback;
using host::Error;
using host::Value;

// Callbacks are plain functions, so what they note and change is here.
Messages* hub = nullptr;
std::vector<std::string> heard;
std::vector<Value> identifiers;

void note_a() { heard.push_back("a"); }
void note_b() { heard.push_back("b"); }
void leave_all() {
  heard.push_back("leave");
  for (const Value& identifier : identifiers) hub->unsubscribe(identifier);
}
void join_b() {
  heard.push_back("join");
  hub->subscribe(Message::curve_edited, {"b", note_b});
}
void fail() { throw Error("no luck"); }
void interrupt() { throw host::Interrupt(); }

class MessagesTest : public testing::Test {
 protected:
  MessagesTest() {
    hub = &messages;
    heard.clear();
    identifiers.clear();
  }
  std::vector<std::string> reports;
  Messages messages{[this](const std::string& text) { reports.push_back(text); }};
};

using Heard = std::vector<std::string>;

TEST_F(MessagesTest, reach_the_subscribers_of_their_kind_in_order) {
  messages.subscribe(Message::curve_edited, {"a", note_a});
  messages.subscribe(Message::keyframe_edited, {"fail", fail});
  messages.subscribe(Message::curve_edited, {"b", note_b});
  messages.send(Message::curve_edited);
  EXPECT_EQ(heard, (Heard{"a", "b"}));
}

TEST_F(MessagesTest, of_removed_nodes_reach_those_who_asked_for_their_type) {
  messages.subscribe(Message::node_removed, {"a", note_a}, "animCurve");
  messages.subscribe(Message::node_removed, {"b", note_b}, "dependNode");
  messages.send(Message::node_removed, "animCurveTL");
  EXPECT_EQ(heard, (Heard{"a", "b"}));
  heard.clear();
  messages.send(Message::node_removed, "transform");
  EXPECT_EQ(heard, Heard{"b"});
}

TEST_F(MessagesTest, stop_for_a_subscriber_that_is_removed_while_they_are_on_their_way) {
  identifiers.push_back(messages.subscribe(Message::curve_edited, {"leave", leave_all}));
  identifiers.push_back(messages.subscribe(Message::curve_edited, {"a", note_a}));
  messages.subscribe(Message::curve_edited, {"b", note_b});
  messages.send(Message::curve_edited);
  EXPECT_EQ(heard, (Heard{"leave", "b"}));
  EXPECT_EQ(messages.size(), 1u);
}

TEST_F(MessagesTest, reach_a_new_subscriber_from_the_next_one_on) {
  messages.subscribe(Message::curve_edited, {"join", join_b});
  messages.send(Message::curve_edited);
  EXPECT_EQ(heard, Heard{"join"});
}

TEST_F(MessagesTest, report_a_subscriber_that_fails_and_go_on) {
  messages.subscribe(Message::curve_edited, {"fail", fail});
  messages.subscribe(Message::curve_edited, {"a", note_a});
  messages.send(Message::curve_edited);
  EXPECT_EQ(heard, Heard{"a"});
  EXPECT_EQ(reports, Heard{"callback fail failed: no luck"});
}

TEST_F(MessagesTest, let_an_interrupt_through) {
  messages.subscribe(Message::curve_edited, {"interrupt", interrupt});
  EXPECT_THROW(messages.send(Message::curve_edited), host::Interrupt);
  EXPECT_TRUE(reports.empty());
}

TEST_F(MessagesTest, refuse_an_identifier_that_is_none_of_a_present_subscriber) {
  const Value once = messages.subscribe(Message::curve_edited, {"a", note_a});
  messages.unsubscribe(once);
  EXPECT_THROW(messages.unsubscribe(once), Error);
  EXPECT_THROW(messages.unsubscribe(Value()), Error);
  EXPECT_THROW(messages.unsubscribe(Value(0)), Error);
  EXPECT_THROW(messages.unsubscribe(Value::function("f", [](const Value&) {})), Error);
}

TEST_F(MessagesTest, tell_two_subscriptions_of_one_function_apart) {
  const Value first = messages.subscribe(Message::curve_edited, {"a", note_a});
  const Value second = messages.subscribe(Message::curve_edited, {"a", note_a});
  EXPECT_FALSE(first == second);
  messages.unsubscribe(first);
  messages.send(Message::curve_edited);
  EXPECT_EQ(heard, Heard{"a"});
}

}  // namespace
}  // namespace vantorelix::standalone
