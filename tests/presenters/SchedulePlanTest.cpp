#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/DatePattern.h"
#include "presenters/SchedulePlan.h"
#include "presenters/SchedulerFixture.h"

namespace kestrune::test {
namespace {

using presenters::WeekRun;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// It is Saturday, January 1, 2005, noon.
class SchedulePlanTest : public ::testing::Test {
 protected:
  schedule::SchedulerRow& Put(int entry, std::string caption, int hour, int minute, int hours, int minutes) {
    schedule::SchedulerRow& row = source.Rows.at(static_cast<std::size_t>(entry) - 1);
    row = RowOf(std::move(caption), hour, minute, hours, minutes);
    row.MP3BitRate = "128 Stereo";
    return row;
  }
  [[nodiscard]] std::string Next(int entry) const {
    return presenters::MakePlan(source).Rows.at(static_cast<std::size_t>(entry) - 1).Next;
  }
  [[nodiscard]] std::string Warning(int entry) const {
    return presenters::MakePlan(source).Rows.at(static_cast<std::size_t>(entry) - 1).Warning;
  }
  /// "2 0.500-0.750", places in days, "lost" after those that are.
  [[nodiscard]] std::vector<std::string> Runs() const {
    std::vector<std::string> runs;
    for (const WeekRun& run : presenters::MakePlan(source).Week.Runs)
      runs.push_back(fmt::format("{} {:.3f}-{:.3f}{}", run.Entry, run.From, run.To, run.Lost ? " lost" : ""));
    return runs;
  }

