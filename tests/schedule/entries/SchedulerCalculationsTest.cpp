#include <random>

#include <gtest/gtest.h>

#include "presenters/SchedulerFixture.h"
#include "schedule/entries/SchedulerCalculations.h"

namespace kestrune::test {
namespace {

using schedule::DurationOf;
using schedule::EndTimeOf;
using schedule::SchedulerRow;
using schedule::TimeOfDay;

/// The end that a user sets on a row, and the duration that comes of it.
int DurationTo(SchedulerRow row, std::string caption, int hour, int minute) {
  row.End = RowOf(std::move(caption), hour, minute, 0, 0).Start;
  return DurationOf(row);
}

TEST(CalculateEndTime, ASaturdayEventOverMidnightEndsOnSunday) {
  EXPECT_EQ(Shown(RowOf("Every Saturday", 23, 0, 2, 0).End), "Every Sunday 1:00 AM");
}

TEST(CalculateEndTime, TheCaptionFollowsTheEnd) {
  const struct {
    SchedulerRow Row;
    const char* End;
  } kCases[] = {
      {RowOf("Every Sunday", 0, 0, 0, 0), "Every Sunday 12:00 AM"},
      {RowOf("Every Friday", 12, 30, 47, 59), "Every Sunday 12:29 PM"},
      {RowOf("Every Saturday", 23, 59, 47, 59), "Every Monday 11:58 PM"},
      {RowOf("Every Saturday", 23, 59, 0, 0), "Every Saturday 11:59 PM"},
      {RowOf("Every Day", 23, 0, 2, 0), "Every Day 1:00 AM"},
      {RowOf("Every Day", 23, 59, 47, 59), "Every Day 11:58 PM"},
      {RowOf("Dec 31, 2026", 23, 0, 1, 0), "Jan 1, 2027 12:00 AM"},
      {RowOf("Feb 28, 2028", 12, 0, 12, 30), "Feb 29, 2028 12:30 AM"},
      {RowOf("Jan 20, 1967", 0, 0, 0, 0), "Every Day 12:00 AM"},
      {RowOf("Jan 20, 1967", 0, 0, 0, 1), "Jan 20, 1967 12:01 AM"},
  };
  for (const auto& one : kCases) EXPECT_EQ(Shown(one.Row.End), one.End);
}

TEST(CalculateDuration, ADailyEndEarlierThanItsStartIsTheNextDays) {
  EXPECT_EQ(DurationTo(RowOf("Every Day", 23, 0, 1, 0), "Every Day", 1, 0), 2 * 60);
}

TEST(CalculateDuration, ADatedRowIsCutTo47HoursAnd59Minutes) {
  const SchedulerRow row = RowOf("Dec 24, 2026", 20, 0, 1, 0);
  EXPECT_EQ(DurationTo(row, "Dec 26, 2026", 19, 59), 47 * 60 + 59);
  EXPECT_EQ(DurationTo(row, "Dec 26, 2026", 20, 0), 47 * 60 + 59);
  EXPECT_EQ(DurationTo(row, "Dec 31, 2029", 20, 0), 47 * 60 + 59);
}

TEST(CalculateDuration, EveryKindOfStartWithEveryKindOfEnd) {
  const struct {
    const char* Start;
    int StartHour;
    const char* End;
    int EndHour;
    int Minutes;
  } kCases[] = {
      {"Every Monday", 20, "Every Monday", 21, 60},
      {"Every Monday", 20, "Every Tuesday", 20, 24 * 60},
      {"Every Monday", 20, "Every Friday", 20, 2879},
      // Before the start: next week's.
      {"Every Saturday", 23, "Every Sunday", 1, 2 * 60},
      {"Every Monday", 20, "Every Monday", 19, 2879},
      {"Every Monday", 20, "Every Monday", 20, 24 * 60},
      {"Every Monday", 20, "Every Day", 21, 2879},
      // A real end of what recurs, and the reverse: the time alone counts.
      {"Every Monday", 20, "Dec 24, 2026", 21, 60},
      {"Every Monday", 20, "Dec 24, 2026", 19, 2879},
      {"Every Day", 20, "Dec 24, 2026", 19, 23 * 60},
      {"Dec 24, 2026", 20, "Every Day", 21, 60},
      {"Dec 24, 2026", 20, "Every Friday", 19, 23 * 60},
      {"Every Day", 20, "Every Day", 20, 24 * 60},
      {"Every Day", 20, "Every Sunday", 21, 60},
      {"Every Day", 0, "Every Saturday", 0, 24 * 60},
      {"Dec 24, 2026", 20, "Dec 24, 2026", 20, 24 * 60},
      {"Dec 24, 2026", 20, "Dec 24, 2026", 19, 23 * 60},
      {"Dec 24, 2026", 20, "Dec 20, 2026", 21, 60},
  };
  for (const auto& one : kCases) {
    EXPECT_EQ(DurationTo(RowOf(one.Start, one.StartHour, 0, 1, 0), one.End, one.EndHour, 0), one.Minutes)
        << one.Start << ' ' << one.StartHour << " to " << one.End << ' ' << one.EndHour;
  }
}

const char* const kCaptions[] = {"Every Sunday",   "Every Monday", "Every Tuesday",  "Every Wednesday",
                                 "Every Thursday", "Every Friday", "Every Saturday", "Every Day",
                                 "Nov 21, 2026",   "Nov 22, 2026", "Dec 31, 2026",   "Feb 29, 2028",
                                 "Jan 1, 1995"};

/// Anything that the user can do to the times of a row.
void ChangeAtRandom(presenters::Scheduler& scheduler, std::mt19937& dice) {
  const auto roll = [&dice](int sides) { return static_cast<int>(dice() % static_cast<unsigned>(sides)); };
  const TimeOfDay time{.Hour = 1 + roll(12), .Minute = roll(60), .PM = roll(2) == 1};
  const base::DateValue date = RowOf(kCaptions[roll(std::size(kCaptions))], 0, 0, 0, 0).Start.Date();
  switch (roll(5)) {
    case 0:
      return scheduler.ChooseStartTime(0, time);
    case 1:
      return scheduler.ChooseDuration(0, roll(48), roll(60));
    case 2:
      return scheduler.ChooseEndTime(0, time);
    case 3:
      return scheduler.SetStartDate(0, date);
    default:
      return scheduler.SetEndDate(0, date);
  }
}

TEST(Scheduler, StartAndDurationAndEndStayInStepWhateverTheUserDoes) {
  std::mt19937 dice(PrintedSeed());
  SchedulerWorld world;
  presenters::Scheduler scheduler = world.Open();
  for (int step = 0; step < 20'000; ++step) {
    ChangeAtRandom(scheduler, dice);
    const SchedulerRow& row = scheduler.Row(0);
    ASSERT_EQ(Shown(row.End), Shown(EndTimeOf(row))) << "step " << step << ", from " << Shown(row.Start);
    ASSERT_TRUE(row.DurationHours >= 0 && row.DurationHours <= 47) << "step " << step;
    ASSERT_TRUE(row.DurationMinutes >= 0 && row.DurationMinutes <= 59) << "step " << step;
  }
}

TEST(CalculateDuration, IsAlwaysOneMinuteTo47HoursAnd59) {
  std::mt19937 dice(PrintedSeed());
  const auto roll = [&dice](std::size_t sides) { return static_cast<int>(dice() % sides); };
  for (int step = 0; step < 20'000; ++step) {
    SchedulerRow row = RowOf(kCaptions[roll(std::size(kCaptions))], roll(24), roll(60), 1, 0);
    row.End = RowOf(kCaptions[roll(std::size(kCaptions))], roll(24), roll(60), 0, 0).Start;
    const int minutes = DurationOf(row);
    ASSERT_GE(minutes, 1) << Shown(row.Start) << " to " << Shown(row.End);
    ASSERT_LE(minutes, 47 * 60 + 59) << Shown(row.Start) << " to " << Shown(row.End);
    // The time of day of the end is kept, unless the end had to move.
    if (minutes < 47 * 60 + 59) {
      row.DurationHours = minutes / 60;
      row.DurationMinutes = minutes % 60;
      ASSERT_EQ(EndTimeOf(row).Time, row.End.Time) << Shown(row.Start) << " to " << Shown(row.End);
    }
  }
}

}  // namespace
}  // namespace kestrune::test
