#include <gtest/gtest.h>

#include "presenters/DateSelect.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {
namespace {

using base::DateValue;
using presenters::DateSelect;

// The clock stands at Saturday, January 1, 2005, 12:00.
struct Picker {
  explicit Picker(DateValue date) : SelDate(date) {}

  SimulatedEventLoop Loop;
  DateValue SelDate;
  DateSelect Rules{Loop, SelDate};
};

const DateValue kToday = DateValue::FromCivil(2005, 1, 1);

TEST(DateSelect, ARowDatedNextWeekOpensThatDate) {
  Picker picker(DateValue::FromCivil(2005, 1, 8));
  EXPECT_EQ(picker.Rules.Calendar(), DateValue::FromCivil(2005, 1, 8));
}

TEST(DateSelect, WhatRecursAndWhatHasPassedOpensToday) {
  for (const DateValue date : {DateValue::FromCivil(1967, 1, 15), DateValue::FromCivil(2004, 12, 31), kToday,
                               DateValue::FromCivil(2005, 1, 1, 12)}) {
    EXPECT_EQ(Picker(date).Rules.Calendar(), kToday);
  }
}

TEST(DateSelect, ClickingTodayGivesThePresentMoment) {
  Picker picker(DateValue::FromCivil(2005, 1, 8));
  picker.Rules.ChooseDate(kToday);
  EXPECT_EQ(picker.SelDate, picker.Loop.Now());
}

TEST(DateSelect, ClickingAPastDateGivesToday) {
  Picker picker(DateValue::FromCivil(2005, 1, 8));
  picker.Rules.ChooseDate(DateValue::FromCivil(2004, 12, 31));
  EXPECT_EQ(picker.SelDate, picker.Loop.Now());
}

TEST(DateSelect, ClickingALaterDateGivesItAtMidnight) {
  Picker picker(kToday);
  picker.Rules.ChooseDate(DateValue::FromCivil(2005, 2, 3));
  EXPECT_EQ(picker.SelDate, DateValue::FromCivil(2005, 2, 3));
}

TEST(DateSelect, EveryWeekdayHasItsCodedDay) {
  for (int index = 0; index < 7; ++index) {
    Picker picker(kToday);
    picker.Rules.cmdDay(index);
    EXPECT_EQ(picker.SelDate, DateValue::FromCivil(1967, 1, index + 1));
    EXPECT_EQ(picker.SelDate.Weekday(), index + 1);
  }
}

TEST(DateSelect, ButtonThreeIsWednesdayJanuary4) {
  Picker picker(kToday);
  picker.Rules.cmdDay(3);
  EXPECT_EQ(picker.SelDate, DateValue::FromCivil(1967, 1, 4));
  EXPECT_EQ(picker.SelDate.Weekday(), 4);
}

TEST(DateSelect, EveryDayIsJanuary15) {
  Picker picker(kToday);
  picker.Rules.cmdEveryDay();
  EXPECT_EQ(picker.SelDate, DateValue::FromCivil(1967, 1, 15));
}

TEST(DateSelect, MovingAMonthChoosesNothingAndKeepsWithinTheMonth) {
  Picker picker(DateValue::FromCivil(2005, 1, 31));
  picker.Rules.cmdMonthUp();
  EXPECT_EQ(picker.Rules.Calendar(), DateValue::FromCivil(2005, 2, 28));
  picker.Rules.cmdMonthDown();
  picker.Rules.cmdMonthDown();
  EXPECT_EQ(picker.Rules.Calendar(), DateValue::FromCivil(2004, 12, 28));
  EXPECT_EQ(picker.SelDate, DateValue::FromCivil(2005, 1, 31));
}

TEST(DateSelect, TheLastMonthOfAllIsNotLeft) {
  Picker picker(DateValue::FromCivil(9999, 12, 31));
  picker.Rules.cmdMonthUp();
  EXPECT_EQ(picker.Rules.Calendar(), DateValue::FromCivil(9999, 12, 31));
}

}  // namespace
}  // namespace kestrune::test
