#include "engine/state/own_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/support/fake_host.h"

namespace vantorelix {
namespace {

using support::FakeHost;

// Gives every variable a value that tells of `n`.
void fill(int n) {
  PLUGIN_FILE = std::to_string(n);
  for (int i = 0; i < n; ++i) _REGISTRY.set("trail " + std::to_string(i), std::make_shared<Settings>());
  _CB_ID = host::Value(n);
  _REBUILDING = n % 2 == 0;
  _GEN = n;
  _PENDING = n % 2 == 0;
  _WORK = std::make_shared<WorkRecord>();
  _WORK->gen = n;
  _LAST_EDIT = n;
  _MSG_HANDLER = n;
}

void expect_filled(int n) {
  EXPECT_EQ(PLUGIN_FILE, std::to_string(n));
  EXPECT_EQ(_REGISTRY.size(), static_cast<std::size_t>(n));
  EXPECT_EQ(_REGISTRY.contains("trail 0"), n != 0);
  EXPECT_EQ(std::get<host::Value>(*_CB_ID), host::Value(n));
  EXPECT_EQ(_REBUILDING, n % 2 == 0);
  EXPECT_EQ(_GEN, n);
  EXPECT_EQ(_PENDING, n % 2 == 0);
  EXPECT_EQ(_WORK->gen, n);
  EXPECT_EQ(_LAST_EDIT, n);
  EXPECT_EQ(_MSG_HANDLER, host::Value(n));
}

class OwnStateTest : public ::testing::Test {
 protected:
  OwnStateTest() { _forget(); }  // what the tests before left
  ~OwnStateTest() override { _forget(); }
};

TEST_F(OwnStateTest, EveryVariableAndHandleIsThereInItsTurnsAlone) {
  FakeHost first, second;
  OwnState a, b;
  fill(11);
  {
    const OwnState::Turn turn(a);
    _initialise(first.handles());
    fill(2);
  }
  {
    const OwnState::Turn turn(b);
    EXPECT_EQ(cmds, nullptr);
    EXPECT_TRUE(_REGISTRY.empty());
    _initialise(second.handles());
    fill(3);
  }
  expect_filled(11);
  EXPECT_EQ(cmds, nullptr);
  {
    const OwnState::Turn turn(a);
    expect_filled(2);
    EXPECT_EQ(cmds, first.handles().cmds);
    EXPECT_EQ(om, first.handles().om);
    EXPECT_EQ(oma, first.handles().oma);
    EXPECT_EQ(interpreter, first.handles().interpreter);
  }
  const OwnState::Turn turn(b);
  expect_filled(3);
  EXPECT_EQ(cmds, second.handles().cmds);
}

TEST_F(OwnStateTest, AnExceptionEndsATurn) {
  OwnState own;
  fill(5);
  try {
    const OwnState::Turn turn(own);
    fill(2);
    throw std::runtime_error("in between");
  } catch (const std::runtime_error&) {
  }
  expect_filled(5);
  const OwnState::Turn turn(own);
  expect_filled(2);
}

TEST_F(OwnStateTest, TurnsLieInsideEachOther) {
  OwnState a, b;
  const OwnState::Turn of_a(a);
  fill(2);
  {
    const OwnState::Turn of_b(b);
    fill(3);
    {
      const OwnState::Turn again(b);
      expect_filled(3);
      EXPECT_THROW(const OwnState::Turn refused(a), std::logic_error);
      expect_filled(3);
    }
    expect_filled(3);
  }
  expect_filled(2);
}

TEST_F(OwnStateTest, WhatItHeldGoesWithItAndNothingIsLeftToOthers) {
  std::weak_ptr<WorkItem> held, discarded;
  {
    OwnState own;
    const auto one_item = [](std::weak_ptr<WorkItem>& seen) {
      auto work = std::make_shared<WorkRecord>();
      auto item = std::make_shared<WorkItem>();
      seen = item;
      work->items = WorkItems(std::vector{std::move(item)});
      return work;
    };
    {
      const OwnState::Turn turn(own);
      _WORK = one_item(discarded);
      _WORK = one_item(held);
    }
    free_discarded_items(100);  // of others
    EXPECT_FALSE(discarded.expired());
    EXPECT_FALSE(held.expired());
  }
  EXPECT_TRUE(discarded.expired());
  EXPECT_TRUE(held.expired());
  EXPECT_EQ(module_state.discarded, nullptr);
}

}  // namespace
}  // namespace vantorelix
