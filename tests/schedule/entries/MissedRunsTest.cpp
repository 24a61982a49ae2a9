#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "schedule/entries/MissedRuns.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

DateValue At(int hour, int minute, int second = 0) {
  return DateValue::FromCivil(2005, 4, 3, hour, minute, second);
}

ScheduleEntries One(DateValue start, int minutes) {
  ScheduleEntries entries;
  entries[2] = {.Enabled = true, .StartDate = start, .EndDate = start.AddMinutes(minutes).AddSeconds(59)};
  return entries;
}

TEST(MissedRuns, OnlyARunThatLiesWhollyInTheGapIsMissed) {
  const ScheduleEntries entries = One(At(2, 15), 30);
  EXPECT_THAT(MissedRuns(entries, At(1, 59, 58), At(3, 0, 2)), ElementsAre(3));
  EXPECT_THAT(MissedRuns(entries, At(2, 14, 59), At(2, 45, 59)), ElementsAre(3));
  EXPECT_THAT(MissedRuns(entries, At(2, 15), At(3, 0)), IsEmpty()) << "it was due at the beginning";
  EXPECT_THAT(MissedRuns(entries, At(2, 0), At(2, 45, 58)), IsEmpty()) << "it is due at the end";
  EXPECT_THAT(MissedRuns(entries, At(3, 0), At(4, 0)), IsEmpty());
  EXPECT_THAT(MissedRuns(entries, At(3, 0), At(2, 0)), IsEmpty()) << "a step back misses nothing";
}

TEST(MissedRuns, WeekdaysAndEveryDayAreMissedLikeDates) {
  // April 3, 2005 was a Sunday.
  for (const int day : {1, 15}) {
    EXPECT_THAT(MissedRuns(One(DateValue::FromCivil(1967, 1, day, 2, 15), 30), At(2, 0), At(3, 0)),
                ElementsAre(3))
        << day;
  }
  EXPECT_THAT(MissedRuns(One(DateValue::FromCivil(1967, 1, 2, 2, 15), 30), At(2, 0), At(3, 0)), IsEmpty());
}

TEST(MissedRuns, ADisabledEntryMissesNothing) {
  ScheduleEntries entries = One(At(2, 15), 30);
  entries[2].Enabled = false;
  EXPECT_THAT(MissedRuns(entries, At(2, 0), At(3, 0)), IsEmpty());
}

}  // namespace
}  // namespace kestrune::schedule
