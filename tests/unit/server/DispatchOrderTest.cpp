#include "corvane_mcp/server/DispatchOrder.h"

#include <gtest/gtest.h>

#include <vector>

namespace corvane::testing {
namespace {

TEST(DispatchOrderTest, GivesTheTurnToOneAtATime) {
  DispatchOrder order;
  auto first = order.tryEnter();
  ASSERT_TRUE(first);
  EXPECT_FALSE(order.tryEnter());
  first->giveUp();
  EXPECT_TRUE(order.tryEnter());
}

// Fails when a turn that was moved is given up twice, or not at all.
TEST(DispatchOrderTest, ATurnEndsWithItsLastOwner) {
  DispatchOrder order;
  {
    DispatchOrder::Turn owner;
    {
      auto first = order.tryEnter();
      owner = std::move(*first);
    }
    EXPECT_FALSE(order.tryEnter());
  }
  EXPECT_TRUE(order.tryEnter());
}

// Fails when the last who came is the first to begin.
TEST(DispatchOrderTest, BeginsInTheOrderOfComing) {
  DispatchOrder order;
  std::vector<int> begun;
  std::vector<DispatchOrder::Turn> held;
  auto first = order.tryEnter();
  for (int i = 0; i < 3; ++i) {
    order.enter([&, i](DispatchOrder::Turn turn) {
      begun.push_back(i);
      held.push_back(std::move(turn));
    });
  }
  EXPECT_EQ(begun, std::vector<int>());
  first->giveUp();
  EXPECT_EQ(begun, std::vector<int>{0});
  held.front().giveUp();
  EXPECT_EQ(begun, (std::vector<int>{0, 1}));
  // One that ends without having written lets the next begin as well.
  held.pop_back();
  EXPECT_EQ(begun, (std::vector<int>{0, 1, 2}));
}

TEST(DispatchOrderTest, BeginsAtOnceWhereNobodyWaits) {
  DispatchOrder order;
  bool hasBegun = false;
  order.enter([&](const DispatchOrder::Turn&) { hasBegun = true; });
  EXPECT_TRUE(hasBegun);
  EXPECT_TRUE(order.tryEnter());
}

}  // namespace
}  // namespace corvane::testing
