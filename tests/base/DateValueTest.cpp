#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "base/DateValue.h"

namespace kestrune::base {
namespace {

constexpr std::int64_t kDay = 86400;

TEST(DateValue, DayZeroIsDecember30In1899AtMidnight) {
  const DateValue date;
  EXPECT_EQ(date.Year(), 1899);
  EXPECT_EQ(date.Month(), 12);
  EXPECT_EQ(date.Day(), 30);
  EXPECT_EQ(date.Hour(), 0);
  EXPECT_EQ(date.Minute(), 0);
  EXPECT_EQ(date.Second(), 0);
  EXPECT_EQ(date.Weekday(), 7);
}

TEST(DateValue, KnownDayNumbers) {
  struct Row {
    int Year, Month, Day;
    std::int64_t Number;
    int Weekday;
  };
  for (const Row& row :
       {Row{100, 1, 1, -657434, 6}, Row{1899, 12, 29, -1, 6}, Row{1899, 12, 31, 1, 1}, Row{1900, 1, 1, 2, 2},
        Row{1900, 2, 28, 60, 4}, Row{1900, 3, 1, 61, 5}, Row{1967, 1, 1, 24473, 1}, Row{1970, 1, 1, 25569, 5},
        Row{2000, 2, 29, 36585, 3}, Row{2000, 3, 1, 36586, 4}, Row{2005, 1, 1, 38353, 7},
        Row{2100, 3, 1, 73110, 2}, Row{9999, 12, 31, 2958465, 6}}) {
    const DateValue date = DateValue::FromCivil(row.Year, row.Month, row.Day);
    EXPECT_EQ(date.Seconds(), row.Number * kDay) << row.Year << "-" << row.Month << "-" << row.Day;
    EXPECT_EQ(date.Weekday(), row.Weekday) << row.Year << "-" << row.Month << "-" << row.Day;
    EXPECT_EQ(date.Year(), row.Year);
    EXPECT_EQ(date.Month(), row.Month);
    EXPECT_EQ(date.Day(), row.Day);
  }
}

TEST(DateValue, TheCodesOfTheWeekAreSundayToSaturdayAndEveryDayIsASunday) {
  for (int day = 1; day <= 7; ++day) EXPECT_EQ(DateValue::FromCivil(1967, 1, day).Weekday(), day);
  EXPECT_EQ(DateValue::FromCivil(1967, 1, 15).Weekday(), 1);
}

TEST(DateValue, CenturiesAreLeapYearsEveryFourHundredYearsOnly) {
  for (const int year : {400, 1600, 2000, 2004, 2400}) {
    EXPECT_EQ(DateValue::FromCivil(year, 2, 29).Month(), 2) << year;
  }
  for (const int year : {100, 1700, 1900, 2001, 2100}) {
    EXPECT_EQ(DateValue::FromCivil(year, 2, 29).Month(), 3) << year;
  }
}

TEST(DateValue, EveryDayOfTheCalendarFollowsTheOneBeforeIt) {
  DateValue date = DateValue::FromCivil(100, 1, 1);
  int days = 0;
  while (date < DateValue::FromCivil(9999, 12, 31)) {
    const DateValue next = date.AddDays(1);
    const bool sameMonth = next.Year() == date.Year() && next.Month() == date.Month();
    if (sameMonth) {
      ASSERT_EQ(next.Day(), date.Day() + 1) << date.Seconds();
    } else {
      ASSERT_EQ(next.Day(), 1) << date.Seconds();
      ASSERT_GE(date.Day(), 28) << date.Seconds();
      ASSERT_LE(date.Day(), 31) << date.Seconds();
    }
    ASSERT_EQ(next.Weekday(), date.Weekday() % 7 + 1) << date.Seconds();
    ASSERT_EQ(DateValue::FromCivil(next.Year(), next.Month(), next.Day()), next);
    date = next;
    ++days;
  }
  EXPECT_EQ(days, 2958465 + 657434);
}

TEST(DateValue, ValuesBeyondTheirUnitRunOn) {
  EXPECT_EQ(DateValue::FromCivil(2005, 2, 31), DateValue::FromCivil(2005, 3, 3));
  EXPECT_EQ(DateValue::FromCivil(2005, 13, 1), DateValue::FromCivil(2006, 1, 1));
  EXPECT_EQ(DateValue::FromCivil(2005, 0, 1), DateValue::FromCivil(2004, 12, 1));
  EXPECT_EQ(DateValue::FromCivil(2005, 1, 1, 24), DateValue::FromCivil(2005, 1, 2));
  EXPECT_EQ(DateValue::FromCivil(2005, 1, 1, 0, -1), DateValue::FromCivil(2004, 12, 31, 23, 59));
  EXPECT_EQ(DateValue::FromCivil(2005, 1, 1, 0, 0, 86400), DateValue::FromCivil(2005, 1, 2));
}

TEST(DateValue, TheTimeOfDayOfAMomentBeforeDayZeroCountsForward) {
  const DateValue date = DateValue::FromSeconds(-1);
  EXPECT_EQ(date.Day(), 29);
  EXPECT_EQ(date.Hour(), 23);
  EXPECT_EQ(date.Minute(), 59);
  EXPECT_EQ(date.Second(), 59);
  EXPECT_EQ(date.Weekday(), 6);
}

TEST(DateValue, DaysAreSecondsDivided) {
  EXPECT_DOUBLE_EQ(DateValue::FromCivil(2005, 1, 1, 12).Days(), 38353.5);
  EXPECT_DOUBLE_EQ(DateValue::FromSeconds(-21600).Days(), -0.25);
}

TEST(DateValue, FromDaysRoundsToTheNearestSecond) {
  EXPECT_EQ(DateValue::FromDays(38353.5), DateValue::FromCivil(2005, 1, 1, 12));
  EXPECT_EQ(DateValue::FromDays(38353 + 1.4 / 86400).Seconds(), 38353 * kDay + 1);
  EXPECT_EQ(DateValue::FromDays(38353 + 1.6 / 86400).Seconds(), 38353 * kDay + 2);
  EXPECT_EQ(DateValue::FromDays(-0.25).Seconds(), -21600);
}

TEST(DateValue, FromDaysGivesBackEverySecondOfADay) {
  for (std::int64_t second = 0; second < kDay; ++second) {
    const DateValue date = DateValue::FromSeconds(38353 * kDay + second);
    ASSERT_EQ(DateValue::FromDays(date.Days()), date);
  }
}

TEST(DateValue, FromDaysStaysWithinTheCalendar) {
  const DateValue first = DateValue::FromCivil(100, 1, 1);
  const DateValue last = DateValue::FromCivil(9999, 12, 31, 23, 59, 59);
  EXPECT_EQ(DateValue::FromDays(1e300), last);
  EXPECT_EQ(DateValue::FromDays(-1e300), first);
  EXPECT_EQ(DateValue::FromDays(std::numeric_limits<double>::infinity()), last);
  EXPECT_EQ(DateValue::FromDays(std::numeric_limits<double>::quiet_NaN()), DateValue());
}

TEST(DateValue, AddingCarriesIntoTheUnitsAbove) {
  const DateValue eve = DateValue::FromCivil(2004, 12, 31, 23, 59, 59);
  const DateValue newYear = DateValue::FromCivil(2005, 1, 1);
  EXPECT_EQ(eve.AddSeconds(1), newYear);
  EXPECT_EQ(newYear.AddSeconds(-1), eve);
  EXPECT_EQ(newYear.AddMinutes(61), DateValue::FromCivil(2005, 1, 1, 1, 1));
  EXPECT_EQ(newYear.AddHours(-25), DateValue::FromCivil(2004, 12, 30, 23));
  EXPECT_EQ(newYear.AddDays(59), DateValue::FromCivil(2005, 3, 1));
  EXPECT_EQ(newYear.AddDays(-366), DateValue::FromCivil(2004, 1, 1));
}

TEST(DateValue, SumsStopAtTheEndsOfTheCalendar) {
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
  const DateValue date = DateValue::FromCivil(2005, 1, 1);
  const DateValue first = DateValue::FromCivil(100, 1, 1);
  const DateValue last = DateValue::FromCivil(9999, 12, 31, 23, 59, 59);
  EXPECT_EQ(date.AddSeconds(kMost), last);
  EXPECT_EQ(date.AddMinutes(kMost), last);
  EXPECT_EQ(date.AddHours(kMost), last);
  EXPECT_EQ(date.AddDays(kMost), last);
  EXPECT_EQ(date.AddSeconds(kLeast), first);
  EXPECT_EQ(date.AddDays(kLeast), first);
  EXPECT_EQ(first.AddDays(2958465 + 657434), DateValue::FromCivil(9999, 12, 31));
  EXPECT_EQ(last.AddSeconds(1), last);
}

TEST(DateValue, ComparesByMoment) {
  EXPECT_LT(DateValue::FromSeconds(-1), DateValue());
  EXPECT_GT(DateValue::FromCivil(1967, 1, 15, 0, 0, 1), DateValue::FromCivil(1967, 1, 15));
  EXPECT_EQ(SecondsBetween(DateValue::FromSeconds(10), DateValue::FromSeconds(4)), -6);
  EXPECT_EQ(SecondsBetween(DateValue::FromSeconds(4), DateValue::FromSeconds(10)), 6);
}

}  // namespace
}  // namespace kestrune::base
