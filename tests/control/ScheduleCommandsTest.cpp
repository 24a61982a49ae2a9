#include <gtest/gtest.h>

#include "control/ReportJson.h"
#include "control/ScheduleCommands.h"
#include "presenters/SchedulerFixture.h"

namespace kestrune::control {
namespace {

using base::DateValue;
using presenters::Scheduler;
using schedule::CodedDay;
using test::SchedulerWorld;

constexpr const char* kDone = "done";

// The clock stands at Saturday, January 1, 2005, 12:00; there are the channels 44 and 8.

std::string Set(SchedulerWorld& world, const ScheduleChange& change) {
  Scheduler scheduler = world.Open();
  return SetEntry(scheduler, change, world.Loop.Now()).value_or(kDone);
}

std::string Enable(SchedulerWorld& world, int number, bool enabled) {
  Scheduler scheduler = world.Open();
  return EnableEntry(scheduler, number, enabled, world.Loop.Now()).value_or(kDone);
}

ScheduleChange Whole(int number, DateValue on, int at, int length) {
  ScheduleChange change;
  change.Number = number;
  change.On = on;
  change.At = at;
  change.For = length;
  change.Channel = 8;
  return change;
}

TEST(ScheduleSet, AWholeEntryIsWrittenAndNoOther) {
  SchedulerWorld world;
  ScheduleChange change = Whole(3, CodedDay(7), 23 * 60, 120);
  change.Grab = true;
  change.Cleftune = false;
  change.BitRate = "64 Mono";
  EXPECT_EQ(Set(world, change), kDone);
  EXPECT_EQ(world.Saves(),
            (std::vector<std::string>{"ScheduleEnabled3=1", "ScheduleChannel3=8",
                                      "ScheduleStartDate3=Jan 7, 1967 11:00 PM", "ScheduleDuration3=2:00",
                                      "ScheduleIntegrel3=1", "ScheduleCleftune3=0", "ScheduleMatchGrab3=1",
                                      "ScheduleMatchKill3=0", "ScheduleMP3BitRate3=64 Mono"}));
}

TEST(ScheduleSet, WhatIsNotGivenStays) {
  SchedulerWorld world;
  EXPECT_EQ(Set(world, Whole(3, CodedDay(7), 23 * 60, 120)), kDone);
  ScheduleChange change;
  change.Number = 3;
  change.For = 30;
  EXPECT_EQ(Set(world, change), kDone);
  EXPECT_EQ(world.Stored("ScheduleStartDate3"), "Jan 7, 1967 11:00 PM");
  EXPECT_EQ(world.Stored("ScheduleDuration3"), "0:30");
  EXPECT_EQ(world.Stored("ScheduleChannel3"), "8");
}

TEST(ScheduleSet, ABitRateAloneEnablesAsWell) {
  SchedulerWorld world;
  EXPECT_EQ(Set(world, Whole(3, CodedDay(7), 23 * 60, 120)), kDone);
  EXPECT_EQ(Enable(world, 3, false), kDone);
  ScheduleChange change;
  change.Number = 3;
  change.BitRate = "8 Mono";
  EXPECT_EQ(Set(world, change), kDone);
  EXPECT_EQ(world.Stored("ScheduleEnabled3"), "1");
}

TEST(ScheduleSet, AnEmptyEntryHasToBeToldWhole) {
  for (int without = 0; without < 4; ++without) {
    SchedulerWorld world;
    ScheduleChange change = Whole(3, CodedDay(7), 23 * 60, 120);
    if (without == 0) change.On.reset();
    if (without == 1) change.At.reset();
    if (without == 2) change.For.reset();
    if (without == 3) change.Channel.reset();
    EXPECT_EQ(Set(world, change), "entry 3 is empty; --on, --at, --for and --channel are all needed");
    EXPECT_TRUE(world.Saves().empty());
  }
}

TEST(ScheduleSet, AConflictIsRefusedInTheSchedulersWords) {
  SchedulerWorld world;
  EXPECT_EQ(Set(world, Whole(2, CodedDay(7), 23 * 60, 180)), kDone);
  const auto saves = world.Saves().size();
  EXPECT_EQ(Set(world, Whole(1, CodedDay(1), 60, 60)),
            "Item 1 conflicts with item 2. Please correct before saving.");
  EXPECT_EQ(
      Set(world, Whole(1, CodedDay(15), 60, 24 * 60)),
      "Item 1 runs daily, but is set to run longer than one day, thereby overlapping itself. Please correct "
      "before saving.");
  EXPECT_EQ(world.Saves().size(), saves);
  EXPECT_TRUE(world.Dialogs.Shown.empty());
  EXPECT_EQ(Set(world, Whole(1, CodedDay(1), 121, 60)), kDone);
}

TEST(ScheduleSet, AChannelThatIsNotListedIsRefused) {
  SchedulerWorld world;
  ScheduleChange change = Whole(1, CodedDay(1), 0, 60);
  change.Channel = 9;
  EXPECT_EQ(Set(world, change), "channel 9 is not in the channel list");
}

TEST(ScheduleSet, WhatWouldBeOverIsRefused) {
  SchedulerWorld world;
  EXPECT_EQ(Set(world, Whole(1, DateValue::FromCivil(2004, 12, 24), 20 * 60, 60)),
            "entry 1 would be over already: Dec 24, 2004 for 1:00");
  EXPECT_EQ(Set(world, Whole(1, DateValue::FromCivil(2005, 1, 1), 10 * 60, 119)),
            "entry 1 would be over already: Jan 1, 2005 for 1:59");
  EXPECT_EQ(Set(world, Whole(1, DateValue::FromCivil(2005, 1, 1), 10 * 60, 121)), kDone);
}

TEST(ScheduleSet, SettingsThatCannotBeWrittenAreARefusal) {
  SchedulerWorld world;
  world.Store.FailWrites = true;
  EXPECT_EQ(Set(world, Whole(1, CodedDay(1), 0, 60)), "The schedule could not be written.");
}

TEST(ScheduleEnable, OnAndOff) {
  SchedulerWorld world;
  EXPECT_EQ(Enable(world, 4, true), "entry 4 is empty; set it first");
  EXPECT_EQ(Set(world, Whole(4, CodedDay(1), 60, 60)), kDone);
  EXPECT_EQ(Enable(world, 4, false), kDone);
  EXPECT_EQ(world.Stored("ScheduleEnabled4"), "0");
  EXPECT_EQ(Enable(world, 4, true), kDone);
  EXPECT_EQ(world.Stored("ScheduleEnabled4"), "1");
  world.Put("ScheduleStartDate4", "Dec 24, 2004 8:00 PM");
  EXPECT_EQ(Enable(world, 4, true), "entry 4 would be over already: Dec 24, 2004 for 1:00");
  world.Put("ScheduleStartDate4", "Jan 15, 1967 8:00 PM");
  world.Put("ScheduleDuration4", "0:00");
  EXPECT_EQ(Enable(world, 4, true), "entry 4 has no length");
}

TEST(ScheduleClear, EmptiesTheEntryAlone) {
  SchedulerWorld world;
  EXPECT_EQ(Set(world, Whole(4, CodedDay(1), 60, 60)), kDone);
  Scheduler scheduler = world.Open();
  EXPECT_EQ(ClearEntry(scheduler, 4), std::nullopt);
  EXPECT_EQ(world.Stored("ScheduleEnabled4"), "0");
  EXPECT_EQ(world.Stored("ScheduleStartDate4"), "Jan 1, 2005 12:00 AM");
  EXPECT_EQ(world.Stored("ScheduleEnabled5"), "(absent)");
}

TEST(ScheduleReports, TellWhatCountsNow) {
  schedule::ScheduleEntries entries;
  for (schedule::ScheduleEntry& entry : entries) {
    entry.StartDate = DateValue::FromCivil(2004, 12, 24, 20);
    entry.EndDate = entry.StartDate.AddSeconds(3659);
  }
  entries[0] = {.Enabled = true,
                .Channel = 44,
                .StartDate = CodedDay(7).AddHours(20),
                .EndDate = CodedDay(7).AddHours(22).AddSeconds(59),
                .Integrel = true,
                .MatchKill = true,
                .MP3BitRate = " "};
  entries[1].Enabled = true;
  schedule::ScheduleState state;
  state.ActiveSchedule = 2;
  const DateValue now = DateValue::FromCivil(2005, 1, 1, 12);
  state.RemainingUntil = now.AddSeconds(90);
  const auto reports = ReportSchedule(
      entries, state, now, [](std::int16_t channel) { return fmt::format("Station {}", channel); });
  ASSERT_EQ(reports.size(), 10U);
  EXPECT_EQ(
      ToJson(std::vector{reports[0]}).dump(),
      R"([{"number":1,"enabled":true,"on":"Every Saturday","at":"8:00 PM","minutes":120,"channel":44,)"
      R"("station":"Station 44","integrel":true,"cleftune":false,"grab":false,"kill":true,"bitrate":"",)"
      R"("nextRun":"2005-01-01 20:00","running":false,"secondsLeft":0}])");
  EXPECT_EQ(reports[1].NextRun, "") << "its date has passed";
  EXPECT_TRUE(reports[1].Running);
  EXPECT_EQ(reports[1].SecondsLeft, 90);
  EXPECT_EQ(reports[9].Number, 10);
  EXPECT_FALSE(reports[9].Enabled);
}

}  // namespace
}  // namespace kestrune::control
