#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "schedule/entries/ReloadSchedule.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;

class ReloadScheduleTest : public ::testing::Test {
 protected:
  std::map<std::string, std::string> store;
  std::vector<std::string> asked;
  ScheduleEntries entries;
  DateValue now = DateValue::FromCivil(2005, 3, 9, 14, 25, 36);

  void Reload() {
    ReloadSchedule(
        [this](std::string_view key, std::string_view defaultText) {
          asked.emplace_back(key);
          const auto found = store.find(std::string(key));
          return found == store.end() ? std::string(defaultText) : found->second;
        },
        now, entries);
  }
};

TEST_F(ReloadScheduleTest, AnEmptyStoreGivesTenDisabledEntriesOfAnHourFromNow) {
  Reload();
  for (const ScheduleEntry& entry : entries) {
    EXPECT_EQ(entry, (ScheduleEntry{.Enabled = false,
                                    .Channel = 1,
                                    .StartDate = DateValue::FromCivil(2005, 3, 9, 14, 25, 36),
                                    .EndDate = DateValue::FromCivil(2005, 3, 9, 15, 26, 35),
                                    .Integrel = true,
                                    .MatchGrab = true,
                                    .MatchKill = true,
                                    .MP3BitRate = " ",
                                    .Cleftune = true}));
  }
}

TEST_F(ReloadScheduleTest, AnEmptyStoreAtNoonAndAtMidnightGivesThatMoment) {
  for (const int hour : {0, 12}) {
    now = DateValue::FromCivil(2005, 12, 31, hour, 0, 1);
    Reload();
    EXPECT_EQ(entries[9].StartDate, now);
  }
}

TEST_F(ReloadScheduleTest, TheKeysOfEachEntryEndInItsNumberWithoutPadding) {
  Reload();
  std::vector<std::string> expected;
  for (const char* number : {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}) {
    for (const char* name :
         {"ScheduleEnabled", "ScheduleChannel", "ScheduleStartDate", "ScheduleDuration", "ScheduleIntegrel",
          "ScheduleCleftune", "ScheduleMatchGrab", "ScheduleMatchKill", "ScheduleMP3BitRate"}) {
      expected.push_back(std::string(name) + number);
    }
  }
  EXPECT_EQ(asked, expected);
}

TEST_F(ReloadScheduleTest, EveryKeyReachesItsFieldOfItsEntryAlone) {
  store = {{"ScheduleEnabled10", "1"},
           {"ScheduleChannel10", "45"},
           {"ScheduleStartDate10", "Jan 3, 1967 8:00 PM"},
           {"ScheduleDuration10", "12:30"},
           {"ScheduleIntegrel10", "0"},
           {"ScheduleCleftune10", "0"},
           {"ScheduleMatchGrab10", "0"},
           {"ScheduleMatchKill10", "0"},
           {"ScheduleMP3BitRate10", "8 Mono"}};
  Reload();
  EXPECT_EQ(entries[9], (ScheduleEntry{.Enabled = true,
                                       .Channel = 45,
                                       .StartDate = DateValue::FromCivil(1967, 1, 3, 20, 0, 0),
                                       .EndDate = DateValue::FromCivil(1967, 1, 4, 8, 30, 59),
                                       .Integrel = false,
                                       .MatchGrab = false,
                                       .MatchKill = false,
                                       .MP3BitRate = "8 Mono",
                                       .Cleftune = false}));
  EXPECT_FALSE(entries[0].Enabled) << "1 is another entry than 10";
  EXPECT_EQ(entries[8].Channel, 1);
}

TEST_F(ReloadScheduleTest, EachSwitchHasItsOwnKey) {
  const std::vector<std::pair<std::string, bool ScheduleEntry::*>> switches = {
      {"ScheduleIntegrel3", &ScheduleEntry::Integrel},
      {"ScheduleCleftune3", &ScheduleEntry::Cleftune},
      {"ScheduleMatchGrab3", &ScheduleEntry::MatchGrab},
      {"ScheduleMatchKill3", &ScheduleEntry::MatchKill}};
  for (const auto& [key, field] : switches) {
    store = {{key, "0"}};
    Reload();
    for (const auto& [otherKey, other] : switches) EXPECT_EQ(entries[2].*other, other != field) << key;
  }
}

