#include <gtest/gtest.h>

#include "support/UnitRig.h"

namespace kestrune::test {
namespace {

TEST(OpenScheduler, ItsChannelsStandAsTheChannelsWindowListsThem) {
  UnitRig rig;
  rig.StartIdle();
  const radio::ChannelGrid& grid = rig->Parts().Channels.Grid();
  const auto opened = rig.Rules->OpenScheduler();
  const presenters::Scheduler& scheduler = *opened;
  ASSERT_GT(grid.RowCount(), 1);
  ASSERT_EQ(scheduler.Channels().size(), static_cast<std::size_t>(grid.RowCount()));
  for (int row = 1; row <= grid.RowCount(); ++row) {
    const schedule::SchedulerChannel& channel = scheduler.Channels()[static_cast<std::size_t>(row) - 1];
    EXPECT_EQ(channel.Number, grid.NumberAt(row));
    EXPECT_EQ(" " + channel.Station, grid.At(row)[radio::ChannelGrid::Station]);
  }
}

TEST(OpenScheduler, WhatItSavesCountsFromItsCloseOn) {
  UnitRig rig;
  rig.StartIdle();
  const auto opened = rig.Rules->OpenScheduler();
  presenters::Scheduler& scheduler = *opened;
  scheduler.SetStartDate(8, schedule::CodedDay(7));
  EXPECT_TRUE(scheduler.cmdSave());
  EXPECT_EQ(rig.Setting("ScheduleEnabled9"), "1");
  EXPECT_FALSE(rig->State().Entries[8].Enabled);
  EXPECT_TRUE(scheduler.MayClose(true));
  EXPECT_TRUE(rig->State().Entries[8].Enabled);
  EXPECT_TRUE(rig.Dialogs.Shown.empty());
}

}  // namespace
}  // namespace kestrune::test
