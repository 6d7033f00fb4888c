#include "standalone/host/undo_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/error.h"

namespace vantorelix::standalone {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct UndoQueueTest : testing::Test {
  Host host{Scene()};
  UndoQueue queue{host};
  Scene& s = host.scene();
  NodeId ball = s.nodes.create("transform", "ball");

  template <class Work>
  void command(const char* name, Work work, bool succeeded = true) {
    queue.begin(name);
    work();
    queue.end(succeeded);
  }
  void move(double x) {
    command("move", [&] { s.attributes.set_channel(ball, Channel::translateX, x); });
  }
  double x() const { return host_scene().attributes.channel(ball, Channel::translateX); }
  const Scene& host_scene() const { return s; }
};

TEST_F(UndoQueueTest, ACommandIsUndoneAndDoneAgain) {
  move(1);
  move(2);
  EXPECT_THAT(queue.names(), ElementsAre("move", "move"));
  queue.undo();
  EXPECT_EQ(x(), 1);
  queue.undo();
  EXPECT_EQ(x(), 0);
  EXPECT_THROW(queue.undo(), host::Error);
  queue.redo();
  queue.redo();
  EXPECT_EQ(x(), 2);
  EXPECT_THROW(queue.redo(), host::Error);
}

TEST_F(UndoQueueTest, ANewCommandDropsWhatCouldBeDoneAgain) {
  move(1);
  queue.undo();
  EXPECT_EQ(queue.redo_name(), "move");
  command("select", [] {});
  EXPECT_EQ(queue.redo_count(), 0u);
  EXPECT_EQ(queue.undo_name(), "select");
}

TEST_F(UndoQueueTest, WhatIsDoneOutsideOfCommandsHasNoEntryAndDropsNothing) {
  move(1);
  queue.undo();
  s.attributes.set_channel(ball, Channel::translateY, 5);
  EXPECT_EQ(queue.undo_count(), 0u);
  queue.redo();
  EXPECT_EQ(x(), 1);
  EXPECT_EQ(s.attributes.channel(ball, Channel::translateY), 5);
}

TEST_F(UndoQueueTest, AFailedCommandHasAnEntryOnlyIfItChangedSomething) {
  command(
      "nothing", [] {}, false);
  EXPECT_EQ(queue.undo_count(), 0u);
  command(
      "half", [&] { s.attributes.set_channel(ball, Channel::translateX, 3); }, false);
  EXPECT_EQ(queue.undo_name(), "half");
  queue.undo();
  EXPECT_EQ(x(), 0);
}

TEST_F(UndoQueueTest, TheSelectionComesBack) {
  const NodeId box = s.nodes.create("transform", "box");
  host.select({ball});
  command("select", [&] { host.select({box, ball}); });
  command("delete", [&] { s.nodes.remove(box); });
  EXPECT_THAT(host.selection(), ElementsAre(ball));
  queue.undo();
  EXPECT_THAT(host.selection(), ElementsAre(box, ball));
  queue.undo();
  EXPECT_THAT(host.selection(), ElementsAre(ball));
  queue.redo();
  EXPECT_THAT(host.selection(), ElementsAre(box, ball));
}

TEST_F(UndoQueueTest, ACommandThatLeftTheSelectionAloneDoesSoWhenUndone) {
  move(1);
  host.select({ball});
  queue.undo();
  EXPECT_THAT(host.selection(), ElementsAre(ball));
}

TEST_F(UndoQueueTest, AChunkIsOneEntryAndTheOutermostNamesIt) {
  queue.open_chunk("outer");
  EXPECT_EQ(queue.chunk_name(), "outer");
  move(1);
  queue.open_chunk("inner");
  move(2);
  queue.close_chunk();
  EXPECT_EQ(queue.undo_count(), 0u);
  EXPECT_THROW(queue.undo(), host::Error);
  move(3);
  queue.close_chunk();
  EXPECT_THAT(queue.names(), ElementsAre("outer"));
  EXPECT_EQ(queue.chunk_name(), "");
  queue.undo();
  EXPECT_EQ(x(), 0);
  queue.redo();
  EXPECT_EQ(x(), 3);
}

TEST_F(UndoQueueTest, AChunkWithoutCommandsLeavesNoEntry) {
  move(1);
  queue.undo();
  queue.open_chunk("nothing");
  queue.close_chunk();
  queue.close_chunk();
  EXPECT_EQ(queue.undo_count(), 0u);
  EXPECT_EQ(queue.redo_count(), 1u);
}

TEST_F(UndoQueueTest, AnUnnamedChunkHasTheNameOfItsFirstCommand) {
  queue.open_chunk("");
  command("first", [] {});
  command("second", [] {});
  queue.close_chunk();
  EXPECT_EQ(queue.undo_name(), "first");
}

TEST_F(UndoQueueTest, WhileOffNothingIsWrittenDownOrDropped) {
  move(1);
  move(2);
  queue.undo();
  queue.set_on(false);
  command("unseen", [&] { s.attributes.set_channel(ball, Channel::translateY, 7); });
  EXPECT_THROW(queue.undo(), host::Error);
  queue.set_on(true);
  EXPECT_EQ(queue.undo_count(), 1u);
  queue.redo();
  EXPECT_EQ(x(), 2);
  EXPECT_EQ(s.attributes.channel(ball, Channel::translateY), 7);
}

TEST_F(UndoQueueTest, TheOldestEntriesGo) {
  queue.set_length(3);
  for (int i = 1; i <= 5; ++i) move(i);
  EXPECT_EQ(queue.undo_count(), 3u);
  queue.set_infinite(true);
  for (int i = 6; i <= 100; ++i) move(i);
  EXPECT_EQ(queue.undo_count(), 98u);
  queue.set_infinite(false);
  EXPECT_EQ(queue.undo_count(), 3u);
  queue.set_length(0);
  EXPECT_EQ(queue.undo_count(), 0u);
  move(1);
  EXPECT_EQ(queue.undo_count(), 0u);
}

struct WithListener : UndoQueueTest {
  NodeId curve = s.curves.set_key(ball, Channel::translateY, 1, 1);

