#include <gtest/gtest.h>

#include "radio/channels/ChannelTable.h"

namespace kestrune::test {
namespace {

using radio::ChannelTable;

class ChannelTableTest : public ::testing::Test {
 protected:
  void Add(std::int16_t number) {
    ASSERT_TRUE(table.Add({.Number = number, .Station = "S" + std::to_string(number)}));
  }

  ChannelTable table;
};

TEST_F(ChannelTableTest, SlotsFillFromOneUpward) {
  EXPECT_EQ(table.ChannelCount(), 0);
  Add(45);
  Add(9);
  EXPECT_EQ(table.ChannelCount(), 2);
  EXPECT_EQ(table.ChannelIndex(45), 1);
  EXPECT_EQ(table.ChannelIndex(9), 2);
  EXPECT_EQ(table.At(1).Station, "S45");
  EXPECT_EQ(table.At(2).Station, "S9");
}

TEST_F(ChannelTableTest, AChannelThatIsNotThereHasSlotZeroWhichIsEmpty) {
  Add(45);
  for (const int number : {0, 9, 1000, 1001, -1, 32767, -32768}) {
    EXPECT_EQ(table.ChannelIndex(number), 0) << number;
  }
  EXPECT_EQ(table.At(0).Number, 0);
  EXPECT_EQ(table.At(-1).Number, 0);
  EXPECT_EQ(table.At(1001).Number, 0);
  EXPECT_EQ(table.Find(0), nullptr);
  EXPECT_EQ(table.Find(1001), nullptr);
  EXPECT_NE(table.Find(1), nullptr);
}

TEST_F(ChannelTableTest, ARemovalMovesTheLaterEntriesDownAndKeepsTheFormerSlotOfTheRemovedNumber) {
  for (const std::int16_t number : {10, 20, 30, 40}) Add(number);
  table.Remove(2);
  EXPECT_EQ(table.ChannelCount(), 3);
  EXPECT_EQ(table.ChannelIndex(10), 1);
  EXPECT_EQ(table.ChannelIndex(30), 2);
  EXPECT_EQ(table.ChannelIndex(40), 3);
  EXPECT_EQ(table.At(2).Number, 30);
  EXPECT_EQ(table.At(3).Station, "S40");
  EXPECT_EQ(table.At(4).Number, 0);
  EXPECT_EQ(table.ChannelIndex(20), 2) << "which is the slot of channel 30 now";
}

TEST_F(ChannelTableTest, RemovingWhatIsNotThereDoesNothing) {
  Add(10);
  for (const int slot : {0, 2, -1, 1001}) table.Remove(slot);
  EXPECT_EQ(table.ChannelCount(), 1);
  EXPECT_EQ(table.At(1).Number, 10);
}

TEST_F(ChannelTableTest, ClearingForgetsSlotsAndNumbers) {
  for (const std::int16_t number : {10, 20}) Add(number);
  table.Clear();
  EXPECT_EQ(table.ChannelCount(), 0);
  EXPECT_EQ(table.ChannelIndex(10), 0);
  EXPECT_EQ(table.ChannelIndex(20), 0);
  EXPECT_EQ(table.At(1).Number, 0);
}

TEST_F(ChannelTableTest, AThousandChannelsFillIt) {
  for (std::int16_t number = 1; number <= 1000; ++number) Add(number);
  EXPECT_FALSE(table.Add({.Number = 7}));
  EXPECT_EQ(table.ChannelCount(), 1000);
  EXPECT_EQ(table.ChannelIndex(7), 7);
  EXPECT_EQ(table.ChannelIndex(1000), 1000);
  table.Remove(1);
  EXPECT_EQ(table.ChannelIndex(1000), 999);
}

}  // namespace
}  // namespace kestrune::test