TEST_F(ReloadScheduleTest, HalfAnHourEndsThirtyMinutesAndFiftyNineSecondsAfterItsStart) {
  store = {{"ScheduleStartDate1", "Mar 9, 2005 8:00 PM"}, {"ScheduleDuration1", "0:30"}};
  Reload();
  EXPECT_EQ(base::SecondsBetween(entries[0].StartDate, entries[0].EndDate), 30 * 60 + 59);
}

TEST_F(ReloadScheduleTest, WhatIsNoValueLeavesItsFieldAndTheNextOnesAreRead) {
  Reload();
  const ScheduleEntry before = {.Enabled = true,
                                .Channel = 46,
                                .StartDate = DateValue::FromCivil(2004, 2, 3, 4, 5, 0),
                                .EndDate = DateValue::FromCivil(2004, 2, 3, 5, 5, 59),
                                .Integrel = true,
                                .MatchGrab = false,
                                .MatchKill = true,
                                .MP3BitRate = "64 Mono",
                                .Cleftune = false};
  entries[4] = before;
  store = {{"ScheduleEnabled5", "yes"},   {"ScheduleChannel5", "forty"},  {"ScheduleStartDate5", "someday"},
           {"ScheduleDuration5", "100"},  {"ScheduleIntegrel5", ""},      {"ScheduleCleftune5", "?"},
           {"ScheduleMatchGrab5", "one"}, {"ScheduleMatchKill5", "none"}, {"ScheduleMP3BitRate5", "64 Mono"},
           {"ScheduleEnabled6", "1"}};
  Reload();
  EXPECT_EQ(entries[4], before);
  EXPECT_TRUE(entries[5].Enabled);
}

TEST_F(ReloadScheduleTest, ADurationThatIsNoneLeavesTheEnd) {
  const DateValue end = DateValue::FromCivil(2004, 2, 3, 5, 5, 59);
  for (const char* text : {"", "1", ":", "1:", ":30", "one:30", "1:thirty", "40000:00", "1:00:00"}) {
    entries[0].EndDate = end;
    store = {{"ScheduleDuration1", text}};
    Reload();
    EXPECT_EQ(entries[0].EndDate, end) << '"' << text << '"';
  }
}

TEST_F(ReloadScheduleTest, ADateThatIsNoneLeavesTheStartFromWhichTheNewDurationCounts) {
  entries[0].StartDate = DateValue::FromCivil(2004, 2, 3, 4, 5, 0);
  store = {{"ScheduleStartDate1", "Feb 30, 2005 8:00 PM"}, {"ScheduleDuration1", "2:00"}};
  Reload();
  EXPECT_EQ(entries[0].StartDate, DateValue::FromCivil(2004, 2, 3, 4, 5, 0));
  EXPECT_EQ(entries[0].EndDate, DateValue::FromCivil(2004, 2, 3, 6, 5, 59));
}

TEST_F(ReloadScheduleTest, AnEntryIsTakenAsItIsStored) {
  store = {{"ScheduleEnabled1", "-1"},
           {"ScheduleChannel1", "32767"},
           {"ScheduleStartDate1", "Jan 10, 1967 11:59 PM"},
           {"ScheduleDuration1", "47.5:-10"}};
  Reload();
  EXPECT_TRUE(entries[0].Enabled);
  EXPECT_EQ(entries[0].Channel, 32767);
  EXPECT_EQ(entries[0].StartDate, DateValue::FromCivil(1967, 1, 10, 23, 59, 0));
  EXPECT_EQ(entries[0].EndDate, DateValue::FromCivil(1967, 1, 12, 23, 49, 59)) << "halves round to even";
}

TEST_F(ReloadScheduleTest, AWeeklyEndRunsOnBeyondTheCodedWeek) {
  store = {{"ScheduleStartDate1", "Jan 7, 1967 11:00 PM"}, {"ScheduleDuration1", "2:00"}};
  Reload();
  EXPECT_EQ(entries[0].EndDate, DateValue::FromCivil(1967, 1, 8, 1, 0, 59));
}

}  // namespace
}  // namespace kestrune::schedule