  // What a listener to edited curves does, as a session has it called.
  template <class Work>
  void listen(Work work) {
    s.changes.set_listener({[this, work](NodeId) {
                              queue.begin_aside();
                              work();
                              queue.end(true);
                            },
                            {},
                            {}});
  }
  void key(double value) {
    command("key", [&] { s.curves.set_key(curve, 1, value); });
  }
};

TEST_F(WithListener, ItsCommandsHaveEntriesOfTheirOwn) {
  listen([this] { move(9); });
  key(2);
  EXPECT_THAT(queue.names(), ElementsAre("key", "move"));
  queue.undo();
  EXPECT_EQ(x(), 0);
  EXPECT_EQ(s.curves.at(curve).keys()[0].value, 2);
}

TEST_F(WithListener, WhatItDoesWithoutACommandIsNotThatOfTheCommandAround) {
  listen([this] { s.attributes.set_channel(ball, Channel::translateX, 9); });
  key(2);
  s.changes.set_listener({});
  queue.undo();
  EXPECT_EQ(x(), 9);
  EXPECT_EQ(s.curves.at(curve).keys()[0].value, 1);
}

TEST_F(WithListener, WhatIsDoneAgainIsDroppedWhenACommandRunsInsideAnUndo) {
  key(2);
  listen([this] { move(9); });
  queue.undo();
  EXPECT_THAT(queue.names(), ElementsAre("move"));
  EXPECT_EQ(queue.redo_count(), 0u);
}

TEST_F(WithListener, AnUndoInsideACommandIsRefused) {
  key(2);
  listen([this] { EXPECT_THROW(queue.undo(), host::Error); });
  key(3);
}

TEST_F(WithListener, ForgettingInsideACommandForgetsThatCommand) {
  listen([this] { queue.clear(); });
  key(2);
  move(1);
  EXPECT_THAT(queue.names(), ElementsAre("move"));
  s.attributes.set_channel(ball, Channel::translateX, 3);
  listen([this] { queue.clear(); });
  key(4);
  queue.end(true);  // of nothing
  EXPECT_EQ(queue.undo_count(), 0u);
}

TEST_F(UndoQueueTest, ItKnowsWhichNodesItCanBringBack) {
  EXPECT_FALSE(queue.keeps(ball));
  command("delete", [&] { s.nodes.remove(ball); });
  EXPECT_TRUE(queue.keeps(ball));
  queue.undo();
  EXPECT_FALSE(queue.keeps(ball));
  queue.redo();
  queue.clear();
  EXPECT_FALSE(queue.keeps(ball));
}

}  // namespace
}  // namespace vantorelix::standalone
