#include <gtest/gtest.h>

#include "schedule/entries/DayFind.h"

namespace kestrune::test {
namespace {

using schedule::DayFind;

TEST(DayFind, NumbersTheWeekFromSunday) {
  EXPECT_EQ(DayFind("Sunday"), 1);
  EXPECT_EQ(DayFind("Monday"), 2);
  EXPECT_EQ(DayFind("Tuesday"), 3);
  EXPECT_EQ(DayFind("Wednesday"), 4);
  EXPECT_EQ(DayFind("Thursday"), 5);
  EXPECT_EQ(DayFind("Friday"), 6);
  EXPECT_EQ(DayFind("Saturday"), 7);
}

TEST(DayFind, BlanksAroundTheNameDoNotCount) {
  EXPECT_EQ(DayFind("  Friday "), 6);
}

TEST(DayFind, ANameInLowerCaseIsUnknownAndCountsAsSunday) {
  EXPECT_EQ(DayFind("friday"), 1);
}

TEST(DayFind, AnUnknownNameCountsAsSunday) {
  EXPECT_EQ(DayFind(""), 1);
  EXPECT_EQ(DayFind("Caturday"), 1);
}

}  // namespace
}  // namespace kestrune::test
