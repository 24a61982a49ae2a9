#include <chrono>

#include <gtest/gtest.h>

#include "schedule/entries/NextRun.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;
using namespace std::chrono_literals;

// Wednesday, March 9, 2005, 12:00:00.
const DateValue kNow = DateValue::FromCivil(2005, 3, 9, 12, 0, 0);

ScheduleEntry At(DateValue start) {
  ScheduleEntry entry;
  entry.Enabled = true;
  entry.StartDate = start;
  entry.EndDate = start.AddHours(1).AddSeconds(59);
  return entry;
}

std::optional<DateValue> Next(DateValue start) {
  return NextStart(At(start), kNow);
}

TEST(NextRun, ASingleDateComesOnce) {
  const DateValue later = DateValue::FromCivil(2005, 3, 9, 12, 0, 1);
  EXPECT_EQ(Next(later), later);
  EXPECT_EQ(Next(kNow), kNow) << "the moment itself is not past";
  EXPECT_FALSE(Next(DateValue::FromCivil(2005, 3, 9, 11, 59, 59)));
  EXPECT_FALSE(Next(DateValue::FromCivil(1967, 1, 16))) << "the first date that is none of the codes";
}

TEST(NextRun, AWeekdayComesEveryWeek) {
  // Jan 1, 1967 was a Sunday; March 9, 2005 is a Wednesday.
  for (int day = 1; day <= 7; ++day) {
    const auto next = Next(DateValue::FromCivil(1967, 1, day, 20, 30, 0));
    ASSERT_TRUE(next) << day;
    EXPECT_EQ(next->Weekday(), day);
    const int date = day >= 4 ? 9 + day - 4 : 9 + day + 3;
    EXPECT_EQ(*next, DateValue::FromCivil(2005, 3, date, 20, 30, 0)) << day;
  }
}

TEST(NextRun, ThisWeekdaysHourThatIsPastComesInAWeek) {
  EXPECT_EQ(Next(DateValue::FromCivil(1967, 1, 4, 11, 59, 59)),
            DateValue::FromCivil(2005, 3, 16, 11, 59, 59));
  EXPECT_EQ(Next(DateValue::FromCivil(1967, 1, 4, 12, 0, 0)), kNow);
}

TEST(NextRun, EveryDayComesTodayOrTomorrow) {
  EXPECT_EQ(Next(DateValue::FromCivil(1967, 1, 15, 12, 0, 0)), kNow);
  EXPECT_EQ(Next(DateValue::FromCivil(1967, 1, 15, 23, 15, 0)), DateValue::FromCivil(2005, 3, 9, 23, 15, 0));
  EXPECT_EQ(Next(DateValue::FromCivil(1967, 1, 15, 8, 0, 0)), DateValue::FromCivil(2005, 3, 10, 8, 0, 0));
}

TEST(NextRun, SecondsOfADailyStartDoNotCount) {
  EXPECT_EQ(Next(DateValue::FromCivil(1967, 1, 15, 12, 0, 40)), kNow);
}

TEST(NextRun, DatesBesideTheCodedWeekStandForItsWeekdaysOrForNothing) {
  EXPECT_EQ(Next(DateValue::FromCivil(1967, 1, 8, 13, 0, 0)), DateValue::FromCivil(2005, 3, 13, 13, 0, 0));
  EXPECT_EQ(Next(DateValue::FromCivil(1966, 12, 31, 13, 0, 0)), DateValue::FromCivil(2005, 3, 12, 13, 0, 0));
  EXPECT_FALSE(Next(DateValue::FromCivil(1966, 12, 24, 13, 0, 0)));
  EXPECT_FALSE(Next(DateValue{}));
}

TEST(NextRun, ADisabledEntryNeverComes) {
  ScheduleEntry entry = At(kNow);
  entry.Enabled = false;
  EXPECT_FALSE(NextStart(entry, kNow));
}

TEST(NextRun, TheEarliestEntryIsNextAndOfTwoTheLowerNumber) {
  ScheduleEntries entries;
  EXPECT_FALSE(FindNextRun(entries, kNow));
  entries[2] = At(kNow.AddHours(3));
  entries[6] = At(kNow.AddHours(2));
  entries[9] = At(kNow.AddHours(2));
  const auto next = FindNextRun(entries, kNow);
  ASSERT_TRUE(next);
  EXPECT_EQ(next->Number, 7);
  EXPECT_EQ(next->Start, kNow.AddHours(2));
}

TEST(NextRun, WithinAStretchOfTimeIncludesItsEnd) {
  ScheduleEntries entries;
  entries[0] = At(kNow.AddMinutes(5));
  EXPECT_TRUE(RunsWithin(entries, kNow, 5min));
  EXPECT_FALSE(RunsWithin(entries, kNow, 299s));
  EXPECT_FALSE(RunsWithin(entries, kNow.AddMinutes(6), 5min)) << "it has begun already";
}

TEST(NextRun, AWeeklyEntryIsFoundOverTheEndOfTheYear) {
  // Saturday, December 31, 2005.
  const DateValue now = DateValue::FromCivil(2005, 12, 31, 23, 58, 0);
  EXPECT_EQ(NextStart(At(DateValue::FromCivil(1967, 1, 1, 0, 1, 0)), now),
            DateValue::FromCivil(2006, 1, 1, 0, 1, 0));
  EXPECT_EQ(NextStart(At(DateValue::FromCivil(1967, 1, 15, 0, 1, 0)), now),
            DateValue::FromCivil(2006, 1, 1, 0, 1, 0));
}

TEST(NextRun, AnEntryThatEndsBeforeItStartsNeverComes) {
  for (const DateValue start :
       {kNow.AddHours(3), DateValue::FromCivil(1967, 1, 4, 20), DateValue::FromCivil(1967, 1, 15, 20)}) {
    ScheduleEntry entry = At(start);
    entry.EndDate = start.AddSeconds(-1);
    EXPECT_FALSE(NextStart(entry, kNow));
    entry.EndDate = {};
    EXPECT_FALSE(NextStart(entry, kNow));
    entry.EndDate = start.AddSeconds(59);
    EXPECT_TRUE(NextStart(entry, kNow)) << "the shortest there is";
  }
}

}  // namespace
}  // namespace kestrune::schedule
