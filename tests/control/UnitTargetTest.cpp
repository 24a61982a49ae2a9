#include <gtest/gtest.h>

#include "control/UnitTarget.h"
#include "support/UnitRig.h"

namespace kestrune::control {
namespace {

using base::DateValue;
using test::UnitRig;

ScheduleChange TonightOn(int channel) {
  ScheduleChange change;
  change.Number = 3;
  change.On = schedule::CodedDay(7);
  change.At = 20 * 60;
  change.For = 60;
  change.Channel = channel;
  return change;
}

TEST(UnitTarget, AnEntryThatIsSetCountsAtOnce) {
  UnitRig rig;
  rig.StartIdle();
  UnitTarget target(*rig);
  const std::vector<ChannelReport> channels = target.Channels();
  ASSERT_FALSE(channels.empty());
  const CommandResult set = target.SetSchedule(TonightOn(channels[0].Number));
  EXPECT_TRUE(set.Done) << set.Reason;
  EXPECT_TRUE(rig->Entries()[2].Enabled);
  const ScheduleReport report = target.Schedule().at(2);
  EXPECT_EQ(report.On, "Every Saturday");
  EXPECT_EQ(report.At, "8:00 PM");
  EXPECT_EQ(report.Minutes, 60);
  EXPECT_EQ(report.Station, channels[0].Station);
  EXPECT_TRUE(target.EnableSchedule(3, false).Done);
  EXPECT_FALSE(rig->Entries()[2].Enabled);
  EXPECT_TRUE(target.ClearSchedule(3).Done);
  EXPECT_NE(target.Schedule().at(2).On, "Every Saturday");
}

TEST(UnitTarget, ARefusalLeavesTheScheduleAlone) {
  UnitRig rig;
  rig.StartIdle();
  UnitTarget target(*rig);
  const CommandResult set = target.SetSchedule(TonightOn(254));
  EXPECT_FALSE(set.Done);
  EXPECT_EQ(set.Reason, "channel 254 is not in the channel list");
  EXPECT_FALSE(rig->Entries()[2].Enabled);
}

TEST(UnitTarget, AnOpenSchedulerWithChangesKeepsCommandsOnEntriesOut) {
  UnitRig rig;
  rig.StartIdle();
  UnitTarget target(*rig);
  const int channel = target.Channels().at(0).Number;
  const auto scheduler = rig->OpenScheduler();
  EXPECT_TRUE(target.SetSchedule(TonightOn(channel)).Done) << "it has none yet";
  EXPECT_TRUE(scheduler->Row(2).Enabled) << "and shows what the command did";
  scheduler->TickKill(5, true);
  const std::string why = "the schedule is being edited in its window; save or close it first";
  EXPECT_EQ(target.SetSchedule(TonightOn(channel)).Reason, why);
  EXPECT_EQ(target.EnableSchedule(3, false).Reason, why);
  EXPECT_EQ(target.ClearSchedule(3).Reason, why);
  EXPECT_TRUE(scheduler->cmdSave());
  EXPECT_EQ(rig.Setting("ScheduleEnabled3"), "1") << "the save does not undo the command";
  EXPECT_TRUE(target.EnableSchedule(3, false).Done);
}

TEST(UnitTarget, BeforeTheLoadNoEntryIsShown) {
  UnitRig rig;
  rig.Set("ScheduleStartDate1", "Jan 7, 1967 8:00 PM");
  UnitTarget target(*rig);
  std::vector<ScheduleReport> early;
  rig.Loop.AtHardware(std::chrono::milliseconds(1),
                      [&] { rig.Loop.Post([&] { early = target.Schedule(); }); });
  rig.StartIdle();
  ASSERT_EQ(early.size(), 10U);
  EXPECT_FALSE(early[0].Set);
  EXPECT_EQ(early[0].On, "");
  EXPECT_TRUE(target.Schedule().at(0).Set);
  EXPECT_EQ(target.Schedule().at(0).On, "Every Saturday");
  EXPECT_FALSE(target.Schedule().at(1).Set);
}

TEST(UnitTarget, NothingIsScheduledBeforeTheStartIsOver) {
  UnitRig rig;
  UnitTarget target(*rig);
  bool asked = false;
  rig.Loop.AtHardware(std::chrono::seconds(1), [&] {
    rig.Loop.Post([&] {
      EXPECT_EQ(target.SetSchedule(TonightOn(8)).Reason, "the program is still starting");
      asked = true;
    });
  });
  rig.Start();
  EXPECT_TRUE(asked);
}

using schedule::RestrictList;

TEST(UnitTarget, WhatIsAddedToAListCountsAtOnceAndIsInTheFile) {
  UnitRig rig;
  rig.StartIdle();
  UnitTarget target(*rig);
  EXPECT_TRUE(target.AddToList(RestrictList::GrabArtists, " Moon ").Done);
  EXPECT_TRUE(target.AddToList(RestrictList::KillSongs, "Rain & Sun").Done);
  EXPECT_TRUE(rig->Restrictions().IsInGrabList("The Moonlighters", ""));
  EXPECT_EQ(target.Lists().GrabArtists, std::vector<std::string>{"Moon"});
  EXPECT_EQ(target.Lists().KillSongs, std::vector<std::string>{"Rain & Sun"});
  EXPECT_EQ(rig.Files.Read(rig->Restrictions().RestrictionFile()), "0Moon\n3Rain & Sun\n");
  EXPECT_EQ(target.AddToList(RestrictList::GrabArtists, "moon").Reason, R"("moon" is on the list already)");
}

TEST(UnitTarget, WhatIsRemovedFromAListIsGoneFromThatListAlone) {
  UnitRig rig;
  rig.StartIdle();
  UnitTarget target(*rig);
  for (const auto list : {RestrictList::GrabArtists, RestrictList::KillArtists})
    EXPECT_TRUE(target.AddToList(list, "Moon").Done);
  EXPECT_TRUE(target.AddToList(RestrictList::GrabArtists, "Moonlight").Done);
  EXPECT_TRUE(target.RemoveFromList(RestrictList::GrabArtists, "MOON").Done);
  EXPECT_EQ(target.Lists().GrabArtists, std::vector<std::string>{"Moonlight"});
  EXPECT_EQ(target.Lists().KillArtists, std::vector<std::string>{"Moon"});
  EXPECT_EQ(target.RemoveFromList(RestrictList::GrabArtists, "Moon").Reason, R"("Moon" is not on the list)");
  rig->RestrictListEditor().Load();
  EXPECT_EQ(target.RemoveFromList(RestrictList::KillArtists, "Moon").Reason,
            "the lists are being edited in their window; close it first");
}

TEST(UnitTarget, AFullListTakesNoMore) {
  UnitRig rig;
  rig.StartIdle();
  UnitTarget target(*rig);
  for (int row = 0; row < schedule::Restrictions::kMaxRows; ++row)
    EXPECT_TRUE(rig->GrabKill().Append(RestrictList::GrabSongs, std::to_string(row)));
  EXPECT_EQ(target.AddToList(RestrictList::GrabSongs, "Moon").Reason, "the list is full");
  EXPECT_TRUE(target.AddToList(RestrictList::GrabArtists, "Moon").Done);
}

}  // namespace
}  // namespace kestrune::control
