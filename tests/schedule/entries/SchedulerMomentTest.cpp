#include <gtest/gtest.h>

#include "base/DatePattern.h"
#include "schedule/entries/SchedulerMoment.h"

namespace kestrune::schedule {
namespace {

using base::DateValue;

struct Coding {
  const char* Caption;
  const char* Stored;
};

constexpr Coding kCodings[] = {{"Every Sunday", "Jan 1, 1967"},   {"Every Monday", "Jan 2, 1967"},
                               {"Every Tuesday", "Jan 3, 1967"},  {"Every Wednesday", "Jan 4, 1967"},
                               {"Every Thursday", "Jan 5, 1967"}, {"Every Friday", "Jan 6, 1967"},
                               {"Every Saturday", "Jan 7, 1967"}, {"Every Day", "Jan 15, 1967"}};

TEST(SchedulerMoment, EveryCodeHasItsCaptionAndBack) {
  for (const Coding& row : kCodings) {
    const SchedulerMoment moment{.Caption = row.Caption, .Time = {.Hour = 8, .Minute = 5, .PM = true}};
    EXPECT_TRUE(moment.Recurs()) << row.Caption;
    EXPECT_EQ(moment.StoredDate(), row.Stored);
    EXPECT_EQ(moment.StoredText(), std::string(row.Stored) + " 8:05 PM");
    EXPECT_EQ(moment.Date(), base::ParseDate(row.Stored)->AddHours(20).AddMinutes(5)) << row.Caption;
    EXPECT_EQ(CodedCaption(*base::ParseDate(row.Stored)), row.Caption);
  }
}

TEST(SchedulerMoment, ADateIsStoredAsItIsShown) {
  const SchedulerMoment moment{.Caption = "Dec 24, 2026", .Time = {}};
  EXPECT_FALSE(moment.Recurs());
  EXPECT_EQ(moment.StoredText(), "Dec 24, 2026 12:00 AM");
  EXPECT_EQ(moment.Date(), DateValue::FromCivil(2026, 12, 24));
}

TEST(SchedulerMoment, AnUnknownWeekdayIsSunday) {
  EXPECT_EQ((SchedulerMoment{.Caption = "Every Blueday", .Time = {}}.StoredDate()), "Jan 1, 1967");
}

TEST(SchedulerMoment, EveryHourOfTheDayAndBack) {
  for (int hour = 0; hour < 24; ++hour) {
    const TimeOfDay time = TimeOfDay::Of(DateValue::FromCivil(2026, 1, 1, hour, 59));
    EXPECT_EQ(time.Hour, hour == 0 ? 12 : hour > 12 ? hour - 12 : hour);
    EXPECT_EQ(time.PM, hour > 11);
    EXPECT_EQ(time.Minute, 59);
    EXPECT_EQ(time.HourOfDay(), hour);
  }
}

}  // namespace
}  // namespace kestrune::schedule