  presenters::PlanSource source{.Rows = {},
                                .Channels = {{.Number = 44, .Station = "Fred"},
                                             {.Number = 8, .Station = "Neon"},
                                             {.Number = 251, .Station = "?"}},
                                .Listed = 2,
                                .Now = base::ParseDate("Jan 1, 2005 12:00").value()};
};

// The next run.

TEST_F(SchedulePlanTest, ARowThatIsNotEnabledPlansNothingAndIsNotWarnedOf) {
  Put(1, "Jan 1, 2004", 8, 0, 0, 0).Enabled = false;
  EXPECT_EQ(Next(1), "");
  EXPECT_EQ(Warning(1), "");
}

TEST_F(SchedulePlanTest, TodayAndTomorrowAreNamedOtherDaysByTheirDate) {
  Put(1, "Jan 1, 2005", 20, 0, 1, 0);
  Put(2, "Every Sunday", 9, 5, 0, 30);
  Put(3, "Every Wednesday", 23, 0, 2, 0);
  Put(4, "Mar 9, 2006", 0, 0, 1, 0);
  EXPECT_EQ(Next(1), "Next: today, 8:00 PM to 9:00 PM");
  EXPECT_EQ(Next(2), "Next: tomorrow, 9:05 AM to 9:35 AM");
  EXPECT_EQ(Next(3), "Next: Wed, Jan 5, 11:00 PM to Thu 1:00 AM");
  EXPECT_EQ(Next(4), "Next: Thu, Mar 9, 2006, 12:00 AM to 1:00 AM");
}

TEST_F(SchedulePlanTest, ADailyEntryWhoseHourIsOverRunsTomorrow) {
  Put(1, "Every Day", 8, 0, 1, 0);
  EXPECT_EQ(Next(1), "Next: tomorrow, 8:00 AM to 9:00 AM");
}

TEST_F(SchedulePlanTest, AnEntryThatRunsSaysUntilWhen) {
  Put(1, "Every Saturday", 11, 0, 2, 0);
  Put(2, "Every Friday", 23, 0, 26, 0);
  EXPECT_EQ(Next(1), "Now, until 1:00 PM");
  EXPECT_EQ(Next(2), "Now, until Sun 1:00 AM");
}

// What keeps an entry from recording.

TEST_F(SchedulePlanTest, AnEntryThatCanRecordIsNotWarnedOf) {
  Put(1, "Every Day", 20, 0, 1, 0);
  Put(2, "Every Day", 21, 1, 1, 0);
  EXPECT_EQ(Warning(1), "");
  EXPECT_EQ(Warning(2), "");
}

TEST_F(SchedulePlanTest, ADateThatIsOverNeverRuns) {
  Put(1, "Jan 1, 2005", 10, 0, 1, 0);
  EXPECT_EQ(Next(1), "Never");
  EXPECT_EQ(Warning(1), "Its date is over.");
}

TEST_F(SchedulePlanTest, AnEntryWithoutLengthIsWarnedOf) {
  Put(1, "Every Day", 20, 0, 0, 0);
  EXPECT_EQ(Next(1), "Never");
  EXPECT_EQ(Warning(1), "It has no length and is saved switched off.");
}

TEST_F(SchedulePlanTest, ADailyEntryOfADayAndMoreMeetsItself) {
  Put(1, "Every Day", 20, 0, 23, 59);
  EXPECT_EQ(Warning(1), "");
  Put(1, "Every Day", 20, 0, 24, 0);
  EXPECT_EQ(Warning(1), "It lasts longer than the day after which it begins again.");
}

TEST_F(SchedulePlanTest, AChannelThatIsNotInTheListIsWarnedOf) {
  Put(1, "Every Day", 20, 0, 1, 0).Channel = 2;
  EXPECT_EQ(Warning(1), "Channel 251 is not in the channel list.");
  source.Rows[0].Channel = -1;
  EXPECT_EQ(Warning(1), "It has no channel.");
}

TEST_F(SchedulePlanTest, ABitRateThatIsNoneIsWarnedOfIfItCounts) {
  Put(1, "Every Day", 20, 0, 1, 0).MP3BitRate = " ";
  EXPECT_EQ(Warning(1), "It has no bit rate: 128 Stereo is used.");
  source.Rows[0].MP3BitRate = "320 Joint";
  EXPECT_EQ(Warning(1), "There is no bit rate 320 Joint.");
  source.BitRatesCount = false;
  EXPECT_EQ(Warning(1), "");
}

TEST_F(SchedulePlanTest, OfTwoEntriesAtTheSameTimeTheLaterNumberIsWarnedOf) {
  Put(2, "Jan 3, 2005", 20, 0, 1, 0);
  Put(5, "Jan 3, 2005", 20, 30, 1, 0);
  EXPECT_EQ(Warning(2), "");
  EXPECT_EQ(Warning(5), "Entry 2 records instead, Mon, Jan 3 from 8:30 PM on.");
}

TEST_F(SchedulePlanTest, AnOverlapThatSavingAcceptsIsFoundByTheClock) {
  Put(1, "Every Day", 20, 0, 1, 0);
  Put(2, "Every Wednesday", 20, 30, 1, 0);
  Put(3, "Mar 9, 2005", 20, 59, 0, 10);
  EXPECT_EQ(Warning(2), "Entry 1 records instead, Wed, Jan 5 from 8:30 PM on.");
  EXPECT_THAT(Warning(3), HasSubstr("Entry 1 records instead, Wed, Mar 9 from 8:59 PM on."));
}

TEST_F(SchedulePlanTest, ADateBeyondTheWeekIsComparedToo) {
  Put(1, "Mar 9, 2005", 20, 0, 1, 0);
  Put(2, "Every Wednesday", 20, 30, 1, 0);
  EXPECT_EQ(Warning(2), "Entry 1 records instead, Wed, Mar 9 from 8:30 PM on.");
}

TEST_F(SchedulePlanTest, AnOverlapOverMidnightAndTheWeeksEndIsFound) {
  Put(1, "Every Saturday", 23, 0, 3, 0);
  Put(2, "Every Sunday", 1, 0, 1, 0);
  EXPECT_EQ(Warning(2), "Entry 1 records instead, tomorrow from 1:00 AM on.");
}

TEST_F(SchedulePlanTest, EntriesThatTouchShareTheLastMinute) {
  Put(1, "Every Day", 20, 0, 1, 0);
  Put(2, "Every Day", 21, 0, 1, 0);
  EXPECT_EQ(Warning(2), "Entry 1 records instead, today from 9:00 PM on.");
}

TEST_F(SchedulePlanTest, AnOverlapThatIsOverIsNotWarnedOf) {
  Put(1, "Jan 1, 2005", 8, 0, 1, 0);
  Put(2, "Jan 1, 2005", 8, 30, 6, 0);
  EXPECT_EQ(Warning(2), "");
}

TEST_F(SchedulePlanTest, EntriesThatAreNotEnabledDisturbNobody) {
  Put(1, "Every Day", 20, 0, 1, 0).Enabled = false;
  Put(2, "Every Day", 20, 0, 1, 0);
  EXPECT_EQ(Warning(2), "");
  EXPECT_EQ(presenters::MakePlan(source).Week.Runs.size(), 7U);
}

// The bar of the week.

TEST_F(SchedulePlanTest, TheWeekBeginsTodayAtMidnight) {
  const presenters::WeekPlan week = presenters::MakePlan(source).Week;
  EXPECT_THAT(week.Days, ElementsAre("Today", "Sun 2", "Mon 3", "Tue 4", "Wed 5", "Thu 6", "Fri 7"));
  EXPECT_DOUBLE_EQ(week.Now, 0.5);
  EXPECT_THAT(week.Runs, IsEmpty());
  EXPECT_EQ(week.InWords, "Nothing is planned in the coming week");
}

TEST_F(SchedulePlanTest, RunsLieWhereTheirTimesAreAndEndWithTheWeek) {
  Put(1, "Every Saturday", 6, 0, 12, 0);
  Put(2, "Every Friday", 18, 0, 12, 0);
  Put(3, "Jan 3, 2005", 12, 0, 0, 30);
  // That of Friday came into today, and goes out of the week at its other end.
  EXPECT_THAT(Runs(), ElementsAre("2 0.000-0.250", "1 0.250-0.751", "3 2.500-2.522", "2 6.750-7.000",
                                  "2 0.250-0.251 lost"));
}

TEST_F(SchedulePlanTest, ARunIsLostOnlyWhileTheOtherEntryRecords) {
  Put(1, "Jan 2, 2005", 6, 0, 5, 59);
  Put(2, "Jan 2, 2005", 0, 0, 23, 59);
  EXPECT_THAT(Runs(), ElementsAre("2 1.000-1.250", "1 1.250-1.500", "2 1.500-2.000", "2 1.250-1.500 lost"));
}

TEST_F(SchedulePlanTest, ARunSaysItsEntryChannelAndTimes) {
  Put(3, "Every Sunday", 23, 0, 2, 0).Channel = 1;
  const presenters::WeekPlan week = presenters::MakePlan(source).Week;
  ASSERT_EQ(week.Runs.size(), 1U);
  EXPECT_EQ(week.Runs[0].Text, "Entry 3: 8 - Neon\nSun, Jan 2, 11:00 PM to Mon 1:00 AM");
}

TEST_F(SchedulePlanTest, InWordsAreAllRunsStillToComeInTheirOrder) {
  Put(1, "Every Sunday", 20, 0, 1, 0);
  Put(2, "Jan 1, 2005", 20, 0, 1, 0).Channel = 1;
  Put(3, "Every Saturday", 8, 0, 1, 0);
  EXPECT_EQ(
      presenters::MakePlan(source).Week.InWords,
      "Sat, Jan 1, 8:00 PM to 9:00 PM: entry 2, 8 - Neon\nSun, Jan 2, 8:00 PM to 9:00 PM: entry 1, 44 - "
      "Fred\n");
}

}  // namespace
}  // namespace kestrune::test
