#include <gtest/gtest.h>

#include "radio/line/HoldingQueue.h"

namespace kestrune::test {
namespace {

TEST(HoldingQueue, FramesLeaveInTheOrderInWhichTheyCame) {
  radio::HoldingQueue queue;
  queue.Push("one");
  queue.Push("two");
  EXPECT_EQ(queue.Pop(), "one");
  queue.Push("three");
  EXPECT_EQ(queue.Pop(), "two");
  EXPECT_EQ(queue.Pop(), "three");
  EXPECT_EQ(queue.Count(), 0);
}

TEST(HoldingQueue, TenFramesFillIt) {
  radio::HoldingQueue queue;
  for (int count = 0; count < 9; ++count) queue.Push("x");
  EXPECT_FALSE(queue.Full());
  queue.Push("x");
  EXPECT_TRUE(queue.Full());
  EXPECT_EQ(queue.Count(), 10);
  queue.Clear();
  EXPECT_EQ(queue.Count(), 0);
  queue.Push("new");
  EXPECT_EQ(queue.Pop(), "new");
}

}  // namespace
}  // namespace kestrune::test
