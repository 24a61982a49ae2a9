#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/DatePattern.h"
#include "schedule/entries/EntryRuns.h"

namespace kestrune::test {
namespace {

using base::DateValue;
using schedule::EntryRun;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

DateValue At(std::string_view text) {
  return base::ParseDate(text).value();
}

/// An entry that starts there and lasts so long, and its last minute.
schedule::ScheduleEntry Entry(std::string_view start, int minutes) {
  return {.Enabled = true,
          .Channel = 44,
          .StartDate = At(start),
          .EndDate = At(start).AddMinutes(minutes).AddSeconds(59)};
}

TEST(EntryRuns, AWeeklyEntryRunsOnItsDayOnly) {
  EXPECT_THAT(
      schedule::RunsBetween(Entry("Jan 7, 1967 11:00 PM", 120), At("Jan 3, 2005"), At("Jan 16, 2005")),
      ElementsAre(EntryRun{At("Jan 8, 2005 23:00"), At("Jan 9, 2005 1:00:59")},
                  EntryRun{At("Jan 15, 2005 23:00"), At("Jan 16, 2005 1:00:59")}));
}

TEST(EntryRuns, ADailyEntryRunsOnEachDay) {
  EXPECT_THAT(schedule::RunsBetween(Entry("Jan 15, 1967 8:00 PM", 60), At("Jan 1, 2005"), At("Jan 3, 2005")),
              ElementsAre(EntryRun{At("Jan 1, 2005 20:00"), At("Jan 1, 2005 21:00:59")},
                          EntryRun{At("Jan 2, 2005 20:00"), At("Jan 2, 2005 21:00:59")}));
}

TEST(EntryRuns, ARunThatHasBegunBeforeCountsUntilItsEnd) {
  const auto entry = Entry("Mar 9, 2005 8:00 PM", 60);
  const EntryRun run{At("Mar 9, 2005 20:00"), At("Mar 9, 2005 21:00:59")};
  EXPECT_THAT(schedule::RunsBetween(entry, At("Mar 9, 2005 21:00:58"), At("Mar 10, 2005")), ElementsAre(run));
  EXPECT_THAT(schedule::RunsBetween(entry, At("Mar 9, 2005 21:00:59"), At("Mar 10, 2005")), IsEmpty());
  EXPECT_THAT(schedule::RunsBetween(entry, At("Mar 9, 2005"), At("Mar 9, 2005 20:00")), IsEmpty());
  EXPECT_THAT(schedule::RunsBetween(entry, At("Mar 9, 2005"), At("Mar 9, 2005 20:00:01")), ElementsAre(run));
}

TEST(EntryRuns, ARowRunsAsItIsSavedAndReadAgain) {
  schedule::SchedulerRow row;
  row.Enabled = true;
  row.Start = {.Caption = "Every Saturday", .Time = {.Hour = 11, .Minute = 0, .PM = true}};
  row.DurationHours = 2;
  row.DurationMinutes = 5;
  const schedule::ScheduleEntry entry = schedule::EntryOf(row);
  EXPECT_TRUE(entry.Enabled);
  EXPECT_EQ(entry.StartDate, At("Jan 7, 1967 23:00"));
  EXPECT_EQ(entry.EndDate, At("Jan 8, 1967 1:05:59"));
  row.DurationHours = row.DurationMinutes = 0;
  EXPECT_FALSE(schedule::EntryOf(row).Enabled) << "it is saved switched off";
  row.DurationMinutes = 1;
  row.Enabled = false;
  EXPECT_FALSE(schedule::EntryOf(row).Enabled);
}

}  // namespace
}  // namespace kestrune::test
