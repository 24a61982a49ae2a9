#include <gtest/gtest.h>

#include "control/ReportJson.h"
#include "control/ScheduleCommands.h"
#include "presenters/SchedulerFixture.h"

namespace kestrune::control {
namespace {

using base::DateValue;
using schedule::CodedDay;
using test::SchedulerWorld;

constexpr const char* kDone = "done";

// The clock stands at Saturday, January 1, 2005, 12:00; there are the channels 44 and 8.

StoredSchedule Stored(SchedulerWorld& world) {
  return {.Settings = world.Settings(), .Channels = world.Channels, .Now = world.Loop.Now()};
}

std::string Set(SchedulerWorld& world, const ScheduleChange& change) {
  return SetEntry(Stored(world), change).value_or(kDone);
}

std::string Enable(SchedulerWorld& world, int number, bool enabled) {
  return (enabled ? EnableEntry(Stored(world), number) : DisableEntry(Stored(world), number)).value_or(kDone);
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
            (std::vector<std::string>{"ScheduleStartDate3=Jan 7, 1967 11:00 PM", "ScheduleDuration3=2:00",
                                      "ScheduleChannel3=8", "ScheduleIntegrel3=1", "ScheduleCleftune3=0",
                                      "ScheduleMatchGrab3=1", "ScheduleMatchKill3=0",
                                      "ScheduleMP3BitRate3=64 Mono", "ScheduleEnabled3=1"}));
}

TEST(ScheduleSet, OfAnEntryThatWasSetOnlyWhatIsGivenIsWritten) {
  SchedulerWorld world;
  EXPECT_EQ(Set(world, Whole(3, CodedDay(7), 23 * 60, 120)), kDone);
  // A channel that is not in the list yet, and modes that no window wrote.
  world.Put("ScheduleChannel3", "99");
  world.Put("ScheduleMatchKill3", "-1");
  world.Put("ScheduleMP3BitRate3", "odd");
  world.Store.Calls.clear();
  ScheduleChange change;
  change.Number = 3;
  change.For = 30;
  EXPECT_EQ(Set(world, change), kDone);
  EXPECT_EQ(world.Saves(), (std::vector<std::string>{"ScheduleDuration3=0:30", "ScheduleEnabled3=1"}));

  world.Store.Calls.clear();
  change = {};
  change.Number = 3;
  change.At = 20 * 60 + 30;
  EXPECT_EQ(Set(world, change), kDone);
  EXPECT_EQ(world.Stored("ScheduleStartDate3"), "Jan 7, 1967 8:30 PM");
  change.At.reset();
  change.On = CodedDay(15);
  EXPECT_EQ(Set(world, change), kDone);
  EXPECT_EQ(world.Stored("ScheduleStartDate3"), "Jan 15, 1967 8:30 PM");
  EXPECT_EQ(world.Stored("ScheduleChannel3"), "99");
}

TEST(ScheduleSet, AStartOrALengthThatCannotBeReadHasToBeGiven) {
  SchedulerWorld world;
  EXPECT_EQ(Set(world, Whole(3, CodedDay(7), 23 * 60, 120)), kDone);
  world.Put("ScheduleStartDate3", "some day");
  ScheduleChange change;
  change.Number = 3;
  change.At = 20 * 60;
  EXPECT_EQ(Set(world, change), "entry 3 has no start; give --on and --at");
  EXPECT_EQ(Enable(world, 3, true), "entry 3 has no start; give --on and --at");
  change.On = CodedDay(1);
  EXPECT_EQ(Set(world, change), kDone);
  for (const char* length : {"long", "0:00", "-1:00", "48:00"}) {
    world.Put("ScheduleDuration3", length);
    EXPECT_EQ(Set(world, change), "entry 3 has no length from 0:01 to 47:59; give --for") << length;
  }
}

TEST(ScheduleSet, PairsOfOtherEntriesAndEntriesThatStayWhereTheyAreAreNotTested) {
  SchedulerWorld world;
  EXPECT_EQ(Set(world, Whole(1, CodedDay(7), 20 * 60, 60)), kDone);
  EXPECT_EQ(Set(world, Whole(2, CodedDay(6), 20 * 60, 60)), kDone);
  // Whoever has done it, the two now overlap.
  world.Put("ScheduleStartDate2", "Jan 7, 1967 8:30 PM");
  EXPECT_EQ(Set(world, Whole(3, CodedDay(3), 20 * 60, 60)), kDone);
  ScheduleChange change;
  change.Number = 1;
  change.Kill = true;
  EXPECT_EQ(Set(world, change), kDone) << "it is enabled and is not moved";
  EXPECT_EQ(ClearEntry(Stored(world), 3), std::nullopt);
  EXPECT_EQ(Enable(world, 1, false), kDone);
  EXPECT_EQ(Set(world, change), "Item 1 conflicts with item 2. Please correct before saving.");
  EXPECT_EQ(Enable(world, 1, true), "Item 1 conflicts with item 2. Please correct before saving.");
  EXPECT_EQ(world.Stored("ScheduleEnabled1"), "0");
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

TEST(ScheduleSet, AnEmptyEntryHasToBeGivenWhole) {
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

TEST(ScheduleEnable, WritesThatAlone) {
  SchedulerWorld world;
  EXPECT_EQ(Enable(world, 4, true), "entry 4 is empty; set it first");
  EXPECT_EQ(Set(world, Whole(4, CodedDay(1), 60, 60)), kDone);
  world.Put("ScheduleChannel4", "99");
  world.Store.Calls.clear();
  EXPECT_EQ(Enable(world, 4, false), kDone);
  EXPECT_EQ(Enable(world, 4, true), kDone);
  EXPECT_EQ(world.Saves(), (std::vector<std::string>{"ScheduleEnabled4=0", "ScheduleEnabled4=1"}));
  EXPECT_EQ(world.Stored("ScheduleChannel4"), "99");
  world.Put("ScheduleStartDate4", "Dec 24, 2004 8:00 PM");
  EXPECT_EQ(Enable(world, 4, true), "entry 4 would be over already: Dec 24, 2004 for 1:00");
  EXPECT_EQ(Enable(world, 4, false), kDone) << "which is always possible";
}

TEST(ScheduleClear, EmptiesTheEntryAlone) {
  SchedulerWorld world;
  ScheduleChange change = Whole(4, CodedDay(1), 60, 60);
  change.BitRate = "64 Mono";
  EXPECT_EQ(Set(world, change), kDone);
  EXPECT_EQ(ClearEntry(Stored(world), 4), std::nullopt);
  EXPECT_EQ(world.Stored("ScheduleEnabled4"), "0");
  EXPECT_EQ(world.Stored("ScheduleStartDate4"), "Jan 1, 2005 12:00 AM");
  EXPECT_EQ(world.Stored("ScheduleMP3BitRate4"), "64 Mono");
  EXPECT_EQ(world.Stored("ScheduleEnabled5"), "(absent)");
}

class ScheduleReports : public ::testing::Test {
 protected:
  std::vector<ScheduleReport> Reports() {
    return ReportSchedule(
        entries, state,
        {.Now = kNow,
         .Station = [](std::int16_t channel) { return fmt::format("Station {}", channel); },
         .IsSet = [this](int number) { return number <= set; },
         .SecondsUntil = [](DateValue wall) { return base::SecondsBetween(kNow, wall) - 3600; }});
  }

  static inline const DateValue kNow = DateValue::FromCivil(2005, 1, 1, 12);
  schedule::ScheduleEntries entries;
  schedule::ScheduleState state;
  int set = 10;
};

TEST_F(ScheduleReports, SayWhatCountsNow) {
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
  state.ActiveSchedule = 2;
  state.RemainingUntil = kNow.AddSeconds(3690);
  const auto reports = Reports();
  ASSERT_EQ(reports.size(), 10U);
  EXPECT_EQ(
      ToJson(std::vector{reports[0]}).dump(),
      R"([{"number":1,"set":true,"enabled":true,"on":"Every Saturday","at":"8:00 PM","minutes":120,)"
      R"("channel":44,"station":"Station 44","integrel":true,"cleftune":false,"grab":false,"kill":true,)"
      R"("bitrate":"","nextRun":"2005-01-01 20:00","running":false,"secondsLeft":0}])");
  EXPECT_EQ(reports[1].NextRun, "") << "its date has passed";
  EXPECT_TRUE(reports[1].Running);
  EXPECT_EQ(reports[1].SecondsLeft, 90) << "by the clock that knows of steps to come";
  EXPECT_EQ(reports[9].Number, 10);
  EXPECT_FALSE(reports[9].Enabled);
}

TEST_F(ScheduleReports, OfAnEntryThatWasNeverSetNothingIsSaid) {
  entries[2] = {
      .Channel = 1, .StartDate = kNow, .EndDate = kNow.AddSeconds(3659), .Integrel = true, .Cleftune = true};
  set = 2;
  const ScheduleReport report = Reports().at(2);
  EXPECT_FALSE(report.Set);
  EXPECT_EQ(report.On, "");
  EXPECT_EQ(report.At, "");
  EXPECT_EQ(report.Minutes, -1);
  EXPECT_EQ(report.Channel, 0);
  EXPECT_FALSE(report.Integrel);
}

TEST_F(ScheduleReports, WhatCannotBeReadIsLeftOut) {
  entries[0].Enabled = entries[1].Enabled = true;
  entries[0].StartDate = kNow.AddHours(1);
  entries[1].EndDate = DateValue().AddSeconds(3659);
  const auto reports = Reports();
  EXPECT_EQ(reports[0].Minutes, -1) << "the end stayed where the table began";
  EXPECT_EQ(reports[0].NextRun, "");
  EXPECT_EQ(reports[1].On, "");
  EXPECT_EQ(reports[1].At, "");
}

}  // namespace
}  // namespace kestrune::control
